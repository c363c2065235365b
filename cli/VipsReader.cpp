#include "cli/VipsReader.h"

#include <algorithm>
#include <vips/vips8>

#include "cli/IccDecoder.h"
#include "cli/LinearLight.h"
#include "cli/RadianceHeader.h"
#include "cli/VipsSource.h"
#include "engine/cTransfer.h"

namespace Cli {
namespace {

using vips::VImage;

/// How the samples of a row become floats.
struct sLayout {
  int fSamples = 3;  ///< A pixel, alpha included.
  int fColours = 3;  ///< Of them colours: 1 grey, 3 RGB, 4 CMYK; they come first.
  VipsBandFormat fFormat = VIPS_FORMAT_UCHAR;
  std::vector<float> fTable;  ///< The float for each integer sample.
  std::unique_ptr<cIccDecoder>
      fDecoder;  ///< From these floats to XYZ; null when they are linear RGB or grey.
};

/// The float of each integer sample: encoded for a profile, else linear light of sRGB.
std::vector<float> MakeTable(VipsBandFormat pFormat, float pFull, bool pDecode) {
  if (pFormat == VIPS_FORMAT_FLOAT) return {};
  const TmEngine::cTransfer_sRGBToLinear transfer;
  std::vector<float> table(pFormat == VIPS_FORMAT_UCHAR ? 256 : 65536);
  const auto last = static_cast<float>(table.size() - 1);
  for (std::size_t i = 0; i < table.size(); ++i) {
    const float sample = static_cast<float>(i) / last;
    table[i] = pDecode ? transfer.Evaluate(sample) : sample * pFull;
  }
  return table;
}

sLayout ChooseLayout(const std::string& pFile, const VImage& pImage, sPicture& pPicture) {
  sLayout layout;
  layout.fSamples = pImage.bands();
  layout.fColours = CountColours(pFile, pImage);
  layout.fFormat = pImage.format();
  const bool isInteger = layout.fFormat == VIPS_FORMAT_UCHAR || layout.fFormat == VIPS_FORMAT_USHORT;
  if (!isInteger && (layout.fFormat != VIPS_FORMAT_FLOAT || layout.fColours == 4)) {
    RefuseLayout(pFile, "its kind of samples is not supported");
  }
  if (isInteger) layout.fDecoder = MakeDecoder(pImage, layout.fColours, pPicture.fWarnings);
  if (layout.fColours == 4 && layout.fDecoder == nullptr) RefuseLayout(pFile, "it is CMYK without a profile");
  layout.fTable =
      MakeTable(layout.fFormat, cIccDecoder::GetFullSample(layout.fColours), layout.fDecoder == nullptr);
  return layout;
}

/// Takes the colours of each pixel, pStep floats from one to the next.
template <class tSample, class tToFloat>
void TakeColours(const VipsPel* pFrom, const sLayout& pLayout, int pWidth, int pStep, float* pTo,
                 const tToFloat& pToFloat) {
  const auto* from = reinterpret_cast<const tSample*>(pFrom);
  for (int x = 0; x < pWidth; ++x, from += pLayout.fSamples, pTo += pStep) {
    for (int i = 0; i < pLayout.fColours; ++i) pTo[i] = pToFloat(from[i]);
  }
}

void ToFloats(const VipsPel* pFrom, const sLayout& pLayout, int pWidth, int pStep, float* pTo) {
  const auto look = [&](auto pSample) { return pLayout.fTable[pSample]; };
  switch (pLayout.fFormat) {
    case VIPS_FORMAT_UCHAR:
      return TakeColours<unsigned char>(pFrom, pLayout, pWidth, pStep, pTo, look);
    case VIPS_FORMAT_USHORT:
      return TakeColours<unsigned short>(pFrom, pLayout, pWidth, pStep, pTo, look);
    default:
      return TakeColours<float>(pFrom, pLayout, pWidth, pStep, pTo, [](float pSample) { return pSample; });
  }
}

/// Streams the rows: no more of the file's own pixels than a strip is in memory.
void ReadRows(const VImage& pImage, const sLayout& pLayout, const sPicture& pPicture) {
  constexpr int kStrip = 16;
  const int width = pImage.width();
  std::vector<float> row(static_cast<std::size_t>(width) * static_cast<std::size_t>(pLayout.fColours));
  const vips::VRegion region = vips::VRegion::new_from_image(pImage);
  for (int y = 0; y < pImage.height(); ++y) {
    if (y % kStrip == 0) region.prepare(0, y, width, std::min(kStrip, pImage.height() - y));
    float* const to = GetRow(pPicture, y);
    if (pLayout.fDecoder == nullptr) {
      ToFloats(region.addr(0, y), pLayout, width, 3, to);
    } else {
      ToFloats(region.addr(0, y), pLayout, width, pLayout.fColours, row.data());
      pLayout.fDecoder->ToXYZ(row.data(), to, width);
    }
  }
}

/// Takes back what the file's exposure lines say was multiplied in.
void UndoScale(const sPicture& pPicture, const double (&pScale)[3]) {
  if (std::all_of(pScale, pScale + 3, [](double pV) { return pV == 1.0; })) return;
  for (int y = 0; y < pPicture.fBitmap->GetHeight(); ++y) {
    float* const row = GetRow(pPicture, y);
    for (int i = 0; i < 3 * pPicture.fBitmap->GetWidth(); ++i) {
      row[i] = static_cast<float>(row[i] / pScale[i % 3]);
    }
  }
}

}  // namespace

sPicture ReadWithVips(const std::string& pFile) {
  try {
    const sRadianceHeader header = ReadRadianceHeader(pFile);
    VImage image = OpenUpright(pFile, header.fOrientation);
    sPicture picture = MakePicture(pFile, image.width(), image.height());
    if (image.format() == VIPS_FORMAT_DOUBLE) image = image.cast(VIPS_FORMAT_FLOAT);
    const sLayout layout = ChooseLayout(pFile, image, picture);
    ReadRows(image, layout, picture);
    if (layout.fDecoder != nullptr) {
      RepairSamples(picture);
      return picture;
    }
    UndoScale(picture, header.fScale);
    if (layout.fColours == 1) SpreadGrey(picture);
    LinearToXYZ(picture, header.fPrimaries);
    return picture;
  } catch (const vips::VError&) {
    RefuseDamaged(pFile);
  }
}

}  // namespace Cli
