#include "photo/decode/VipsReader.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>
#include <vips/vips8>

#include "engine/image/PixelRows.h"
#include "photo/decode/LeftOut.h"
#include "photo/decode/RadianceHeader.h"
#include "photo/decode/StatedColors.h"
#include "photo/decode/VipsSource.h"
#include "photo/decode/tiff/TiffAlpha.h"
#include "photo/decode/tiff/TiffSamples.h"
#include "photo/icc/IccDecoder.h"
#include "photo/light/RowConverter.h"
#include "photo/metadata/PictureMetadata.h"
#include "photo/picture/Alpha.h"
#include "photo/picture/Panorama.h"

namespace Photo {
namespace {

using vips::VImage;

/// How the samples of a row become floats.
struct sLayout {
  int fSamples = 3;  ///< Per pixel, alpha included.
  int fColours = 3;  ///< Samples that are colours: 1 grey, 3 RGB, 4 CMYK; they come first.
  VipsBandFormat fFormat = VIPS_FORMAT_UCHAR;
  bool fIsRgbe = false;                   ///< The file stores four bytes per pixel (RGBE).
  float fFull = 255.0f;                   ///< The integer sample for full colour.
  std::vector<float> fTables[4];          ///< The float for each integer sample; colours may share one.
  const float* fTableOf[4] = {};          ///< Each colour's.
  std::unique_ptr<cIccDecoder> fDecoder;  ///< Null without a profile.
  const char* fOrigin = "";               ///< Where the profile is from.
  sCicpColors fCoded;                     ///< Colours of integers without a profile.
  double fScale[3] = {1.0, 1.0, 1.0};     ///< What linear samples were multiplied by.

