#pragma once

#include <cstdint>

namespace Photo {

/// Reduces a row of pPixels pixels, three samples of 16 bits each, to 8 bits: to the next code below or above
/// by a threshold that depends on the pixel's place in the result alone, so that areas keep their mean and
/// gradients show no bands. The three samples have the same threshold: grey stays grey. 0 and 65535 become 0
/// and 255 everywhere.
/// pStart: the column of the result that the first pixel belongs to; those beyond the last one come first.
/// pY: the row of the result. pTo may be pFrom.
void DitherRow(const std::uint16_t* pFrom, int pPixels, int pStart, int pY, unsigned char* pTo);

}  // namespace Photo
