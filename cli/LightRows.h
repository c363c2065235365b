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
  cLightRows(int pWidth, const sLight& pLight);

  /// pRow: samples as pLight says. Each row is taken once. False for a row that waits for the largest sample:
  /// it must stay where it is until Finish.
  bool Take(float* pRow);
  /// After the last row: the rows that wait are done. pPicture is told the numbers of repaired pixels, the
  /// colour space's name, and warnings.
  void Finish(sPicture& pPicture);

 private:
  void Repair(float* pRow, float pLargest);
  void Convert(float* pRow, bool pHasNegative);
  void FitGamut(float* pRow);

  int fWidth;
  sLight fLight;
  sRepairs fRepairs;
  sSurfaceColors fSurface;
  bool fIsInside = false;  ///< Whether all RGB samples that are not negative make colours of real surfaces.
  float fLargest = 0.0f;   ///< Of the finite samples so far.
  std::vector<float*> fWaiting;  ///< Rows that hold +infinity.
};

}  // namespace Cli
