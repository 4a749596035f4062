"""qvacceleratedlib.batch on this machine, and on a cluster of three workers on the loopback."""
import contextlib
import json
import os
import random
import shutil
import signal
import socket
import subprocess
import sys
import threading
import time
import zlib
from concurrent.futures import ThreadPoolExecutor

import pytest

from qvacceleratedlib.batch import __main__ as command, _lock

TOOL = shutil.which(os.environ.get("QVTOOL", "qvtool"))
CHAIN = "mirror --axis left-right; mirror --axis top-bottom"
pytestmark = pytest.mark.skipif(not TOOL, reason="there is no qvtool")


def clips(folder, count, frames=2):
    folder.mkdir()
    head = b"YUV4MPEG2 W16 H8 F25:1 Cmono\n"
    for i in range(count):
        content = b"".join(b"FRAME\n" + random.Random(i).randbytes(128) for _ in range(frames))
        (folder / f"clip{i:03}.y4m").write_bytes(head + content)
    return sorted(map(str, folder.iterdir()))


def start(*arguments, **environment):
    return subprocess.Popen(
        [sys.executable, "-m", "qvacceleratedlib.batch", CHAIN, *map(str, arguments)],
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
        env={**os.environ, **environment})


def finish(process):
    try:
        output, _ = process.communicate(timeout=240)
    finally:
        process.kill()
    return process.returncode, output


def run(*arguments, **environment):
    return finish(start(*arguments, **environment))


def content(folder):
    """The outputs; the manifest has a true line for each, and nothing else is there."""
    found = {path.name: path.read_bytes() for path in folder.iterdir()}
    _, *lines = found.pop("qvbatch.manifest").decode().splitlines()
    sums = {entry[0]: (entry[4][0], int(entry[5], 16)) for entry in map(json.loads, lines)}
    assert sums == {name: (len(data), zlib.crc32(data)) for name, data in found.items()}
    assert len(lines) == len(sums)
    return found


def wait(condition, seconds=240):
    end = time.monotonic() + seconds
    while not condition():
        assert time.monotonic() < end
        time.sleep(0.01)


def script(path, text):
    """A qvtool that does something else as well; its arguments end with IN and OUT."""
    path.write_text(f'#!/bin/bash\n{text}\nexec {TOOL} "$@"\n')
    path.chmod(0o755)
    return str(path)


def test_local(tmp_path):
    sources, out = clips(tmp_path / "in", 9), tmp_path / "out"
    (tmp_path / "in/clip004.y4m").write_text("no clip")
    missing = tmp_path / "missing.y4m"
    code, text = run(*sources, missing, "--out", out)
    assert (code, text.count("\n"), text.count("qvbatch: ")) == (1, 3, 3), text
    assert "clip004.y4m: is none of PNG" in text and "missing.y4m: no such file" in text
    assert "8 of 10 files" in text and "0 were done already, 2 failed" in text
    for name, data in content(out).items():
        own = tmp_path / "own.y4m"
        subprocess.run([TOOL, "run", CHAIN, tmp_path / "in" / name, own], check=True)
        assert own.read_bytes() == data
    # Made again: what is gone, has been damaged, or has another source. A later time is no damage.
    before = content(out)
    times = {name: (out / name).stat().st_ctime_ns for name in before}
    (out / "clip000.y4m").unlink()
    (out / "clip001.y4m").write_bytes(bytes(len(before["clip001.y4m"])))
    os.utime(sources[2], (1, 1))
    os.utime(out / "clip003.y4m", (1, 1))
    times["clip003.y4m"] = (out / "clip003.y4m").stat().st_ctime_ns
    shutil.copy(sources[0], sources[4])
    for made in (4, 0):
        code, text = run(*sources, "--out", out)
        assert code == 0 and f"{made} of 9 files" in text, text
    assert content(out) == {**before, "clip004.y4m": before["clip000.y4m"]}
    (out / "qvbatch.manifest").write_text("nothing")
    assert run(*sources, "--out", out)[0] == 1
    assert {name for name in times if (out / name).stat().st_ctime_ns != times[name]} == {
        f"clip00{i}.y4m" for i in range(3)}


