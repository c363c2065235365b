#pragma once

#include "export/quorvane.h"

namespace TmEngine {
class cBitmapLDR;
}

/// Writes the finished picture into the host's buffer (see quorvane.h). For 16 bits and the host's own order,
/// the high bytes of some sampled pixels are written to standard error.
void ExportPixels(const tm_quorvane_image& pImage, const TmEngine::cBitmapLDR& pFrom, void* pOutputPixels);
