// The call as a whole: settings, import, the middle (ReferenceStages.cpp), write-back.
#include "ReferenceToneMapper.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "ReferenceParts.h"

namespace Reference {
namespace {

// ---- Settings ----

sEngineValues MapSettings(tm_quorvane_settings& pSettings) {
  const double lighting = pSettings.lighting;
  pSettings.white_clip = static_cast<float>(pSettings.white_clip / 20.0);
  sEngineValues values;
  values.fStrength = static_cast<float>(0.33 * pSettings.strength + 44.0);
  values.fLighting = static_cast<float>(lighting > 0.0 ? 60.0 - 6.0 * lighting : 60.0 - 10.0 * lighting);
  values.fToneCompression = static_cast<float>(pSettings.tone_compression / 10.0);
  values.fMicrocontrast = static_cast<float>(100.0 - 9.0 * pSettings.microcontrast);
  values.fWrap = pSettings.horizontal_wrap == 1.0f;
  values.fWhiteClip = pSettings.white_clip;
  values.fBlackClip = pSettings.black_clip;
  return values;
}

void LogSettings(const tm_quorvane_image& pImage, const tm_quorvane_settings& pSettings,
                 const sEngineValues& pValues, std::string* pLog) {
  Log(pLog, "zx_tm_quorvane:  %d x %d  - bsp: %d -> %d\n", pImage.width, pImage.height, pImage.input_bits,
      pImage.output_bits);
  Log(pLog, "ToneMapPhase2 -  Strength [-34 60 100]:     %1.2f\n", pValues.fStrength);
  Log(pLog, "ToneMapPhase2 -  Tone Compression:     %1.2f -> %1.2f\n", pValues.fToneCompression,
      pValues.fToneCompression / 50.0 + 0.01);
  Log(pLog, "ToneMapPhase1 -  Microcontrast [10 100 200] :             %1.2f\n", pValues.fMicrocontrast);
  Log(pLog, "ToneMapPhase1 -  Lighting [0 100 200]:            %1.2f\n", pValues.fLighting);
  Log(pLog, "ToneMapPhase1 -  Local Contrast [0 100 200]:      %1.2f\n", 0.0);
  Log(pLog, "FinalRendering - Contrast [-100 0 100]:         %1.2f\n", 20.0);
  Log(pLog, "White/Black Clip: %1.2f %1.2f Test1: %1.2f\n", pSettings.white_clip, pSettings.black_clip,
      pSettings.test1);
}

void CheckArguments(const tm_quorvane_image& pImage, const void* pInput, const void* pOutput) {
  const bool hasOutput = pImage.output_bits == 8 || pImage.output_bits == 16;
  Check(pInput != nullptr, "Argument pInputPixels cannot be null.");
  Check(!hasOutput || pOutput != nullptr, "Argument pOutputPixels cannot be null.");
  Check(pImage.samples_per_pixel >= 1, "Argument pSamplesPerPixel must be greater than zero.");
  Check(pImage.width > 0, "Argument pWidth must be greater than zero.");
  Check(pImage.height > 0, "Argument pHeight must be greater than zero.");
  if (pImage.output_bits != 8 && pImage.output_bits != 16) return;
  const std::int64_t pitch = pImage.output_row_pitch,
                     least = std::int64_t{pImage.samples_per_pixel} * pImage.width;
  if (pImage.reversed_order != 0)
    return Check(pitch >= 0, "Argument pOutputRowPitch must be greater than or equal to 0.");
  Check(pitch >= least, "Argument pOutputRowPitch must be greater than or equal to pSamplesPerPixel*pWidth.");
}

// ---- Where a pixel's three samples are in the host's buffers ----

using tOffsets = std::array<int, 3>;

tOffsets Offsets(const tm_quorvane_image& pImage) {
  const int last = pImage.samples_per_pixel - 1;
  return pImage.reversed_order == 0 ? tOffsets{0, last / 2, last} : tOffsets{last, last / 2, 0};
}

// ---- Import: to dense linear RGB ----

tList<float> GammaTable(int pMax, double pGamma) {
  const double d = 1.0 / (pMax + 1);
  tList<float> table;
  for (int i = 0; i <= pMax; ++i) table.push_back(std::min(static_cast<float>(Power(i * d, pGamma)), 1.0f));
  return table;
}

std::size_t SampleCount(const tm_quorvane_image& pImage) {
  return std::size_t{3} * static_cast<std::size_t>(pImage.width) * static_cast<std::size_t>(pImage.height);
}

template <class tSample>
std::vector<float> ImportCoded(const tm_quorvane_image& pImage, int pColorSpace, const tSample* pInput) {
  const tList<float> table =
      GammaTable(sizeof(tSample) == 1 ? 255 : 65535, pColorSpace == kProPhoto ? 1.8 : 2.2);
  std::vector<float> rgb;
  rgb.reserve(SampleCount(pImage));
  for (std::int64_t i = 0; i < std::int64_t{pImage.width} * pImage.height; ++i) {
    const tSample* pixel = pInput + i * pImage.samples_per_pixel;
    for (const int offset : Offsets(pImage)) rgb.push_back(table[pixel[offset]]);
  }
  return rgb;
}

std::vector<float> ImportRgbe(const tm_quorvane_image& pImage, const std::uint8_t* pInput) {
  const std::int64_t width = pImage.width;
  std::vector<float> rgb;
  rgb.reserve(SampleCount(pImage));
  for (std::int64_t y = 0; y < pImage.height; ++y) {
    const std::uint8_t* row = pInput + y * 4 * width;
    for (std::int64_t x = 0; x < width; ++x) {
      const int e = row[3 * width + x];
      const float unit = e == 0 ? 0.0f : static_cast<float>(std::ldexp(1.0, e - 136));
      for (int k = 0; k < 3; ++k) rgb.push_back(static_cast<float>(row[k * width + x]) * unit);
    }
  }
  return rgb;
}

std::vector<float> Import(const tm_quorvane_image& pImage, int pColorSpace, const void* pInput) {
  const auto* bytes = static_cast<const std::uint8_t*>(pInput);
  if (pImage.input_bits == 8) return ImportCoded(pImage, pColorSpace, bytes);
  if (pImage.input_bits == 32) return ImportRgbe(pImage, bytes);
  return ImportCoded(pImage, pColorSpace, static_cast<const std::uint16_t*>(pInput));
}

void ColorTransform(std::vector<float>& pPixels, const tMatrix& m) {
  for (float* pixel = pPixels.data(); pixel != pPixels.data() + pPixels.size(); pixel += 3) {
    const float s0 = pixel[0], s1 = pixel[1], s2 = pixel[2];
    for (int row = 0; row < 3; ++row) {
      pixel[row] = (s1 * m[3 * row + 1] + s0 * m[3 * row]) + s2 * m[3 * row + 2];
    }
  }
}

// ---- Write-back ----

/// Rows of packed blue, green, red; neither the host's row padding nor what follows its last pixel is
/// touched.
template <class tSample>
void WriteRows(const tm_quorvane_image& pImage, const std::vector<std::uint16_t>& pBGR, tSample* pOutput) {
  const std::int64_t width = pImage.width, pitch = pImage.output_row_pitch;
  const std::int64_t samples = std::min({3 * width, pitch, pImage.samples_per_pixel * width});
  for (std::int64_t y = 0; y < pImage.height; ++y) {
    for (std::int64_t i = 0; i < samples; ++i) {
      pOutput[y * pitch + i] = static_cast<tSample>(pBGR.data()[y * 3 * width + i]);
    }
  }
}

/// Each pixel's three samples in the host's own order and places.
template <class tSample>
void WritePixels(const tm_quorvane_image& pImage, const std::vector<std::uint16_t>& pBGR, tSample* pOutput,
                 std::string* pLog) {
  const tOffsets offsets = Offsets(pImage);
  const int halfWidth = pImage.width / 2, halfHeight = pImage.height / 2;
  const bool sampled = sizeof(tSample) == 2 && halfWidth > 0 && halfHeight > 0;
  for (int y = 0; y < pImage.height; ++y) {
    for (int x = 0; x < pImage.width; ++x) {
      const std::uint16_t* from = pBGR.data() + 3 * (std::int64_t{y} * pImage.width + x);
      tSample* to =
          pOutput + std::int64_t{y} * pImage.output_row_pitch + std::int64_t{x} * pImage.samples_per_pixel;
      for (std::size_t c = 0; c < 3; ++c) to[offsets[c]] = static_cast<tSample>(from[2 - c]);
      if (sampled && y % halfHeight == 0 && x % halfWidth == 0) {
        Log(pLog, "%d, %d  - %d %d %d\n", x, y, from[0] >> 8, from[1] >> 8, from[2] >> 8);
      }
    }
  }
}

template <class tSample>
void WriteBack(const tm_quorvane_image& pImage, const std::vector<std::uint16_t>& pBGR, void* pOutput,
               std::string* pLog) {
  auto* output = static_cast<tSample*>(pOutput);
  if (pImage.reversed_order != 0) return WriteRows(pImage, pBGR, output);
  WritePixels(pImage, pBGR, output, pLog);
}

}  // namespace

int ToneMap(const tm_quorvane_image& pImage, int pColorSpace, tm_quorvane_settings& pSettings,
            const void* pInput, void* pOutput, std::string* pLog) {
  if (pColorSpace < 0 || pColorSpace > 2) return -2;
  const sEngineValues values = MapSettings(pSettings);
  LogSettings(pImage, pSettings, values, pLog);
  if (pImage.input_bits != 8 && pImage.input_bits != 16 && pImage.input_bits != 32) return -2;
  CheckArguments(pImage, pInput, pOutput);
  std::vector<float> pixels = Import(pImage, pColorSpace, pInput);
  ColorTransform(pixels, RgbToXyzD50(pColorSpace));
  Check(pImage.output_bits == 8 || pImage.output_bits == 16, "Output image is not set.");
  const sPicture picture =
      ToneMapXYZ(pImage.width, pImage.height, pixels, values, pImage.output_bits, pColorSpace, pLog);
  const auto write = pImage.output_bits == 8 ? WriteBack<std::uint8_t> : WriteBack<std::uint16_t>;
  write(pImage, picture.fBGR, pOutput, pLog);
  Log(pLog, "zx_tm_quorvane  end\n");
  return 1;
}

void Log(std::string* pLog, const char* pFormat, ...) {
  if (pLog == nullptr) return;
  char line[2048];  // ten figures of at most 43 characters each, and words
  va_list arguments;
  va_start(arguments, pFormat);
  std::vsnprintf(line, sizeof(line), pFormat, arguments);
  va_end(arguments);
  *pLog += line;
}

#if defined(__clang__)
[[clang::optnone]]
#endif
[[gnu::noinline]] double
Power(double pBase, double pExponent) {
  return std::pow(pBase, pExponent);
}

}  // namespace Reference
