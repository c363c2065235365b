#pragma once

#include <cstdint>
#include <string>
#include <vips/vips8>

namespace Photo {

/// Other bytes in place of some of a file's.
struct sAmendment {
  std::int64_t fAt = 0;
  std::int64_t fLength = 0;  ///< How many bytes are replaced.
  std::string fBytes;
};

/// A file as a source of libvips, with some of its bytes replaced. Throws vips::VError.
vips::VSource OpenAmended(const std::string& pFile, const sAmendment& pAmendment);

}  // namespace Photo
