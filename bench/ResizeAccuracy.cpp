#include "bench/ResizeAccuracy.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/ResizePeers.h"
#include "qvAcceleratedLib/Resample.h"
#include "support/Bytes.h"
#include "support/ExactResize.h"
#include "support/Levels.h"

namespace bench {

namespace {

using qv::test::Bytes;
using qv::test::Errors;
using qv::test::Sample;

// How a method may be meant. Peers differ in where samples lie, in whether reductions widen the
// filter, and in its parameter.
struct Reading {
  bool centred;      // pixel centres on pixel centres, else corners on corners
  bool widened;
  double parameter;  // cubic: a of Keys 1981; Lanczos: the lobes
};

std::string Text(int code, const Reading& r) {
  std::string text = r.centred ? "pixel centres" : "corners aligned";
  if (code == 8) return "box";
  if (r.widened) text += ", widened";
  char parameter[32] = "";
  if (code == 4) std::snprintf(parameter, sizeof parameter, ", a = %.2f", r.parameter);
  if (code == 16) std::snprintf(parameter, sizeof parameter, ", %.0f lobes", r.parameter);
  return text + parameter;
}

std::vector<Sample> ExactAxis(int code, const Reading& r, int from, int to) {
  const double step = double(from) / to;
  const double scale = r.widened ? std::max(1.0, step) : 1;
  const double reach = (code == 2 ? 1 : code == 4 ? 2 : r.parameter) * scale;
  std::vector<Sample> axis(to);
  for (int i = 0; i < to; ++i) {
    if (code == 8) {
      axis[i] = qv::test::ExactMean(i * step, (i + 1) * step, from);
      continue;
    }
    const double p = r.centred ? (i + 0.5) * step - 0.5 : i * (from - 1.0) / (to - 1);
    double sum = 0;
    for (int s = static_cast<int>(std::ceil(p - reach)); s <= p + reach; ++s) {
      const double weight = qv::test::Kernel(code, (s - p) / scale, r.parameter);
      axis[i].emplace_back(std::clamp(s, 0, from - 1), weight);
      sum += weight;
    }
    for (auto& [s, weight] : axis[i]) weight /= sum;
  }
  return axis;
}

std::vector<double> ExactImage(const ResizeJob& job, const Reading& r) {
  const auto x = ExactAxis(job.code, r, job.from.width, job.to.width);
  const auto y = ExactAxis(job.code, r, job.from.height, job.to.height);
  const std::size_t width = x.size();
  std::vector<double> across(width * job.from.height), image(width * y.size());
  for (std::size_t row = 0; row < static_cast<std::size_t>(job.from.height); ++row)
    for (std::size_t i = 0; i < width; ++i)
      for (const auto& [s, weight] : x[i])
        across[row * width + i] += weight * job.src[row * job.from.width + s];
  for (std::size_t row = 0; row < y.size(); ++row)
    for (const auto& [s, weight] : y[row])
      for (std::size_t i = 0; i < width; ++i)
        image[row * width + i] += weight * across[s * width + i];
  return image;
}

// Bytes near the borders are left out: images are continued beyond them in different ways.
Errors ErrorsOf(const ResizeJob& job, const std::vector<double>& exact) {
  constexpr int kReach = 10;  // source samples; no filter here, widened by two, takes more
  const int margin = kReach * std::max(1, job.to.width / job.from.width + 1);
  Errors errors;
  for (int y = margin; y < job.to.height - margin; ++y)
    for (int x = margin; x < job.to.width - margin; ++x) {
      const std::ptrdiff_t i = std::ptrdiff_t{y} * job.to.width + x;
      errors.Add(exact[i], job.dst[i]);
    }
  return errors;
}

std::vector<Reading> Readings(int code, bool reduces) {
  std::vector<Reading> readings;
  const std::vector<double> parameters = code == 4    ? std::vector<double>{-0.5, -0.75}
                                         : code == 16 ? std::vector<double>{3, 4}
                                                      : std::vector<double>{0};
  for (const bool centred : {false, true})
    for (const bool widened : {false, true})
      for (const double parameter : parameters)
        if ((reduces || !widened) && (code != 8 || (centred && !widened)))
          readings.push_back({centred, widened, parameter});
  return readings;
}

void Compare(const char* method, const ResizeJob& job) {
  struct Exact {
    Reading reading;
    std::vector<double> image;
  };
  std::vector<Exact> exact;
  for (const Reading& r : Readings(job.code, job.to.width < job.from.width))
    exact.push_back({r, ExactImage(job, r)});
  // Everybody is taken by the reading that fits best.
  const auto report = [&](const std::string& name) {
    Errors best = {1e9, 1e9, 1};
    Reading reading = {};
    for (const Exact& e : exact) {
      const Errors errors = ErrorsOf(job, e.image);
      if (errors.Mean() < best.Mean()) best = errors, reading = e.reading;
    }
    std::printf("| %s | %dx%d to %dx%d | %s | %.2f | %.3f | %s |\n", method, job.from.width,
                job.from.height, job.to.width, job.to.height, name.c_str(), best.largest,
                best.Mean(), Text(job.code, reading).c_str());
  };
  for (const int threads : {1, 2}) {
    if (threads == 2 && job.code == 8) continue;  // area averaging is never cut into bands
    const qv::test::UseBudget budget(threads);
    CqvAccLib::qvResize(CqvAccLib::OneChannel, job.src, job.from, job.from.width,
                        {0, 0, job.from.width, job.from.height}, job.dst, job.to.width, job.to,
                        double(job.to.width) / job.from.width,
                        double(job.to.height) / job.from.height, job.code);
    report(threads == 1 ? "ours" : "ours, two bands");
  }
  qv::ResampleOptions options = {};
  options.filter = job.code;
  qv::Resample({job.src, job.from, job.from.width, job.dst, job.to, job.to.width}, &options);
  report("ours, qv_resample");
  for (const ResizePeer& peer : ResizePeers(job)) {
    std::fill_n(job.dst, job.to.width * job.to.height, 0);
    peer.work();
    report(peer.name);
  }
}

}  // namespace

void PrintResizeAccuracy() {
  struct {
    IppiSize from, to;
  } const pairs[] = {{{640, 360}, {1280, 720}},
                     {{640, 360}, {960, 540}},
                     {{960, 540}, {640, 360}},
                     {{1280, 720}, {640, 360}}};
  struct {
    int code;
    const char* name;
  } const methods[] = {{2, "linear"}, {4, "cubic"}, {16, "Lanczos"}, {8, "area"}};
  std::printf(
      "# Accuracy of resizing\n\n"
      "Errors of each byte against the same method in double precision, in units of a byte, on "
      "random noise (one channel); written by `scripts/bench.sh`. Rounding alone makes a largest "
      "error of 0.50 and a mean of 0.250. Bytes near the borders are left out. Where a method can "
      "be meant in several ways, each contender is compared with the one that it comes closest "
      "to, which the last column names.\n\n"
      "| method | frame | contender | largest | mean | compared with |\n"
      "| --- | --- | --- | --- | --- | --- |\n");
  Bytes src = qv::test::Noise(1280 * 720, 20268), dst(src.size());
  for (const auto& method : methods)
    for (const auto& pair : pairs)
      if (method.code != 8 || pair.to.width < pair.from.width)
        Compare(method.name, {method.code, 1, pair.from, src.data(), pair.to, dst.data()});
}

}  // namespace bench
