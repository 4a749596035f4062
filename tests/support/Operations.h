// All operations as a table, for tests that ask whether something around a call - where its images
// lie, what the host has set, what memory there is - changes what it does.
#ifndef QV_TESTS_SUPPORT_OPERATIONS_H
#define QV_TESTS_SUPPORT_OPERATIONS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tests/support/Guarded.h"

namespace qv::test {

struct Plane {
  unsigned char* data;  // the first row
  int step;
};

// What an operation reads or writes of a plane.
struct Shape {
  int rowBytes, rows;
  bool written;
};

struct Operation {
  std::string name;  // of the operation and of what sets the call apart
  std::function<std::vector<Shape>(IppiSize)> shapes;
  std::function<IppStatus(const Plane*, IppiSize)> call;
  bool backwards = true;  // takes negative steps
};

// Every operation with its types, methods and axes. Calls succeed, for any size of some 4 x 4 on.
const std::vector<Operation>& Operations();

struct Outcome {
  IppStatus status;
  std::uint64_t digest;  // of all that the call may write
  bool operator==(const Outcome&) const = default;
};

// Memory for the planes of an operation.
class Planes {
 public:
  // Bytes that a plane can have, gaps between its rows included.
  explicit Planes(std::size_t capacity);

  // Lays the planes of an operation out, rows so far apart as `step` says of their bytes; negative
  // for the last row first.
  void Place(const Operation& operation, IppiSize size,
             const std::function<int(int)>& step = [](int rowBytes) { return rowBytes; });
  // Noise, the same each time, in all rows.
  void Fill();
  Outcome Call(const Operation& operation);
  std::uint64_t Digest() const;

 private:
  template <class Visit>
  void ForEachRow(const Visit& visit) const;

  std::vector<std::unique_ptr<GuardedMemory>> memory_;
  std::vector<Shape> shapes_;
  std::vector<Plane> planes_;
  IppiSize size_;
};

// Images high enough for four bands, wide enough for vectors of every level.
constexpr IppiSize kBanded = {166, 268};

// A call on fresh images of that size.
class Runner {
 public:
  Runner() : planes_(1 << 19) {}
  // Lays the images out; what they would give if nothing were written.
  std::uint64_t Prepare(const Operation& operation);
  Outcome Call(const Operation& operation) { return planes_.Call(operation); }
  Outcome Run(const Operation& operation) {
    Prepare(operation);
    return Call(operation);
  }

 private:
  Planes planes_;
};

std::vector<Outcome> RunAll();

}  // namespace qv::test

#endif
