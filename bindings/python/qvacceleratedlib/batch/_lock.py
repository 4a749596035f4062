"""One run at a time into a folder."""
from __future__ import annotations

import contextlib
import getpass
import json
import os
import socket
import threading
import time
import uuid
from typing import Callable, Iterator

from . import _files

NAME = "qvbatch.lock"
# Seconds from one renewal to the next, and without one until a run is taken for dead.
RENEWAL, DEATH = 10.0, 30.0


class Busy(Exception):
    """Another run is at work in the folder."""


def _owner() -> str:
    user = "somebody"
    with contextlib.suppress(KeyError, ImportError, OSError):  # an account without a name
        user = getpass.getuser()
    return f"{user}@{socket.gethostname()}, process {os.getpid()}"


class Lock:
    """A run's hold on a folder."""

    def check(self) -> None:
        """Raises Busy where another run has taken it over."""


class _Renewed(Lock):
    """A file that is renewed as long as its run lives, for stores that have no locks. Two that
    take it at the same time find out when they renew it, as does one that was held up."""

    def __init__(self, folder: str, scratch: str, say: Callable[[str], None]) -> None:
        self._folder, self._address = folder, _files.join(folder, NAME)
        self._scratch = scratch
        self._run = uuid.uuid4().hex
        self._other = ""  # who has taken it over
        self._count = 0
        self._over = threading.Event()
        self._wait_for_death(say)
        self._write()
        self._thread = threading.Thread(target=self._renew, daemon=True)
        self._thread.start()

    def _read(self) -> bytes:
        """What another run has written."""
        content = _files.read(self._address) or b""
        return b"" if self._run.encode() in content else content

    def _name(self, content: bytes) -> str:
        with contextlib.suppress(ValueError, KeyError, TypeError):
            return str(json.loads(content)["owner"])
        return "somebody"

    def _wait_for_death(self, say: Callable[[str], None]) -> None:
        found, end = self._read(), time.monotonic() + DEATH
        if found:
            say(f"{self._folder}: is locked ({self._name(found)}); looking for {DEATH:g} s whether "
                "that run lives")
        while found and time.monotonic() < end:
            time.sleep(RENEWAL / 20)
            now = self._read()
            if now and now != found:
                raise Busy(f"{self._folder}: another run is at work there ({self._name(now)})")
            found = now

    def _write(self) -> None:
        self._count += 1
        content = {"run": self._run, "owner": _owner(), "count": self._count}
        _files.write(self._address, json.dumps(content).encode(), self._scratch)

    def _renew(self) -> None:
        while not self._other and not self._over.wait(RENEWAL):
            with contextlib.suppress(OSError):  # such as of a network that will come back
                found = self._read()
                if found:
                    self._other = self._name(found)
                else:
                    self._write()

    def check(self) -> None:
        if self._other:
            raise Busy(f"{self._folder}: another run has begun there ({self._other})")

    def release(self) -> None:
        self._over.set()
        self._thread.join()
        with contextlib.suppress(OSError):
            if not self._read():
                _files.remove(self._address)


@contextlib.contextmanager
def of_address(folder: str, scratch: str, say: Callable[[str], None]) -> Iterator[Lock]:
    """`scratch` is a folder for what is not complete."""
    lock = _Renewed(folder, scratch, say)
    try:
        yield lock
    finally:
        lock.release()


@contextlib.contextmanager
def of_path(folder: str, scratch: str) -> Iterator[Lock]:
    """The lock of a file in `scratch`, which the system takes back when its owner ends."""
    with open(os.path.join(scratch, "lock"), "a+") as file:
        with contextlib.suppress(ImportError):  # Windows has no such locks
            import fcntl
            try:
                fcntl.flock(file, fcntl.LOCK_EX | fcntl.LOCK_NB)
            except BlockingIOError:
                file.seek(0)
                raise Busy(f"{folder}: another run is at work there ({file.read()})") from None
        file.truncate(0)
        file.write(_owner())
        file.flush()
        yield Lock()
