"""Operations beside plain numpy, on crops, padded and flipped rows; what they refuse; threads."""
import zlib
from concurrent.futures import ThreadPoolExecutor
from functools import partial

import numpy as np
import pytest
from hypothesis import given, settings, strategies as st

import qvacceleratedlib as qv

HEIGHTS, WIDTHS = st.integers(1, 12), st.integers(1, 40)


class Views:
    """Arrays of a shape as callers have them: parts of larger ones, perhaps flipped."""

    def __init__(self, random):
        self.random = random
        self.whole = []

    def __call__(self, *shape, flipped=True):
        x, y, right, below = (self.random.randrange(4) for _ in range(4))
        seed = self.random.randrange(2**32)
        around = np.random.default_rng(seed).integers(
            0, 256, (shape[0] + y + below, shape[1] + x + right) + shape[2:], np.uint8)
        if self.random.random() < 0.3:
            around[...] = self.random.choice((0, 255))
        place = np.s_[y:y + shape[0], x:x + shape[1]]
        self.whole.append((around, around.copy(), place))
        view = around[place]
        return view[::-1] if flipped and self.random.random() < 0.3 else view

    def check_and_drop_last(self):
        """The last one, which was written, is as it was around its view; the others, all over."""
        around, before, place = self.whole.pop()
        around[place] = before[place]
        for one, was in [(around, before)] + [entry[:2] for entry in self.whole]:
            np.testing.assert_array_equal(one, was)


def bgr(y, cb, cr, offsets):
    y, cb, cr = (plane.astype(np.int64) for plane in (y, cb, cr))
    b, g, r = offsets
    return np.clip(np.stack([(76284 * y + 132186 * cb + b) >> 16,
                             (76284 * y - 25690 * cb - 53281 * cr + g) >> 16,
                             (76284 * y + 104595 * cr + r) >> 16], -1), 0, 255)


def twice(plane):
    return plane.repeat(2, 0).repeat(2, 1)


def composed(name, premultiplied, a, b, a1, a2):
    first = {"over": [], "in": [a2], "out": [255 - a2], "atop": [a2], "xor": [255 - a2], "plus": []}
    second = {"over": [255 - a1], "atop": [255 - a1], "xor": [255 - a1], "plus": []}
    total = 0
    for image, alpha, factors in ((a, a1, first[name]), (b, a2, second.get(name, [0]))):
        value = image.astype(int)
        for factor in factors if premultiplied else [alpha, *factors]:
            value = value * factor // 255
        total = total + value
    return np.minimum(total, 255)


