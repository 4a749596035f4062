"""What holds for the process: threads, the level of vectors, the rows of a layout."""
from __future__ import annotations

import threading
from contextlib import contextmanager
from typing import Iterator, Tuple

from ._arrays import whole
from ._codes import LAYOUTS, code
from ._errors import failed, shown
from ._library import lib

MOST_THREADS = 256

_own = threading.local()


def get_threads() -> int:
    count: int = lib.qv_threads()
    return count


def set_threads(count: int) -> None:
    status = lib.qv_set_threads(whole(count, "threads", 1, MOST_THREADS))
    if status:
        raise failed(status, "threads")


@contextmanager
def thread_limit(count: int) -> Iterator[None]:
    """Within the block, calls of this Python thread are shared by at most `count` threads, itself
    included; 0 for no limit.

    Errors: a number below 0.

    >>> with thread_limit(1):
    ...     pass  # calls here stay on this thread
    """
    before = getattr(_own, "limit", 0)
    _limit(whole(count, "count", 0, 2**31 - 1))
    try:
        yield
    finally:
        _limit(before)


def _limit(count: int) -> None:
    status = lib.qv_set_thread_limit(count)
    if status:
        raise failed(status, "count")
    _own.limit = count


def get_level() -> str:
    name: bytes = lib.qv_level()
    return name.decode()


def set_level(level: str) -> None:
    status = lib.qv_set_level(str(level).encode())
    if status:
        raise failed(status, "level", f"one of {', '.join(map(repr, levels()))} wanted, not "
                     f"{shown(level)}")


def levels() -> Tuple[str, ...]:
    """The levels that this processor has, from the lowest on.

    >>> levels()[0]
    'generic'
    """
    return tuple(lib.qv_levels().decode().split())


def row_bytes(layout: str, width: int) -> int:
    """Bytes of a row of so many pixels without padding, of the first plane where there are several;
    `layout` is one of convert()'s, such as "bgr" or "yuyv".

    Errors: another layout; a width below 1; more than 2^31 - 1 bytes.

    >>> row_bytes("yuyv", 1919)
    3840
    """
    result: int = lib.qv_row_bytes(code(LAYOUTS, layout, "layout"),
                                   whole(width, "width", 1, 2**31 - 1))
    if result < 0:
        raise failed(result, "width", "a row of more than 2^31 - 1 bytes")
    return result
