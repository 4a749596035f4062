"""One file: finds qvtool and runs it, on whatever machine this is called."""
from __future__ import annotations

import contextlib
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import uuid
from pathlib import Path
from typing import List, NamedTuple, Sequence, Set, Tuple, Union

from .. import crc32
from . import _files


class Task(NamedTuple):
    name: str  # of the output, below the folder for all of them
    source: str
    target: str
    command: Tuple[str, ...]  # of qvtool, without its files
    cwd: str                  # what relative paths in it start from
    parts: str = ""  # a folder for outputs that are not complete, if they do not go to an address


class Done(NamedTuple):
    source: _files.Stamp
    target: _files.Stamp
    checksum: int
    frames: int


# What a failure leaves to try: nothing; another machine, as it was this one rather than the file,
# or can do none at all; or the file with no other beside it, as it may have been one of those.
NEVER, ELSEWHERE, UNFIT, ALONE = "never", "elsewhere", "unfit", "alone"


class Failed(NamedTuple):
    reason: str
    again: str = NEVER
    worker: str = ""


class Trouble(Exception):
    """Something that another machine, or another time, may do better."""


class Unfit(Trouble):
    """A machine that has no qvtool to run."""


class WrongChain(Exception):
    """A chain that qvtool does not take."""


_children: Set["subprocess.Popen[bytes]"] = set()


def stop() -> None:
    """Ends the programs that run in this process's name."""
    for child in list(_children):
        child.terminate()


def find() -> str:
    """qvtool: that of $QVTOOL, that of the wheel, or the first on the path."""
    named = os.environ.get("QVTOOL")
    if named:
        found = shutil.which(named)
        if not found:
            raise Unfit(f"QVTOOL={named}: is no program")
        return found
    beside = Path(__file__).resolve().parent.parent / "qvtool"
    found = shutil.which(str(beside)) or shutil.which("qvtool")
    if not found:
        raise Unfit("qvtool is missing: it is in the wheel for Linux and in the Debian package "
                    "qvtool; QVTOOL or PATH may name another one")
    return found


def run_tool() -> None:
    """The command qvtool of a wheel."""
    tool = find()
    os.execv(tool, [tool, *sys.argv[1:]])


def _run(command: Sequence[str], source: str, target: str,
         cwd: str) -> "subprocess.CompletedProcess[bytes]":
    words = [find(), *command, source, target]
    try:
        child = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                 stderr=subprocess.PIPE, cwd=cwd if os.path.isdir(cwd) else None)
    except OSError as error:
        raise Unfit(f"{words[0]}: {error.strerror}") from None
    with child:
        _children.add(child)
        try:
            _, errors = child.communicate()
        finally:
            _children.discard(child)
    return subprocess.CompletedProcess(words, child.returncode, b"", errors)


def _reason(result: "subprocess.CompletedProcess[bytes]") -> str:
    lines: List[str] = result.stderr.decode(errors="backslashreplace").strip().splitlines()
    last = lines[-1] if lines else f"qvtool ended with {result.returncode}"
    return re.sub(r" \(see qvtool .*--help\)$", "", last[8:] if last[:8] == "qvtool: " else last)


def check(command: Sequence[str], extensions: List[str], cwd: str) -> None:
    """Tries the command on nothing. Raises WrongChain if it goes with none of the outputs."""
    with tempfile.TemporaryDirectory(prefix="qvbatch-") as folder:
        results = [_run(command, os.devnull, os.path.join(folder, "*" + extension), cwd)
                   for extension in extensions]
    if all(result.returncode == 2 for result in results):
        raise WrongChain(_reason(results[0]).replace(folder + os.sep, ""))
    for result in results:
        if result.returncode not in (0, 1, 2):  # such as 127, libraries that are missing
            raise Trouble(_reason(result))


def checksum(path: str) -> int:
    value = 0
    with open(path, "rb", buffering=0) as file:
        while piece := file.read(1 << 20):
            value = crc32(piece, value)
    return value


# Bytes of a frame of so many pixels, in quarters of a pixel's luma, by the beginning of its tag.
_Y4M_QUARTERS = {"420": 6, "411": 6, "422": 8, "444alpha": 16, "444": 12, "mono": 4}


def frames_of(path: str) -> int:
    """The frames of a Y4M file; 1 for any other. For the display alone.

    >>> with tempfile.TemporaryDirectory() as folder:
    ...     clip = Path(folder, "clip.y4m")
    ...     _ = clip.write_bytes(b"YUV4MPEG2 W3 H2 C444\\n" + 5 * (b"FRAME\\n" + bytes(18)))
    ...     frames_of(str(clip))
    5
    """
    with open(path, "rb") as file:
        header = file.readline(1000)
        match = re.match(rb"YUV4MPEG2 (?=.*\bW(\d+))(?=.*\bH(\d+))", header)
        if not match:
            return 1
        tag = re.search(rb" C(\w+)", header)
        size = os.fstat(file.fileno()).st_size - len(header)
    name = tag[1].decode() if tag else "420"
    quarters = next((q for start, q in _Y4M_QUARTERS.items() if name.startswith(start)), 6)
    width, height = int(match[1]), int(match[2])
    if quarters < 8 and name != "mono":  # chroma planes are rounded up
        width, height = width + width % 2, height + height % 2
    return max(1, round(size / (width * height * quarters / 4 + 6)))


def work(task: Task) -> Union[Done, Failed]:
    """Makes one output. It has its name when it is complete; otherwise nothing is left."""
    try:
        return _work(task)
    except Unfit as unfit:
        return Failed(str(unfit), UNFIT)
    except Trouble as trouble:
        return Failed(str(trouble), ELSEWHERE)
    except OSError as error:
        return Failed(_files.reason(error), ELSEWHERE)


def _stamp(name: str) -> _files.Stamp:
    found = _files.stamp(name)
    if found is None:
        raise Trouble(f"{name}: no such file")
    return found


def _work(task: Task) -> Union[Done, Failed]:
    with contextlib.ExitStack() as stack:
        before = _stamp(task.source)
        scratch = task.parts
        if not task.parts or _files.is_remote(task.source):
            scratch = stack.enter_context(tempfile.TemporaryDirectory(prefix="qvbatch-"))
        source = task.source
        if _files.is_remote(source):
            source = os.path.join(scratch, "source" + os.path.splitext(source)[1])
            _files.fetch(task.source, source)
        if task.parts and not os.path.isdir(task.parts):
            raise Trouble(f"{task.parts}: no such folder; is it on shared storage?")
        part = os.path.join(task.parts or scratch,
                            uuid.uuid4().hex + os.path.splitext(task.target)[1])
        stack.callback(_files.remove, part)
        result = _run(task.command, source, part, task.cwd)
        if result.returncode < 0:
            raise Trouble(f"qvtool has ended: {signal.strsignal(-result.returncode)}")
        if result.returncode:
            reason = _reason(result)
            return Failed(reason.replace(source, task.source).replace(part, task.target),
                          NEVER if result.returncode in (1, 2) else ELSEWHERE)
        if _stamp(task.source) != before:
            raise Trouble(f"{task.source}: has changed while it was read")
        value, frames = checksum(part), frames_of(part)
        if task.parts:
            os.makedirs(os.path.dirname(task.target), exist_ok=True)
            os.replace(part, task.target)
        else:
            _files.send(part, task.target)
    return Done(before, _stamp(task.target), value, frames)
