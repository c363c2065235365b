#include "examples/scene/Material.h"

#include "examples/scene/Noise.h"
#include "examples/scene/Sky.h"

namespace Scene {
namespace {

float Fract(float pV) {
  return pV - Floor(pV);
}

/// Coordinates on a wall, floor or ceiling in metres.
struct sPlanePoint {
  float fU;
  float fV;
};

sPlanePoint OnPlane(const sHit& pHit) {
  const sVec3 n = pHit.fNormal;
  const sVec3 p = pHit.fPosition;
  if (std::fabs(n.fY) > 0.7f) return {p.fX, p.fZ};
  return std::fabs(n.fX) > 0.7f ? sPlanePoint{p.fZ, p.fY} : sPlanePoint{p.fX, p.fY};
}

/// Tilts pNormal against the slope of a relief (height change per metre along the plane's two directions).
sVec3 Tilted(sVec3 pNormal, float pSlopeU, float pSlopeV) {
  const bool level = std::fabs(pNormal.fY) > 0.7f;
  const sVec3 u = std::fabs(pNormal.fX) > 0.7f ? sVec3{0.0f, 0.0f, 1.0f} : sVec3{1.0f, 0.0f, 0.0f};
  const sVec3 v = level ? sVec3{0.0f, 0.0f, 1.0f} : sVec3{0.0f, 1.0f, 0.0f};
  return Normalised(pNormal - u * pSlopeU - v * pSlopeV);
}

/// Roughens a plane with a noise relief of pDepth and pPerMetre bumps; returns the noise for colouring.
float Roughen(sPlanePoint pAt, float pPerMetre, float pDepth, std::uint32_t pSeed, sSurface& pSurface) {
  const float u = pAt.fU * pPerMetre;
  const float v = pAt.fV * pPerMetre;
  const float here = Fbm2(u, v, 3, pSeed);
  const float slope = pDepth * pPerMetre * 10.0f;
  pSurface.fNormal = Tilted(pSurface.fNormal, (Fbm2(u + 0.1f, v, 3, pSeed) - here) * slope,
                            (Fbm2(u, v + 0.1f, 3, pSeed) - here) * slope);
  return here;
}

/// Streaks along pV with a slow wave, as wood has them.
float Grain(float pU, float pV, std::uint32_t pSeed) {
  const float wave = Fbm2(pU * 6.0f, pV * 0.9f, 3, pSeed);
  const float rings = 0.5f + 0.5f * std::sin(90.0f * (pU + 0.16f * wave));
  return 0.5f * rings * wave + 0.5f * Fbm2(pU * 160.0f, pV * 5.0f, 3, pSeed + 7);
}

void PaintFloor(const sHit& pHit, sSurface& pSurface) {
  const float board = pHit.fPosition.fX / 0.135f;
  const float along = pHit.fPosition.fZ / 1.7f + Hash01(Cell(board), 31) * 7.0f;
  const std::uint32_t id = Hash(Cell(board), Cell(along), 32);
  const float grain =
      Grain(pHit.fPosition.fX + Hash01(id, 1) * 9.0f, pHit.fPosition.fZ + Hash01(id, 2) * 9.0f, id & 63);
  const sVec3 colour = Mix(sVec3{0.30f, 0.145f, 0.058f}, sVec3{0.54f, 0.31f, 0.145f}, Hash01(id, 3));
  const float joint = std::min(std::min(Fract(board), 1.0f - Fract(board)) * 0.135f,
                               std::min(Fract(along), 1.0f - Fract(along)) * 1.7f);
  const float open = SmoothStep(0.0005f, 0.0026f, joint);
  pSurface.fAlbedo = colour * ((0.55f + 0.8f * grain) * (0.2f + 0.8f * open));
  pSurface.fNormal = Tilted(pSurface.fNormal, 0.014f * (Hash01(id, 4) - 0.5f) + 0.02f * (grain - 0.5f), 0.0f);
  pSurface.fMirror = 0.045f * open;
  pSurface.fRoughness = 0.065f;
}

void PaintBrick(const sHit& pHit, sSurface& pSurface) {
  const sPlanePoint at = OnPlane(pHit);
  const float wobble = 0.006f * (Noise2(at.fU * 25.0f, at.fV * 25.0f, 41) - 0.5f);
  const float course = (at.fV + wobble) / 0.078f;
  const float row = Floor(course);
  const float along = (at.fU + wobble) / 0.235f + 0.5f * (row - 2.0f * Floor(row * 0.5f));
  const std::uint32_t id = Hash(Cell(along), Cell(course), 42);
  const float edge = std::min(std::min(Fract(course), 1.0f - Fract(course)) * 0.078f,
                              std::min(Fract(along), 1.0f - Fract(along)) * 0.235f);
  const float face = SmoothStep(0.0035f, 0.0085f, edge);
  const float rough = Roughen(at, 60.0f, 0.006f, 43, pSurface);
  const float burnt = Hash01(id, 1);
  sVec3 brick = Mix(sVec3{0.50f, 0.175f, 0.095f}, sVec3{0.30f, 0.105f, 0.075f}, burnt);
  if (Hash01(id, 2) > 0.88f) brick = {0.56f, 0.34f, 0.22f};
  brick = brick * (0.55f + 0.9f * rough);
  pSurface.fAlbedo = Mix(sVec3{0.42f, 0.39f, 0.35f} * (0.6f + 0.7f * rough), brick, face);
  if (face < 1.0f) {  // the joint's edge faces up or down, so that it catches light or lies in shadow
    const float lower = Fract(course) < 0.5f ? 1.0f : -1.0f;
    pSurface.fNormal = Tilted(pSurface.fNormal, 0.0f, 0.7f * lower * face * (1.0f - face) * 4.0f);
  }
}

void PaintWallpaper(const sHit& pHit, sSurface& pSurface) {
  const sPlanePoint at = OnPlane(pHit);
  const float rough = Roughen(at, 45.0f, 0.0011f, 51, pSurface);
  // Leaves that climb in a diamond lattice: the difference of two bent waves.
  const float u = at.fU / 0.23f;
  const float v = at.fV / 0.30f;
  const float stem = std::sin(kPi * (u + 0.28f * std::sin(2.0f * kPi * v))) *
                     std::sin(kPi * (u - 0.28f * std::sin(2.0f * kPi * v)));
  const float blossom = std::cos(2.0f * kPi * u) + std::cos(2.0f * kPi * v) +
                        0.35f * std::cos(6.0f * kPi * (u + v)) + 0.35f * std::cos(6.0f * kPi * (u - v));
  const float ornament =
      std::max(SmoothStep(0.06f, 0.02f, std::fabs(stem)), SmoothStep(0.85f, 1.05f, blossom));
  pSurface.fAlbedo = Mix(sVec3{0.115f, 0.205f, 0.175f}, sVec3{0.30f, 0.33f, 0.20f}, 0.75f * ornament) *
                     (0.8f + 0.4f * rough);
  if (at.fV < 0.16f) pSurface.fAlbedo = {0.62f, 0.59f, 0.52f};  // skirting board
}

void PaintPlaster(const sHit& pHit, sSurface& pSurface) {
  const sPlanePoint at = OnPlane(pHit);
  const float trowel = Roughen(at, 9.0f, 0.006f, 61, pSurface);
  const float stain = Fbm2(at.fU * 1.3f, at.fV * 1.3f, 5, 62);
  const float fine = Fbm2(at.fU * 70.0f, at.fV * 70.0f, 2, 63);
  pSurface.fAlbedo = Mix(sVec3{0.60f, 0.44f, 0.27f}, sVec3{0.74f, 0.62f, 0.44f}, stain) *
                     (0.72f + 0.28f * trowel + 0.22f * fine);
  if (at.fV < 0.16f) pSurface.fAlbedo = {0.62f, 0.59f, 0.52f};
}

void PaintRug(const sHit& pHit, sSurface& pSurface) {
  const float u = pHit.fLocal.fX;
  const float v = pHit.fLocal.fZ;
  const float border = std::max(std::fabs(u), std::fabs(v) * 1.0f);
  const float medallion = std::fabs(u) * 1.5f + std::fabs(v);
  const float teeth = std::fabs(Fract(u * 9.0f) - 0.5f) + std::fabs(Fract(v * 6.0f) - 0.5f);
  sVec3 colour = {0.46f, 0.035f, 0.030f};
  if (teeth < 0.24f) colour = {0.62f, 0.44f, 0.16f};
  if (medallion < 0.72f) colour = teeth < 0.30f ? sVec3{0.66f, 0.52f, 0.26f} : sVec3{0.030f, 0.065f, 0.21f};
  if (medallion < 0.30f) colour = teeth < 0.4f ? sVec3{0.50f, 0.05f, 0.04f} : sVec3{0.62f, 0.50f, 0.30f};
  if (border > 0.80f) colour = teeth < 0.34f ? sVec3{0.55f, 0.06f, 0.04f} : sVec3{0.035f, 0.06f, 0.17f};
  if (border > 0.95f || (border > 0.78f && border < 0.80f)) colour = {0.64f, 0.52f, 0.30f};
  const float pile = Fbm2(pHit.fPosition.fX * 260.0f, pHit.fPosition.fZ * 140.0f, 3, 71);
  pSurface.fAlbedo = colour * (0.35f + 1.2f * pile);
}

void PaintBook(const sHit& pHit, sSurface& pSurface) {
  const sVec3 local = pHit.fLocal;
  const bool isPaper = local.fY > 0.999f;
  const float band = std::fabs(std::fabs(local.fY) - (0.45f + 0.4f * Hash01(pHit.fShape->fSeed, 81)));
  const float title = std::fabs(local.fY - 0.25f);
  const bool letters = title < 0.13f && Noise2(local.fX * 2.0f, local.fY * 45.0f, pHit.fShape->fSeed) > 0.55f;
  pSurface.fAlbedo =
      pHit.fShape->fColour * (0.75f + 0.5f * Fbm2(local.fX * 3.0f, local.fY * 14.0f, 3, pHit.fShape->fSeed));
  pSurface.fMirror = 0.03f;
  pSurface.fRoughness = 0.25f;
  if (isPaper)
    pSurface.fAlbedo = {0.62f, 0.56f, 0.42f};
  else if (band < 0.02f || letters)
    pSurface.fAlbedo = {0.62f, 0.45f, 0.16f};
  // Spines are round.
  if (std::fabs(pHit.fNormal.fZ) > 0.7f)
    pSurface.fNormal = Normalised(pSurface.fNormal + sVec3{0.7f * local.fX, 0.0f, 0.0f});
}

/// A landscape in oil: the view outside at dusk, in a few broad strokes.
void PaintPicture(const sHit& pHit, sSurface& pSurface) {
  const sVec3 local = pHit.fLocal;
  const float u = std::fabs(pHit.fNormal.fX) > 0.7f ? local.fZ : local.fX;
  const float stroke = 0.10f * (Fbm2(u * 14.0f, local.fY * 9.0f, 2, 91 + pHit.fShape->fSeed) - 0.5f);
  const float turn = 0.8f * u + 2.2f + stroke + static_cast<float>(pHit.fShape->fSeed);
  const sVec3 view = Normalised({std::sin(turn), 0.26f * local.fY + 0.06f + stroke * 0.35f, -std::cos(turn)});
  const sVec3 light = Outside(view, false);
  const sVec3 dusk = light * sVec3{0.075f, 0.048f, 0.032f};
  pSurface.fAlbedo = Min(dusk, sVec3{0.75f, 0.72f, 0.66f}) * (0.8f + 4.0f * std::fabs(stroke));
  pSurface.fMirror = 0.03f;
  pSurface.fRoughness = 0.15f;
}

void PaintFruit(const sHit& pHit, sSurface& pSurface) {
  const sVec3 local = pHit.fLocal;
  const float pores = Noise2(local.fX * 26.0f + local.fZ * 9.0f, local.fY * 26.0f - local.fZ * 17.0f, 5);
  const float blush = Fbm2(local.fX * 1.5f + static_cast<float>(pHit.fShape->fSeed), local.fY * 1.5f, 3, 6);
  const sVec3 c = pHit.fShape->fColour;
  pSurface.fAlbedo =
      Mix(c * 0.7f, Min(c * sVec3{1.25f, 1.6f, 1.3f}, {0.9f, 0.9f, 0.9f}), blush) * (0.86f + 0.2f * pores);
  pSurface.fMirror = 0.035f;
  pSurface.fRoughness = 0.10f + 0.05f * pores;
}

void PaintCloth(const sHit& pHit, sSurface& pSurface) {
  const sPlanePoint at = OnPlane(pHit);
  const float weave = Fbm2(at.fU * 170.0f, at.fV * 170.0f, 2, 15);
  const float wear = Fbm2(at.fU * 5.0f, at.fV * 5.0f, 3, 16);
  pSurface.fAlbedo = pHit.fShape->fColour * (0.45f + 0.6f * weave + 0.5f * wear);
}

void PaintWood(const sHit& pHit, sSurface& pSurface) {
  const sVec3 p = pHit.fPosition;
  const sVec3 size = pHit.fShape->fHigh - pHit.fShape->fLow;
  const bool upright = size.fY > size.fX && size.fY > size.fZ;
  const float along = upright ? p.fY : size.fX > size.fZ ? p.fX : p.fZ;
  const float across = upright ? p.fX + p.fZ : size.fX > size.fZ ? p.fZ + p.fY : p.fX + p.fY;
  pSurface.fAlbedo = pHit.fShape->fColour * (0.55f + 0.9f * Grain(across, along, 17));
  pSurface.fMirror = 0.04f;
  pSurface.fRoughness = 0.065f;
}

}  // namespace

sSurface SurfaceAt(const sHit& pHit) {
  sSurface surface;
  surface.fAlbedo = pHit.fShape->fColour;
  surface.fNormal = pHit.fNormal;
  switch (pHit.fShape->fMaterial) {
    case Glass:
      surface.fMirror = 0.06f;
      break;
    case Bulb:
      surface.fEmission = pHit.fShape->fColour;
      surface.fAlbedo = {};
      break;
    case LampShade:
      surface.fEmission = pHit.fShape->fColour * (0.35f + 1.1f * pHit.fLocal.fY * (1.3f - pHit.fLocal.fY));
      surface.fAlbedo = {0.55f, 0.48f, 0.38f};
      break;
    case Glazed:
      surface.fMirror = 0.05f, surface.fRoughness = 0.02f;
      break;
    case Polished:
      surface.fTint = pHit.fShape->fColour;
      surface.fAlbedo = {};
      surface.fMirror = 1.0f, surface.fRoughness = 0.05f;
      break;
    case Fabric:
      PaintCloth(pHit, surface);
      break;
    case Fruit:
      PaintFruit(pHit, surface);
      break;
    case Leaf:
      surface.fAlbedo =
          surface.fAlbedo * (0.7f + 0.6f * Noise2(pHit.fLocal.fX * 3.0f, pHit.fLocal.fZ * 14.0f, 3));
      surface.fMirror = 0.03f, surface.fRoughness = 0.25f;
      break;
    case Wood:
      PaintWood(pHit, surface);
      break;
    case FloorBoards:
      PaintFloor(pHit, surface);
      break;
    case Ceiling:
      surface.fAlbedo = surface.fAlbedo * (0.85f + 0.3f * Roughen(OnPlane(pHit), 14.0f, 0.002f, 21, surface));
      break;
    case Wallpaper:
      PaintWallpaper(pHit, surface);
      break;
    case Brick:
      PaintBrick(pHit, surface);
      break;
    case Plaster:
      PaintPlaster(pHit, surface);
      break;
    case Book:
      PaintBook(pHit, surface);
      break;
    case Rug:
      PaintRug(pHit, surface);
      break;
    case Painting:
      PaintPicture(pHit, surface);
      break;
    default:
      break;
  }
  return surface;
}

}  // namespace Scene
