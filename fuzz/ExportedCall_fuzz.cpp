// The exported function: any records and pixels within buffers of exactly the sizes that quorvane.hpp states.

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>
#include <stdexcept>

#include "engine/base/cException.h"
#include "export/quorvane.hpp"
#include "fuzz/FuzzInput.h"
#include "tests/Numbers.h"

namespace {

constexpr unsigned char kUntouched = 0xA5;
constexpr int kLongSide = 6000;
constexpr float kFarValues[] = {1e2f, -1e2f, 1e4f, -1e4f, 1e30f, -1e30f, kInfinity, -kInfinity};

/// Sometimes two sliders far out of range together; not after the end of the input, which reads as 0.
void TakeFarSliders(FuzzedDataProvider& pData, tm_quorvane_settings& pSettings) {
  if (pData.ConsumeIntegralInRange(0, 7) != 7) return;
  float* const sliders[] = {&pSettings.strength,   &pSettings.lighting,   &pSettings.tone_compression,
                            &pSettings.white_clip, &pSettings.black_clip, &pSettings.microcontrast};
  for (int i = 0; i < 2; ++i) *pData.PickValueInArray(sliders) = pData.PickValueInArray(kFarValues);
}

tm_quorvane_settings TakeSettings(FuzzedDataProvider& pData) {
  tm_quorvane_settings settings = {};
  settings.strength = TakeFloat(pData, -100.0f, 100.0f);
  settings.lighting = TakeFloat(pData, -10.0f, 10.0f);
  settings.tone_compression = TakeFloat(pData, 0.0f, 100.0f);
  settings.white_clip = TakeFloat(pData, 0.0f, 100.0f);
  settings.black_clip = TakeFloat(pData, 0.0f, 100.0f);
  const bool isFine = pData.ConsumeIntegralInRange(0, 15) == 0;  // seldom: fine grids take long
  settings.microcontrast = TakeFloat(pData, -10.0f, isFine ? 10.0f : 0.0f);
  settings.test1 = TakeFloat(pData, 0.0f, 1.0f);
  settings.horizontal_wrap = pData.ConsumeBool() ? 1.0f : TakeFloat(pData, 0.0f, 2.0f);
  return settings;
}

/// Small, a line, or sometimes no pixels at all.
void TakeSize(FuzzedDataProvider& pData, tm_quorvane_image& pImage) {
  pImage.width = pData.ConsumeIntegralInRange(1, 40);
  pImage.height = pData.ConsumeIntegralInRange(1, 40);
  switch (pData.ConsumeIntegralInRange(0, 15)) {
    case 0:
      pImage.width = pData.ConsumeIntegralInRange(1, 3);
      pImage.height = pData.ConsumeIntegralInRange(1, kLongSide);
      break;
    case 1:
      pImage.height = pData.ConsumeIntegralInRange(1, 3);
      pImage.width = pData.ConsumeIntegralInRange(1, kLongSide);
      break;
    case 2:
      (pData.ConsumeBool() ? pImage.width : pImage.height) = pData.ConsumeIntegralInRange(INT32_MIN, 0);
      break;
    case 3:  // the records of one row exceed the available memory (see Memory.cpp)
      pImage.width = pData.ConsumeIntegralInRange(1 << 22, INT32_MAX);
      pImage.height = pData.ConsumeIntegralInRange(1 << 12, INT32_MAX);
      break;
    default:
      break;
  }
}

bool IsSmall(const tm_quorvane_image& pImage) {
  return pImage.width >= 1 && pImage.height >= 1 && pImage.width <= kLongSide && pImage.height <= kLongSide;
}

/// Mostly room for a row; sometimes less, none, or any number at all.
int TakePitch(FuzzedDataProvider& pData, const tm_quorvane_image& pImage) {
  if (!IsSmall(pImage)) return 0;
  const int row = pImage.samples_per_pixel * pImage.width;
  if (pData.ConsumeIntegralInRange(0, 15) < 15) return row + pData.PickValueInArray({0, 0, 1, 7});
  return pData.ConsumeBool() ? pData.ConsumeIntegralInRange(-std::abs(row), std::abs(row))
                             : pData.ConsumeIntegralInRange(INT32_MIN, 0);
}

tm_quorvane_image TakeImage(FuzzedDataProvider& pData) {
  tm_quorvane_image image = {};
  TakeSize(pData, image);
  const bool isOdd = pData.ConsumeIntegralInRange(0, 31) == 0;
  image.samples_per_pixel =
      isOdd ? pData.ConsumeIntegralInRange(-1, 9) : pData.PickValueInArray({3, 3, 4, 1, 2});
  image.input_bits = isOdd ? pData.ConsumeIntegral<std::int32_t>() : pData.PickValueInArray({8, 16, 32});
  image.output_bits = isOdd ? pData.ConsumeIntegral<std::int32_t>() : pData.PickValueInArray({8, 16});
  image.reserved0 = pData.ConsumeIntegral<std::int32_t>();
  image.reversed_order = pData.PickValueInArray({0, 0, 1, -1});
  image.output_row_pitch = TakePitch(pData, image);
  return image;
}

/// A block of just the bytes, the first of which lies at an even or odd address.
class cBlock {
 public:
  cBlock(std::vector<unsigned char> pBytes, bool pOdd) : fOdd(pOdd), fBytes(pBytes.size() + (pOdd ? 1 : 0)) {
    std::copy(pBytes.begin(), pBytes.end(), Data());
  }
  unsigned char* Data() { return fBytes.data() + (fOdd ? 1 : 0); }
  bool IsUntouched(std::size_t pFrom, std::size_t pCount) {
    return std::all_of(Data() + pFrom, Data() + pFrom + pCount,
                       [](unsigned char pV) { return pV == kUntouched; });
  }

