#pragma once

#include <string>
#include <vector>
#include <vips/vips8>

namespace Photo {

/// What the file holds besides the picture that pImage, as opened from it, shows, in words. pPage: the one
/// that was asked for; 0 for none.
std::vector<std::string> ListLeftOut(const std::string& pFile, const vips::VImage& pImage, int pPage);

}  // namespace Photo
