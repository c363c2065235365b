#pragma once

#include "engine/cMatrix33.h"
#include "engine/stages/HueTable.h"

namespace TmEngine {

/// Renders one row of records (see ColorRecord) into blue, green, red samples.
///
/// pOutput        pWidth * 3 samples of pBitDepth (8 or 16) bits
/// pEncoding      65,536 entries: linear output light to 16-bit samples; 8-bit samples are their high bytes
/// pGain          factor of the luminance when pStretch is exactly 1
/// pStretch       factor of the luminance above pBlack otherwise
/// pColorMatrix   from linear working RGB to linear output RGB
/// pToneCurve     65,536 entries over [0, 1], applied to each channel of working RGB
void RenderRow(const cHueTable& pHueTable, const unsigned short* pRecords, void* pOutput, int pWidth,
               int pBitDepth, const unsigned short* pEncoding, float pGain, float pStretch, float pBlack,
               const cMatrix33& pColorMatrix, const float* pToneCurve);

}  // namespace TmEngine
