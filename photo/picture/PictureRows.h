#pragma once

#include <cstdint>
#include <optional>

#include "photo/picture/Repairs.h"

namespace Photo {

/// The rows of a picture whose file has been opened: D50-relative XYZ, linear, every sample finite.
class cPictureRows {
 public:
  cPictureRows(int pWidth, int pHeight, bool pHasAlpha)
      : fWidth(pWidth), fHeight(pHeight), fHasAlpha(pHasAlpha) {}
  cPictureRows(const cPictureRows&) = delete;
  cPictureRows& operator=(const cPictureRows&) = delete;
  virtual ~cPictureRows() = default;

  int GetWidth() const { return fWidth; }
  int GetHeight() const { return fHeight; }
  bool HasAlpha() const { return fHasAlpha; }

  /// Writes row pY, 3 * width samples, each row once, from top to bottom; pToAlpha is for pictures with alpha
  /// only, one value per pixel, 65535 opaque. False for a row that is not done before Finish: it holds
  /// +infinity or an outlier, whose place the largest sample of the picture takes. Throws cFailure.
  virtual bool Read(int pY, float* pTo, std::uint16_t* pToAlpha) = 0;
  /// Before the first row: all rows stay where they are written until Finish.
  virtual void Hold() = 0;
  /// After the last row: what had to be repaired. Nothing when one of the rows that were done turns out to
  /// hold an outlier: then the picture must be opened and read again, with Hold.
  virtual std::optional<sRepairs> Finish() = 0;

 private:
  int fWidth;
  int fHeight;
  bool fHasAlpha;
};

}  // namespace Photo
