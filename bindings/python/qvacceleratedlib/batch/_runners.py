"""Who does the work; here, threads of this process that wait for qvtool."""
from __future__ import annotations

import concurrent.futures
import queue
from typing import Dict, Iterator, List, Sequence, Tuple, Union

from . import _work
from ._work import ALONE, ELSEWHERE, Done, Failed, Task

# How often a file is tried where it was the machine that failed. Of workers that die, the
# scheduler keeps count (distributed.scheduler.allowed-failures).
TRIES = 3

Result = Union[Done, Failed]
Finished = Tuple[Task, Result]


class Gone(Exception):
    """There is nobody to do the work."""


class Runner:
    """At most `window` tasks are under way at a time, whatever there is to do."""

    window: int

    def check(self, command: Sequence[str], extensions: List[str], cwd: str) -> None:
        raise NotImplementedError

    def submit(self, task: Task, avoid: str = "") -> None:
        raise NotImplementedError

    def next(self) -> Finished:
        """Waits for one that has finished."""
        raise NotImplementedError

    def stop(self) -> None:
        """Drops what is under way."""
        raise NotImplementedError

    def rest(self) -> Iterator[Finished]:
        """After stop(): what had finished by then."""
        raise NotImplementedError

    def run(self, tasks: Iterator[Task]) -> Iterator[Finished]:
        """What became of each task, in the order in which they finish."""
        tried: Dict[Task, int] = {}
        suspects: List[Task] = []
        more = True
        while True:
            while more and len(tried) < self.window:
                task = next(tasks, None)
                more = task is not None
                if task is not None:
                    tried[task] = 1
                    self.submit(task)
            alone = not tried
            if alone:
                if not suspects:
                    return
                tried[suspects[0]] = TRIES
                self.submit(suspects.pop(0))
            task, result = self.next()
            failed = result if isinstance(result, Failed) else None
            if failed and failed.again == ELSEWHERE and tried[task] < TRIES:
                tried[task] += 1
                self.submit(task, failed.worker)
                continue
            del tried[task]
            if failed and failed.again == ALONE and not alone:
                suspects.append(task)
                continue
            yield task, result


class Local(Runner):
    def __init__(self, jobs: int) -> None:
        self.window = 2 * jobs
        self._pool = concurrent.futures.ThreadPoolExecutor(jobs)
        self._finished: "queue.SimpleQueue[Tuple[Task, concurrent.futures.Future[Result]]]" = (
            queue.SimpleQueue())

    def check(self, command: Sequence[str], extensions: List[str], cwd: str) -> None:
        _work.check(command, extensions, cwd)

    def submit(self, task: Task, avoid: str = "") -> None:
        self._pool.submit(_work.work, task).add_done_callback(
            lambda future: self._finished.put((task, future)))

    def next(self) -> Finished:
        task, future = self._finished.get()
        return task, future.result()

    def stop(self) -> None:
        self._pool.shutdown(wait=False, cancel_futures=True)
        _work.stop()
        self._pool.shutdown()

    def rest(self) -> Iterator[Finished]:
        while not self._finished.empty():
            task, future = self._finished.get()
            if not future.cancelled():
                yield task, future.result()
