// Lists of names for --files-from, with lines (an even first byte) and with NUL bytes. What is refused is
// refused with a cFailure (usage), and only for a NUL byte in a list of lines. No name is empty or holds what
// separates names; without the separators, list and names are the same bytes; names written as a list are
// read again.

#include "cli/batch/NameList.h"
#include "fuzz/FuzzInput.h"
#include "photo/base/Failure.h"

namespace {

using tNames = std::vector<std::string>;

std::string Join(const tNames& pNames, const std::string& pEnd) {
  std::string text;
  for (const std::string& name : pNames) text += name + pEnd;
  return text;
}

std::string Without(std::string pText, const std::string& pCharacters) {
  std::erase_if(pText, [&](char c) { return pCharacters.find(c) != std::string::npos; });
  return pText;
}

void CheckNulSeparated(const std::string& pText) {
  const std::string nul(1, '\0');
  const tNames names = Tool::ParseNames("list", pText, true);
  for (const std::string& name : names) Require(!name.empty() && name.find('\0') == name.npos, "whole names");
  Require(Join(names, "") == Without(pText, nul), "no byte is lost");
  Require(Tool::ParseNames("list", Join(names, nul), true) == names, "names are read again");
}

void CheckLines(const std::string& pText) {
  const tNames names = Tool::ParseNames("list", pText, false);
  Require(pText.find('\0') == pText.npos, "a NUL byte is refused");
  for (const std::string& name : names) {
    Require(!name.empty() && name.find('\n') == name.npos && name.find('\0') == name.npos, "whole names");
  }
  const std::string all = pText.starts_with("\xef\xbb\xbf") ? pText.substr(3) : pText;
  Require(Without(Join(names, ""), "\r") == Without(all, "\r\n"), "no byte is lost");
  for (const std::string& mark : {"", "\xef\xbb\xbf"}) {
    const std::string lines = mark + Join(names, "\r\n");
    const bool hasMark = mark.empty() && lines.starts_with("\xef\xbb\xbf");
    Require(hasMark || Tool::ParseNames("list", lines, false) == names, "names are read again");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
  if (pSize == 0) return 0;
  const std::string text(reinterpret_cast<const char*>(pData) + 1, pSize - 1);
  try {
    (pData[0] % 2 == 0 ? CheckLines : CheckNulSeparated)(text);
  } catch (const Photo::cFailure& failure) {
    Require(failure.GetKind() == Photo::eFailure::kUsage, "what is refused is wrong usage");
    Require(pData[0] % 2 == 0 && text.find('\0') != text.npos, "only a NUL byte is refused");
  }
  return 0;
}
