// qvtool deinterlace: smooths the combing of interlaced frames.
#include <vector>

#include "Command.h"
#include "StreamFields.h"
#include "io/Status.h"

namespace qvtool {
namespace {

struct Options {
  int centreWeight = 128;
  unsigned mode = 0;
};

void CopyRows(const Plane& from, const Plane& to) {
  Check("qvCopy", CqvAccLib::qvCopy(CqvAccLib::OneChannel, from.data, from.step, to.data, to.step,
                                    to.SizeInBytes()));
}

Plane LastRow(const Plane& plane) {
  return {plane.Row(plane.rows - 1), plane.step, plane.columns, 1, plane.bytes};
}

// Modes 4 and 16 begin a row above the image and read one row more: the filter runs on the plane
// with its first row repeated twice above, and what it writes above the plane is dropped.
class Deinterlace : public Step {
 public:
  explicit Deinterlace(const Options& options) : options_(options) {}

  Frame& operator()(Frame& in, Frame& out) override {
    if (in.Height() < 3)
      throw Error("deinterlace: the frames are " + std::to_string(in.Height()) +
                  " rows high; wanted is 3 at least");
    out.ResetLike(in);
    out.parameters = WithoutFieldOrder(in.parameters);
    for (int i = 0; i < in.Planes(); ++i) {
      const Plane& from = in.PlaneAt(i);
      const Plane& to = out.PlaneAt(i);
      if (from.rows < 3) {  // chroma of a frame of a few rows
        CopyRows(from, to);
      } else if (options_.mode == 4 || options_.mode == 16) {
        FilterExtended(from, to);
      } else {
        FilterRows(from, to);
        CopyRows(LastRow(from), LastRow(to));  // which mode 1 leaves unwritten
      }
    }
    return out;
  }

  VideoFields Fields(const VideoFields& fields, IppiSize, IppiSize) const override {
    return Progressive(fields);
  }

 private:
  void FilterRows(const Plane& from, const Plane& to) const {
    Check("qvDeinterlace",
          CqvAccLib::qvDeinterlace(CqvAccLib::OneChannel, from.data, from.step, to.data, to.step,
                                   from.SizeInBytes(), static_cast<unsigned>(options_.centreWeight),
                                   options_.mode));
  }

  void FilterExtended(const Plane& from, const Plane& to) {
    const Plane source = Extended(from, 2, source_), result = Extended(from, 1, result_);
    FilterRows(source, result);
    CopyRows(result, to);
  }

  // A copy of the plane with its first row repeated above it.
  static Plane Extended(const Plane& plane, int rowsAbove, std::vector<unsigned char>& memory) {
    memory.resize(static_cast<std::size_t>(plane.step) *
                  static_cast<std::size_t>(plane.rows + rowsAbove));
    Plane extended = plane;
    extended.data = memory.data();
    for (int y = 0; y < rowsAbove; ++y) {
      extended.rows = 1;
      CopyRows(plane, extended);
      extended.data += plane.step;
    }
    extended.rows = plane.rows;
    CopyRows(plane, extended);
    return extended;
  }

  Options options_;
  std::vector<unsigned char> source_, result_;
};

MakeStep Configure(CLI::App& app) {
  auto options = std::make_shared<Options>();
  AddInteger(app, "--centre-weight", options->centreWeight, 0, 256,
             "Weight of a row in its own result, in 1/256; its neighbours share the rest (128)");
  AddChoice<unsigned>(
      app, "--mode", options->mode,
      {{"inner", 0}, {"upper", 16}, {"0", 0}, {"1", 1}, {"4", 4}, {"16", 16}},
      "Rows that are filtered (inner): all but the first and the last, or with upper the first as "
      "well; 0 and 1 are other names of inner and 4 and 16 of upper");
  app.footer(
      "Other rows stay as they are. With upper the first row is its own upper neighbour. Every\n"
      "plane is filtered on its own grid. A stream says of itself then that it is progressive.\n"
      "  qvtool deinterlace clip.y4m smooth.y4m --mode upper");
  return EachFrameWith<Deinterlace>(options);
}

const Command command{"deinterlace", "Smooth the combing of interlaced frames", Configure};

}  // namespace
}  // namespace qvtool
