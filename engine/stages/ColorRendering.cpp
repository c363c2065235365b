#include "engine/stages/ColorRendering.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "engine/color/cColorSpace.h"
#include "engine/color/cTransferLUT.h"

namespace TmEngine {
namespace {

/// Linear sRGB to the cone responses of Oklab.
constexpr cMatrix33 kConesOfSRGB(0.4122214708f, 0.5363325363f, 0.0514459929f,  //
                                 0.2119034982f, 0.6806995451f, 0.1073969566f,  //
                                 0.0883024619f, 0.2817188376f, 0.6299787005f);

std::unique_ptr<unsigned char[]> ByteTable(const unsigned short* pEncoding) {
  std::unique_ptr<unsigned char[]> bytes(new unsigned char[kTableSize]);
  std::transform(pEncoding, pEncoding + kTableSize, bytes.get(),
                 [](unsigned short pCode) { return static_cast<unsigned char>((pCode + 128) / 257); });
  return bytes;
}

/// pEncoding at (i / 65535)^2 for each i, interpolated.
std::unique_ptr<unsigned short[]> RootTable(const unsigned short* pEncoding) {
  std::unique_ptr<unsigned short[]> codes(new unsigned short[kTableSize]);
  for (std::ptrdiff_t i = 0; i < kTableSize; ++i) {
    const double at = static_cast<double>(i * i) / 65535.0;
    const int from = std::min(static_cast<int>(at), kTableSize - 2);
    const double code = pEncoding[from] + (at - from) * (pEncoding[from + 1] - pEncoding[from]);
    *(codes.get() + i) = static_cast<unsigned short>(std::lround(code));
  }
  return codes;
}

}  // namespace

cColorRendering::cColorRendering(const sInput& pInput) : fExposure(pInput.fExposure) {
  const cMatrix33 toXYZ = pInput.fSpace.GetRGBToXYZ();
  fToCones = kConesOfSRGB * (cColorSpace_sRGB().GetXYZToRGB() * toXYZ);
  fToCones.Inverse(fFromCones);
  for (int i = 0; i < 3; ++i) fWeights[i] = toXYZ[3 + i];
  if (pInput.fBitDepth == 8) {
    fBytes = ByteTable(pInput.fEncoding);
  } else {
    fCodes = RootTable(pInput.fEncoding);
  }
  fRendering = {pInput.fHues, pInput.fCurve,       pInput.fMatrix.Elements(),
                fWeights,     fToCones.Elements(), fFromCones.Elements()};
}

void cColorRendering::Fill(const sColorRun& pFrom, int pCount, sColorIndices& pTo) {
  const sKernels& kernels = Kernels();
  Soften(kernels.fScaleColors(pFrom, fRendering, fExposure, fR, fG, fB, fPlaces, pCount));
  Encode(fR, pTo.fR, pCount);
  Encode(fG, pTo.fG, pCount);
  Encode(fB, pTo.fB, pCount);
}

void cColorRendering::Encode(const float* pLight, int* pTo, int pCount) const {
  constexpr float kHalf = 0.5f / 65535.0f;
  if (fBytes != nullptr) return Kernels().fQuantise(pLight, -kHalf, 1.0f, pTo, pCount);
  Kernels().fRootIndices(pLight, pTo, pCount);
}

void cColorRendering::Put(const sColorIndices& pIndices, int pOffset, const sSampleRow& pRow, int pX,
                          int pCount) const {
  const auto look = [](const auto* pTable) { return [pTable](int pIndex) { return pTable[pIndex]; }; };
  if (fBytes != nullptr) {
    PutPixels<unsigned char>(pIndices, pOffset, pRow, pX, pCount, look(fBytes.get()));
  } else {
    PutPixels<unsigned short>(pIndices, pOffset, pRow, pX, pCount, look(fCodes.get()));
  }
}

/// Few pixels are to be softened, and that takes long: they are worked on side by side.
void cColorRendering::Soften(int pCount) {
  for (int i = 0; i < pCount; ++i) {
    fSoftR[i] = fR[fPlaces[i]];
    fSoftG[i] = fG[fPlaces[i]];
    fSoftB[i] = fB[fPlaces[i]];
  }
  Kernels().fSoftenColors(fRendering, fSoftR, fSoftG, fSoftB, pCount);
  for (int i = 0; i < pCount; ++i) {
    fR[fPlaces[i]] = fSoftR[i];
    fG[fPlaces[i]] = fSoftG[i];
    fB[fPlaces[i]] = fSoftB[i];
  }
}

}  // namespace TmEngine
