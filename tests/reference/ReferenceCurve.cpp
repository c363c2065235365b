// Hermite curves of one segment, as tables: the contrast curve and the flat hue curves.
#include <algorithm>

#include "ReferenceParts.h"

namespace Reference {
namespace {

/// One segment: both points, the tangent that leaves the first and the one that enters the second.
struct sSegment {
  float fVectors[4][2];
};

/// The contrast curve's frames; all run from (0, 0) to (1, 1).
constexpr sSegment kKeyFrames[5] = {
    {{{0.0f, 0.0f}, {1.0f, 1.0f}, {0.308f, 1.09f}, {1.752f, 2.714f}}},
    {{{0.0f, 0.0f}, {1.0f, 1.0f}, {0.449f, 0.769f}, {2.173f, 2.634f}}},
    {{{0.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 0.0f}, {0.0f, 0.0f}}},
    {{{0.0f, 0.0f}, {1.0f, 1.0f}, {0.5f, 0.0f}, {1.25f, 0.0f}}},
    {{{0.0f, 0.0f}, {1.0f, 1.0f}, {1.0f, 0.0f}, {2.22f, 0.0f}}},
};

/// A hue curve without effect: one half everywhere, with the tangents that its mode prescribes.
constexpr sSegment kFlatHueCurve = {{{0.0f, 0.5f}, {1.0f, 0.5f}, {0.2f, 0.0f}, {0.2f, 0.0f}}};

float Clamp01(float pValue) {
  return pValue < 0.0f ? 0.0f : pValue > 1.0f ? 1.0f : pValue;
}

float Horner(const sSegment& pSegment, int pAxis, float s) {
  const auto& v = pSegment.fVectors;
  const float p0 = v[0][pAxis], p1 = v[1][pAxis], t0 = v[2][pAxis], t1 = v[3][pAxis];
  const float a = 2.0f * p0 - 2.0f * p1 + t0 + t1;
  const float b = 3.0f * p1 - 3.0f * p0 - 2.0f * t0 - t1;
  return ((a * s + b) * s + t0) * s + p0;
}

tList<float> CurveTable(const sSegment& pSegment) {
  const float *point0 = pSegment.fVectors[0], *point1 = pSegment.fVectors[1];
  tList<float> table(65536, 0.0f);
  int lastIndex = Index16(point0[0]);
  float lastY = point0[1];
  for (int j = 1; j <= 100; ++j) {
    const float s = static_cast<float>(j) / 100.0f;
    const float x = j == 100 ? point1[0] : Horner(pSegment, 0, s);
    const float y = j == 100 ? point1[1] : Horner(pSegment, 1, s);
    const int index = Index16(x);
    if (index <= lastIndex) continue;  // the start point stays, so that short steps add up
    for (int k = lastIndex; k < index; ++k) {
      const float u = static_cast<float>(k - lastIndex) / static_cast<float>(index - lastIndex);
      table[k] = Clamp01((1.0f - u) * lastY + u * y);
    }
    lastIndex = index;
    lastY = y;
  }
  for (int k = 0; k <= Index16(point0[0]); ++k) table[k] = Clamp01(point0[1]);
  for (int k = Index16(point1[0]); k <= 65535; ++k) table[k] = Clamp01(point1[1]);
  return table;
}

int To16Bits(float pEntry) {
  return static_cast<int>(pEntry * 65535.0f);
}

/// pPosition: 0 to 1 over the five frames.
sSegment ContrastSegment(float pPosition) {
  const float position = 4.0f * pPosition;
  const int frame = std::min(static_cast<int>(position), 3);
  const float weight = position - static_cast<float>(frame);
  sSegment segment{};
  for (int i = 0; i < 8; ++i) {
    const float a = kKeyFrames[frame].fVectors[i / 2][i % 2],
                b = kKeyFrames[frame + 1].fVectors[i / 2][i % 2];
    segment.fVectors[i / 2][i % 2] = (1.0f - weight) * a + weight * b;
  }
  return segment;
}

}  // namespace

int Index16(float pValue) {
  if (!(pValue >= 0.0f)) return 0;
  return pValue > 1.0f ? 65535 : static_cast<int>(pValue * 65535.0f);
}

tList<float> ToneCurve(float pPosition) {
  tList<float> table = CurveTable(ContrastSegment(pPosition));
  for (float& entry : table) entry = static_cast<float>(To16Bits(entry)) / 65535.0f;
  return table;
}

tList<sHexcone> HueTable() {
  const tList<float> flat = CurveTable(kFlatHueCurve);
  tList<sHexcone> table;
  for (int i = 0; i <= 65535; ++i) {
    const int hue = (To16Bits(flat[i]) + i + 32769) % 65536;
    table.push_back(HexconeColor(hue, 1.0f - 2.0f * flat[i]));
  }
  return table;
}

}  // namespace Reference
