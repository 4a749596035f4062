// Generated images for the self-test, and the digests of what became of them.
#ifndef QV_TOOLS_SELFTEST_IMAGES_H
#define QV_TOOLS_SELFTEST_IMAGES_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "qvAcceleratedLib/CqvAccLib.h"
#include "tools/selftest/Calls.h"
#include "tools/selftest/Sha256.h"

namespace qv::selftest {

// Numerical Recipes' linear congruential generator: its upper bits, the same everywhere.
class Generator {
 public:
  explicit Generator(std::uint32_t seed) : state_(seed) {}
  unsigned char Byte() {
    state_ = state_ * 1664525u + 1013904223u;
    return static_cast<unsigned char>(state_ >> 24);
  }

 private:
  std::uint32_t state_;
};

// Rows of noise with a few bytes between them, rows above and below included: what is written where
// nothing should be changes the digest.
class Image {
 public:
  static constexpr int kRowsAround = 2, kBytesBefore = 16;

  Image(int rowBytes, int rows, unsigned seed, int padding = 5)
      : step(rowBytes + padding),
        bytes_(static_cast<std::size_t>(step) * (rows + 2 * kRowsAround) + 2 * kBytesBefore) {
    Generator generator(seed);
    for (unsigned char& b : bytes_) b = generator.Byte();
    data = bytes_.data() + kBytesBefore + static_cast<std::size_t>(step) * kRowsAround;
  }
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;

  // The same rows from the bottom up.
  unsigned char* Last(int rows) { return data + static_cast<std::ptrdiff_t>(step) * (rows - 1); }

  void AddTo(Sha256& digest) const { digest.Add(bytes_.data(), bytes_.size()); }

  unsigned char* data;
  int step;

 private:
  std::vector<unsigned char> bytes_;
};

// Collects the calls of one operation after the other.
class Recorder {
 public:
  void Begin(const char* operation) {
    End();
    operation_ = operation;
    digest_ = Sha256();
    calls_ = 0;
  }
  template <class... Images>
  void Record(IppStatus status, const Images&... written) {
    digest_.Add(static_cast<long long>(status));
    (written.AddTo(digest_), ...);
    ++calls_;
  }
  void Record(IppStatus status, unsigned value) {
    digest_.Add(static_cast<long long>(status));
    digest_.Add(static_cast<long long>(value));
    ++calls_;
  }
  // Doubles in millionths: sines are not the same to the last bit in all mathematical libraries.
  void RecordNumbers(IppStatus status, const double* numbers, int count) {
    digest_.Add(static_cast<long long>(status));
    for (int i = 0; i < count; ++i) {
      const double millionths = numbers[i] * 1e6;
      digest_.Add(static_cast<long long>(millionths < 0 ? millionths - 0.5 : millionths + 0.5));
    }
    ++calls_;
  }
  std::vector<Result> Finish() {
    End();
    operation_ = nullptr;
    results_.push_back({"all", allCalls_, all_.Finish()});
    return results_;
  }

 private:
  void End() {
    if (!operation_) return;
    results_.push_back({operation_, calls_, digest_.Finish()});
    all_.Add(results_.back().digest.data(), results_.back().digest.size());
    allCalls_ += calls_;
  }

  const char* operation_ = nullptr;
  Sha256 digest_, all_;
  int calls_ = 0, allCalls_ = 0;
  std::vector<Result> results_;
};

void CallTransfers(Recorder& r);
void CallChecksums(Recorder& r);
void CallConversions(Recorder& r);
void CallResizes(Recorder& r);
void CallGeometry(Recorder& r);
void CallCompositions(Recorder& r);

}  // namespace qv::selftest

#endif
