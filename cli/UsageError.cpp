#include "cli/UsageError.h"

#include <CLI/CLI.hpp>

#include "cli/Spelling.h"

namespace Tool {
namespace {

std::vector<std::string> GetVerbs(const CLI::App& pProgram) {
  std::vector<std::string> verbs;
  for (const CLI::App* verb : pProgram.get_subcommands({})) verbs.push_back(verb->get_name());
  return verbs;
}

/// The first long option that pApp does not know, without its value; "" for none.
std::string FindUnknownOption(const CLI::App& pApp) {
  for (const std::string& word : pApp.remaining()) {
    if (word.starts_with("--")) return word.substr(0, word.find('='));
  }
  return "";
}

/// "; did you mean --strength?"; "" where no option is near.
std::string SuggestOption(const CLI::App& pApp) {
  std::vector<std::string> names;
  for (const CLI::Option* option : pApp.get_options({})) {
    if (option->get_group().empty()) continue;
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  const std::string nearest = FindNearest(FindUnknownOption(pApp), names);
  return nearest.empty() ? "" : "; did you mean " + nearest + "?";
}

/// Where no verb was recognised.
std::string DescribeMissingVerb(const CLI::App& pProgram) {
  std::string list;
  for (const std::string& verb : GetVerbs(pProgram)) list += (list.empty() ? "" : ", ") + verb;
  const std::vector<std::string> words = pProgram.remaining();
  if (words.empty()) return "A verb is required: " + list;
  const std::string& first = words.front();
  if (first.starts_with("-")) return first + ": a verb comes first (" + list + ")" + SuggestOption(pProgram);
  const std::string nearest = FindNearest(first, GetVerbs(pProgram));
  return "'" + first + "' is not a verb; " +
         (nearest.empty() ? "the verbs are " + list : "did you mean '" + nearest + "'?");
}

}  // namespace

std::string DescribeUsageError(const CLI::App& pProgram, const CLI::ParseError& pError) {
  const std::vector<CLI::App*> verbs = pProgram.get_subcommands();
  const auto is = [&](CLI::ExitCodes pCode) { return pError.get_exit_code() == static_cast<int>(pCode); };
  if (verbs.empty() && is(CLI::ExitCodes::RequiredError)) return DescribeMissingVerb(pProgram);
  if (!is(CLI::ExitCodes::ExtrasError)) return pError.what();
  return pError.what() + SuggestOption(verbs.empty() ? pProgram : *verbs.front());
}

}  // namespace Tool
