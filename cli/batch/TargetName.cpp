#include "cli/batch/TargetName.h"

#include <fmt/format.h>

#include <filesystem>

#include "cli/batch/StandardStreams.h"
#include "photo/base/Failure.h"

namespace Tool {
namespace {

[[noreturn]] void Refuse(const std::string& pReason) {
  throw Photo::cFailure(Photo::eFailure::kUsage, "", "--name: " + pReason);
}

}  // namespace

std::string MakeTargetName(const std::string& pPattern, const std::string& pInput,
                           const std::string& pExtension, std::size_t pIndex) {
  if (pPattern.find('/') != std::string::npos) Refuse("names a file; folders belong into --out-dir");
  const std::filesystem::path input = pInput == kStandardStream ? "stdin" : pInput;
  std::string name;
  std::size_t at = 0;
  for (std::size_t open = 0; (open = pPattern.find('{', at)) != std::string::npos;) {
    const std::size_t close = pPattern.find('}', open);
    if (close == std::string::npos) Refuse("a { without its }");
    const std::string word = pPattern.substr(open + 1, close - open - 1);
    name += pPattern.substr(at, open - at);
    if (word == "stem") {
      name += input.stem().string();
    } else if (word == "name") {
      name += input.filename().string();
    } else if (word == "ext") {
      name += pExtension;
    } else if (word == "index") {
      name += fmt::format("{:04}", pIndex);
    } else {
      Refuse("{" + word + "} is not known; known are {stem}, {name}, {ext} and {index}");
    }
    at = close + 1;
  }
  return name + pPattern.substr(at);
}

}  // namespace Tool
