"""Fast operations on raw 8-bit frames: numpy arrays in, numpy arrays out.

    >>> import numpy as np
    >>> import qvacceleratedlib as qv
    >>> frame = np.zeros((1080, 1920, 3), np.uint8)     # rows, columns, channels
    >>> qv.resize(frame, (640, 360), "lanczos").shape   # sizes are (width, height)
    (360, 640, 3)

Images are arrays of uint8: (H, W), (H, W, 3), or (H, W, 4) where an operation has it. The bytes of
a row lie side by side and rows any number of bytes apart, so that crops, padded and, but for the
operations that say so, flipped rows are taken as they are; nothing is ever copied in secret. Every
operation that makes an image takes an array for it as `out` and returns it, or a new one. Colours
are in the order B, G, R wherever an operation can tell.

What an operation does not take raises Error, a ValueError that says which argument, and writes
nothing. Calls release the interpreter's lock; they may be made by several threads at once.

    __version__    the version of the library
    threads        how many threads share a call, this one included; may be set, 1 to 256
    level          the level of vectors, "generic" to "avx512"; may be lowered (levels())
"""
from __future__ import annotations

import sys
import types
from typing import Any

from ._arrays import Image
from ._checksums import adler32, crc32
from ._colour import (convert, i420_to_bgr_exact_api, nv12_to_i420, yuyv_to_bgr_exact_api,
                      yuyv_to_yv12)
from ._compositing import compose, merge_alpha_over, merge_alpha_plus, overlay
from ._copying import (add_alpha, copy, drop_alpha, fill, grey_to_bgr, merge, mirror, palette,
                       scale)
from ._errors import Error, Status
from ._fields import deinterlace, deinterlace_bob, weave
from ._frames import I420, I422, I444, Frame, Nv12, Nv21, Uyvy, Yuyv, Yv12
from ._geometry import (invert_transform, perspective_transform, rotate, rotate_bound,
                        rotation_canvas, warp_perspective, warp_perspective_pair,
                        warp_source_position)
from ._library import lib as _lib
from ._process import get_level, get_threads, levels, row_bytes, set_level, set_threads
from ._process import thread_limit
from ._resizing import resize, resize_exact_api, resize_yuyv_exact_api, source_position

__version__: str = _lib.qv_version().decode()
threads: int
level: str

__all__ = [
    "Error", "Frame", "I420", "I422", "I444", "Image", "Nv12", "Nv21", "Status", "Uyvy", "Yuyv",
    "Yv12", "add_alpha", "adler32", "compose", "convert", "copy", "crc32", "deinterlace",
    "deinterlace_bob", "drop_alpha", "fill", "grey_to_bgr", "i420_to_bgr_exact_api",
    "invert_transform", "level", "levels", "merge", "merge_alpha_over", "merge_alpha_plus",
    "mirror", "nv12_to_i420", "overlay", "palette", "perspective_transform", "resize",
    "resize_exact_api", "resize_yuyv_exact_api", "rotate", "rotate_bound", "rotation_canvas",
    "row_bytes", "scale", "source_position", "thread_limit", "threads", "warp_perspective",
    "warp_perspective_pair", "warp_source_position", "weave", "yuyv_to_bgr_exact_api",
    "yuyv_to_yv12",
]


class _Package(types.ModuleType):
    """The package with `threads` and `level`, which are the library's, as properties."""

    @property
    def threads(self) -> int:
        return get_threads()

    @threads.setter
    def threads(self, count: Any) -> None:
        set_threads(count)

    @property
    def level(self) -> str:
        return get_level()

    @level.setter
    def level(self, name: Any) -> None:
        set_level(name)


sys.modules[__name__].__class__ = _Package
