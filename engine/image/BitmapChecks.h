#pragma once

#include <cstdint>

#include "engine/base/TmCheck.h"

/// Argument checks that the image classes and image operations share. Each makes one check (or a group, in
/// the order stated) in the name of pPlace and composes its text from the names of the things compared.

namespace TmEngine {

class cBitmap;

/// "Argument NAME cannot be null." (cArgumentNullException)
void CheckNotNull(const void* pPointer, const char* pName, const sThrowPlace& pPlace);

// The rest throw cArgumentException.

/// "Argument NAME must be greater than zero."
void CheckPositive(int pValue, const char* pName, const sThrowPlace& pPlace);
/// "Argument NAME must be equal to OTHER."
void CheckEqual(int pValue, const char* pName, int pOther, const char* pOtherName, const sThrowPlace& pPlace);
/// "Argument NAME must be greater than or equal to LEAST." The bound is 64-bit: products of sizes fit.
void CheckStride(int pStride, const char* pName, std::int64_t pLeast, const char* pLeastText,
                 const sThrowPlace& pPlace);

/// Width, then height: "Argument FIRST->fWidth must be equal to SECOND->fWidth." and the like.
void CheckSameSize(const cBitmap& pFirst, const char* pFirstName, const cBitmap& pSecond,
                   const char* pSecondName, const sThrowPlace& pPlace);
/// Checks the other image of an operation of pThis: not null, then of equal size ("this->fWidth").
void CheckPartner(const cBitmap* pPartner, const char* pName, const cBitmap& pThis,
                  const sThrowPlace& pPlace);

/// What a copy into an image demands of its source.
struct sCopySource {
  const char* fName;         ///< Parameter name of the pixels.
  int fPixelBytes;           ///< Least stride is this times the width.
  const char* fLeastStride;  ///< The least stride as the text has it.
};

/// pFromWidth, pFromHeight (whose text names pFromWidth too), pFromStride, then the pixels not null.
void CheckCopySource(const cBitmap& pThis, int pFromWidth, int pFromHeight, int pFromStride,
                     const void* pFrom, const sCopySource& pSource, const sThrowPlace& pPlace);
/// The destination of a copy out of an image into 8-bit colour: not null, width, height, stride.
void CheckCopyToBGR8(const cBitmap& pThis, const unsigned char* pDstBGR8, int pDstWidth, int pDstHeight,
                     int pDstStride, const sThrowPlace& pPlace);

}  // namespace TmEngine
