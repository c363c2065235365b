#pragma once

#include <string>
#include <vips/vips8>

namespace Cli {

/// A file as a source of libvips, with another text in place of its first pSkip bytes. Throws vips::VError.
vips::VSource OpenRestarted(const std::string& pFile, std::size_t pSkip, const std::string& pStart);

}  // namespace Cli
