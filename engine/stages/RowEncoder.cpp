#include "engine/stages/RowEncoder.h"

namespace TmEngine {
void EncodeRun(const sColorIndices& pIndices, int pOffset, const unsigned short* pEncoding, int pBitDepth,
               const sSampleRow& pRow, int pX, int pCount) {
  if (pBitDepth == 16) {
    PutPixels<unsigned short>(pIndices, pOffset, pRow, pX, pCount,
                              [pEncoding](int pIndex) { return pEncoding[pIndex]; });
  } else {
    PutPixels<unsigned char>(pIndices, pOffset, pRow, pX, pCount,
                             [pEncoding](int pIndex) { return pEncoding[pIndex] >> 8; });
  }
}

}  // namespace TmEngine
