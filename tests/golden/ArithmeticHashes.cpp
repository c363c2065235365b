// A picture shows a wrong last bit of a factor or a table only where its pixels happen to fall. Here every
// result counts. Arguments are drawn one in each statement: within one, compilers differ in the order.
#include <algorithm>
#include <cmath>
#include <memory>
#include <type_traits>
#include <vector>

#include "engine/color/ColorMatrices.h"
#include "engine/color/cColorSpace.h"
#include "engine/color/cTransferLUT.h"
#include "engine/curve/cContrastCurve.h"
#include "engine/image/PixelRows.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/math/Elementary.h"
#include "engine/stages/BlackWhitePoints.h"
#include "engine/stages/BoxSmoother.h"
#include "engine/stages/ColorRows.h"
#include "engine/stages/ExposureScale.h"
#include "engine/stages/HueTable.h"
#include "engine/stages/StageRun.h"
#include "engine/stages/ToneTables.h"
#include "export/HostSettings.h"
#include "tests/Pictures.h"
#include "tests/golden/GoldenTable.h"

using namespace TmEngine;

namespace {

constexpr int kArguments = 20000;

class cArguments : public cRandom {
 public:
  using cRandom::cRandom;

  float Between(float pLow, float pHigh) { return pLow + (pHigh - pLow) * Unit(); }
  /// From 2^pLow on and below 2^pHigh, all powers of two alike.
  float Magnitude(int pLow, int pHigh) {
    const int exponent = pLow + Below(pHigh - pLow);
    return std::ldexp(1.0f + Unit(), exponent);
  }
  std::vector<float> Row(std::size_t pCount, float pLow, float pHigh) {
    std::vector<float> row(pCount);
    for (float& value : row) value = Between(pLow, pHigh);
    return row;
  }
};

void HashElementary(tTable& pTable) {
  cArguments arguments(1);
  cHash log, pow, cos;
  for (int i = 0; i < kArguments; ++i) {
    log.Add(Log10(arguments.Magnitude(-148, 127)));
    const auto x = static_cast<double>(arguments.Magnitude(-60, 60));
    const auto y = static_cast<double>(arguments.Between(-20.0f, 20.0f));
    pow.Add(Pow(x, y / 3.0));
    cos.Add(Cos(y));
  }
  pTable["arithmetic-log10"] = log.Text();
  pTable["arithmetic-pow"] = pow.Text();
  pTable["arithmetic-cos"] = cos.Text();
}

void HashSliders(tTable& pTable) {
  cArguments arguments(2);
  cHash hash;
  for (int i = 0; i < kArguments; ++i) {
    const float reach = arguments.Magnitude(0, 30);
    const std::vector<float> v = arguments.Row(6, -reach, reach);
    tm_quorvane_settings settings = {v[0], v[1], v[2], v[3], v[4], v[5], {}, 0, {}, 0};
    const sToneParameters parameters = MapSettings(settings);
    for (const float value : {parameters.fStrength, parameters.fLighting, parameters.fToneCompression,
                              parameters.fWhiteClip, parameters.fBlackClip, parameters.fMicrocontrast}) {
      hash.Add(value);
    }
  }
  pTable["arithmetic-sliders"] = hash.Text();
}

void HashExposureScales(tTable& pTable) {
  cArguments arguments(3);
  cHash exponents, scales;
  for (int i = 0; i < kArguments; ++i) {
    const float exponent = GlobalExponent(arguments.Between(-60.0f, 100.0f));
    const float largest = arguments.Magnitude(-7, 7);
    const sExposureScales both = ExposureScales(exponent, largest, arguments.Between(-4.0f, 4.0f));
    exponents.Add(exponent);
    scales.Add(both.fInput);
    scales.Add(both.fBase);
  }
  pTable["arithmetic-exponents"] = exponents.Text();
  pTable["arithmetic-exposure-scales"] = scales.Text();
}

void HashToneTables(tTable& pTable) {
  cArguments arguments(4);
  const auto tables = std::make_unique<sToneTables>();
  cHash plain, compressed;
  for (int i = 0; i < 12; ++i) {
    sLayerStatistics layers;
    layers.fBaseMin = arguments.Between(-6.0f, 0.0f);
    layers.fBaseMax = layers.fBaseMin + arguments.Between(0.0f, 8.0f);
    layers.fDetailMin = arguments.Between(-3.0f, 0.0f);
    layers.fDetailMax = arguments.Between(0.0f, 3.0f);
    layers.fBaseMean = static_cast<double>(arguments.Between(layers.fBaseMin, layers.fBaseMax)) / 3.0;
    layers.fDetailMagnitude = static_cast<double>(arguments.Unit()) / 3.0;
    const float exponent = arguments.Between(0.0f, 3.0f);
    cHash& hash = i % 2 == 0 ? plain : compressed;
    BuildToneTables(exponent, i % 2 == 0 ? 0.0f : arguments.Between(0.0f, 3.0f), layers, *tables);
    hash.AddAll(tables->fBase, kTableSize);
    hash.AddAll(tables->fDetail, kTableSize);
    hash.Add(tables->fBaseMax);
    hash.Add(tables->fDetailMax);
  }
  pTable["arithmetic-tone-tables"] = plain.Text();
  pTable["arithmetic-tone-tables-compressed"] = compressed.Text();
}

void HashPercentiles(tTable& pTable) {
  cArguments arguments(5);
  cHash hash;
  for (int i = 0; i < 20; ++i) {
    const int width = 1 + arguments.Below(90);
    const int height = 1 + arguments.Below(60);
    cBitmapU16T records(width, height, kColorChannels);
    sToneMappedRange range = {1e30f, 0.0f, 0.0};
    const auto fill = [&](int pY, int pX, int pCount) {
      for (int at = 0; at < pCount; ++at) {
        const float luminance = arguments.Magnitude(-12, 12);
        ColorRun(records, pY, pX).fLuminance[at] = luminance;
        range.fMin = std::min(range.fMin, luminance);
        range.fMax = std::max(range.fMax, luminance);
      }
    };
    ForEachRun(width, height, records.GetTileHeight(), nullptr, fill);
    const cLuminanceHistogram histogram(records, range, {});
    for (int clip = 0; clip < 500; ++clip) {
      const float black = arguments.Between(-5.0f, 105.0f);
      const sBlackWhite points = histogram.Points(black, arguments.Between(-5.0f, 105.0f));
      hash.Add(points.fBlack);
      hash.Add(points.fWhite);
    }
  }
  pTable["arithmetic-black-white"] = hash.Text();
}

void AddTables(cHash& pHash, const cHermiteSpline& pCurve) {
  pHash.AddAll(pCurve.GetFloatTable(), kTableSize + 1);
  pHash.AddAll(pCurve.Get16BitTable(), kTableSize);
  pHash.AddAll(pCurve.Get8BitInputFloatTable(), 256);
  pHash.AddAll(pCurve.Get8BitTable(), 256);
}

/// Six floats a point, as splines take them.
std::vector<float> RandomPoints(cArguments& pArguments, int pCount) {
  return pArguments.Row(6 * static_cast<std::size_t>(pCount), -0.2f, 1.2f);
}

void HashCurves(tTable& pTable) {
  cArguments arguments(6);
  cHash contrast, keyed;
  cContrastCurve contrastCurve;
  for (int i = 0; i < 24; ++i) {
    contrastCurve.InterpolateKeyFrames(arguments.Between(-0.05f, 1.05f));
    contrast.AddAll(contrastCurve.GetFloatTable(), kTableSize);
  }
  for (int i = 0; i < 32; ++i) {
    const int points = 2 + arguments.Below(6);
    const int frames = 1 + arguments.Below(4);
    const std::vector<float> values = RandomPoints(arguments, points * frames);
    cInterpolatedHermiteSpline curve;
    curve.SetKeyFrames(static_cast<eSplineInterpolationMode>(i % 4), points, frames, values.data());
    curve.InterpolateKeyFrames(arguments.Unit());
    AddTables(keyed, curve);
  }
  pTable["arithmetic-contrast-curves"] = contrast.Text();
  pTable["arithmetic-splines"] = keyed.Text();
}

template <class tMatrix, class tVector>
void AddMatrices(cArguments& pArguments, cHash& pHash) {
  const auto matrix = [&] {
    tMatrix filled;
    for (int i = 0; i < 9; ++i) {
      filled[i] = pArguments.Between(-2.0f, 2.0f);
      filled[i] /= 3;
    }
    return filled;
  };
  const auto add = [&](const tMatrix& pMatrix) {
    for (int i = 0; i < 9; ++i) pHash.Add(pMatrix[i]);
  };
  const tMatrix a = matrix(), b = matrix();
  tMatrix result;
  add(a * b);
  add(a / b[0]);
  add(a.Adjugate(result));
  pHash.Add(a.Determinant());
  if (a.Inverse(result)) add(result);
  const tVector product = a * tVector(b[0], b[1], b[2]);
  for (int i = 0; i < 3; ++i) pHash.Add(product[i]);
  if constexpr (std::is_same_v<tMatrix, cMatrix33d>) pHash.AddAll(a.ToFloat().Elements(), 9);
}

void HashMatrices(tTable& pTable) {
  cArguments arguments(7);
  cHash floats, doubles;
  for (int i = 0; i < kArguments / 4; ++i) {
    AddMatrices<cMatrix33, cVector3>(arguments, floats);
    AddMatrices<cMatrix33d, cVector3d>(arguments, doubles);
  }
  pTable["arithmetic-matrices"] = floats.Text();
  pTable["arithmetic-matrices-double"] = doubles.Text();
}

void AddSpace(cHash& pHash, const cColorSpace& pSpace) {
  for (const cMatrix33& matrix :
       {pSpace.GetRGBToXYZNative(), pSpace.GetXYZToRGBNative(), pSpace.GetRGBToXYZ(), pSpace.GetXYZToRGB()}) {
    pHash.AddAll(matrix.Elements(), 9);
  }
  for (const cVector2& point :
       {pSpace.GetRedPrimary(), pSpace.GetGreenPrimary(), pSpace.GetBluePrimary(), pSpace.GetWhitePoint()}) {
    pHash.Add(point.fX);
    pHash.Add(point.fY);
  }
}

/// Spaces of random primaries, and those that a profile with their colorants would give.
void HashColorSpaces(tTable& pTable) {
  cArguments arguments(8);
  cHash hash;
  AddSpace(hash, cColorSpace_sRGB());
  AddSpace(hash, cColorSpace_AdobeRGB98());
  AddSpace(hash, cColorSpace_ProPhotoRGB());
  unsigned short straight[] = {0, 65535};
  for (int i = 0; i < kArguments / 8; ++i) {
    const std::vector<float> xy = arguments.Row(8, 0.05f, 0.7f);
    const cVector2 white(0.25f + xy[6] / 7, 0.25f + xy[7] / 7);
    const cColorSpace_GenericRGB space({xy[0], xy[1]}, {xy[2], xy[3]}, {xy[4], xy[5]}, white, 2.2f);
    AddSpace(hash, space);
    const cVector3 mediaWhite(white.fX / white.fY, 1.0f, (1.0f - white.fX - white.fY) / white.fY);
    AddSpace(hash, cColorSpace_GenericRGB(space.GetRGBToXYZ(), mediaWhite, straight, 2, straight, 2));
  }
  pTable["arithmetic-color-spaces"] = hash.Text();
}

template <class tTransferLUT>
void AddTable(cHash& pHash, cTransfer& pTransfer, std::size_t pEntries) {
  pHash.AddAll(std::make_unique<tTransferLUT>(&pTransfer)->GetTable(), pEntries);
}

std::string HashTransfer(cTransfer& pTransfer) {
  std::vector<float> values = cArguments(9).Row(kArguments, -0.25f, 1.25f);
  cHash hash;
  for (std::size_t i = 0; i < 100; ++i) hash.Add(pTransfer.Evaluate(values[i]));
  pTransfer.EvaluateRow(values.data(), values.data(), kArguments);
  hash.AddAll(values.data(), kArguments);
  AddTable<cTransferLUT_I8F32>(hash, pTransfer, 256);
  AddTable<cTransferLUT_I16F32>(hash, pTransfer, kTableSize);
  AddTable<cTransferLUT_F32I8>(hash, pTransfer, kTableSize);
  AddTable<cTransferLUT_F32I16>(hash, pTransfer, kTableSize);
  return hash.Text();
}

void HashTransfers(tTable& pTable) {
  cTransfer_sRGBToLinear decoding;
  cTransferLinearTo_sRGB encoding;
  cTransferGamma gamma(2.2f), inverse(0.5555556f);
  cArguments arguments(10);
  std::vector<unsigned short> samples(1000);
  for (unsigned short& sample : samples) sample = static_cast<unsigned short>(arguments.Next());
  cTransfer_Table table(samples.data(), static_cast<int>(samples.size()));
  pTable["arithmetic-transfer-decoding"] = HashTransfer(decoding);
  pTable["arithmetic-transfer-encoding"] = HashTransfer(encoding);
  pTable["arithmetic-transfer-gamma"] = HashTransfer(gamma) + HashTransfer(inverse);
  pTable["arithmetic-transfer-table"] = HashTransfer(table);
}

void HashHues(tTable& pTable) {
  cArguments arguments(11);
  cHash hash;
  const auto table = std::make_unique<cHueTable>();
  std::vector<unsigned short> shift(kTableSize);
  for (int i = 0; i < 4; ++i) {
    for (unsigned short& entry : shift) entry = static_cast<unsigned short>(arguments.Next());
    table->Build(shift.data(), arguments.Row(kTableSize, 0.0f, 1.0f).data());
    hash.AddAll(table->Elements(), 3 * kTableSize);
  }
  pTable["arithmetic-hues"] = hash.Text();
}

void HashSmoothing(tTable& pTable) {
  cArguments arguments(12);
  cHash hash;
  for (int i = 0; i < 200; ++i) {
    const int width = 1 + arguments.Below(40);
    const int height = 1 + arguments.Below(40);
    std::vector<float> plane = arguments.Row(static_cast<std::size_t>(width * height), -6.0f, 6.0f);
    SmoothWithBox(plane.data(), plane.data(), width, height, arguments.Magnitude(-3, 5));
    hash.AddAll(plane.data(), plane.size());
  }
  pTable["arithmetic-smoothing"] = hash.Text();
}

}  // namespace

void HashArithmetic(tTable& pTable) {
  HashElementary(pTable);
  HashSliders(pTable);
  HashExposureScales(pTable);
  HashToneTables(pTable);
  HashPercentiles(pTable);
  HashCurves(pTable);
  HashMatrices(pTable);
  HashColorSpaces(pTable);
  HashTransfers(pTable);
  HashHues(pTable);
  HashSmoothing(pTable);
}
