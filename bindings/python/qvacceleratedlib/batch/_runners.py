"""Who does the work: threads of this process that wait for qvtool, or the workers of a cluster."""
from __future__ import annotations

import collections
import contextlib
import importlib
import concurrent.futures
import logging
import queue
import threading
import time
from typing import Any, Callable, Deque, Dict, Iterator, List, Optional, Sequence, Tuple, Union

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


def _check_on_worker(command: Sequence[str], extensions: List[str], cwd: str) -> None:
    from distributed import get_worker
    try:
        _work.check(command, extensions, cwd)
    except _work.Trouble as trouble:
        raise _work.Trouble(f"{get_worker().address}: {trouble}") from None


def _work_on_worker(task: Task) -> Result:
    from distributed import get_worker
    result = _work.work(task)
    if isinstance(result, Failed):
        return result._replace(worker=get_worker().address)
    return result


class Cluster(Runner):
    """A Dask cluster. While its scheduler is away, or has no worker, `patience` seconds are waited;
    what a scheduler has forgotten is given to the next one."""

    def __init__(self, address: str, patience: float, say: Callable[[str], None]) -> None:
        try:
            distributed: Any = importlib.import_module("distributed")
        except ImportError:
            raise Gone("--scheduler needs Dask (Debian: python3-distributed)") from None
        for name in ("distributed", "distributed.client", "asyncio"):
            logging.getLogger(name).setLevel(logging.CRITICAL)  # what matters is said here
        self._address, self._patience, self._say = address, patience, say
        self._exhausted = distributed.scheduler.KilledWorker
        late = threading.Timer(3, say, [f"{address} does not answer; waiting {patience:g} s"])
        late.start()
        try:
            self._client: Any = distributed.Client(address, timeout=patience, set_as_default=False)
        except (OSError, ValueError) as error:
            raise Gone(f"{address}: {error}") from None
        finally:
            late.cancel()
        self._completed: Any = distributed.as_completed(loop=self._client.loop)
        self._gatherer = concurrent.futures.ThreadPoolExecutor(1)
        self._tasks: Dict[Any, Task] = {}
        self._results: Deque[Finished] = collections.deque()
        self._alone_since: Optional[float] = None
        self._workers: Dict[str, Any] = {}
        self._looked = 0.0
        self._look()

    @property
    def window(self) -> int:  # type: ignore[override]
        threads: int = sum(worker["nthreads"] for worker in self._workers.values())
        return max(64, 4 * threads)

    def check(self, command: Sequence[str], extensions: List[str], cwd: str) -> None:
        future = self._client.submit(_check_on_worker, command, extensions, cwd, pure=False)
        self._completed.add(future)
        while not self._completed.has_ready():
            self._look()
            time.sleep(0.01)
        next(self._completed)
        try:
            future.result(self._patience)
        except (_work.WrongChain, _work.Trouble):
            raise
        except Exception as error:  # such as a worker that lacks this package
            raise Gone(f"a worker of {self._address}: {type(error).__name__}: {error}") from None

    def submit(self, task: Task, avoid: str = "") -> None:
        others = [address for address in self._workers if address != avoid]
        where = dict(workers=others, allow_other_workers=True) if avoid and others else {}
        future = self._client.submit(_work_on_worker, task, pure=False, **where)
        self._tasks[future] = task
        self._completed.add(future)

    def next(self) -> Finished:
        while not self._results:
            self._look()
            if self._completed.has_ready():
                self._sort(self._completed.next_batch(block=False))
            else:
                time.sleep(0.01)
        return self._results.popleft()

    def _sort(self, futures: List[Any]) -> None:
        finished, lost = [], []
        for future in futures:
            if future.status == "finished":
                finished.append(future)
            elif future.status == "error":
                self._results.append((self._tasks.pop(future), self._failed(future.exception())))
            else:
                lost.append(future)
        try:
            for future, result in zip(finished, self._gather(finished)):
                self._results.append((self._tasks.pop(future), result))
        except Exception as error:  # of a connection that ends, or of what came over it
            if self._client.status != "running":
                lost += finished
            else:
                self._results.extend((self._tasks.pop(future), self._failed(error))
                                     for future in finished)
        for future in lost:
            self._look()
            self.submit(self._tasks.pop(future))

    def _failed(self, error: BaseException) -> Failed:
        if isinstance(error, self._exhausted):
            return Failed("every worker that had it has died", ALONE)
        return Failed(f"{type(error).__name__}: {error}".splitlines()[0], ELSEWHERE)

    def _gather(self, futures: List[Any]) -> List[Result]:
        """Their results. A worker may have died with some, so that they are made again."""
        gathering: "concurrent.futures.Future[List[Result]]" = (
            self._gatherer.submit(self._client.gather, futures))
        while True:
            try:
                return gathering.result(0.5)
            except concurrent.futures.TimeoutError:
                if gathering.done():
                    raise
                self._look()

    def _look(self) -> None:
        """Waits for the scheduler, and raises Gone where it or all workers are away too long."""
        if self._client.status != "running":
            self._say(f"{self._address} is away; waiting {self._patience:g} s")
            while self._client.status in ("connecting", "newly-created"):
                time.sleep(0.1)
            if self._client.status != "running":
                raise Gone(f"{self._address} has been away for {self._patience:g} s")
            self._say(f"{self._address} is back")
        now = time.monotonic()
        if now < self._looked + 1:
            return
        self._looked = now
        self._workers = self._client.scheduler_info().get("workers", {})
        if self._workers:
            self._alone_since = None
        elif self._alone_since is None:
            self._alone_since = now
            self._say(f"{self._address} has no worker; waiting {self._patience:g} s")
        elif now > self._alone_since + self._patience:
            raise Gone(f"{self._address} has had no worker for {self._patience:g} s")

    def stop(self) -> None:
        self._gatherer.shutdown(wait=False, cancel_futures=True)
        with contextlib.suppress(OSError, RuntimeError, concurrent.futures.TimeoutError):
            if self._client.status == "running":
                self._client.cancel(list(self._tasks))
            self._client.close(timeout=2)
