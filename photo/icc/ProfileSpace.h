#pragma once

#include <memory>
#include <string>

#include "engine/color/cColorSpace.h"
#include "photo/icc/IccDecoder.h"

namespace Photo {

/// The colour space of the engine in which samples mean the same as in the given RGB profile: one of the
/// named ones, or one made of the profile's colorants and its common tone curve. Null where there is none, as
/// for profiles of tables or with a curve for each channel.
std::unique_ptr<TmEngine::cColorSpace> MatchProfile(const std::string& pProfile, const cIccDecoder& pDecoder);

/// The smallest named colour space that holds the colours of the decoder's profile.
TmEngine::eColorSpaceID ChooseWideSpace(const cIccDecoder& pDecoder, int pColours);

}  // namespace Photo
