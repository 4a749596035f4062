"""Rotation, perspective, and the matrices of both."""
from __future__ import annotations

import ctypes
import math
from typing import Any, Callable, Collection, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from ._arrays import (ANY, TYPES, UINT8, Image, address_of, pair, pixels, rect_of, same_size,
                      separate, size_of)
from ._codes import SAMPLING, code, finite, number
from ._copying import colour_of, paint
from ._errors import Error, Status, failed, shown
from ._library import Rect, Size, lib

Matrix = npt.NDArray[np.float64]
Value = Union[int, Sequence[int]]

_TWO = ctypes.c_double * 2


def _table(rows: Sequence[Sequence[float]], shape: Tuple[int, int], argument: str,
           status: Status) -> Matrix:
    """A table of finite numbers, one row after the other in memory."""
    try:
        values = np.ascontiguousarray(rows, np.float64)
    except (TypeError, ValueError):
        values = np.empty(0)
    if values.shape != shape:
        raise Error(status, argument,
                    f"{shape[0]} rows of {shape[1]} numbers wanted, not {shown(rows)}")
    numbers = values.ravel().tolist()
    if not all(map(math.isfinite, numbers)):
        raise Error(status, argument, f"finite numbers wanted, not {shown(numbers)}")
    return values


def _coefficients(matrix: Sequence[Sequence[float]], argument: str) -> Matrix:
    return _table(matrix, (3, 3), argument, Status.COEFF_ERR)


class _Source:
    """What rotation and warps read: an image, its address and step, and a region of it."""

    def __init__(self, image: Image, region: Optional[Sequence[int]], name: str = "image",
                 channels: Collection[int] = (1, 3)) -> None:
        self.image = image
        self.address, self.step, width, height, count = pixels(image, name, channels)
        self.type = TYPES[count]
        if self.step < 1:
            raise Error(Status.STEP_ERR, name, "rows from bottom to top, which this does not take")
        self.size = Size(width, height)
        self.region = rect_of(region, "region", width, height)

    def check_extent(self) -> None:
        """Refuses what has corners on one line, which no perspective carries anywhere."""
        if self.region.width < 2 or self.region.height < 2:
            raise Error(Status.COEFF_ERR, "region", "at least 2 x 2 pixels wanted, not "
                        f"{self.region.width} x {self.region.height}")

    def place(self, size: Optional[Sequence[int]], out: Optional[Image],
              out_region: Optional[Sequence[int]], *others: Image) -> _Place:
        given = None if size is None else size_of(size, "size")
        if given is None and out is None:
            given = self.size.width, self.size.height
        return _Place(given, out, self.image.shape[2:], out_region, self.image, *others)


class _Place:
    """What they write: an array, its address and step, and a region of it. The size is that of
    `out` if there is none."""

    def __init__(self, size: Optional[Tuple[int, int]], out: Optional[Image],
                 channels: Tuple[int, ...], region: Optional[Sequence[int]], *sources: Image,
                 name: str = "out") -> None:
        self.made = out is None
        if out is None:
            assert size is not None
            out = np.zeros(size[::-1] + channels, UINT8)
        self.image = out
        self.address, self.step, width, height, _ = pixels(out, name, ANY, True)
        shape = (size or (width, height))[::-1] + channels
        if out.shape != shape:
            raise Error(Status.SIZE_ERR, name, f"shape {out.shape} given, {shape} wanted")
        if self.step < 1:
            raise Error(Status.STEP_ERR, name, "rows from bottom to top, which this does not take")
        if not self.made:
            separate(out, name, *sources)
        self.region = rect_of(region, "out_region", width, height, inside=True)

    def make_ground(self, background: Optional[Value], trial: Callable[..., Any]) -> None:
        """Fills the region with the background, unless it is what stands there; not before a trial
        on a pixel of its own has shown that the call itself will not be refused."""
        if background is None:
            return
        channels = 1 if self.image.ndim == 2 else self.image.shape[2]
        colour = colour_of(background, channels, "background")
        if self.made and not any(colour):
            return
        pixel = (ctypes.c_ubyte * 3)()
        _check(trial(ctypes.addressof(pixel), 3, Rect(0, 0, 1, 1)))
        part = self.region
        ground = self.image[part.y:part.y + part.height, part.x:part.x + part.width]
        paint(pixels(ground, "out", ANY, True), colour)