@pytest.mark.parametrize("arguments, reason", [
    (["x.y4m", "--options", "--quality x"], "--quality"),
    (["x.y4m", "--options", "'"], "--options"),
    (["a/x.y4m", "b/x.y4m"], "both become"),
    (["out/x.y4m"], "is an input"),
    ([], "no input"),
    (["x.y4m", "--jobs", "0"], "--jobs"),
    (["x.y4m", "--patience", "nan"], "--patience"),
    (["x.y4m", "--base", "elsewhere"], "--base"),
    (["x.y4m", "--scheduler", "somewhere"], "--scheduler"),
    (["x.y4m", "--scheduler", "tcp://somewhere:65536"], "--scheduler"),
    (["."], "is a folder"),
    (["x.what"], ".what"),
    (["--from", "nothing"], "nothing: No such file"),
])
def test_wrong_arguments_are_told_in_a_line(tmp_path, monkeypatch, capsys, arguments, reason):
    monkeypatch.chdir(tmp_path)
    assert command.main([CHAIN, *arguments, "--out", "out"]) == 2
    text = capsys.readouterr().err
    assert reason in text and text.count("\n") == 1
    assert list(tmp_path.iterdir()) == []


def test_addresses_and_folders(tmp_path, monkeypatch, capsys):
    monkeypatch.setattr(command, "Bar", command.NoBar)
    memory = pytest.importorskip("fsspec").filesystem("memory")
    sources = clips(tmp_path / "in", 3)
    assert command.main([CHAIN, *sources, "--out", str(tmp_path / "out")]) == 0
    expected = content(tmp_path / "out")
    memory.put(str(tmp_path / "in"), "/bucket/deep/in", recursive=True)
    arguments = [CHAIN, "memory://bucket/deep/in/*.y4m", "--out", "memory://bucket/out",
                 "--base", "memory://bucket/deep"]
    # The lock of a run that has died lets others in, one that is renewed does not.
    monkeypatch.setattr(_lock, "RENEWAL", 0.1)
    monkeypatch.setattr(_lock, "DEATH", 0.3)
    memory.pipe("/bucket/out/qvbatch.lock", b"nothing")
    for made in (3, 0):
        assert command.main(arguments) == 0
        assert f"{made} of 3 files" in capsys.readouterr().err.splitlines()[-1]
    names = {path.rsplit("/out/", 1)[1] for path in memory.find("/bucket/out")}
    assert names == {"qvbatch.manifest", *(f"in/{name}" for name in expected)}
    for name, data in expected.items():
        assert memory.cat(f"/bucket/out/in/{name}") == data
    assert command.main([CHAIN, "memory://bucket/absent.y4m", "--out", str(tmp_path / "x")]) == 1
    monkeypatch.setattr(_lock, "DEATH", 60)
    with _lock.of_address("memory://bucket/out", str(tmp_path), print) as lock:
        lock.check()
        assert command.main(arguments) == 1
        assert "another run is at work there" in capsys.readouterr().err
        memory.pipe("/bucket/out/qvbatch.lock", b"another's")
        wait(lambda: lock._other)
        with pytest.raises(_lock.Busy):
            lock.check()


def test_interrupted(tmp_path):
    sources, out = clips(tmp_path / "in", 40), tmp_path / "out"
    stuck = script(tmp_path / "stuck", '[[ "${@: -2:1}" != *clip0[1-3]* ]] || exec sleep 600')
    process = start(*sources, "--out", out, QVTOOL=stuck)
    wait(lambda: len(list(out.glob("*.y4m"))) == 10)
    assert run(*sources, "--out", out)[0] == 1  # one at a time
    process.send_signal(signal.SIGINT)
    code, text = finish(process)
    assert code == 130 and "interrupted" in text, text
    done = content(out)
    assert len(done) == 10
    code, text = run(*sources, "--out", out)
    assert code == 0 and "30 of 40 files" in text, text
    whole = content(out)
    assert len(whole) == 40 and done.items() <= whole.items()


