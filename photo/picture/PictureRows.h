#pragma once

#include <cstdint>

namespace Cli {

struct sPicture;

/// The rows of a picture whose file has been opened and told all but them.
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

  /// Writes row pY as sPicture holds it, each once, from top to bottom; pToAlpha is for pictures with alpha
  /// only. False for a row that is not done before Finish: it holds +infinity or an outlier, whose place the
  /// largest sample of the picture takes. Throws cFailure.
  virtual bool Read(int pY, float* pTo, std::uint16_t* pToAlpha) = 0;
  /// Before the first row: all rows stay where they are written until Finish.
  virtual void Hold() = 0;
  /// After the last row: pPicture gets what the rows were found to hold. False when one of those that were
  /// done turns out to hold an outlier: then the picture must be read again, with Hold.
  virtual bool Finish(sPicture& pPicture) = 0;

 private:
  int fWidth;
  int fHeight;
  bool fHasAlpha;
};

}  // namespace Cli
