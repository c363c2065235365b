/* A host in C that catches: errors come as a code and a reason, the log as lines for a callback. Tone-maps a
 * black picture, then once more into a buffer that is too small, and prints what became of both.
 *
 *   quorvane-host-caught */
#include <stdio.h>

#include "quorvane_host.h"

enum { kWidth = 64, kHeight = 48, kBytes = 3 * kWidth * kHeight };

static unsigned char input[kBytes];
static unsigned char output[kBytes];

static void count_line(void* user, const char* line) {
  (void)line;
  ++*(int*)user;
}

static int32_t tone_map(size_t output_size) {
  const tm_quorvane_image image = {.width = kWidth,
                                   .height = kHeight,
                                   .samples_per_pixel = 3,
                                   .input_bits = 8,
                                   .output_bits = 8,
                                   .output_row_pitch = 3 * kWidth};
  const tm_quorvane_settings settings = {.strength = 30.0f};
  char reason[256];
  int lines = 0;
  const int32_t result =
      quorvane_host_tonemap(&image, 0, &settings, input, sizeof input, output, output_size,
                            QUORVANE_HOST_LOG_CALLBACK, count_line, &lines, reason, sizeof reason);
  printf("result %d, %d log lines. %s\n", (int)result, lines, reason);
  return result;
}

int main(void) {
  const int32_t first = tone_map(sizeof output);
  const int32_t second = tone_map(sizeof output - 1);
  return first == QUORVANE_HOST_DONE && second == QUORVANE_HOST_INVALID_ARGUMENT ? 0 : 1;
}
