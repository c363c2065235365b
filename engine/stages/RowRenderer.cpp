#include "engine/stages/RowRenderer.h"

#include <cstddef>

#include "engine/Quantise.h"
#include "engine/stages/ColorRecord.h"
#include "engine/stages/LdrRows.h"

namespace TmEngine {
namespace {

/// How a pixel's luminance is brought to the output's range.
struct sExposure {
  float fGain;
  float fStretch;
  float fBlack;
};

float Exposed(const sExposure& pExposure, float pLuminance) {
  if (pExposure.fStretch == 1.0f) return pLuminance * pExposure.fGain;
  const float stretched = (pLuminance - pExposure.fBlack) * pExposure.fStretch;
  return stretched > 0.0f ? stretched : 0.0f;
}

}  // namespace

void RenderRow(const cHueTable& pHueTable, const unsigned short* pRecords, void* pOutput, int pWidth,
               int pBitDepth, const unsigned short* pEncoding, float pGain, float pStretch, float pBlack,
               const cMatrix33& pColorMatrix, const float* pToneCurve) {
  const sExposure exposure{pGain, pStretch, pBlack};
  const auto colorAt = [&](int pX) -> cHueTable::sColor {
    const unsigned short* record = pRecords + static_cast<std::ptrdiff_t>(pX) * ColorRecord::kSlots;
    const float luminance = Exposed(exposure, ColorRecord::LoadFloat(record + ColorRecord::kLuminance));
    const cHueTable::sColor c = pHueTable.ColorOf(record + ColorRecord::kHueRecord, luminance);
    return {pToneCurve[UnitToIndex(c.fR)], pToneCurve[UnitToIndex(c.fG)], pToneCurve[UnitToIndex(c.fB)]};
  };
  EncodeRow({pOutput, pWidth, pBitDepth, pEncoding, pColorMatrix}, colorAt,
            [](float pValue) { return UnitToIndex(pValue); });
}

}  // namespace TmEngine
