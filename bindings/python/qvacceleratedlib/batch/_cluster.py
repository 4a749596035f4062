"""The workers of a Dask cluster."""
from __future__ import annotations

import collections
import concurrent.futures
import contextlib
import importlib
import itertools
import logging
import pickle
import queue
import re
import socket
import threading
import time
import uuid
from typing import (AbstractSet, Any, Callable, Deque, Dict, Iterator, List, NamedTuple, Optional,
                    Sequence, Tuple)

from . import _work
from ._runners import TRIES, Finished, Gone, Result, Runner
from ._work import ALONE, ELSEWHERE, UNFIT, Failed, Task

_TOPIC = "qvbatch"
_ALL_DIED = "every worker that had it has died"
# Of a connection that has broken, which is noticed elsewhere.
_BROKEN = contextlib.suppress(OSError, RuntimeError, concurrent.futures.TimeoutError)


def _work_on_worker(run: str, number: int, task: Task) -> None:
    """The result goes with the messages of the connection that is there. Were it returned, the
    client would ask the worker for it, and wait for a dead one till that connection times out."""
    from distributed import get_worker
    result = pickle.dumps(_work.work(task))
    get_worker().log_event(_TOPIC, {"run": run, "number": number, "result": result})


class _Workers:
    """Who is there, and who of them can do the work: each is asked once."""

    def __init__(self, client: Any, wanted: Tuple[Any, ...], fit: bool,
                 say: Callable[[str], None]) -> None:
        self._client, self._say = client, say
        self.wanted = wanted  # the arguments of check()
        self.fit = fit        # whether one has been found that can do it
        self.all: Dict[str, Any] = client.scheduler_info().get("workers", {})
        self.unfit: Dict[str, str] = {}  # why
        self._checks: Dict[str, Any] = {}
        threading.Thread(target=self._watch, daemon=True).start()

    def _watch(self) -> None:
        """Keeps `all` up to date; an answer may take as long as a connection."""
        while self._client.status == "running":
            with contextlib.suppress(Exception):  # of a connection that ends
                self.all = self._client.scheduler_info().get("workers", {})
            time.sleep(1)

    def usable(self) -> AbstractSet[str]:
        return self.all.keys() - self.unfit.keys()

    def threads(self) -> int:
        return sum(worker["nthreads"] for worker in self.all.values())

    def ask(self) -> None:
        """Asks those that are new, and hears what others have answered."""
        there = self.all
        for address in self._checks.keys() - there.keys():
            del self._checks[address]
            self.unfit.pop(address, None)
        for address in there.keys() - self._checks.keys():
            self._checks[address] = self._client.submit(
                _work.check, *self.wanted, workers=[address], pure=False)
        for address, future in list(self._checks.items()):
            if future is not None and future.done():
                self._hear(address, future)

    def _hear(self, address: str, future: Any) -> None:
        if future.status == "cancelled":  # by a scheduler that has not heard of it
            del self._checks[address]
            return
        self._checks[address] = None
        error = future.exception() if future.status == "error" else None
        if isinstance(error, _work.WrongChain):
            raise error
        if isinstance(error, _work.Trouble):
            self.refuse(address, str(error))
        elif error is not None:  # such as that of a worker that lacks this package
            self.refuse(address, f"{type(error).__name__}: {error}")
        elif not self.fit:
            self.fit = True
            for one in self.unfit:
                self._tell(one)

    def refuse(self, address: str, reason: str) -> None:
        if address not in self.unfit:
            self.unfit[address] = reason
            if self.fit:
                self._tell(address)

    def _tell(self, address: str) -> None:
        self._say(f"{address}: {self.unfit[address]}; its files go to other workers")


class _Given(NamedTuple):
    """A task that is under way; where it may go to, if not anywhere; how often all workers that it
    might go to have gone."""

    task: Task
    where: Optional[AbstractSet[str]]
    lost: int


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
        self._connect("does not answer", (), False, False)

    def _connect(self, absent: str, wanted: Tuple[Any, ...], fit: bool, told: bool) -> None:
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
        self._workers = _Workers(self._client, wanted, fit, self._say)
        self._known: AbstractSet[str] = set()  # usable when tasks were last looked through

    def _reconnect(self) -> None:
        self._say(f"{self._address} is away; waiting {self._patience:g} s")
        self._close()
        self._connect("is away", self._workers.wanted, self._workers.fit, True)
        self._say(f"{self._address} is back")
        tasks = [given.task for given in self._tasks.values()]
        self._tasks.clear()
        for task in tasks:
            self.submit(task)

    @property
    def window(self) -> int:  # type: ignore[override]
        return max(64, 4 * self._workers.threads())

    def check(self, command: Sequence[str], extensions: List[str], cwd: str) -> None:
        self._workers.wanted = command, extensions, cwd
        while not self._workers.fit:
            self._look()
            time.sleep(0.01)

    def submit(self, task: Task, avoid: str = "", lost: int = 0) -> None:
        usable = self._workers.usable()
        where: Optional[AbstractSet[str]] = (usable - {avoid}) or usable
        if where is not None and len(where) == len(self._workers.all):
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
        self._cancel([future for future, number in self._futures.items() if number in lost])
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
                self._workers.refuse(result.worker, result.reason)
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
        if isinstance(error, ImportError):  # of a worker that lacks this package
            return Failed(str(error), UNFIT)
        return Failed(f"{type(error).__name__}: {error}".splitlines()[0], ELSEWHERE)

    def _look(self) -> None:
        """Waits for the scheduler, and raises Gone where it or all workers are away too long."""
        if self._client.status != "running":
            self._reconnect()
        self._workers.ask()
        now, usable = time.monotonic(), self._workers.usable()
        lacking = " that can do it" if self._workers.unfit else ""
        if usable:
            self._alone_since = None
            if usable != self._known:
                self._known = usable
                self._submit_lost(usable)
        elif self._workers.unfit and not self._workers.fit:
            address, reason = next(iter(self._workers.unfit.items()))
            raise Gone(f"no worker of {self._address} can do it; {address}: {reason}")
        elif self._alone_since is None:
            self._alone_since = now
            self._say(f"{self._address} has no worker{lacking}; waiting {self._patience:g} s")
        elif now > self._alone_since + self._patience:
            raise Gone(f"{self._address} has had no worker{lacking} for {self._patience:g} s")

    def _cancel(self, futures: List[Any]) -> None:
        with _BROKEN:
            if futures and self._client.status == "running":
                self._client.cancel(futures)

    def _close(self) -> None:
        with _BROKEN:
            self._client.close(timeout=2)

    def stop(self) -> None:
        self._cancel(list(self._futures))
        self._close()

    def rest(self) -> Iterator[Finished]:
        return iter(self._results)
