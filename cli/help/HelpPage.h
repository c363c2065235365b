#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace Tool {

/// The help on one option or positional argument. --help, man pages and completions are made of these.
struct sHelpOption {
  std::vector<std::string> fNames;  ///< "-o", "--output"; none for a positional.
  std::string fArgument;            ///< "FILE", "8|16", "0..100"; empty for a flag.
  std::string fDefault;
  std::string fText;
  bool fIsRepeatable = false;

  /// The values to choose from, where fArgument lists them.
  std::vector<std::string> GetChoices() const;
  /// Whether fArgument, or a part of it between bars, is one of pWords.
  bool Takes(const std::vector<std::string>& pWords) const;
  bool TakesFile() const;
  bool TakesFolder() const;
  bool TakesPreset() const;
  /// fText up to the first semicolon, for lists.
  std::string GetShortText() const;
};

struct sHelpGroup {
  std::string fTitle;
  std::vector<sHelpOption> fOptions;
};

/// A part of what follows the options: text that is laid out anew, or, under a title, lines that stay.
struct sHelpSection {
  std::string fTitle;
  std::vector<std::string> fLines;
};

/// The program, or one of its verbs.
struct sHelpPage {
  std::string fCommand;  ///< "quorvane tonemap".
  std::string fVerb;     ///< Empty for the program.
  std::string fSummary;
  std::vector<sHelpOption> fPositionals;
  std::vector<sHelpGroup> fGroups;
  std::vector<sHelpSection> fSections;
  std::vector<sHelpPage> fVerbs;

  std::string GetUsage() const;  ///< What follows the command: "[OPTIONS] IN".
};

/// Reads the page off what was added to the parser. Its conventions: an option's text is "ARGUMENT
/// [DEFAULT]"; in a footer, a paragraph whose first line ends in a colon and whose others are indented is a
/// section. Options of the group "" are left out.
sHelpPage MakeHelpPage(const CLI::App& pApp);

/// Breaks pText into lines of at most pWidth characters.
std::vector<std::string> BreakLines(const std::string& pText, std::size_t pWidth);

}  // namespace Tool
