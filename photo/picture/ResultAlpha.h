#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "engine/color/cColorSpace.h"
#include "photo/picture/ResultPixels.h"

namespace Photo {

// What is done to a result and its alpha (as sPicture::fAlpha) once it is rendered. All of it acts on coded
// samples, since that is what programs that show or edit pictures blend: a result looks over a colour as it
// does there. Premultiplied: the samples are what is seen over black.

/// Makes the samples straight, for formats that hold no others. Where they are above alpha, which straight
/// samples cannot be, alpha is raised, so that the picture over black stays what it is to the last code.
/// Returns the number of such pixels.
std::int64_t DivideByAlpha(cResultPixels& pResult, std::vector<std::uint16_t>& pAlpha);

/// Lays the result over a colour, given in sRGB.
void LayOver(const std::array<std::uint8_t, 3>& pColour, TmEngine::eColorSpaceID pSpace,
             bool pIsPremultiplied, const std::vector<std::uint16_t>& pAlpha, cResultPixels& pResult);

}  // namespace Photo
