"""Resizing: with explicit positions, and as the C++ class does."""
from __future__ import annotations

import ctypes
from functools import lru_cache
from typing import Optional, Sequence, Tuple

import numpy as np

from ._arrays import ANY, TYPES, Image, pixels, point_of, rect_of, size_of, target
from ._codes import FILTERS, METHODS, POSITIONS, SAMPLING, code, finite, number
from ._errors import Error, Status, failed, shown
from ._frames import Yuyv
from ._library import Rect, ResampleOptions, Size, lib

_PIXELS = {1: 0, 2: 1, 3: 2, 4: 3}
_ALPHAS = {None: 3, "premultiplied": 4, "straight": 5}
_NOTHING = (0.0, 0.0)


@lru_cache(maxsize=64)
def _options(kind: int, method: str, position: str, narrow: bool,
             region: Optional[Sequence[float]], source_phase: Sequence[float],
             phase: Sequence[float], cubic: float) -> ResampleOptions:
    part: Tuple[float, ...] = (0.0, 0.0, 0.0, 0.0)
    if region is not None:
        part = tuple(finite(region, "region", Status.RECT_ERR, 4))
        if part == (0.0, 0.0, 0.0, 0.0):  # which would stand for the whole image
            raise Error(Status.RECT_ERR, "region", "its width or height is not above 0")
    if not -1 <= number(cubic, "cubic", Status.OUT_OF_RANGE_ERR) < 0:  # 0 would stand for -0.5
        raise Error(Status.OUT_OF_RANGE_ERR, "cubic", f"-1 up to below 0 wanted, not {cubic!r}")
    return ResampleOptions(
        kind, code(FILTERS, method, "method"),
        code(POSITIONS, position, "position"), int(narrow), *part,
        *finite(source_phase, "source_phase", Status.OUT_OF_RANGE_ERR, 2),
        *finite(phase, "phase", Status.OUT_OF_RANGE_ERR, 2), cubic)


def resize(image: Image, size: Optional[Sequence[int]] = None, method: str = "cubic",
           region: Optional[Sequence[float]] = None, out: Optional[Image] = None, *,
           position: str = "centres", narrow: bool = False, alpha: Optional[str] = None,
           source_phase: Sequence[float] = _NOTHING, phase: Sequence[float] = _NOTHING,
           cubic: float = -0.5) -> Image:
    """An image (H, W) or (H, W, 2 to 4), or a region of it, in another size.

    size      (width, height) in pixels; that of `out` if left out
    method    "nearest"; "linear"; "cubic" (Keys 1981 with a = `cubic`, -1 up to below 0);
              "mitchell" (Mitchell and Netravali 1988, B = C = 1/3); "lanczos" (three lobes);
              "area" (the mean of what a pixel covers). All but "nearest" are widened in reductions,
              so that every source pixel counts; with narrow=True only "area" is.
    region    (x, y, width, height) in pixels, fractions of them and more than the image included;
              beyond the image lie copies of its edge
    position  "centres": region and result cover each other, pixel i of N reads
              x + (i + 0.5) width / N - 0.5; "corners": the centres of their corner pixels coincide
    alpha     of four channels: None (all alike), "premultiplied", or "straight": colours weighted
              by the fourth
    phase     (x, y), where samples lie beside the middle of their pixels, -1 to 1; `source_phase`
              that of the image's: (-0.25, 0) of left-sited chroma

    Every byte is within one unit of the exact result. Rows may have any step.

    Errors: names or numbers other than those; a region outside the image; `out` overlapping
    `image`.

    >>> resize(np.array([[0, 100]], np.uint8), (4, 1), "linear")
    array([[  0,  25,  75, 100]], dtype=uint8)
    """
    address, step, width, height, channels = pixels(image, "image", ANY)
    kind = _PIXELS[channels]
    if alpha is not None:
        if alpha not in _ALPHAS or channels != 4:
            raise Error(Status.DATA_TYPE_ERR, "alpha",
                        f"None wanted or, of four channels, 'premultiplied' or 'straight', "
                        f"not {shown(alpha)}")
        kind = _ALPHAS[alpha]
    arguments = kind, method, position, bool(narrow), region, source_phase, phase, cubic
    try:
        options = _options(*arguments)
    except TypeError:  # lists and arrays, which a cache does not take
        options = _options.__wrapped__(*arguments)
    out, (columns, rows), to, to_step = _resized(image, size, out)
    status = lib.qv_resample(address, Size(width, height), step, to, Size(columns, rows), to_step,
                             ctypes.addressof(options))
    if status:
        raise failed(status, _RESAMPLE_ARGUMENTS.get(status, ""))
    return out


_RESAMPLE_ARGUMENTS = {Status.OUT_OF_RANGE_ERR: "phase", Status.RESIZE_FACTOR_ERR: "size"}


def _resized(image: Image, size: Optional[Sequence[int]],
             out: Optional[Image]) -> Tuple[Image, Tuple[int, int], int, int]:
    """The array to write, its (width, height), address and step."""
    if size is not None:
        columns, rows = size_of(size, "size")
    elif out is None:
        raise Error(Status.SIZE_ERR, "size", "needed where there is no out")
    else:
        _, _, columns, rows, _ = pixels(out, "out", ANY, True)
    out, to, to_step = target(out, (rows, columns) + image.shape[2:], image)
    return out, (columns, rows), to, to_step


