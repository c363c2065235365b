/* A host in plain C that finds the function in the library that it is given:
 *
 *   plain-c-host LIBRARY
 *
 * Ends with 0 when result, picture and record are what they should be. */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "export/quorvane.h"

enum { kWidth = 8, kHeight = 6, kPitch = 30, kUntouched = 0xA5 };

typedef int (*function)(const tm_quorvane_image*, void*, int, tm_quorvane_settings*, const void*, void*);

static int failures = 0;

static void check(int holds, const char* text) {
  if (holds) return;
  printf("not so: %s\n", text);
  ++failures;
}

/* Grey rows that get brighter to the right, in shared-exponent pixels. */
static void make_picture(unsigned char* rgbe) {
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      for (int plane = 0; plane < 3; ++plane) rgbe[(4 * y + plane) * kWidth + x] = (unsigned char)(130 + y);
      rgbe[(4 * y + 3) * kWidth + x] = (unsigned char)(126 + x);
    }
  }
}

static void check_picture(const unsigned char* output) {
  int rises = 1, is_grey = 1, is_clean = 1;
  for (int y = 0; y < kHeight; ++y) {
    const unsigned char* row = output + y * kPitch;
    for (int x = 0; x < kWidth; ++x) {
      const int spread = row[3 * x] - row[3 * x + 2];
      is_grey = is_grey && spread >= -3 && spread <= 3;
      rises = rises && (x == 0 || row[3 * x + 1] >= row[3 * x - 2]);
    }
    rises = rises && row[3 * kWidth - 2] > row[1] + 50;
    for (int i = 3 * kWidth; i < kPitch; ++i) is_clean = is_clean && row[i] == kUntouched;
  }
  check(rises, "the picture gets brighter to the right");
  check(is_grey, "the picture is grey");
  check(is_clean, "the host's padding stays");
}

int main(int argc, char** argv) {
  static unsigned char input[4 * kWidth * kHeight], output[kPitch * kHeight];
  void* library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
  void* symbol = library != NULL ? dlsym(library, "cpp_tm_quorvane") : NULL;
  if (symbol == NULL) {
    printf("usage: %s LIBRARY: %s\n", argv[0], argc == 2 ? dlerror() : "no library");
    return 2;
  }
  function tone_map;
  memcpy(&tone_map, &symbol, sizeof tone_map);

  tm_quorvane_image image = {.width = kWidth,
                             .height = kHeight,
                             .samples_per_pixel = 3,
                             .input_bits = 32,
                             .output_bits = 8,
                             .output_row_pitch = kPitch};
  tm_quorvane_settings settings = {.strength = 10.0f, .white_clip = 20.0f};
  make_picture(input);
  memset(output, kUntouched, sizeof output);
  check(tone_map(&image, NULL, 0, &settings, input, output) == 1, "the call returns 1");
  check(settings.white_clip == 1.0f, "the white clip is divided by 20");
  check_picture(output);

  image.input_bits = 12;
  memset(output, kUntouched, sizeof output);
  check(tone_map(&image, NULL, 0, &settings, input, output) == -2, "12 bits return -2");
  check(output[0] == kUntouched, "12 bits leave the output");
  check(dlclose(library) == 0, "the library can be closed");
  return failures == 0 ? 0 : 1;
}
