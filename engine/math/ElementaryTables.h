// Written by scripts/make-elementary-tables.
#pragma once

namespace TmEngine {

/// Row i belongs to the significands (1 to 2) from 1 + (i + kLogSplit) / 256 on, and once that reaches 2 to
/// those from (i + kLogSplit) / 256 on. Its factor brings such a significand to 1 + r with |r| <= 2^-8, r
/// being exact in a double.
inline constexpr int kLogSplit = 106;

struct sLogRow {
  double fFactor;          ///< Halved for the significands from 1 + kLogSplit / 256 on.
  double fLog10;           ///< -log10 of the factor before halving.
  double fLnHigh, fLnLow;  ///< -ln of it; the first is a multiple of 2^-42.
};
extern const sLogRow kLogRows[256];

/// 2^(i / 128) and what the double leaves of it.
struct sExpRow {
  double fHigh, fLow;
};
extern const sExpRow kExpRows[128];

/// log10(1 + r) / r for |r| <= 2^-8, lowest power first.
inline constexpr double kLog10Series[] = {0x1.bcb7b1526e50ep-2, -0x1.bcb7b1526e50fp-3,
                                          0x1.287a7636acbcap-3, -0x1.bcb7b151abbf8p-4,
                                          0x1.63c7a4a63b82bp-4, -0x1.287bfb593f9e7p-4};

}  // namespace TmEngine
