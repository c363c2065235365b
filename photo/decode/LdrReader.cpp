#include "photo/decode/LdrReader.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

#include "engine/base/cException.h"
#include "engine/image/cBitmapBGR16.h"
#include "photo/base/Failure.h"
#include "photo/decode/CodedProfile.h"
#include "photo/decode/FileKind.h"
#include "photo/decode/LeftOut.h"
#include "photo/decode/StatedColors.h"
#include "photo/decode/VipsReader.h"
#include "photo/decode/VipsSource.h"
#include "photo/icc/NamedProfile.h"
#include "photo/icc/ProfileSpace.h"
#include "photo/metadata/PictureMetadata.h"
#include "photo/picture/OutputBitmap.h"
#include "photo/picture/Picture.h"

namespace Photo {
namespace {

using TmEngine::eColorSpaceID;
using vips::VImage;

[[noreturn]] void RefuseFloats(const std::string& pVerb) {
  throw cFailure(eFailure::kCannotRead, pVerb + " takes 8- and 16-bit pictures; tone-map it first");
}

/// The file's picture, upright. Throws cFailure unless its samples are integers of 8 or 16 bits.
VImage OpenIntegers(const std::string& pFile, const std::string& pVerb, const sPictureChoice& pChoice) {
  if (DetectFileKind(pFile) != eFileKind::kVips) RefuseFloats(pVerb);
  VImage image = Uncode(OpenUpright(pFile, 1, pChoice));
  switch (image.format()) {
    case VIPS_FORMAT_UCHAR:
    case VIPS_FORMAT_USHORT:
      return image;
    case VIPS_FORMAT_FLOAT:
    case VIPS_FORMAT_DOUBLE:
      RefuseFloats(pVerb);
    default:
      RefuseLayout("its kind of samples is not supported");
  }
}

/// Red, green, blue - or grey - become blue, green, red.
template <class tSample>
void TakeRow(const VipsPel* pFrom, int pBands, int pColours, int pWidth, unsigned char* pTo) {
  const auto* from = reinterpret_cast<const tSample*>(pFrom);
  auto* to = reinterpret_cast<tSample*>(pTo);
  const int green = pColours == 1 ? 0 : 1;
  for (int x = 0; x < pWidth; ++x, from += pBands, to += 3) {
    to[0] = from[2 * green];
    to[1] = from[green];
    to[2] = from[0];
  }
}

/// Alpha follows the colours of each pixel; 8 bits are widened, so that 255 becomes 65535.
template <class tSample>
void TakeAlphaRow(const VipsPel* pFrom, int pBands, int pColours, int pWidth, std::uint16_t* pTo) {
  const auto* from = reinterpret_cast<const tSample*>(pFrom) + pColours;
  const unsigned factor = sizeof(tSample) == 1 ? 257 : 1;
  for (int x = 0; x < pWidth; ++x, from += pBands) pTo[x] = static_cast<std::uint16_t>(*from * factor);
}

/// Streams the rows: no more of the file's own pixels than a strip is in memory.
void TakeRows(const VImage& pImage, int pColours, sLdrPicture& pPicture) {
  constexpr int kStrip = 16;
  TmEngine::cBitmapLDR& to = *pPicture.fBitmap;
  const bool isDeep = to.GetBitDepth() == 16;
  const auto takeRow = isDeep ? &TakeRow<unsigned short> : &TakeRow<unsigned char>;
  const auto takeAlpha = isDeep ? &TakeAlphaRow<unsigned short> : &TakeAlphaRow<unsigned char>;
  const auto width = static_cast<std::size_t>(pImage.width());
  if (pImage.bands() > pColours) pPicture.fAlpha.resize(width * static_cast<std::size_t>(pImage.height()));
  const vips::VRegion region = vips::VRegion::new_from_image(pImage);
  for (int y = 0; y < pImage.height(); ++y) {
    if (y % kStrip == 0) region.prepare(0, y, pImage.width(), std::min(kStrip, pImage.height() - y));
    takeRow(region.addr(0, y), pImage.bands(), pColours, pImage.width(),
            to.GetBitmapData() + std::ptrdiff_t{to.GetStride()} * y);
    if (pPicture.fAlpha.empty()) continue;
    takeAlpha(region.addr(0, y), pImage.bands(), pColours, pImage.width(),
              &pPicture.fAlpha[width * static_cast<std::size_t>(y)]);
  }
}

/// The samples as they are, in pSpace.
void TakeSamples(const VImage& pImage, int pColours, TmEngine::cColorSpace* pSpace, sLdrPicture& pPicture) {
  pPicture.fBitmap =
      MakeOutputBitmap(pImage.width(), pImage.height(), pPicture.fFileDepth, TmEngine::eColorSpaceID_sRGB);
  pPicture.fBitmap->SetColorSpace(pSpace);
  TakeRows(pImage, pColours, pPicture);
}

/// Reads the file once more, as light, and encodes that in 16 bits, whatever the file has: a wider space
/// needs finer steps.
void Convert(const std::string& pFile, const sPictureChoice& pChoice, eColorSpaceID pSpace,
             sLdrPicture& pPicture) {
  sPicture light = LoadPicture(OpenWithVips(pFile, pChoice, {}));  // its memory is granted
  auto bitmap =
      std::make_unique<TmEngine::cBitmapBGR16>(light.fBitmap->GetWidth(), light.fBitmap->GetHeight(), pSpace);
  bitmap->FromXYZ32(light.fBitmap.get());
  pPicture.fBitmap = std::move(bitmap);
  pPicture.fProfile = GetIccProfile(pSpace);
  pPicture.fAlpha = std::move(light.fAlpha);
  pPicture.fWarnings = light.fWarnings;
}

/// What is known of the samples' colours: decoder and space are null where there is none.
struct sSampleColors {
  std::string fProfile;
  int fColours;  ///< Colours per pixel, as the decoder takes them.
  std::unique_ptr<cIccDecoder> fDecoder;
  std::unique_ptr<TmEngine::cColorSpace> fSpace;  ///< The engine's, for the samples as they are.
};

/// Grey is spread to red, green and blue, so that RGB profiles are right for it, too.
sSampleColors FindCodedSpace(const sCicpColors& pCoded) {
  sSampleColors colors{MakeProfile(pCoded), 3, nullptr, nullptr};
  colors.fDecoder = cIccDecoder::FromProfile(colors.fProfile.data(), colors.fProfile.size(), 3);
  if (colors.fDecoder != nullptr) colors.fSpace = MatchProfile(colors.fProfile, *colors.fDecoder);
  return colors;
}

sSampleColors FindSpace(const sStatedColors& pStated, int pColours, std::vector<std::string>& pWarnings) {
  sSampleColors colors{pStated.fProfile, pColours, MakeDecoder(pStated.fProfile, pColours, pWarnings),
                       nullptr};
  if (colors.fDecoder != nullptr) {
    if (pColours == 3) colors.fSpace = MatchProfile(colors.fProfile, *colors.fDecoder);
    return colors;
  }
  if (pColours == 4) return colors;
  const sCicpColors coded = pStated.fCoded.value_or(sCicpColors{});
  if (!coded.AreSRGB() && !coded.GoesBeyondWhite()) return FindCodedSpace(coded);
  colors.fProfile = GetIccProfile(TmEngine::eColorSpaceID_sRGB);
  colors.fSpace = std::make_unique<TmEngine::cColorSpace_sRGB>();
  return colors;
}

sLdrPicture Read(const std::string& pFile, const std::string& pVerb, const sPictureChoice& pChoice,
                 const tMemoryGate& pGate) {
  sLdrPicture picture;
  const VImage image = OpenIntegers(pFile, pVerb, pChoice);
  const int colours = CountColours(image);
  CheckSize(image.width(), image.height(), pGate);
  picture.fFileDepth = image.format() == VIPS_FORMAT_USHORT ? 16 : 8;
  picture.fMetadata = ReadMetadata(pFile, image);
  picture.fWarnings = ListLeftOut(pFile, image, pChoice.fPage);
  const sStatedColors stated = FindStatedColors(pFile, image, *picture.fMetadata, picture.fWarnings);
  if (stated.fCoded && stated.fCoded->GoesBeyondWhite()) picture.fBeyondWhite = stated.fCoded->fName;
  sSampleColors colors = FindSpace(stated, colours, picture.fWarnings);
  if (colors.fSpace != nullptr) {
    picture.fProfile = colors.fProfile;
    TakeSamples(image, colours, colors.fSpace.get(), picture);
  } else if (colors.fDecoder != nullptr) {
    Convert(pFile, pChoice, ChooseWideSpace(*colors.fDecoder, colors.fColours), picture);
  } else {
    RefuseLayout("it is CMYK without a profile");
  }
  return picture;
}

}  // namespace

sLdrPicture ReadLdrPicture(const std::string& pFile, const std::string& pVerb, const sPictureChoice& pChoice,
                           const tMemoryGate& pGate) {
  try {
    return Read(pFile, pVerb, pChoice, pGate);
  } catch (const vips::VError&) {
    RefuseDamaged();
  } catch (const std::bad_alloc&) {
    throw cMemoryFailure(eFailure::kCannotRead, "its pixels do not fit into memory");
  } catch (const TmEngine::cOutOfMemoryException&) {
    throw cMemoryFailure(eFailure::kCannotRead, "its pixels do not fit into memory");
  }
}

}  // namespace Photo
