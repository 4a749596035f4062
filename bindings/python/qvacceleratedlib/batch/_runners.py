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
from typing import (AbstractSet, Any, Callable, Deque, Dict, Iterator, List, NamedTuple,
                    Optional, Sequence, Tuple, Union)

from . import _work
from ._work import ALONE, ELSEWHERE, UNFIT, Done, Failed, Task

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
_ALL_DIED = "every worker that had it has died"


def _work_on_worker(run: str, number: int, task: Task) -> None:
    """The result goes with the messages of the connection that is there. Were it returned, the
    client would ask the worker for it, and wait for a dead one till that connection times out."""
    from distributed import get_worker
    result = pickle.dumps(_work.work(task))
    get_worker().log_event(_TOPIC, {"run": run, "number": number, "result": result})


class _Given(NamedTuple):
    """A task that is under way; where it may go to, if not anywhere; how often all workers that it
    might go to have gone."""

    task: Task
    where: Optional[AbstractSet[str]]
    lost: int


class Cluster(Runner):
    """A Dask cluster. While its scheduler is away, or has no worker, `patience` seconds are waited;
    what a scheduler has forgotten is given to the next one. Every worker is asked once whether it
    can do the work, and gets none if it cannot."""

    def __init__(self, address: str, patience: float, say: Callable[[str], None]) -> None:
        try:
            distributed: Any = importlib.import_module("distributed")
        except ImportError:
            raise Gone("--scheduler needs Dask (Debian: python3-distributed)") from None
        for name in ("distributed", "distributed.client", "asyncio"):
            logging.getLogger(name).setLevel(logging.CRITICAL)  # what matters is said here
        settings = distributed.Security().get_connection_args("client")
        if address.startswith("tls:") and settings["ssl_context"] is None:
            raise Gone(f"{address}: needs certificates in distributed.comm.tls of Dask's settings")
        self._address, self._patience, self._say = address, patience, say
        self._dask = distributed
        self._run = uuid.uuid4().hex
        self._numbers = itertools.count()
        self._tasks: Dict[int, _Given] = {}
        self._events: "queue.SimpleQueue[Dict[str, Any]]" = queue.SimpleQueue()
        self._results: Deque[Finished] = collections.deque()
        self._wanted: Tuple[Any, ...] = ()  # of check()
        self._fit = False  # whether a worker has been found that can do the work
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
            except OSError as error:
                why = error.strerror or str(error)
                if time.monotonic() > end:
                    raise Gone(f"{self._address} {absent}: {why}") from None
            if not told:
                self._say(f"{self._address} {absent} ({why}); waiting {self._patience:g} s")
                told = True
            time.sleep(0.2)
        self._completed: Any = self._dask.as_completed(loop=self._client.loop)
        self._futures: Dict[Any, int] = {}
        self._client.subscribe_topic(_TOPIC, lambda event: self._events.put(event[1]))
        self._alone_since: Optional[float] = None
        self._checks: Dict[str, Any] = {}
        self._unfit: Dict[str, str] = {}  # why, by worker
        self._known: AbstractSet[str] = set()  # the others, when tasks were last looked through
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
        tasks = [given.task for given in self._tasks.values()]
        self._tasks.clear()
        for task in tasks:
            self.submit(task)

    @property
    def window(self) -> int:  # type: ignore[override]
        threads: int = sum(worker["nthreads"] for worker in self._workers.values())
        return max(64, 4 * threads)

    def check(self, command: Sequence[str], extensions: List[str], cwd: str) -> None:
        self._wanted = command, extensions, cwd
        while not self._fit:
            self._look()
            time.sleep(0.01)

    def _ask(self) -> None:
        """Asks new workers whether they can do the work, and hears what others have answered."""
        workers = self._workers
        for address in self._checks.keys() - workers.keys():
            del self._checks[address]
            self._unfit.pop(address, None)
        for address in workers.keys() - self._checks.keys():
            self._checks[address] = self._client.submit(
                _work.check, *self._wanted, workers=[address], pure=False)
        for address, future in list(self._checks.items()):
            if future is None or not future.done():
                continue
            error = future.exception() if future.status == "error" else None
            if isinstance(error, _work.WrongChain):
                raise error
            if future.status == "cancelled":  # by a scheduler that has not heard of it
                del self._checks[address]
                continue
            self._checks[address] = None
            if error is None:
                self._found_fit()
            elif isinstance(error, _work.Trouble):
                self._refuse(address, str(error))
            else:  # such as that of a worker that lacks this package
                self._refuse(address, f"{type(error).__name__}: {error}")

    def _found_fit(self) -> None:
        if not self._fit:
            self._fit = True
            for address in self._unfit:
                self._tell_unfit(address)

    def _refuse(self, address: str, reason: str) -> None:
        if address not in self._unfit:
            self._unfit[address] = reason
            if self._fit:
                self._tell_unfit(address)

    def _tell_unfit(self, address: str) -> None:
        self._say(f"{address}: {self._unfit[address]}; its files go to other workers")

    def _usable(self) -> AbstractSet[str]:
        return self._workers.keys() - self._unfit.keys()

    def submit(self, task: Task, avoid: str = "", lost: int = 0) -> None:
        usable = self._usable()
        where: Optional[AbstractSet[str]] = (usable - {avoid}) or usable
        if where is not None and len(where) == len(self._workers):
            where = None
        number = next(self._numbers)
        self._tasks[number] = _Given(task, where, lost)
        if where is None or where:  # else it waits for one, see _submit_lost()
            # A worker that is not among them does not even steal it, as one that fails fast would.
            future = self._client.submit(_work_on_worker, self._run, number, task, pure=False,
                                         workers=where and list(where))
            self._futures[future] = number
            self._completed.add(future)

    def _submit_lost(self, usable: AbstractSet[str]) -> None:
        """What might go to workers that are gone, or to none, goes to those that are there."""
        lost = {number: given for number, given in self._tasks.items()
                if given.where is not None and not given.where & usable}
        self._client.cancel([future for future, number in self._futures.items() if number in lost])
        for number, given in lost.items():
            if given.lost == TRIES:
                self._finish(number, Failed(_ALL_DIED, ALONE))
            else:
                del self._tasks[number]
                self.submit(given.task, lost=given.lost + bool(given.where))

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
        self._finish(event["number"], result)

    def _finish(self, number: int, result: Result) -> None:
        task = self._tasks.pop(number).task
        if isinstance(result, Failed) and result.again == UNFIT:
            if result.worker:
                self._refuse(result.worker, result.reason)
            self.submit(task)
        else:
            self._results.append((task, result))

    def _settle(self, future: Any) -> None:
        number = self._futures.pop(future, None)
        if number not in self._tasks:
            return
        if future.status == "error":
            self._finish(number, self._failed(future.exception()))
        elif future.status == "finished":
            self._finish(number, Failed("what became of it has been lost", ELSEWHERE))
        elif future.status == "cancelled":  # by a scheduler that has not heard of it
            self._reconnect()
        else:
            self._futures[future] = number
            self._completed.add(future)

    def _failed(self, error: BaseException) -> Failed:
        if isinstance(error, self._dask.scheduler.KilledWorker):
            return Failed(_ALL_DIED, ALONE)
        if isinstance(error, ImportError):  # of a worker that lacks this package, see _ask()
            return Failed(str(error), UNFIT)
        return Failed(f"{type(error).__name__}: {error}".splitlines()[0], ELSEWHERE)

    def _look(self) -> None:
        """Waits for the scheduler, and raises Gone where it or all workers are away too long."""
        if self._client.status != "running":
            self._reconnect()
        self._ask()
        now, usable = time.monotonic(), self._usable()
        lacking = " that can do it" if self._workers else ""
        if usable:
            self._alone_since = None
            if usable != self._known:
                self._known = usable
                self._submit_lost(usable)
        elif self._workers and not self._fit:
            address, reason = next(iter(self._unfit.items()))
            raise Gone(f"no worker of {self._address} can do it; {address}: {reason}")
        elif self._alone_since is None:
            self._alone_since = now
            self._say(f"{self._address} has no worker{lacking}; waiting {self._patience:g} s")
        elif now > self._alone_since + self._patience:
            raise Gone(f"{self._address} has had no worker{lacking} for {self._patience:g} s")

    def _close(self) -> None:
        with contextlib.suppress(OSError, RuntimeError, concurrent.futures.TimeoutError):
            self._client.close(timeout=2)

    def stop(self) -> None:
        with contextlib.suppress(OSError, RuntimeError, concurrent.futures.TimeoutError):
            if self._client.status == "running":
                self._client.cancel(list(self._futures))
        self._close()
