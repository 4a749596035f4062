"""The command line of qvacceleratedlib.batch."""
from __future__ import annotations

import argparse
import contextlib
import os
import re
import shlex
import shutil
import signal
import sys
import tempfile
import time
import uuid
from typing import Any, Dict, Iterator, List, NoReturn, Optional, Sequence, Tuple

from . import _files, _lock
from ._cluster import Cluster
from ._manifest import Manifest
from ._runners import Gone, Local, Runner
from ._work import Done, Task, Trouble, WrongChain

DONE, FAILED, USAGE, INTERRUPTED = 0, 1, 2, 130
_PARTS = ".qvbatch"  # below the folder of the outputs, as long as a run goes on


class NoBar:
    """Nothing to look at where tqdm is missing."""

    def __init__(self, **_: Any) -> None:
        pass

    def update(self) -> None:
        pass

    def set_postfix_str(self, text: str, refresh: bool) -> None:
        pass

    def close(self) -> None:
        pass

    @staticmethod
    def write(text: str, file: Any) -> None:
        print(text, file=file)


Bar: Any = NoBar
with contextlib.suppress(ImportError):
    from tqdm import tqdm as Bar  # type: ignore[import,no-redef]


class Usage(Exception):
    """Arguments that are wrong."""


class Parser(argparse.ArgumentParser):
    def error(self, message: str) -> NoReturn:
        raise Usage(message)


def _say(text: str) -> None:
    line = "".join(c if c.isprintable() else c.encode("unicode_escape").decode() for c in text)
    Bar.write("qvbatch: " + line, file=sys.stderr)


def _parse(arguments: Optional[Sequence[str]]) -> argparse.Namespace:
    parser = Parser(
        prog="python3 -m qvacceleratedlib.batch",
        description="Runs a chain of qvtool over many files, on the processors of this machine or "
        "on a Dask cluster. What is done already is left alone; exit code 0: all is done, 1: "
        "something failed, 2: wrong arguments.")
    parser.add_argument("chain", metavar="CHAIN", help="the steps of `qvtool run`: "
                        "\"deinterlace; resize --to 1280x720\"")
    parser.add_argument("inputs", metavar="INPUT", nargs="*",
                        help="a path, or an address of fsspec, perhaps with wildcards")
    parser.add_argument("--from", dest="list", metavar="FILE",
                        help="a file with further inputs, one a line; - for standard input")
    parser.add_argument("--out", required=True, metavar="FOLDER",
                        help="a path or an address for the outputs, and a manifest of them")
    parser.add_argument("--options", default="", metavar="WORDS", help="of `qvtool run` beside its "
                        "steps: --options=\"--layout nv12 --size 1920x1080\"")
    parser.add_argument("--base", metavar="FOLDER",
                        help="outputs keep the folders that their inputs have below this one")
    parser.add_argument("--extension", metavar=".EXT",
                        help="of the outputs, which says their format (that of the input)")
    parser.add_argument("--jobs", type=int, metavar="N", help="files at a time on this machine "
                        "(one for each processor)")
    parser.add_argument("--scheduler", metavar="ADDRESS",
                        help="of a Dask cluster, such as tcp://host:8786")
    parser.add_argument("--patience", type=float, default=300, metavar="SECONDS",
                        help="how long an absent scheduler or worker is waited for (300)")
    options = parser.parse_intermixed_args(arguments)
    if options.jobs is not None and options.jobs < 1:
        raise Usage(f"--jobs: {options.jobs} given; wanted is 1 or more")
    if options.scheduler is not None:
        found = re.fullmatch(r"((tcp|tls)://)?[^/]+:(\d{1,5})", options.scheduler)
        if not found or not 0 < int(found[3]) < 65536:
            raise Usage(f"--scheduler: {options.scheduler} given; wanted is such as "
                        "tcp://host:8786")
    if not options.out:
        raise Usage("--out: no folder given")
    if not 0 < options.patience < 1e9:
        raise Usage(f"--patience: {options.patience} given; wanted is a number of seconds")
    if options.extension and not options.extension.startswith("."):
        options.extension = "." + options.extension
    return options


def _sources(options: argparse.Namespace) -> List[str]:
    names = list(options.inputs)
    if options.list:
        try:
            with contextlib.ExitStack() as stack:
                file = sys.stdin if options.list == "-" else stack.enter_context(
                    open(options.list, errors="surrogateescape"))
                names += [line.rstrip("\n") for line in file if line.strip()]
        except OSError as error:
            raise Usage(f"--from: {options.list}: {error.strerror}") from None
    sources = [_files.absolute(found) for name in names for found in _files.expand(name)]
    if not sources:
        raise Usage("there is no input")
    return sources


def _name(source: str, base: Optional[str], extension: Optional[str]) -> str:
    """The output's name below the folder."""
    name = os.path.basename(source)
    if base:
        start = _files.absolute(base).rstrip("/") + "/"
        if not source.startswith(start):
            raise Usage(f"{source}: is not below --base {base}")
        name = source[len(start):]
    if not name or ("." not in name and os.path.isdir(source)):
        raise Usage(f"{source}: is a folder; wanted are files")
    return os.path.splitext(name)[0] + extension if extension else name


def _tasks(options: argparse.Namespace) -> List[Task]:
    folder = _files.absolute(options.out)
    sources = _sources(options)
    try:
        command = ("run", *shlex.split(options.options), options.chain)
    except ValueError as error:
        raise Usage(f"--options: {error}") from None
    own = set(sources)
    tasks: Dict[str, Task] = {}
    for source in sources:
        name = _name(source, options.base, options.extension)
        target = _files.join(folder, name)
        if name in tasks:
            if tasks[name].source == source:
                continue
            raise Usage(f"{source} and {tasks[name].source} would both become {target}; "
                        "see --base")
        if target in own:
            raise Usage(f"{target}: is an input, which its output would replace")
        tasks[name] = Task(name, source, target, command, os.getcwd())
    return list(tasks.values())


