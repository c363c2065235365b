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
  /// only. False for a row that holds +infinity: it becomes what it should when Finish is called, as the
  /// largest sample of the picture takes that place. Throws cFailure.
  virtual bool Read(int pY, float* pTo, std::uint16_t* pToAlpha) = 0;
  /// After the last row: tells pPicture what the rows were found to hold.
  virtual void Finish(sPicture& pPicture) = 0;

 private:
  int fWidth;
  int fHeight;
  bool fHasAlpha;
};

}  // namespace Cli
