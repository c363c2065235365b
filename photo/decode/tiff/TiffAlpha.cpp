#include "photo/decode/tiff/TiffAlpha.h"

#include <algorithm>
#include <cstddef>

#include "photo/decode/tiff/TiffDirectories.h"

namespace Photo {

std::optional<sAmendment> FindAssociatedAlpha(const std::string& pFile, int pPage) {
  const sTiffDirectories directories = ReadTiffDirectories(pFile);
  const std::size_t pages = directories.fPages.size();
  const auto index = static_cast<std::size_t>(std::max(pPage - 1, 0));
  if (pages == 0 || (index >= pages && pages > 1)) return std::nullopt;
  const std::optional<std::uint64_t> at = directories.fPages[std::min(index, pages - 1)].fAssociatedAt;
  if (!at) return std::nullopt;
  const std::string unassociated = directories.fIsLittleEndian ? std::string{2, 0} : std::string{0, 2};
  return sAmendment{static_cast<std::int64_t>(*at), 2, unassociated};
}

}  // namespace Photo
