"""From numpy arrays to addresses and steps: what an operation takes as it is, and what it refuses.

These functions run in every call, on images that may be small, so they ask an array for little.
"""
from __future__ import annotations

import ctypes
import sys
from operator import index
from typing import Any, Collection, Optional, Sequence, Tuple, TypeVar

import numpy as np
import numpy.typing as npt

from ._errors import Error, Status, failed, shown
from ._library import Rect, Size, lib

Image = npt.NDArray[np.uint8]
A = TypeVar("A")
B = TypeVar("B")
# Address of the first pixel, step from row to row in bytes, width, height, channels.
Pixels = Tuple[int, int, int, int, int]

MOST = 2**31 - 1
UINT8 = np.dtype(np.uint8)
# The layouts of pixels of most operations (enum qv_data_type), by channels.
TYPES = {1: 2, 3: 4}
ANY = (1, 2, 3, 4)
BYTES = 2  # the layout of rows of bytes, whatever they are

_HEAD = object.__basicsize__
_word = ctypes.c_size_t.from_address


def _address_in_head(array: npt.NDArray[Any]) -> int:
    """An array object of CPython begins with its head and the address of its first element, as
    all extensions built for numpy's binary interface rely on."""
    return _word(id(array) + _HEAD).value


def _address_by_interface(array: npt.NDArray[Any]) -> int:
    """The same wherever numpy runs, but six times as slow."""
    address: int = array.__array_interface__["data"][0]
    return address


address_of = _address_by_interface
if sys.implementation.name == "cpython":
    _probe = np.empty(1, UINT8)
    if _address_in_head(_probe) == _address_by_interface(_probe):
        address_of = _address_in_head


def _wanted(channels: Collection[int]) -> str:
    return " or ".join("(H, W)" if count == 1 else f"(H, W, {count})" for count in channels)


def _refuse_kind(array: object, argument: str, channels: Collection[int]) -> Error:
    if not isinstance(array, np.ndarray):
        return Error(Status.DATA_TYPE_ERR, argument,
                     f"a numpy array is wanted, not {type(array).__name__}")
    if array.dtype != UINT8:
        return Error(Status.DATA_TYPE_ERR, argument, f"dtype {array.dtype} given, uint8 wanted")
    return Error(Status.CHANNEL_ERR, argument,
                 f"shape {array.shape} given, {_wanted(channels)} wanted")


def _refuse_strides(array: Image, argument: str, reason: str) -> Error:
    wanted = ("any", 1) if array.ndim == 2 else ("any", array.shape[2], 1)
    return Error(Status.STEP_ERR, argument,
                 f"{reason}: shape {array.shape} with strides {array.strides} given, "
                 f"strides ({', '.join(map(str, wanted))}) wanted")


def pixels(array: Image, argument: str, channels: Collection[int], written: bool = False) -> Pixels:
    """Address, step, width, height and channels of an image, which is not copied."""
    if not isinstance(array, np.ndarray) or array.dtype != UINT8:
        raise _refuse_kind(array, argument, channels)
    shape, strides = array.shape, array.strides
    if len(shape) == 3:
        height, width, count = shape
        if count == 1:
            raise _refuse_kind(array, argument, channels)
    elif len(shape) == 2:
        height, width = shape
        count = 1
    else:
        raise _refuse_kind(array, argument, channels)
    if count not in channels:
        raise _refuse_kind(array, argument, channels)
    if height < 1 or width < 1:
        raise Error(Status.SIZE_ERR, argument, f"shape {shape} has no pixel")
    row = step = width * count
    if height > MOST or row > MOST:
        raise Error(Status.SIZE_ERR, argument,
                    f"shape {shape} has rows or columns of more than 2^31 - 1 bytes")
    if (width > 1 and strides[1] != count) or (count > 1 and strides[2] != 1):
        raise _refuse_strides(array, argument, "the bytes of a row are not side by side")
    if height > 1:
        step = strides[0]
        if not -MOST <= step <= MOST:
            raise _refuse_strides(array, argument, "rows are more than 2^31 - 1 bytes apart")
    if written:
        if -row < step < row:
            raise _refuse_strides(array, argument, "rows to be written overlap")
        if not array.flags.writeable:
            raise Error(Status.BAD_ARG_ERR, argument, "the array is read-only")
    return address_of(array), step, width, height, count


def _share_memory(one: Image, other: Image) -> bool:
    if one.flags.owndata and other.flags.owndata:  # which is cheaper to ask for
        return one is other
    return np.shares_memory(one, other)


