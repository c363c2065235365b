#pragma once

#include <cstddef>
#include <string>

namespace Tool {

/// How many files and folders were passed over in the folders that were named.
struct sLeftOut {
  std::size_t fUnknown = 0;  ///< Of no known format.
  std::size_t fHidden = 0;
  std::size_t fLinks = 0;    ///< To folders, or to nothing.
  std::size_t fSpecial = 0;  ///< Pipes, sockets and devices.
};

struct sUnreadableFolder {
  std::string fFolder;
  std::string fReason;
};

/// "unknown format (2), hidden (1)"; "" for nothing.
std::string DescribeLeftOut(const sLeftOut& pLeftOut);

}  // namespace Tool
