// A logo with alpha, pixels B, G, R, A, laid over the corner of a frame at four fifths of its
// opacity; the part that would lie outside the frame is left out.
//
//   cc logo.c $(pkg-config --cflags --libs qvAcceleratedLibC) -o logo && ./logo
#include <qvAcceleratedLib/qv.h>
#include <stdio.h>

enum { kWidth = 1280, kHeight = 720, kSide = 96 };

static unsigned char frame[kHeight][kWidth * 3];
static unsigned char logo[kSide][kSide * 4];

int main(void) {
  const qv_size size = {kWidth, kHeight}, logo_size = {kSide, kSide};
  const unsigned char grey[3] = {128, 128, 128};
  for (int y = 0; y < kSide; ++y)
    for (int x = 0; x < kSide; ++x) {  // an orange disc whose edge fades
      const int dx = 2 * x - kSide + 1, dy = 2 * y - kSide + 1;
      const int inside = kSide * kSide - dx * dx - dy * dy;
      unsigned char* const pixel = logo[y] + 4 * x;
      pixel[0] = 0, pixel[1] = 140, pixel[2] = 255;
      pixel[3] = (unsigned char)(inside <= 0 ? 0 : inside >= 1020 ? 255 : inside / 4);
    }

  int status = qv_set(QV_THREE_CHANNELS, grey, frame[0], sizeof frame[0], size);
  if (status == QV_STATUS_OK)
    status = qv_over(3, frame[0], sizeof frame[0], size, 4, logo[0], sizeof logo[0], logo_size,
                     NULL, 0, kWidth - 80, 16, 204, QV_ALPHA_OVER);
  if (status != QV_STATUS_OK) {
    fprintf(stderr, "%s: %s\n", qv_status_name(status), qv_status_text(status));
    return 1;
  }
  const unsigned char* const middle = frame[16 + kSide / 2] + 3 * (kWidth - 80 + kSide / 2);
  printf("B %d, G %d, R %d in the middle of the logo\n", middle[0], middle[1], middle[2]);
  return 0;
}
