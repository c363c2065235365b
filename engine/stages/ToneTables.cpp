#include "engine/stages/ToneTables.h"

#include <cmath>

namespace TmEngine {
namespace {

/// How a layer's exponent falls with the magnitude of its value.
struct sCompression {
  float fExponent;    // before compression
  bool fCompressed;   // whether it falls at all
  double fFall;       // power of the relative magnitude
  double fMagnitude;  // the typical one
};

double Exponent(const sCompression& pCompression, double pValue) {
  const auto plain = static_cast<double>(pCompression.fExponent);
  if (!pCompression.fCompressed) return plain;
  const double relative = std::fabs(pValue / pCompression.fMagnitude);
  return relative > 0.0 ? std::pow(relative, -pCompression.fFall) * plain : plain;
}

/// Fills a table over [pMin, pMax] and returns its largest entry.
float FillTable(const sCompression& pCompression, float pMin, float pMax, float* pTable) {
  float largest = 0.0f;
  for (int i = 0; i < kTableSize; ++i) {
    const float t = static_cast<float>(i / 65535.0);
    const auto value = static_cast<double>(t * (pMax - pMin) + pMin);
    pTable[i] = static_cast<float>(std::pow(10.0, value * Exponent(pCompression, value)));
    if (pTable[i] > largest) largest = pTable[i];
  }
  return largest;
}

}  // namespace

float GlobalExponent(float pStrength) {
  const float s = static_cast<float>(static_cast<double>(pStrength) / 100.0);
  return s > 0.0f ? 1.0f - s : 1.0f - 3.0f * s;
}

void BuildToneTables(float pExponent, float pToneCompression, const sLayerStatistics& pLayers,
                     sToneTables& pTables) {
  const auto amount = static_cast<double>(pToneCompression);
  const bool compressed = pToneCompression > 0.0f;
  // The base is always compressed a little harder than the detail.
  const sCompression base{pExponent, compressed, amount / 20.0 + 0.05, pLayers.fBaseMean};
  const sCompression detail{1.0f, compressed, amount / 50.0 + 0.01, pLayers.fDetailMagnitude};
  pTables.fBaseMax = FillTable(base, pLayers.fBaseMin, pLayers.fBaseMax, pTables.fBase);
  pTables.fDetailMax = FillTable(detail, pLayers.fDetailMin, pLayers.fDetailMax, pTables.fDetail);
}

}  // namespace TmEngine
