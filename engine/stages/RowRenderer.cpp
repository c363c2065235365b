#include "engine/stages/RowRenderer.h"

#include "engine/stages/ColorRecord.h"

namespace TmEngine {
namespace {

/// What all pixels of a row share.
struct sRow {
  const cHueTable& fHueTable;
  const unsigned short* fEncoding;
  float fGain;
  float fStretch;
  float fBlack;
  cMatrix33 fMatrix;
  const float* fToneCurve;
};

struct sSample8 {
  using tSample = unsigned char;
  static tSample FromCode(unsigned short pCode) { return static_cast<tSample>(pCode >> 8); }
};

struct sSample16 {
  using tSample = unsigned short;
  static tSample FromCode(unsigned short pCode) { return pCode; }
};

float Luminance(const sRow& pRow, float pLuminance) {
  if (pRow.fStretch == 1.0f) return pLuminance * pRow.fGain;
  const float stretched = (pLuminance - pRow.fBlack) * pRow.fStretch;
  return stretched > 0.0f ? stretched : 0.0f;
}

/// The pixel's colour in working RGB, after the tone curve.
cHueTable::sColor WorkingColor(const sRow& pRow, const unsigned short* pRecord) {
  const float luminance = Luminance(pRow, ColorRecord::LoadFloat(pRecord + ColorRecord::kLuminance));
  const float low = ColorRecord::LoadFloat(pRecord + ColorRecord::kMinRatio) * luminance;
  const float span = ColorRecord::LoadFloat(pRecord + ColorRecord::kMaxRatio) * luminance - low;
  const cHueTable::sColor& hue = pRow.fHueTable[pRecord[ColorRecord::kHue]];
  const auto curve = [&](float pShare) { return pRow.fToneCurve[UnitToIndex(span * pShare + low)]; };
  return {curve(hue.fR), curve(hue.fG), curve(hue.fB)};
}

template <class tDepth>
void Render(const sRow& pRow, const unsigned short* pRecord, typename tDepth::tSample* pTo, int pWidth) {
  const cMatrix33 m = pRow.fMatrix;
  const auto encode = [&](float pValue) { return tDepth::FromCode(pRow.fEncoding[UnitToIndex(pValue)]); };
  for (int x = 0; x < pWidth; ++x, pRecord += ColorRecord::kSlots, pTo += 3) {
    const cHueTable::sColor c = WorkingColor(pRow, pRecord);
    pTo[2] = encode(m[0] * c.fR + m[1] * c.fG + m[2] * c.fB);
    pTo[1] = encode(m[3] * c.fR + m[4] * c.fG + m[5] * c.fB);
    pTo[0] = encode(m[6] * c.fR + m[7] * c.fG + m[8] * c.fB);
  }
}

}  // namespace

void RenderRow(const cHueTable& pHueTable, const unsigned short* pRecords, void* pOutput, int pWidth,
               int pBitDepth, const unsigned short* pEncoding, float pGain, float pStretch, float pBlack,
               const cMatrix33& pColorMatrix, const float* pToneCurve) {
  const sRow row{pHueTable, pEncoding, pGain, pStretch, pBlack, pColorMatrix, pToneCurve};
  if (pBitDepth == 16) {
    Render<sSample16>(row, pRecords, static_cast<unsigned short*>(pOutput), pWidth);
  } else {
    Render<sSample8>(row, pRecords, static_cast<unsigned char*>(pOutput), pWidth);
  }
}

}  // namespace TmEngine
