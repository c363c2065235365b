#pragma once

#include <vector>

#include "cli/LinearLight.h"
#include "cli/Picture.h"

namespace Cli {

/// Takes the rows of a picture as they come from its file, while the processor still has them at hand, and
/// makes them what the engine takes:
/// - Every sample becomes finite: NaN and -infinity become 0, +infinity the largest finite sample of the
///   picture (1 where none is above 0); magnitudes beyond any light are cut, and count as infinite.
/// - RGB becomes XYZ.
/// - Colours beyond those of real surfaces are brought to the border of that range, where pLight asks for it:
///   dark noise has parts below 0 that cancel the others' luminance, and would be rendered as bright specks
///   of pure colour. So what is below 0 in RGB of Rec. 2020 becomes 0 there; other pixels stay bit for bit.
class cLightRows {
 public:
  explicit cLightRows(const sLight& pLight);

  /// A row, or a part of one: samples as pLight says. Each is taken once. False for one that waits for the
  /// largest sample: it must stay where it is until Finish.
  bool Take(float* pRow, int pCount);
  /// After the last row: those that wait are done. pPicture is told the numbers of repaired pixels, the
  /// colour space's name, and warnings.
  void Finish(sPicture& pPicture);

 private:
  struct sPart {
    float* fPixels;
    int fCount;
  };

  void Repair(const sPart& pPart, float pLargest);
  void Convert(const sPart& pPart, bool pHasNegative);
  void FitGamut(const sPart& pPart);

  sLight fLight;
  sRepairs fRepairs;
  sSurfaceColors fSurface;
  bool fIsInside = false;  ///< Whether all RGB samples that are not negative make colours of real surfaces.
  float fLargest = 0.0f;   ///< Of the finite samples so far.
  std::vector<sPart> fWaiting;  ///< What holds +infinity.
};

}  // namespace Cli
