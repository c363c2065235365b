// Hermite curves of one segment, as tables: the contrast curve and the flat hue curves.
#include <cmath>

#include "ReferenceParts.h"

namespace Reference {
namespace {

/// One segment: both points, the tangent that leaves the first and the one that enters the second.
struct sSegment {
  float fPoint0[2], fPoint1[2], fTangent0[2], fTangent1[2];
};

/// The contrast curve's frames; all run from (0, 0) to (1, 1).
constexpr sSegment kKeyFrames[5] = {
    {{0.0f, 0.0f}, {1.0f, 1.0f}, {0.308f, 1.09f}, {1.752f, 2.714f}},
    {{0.0f, 0.0f}, {1.0f, 1.0f}, {0.449f, 0.769f}, {2.173f, 2.634f}},
    {{0.0f, 0.0f}, {1.0f, 1.0f}, {0.0f, 0.0f}, {0.0f, 0.0f}},
    {{0.0f, 0.0f}, {1.0f, 1.0f}, {0.5f, 0.0f}, {1.25f, 0.0f}},
    {{0.0f, 0.0f}, {1.0f, 1.0f}, {1.0f, 0.0f}, {2.22f, 0.0f}},
};

/// A hue curve without effect: one half everywhere, with the tangents that its mode prescribes.
constexpr sSegment kFlatHueCurve = {{0.0f, 0.5f}, {1.0f, 0.5f}, {0.2f, 0.0f}, {0.2f, 0.0f}};

float Clamp01(float pValue) {
  return pValue < 0.0f ? 0.0f : pValue > 1.0f ? 1.0f : pValue;
}

float Horner(const sSegment& pSegment, int pAxis, float s) {
  const float p0 = pSegment.fPoint0[pAxis], p1 = pSegment.fPoint1[pAxis];
  const float t0 = pSegment.fTangent0[pAxis], t1 = pSegment.fTangent1[pAxis];
  const float a = 2.0f * p0 - 2.0f * p1 + t0 + t1;
  const float b = 3.0f * p1 - 3.0f * p0 - 2.0f * t0 - t1;
  return ((a * s + b) * s + t0) * s + p0;
}

tList<float> CurveTable(const sSegment& pSegment) {
  tList<float> table(65536, 0.0f);
  int lastIndex = Index16(pSegment.fPoint0[0]);
  float lastY = pSegment.fPoint0[1];
  for (int j = 1; j <= 100; ++j) {
    const float s = static_cast<float>(j) / 100.0f;
    const float x = j == 100 ? pSegment.fPoint1[0] : Horner(pSegment, 0, s);
    const float y = j == 100 ? pSegment.fPoint1[1] : Horner(pSegment, 1, s);
    const int index = Index16(x);
    if (index <= lastIndex) continue;  // the start point stays, so that short steps add up
    for (int k = lastIndex; k < index; ++k) {
      const float u = static_cast<float>(k - lastIndex) / static_cast<float>(index - lastIndex);
      table[k] = Clamp01((1.0f - u) * lastY + u * y);
    }
    lastIndex = index;
    lastY = y;
  }
  for (int k = 0; k <= Index16(pSegment.fPoint0[0]); ++k) table[k] = Clamp01(pSegment.fPoint0[1]);
  for (int k = Index16(pSegment.fPoint1[0]); k <= 65535; ++k) table[k] = Clamp01(pSegment.fPoint1[1]);
  return table;
}

int To16Bits(float pEntry) {
  return static_cast<int>(pEntry * 65535.0f);
}

void Blend(const float (&pA)[2], const float (&pB)[2], float pWeight, float (&pResult)[2]) {
  for (int axis = 0; axis < 2; ++axis) pResult[axis] = (1.0f - pWeight) * pA[axis] + pWeight * pB[axis];
}

sSegment ContrastSegment(float pPosition) {
  int frame = 0;
  float weight = 0.0f;
  if (pPosition >= 1.0f) {
    frame = 3;
    weight = 1.0f;
  } else if (pPosition >= 0.0f) {
    const float position = 4.0f * pPosition;
    frame = static_cast<int>(position);
    weight = position - static_cast<float>(frame);
  }
  const sSegment& a = kKeyFrames[frame];
  const sSegment& b = kKeyFrames[frame + 1];
  sSegment segment{};
  Blend(a.fPoint0, b.fPoint0, weight, segment.fPoint0);
  Blend(a.fPoint1, b.fPoint1, weight, segment.fPoint1);
  Blend(a.fTangent0, b.fTangent0, weight, segment.fTangent0);
  Blend(a.fTangent1, b.fTangent1, weight, segment.fTangent1);
  return segment;
}

sHexcone HexconeColor(int pHue, float m) {
  const float p = static_cast<float>(pHue) / 65535.0f * 6.0f;
  const float u = p - std::floor(p);
  const float rise = m + (1.0f - m) * u;
  const float fall = 1.0f + (m - 1.0f) * u;
  switch (static_cast<int>(std::floor(p)) % 6) {
    case 0:
      return {{1.0f, rise, m}};
    case 1:
      return {{fall, 1.0f, m}};
    case 2:
      return {{m, 1.0f, rise}};
    case 3:
      return {{m, fall, 1.0f}};
    case 4:
      return {{rise, m, 1.0f}};
    default:
      return {{1.0f, m, fall}};
  }
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