@contextlib.contextmanager
def _hold(out: str) -> Iterator[Tuple[_lock.Lock, str, str]]:
    """The lock of the folder of the outputs; a folder for what is not complete, on their file
    system if that has a path; and what workers are told of it. Without it their unfinished outputs
    go nowhere, so it ends with us."""
    target = _files.absolute(out)
    if _files.is_remote(target):
        with tempfile.TemporaryDirectory(prefix="qvbatch-") as folder:
            with _lock.of_address(target, folder, _say) as lock:
                yield lock, folder, ""
        return
    top = os.path.join(target, _PARTS)
    os.makedirs(top, exist_ok=True)
    with _lock.of_path(out, top) as lock:
        for name in os.listdir(top):  # of runs that could not clear up
            shutil.rmtree(os.path.join(top, name), ignore_errors=True)
        folder = os.path.join(top, uuid.uuid4().hex)
        os.mkdir(folder)
        try:
            yield lock, folder, folder
        finally:
            shutil.rmtree(top, ignore_errors=True)


class Batch:
    """One run, and what has become of it."""

    def __init__(self, tasks: List[Task], manifest: Manifest, lock: _lock.Lock,
                 parts: str) -> None:
        self._tasks, self._manifest, self._lock, self._parts = tasks, manifest, lock, parts
        self._failures: List[Tuple[Task, str]] = []
        self._made = self._skipped = self._frames = 0
        self._start = time.monotonic()
        self._bar = Bar(total=len(tasks), unit="file", disable=None, file=sys.stderr,
                        dynamic_ncols=True)

    def _to_do(self) -> Iterator[Task]:
        for task in self._tasks:
            try:
                source = _files.stamp(task.source)
                if source is None:
                    raise OSError("no such file")
                if not self._manifest.has(task, source):
                    yield task._replace(parts=self._parts)
                    continue
                self._skipped += 1
            except OSError as error:
                self._failures.append((task, _files.reason(error)))
            self._bar.update()

    def run(self, runner: Runner) -> None:
        for task, result in runner.run(self._to_do()):
            self._lock.check()
            if isinstance(result, Done):
                self._add(task, result)
            else:
                self._failures.append((task, result.reason))
            self._bar.set_postfix_str(
                f"{self._frames / (time.monotonic() - self._start):.0f} frames/s", refresh=False)
            self._bar.update()

    def _add(self, task: Task, done: Done) -> None:
        self._manifest.add(task, done)
        self._made += 1
        self._frames += done.frames

    def end(self, runner: Runner) -> None:
        """Ends what is under way, if anything is, and adds what was finished by then."""
        runner.stop()
        for task, result in runner.rest():
            if isinstance(result, Done):
                self._add(task, result)

    def report(self) -> int:
        self._bar.close()
        self._manifest.save()
        seconds = max(time.monotonic() - self._start, 1e-3)
        for task, reason in self._failures:
            _say(reason if task.source in reason else f"{task.source}: {reason}")
        files, frames = (f"{count / seconds:.{1 if count < 10 * seconds else 0}f}"
                         for count in (self._made, self._frames))
        _say(f"{self._made} of {len(self._tasks)} files in {seconds:.1f} s, {files} files and "
             f"{frames} frames a second; {self._skipped} were done already, "
             f"{len(self._failures)} failed")
        return FAILED if self._made + self._skipped < len(self._tasks) else DONE


def _runner(options: argparse.Namespace) -> Runner:
    if options.scheduler:
        return Cluster(options.scheduler, options.patience, _say)
    affinity = getattr(os, "sched_getaffinity", None)
    return Local(options.jobs or (len(affinity(0)) if affinity else os.cpu_count() or 1))


def _work_on(runner: Runner, tasks: List[Task], out: str) -> int:
    with _hold(out) as (lock, scratch, parts):
        batch = Batch(tasks, Manifest(_files.absolute(out), scratch), lock, parts)
        why, code = "", FAILED
        try:
            batch.run(runner)
        except KeyboardInterrupt:
            why, code = "interrupted", INTERRUPTED
        except (Gone, _lock.Busy) as error:
            why = str(error)
        finally:
            batch.end(runner)
        failed = batch.report()
        if why:
            _say(f"{why}; the same command goes on with the rest")
        return code if why else failed


def _run(options: argparse.Namespace) -> int:
    tasks = _tasks(options)
    runner = _runner(options)
    try:
        runner.check(tasks[0].command, sorted({os.path.splitext(task.name)[1] for task in tasks}),
                     os.getcwd())
        return _work_on(runner, tasks, options.out)
    finally:
        runner.stop()


def main(arguments: Optional[Sequence[str]] = None) -> int:
    try:
        return _run(_parse(arguments))
    except (Usage, WrongChain) as wrong:
        _say(f"{wrong} (see --help)")
        return USAGE
    except OSError as error:
        _say(_files.reason(error))
        return FAILED
    except (Gone, _lock.Busy, Trouble, ValueError) as error:
        _say(str(error))
        return FAILED
    except KeyboardInterrupt:
        return INTERRUPTED


def _interrupt(*_: Any) -> NoReturn:
    raise KeyboardInterrupt


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, _interrupt)
    sys.exit(main())
