/* A host in what C99 and C++11 have in common: tone-maps a small picture and prints a checksum of the result.
 *
 *   host              linked with the library
 *   host LIBRARY      built with -DUSE_DLOPEN: loads the library, which the program is not linked with */
#include <stdio.h>

#include "quorvane.h"

#ifdef USE_DLOPEN
#include <dlfcn.h>
#include <string.h>
#endif

enum { kWidth = 48, kHeight = 32 };
static uint8_t input[kHeight * 4 * kWidth];
static uint8_t output[kHeight * 3 * kWidth];

/* Shared-exponent pixels, brighter to the right: planes of red, green, blue and exponents for each row. */
static void make_picture(void) {
  size_t i;
  for (i = 0; i < sizeof input; ++i) {
    const size_t x = i % kWidth, plane = i / kWidth % 4, y = i / kWidth / 4;
    input[i] = (uint8_t)(plane == 3 ? 122 + 14 * x / kWidth : 110 + (x * 5 + y * 3 + plane * 20) % 120);
  }
}

static int run(int (*tone_map)(const tm_quorvane_image*, void*, int, tm_quorvane_settings*, const void*,
                               void*)) {
  tm_quorvane_image image = {kWidth, kHeight, 3, 32, 8, 0, 3 * kWidth, 0, {0, 0}};
  tm_quorvane_settings settings = {30, 0, 0, 0, 0, 0, {0, 0, 0, 0, 0}, 0, {0, 0, 0}, 0};
  uint32_t sum = 2166136261u; /* FNV-1a */
  size_t i;
  settings.white_clip = 20.0f;
  make_picture();
  if (tone_map(&image, NULL, 0, &settings, input, output) != 1) return 1;
  for (i = 0; i < sizeof output; ++i) sum = (sum ^ output[i]) * 16777619u;
  printf("%08lx\n", (unsigned long)sum);
  return 0;
}

#ifdef USE_DLOPEN
int main(int argc, char** argv) {
  void* library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
  void* symbol = library != NULL ? dlsym(library, "cpp_tm_quorvane") : NULL;
  int (*tone_map)(const tm_quorvane_image*, void*, int, tm_quorvane_settings*, const void*, void*);
  if (symbol == NULL) return 2;
  memcpy(&tone_map, &symbol, sizeof tone_map);
  return run(tone_map) != 0 || dlclose(library) != 0;
}
#else
int main(void) {
  return run(cpp_tm_quorvane);
}
#endif
