// Fast operations on raw 8-bit pixel buffers, for C and for all languages that can call C. The
// library is one of its own, libqvAcceleratedLibC, with the same code as that of the C++ class
// CqvAccLib (CqvAccLib.h): its bytes and statuses are those of the class. A process may have both;
// each has a team of threads of its own.
//
// Conventions of every operation:
//   - All images are 8 bits a channel. A pointer points at the first byte of the top-left pixel of
//     the region worked on; rows lie below each other, `step` bytes from one row's first byte to
//     the next one's. Steps are in bytes; unless an operation says otherwise they are not checked,
//     may be padded and may be negative. Any alignment will do.
//   - Exactly the bytes that an operation names are written. Bytes between the end of a row and the
//     next row are neither read nor written. Rows of a destination must not overlap each other
//     unless an operation says what they then hold.
//   - Large images are cut into bands that threads of the library's own work on, at most qv_threads
//     less the calling one for the whole process, whoever calls; the result does not depend on the
//     number of bands unless an operation says so. A call stays on the calling thread where sharing
//     does not pay, where no other thread is free or can be had, and inside a parallel region of
//     the host's OpenMP runtime.
//   - Nothing throws and nothing but those threads is kept between calls; all functions may run on
//     several threads at once, and in a child process after a fork.
//   - Matrices and lists of points are passed as their doubles one after the other: c_ik of a
//     matrix is coeffs[3 * i + k]; x and y of a corner follow each other.
//   - Every operation returns a status (enum qv_status): 0 for success, below 0 for an error, above
//     0 for a warning. The statuses of an operation are listed in the order in which they are
//     checked. Codes are ints whatever their enumeration: any value may be passed.
#ifndef QVACCELERATEDLIB_QV_H
#define QVACCELERATEDLIB_QV_H

#if defined(_WIN32)
#if defined(QVACCELERATEDLIB_C_BUILD)
#define QV_API(type) type __cdecl
#else
#define QV_API(type) __declspec(dllimport) type __cdecl
#endif
#elif defined(__GNUC__)
#define QV_API(type) __attribute__((visibility("default"))) type
#else
#define QV_API(type) type
#endif

