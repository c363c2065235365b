// Colour spaces: matrices from chromaticities, encoding tables.
#include <cmath>

#include "ReferenceParts.h"

namespace Reference {
namespace {

using tMatrixD = tFixed<double, 9>;
using tVectorD = tFixed<double, 3>;

struct sPrimaries {
  float fRed[2], fGreen[2], fBlue[2], fWhite[2];
};

constexpr sPrimaries kPrimaries[3] = {
    {{0.64f, 0.33f}, {0.3f, 0.6f}, {0.15f, 0.06f}, {0.31271f, 0.32902f}},
    {{0.64f, 0.33f}, {0.21f, 0.71f}, {0.15f, 0.06f}, {0.31271f, 0.32902f}},
    {{0.7347f, 0.2653f}, {0.1596f, 0.8404f}, {0.0366f, 0.0001f}, {0.34567f, 0.3585f}},
};

constexpr tMatrixD kBradford = {{0.8951, 0.2664, -0.1614, -0.7502, 1.7135, 0.0367, 0.0389, -0.0685, 1.0296}};

tMatrixD Inverse(const tMatrixD& a) {
  const double d = (a[4] * a[8] - a[5] * a[7]) * a[0] - (a[3] * a[8] - a[6] * a[5]) * a[1] +
                   (a[3] * a[7] - a[6] * a[4]) * a[2];
  tMatrixD b = {a[4] * a[8] - a[5] * a[7],    -(a[1] * a[8] - a[2] * a[7]), a[1] * a[5] - a[2] * a[4],
                -(a[3] * a[8] - a[6] * a[5]), a[0] * a[8] - a[6] * a[2],    -(a[0] * a[5] - a[3] * a[2]),
                a[3] * a[7] - a[6] * a[4],    -(a[0] * a[7] - a[6] * a[1]), a[0] * a[4] - a[3] * a[1]};
  for (double& element : b.fValues) element /= d;
  return b;
}

tVectorD Apply(const tMatrixD& m, const tVectorD& v) {
  tVectorD result{};
  for (int i = 0; i < 3; ++i) result[i] = m[3 * i] * v[0] + m[3 * i + 1] * v[1] + m[3 * i + 2] * v[2];
  return result;
}

tVectorD WhiteXyz(const float (&pWhite)[2]) {
  const double x = pWhite[0], y = pWhite[1];
  return {x / y, 1.0, (1.0 - x - y) / y};
}

tMatrixD NativeRgbToXyz(const sPrimaries& pPrimaries) {
  const double rx = pPrimaries.fRed[0], ry = pPrimaries.fRed[1];
  const double gx = pPrimaries.fGreen[0], gy = pPrimaries.fGreen[1];
  const double bx = pPrimaries.fBlue[0], by = pPrimaries.fBlue[1];
  tMatrixD m = {rx, gx, bx, ry, gy, by, 1.0 - rx - ry, 1.0 - gx - gy, 1.0 - bx - by};
  const tVectorD scale = Apply(Inverse(m), WhiteXyz(pPrimaries.fWhite));
  for (int i = 0; i < 9; ++i) m[i] *= scale[i % 3];
  return m;
}

tMatrixD RgbToXyzD50InDouble(int pColorSpace) {
  const sPrimaries& primaries = kPrimaries[pColorSpace];
  const tMatrixD native = NativeRgbToXyz(primaries);
  if (double{primaries.fWhite[0]} == 0.34567001461982727 &&
      double{primaries.fWhite[1]} == 0.35850000381469727) {
    return native;
  }
  const tVectorD to = Apply(kBradford, {0.9642120249418419, 1.0, 0.8251882243169657});
  const tVectorD from = Apply(kBradford, WhiteXyz(primaries.fWhite));
  tMatrixD scaled = kBradford;
  for (int i = 0; i < 9; ++i) scaled[i] *= to[i / 3] / from[i / 3];
  return Product(Product(Inverse(kBradford), scaled), native);
}

tMatrix Rounded(const tMatrixD& m) {
  tMatrix result{};
  for (int i = 0; i < 9; ++i) result[i] = static_cast<float>(m[i]);
  return result;
}

float Encode(int pColorSpace, float x) {
  const float gamma = pColorSpace == kProPhoto ? 1.8f : 2.2f;
  if (pColorSpace != 0) return static_cast<float>(Power(x, 1.0 / double{gamma}));
  if (x <= 0.0031308f) return x * 12.92f;
  return static_cast<float>(Power(x, 0.4166666666666667) * 1.055 - 0.055);
}

tList<std::uint16_t> MakeEncodingTable(int pColorSpace) {
  tList<std::uint16_t> table;
  for (int i = 0; i <= 65535; ++i) {
    const float code = Encode(pColorSpace, static_cast<float>(i) / 65535.0f) * 65535.0f;
    table.push_back(static_cast<std::uint16_t>(static_cast<std::int64_t>(code)));
  }
  return table;
}

}  // namespace

tMatrix RgbToXyzD50(int pColorSpace) {
  return Rounded(RgbToXyzD50InDouble(pColorSpace));
}

tMatrix XyzD50ToRgb(int pColorSpace) {
  return Rounded(Inverse(RgbToXyzD50InDouble(pColorSpace)));
}

const tList<std::uint16_t>& EncodingTable(int pColorSpace) {
  static const tList<std::uint16_t> tables[] = {MakeEncodingTable(0), MakeEncodingTable(1),
                                                MakeEncodingTable(2)};
  return tables[pColorSpace];
}

}  // namespace Reference
