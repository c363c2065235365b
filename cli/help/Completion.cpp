#include "cli/help/Completion.h"

namespace Tool {
namespace {

/// In single quotes, for any shell. pEnd: how a quote within is written.
std::string Quote(const std::string& pText, const char* pQuote = "'\\''") {
  std::string text;
  for (const char c : pText) text += c == '\'' ? std::string(pQuote) : std::string(1, c);
  return "'" + text + "'";
}

std::string Join(const std::vector<std::string>& pWords, const std::string& pBetween) {
  std::string text;
  for (const std::string& word : pWords) text += (text.empty() ? "" : pBetween) + word;
  return text;
}

std::vector<std::string> GetVerbs(const sHelpPage& pProgram) {
  std::vector<std::string> verbs;
  for (const sHelpPage& verb : pProgram.fVerbs) verbs.push_back(verb.fVerb);
  return verbs;
}

template <class tDo>
void ForEachOption(const sHelpPage& pPage, tDo pDo) {
  for (const sHelpGroup& group : pPage.fGroups) {
    for (const sHelpOption& option : group.fOptions) pDo(option);
  }
}

// --- bash

/// What bash does for an option's value, as commands of a case.
std::string CompleteInBash(const sHelpOption& pOption) {
  const auto choices = pOption.GetChoices();
  std::string commands;
  if (!choices.empty()) commands += " _quorvane_words " + Quote(Join(choices, " ")) + ";";
  if (pOption.TakesPreset()) commands += " _quorvane_presets \"$1\";";
  if (pOption.TakesFile()) commands += " _quorvane_files -f;";
  if (pOption.TakesFolder()) commands += " _quorvane_files -d;";
  return commands + " return ;;\n";
}

std::string WriteBashCases(const sHelpPage& pPage, std::string& pOptions) {
  std::string cases;
  std::vector<std::string> names;
  ForEachOption(pPage, [&](const sHelpOption& pOption) {
    std::vector<std::string> patterns;
    for (const std::string& name : pOption.fNames) {
      names.push_back(name);
      patterns.push_back("'" + pPage.fVerb + " " + name + "'");
    }
    if (!pOption.fArgument.empty()) cases += "    " + Join(patterns, "|") + ")" + CompleteInBash(pOption);
  });
  pOptions += "      '" + pPage.fVerb + "') _quorvane_words " + Quote(Join(names, " ")) + " ;;\n";
  return cases;
}

// --- zsh

/// Text inside an argument's brackets.
std::string EscapeForZsh(const std::string& pText) {
  std::string text;
  for (const char c : pText) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') text += '\\';
    text += c;
  }
  return text;
}

std::string CompleteInZsh(const sHelpOption& pOption) {
  const auto choices = pOption.GetChoices();
  const std::string start = ":" + EscapeForZsh(pOption.fArgument) + ":";
  if (pOption.TakesPreset()) return start + "_quorvane_presets";
  if (pOption.TakesFile()) return start + "_files";
  if (pOption.TakesFolder()) return start + "_files -/";
  return start + (choices.empty() ? " " : "(" + Join(choices, " ") + ")");
}

std::string WriteZshOptions(const sHelpPage& pPage, const std::string& pIndent) {
  std::string text;
  ForEachOption(pPage, [&](const sHelpOption& pOption) {
    for (const std::string& name : pOption.fNames) {
      const std::string others = pOption.fIsRepeatable ? "*" : "(" + Join(pOption.fNames, " ") + ")";
      const bool isShort = name.size() == 2;
      const bool isFlag = pOption.fArgument.empty();
      text +=
          " \\\n" + pIndent +
          Quote(others + name +
                (isFlag    ? ""
                 : isShort ? "+"
                           : "=") +
                "[" + EscapeForZsh(pOption.GetShortText()) + "]" + (isFlag ? "" : CompleteInZsh(pOption)));
    }
  });
  return text;
}

// --- fish

std::string WriteFishOptions(const sHelpPage& pPage, const std::string& pCondition) {
  std::string text;
  ForEachOption(pPage, [&](const sHelpOption& pOption) {
    text += "complete -c quorvane -n " + Quote(pCondition, "\\'");
    for (const std::string& name : pOption.fNames) {
      text += name.size() == 2 ? " -s " + name.substr(1) : " -l " + name.substr(2);
    }
    std::string values = Join(pOption.GetChoices(), " ");
    if (pOption.TakesPreset()) values = "(__quorvane_presets)";
    if (pOption.TakesFolder()) values = "(__fish_complete_directories)";
    if (!pOption.fArgument.empty()) text += pOption.TakesFile() ? " -r -F" : " -x";
    if (!values.empty()) text += " -a " + Quote(values, "\\'");
    text += " -d " + Quote(pOption.GetShortText(), "\\'") + "\n";
  });
  return text;
}

}  // namespace

