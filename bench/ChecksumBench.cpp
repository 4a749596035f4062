// qvCRC32, qvAdler32. A "pixel" is a byte here.
#include "bench/Bench.h"

#if defined(QV_BENCH_ZLIB)
#include <zlib.h>
#endif
#if defined(QV_BENCH_LIBDEFLATE)
#include <libdeflate.h>
#endif
#if defined(QV_BENCH_ISAL)
#include <isa-l/crc.h>
#include <isa-l/igzip_lib.h>
#endif

using Lib = CqvAccLib;

static const bench::Family checksums([](bench::Suite& s) {
  static unsigned int value = 1;  // the running value of every contender
  struct {
    int bytes;
    const char* label;
  } const lengths[] = {{1 << 10, "1 KiB"}, {1 << 16, "64 KiB"}, {8 << 20, "8 MiB"}};
  for (const auto& [n, label] : lengths) {
    const IppiSize size = {1024, n / 1024};
    const unsigned char* const src = s.Frame(size).src;
    const auto count = static_cast<std::size_t>(n);

    s.Ours("CRC-32", size, 1, [=] { Lib::qvCRC32(Lib::OneChannel, src, n, &value); }, label);
    s.Ours("Adler-32", size, 1, [=] { Lib::qvAdler32(Lib::OneChannel, src, n, &value); }, label);
#if defined(QV_BENCH_ZLIB)
    s.Peer("CRC-32", size, "zlib",
           [=] { value = static_cast<unsigned>(crc32_z(value, src, count)); }, label);
    s.Peer("Adler-32", size, "zlib",
           [=] { value = static_cast<unsigned>(adler32_z(value, src, count)); }, label);
#endif
#if defined(QV_BENCH_LIBDEFLATE)
    s.Peer("CRC-32", size, "libdeflate", [=] { value = libdeflate_crc32(value, src, count); },
           label);
    s.Peer("Adler-32", size, "libdeflate", [=] { value = libdeflate_adler32(value, src, count); },
           label);
#endif
#if defined(QV_BENCH_ISAL)
    s.Peer("CRC-32", size, "isa-l", [=] { value = crc32_gzip_refl(value, src, count); }, label);
    s.Peer("Adler-32", size, "isa-l", [=] { value = isal_adler32(value, src, count); }, label);
#endif
  }
});
