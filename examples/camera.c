// A frame as a camera gives it, packed 4:2:2, made into pixels B, G, R and reduced to a third.
//
//   cc camera.c $(pkg-config --cflags --libs qvAcceleratedLibC) -o camera && ./camera
#include <qvAcceleratedLib/qv.h>
#include <stdio.h>
#include <stdlib.h>

enum { kWidth = 1920, kHeight = 1080, kSmallWidth = kWidth / 3, kSmallHeight = kHeight / 3 };

static unsigned char camera[kHeight][kWidth * 2];
static unsigned char frame[kHeight][kWidth * 3];
static unsigned char small[kSmallHeight][kSmallWidth * 3];

static void Require(int status) {
  if (status == QV_STATUS_OK) return;
  fprintf(stderr, "%s: %s\n", qv_status_name(status), qv_status_text(status));
  exit(1);
}

int main(void) {
  const qv_size size = {kWidth, kHeight}, small_size = {kSmallWidth, kSmallHeight};
  const qv_rect all = {0, 0, kWidth, kHeight};
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth * 2; ++x)  // brighter to the right, more blue and red to the bottom
      camera[y][x] = (unsigned char)(x % 2 ? 64 + y / 9 : 16 + x / 18);

  Require(qv_ycbcr422_to_bgr(0, camera[0], sizeof camera[0], frame[0], sizeof frame[0], size));
  Require(qv_resize(QV_THREE_CHANNELS, frame[0], size, sizeof frame[0], all, small[0],
                    sizeof small[0], small_size, 1 / 3.0, 1 / 3.0, QV_INTERPOLATE_AREA));
  unsigned int sum = 0;
  Require(qv_crc32(0, small[0], sizeof small, &sum));
  printf("%d x %d pixels, CRC-32 %08x\n", small_size.width, small_size.height, sum);
  return 0;
}
