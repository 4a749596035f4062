#include "ExactApi.h"

#include "Error.h"
#include "io/Status.h"

namespace qvtool {
namespace {

void ResizePlane(const Plane& from, const Plane& to, bool packed, int method) {
  const IppiRect all = {0, 0, from.columns, from.rows};
  const double xFactor = static_cast<double>(to.columns) / from.columns;
  const double yFactor = static_cast<double>(to.rows) / from.rows;
  if (packed) {  // columns are pairs of pixels
    Check("qvResizeYUV422",
          CqvAccLib::qvResizeYUV422(CqvAccLib::OneChannel, from.data,
                                    {2 * from.columns, from.rows}, from.step,
                                    {0, 0, 2 * from.columns, from.rows}, to.data, to.step,
                                    {2 * to.columns, to.rows}, xFactor, yFactor,
                                    method));
  } else {
    Check("qvResize", CqvAccLib::qvResize(from.Type("resizing"), from.data, from.Size(), from.step,
                                          all, to.data, to.step, to.Size(), xFactor, yFactor,
                                          method));
  }
}

// The planes and steps of a planar 4:2:0 frame in the order that an operation wants.
struct Planes420 {
  Planes420(const Frame& frame, bool crFirst) {
    const bool swapped = crFirst != (frame.GetLayout() == Layout::Yv12);
    for (int i = 0; i < 3; ++i) {
      const Plane& plane = frame.PlaneAt(i > 0 && swapped ? 3 - i : i);
      data[i] = plane.data;
      step[i] = plane.step;
    }
  }
  unsigned char* data[3];
  int step[3];
};

// 4:2:0 is converted in blocks of 2 x 2 pixels: an odd last column or row is left out.
void ResetEven(const Frame& in, Frame& out, Layout layout) {
  if (in.Width() < 2 || in.Height() < 2)
    throw Error("convert: the frames are " + std::to_string(in.Width()) + "x" +
                std::to_string(in.Height()) + "; wanted is 2x2 at least");
  out.Reset(layout, in.Width() & ~1, in.Height() & ~1);
}

Frame& PackedToBgr(const Frame& in, Frame& out) {
  if (in.Width() < 2) throw Error("convert: the frames are 1 pixel wide; wanted is 2 at least");
  out.Reset(Layout::Bgr, in.Width(), in.Height());
  const Plane& from = in.PlaneAt(0);
  const Plane& to = out.PlaneAt(0);
  Check("qvYCbCr422ToBGR", CqvAccLib::qvYCbCr422ToBGR(CqvAccLib::ThreeChannels, from.data,
                                                      from.step, to.data, to.step, in.Size()));
  return out;
}

Frame& PlanesToBgr(const Frame& in, Frame& out) {
  ResetEven(in, out, Layout::Bgr);
  Planes420 from(in, false);
  const Plane& to = out.PlaneAt(0);
  Check("qvYCbCr420ToBGR",
        CqvAccLib::qvYCbCr420ToBGR(CqvAccLib::ThreeChannels, from.data, from.step, to.data,
                                   to.step, out.Size()));
  return out;
}

Frame& ToPlanes(const Frame& in, Frame& out, Layout layout) {
  ResetEven(in, out, layout);
  const Plane& first = in.PlaneAt(0);
  if (in.GetLayout() == Layout::Yuyv) {
    Planes420 to(out, true);
    Check("qvYCbCr422ToYCrCb420",
          CqvAccLib::qvYCbCr422ToYCrCb420(CqvAccLib::OneChannel, first.data, first.step, to.data,
                                          to.step, out.Size()));
  } else {
    Planes420 to(out, false);
    const Plane& pairs = in.PlaneAt(1);
    Check("qvYCbCr420",
          CqvAccLib::qvYCbCr420(CqvAccLib::OneChannel, first.data, first.step, pairs.data,
                                pairs.step, to.data, to.step, out.Size()));
  }
  return out;
}

}  // namespace

void ExactResize(const Frame& in, const IppiRect& region, const Frame& out, int method) {
  if (in.GetLayout() == Layout::Uyvy)
    throw Error("--exact-api: uyvy frames given; of packed frames it takes yuyv");
  for (int i = 0; i < in.Planes(); ++i)
    ResizePlane(in.PlaneAt(i).Cut(region, in.Info().plane[i]), out.PlaneAt(i),
                in.GetLayout() == Layout::Yuyv, method);
}

ExactConverter::ExactConverter(Layout target) : target_(target) {
  if (target != Layout::Bgr && target != Layout::I420 && target != Layout::Yv12)
    throw UsageError("--to: " + NameOf(target) +
                     " given; with --exact-api wanted is bgr, i420 or yv12");
}

Frame& ExactConverter::operator()(const Frame& in, Frame& out) {
  const Layout from = in.GetLayout();
  const bool isPlanar = from == Layout::I420 || from == Layout::Yv12;
  if (from != Layout::Yuyv && from != Layout::Nv12 && !isPlanar)
    throw Error("--exact-api: " + NameOf(from) +
                " frames given; wanted is yuyv, i420, yv12 or nv12");
  if (target_ != Layout::Bgr) {
    if (isPlanar)
      throw Error("--exact-api: " + NameOf(from) + " frames given; " + NameOf(target_) +
                  " is made from yuyv and nv12");
    return ToPlanes(in, out, target_);
  }
  if (from == Layout::Yuyv) return PackedToBgr(in, out);
  // Two planes become three on the way.
  return PlanesToBgr(from == Layout::Nv12 ? ToPlanes(in, planes_, Layout::I420) : in, out);
}

}  // namespace qvtool