std::string MakeBashCompletion(const sHelpPage& pProgram) {
  std::string options;
  std::string cases = WriteBashCases(pProgram, options);
  for (const sHelpPage& verb : pProgram.fVerbs) cases += WriteBashCases(verb, options);
  return R"sh(# bash completion for quorvane; made by 'quorvane --completion bash'
_quorvane_presets() {
  local IFS=$'\n'
  _quorvane_words "$("$1" --complete-presets 2>/dev/null | cut -f 1)"
  _quorvane_files -f -X '!*.json'
  _quorvane_files -d
}
_quorvane_words() {
  local word
  while IFS= read -r word; do COMPREPLY+=("$word"); done < <(compgen -W "$1" -- "$current")
}
_quorvane_files() {
  local word
  compopt -o filenames 2>/dev/null
  while IFS= read -r word; do COMPREPLY+=("$word"); done < <(compgen "$@" -- "$current")
}
_quorvane() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} verb= word
  COMPREPLY=()
  if [ "$current" = = ]; then current=
  elif [ "$previous" = = ]; then previous=${COMP_WORDS[COMP_CWORD - 2]}; fi  # --option=value
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in )sh" +
         Join(GetVerbs(pProgram), "|") + R"sh() verb=$word; break ;; esac
  done
  case "$verb $previous" in
)sh" + cases +
         R"sh(  esac
  case $current in
    -*)
      case $verb in
)sh" + options +
         R"sh(      esac ;;
    *)
      if [ -z "$verb" ]; then _quorvane_words ')sh" +
         Join(GetVerbs(pProgram), " ") + R"sh('; else _quorvane_files -f; fi ;;
  esac
}
complete -F _quorvane quorvane
)sh";
}

std::string MakeZshCompletion(const sHelpPage& pProgram) {
  std::string verbs;
  std::string cases;
  for (const sHelpPage& verb : pProgram.fVerbs) {
    const std::string summary = verb.fSummary.substr(0, verb.fSummary.find_first_of(".:"));
    verbs += " \\\n        " + Quote(verb.fVerb + ":" + EscapeForZsh(summary));
    cases += "        " + verb.fVerb + ")\n          _arguments -s" + WriteZshOptions(verb, "            ") +
             " \\\n            '*:picture:_files' ;;\n";
  }
  return R"sh(#compdef quorvane
# zsh completion for quorvane; made by 'quorvane --completion zsh'
_quorvane_presets() {
  local -a presets=(${(f)"$(quorvane --complete-presets 2>/dev/null | sed 's/:/\\:/g; s/\t/:/')"})
  _describe -t presets preset presets
  _files -g '*.json'
}
_quorvane() {
  local curcontext=$curcontext state line
  local -a verbs
  typeset -A opt_args
  _arguments -C)sh" +
         WriteZshOptions(pProgram, "    ") + R"sh( \
    '1: :->verb' '*:: :->rest'
  case $state in
    verb)
      verbs=()sh" +
         verbs + R"sh()
      _describe verb verbs ;;
    rest)
      case $words[1] in
)sh" + cases +
         R"sh(      esac ;;
  esac
}
if [ "$funcstack[1]" = _quorvane ]; then _quorvane "$@"; else compdef _quorvane quorvane; fi
)sh";
}

std::string MakeFishCompletion(const sHelpPage& pProgram) {
  std::string text = R"sh(# fish completion for quorvane; made by 'quorvane --completion fish'
function __quorvane_presets
    quorvane --complete-presets 2>/dev/null
    __fish_complete_suffix .json | string match -r '^[^\t]*(?:/|\.json)(?:\t.*)?$'
end
complete -c quorvane -f
)sh";
  text += WriteFishOptions(pProgram, "__fish_use_subcommand");
  for (const sHelpPage& verb : pProgram.fVerbs) {
    const std::string condition = "__fish_seen_subcommand_from " + verb.fVerb;
    const std::string summary = verb.fSummary.substr(0, verb.fSummary.find_first_of(".:"));
    text += "complete -c quorvane -n __fish_use_subcommand -a " + verb.fVerb + " -d " +
            Quote(summary, "\\'") + "\ncomplete -c quorvane -n " + Quote(condition, "\\'") + " -F\n" +
            WriteFishOptions(verb, condition);
  }
  return text;
}

}  // namespace Tool
