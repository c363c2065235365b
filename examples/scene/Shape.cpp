#include "examples/scene/Shape.h"

namespace Scene {
namespace {

constexpr float kNear = 1.0e-4f;
constexpr sVec3 kFar = {1.0e30f, 1.0e30f, 1.0e30f};

/// The ray in the unit shape's coordinates; its direction is not of unit length, so distances stay.
sRay ToLocal(const sShape& pShape, const sRay& pRay) {
  const sVec3 o = pRay.fOrigin - pShape.fCentre;
  const sVec3 d = pRay.fDirection;
  return {{Dot(pShape.fRows[0], o), Dot(pShape.fRows[1], o), Dot(pShape.fRows[2], o)},
          {Dot(pShape.fRows[0], d), Dot(pShape.fRows[1], d), Dot(pShape.fRows[2], d)}};
}

struct sLocalHit {
  float fDistance;
  sVec3 fNormal;
};

void MeetBox(const sRay& pRay, sLocalHit& pHit) {
  float enter = -1.0e30f;
  float leave = 1.0e30f;
  int enterAxis = 0;
  int leaveAxis = 0;
  for (int i = 0; i < 3; ++i) {
    const float inverse = 1.0f / (std::fabs(pRay.fDirection[i]) > 1.0e-12f ? pRay.fDirection[i] : 1.0e-12f);
    const float a = (-1.0f - pRay.fOrigin[i]) * inverse;
    const float b = (1.0f - pRay.fOrigin[i]) * inverse;
    if (std::min(a, b) > enter) enter = std::min(a, b), enterAxis = i;
    if (std::max(a, b) < leave) leave = std::max(a, b), leaveAxis = i;
  }
  const bool outside = enter > kNear;
  const float distance = outside ? enter : leave;
  if (enter > leave || distance <= kNear || distance >= pHit.fDistance) return;
  const int axis = outside ? enterAxis : leaveAxis;
  pHit = {distance, {}};
  pHit.fNormal[axis] = pRay.fDirection[axis] > 0.0f ? -1.0f : 1.0f;
}

void MeetBall(const sRay& pRay, sLocalHit& pHit) {
  const float a = Dot(pRay.fDirection, pRay.fDirection);
  const float b = Dot(pRay.fOrigin, pRay.fDirection);
  const float c = Dot(pRay.fOrigin, pRay.fOrigin) - 1.0f;
  const float root = b * b - a * c;
  if (root < 0.0f) return;
  const float half = std::sqrt(root);
  const float distance = -b - half > kNear * a ? (-b - half) / a : (-b + half) / a;
  if (distance <= kNear || distance >= pHit.fDistance) return;
  pHit = {distance, pRay.fOrigin + pRay.fDirection * distance};
}

void MeetMantle(const sRay& pRay, float pTop, sLocalHit& pHit) {
  const float slope = pTop - 1.0f;
  const sVec3 o = pRay.fOrigin;
  const sVec3 d = pRay.fDirection;
  const float radius = 1.0f + slope * o.fY;
  const float grow = slope * d.fY;
  const float a = d.fX * d.fX + d.fZ * d.fZ - grow * grow;
  const float b = o.fX * d.fX + o.fZ * d.fZ - radius * grow;
  const float root = b * b - a * (o.fX * o.fX + o.fZ * o.fZ - radius * radius);
  if (root < 0.0f || std::fabs(a) < 1.0e-12f) return;
  const float half = std::sqrt(root);
  for (const float distance : {(-b - half) / a, (-b + half) / a}) {
    const float y = o.fY + d.fY * distance;
    if (distance <= kNear || distance >= pHit.fDistance || y < 0.0f || y > 1.0f) continue;
    pHit = {distance, {o.fX + d.fX * distance, -slope * (1.0f + slope * y), o.fZ + d.fZ * distance}};
  }
}

void MeetLids(const sRay& pRay, float pTop, sLocalHit& pHit) {
  if (std::fabs(pRay.fDirection.fY) < 1.0e-12f) return;
  for (const float lid : {0.0f, 1.0f}) {
    const float distance = (lid - pRay.fOrigin.fY) / pRay.fDirection.fY;
    const sVec3 at = pRay.fOrigin + pRay.fDirection * distance;
    const float radius = lid > 0.5f ? pTop : 1.0f;
    if (distance <= kNear || distance >= pHit.fDistance || at.fX * at.fX + at.fZ * at.fZ > radius * radius)
      continue;
    pHit = {distance, {0.0f, lid > 0.5f ? 1.0f : -1.0f, 0.0f}};
  }
}

/// Shortens pHit where the ray meets pShape nearer; true if it did.
bool Meet(const sShape& pShape, const sRay& pLocal, sLocalHit& pHit) {
  const float before = pHit.fDistance;
  switch (pShape.fKind) {
    case eShape::Box:
      MeetBox(pLocal, pHit);
      break;
    case eShape::Ball:
      MeetBall(pLocal, pHit);
      break;
    case eShape::Cone:
      MeetLids(pLocal, pShape.fTop, pHit);
      [[fallthrough]];
    case eShape::Tube:
      MeetMantle(pLocal, pShape.fTop, pHit);
      break;
  }
  return pHit.fDistance < before;
}

}  // namespace

void sShape::Place(sVec3 pCentre, const sVec3 (&pAxes)[3]) {
  fCentre = pCentre;
  const bool isCone = fKind == eShape::Cone || fKind == eShape::Tube;
  const float wide = isCone ? std::max(1.0f, fTop) : 1.0f;
  sVec3 reach;
  for (int i = 0; i < 3; ++i) {
    fRows[i] = pAxes[i] * (1.0f / Dot(pAxes[i], pAxes[i]));
    const float share = !isCone ? 1.0f : i == 1 ? 0.5f : wide;
    for (int j = 0; j < 3; ++j) reach[j] += std::fabs(pAxes[i][j]) * share;
  }
  const sVec3 middle = isCone ? pCentre + pAxes[1] * 0.5f : pCentre;
  fLow = middle - reach;
  fHigh = middle + reach;
}

cShapeTree::cShapeTree(std::vector<sShape>& pShapes) : fShapes(pShapes) {
  fNodes.reserve(2 * pShapes.size());
  Build(0, static_cast<int>(pShapes.size()));
}

void cShapeTree::Build(int pFirst, int pCount) {
  sNode node{kFar, kFar * -1.0f, pFirst, pCount, 0};
  for (int i = pFirst; i < pFirst + pCount; ++i) {
    node.fLow = Min(node.fLow, fShapes[static_cast<std::size_t>(i)].fLow);
    node.fHigh = Max(node.fHigh, fShapes[static_cast<std::size_t>(i)].fHigh);
  }
  const std::size_t self = fNodes.size();
  fNodes.push_back(node);
  if (pCount == 1) return;
  int axis = 0;
  const int lower = BestSplit(pFirst, pCount, axis);
  SortAlong(pFirst, pCount, axis);
  Build(pFirst, lower);
  fNodes[self].fFirst = static_cast<int>(fNodes.size());
  fNodes[self].fCount = 0;
  fNodes[self].fAxis = axis;
  Build(pFirst + lower, pCount - lower);
}

void cShapeTree::SortAlong(int pFirst, int pCount, int pAxis) {
  const auto first = fShapes.begin() + pFirst;
  std::stable_sort(first, first + pCount, [pAxis](const sShape& pA, const sShape& pB) {
    return pA.fLow[pAxis] + pA.fHigh[pAxis] < pB.fLow[pAxis] + pB.fHigh[pAxis];
  });
}

/// How many shapes to put below the cut, and along which axis: the cut whose halves have the least surface,
/// and so the least chance that a ray meets them, weighted by their shapes.
int cShapeTree::BestSplit(int pFirst, int pCount, int& pAxis) {
  float best = 1.0e30f;
  int lower = pCount / 2;
  std::vector<float> below(static_cast<std::size_t>(pCount));
  for (int axis = 0; axis < 3; ++axis) {
    SortAlong(pFirst, pCount, axis);
    sVec3 low = kFar;
    sVec3 high = kFar * -1.0f;
    const auto grow = [&](int pIndex) {
      low = Min(low, fShapes[static_cast<std::size_t>(pFirst + pIndex)].fLow);
      high = Max(high, fShapes[static_cast<std::size_t>(pFirst + pIndex)].fHigh);
      const sVec3 size = high - low;
      return size.fX * size.fY + size.fY * size.fZ + size.fZ * size.fX;
    };
    for (int i = 0; i < pCount - 1; ++i)
      below[static_cast<std::size_t>(i + 1)] = grow(i) * static_cast<float>(i + 1);
    low = kFar;
    high = kFar * -1.0f;
    for (int i = pCount - 1; i > 0; --i) {
      const float cost = below[static_cast<std::size_t>(i)] + grow(i) * static_cast<float>(pCount - i);
      if (cost < best) best = cost, lower = i, pAxis = axis;
    }
  }
  return lower;
}

/// Calls pVisit for each shape whose box the ray may meet before pLimit, until it returns true.
template <class tVisit>
void cShapeTree::Walk(const sRay& pRay, float& pLimit, const tVisit& pVisit) const {
  sVec3 inverse;
  for (int i = 0; i < 3; ++i) {
    inverse[i] = 1.0f / (std::fabs(pRay.fDirection[i]) > 1.0e-12f ? pRay.fDirection[i] : 1.0e-12f);
  }
  const sVec3 start = pRay.fOrigin * inverse;
  int stack[64];
  int depth = 0;
  stack[depth++] = 0;
  while (depth > 0) {
    const int index = stack[--depth];
    const sNode& node = fNodes[static_cast<std::size_t>(index)];
    const sVec3 a = node.fLow * inverse - start;
    const sVec3 b = node.fHigh * inverse - start;
    const sVec3 near = Min(a, b);
    const sVec3 far = Max(a, b);
    const float enter = std::max(std::max(near.fX, near.fY), std::max(near.fZ, 0.0f));
    const float leave = std::min(std::min(far.fX, far.fY), std::min(far.fZ, pLimit));
    if (enter > leave) continue;
    for (int i = 0; i < node.fCount; ++i) {
      if (pVisit(fShapes[static_cast<std::size_t>(node.fFirst + i)])) return;
    }
    if (node.fCount > 0) continue;
    // The nearer child comes off the stack first.
    const bool lowerFirst = pRay.fDirection[node.fAxis] > 0.0f;
    stack[depth++] = lowerFirst ? node.fFirst : index + 1;
    stack[depth++] = lowerFirst ? index + 1 : node.fFirst;
  }
}

bool cShapeTree::Find(const sRay& pRay, sHit& pHit) const {
  sLocalHit best{pHit.fDistance, {}};
  const sShape* found = nullptr;
  Walk(pRay, best.fDistance, [&](const sShape& pShape) {
    if (Meet(pShape, ToLocal(pShape, pRay), best)) found = &pShape;
    return false;
  });
  if (found == nullptr) return false;
  const sVec3(&rows)[3] = found->fRows;
  const sVec3 n = best.fNormal;
  const sVec3 normal = Normalised(rows[0] * n.fX + rows[1] * n.fY + rows[2] * n.fZ);
  const sRay local = ToLocal(*found, pRay);
  pHit.fDistance = best.fDistance;
  pHit.fShape = found;
  pHit.fPosition = pRay.fOrigin + pRay.fDirection * best.fDistance;
  pHit.fLocal = local.fOrigin + local.fDirection * best.fDistance;
  pHit.fNormal = Dot(normal, pRay.fDirection) > 0.0f ? normal * -1.0f : normal;
  return true;
}

bool cShapeTree::IsBlocked(const sRay& pRay, float pDistance, int pFirstSolid) const {
  bool blocked = false;
  Walk(pRay, pDistance, [&](const sShape& pShape) {
    sLocalHit hit{pDistance, {}};
    blocked = pShape.fMaterial >= pFirstSolid && Meet(pShape, ToLocal(pShape, pRay), hit);
    return blocked;
  });
  return blocked;
}

}  // namespace Scene
