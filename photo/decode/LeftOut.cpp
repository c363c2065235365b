#include "photo/decode/LeftOut.h"

#include <fmt/format.h>

#include <algorithm>

#include "photo/decode/JpegExtras.h"
#include "photo/decode/VipsSource.h"
#include "photo/decode/tiff/TiffDirectories.h"

namespace Photo {
namespace {

using vips::VImage;

/// The directories that hold pictures of their own.
int CountPictures(const sTiffDirectories& pFile) {
  const auto& pages = pFile.fPages;
  const auto others = std::count_if(pages.begin() + (pages.empty() ? 0 : 1), pages.end(),
                                    [](const sTiffDirectory& pPage) { return pPage.IsPicture(); });
  return 1 + static_cast<int>(others);
}

/// A first page that calls itself a smaller copy, of a picture that is below it.
bool IsThumbnail(const sTiffDirectories& pFile) {
  return !pFile.fPages.empty() && (pFile.fPages.front().fSubfile & 1) != 0 &&
         std::any_of(pFile.fBelow.begin(), pFile.fBelow.end(),
                     [](const sTiffDirectory& pOne) { return pOne.IsPicture(); });
}

/// Where the resolutions differ so that it must be meant, and not so that one of them must be wrong.
void AddAspect(const VImage& pImage, std::vector<std::string>& pTo) {
  const double across = pImage.xres();
  const double down = pImage.yres();
  const double unknown = 1.0;
  if (across <= 0.0 || down <= 0.0 || (across == unknown && down == unknown)) return;
  const double aspect = std::max(across, down) / std::min(across, down);
  if (aspect < 1.02 || aspect > 4.0) return;
  constexpr double kMillimetresPerInch = 25.4;
  pTo.push_back(
      fmt::format("its pixels are stated not to be square ({:.4g} across and {:.4g} down an inch); they are "
                  "taken as square",
                  across * kMillimetresPerInch, down * kMillimetresPerInch));
}

void AddExtras(const sJpegExtras& pExtras, std::vector<std::string>& pTo) {
  if (pExtras.fHasGainMap) {
    pTo.emplace_back("its gain map is left out: what it adds beyond white is not read");
  } else if (pExtras.fPictures > 0) {
    pTo.push_back(fmt::format("{} further picture{} left out", pExtras.fPictures,
                              pExtras.fPictures == 1 ? " in the file is" : "s in the file are"));
  }
}

}  // namespace

std::vector<std::string> ListLeftOut(const std::string& pFile, const VImage& pImage, int pPage) {
  std::vector<std::string> leftOut;
  const std::string format = GetFormatName(pImage);
  const bool isTiff = format == "TIFF";
  const sTiffDirectories directories = isTiff ? ReadTiffDirectories(pFile) : sTiffDirectories{};
  const int pictures = isTiff ? CountPictures(directories) : CountPages(pImage);
  if (pPage == 0 && pictures > 1) {
    leftOut.push_back(fmt::format("only one of its {} pages is read; {{page}} chooses another", pictures));
  }
  if (pPage == 0 && IsThumbnail(directories)) {
    leftOut.emplace_back("its first page is stated to be a thumbnail; the picture that it shows is left out");
  }
  if (format == "JPEG") AddExtras(ReadJpegExtras(pFile), leftOut);
  if (isTiff || format == "JPEG") AddAspect(pImage, leftOut);
  return leftOut;
}

}  // namespace Photo
