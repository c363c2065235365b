#include "photo/io/VipsLibrary.h"

#include <vips/vips.h>

#include <cstddef>

#include "photo/base/Failure.h"

namespace Photo {

void StartVips() {
  if (VIPS_INIT("quorvane") == 0) return;
  throw cFailure(eFailure::kProcessing, "libvips cannot be started (" + TakeVipsError() + ")");
}

void SetVipsThreads(int pThreads) {
  vips_concurrency_set(pThreads);
}

std::string TakeVipsError() {
  const std::string text = vips_error_buffer();
  vips_error_clear();
  const std::size_t end = text.find('\n');
  return text.empty() ? "no reason given" : text.substr(0, end);
}

}  // namespace Photo