def _factors(region: Rect, size: Tuple[int, int], width: int, height: int,
             factors: Optional[Sequence[float]]) -> Tuple[float, float]:
    """Destination over source: as given, or such that the region, as far as it lies in the image,
    fills the destination."""
    if factors is not None:
        x, y = finite(factors, "factors", Status.RESIZE_FACTOR_ERR, 2)
        return x, y
    return (size[0] / max(1, min(region.width, width - region.x)),
            size[1] / max(1, min(region.height, height - region.y)))


def resize_exact_api(image: Image, size: Sequence[int], method: str = "cubic",
                     region: Optional[Sequence[int]] = None, out: Optional[Image] = None, *,
                     factors: Optional[Sequence[float]] = None) -> Image:
    """Resizing (H, W) or (H, W, 3) with the bytes of the C++ class (qv_resize of qv.h), whose
    positions are its own: pixel i of an axis of L source pixels with factor F reads
    i (L - 1) / (L F - 1), or, when high images are worked on in bands by several threads,
    (i + 0.5) / F - 0.5. resize() has the same positions on every machine.

    size     (width, height) of the result
    method   "nearest", "linear", "cubic", "area" or "lanczos"; filters are not widened
    region   (x, y, width, height) in whole pixels; what lies in the image becomes the result
    factors  (x, y), result over source, if not what fills the result. What is not reached keeps its
             value in `out`, and is 0 in a new array.

    Errors: names or numbers other than those; a region outside the image; `out` overlapping
    `image`.

    >>> resize_exact_api(np.array([[0, 100, 200]] * 2, np.uint8), (5, 2), "linear")[0]
    array([  0,  50, 100, 150, 200], dtype=uint8)
    """
    address, step, width, height, channels = pixels(image, "image", TYPES)
    kind = code(METHODS, method, "method")
    part = rect_of(region, "region", width, height)
    columns, rows = size_of(size, "size")
    if out is None and factors is not None:
        out = np.zeros((rows, columns) + image.shape[2:], np.uint8)
    out, to, to_step = target(out, (rows, columns) + image.shape[2:], image)
    x, y = _factors(part, (columns, rows), width, height, factors)
    status = lib.qv_resize(TYPES[channels], address, Size(width, height), step, part, to, to_step,
                           Size(columns, rows), x, y, kind)
    if status and status != Status.NOTHING_TO_DO_WARNING:
        raise failed(status, "factors" if status == Status.RESIZE_FACTOR_ERR else "")
    return out


def resize_yuyv_exact_api(frame: Yuyv, size: Sequence[int], method: str = "cubic",
                          out: Optional[Yuyv] = None) -> Yuyv:
    """Resizing packed 4:2:2 with the bytes of the C++ class: luma on its grid of pixels, Cb and Cr
    each on that of pairs. `size` is (width, height), both widths are even; `method` is "nearest",
    "linear" or "cubic". A region is a frame too: Yuyv(array[y:y + h, x:x + w]), x and w even.

    Errors: another kind of frame; an odd width; `out` of another size, or overlapping `frame`.

    >>> resize_yuyv_exact_api(Yuyv.from_buffer(bytes([9, 8, 9, 7]), 2, 1), (4, 1)).tobytes()
    b'\\t\\x08\\t\\x07\\t\\x08\\t\\x07'
    """
    if not isinstance(frame, Yuyv):
        raise Error(Status.DATA_TYPE_ERR, "frame", f"Yuyv wanted, not {type(frame).__name__}")
    columns, rows = size_of(size, "size")
    kind = code(SAMPLING, method, "method")
    if frame.width % 2 or columns % 2:
        raise Error(Status.SIZE_ERR, "frame" if frame.width % 2 else "size", "the width is odd")
    if out is None:
        out = Yuyv.empty(columns, rows)
    elif not isinstance(out, Yuyv) or out.size != (columns, rows):
        raise Error(Status.SIZE_ERR, "out", f"Yuyv({columns} x {rows}) wanted, not {shown(out)}")
    else:
        out.written("out", *frame.memory)
    width, height = frame.size
    status = lib.qv_resize_yuv422(
        0, frame.addresses[0], Size(width, height), frame.steps[0], Rect(0, 0, width, height),
        out.addresses[0], out.steps[0], Size(columns, rows), columns / width, rows / height, kind)
    if status:
        raise failed(status)
    return out


def source_position(source_size: Sequence[int], size: Sequence[int], point: Sequence[int],
                    method: str = "cubic", region: Optional[Sequence[int]] = None,
                    factors: Optional[Sequence[float]] = None) -> Tuple[float, float]:
    """Where resize_exact_api() of an image of `source_size` reads for the pixel `point`, (x, y), of
    its result: (x, y) in pixels of the source, a whole number being the middle of one.

    Errors: those of resize_exact_api(); a point that it does not write.

    >>> source_position((3, 3), (5, 5), (2, 4), "linear")
    (1.0, 2.0)
    """
    width, height = size_of(source_size, "source_size")
    columns, rows = size_of(size, "size")
    part = rect_of(region, "region", width, height)
    x, y = point_of(point, "point", 0)
    position = (ctypes.c_double * 2)()
    status = lib.qv_source_position(
        Size(width, height), part, Size(columns, rows),
        *_factors(part, (columns, rows), width, height, factors),
        code(METHODS, method, "method"), x, y,
        ctypes.addressof(position))
    if status:
        if status == Status.OUT_OF_RANGE_ERR:
            raise failed(status, "point", f"{(x, y)} is not written")
        raise failed(status)
    return position[0], position[1]