def _check(status: int) -> None:
    """A picture that lies elsewhere leaves the background, which is right."""
    if status and status != Status.NO_OVERLAP_WARNING:
        raise failed(status)


def warp_perspective(image: Image, matrix: Sequence[Sequence[float]],
                     size: Optional[Sequence[int]] = None, method: str = "linear",
                     region: Optional[Sequence[int]] = None, out: Optional[Image] = None, *,
                     out_region: Optional[Sequence[int]] = None,
                     background: Optional[Value] = None) -> Image:
    """An image (H, W) or (H, W, 3) through a 3 x 3 matrix c that carries source pixels (X, Y) to
        x = (c00 X + c01 Y + c02) / (c20 X + c21 Y + c22)
        y = (c10 X + c11 Y + c12) / (c20 X + c21 Y + c22)

    size        (width, height) of the result; that of `out` or of the image if left out
    method      "nearest", "linear" or "cubic" (Keys 1981, a = -0.5)
    region      (x, y, width, height), the pixels of the image that are read
    out_region  those of the result that are written
    background  what pixels become that nothing is carried to: a byte, or three; if left out, 0 in a
                new array and what stands in `out`

    Every byte is within one unit of the exact result. Rows lie below each other in memory (no
    flipped ones).

    Errors: names or numbers other than those; a matrix that cannot be inverted or folds the region;
    a region outside the image; `out` overlapping `image`.

    >>> moved = [[1, 0, 1], [0, 1, 0], [0, 0, 1]]
    >>> warp_perspective(np.array([[1, 2, 3], [4, 5, 6]], np.uint8), moved, background=9)
    array([[9, 1, 2],
           [9, 4, 5]], dtype=uint8)
    """
    source = _Source(image, region)
    source.check_extent()
    coefficients = _coefficients(matrix, "matrix")
    kind = code(SAMPLING, method, "method")
    place = source.place(size, out, out_region)

    def call(address: int, step: int, part: Rect) -> Any:
        return lib.qv_warp_perspective(
            source.type, source.address, source.size, source.step, source.region, address, step,
            part, address_of(coefficients), kind)

    place.make_ground(background, call)
    _check(call(place.address, place.step, place.region))
    return place.image


def warp_perspective_pair(image: Image, matrix: Sequence[Sequence[float]], mask: Image,
                          mask_matrix: Optional[Sequence[Sequence[float]]] = None,
                          size: Optional[Sequence[int]] = None, method: str = "linear",
                          region: Optional[Sequence[int]] = None,
                          out: Optional[Tuple[Image, Image]] = None, *,
                          out_region: Optional[Sequence[int]] = None) -> Tuple[Image, Image]:
    """warp_perspective() of an image (H, W, 3) and of a plane (H, W) of the same size, for instance
    its mask, by a matrix of its own or the same. Both results are returned; `out` is both arrays.
    What nothing is carried to is 0 in new arrays and what stands in `out`.

    Errors: those of warp_perspective().

    >>> colours, mask = np.full((2, 2, 3), 7, np.uint8), np.full((2, 2), 255, np.uint8)
    >>> warp_perspective_pair(colours, [[1, 0, 1], [0, 1, 0], [0, 0, 1]], mask)[1]
    array([[  0, 255],
           [  0, 255]], dtype=uint8)
    """
    source, second = _Source(image, region, "image", (3,)), _Source(mask, region, "mask", (1,))
    same_size(mask, "mask", source.size.width, source.size.height)
    source.check_extent()
    coefficients = _coefficients(matrix, "matrix")
    others = coefficients if mask_matrix is None else _coefficients(mask_matrix, "mask_matrix")
    kind = code(SAMPLING, method, "method")
    first_out, second_out = pair(out)
    place = source.place(size, first_out, out_region, mask)
    given = place.image.shape[1], place.image.shape[0]
    plane = _Place(given, second_out, (), out_region, image, mask, place.image, name="out[1]")
    _check(lib.qv_warp_perspective_ex(
        0, source.address, source.size, source.step, source.region, place.address, place.step,
        place.region, address_of(coefficients), kind, second.address, second.step,
        plane.address, plane.step, address_of(others)))
    return place.image, plane.image


