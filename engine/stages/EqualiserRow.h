#pragma once

#include "engine/cMatrix33.h"
#include "engine/stages/HueTable.h"

namespace TmEngine {

/// Renders one row of records (see HueRecord) into blue, green, red samples, nothing beyond the last pixel.
///
/// pLightness     65,536 samples by hue; 0.5 keeps a colour's lightness, less darkens, more lightens, the
/// more
///                the more saturated the colour is
/// pOutput        pWidth * 3 samples of pBitDepth (8 or 16) bits
/// pEncoding      65,536 entries: linear output light to 16-bit samples; 8-bit samples are their high bytes
/// pColorMatrix   from linear working RGB to linear output RGB
void EqualiseRow(const cHueTable& pHueTable, const float* pLightness, const unsigned short* pRecords,
                 void* pOutput, int pWidth, int pBitDepth, const unsigned short* pEncoding,
                 const cMatrix33& pColorMatrix);

}  // namespace TmEngine
