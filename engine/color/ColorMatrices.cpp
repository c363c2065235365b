#include "engine/color/ColorMatrices.h"

namespace TmEngine {
namespace {

// XYZ to the cone-like responses in which the Bradford transform scales one white to the other.
constexpr cMatrix33d kBradford(0.8951, 0.2664, -0.1614,  //
                               -0.7502, 1.7135, 0.0367,  //
                               0.0389, -0.0685, 1.0296);

// D50 as chromaticities, the floats 0.34567 and 0.3585 widened, and as XYZ.
constexpr double kD50x = 0.34567001461982727;
constexpr double kD50y = 0.35850000381469727;
constexpr cVector3d kD50(0.9642120249418419, 1.0, 0.8251882243169657);

cVector3d ToXyz(const cVector2& pChromaticity) {
  const double x = pChromaticity.fX;
  const double y = pChromaticity.fY;
  return cVector3d(x / y, 1.0, (1.0 - x - y) / y);
}

// Row r times factor r, which is diag(pFactors) * pMatrix.
cMatrix33d ScaleRows(const cVector3d& pFactors, const cMatrix33d& pMatrix) {
  cMatrix33d scaled;
  for (int i = 0; i < 9; ++i) scaled[i] = pFactors[i / 3] * pMatrix[i];
  return scaled;
}

// Column c times factor c, which is pMatrix * diag(pFactors).
cMatrix33d ScaleColumns(const cMatrix33d& pMatrix, const cVector3d& pFactors) {
  cMatrix33d scaled;
  for (int i = 0; i < 9; ++i) scaled[i] = pMatrix[i] * pFactors[i % 3];
  return scaled;
}

// The XYZ-to-XYZ matrix that carries colours seen under one white to another.
cMatrix33d Adaptation(const cVector3d& pFromWhite, const cVector3d& pToWhite) {
  const cVector3d from = kBradford * pFromWhite;
  const cVector3d to = kBradford * pToWhite;
  const cVector3d ratios(to[0] / from[0], to[1] / from[1], to[2] / from[2]);
  return InverseOf(kBradford) * ScaleRows(ratios, kBradford);
}

bool IsD50(const cVector2& pWhite) {
  return static_cast<double>(pWhite.fX) == kD50x && static_cast<double>(pWhite.fY) == kD50y;
}

cVector2 ToChromaticity(float pX, float pY, float pZ) {
  const float sum = pX + pY + pZ;
  return cVector2(pX / sum, pY / sum);
}

}  // namespace

cMatrix33d InverseOf(const cMatrix33d& pMatrix) {
  cMatrix33d inverse;
  pMatrix.Inverse(inverse);
  return inverse;
}

cMatrix33d DeriveRGBToXYZNative(const sChromaticities& pSpace) {
  const cVector2 primaries[3] = {pSpace.fRed, pSpace.fGreen, pSpace.fBlue};
  cMatrix33d columns;
  for (int i = 0; i < 3; ++i) {
    const double x = primaries[i].fX;
    const double y = primaries[i].fY;
    columns[i] = x;
    columns[3 + i] = y;
    columns[6 + i] = 1.0 - x - y;
  }
  return ScaleColumns(columns, InverseOf(columns) * ToXyz(pSpace.fWhite));
}

cMatrix33d DeriveRGBToXYZD50(const sChromaticities& pSpace) {
  const cMatrix33d native = DeriveRGBToXYZNative(pSpace);
  if (IsD50(pSpace.fWhite)) return native;
  return Adaptation(ToXyz(pSpace.fWhite), kD50) * native;
}

sChromaticities ChromaticitiesOf(const cMatrix33& pColorants, const cVector3& pMediaWhite) {
  cMatrix33d colorants;
  for (int i = 0; i < 9; ++i) colorants[i] = pColorants[i];
  const cVector3d white(pMediaWhite[0], pMediaWhite[1], pMediaWhite[2]);
  const cMatrix33 native = (Adaptation(kD50, white) * colorants).ToFloat();
  return {ToChromaticity(native[0], native[3], native[6]), ToChromaticity(native[1], native[4], native[7]),
          ToChromaticity(native[2], native[5], native[8]),
          ToChromaticity(pMediaWhite[0], pMediaWhite[1], pMediaWhite[2])};
}

}  // namespace TmEngine
