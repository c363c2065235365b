#include "photo/light/CicpColors.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "engine/color/cTransfer.h"

namespace Photo {
namespace {

float DecodeSRGB(float pSample) {
  return TmEngine::cTransfer_sRGBToLinear().Evaluate(pSample);
}

float DecodePower(float pSample, double pPower) {
  return pPower == 1.0 ? pSample : static_cast<float>(std::pow(static_cast<double>(pSample), pPower));
}

/// SMPTE ST 2084.
float DecodePQ(float pSample) {
  constexpr double kM1 = 2610.0 / 16384.0;
  constexpr double kM2 = 2523.0 / 4096.0 * 128.0;
  constexpr double kC2 = 2413.0 / 4096.0 * 32.0;
  constexpr double kC3 = 2392.0 / 4096.0 * 32.0;
  constexpr double kC1 = kC3 - kC2 + 1.0;
  constexpr double kPeak = 10000.0 / 203.0;
  const double root = std::pow(static_cast<double>(pSample), 1.0 / kM2);
  return static_cast<float>(kPeak * std::pow(std::max(root - kC1, 0.0) / (kC2 - kC3 * root), 1.0 / kM1));
}

/// ITU-R BT.2100: the light of the scene.
float DecodeHLG(float pSample) {
  constexpr double kA = 0.17883277;
  constexpr double kB = 1.0 - 4.0 * kA;
  const double c = 0.5 - kA * std::log(4.0 * kA);
  const auto light = [c](double pV) {
    return pV <= 0.5 ? pV * pV / 3.0 : (std::exp((pV - c) / kA) + kB) / 12.0;
  };
  return static_cast<float>(light(static_cast<double>(pSample)) / light(0.75));
}

struct sKnownPrimaries {
  int fCode;
  const char* fName;
  sPrimaries fPrimaries;
};
const sKnownPrimaries kPrimaries[] = {
    {1, "sRGB", {}},
    {2, "sRGB", {}},  // not stated
    {9, "Rec. 2020", {{0.708f, 0.292f}, {0.17f, 0.797f}, {0.131f, 0.046f}, {0.3127f, 0.329f}}},
    {12, "Display P3", {{0.68f, 0.32f}, {0.265f, 0.69f}, {0.15f, 0.06f}, {0.3127f, 0.329f}}}};

struct sKnownTransfer {
  int fCode;
  eEncoding fEncoding;
  const char* fName;
};
constexpr sKnownTransfer kTransfers[] = {
    {13, eEncoding::kSRGB, ""},        {1, eEncoding::kSRGB, ""},
    {2, eEncoding::kSRGB, ""},         {6, eEncoding::kSRGB, ""},
    {14, eEncoding::kSRGB, ""},        {15, eEncoding::kSRGB, ""},  // Rec. 709 is shown as sRGB is
    {8, eEncoding::kPower, " linear"}, {16, eEncoding::kPQ, " PQ"},
    {18, eEncoding::kHLG, " HLG"}};

/// Null for a code that is not known.
template <class tKnown, std::size_t tCount>
const tKnown* Find(const tKnown (&pKnown)[tCount], int pCode) {
  const tKnown* const found = std::find_if(std::begin(pKnown), std::end(pKnown),
                                           [&](const tKnown& pOne) { return pOne.fCode == pCode; });
  return found == std::end(pKnown) ? nullptr : found;
}

}  // namespace

std::optional<sCicpColors> FindCodedColors(int pPrimaries, int pTransfer, const std::string& pInstead,
                                           std::vector<std::string>& pWarnings) {
  const sKnownPrimaries* const primaries = Find(kPrimaries, pPrimaries);
  const sKnownTransfer* const transfer = Find(kTransfers, pTransfer);
  if (primaries != nullptr && transfer != nullptr) {
    return sCicpColors{primaries->fPrimaries, transfer->fEncoding, 1.0,
                       std::string(primaries->fName) + transfer->fName};
  }
  pWarnings.push_back("its colours are of a kind that is not known here (primaries " +
                      std::to_string(pPrimaries) + ", transfer " + std::to_string(pTransfer) + "); " +
                      pInstead);
  return std::nullopt;
}

float DecodeSample(const sCicpColors& pColors, float pSample) {
  switch (pColors.fEncoding) {
    case eEncoding::kPower:
      return DecodePower(pSample, pColors.fPower);
    case eEncoding::kPQ:
      return DecodePQ(pSample);
    case eEncoding::kHLG:
      return DecodeHLG(pSample);
    default:
      return DecodeSRGB(pSample);
  }
}

}  // namespace Photo
