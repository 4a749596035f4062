// The warp: checks, and the walk over the area in tiles.
#include <math.h>
#include <stddef.h>

#include "kernels/geometry/GeometryChecks.h"
#include "kernels/geometry/WarpAhead.h"
#include "kernels/geometry/WarpPlan.h"

namespace qv {

namespace {

// A turned row crosses many source rows, and its neighbours cross the same ones: working in tiles
// of this size, the source pixels of a tile stay in the first-level cache from row to row.
constexpr int kTileRows = 32;
constexpr int kTileColumns = kWarpColumns;

bool IsConditioned(const double c[3][3]) {
  const double p = c[0][0] * c[1][1], q = c[0][1] * c[1][0];
  if (fabs(p) > 1e-200) return fabs((p - q) / p) > 1e-12;
  return fabs(q) > 1e-12;
}

// Whether a convex quadrilateral and a rectangle have no point in common: two convex figures are
// apart if and only if one of their edges has the other figure wholly on its outer side. Of a
// quadrilateral that is a mere line, two opposite edges are its two sides.
bool AreApart(const double quad[4][2], const Corners& rect) {
  double bound[2][2];
  BoundingBoxOfQuad(quad, bound);
  if (bound[1][0] < rect.x0 || bound[0][0] > rect.x1 || bound[1][1] < rect.y0 ||
      bound[0][1] > rect.y1)
    return true;
  const double outside = CheckQuadrangle(quad) == 1 ? 1 : -1;
  for (int i = 0; i < 4; ++i) {
    const double* a = quad[i];
    const double* b = quad[(i + 1) % 4];
    const double dx = b[0] - a[0], dy = b[1] - a[1];
    bool all = true;
    for (int k = 0; k < 4; ++k) {
      const double x = k & 1 ? rect.x1 : rect.x0, y = k & 2 ? rect.y1 : rect.y0;
      if (!((dx * (y - a[1]) - dy * (x - a[0])) * outside < 0)) all = false;
    }
    if (all) return true;
  }
  return false;
}

// The walk over the area.
class WarpTiles {
 public:
  WarpTiles(const WarpPlan& plan, const GeometryImages& images, const Corners& part,
            const WarpSource& source, int dstStep, int dstWidth)
      : plan_(plan),
        images_(images),
        part_(part),
        source_(source),
        dstStep_(dstStep),
        pixelBytes_(PixelBytes(images.layout)),
        kernel_(images.layout == Layout::kTriples ? WarpRow_8u_C3 : WarpRow_8u_C1) {
    const double rows = 1.0 + plan.Rows().last - plan.Rows().first;
    sourceBytes_ = 1.0 * source.width * source.height * pixelBytes_;
    claims_ = WarpAhead::ClaimPays(rows * dstWidth * pixelBytes_);
  }

  // Whether anything was written.
  bool Sample() {
    bool any = false;
    const PixelRange rows = plan_.Rows();
    // The last row and the last column may be the largest int there is: steps are wider.
    for (long long top = rows.first; top <= rows.last; top += kTileRows) {
      const int y0 = static_cast<int>(top);
      const int height = rows.last - y0 < kTileRows ? rows.last - y0 + 1 : kTileRows;
      PixelRange all = {0x7FFFFFFF, -1};
      for (int i = 0; i < height; ++i) {
        spans_[i] = plan_.Columns(y0 + i);
        if (spans_[i].last < spans_[i].first) continue;
        if (spans_[i].first < all.first) all.first = spans_[i].first;
        if (spans_[i].last > all.last) all.last = spans_[i].last;
        any = true;
      }
      for (long long left = all.first & -kTileColumns; left <= all.last; left += kTileColumns)
        SampleTile(static_cast<int>(left), y0, height, all.last);
    }
    return any;
  }

 private:
  void SampleTile(int x0, int y0, int height, int last) {
    Footprint next;
    const bool fetches =
        WarpAhead::FetchPays(sourceBytes_, 0) &&
        plan_.Find(next, double{kTileColumns} + x0, y0, kTileColumns, height) &&
        WarpAhead::FetchPays(sourceBytes_, next.rows);
    WarpAhead ahead(fetches ? next : Footprint{}, part_, pixelBytes_, height);
    const int beyond = last - x0 - (kTileColumns - 1);
    const int claimed = !claims_ || beyond < 0 ? 0 : beyond < kTileColumns ? beyond : kTileColumns;
    for (int i = 0; i < height; ++i) {
      if (fetches) ahead.Fetch(images_, source_.step);
      const PixelRange& span = spans_[i];
      const int begin = span.first < x0 ? x0 : span.first;
      const int end = span.last - x0 < kTileColumns ? span.last : x0 + kTileColumns - 1;
      if (end < begin) continue;
      WarpSegment segments[kTileColumns];
      const int count = plan_.Segments(y0 + i, begin, end, segments);
      for (int k = 0; k < images_.count; ++k) {
        unsigned char* const row = images_.dst[k] + static_cast<ptrdiff_t>(y0 + i) * dstStep_;
        if (claimed > 0)
          WarpAhead::Claim(row + (static_cast<ptrdiff_t>(x0) + kTileColumns) * pixelBytes_,
                           ptrdiff_t{claimed} * pixelBytes_);
        source_.first = images_.src[k] + static_cast<ptrdiff_t>(part_.y0) * source_.step +
                        static_cast<ptrdiff_t>(part_.x0) * pixelBytes_;
        kernel_(&source_, segments, count, begin, end, row);
      }
    }
  }

