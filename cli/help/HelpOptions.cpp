#include "cli/help/HelpOptions.h"

#include <CLI/CLI.hpp>

#include <filesystem>
#include <fstream>
#include <string>

#include "cli/help/Completion.h"
#include "cli/help/HelpText.h"
#include "cli/help/ManPage.h"
#include "photo/base/Failure.h"

namespace Tool {
namespace {

std::string MakeCompletion(const sHelpPage& pProgram, const std::string& pShell) {
  if (pShell == "bash") return MakeBashCompletion(pProgram);
  return pShell == "zsh" ? MakeZshCompletion(pProgram) : MakeFishCompletion(pProgram);
}

void Write(const std::filesystem::path& pFile, const std::string& pText) {
  std::error_code error;
  std::filesystem::create_directories(pFile.parent_path(), error);
  std::ofstream stream(pFile, std::ios::binary);
  stream << pText;
  stream.close();
  if (!stream) throw Photo::cFailure(Photo::eFailure::kCannotWrite, pFile.string(), "writing failed");
}

/// Under pFolder as they are installed under a prefix.
void WriteAll(const CLI::App& pProgram, const std::string& pVersion, const std::filesystem::path& pFolder) {
  const sHelpPage program = MakeHelpPage(pProgram);
  const auto writeManPage = [&](const sHelpPage& pPage) {
    Write(pFolder / "man/man1" / (GetManName(pPage) + ".1"), MakeManPage(program, pPage, pVersion));
  };
  writeManPage(program);
  for (const sHelpPage& verb : program.fVerbs) writeManPage(verb);
  Write(pFolder / "bash-completion/completions/quorvane", MakeBashCompletion(program));
  Write(pFolder / "zsh/site-functions/_quorvane", MakeZshCompletion(program));
  Write(pFolder / "fish/vendor_completions.d/quorvane.fish", MakeFishCompletion(program));
}

}  // namespace

void AddHelpOptions(CLI::App& pProgram, const sHelpFacts& pFacts) {
  pProgram.formatter(std::make_shared<CLI::FormatterLambda>(
      [](const CLI::App* pApp, const std::string&, CLI::AppFormatMode) {
        return MakeHelpText(MakeHelpPage(*pApp));
      }));
  const auto print = [&pProgram, printText = pFacts.fPrint](const std::string& pShell) {
    printText(MakeCompletion(MakeHelpPage(pProgram), pShell));
    throw CLI::Success();
  };
  pProgram
      .add_option_function<std::string>(
          "--completion", print, "Print the script that completes verbs, options and values in that shell")
      ->check(CLI::IsMember({"bash", "zsh", "fish"}))
      ->option_text("bash|zsh|fish");
  // for the scripts
  pProgram
      .add_flag_callback("--complete-presets",
                         [pFacts] {
                           pFacts.fPrint(pFacts.fPresetsForShells());
                           throw CLI::Success();
                         })
      ->group("");
  const auto write = [&pProgram, version = pFacts.fVersion](const std::string& pFolder) {
    WriteAll(pProgram, version, pFolder);
    throw CLI::Success();
  };
  pProgram.add_option_function<std::string>("--write-help", write)->group("");  // for the build
}

}  // namespace Tool
