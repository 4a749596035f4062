#include "io/Coding.h"

namespace qvtool {

std::string NameOf(const Coding& coding) {
  constexpr const char* kMatrices[] = {"BT.601", "BT.709", "BT.2020"};
  return std::string(kMatrices[coding.matrix]) +
         (coding.range == QV_STUDIO_RANGE ? ", studio range" : ", full range");
}

Coding CodingHints::Over(Coding coding) const {
  coding.matrix = matrix.value_or(coding.matrix);
  coding.range = range.value_or(coding.range);
  coding.siting = siting.value_or(coding.siting);
  return coding;
}

Coding CodingHints::ForRows(int rows) const {
  Coding usual;
  usual.matrix = rows < 720 ? QV_BT601 : QV_BT709;
  return Over(usual);
}

Phase PhaseOf(int shiftX, int shiftY, Siting siting) {
  // The first one of 2^shift pixels, seen from their middle and measured in all of them.
  const auto first = [](int shift) { return 0.5 / (1 << shift) - 0.5; };
  return {shiftY > 0 && siting == Siting::Centre ? 0 : first(shiftX),
          siting == Siting::TopLeft ? first(shiftY) : 0};
}

}  // namespace qvtool
