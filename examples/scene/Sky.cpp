#include "examples/scene/Sky.h"

#include "examples/scene/Noise.h"

namespace Scene {
namespace {

constexpr sVec3 kHaze = {9.5f, 11.5f, 14.0f};

/// A direction as heading (a point of the unit circle, so that noise over it has no seam) and elevation
/// (height over distance).
struct sHeading {
  float fX;
  float fZ;
  float fElevation;

  explicit sHeading(sVec3 pDirection) {
    const float level = std::max(std::hypot(pDirection.fX, pDirection.fZ), 1.0e-4f);
    fX = pDirection.fX / level;
    fZ = pDirection.fZ / level;
    fElevation = pDirection.fY / level;
  }
};

sVec3 Clouds(sVec3 pDirection, sVec3 pBehind) {
  const float scale = 2.4f / (pDirection.fY + 0.10f);
  const float x = pDirection.fX * scale;
  const float z = pDirection.fZ * scale + 3.0f;
  const float density = Fbm2(x, z, 6, 11);
  const float cover = SmoothStep(0.47f, 0.66f, density);
  if (cover <= 0.0f) return pBehind;
  // Thick parts are grey, parts that face the sun (thinner towards it) are white.
  const float towardsSun = Fbm2(x + kToSun.fX * 0.25f, z + kToSun.fZ * 0.25f, 4, 11);
  const float lit = Clamp01(0.62f + 3.4f * (density - towardsSun) - 0.9f * (density - 0.55f));
  const sVec3 cloud = Mix(sVec3{8.0f, 9.0f, 11.0f}, sVec3{46.0f, 43.0f, 38.0f}, lit * lit);
  const float far = SmoothStep(0.02f, 0.16f, pDirection.fY);
  return Mix(pBehind, Mix(kHaze * 1.3f, cloud, far), cover * (0.35f + 0.6f * far));
}

sVec3 SkyLight(sVec3 pDirection, bool pWithSun) {
  const float height = std::max(pDirection.fY, 0.0f);
  const sVec3 zenith = {1.7f, 4.2f, 10.5f};
  sVec3 sky = Mix(kHaze * 1.15f, zenith, 1.0f - std::exp(-3.6f * height));
  const float towards = std::max(Dot(pDirection, kToSun), 0.0f);
  const float glow = towards * towards * towards * towards;
  sky += sVec3{9.0f, 7.5f, 5.5f} * (glow * glow);
  sky = Clouds(sVec3{pDirection.fX, height, pDirection.fZ}, sky);
  sky += sVec3{120.0f, 105.0f, 80.0f} * std::pow(towards, 600.0f);
  if (pWithSun && towards > 0.99996f) sky += sVec3{60000.0f, 54000.0f, 43000.0f};
  return sky;
}

struct sRidge {
  float fBase;    ///< elevation of the ridge
  float fHeight;  ///< how far it rises and falls
  float fDetail;  ///< bumps per radian
  float fHaze;    ///< how much of it the air hides
  sVec3 fLight;   ///< colour in the sun
  sVec3 fShade;
};

// From near to far.
constexpr sRidge kRidges[] = {
    {-0.052f, 0.030f, 3.0f, 0.02f, {5.2f, 6.0f, 1.5f}, {2.0f, 2.9f, 0.7f}},
    {-0.018f, 0.042f, 4.2f, 0.10f, {6.4f, 6.2f, 2.0f}, {1.1f, 1.9f, 0.6f}},
    {0.006f, 0.052f, 5.5f, 0.30f, {4.6f, 5.6f, 2.2f}, {0.9f, 1.7f, 0.9f}},
    {0.030f, 0.075f, 6.0f, 0.62f, {4.5f, 5.0f, 4.2f}, {1.6f, 2.4f, 3.0f}},
    {0.045f, 0.115f, 8.0f, 0.82f, {7.0f, 7.0f, 7.6f}, {2.0f, 3.0f, 4.6f}},
};

float RidgeTop(const sRidge& pRidge, const sHeading& pAt, std::uint32_t pSeed) {
  const float x = pAt.fX * pRidge.fDetail + 20.0f;
  const float z = pAt.fZ * pRidge.fDetail + 20.0f;
  return pRidge.fBase + pRidge.fHeight * (Fbm2(x, z, 6, 100 + 10 * pSeed) - 0.42f);
}

/// The face of a hill, pBelow (elevation) under its ridge: fields, hedges and the light on its folds.
sVec3 HillSide(const sRidge& pRidge, const sHeading& pAt, float pBelow, std::uint32_t pSeed) {
  const float around = std::atan2(pAt.fX, -pAt.fZ) * (pRidge.fHaze > 0.5f ? 24.0f : 34.0f);
  const float down = std::log(pBelow + 0.004f) * 3.2f;
  const float fold = Fbm2(around * 0.45f + down * 0.6f, down * 0.8f, 4, 300 + pSeed);
  const float fold2 = Fbm2(around * 0.45f + down * 0.6f - 0.22f, down * 0.8f, 4, 300 + pSeed);
  const float lit = Clamp01(0.55f + 5.0f * (fold - fold2));
  sVec3 colour = Mix(pRidge.fShade, pRidge.fLight, lit);
  if (pRidge.fHaze < 0.5f) {
    const float cellX = around * 0.55f + 0.8f * Noise2(down * 1.3f, around * 0.3f, 320);
    const float cellY = down * 0.9f + 0.5f * Noise2(around * 0.7f, down, 321);
    const float field = Hash01(Cell(cellX), Cell(cellY), 330 + pSeed);
    const sVec3 tint =
        field < 0.25f ? sVec3{1.45f, 1.15f, 0.7f} : sVec3{0.65f + field * 0.6f, 0.8f + field * 0.35f, 0.8f};
    colour = colour * tint;
    const float edgeX = std::fabs(cellX - Floor(cellX) - 0.5f);
    const float edgeY = std::fabs(cellY - Floor(cellY) - 0.5f);
    const float wood = Fbm2(around * 5.0f, down * 6.0f, 4, 340 + pSeed) +
                       0.30f * SmoothStep(0.42f, 0.5f, std::max(edgeX, edgeY));
    colour = Mix(colour, pRidge.fShade * (0.25f + 0.9f * lit), SmoothStep(0.56f, 0.68f, wood));
  }
  colour = colour * (0.75f + 0.5f * Fbm2(around * 14.0f, down * 16.0f, 3, 350 + pSeed));
  return Mix(colour, kHaze, pRidge.fHaze);
}

/// A row of round trees on the near meadow; false where there is a gap.
bool Trees(const sHeading& pAt, sVec3& pColour) {
  constexpr int kCells = 150;
  const float around = (std::atan2(pAt.fX, -pAt.fZ) / (2.0f * kPi) + 0.5f) * kCells;
  bool found = false;
  float nearest = 1.0f;
  for (int side = -1; side <= 1; ++side) {
    const int cell = (static_cast<int>(around) + side + kCells) % kCells;
    const auto id = static_cast<std::uint32_t>(cell);
    if (Hash01(id, 401) < 0.42f) continue;
    const float size = 0.013f + 0.021f * Hash01(id, 402);
    float offset = around - (static_cast<float>(cell) + 0.25f + 0.5f * Hash01(id, 403));
    offset -= kCells * std::round(offset / kCells);
    const float x = offset * (2.0f * kPi / kCells) / size;
    const float y = (pAt.fElevation + 0.058f - size * 1.25f) / (size * (1.05f + 0.5f * Hash01(id, 404)));
    const float leaves = Fbm2(x * 3.5f + static_cast<float>(cell) * 9.0f, y * 3.5f, 4, 410);
    const float radius = std::sqrt(x * x + y * y) + 0.75f * (leaves - 0.5f);
    if (radius > 0.9f || radius >= nearest) continue;
    nearest = radius;
    found = true;
    const float fine = Fbm2(x * 11.0f, y * 11.0f + static_cast<float>(cell), 3, 411);
    const float lit = Clamp01(0.42f - 0.45f * x + 0.5f * y + 1.5f * (leaves - 0.5f)) * (0.4f + 1.2f * fine);
    const sVec3 light = Mix(sVec3{3.6f, 4.6f, 1.0f}, sVec3{5.6f, 4.4f, 0.9f}, Hash01(id, 405));
    pColour = Mix(sVec3{0.16f, 0.26f, 0.10f}, light, lit);
  }
  return found;
}

}  // namespace

sVec3 Outside(sVec3 pDirection, bool pWithSun) {
  const sHeading at(pDirection);
  sVec3 colour;
  if (at.fElevation < 0.05f && Trees(at, colour)) return colour;
  std::uint32_t seed = 0;
  for (const sRidge& ridge : kRidges) {
    const float below = RidgeTop(ridge, at, seed) - at.fElevation;
    if (below > 0.0f) return HillSide(ridge, at, below, seed);
    ++seed;
  }
  return SkyLight(pDirection, pWithSun);
}

}  // namespace Scene
