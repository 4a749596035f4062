// One random call of a kernel, run at every level and compared with the plain rows byte for byte.
#ifndef QV_TESTS_KERNELCHECK_CASE_H
#define QV_TESTS_KERNELCHECK_CASE_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "support/Levels.h"
#include "support/Random.h"
#include "tests/support/Guarded.h"

namespace qv::test {

// An image in guarded memory: flush to one of its ends, its first row first or (step below 0) last.
struct Image {
  unsigned char* data;
  int step;
};

// How the rows of an image lie in memory: apart, upwards now and then; apart and downwards only; or
// also closer together than they are long.
enum class Rows { kApart, kDownwards, kMayOverlap };

// Time of one level in a benchmark.
struct Timing {
  std::string level;
  double nanosecondsPerPixel;
};

// A check asks a case for sizes, numbers and images and then hands it the call:
//
//   QV_CHECK(CopyRows_8u_C1) {
//     const IppiSize size = c.Size();
//     const Image src = c.Source(size.width, size.height);
//     const Image dst = c.Destination(size.width, size.height);
//     c.Compare([=] { return CopyRows_8u_C1(src.data, src.step, dst.data, dst.step, size); });
//   }
//
// Under --bench the same check is given one large size, exact steps and random bytes.
class Case {
 public:
  Case(std::vector<std::unique_ptr<GuardedMemory>>& memory, const std::vector<Level>& levels);

  // Begins a new random case; the seed decides everything that follows, what the rows choose by
  // included: a cache that every or no frame passes, gathers quick or slow.
  void Begin(std::uint64_t seed);
  // Begins a case of a fixed size whose call is timed as well as compared, on this machine.
  void BeginBench(IppiSize size, double seconds);

  // Mostly the shapes that break vectors: widths up to a few vectors, few rows; now and then more.
  IppiSize Size(int minWidth = 1, int minHeight = 1);
  bool IsBench() const { return bench_; }

  // Readable bytes with random or extreme contents.
  Image Source(std::ptrdiff_t rowBytes, int rows, Rows lie = Rows::kApart);
  // Writable bytes, restored before each level runs. Bytes outside the rows must survive. If
  // `rowsBefore` is not 0, the pointer is that many rows inside.
  Image Destination(std::ptrdiff_t rowBytes, int rows, Rows lie = Rows::kApart,
                    int rowsBefore = 0);

  // Runs the call at every level. Compares the returned value and every byte of all destinations
  // with the plain level's.
  void Compare(const std::function<int()>& call);

  Random random{0};
  int plainResult = 0;       // what the plain level's last call returned
  std::string failure;       // empty if all was well
  std::string failedLevel;
  std::vector<Timing> timings;

 private:
  struct Writable {
    unsigned char* begin;  // of the compared range, margins included
    std::size_t size;
    unsigned char* rows;   // lowest row
    std::ptrdiff_t stride, rowBytes;
    int rowCount;
    std::vector<unsigned char> initial, expected;
  };

  Image Place(std::ptrdiff_t rowBytes, int rows, Rows lie, unsigned char** lowest);
  void FillSource(unsigned char* p, std::size_t n);
  bool KeepsPadding(const Writable& w) const;
  void Fail(const std::string& level, const std::string& text);
  void Time(const std::function<int()>& call);

  std::vector<std::unique_ptr<GuardedMemory>>& memory_;
  const std::vector<Level>& levels_;
  std::size_t used_ = 0;
  std::vector<Writable> writables_;
  bool bench_ = false;
  IppiSize benchSize_{};
  double benchSeconds_ = 0;
};

// A registered check.
struct Check {
  const char* kernel;
  void (*run)(Case& c);
};

std::vector<Check>& AllChecks();

struct Registrar {
  Registrar(const char* kernel, void (*run)(Case&)) { AllChecks().push_back({kernel, run}); }
};

#define QV_CHECK(kernel)                                                            \
  static void Check_##kernel(qv::test::Case& c);                                    \
  static const qv::test::Registrar registrar_##kernel(#kernel, &Check_##kernel);    \
  static void Check_##kernel(qv::test::Case& c)

}  // namespace qv::test

#endif
