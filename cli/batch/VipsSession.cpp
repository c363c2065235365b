#include "cli/batch/VipsSession.h"

#include <vips/vips.h>

#include "photo/io/VipsLibrary.h"

namespace Tool {
namespace {

void DropMessage(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

}  // namespace

cVipsSession::cVipsSession() {
  Photo::StartVips();
  // One picture is read once and written once: a cache of operations would only hold on to memory.
  vips_cache_set_max(0);
  // Warnings repeat what the failure says, or speak of tags that nobody reads here.
  g_log_set_handler("VIPS", static_cast<GLogLevelFlags>(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_INFO), DropMessage,
                    nullptr);
}

cVipsSession::~cVipsSession() {
  vips_shutdown();
}

}  // namespace Tool
