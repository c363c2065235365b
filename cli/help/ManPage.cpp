#include "cli/help/ManPage.h"

#include <algorithm>
#include <cctype>

namespace Tool {
namespace {

/// Text as roff takes it: a hyphen that may be copied, and no line that is taken for a request.
std::string Escape(const std::string& pText) {
  std::string text;
  for (const char c : pText) {
    if (text.empty() && (c == '.' || c == '\'')) text += "\\&";
    if (c == '\\')
      text += "\\e";
    else if (c == '-')
      text += "\\-";
    else
      text += c;
  }
  return text;
}

std::string ToUpper(std::string pText) {
  std::transform(pText.begin(), pText.end(), pText.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return pText;
}

std::string WriteParagraph(const std::string& pText) {
  constexpr std::size_t kWidth = 72;
  std::string text;
  for (const std::string& line : BreakLines(pText, kWidth)) text += Escape(line) + "\n";
  return text;
}

std::string WriteOption(const sHelpOption& pOption) {
  std::string head;
  for (const std::string& name : pOption.fNames) {
    head += (head.empty() ? "" : ", ") + ("\\fB" + Escape(name)) + "\\fR";
  }
  if (!pOption.fArgument.empty()) {
    head += (head.empty() ? "\\fI" : " \\fI") + Escape(pOption.fArgument) + "\\fR";
  }
  const std::string standard = pOption.fDefault.empty() ? "" : " (default: " + pOption.fDefault + ")";
  return ".TP\n" + head + "\n" + WriteParagraph(pOption.fText + standard);
}

std::string WriteLines(const std::string& pHeading, const sHelpSection& pSection) {
  std::string text = ".SH " + pHeading + "\n.EX\n";
  for (const std::string& line : pSection.fLines) text += Escape(line.substr(2)) + "\n";
  return text + ".EE\n";
}

/// "Exit codes" becomes the heading that manual pages have for them.
std::string GetHeading(const sHelpSection& pSection) {
  return pSection.fTitle == "Exit codes" ? "EXIT STATUS" : ToUpper(pSection.fTitle);
}

std::string WriteVerbs(const sHelpPage& pPage) {
  std::string text = ".SH VERBS\n";
  for (const sHelpPage& verb : pPage.fVerbs) {
    text += ".TP\n\\fB" + Escape(verb.fVerb) + "\\fR\n" + WriteParagraph(verb.fSummary);
  }
  return text;
}

std::string WriteSeeAlso(const sHelpPage& pProgram, const sHelpPage& pPage) {
  std::string text;
  const auto add = [&](const sHelpPage& pOther) {
    if (pOther.fCommand == pPage.fCommand) return;
    text += (text.empty() ? "" : ",\n") + (".BR " + Escape(GetManName(pOther))) + " (1)";
  };
  add(pProgram);
  for (const sHelpPage& verb : pProgram.fVerbs) add(verb);
  return text.empty() ? "" : ".SH SEE ALSO\n" + text + "\n";
}

}  // namespace

std::string GetManName(const sHelpPage& pPage) {
  std::string name = pPage.fCommand;
  std::replace(name.begin(), name.end(), ' ', '-');
  return name;
}

std::string MakeManPage(const sHelpPage& pProgram, const sHelpPage& pPage, const std::string& pVersion) {
  const std::string name = Escape(GetManName(pPage));
  std::string summary = pPage.fSummary.substr(0, pPage.fSummary.find_first_of(".:"));
  summary[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(summary[0])));
  std::string text = ".TH " + ToUpper(name) + " 1 \"\" \"quorvane " + pVersion + "\" \"User Commands\"\n" +
                     ".SH NAME\n" + name + " \\- " + Escape(summary) + "\n.SH SYNOPSIS\n.B " +
                     Escape(pPage.fCommand) + "\n" + Escape(pPage.GetUsage()) + "\n.SH DESCRIPTION\n" +
                     WriteParagraph(pPage.fSummary);
  for (const sHelpSection& section : pPage.fSections) {
    if (section.fTitle.empty()) text += ".PP\n" + WriteParagraph(section.fLines.front());
  }
  if (!pPage.fVerbs.empty()) text += WriteVerbs(pPage);
  text += ".SH OPTIONS\n";
  for (const sHelpOption& positional : pPage.fPositionals) text += WriteOption(positional);
  for (const sHelpGroup& group : pPage.fGroups) {
    text += ".SS " + Escape(group.fTitle) + "\n";
    for (const sHelpOption& option : group.fOptions) text += WriteOption(option);
  }
  for (const sHelpSection& section : pPage.fSections) {
    if (!section.fTitle.empty()) text += WriteLines(GetHeading(section), section);
  }
  for (const sHelpSection& section : pProgram.fSections) {
    if (!pPage.fVerb.empty() && section.fTitle == "Exit codes")
      text += WriteLines(GetHeading(section), section);
  }
  return text + WriteSeeAlso(pProgram, pPage);
}

}  // namespace Tool
