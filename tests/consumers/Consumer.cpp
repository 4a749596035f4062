// A user's first program: flips a small image left to right.
#include <qvAcceleratedLib/CqvAccLib.h>

#include <cstring>

int main() {
  const unsigned char image[] = {1, 2, 3, 4, 5, 6}, expected[] = {3, 2, 1, 6, 5, 4};
  unsigned char flipped[6] = {};
  const IppStatus status =
      CqvAccLib::qvMirror(CqvAccLib::OneChannel, image, 3, flipped, 3, {3, 2}, AxisVertical);
  return status == StatusOk && std::memcmp(flipped, expected, 6) == 0 ? 0 : 1;
}