def separate(out: Image, argument: str, *sources: Optional[Image]) -> None:
    """Refuses an `out` that has a byte in common with a source."""
    for source in sources:
        if source is not None and _share_memory(out, source):
            raise Error(Status.BAD_ARG_ERR, argument, "it overlaps with another array of this call")


def target(out: Optional[Image], shape: Tuple[int, ...], *sources: Optional[Image],
           argument: str = "out") -> Tuple[Image, int, int]:
    """The array to write, its address and step: `out`, or a new one without content."""
    if out is None:
        out = np.empty(shape, UINT8)
        row = shape[1] * shape[2] if len(shape) == 3 else shape[1]
        return out, address_of(out), row
    address, step, _, _, _ = pixels(out, argument, ANY, True)
    if out.shape != shape:
        raise Error(Status.SIZE_ERR, argument, f"shape {out.shape} given, {shape} wanted")
    separate(out, argument, *sources)
    return out, address, step


def in_place(image: Image, described: Pixels, out: Optional[Image],
             *sources: Optional[Image]) -> Tuple[Image, Pixels]:
    """For operations that work in place: `image` itself where it is `out`, else a copy of it, in
    `out` or in a new array. `described` is what pixels() says of `image`, which is written if it
    is `out`."""
    if out is not image:
        copy, to, to_step = target(out, image.shape, image, *sources)
        address, step, width, height, channels = described
        status = lib.qv_copy(BYTES, address, step, to, to_step, Size(width * channels, height))
        if status:
            raise failed(status)
        return copy, (to, to_step, width, height, channels)
    separate(out, "out", *sources)
    return out, described


def pair(out: Optional[Tuple[A, B]]) -> Tuple[Optional[A], Optional[B]]:
    """The two arrays of an `out` that has two."""
    if out is None:
        return None, None
    if not isinstance(out, (tuple, list)) or len(out) != 2:
        raise Error(Status.BAD_ARG_ERR, "out", f"two arrays wanted, not {shown(out)}")
    return out


def same_size(array: Image, argument: str, width: int, height: int) -> None:
    if array.shape[:2] != (height, width):
        raise Error(Status.SIZE_ERR, argument,
                    f"shape {array.shape} given, {height} rows of {width} pixels wanted")


def size_of(value: Sequence[int], argument: str) -> Tuple[int, int]:
    """A (width, height) of whole numbers from 1 on."""
    try:
        width, height = map(index, value)
    except (TypeError, ValueError):
        raise Error(Status.SIZE_ERR, argument,
                    f"(width, height) in pixels wanted, not {shown(value)}") from None
    if not (1 <= width <= MOST and 1 <= height <= MOST and width * height < 2**60):
        raise Error(Status.SIZE_ERR, argument, f"{width} x {height} is no size of an image")
    return width, height


def rect_of(value: Optional[Sequence[int]], argument: str, width: int, height: int,
            inside: bool = False) -> Rect:
    """A region (x, y, width, height); the whole image for None."""
    if value is None:
        return Rect(0, 0, width, height)
    try:
        x, y, columns, rows = map(index, value)
    except (TypeError, ValueError):
        raise Error(Status.SIZE_ERR, argument,
                    f"(x, y, width, height) in pixels wanted, not {shown(value)}") from None
    if not (0 <= x <= MOST and 0 <= y <= MOST and 1 <= columns <= MOST and 1 <= rows <= MOST):
        raise Error(Status.SIZE_ERR, argument, f"{tuple(value)} is no region of an image")
    if inside and (x + columns > width or y + rows > height):
        raise Error(Status.SIZE_ERR, argument,
                    f"{tuple(value)} is not inside {width} x {height} pixels")
    return Rect(x, y, columns, rows)


def byte_of(value: int, argument: str) -> int:
    """A whole number of 0 to 255."""
    return whole(value, argument, 0, 255)


def whole(value: int, argument: str, least: int, most: int) -> int:
    """A whole number of `least` to `most`."""
    try:
        number = index(value)
    except TypeError:
        number = least - 1
    if not least <= number <= most:
        raise Error(Status.OUT_OF_RANGE_ERR, argument,
                    f"a whole number of {least} to {most} wanted, not {shown(value)}")
    return number


def point_of(value: Sequence[int], argument: str, least: int) -> Tuple[int, int]:
    """An (x, y) of whole numbers from `least` on."""
    try:
        x, y = value
    except (TypeError, ValueError):
        raise Error(Status.OUT_OF_RANGE_ERR, argument,
                    f"(x, y) in pixels wanted, not {shown(value)}") from None
    return whole(x, argument, least, MOST), whole(y, argument, least, MOST)
