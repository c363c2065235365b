#include "photo/base/ParameterNames.h"

#include <cstddef>
#include <string_view>

namespace Photo {
namespace {

constexpr std::string_view kNames[] = {"overwrite", "skip-existing", "out-dir",      "depth",
                                       "quality",   "compression",   "list-presets", "page",
                                       "part",      "layer",         "dither"};

}  // namespace

std::string NameParameters(const std::string& pText, const std::string& pPrefix) {
  std::string text = pText;
  for (const std::string_view name : kNames) {
    const std::string marked = "{" + std::string(name) + "}";
    const std::string shown = pPrefix + std::string(name);
    for (std::size_t at = 0; (at = text.find(marked, at)) != std::string::npos; at += shown.size())
      text.replace(at, marked.size(), shown);
  }
  return text;
}

}  // namespace Photo
