#include "cli/LdrReader.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

#include "cli/Failure.h"
#include "cli/FileKind.h"
#include "cli/OutputBitmap.h"
#include "cli/Picture.h"
#include "cli/PictureWriter.h"
#include "cli/ProfileSpace.h"
#include "cli/VipsReader.h"
#include "cli/VipsSource.h"
#include "engine/cBitmapBGR16.h"
#include "engine/cException.h"

namespace Cli {
namespace {

using TmEngine::eColorSpaceID;
using vips::VImage;

[[noreturn]] void RefuseFloats(const std::string& pFile, const std::string& pVerb) {
  throw cFailure(eExitCode_CannotRead, pFile, pVerb + " takes 8- and 16-bit pictures; tone-map it first");
}

/// The file's picture, upright. Throws cFailure unless its samples are integers of 8 or 16 bits.
VImage OpenIntegers(const std::string& pFile, const std::string& pVerb) {
  if (TellFileKind(pFile) != eFileKind::kVips) RefuseFloats(pFile, pVerb);
  VImage image = Uncode(OpenUpright(pFile, 1));
  switch (image.format()) {
    case VIPS_FORMAT_UCHAR:
    case VIPS_FORMAT_USHORT:
      return image;
    case VIPS_FORMAT_FLOAT:
    case VIPS_FORMAT_DOUBLE:
      RefuseFloats(pFile, pVerb);
    default:
      RefuseLayout(pFile, "its kind of samples is not supported");
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
void Convert(const std::string& pFile, eColorSpaceID pSpace, sLdrPicture& pPicture) {
  sPicture light = ReadWithVips(pFile);
  auto bitmap =
      std::make_unique<TmEngine::cBitmapBGR16>(light.fBitmap->GetWidth(), light.fBitmap->GetHeight(), pSpace);
  bitmap->FromXYZ32(light.fBitmap.get());
  pPicture.fBitmap = std::move(bitmap);
  pPicture.fProfile = GetIccProfile(pSpace);
  pPicture.fAlpha = std::move(light.fAlpha);
  pPicture.fWarnings = light.fWarnings;
}

/// The engine's colour space for the samples as they are, and their profile. Null where there is none.
std::unique_ptr<TmEngine::cColorSpace> FindSpace(const VImage& pImage, int pColours,
                                                 const cIccDecoder* pDecoder, std::string& pProfile) {
  if (pDecoder == nullptr && pColours != 4) {
    pProfile = GetIccProfile(TmEngine::eColorSpaceID_sRGB);
    return std::make_unique<TmEngine::cColorSpace_sRGB>();
  }
  if (pDecoder == nullptr || pColours != 3) return nullptr;
  pProfile = GetEmbeddedProfile(pImage);
  return MatchProfile(pProfile, *pDecoder);
}

sLdrPicture Read(const std::string& pFile, const std::string& pVerb) {
  sLdrPicture picture;
  const VImage image = OpenIntegers(pFile, pVerb);
  const int colours = CountColours(pFile, image);
  CheckSize(pFile, image.width(), image.height());
  picture.fFileDepth = image.format() == VIPS_FORMAT_USHORT ? 16 : 8;
  picture.fMetadata = ReadMetadata(pFile, image);
  const auto decoder = MakeDecoder(image, colours, picture.fWarnings);
  if (const auto space = FindSpace(image, colours, decoder.get(), picture.fProfile)) {
    TakeSamples(image, colours, space.get(), picture);
  } else if (decoder != nullptr) {
    Convert(pFile, ChooseWideSpace(*decoder, colours), picture);
  } else {
    RefuseLayout(pFile, "it is CMYK without a profile");
  }
  return picture;
}

}  // namespace

sLdrPicture ReadLdrPicture(const std::string& pFile, const std::string& pVerb) {
  try {
    return Read(pFile, pVerb);
  } catch (const vips::VError&) {
    RefuseDamaged(pFile);
  } catch (const std::bad_alloc&) {
    throw cFailure(eExitCode_CannotRead, pFile, "its pixels do not fit into memory");
  } catch (const TmEngine::cOutOfMemoryException&) {
    throw cFailure(eExitCode_CannotRead, pFile, "its pixels do not fit into memory");
  }
}

}  // namespace Cli