  bool IsOfFloats() const { return fFormat == VIPS_FORMAT_FLOAT; }
  /// Whether a row goes through the profile's own transform, instead of curves and a matrix.
  bool IsTransformed() const { return fDecoder != nullptr && !fDecoder->GetMatrix(); }
};

/// The float for an integer sample in [0, 1]: linear light, or what the profile's transform takes.
float DecodeInteger(const sLayout& pLayout, int pColour, float pSample) {
  if (pLayout.fDecoder == nullptr) return DecodeSample(pLayout.fCoded, pSample);
  if (pLayout.fDecoder->GetMatrix()) return pLayout.fDecoder->Linearise(pColour, pSample);
  return pSample * cIccDecoder::GetFullSample(pLayout.fColours);
}

std::vector<float> MakeTable(const sLayout& pLayout, int pColour) {
  std::vector<float> table(pLayout.fFormat == VIPS_FORMAT_UCHAR ? 256 : 65536);
  for (std::size_t i = 0; i < table.size(); ++i) {
    table[i] = DecodeInteger(pLayout, pColour, std::min(static_cast<float>(i) / pLayout.fFull, 1.0f));
  }
  return table;
}

/// Large tables leave the processor's caches to the pixels only when colours share what is the same.
void MakeTables(sLayout& pLayout) {
  std::vector<float>& first = pLayout.fTables[0];
  for (int i = 0; i < pLayout.fColours; ++i) {
    const bool isOfAll = i > 0 && pLayout.fDecoder == nullptr;
    std::vector<float>& table = pLayout.fTables[i];
    if (!isOfAll) table = MakeTable(pLayout, i);
    pLayout.fTableOf[i] = isOfAll || table == first ? first.data() : table.data();
  }
}

sLayout ChooseLayout(const std::string& pFile, const VImage& pImage, sPictureInfo& pPicture) {
  sLayout layout;
  layout.fSamples = pImage.bands();
  layout.fColours = CountColours(pImage);
  layout.fFormat = pImage.format();
  const bool isInteger = layout.fFormat == VIPS_FORMAT_UCHAR || layout.fFormat == VIPS_FORMAT_USHORT;
  if (!isInteger && (!layout.IsOfFloats() || layout.fColours == 4)) {
    RefuseLayout("its kind of samples is not supported");
  }
  const sStatedColors stated = FindStatedColors(pFile, pImage, *pPicture.fMetadata, pPicture.fWarnings);
  layout.fDecoder = MakeDecoder(stated.fProfile, layout.fColours, pPicture.fWarnings);
  layout.fOrigin = stated.fOrigin;
  if (layout.fColours == 4 && layout.fDecoder == nullptr) RefuseLayout("it is CMYK without a profile");
  if (!isInteger) return layout;
  if (layout.fDecoder == nullptr) layout.fCoded = stated.fCoded.value_or(sCicpColors{});
  layout.fFull = static_cast<float>(GetFullSample(pImage));
  MakeTables(layout);
  return layout;
}

sLinearLight ChooseLight(const sLayout& pLayout, const sRadianceHeader& pHeader, sPictureInfo& pPicture) {
  if (pLayout.fDecoder != nullptr) {
    return {pLayout.fDecoder->GetMatrix(), pLayout.IsOfFloats(),
            pLayout.fDecoder->GetName() + " (" + pLayout.fOrigin + ")"};
  }
  if (pLayout.IsOfFloats()) return MakeLinearLight(pHeader.fPrimaries, pPicture.fWarnings);
  sLinearLight light = MakeLinearLight(pLayout.fCoded.fPrimaries, pPicture.fWarnings);
  light.fColorSpace = pLayout.fCoded.fName;
  return light;
}

/// Takes the colours of each pixel, pStep floats from one to the next.
template <int tColours, class tSample, class tToFloat>
void TakePixels(const VipsPel* pFrom, int pFromStep, int pWidth, int pStep, float* pTo,
                const tToFloat& pToFloat) {
  const auto* from = reinterpret_cast<const tSample*>(pFrom);
  for (int x = 0; x < pWidth; ++x, from += pFromStep, pTo += pStep) {
    for (int i = 0; i < tColours; ++i) pTo[i] = pToFloat(from[i], i);
  }
}

template <class tSample, class tToFloat>
void TakeColours(const VipsPel* pFrom, const sLayout& pLayout, int pWidth, int pStep, float* pTo,
                 const tToFloat& pToFloat) {
  const auto take = pLayout.fColours == 1   ? TakePixels<1, tSample, tToFloat>
                    : pLayout.fColours == 3 ? TakePixels<3, tSample, tToFloat>
                                            : TakePixels<4, tSample, tToFloat>;
  take(pFrom, pLayout.fSamples, pWidth, pStep, pTo, pToFloat);
}

/// A sample means the middle of its step. An exponent of 0 is black.
void DecodeRgbe(const VipsPel* pFrom, int pWidth, float* pTo) {
  static const std::vector<float> kSteps = [] {
    std::vector<float> steps(256);
    for (int i = 1; i < 256; ++i) steps[static_cast<std::size_t>(i)] = std::ldexp(1.0f, i - 136);
    return steps;
  }();
  const float* const steps = kSteps.data();
  for (int x = 0; x < pWidth; ++x, pFrom += 4, pTo += 3) {
    const float step = steps[pFrom[3]];
    for (int i = 0; i < 3; ++i) pTo[i] = (static_cast<float>(pFrom[i]) + 0.5f) * step;
  }
}

void ToFloats(const VipsPel* pFrom, const sLayout& pLayout, int pWidth, int pStep, float* pTo) {
  const float* const tables[] = {pLayout.fTableOf[0], pLayout.fTableOf[1], pLayout.fTableOf[2],
                                 pLayout.fTableOf[3]};
  const auto look = [&tables](auto pSample, int pColour) { return tables[pColour][pSample]; };
  const auto take = [](float pSample, int) { return pSample; };
  const auto linearise = [&](float pSample, int pColour) {
    return pLayout.fDecoder->Linearise(pColour, pSample);
  };
  switch (pLayout.fFormat) {
    case VIPS_FORMAT_UCHAR:
      return TakeColours<unsigned char>(pFrom, pLayout, pWidth, pStep, pTo, look);
    case VIPS_FORMAT_USHORT:
      return TakeColours<unsigned short>(pFrom, pLayout, pWidth, pStep, pTo, look);
    default:
      if (pLayout.fDecoder == nullptr || pLayout.IsTransformed()) {
        return TakeColours<float>(pFrom, pLayout, pWidth, pStep, pTo, take);
      }
      return TakeColours<float>(pFrom, pLayout, pWidth, pStep, pTo, linearise);
  }
}

bool IsScaled(const sLayout& pLayout) {
  return std::any_of(pLayout.fScale, pLayout.fScale + 3, [](double pV) { return pV != 1.0; });
}

/// Whether every sample that the file can hold becomes valid light.
bool IsValid(const sLayout& pLayout) {
  if (pLayout.IsTransformed() || IsScaled(pLayout)) return false;
  const auto isLight = [](float pV) { return pV >= 0.0f && pV <= 1e6f; };
  const auto isValid = [&](const std::vector<float>& pTable) {
    return std::all_of(pTable.begin(), pTable.end(), isLight);
  };
  return !pLayout.IsOfFloats() && std::all_of(pLayout.fTables, pLayout.fTables + 4, isValid);
}

/// Takes back what the file's exposure lines say was multiplied in.
void UndoScale(float* pRow, int pWidth, const double (&pScale)[3]) {
  for (int i = 0; i < 3 * pWidth; ++i) pRow[i] = static_cast<float>(pRow[i] / pScale[i % 3]);
}

template <class tSample, class tToAlpha>
void TakeAlpha(const VipsPel* pFrom, const sLayout& pLayout, int pWidth, std::uint16_t* pTo,
               const tToAlpha& pToAlpha) {
  const auto* from = reinterpret_cast<const tSample*>(pFrom) + pLayout.fColours;
  for (int x = 0; x < pWidth; ++x, from += pLayout.fSamples) *pTo++ = pToAlpha(*from);
}

void ToAlpha(const VipsPel* pFrom, const sLayout& pLayout, int pWidth, std::uint16_t* pTo) {
  switch (pLayout.fFormat) {
    case VIPS_FORMAT_UCHAR:
      return TakeAlpha<unsigned char>(pFrom, pLayout, pWidth, pTo, AlphaOf8Bits);
    case VIPS_FORMAT_USHORT:
      return TakeAlpha<unsigned short>(pFrom, pLayout, pWidth, pTo, [&](unsigned short pSample) {
        return pLayout.fFull == 65535.0f ? pSample
                                         : AlphaOfFloat(static_cast<float>(pSample) / pLayout.fFull);
      });
    default:
      return TakeAlpha<float>(pFrom, pLayout, pWidth, pTo, AlphaOfFloat);
  }
}

/// From the file's row to a row as the picture's light says.
void TakeRow(const VipsPel* pFrom, const sLayout& pLayout, int pWidth, std::vector<float>& pScratch,
             float* pTo) {
  if (pLayout.IsTransformed()) {
    pScratch.resize(static_cast<std::size_t>(pWidth) * static_cast<std::size_t>(pLayout.fColours));
    ToFloats(pFrom, pLayout, pWidth, pLayout.fColours, pScratch.data());
    return pLayout.fDecoder->ToXYZ(pScratch.data(), pTo, pWidth);
  }
  if (pLayout.fIsRgbe) {
    DecodeRgbe(pFrom, pWidth, pTo);
  } else {
    ToFloats(pFrom, pLayout, pWidth, 3, pTo);
  }
  if (pLayout.fColours == 1) SpreadGrey(pTo, pWidth);
  if (IsScaled(pLayout)) UndoScale(pTo, pWidth, pLayout.fScale);
}

/// Streams the rows: no more of the file's own pixels than a strip is in memory.
class cVipsRows : public cPictureRows {
 public:
  cVipsRows(const VImage& pImage, sLayout pLayout, bool pHasAlpha, const sLinearLight& pLight)
      : cPictureRows(pImage.width(), pImage.height(), pHasAlpha),
        fLayout(std::move(pLayout)),
        fLight(pLight),
        fRegion(vips::VRegion::new_from_image(pImage)),
        fPixelBytes(VIPS_IMAGE_SIZEOF_PEL(pImage.get_image())) {}

