#include "cli/help/HelpText.h"

namespace Tool {
namespace {

constexpr std::size_t kWidth = 96;
constexpr std::size_t kTextColumn = 31;

std::string WriteParagraph(const std::string& pText) {
  std::string text;
  for (const std::string& line : BreakLines(pText, kWidth)) text += line + "\n";
  return text;
}

/// pHead on the left, its text in a column on the right, below where pHead is too long.
std::string WriteEntry(const std::string& pHead, const std::string& pText) {
  std::string entry = "  " + pHead;
  if (entry.size() + 2 > kTextColumn)
    entry += "\n" + std::string(kTextColumn, ' ');
  else
    entry.resize(kTextColumn, ' ');
  const auto lines = BreakLines(pText, kWidth - kTextColumn);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    entry += (i == 0 ? "" : std::string(kTextColumn, ' ')) + lines[i] + "\n";
  }
  return entry;
}

std::string WriteOption(const sHelpOption& pOption) {
  std::string head;
  for (const std::string& name : pOption.fNames) head += (head.empty() ? "" : ", ") + name;
  if (!pOption.fArgument.empty()) head += (head.empty() ? "" : " ") + pOption.fArgument;
  if (!pOption.fDefault.empty()) head += " [" + pOption.fDefault + "]";
  return WriteEntry(head, pOption.fText);
}

std::string WriteGroup(const std::string& pTitle, const std::vector<sHelpOption>& pOptions) {
  std::string text = "\n" + pTitle + ":\n";
  for (const sHelpOption& option : pOptions) text += WriteOption(option);
  return text;
}

std::string WriteSection(const sHelpSection& pSection) {
  if (pSection.fTitle.empty()) return "\n" + WriteParagraph(pSection.fLines.front());
  std::string text = "\n" + pSection.fTitle + ":\n";
  for (const std::string& line : pSection.fLines) text += line + "\n";
  return text;
}

}  // namespace

std::string MakeHelpText(const sHelpPage& pPage) {
  std::string text =
      WriteParagraph(pPage.fSummary) + "\nUsage: " + pPage.fCommand + " " + pPage.GetUsage() + "\n";
  if (!pPage.fPositionals.empty()) text += WriteGroup("Files", pPage.fPositionals);
  if (!pPage.fVerbs.empty()) text += "\nVerbs:\n";
  for (const sHelpPage& verb : pPage.fVerbs) text += WriteEntry(verb.fVerb, verb.fSummary);
  for (const sHelpGroup& group : pPage.fGroups) text += WriteGroup(group.fTitle, group.fOptions);
  for (const sHelpSection& section : pPage.fSections) text += WriteSection(section);
  return text;
}

}  // namespace Tool
