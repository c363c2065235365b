#include "cli/help/HelpPage.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <sstream>

namespace Tool {
namespace {

std::vector<std::string> Split(const std::string& pText, const std::string& pSeparator) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  for (std::size_t at = 0; (at = pText.find(pSeparator, start)) != std::string::npos;) {
    parts.push_back(pText.substr(start, at - start));
    start = at + pSeparator.size();
  }
  parts.push_back(pText.substr(start));
  return parts;
}

sHelpOption MakeHelpOption(const CLI::Option& pOption) {
  sHelpOption option;
  for (const std::string& name : pOption.get_snames()) option.fNames.push_back("-" + name);
  for (const std::string& name : pOption.get_lnames()) option.fNames.push_back("--" + name);
  const std::string& text = pOption.get_option_text();
  const std::size_t bracket = text.find(" [");
  if (bracket != std::string::npos) option.fDefault = text.substr(bracket + 2, text.size() - bracket - 3);
  option.fArgument = text.substr(0, bracket);
  if (pOption.get_positional() && text.find_first_not_of(' ') == std::string::npos) {
    option.fArgument = pOption.get_name(true, false);
  }
  option.fText = pOption.get_description();
  std::replace(option.fText.begin(), option.fText.end(), '\n', ' ');
  option.fIsRepeatable = pOption.get_expected_max() > 1 && pOption.get_type_size() != 0;
  return option;
}

/// The parser's own group of ungrouped options comes last.
std::vector<std::string> GetGroups(const CLI::App& pApp) {
  std::vector<std::string> groups = pApp.get_groups();
  std::stable_partition(groups.begin(), groups.end(),
                        [](const std::string& pGroup) { return pGroup != "Options"; });
  return groups;
}

std::vector<sHelpOption> GetOptions(const CLI::App& pApp, const std::string& pGroup, bool pPositional) {
  std::vector<sHelpOption> options;
  for (const CLI::Option* option : pApp.get_options({})) {
    const bool isInGroup = pPositional ? !option->get_group().empty() : option->get_group() == pGroup;
    if (isInGroup && option->get_positional() == pPositional) options.push_back(MakeHelpOption(*option));
  }
  return options;
}

std::vector<sHelpSection> MakeSections(const std::string& pFooter) {
  std::vector<sHelpSection> sections;
  for (const std::string& paragraph : Split(pFooter, "\n\n")) {
    if (paragraph.empty()) continue;
    sHelpSection section;
    section.fLines = Split(paragraph, "\n");
    if (section.fLines.size() > 1 && section.fLines[0].ends_with(':') &&
        section.fLines[1].starts_with("  ")) {
      section.fTitle = section.fLines[0].substr(0, section.fLines[0].size() - 1);
      section.fLines.erase(section.fLines.begin());
    } else {
      std::replace(section.fLines[0].begin(), section.fLines[0].end(), '\n', ' ');
      for (std::size_t i = 1; i < section.fLines.size(); ++i) section.fLines[0] += " " + section.fLines[i];
      section.fLines.resize(1);
    }
    sections.push_back(section);
  }
  return sections;
}

}  // namespace

std::vector<std::string> sHelpOption::GetChoices() const {
  std::vector<std::string> choices;
  if (fArgument.find('|') == std::string::npos) return choices;
  for (const std::string& word : Split(fArgument, "|")) {
    const bool isName =
        std::any_of(word.begin(), word.end(), [](unsigned char c) { return std::isupper(c); });
    if (!isName) choices.push_back(word);
  }
  return choices;
}

bool sHelpOption::Takes(const std::vector<std::string>& pWords) const {
  const std::vector<std::string> words = Split(fArgument, "|");
  return std::any_of(words.begin(), words.end(), [&](std::string pWord) {
    if (pWord.ends_with("...")) pWord.resize(pWord.size() - 3);
    return std::find(pWords.begin(), pWords.end(), pWord) != pWords.end();
  });
}

bool sHelpOption::TakesFile() const {
  return Takes({"FILE", "IN", "INPUT", "OUT", "RESULT", "A", "B"});
}

bool sHelpOption::TakesFolder() const {
  return Takes({"DIR", "NEW"});
}

bool sHelpOption::TakesPreset() const {
  return Takes({"PRESET"});
}

std::string sHelpOption::GetShortText() const {
  return fText.substr(0, fText.find(';'));
}

std::string sHelpPage::GetUsage() const {
  std::string usage = "[OPTIONS]";
  for (const sHelpOption& positional : fPositionals) usage += " " + positional.fArgument;
  return usage + (fVerbs.empty() ? "" : " VERB");
}

sHelpPage MakeHelpPage(const CLI::App& pApp) {
  sHelpPage page;
  const bool isVerb = pApp.get_parent() != nullptr;
  page.fVerb = isVerb ? pApp.get_name() : "";
  page.fCommand = (isVerb ? pApp.get_parent()->get_name() + " " : "") + pApp.get_name();
  page.fSummary = pApp.get_description();
  std::replace(page.fSummary.begin(), page.fSummary.end(), '\n', ' ');
  page.fPositionals = GetOptions(pApp, "", true);
  for (const std::string& group : GetGroups(pApp)) {
    const std::vector<sHelpOption> options = GetOptions(pApp, group, false);
    if (!group.empty() && !options.empty()) page.fGroups.push_back({group, options});
  }
  page.fSections = MakeSections(pApp.get_footer());
  for (const CLI::App* verb : pApp.get_subcommands({})) {
    if (!verb->get_group().empty()) page.fVerbs.push_back(MakeHelpPage(*verb));
  }
  return page;
}

std::vector<std::string> BreakLines(const std::string& pText, std::size_t pWidth) {
  std::vector<std::string> lines(1);
  std::istringstream words(pText);
  for (std::string word; words >> word;) {
    if (!lines.back().empty() && lines.back().size() + 1 + word.size() > pWidth) lines.emplace_back();
    lines.back() += (lines.back().empty() ? "" : " ") + word;
  }
  return lines;
}

}  // namespace Tool
