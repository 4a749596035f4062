"""What is done: a file beside the outputs, a line of JSON for each."""
from __future__ import annotations

import json
import time
from typing import Dict, NamedTuple, Optional, Tuple

from . import _files
from ._work import Done, Task, checksum

NAME = "qvbatch.manifest"
_HEADER = {"qvbatch": 1, "columns": ["output", "qvtool", "source", "source size and time",
                                     "output size and time", "output CRC-32"]}


class Entry(NamedTuple):
    command: Tuple[str, ...]
    source: str
    source_stamp: _files.Stamp
    stamp: _files.Stamp
    checksum: int


class Manifest:
    """Errors: OSError, or ValueError for a file that is no manifest."""

    def __init__(self, folder: str, scratch: str) -> None:
        self._address = _files.join(folder, NAME)
        self._scratch = scratch
        self._entries: Dict[str, Entry] = {}
        self._changed = False
        self._wait = 2.0
        self._next = time.monotonic() + self._wait
        content = _files.read(self._address)
        if content is not None:
            self._load(content)

    def _load(self, content: bytes) -> None:
        try:
            header, *lines = content.decode().splitlines()
            if json.loads(header)["qvbatch"] != 1:
                raise ValueError
            for line in lines:
                name, command, source, source_stamp, stamp, check = json.loads(line)
                self._entries[name] = Entry(
                    tuple(command), source, (source_stamp[0], source_stamp[1]),
                    (stamp[0], stamp[1]), int(check, 16))
        except (ValueError, KeyError, TypeError):
            raise ValueError(f"{self._address}: is no manifest of this version; without it, "
                             "everything is done again") from None

    def has(self, task: Task, source: Optional[_files.Stamp]) -> bool:
        """Whether the output is there as it was made from this source by this command. Where its
        time alone differs, as in a folder that has been copied, the checksum decides."""
        entry = self._entries.get(task.name)
        if entry is None or entry[:3] != (task.command, task.source, source):
            return False
        found = _files.stamp(task.target)
        if found is None or found[0] != entry.stamp[0]:
            return False
        if found != entry.stamp:
            if _files.is_remote(task.target) or checksum(task.target) != entry.checksum:
                return False
            self._entries[task.name] = entry._replace(stamp=found)
            self._changed = True
        return True

    def add(self, task: Task, done: Done) -> None:
        self._entries[task.name] = Entry(task.command, task.source, done.source, done.target,
                                         done.checksum)
        self._changed = True
        if time.monotonic() > self._next:
            self.save()

    def save(self) -> None:
        """Writes the file if something is new. add() does so too, a twentieth of the time."""
        if not self._changed:
            return
        start = time.monotonic()
        lines = [json.dumps(_HEADER)]
        lines += [json.dumps((name, *entry[:4], f"{entry.checksum:08x}"))
                  for name, entry in self._entries.items()]
        _files.write(self._address, "".join(line + "\n" for line in lines).encode(), self._scratch)
        self._changed = False
        end = time.monotonic()
        self._next = end + max(self._wait, 20 * (end - start))
