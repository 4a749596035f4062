#include <algorithm>
#include <cstdio>

#include "Error.h"
#include "demo/Panel.h"
#include "io/Status.h"

namespace qvtool::demo {
namespace {

struct Kind {
  const char* name;
  const char* title;
  const char* formula;
  const char* note;
  unsigned int fresh;
  decltype(CqvAccLib::qvCRC32)* checksum;
};

// The bits of running values: a row of cells for each value, the highest bit first, white for 1.
constexpr int kCell = 12;
constexpr int kPieces = 30;

void DrawBits(const Frame& bits, int rowOfCells, unsigned int value) {
  for (int y = rowOfCells * kCell; y < (rowOfCells + 1) * kCell; ++y)
    for (int x = 0; x < 32 * kCell; ++x)
      bits.PlaneAt(0).Row(y)[x] = value >> (31 - x / kCell) & 1 ? 255 : 0;
}

void Add(const Kind& kind, const Scene& scene, Gallery& gallery,
         const std::vector<unsigned char>& bytes, unsigned int& value, const Call& call) {
  const Plane& plane = scene.colour.PlaneAt(0);
  const int pieces = std::min(kPieces, plane.rows);
  const std::size_t piece = bytes.size() / static_cast<std::size_t>(pieces);
  Frame bits(Layout::Grey, 32 * kCell, pieces * kCell);
  unsigned int soFar = kind.fresh;
  std::size_t done = 0;
  for (int i = 1; i <= pieces; ++i) {
    const std::size_t end = i == pieces ? bytes.size() : done + piece;
    Check(kind.name, kind.checksum(CqvAccLib::OneChannel, bytes.data() + done,
                                   static_cast<int>(end - done), &soFar));
    done = end;
    DrawBits(bits, i - 1, soFar);
  }
  char caption[80];
  std::snprintf(caption, sizeof caption,
                "the value after each of %d pieces, bit by bit; 0x%08X at last", pieces, soFar);
  gallery.Add({.name = kind.name,
               .title = kind.title,
               .formula = kind.formula,
               .note = kind.note,
               .calls = {call},
               .prepare = [&] { value = kind.fresh; },
               // In pieces and in one call must come to the same.
               .finish =
                   [&] {
                     if (value != soFar) throw Error(std::string(kind.name) + ": pieces differ");
                   },
               .pixels = static_cast<long long>(plane.columns) * plane.rows,
               .before = {{"the frame", scene.colour}},
               .after = {{caption, bits}}});
}

void Make(const Scene& scene, Gallery& gallery) {
  const Plane& plane = scene.colour.PlaneAt(0);
  const int rowBytes = plane.RowBytes();
  std::vector<unsigned char> bytes;
  for (int y = 0; y < plane.rows; ++y)
    bytes.insert(bytes.end(), plane.Row(y), plane.Row(y) + rowBytes);
  const unsigned char* const src = bytes.data();
  const int length = static_cast<int>(bytes.size());

  unsigned int crc = 0, adler = 1;
  Add({"checksum-crc32", "CRC-32 of the frame's bytes",
       "r = (r >> 8) ^ T[(r ^ byte) & 255], complemented before and after",
       "Every bit of the value depends on every byte before it.", 0, CqvAccLib::qvCRC32},
      scene, gallery, bytes, crc,
      QV_CALL(CqvAccLib::qvCRC32(CqvAccLib::OneChannel, src, length, &crc)));
  Add({"checksum-adler32", "Adler-32 of the frame's bytes",
       "a = (a + byte) mod 65521, b = (b + a) mod 65521; value = 65536 b + a",
       "The left half is b, the right half a.", 1,
       CqvAccLib::qvAdler32},
      scene, gallery, bytes, adler,
      QV_CALL(CqvAccLib::qvAdler32(CqvAccLib::OneChannel, src, length, &adler)));
}

const PanelSource source{130, "Checksums", {Make}};

}  // namespace
}  // namespace qvtool::demo
