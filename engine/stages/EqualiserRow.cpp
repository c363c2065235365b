#include "engine/stages/EqualiserRow.h"

#include <bit>
#include <cstddef>
#include <cstdint>

#include "engine/stages/HueRecord.h"
#include "engine/stages/LdrRows.h"

namespace TmEngine {
namespace {

/// Grows with the colour's saturation (1 - min / max); greys keep their lightness whatever the curve says.
float LightnessFactor(const float* pLightness, const unsigned short* pRecord) {
  const float ratio =
      HueRecord::LoadFloat(pRecord + HueRecord::kMin) / HueRecord::LoadFloat(pRecord + HueRecord::kMax);
  return (pLightness[pRecord[HueRecord::kHue]] - 0.5f) * (1.0f - ratio) * 2.0f + 1.0f;
}

/// NaN gives 0.
float ClampToUnit(float pValue) {
  if (!(pValue > 0.0f)) return 0.0f;
  return pValue < 1.0f ? pValue : 1.0f;
}

/// floor(v * 65536), at most 65535, from the mantissa of v + 1: not the index of UnitToIndex. NaN gives 0.
int MantissaIndex(float pValue) {
  constexpr float kBelowTwo = 1.9999999f;
  const float shifted = pValue + 1.0f;
  const float low = shifted > 1.0f ? shifted : 1.0f;
  const float held = low < kBelowTwo ? low : kBelowTwo;
  return static_cast<int>(std::bit_cast<std::uint32_t>(held) >> 7 & 0xFFFFu);
}

}  // namespace

void EqualiseRow(const cHueTable& pHueTable, const float* pLightness, const unsigned short* pRecords,
                 void* pOutput, int pWidth, int pBitDepth, const unsigned short* pEncoding,
                 const cMatrix33& pColorMatrix) {
  const auto colorAt = [&](int pX) -> cHueTable::sColor {
    const unsigned short* record = pRecords + static_cast<std::ptrdiff_t>(pX) * HueRecord::kSlots;
    const cHueTable::sColor c = pHueTable.ColorOf(record, LightnessFactor(pLightness, record));
    return {ClampToUnit(c.fR), ClampToUnit(c.fG), ClampToUnit(c.fB)};
  };
  EncodeRow({pOutput, pWidth, pBitDepth, pEncoding, pColorMatrix}, colorAt, MantissaIndex);
}

}  // namespace TmEngine
