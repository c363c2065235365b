#include "cli/terminal/FailureText.h"

namespace Cli {
namespace {

constexpr char kPrefix[] = "--";

}  // namespace

std::string DescribeFailure(const cFailure& pFailure) {
  const std::string& file = pFailure.GetFile();
  return (file.empty() ? "" : file + ": ") + NameParameters(pFailure.GetReason(), kPrefix);
}

std::vector<std::string> NameOptions(const std::vector<std::string>& pTexts) {
  std::vector<std::string> texts;
  texts.reserve(pTexts.size());
  for (const std::string& text : pTexts) texts.push_back(NameParameters(text, kPrefix));
  return texts;
}

}  // namespace Cli
