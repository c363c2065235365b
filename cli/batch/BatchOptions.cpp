#include "cli/batch/BatchOptions.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <map>

#include "cli/batch/HasName.h"
#include "cli/batch/MemoryBudget.h"

namespace Tool {
namespace {

/// Reads "2/8".
void ParseShard(const std::string& pText, sBatchOptions& pOptions) {
  const char* const end = pText.data() + pText.size();
  const auto first = std::from_chars(pText.data(), end, pOptions.fShard);
  const bool hasSlash = first.ec == std::errc() && first.ptr != end && *first.ptr == '/';
  const auto second = hasSlash ? std::from_chars(first.ptr + 1, end, pOptions.fShards) : first;
  const bool isRead = hasSlash && second.ec == std::errc() && second.ptr == end;
  if (!isRead || pOptions.fShard < 1 || pOptions.fShard > pOptions.fShards) {
    throw CLI::ValidationError("--shard", pText + " is not I/N with I from 1 to N");
  }
}

void AddInputs(CLI::App& pVerb, sBatchOptions& pOptions) {
  pVerb
      .add_option("INPUT", pOptions.fInputs.fNames,
                  "Photographs, recognised by their content; folders with -r; - for standard input")
      ->option_text("INPUT...");
  pVerb.add_flag("-r,--recursive", pOptions.fInputs.fRecursive,
                 "Take the pictures in folders and below, known by extension or content; sub-folders are\n"
                 "kept below --out-dir");
  CLI::Option* const list = pVerb.add_option("--files-from", pOptions.fInputs.fFilesFrom,
                                             "A file of more inputs, one a line; - for standard input");
  list->option_text("FILE");
  pVerb
      .add_flag("-0,--null", pOptions.fInputs.fNulSeparated,
                "Names in --files-from end with a NUL byte, as 'find -print0' writes them")
      ->needs(list);
  pVerb
      .add_option_function<std::string>(
          "--shard", [&pOptions](const std::string& pText) { ParseShard(pText, pOptions); },
          "Of the sorted list, only the pictures I, I+N, I+2N, ...")
      ->option_text("I/N");
}

void AddTargets(CLI::App& pVerb, sBatchOptions& pOptions) {
  constexpr char kGroup[] = "Output";
  CLI::Option* const output =
      pVerb.add_option("-o,--output", pOptions.fOutput,
                       "The result of one picture; its extension chooses the format; - for standard output");
  output->option_text("FILE")->group(kGroup);
  pVerb.add_option("--out-dir", pOptions.fOutputFolder, "The folder for results; made where it is missing")
      ->option_text("DIR")
      ->excludes(output)
      ->group(kGroup);
  pVerb
      .add_option("--name", pOptions.fName,
                  "Names in that folder, from {stem} and {name} (the input's name without and with its\n"
                  "extension), {ext} (--format) and {index} (place in the sorted list: 0001)")
      ->option_text("PATTERN [{stem}_tm.{ext}]")
      ->excludes(output)
      ->group(kGroup);
  pVerb.add_option("--format", pOptions.fFormat, "Format of results in --out-dir or on standard output")
      ->option_text("png|tif|jpg|webp|avif|jxl [png]")
      ->group(kGroup);
}

void AddExisting(CLI::App& pVerb, sBatchOptions& pOptions) {
  const auto set = [&pOptions](Photo::eExisting pExisting) {
    return [&pOptions, pExisting](std::int64_t) { pOptions.fJob.fExisting = pExisting; };
  };
  CLI::Option* const overwrite = pVerb.add_flag_function("--overwrite", set(Photo::eExisting::kReplace),
                                                         "Replace results that exist (refused otherwise)");
  overwrite->group("Output");
  pVerb
      .add_flag_function("--skip-existing", set(Photo::eExisting::kSkip),
                         "Leave out pictures whose result exists: continues a batch that was ended")
      ->excludes(overwrite)
      ->group("Output");
}

void AddWork(CLI::App& pVerb, sBatchOptions& pOptions) {
  constexpr char kGroup[] = "Many pictures";
  pVerb.add_option("-j,--jobs", pOptions.fWorkers, "Pictures at a time, each in a process of its own")
      ->check(CLI::Range(1, 1024))
      ->option_text("1..1024 [the cores]")
      ->group(kGroup);
  AddMemoryLimit(pVerb,
                 "What the pictures in work may take together: 4G, 500M; a picture that needs more fails",
                 pOptions.fMemoryLimit);
  pVerb.get_option("--memory-limit")->group(kGroup);
  pVerb
      .add_option("--timeout", pOptions.fTimeout,
                  "Give up pictures that take longer than this, and go on with the next; time in which a\n"
                  "picture waits for memory does not count")
      ->check(CLI::Range(0.001, 1e9))
      ->option_text("SECONDS [no limit]")
      ->group(kGroup);
  pVerb.add_flag("--fail-fast", pOptions.fFailFast, "Begin no more pictures once one has failed")
      ->group(kGroup);
  pVerb.add_flag("--dry-run", pOptions.fDryRun, "List what would be done, and do nothing")->group(kGroup);
}

void AddLook(CLI::App& pVerb, sLookOptions& pLook) {
  constexpr char kGroup[] = "Many pictures";
  CLI::Option* const same = pVerb.add_flag(
      "--same-look", pLook.fIsSame,
      "One look for all pictures, as for a time lapse or the tiles of a panorama: what --auto chooses,\n"
      "and black and white, are found from all of them first");
  same->group(kGroup);
  pVerb
      .add_option("--look-from", pLook.fFrom,
                  "The look of that picture alone, or one that --save-look wrote, with its sliders")
      ->check(HasName())
      ->option_text("FILE")
      ->excludes(same)
      ->group(kGroup);
  pVerb
      .add_option("--save-look", pLook.fSaveAs,
                  "Write the look into a new file, from which --look-from takes it for other pictures")
      ->check(HasName())
      ->option_text("FILE")
      ->needs(same)
      ->group(kGroup);
}

void AddReports(CLI::App& pVerb, sBatchOptions& pOptions) {
  constexpr char kGroup[] = "Reports";
  const std::map<std::string, eProgress> names = {{"auto", eProgress::kAuto},
                                                  {"bar", eProgress::kBar},
                                                  {"plain", eProgress::kPlain},
                                                  {"json", eProgress::kJson},
                                                  {"none", eProgress::kNone}};
  pVerb
      .add_option_function<std::string>(
          "--progress",
          [names, &pOptions](const std::string& pName) { pOptions.fProgress = names.at(pName); },
          "On standard error; auto is a bar on a terminal, else lines, for more than one picture")
      ->check(CLI::IsMember({"auto", "bar", "plain", "json", "none"}))
      ->option_text("auto|bar|plain|json|none [auto]")
      ->group(kGroup);
  pVerb
      .add_flag("--json", pOptions.fJson,
                "One JSON object per picture and line on standard output; with -r, a last one counts\n"
                "what was left out")
      ->group(kGroup);
}

}  // namespace

void AddBatchOptions(CLI::App& pVerb, sBatchOptions& pOptions) {
  AddInputs(pVerb, pOptions);
  AddTargets(pVerb, pOptions);
  AddExisting(pVerb, pOptions);
  AddWork(pVerb, pOptions);
  AddLook(pVerb, pOptions.fLook);
  AddReports(pVerb, pOptions);
}

}  // namespace Tool