  const WarpPlan& plan_;
  const GeometryImages& images_;
  const Corners& part_;
  WarpSource source_;
  int dstStep_, pixelBytes_;
  const WarpKernel& kernel_;
  double sourceBytes_;
  bool claims_;
  PixelRange spans_[kTileRows];  // of the rows of tiles
};

// An affine map folds no region, not even a single row or column of pixels: its outline is not
// checked, only that it is made of numbers.
IppStatus CheckTransform(const double coeffs[3][3], const double quad[4][2], bool isAffine) {
  if (!IsConditioned(coeffs)) return StatusCoeffErr;
  if (!isAffine) return CheckQuadrangle(quad) < 0 ? StatusCoeffErr : StatusOk;
  const bool isFinite = coeffs[0][2] - coeffs[0][2] == 0 && coeffs[1][2] - coeffs[1][2] == 0;
  return isFinite ? StatusOk : StatusCoeffErr;
}

IppStatus Warp(const void* src, IppiSize srcSize, int srcStep, IppiRect srcRoi, void* dst,
               int dstStep, IppiRect dstRoi, Layout layout, const double coeffs[3][3],
               int interpolation, bool isAffine) {
  const IppStatus status = CheckRegions(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi);
  if (status != StatusOk) return status;
  const int method = interpolation & 0x7FFFFFFF;
  if (method != InterpolateNearest && method != InterpolateLinear && method != InterpolateCubic)
    return StatusInterpolationErr;
  GeometryImages images;
  if (FindImages(src, dst, layout, images) != StatusOk) return StatusNullPtrErr;
  double quad[4][2];
  ProjectRectCorners(coeffs, CornersOf(srcRoi), quad);
  if (CheckTransform(coeffs, quad, isAffine) != StatusOk) return StatusCoeffErr;
  const IppiRect part = ClipToImage(srcRoi, srcSize);
  if (part.width < 1 || part.height < 1) return isAffine ? StatusNoOverlapWarning : StatusRectErr;

  const WarpSource source = {nullptr, srcStep, part.width, part.height,
                             static_cast<IppiInterpolation>(method)};
  const Corners sampled = CornersOf(part), destination = NumberedCorners(dstRoi);
  const WarpPlan plan(coeffs, sampled, destination, source.method);
  if (WarpTiles(plan, images, sampled, source, dstStep, dstRoi.width).Sample()) return StatusOk;
  return AreApart(quad, destination) ? StatusNoOverlapWarning : StatusOk;
}

}  // namespace

IppStatus WarpPerspectiveCore(const void* src, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                              void* dst, int dstStep, IppiRect dstRoi, Layout layout,
                              const double coeffs[3][3], int interpolation) {
  return Warp(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, layout, coeffs, interpolation,
              false);
}

IppStatus WarpAffineCore(const void* src, IppiSize srcSize, int srcStep, IppiRect srcRoi, void* dst,
                         int dstStep, IppiRect dstRoi, Layout layout, const double coeffs[2][3],
                         int interpolation) {
  const double projective[3][3] = {{coeffs[0][0], coeffs[0][1], coeffs[0][2]},
                                   {coeffs[1][0], coeffs[1][1], coeffs[1][2]},
                                   {0, 0, 1}};
  return Warp(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi, layout, projective,
              interpolation, true);
}

IppStatus WarpPerspective_8u_C1(const unsigned char* src, IppiSize srcSize, int srcStep,
                                IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRoi,
                                const double coeffs[3][3], int interpolation) {
  return WarpPerspectiveCore(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi,
                             Layout::kGrey, coeffs, interpolation);
}

IppStatus WarpPerspective_8u_C3(const unsigned char* src, IppiSize srcSize, int srcStep,
                                IppiRect srcRoi, unsigned char* dst, int dstStep, IppiRect dstRoi,
                                const double coeffs[3][3], int interpolation) {
  return WarpPerspectiveCore(src, srcSize, srcStep, srcRoi, dst, dstStep, dstRoi,
                             Layout::kTriples, coeffs, interpolation);
}

}  // namespace qv
