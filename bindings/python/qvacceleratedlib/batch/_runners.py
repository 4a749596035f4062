"""Who does the work: threads of this process that wait for qvtool, or the workers of a cluster."""
from __future__ import annotations

import collections
import contextlib
import importlib
import itertools
import concurrent.futures
import logging
import pickle
import queue
import re
import socket
import threading
import time
import uuid
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


_TOPIC = "qvbatch"


def _check_on_worker(command: Sequence[str], extensions: List[str], cwd: str) -> None:
    from distributed import get_worker
    try:
        _work.check(command, extensions, cwd)
    except _work.Trouble as trouble:
        raise _work.Trouble(f"{get_worker().address}: {trouble}") from None


def _work_on_worker(run: str, number: int, task: Task) -> None:
    """The result goes with the messages of the connection that is there. Were it returned, the
    client would ask the worker for it, and wait for a dead one till that connection times out."""
    from distributed import get_worker
    result = pickle.dumps(_work.work(task))
    get_worker().log_event(_TOPIC, {"run": run, "number": number, "result": result})


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
        self._dask = distributed
        self._run = uuid.uuid4().hex
        self._numbers = itertools.count()
        self._tasks: Dict[int, Task] = {}
        self._events: "queue.SimpleQueue[Dict[str, Any]]" = queue.SimpleQueue()
        self._results: Deque[Finished] = collections.deque()
        self._connect("does not answer", False)

    def _connect(self, absent: str, told: bool) -> None:
        """Waits until the scheduler listens, which Dask does with ever longer pauses."""
        host, port = re.sub(r"^\w+://", "", self._address).rsplit(":", 1)
        end = time.monotonic() + self._patience
        while True:
            try:
                socket.create_connection((host.strip("[]"), int(port)), 2).close()
                self._client: Any = self._dask.Client(
                    self._address, timeout=min(30, self._patience), set_as_default=False)
                break
            except (OSError, ValueError, OverflowError) as error:
                if time.monotonic() > end or not isinstance(error, OSError):
                    raise Gone(f"{self._address} {absent}: {error}") from None
            if not told:
                self._say(f"{self._address} {absent}; waiting {self._patience:g} s")
                told = True
            time.sleep(0.2)
        self._completed: Any = self._dask.as_completed(loop=self._client.loop)
        self._futures: Dict[Any, int] = {}
        self._client.subscribe_topic(_TOPIC, lambda event: self._events.put(event[1]))
        self._alone_since: Optional[float] = None
        self._workers: Dict[str, Any] = self._client.scheduler_info().get("workers", {})
        threading.Thread(target=self._watch, args=[self._client], daemon=True).start()

    def _watch(self, client: Any) -> None:
        """Keeps _workers up to date; an answer may take as long as a connection."""
        while client is self._client and client.status == "running":
            with contextlib.suppress(Exception):  # of a connection that ends
                workers = client.scheduler_info().get("workers", {})
                if client is self._client:
                    self._workers = workers
            time.sleep(1)

    def _reconnect(self) -> None:
        self._say(f"{self._address} is away; waiting {self._patience:g} s")
        self._close()
        self._connect("is away", True)
        self._say(f"{self._address} is back")
        tasks = list(self._tasks.values())
        self._tasks.clear()
        for task in tasks:
            self.submit(task)

    @property
    def window(self) -> int:  # type: ignore[override]
        threads: int = sum(worker["nthreads"] for worker in self._workers.values())
        return max(64, 4 * threads)

    def check(self, command: Sequence[str], extensions: List[str], cwd: str) -> None:
        client: Any = None
        future: Any = None
        while future is None or not future.done() or future.status == "cancelled":
            if client is not self._client or future.status == "cancelled":
                client = self._client
                future = client.submit(_check_on_worker, command, extensions, cwd, pure=False)
            self._look()
            time.sleep(0.01)
        error = future.exception() if future.status == "error" else None
        if isinstance(error, (_work.WrongChain, _work.Trouble)):
            raise error
        if error is not None:  # such as that of a worker that lacks this package
            raise Gone(f"a worker of {self._address}: {type(error).__name__}: {error}")

    def submit(self, task: Task, avoid: str = "") -> None:
        others = [address for address in self._workers if address != avoid]
        where = dict(workers=others, allow_other_workers=True) if avoid and others else {}
        number = next(self._numbers)
        future = self._client.submit(_work_on_worker, self._run, number, task, pure=False, **where)
        self._tasks[number] = task
        self._futures[future] = number
        self._completed.add(future)

    def next(self) -> Finished:
        while not self._results:
            self._look()
            # Events of these are in the queue by now.
            finished = self._completed.next_batch(block=False)
            with contextlib.suppress(queue.Empty):
                self._take(self._events.get(timeout=0 if finished else 0.01))
                while True:
                    self._take(self._events.get_nowait())
            for future in finished:
                self._settle(future)
        return self._results.popleft()

    def _take(self, event: Dict[str, Any]) -> None:
        if event["run"] != self._run or event["number"] not in self._tasks:
            return  # another client's, or of a file that was worked on twice
        result: Result = pickle.loads(event["result"])
        if isinstance(result, Failed):
            result = result._replace(worker=event["worker"])
        self._results.append((self._tasks.pop(event["number"]), result))

    def _settle(self, future: Any) -> None:
        number = self._futures.pop(future, None)
        if number not in self._tasks:
            return
        if future.status == "error":
            self._results.append((self._tasks.pop(number), self._failed(future.exception())))
        elif future.status == "finished":
            failed = Failed("what became of it has been lost", ELSEWHERE)
            self._results.append((self._tasks.pop(number), failed))
        elif future.status == "cancelled":  # by a scheduler that has not heard of it
            self._reconnect()
        else:
            self._futures[future] = number
            self._completed.add(future)

    def _failed(self, error: BaseException) -> Failed:
        if isinstance(error, self._dask.scheduler.KilledWorker):
            return Failed("every worker that had it has died", ALONE)
        return Failed(f"{type(error).__name__}: {error}".splitlines()[0], ELSEWHERE)

    def _look(self) -> None:
        """Waits for the scheduler, and raises Gone where it or all workers are away too long."""
        if self._client.status != "running":
            self._reconnect()
        now = time.monotonic()
        if self._workers:
            self._alone_since = None
        elif self._alone_since is None:
            self._alone_since = now
            self._say(f"{self._address} has no worker; waiting {self._patience:g} s")
        elif now > self._alone_since + self._patience:
            raise Gone(f"{self._address} has had no worker for {self._patience:g} s")

    def _close(self) -> None:
        with contextlib.suppress(OSError, RuntimeError, concurrent.futures.TimeoutError):
            self._client.close(timeout=2)

    def stop(self) -> None:
        with contextlib.suppress(OSError, RuntimeError, concurrent.futures.TimeoutError):
            if self._client.status == "running":
                self._client.cancel(list(self._futures))
        self._close()
