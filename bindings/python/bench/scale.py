#!/usr/bin/env python3
"""Measures qvacceleratedlib.batch with one worker and with two, each on a processor of its own.

    QVTOOL=$PWD/build/release/tools/qvtool/qvtool PYTHONPATH=$PWD/build/release/bindings/python \\
      /usr/bin/python3 bindings/python/bench/scale.py FOLDER

Writes clips to FOLDER, which is emptied of them afterwards, and prints a table in Markdown. Needs
Dask (Debian: python3-distributed) and taskset.
"""
import contextlib
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import numpy as np

CHAIN = "resize --to {} --method lanczos"
JOBS = [  # clips, their size, frames, the size wanted
    (300, (320, 240), 10, "160x120"),
    (24, (1920, 1080), 25, "1280x720"),
]


def make_clips(folder, count, size, frames):
    folder.mkdir()
    width, height = size
    frame = np.random.default_rng(1).integers(16, 236, width * height * 3 // 2, np.uint8).tobytes()
    clip = folder / "0.y4m"
    clip.write_bytes(f"YUV4MPEG2 W{width} H{height} F25:1 C420jpeg\n".encode()
                     + frames * (b"FRAME\n" + frame))
    for i in range(1, count):
        shutil.copy(clip, folder / f"{i}.y4m")
    return sorted(map(str, folder.iterdir())), clip.stat().st_size


def on(processors):
    return ["taskset", "-c", ",".join(map(str, processors)), sys.executable, "-m"]


@contextlib.contextmanager
def cluster(processors):
    with socket.socket() as free:
        free.bind(("127.0.0.1", 0))
        port = free.getsockname()[1]
    address = f"tcp://127.0.0.1:{port}"
    quiet = dict(stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, cwd=tempfile.gettempdir())
    programs = [subprocess.Popen(
        [sys.executable, "-m", "distributed.cli.dask_scheduler", "--no-dashboard", "--host",
         "127.0.0.1", "--port", str(port)], **quiet)]
    programs += [subprocess.Popen(
        on([processor]) + ["distributed.cli.dask_worker", address, "--no-dashboard", "--no-nanny",
                           "--nthreads", "1"], **quiet) for processor in processors]
    try:
        time.sleep(3)
        yield ["--scheduler", address]
    finally:
        for program in programs:
            program.kill()
            program.wait()


@contextlib.contextmanager
def local(processors):
    yield ["--jobs", str(len(processors))]


def measure(where, processors, chain, clips, out):
    """Files and frames a second, the best of two."""
    best = (0, 0)
    with where(processors) as options:
        for _ in range(2):
            shutil.rmtree(out, ignore_errors=True)
            done = subprocess.run(
                on(processors) + ["qvacceleratedlib.batch", chain, *clips, "--out", str(out),
                                  *options], stderr=subprocess.PIPE, text=True, check=True)
            found = re.search(r"([\d.]+) files and ([\d.]+) frames a second", done.stderr)
            best = max(best, (float(found[1]), float(found[2])))
    return best


def main():
    top = Path(sys.argv[1])
    processors = sorted(os.sched_getaffinity(0))[:2]
    print("| Clips | Who | Files a second | Frames a second | MB a second, read |")
    print("|---|---|---|---|---|")
    for count, size, frames, wanted in JOBS:
        clips, length = make_clips(top / "in", count, size, frames)
        try:
            for name, where in (("this machine", local), ("cluster", cluster)):
                for n in range(1, len(processors) + 1):
                    files, rate = measure(where, processors[:n], CHAIN.format(wanted), clips,
                                          top / "out")
                    print(f"| {size[0]} x {size[1]}, {frames} frames | {name}, {n} "
                          f"processor{'s' * (n > 1)} | {files:.0f} | {rate:.0f} "
                          f"| {files * length / 1e6:.0f} |", flush=True)
        finally:
            shutil.rmtree(top / "in")
            shutil.rmtree(top / "out", ignore_errors=True)


if __name__ == "__main__":
    main()
