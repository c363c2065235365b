#include "engine/stages/ToneTables.h"

#include <cmath>

#include "engine/base/StageFlags.h"
#include "engine/kernels/Kernels.h"

namespace TmEngine {
namespace {

/// How a layer's exponent falls with the magnitude of its value.
struct sCompression {
  float fExponent;    // before compression
  bool fCompressed;   // whether it falls at all
  double fFall;       // power of the relative magnitude
  double fMagnitude;  // the typical one
};

constexpr int kRun = 256;  // entries worked on at once
static_assert(kTableSize % kRun == 0);

/// Multiplies each value by its exponent.
void ApplyExponents(const sCompression& pCompression, double* pValues) {
  const auto plain = static_cast<double>(pCompression.fExponent);
  double relative[kRun], fall[kRun];
  if (pCompression.fCompressed) {
    for (int i = 0; i < kRun; ++i) relative[i] = std::fabs(pValues[i] / pCompression.fMagnitude);
    Kernels().fPowRow(relative, -pCompression.fFall, fall, kRun);
  }
  for (int i = 0; i < kRun; ++i) {
    const bool falls = pCompression.fCompressed && relative[i] > 0.0;
    pValues[i] *= falls ? fall[i] * plain : plain;
  }
}

/// Fills a table over [pMin, pMax] and finds its largest entry. False when stopped.
bool FillTable(const sCompression& pCompression, float pMin, float pMax, float* pTable, float& pLargest,
               const bool* pCancel) {
  const sKernels& kernels = Kernels();
  sRange range = {0.0f, 0.0f};
  for (int start = 0; start < kTableSize; start += kRun, pTable += kRun) {
    if (IsSet(pCancel)) return false;
    double values[kRun];
    for (int i = 0; i < kRun; ++i) {
      const float t = static_cast<float>(start + i) / 65535.0f;
      values[i] = static_cast<double>(t * (pMax - pMin) + pMin);
    }
    ApplyExponents(pCompression, values);
    kernels.fBasePowRow(10.0, values, values, kRun);
    for (int i = 0; i < kRun; ++i) pTable[i] = static_cast<float>(values[i]);
    kernels.fWiden(pTable, kRun, range);
  }
  pLargest = range.fMax;
  return true;
}

}  // namespace

float GlobalExponent(float pStrength) {
  const float s = static_cast<float>(static_cast<double>(pStrength) / 100.0);
  return s > 0.0f ? 1.0f - s : 1.0f - 3.0f * s;
}

bool BuildToneTables(float pExponent, float pToneCompression, const sLayerStatistics& pLayers,
                     sToneTables& pTables, const bool* pCancel) {
  const auto amount = static_cast<double>(pToneCompression);
  const bool compressed = pToneCompression > 0.0f;
  // The base is always compressed a little harder than the detail.
  const sCompression base{pExponent, compressed, amount / 20.0 + 0.05, pLayers.fBaseMean};
  const sCompression detail{1.0f, compressed, amount / 50.0 + 0.01, pLayers.fDetailMagnitude};
  return FillTable(base, pLayers.fBaseMin, pLayers.fBaseMax, pTables.fBase, pTables.fBaseMax, pCancel) &&
         FillTable(detail, pLayers.fDetailMin, pLayers.fDetailMax, pTables.fDetail, pTables.fDetailMax,
                   pCancel);
}

}  // namespace TmEngine
