#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/image/cBitmapXYZ32.h"
#include "photo/picture/MemoryGate.h"
#include "photo/picture/PictureChoice.h"
#include "photo/picture/PictureRows.h"
#include "photo/picture/Watch.h"

namespace Photo {

class cMetadata;

/// What a file says of its picture.
struct sPictureInfo {
  std::string fFormat;            ///< In words: "OpenEXR", "TIFF".
  std::string fColorSpace;        ///< In words: "Display P3 (ICC)".
  int fFileDepth = 32;            ///< Bits per sample; 32 for Radiance.
  bool fIsPremultiplied = false;  ///< Its light is what is seen over black: alpha is no part of it.
  bool fHasOwnLight = false;      ///< Premultiplied, and some light is known to be above what alpha covers.
  bool fIsPanorama = false;       ///< Its metadata say that left and right edges meet.
  std::vector<sPicturePart> fParts;            ///< Parts of a file that can hold several; empty for others.
  std::shared_ptr<const cMetadata> fMetadata;  ///< Null for none.
  std::vector<std::string> fWarnings;
};

/// A picture whose file has been opened, and whose rows are still in it.
struct sOpenedPicture : sPictureInfo {
  std::unique_ptr<cPictureRows> fRows;
};

/// A picture in memory, as the engine takes it.
struct sPicture : sPictureInfo {
  /// D50-relative XYZ, linear, every sample finite.
  std::unique_ptr<TmEngine::cBitmapXYZ32> fBitmap;
  /// Pixels of the whole picture, by which a reduced one finds its black and white points. Null for others.
  std::unique_ptr<TmEngine::cBitmapXYZ32> fSample;
  std::vector<std::uint16_t> fAlpha;  ///< One value per pixel, 65535 opaque; empty for none.
  sRepairs fRepairs;
};

/// Throws cFailure for sizes that no memory holds, and what pGate throws.
void CheckSize(std::int64_t pWidth, std::int64_t pHeight, const tMemoryGate& pGate);

/// Reads the rows of a picture into memory. pWatch: null for none. Throws cFailure.
sPicture LoadPicture(sOpenedPicture pOpened, cWatch* pWatch = nullptr);

/// An XYZ bitmap, its pixels not set. Throws cFailure where memory does not suffice.
std::unique_ptr<TmEngine::cBitmapXYZ32> MakeBitmap(int pWidth, int pHeight);

/// First sample of row pY.
float* GetRow(const sPicture& pPicture, int pY);
/// First alpha of row pY of a picture that has alpha.
std::uint16_t* GetAlphaRow(sPicture& pPicture, int pY);
/// Copies each pixel's first sample to the other two.
void SpreadGrey(float* pRow, int pWidth);

}  // namespace Photo
