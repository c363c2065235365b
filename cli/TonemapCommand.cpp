#include "cli/TonemapCommand.h"

#include <memory>

#include "cli/Options.h"
#include "cli/TonemapPicture.h"
#include "cli/VipsLibrary.h"

namespace Cli {
namespace {

void Run(const sTonemapJob& pJob) {
  const cVipsLibrary library;
  const sPictureReport report = TonemapPicture(pJob);
  PrintWarnings(pJob.fInput, report.fWarnings);
}

}  // namespace

void AddTonemapCommand(CLI::App& pProgram) {
  const auto options = std::make_shared<sTonemapJob>();
  CLI::App* const verb = pProgram.add_subcommand(
      "tonemap",
      "Turns a high-dynamic-range photograph into a finished picture: contrasts too large for a\n"
      "screen or paper are compressed, details keep their own.");
  verb->add_option("IN", options->fInput,
                   "The photograph: .hdr, .exr, .pfm, .png, .tif or .jpg; told by its content")
      ->required()
      ->option_text(" ");
  verb->add_option("-o,--output", options->fOutput,
                   "The result: .png, .tif, .jpg, .webp, .avif or .jxl; a file of that name is replaced")
      ->required()
      ->option_text("OUT");
  AddSettingsOptions(*verb, options->fSettings);
  AddOutputOptions(*verb, options->fResult);
  verb->add_flag("--verbose", options->fVerbose, "Show what the engine measures and decides");
  verb->footer(
      "Linear files (.hdr, .exr, .pfm) are taken as sRGB primaries unless their header says otherwise, "
      "others\n"
      "by their embedded profile, else as sRGB.\n\n"
      "Examples:\n"
      "  quorvane tonemap photo.hdr -o photo.png\n"
      "  quorvane tonemap panorama.exr -o panorama.tif --wrap horizontal --strength 80 --depth 16 "
      "--colorspace "
      "prophoto");
  verb->callback([options] { Run(*options); });
}

}  // namespace Cli
