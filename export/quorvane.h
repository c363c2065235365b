/* Quorvane: tone mapping for high-dynamic-range photographs.
 *
 * One function, cpp_tm_quorvane: a picture, a colour space and sliders go in, a finished picture comes out.
 *
 *   tm_quorvane_image image = {0};           16-bit RGB to 8-bit RGB, both in sRGB
 *   image.width = width;
 *   image.height = height;
 *   image.samples_per_pixel = 3;
 *   image.input_bits = 16;
 *   image.output_bits = 8;
 *   image.output_row_pitch = 3 * width;
 *   tm_quorvane_settings settings = {0};     every slider at rest
 *   settings.strength = 30.0f;
 *   int done = cpp_tm_quorvane(&image, NULL, 0, &settings, input, output) == 1;
 *
 * For C99 and C++11 and later. */
#ifndef QUORVANE_H
#define QUORVANE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The layout of both pictures: 40 bytes, little-endian. Only read; may be unaligned.
 *
 * A sample is one number of a pixel, such as its red. Pixels may have more samples than three (alpha, say):
 * of N, the first, the one at (N - 1) / 2 and the last are the picture's, the others are skipped in the input
 * and, with reversed_order 0, left as they are in the output. */
typedef struct tm_quorvane_image {
  int32_t width;  /* Pixels per row, 1 to 748980. */
  int32_t height; /* Rows, 1 or more. */

  /* N: samples from one pixel to the next, 1 or more; 3 for plain RGB. Applies to the output, and to the
   * input but for input_bits 32, whose layout is fixed. */
  int32_t samples_per_pixel;

  /* Bits per input sample.
   *   8, 16  unsigned, gamma-encoded: 2.2, and 1.8 for ProPhoto RGB
   *   32     RGBE: linear light as bytes with a shared exponent (see input_pixels)
   * Others: the function returns -2. */
  int32_t input_bits;

  /* Bits per output sample: 8 or 16, unsigned, encoded as the colour space demands. Others: the function
   * throws std::runtime_error. */
  int32_t output_bits;

  int32_t reserved0; /* Not read. */

  /* S: samples, not bytes, from the start of one output row to the next. With reversed_order 0, N * width or
   * more: what lies between two rows stays as it is. Else 0 or more: rows longer than S are cut to S. Input
   * rows follow each other without gaps. */
  int32_t output_row_pitch;

  /* 0: a pixel's first sample is red and its last one blue, in both buffers. Others: the reverse, and rows
   * are written as packed blue, green, red triples, which fits N = 3 only. RGBE input keeps its own order. */
  int32_t reversed_order;

  int32_t reserved1[2]; /* Not read. */
} tm_quorvane_image;

/* The sliders: 64 bytes. May be unaligned. 0 is the neutral position of each. The ranges are those that
 * pictures gain by; values beyond are taken as well (but see the limits of lighting and microcontrast). */
typedef struct tm_quorvane_settings {
  /* Compression of large contrasts, -100 to 100. At 0 it is moderate; higher values bring dark and bright
   * areas closer together, lower ones keep more of their difference. Higher values also steepen the tone
   * curve a little, to make up for flatness. */
  float strength;

  /* Tonal reach of the local adaptation, -10 to 10: areas whose light differs by more than about 0.3 powers
   * of ten (at 0; 0.2 at 10, 0.5 at -10) are adapted apart. Higher is more local. NaN throws. */
  float lighting;

  /* Extra pull of the darkest and brightest tones toward the mean, 0 to 100. 0 and less is none. */
  float tone_compression;

  /* Pixels that become white, in twentieths of a per cent of the picture, 0 to 100: 20 is 1 %.
   * THE CALL CHANGES THIS FIELD: it leaves a twentieth of the value here, the per cent. Set the field again
   * before each call. */
  float white_clip;

  /* Pixels that become black, in per cent of the picture, 0 to 100. */
  float black_clip;

  /* Spatial reach of the local adaptation, -10 to 10: the size of the areas, 2.5 % of the picture's longer
   * side at 0, 1 % at 10, 9 % at -10. Higher is finer. NaN throws. */
  float microcontrast;

  float reserved0[5]; /* Not read. */
  float test1;        /* 1.0 sets a flag that is logged, without effect on the picture. */
  float reserved1[3]; /* Not read. */

  /* 1.0: the picture's left and right edges meet, as in a full panorama, and are rendered without a seam. Any
   * other value: an ordinary picture. */
  float horizontal_wrap;
} tm_quorvane_settings;

/* The records' sizes and offsets are part of the interface. C99 has no static_assert: where one of these does
 * not hold, the array's length is negative. */
#define TM_QUORVANE_SIZE(pRecord, pSize) \
  typedef char pRecord##_size_check[sizeof(pRecord) == (pSize) ? 1 : -1]
#define TM_QUORVANE_OFFSET(pRecord, pField, pOffset) \
  typedef char pRecord##_##pField##_check[offsetof(pRecord, pField) == (pOffset) ? 1 : -1]
