"""Frames of luma and chroma: small classes over the arrays of their planes."""
from __future__ import annotations

import ctypes
import math
from functools import lru_cache
from typing import Any, ClassVar, Dict, Optional, Tuple, Type, TypeVar

import numpy as np

from ._arrays import MOST, UINT8, Image, pixels, separate, size_of, whole
from ._errors import Error, Status

F = TypeVar("F", bound="Frame")

# Of a plane: bytes of a sample, and how many columns and rows have one of them.
_Sample = Tuple[int, int, int]
_FULL, _HALF, _QUARTER, _PAIRS = (1, 1, 1), (1, 2, 1), (1, 2, 2), (2, 2, 2)

FRAMES: Dict[str, Type["Frame"]] = {}  # by layout


@lru_cache(maxsize=64)
def _shapes(samples: Tuple[_Sample, ...], width: int, height: int) -> Tuple[Tuple[int, ...], ...]:
    shapes = []
    for count, columns, rows in samples:
        across, down = -(-width // columns), -(-height // rows)
        if len(samples) == 1:  # packed: whole groups of two pixels
            across = (width + 1) // 2 * 2
        shapes.append((down, across, count) if count > 1 else (down, across))
    return tuple(shapes)


class Frame:
    """A frame of width x height pixels as `planes`, arrays of uint8 that are taken as they are:
    crops, padded and flipped rows included. Of w x h pixels, cw = (w + 1) // 2 and
    ch = (h + 1) // 2, the planes are
        Yuyv        (h, 2 cw, 2)               packed 4:2:2, Y0 Cb Y1 Cr
        Uyvy        (h, 2 cw, 2)               packed 4:2:2, Cb Y0 Cr Y1
        I420        (h, w), (ch, cw), (ch, cw) Y, Cb, Cr
        Yv12        (h, w), (ch, cw), (ch, cw) Y, Cr, Cb
        Nv12        (h, w), (ch, cw, 2)        Y, pairs of Cb and Cr
        Nv21        (h, w), (ch, cw, 2)        Y, pairs of Cr and Cb
        I422        (h, w), (h, cw), (h, cw)   Y, Cb, Cr
        I444        (h, w), (h, w), (h, w)     Y, Cb, Cr
    `width` is needed where it is odd and the pixels are packed.

    Errors: planes that do not fit each other, or are no arrays that operations take.

    >>> frame = I420.empty(5, 3)
    >>> frame
    I420(5 x 3)
    >>> [plane.shape for plane in frame.planes]
    [(3, 5), (2, 3), (2, 3)]
    """

    layout: ClassVar[str]
    code: ClassVar[int]
    _samples: ClassVar[Tuple[_Sample, ...]] = ()  # of each plane

    __slots__ = ("planes", "width", "height", "addresses", "steps", "tables", "memory",
                 "_table", "_written")

    def __init_subclass__(cls, code: Optional[int] = None,
                          samples: Tuple[_Sample, ...] = ()) -> None:
        """A class with a code is a layout, which has the class's name in small letters."""
        super().__init_subclass__()
        if code is not None:
            cls.layout, cls.code, cls._samples = cls.__name__.lower(), code, samples
            FRAMES[cls.layout] = cls

    def __init__(self, *planes: Image, width: Optional[int] = None) -> None:
        if not self._samples:
            raise TypeError("Frame has no layout; its subclasses have: Yuyv, I420, ...")
        if len(planes) != len(self._samples):
            raise Error(Status.NULL_PTR_ERR, "planes",
                        f"{self.layout} has {len(self._samples)}, not {len(planes)}")
        described = [pixels(plane, f"planes[{i}]", (sample[0],))
                     for i, (plane, sample) in enumerate(zip(planes, self._samples))]
        self.height = described[0][3]
        self.width = described[0][2] if width is None else whole(width, "width", 1, MOST)
        for i, shape in enumerate(self.shapes(self.width, self.height)):
            if planes[i].shape != shape:
                raise Error(Status.SIZE_ERR, f"planes[{i}]",
                            f"shape {planes[i].shape} given, {shape} wanted for {self!r}")
        self.planes = planes
        # What a call needs, made once. The arrays stay where they are as long as they are held.
        self.addresses = tuple(plane[0] for plane in described)
        self.steps = tuple(plane[1] for plane in described)
        count = len(planes)
        self._table = ((ctypes.c_void_p * count)(*self.addresses),
                       (ctypes.c_int * count)(*self.steps))
        # The addresses of the tables of planes and of steps, as the C interface takes them.
        self.tables = ctypes.addressof(self._table[0]), ctypes.addressof(self._table[1])
        self.memory = planes  # arrays of just the bytes that the planes have
        self._written = False

    @property
    def size(self) -> Tuple[int, int]:
        """(width, height) in pixels."""
        return self.width, self.height

    @classmethod
    def shapes(cls, width: int, height: int) -> Tuple[Tuple[int, ...], ...]:
        """The shapes of the planes of a frame of that size."""
        return _shapes(cls._samples, width, height)

    @classmethod
    def nbytes(cls, width: int, height: int) -> int:
        """The bytes of a frame of that size without padding.

        >>> Yuyv.nbytes(1920, 1080)
        4147200
        """
        width, height = size_of((width, height), "size")
        return sum(math.prod(shape) for shape in cls.shapes(width, height))

    @classmethod
    def empty(cls: Type[F], width: int, height: int) -> F:
        """A new frame without content, its planes one after the other in memory."""
        width, height = size_of((width, height), "size")
        return cls.from_buffer(np.empty(cls.nbytes(width, height), UINT8), width, height)

    @classmethod
    def from_buffer(cls: Type[F], buffer: Any, width: int, height: int) -> F:
        """The frame whose planes lie one after the other at the beginning of bytes-like memory,
        which is not copied: what cameras and ffmpeg's rawvideo deliver.

        Errors: too few bytes.

        >>> Nv12.from_buffer(bytes(6), 2, 2).planes[1].shape
        (1, 1, 2)
        """
        width, height = size_of((width, height), "size")
        try:
            memory = np.frombuffer(buffer, UINT8)
        except (TypeError, ValueError, BufferError) as error:
            raise Error(Status.DATA_TYPE_ERR, "buffer", f"no contiguous bytes: {error}") from None
        if memory.size < cls.nbytes(width, height):
            raise Error(Status.SIZE_ERR, "buffer",
                        f"{memory.size} bytes given, {cls.nbytes(width, height)} wanted")
        planes, start = [], 0
        for shape in cls.shapes(width, height):
            end = start + math.prod(shape)
            planes.append(memory[start:end].reshape(shape))
            start = end
        frame = cls(*planes, width=width)
        frame.memory = (memory[:start],)
        return frame

    def tobytes(self) -> bytes:
        """The planes one after the other, without padding."""
        return b"".join(plane.tobytes() for plane in self.planes)

    def written(self, argument: str, *sources: Image) -> None:
        """Refuses a frame that cannot be written, or not while the sources are read."""
        if not self._written:
            for plane, sample in zip(self.planes, self._samples):
                pixels(plane, argument, (sample[0],), True)
            for i, plane in enumerate(self.planes):
                separate(plane, argument, *self.planes[:i])
            self._written = True
        for array in self.memory:
            separate(array, argument, *sources)

    def __repr__(self) -> str:
        return f"{type(self).__name__}({self.width} x {self.height})"


class Yuyv(Frame, code=6, samples=((2, 1, 1),)):
    """Packed 4:2:2, Y0 Cb Y1 Cr; see Frame."""

    __slots__ = ()


class Uyvy(Frame, code=7, samples=((2, 1, 1),)):
    """Packed 4:2:2, Cb Y0 Cr Y1; see Frame."""

    __slots__ = ()


class I420(Frame, code=8, samples=(_FULL, _QUARTER, _QUARTER)):
    """Planar 4:2:0 in the order Y, Cb, Cr; see Frame."""

    __slots__ = ()


class Yv12(Frame, code=9, samples=(_FULL, _QUARTER, _QUARTER)):
    """Planar 4:2:0 in the order Y, Cr, Cb; see Frame."""

    __slots__ = ()


class Nv12(Frame, code=10, samples=(_FULL, _PAIRS)):
    """4:2:0 in two planes, Y and pairs of Cb and Cr; see Frame."""

    __slots__ = ()


class Nv21(Frame, code=11, samples=(_FULL, _PAIRS)):
    """4:2:0 in two planes, Y and pairs of Cr and Cb; see Frame."""

    __slots__ = ()


class I422(Frame, code=12, samples=(_FULL, _HALF, _HALF)):
    """Planar 4:2:2 in the order Y, Cb, Cr; see Frame."""

    __slots__ = ()


class I444(Frame, code=13, samples=(_FULL, _FULL, _FULL)):
    """Planar 4:4:4 in the order Y, Cb, Cr; see Frame."""

    __slots__ = ()
