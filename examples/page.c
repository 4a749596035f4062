// A photographed page made straight: the corners of the page in the photo become those of an image.
//
//   cc page.c $(pkg-config --cflags --libs qvAcceleratedLibC) -o page && ./page
#include <qvAcceleratedLib/qv.h>
#include <stdio.h>

enum { kWidth = 1600, kHeight = 1200, kPageWidth = 600, kPageHeight = 800 };

static unsigned char drawn[kPageHeight][kPageWidth], photo[kHeight][kWidth];
static unsigned char page[kPageHeight][kPageWidth];

int main(void) {
  const qv_size photo_size = {kWidth, kHeight}, page_size = {kPageWidth, kPageHeight};
  const qv_rect whole_photo = {0, 0, kWidth, kHeight}, whole_page = {0, 0, kPageWidth, kPageHeight};
  const double corners[8] = {420, 130, 1180, 210, 1090, 1080, 350, 960};  // clockwise from top left
  double onto_photo[9], onto_page[9];
  for (int y = 0; y < kPageHeight; ++y)  // something to photograph: squares
    for (int x = 0; x < kPageWidth; ++x) drawn[y][x] = (x / 50 + y / 50) % 2 ? 40 : 220;

  int status = qv_get_perspective_transform(0, whole_page, corners, onto_photo);
  if (!status)  // the photo
    status = qv_warp_perspective(QV_ONE_CHANNEL, drawn[0], page_size, sizeof drawn[0], whole_page,
                                 photo[0], sizeof photo[0], whole_photo, onto_photo,
                                 QV_INTERPOLATE_CUBIC);
  if (!status) status = qv_invert_transform(onto_photo, onto_page);
  if (!status)  // and back
    status = qv_warp_perspective(QV_ONE_CHANNEL, photo[0], photo_size, sizeof photo[0], whole_photo,
                                 page[0], sizeof page[0], whole_page, onto_page,
                                 QV_INTERPOLATE_CUBIC);
  if (status) return fprintf(stderr, "%s\n", qv_status_text(status)), 1;
  int wrong = 0;
  for (int y = 25; y < kPageHeight; y += 50)  // the middles of the squares
    for (int x = 25; x < kPageWidth; x += 50) wrong += page[y][x] != drawn[y][x];
  printf("%d of %d squares are not what they were\n", wrong, 12 * 16);
  return wrong != 0;
}