  bool Read(int pY, float* pTo, std::uint16_t* pToAlpha) override {
    constexpr int kStrip = 16;
    try {
      if (pY % kStrip == 0) fRegion.prepare(0, pY, GetWidth(), std::min(kStrip, GetHeight() - pY));
    } catch (const vips::VError&) {
      RefuseDamaged();
    }
    const VipsPel* const row = fRegion.addr(0, pY);
    if (pToAlpha != nullptr) ToAlpha(row, fLayout, GetWidth(), pToAlpha);
    bool isDone = true;
    // in runs that stay in the processor's nearest cache
    for (int x = 0; x < GetWidth(); x += TmEngine::kRunLength) {
      const int count = std::min(TmEngine::kRunLength, GetWidth() - x);
      float* const to = pTo + std::ptrdiff_t{3} * x;
      TakeRow(row + fPixelBytes * static_cast<std::size_t>(x), fLayout, count, fScratch, to);
      isDone = fLight.Take(to, count) && isDone;
    }
    return isDone;
  }

  void Hold() override { fLight.Hold(); }
  std::optional<sRepairs> Finish() override { return fLight.Finish(); }

 private:
  sLayout fLayout;
  cRowConverter fLight;
  vips::VRegion fRegion;
  std::size_t fPixelBytes;
  std::vector<float> fScratch;
};

void DescribeFile(const std::string& pFile, const VImage& pImage, sPictureInfo& pPicture) {
  pPicture.fFormat = GetFormatName(pImage);
  pPicture.fFileDepth = GetSampleBits(pImage);
  pPicture.fMetadata = ReadMetadata(pFile, pImage);
  pPicture.fIsPanorama = StatesPanorama(pPicture.fMetadata->GetXmpPacket());
}

/// Integers cannot be above their alpha when straight ones were multiplied by it; rounding is a step.
bool HasOwnLight(const VImage& pImage) {
  if (pImage.format() == VIPS_FORMAT_FLOAT || pImage.format() == VIPS_FORMAT_DOUBLE) return false;
  const int colours = CountColours(pImage);
  if (colours == 4 || pImage.bands() == colours) return false;
  const VImage samples = pImage.extract_band(0, VImage::option()->set("n", colours));
  return (samples > pImage.extract_band(colours) + 1.0).max() > 0.0;
}

/// How a file is read whose alpha is associated, if it is. What libvips divides by alpha is as good as
/// straight, unless that loses light.
struct sAssociatedAlpha {
  std::optional<sAmendment> fAmendment;
  bool fHasOwnLight = false;