def rotate(image: Image, degrees: float, expand: bool = False,
           shift: Optional[Sequence[float]] = None, size: Optional[Sequence[int]] = None,
           method: str = "linear", region: Optional[Sequence[int]] = None,
           out: Optional[Image] = None, *, out_region: Optional[Sequence[int]] = None,
           background: Optional[Value] = None) -> Image:
    """An image (H, W) or (H, W, 3) turned counter-clockwise as seen on the screen, about its
    middle.

    expand  the result holds all of the turned image; else it has the image's size. Quarter turns
            move pixels without sampling then.
    shift   (x, y) in pixels: turns about pixel (0, 0) instead, and shifts then. With a the angle,
              x' = cos a x + sin a y + shift[0],  y' = -sin a x + cos a y + shift[1]
    size, method, region, out_region, background: those of warp_perspective()

    Errors: those of warp_perspective(); `expand` together with `size` or `shift`.

    >>> rotate(np.array([[1, 2, 3], [4, 5, 6]], np.uint8), 90, expand=True)
    array([[3, 6],
           [2, 5],
           [1, 4]], dtype=uint8)
    """
    source = _Source(image, region)
    degrees = number(degrees, "degrees", Status.COEFF_ERR)
    kind = code(SAMPLING, method, "method")
    width, height = source.size.width, source.size.height
    if expand:
        if shift is not None or size is not None:
            raise Error(Status.BAD_ARG_ERR, "expand", "it chooses size and shift itself")
        size, (across, down) = _canvas(source.size, degrees)
    elif shift is not None:
        across, down = finite(shift, "shift", Status.COEFF_ERR, 2)
    place = source.place(size, out, out_region)
    if not expand and shift is None:
        across, down = _about_middle(degrees, width, height, place.image)

    def call(address: int, step: int, part: Rect) -> Any:
        return lib.qv_rotate(
            source.type, source.address, source.size, source.step, source.region, address, step,
            part, degrees, across, down, kind)

    place.make_ground(background, call)
    _check(call(place.address, place.step, place.region))
    return place.image


def _about_middle(degrees: float, width: int, height: int, out: Image) -> Tuple[float, float]:
    """The shift that brings the middle of the turned image to the middle of the result. Sine and
    cosine of quarter turns are exact."""
    quarters = degrees / 90
    if quarters == math.floor(quarters):
        sine, cosine = ((0., 1.), (1., 0.), (0., -1.), (-1., 0.))[int(quarters % 4)]
    else:
        sine, cosine = math.sin(math.radians(degrees)), math.cos(math.radians(degrees))
    x, y = (width - 1) / 2, (height - 1) / 2
    return ((out.shape[1] - 1) / 2 - (cosine * x + sine * y),
            (out.shape[0] - 1) / 2 - (-sine * x + cosine * y))


def rotation_canvas(size: Sequence[int], degrees: float) -> Tuple[Tuple[int, int],
                                                                  Tuple[float, float]]:
    """The (width, height) of what holds an image of `size` turned by rotate(), and the `shift` that
    brings it to its middle.

    Errors: a size below 1; an angle that is not finite; a canvas beyond 2^31 - 1 pixels.

    >>> rotation_canvas((640, 480), 90)
    ((480, 640), (0.0, 639.0))
    """
    degrees = number(degrees, "degrees", Status.COEFF_ERR)
    return _canvas(Size(*size_of(size, "size")), degrees)


