#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

/// What the reference's own files share.
namespace Reference {

using tMatrix = std::array<float, 9>;  // row-major

/// Appends a formatted line of any length.
[[gnu::format(printf, 2, 3)]] void Log(std::string* pLog, const char* pFormat, ...);

/// Every power in double goes through here: a base or exponent that the compiler knows would let it take
/// another function, which rounds differently.
double Power(double pBase, double pExponent);

/// pValue in [0, 1] as an index 0 to 65535, truncated; values outside go to the ends, a NaN to 0.
int Index16(float pValue);

constexpr int kProPhoto = 2;

tMatrix RgbToXyzD50(int pColorSpace);
tMatrix XyzD50ToRgb(int pColorSpace);
tMatrix Product(const tMatrix& pA, const tMatrix& pB);

/// Linear light, quantised to 16 bits, to the 16-bit code of the colour space.
const std::vector<std::uint16_t>& EncodingTable(int pColorSpace);

/// The contrast curve at position pPosition of its key frames, 65536 entries.
std::vector<float> ToneCurve(float pPosition);

struct sHexcone {
  float fRGB[3];
};
/// The saturated colour of each hue code under flat hue curves, 65536 entries.
std::vector<sHexcone> HueTable();

}  // namespace Reference
