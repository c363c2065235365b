#include "cli/LdrReader.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

#include "cli/Failure.h"
#include "cli/FileKind.h"
#include "cli/Picture.h"
#include "cli/PictureWriter.h"
#include "cli/ProfileSpace.h"
#include "cli/VipsReader.h"
#include "cli/VipsSource.h"
#include "engine/cBitmapBGR16.h"
#include "engine/cException.h"
#include "cli/OutputBitmap.h"

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
  VImage image = OpenUpright(pFile, 1);
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

/// Red, green, blue - or grey - become blue, green, red; alpha stays behind.
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

/// Streams the rows: no more of the file's own pixels than a strip is in memory.
void TakeRows(const VImage& pImage, int pColours, TmEngine::cBitmapLDR& pTo) {
  constexpr int kStrip = 16;
  const auto takeRow = pTo.GetBitDepth() == 16 ? &TakeRow<unsigned short> : &TakeRow<unsigned char>;
  const vips::VRegion region = vips::VRegion::new_from_image(pImage);
  for (int y = 0; y < pImage.height(); ++y) {
    if (y % kStrip == 0) region.prepare(0, y, pImage.width(), std::min(kStrip, pImage.height() - y));
    takeRow(region.addr(0, y), pImage.bands(), pColours, pImage.width(),
            pTo.GetBitmapData() + std::ptrdiff_t{pTo.GetStride()} * y);
  }
}

/// The samples as they are, in pSpace.
void TakeSamples(const VImage& pImage, int pColours, TmEngine::cColorSpace* pSpace, sLdrPicture& pPicture) {
  pPicture.fBitmap =
      MakeOutputBitmap(pImage.width(), pImage.height(), pPicture.fFileDepth, TmEngine::eColorSpaceID_sRGB);
  pPicture.fBitmap->SetColorSpace(pSpace);
  TakeRows(pImage, pColours, *pPicture.fBitmap);
}

/// Reads the file once more, as light, and encodes that in 16 bits, whatever the file has: a wider space
/// needs finer steps.
void Convert(const std::string& pFile, eColorSpaceID pSpace, sLdrPicture& pPicture) {
  const sPicture light = ReadWithVips(pFile);
  auto bitmap =
      std::make_unique<TmEngine::cBitmapBGR16>(light.fBitmap->GetWidth(), light.fBitmap->GetHeight(), pSpace);
  bitmap->FromXYZ32(light.fBitmap.get());
  pPicture.fBitmap = std::move(bitmap);
  pPicture.fProfile = GetIccProfile(pSpace);
  pPicture.fWarnings = light.fWarnings;
  pPicture.fMetadata.ForgetColorSpace();
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
  picture.fFileDepth = image.format() == VIPS_FORMAT_USHORT ? 16 : 8;
  picture.fMetadata = cMetadata(image);
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