#if defined(__cplusplus)
extern "C" {
#endif

// A width in pixels and a height in rows.
typedef struct qv_size {
  int width;
  int height;
} qv_size;

// A region of an image in pixels; its far corner is the pixel (x + width - 1, y + height - 1).
typedef struct qv_rect {
  int x;
  int y;
  int width;
  int height;
} qv_rect;

// ==== Written by scripts/c_header.py from CqvAccLib.h ====

// What an operation returns.
enum qv_status {
  QV_STATUS_EMPTY_OUTPUT_ERR = -201,    // a scaled destination extent rounds to nothing
  QV_STATUS_QUAD_ERR = -58,             // the quadrilateral is degenerate or not convex
  QV_STATUS_RECT_ERR = -57,             // a region is too small, or (warps) has no pixel inside its
                                        // image
  QV_STATUS_COEFF_ERR = -56,            // the transform cannot be inverted
  QV_STATUS_CHANNEL_ERR = -53,          // a channel count other than 1, 3 or 4
  QV_STATUS_ALPHA_TYPE_ERR = -50,       // a composition code other than 0 to 11
  QV_STATUS_RESIZE_FACTOR_ERR = -23,    // a scale factor not above 0, or area averaging asked to
                                        // enlarge
  QV_STATUS_INTERPOLATION_ERR = -22,    // an interpolation code that the operation does not accept
  QV_STATUS_AXIS_ERR = -21,             // a mirror axis other than 0, 1 or 2
  QV_STATUS_STEP_ERR = -14,             // a row step below 1, where steps are checked
  QV_STATUS_OUT_OF_RANGE_ERR = -11,     // a palette bit size below 1 or above 8
  QV_STATUS_MEM_ALLOC_ERR = -9,         // work memory could not be obtained
  QV_STATUS_NULL_PTR_ERR = -8,          // a required pointer is null, or a band of qv_resize lacks
                                        // memory
  QV_STATUS_SIZE_ERR = -6,              // a width or height below 1
  QV_STATUS_BAD_ARG_ERR = -5,           // three corners of a quadrilateral lie on one line
                                        // (internal)
  QV_STATUS_QUAD_SIGN_ERR = -4,         // the corners of a quadrilateral turn both ways (internal)
  QV_STATUS_DATA_TYPE_ERR = -2,         // a data type that the operation does not handle
  QV_STATUS_OK = 0,                     // success
  QV_STATUS_NOTHING_TO_DO_WARNING = 1,  // the last band of a resize has no pixel to write
  QV_STATUS_CPU_UNKNOWN = 20,           // start-up did not recognise the processor (internal)
  QV_STATUS_NO_OVERLAP_WARNING = 29,    // a region is outside its image or misses the destination
  QV_STATUS_ODD_SIZE_WARNING = 35       // an odd last column or row was left unwritten
};

// How resizing, rotation and warping make a pixel from those around its place in the source. Which
// of these an operation takes is said there; its parameter is an int.
enum qv_interpolation {
  QV_INTERPOLATE_NEAREST = 1,
  QV_INTERPOLATE_LINEAR = 2,
  QV_INTERPOLATE_CUBIC = 4,
  QV_INTERPOLATE_AREA = 8,
  QV_INTERPOLATE_LANCZOS = 16
};

// Which way qv_mirror flips.
enum qv_axis {
  QV_AXIS_HORIZONTAL = 0,  // about the horizontal axis: top to bottom
  QV_AXIS_VERTICAL = 1,    // about the vertical axis: left to right
  QV_AXIS_BOTH = 2         // both: a turn by 180 degrees
};

// The compositions of qv_alpha_comp_c (Porter and Duff 1984), for plain and for premultiplied
// colours.
enum qv_alpha_type {
  QV_ALPHA_OVER = 0,
  QV_ALPHA_IN = 1,
  QV_ALPHA_OUT = 2,
  QV_ALPHA_ATOP = 3,
  QV_ALPHA_XOR = 4,
  QV_ALPHA_PLUS = 5,
  QV_ALPHA_OVER_PREMUL = 6,
  QV_ALPHA_IN_PREMUL = 7,
  QV_ALPHA_OUT_PREMUL = 8,
  QV_ALPHA_ATOP_PREMUL = 9,
  QV_ALPHA_XOR_PREMUL = 10,
  QV_ALPHA_PLUS_PREMUL = 11
};

// Layout of the pixels that an operation works on. Operations that handle one fixed layout ignore
// it.
enum qv_data_type {
  QV_ONE_CHANNEL = 2,              // one byte a pixel
  QV_THREE_CHANNELS = 4,           // three interleaved bytes a pixel
  QV_PLANE_TO_THREE_CHANNELS = 9,  // one byte a pixel into the first of three (qv_copy)
  QV_FOUR_TO_THREE_CHANNELS = 13,  // four bytes a pixel to three, the fourth dropped (qv_copy)
  QV_THREE_TO_FOUR_CHANNELS = 14,  // three bytes a pixel to four, the fourth kept (qv_copy)
  QV_SCALE_PLANE = 16              // bytes scaled in place (qv_mul_c_scale)
};

// ---- Copy, fill, mirror, palette, scale ---------------------------------------------------------

// Copies an image, either as it is or while changing its layout. With k the pixel of a row:
//   type 2   dst[k] = src[k]
//   type 4   dst[3k + c] = src[3k + c], c = 0, 1, 2
//   type 9   dst[3k] = src[k]; the other two bytes of a destination pixel are not stored to, so
//            that three calls with dst, dst + 1 and dst + 2 merge three planes into one image
//   type 13  dst[3k + c] = src[4k + c], c = 0, 1, 2; src[4k + 3] is dropped
//   type 14  dst[4k + c] = src[3k + c], c = 0, 1, 2; dst[4k + 3] is not stored to
// The last byte stored in a row is the last one named above. Source and destination must not
// overlap.
// Returns QV_STATUS_DATA_TYPE_ERR (-2) for any other type; QV_STATUS_NULL_PTR_ERR (-8) if src or
// dst is null; QV_STATUS_SIZE_ERR (-6) if width or height is below 1.
QV_API(int) qv_copy(int type, const unsigned char* src, int src_step, unsigned char* dst,
                    int dst_step, qv_size size);

// Makes a grey plane into a three-byte image: dst[3k] = dst[3k + 1] = dst[3k + 2] = src[k]. `type`
// is ignored. Source and destination must not overlap.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src or dst is null; QV_STATUS_SIZE_ERR (-6) if width or
// height is below 1.
QV_API(int) qv_dup(int type, const unsigned char* src, int src_step, unsigned char* dst,
                   int dst_step, qv_size size);

// Fills an image with one pixel value.
//   type 2   dst[k] = value[0]
//   type 4   dst[3k + c] = value[c], c = 0, 1, 2
// Returns QV_STATUS_DATA_TYPE_ERR (-2) for any other type; QV_STATUS_NULL_PTR_ERR (-8) if dst is
// null or, for type 4, value is null (for type 2 a null value must not be passed: it is read before
// anything is checked); QV_STATUS_SIZE_ERR (-6) if width or height is below 1.
QV_API(int) qv_set(int type, const unsigned char* value, unsigned char* dst, int dst_step,
                   qv_size size);

// Writes the mirror image of a source of width W and height H (type 2: one byte a pixel, type 4:
// three bytes a pixel, kept in order). With (x, y) a source pixel:
//   axis 0   goes to (x, H - 1 - y)          top to bottom
//   axis 1   goes to (W - 1 - x, y)          left to right
//   axis 2   goes to (W - 1 - x, H - 1 - y)  both
// Source and destination must not overlap.
// Returns 0 with nothing looked at or written for any other axis; QV_STATUS_DATA_TYPE_ERR (-2) for
// any other type; QV_STATUS_NULL_PTR_ERR (-8) if src or dst is null; QV_STATUS_SIZE_ERR (-6) if
// width or height is below 1.
QV_API(int) qv_mirror(int type, const unsigned char* src, int src_step, unsigned char* dst,
                      int dst_step, qv_size size, int axis);

// Looks every byte of an index image up in a palette of 2^bit_size three-byte entries:
//   dst[3k + c] = palette[3 * (src[k] & (2^bit_size - 1)) + c], c = 0, 1, 2
// `type` is ignored. Exactly the 3 * 2^bit_size bytes of the palette may be read.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src, dst or palette is null; QV_STATUS_SIZE_ERR (-6) if
// width or height is below 1; QV_STATUS_OUT_OF_RANGE_ERR (-11) if bit_size is below 1 or above 8.
QV_API(int) qv_lut_palette(int type, const unsigned char* src, int src_step, unsigned char* dst,
                           int dst_step, qv_size size, const unsigned char* palette, int bit_size);

// Scales every byte in place by value / 255, truncated: x = floor(x * value / 255). size.width
// counts bytes. Returns QV_STATUS_DATA_TYPE_ERR (-2) if type is not 16; QV_STATUS_NULL_PTR_ERR (-8)
// if src_dst is null; QV_STATUS_STEP_ERR (-14) if src_dst_step is below 1; QV_STATUS_SIZE_ERR (-6)
// if width or height is below 1.
QV_API(int) qv_mul_c_scale(int type, unsigned char value, unsigned char* src_dst, int src_dst_step,
                           qv_size size);

// ---- Checksums ----------------------------------------------------------------------------------

// A checksum is a running value: pass the value of fresh data (0 for CRC-32, 1 for Adler-32) in
// before the first piece of a message and the result of one call into the next. The value after the
// last piece is the checksum of the whole message, however it was cut. `type` is ignored; src
// points at `length` bytes, of any alignment. One thread does the work.

// CRC-32 of ITU-T V.42 and ISO 3309: the remainder modulo
//   x^32 + x^26 + x^23 + x^22 + x^16 + x^12 + x^11 + x^10 + x^8 + x^7 + x^5 + x^4 + x^2 + x + 1
// with the low bit of each byte first, register set to ones at the start and complemented at the
// end. The value is the finished CRC of the bytes so far: *crc is complemented, fed the bytes (r =
// (r >> 8) ^ T[(r ^ byte) & 255], T[128] = 0xEDB88320) and complemented again. Fresh: 0. The nine
// characters "123456789" give 0xCBF43926.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src or crc is null; QV_STATUS_SIZE_ERR (-6) if length is
// below 1. *crc is kept then.
QV_API(int) qv_crc32(int type, const unsigned char* src, int length, unsigned int* crc);

// Adler-32 of RFC 1950: *adler = b * 65536 + a, and each byte d makes
//   a = (a + d) mod 65521, b = (b + a) mod 65521
// Fresh: 1. The three characters "abc" give 0x024D0127. A starting value may have halves of 65521
// and above; those of a result are below 65521.
// Returns QV_STATUS_SIZE_ERR (-6), and sets *adler to 0, if src is null; 0, and keeps *adler, if
// length is below 1. adler must not be null: it is read before anything is checked.
QV_API(int) qv_adler32(int type, const unsigned char* src, int length, unsigned int* adler);

// ---- Colour-format conversion -------------------------------------------------------------------

// Samples are 8-bit BT.601 in studio range: Y 16 to 235, Cb and Cr 16 to 240 around 128; every byte
// value is accepted. Packed 4:2:2 lies in memory as Y0, Cb, Y1, Cr for two pixels side by side; a
// 4:2:0 chroma sample serves a block of 2 x 2 pixels. Chroma is repeated, never interpolated.
// `type` is ignored. >> is the arithmetic shift, clamp() limits to 0 .. 255. Bands have an even
// height. Source and destination must not overlap.

// Splits two-plane 4:2:0 into three planes: a luma plane (width x height bytes) and a plane of
// height / 2 rows of width / 2 pairs Cb, Cr become dst[0] = Y, dst[1] = Cb, dst[2] = Cr, with steps
// dst_step[0 .. 2]. An odd last column or row is left unwritten without a warning.
//   dst[1][k][j] = src_cbcr[k][2j]
//   dst[2][k][j] = src_cbcr[k][2j + 1]
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src_y, src_cbcr, dst, dst_step or one of the three planes
// is null; QV_STATUS_SIZE_ERR (-6) if width or height is below 2.
QV_API(int) qv_ycbcr420(int type, const unsigned char* src_y, int src_y_step,
                        const unsigned char* src_cbcr, int src_cbcr_step,
                        unsigned char* const dst[3], const int dst_step[3], qv_size size);

// Splits packed 4:2:2 into planar 4:2:0, in the order dst[0] = Y, dst[1] = Cr, dst[2] = Cb. The
// chroma of each two rows is that of the upper one; the lower one's is dropped, not averaged. An
// odd last column or row is left unwritten without a warning.
//   dst[0][y][2j] = src[y][4j]         dst[0][y][2j + 1] = src[y][4j + 2]
//   dst[1][k][j]  = src[2k][4j + 3]    dst[2][k][j]      = src[2k][4j + 1]
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src, dst, dst_step or one of the three planes is null;
// QV_STATUS_SIZE_ERR (-6) if width or height is below 2.
QV_API(int) qv_ycbcr422_to_ycrcb420(int type, const unsigned char* src, int src_step,
                                    unsigned char* const dst[3], const int dst_step[3],
                                    qv_size size);

// Converts planar 4:2:0, src[0] = Y, src[1] = Cb, src[2] = Cr with steps src_step[0 .. 2], to
// pixels B, G, R. With u = Cb - 128 and v = Cr - 128:
//   B = clamp((76284 Y + 132186 u - 1187776) >> 16)
//   G = clamp((76284 Y - 25690 u - 53281 v - 1187776) >> 16)
//   R = clamp((76284 Y + 104595 v - 1187776) >> 16)
// which is ITU-R BT.601 in 16.16 fixed point, rounded half up (1187776 = 16 * 76284 - 32768). An
// odd last column or row is left unwritten; the planes need not have samples for it.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src, src_step or dst is null; QV_STATUS_SIZE_ERR (-6) if
// width or height is below 1; QV_STATUS_NULL_PTR_ERR (-8) if one of the three planes is null;
// QV_STATUS_ODD_SIZE_WARNING (35) if width or height is odd (all the rest is converted).
QV_API(int) qv_ycbcr420_to_bgr(int type, const unsigned char* const src[3], const int src_step[3],
                               unsigned char* dst, int dst_step, qv_size size);

// Converts packed 4:2:2 to pixels B, G, R:
//   B = clamp((76284 Y + 132186 Cb - 18140365) >> 16)
//   G = clamp((76284 Y - 53281 Cr - 25690 Cb + 8887730) >> 16)
//   R = clamp((76284 Y + 104595 Cr - 14608761) >> 16)
// which is ITU-R BT.601 in 16.16 fixed point, rounded down, with offsets 13, 14 and 57 below the
// exact ones of Y - 16, Cb - 128 and Cr - 128, so that whole numbers come out one lower. The last
// pixel of an odd width has the first two bytes of a group alone: it takes its Cr from the group
// before, and nothing past its Cb is read.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src or dst is null; QV_STATUS_SIZE_ERR (-6) if width is
// below 2 or height below 1.
QV_API(int) qv_ycbcr422_to_bgr(int type, const unsigned char* src, int src_step, unsigned char* dst,
                               int dst_step, qv_size size);

// ---- Resizing -----------------------------------------------------------------------------------

// Scales the region src_roi of an image of src_size pixels into dst, by x_factor and y_factor
// (destination size over source size). src points at the image's first pixel, not the region's; dst
// points at the first pixel written. Pixels of type 2 have one byte, of type 4 three.
// Interpolation:
//   1   nearest neighbour
//   2   linear
//   4   cubic, Keys' kernel with a = -0.5 (Keys 1981)
//   8   area averaging, the mean over the part of the source that a pixel covers; with a factor
//       above 1 it is done as 16
//   16  Lanczos, three lobes: six taps, weights scaled to sum 1
// The filters are not widened when reducing: 8 is the method for strong reductions.
//
// The region is clipped to the image; let W x H be what is left of it. Written are trunc(W *
// x_factor + 1e-07) columns and trunc(H * y_factor + 1e-07) rows, but at least one and at most
// dst_roi_size; the rest of dst is left alone. Pixels outside the clipped region are never read:
// taps that fall there take its nearest edge pixel.
//
// Where destination pixel i of an axis of L source pixels with factor F lies in the region, a whole
// number being the middle of a pixel:
//   code 1          (i + 0.5) / F - 0.5, rounded:  pixel centres
//   codes 2, 4, 16  i * (L - 1) / (L * F - 1):     corner-aligned
//   code 8          covers (i / F - 0.5, (i + 1) / F - 0.5)
// Five pixels from three (F = 5/3), source pixels as |, destination pixels as o:
//   source            |---------|---------|
//   code 1          o-----o-----o-----o-----o
//   codes 2 to 16     o----o----o----o----o
// Positions are accumulated, in double precision: code 1 starts at 0.5 / F and adds 1 / F, the
// others start at 0 and add the step.
//
// Code 2 has the arithmetic p0 * (16384 - w) + p1 * w, p0 being the pixel at the whole part of the
// position and w = trunc(f * 16384 + 1e-07), f its fraction, in double precision and then rounded
// to single precision; on the region's last pixel p1 is that pixel and w = 16384. Along x h = (sum
// + 128) >> 8, then along y out = (h0 * (16384 - w) + h1 * w + 524288) >> 20. Codes 4, 8 and 16
// round the exact value to nearest and limit it to 0 .. 255; each byte is within one unit of it,
// and on average within 0.26 (0.25 is a perfect rounding).
//
// Bands. With a budget of several threads, and more than 64 rows of both src_size and dst_roi_size
// a band, codes 1, 2, 4 and 16 run in bands (unless a band of dst_roi_size took more work memory
// than an int can count), which lie differently: all codes use pixel centres, in coordinates of the
// whole image,
//   code 1  trunc((i + 0.5) / F + 1e-10);  codes 2, 4, 16  (i + 0.5) / F - 0.5,
// and written is what the region becomes there: from trunc(src_roi.x * x_factor + 0.4999999999) to
// before trunc((src_roi.x + W) * x_factor + 0.4999999999), rows likewise, as far as it lies in
// dst_roi_size. So a region that does not start at 0 is displaced in dst by its origin times the
// factor. The number of bands makes no difference to the bytes; whether there are several does.
//
// If dst_roi_size differs from src_size by at most one pixel each way and src_roi is the whole
// image, code 1 is used whatever is asked for. If the source image is narrower or lower than 8
// pixels, code 16 becomes 4; than 4 pixels, code 4 becomes 2; than 2 pixels, all but 8 become 1
// (not in bands).
//
// Source and destination must not overlap. Returns QV_STATUS_DATA_TYPE_ERR (-2) for any other type;
// QV_STATUS_NULL_PTR_ERR (-8) if src or dst is null; QV_STATUS_SIZE_ERR (-6) if src_size or src_roi
// has a width or height below 1 or src_roi an origin below 0; QV_STATUS_NO_OVERLAP_WARNING (29),
// with nothing written, if src_roi's origin is outside the image; QV_STATUS_SIZE_ERR (-6) if
// dst_roi_size has a width or height below 1; QV_STATUS_RESIZE_FACTOR_ERR (-23) if a factor is not
// above 0; QV_STATUS_INTERPOLATION_ERR (-22) for any other interpolation;
// QV_STATUS_EMPTY_OUTPUT_ERR (-201) if W * x_factor or H * y_factor, plus 1e-07, is below 0.5;
// QV_STATUS_MEM_ALLOC_ERR (-9) if work memory cannot be had. Nothing is written unless the status
// is 0.
//
// In bands QV_STATUS_RESIZE_FACTOR_ERR comes before QV_STATUS_NO_OVERLAP_WARNING, there is no
// QV_STATUS_EMPTY_OUTPUT_ERR, and the status is that of the last band, which has the lowest rows of
// dst_roi_size:
//   QV_STATUS_NOTHING_TO_DO_WARNING (1): what the region becomes has no part in that band. All of
//     it may have been written by the others, and on another number of bands the same call may
//     return 0.
//   QV_STATUS_NULL_PTR_ERR or QV_STATUS_MEM_ALLOC_ERR: that band lacked memory. A band that does
//     leaves its rows as they were; the others write theirs, and if it is not the last one, no
//     status tells.
QV_API(int) qv_resize(int type, const unsigned char* src, qv_size src_size, int src_step,
                      qv_rect src_roi, unsigned char* dst, int dst_step, qv_size dst_roi_size,
                      double x_factor, double y_factor, int interpolation);

// Scales a region of a packed 4:2:2 image: pairs of pixels of four bytes, Y0 Cb Y1 Cr. Arguments
// are those of qv_resize, sizes and coordinates in pixels; `type` is ignored. Interpolation is 1
// (nearest neighbour), 2 (linear) or 4 (cubic); every number above 4 is done as 4. Runs on the
// calling thread.
//
// Luma is resized on its grid of pixels, Cb and Cr each on the grid of pairs, with the positions of
// qv_resize outside bands and each byte within one unit of the exact value.
//
// The region's first byte is src + 4 * src_roi.x + src_step * src_roi.y: four bytes for each pixel
// of src_roi.x, which is twice what pixels take. 2 * W bytes from there must be readable in every
// row of the region, W being src_roi.width clipped to src_size.width - src_roi.x. Written are w / 2
// pairs (an odd last pixel is not), w = trunc(W * x_factor + 1e-07), at most dst_roi_size.width and
// at least 2, and trunc(H * y_factor + 1e-07) rows, at most dst_roi_size.height and at least one.
// If the source image is narrower than 8 pixels or lower than 4, code 4 becomes 2; narrower than 4
// or lower than 2, all become 1.
//
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src or dst is null; QV_STATUS_SIZE_ERR (-6) if src_size or
// src_roi has a width or height below 1 or src_roi an origin below 0; QV_STATUS_NO_OVERLAP_WARNING
// (29), with nothing written, if src_roi's origin is outside the image; QV_STATUS_SIZE_ERR (-6) if
// dst_roi_size has a width or height below 1, if src_size.width, src_roi.width or src_roi.x is odd,
// or if dst_roi_size.width is below 2; QV_STATUS_RESIZE_FACTOR_ERR (-23) if a factor is not above
// 0; QV_STATUS_INTERPOLATION_ERR (-22) for an interpolation of 3 or of less than 1;
// QV_STATUS_EMPTY_OUTPUT_ERR (-201) if W * x_factor + 1e-07 is below 1.5 or H * y_factor + 1e-07
// below 0.5; QV_STATUS_MEM_ALLOC_ERR (-9) if work memory cannot be had.
QV_API(int) qv_resize_yuv422(int type, const unsigned char* src, qv_size src_size, int src_step,
                             qv_rect src_roi, unsigned char* dst, int dst_step,
                             qv_size dst_roi_size, double x_factor, double y_factor,
                             int interpolation);

// ---- Rotation and perspective -------------------------------------------------------------------

// Rotation and warping. Pointers point at pixel (0, 0) of the whole image, never at a region;
// regions and positions are in pixels of the whole images, and pixel (x, y) is a sample at exactly
// that position. Every destination pixel asks where it comes from: it is mapped back through the
// transform to a source position (X, Y). It is written if (X, Y) lies inside the rectangle of
// corner pixels of src_roi's part inside the image, its edges and 1e-6 pixel beyond included, and
// keeps its value otherwise. All channels of a pixel are sampled at one position, from pixels of
// that part only; taps beyond take its nearest edge pixel:
//   interpolation 1   nearest neighbour: pixel (floor(X + 0.5), floor(Y + 0.5))
//   interpolation 2   linear: two taps an axis, weights 1 - |d|
//   interpolation 4   cubic (Keys 1981, a = -0.5): four taps an axis, with weights
//                     1.5 |d|^3 - 2.5 |d|^2 + 1 below 1,
//                     -0.5 |d|^3 + 2.5 |d|^2 - 4 |d| + 2 below 2
// d being the distance of the tap. Bit 31 of the interpolation is ignored. Positions are exact to
// better than 2^-11 pixel, weights have 14 fractional bits, and the rounded and saturated result is
// within one unit of the exact one. Source and destination must not overlap. A region may reach
// beyond pixel 2147483647 of a row or column; nothing is there.
//
// Statuses, in this order: QV_STATUS_DATA_TYPE_ERR (-2) for a type other than 2 and 4;
// QV_STATUS_NULL_PTR_ERR (-8) if src or dst is null; QV_STATUS_SIZE_ERR (-6) if a width or height
// of src_size, src_roi or dst_roi is below 1 or an origin of a region is negative;
// QV_STATUS_STEP_ERR (-14) if a step is below 1; QV_STATUS_INTERPOLATION_ERR (-22) for another
// interpolation. Then, of a warp: QV_STATUS_COEFF_ERR (-56) if the matrix's upper-left 2 x 2 block
// is singular (relative to its diagonal, to 1e-12) or if it carries the corner pixels of src_roi
// onto a quadrilateral that is degenerate, as that of a single row or column is, or not convex;
// QV_STATUS_RECT_ERR (-57) if src_roi has no pixel inside the image. Of a rotation:
// QV_STATUS_COEFF_ERR (-56) if its angle or a shift is infinite or not a number;
// QV_STATUS_NO_OVERLAP_WARNING (29) if src_roi has no pixel inside the image. Of both:
// QV_STATUS_NO_OVERLAP_WARNING (29) if what becomes of src_roi misses dst_roi. Nothing is written
// unless the status is 0 (on several bands of a warp: see there).

// Rotates about pixel (0, 0) by `angle` degrees, counter-clockwise as seen on the screen, and
// shifts by (x_shift, y_shift) pixels. With a the angle in radians, source (x, y) goes to
//   x' = cos a * x + sin a * y + x_shift,   y' = -sin a * x + cos a * y + y_shift
// Runs on the calling thread. Statuses: see above. Quarter turns (90, 180 or 270 degrees plus whole
// turns) with whole shifts, however large, move pixels without sampling: they do not look at the
// interpolation, and have neither QV_STATUS_INTERPOLATION_ERR nor QV_STATUS_COEFF_ERR.
QV_API(int) qv_rotate(int type, const unsigned char* src, qv_size src_size, int src_step,
                      qv_rect src_roi, unsigned char* dst, int dst_step, qv_rect dst_roi,
                      double angle, double x_shift, double y_shift, int interpolation);

// Warps through a matrix that carries source (X, Y) to the destination, such as
// qv_get_perspective_transform gives:
//   x' = (c00 X + c01 Y + c02) / (c20 X + c21 Y + c22)
//   y' = (c10 X + c11 Y + c12) / (c20 X + c21 Y + c22)
// Statuses: see above. On several bands (dst_roi higher than 64 rows a band) the status is the last
// band's: QV_STATUS_NO_OVERLAP_WARNING (29) if that one was missed, whatever the others have
// written, and 0 if it was not. Of a dst_roi with a negative y only the bands that begin there are
// refused.
QV_API(int) qv_warp_perspective(int type, const unsigned char* src, qv_size src_size, int src_step,
                                qv_rect src_roi, unsigned char* dst, int dst_step, qv_rect dst_roi,
                                const double coeffs[9], int interpolation);

// qv_warp_perspective on a three-channel image and, if src2 and dst2 are both non-null, on a
// one-channel image of the same size and regions with its own steps and matrix, for instance a
// mask. `type` is ignored.
// Returns the status of the last warp made. On one band the second image is warped only if the
// first warp returned 0; on several bands it always is, and its status replaces the first one's.
QV_API(int) qv_warp_perspective_ex(int type, const unsigned char* src, qv_size src_size,
                                   int src_step, qv_rect src_roi, unsigned char* dst, int dst_step,
                                   qv_rect dst_roi, const double coeffs[9], int interpolation,
                                   const unsigned char* src2, int src2_step, unsigned char* dst2,
                                   int dst2_step, const double coeffs2[9]);

// Derives the matrix that carries a region onto a quadrilateral:
//   x' = (c00 X + c01 Y + c02) / (c20 X + c21 Y + c22)
//   y' = (c10 X + c11 Y + c12) / (c20 X + c21 Y + c22)
// quad[0..7] are the (x, y) images, in pixels, of the centres of the region's top-left, top-right,
// bottom-right and bottom-left pixels; they may turn either way round. `type` is ignored; no
// pointer is checked. The result fits qv_warp_perspective.
// Returns QV_STATUS_SIZE_ERR (-6) if roi.x or roi.y is negative or its width or height is below 1;
// QV_STATUS_QUAD_ERR (-58) if three corners lie on one line or the quadrilateral is not convex;
// QV_STATUS_RECT_ERR (-57) if width or height is 1. Nothing is written then.
QV_API(int) qv_get_perspective_transform(int type, qv_rect roi, const double quad[8],
                                         double coeffs[9]);

// The smallest upright rectangle around a region after qv_rotate by `angle` degrees and a shift in
// pixels. With the centres of the region's corner pixels at (x, y) and a = angle in radians:
//   x' = cos a * x + sin a * y + x_shift,   y' = -sin a * x + cos a * y + y_shift
//   bound[0..1] = (smallest x', smallest y'), bound[2..3] = (largest x', largest y')
// Multiples of 90 degrees are exact. `type` is ignored; no pointer is checked.
// Returns QV_STATUS_SIZE_ERR (-6), with nothing written, if roi.x or roi.y is negative or its width
// or height is below 1.
QV_API(int) qv_get_rotate_bound(int type, qv_rect roi, double bound[4], double angle,
                                double x_shift, double y_shift);

// ---- Compositing and deinterlacing --------------------------------------------------------------

// Composes two images, each under one alpha for the whole image (Porter and Duff 1984). A and B are
// the bytes of src1 and src2 at the same place, a1 and a2 their alphas, x / 255 is truncated: with
// x * y = floor(xy / 255),
//   0 over   A * a1 + B * a2 * (255 - a1)                6 premultiplied  A + B * (255 - a1)
//   1 in     A * a1 * a2                                 7                A * a2
//   2 out    A * a1 * (255 - a2)                         8                A * (255 - a2)
//   3 atop   A * a1 * a2 + B * a2 * (255 - a1)           9                A * a2 + B * (255 - a1)
//   4 xor    A * a1 * (255 - a2) + B * a2 * (255 - a1)  10  A * (255 - a2) + B * (255 - a1)
//   5 plus   A * a1 + B * a2                            11                A + B
// Products are worked out from left to right, each truncated before the next. Sums saturate at 255.
// Codes 1, 2, 7 and 8 do not read src2. One byte a pixel for type 2, three for type 4, all alike.
// dst may be src1 or src2 at the same step; otherwise the images must not overlap.
// Returns QV_STATUS_DATA_TYPE_ERR (-2) for any other type; QV_STATUS_NULL_PTR_ERR (-8) if src1,
// src2 or dst is null (src2 also where it is not read); QV_STATUS_SIZE_ERR (-6) if width or height
// is below 1; QV_STATUS_ALPHA_TYPE_ERR (-50) for an alpha_type other than 0 to 11.
QV_API(int) qv_alpha_comp_c(int type, const unsigned char* src1, int src1_step,
                            unsigned char alpha1, const unsigned char* src2, int src2_step,
                            unsigned char alpha2, unsigned char* dst, int dst_step, qv_size size,
                            int alpha_type);

// Places a colour image (three bytes a pixel, alike) with an alpha plane over a second one, in
// place: fg is replaced by the colours of the result, dst_alpha receives its alpha. Alpha planes
// have one byte a pixel, 0 transparent to 255 opaque; dst_alpha's rows lie fg_alpha_step apart.
//
// Fill dst_alpha with a copy of fg_alpha before the call. The library has two paths: one for
// processors without SSE2 reads the foreground alpha from fg_alpha alone, the other merges
// dst_alpha in place; with the copy both mean the same. They round differently.
//
// With F and B a foreground and a background byte, fa and ba the alphas of their pixel:
//   without SSE2, in integers, all quotients truncated
//     a  = fa + (255 - fa) * ba / 256                       to dst_alpha
//     F' = (F * fa + B * (255 - fa) * ba / 256) / (a + 1)   an opaque 255 becomes 254
//     on width pixels a row; row_bytes is ignored
//   with SSE2, on all rows first
//     a  = min(255, d + (255 - d) * ba / 256)               d is dst_alpha's byte, replaced by a
//   on width pixels a row, and then
//     F' = (F * (fa / 255) + ((1 - fa / 255) * (ba / 255)) * B) / ((a + 1) / 255)
//   in single precision, every operation rounded to nearest even in this order, the quotient
//   rounded to nearest even and limited to 255, on row_bytes colour bytes a row: pass 3 * width.
//   The host's rounding mode does not matter. If dst_alpha is fg_alpha, the colours are merged with
//   the merged alpha.
//
// dst_alpha may be fg_alpha or, at the same step, bg_alpha; otherwise the five planes must not
// overlap. `type` is ignored.
// Returns 0. Nothing is checked: no pointer may be null. A height below 1 does nothing. With a
// width below 1 no alpha is merged, but with SSE2 the colours are, on row_bytes bytes a row (none
// if that is below 1) and with the alphas as they are.
QV_API(int) qv_merge_alpha_over(int type, unsigned char* fg, int fg_step,
                                const unsigned char* fg_alpha, int fg_alpha_step,
                                const unsigned char* bg, int bg_step, const unsigned char* bg_alpha,
                                int bg_alpha_step, unsigned char* dst_alpha, int row_bytes,
                                int width, int height);

// Mixes src into src_dst under an alpha plane of one byte a pixel. With S and D the bytes of src
// and src_dst and a the alpha of their pixel,
//   D = min(255, floor(a * S / 255) + floor(((255 - a) * D + 1) / 256))
// on width bytes a row for type 2 and 3 * width for type 4. The shares are divided by different
// numbers: where a is 0, a D of 255 becomes 254. src may be src_dst at the same step; otherwise the
// images must not overlap.
// Returns QV_STATUS_DATA_TYPE_ERR (-2) for any other type. Nothing else is checked: no pointer may
// be null. A width or height below 1 does nothing.
QV_API(int) qv_merge_alpha_plus(int type, unsigned char* src_dst, int src_dst_step,
                                const unsigned char* src, int src_step, const unsigned char* alpha,
                                int alpha_step, int width, int height);

// Smooths the combing of an interlaced frame: a filtered row is a weighted mean of the source row
// at the same place and its two neighbours. With w = min(centre_weight, 256), in 1/256, and s =
// (256 - w) / 2 truncated,
//   dst[r] = floor(((src[r - 1] + src[r + 1]) * s + src[r] * w) / 256)
// An odd w darkens slightly (the weights add up to 255). `mode` says which of the rows 0 to H - 1
// are written, H the height:
//   mode 1    filtered 1 to H - 2, row 0 copied; row H - 1 is not written
//   mode 4    filtered -1 to H - 2; row H - 1 is not written
//   mode 16   filtered -1 to H - 2, row H - 1 copied
//   other     filtered 1 to H - 2, rows 0 and H - 1 copied
// Modes 4 and 16 begin one row before the pointers: they write row -1 of dst and read rows -2 and
// -1 of src, which must exist. A row is size.width bytes for type 2. For type 4 it is the whole
// src_step, whatever size.width says: bytes between the pixels and the next row are filtered too,
// also into dst. Rows of dst may overlap, as those of a dst_step shorter than src_step then do:
// they are written from row -1 or 0 on, and a byte keeps what the last row that holds it writes.
// Source and destination must not overlap. Large frames are cut into columns, not bands, unless
// rows of dst overlap.
// Returns QV_STATUS_DATA_TYPE_ERR (-2) for any other type; QV_STATUS_NULL_PTR_ERR (-8) if src or
// dst is null; QV_STATUS_SIZE_ERR (-6) if height is below 3 or a row has fewer than 1 byte.
QV_API(int) qv_deinterlace(int type, const unsigned char* src, int src_step, unsigned char* dst,
                           int dst_step, qv_size size, unsigned int centre_weight,
                           unsigned int mode);

// ==== Written by hand from here on ====

// ---- The library --------------------------------------------------------------------------------

// The version, such as "0.1.0".
QV_API(const char*) qv_version(void);

// A status as it is named above ("QV_STATUS_SIZE_ERR"), and what it means in a few words. Of a
// number that is none of them: "unknown", "unknown status". The texts stay where they are.
QV_API(const char*) qv_status_name(int status);
QV_API(const char*) qv_status_text(int status);

// How many threads a call may be shared by, the calling one included: at first as many as the
// process may use processors. The library has one less of its own, for all calls together; those
// that a lower number leaves over sleep. The number takes effect on calls that begin later; it may
// be set at any time, by any thread, whatever calls other threads make meanwhile.
// qv_set_threads returns QV_STATUS_OUT_OF_RANGE_ERR (-11), and changes nothing, for a number below
// 1 or above QV_MOST_THREADS.
#define QV_MOST_THREADS 256
QV_API(int) qv_threads(void);
QV_API(int) qv_set_threads(int threads);

// Limits the calls that the calling thread makes from now on to so many threads, itself included; 0
// for no limit. A limit above qv_threads has no effect. A call that works in bands makes the bytes
// that it makes where qv_threads is the limit (see qv_resize).
// Returns QV_STATUS_OUT_OF_RANGE_ERR (-11) for a number below 0; QV_STATUS_MEM_ALLOC_ERR (-9) if
// the system has no place for it (Windows, when its slots of thread-local storage are used up). The
// thread keeps the limit that it had then.
QV_API(int) qv_set_thread_limit(int threads);

// The level of vectors that calls run at: "generic" (plain code), "sse2", "ssse3", "avx2",
// "avx512"; at first the highest that the processor has. And all that it has, from the lowest on,
// with a space between each two. The bytes are the same at every level, so there is no reason to
// change it but to find out whether a fault comes from the level: qv_set_level lowers it, for all
// calls that begin later and for the rest of those that are being made. It may be called at any
// time by any thread. It returns QV_STATUS_NULL_PTR_ERR (-8) if level is null;
// QV_STATUS_OUT_OF_RANGE_ERR (-11), and changes nothing, for a name that is none of qv_levels or
// stands above the present one.
QV_API(const char*) qv_level(void);
QV_API(const char*) qv_levels(void);
QV_API(int) qv_set_level(const char* level);

// ---- Rows and positions -------------------------------------------------------------------------

// How the pixels of an image lie in memory, in address order. Packed and two-plane ones have their
// chroma in pairs; 420 has one chroma sample for 2 x 2 pixels, 422 one for two side by side.
enum qv_layout {
  QV_LAYOUT_GREY = 1,   // one byte
  QV_LAYOUT_BGR = 2,    // three bytes
  QV_LAYOUT_RGB = 3,
  QV_LAYOUT_BGRA = 4,   // four bytes, the last one alpha
  QV_LAYOUT_RGBA = 5,
  QV_LAYOUT_YUYV = 6,   // packed 4:2:2: Y0 Cb Y1 Cr
  QV_LAYOUT_UYVY = 7,   // packed 4:2:2: Cb Y0 Cr Y1
  QV_LAYOUT_I420 = 8,   // planes Y, Cb, Cr
  QV_LAYOUT_YV12 = 9,   // planes Y, Cr, Cb; 4:2:0 as well
  QV_LAYOUT_NV12 = 10,  // planes Y and Cb Cr; 4:2:0
  QV_LAYOUT_NV21 = 11,  // planes Y and Cr Cb; 4:2:0
  QV_LAYOUT_I422 = 12,  // planes Y, Cb, Cr
  QV_LAYOUT_I444 = 13   // planes Y, Cb, Cr
};

// Bytes of a row of so many pixels without padding; of the first plane where there are several.
// Packed 4:2:2 has whole groups of four bytes.
// Returns QV_STATUS_DATA_TYPE_ERR (-2) for any other layout; QV_STATUS_SIZE_ERR (-6) if width is
// below 1 or the bytes are more than an int can count.
QV_API(int) qv_row_bytes(int layout, int width);

// Where qv_resize, called now by this thread with these arguments, reads for the pixel (x, y) of
// dst: position[0] across and position[1] down, in pixels of the source image, a whole number being
// the middle of one. For code 1 that is the pixel that is read; for code 8 the middle of what the
// pixel covers; for the others the position between the taps, which may lie outside the region,
// whose edge pixels are then read. The result depends on qv_threads and the thread's limit as
// qv_resize does. Takes time in proportion to x and y.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if position is null; QV_STATUS_SIZE_ERR (-6) if dst_roi_size
// has a width or height below 1; what qv_resize returns of these arguments, but for pointers; then
// QV_STATUS_OUT_OF_RANGE_ERR (-11) if qv_resize does not write the pixel. Nothing is written then.
QV_API(int) qv_source_position(qv_size src_size, qv_rect src_roi, qv_size dst_roi_size,
                               double x_factor, double y_factor, int interpolation, int x, int y,
                               double position[2]);

// Where a warp by this matrix reads for the pixel (x, y) of dst, any point between pixels included:
// the (X, Y) that the matrix carries there, see qv_warp_perspective. (X, Y) may lie outside
// src_roi; the warp writes nothing then. The kernels' own positions differ by less than 2^-11
// pixel.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if coeffs or position is null; QV_STATUS_SIZE_ERR (-6) if
// src_roi has an origin below 0 or a width or height below 1; QV_STATUS_COEFF_ERR (-56), with
// nothing written, if the matrix cannot be inverted or carries nothing of the source's side of its
// horizon there.
QV_API(int) qv_warp_source_position(qv_rect src_roi, const double coeffs[9], double x, double y,
                                    double position[2]);

// ---- Beyond the class ---------------------------------------------------------------------------

// Operations that the class does not have, a family a section.

// Luma and chroma to pixels, and back.

// Layouts are those of qv_layout: pixels have one of QV_LAYOUT_GREY to QV_LAYOUT_RGBA, luma and
// chroma one of QV_LAYOUT_YUYV to QV_LAYOUT_I444. Planes are passed in the order named there. Of a
// frame of w x h pixels, the luma plane has h rows of w bytes. With cw = (w + 1) / 2 and
// ch = (h + 1) / 2, rounded down, so that an odd last column or row has chroma of its own:
//   I420, YV12  ch rows of cw bytes in either plane of chroma
//   NV12, NV21  ch rows of cw pairs
//   I422        h rows of cw bytes in either plane of chroma
//   I444        h rows of w bytes
//   YUYV, UYVY  h rows of cw groups of four bytes

// The weights of red and blue in luma; that of green is Kg = 1 - Kr - Kb.
enum qv_yuv_matrix {
  QV_BT601 = 0,  // Kr = .299,  Kb = .114   (ITU-R BT.601)
  QV_BT709 = 1,  // Kr = .2126, Kb = .0722  (ITU-R BT.709)
  QV_BT2020 = 2  // Kr = .2627, Kb = .0593  (ITU-R BT.2020, non-constant luminance)
};

// What the bytes of samples stand for. Every byte is accepted, those outside the range included.
enum qv_yuv_range {
  QV_STUDIO_RANGE = 0,  // Y = 16 + 219 y, Cb = 128 + 224 u, Cr = 128 + 224 v
  QV_FULL_RANGE = 1     // Y = 255 y, Cb = 128 + 255 u, Cr = 128 + 255 v (JFIF)
};

// Where chroma lies in layouts that have one sample for two columns. Those that also have one
// for two rows have it midway between the two, unless it is repeated.
enum qv_chroma_siting {
  QV_CHROMA_REPEATED = 0,  // anywhere: one sample serves a block, and is made of its mean
  QV_CHROMA_LEFT = 1,      // on the left one of two pixels (MPEG-2 and later)
  QV_CHROMA_CENTRE = 2     // between the two (MPEG-1, JPEG)
};

// Converts luma and chroma to pixels. `planes` and `steps` have as many entries as the layout
// has planes, `dst` is the first pixel's first byte. With R, G, B in 0 .. 1:
//   R = y + 2 (1 - Kr) v
//   G = y - 2 (1 - Kr) Kr / Kg v - 2 (1 - Kb) Kb / Kg u
//   B = y + 2 (1 - Kb) u
// and bytes of 255 R, 255 G and 255 B, limited to 0 .. 255. Each byte is within 0.54 of the
// exact value (a perfect rounding: 0.50), and every grey (Cb = Cr = 128) is rounded correctly. A
// fourth byte becomes 255. Grey is 255 y: chroma is not read then, and its planes may be null.
//
// Chroma that is not repeated is interpolated linearly, without being rounded before it is
// converted: a column that has no sample of its own takes the mean of its two neighbours (left)
// or 3 parts of the nearer and 1 of the farther (centre), a row of a layout with half as many
// rows of chroma 3 parts of the nearer and 1 of the farther. Beyond the edge lies the sample of
// the edge.
//
// The arithmetic is that of integers. With a # k = (256 a * k) >> 16, where 256 times interpolated
// chroma is a whole number too, and coefficients round(2^14 * exact), so all sums in 64ths of a
// byte:
//   B = clamp((Y # y - 16 # y + Cb # bb - 128 # bb + 32) >> 6)
//   G = clamp((Y # y - 16 # y - Cb # gb + 128 # gb - Cr # gr + 128 # gr + 32) >> 6)
//   R = clamp((Y # y - 16 # y + Cr # rr - 128 # rr + 32) >> 6)
// and without 16 # y in full range.
//                      y     bb     gb     gr     rr
//   studio  BT.601   19077  33050   6419  13320  26149
//           BT.709   19077  34610   3494   8731  29372
//           BT.2020  19077  35091   3069  10657  27503
//   full    BT.601   16384  29032   5638  11700  22970
//           BT.709   16384  30402   3069   7670  25802
//           BT.2020  16384  30825   2696   9361  24160
//
// Source and destination must not overlap. Nothing is written unless the status is 0.
// Returns QV_STATUS_DATA_TYPE_ERR (-2) if yuv_layout or rgb_layout is none of those;
// QV_STATUS_OUT_OF_RANGE_ERR (-11) if matrix, range or siting is none; QV_STATUS_NULL_PTR_ERR
// (-8) if planes, steps, dst or a plane that is read is null; QV_STATUS_SIZE_ERR (-6) if width
// or height is below 1.
QV_API(int) qv_yuv_to_rgb(int yuv_layout, const unsigned char* const planes[], const int steps[],
                          int rgb_layout, unsigned char* dst, int dst_step, qv_size size,
                          int matrix, int range, int siting);

// Converts pixels to luma and chroma:
//   y = Kr R + Kg G + Kb B
//   u = (B - y) / (2 (1 - Kb)),  v = (R - y) / (2 (1 - Kr))
// Each byte is within 0.53 of the exact value; of a grey, Y is rounded correctly and Cb = Cr =
// 128. Alpha is not looked at. A grey byte counts as R = G = B.
//
// Chroma is made of the mean of the pixels that it serves, 2 x 2 or 2 x 1 (repeated, centre), or
// of the column that it lies on and the ones beside it as 1 : 2 : 1 (left), which is not rounded
// to bytes. Beyond the edge lies the pixel of the edge. The groups of an odd width end with a
// luma that no pixel has: it repeats the one before.
//
// The arithmetic is that of integers, >> rounding down. From small whole numbers s, b and g, and
// factors p, r, f, cb and cr of 16 bits, luma and what B and R have beyond it:
//   L  = ((b B + g G) * p >> 16) + (s R * r >> 16)
//   Y  = (L + h) * f + 2^14 >> 15
//   Db = s B - L,  Dr = s R - L
//   Cb = clamp(128 + ((cb * Sb >> 16) + 16 >> 5))
//   Cr = clamp(128 + ((cr * Sr >> 16) + 16 >> 5))
// where Sb and Sr are sums of four of Db and Dr: of the pixel's own four times, of two columns
// twice each, or as 1 : 2 : 1. Where two rows share a sample, s B, s R and L are first replaced by
// their means over both rows, (upper + lower + 1) >> 1.
//                     s    h     f     b     g      p      r     cb    cr
//   studio  BT.601   84  1566   335   20   103  31376  19597  3094  3911
//           BT.709   84  1566   335   11   109  36125  13934  2955  3482
//           BT.2020  84  1566   335    7    80  46656  17218  2914  3718
//   full    BT.601   86     1   381   20   103  32123  19596  3440  4348
//           BT.709   86     1   381   11   109  36984  13934  3285  3871
//           BT.2020  86     1   381    7    80  47767  17217  3240  4134
//
// What is lost on the way from pixels to 4:4:4 samples and back: at most 2 units of a byte in
// studio range and 1 in full range, with every matrix; it is the rounding of the samples, exact
// arithmetic would lose as much.
//
// Source and destination must not overlap. Nothing is written unless the status is 0.
// Returns QV_STATUS_DATA_TYPE_ERR (-2) if rgb_layout or yuv_layout is none of those;
// QV_STATUS_OUT_OF_RANGE_ERR (-11) if matrix, range or siting is none; QV_STATUS_NULL_PTR_ERR
// (-8) if src, planes, steps or a plane is null; QV_STATUS_SIZE_ERR (-6) if width or height is
// below 1.
QV_API(int) qv_rgb_to_yuv(int rgb_layout, const unsigned char* src, int src_step, int yuv_layout,
                          unsigned char* const planes[], const int steps[], qv_size size,
                          int matrix, int range, int siting);

// ---- Resampling ---------------------------------------------------------------------------------

// What a pixel is, its bytes side by side.
enum qv_pixels {
  QV_PIXELS_ONE = 0,            // one byte: grey, or a plane of whatever
  QV_PIXELS_TWO = 1,            // two: interleaved chroma (NV12), or grey and something else
  QV_PIXELS_THREE = 2,          // three
  QV_PIXELS_FOUR = 3,           // four, all alike
  QV_PIXELS_PREMULTIPLIED = 4,  // three colours, multiplied by the alpha that is the fourth
  QV_PIXELS_STRAIGHT = 5        // three colours as they are, and alpha
};

// The filters are those of enum qv_interpolation and this one.
enum { QV_INTERPOLATE_MITCHELL = 32 };

// Which positions in the source the destination's pixels have.
enum qv_position {
  QV_POSITION_CENTRES = 0,  // region and destination cover each other, edge on edge
  QV_POSITION_CORNERS = 1   // the centres of their corner pixels fall on each other
};

// All zero: one byte a pixel, linear, by centres, widened, the whole source.
typedef struct qv_resample_options {
  int pixels;    // enum qv_pixels
  int filter;    // enum qv_interpolation or QV_INTERPOLATE_MITCHELL; 0 stands for linear
  int position;  // enum qv_position
  int narrow;    // 1: the filter keeps its width in reductions, which may alias
  // The region that becomes the destination, in source pixels from the source's left and top edge.
  // It may begin and end within pixels and reach beyond the source. All four 0: the whole source.
  double region_x, region_y, region_width, region_height;
  // Where samples lie within what a pixel covers, in pixels to the right of or below its middle;
  // -0.25 for chroma of half the width whose samples lie on the left one of two luma samples.
  double src_phase_x, src_phase_y, dst_phase_x, dst_phase_y;
  double cubic;  // Keys' a, from -1 up to below 0; 0 stands for -0.5
} qv_resample_options;

// Resizes a region of src_size pixels' image into all dst_size pixels of dst.
//
// Positions. Source pixel s has its centre at s. With S and L where the region begins and how long
// it is, N pixels of the destination, p the phase of the source and q that of the destination,
// pixel i of an axis reads the source at
//   centres   S + (i + 0.5 + q) * L / N - 0.5 - p
//   corners   S + (i + q) * (L - 1) / (N - 1) - p;  N = 1: S + (L - 1) / 2 - p
// Its step is L / N or (L - 1) / (N - 1), 0 if N is 1.
//
// Filters. A byte is the sum over both axes of the source's bytes times the filter's value at their
// distance x from the position, these values divided by their sum; limited to 0 .. 255:
//   linear    1 - |x| up to a distance of 1
//   cubic     Keys 1981 with the parameter a, up to 2
//   Lanczos   sinc(x) sinc(x / 3) up to 3
//   Mitchell  Mitchell and Netravali 1988 with B = C = 1/3, up to 2
// Unless narrow is 1, they are widened by a step above 1: the distance is divided by it, so that
// every source pixel counts. Area is the mean over one step around the position, each source pixel
// by its share, whatever `narrow` says. Nearest is pixel floor(position + 0.5), the later one on a
// tie. Pixels around the region are read as far as the filter reaches: parts of an image that are
// resized one by one fit together. Beyond the source lie copies of its edge pixels.
//
// Alpha. Premultiplied: like four bytes, and colours are limited to the alpha. Straight: alpha is
// filtered like any byte; colours are weighted by alpha, the filtered colour * alpha divided by the
// filtered alpha, so that no colour of transparent pixels shows; 0 where the alpha written is 0.
// Rows that come from opaque rows alone are exactly those of three bytes, with alpha 255. Nearest
// copies pixels as they are.
//
// Each byte is within one unit of the exact result, on average within 0.26. The result does not
// depend on threads. Source and destination must not overlap; steps may be negative.
//
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src, dst or options is null; QV_STATUS_DATA_TYPE_ERR (-2)
// for unknown pixels; QV_STATUS_SIZE_ERR (-6) if a width or height is below 1 or a row has more
// than 2^31 - 1 bytes; QV_STATUS_STEP_ERR (-14) if rows of dst overlap; QV_STATUS_INTERPOLATION_ERR
// (-22) for an unknown filter; QV_STATUS_OUT_OF_RANGE_ERR (-11) for an unknown position, a `narrow`
// other than 0 and 1, a phase outside -1 .. 1, or `cubic` outside -1 .. 0; QV_STATUS_RECT_ERR (-57)
// if a number of the region is not finite or beyond 2^31, or its width or height is not above 0
// (with corners below 1); QV_STATUS_NO_OVERLAP_WARNING (29) if it lies outside the source;
// QV_STATUS_RESIZE_FACTOR_ERR (-23) if a step is above 65536 in area or a widened filter;
// QV_STATUS_MEM_ALLOC_ERR (-9). Nothing is written unless it returns QV_STATUS_OK.
QV_API(int) qv_resample(const unsigned char* src, qv_size src_size, int src_step,
                        unsigned char* dst, qv_size dst_size, int dst_step,
                        const qv_resample_options* options);

// ---- A foreground over a frame ------------------------------------------------------------------

// Lays a foreground with alpha over a frame, in place: a logo, a subtitle, a cursor, or one picture
// faded into another one. The foreground's top-left pixel comes to lie on pixel (x, y) of the
// frame, which may be anywhere: what lies outside the frame is neither read nor written.
//   frame_channels 1  fg_channels 1   bytes under an alpha plane
//   frame_channels 3  fg_channels 3   pixels of three bytes under an alpha plane
//   frame_channels 3  fg_channels 4   pixels of four bytes, the last one alpha, over three
//   frame_channels 4  fg_channels 4   the same over pixels of four bytes
// Colours are in the same order in both. The alpha plane has a byte for each pixel of the
// foreground; with a null one the foreground is opaque. Of four channels `alpha` is not looked at:
// pass null. The frame counts as opaque: a fourth byte of its pixels is neither looked at nor
// written.
//
// Each colour byte B of the frame becomes, with F that of the foreground, a its alpha and o the
// opacity of 0 to 255, the exact value of
//   alpha_type QV_ALPHA_OVER (0)         F * (a o / 65025) + B * (1 - a o / 65025)
//   alpha_type QV_ALPHA_OVER_PREMUL (6)  F * (o / 255) + B * (1 - a o / 65025), at most 255
// rounded to the nearest integer, once (Porter and Duff 1984, over); there are no ties. So an
// opaque pixel at opacity 255 arrives as it is, and one of alpha 0 leaves the frame as it is;
// premultiplied, it adds its colours. Frame and foreground must not overlap.
// Returns QV_STATUS_CHANNEL_ERR (-53) for any other pair of channels; QV_STATUS_NULL_PTR_ERR (-8)
// if frame or fg is null; QV_STATUS_SIZE_ERR (-6) if a width or height is below 1;
// QV_STATUS_OUT_OF_RANGE_ERR (-11) if opacity is not 0 to 255; QV_STATUS_ALPHA_TYPE_ERR (-50) for
// any other alpha_type; QV_STATUS_NO_OVERLAP_WARNING (29) if all of the foreground lies outside the
// frame. Nothing is written unless it returns QV_STATUS_OK.
QV_API(int) qv_over(int frame_channels, unsigned char* frame, int frame_step, qv_size frame_size,
                    int fg_channels, const unsigned char* fg, int fg_step, qv_size fg_size,
                    const unsigned char* alpha, int alpha_step, int x, int y, int opacity,
                    int alpha_type);

// ---- Fields -------------------------------------------------------------------------------------

// A frame of h rows has two fields: the top one, rows 0, 2, 4 ..., (h + 1) / 2 lines rounded down,
// and the bottom one, rows 1, 3, 5 ..., h / 2 lines. A field in a frame is an image like any other,
// its first line at `frame` or frame + step, its step twice the frame's. Pixels may have any layout
// whose rows are whole bytes: widths count bytes.
enum qv_field_order {
  QV_TOP_FIELD_FIRST = 0,    // the top field is the first in time
  QV_BOTTOM_FIELD_FIRST = 1  // the bottom field is
};

// Makes each field of a frame a frame of its own, for twice as many frames a second: the field that
// is first in time to `first`, the other one to `second`, which may be null. Both have the size of
// src. The lines of the field stay where they are. Between them, with `near` the line of the same
// pair of rows 2k and 2k + 1, `far` the one on the other side, and f = (256 - centre_weight) / 2,
// truncated,
//   dst = (near * (256 - f) + far * f + 128) / 256, truncated
// and a copy of the only one where the other would lie outside the frame. That is the three-tap
// filter of qv_deinterlace, rounded, on the field with each line doubled:
//   centre_weight 256   line doubling
//   centre_weight 0     the mean of the lines above and below
//   between             smoother than the first, steadier than the second
// Source and destinations must not overlap.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if src or first is null; QV_STATUS_SIZE_ERR (-6) if width is
// below 1 or height below 2; QV_STATUS_OUT_OF_RANGE_ERR (-11) for any other field_order or if
// centre_weight is not 0 to 256. Nothing is written unless it returns QV_STATUS_OK.
QV_API(int) qv_deinterlace_bob(const unsigned char* src, int src_step, unsigned char* first,
                               int first_step, unsigned char* second, int second_step,
                               qv_size size, int field_order, int centre_weight);

// Makes a frame of two fields: `first`, the first in time, and `second`. `size` is that of the
// frame; which of them has the odd row of an odd height is said by field_order: the top one. A
// field that qv_deinterlace_bob has made a frame of is at that frame's first row (top) or second
// one (bottom), with twice its step: its own lines, and the frame that they came from. Sources and
// destination must not overlap.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if first, second or dst is null; QV_STATUS_SIZE_ERR (-6) if
// width is below 1 or height below 2; QV_STATUS_OUT_OF_RANGE_ERR (-11) for any other field_order.
QV_API(int) qv_weave(const unsigned char* first, int first_step, const unsigned char* second,
                     int second_step, unsigned char* dst, int dst_step, qv_size size,
                     int field_order);

// ---- Matrices and canvases ----------------------------------------------------------------------

// The matrix that takes back what coeffs does to positions: warped by the matrix that
// qv_get_perspective_transform gives and then by its inverse, a picture is where it was. It is the
// inverse of linear algebra, coeffs * inverse = 1, with no factor besides; the inverse of an affine
// matrix (last row 0 0 1) is affine. Quarter turns with whole shifts are exact, and no zero is
// negative. `inverse` may be coeffs.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if coeffs or inverse is null; QV_STATUS_COEFF_ERR (-56) if a
// coefficient or one of the inverse is infinite or not a number, or if the determinant is 0 to
// within 2^-50 of the sum of the magnitudes of its six products. Nothing is written then.
QV_API(int) qv_invert_transform(const double coeffs[9], double inverse[9]);

// The canvas that holds an image turned by qv_rotate: its size, and the shifts, across and down,
// that bring the middle of the turned image to its middle. With w and h the extents of what
// qv_get_rotate_bound gives for the whole image,
//   canvas width = ceil(w - 0.000001) + 1, its height likewise of h
// For quarter turns that is the image's own size, or the same with its sides exchanged; the shifts
// are whole then, so that qv_rotate moves pixels without sampling.
// Returns QV_STATUS_NULL_PTR_ERR (-8) if canvas or shift is null; QV_STATUS_SIZE_ERR (-6) if width
// or height is below 1; QV_STATUS_COEFF_ERR (-56) if the angle is infinite or not a number;
// QV_STATUS_OUT_OF_RANGE_ERR (-11) if a side of the canvas is more than an int can count. Nothing
// is written then.
QV_API(int) qv_rotation_canvas(qv_size size, double angle, qv_size* canvas, double shift[2]);

#if defined(__cplusplus)
}  // extern "C"
#endif

#endif
