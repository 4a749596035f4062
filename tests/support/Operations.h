// Calls of all operations with fixed arguments, for tests that ask whether something around a call
// changes what it does.
#ifndef QV_TESTS_SUPPORT_OPERATIONS_H
#define QV_TESTS_SUPPORT_OPERATIONS_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"

namespace qv::test {

// Images of the calls: high enough for four bands, wide enough for vectors of every level.
struct Frames {
  static constexpr int kWidth = 166, kHeight = 268;
  static constexpr int kBytes = kWidth * kHeight * 4;

  Frames();
  void RestoreDestinations();
  std::uint64_t Digest() const;

  std::vector<unsigned char> src[3], dst[3];

 private:
  std::vector<unsigned char> initial_;
};

struct OperationCall {
  std::string name;  // operation and arguments
  std::function<IppStatus(Frames&)> call;
};

// About 150 calls.
const std::vector<OperationCall>& AllCalls();

struct Outcome {
  IppStatus status;
  std::uint64_t digest;  // of all that the call may write
  bool operator==(const Outcome&) const = default;
};

Outcome RunCall(const OperationCall& call, Frames& frames);
std::vector<Outcome> RunAll();

}  // namespace qv::test

#endif
