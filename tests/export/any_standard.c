/* A host in what C99 and C++11 have in common: it has to compile with every later standard as well. */
#include "export/quorvane.h"

int call_as_any_host(const void* input, void* output);

int call_as_any_host(const void* input, void* output) {
  tm_quorvane_image image = {4, 2, 3, 32, 8, 0, 12, 0, {0, 0}};
  tm_quorvane_settings settings = {0, 0, 0, 0, 0, 0, {0, 0, 0, 0, 0}, 0, {0, 0, 0}, 0};
  settings.white_clip = 20.0f;
  return cpp_tm_quorvane(&image, NULL, 0, &settings, input, output);
}
