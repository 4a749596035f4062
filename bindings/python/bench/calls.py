#!/usr/bin/env python3
"""Times calls from Python: on 16 x 16 pixels, and 1080p jobs beside Pillow's and OpenCV's.

    PYTHONPATH=build/release/bindings/python /usr/bin/python3 bindings/python/bench/calls.py

Prints a table in Markdown: the least of several rounds, in which the contenders take turns.
"""
import ctypes
import random
import time

import numpy as np

import qvacceleratedlib as qv
from qvacceleratedlib._library import Rect, ResampleOptions, Size, lib

try:
    import cv2
except ImportError:
    cv2 = None
try:
    from PIL import Image
except ImportError:
    Image = None


def best(calls, seconds, together, in_a_row):
    """The least time of each call in seconds: so many are timed together, so often in a row. Who
    follows whom is drawn, as one call leaves caches and threads to the next."""
    least = [float("inf")] * len(calls)
    end = time.perf_counter() + seconds
    while time.perf_counter() < end:
        for i in random.sample(range(len(calls)), len(calls)):
            call = calls[i]
            for _ in range(in_a_row if call else 0):
                start = time.perf_counter()
                for _ in range(together):
                    call()
                least[i] = min(least[i], (time.perf_counter() - start) / together)
    return least


def overhead():
    image, grey = np.zeros((16, 16, 3), np.uint8), np.zeros((16, 16), np.uint8)
    out = np.empty_like(image)
    crop = np.zeros((32, 32, 3), np.uint8)[8:24, 8:24]
    nv12 = qv.Nv12.empty(16, 16)
    matrix = np.array([[1., 0, 1], [0, 1, 0], [0, 0, 1]])
    source, target, size = image.ctypes.data, out.ctypes.data, Size(16, 16)
    calls = {
        "the C call of `mirror`": lambda: lib.qv_mirror(4, source, 48, target, 48, size, 2),
        "`mirror(image)`": lambda: qv.mirror(image),
        "`mirror(image, out=out)`": lambda: qv.mirror(image, out=out),
        "`mirror(crop, out=out)`": lambda: qv.mirror(crop, out=out),
        "`copy(image)`": lambda: qv.copy(image),
        "`crc32(grey)`": lambda: qv.crc32(grey),
        "`compose(image, image)`": lambda: qv.compose(image, image),
        "`overlay(image, image, out=out)`": lambda: qv.overlay(image, image, out=out),
        '`convert(nv12, "bgr")`': lambda: qv.convert(nv12, "bgr"),
        "`resize(image, (8, 8))`": lambda: qv.resize(image, (8, 8)),
        "`overlay(image, logo, out=image)`": lambda: qv.overlay(image, out, out=image),
        "`rotate(image, 90, expand=True)`": lambda: qv.rotate(image, 90, True),
        "`rotate(image, 9, out=out)`": lambda: qv.rotate(image, 9, out=out),
        "`warp_perspective(image, matrix, out=out)`":
            lambda: qv.warp_perspective(image, matrix, out=out),
        '`convert(image, "nv12")`, a new frame': lambda: qv.convert(image, "nv12"),
    }
    print("| Call | microseconds |\n|---|---|")
    for name, seconds in zip(calls, best(list(calls.values()), 3, 200, 1)):
        print(f"| {name} | {seconds * 1e6:.1f} |")


def jobs():
    rng = np.random.default_rng(1)
    frame, out = (rng.integers(0, 256, (1080, 1920, 3), np.uint8) for _ in range(2))
    small = np.empty((720, 1280, 3), np.uint8)
    pil = Image and Image.fromarray(frame)
    i420 = np.ascontiguousarray(frame.reshape(-1)[:1620 * 1920].reshape(1620, 1920))
    planes = qv.I420.from_buffer(i420, 1920, 1080)
    tables = planes.tables
    turn = [[.9, -.1, 150], [.1, .9, 20], [1e-5, 1e-5, 1]]
    matrix = np.array(turn)
    source, target, reduced = frame.ctypes.data, out.ctypes.data, small.ctypes.data
    size, less = Size(1920, 1080), Size(1280, 720)
    whole, nine = Rect(0, 0, 1920, 1080), matrix.ctypes.data

    def resample(method):
        options = ResampleOptions(pixels=2, filter=method)
        return lambda: lib.qv_resample(source, size, 5760, reduced, less, 3840,
                                       ctypes.addressof(options))

    table = [
        ("mirror left to right", lambda: qv.mirror(frame, "vertical", out),
         cv2 and (lambda: cv2.flip(frame, 1, out)),
         pil and (lambda: pil.transpose(Image.FLIP_LEFT_RIGHT)),
         lambda: lib.qv_mirror(4, source, 5760, target, 5760, size, 1)),
        ("4:2:0 to BGR", lambda: qv.convert(planes, "bgr", out=out),
         cv2 and (lambda: cv2.cvtColor(i420, cv2.COLOR_YUV2BGR_I420, out)), None,
         lambda: lib.qv_yuv_to_rgb(
             8, *tables, 2, target, 5760, size, 0, 0, 0)),
        ("to 1280 x 720, area", lambda: qv.resize(frame, (1280, 720), "area", out=small),
         cv2 and (lambda: cv2.resize(frame, (1280, 720), small, interpolation=cv2.INTER_AREA)),
         pil and (lambda: pil.resize((1280, 720), Image.BOX)),
         resample(8)),
        ("to 1280 x 720, Lanczos",
         lambda: qv.resize(frame, (1280, 720), "lanczos", out=small), None,
         pil and (lambda: pil.resize((1280, 720), Image.LANCZOS)), resample(16)),
        ("warp, linear", lambda: qv.warp_perspective(frame, turn, out=out),
         cv2 and (lambda: cv2.warpPerspective(frame, matrix, (1920, 1080), out)), None,
         lambda: lib.qv_warp_perspective(
             4, source, size, 5760, whole, target, 5760, whole, nine, 2)),
    ]
    print(f"\n1080p, {qv.threads} threads, level {qv.level}; milliseconds:\n")
    print("| Job | qv | the C call | OpenCV | Pillow |\n|---|---|---|---|---|")
    for name, ours, opencv, pillow, bare in table:
        times = best([ours, bare, opencv, pillow], 2, 1, 8)
        print(f"| {name} | " + " | ".join(
            f"{t * 1e3:.3f}" if t < 1e9 else "" for t in times) + " |")


if __name__ == "__main__":
    if cv2:
        cv2.setNumThreads(qv.threads)
    overhead()
    jobs()
