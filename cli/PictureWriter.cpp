#include "cli/PictureWriter.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <vector>
#include <vips/vips8>

#include "cli/Failure.h"
#include "cli/VipsLibrary.h"

namespace Cli {
namespace {

using TmEngine::cBitmapLDR;
using TmEngine::eColorSpaceID;
using vips::VImage;

struct sEnding {
  const char* fText;
  eOutputFormat fFormat;
};
constexpr sEnding kEndings[] = {{".png", eOutputFormat::kPng},
                                {".tif", eOutputFormat::kTiff},
                                {".tiff", eOutputFormat::kTiff},
                                {".jpg", eOutputFormat::kJpeg},
                                {".jpeg", eOutputFormat::kJpeg}};

/// The pixels where they are, row padding cut off, in red, green, blue order.
VImage ViewBitmap(cBitmapLDR& pBitmap) {
  const bool isDeep = pBitmap.GetBitDepth() == 16;
  const int pixelBytes = isDeep ? 6 : 3;
  const auto bytes =
      static_cast<std::size_t>(pBitmap.GetStride()) * static_cast<std::size_t>(pBitmap.GetHeight());
  VImage image =
      VImage::new_from_memory(pBitmap.GetBitmapData(), bytes, pBitmap.GetStride() / pixelBytes,
                              pBitmap.GetHeight(), 3, isDeep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR);
  image = image.extract_area(0, 0, pBitmap.GetWidth(), pBitmap.GetHeight());
  image = VImage::bandjoin(std::vector<VImage>{image[2], image[1], image[0]});
  constexpr double kPixelsPerMillimetre = 72.0 / 25.4;
  return image.copy(VImage::option()
                        ->set("interpretation", isDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB)
                        ->set("xres", kPixelsPerMillimetre)
                        ->set("yres", kPixelsPerMillimetre));
}

void Save(const VImage& pImage, eOutputFormat pFormat, const std::string& pPath) {
  switch (pFormat) {
    case eOutputFormat::kPng:
      return pImage.pngsave(pPath.c_str(), VImage::option()->set("compression", 6));
    case eOutputFormat::kTiff:
      return pImage.tiffsave(pPath.c_str(), VImage::option()
                                                ->set("compression", VIPS_FOREIGN_TIFF_COMPRESSION_DEFLATE)
                                                ->set("predictor", VIPS_FOREIGN_TIFF_PREDICTOR_HORIZONTAL));
    case eOutputFormat::kJpeg:
      return pImage.jpegsave(pPath.c_str(), VImage::option()
                                                ->set("Q", 95)
                                                ->set("optimize_coding", true)
                                                ->set("subsample_mode", VIPS_FOREIGN_SUBSAMPLE_OFF));
  }
}

}  // namespace

std::string GetIccProfile(eColorSpaceID pColorSpace) {
  const auto profile = pColorSpace == TmEngine::eColorSpaceID_AdobeRGB98
                           ? TmEngine::cColorSpace_AdobeRGB98::GetIccProfile()
                       : pColorSpace == TmEngine::eColorSpaceID_ProPhotoRGB
                           ? TmEngine::cColorSpace_ProPhotoRGB::GetIccProfile()
                           : TmEngine::cColorSpace_sRGB::GetIccProfile();
  return {reinterpret_cast<const char*>(profile.fData), static_cast<std::size_t>(profile.fSize)};
}

void RefuseToWrite(const cTempFile& pFile) {
  throw cFailure(eExitCode_CannotWrite, pFile.GetTarget(), "writing failed (" + TakeVipsError() + ")");
}

void CheckIsAnother(const std::string& pInput, const std::string& pOutput) {
  std::error_code error;
  if (std::filesystem::equivalent(pInput, pOutput, error)) {
    throw cFailure(eExitCode_Usage, pOutput, "is the input itself; give the result another name");
  }
}

std::string GetEnding(const std::string& pFile) {
  std::string ending = std::filesystem::path(pFile).extension().string();
  std::transform(ending.begin(), ending.end(), ending.begin(),
                 [](unsigned char pC) { return static_cast<char>(std::tolower(pC)); });
  return ending;
}

eOutputFormat ChooseOutputFormat(const std::string& pFile, int pDepth) {
  const std::string ending = GetEnding(pFile);
  const auto* const found = std::find_if(std::begin(kEndings), std::end(kEndings),
                                         [&](const sEnding& pEnding) { return ending == pEnding.fText; });
  if (found == std::end(kEndings)) {
    throw cFailure(eExitCode_Usage, pFile,
                   "unknown ending of an output name; use .png, .tif, .tiff, .jpg or .jpeg");
  }
  if (found->fFormat == eOutputFormat::kJpeg && pDepth == 16) {
    throw cFailure(eExitCode_Usage, pFile, "JPEG holds 8 bits only; use --depth 8, or write .png or .tif");
  }
  return found->fFormat;
}

void WritePicture(cBitmapLDR& pBitmap, const std::string& pProfile, const cMetadata& pMetadata,
                  eOutputFormat pFormat, cTempFile& pFile) {
  try {
    const VImage image = ViewBitmap(pBitmap);
    pMetadata.PutInto(image);
    vips_image_set_blob_copy(image.get_image(), VIPS_META_ICC_NAME, pProfile.data(), pProfile.size());
    Save(image, pFormat, pFile.GetPath());
  } catch (const vips::VError&) {
    RefuseToWrite(pFile);
  }
  pFile.Commit();
}

}  // namespace Cli
