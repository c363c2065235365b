#include "photo/picture/PictureStatistics.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace Photo {
namespace {

constexpr auto kBins =
    static_cast<std::size_t>(-2.0 * sPictureStatistics::kLowest * sPictureStatistics::kBinsPerDecade);

double LogOfBin(double pBin) {
  return sPictureStatistics::kLowest + pBin / sPictureStatistics::kBinsPerDecade;
}

double BinOfLog(double pLog) {
  return (pLog - sPictureStatistics::kLowest) * sPictureStatistics::kBinsPerDecade;
}

/// Adds a pixel; the mean is a sum until the end.
void AddLuminance(sPictureStatistics& pTo, float pLuminance) {
  ++pTo.fPixels;
  if (!(pLuminance > 0.0f)) {
    ++pTo.fDark;
    return;
  }
  const double log = static_cast<double>(std::log10(pLuminance));
  const bool isFirst = pTo.CountPositive() == 1;
  pTo.fLogMin = isFirst ? log : std::min(pTo.fLogMin, log);
  pTo.fLogMax = isFirst ? log : std::max(pTo.fLogMax, log);
  pTo.fLogMean += log;
  const double bin = std::clamp(BinOfLog(log), 0.0, static_cast<double>(kBins - 1));
  ++pTo.fBins[static_cast<std::size_t>(bin)];
}

sPictureStatistics Measure(const sPicture& pPicture, cLuminanceSampler pSampler) {
  const auto width = static_cast<std::size_t>(pPicture.fBitmap->GetWidth());
  for (int y = 0; y < pPicture.fBitmap->GetHeight(); ++y) {
    const bool hasAlpha = !pPicture.fAlpha.empty();
    pSampler.TakeRow(y, GetRow(pPicture, y),
                     hasAlpha ? &pPicture.fAlpha[static_cast<std::size_t>(y) * width] : nullptr,
                     pPicture.fIsPremultiplied);
  }
  return pSampler.Get();
}

}  // namespace

void sPictureStatistics::Merge(const sPictureStatistics& pOther) {
  const auto mine = static_cast<double>(CountPositive());
  const auto others = static_cast<double>(pOther.CountPositive());
  fPixels += pOther.fPixels;
  fDark += pOther.fDark;
  if (others == 0.0) return;
  fLogMin = mine > 0.0 ? std::min(fLogMin, pOther.fLogMin) : pOther.fLogMin;
  fLogMax = mine > 0.0 ? std::max(fLogMax, pOther.fLogMax) : pOther.fLogMax;
  fLogMean = (fLogMean * mine + pOther.fLogMean * others) / (mine + others);
  fBins.resize(kBins);
  for (std::size_t i = 0; i < std::min(kBins, pOther.fBins.size()); ++i) fBins[i] += pOther.fBins[i];
}

double sPictureStatistics::GetQuantile(double pShare) const {
  const double wanted = pShare * static_cast<double>(CountPositive());
  double below = 0.0;
  for (std::size_t bin = 0; bin < fBins.size(); ++bin) {
    const auto count = static_cast<double>(fBins[bin]);
    if (count > 0.0 && below + count >= wanted) {
      const double log = LogOfBin(static_cast<double>(bin) + (wanted - below) / count);
      return std::clamp(log, fLogMin, fLogMax);
    }
    below += count;
  }
  return fLogMax;
}

double sPictureStatistics::GetShareAbove(double pLog) const {
  if (CountPositive() == 0) return 0.0;
  const double edge = std::clamp(BinOfLog(pLog), 0.0, static_cast<double>(kBins - 1));
  const auto split = static_cast<std::size_t>(edge);
  double above = static_cast<double>(fBins[split]) * (1.0 - (edge - std::floor(edge)));
  for (std::size_t bin = split + 1; bin < fBins.size(); ++bin) above += static_cast<double>(fBins[bin]);
  return above / static_cast<double>(CountPositive());
}

std::vector<std::int64_t> sPictureStatistics::CountTenths(double pFrom) const {
  constexpr std::size_t kTenth = kBinsPerDecade / 10;
  std::vector<std::int64_t> counts;
  for (auto bin = static_cast<std::size_t>(std::lround(BinOfLog(pFrom)));
       bin < fBins.size() && LogOfBin(static_cast<double>(bin)) <= fLogMax; bin += kTenth) {
    const auto first = fBins.begin() + static_cast<std::ptrdiff_t>(bin);
    const auto last = fBins.begin() + static_cast<std::ptrdiff_t>(std::min(bin + kTenth, fBins.size()));
    counts.push_back(std::accumulate(first, last, std::int64_t{0}));
  }
  return counts;
}

cLuminanceSampler::cLuminanceSampler(int pWidth, int pStepX, int pStepY)
    : fWidth(pWidth), fStepX(pStepX), fStepY(pStepY) {
  fSum.fBins.assign(kBins, 0);
}

cLuminanceSampler cLuminanceSampler::OfAll(int pWidth) {
  return {pWidth, 1, 1};
}

cLuminanceSampler cLuminanceSampler::OfPart(int pWidth, int pHeight) {
  constexpr int kSide = 400;
  return {pWidth, std::max(pWidth / kSide, 1), std::max(pHeight / kSide, 1)};
}

void cLuminanceSampler::TakeRow(int pY, const float* pRow, const std::uint16_t* pAlpha,
                                bool pIsPremultiplied) {
  if (pY % fStepY != fStepY / 2) return;
  for (int x = fStepX / 2; x < fWidth; x += fStepX) {
    const float luminance = pRow[3 * x + 1];
    const bool isSeen = pAlpha == nullptr || pAlpha[x] > 0 || (pIsPremultiplied && luminance > 0.0f);
    if (isSeen) AddLuminance(fSum, luminance);
  }
}

void cLuminanceSampler::Take(const float* pLuminance, int pCount) {
  for (int i = 0; i < pCount; ++i) AddLuminance(fSum, pLuminance[i]);
}

sPictureStatistics cLuminanceSampler::Get() const {
  sPictureStatistics statistics = fSum;
  if (statistics.CountPositive() > 0) statistics.fLogMean /= static_cast<double>(statistics.CountPositive());
  return statistics;
}

sPictureStatistics MeasurePicture(const sPicture& pPicture) {
  return Measure(pPicture, cLuminanceSampler::OfAll(pPicture.fBitmap->GetWidth()));
}

sPictureStatistics SamplePicture(const sPicture& pPicture) {
  return Measure(pPicture,
                 cLuminanceSampler::OfPart(pPicture.fBitmap->GetWidth(), pPicture.fBitmap->GetHeight()));
}

}  // namespace Photo
