#include <CLI/CLI.hpp>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "cli/CompareCommand.h"
#include "cli/EqualizeCommand.h"
#include "cli/Failure.h"
#include "cli/HelpOptions.h"
#include "cli/InspectCommand.h"
#include "cli/Interrupt.h"
#include "cli/TonemapCommand.h"
#include "cli/UsageError.h"
#include "cli/Version.h"

namespace {

int Report(const std::string& pText, Cli::eExitCode pExitCode) {
  std::fprintf(stderr, "quorvane: %s\n", pText.c_str());
  return pExitCode;
}

int RunProgram(int pCount, char** pArguments) {
  CLI::App program("Tone mapping for high-dynamic-range photographs, and colour curves over hue.",
                   "quorvane");
  program.require_subcommand(1);
  program.set_version_flag("--version", Cli::DescribeVersion,
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
  Cli::AddHelpOptions(program);
  Cli::AddTonemapCommand(program);
  Cli::AddEqualizeCommand(program);
  Cli::AddInspectCommand(program);
  Cli::AddCompareCommand(program);
  try {
    program.parse(pCount, pArguments);
  } catch (const CLI::RuntimeError& end) {
    return end.get_exit_code();  // everything was told
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) return program.exit(error);  // help or version, on standard output
    const std::vector<CLI::App*> verbs = program.get_subcommands();
    const std::string verb = verbs.empty() ? "" : verbs.front()->get_name() + " ";
    return Report(Cli::DescribeUsageError(program, error) + "\nRun 'quorvane " + verb + "--help' for what it takes.",
                  Cli::eExitCode_Usage);
  }
  return Cli::eExitCode_Done;
}

}  // namespace

int main(int pCount, char** pArguments) {
  Cli::CatchInterrupts();
  try {
    return RunProgram(pCount, pArguments);
  } catch (const Cli::cFailure& failure) {
    return Report(failure.what(), failure.GetExitCode());
  } catch (const std::exception& exception) {
    return Report(exception.what(), Cli::eExitCode_Processing);
  }
}
