#include "cli/TonemapCommand.h"

#include <memory>

#include "cli/Options.h"
#include "cli/SettingsOptions.h"
#include "cli/TonemapPicture.h"
#include "cli/VipsLibrary.h"

namespace Cli {
namespace {

struct sTonemapOptions {
  sTonemapJob fJob;
  sSettingsOptions fLook;
};

void Run(const CLI::App& pVerb, const sTonemapOptions& pOptions) {
  sTonemapJob job = pOptions.fJob;
  const bool hasPicture = !job.fInput.empty() || !job.fOutput.empty();
  const bool needsPicture = hasPicture || !pOptions.fLook.AsksForPresets();
  if (needsPicture && job.fInput.empty()) throw CLI::RequiredError("IN");
  if (needsPicture && job.fOutput.empty()) throw CLI::RequiredError("--output");
  job.fChange = GetChange(pOptions.fLook);
  const cVipsLibrary library;
  TakeFromResult(pVerb, pOptions.fLook, job.fOutput, job.fSettings, job.fResult);
  ListAndSavePresets(pOptions.fLook, job.fSettings);
  if (!needsPicture) return;
  const sPictureReport report = TonemapPicture(job);
  PrintWarnings(job.fInput, report.fWarnings);
}

}  // namespace

void AddTonemapCommand(CLI::App& pProgram) {
  const auto options = std::make_shared<sTonemapOptions>();
  CLI::App* const verb = pProgram.add_subcommand(
      "tonemap",
      "Turns a high-dynamic-range photograph into a finished picture: contrasts too large for a\n"
      "screen or paper are compressed, details keep their own.");
  verb->add_option("IN", options->fJob.fInput,
                   "The photograph: .hdr, .exr, .pfm, .png, .tif or .jpg; told by its content")
      ->option_text(" ");
  verb->add_option("-o,--output", options->fJob.fOutput,
                   "The result: .png, .tif, .jpg, .webp, .avif or .jxl; a file of that name is replaced")
      ->option_text("OUT")
      ->group("Result");
  AddSettingsOptions(*verb, options->fLook);
  verb->add_flag("--auto", options->fJob.fAuto,
                 "Choose the sliders that neither a preset nor an option gives from the picture's light")
      ->excludes(verb->get_option("--settings-from"))
      ->group("Sliders");
  AddOutputOptions(*verb, options->fJob.fResult);
  verb->add_option("--preview", options->fJob.fPreview,
                   "Reduce the picture to N pixels on its longer side first; its look stays")
      ->check(CLI::Range(1, 65535))
      ->option_text("N")
      ->group("Result");
  verb->add_flag("--verbose", options->fJob.fVerbose, "Show what the engine measures and decides");
  verb->footer(
      "Linear files (.hdr, .exr, .pfm) are taken as sRGB primaries unless their header says otherwise, "
      "others by their embedded profile, else as sRGB.\n\n"
      "A result keeps the settings it was made with, so that --settings-from can repeat them. Presets are "
      "JSON files: your own lie in $XDG_CONFIG_HOME/quorvane/presets (~/.config/quorvane/presets) and win "
      "over those that are built in.\n\n"
      "Examples:\n"
      "  quorvane tonemap photo.hdr -o photo.png\n"
      "  quorvane tonemap photo.hdr -o photo.jpg --preset vivid --strength 60\n"
      "  quorvane tonemap other.hdr -o other.jpg --settings-from photo.jpg\n"
      "  quorvane tonemap panorama.exr -o print.tif --wrap horizontal --depth 16 --colorspace prophoto");
  verb->callback([verb, options] { Run(*verb, *options); });
}

}  // namespace Cli
