/* Quorvane: tone mapping for high-dynamic-range photographs.
 *
 * One function: a picture, a colour space and sliders go in, a finished picture comes out.
 * For C99 and C++11 and later. */
#ifndef QUORVANE_H
#define QUORVANE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The pictures' layout: 40 bytes, little-endian. Read only; may be unaligned. */
typedef struct tm_quorvane_image {
  int32_t width;             /* pixels in a row, 1 to 748980 */
  int32_t height;            /* rows, 1 or more */
  int32_t samples_per_pixel; /* N, 1 or more: samples from one pixel to the next, in both buffers */
  int32_t input_bits;        /* bits a sample: 8, 16, or 32 for shared-exponent RGBE bytes */
  int32_t output_bits;       /* bits a sample: 8 or 16 */
  int32_t reserved0;         /* not read */
  int32_t output_row_pitch;  /* S: samples from one output row to the next, N * width or more (see below) */
  int32_t reversed_order;    /* 0: a pixel's first sample is red, its last blue; else: the reverse */
  int32_t reserved1[2];      /* not read */
} tm_quorvane_image;

/* The sliders: 64 bytes. May be unaligned. */
typedef struct tm_quorvane_settings {
  float strength;         /* compression of large contrasts, about -100 to 100; 0 is moderate */
  float lighting;         /* tonal reach of the local adaptation, about -10 to 10; higher is more local */
  float tone_compression; /* extra pull toward the mean tone, 0 or more; 0 is none */
  float white_clip;       /* 20 * per cent of the pixels above white; the call divides it by 20 IN PLACE */
  float black_clip;       /* per cent of the pixels below black, 0 to 100 */
  float microcontrast;    /* spatial reach of the local adaptation, about -10 to 10; higher is finer */
  float reserved0[5];     /* not read */
  float test1;            /* 1.0 sets the flag; stored, without effect */
  float reserved1[3];     /* not read */
  float horizontal_wrap;  /* 1.0: the picture's left and right edges meet (full panoramas) */
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
 * image         layout of both buffers.
 * reserved      not used; pass NULL.
 * color_space   of both pictures: 0 sRGB, 1 Adobe RGB (1998), 2 ProPhoto RGB.
 * settings      the sliders; white_clip is divided by 20 in place on every call.
 * input_pixels  8 or 16 bits: height * width * N unsigned samples, rows packed, gamma-encoded (2.2; 1.8 for
 *               ProPhoto RGB). 32: rows of 4 * width bytes, each row the plane of red mantissas, then green,
 *               then blue, then the shared exponents e; a value is mantissa * 2^(e - 136), linear light.
 *               Of N samples the first, the one at (N - 1) / 2 and the last are used.
 * output_pixels (height - 1) * S + width * N unsigned samples of output_bits. With reversed_order 0 the three
 *               used samples of each pixel are written, red first; else each row is copied as packed blue,
 *               green, red triples, which fits N = 3. With reversed_order 0, S is N * width or more. Else S
 *               is 0 or more: rows longer than S samples are cut to S. The row pitch counts only for 8 and 16
 *               output bits.
 *
 * Returns 1 when the picture is done; -2 for an unknown colour space (nothing is logged, settings stay as
 * they are) and for input bits other than 8, 16 and 32 (settings are logged and changed, pixels are not
 * touched).
 *
 * Throws C++ exceptions derived from std::exception. std::runtime_error: null pointers, sizes or samples per
 * pixel below 1, a row pitch that is too small, rows of more than 748980 pixels ("Scanline width exceeds max
 * tile size."), other output bits, a NaN for lighting or microcontrast, and failed pixel memory.
 * std::bad_alloc: other failed memory. Whatever the way out, all memory of the call is released, but for the
 * short texts of a thrown exception. A C program that calls the function cannot catch them: it ends in
 * std::terminate.
 *
 * Lighting and microcontrast far above their range ask for a grid of cells far larger than the picture. With
 * more than 100 million cells (1.6 GB), and more than eight for each pixel, std::runtime_error is thrown
 * before that memory is taken. No picture comes near with both at 15 or below.
 *
 * Do not unload the library (dlclose) while you hold an exception of it, also in a std::exception_ptr: its
 * type, its functions and its destructor are code and data of the library. Copy what() first, leave the catch
 * block, then unload.
 *
 * Writes to standard error: eight lines with the sizes and settings, a few lines of statistics, for 16-bit
 * output with reversed_order 0 a line for each of some sampled pixels, and a closing line.
 *
 * A standard error that cannot be written to costs the lines, never the picture. A pipe that nobody reads
 * raises no SIGPIPE by these lines; signal handlers, the signal mask and signals that wait are left alone. Do
 * not close descriptor 2 but open /dev/null there: the next file that is opened would get its number, and the
 * lines. With a buffer of the host's (setvbuf) lines are kept, and may raise SIGPIPE when the host flushes
 * it.
 *
 * The floating-point state of the calling thread does not matter: rounding modes, traps and modes that flush
 * denormal numbers to zero are put aside for the time of the call. Whatever the way out, they are back then,
 * and the status flags are as they were.
 *
 * Keeps no state: calls may run at the same time on different threads, each with its own records and buffers.
 */
#if defined(__GNUC__)
__attribute__((visibility("default")))
#endif
int cpp_tm_quorvane(const tm_quorvane_image* image, void* reserved, int color_space,
                    tm_quorvane_settings* settings, const void* input_pixels, void* output_pixels);

#ifdef __cplusplus
}
#endif

#endif
