#pragma once

#include "engine/cColorSpace.h"
#include "engine/cMatrix33.h"

namespace TmEngine {

class cBitmapBGR8;
class cBitmapBGR16;
class cBitmapXYZ32;
class cTransferLUT_I8F32;
class cTransferLUT_I16F32;
class cTransferLUT_F32I8;
class cTransferLUT_F32I16;

/// Static operations on images. Checks come first, in the order of the parameters: null pointers throw
/// cArgumentNullException, sizes that differ cArgumentException, a channel index outside 0 to 2
/// cInvalidOperationException. Images are walked with their own strides; row padding is never touched.
class cImageUtils {
 public:
  // Three float channels -------------------------------------------------------------------------------

  /// Every pixel becomes M * (s0, s1, s2); a row is (s1 * b + s0 * a) + s2 * c. pDst may be pSrc.
  static void ColorTransform(const cBitmapXYZ32* pSrcXYZ32, cBitmapXYZ32* pDstXYZ32, cMatrix33 pMatrix);
  static void ColorTransform(cBitmapXYZ32* pXYZ32, cMatrix33 pMatrix);
  static void TransformInPlace(cBitmapXYZ32* pXYZ32, cMatrix33 pMatrix);
  /// pDest: width * height floats, dense.
  static void ExtractChannel(const cBitmapXYZ32* pSrcXYZ32, float* pDest, int pChannel);
  /// pSrc: width * height floats, dense.
  static void ReplaceChannel(const float* pSrc, cBitmapXYZ32* pDstXYZ32, int pChannel);
  static void ClampLow(cBitmapXYZ32* pSrcXYZ32, int pChannel, float pLimit);  ///< NaN stays.
  static float GetMin(const cBitmapXYZ32* pSrcXYZ32, int pChannel);
  static float GetMax(const cBitmapXYZ32* pSrcXYZ32, int pChannel);
  static void GetMinMax(const cBitmapXYZ32* pSrcXYZ32, int pChannel, float& pMin, float& pMax);
  /// Stretches to [0, 1], all channels together or each by itself; a constant becomes 0.5.
  static void Normalize(cBitmapXYZ32* pXYZ32, bool pPerChannel);
  static void Mean(const cBitmapXYZ32* pSrc, float& pMean0, float& pMean1, float& pMean2);

  // Pixel formats --------------------------------------------------------------------------------------

  /// Decodes blue, green, red samples into linear light, order kept, through the image's own colour space.
  static void BGR8ToBGR32Linear(const cBitmapBGR8* pSrcBGR8, cBitmapXYZ32* pDstBGR32);
  static void BGR16ToBGR32Linear(const cBitmapBGR16* pSrcBGR16, cBitmapXYZ32* pDstBGR32);
  /// Decodes with the table, then applies the matrix to (red, green, blue).
  static void BGR8ToFloat3(cBitmapBGR8* pFromBGR8, cBitmapXYZ32* pToXYZ32, cTransferLUT_I8F32* pTransferLUT,
                           cMatrix33 pMatrix);
  static void BGR16ToFloat3(cBitmapBGR16* pFromBGR16, cBitmapXYZ32* pToXYZ32,
                            cTransferLUT_I16F32* pTransferLUT, cMatrix33 pMatrix);
  /// Applies the matrix, which yields (red, green, blue), then encodes with the table.
  static void Float3ToBGR8(cBitmapXYZ32* pFromXYZ32, cBitmapBGR8* pToBGR8, cTransferLUT_F32I8* pTransfer,
                           cMatrix33 pMatrix);
  static void Float3ToBGR16(cBitmapXYZ32* pFromXYZ32, cBitmapBGR16* pToBGR16, cTransferLUT_F32I16* pTransfer,
                            cMatrix33 pMatrix);
  static void Convert(cBitmapBGR16* pFromBGR16, cBitmapBGR8* pToBGR8);  ///< floor(s / 257)
  static void Convert(cBitmapBGR8* pFromBGR8, cBitmapBGR16* pToBGR16);  ///< s * 257
};

}  // namespace TmEngine
