#include "cli/TonemapCommand.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <optional>

#include "cli/Options.h"
#include "cli/SettingsOptions.h"
#include "cli/batch/Batch.h"
#include "cli/batch/BatchOptions.h"
#include "cli/batch/BatchPlan.h"
#include "cli/terminal/Warnings.h"

namespace Tool {
namespace {

struct sTonemapOptions {
  sBatchOptions fBatch;
  sSettingsOptions fLook;
};

bool NamesPictures(const sBatchOptions& pBatch) {
  return !pBatch.fInputs.fNames.empty() || !pBatch.fInputs.fFilesFrom.empty() || !pBatch.fOutput.empty() ||
         !pBatch.fOutputFolder.empty();
}

/// The look that a result carries is for its sliders: with others, pictures get their own.
void DropUnfitLook(const std::string& pResult, sBatchOptions& pBatch) {
  std::optional<TmEngine::sCommonLook>& look = pBatch.fJob.fSettings.fLook;
  if (!look) return;
  Photo::sSettings changed = pBatch.fJob.fSettings;
  Photo::Apply(pBatch.fJob.fChange, changed);
  changed.fWrap = pBatch.fJob.fSettings.fWrap;
  changed.fRendering = pBatch.fJob.fSettings.fRendering;
  if (changed == pBatch.fJob.fSettings) return;
  look.reset();
  PrintWarnings(pResult,
                {"carries the look of a set, which does not go with other sliders: black and white are "
                 "found anew"});
}

void Run(const CLI::App& pVerb, const sTonemapOptions& pOptions) {
  sBatchOptions batch = pOptions.fBatch;
  const bool needsPictures = NamesPictures(batch) || !pOptions.fLook.AsksForPresets();
  if (needsPictures) CheckBatch(batch);
  batch.fJob.fChange = GetChange(pOptions.fLook);
  const std::string target = needsPictures ? NameAnyTarget(batch) : "";
  TakeFromResult(pVerb, pOptions.fLook, target, batch.fJob.fSettings, batch.fJob.fResult);
  Photo::NameFile("--dither", [&] { Photo::CheckDither(batch.fJob.fResult); });
  ListAndSavePresets(pOptions.fLook, batch.fJob.fSettings);
  DropUnfitLook(pOptions.fLook.fFromResult, batch);
  const int exitCode = needsPictures ? RunBatch(batch) : 0;
  if (exitCode != 0) throw CLI::RuntimeError(exitCode);
}

constexpr char kFooter[] =
    "Linear files (.hdr, .exr, .pfm) are taken as sRGB primaries unless their header says otherwise, "
    "others by the profile or the numbers in them, else as sRGB.\n\n"
    "A result keeps the settings it was made with, so that --settings-from can repeat them. Presets are "
    "JSON files: your own lie in $XDG_CONFIG_HOME/quorvane/presets (~/.config/quorvane/presets) and win "
    "over those that are built in.\n\n"
    "With -r, hidden files, raw files of cameras, linked folders and files of unknown formats are left "
    "out, and counted in the last line on standard error and in the last object of --json. A sub-folder "
    "that cannot be read counts as one failed picture.\n\n"
    "Messages show control characters in names as \\x1b. --dry-run does so on a terminal; into files and "
    "pipes it writes names as they are. In JSON, a name that is not UTF-8 has its bytes in input_base64 "
    "or output_base64 as well.\n\n"
    "The exit code of a single picture shows what went wrong with it (3, 4 or 5); of several, 1 says that "
    "one or more failed. An interrupted run (130) leaves no half results: --skip-existing continues "
    "it.\n\n"
    "Examples:\n"
    "  quorvane tonemap photo.hdr -o photo.png\n"
    "  quorvane tonemap photo.hdr -o photo.jpg --preset vivid --strength 60\n"
    "  quorvane tonemap other.hdr -o other.jpg --settings-from photo.jpg\n"
    "  quorvane tonemap -r photos --out-dir results --format jpg --skip-existing\n"
    "  quorvane tonemap panorama.exr -o print.tif --wrap horizontal --depth 16 --colorspace prophoto";

}  // namespace

void AddTonemapCommand(CLI::App& pProgram) {
  const auto options = std::make_shared<sTonemapOptions>();
  CLI::App* const verb = pProgram.add_subcommand(
      "tonemap",
      "Turns high-dynamic-range photographs into finished pictures: contrasts too large for a\n"
      "screen or paper are compressed, details keep their own.");
  Photo::sTonemapJob& job = options->fBatch.fJob;
  AddBatchOptions(*verb, options->fBatch);
  AddChoiceOptions(*verb, job.fSource);
  AddPageOption(*verb, job.fSource);
  AddSettingsOptions(*verb, options->fLook);
  verb->add_flag("--auto", job.fAuto,
                 "Choose the sliders that neither a preset nor an option gives from the picture's light")
      ->excludes(verb->get_option("--settings-from"))
      ->group("Sliders");
  verb->get_option("--look-from")->excludes(verb->get_option("--settings-from"));
  AddOutputOptions(*verb, job.fResult);
  verb->add_flag(
          "--dither", job.fResult.fDithers,
          "For 8 bits: render at 16 and reduce by a fixed fine pattern, so that smooth gradients show no\n"
          "bands. --dither=false does not, even where --settings-from names a dithered result")
      ->group("Result");
  verb->add_option("--preview", job.fResult.fPreview,
                   "Reduce the picture to N pixels on its longer side first; its look stays. 0 does not,\n"
                   "even where --settings-from names a preview")
      ->check(CLI::Range(0, 65535))
      ->option_text("N")
      ->group("Result");
  verb->add_flag("--verbose", job.fVerbose, "Show what the engine measures and decides");
  verb->footer(kFooter);
  verb->callback([verb, options] { Run(*verb, *options); });
}

}  // namespace Tool
