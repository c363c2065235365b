#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/image/cBitmapXYZ32.h"
#include "photo/picture/PictureChoice.h"
#include "photo/picture/PictureRows.h"

namespace Cli {

class cMetadata;

/// Pixels whose samples had to be put right before the engine may see them.
struct sRepairs {
  std::int64_t fNaN = 0;       ///< With a sample that is not a number.
  std::int64_t fInfinite = 0;  ///< Others with an infinite sample.
  std::int64_t fOutliers = 0;  ///< Others with a sample far above all that is light (see cLightLevels).
  std::int64_t fNegative = 0;  ///< Of colours that no surface has, as dark noise makes them.
};

/// A picture as the engine takes it, and what its reader knows of it.
struct sPicture {
  /// D50-relative XYZ, linear, every sample finite; null while the rows are in the file.
  std::unique_ptr<TmEngine::cBitmapXYZ32> fBitmap;
  std::unique_ptr<cPictureRows> fRows;  ///< Null when they have been read.
  /// For a reduced picture: pixels of the whole one, which tell where black and white lie. Null for others.
  std::unique_ptr<TmEngine::cBitmapXYZ32> fSample;
  std::vector<std::uint16_t> fAlpha;  ///< A value a pixel, 65535 opaque; empty for none.
  bool fIsPremultiplied = false;      ///< Its light is what is seen over black: alpha is no part of it.
  bool fHasOwnLight = false;          ///< And some of that is known to be above what alpha covers.
  std::vector<sPicturePart> fParts;   ///< Of a file that can hold several; empty for others.
  std::string fFormat;                ///< In words: "OpenEXR", "TIFF".
  std::string fColorSpace;            ///< In words: "Display P3 (ICC)".
  int fFileDepth = 32;                ///< Bits a sample; 32 for Radiance.
  bool fIsPanorama = false;           ///< Its metadata say that left and right edges meet.
  sRepairs fRepairs;
  std::shared_ptr<const cMetadata> fMetadata;  ///< Null for none.
  std::vector<std::string> fWarnings;
};

/// Lets a picture of this size through the memory gate. Throws cFailure, in the name of pFile, for sizes that
/// no memory holds.
void CheckSize(const std::string& pFile, std::int64_t pWidth, std::int64_t pHeight);

/// A picture of the given size, its pixels not set. Throws as CheckSize does.
sPicture MakePicture(const std::string& pFile, std::int64_t pWidth, std::int64_t pHeight);

/// Reads the rows that are still in pFile; they come to rest in memory. Throws cFailure.
void LoadRows(const std::string& pFile, sPicture& pPicture);

/// Gives pPicture an alpha for each pixel, not set. Throws cFailure, in the name of pFile.
void AddAlpha(const std::string& pFile, sPicture& pPicture);

/// First sample of row pY.
float* GetRow(const sPicture& pPicture, int pY);
/// First alpha of row pY of a picture that has alpha.
std::uint16_t* GetAlphaRow(sPicture& pPicture, int pY);
/// Copies each pixel's first sample to the other two.
void SpreadGrey(float* pRow, int pWidth);

}  // namespace Cli