@contextlib.contextmanager
def cluster(folder, **environment):
    """The address of a scheduler; what starts it or a worker, again whenever it ends; and the
    processes."""
    with socket.socket() as free:
        free.bind(("127.0.0.1", 0))
        port = free.getsockname()[1]
    address, processes, kept, over = f"tcp://127.0.0.1:{port}", {}, [], threading.Event()
    worker = "dask_worker", address, "--nthreads", "2", "--no-nanny"

    def keep(name, **more):
        words = worker if name != "scheduler" else (
            "dask_scheduler", "--host", "127.0.0.1", "--port", str(port))
        while not over.is_set():
            with open(folder / f"{name}.log", "a") as log:
                processes[name] = subprocess.Popen(
                    [sys.executable, "-m", f"distributed.cli.{words[0]}", "--no-dashboard",
                     *words[1:]], stdout=log, stderr=log, cwd=folder,
                    env={**os.environ, **environment, **more})
            processes[name].wait()

    with ThreadPoolExecutor() as pool:
        try:
            yield address, lambda *a, **more: kept.append(pool.submit(keep, *a, **more)), processes
        finally:
            over.set()
            while not all(future.done() for future in kept):
                for process in processes.values():
                    process.kill()
                time.sleep(0.1)


def test_cluster(tmp_path):
    pytest.importorskip("distributed")
    sources, out = clips(tmp_path / "in", 500), tmp_path / "out"
    assert run(*sources, "--out", tmp_path / "expected")[0] == 0
    deadly = script(tmp_path / "deadly", '[[ "${@: -2:1}" != *deadly* ]] || kill -9 $PPID')
    settings = {"DASK_DISTRIBUTED__SCHEDULER__ALLOWED_FAILURES": "1",
                "DASK_DISTRIBUTED__COMM__TIMEOUTS__CONNECT": "5s"}
    with cluster(tmp_path, QVTOOL=deadly, **settings) as (address, begin, processes):
        options = "--out", out, "--scheduler", address
        process = start(*sources, *options)
        assert "does not answer" in process.stdout.readline()
        begin("scheduler")
        begin("unfit", QVTOOL="missing")
        code, text = finish(process)
        assert code == 1 and f"no worker of {address} can do it" in text, text
        begin("one")
        begin("two")
        wait(lambda: run(sources[0], *options)[0] == 0)
        process = start(*sources, *options)
        for outputs, name in ((100, "one"), (250, "scheduler")):
            wait(lambda: len(list(out.glob("*.y4m"))) >= outputs)
            processes[name].kill()
        code, text = finish(process)
        assert code == 0 and "499 of 500 files" in text, text
        assert "is away; waiting" in text and "is back" in text, text
        assert "QVTOOL=missing: is no program; its files go to other workers" in text, text
        assert content(out) == content(tmp_path / "expected")

        # A file that takes its workers along takes no other, also of those that were beside it.
        for source in sources[::9]:
            (out / os.path.basename(source)).unlink()
        (tmp_path / "in/deadly.y4m").write_bytes((tmp_path / "in/clip000.y4m").read_bytes())
        code, text = run(*sources, tmp_path / "in/deadly.y4m", tmp_path / "in/none.y4m", *options)
        assert code == 1 and "deadly.y4m: every worker that had it has died" in text, text
        assert "56 of 502 files" in text and "444 were done already, 2 failed" in text, text
        assert content(out) == content(tmp_path / "expected")
        code, text = run(sources[0], *options, "--options", "--quality x")
        assert code == 2 and "--quality" in text and text.count("\n") == 1, text
    code, text = run(sources[0], *options, "--patience", "1")
    assert code == 1 and text.count(f"{address} does not answer") == text.count("\n") == 2, text
