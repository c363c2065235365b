#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "photo/light/LightLevels.h"
#include "photo/light/LinearLight.h"
#include "photo/picture/Repairs.h"

namespace Photo {

/// Takes the rows of a picture as they come from its file, while the processor still has them at hand, and
/// makes them what the engine takes:
/// - Every sample becomes finite and light: NaN and -infinity become 0, +infinity and outliers the largest
///   sample of the picture that is neither (1 where none is above 0). See cLightLevels for outliers; those
///   below 0 become 0.
/// - RGB becomes XYZ.
/// - Colours beyond those of real surfaces are brought to the border of that range, where pLight asks for it:
///   dark noise has parts below 0 that cancel the others' luminance, and would be rendered as bright specks
///   of pure colour. So what is below 0 in RGB of Rec. 2020 becomes 0 there; other pixels stay bit for bit.
class cRowConverter {
 public:
  explicit cRowConverter(const sLinearLight& pLight);

  /// From now on rows stay where they are until Finish, which does all that is to be done to them.
  void Hold() { fHolds = true; }

  /// A row, or a part of one: samples as pLight says. Each is taken once. False for one that depends on the
  /// whole picture, and is not done before Finish.
  bool Take(float* pRow, int pCount);
  /// After the last row: what was repaired. Nothing when rows that have been done hold outliers: the picture
  /// must be read again, with Hold.
  std::optional<sRepairs> Finish();

 private:
  struct sPart {
    float* fPixels;
    int fCount;
    std::int32_t fLargest;  ///< Magnitude, as the bits of a float.
    bool fHasNegative;

    bool IsValid(float pBound) const;
  };

  sPart Scan(float* pRow, int pCount);
  void Wait(const sPart& pPart);
  bool IsOdd(const sPart& pPart);
  float FindLargest(float pBound) const;
  void FinishPart(const sPart& pPart, float pBound, float pLargest);
  void Repair(const sPart& pPart, float pBound, float pLargest);
  void Convert(const sPart& pPart, bool pHasNegative);
  void FitGamut(const sPart& pPart);

  sLinearLight fLight;
  sRepairs fRepairs;
  sSurfaceColors fSurface;
  bool fIsInside = false;  ///< Whether all RGB samples that are not negative make colours of real surfaces.
  bool fHolds = false;
  cLightLevels fLevels;
  std::int32_t fLargest = 0;    ///< Finite magnitude so far, as the bits of a float.
  std::vector<sPart> fWaiting;  ///< Parts that Finish will convert.
};

}  // namespace Photo
