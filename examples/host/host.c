/* The smallest host: tone-maps a picture that it makes itself and writes it as a PPM file.
 *
 *   quorvane-host OUT.ppm */
#include <stdio.h>
#include <stdlib.h>

#include "export/quorvane.h"

enum { kWidth = 480, kHeight = 320 };

/* Shared-exponent pixels: a dark room whose right end is ten thousand times brighter. */
static unsigned char* make_picture(void) {
  unsigned char* rgbe = malloc((size_t)4 * kWidth * kHeight);
  if (rgbe == NULL) return NULL;
  for (int y = 0; y < kHeight; ++y) {
    unsigned char* row = rgbe + (size_t)4 * kWidth * (size_t)y;
    for (int x = 0; x < kWidth; ++x) {
      row[x] = (unsigned char)(128 + (x * 5 + y * 3) % 120);               /* red mantissas */
      row[kWidth + x] = (unsigned char)(110 + (x / 24 + y / 24) % 2 * 60); /* green */
      row[2 * kWidth + x] = (unsigned char)(160 - y * 120 / kHeight);      /* blue */
      row[3 * kWidth + x] = (unsigned char)(122 + 14 * x / kWidth);        /* exponents */
    }
  }
  return rgbe;
}

static int write_ppm(const char* path, const unsigned char* rgb) {
  FILE* file = fopen(path, "wb");
  if (file == NULL) return 0;
  const size_t size = (size_t)3 * kWidth * kHeight;
  int ok = fprintf(file, "P6\n%d %d\n255\n", kWidth, kHeight) > 0 && fwrite(rgb, 1, size, file) == size;
  ok = fclose(file) == 0 && ok;
  return ok;
}

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: %s OUT.ppm\n", argv[0]);
    return 2;
  }
  const tm_quorvane_image image = {.width = kWidth,
                                   .height = kHeight,
                                   .samples_per_pixel = 3,
                                   .input_bits = 32,
                                   .output_bits = 8,
                                   .output_row_pitch = 3 * kWidth};
  tm_quorvane_settings settings = {.strength = 30.0f};
  unsigned char* input = make_picture();
  unsigned char* output = malloc((size_t)3 * kWidth * kHeight);
  int ok = input != NULL && output != NULL;
  ok = ok && cpp_tm_quorvane(&image, NULL, 0, &settings, input, output) == 1;
  ok = ok && write_ppm(argv[1], output);
  if (!ok) fprintf(stderr, "%s: cannot make %s\n", argv[0], argv[1]);
  free(input);
  free(output);
  return ok ? 0 : 1;
}
