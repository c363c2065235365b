#include "examples/scene/Render.h"

#include <atomic>
#include <stdexcept>
#include <thread>

#include "examples/scene/Light.h"
#include "examples/scene/Material.h"
#include "examples/scene/Noise.h"
#include "examples/scene/Room.h"
#include "examples/scene/Sky.h"

namespace Scene {
namespace {

constexpr int kSamples = 1;      // of a pixel where nothing changes
constexpr int kEdgeSamples = 8;  // of a pixel that an edge runs through
constexpr float kMatt = 0.06f;   // roughness from which a reflection is smoothed like soft light
constexpr int kSmoothReach = 4;

/// What one ray, or a pixel's rays on average, found. Soft light is kept apart from the surface that it falls
/// on: it may be smoothed over neighbours, the rest may not.
struct sFinding {
  sVec3 fSharp;   ///< radiance: sunlight, reflections, glow, the view outside
  sVec3 fAlbedo;  ///< share of the soft light that the surface throws back
  sVec3 fSoft;    ///< soft irradiance over pi
  sVec3 fSheen;   ///< radiance of blurred reflections, smoothed likewise
  sVec3 fNormal;
  sVec3 fPosition;
};

class cTracer {
 public:
  cTracer(const cShapeTree& pShapes, const cLight& pLight) : fShapes(pShapes), fLight(pLight) {}

  /// pWithSoft: whether to find the soft light too.
  sFinding Look(sRay pRay, bool pWithSoft, cSampler& pSampler) const {
    sFinding finding;
    sVec3 passed = {1.0f, 1.0f, 1.0f};
    for (int layer = 0; layer < 8; ++layer) {
      sHit hit;
      if (!fShapes.Find(pRay, hit)) {
        finding.fSharp += passed * Outside(pRay.fDirection, true);
        return finding;
      }
      const sSurface surface = SurfaceAt(hit);
      const sVec3 reflected = Reflection(pRay, hit, surface, pSampler);
      (surface.fRoughness < kMatt ? finding.fSharp : finding.fSheen) += passed * reflected;
      finding.fSharp += passed * surface.fEmission;
      if (hit.fShape->fMaterial != Glass) {
        Illuminate(hit, surface, passed, pRay.fDirection, finding, pSampler);
        if (pWithSoft) finding.fSoft = fLight.Soft(hit, surface.fNormal, pSampler) * (1.0f / kPi);
        return finding;
      }
      passed = passed * hit.fShape->fColour;
      pRay.fOrigin = hit.fPosition + pRay.fDirection * 2.0e-4f;
    }
    return finding;
  }

 private:
  void Illuminate(const sHit& pHit, const sSurface& pSurface, sVec3 pPassed, sVec3 pDirection,
                  sFinding& pFinding, cSampler& pSampler) const {
    const sVec3 sun = fLight.Sun(pHit, pSurface.fNormal, pSampler);
    const sVec3 albedo = pSurface.fAlbedo * pPassed;
    pFinding.fSharp += albedo * sun * (1.0f / kPi) + pPassed * Glint(pSurface, pDirection) * sun;
    pFinding.fAlbedo = albedo;
    pFinding.fNormal = pHit.fNormal;
    pFinding.fPosition = pHit.fPosition;
  }

  /// The sun's highlight: its disc, blurred by the surface's roughness (reflections leave the disc out).
  static float Glint(const sSurface& pSurface, sVec3 pDirection) {
    if (pSurface.fMirror <= 0.0f) return 0.0f;
    const float power = 2.0f / (pSurface.fRoughness * pSurface.fRoughness + 0.0004f);
    const float along = std::max(0.0f, Dot(Normalised(kToSun - pDirection), pSurface.fNormal));
    return std::min(pSurface.fMirror * (power + 8.0f) / (8.0f * kPi) * std::pow(along, power), 60.0f);
  }

  sVec3 Reflection(const sRay& pRay, const sHit& pHit, const sSurface& pSurface, cSampler& pSampler) const {
    if (pSurface.fMirror <= 0.0f) return {};
    const float facing = Clamp01(-Dot(pRay.fDirection, pSurface.fNormal));
    const float grazing = 1.0f - facing;
    const float squared = grazing * grazing;
    const float share = pSurface.fMirror + (1.0f - pSurface.fMirror) * squared * squared * grazing *
                                               (1.0f - 2.0f * pSurface.fRoughness);
    const sVec3 mirrored = pRay.fDirection + pSurface.fNormal * (2.0f * facing);
    const sVec3 towards = Normalised(mirrored + AnyDirection(pSampler) * pSurface.fRoughness);
    if (share < 0.02f || Dot(towards, pHit.fNormal) <= 0.0f) return {};
    return pSurface.fTint * Glance({pHit.fPosition + pHit.fNormal * 6.0e-4f, towards}, pSampler) * share;
  }

