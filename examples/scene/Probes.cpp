#include "examples/scene/Probes.h"

#include "examples/scene/Material.h"
#include "examples/scene/Room.h"
#include "examples/scene/Sky.h"

namespace Scene {
namespace {

constexpr int kProbes[3] = {16, 8, 18};
constexpr int kRays = 64;     // a probe
constexpr int kBounces = 3;   // of light between surfaces
constexpr int kSunSpots = 6;  // along either edge of a window

std::size_t ProbeIndex(int pX, int pY, int pZ) {
  return static_cast<std::size_t>((pZ * kProbes[1] + pY) * kProbes[0] + pX);
}

}  // namespace

sVec3 AnyDirection(cSampler& pSampler) {
  const float turn = 2.0f * kPi * pSampler.Next();
  const float y = 2.0f * pSampler.Next() - 1.0f;
  const float radius = std::sqrt(std::max(0.0f, 1.0f - y * y));
  return {radius * std::cos(turn), y, radius * std::sin(turn)};
}

void cProbes::sSides::Add(sVec3 pTowards, sVec3 pLight) {
  for (int i = 0; i < 3; ++i)
    fFacing[2 * i + (pTowards[i] < 0.0f ? 1 : 0)] += pLight * std::fabs(pTowards[i]);
}

cProbes::cProbes(const cShapeTree& pShapes) : fProbes(ProbeIndex(0, 0, kProbes[2])) {
  FindSunSpots(pShapes);
  for (int i = 0; i < kBounces; ++i) MeasureAll(pShapes);
}

sVec3 cProbes::Irradiance(sVec3 pPosition, sVec3 pNormal, bool pAll) const {
  int low[3];
  float part[3];
  for (int i = 0; i < 3; ++i) {
    const float share = (pPosition[i] - kRoomLow[i]) / (kRoomHigh[i] - kRoomLow[i]);
    const auto count = static_cast<float>(kProbes[i]);
    const float place = std::min(std::max(share * count - 0.5f, 0.0f), count - 1.001f);
    low[i] = static_cast<int>(place);
    part[i] = place - static_cast<float>(low[i]);
  }
  sVec3 sum;
  for (int corner = 0; corner < 8; ++corner) {
    const int at[3] = {corner & 1, corner >> 1 & 1, corner >> 2};
    float weight = 1.0f;
    for (int i = 0; i < 3; ++i) weight *= at[i] == 1 ? part[i] : 1.0f - part[i];
    const sProbe& probe = fProbes[ProbeIndex(low[0] + at[0], low[1] + at[1], low[2] + at[2])];
    const sSides& sides = pAll ? probe.fAll : probe.fReflected;
    for (int i = 0; i < 3; ++i) {
      sum += sides.fFacing[2 * i + (pNormal[i] < 0.0f ? 1 : 0)] * (weight * pNormal[i] * pNormal[i]);
    }
  }
  // Beyond the doorway there are no probes: light dies away with the distance from it.
  return sum * std::exp(-7.0f * std::max(0.0f, pPosition.fX - kRoomHigh.fX));
}

/// Follows sunlight from a grid of points in each window to where it falls. Rays of the probes would meet the
/// small, very bright spots too seldom and unevenly.
void cProbes::FindSunSpots(const cShapeTree& pShapes) {
  for (const sWindow& window : kWindows) {
    const float facing =
        std::fabs(Dot(Cross(window.fEdge1, window.fEdge2), kToSun)) / (kSunSpots * kSunSpots);
    for (int i = 0; i < kSunSpots * kSunSpots; ++i) {
      const float u = (static_cast<float>(i % kSunSpots) + 0.5f) / kSunSpots;
      const float v = (static_cast<float>(i / kSunSpots) + 0.5f) / kSunSpots;
      sHit hit;
      if (!pShapes.Find({window.fCorner + window.fEdge1 * u + window.fEdge2 * v, kToSun * -1.0f}, hit))
        continue;
      const sVec3 albedo = SurfaceAt(hit).fAlbedo;
      fSunSpots.push_back({hit.fPosition, hit.fNormal, kSunIrradiance * albedo * (facing / kPi)});
    }
  }
}

void cProbes::AddSunSpots(const cShapeTree& pShapes, sVec3 pPosition, sSides& pTo) const {
  for (const sSunSpot& spot : fSunSpots) {
    const sVec3 towards = spot.fPosition + spot.fNormal * 0.01f - pPosition;
    const float squared = std::max(Dot(towards, towards), 0.12f);
    const sVec3 direction = Normalised(towards);
    const float facing = -Dot(direction, spot.fNormal);
    if (facing <= 0.0f || pShapes.IsBlocked({pPosition, towards}, 1.0f, kFirstSolid)) continue;
    pTo.Add(direction, spot.fIntensity * (facing / squared));
  }
}

cProbes::sProbe cProbes::Measure(const cShapeTree& pShapes, sVec3 pPosition, std::uint32_t pId) const {
  sProbe probe;
  AddSunSpots(pShapes, pPosition, probe.fReflected);
  sSides direct;
  for (int ray = 0; ray < kRays; ++ray) {
    cSampler sampler(0, 0, ray, kRays, pId);
    const sVec3 direction = AnyDirection(sampler);
    const float share = 4.0f * kPi / kRays;
    sHit hit;
    if (!pShapes.Find({pPosition, direction}, hit)) {
      direct.Add(direction, kWindowRadiance * share);
      continue;
    }
    if (hit.fShape->fMaterial == Bulb) continue;
    const sSurface surface = SurfaceAt(hit);
    const sVec3 light = Irradiance(hit.fPosition + hit.fNormal * 0.12f, hit.fNormal, true);
    probe.fReflected.Add(direction, (surface.fEmission + surface.fAlbedo * light * (1.0f / kPi)) * share);
  }
  const sVec3 towards = kBulb - pPosition;
  if (!pShapes.IsBlocked({pPosition, towards}, 1.0f, kFirstSolid)) {
    direct.Add(Normalised(towards), kBulbIntensity * (1.0f / std::max(Dot(towards, towards), 0.12f)));
  }
  for (int i = 0; i < 6; ++i) probe.fAll.fFacing[i] = probe.fReflected.fFacing[i] + direct.fFacing[i];
  return probe;
}

void cProbes::MeasureAll(const cShapeTree& pShapes) {
  std::vector<sProbe> probes(fProbes.size());
  const sVec3 size = kRoomHigh - kRoomLow;
  for (int z = 0; z < kProbes[2]; ++z) {
    for (int y = 0; y < kProbes[1]; ++y) {
      for (int x = 0; x < kProbes[0]; ++x) {
        const sVec3 part = {(static_cast<float>(x) + 0.5f) / static_cast<float>(kProbes[0]),
                            (static_cast<float>(y) + 0.5f) / static_cast<float>(kProbes[1]),
                            (static_cast<float>(z) + 0.5f) / static_cast<float>(kProbes[2])};
        const std::size_t index = ProbeIndex(x, y, z);
        probes[index] = Measure(pShapes, kRoomLow + size * part, static_cast<std::uint32_t>(index));
      }
    }
  }
  fProbes = std::move(probes);
}

}  // namespace Scene
