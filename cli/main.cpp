#include <CLI/CLI.hpp>

#include <exception>
#include <sstream>
#include <string>
#include <vector>

#include "cli/CompareCommand.h"
#include "cli/EqualizeCommand.h"
#include "cli/InspectCommand.h"
#include "cli/PresetFolders.h"
#include "cli/TonemapCommand.h"
#include "cli/UsageError.h"
#include "cli/Version.h"
#include "cli/batch/ExitCode.h"
#include "cli/batch/Interrupt.h"
#include "cli/help/HelpOptions.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/FailureText.h"
#include "cli/terminal/PresetList.h"
#include "photo/base/Failure.h"

namespace {

int Report(const std::string& pText, Tool::eExitCode pExitCode) {
  Tool::PrintMessage("quorvane: " + pText);
  return pExitCode;
}

/// For what ends the parsing without a fault: help or version.
int PrintAnswer(const CLI::App& pProgram, const CLI::ParseError& pAnswer) {
  std::ostringstream text;
  const int exitCode = pProgram.exit(pAnswer, text, text);
  Tool::Print(text.str());
  return exitCode;
}

std::string ListPresetsForShells() {
  return Tool::ListPresetsForShells(Photo::FindPresets(Tool::GetPresetFolders()));
}

int RunProgram(int pCount, char** pArguments) {
  CLI::App program("Tone mapping for high-dynamic-range photographs, and colour curves over hue.",
                   "quorvane");
  program.require_subcommand(1);
  program.set_version_flag("--version", Tool::DescribeVersion,
                           "Print the versions of program and libraries, the formats and the licence");
  program.footer(
      "Exit codes:\n"
      "  0 done, 1 a picture failed, 2 usage, 3 cannot read, 4 cannot write, 5 processing,\n"
      "  130 interrupted\n\n"
      "Examples:\n"
      "  quorvane tonemap photo.hdr -o photo.png\n"
      "  quorvane equalize photo.png -o greener.png --hue-shift 60:0.6,20:0.5,100:0.5\n"
      "  quorvane inspect photo.hdr\n"
      "  quorvane compare before.png after.png -o side.png\n"
      "  quorvane tonemap --help");
  Tool::AddHelpOptions(program, {Tool::Print, Tool::GetVersion(), ListPresetsForShells});
  Tool::AddTonemapCommand(program);
  Tool::AddEqualizeCommand(program);
  Tool::AddInspectCommand(program);
  Tool::AddCompareCommand(program);
  try {
    program.parse(pCount, pArguments);
  } catch (const CLI::RuntimeError& end) {
    return end.get_exit_code();  // everything was reported
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return PrintAnswer(program, error);
    const std::vector<CLI::App*> verbs = program.get_subcommands();
    const std::string verb = verbs.empty() ? "" : verbs.front()->get_name() + " ";
    Report(Tool::DescribeUsageError(program, error), Tool::eExitCode_Usage);
    Tool::PrintMessage("Run 'quorvane " + verb + "--help' for what it takes.");
    return Tool::eExitCode_Usage;
  }
  return Tool::eExitCode_Done;
}

}  // namespace

int main(int pCount, char** pArguments) {
  Tool::OpenMissingStreams();
  Tool::CatchInterrupts();
  try {
    return RunProgram(pCount, pArguments);
  } catch (const Tool::sOutputClosed&) {
    return Tool::eExitCode_CannotWrite;  // who closed it knows
  } catch (const Photo::cFailure& failure) {
    return Report(Tool::DescribeFailure(failure), Tool::GetExitCode(failure.GetKind()));
  } catch (const std::exception& exception) {
    return Report(exception.what(), Tool::eExitCode_Processing);
  }
}
