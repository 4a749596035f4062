// One call of the argument space: images for it, and the comparison of all levels.
#ifndef QV_TESTS_FUZZ_CALL_H
#define QV_TESTS_FUZZ_CALL_H

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "qvAcceleratedLib/Operations.h"
#include "support/Bytes.h"
#include "tests/fuzz/Contract.h"
#include "tests/fuzz/Input.h"

namespace qv::test {

struct FuzzImage {
  unsigned char* data;
  int step;
};

// The part of an image that a call may touch: from byte `x` on, `bytes` in each of `rows` rows from
// row `y` on. Nothing else of the image need exist.
struct Part {
  std::ptrdiff_t bytes, rows, x = 0, y = 0;
};

inline bool IsEmpty(IppiSize size) { return size.width < 1 || size.height < 1; }

// The images lie apart in reserved memory, directly before or after unreadable pages. What a call
// must not touch is unreadable for the address sanitizer, the gaps between rows included, and
// compared afterwards.
class Call {
 public:
  explicit Call(Input& in);

  // The distance of rows of so many bytes: exact, padded, negative, none, huge, anything.
  int Step(const char* name, std::ptrdiff_t rowBytes);

  // Width and height of images. Unless the call is refused for want of pixels or something else,
  // they fit into memory at so many bytes a pixel.
  IppiSize Size(bool isRefused, int bytesAPixel);

  // From here on the call is known to be refused: images cannot be touched at all.
  void Refused() { refused_ = true; }
  // Or the images that follow are not concerned by that.
  void NotRefused() { refused_ = false; }
  bool refused() const { return refused_; }

  // Images whose pointer may turn out null.
  FuzzImage Source(const char* name, int step, Part part) { return Place(name, step, part, false); }
  FuzzImage Destination(const char* name, int step, Part part) {
    return Place(name, contract::DisjointStep(step, part.bytes, part.rows), part, true);
  }

  // The same, the step drawn for the bytes of their rows.
  FuzzImage Source(const char* stepName, const char* name, Part part) {
    return Source(name, Step(stepName, part.bytes), part);
  }
  FuzzImage Destination(const char* stepName, const char* name, Part part) {
    return Destination(name, Step(stepName, part.bytes), part);
  }

  // The same with rows that may overlap.
  FuzzImage OverlappingDestination(const char* name, int step, Part part) {
    return Place(name, step, part, true);
  }

  // An image whose pointer must not be null.
  FuzzImage Required(int step, Part part, bool writable) {
    if (writable) step = contract::DisjointStep(step, part.bytes, part.rows);
    return Lay(step, part, writable);
  }

  // A status that Run is not to compare with.
  static constexpr int kAnyStatus = 1 << 20;

  // Runs the call at all levels and two budgets. Aborts with a report unless all agree, the status
  // is the expected one, and a call that returns an error or StatusNoOverlapWarning wrote nothing.
  void Run(const char* function, int expected, const std::function<int()>& call,
           contract::Bands bands = contract::Bands::kSame);
  void Run(Op operation, int expected, const std::function<int()>& call,
           contract::Bands bands = contract::Bands::kSame) {
    Run(NameOf(operation), expected, call, bands);
  }

  // The functions of which a call has succeeded in this process.
  static std::set<std::string>& Succeeded();

  // The budgets that Run will use: expected statuses may depend on them.
  int budget() const { return budget_; }

  [[noreturn]] void Fail(const char* text, const char* level = "", int budget = 0, int expected = 0,
                         int got = 0);

 private:
  struct Window {
    unsigned char* data;
    std::size_t size;
  };
  struct Placed {
    unsigned char* lowest;
    std::ptrdiff_t stride, bytes, rows;
    bool writable;
    std::vector<Window> windows;  // what is filled and compared: the rows and margins around them
  };

  FuzzImage Place(const char* name, int step, Part part, bool writable);
  FuzzImage Lay(int step, Part part, bool writable);
  void FindWindows(Placed& image, unsigned char* arenaBegin, unsigned char* arenaEnd);
  void Forbid(const Placed& image, bool forbid) const;
  std::vector<unsigned char> Snapshot() const;
  void Restore(const std::vector<unsigned char>& bytes) const;
  void Release() const;

  Input& in_;
  std::vector<Placed> images_;
  bool refused_ = false;
  int budget_;
};

// The families.
void FuzzChecksum(Input& in);
void FuzzColor(Input& in);
void FuzzComposite(Input& in);
void FuzzCopy(Input& in);
void FuzzDeinterlace(Input& in);
void FuzzFields(Input& in);
void FuzzGeometry(Input& in);
void FuzzMatrices(Input& in);
void FuzzOverlay(Input& in);
void FuzzResample(Input& in);
void FuzzResize(Input& in);
void FuzzYuv(Input& in);

struct FuzzFamily {
  const char* name;
  void (*run)(Input& in);
  const char* functions[2] = {};  // beyond those of the class
};

constexpr FuzzFamily kFuzzFamilies[] = {
    {"checksum", FuzzChecksum},       {"color", FuzzColor},
    {"composite", FuzzComposite},     {"copy", FuzzCopy},
    {"deinterlace", FuzzDeinterlace}, {"geometry", FuzzGeometry},
    {"resize", FuzzResize},
    {"resample", FuzzResample, {"qv_resample"}},
    {"overlay", FuzzOverlay, {"qv_over"}},
    {"fields", FuzzFields, {"qv_deinterlace_bob", "qv_weave"}},
    {"matrices", FuzzMatrices, {"qv_invert_transform", "qv_rotation_canvas"}},
    {"yuv", FuzzYuv, {"qv_yuv_to_rgb", "qv_rgb_to_yuv"}},
};

}  // namespace qv::test

#endif
