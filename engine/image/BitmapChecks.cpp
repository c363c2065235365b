#include "engine/image/BitmapChecks.h"

#include <string>

#include "engine/image/cBitmap.h"

namespace TmEngine {

void CheckNotNull(const void* pPointer, const char* pName, const sThrowPlace& pPlace) {
  if (pPointer != nullptr) return;
  Throw_cArgumentNullException((std::string("Argument ") + pName + " cannot be null.").c_str(), pPlace);
}

void CheckPositive(int pValue, const char* pName, const sThrowPlace& pPlace) {
  if (pValue > 0) return;
  Throw_cArgumentException((std::string("Argument ") + pName + " must be greater than zero.").c_str(),
                           pPlace);
}

void CheckEqual(int pValue, const char* pName, int pOther, const char* pOtherName,
                const sThrowPlace& pPlace) {
  if (pValue == pOther) return;
  const std::string text = std::string("Argument ") + pName + " must be equal to " + pOtherName + ".";
  Throw_cArgumentException(text.c_str(), pPlace);
}

void CheckStride(int pStride, const char* pName, std::int64_t pLeast, const char* pLeastText,
                 const sThrowPlace& pPlace) {
  if (pStride >= pLeast) return;
  const std::string text =
      std::string("Argument ") + pName + " must be greater than or equal to " + pLeastText + ".";
  Throw_cArgumentException(text.c_str(), pPlace);
}

void CheckSameSize(const cBitmap& pFirst, const char* pFirstName, const cBitmap& pSecond,
                   const char* pSecondName, const sThrowPlace& pPlace) {
  const bool sameWidth = pFirst.GetWidth() == pSecond.GetWidth();
  if (sameWidth && pFirst.GetHeight() == pSecond.GetHeight()) return;
  const std::string field = sameWidth ? "->fHeight" : "->fWidth";
  const std::string text =
      "Argument " + (pFirstName + field) + " must be equal to " + pSecondName + field + ".";
  Throw_cArgumentException(text.c_str(), pPlace);
}

void CheckPartner(const cBitmap* pPartner, const char* pName, const cBitmap& pThis,
                  const sThrowPlace& pPlace) {
  CheckNotNull(pPartner, pName, pPlace);
  CheckSameSize(*pPartner, pName, pThis, "this", pPlace);
}

void CheckCopySource(const cBitmap& pThis, int pFromWidth, int pFromHeight, int pFromStride,
                     const void* pFrom, const sCopySource& pSource, const sThrowPlace& pPlace) {
  CheckEqual(pFromWidth, "pFromWidth", pThis.GetWidth(), "this->fWidth", pPlace);
  CheckEqual(pFromHeight, "pFromWidth", pThis.GetHeight(), "this->fHeight", pPlace);
  const std::int64_t leastStride = std::int64_t{pSource.fPixelBytes} * pThis.GetWidth();
  CheckStride(pFromStride, "pFromStride", leastStride, pSource.fLeastStride, pPlace);
  CheckNotNull(pFrom, pSource.fName, pPlace);
}

void CheckCopyToBGR8(const cBitmap& pThis, const unsigned char* pDstBGR8, int pDstWidth, int pDstHeight,
                     int pDstStride, const sThrowPlace& pPlace) {
  CheckNotNull(pDstBGR8, "pDstBGR8", pPlace);
  CheckEqual(pDstWidth, "pDstWidth", pThis.GetWidth(), "this->fWidth", pPlace);
  CheckEqual(pDstHeight, "pDstHeight", pThis.GetHeight(), "this->fHeight", pPlace);
  CheckStride(pDstStride, "pDstStride", std::int64_t{3} * pDstWidth, "3*pDstWidth", pPlace);
}

}  // namespace TmEngine
