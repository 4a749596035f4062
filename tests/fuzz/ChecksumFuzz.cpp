// The checksums, whole and in two pieces.
#include <cstring>

#include "tests/fuzz/Call.h"

namespace qv::test {

void FuzzChecksum(Input& in) {
  using Lib = CqvAccLib;
  const bool adler = in.Pick("operation: CRC-32, Adler-32", 0, 1) == 1;
  const auto type = Type(in.Any("type"));
  Call call(in);
  const auto start = static_cast<unsigned>(in.Any("start"));
  int length = in.Length("length", 20000);
  if (length > contract::kMostBytes)
    length = in.Note("  as memory allows", length % contract::kMostBytes);
  if (length < 1) call.Refused();
  const FuzzImage src = call.Source("src null", 0, {length, 1});
  const bool noSum = !adler && contract::MayBeNull(in, "crc null");
  const auto sum = [&](const unsigned char* data, int count, unsigned* value) {
    return adler ? Lib::qvAdler32(type, data, count, value)
                 : Lib::qvCRC32(type, data, count, value);
  };
  int expected = StatusOk;
  if (adler)
    expected = src.data ? StatusOk : StatusSizeErr;
  else
    expected = !src.data || noSum ? StatusNullPtrErr : length < 1 ? StatusSizeErr : StatusOk;

  unsigned wanted = start;
  bool first = true;
  const int cut = length > 1 ? in.Between("cut", 1, length - 1) : 0;
  call.Run(adler ? Op::qvAdler32 : Op::qvCRC32, expected, [&] {
    unsigned value = start;
    const IppStatus status = sum(src.data, length, noSum ? nullptr : &value);
    if (first) wanted = value;
    first = false;
    if (value != wanted) call.Fail("other checksum than the plain level's");
    if (status == StatusOk && cut > 0) {
      unsigned chained = start;
      sum(src.data, cut, &chained);
      sum(src.data + cut, length - cut, &chained);
      if (chained != value) call.Fail("other checksum in two pieces");
    }
    return static_cast<int>(status);
  });
  const unsigned kept = adler && !src.data ? 0 : start;
  if ((expected != StatusOk || length < 1) && wanted != kept) call.Fail("changed without data");
}

}  // namespace qv::test
