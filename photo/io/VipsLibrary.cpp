#include "photo/io/VipsLibrary.h"

#include <vips/vips.h>

#include "photo/base/Failure.h"

namespace Cli {
namespace {

void DropMessage(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

}  // namespace

cVipsLibrary::cVipsLibrary() {
  if (VIPS_INIT("quorvane") != 0) {
    throw cFailure(eFailure::kProcessing, "", "libvips cannot be started (" + TakeVipsError() + ")");
  }
  // One picture is read once and written once: a cache of operations would only hold on to memory.
  vips_cache_set_max(0);
  // Warnings repeat what the failure says, or speak of tags that nobody reads here.
  g_log_set_handler("VIPS", static_cast<GLogLevelFlags>(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_INFO), DropMessage,
                    nullptr);
}

cVipsLibrary::~cVipsLibrary() {
  vips_shutdown();
}

std::string TakeVipsError() {
  const std::string text = vips_error_buffer();
  vips_error_clear();
  const std::size_t end = text.find('\n');
  return text.empty() ? "no reason given" : text.substr(0, end);
}

}  // namespace Cli
