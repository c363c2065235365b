#pragma once

#include "export/quorvane.h"

namespace TmEngine {
class cBitmapXYZ32;
}

/// Decodes the host's pixels (see quorvane.h for their layout) into linear RGB floats of the same size.
/// pGamma is the decoding gamma of 8- and 16-bit samples. Throws std::bad_alloc.
void ImportPixels(const tm_quorvane_image& pImage, double pGamma, const void* pInputPixels,
                  TmEngine::cBitmapXYZ32& pTo);
