#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "ReferenceHue.h"

/// What the reference's own files share.
namespace Reference {

/// A vector that takes signed indexes, as the formulas have them.
template <class tValue>
struct tList : std::vector<tValue> {
  using std::vector<tValue>::vector;
  tValue& operator[](std::int64_t i) { return this->data()[i]; }
  const tValue& operator[](std::int64_t i) const { return this->data()[i]; }
};

template <class tValue, int kCount>
struct tFixed {
  tValue fValues[kCount];
  tValue& operator[](int i) { return fValues[i]; }
  const tValue& operator[](int i) const { return fValues[i]; }
};

using tMatrix = tFixed<float, 9>;  // row-major

/// Appends a formatted line of any length.
[[gnu::format(printf, 2, 3)]] void Log(std::string* pLog, const char* pFormat, ...);

/// Throws std::runtime_error with pText unless pHolds.
inline void Check(bool pHolds, const char* pText) {
  if (!pHolds) throw std::runtime_error(pText);
}

/// Every power in double goes through here: a base or exponent that the compiler knows would let it take
/// another function, which rounds differently.
double Power(double pBase, double pExponent);

/// pValue in [0, 1] as an index 0 to 65535, truncated; values outside go to the ends, a NaN to 0.
int Index16(float pValue);

constexpr int kProPhoto = 2;

tMatrix RgbToXyzD50(int pColorSpace);
tMatrix XyzD50ToRgb(int pColorSpace);

template <class tAny>
tAny Product(const tAny& a, const tAny& b) {
  tAny c{};
  for (int i = 0; i < 9; ++i) {
    const int row = i / 3 * 3, column = i % 3;
    c[i] = a[row] * b[column] + a[row + 1] * b[3 + column] + a[row + 2] * b[6 + column];
  }
  return c;
}

/// Linear light, quantised to 16 bits, to the 16-bit code of the colour space.
const tList<std::uint16_t>& EncodingTable(int pColorSpace);

/// The contrast curve at position pPosition of its key frames, 65536 entries.
tList<float> ToneCurve(float pPosition);

/// The saturated colour of each hue code under flat hue curves, 65536 entries.
tList<sHexcone> HueTable();

}  // namespace Reference