TM_QUORVANE_SIZE(tm_quorvane_image, 40);
TM_QUORVANE_OFFSET(tm_quorvane_image, width, 0);
TM_QUORVANE_OFFSET(tm_quorvane_image, height, 4);
TM_QUORVANE_OFFSET(tm_quorvane_image, samples_per_pixel, 8);
TM_QUORVANE_OFFSET(tm_quorvane_image, input_bits, 12);
TM_QUORVANE_OFFSET(tm_quorvane_image, output_bits, 16);
TM_QUORVANE_OFFSET(tm_quorvane_image, output_row_pitch, 24);
TM_QUORVANE_OFFSET(tm_quorvane_image, reversed_order, 28);
TM_QUORVANE_SIZE(tm_quorvane_settings, 64);
TM_QUORVANE_OFFSET(tm_quorvane_settings, strength, 0);
TM_QUORVANE_OFFSET(tm_quorvane_settings, lighting, 4);
TM_QUORVANE_OFFSET(tm_quorvane_settings, tone_compression, 8);
TM_QUORVANE_OFFSET(tm_quorvane_settings, white_clip, 12);
TM_QUORVANE_OFFSET(tm_quorvane_settings, black_clip, 16);
TM_QUORVANE_OFFSET(tm_quorvane_settings, microcontrast, 20);
TM_QUORVANE_OFFSET(tm_quorvane_settings, test1, 44);
TM_QUORVANE_OFFSET(tm_quorvane_settings, horizontal_wrap, 60);
#undef TM_QUORVANE_SIZE
#undef TM_QUORVANE_OFFSET

/* Tone-maps one picture.
 *
 * Parameters
 *   image          The layout of both buffers. Not NULL.
 *   reserved       Not used; pass NULL.
 *   color_space    The colour space of both pictures: 0 sRGB, 1 Adobe RGB (1998), 2 ProPhoto RGB.
 *   settings       The sliders. Not NULL. white_clip is divided by 20 in place, on every call.
 *   input_pixels   The picture. Not NULL. Only read; need not be aligned.
 *                  8 or 16 bits: height * width * N samples, rows packed.
 *                  32 bits (RGBE): height rows of 4 * width bytes, each the plane of red mantissas, then
 *                  green, then blue, then the shared exponents e. A value is mantissa * 2^(e - 136);
 *                  where e is 0, it is black.
 *   output_pixels  Room for (height - 1) * S + width * N samples. Not NULL. Need not be aligned.
 *
 * Returns
 *    1  The picture is done.
 *   -2  Not supported: an unknown colour space (nothing is logged, settings stay as they are), or input
 *       bits other than 8, 16 and 32 (settings are logged and white_clip is changed). output_pixels stay
 *       as they are.
 *
 * Throws
 *   C++ exceptions, all derived from std::exception; what() describes the fault.
 *
 *   std::runtime_error  A null pointer; sizes or samples per pixel below 1; a row pitch that is too
 *                       small; rows of more than 748980 pixels ("Scanline width exceeds max tile size.");
 *                       output bits other than 8 and 16 ("Output image is not set."; the row pitch is not
 *                       checked then); NaN for lighting or microcontrast; no memory for pixels.
 *   std::bad_alloc      No memory for anything else.
 *
 *   Whatever the way out, all memory of the call is released, but for the short texts of a thrown
 *   exception. After an exception the output may hold a part of the picture.
 *
 *   A C program cannot catch them: it ends in std::terminate. Call quorvane_host_tonemap in its place, which
 *   catches (quorvane_host.h), or check the arguments first.
 *
 *   Do not unload the library (dlclose) while you hold an exception of it, also in a std::exception_ptr:
 *   its type, its functions and its destructor are code and data of the library. Copy what() first, leave
 *   the catch block, then unload.
 *
 * Memory
 *   About 22 bytes per pixel and a few megabytes beside the host's buffers, and a grid of cells, which is
 *   small for sliders within their ranges. Lighting and microcontrast far above theirs ask for a grid far
 *   larger than the picture. With more than 100 million cells (1.6 GB), and more than eight for each
 *   pixel, std::runtime_error is thrown before that memory is taken. No picture comes near with both at
 *   15 or below.
 *
 * Threads
 *   The work is done on the calling thread. No state is kept: calls may run at the same time on different
 *   threads, each with its own settings and output. The image record and the input may be shared.
 *
 *   The floating-point state of the calling thread does not matter: rounding modes, traps and modes that
 *   flush denormal numbers to zero are put aside for the time of the call. Whatever the way out, they are
 *   back then, and the status flags are as they were.
 *
 * Standard error
 *   Eight lines with the sizes and settings, a few lines of statistics, for 16-bit output with
 *   reversed_order 0 a line for each of some sampled pixels, and a closing line.
 *
 *   A standard error that cannot be written to costs the lines, never the picture. A pipe that nobody
 *   reads raises no SIGPIPE by these lines; signal handlers, the signal mask and pending signals are left
 *   alone. Do not close descriptor 2 but open /dev/null there: the next file that is opened would get its
 *   number, and the lines. With a buffer of the host's (setvbuf) lines are kept, and may raise SIGPIPE
 *   when the host flushes it.
 */
#if defined(__GNUC__) && !defined(_WIN32)
__attribute__((visibility("default")))
#endif
int cpp_tm_quorvane(const tm_quorvane_image* image, void* reserved, int color_space,
                    tm_quorvane_settings* settings, const void* input_pixels, void* output_pixels);

#ifdef __cplusplus
}
#endif

#endif
