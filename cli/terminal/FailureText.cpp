#include "cli/terminal/FailureText.h"

namespace Tool {
namespace {

constexpr char kPrefix[] = "--";

}  // namespace

std::string DescribeFailure(const Photo::cFailure& pFailure) {
  const std::string& file = pFailure.GetFile();
  return (file.empty() ? "" : file + ": ") + Photo::NameParameters(pFailure.GetReason(), kPrefix);
}

std::vector<std::string> NameOptions(const std::vector<std::string>& pTexts) {
  std::vector<std::string> texts;
  texts.reserve(pTexts.size());
  for (const std::string& text : pTexts) texts.push_back(Photo::NameParameters(text, kPrefix));
  return texts;
}

}  // namespace Tool
