#include "photo/encode/PictureWriter.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <vips/vips8>

#include "photo/base/Failure.h"
#include "photo/encode/TiffWriter.h"
#include "photo/icc/NamedProfile.h"
#include "photo/io/VipsLibrary.h"
#include "photo/metadata/PictureMetadata.h"
#include "photo/picture/ResultAlpha.h"

namespace Photo {
namespace {

using vips::VImage;

/// Alpha as a band of the picture's depth; 8 bits that were widened come back as they were.
VImage ViewAlpha(std::vector<std::uint16_t>& pAlpha, int pWidth, int pHeight, int pDepth) {
  if (pDepth == 16) {
    return VImage::new_from_memory(pAlpha.data(), pAlpha.size() * sizeof(std::uint16_t), pWidth, pHeight, 1,
                                   VIPS_FORMAT_USHORT);
  }
  std::vector<std::uint8_t> narrow(pAlpha.size());
  std::transform(pAlpha.begin(), pAlpha.end(), narrow.begin(),
                 [](std::uint16_t pA) { return static_cast<std::uint8_t>((pA + 128u) / 257u); });
  return VImage(
      vips_image_new_from_memory_copy(narrow.data(), narrow.size(), pWidth, pHeight, 1, VIPS_FORMAT_UCHAR));
}

/// The pixels where they are; alpha comes last.
VImage ViewPicture(sFinishedPicture& pPicture, bool pWithAlpha) {
  cResultPixels& pixels = pPicture.fPixels;
  const bool isDeep = pixels.GetBitDepth() == 16;
  VImage image =
      VImage::new_from_memory(pixels.GetRow(0), pixels.GetBytes(), pixels.GetWidth(), pixels.GetHeight(), 3,
                              isDeep ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR);
  if (pWithAlpha) {
    image = image.bandjoin(
        ViewAlpha(pPicture.fAlpha, pixels.GetWidth(), pixels.GetHeight(), pixels.GetBitDepth()));
  }
  constexpr double kPixelsPerMillimetre = 72.0 / 25.4;
  return image.copy(VImage::option()
                        ->set("interpretation", isDeep ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB)
                        ->set("xres", kPixelsPerMillimetre)
                        ->set("yres", kPixelsPerMillimetre));
}

/// pQuality, pCompression: as the user or the format wants them. Efforts are chosen by time: 24 megapixels of
/// AVIF at the library's own take half a minute, and are a twentieth smaller.
void Save(const VImage& pImage, eOutputFormat pFormat, int pQuality, int pCompression, bool pIsPremultiplied,
          const std::string& pPath) {
  const char* const path = pPath.c_str();
  vips::VOption* const options = VImage::option();
  if (pQuality > 0) options->set("Q", pQuality);
  switch (pFormat) {
    case eOutputFormat::kPng:
      return pImage.pngsave(
          path, options->set("compression", pCompression)->set("filter", VIPS_FOREIGN_PNG_FILTER_SUB));
    case eOutputFormat::kTiff:
      delete options;
      return WriteTiff(pImage, pCompression, pIsPremultiplied, pPath);
    case eOutputFormat::kJpeg:
      return pImage.jpegsave(
          path, options->set("optimize_coding", true)->set("subsample_mode", VIPS_FOREIGN_SUBSAMPLE_OFF));
    case eOutputFormat::kWebp:
      return pImage.webpsave(path, options->set("smart_subsample", true));
    case eOutputFormat::kAvif:
      return pImage.heifsave(path, options->set("compression", VIPS_FOREIGN_HEIF_COMPRESSION_AV1)
                                       ->set("bitdepth", pImage.format() == VIPS_FORMAT_USHORT ? 12 : 8)
                                       ->set("subsample_mode", VIPS_FOREIGN_SUBSAMPLE_OFF)
                                       ->set("effort", 2));
    case eOutputFormat::kJxl:
      if (pQuality == 100) options->set("lossless", true);
      return pImage.jxlsave(path, options);
  }
}

/// While it lives, cancelling ends the reading of an image by whatever writes it.
class cKillOnCancel {
 public:
  cKillOnCancel(const VImage& pImage, cWatch* pWatch) : fWatch(pWatch) {
    if (fWatch != nullptr) fWatch->SetOnCancel([pImage] { vips_image_set_kill(pImage.get_image(), TRUE); });
  }
  cKillOnCancel(const cKillOnCancel&) = delete;
  cKillOnCancel& operator=(const cKillOnCancel&) = delete;
  ~cKillOnCancel() {
    if (fWatch != nullptr) fWatch->SetOnCancel({});
  }

