/* Quorvane for hosts that cannot catch C++ exceptions: C, and by a small bridge C#, Rust, Java or Python.
 *
 *   char reason[256];
 *   int32_t result = quorvane_host_tonemap(&image, 0, &settings, input, input_size, output, output_size,
 *                                          QUORVANE_HOST_LOG_NONE, NULL, NULL, reason, sizeof reason);
 *   if (result != QUORVANE_HOST_DONE) fprintf(stderr, "not tone-mapped: %s\n", reason);
 *
 * Link libquorvane_host.a, libquorvane and the C++ runtime: `pkg-config --libs quorvane-host`.
 *
 * For C99 and C++11 and later. */
#ifndef QUORVANE_HOST_H
#define QUORVANE_HOST_H

#include <stddef.h>
#include <stdint.h>

#include "quorvane.h"

#ifdef __cplusplus
extern "C" {
#endif

/* What a call returns. Numbers above 6 may come with later versions: treat them as failures. */
enum {
  QUORVANE_HOST_DONE = 0,             /* The picture is done. */
  QUORVANE_HOST_UNSUPPORTED = 1,      /* Unknown colour space, or input bits other than 8, 16 and 32. */
  QUORVANE_HOST_INVALID_ARGUMENT = 2, /* A null pointer, a buffer that is too small, a size, pitch or NaN. */
  QUORVANE_HOST_OUT_OF_MEMORY = 3,    /* No memory, or sliders that ask for far more than the picture. */
  QUORVANE_HOST_FAILED = 4,           /* Any other failure. */
  QUORVANE_HOST_LOG_REFUSED = 5,      /* The log cannot be kept from standard error here. Nothing was done. */
  QUORVANE_HOST_LOG_LOST = 6          /* The picture is done, but log lines were lost: no memory for them, or
                                         the callback threw a C++ exception. */
};

/* Where the library's log lines go. */
enum {
  QUORVANE_HOST_LOG_STDERR = 0,  /* Standard error, as the library writes them. */
  QUORVANE_HOST_LOG_NONE = 1,    /* Nowhere. */
  QUORVANE_HOST_LOG_CALLBACK = 2 /* The callback. */
};

/* Takes one log line, without its line end. It is valid until the callback returns. */
typedef void (*quorvane_host_line)(void* user, const char* line);

#if defined(__GNUC__) && !defined(_WIN32)
#define QUORVANE_HOST_API __attribute__((visibility("default")))
#else
#define QUORVANE_HOST_API
#endif

/* Tone-maps one picture.
 *
 * Parameters
 *   image, settings   As for cpp_tm_quorvane (quorvane.h). Only read: white_clip stays as it is.
 *   color_space       0 sRGB, 1 Adobe RGB (1998), 2 ProPhoto RGB.
 *   input, output     The pixels, with their sizes in bytes. They must not overlap.
 *   log               QUORVANE_HOST_LOG_...
 *   line, user        The callback, and what it gets as first argument. Not NULL with LOG_CALLBACK.
 *   reason            Gets the reason of a failure in ASCII or UTF-8, or an empty text, with a NUL at its
 *                     end. It is cut at a whole character where reason_size bytes are too few. NULL, or a
 *                     size of 0: no text.
 *
 * Returns QUORVANE_HOST_... With any but DONE and LOG_LOST the output may hold a part of the picture; with
 * UNSUPPORTED, INVALID_ARGUMENT and LOG_REFUSED it is untouched.
 *
 * No C++ exception leaves the call. The end of a thread does: pthread_exit in a callback, and pthread_cancel
 * while a line is written to standard error.
 *
 * Log
 *   Standard error: the work is done on the calling thread.
 *
 *   None and callback: the work is done on a thread of its own, which has no open descriptors but a file in
 *   memory, in the place of standard error: it gathers the lines. No state of the process changes, so other
 *   threads and other calls are not affected. The calling thread waits. Then it runs the callback, once for
 *   each line: that may do anything but longjmp out, such as print to standard error or call this function.
 *   The lines of a call that fails come as well.
 *
 *   LOG_REFUSED is returned, before any work, on systems other than Linux with the GNU C library, and when:
 *     - stderr has a buffer, as after freopen; setvbuf(stderr, NULL, _IONBF, 0) takes it away;
 *     - stderr is a stream without a descriptor (fopencookie, fmemopen);
 *     - a thread holds the lock of stderr for longer than a second (flockfile), such as the calling thread;
 *     - the system gives no thread, no file in memory (memfd_create; 64 KiB) or no table of descriptors
 *       (close_range with CLOSE_RANGE_UNSHARE: Linux 5.9 and later), or a sandbox forbids one of them. */
QUORVANE_HOST_API int32_t quorvane_host_tonemap(const tm_quorvane_image* image, int32_t color_space,
                                                const tm_quorvane_settings* settings, const void* input,
                                                size_t input_size, void* output, size_t output_size,
                                                int32_t log, quorvane_host_line line, void* user,
                                                char* reason, size_t reason_size);

/* The bytes that a call reads, and those from the output's first sample to its last; 0 for an image that it
 * refuses, and UINT64_MAX for sizes beyond that. image: not NULL. */
QUORVANE_HOST_API uint64_t quorvane_host_input_size(const tm_quorvane_image* image);
QUORVANE_HOST_API uint64_t quorvane_host_output_size(const tm_quorvane_image* image);

#ifdef __cplusplus
}
#endif

#endif