 private:
  bool fOdd;
  std::vector<unsigned char> fBytes;
};

template <class tRecord>
std::vector<unsigned char> BytesOf(const tRecord& pRecord) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&pRecord);
  return {bytes, bytes + sizeof pRecord};
}

/// At least one: a block without bytes may have no address.
std::size_t BlockSize(const tm_quorvane_image& pImage, std::uint64_t pBytes) {
  return IsSmall(pImage) ? static_cast<std::size_t>(std::max(pBytes, std::uint64_t{1})) : 1;
}

bool IsPitch(const tm_quorvane_image& pImage) {
  return pImage.output_row_pitch >=
         (pImage.reversed_order != 0 ? 0 : pImage.samples_per_pixel * pImage.width);
}

/// What the header of the library promises for these records.
bool IsDone(const tm_quorvane_image& pImage, const tm_quorvane_settings& pSettings) {
  return IsSmall(pImage) && pImage.samples_per_pixel >= 1 && IsPitch(pImage) &&
         (pImage.output_bits == 8 || pImage.output_bits == 16) && !std::isnan(pSettings.lighting) &&
         !std::isnan(pSettings.microcontrast);
}

/// High sliders need fine grids, which take more memory than is available here.
bool MayTakeMuchMemory(const tm_quorvane_settings& pSettings) {
  return pSettings.lighting > 10.0f || pSettings.microcontrast > 0.0f;
}

void CheckPadding(const tm_quorvane_image& pImage, cBlock& pOutput) {
  const int sampleBytes = pImage.output_bits / 8;
  const auto pixels = static_cast<std::size_t>(pImage.width * pImage.samples_per_pixel * sampleBytes);
  const auto pitch = static_cast<std::size_t>(pImage.output_row_pitch * sampleBytes);
  if (pitch < pixels) return;  // rows that are cut have none
  for (std::size_t y = 0; y + 1 < static_cast<std::size_t>(pImage.height); ++y) {
    Require(pOutput.IsUntouched(y * pitch + pixels, pitch - pixels), "the padding of rows stays");
  }
}

// Exceptions, numbered in place of a result.
constexpr int kThrown = 0;
constexpr int kNoMemory = 2;

/// The function's result, or the number of an exception of a documented kind.
int Call(cBlock& pImage, cBlock& pSettings, int pColorSpace, cBlock& pInput, cBlock& pOutput) {
  try {
    return cpp_tm_quorvane(reinterpret_cast<const tm_quorvane_image*>(pImage.Data()), nullptr, pColorSpace,
                           reinterpret_cast<tm_quorvane_settings*>(pSettings.Data()), pInput.Data(),
                           pOutput.Data());
  } catch (const TmEngine::cOutOfMemoryException&) {
    return kNoMemory;
  } catch (const std::runtime_error&) {
    return kThrown;
  } catch (const std::bad_alloc&) {
    return kNoMemory;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pBytes, std::size_t pSize) {
  FuzzedDataProvider data(pBytes, pSize);
  const int colorSpace = data.ConsumeIntegralInRange(0, 31) == 0 ? data.ConsumeIntegral<int>()
                                                                 : data.ConsumeIntegralInRange(0, 2);
  tm_quorvane_settings given = TakeSettings(data);
  const tm_quorvane_image image = TakeImage(data);
  const bool isOdd = data.ConsumeBool();
  TakeFarSliders(data, given);
  cBlock imageBlock(BytesOf(image), isOdd);
  cBlock settingsBlock(BytesOf(given), isOdd);
  cBlock input(TakeBytes(data, BlockSize(image, quorvane::input_size(image))), isOdd);
  const std::size_t outputBytes = BlockSize(image, quorvane::output_size(image));
  cBlock output(std::vector<unsigned char>(outputBytes, kUntouched), isOdd);

  const int result = Call(imageBlock, settingsBlock, colorSpace, input, output);

  tm_quorvane_settings expected = given;
  const bool isKnownSpace = colorSpace >= 0 && colorSpace <= 2;
  if (isKnownSpace) expected.white_clip = static_cast<float>(static_cast<double>(given.white_clip) / 20.0);
  const auto kept = BytesOf(expected);
  Require(std::isnan(given.white_clip) || std::equal(kept.begin(), kept.end(), settingsBlock.Data()),
          "of the settings white_clip alone changes");
  const bool isKnownInput = image.input_bits == 8 || image.input_bits == 16 || image.input_bits == 32;
  if (!isKnownSpace || !isKnownInput) {
    Require(result == -2, "-2 for what is not supported");
  } else if (result != kNoMemory || !MayTakeMuchMemory(given)) {
    Require(result == (IsDone(image, given) ? 1 : kThrown), "1 when done, else an exception");
  }
  if (result == 1) return CheckPadding(image, output), 0;
  Require(output.IsUntouched(0, outputBytes), "no pixels without success");
  return 0;
}
