#include "cli/terminal/PassedOver.h"

namespace Tool {

std::string DescribeLeftOut(const sLeftOut& pLeftOut) {
  std::string text;
  const auto add = [&](std::size_t pCount, const char* pWhat) {
    if (pCount > 0)
      text += (text.empty() ? "" : ", ") + std::string(pWhat) + " (" + std::to_string(pCount) + ")";
  };
  add(pLeftOut.fUnknown, "unknown format");
  add(pLeftOut.fHidden, "hidden");
  add(pLeftOut.fLinks, "linked folders and broken links");
  add(pLeftOut.fSpecial, "pipes, sockets and devices");
  return text;
}

}  // namespace Tool
