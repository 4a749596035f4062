// Generated images for the self-test, and the digests of what became of them.
#ifndef QV_TOOLS_SELFTEST_IMAGES_H
#define QV_TOOLS_SELFTEST_IMAGES_H

#include <stddef.h>
#include <stdint.h>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tools/selftest/Calls.h"
#include "tools/selftest/Sha256.h"

namespace qv::selftest {

// Numerical Recipes' linear congruential generator: its upper bits, the same everywhere.
class Generator {
 public:
  explicit Generator(uint32_t seed) : state_(seed) {}
  unsigned char Byte() {
    state_ = state_ * 1664525u + 1013904223u;
    return static_cast<unsigned char>(state_ >> 24);
  }

 private:
  uint32_t state_;
};

// Rows of noise with a few bytes between them, rows above and below included: what is written where
// nothing should be changes the digest.
class Image {
 public:
  static constexpr int kRowsAround = 2, kBytesBefore = 16;

  Image(int rowBytes, int rows, unsigned seed, int padding = 5)
      : step(rowBytes + padding),
        size_(static_cast<size_t>(step) * (rows + 2 * kRowsAround) + 2 * kBytesBefore),
        bytes_(new unsigned char[size_]) {
    Generator generator(seed);
    for (size_t i = 0; i < size_; ++i) bytes_[i] = generator.Byte();
    data = bytes_ + kBytesBefore + static_cast<size_t>(step) * kRowsAround;
  }
  ~Image() { delete[] bytes_; }
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // The same rows from the bottom up.
  unsigned char* Last(int rows) { return data + static_cast<ptrdiff_t>(step) * (rows - 1); }

  void AddTo(Sha256& digest) const { digest.Add(bytes_, size_); }

  unsigned char* data;
  int step;

 private:
  size_t size_;
  unsigned char* bytes_;
};

// Collects the calls of one operation after the other.
class Recorder {
 public:
  explicit Recorder(Results* results) : results_(*results) {}

  void Begin(Op op) {
    End();
    result_ = &results_.of[static_cast<int>(op)];
    digest_ = Sha256();
  }
  template <class... Images>
  void Record(IppStatus status, const Images&... written) {
    digest_.Add(static_cast<long long>(status));
    (written.AddTo(digest_), ...);
    ++result_->calls;
  }
  void Record(IppStatus status, unsigned value) {
    digest_.Add(static_cast<long long>(status));
    digest_.Add(static_cast<long long>(value));
    ++result_->calls;
  }
  // Doubles in millionths: sines are not the same to the last bit in all mathematical libraries.
  void RecordNumbers(IppStatus status, const double* numbers, int count) {
    digest_.Add(static_cast<long long>(status));
    for (int i = 0; i < count; ++i) {
      const double millionths = numbers[i] * 1e6;
      digest_.Add(static_cast<long long>(millionths < 0 ? millionths - 0.5 : millionths + 0.5));
    }
    ++result_->calls;
  }
  void End() {
    if (result_) digest_.Finish(result_->digest);
    result_ = nullptr;
  }

 private:
  Results& results_;
  Result* result_ = nullptr;
  Sha256 digest_;
};

void CallTransfers(Recorder& r);
void CallChecksums(Recorder& r);
void CallConversions(Recorder& r);
void CallResizes(Recorder& r);
void CallGeometry(Recorder& r);
void CallCompositions(Recorder& r);

}  // namespace qv::selftest

#endif