  /// What a reflection shows: no reflections of its own, but for its tint.
  sVec3 Glance(const sRay& pRay, cSampler& pSampler) const {
    sHit hit;
    if (!fShapes.Find(pRay, hit)) return Outside(pRay.fDirection, false);
    const sSurface surface = SurfaceAt(hit);
    const sVec3 albedo = surface.fMirror > 0.5f ? surface.fTint * 0.6f : surface.fAlbedo;
    const sVec3 light = fLight.Sun(hit, surface.fNormal, pSampler) + fLight.Rough(hit);
    // Few rays go where a reflection shows something very bright: limited, or it would speckle.
    return Min(surface.fEmission + albedo * light * (1.0f / kPi), {12.0f, 12.0f, 12.0f});
  }

  const cShapeTree& fShapes;
  const cLight& fLight;
};

/// Calls pRow for every row, on as many threads as there are processors.
template <class tRow>
void ForEachRow(int pRows, const tRow& pRow) {
  std::atomic<int> next = 0;
  const auto work = [&] {
    for (int row = next++; row < pRows; row = next++) pRow(row);
  };
  std::vector<std::jthread> helpers;
  for (unsigned i = 1; i < std::thread::hardware_concurrency(); ++i) helpers.emplace_back(work);
  work();
}

class cRenderer {
 public:
  cRenderer(const sSceneOptions& pOptions, const cTracer& pTracer)
      : fOptions(pOptions),
        fTracer(pTracer),
        fCamera(pOptions.fView, pOptions.fWidth, pOptions.fHeight),
        fFindings(static_cast<std::size_t>(pOptions.fWidth) * static_cast<std::size_t>(pOptions.fHeight)) {}

  sHdrPicture Render() {
    sHdrPicture picture{fOptions.fWidth, fOptions.fHeight, std::vector<float>(3 * fFindings.size())};
    std::vector<char> edges(fFindings.size());
    ForEachPixel([this](int pX, int pY) { fFindings[Index(pX, pY)] = LookAt(pX, pY, kSamples, 1); });
    ForEachPixel([&](int pX, int pY) { edges[Index(pX, pY)] = IsEdge(pX, pY); });
    ForEachPixel([&](int pX, int pY) {
      if (edges[Index(pX, pY)]) fFindings[Index(pX, pY)] = LookAt(pX, pY, kEdgeSamples, 4);
    });
    ForEachPixel([&](int pX, int pY) { Develop(pX, pY, &picture.fPixels[3 * Index(pX, pY)]); });
    return picture;
  }

 private:
  std::size_t Index(int pX, int pY) const {
    return static_cast<std::size_t>(pY) * static_cast<std::size_t>(fOptions.fWidth) +
           static_cast<std::size_t>(pX);
  }

  template <class tPixel>
  void ForEachPixel(const tPixel& pPixel) const {
    ForEachRow(fOptions.fHeight, [&](int pY) {
      for (int x = 0; x < fOptions.fWidth; ++x) pPixel(x, pY);
    });
  }

  /// The pixel pDx, pDy beside pX, pY, or null beyond the picture's edge; the panorama has none left and
  /// right.
  const sFinding* Neighbour(int pX, int pY, int pDx, int pDy) const {
    int x = pX + pDx;
    const int y = pY + pDy;
    const bool isOutside = x < 0 || x >= fOptions.fWidth;
    if (isOutside && fOptions.fView == eView::Room) return nullptr;
    if (isOutside) x = (x + fOptions.fWidth * kSmoothReach) % fOptions.fWidth;
    return y >= 0 && y < fOptions.fHeight ? &fFindings[Index(x, y)] : nullptr;
  }

  /// The mean of pCount samples, whose rays spread a little into the neighbours, as a lens spreads light.
  /// Every pSoftStep-th finds the soft light.
  sFinding LookAt(int pX, int pY, int pCount, int pSoftStep) const {
    constexpr float kTiny = 1.0e-6f;
    sFinding mean;
    sVec3 weights;
    for (int i = 0; i < pCount; ++i) {
      cSampler sampler(pX, pY, i, kEdgeSamples, fOptions.fSeed);
      // The same places in every pixel: straight edges stay smooth.
      const float u = static_cast<float>(i) * 0.75487767f + 0.5f;
      const float v = static_cast<float>(i) * 0.56984029f + 0.5f;
      const float x = static_cast<float>(pX) + 0.5f + Tent(u - Floor(u));
      const float y = static_cast<float>(pY) + 0.5f + Tent(v - Floor(v));
      const sFinding finding = fTracer.Look(fCamera.RayThrough(x, y), i % pSoftStep == 0, sampler);
      if (i == 0) mean.fNormal = finding.fNormal, mean.fPosition = finding.fPosition;
      mean.fSharp += finding.fSharp * (1.0f / static_cast<float>(pCount));
      mean.fSheen += finding.fSheen * (1.0f / static_cast<float>(pCount));
      mean.fAlbedo += finding.fAlbedo * (1.0f / static_cast<float>(pCount));
      if (i % pSoftStep != 0) continue;
      const sVec3 weight = finding.fAlbedo + sVec3{kTiny, kTiny, kTiny};
      mean.fSoft += finding.fSoft * weight;
      weights += weight;
    }
    for (int i = 0; i < 3; ++i) mean.fSoft[i] /= weights[i];
    return mean;
  }

