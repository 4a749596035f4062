#include "io/Conversion.h"

#include "io/Resizer.h"
#include "io/Samples.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Planes {
  explicit Planes(const Frame& frame) {
    for (int i = 0; i < frame.Planes(); ++i) {
      data[i] = frame.PlaneAt(i).data;
      step[i] = frame.PlaneAt(i).step;
    }
  }
  unsigned char* data[4] = {};
  int step[4] = {};
};

bool HalvesRows(const LayoutInfo& info) {
  for (int i = 0; i < info.planes; ++i)
    if (info.plane[i].shiftY > 0) return true;
  return false;
}

// Whether the library converts the layout to and from pixels in one go.
bool IsDirect(const Frame& frame) {
  const LayoutInfo& info = frame.Info();
  return info.code != 0 && !(HalvesRows(info) && frame.coding.siting == Siting::TopLeft);
}

int ChromaSiting(const Frame& frame) {
  return HalvesRows(frame.Info()) && frame.coding.siting == Siting::Centre ? QV_CHROMA_CENTRE
                                                                           : QV_CHROMA_LEFT;
}

void SetAlpha(const Frame& in, const Frame& out) {
  if (out.Info().alphaPlane < 0) return;
  if (in.Info().alphaPlane < 0)
    FillChannel(ChannelOf(out, 3), 255);
  else
    CopyChannel(ChannelOf(in, 3), ChannelOf(out, 3));
}

Layout WithAlphaOf(const Frame& frame, Layout with, Layout without) {
  return frame.Info().alphaPlane < 0 ? without : with;
}

SampleGrid GridOf(const Channel& at, const Channel& grid, Phase phase) {
  return {at.data, at.step, {grid.columns, grid.rows}, grid.shiftX, grid.shiftY, phase};
}

}  // namespace

bool Conversion::Convert(const Frame& frame, Layout layout, const Coding& coding, Frame& result) {
  const LayoutInfo &from = frame.Info(), &to = Describe(layout);
  const bool hasColours = !to.isYCbCr || frame.coding.HasColoursOf(coding);
  const bool hasPlaces = !HalvesRows(to) || frame.coding.siting == coding.siting;
  if (layout == from.layout && hasColours && hasPlaces) return false;

  result.Reset(layout, frame.Width(), frame.Height());
  result.Inherit(frame);
  result.coding = coding;
  if (from.isYCbCr && to.isYCbCr) {
    if (hasColours) {
      Rearrange(frame, result);
    } else {
      pixels_.Reset(WithAlphaOf(frame, Layout::Bgra, Layout::Bgr), frame.Width(), frame.Height());
      ToPixels(frame, pixels_);
      ToSamples(pixels_, result);
    }
  } else if (from.isYCbCr) {
    ToPixels(frame, result);
  } else if (to.isYCbCr) {
    ToSamples(frame, result);
  } else {
    ChangePixels(frame, result);
  }
  return true;
}

void Conversion::ToPixels(const Frame& in, const Frame& out) {
  if (!IsDirect(in)) {
    samples_.Reset(Layout::I444, in.Width(), in.Height());
    samples_.coding = in.coding;
    Rearrange(in, samples_);
  }
  const Frame& source = IsDirect(in) ? in : samples_;
  const Planes planes(source);
  const Plane& to = out.PlaneAt(0);
  Check("qv_yuv_to_rgb",
        qv_yuv_to_rgb(source.Info().code, planes.data, planes.step, out.Info().code, to.data,
                      to.step, {out.Width(), out.Height()}, in.coding.matrix, in.coding.range,
                      ChromaSiting(source)));
  SetAlpha(in, out);
}

void Conversion::ToSamples(const Frame& in, const Frame& out) {
  if (!IsDirect(out)) {
    samples_.Reset(Layout::I444, in.Width(), in.Height());
    samples_.coding = out.coding;
  }
  const Frame& result = IsDirect(out) ? out : samples_;
  const Planes planes(result);
  const Plane& from = in.PlaneAt(0);
  Check("qv_rgb_to_yuv",
        qv_rgb_to_yuv(in.Info().code, from.data, from.step, result.Info().code, planes.data,
                      planes.step, {in.Width(), in.Height()}, out.coding.matrix, out.coding.range,
                      ChromaSiting(result)));
  if (!IsDirect(out)) Rearrange(samples_, out);
  SetAlpha(in, out);
}

void Conversion::Rearrange(const Frame& in, const Frame& out) {
  CopyChannel(ChannelOf(in, 0), ChannelOf(out, 0));
  MoveChroma(in, out, 1);
  MoveChroma(in, out, 2);
  SetAlpha(in, out);
}

void Conversion::MoveChroma(const Frame& in, const Frame& out, int channel) {
  const Channel from = ChannelOf(in, channel), to = ChannelOf(out, channel);
  const Phase fromPhase = PhaseOf(from.shiftX, from.shiftY, in.coding.siting);
  const Phase toPhase = PhaseOf(to.shiftX, to.shiftY, out.coding.siting);
  if (from.shiftX == to.shiftX && from.shiftY == to.shiftY && fromPhase.x == toPhase.x &&
      fromPhase.y == toPhase.y) {
    CopyChannel(from, to);
    return;
  }
  source_.Reset(Layout::Grey, from.columns, from.rows);
  moved_.Reset(Layout::Grey, to.columns, to.rows);
  const Channel source = ChannelOf(source_, 0), moved = ChannelOf(moved_, 0);
  CopyChannel(from, source);
  Resample(QV_PIXELS_ONE, GridOf(source, from, fromPhase), in.Bounds(), GridOf(moved, to, toPhase),
           out.Size(), QV_INTERPOLATE_LINEAR);
  CopyChannel(moved, to);
}

void Conversion::ChangePixels(const Frame& in, const Frame& out) {
  const Plane &from = in.PlaneAt(0), &to = out.PlaneAt(0);
  if (out.GetLayout() == Layout::Grey) {  // the luma of pixels, in full range
    samples_.Reset(Layout::I444, in.Width(), in.Height());
    samples_.coding = out.coding;
    samples_.coding.range = QV_FULL_RANGE;
    ToSamples(in, samples_);
    CopyChannel(ChannelOf(samples_, 0), ChannelOf(out, 0));
  } else if (in.GetLayout() == Layout::Grey) {
    Check("qvDup", CqvAccLib::qvDup(CqvAccLib::OneChannel, from.data, from.step, to.data, to.step,
                                    from.Size()));
  } else {
    Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::ThreeChannels, from.data, from.step, to.data,
                                      to.step, from.Size()));
  }
  SetAlpha(in, out);
}

void Flatten(const Frame& bgra, Frame& bgr) {
  bgr.Reset(Layout::Bgr, bgra.Width(), bgra.Height());
  bgr.Inherit(bgra);
  const Plane &from = bgra.PlaneAt(0), &alpha = bgra.PlaneAt(1), &to = bgr.PlaneAt(0);
  const unsigned char black[3] = {};
  const qv_size size = {bgr.Width(), bgr.Height()};
  Check("qvSet", CqvAccLib::qvSet(CqvAccLib::ThreeChannels, black, to.data, to.step, to.Size()));
  Check("qv_over", qv_over(3, to.data, to.step, size, 3, from.data, from.step, size, alpha.data,
                           alpha.step, 0, 0, 255, QV_ALPHA_OVER));
}

}  // namespace qvtool
