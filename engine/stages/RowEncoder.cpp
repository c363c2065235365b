#include "engine/stages/RowEncoder.h"

#include <cstddef>

namespace TmEngine {
namespace {

template <int kShift, class tSample>
void EncodePixels(const sColorIndices& pIndices, int pOffset, const unsigned short* pEncoding,
                  const sSampleRow& pRow, int pX, int pCount) {
  const int* const first = (pRow.fRedFirst ? pIndices.fR : pIndices.fB) + pOffset;
  const int* const middle = pIndices.fG + pOffset;
  const int* const last = (pRow.fRedFirst ? pIndices.fB : pIndices.fR) + pOffset;
  tSample* to = static_cast<tSample*>(pRow.fSamples) + std::ptrdiff_t{3} * pX;
  for (int i = 0; i < pCount; ++i, to += 3) {
    to[0] = static_cast<tSample>(pEncoding[first[i]] >> kShift);
    to[1] = static_cast<tSample>(pEncoding[middle[i]] >> kShift);
    to[2] = static_cast<tSample>(pEncoding[last[i]] >> kShift);
  }
}

}  // namespace

void EncodeRun(const sColorIndices& pIndices, int pOffset, const unsigned short* pEncoding, int pBitDepth,
               const sSampleRow& pRow, int pX, int pCount) {
  if (pBitDepth == 16) {
    EncodePixels<0, unsigned short>(pIndices, pOffset, pEncoding, pRow, pX, pCount);
  } else {
    EncodePixels<8, unsigned char>(pIndices, pOffset, pEncoding, pRow, pX, pCount);
  }
}

}  // namespace TmEngine