 private:
  cWatch* fWatch;
};

/// What EXIF calls the colours of the profile; 0 for profiles that were in the input.
int GetExifColorSpace(const std::string& pProfile) {
  constexpr int kUncalibrated = 65535;
  if (pProfile == GetIccProfile(TmEngine::eColorSpaceID_sRGB)) return 1;
  const bool isOurs = pProfile == GetIccProfile(TmEngine::eColorSpaceID_AdobeRGB98) ||
                      pProfile == GetIccProfile(TmEngine::eColorSpaceID_ProPhotoRGB);
  return isOurs ? kUncalibrated : 0;
}

/// Lossy JPEG XL of other colours than sRGB comes back from common decoders in coarse steps of linear light.
int ChooseQuality(const std::string& pProfile, eOutputFormat pFormat, int pWanted,
                  std::vector<std::string>& pWarnings) {
  if (pFormat != eOutputFormat::kJxl || GetExifColorSpace(pProfile) == 1) {
    return pWanted > 0 ? pWanted : GetTraits(pFormat).fQuality;
  }
  constexpr int kLossless = 100;
  if (pWanted > 0 && pWanted < kLossless) {
    pWarnings.emplace_back("JPEG XL in this colour space is written without loss; {quality} acts on sRGB");
  }
  return kLossless;
}

/// Exiv2 writes these formats' metadata, all but the profile.
bool IsCompleted(eOutputFormat pFormat) {
  return pFormat != eOutputFormat::kAvif && pFormat != eOutputFormat::kJxl;
}

bool HasOpenPixels(const std::vector<std::uint16_t>& pAlpha) {
  return std::any_of(pAlpha.begin(), pAlpha.end(), [](std::uint16_t pA) { return pA != 65535; });
}

/// TIFF holds premultiplied samples, and light that is above its alpha.
void MakeStraight(sFinishedPicture& pPicture, eOutputFormat pFormat, std::vector<std::string>& pWarnings) {
  if (!pPicture.fIsPremultiplied || pPicture.fAlpha.empty() || pFormat == eOutputFormat::kTiff) return;
  pPicture.fIsPremultiplied = false;
  const std::int64_t raised = DivideByAlpha(pPicture.fPixels, pPicture.fAlpha);
  if (raised == 0) return;
  pWarnings.push_back(
      "light without cover: alpha is raised in " + std::to_string(raised) +
      (raised == 1 ? " pixel" : " pixels") + ", since " + GetTraits(pFormat).fName +
      " holds no light above it; over black the picture is the same, .tif keeps alpha as it is");
}

std::vector<std::string> WriteInto(const std::string& pPath, sFinishedPicture& pPicture,
                                   eOutputFormat pFormat, const sFileOptions& pOptions, cWatch* pWatch) {
  std::vector<std::string> warnings;
  const sFormatTraits& traits = GetTraits(pFormat);
  if (!traits.fHasAlpha && HasOpenPixels(pPicture.fAlpha)) {
    const std::string what = pPicture.fIsPremultiplied
                                 ? "the picture over black is written, alpha is left out"
                                 : "colours are written as they are, alpha is left out";
    warnings.push_back(std::string(traits.fName) + " holds no transparency: " + what);
  }
  if (traits.fHasAlpha) MakeStraight(pPicture, pFormat, warnings);
  const VImage image = ViewPicture(pPicture, traits.fHasAlpha && !pPicture.fAlpha.empty());
  const sPictureFacts facts{image.width(), image.height(), GetExifColorSpace(pPicture.fProfile),
                            FindInteropIndex(pPicture.fProfile)};
  const cResultMetadata metadata(pPicture.fMetadata.get(), image, facts, pOptions.fMetadata,
                                 pPicture.fSettings, IsCompleted(pFormat), warnings);
  metadata.PutInto(image);
  const std::string profile =
      pFormat == eOutputFormat::kPng ? ToPngProfile(pPicture.fProfile) : pPicture.fProfile;
  vips_image_set_blob_copy(image.get_image(), VIPS_META_ICC_NAME, profile.data(), profile.size());
  const cKillOnCancel kill(image, pWatch);
  Save(image, pFormat, ChooseQuality(pPicture.fProfile, pFormat, pOptions.fQuality, warnings),
       pOptions.fCompression >= 0 ? pOptions.fCompression : traits.fCompression, pPicture.fIsPremultiplied,
       pPath);
  metadata.Complete(pPath, warnings);
  if (pFormat == eOutputFormat::kJxl) metadata.CompleteJxl(pPath);
  return warnings;
}

}  // namespace

void CheckIsAnother(const std::string& pInput, const std::string& pOutput) {
  std::error_code error;
  if (std::filesystem::equivalent(pInput, pOutput, error)) {
    throw cFailure(eFailure::kUsage, "is the input itself; give the result another name");
  }
}

std::vector<std::string> WritePicture(sFinishedPicture& pPicture, eOutputFormat pFormat,
                                      const sFileOptions& pOptions, cTempFile& pFile, cWatch* pWatch) {
  CheckFits(pFormat, pPicture.fPixels.GetWidth(), pPicture.fPixels.GetHeight());
  std::vector<std::string> warnings;
  try {
    warnings = WriteInto(pFile.GetPath(), pPicture, pFormat, pOptions, pWatch);
  } catch (const vips::VError&) {
    pFile.Refuse(TakeVipsError());
  } catch (const std::bad_alloc&) {
    throw cMemoryFailure(eFailure::kCannotWrite, "not enough memory to write it");
  } catch (const std::runtime_error& error) {
    pFile.Refuse(error.what());
  }
  if (pWatch != nullptr) pWatch->Check();
  pFile.Commit();
  return warnings;
}

}  // namespace Photo