def _canvas(size: Size, degrees: float) -> Tuple[Tuple[int, int], Tuple[float, float]]:
    canvas, shift = Size(), _TWO()
    status = lib.qv_rotation_canvas(size, degrees, ctypes.addressof(canvas),
                                    ctypes.addressof(shift))
    if status:
        raise failed(status, "size", "what holds the turned image is no size of an image")
    return (canvas.width, canvas.height), (shift[0], shift[1])


def rotate_bound(region: Sequence[int], degrees: float,
                 shift: Sequence[float] = (0, 0)) -> Tuple[Tuple[float, float],
                                                           Tuple[float, float]]:
    """The smallest upright rectangle around the centres of a region's pixels, (x, y, width,
    height), after rotate() with `shift`: ((smallest x, smallest y), (largest x, largest y)).

    Errors: no region of an image; numbers that are not finite.

    >>> rotate_bound((0, 0, 640, 480), 90)
    ((0.0, -639.0), (479.0, 0.0))
    """
    bound = (ctypes.c_double * 4)()
    degrees = number(degrees, "degrees", Status.COEFF_ERR)
    across, down = finite(shift, "shift", Status.COEFF_ERR, 2)
    status = lib.qv_get_rotate_bound(0, rect_of(region, "region", 1, 1), ctypes.addressof(bound),
                                     degrees, across, down)
    if status:
        raise failed(status, "region")
    return (bound[0], bound[1]), (bound[2], bound[3])


def perspective_transform(region: Sequence[int], quad: Sequence[Sequence[float]]) -> Matrix:
    """The matrix for warp_perspective() that carries a region (x, y, width, height) onto a
    quadrilateral: `quad` has the (x, y) of the centres of its top-left, top-right, bottom-right and
    bottom-left pixels.

    Errors: no region of at least 2 x 2 pixels; three corners on one line; a quadrilateral that is
    not convex.

    >>> perspective_transform((0, 0, 3, 3), [(10, 0), (14, 0), (14, 4), (10, 4)])
    array([[ 2.,  0., 10.],
           [ 0.,  2.,  0.],
           [ 0.,  0.,  1.]])
    """
    corners, result = _table(quad, (4, 2), "quad", Status.QUAD_ERR), np.empty((3, 3))
    status = lib.qv_get_perspective_transform(
        0, rect_of(region, "region", 1, 1), address_of(corners), address_of(result))
    if status:
        raise failed(status)
    return result + 0.0  # no negative zeros


def invert_transform(matrix: Sequence[Sequence[float]]) -> Matrix:
    """The inverse of a 3 x 3 matrix, which takes back what it does to positions.

    Errors: numbers that are not finite; a matrix that has none, to within rounding.

    >>> invert_transform([[2, 0, 10], [0, 2, 0], [0, 0, 1]])
    array([[ 0.5,  0. , -5. ],
           [ 0. ,  0.5,  0. ],
           [ 0. ,  0. ,  1. ]])
    """
    values, result = _coefficients(matrix, "matrix"), np.empty((3, 3))
    status = lib.qv_invert_transform(address_of(values), address_of(result))
    if status:
        raise failed(status)
    return result


def warp_source_position(region: Sequence[int], matrix: Sequence[Sequence[float]],
                         point: Sequence[float]) -> Tuple[float, float]:
    """Where warp_perspective() of a region (x, y, width, height) reads for the pixel `point`, (x,
    y), of its result, between pixels included.

    Errors: no region; a matrix that cannot be inverted, or carries nothing there.

    >>> warp_source_position((0, 0, 3, 3), [[2, 0, 10], [0, 2, 0], [0, 0, 1]], (12, 2))
    (1.0, 1.0)
    """
    values, position = _coefficients(matrix, "matrix"), _TWO()
    x, y = finite(point, "point", Status.COEFF_ERR, 2)
    status = lib.qv_warp_source_position(rect_of(region, "region", 1, 1), address_of(values), x, y,
                                         ctypes.addressof(position))
    if status:
        raise failed(status)
    return position[0], position[1]