def laid(frame, fg, x, y, alpha, opacity, premultiplied):
    """`fg` has 5 rows of 7 pixels, -9 < x < W + 3 and -7 < y < H + 3."""
    fg = np.atleast_3d(fg).astype(np.int64)
    a = fg[..., 3:] if fg.shape[2] == 4 else 255 if alpha is None else alpha[..., None].astype(int)
    around = np.pad(np.atleast_3d(frame).astype(np.int64), ((9, 9), (9, 12), (0, 0)))
    under = around[y + 9:y + 14, x + 9:x + 16, :3]
    total = fg[..., :3] * opacity * (255 if premultiplied else a) + under * (65025 - a * opacity)
    under[...] = np.minimum((2 * total + 65025) // 130050, 255)
    return around[9:-9, 9:-12].reshape(frame.shape)


def bobbed(image, start, weight):
    source, result = image.astype(np.int64), image.copy()
    f = (256 - weight) // 2
    for r in range(1 - start, len(image), 2):
        near, far = (r - 1, r + 1) if start == 0 else (r + 1, r - 1)
        near = near if 0 <= near < len(image) else far
        far = far if 0 <= far < len(image) else near
        result[r] = (source[near] * (256 - f) + source[far] * f + 128) // 256
    return result


def smoothed(image, weight):
    source, result, s = image.astype(np.int64), image.copy(), (256 - weight) // 2
    result[1:-1] = ((source[:-2] + source[2:]) * s + source[1:-1] * weight) // 256
    return result


def cases(v, draw, h, w):
    """Of every operation a call that takes `out`, and what it makes."""
    c = draw.choice((1, 3))
    shape = (h, w) if c == 1 else (h, w, 3)
    n, bits = draw.randrange(256), draw.randrange(1, 9)
    image, other, planes = v(*shape), v(*shape), [v(h, w) for _ in range(3)]
    any_shape = draw.choice(((h, w), (h, w, 2), (h, w, 3), (h, w, 4)))
    raw, grey, four, three = v(*any_shape), v(h, w), v(h, w, 4), v(h, w, 3)
    wide = v(h + 2, *any_shape[1:])
    yield partial(qv.copy, raw), raw
    yield partial(qv.merge, planes), np.stack(planes, -1)
    yield partial(qv.drop_alpha, four), four[..., :3]
    yield partial(qv.add_alpha, three, n), np.dstack([three, np.full((h, w), n, np.uint8)])
    yield partial(qv.grey_to_bgr, grey), np.stack([grey] * 3, -1)
    axis, flip = draw.choice((("horizontal", np.s_[::-1]), ("vertical", np.s_[:, ::-1]),
                              ("both", np.s_[::-1, ::-1])))
    yield partial(qv.mirror, image, axis), image[flip]
    entries = np.ascontiguousarray(v(1 << bits, 3))
    yield partial(qv.palette, grey, entries), entries[grey & ((1 << bits) - 1)]
    name, premultiplied = draw.choice(("over", "in", "out", "atop", "xor", "plus")), n % 2 == 1
    yield (partial(qv.compose, image, other, name, n, bits * 31, premultiplied=premultiplied),
           composed(name, premultiplied, image, other, n, bits * 31))
    alpha = v(h, w)
    a = alpha.astype(int) if c == 1 else alpha.astype(int)[..., None]
    yield (partial(qv.merge_alpha_plus, image, other, alpha),
           np.minimum(255, a * other // 255 + ((255 - a) * image + 1) // 256))
    f, b = alpha.astype(np.float32)[..., None] / 255, grey.astype(np.float32)[..., None] / 255
    under, merged = v(h, w, 3), np.minimum(255, alpha + (255 - alpha.astype(int)) * grey // 256)
    quotient = (three * f + (1 - f) * b * under) / (np.float32(1) + merged[..., None]) * 255
    found, plane = qv.merge_alpha_over(three, alpha, under, grey)
    np.testing.assert_array_equal(plane, merged)
    assert abs(found - np.minimum(quotient, 255)).max() < 0.51
    frame, fg = draw.choice(((grey, v(5, 7)), (three, v(5, 7, 3)), (three, v(5, 7, 4)),
                             (four, v(5, 7, 4))))
    plane = None if fg.shape[2:] == (4,) or n % 3 == 0 else v(5, 7)
    x, y = draw.randrange(-9, w + 3), draw.randrange(-7, h + 3)
    yield (partial(qv.overlay, frame, fg, (x, y), plane, n, premultiplied=premultiplied),
           laid(frame, fg, x, y, plane, n, premultiplied))
    yield partial(qv.deinterlace, wide, n), smoothed(wide, n)
    start, unseen = draw.randrange(2), np.empty_like(wide)
    bob = partial(qv.deinterlace_bob, wide, ("top", "bottom")[start], n)
    yield (lambda out: bob(out if out is None else (out, None))[0]), bobbed(wide, start, n)
    yield (lambda out: bob(out if out is None else (unseen, out))[1]), bobbed(wide, 1 - start, n)
    yield partial(qv.weave, wide[0::2], wide[1::2]), wide
    yield partial(qv.resize, raw, (2 * w, 3 * h), "nearest"), raw.repeat(3, 0).repeat(2, 1)
    u, t, q = v(h, w), v(h, w), v(2 * h, 2 * w)
    yield (partial(qv.i420_to_bgr_exact_api, qv.I420(q, u, t)),
           bgr(q, twice(u) - 128., twice(t) - 128., (-1187776,) * 3))
    packed = v(h, 2 * w, 2)
    yield (partial(qv.yuyv_to_bgr_exact_api, qv.Yuyv(packed)),
           bgr(packed[..., 0], packed[:, 0::2, 1].repeat(2, 1), packed[:, 1::2, 1].repeat(2, 1),
               (-18140365, 8887730, -14608761)))


def turned(v, draw, h, w):
    """Those that take no flipped rows."""
    image = v(*draw.choice(((h, w), (h, w, 3))), flipped=False)
    quarters, value = draw.randrange(4), draw.randrange(256)
    yield partial(qv.rotate, image, 90 * quarters, expand=True), np.rot90(image, quarters)
    x, y = draw.randrange(w), draw.randrange(h)
    moved = np.full_like(image, value)
    moved[y:, x:] = image[:h - y, :w - x]
    yield partial(qv.rotate, image, 0, shift=(x, y), background=value), moved
    if h > 1 and w > 1:
        matrix = [[1, 0, x], [0, 1, y], [0, 0, 1]]
        yield partial(qv.warp_perspective, image, matrix, background=value), moved
    yield partial(qv.scale, image, value), image.astype(int) * value // 255


@settings(max_examples=60, deadline=None, database=None)
@given(st.randoms(use_true_random=False), HEIGHTS, WIDTHS)
def test_operations_are_their_models(random, h, w):
    for family, flipped in ((cases, True), (turned, False)):
        v = Views(random)
        for call, expected in family(v, random, h, w):
            np.testing.assert_array_equal(call(out=None), expected)
            out = v(*expected.shape, flipped=flipped)
            assert call(out=out) is out
            np.testing.assert_array_equal(out, expected)
            v.check_and_drop_last()


@settings(max_examples=40, deadline=None, database=None)
@given(st.randoms(use_true_random=False), HEIGHTS, WIDTHS)
def test_checksums_and_frames(random, h, w):
    v = Views(random)
    image = v(h, w, 3)
    assert qv.crc32(image) == zlib.crc32(image.tobytes())
    assert qv.adler32(image, 77) == zlib.adler32(image.tobytes(), 77)
    for frame in qv.Frame.__subclasses__():
        made = qv.convert(image, frame)
        padded = frame(*(v(*plane.shape) for plane in made.planes), width=w)
        assert qv.convert(image, frame, out=padded) is padded
        assert padded.tobytes() == made.tobytes()
        back = qv.convert(padded, "bgr")
        np.testing.assert_array_equal(back, qv.convert(padded, "rgba")[..., 2::-1])
        if frame is qv.I444:
            assert abs(back.astype(int) - image).max() <= 2
    two = qv.Nv12(v(2 * h, 2 * w), v(h, w, 2))
    three = qv.convert(two, "i420", out=qv.I420(v(2 * h, 2 * w), v(h, w), v(h, w)))
    assert three.tobytes() == two.planes[0].tobytes() + two.planes[1][..., 0].tobytes() + (
        two.planes[1][..., 1].tobytes())


def test_a_thousand_calls_from_eight_threads():
    image = np.random.default_rng(1).integers(0, 256, (64, 48, 3), np.uint8)
    calls = qv.mirror, lambda i: qv.resize(i, (31, 17)), qv.crc32
    expected = [np.rot90(image, 2), qv.resize(image, (31, 17)), zlib.crc32(image.tobytes())]

    def right(_):
        return all(np.array_equal(call(image), value)
                   for _ in range(1000) for call, value in zip(calls, expected))

    with ThreadPoolExecutor(8) as pool:
        assert all(pool.map(right, range(8)))


A = np.arange(480, dtype=np.uint8).reshape(8, 20, 3)
G, ONE = A[..., 0].copy(), np.eye(3)
FIXED = G.copy()
FIXED.setflags(write=False)
OVERLAPPING = np.lib.stride_tricks.as_strided(G, (8, 20), (1, 1))
FAR = np.lib.stride_tricks.as_strided(G, (2, 20), (2**31, 1))


@pytest.mark.parametrize("argument, status, call", [
    ("image", "DATA_TYPE_ERR", lambda out: qv.mirror([[1]], out=out)),
    ("image", "DATA_TYPE_ERR", lambda out: qv.mirror(A.astype(np.int8), out=out)),
    ("image", "CHANNEL_ERR", lambda out: qv.mirror(A[..., :2], out=out)),
    ("image", "CHANNEL_ERR", lambda out: qv.copy(A[0, 0], out=out)),
    ("image", "STEP_ERR", lambda out: qv.copy(A[:, ::2], out=out)),
    ("image", "STEP_ERR", lambda out: qv.copy(A[..., ::-1], out=out)),
    ("image", "STEP_ERR", lambda out: qv.copy(FAR, out=out)),
    ("image", "STEP_ERR", lambda out: qv.rotate(A[::-1], 90, out=out)),
    ("image", "SIZE_ERR", lambda out: qv.copy(A[:0], out=out)),
    ("image", "SIZE_ERR", lambda out: qv.deinterlace(A[:2], out=out)),
    ("out", "SIZE_ERR", lambda out: qv.mirror(A[1:], out=out)),
    ("out", "STEP_ERR", lambda out: qv.mirror(G, out=OVERLAPPING)),
    ("out", "BAD_ARG_ERR", lambda out: qv.mirror(A[:7], out=A[1:])),
    ("out", "BAD_ARG_ERR", lambda out: qv.compose(A[:7], A[1:], out=A[1:, ::1][::-1])),
    ("out", "BAD_ARG_ERR", lambda out: qv.overlay(A, A[:2, :2], out=A)),
    ("out", "BAD_ARG_ERR", lambda out: qv.mirror(G, out=FIXED)),
    ("out", "STEP_ERR", lambda out: qv.scale(G, 3, out=G[::-1])),
    ("axis", "AXIS_ERR", lambda out: qv.mirror(A, "up", out)),
    ("method", "INTERPOLATION_ERR", lambda out: qv.resize(A, (20, 8), "best", out=out)),
    ("method", "INTERPOLATION_ERR", lambda out: qv.warp_perspective(A, ONE, None, "area", out=out)),
    ("size", "SIZE_ERR", lambda out: qv.resize(A, (20, 0), out=out)),
    ("size", "SIZE_ERR", lambda out: qv.resize(A, (20.5, 8), out=out)),
    ("size", "SIZE_ERR", lambda out: qv.resize(A)),
    ("size", "RESIZE_FACTOR_ERR", lambda out: qv.resize(A, (1, 1), region=(0, 0, 1e5, 1))),
    ("region", "RECT_ERR", lambda out: qv.resize(A, region=(0, 0, 0, 4), out=out)),
    ("region", "RECT_ERR", lambda out: qv.resize(A, region=(0, 0, np.nan, 4), out=out)),
    ("region", "NO_OVERLAP_WARNING", lambda out: qv.resize(A, region=(99, 0, 1, 1), out=out)),
    ("region", "SIZE_ERR", lambda out: qv.rotate(A, 9, region=(-1, 0, 2, 2), out=out)),
    ("cubic", "OUT_OF_RANGE_ERR", lambda out: qv.resize(A, cubic=np.nan, out=out)),
    ("method", "INTERPOLATION_ERR", lambda out: qv.resize(A, method=["area"], out=out)),
    ("phase", "OUT_OF_RANGE_ERR", lambda out: qv.resize(A, phase=(2, 0), out=out)),
    ("factors", "RESIZE_FACTOR_ERR", lambda out: qv.resize_exact_api(
        A, (20, 8), factors=(np.nan, 1), out=out)),
    ("factors", "RESIZE_FACTOR_ERR", lambda out: qv.resize_exact_api(
        A, (20, 8), factors=(-1, 1), out=out)),
    ("matrix", "COEFF_ERR", lambda out: qv.warp_perspective(A, ONE * np.nan, out=out)),
    ("matrix", "COEFF_ERR", lambda out: qv.warp_perspective(A, ONE * 0, out=out, background=9)),
    ("degrees", "COEFF_ERR", lambda out: qv.rotate(A, np.inf, out=out, background=9)),
    ("degrees", "COEFF_ERR", lambda out: qv.rotate(A, "90", out=out)),
    ("background", "OUT_OF_RANGE_ERR", lambda out: qv.rotate(A, 9, out=out, background="red")),
    ("region", "COEFF_ERR", lambda out: qv.warp_perspective(A[:1], ONE, background=9)),
    ("out", "BAD_ARG_ERR", lambda out: qv.deinterlace_bob(A, out=out)),
    ("quad", "QUAD_ERR", lambda out: qv.perspective_transform((0, 0, 9, 9), [(0, 0)] * 4)),
    ("out_region", "SIZE_ERR", lambda out: qv.rotate(A, 9, out_region=(0, 0, 21, 8), out=out)),
    ("value", "OUT_OF_RANGE_ERR", lambda out: qv.fill(out, (0, 0, 256))),
    ("value", "OUT_OF_RANGE_ERR", lambda out: qv.scale(A, 1.5, out)),
    ("at", "OUT_OF_RANGE_ERR", lambda out: qv.overlay(A, A[:2], (1,), out=out)),
    ("matrix", "COEFF_ERR", lambda out: qv.warp_perspective(A, "abc", out=out)),
    ("to", "DATA_TYPE_ERR", lambda out: qv.convert(A, qv.Frame)),
    ("opacity", "OUT_OF_RANGE_ERR", lambda out: qv.overlay(A, A[:2], opacity=-1, out=out)),
    ("foreground", "CHANNEL_ERR", lambda out: qv.overlay(A, G, out=out)),
    ("alpha", "SIZE_ERR", lambda out: qv.overlay(A, A, alpha=G[1:], out=out)),
    ("operation", "ALPHA_TYPE_ERR", lambda out: qv.compose(A, A, "under", out=out)),
    ("entries", "OUT_OF_RANGE_ERR", lambda out: qv.palette(G, A[0, :3], out=out)),
    ("to", "DATA_TYPE_ERR", lambda out: qv.convert(qv.I420.empty(20, 8), "nv12", out=out)),
    ("frame", "SIZE_ERR", lambda out: qv.nv12_to_i420(qv.Nv12.empty(5, 4))),
    ("planes[1]", "SIZE_ERR", lambda out: qv.Nv12(G, A[..., :2].copy())),
    ("out[1]", "STEP_ERR", lambda out: qv.merge_alpha_over(
        A, G, A, G, (out, G.repeat(2, 1)[:, :20]))),
    ("data", "DATA_TYPE_ERR", lambda out: qv.crc32("text")),
])
def test_refusals_name_the_argument_and_write_nothing(argument, status, call):
    out, before = np.full(A.shape, 77, np.uint8), A.copy()
    with pytest.raises(qv.Error) as error:
        call(out)
    assert (error.value.argument, error.value.status) == (argument, qv.Status[status])
    assert (out == 77).all() and (A == before).all()
