#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace Tool {

/// An empty name would mean "not given", and be passed over in silence.
inline CLI::Validator HasName() {
  return {[](std::string& pText) { return std::string(pText.empty() ? "an empty name" : ""); }, ""};
}

}  // namespace Tool
