#pragma once

#include <cstddef>
#include <string>

namespace Tool {

/// Fills a pattern for names of results: {stem} and {name} are the input's file name without and with its
/// extension ("stdin" for standard input), {ext} is pExtension, {index} pIndex with at least four digits.
/// Throws cFailure (usage) for placeholders that are not known, and for names of folders in it.
std::string MakeTargetName(const std::string& pPattern, const std::string& pInput,
                           const std::string& pExtension, std::size_t pIndex);

}  // namespace Tool
