#pragma once

#include "engine/color/cColorSpace.h"
#include "engine/math/cMatrix33.h"

namespace TmEngine {

class cBitmapBGR8;
class cBitmapBGR16;
class cBitmapLDR;
class cBitmapXYZ32;
class cBitmapY8;
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

  // Samples scaled to [0, 1] and back (truncated, clamped; NaN gives 0), order kept.
  static void BGR8ToBGR32(const cBitmapBGR8* pSrcBGR8, cBitmapXYZ32* pDstBGR32);
  static void BGR16ToBGR32(const cBitmapBGR16* pSrcBGR16, cBitmapXYZ32* pDstBGR32);
  static void BGR32ToBGR8(const cBitmapXYZ32* pSrcBGR32, cBitmapBGR8* pDstBGR8);
  static void BGR32ToBGR16(const cBitmapXYZ32* pSrcBGR32, cBitmapBGR16* pDstBGR16);
  /// Decodes blue, green, red samples into linear light, order kept, through the image's own colour space.
  static void BGR8ToBGR32Linear(const cBitmapBGR8* pSrcBGR8, cBitmapXYZ32* pDstBGR32);
  static void BGR16ToBGR32Linear(const cBitmapBGR16* pSrcBGR16, cBitmapXYZ32* pDstBGR32);
  /// Encodes linear light, order kept, through the destination's colour space.
  static void BGR32LinearToBGR8(const cBitmapXYZ32* pSrcBGR32, cBitmapBGR8* pDstBGR8);
  static void BGR32LinearToBGR16(const cBitmapXYZ32* pSrcBGR32, cBitmapBGR16* pDstBGR16);
  // Conversions into a new image of the source's size, owned by the caller.
  static cBitmapXYZ32* BGR8ToBGR32(const cBitmapBGR8* pSrcBGR8);
  static cBitmapXYZ32* BGR16ToBGR32(const cBitmapBGR16* pSrcBGR16);
  static cBitmapXYZ32* BGR8ToBGR32Linear(const cBitmapBGR8* pSrcBGR8);
  static cBitmapXYZ32* BGR16ToBGR32Linear(const cBitmapBGR16* pSrcBGR16);
  static cBitmapBGR8* BGR32ToBGR8(const cBitmapXYZ32* pSrcBGR32, eColorSpaceID pID);
  static cBitmapBGR16* BGR32ToBGR16(const cBitmapXYZ32* pSrcBGR32, eColorSpaceID pID);
  static cBitmapBGR8* BGR32LinearToBGR8(const cBitmapXYZ32* pSrcBGR32, eColorSpaceID pID);
  static cBitmapBGR16* BGR32LinearToBGR16(const cBitmapXYZ32* pSrcBGR32, eColorSpaceID pID);
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

  // Copy, fill, arithmetic, comparison -----------------------------------------------------------------

  /// Copies a rectangle, rows top to bottom and samples left to right; where both images are one and the
  /// rectangles overlap, what was written is read again. Throws cArgumentException for a rectangle that does
  /// not lie inside its image.
  static void Copy(const cBitmapBGR8* pSrcBGR, cBitmapBGR8* pDstBGR, int pSrcX, int pSrcY, int pDstX,
                   int pDstY, int pWidth, int pHeight);
  static void Copy(const cBitmapBGR16* pSrcBGR, cBitmapBGR16* pDstBGR, int pSrcX, int pSrcY, int pDstX,
                   int pDstY, int pWidth, int pHeight);
  static void Copy(const cBitmapY8* pSrcY8, cBitmapY8* pDstY8, int pSrcX, int pSrcY, int pDstX, int pDstY,
                   int pWidth, int pHeight);
  /// Both of one bit depth; does nothing for a depth other than 8 and 16.
  static void Copy(const cBitmapLDR* pSrcBGR, cBitmapLDR* pDstBGR, int pSrcX, int pSrcY, int pDstX, int pDstY,
                   int pWidth, int pHeight);

  static void Fill(cBitmapBGR8* pBGR, unsigned char pRed, unsigned char pGreen, unsigned char pBlue);
  static void Fill(cBitmapBGR16* pBGR, unsigned short pRed, unsigned short pGreen, unsigned short pBlue);
  static void Fill(cBitmapXYZ32* pXYZ32, float p0, float p1, float p2);  ///< In storage order.

  static void Sub(cBitmapXYZ32* pSrc1, const cBitmapXYZ32* pSrc2);  ///< pSrc1 -= pSrc2
  static void Mul(cBitmapXYZ32* pXYZ32, const float pFactor);       ///< In place.
  static void Mul(const cBitmapXYZ32* pSrc, cBitmapXYZ32* pDst, const float pFactor);
  static void Mul(const cBitmapXYZ32* pSrc1, const cBitmapXYZ32* pSrc2, cBitmapXYZ32* pDst);

  // Sums of absolute differences over all pixels, by storage channel or in all; and the largest one.
  static void Diff(const cBitmapBGR8* pSrc1, const cBitmapBGR8* pSrc2, double& pD0, double& pD1, double& pD2);
  static void Diff(const cBitmapBGR16* pSrc1, const cBitmapBGR16* pSrc2, double& pD0, double& pD1,
                   double& pD2);
  static void Diff(const cBitmapXYZ32* pSrc1, const cBitmapXYZ32* pSrc2, double& pD0, double& pD1,
                   double& pD2);
  static double Diff(const cBitmapBGR8* pSrc1, const cBitmapBGR8* pSrc2);
  static double Diff(const cBitmapBGR16* pSrc1, const cBitmapBGR16* pSrc2);
  static double Diff(const cBitmapXYZ32* pSrc1, const cBitmapXYZ32* pSrc2);
  static int MaxDiff(const cBitmapBGR8* pSrc1, const cBitmapBGR8* pSrc2);
  static int MaxDiff(const cBitmapBGR16* pSrc1, const cBitmapBGR16* pSrc2);
};

}  // namespace TmEngine
