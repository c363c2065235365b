#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>

#include "engine/ToneMapImage.h"
#include "engine/base/LogLine.h"
#include "engine/base/TmCheck.h"
#include "engine/color/cColorSpace.h"
#include "engine/image/BitmapChecks.h"
#include "export/FloatingPointScope.h"
#include "export/HostSettings.h"
#include "export/PixelExport.h"
#include "export/PixelImport.h"
#include "export/quorvane.h"

using namespace TmEngine;

static constexpr char kSourceFile[] = ".\\cpp_tm_quorvane.cpp";
static constexpr char kSignature[] =
    "int __cdecl cpp_tm_quorvane(const struct tm_quorvane_image *,void *,int,struct tm_quorvane_settings "
    "*,const "
    "void *,void *)";

namespace {

constexpr int kDone = 1;
constexpr int kUnsupported = -2;

void LogSettings(const tm_quorvane_image& pImage, const tm_quorvane_settings& pSettings,
                 const sToneParameters& pParameters) {
  const auto compression = static_cast<double>(pParameters.fToneCompression);
  LogLine("zx_tm_quorvane:  %d x %d  - bsp: %d -> %d\n", pImage.width, pImage.height, pImage.input_bits,
          pImage.output_bits);
  LogLine("ToneMapPhase2 -  Strength [-34 60 100]:     %1.2f\n", static_cast<double>(pParameters.fStrength));
  LogLine("ToneMapPhase2 -  Tone Compression:     %1.2f -> %1.2f\n", compression, compression / 50.0 + 0.01);
  LogLine("ToneMapPhase1 -  Microcontrast [10 100 200] :             %1.2f\n",
          static_cast<double>(pParameters.fMicrocontrast));
  LogLine("ToneMapPhase1 -  Lighting [0 100 200]:            %1.2f\n",
          static_cast<double>(pParameters.fLighting));
  LogLine("ToneMapPhase1 -  Local Contrast [0 100 200]:      %1.2f\n", 0.0);
  LogLine("FinalRendering - Contrast [-100 0 100]:         %1.2f\n", 20.0);
  LogLine("White/Black Clip: %1.2f %1.2f Test1: %1.2f\n", static_cast<double>(pSettings.white_clip),
          static_cast<double>(pSettings.black_clip), static_cast<double>(pSettings.test1));
}

bool HasOutput(const tm_quorvane_image& pImage) {
  return pImage.output_bits == 8 || pImage.output_bits == 16;
}

void CheckPixels(const tm_quorvane_image& pImage, const void* pInputPixels, const void* pOutputPixels) {
  TM_CHECK(pInputPixels != nullptr, cArgumentNullException, "Argument pInputPixels cannot be null.");
  TM_CHECK(pOutputPixels != nullptr || !HasOutput(pImage), cArgumentNullException,
           "Argument pOutputPixels cannot be null.");
  TM_CHECK(pImage.samples_per_pixel >= 1, cArgumentException,
           "Argument pSamplesPerPixel must be greater than zero.");
}

/// Pixels that are written one by one need a row long enough for all. A row that is copied as a whole may be
/// cut.
void CheckRowPitch(const tm_quorvane_image& pImage) {
  const bool isCopied = pImage.reversed_order != 0;
  const std::int64_t least = isCopied ? 0 : std::int64_t{pImage.samples_per_pixel} * pImage.width;
  CheckStride(pImage.output_row_pitch, "pOutputRowPitch", least, isCopied ? "0" : "pSamplesPerPixel*pWidth",
              TM_HERE);
}

/// From the host's pixels to the host's pixels.
void ToneMapPicture(const tm_quorvane_image& pImage, eColorSpaceID pID, const sToneParameters& pParameters,
                    const void* pInputPixels, void* pOutputPixels) {
  CheckPositive(pImage.width, "pWidth", TM_HERE);
  CheckPositive(pImage.height, "pHeight", TM_HERE);
  if (HasOutput(pImage)) CheckRowPitch(pImage);
  const std::unique_ptr<cColorSpace> colorSpace(cColorSpace::FromID(pID));
  const cHostSource input(pImage, pID == eColorSpaceID_ProPhotoRGB ? 1.8 : 2.2, colorSpace->GetRGBToXYZ(),
                          pInputPixels);
  std::optional<cHostSink> output;
  if (HasOutput(pImage)) output.emplace(pImage, pID, pOutputPixels);
  ToneMapRows(input, output ? &*output : nullptr, pParameters, true);
}

}  // namespace

int cpp_tm_quorvane(const tm_quorvane_image* pDescriptor, void* /*pReserved*/, int pColorSpaceID,
                    tm_quorvane_settings* pSettings, const void* pInputPixels, void* pOutputPixels) {
  const cFloatingPointScope scope;
  TM_CHECK(pDescriptor != nullptr, cArgumentNullException, "Argument pDescriptor cannot be null.");
  TM_CHECK(pSettings != nullptr, cArgumentNullException, "Argument pSettings cannot be null.");

  // Hosts may keep both records unaligned.
  tm_quorvane_image image;
  tm_quorvane_settings settings;
  std::memcpy(&image, static_cast<const void*>(pDescriptor), sizeof image);
  std::memcpy(&settings, static_cast<const void*>(pSettings), sizeof settings);

  const auto id = static_cast<eColorSpaceID>(pColorSpaceID);
  if (!cColorSpace::IsValidID(id)) return kUnsupported;
  const sToneParameters parameters = MapSettings(settings);
  std::memcpy(reinterpret_cast<unsigned char*>(pSettings) + offsetof(tm_quorvane_settings, white_clip),
              &settings.white_clip, sizeof settings.white_clip);
  LogSettings(image, settings, parameters);

  if (image.input_bits != 8 && image.input_bits != 16 && image.input_bits != 32) return kUnsupported;
  CheckPixels(image, pInputPixels, pOutputPixels);
  ToneMapPicture(image, id, parameters, pInputPixels, pOutputPixels);
  LogLine("zx_tm_quorvane  end\n");
  return kDone;
}
