#include "cli/Picture.h"

#include <cstddef>
#include <cstdio>
#include <limits>

#include "cli/Failure.h"
#include "engine/BitmapRows.h"
#include "engine/cException.h"

namespace Cli {

sPicture MakePicture(const std::string& pFile, std::int64_t pWidth, std::int64_t pHeight) {
  const std::string size = std::to_string(pWidth) + " x " + std::to_string(pHeight);
  if (pWidth < 1 || pHeight < 1)
    throw cFailure(eExitCode_CannotRead, pFile, "it has no pixels (" + size + ")");
  constexpr std::int64_t kLongest = std::numeric_limits<int>::max();
  sPicture picture;
  try {
    if (pWidth > kLongest || pHeight > kLongest) throw std::bad_alloc();
    picture.fBitmap =
        std::make_unique<TmEngine::cBitmapXYZ32>(static_cast<int>(pWidth), static_cast<int>(pHeight));
  } catch (const std::bad_alloc&) {
    throw cFailure(eExitCode_CannotRead, pFile, size + " pixels do not fit into memory");
  } catch (const TmEngine::cOutOfMemoryException&) {
    throw cFailure(eExitCode_CannotRead, pFile, size + " pixels do not fit into memory");
  }
  return picture;
}

void PrintWarnings(const std::string& pFile, const std::vector<std::string>& pWarnings) {
  for (const std::string& warning : pWarnings) {
    std::fprintf(stderr, "quorvane: %s: warning: %s\n", pFile.c_str(), warning.c_str());
  }
}

float* GetRow(const sPicture& pPicture, int pY) {
  return TmEngine::RowsOf(*pPicture.fBitmap).Row(pY);
}

}  // namespace Cli
