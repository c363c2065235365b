#pragma once

#include <string>
#include <vector>

namespace Tool {

/// The word that pTyped was probably meant to be; "" where none is near. Letters that were left out, added,
/// mistaken or swapped count one each.
std::string FindNearest(const std::string& pTyped, const std::vector<std::string>& pWords);

}  // namespace Tool