  sAssociatedAlpha(const std::string& pFile, const sPictureChoice& pChoice)
      : fAmendment(FindAssociatedAlpha(pFile, pChoice.fPage)) {
    if (!fAmendment || pChoice.fIgnoresAlpha) return;
    const VImage image = OpenUpright(pFile, 1, pChoice, &*fAmendment);
    fHasOwnLight = HasOwnLight(image);
    const bool isLinear = image.format() == VIPS_FORMAT_FLOAT || image.format() == VIPS_FORMAT_DOUBLE;
    const bool isDivided = !isLinear && image.get_typeof(kStoredBits) == 0;
    if (isDivided && !fHasOwnLight) fAmendment.reset();
  }
  const sAmendment* Get() const { return fAmendment ? &*fAmendment : nullptr; }
};

sOpenedPicture OpenChecked(const std::string& pFile, const sPictureChoice& pChoice,
                           const tMemoryGate& pGate) {
  const sRadianceHeader header = ReadRadianceHeader(pFile);
  const sAssociatedAlpha associated(pFile, pChoice);
  const VImage stored = OpenUpright(pFile, header.fOrientation, pChoice, associated.Get());
  VImage image = Uncode(stored);
  CheckSize(image.width(), image.height(), pGate);
  sOpenedPicture picture;
  DescribeFile(pFile, image, picture);
  picture.fWarnings = ListLeftOut(pFile, image, pChoice.fPage);
  if (image.format() == VIPS_FORMAT_DOUBLE) image = image.cast(VIPS_FORMAT_FLOAT);
  sLayout layout = ChooseLayout(pFile, image, picture);
  std::copy_n(header.fScale, 3, layout.fScale);
  layout.fIsRgbe = IsCoded(stored);
  sLinearLight light = ChooseLight(layout, header, picture);
  light.fIsValid = IsValid(layout);
  picture.fColorSpace = light.fColorSpace;
  const bool hasAlpha = layout.fSamples > layout.fColours && !pChoice.fIgnoresAlpha;
  picture.fIsPremultiplied = hasAlpha && associated.Get() != nullptr;
  picture.fHasOwnLight = picture.fIsPremultiplied && associated.fHasOwnLight;
  picture.fRows =
      std::make_unique<cVipsRows>(layout.fIsRgbe ? stored : image, std::move(layout), hasAlpha, light);
  return picture;
}

}  // namespace

sOpenedPicture OpenWithVips(const std::string& pFile, const sPictureChoice& pChoice,
                            const tMemoryGate& pGate) {
  try {
    return OpenChecked(pFile, pChoice, pGate);
  } catch (const vips::VError&) {
    RefuseDamaged();
  }
}

}  // namespace Photo