  /// [0, 1) to (-0.8, 0.8), the middle more often.
  static float Tent(float pV) {
    return 0.8f * (pV < 0.5f ? std::sqrt(2.0f * pV) - 1.0f : 1.0f - std::sqrt(2.0f - 2.0f * pV));
  }

  bool IsEdge(int pX, int pY) const {
    const sFinding& here = fFindings[Index(pX, pY)];
    for (int i = 0; i < 9; ++i) {
      const sFinding* there = Neighbour(pX, pY, i % 3 - 1, i / 3 - 1);
      if (there != nullptr && AreUnlike(here, *there)) return true;
    }
    return false;
  }

  static bool AreUnlike(const sFinding& pA, const sFinding& pB) {
    if (Dot(pA.fNormal, pB.fNormal) < 0.8f * Dot(pA.fNormal, pA.fNormal)) return true;
    const sVec3 soft = (pA.fSoft + pB.fSoft) * 0.5f;  // of both, because its noise is no edge
    const float a = Luminance(pA.fSharp) + Luminance(pA.fAlbedo * soft) + 0.003f;
    const float b = Luminance(pB.fSharp) + Luminance(pB.fAlbedo * soft) + 0.003f;
    return std::max(a, b) > 1.5f * std::min(a, b);
  }

  /// The soft light and the sheen of a pixel, averaged with those of neighbours on the same flat surface. The
  /// outermost count half: so the square holds each place of the sampler's blocks of 4 x 4 equally often.
  sVec3 Smoothed(int pX, int pY, const sFinding& pHere) const {
    const float reach = 0.004f * Length(pHere.fPosition - fCamera.RayThrough(0.0f, 0.0f).fOrigin);
    sVec3 soft;
    sVec3 sheen;
    float count = 0.0f;
    for (int dy = -kSmoothReach; dy <= kSmoothReach; ++dy) {
      for (int dx = -kSmoothReach; dx <= kSmoothReach; ++dx) {
        const sFinding* there = Neighbour(pX, pY, dx, dy);
        if (there == nullptr || Dot(there->fNormal, pHere.fNormal) < 0.93f) continue;
        if (std::fabs(Dot(there->fPosition - pHere.fPosition, pHere.fNormal)) > reach) continue;
        const float weight =
            (std::abs(dx) == kSmoothReach ? 0.5f : 1.0f) * (std::abs(dy) == kSmoothReach ? 0.5f : 1.0f);
        soft += there->fSoft * weight;
        sheen += there->fSheen * weight;
        count += weight;
      }
    }
    return (pHere.fAlbedo * soft + sheen) * (1.0f / count);
  }

  void Develop(int pX, int pY, float* pTo) const {
    const sFinding& here = fFindings[Index(pX, pY)];
    const bool isSurface = Dot(here.fNormal, here.fNormal) > 0.5f;
    const sVec3 smooth = isSurface ? Smoothed(pX, pY, here) : here.fAlbedo * here.fSoft + here.fSheen;
    sVec3 colour = here.fSharp + smooth;
    const float x = static_cast<float>(pX) + 0.5f;
    const float y = static_cast<float>(pY) + 0.5f;
    colour = colour * fCamera.Vignette(x, y);
    // Grain: stronger in the shadows, like shot noise; a factor, so that light stays above 0.
    const float deviation = std::min(0.010f + 0.0022f / std::sqrt(Luminance(colour) + 1.0e-3f), 0.05f);
    const auto column = static_cast<std::uint32_t>(pX);
    const auto row = static_cast<std::uint32_t>(pY);
    const float grey = HashNormal(column, row, 4 * fOptions.fSeed);
    for (int i = 0; i < 3; ++i) {
      const float tint = HashNormal(column, row, 4 * fOptions.fSeed + 1 + static_cast<std::uint32_t>(i));
      pTo[i] = std::max(colour[i], 2.0e-5f) * std::exp(deviation * (0.8f * grey + 0.5f * tint));
    }
  }

  const sSceneOptions fOptions;
  const cTracer& fTracer;
  const cCamera fCamera;
  std::vector<sFinding> fFindings;
};

}  // namespace

sHdrPicture RenderScene(const sSceneOptions& pOptions) {
  constexpr int kLargest = 32768;
  if (pOptions.fWidth < 1 || pOptions.fWidth > kLargest || pOptions.fHeight < 1 ||
      pOptions.fHeight > kLargest) {
    throw std::invalid_argument("width and height must lie between 1 and 32768");
  }
  std::vector<sShape> shapes = FurnishRoom();
  const cShapeTree tree(shapes);
  const cLight light(tree);
  return cRenderer(pOptions, cTracer(tree, light)).Render();
}

}  // namespace Scene
