#include "cli/TonemapCommand.h"

#include <exception>
#include <memory>
#include <new>
#include <string>

#include "cli/Failure.h"
#include "cli/Options.h"
#include "cli/PictureReader.h"
#include "cli/PictureWriter.h"
#include "cli/VipsLibrary.h"
#include "engine/ToneMapImage.h"
#include "engine/cBitmapXYZ32.h"
#include "export/HostSettings.h"
#include "cli/OutputBitmap.h"

namespace Cli {
namespace {

struct sTonemapOptions {
  std::string fInput;
  std::string fOutput;
  sToneOptions fTone;
  sOutputOptions fResult;
  bool fVerbose = false;
};

std::unique_ptr<TmEngine::cBitmapLDR> ToneMap(sPicture& pPicture, const sTonemapOptions& pOptions) {
  try {
    tm_quorvane_settings settings = pOptions.fTone.fSettings;  // a copy: the mapping changes it
    const TmEngine::sToneParameters parameters = MapSettings(settings);
    auto output = MakeOutputBitmap(pPicture.fBitmap->GetWidth(), pPicture.fBitmap->GetHeight(),
                                   pOptions.fResult.fDepth, pOptions.fResult.fColorSpace);
    TmEngine::ToneMapImage(*pPicture.fBitmap, output.get(), parameters, pOptions.fVerbose);
    return output;
  } catch (const std::bad_alloc&) {
    throw cFailure(eExitCode_Processing, pOptions.fInput, "not enough memory to tone-map it");
  } catch (const std::exception& exception) {
    throw cFailure(eExitCode_Processing, pOptions.fInput, exception.what());
  }
}

void Run(const sTonemapOptions& pOptions) {
  const eOutputFormat format = ChooseOutputFormat(pOptions.fOutput, pOptions.fResult.fDepth);
  CheckIsAnother(pOptions.fInput, pOptions.fOutput);
  const cVipsLibrary library;
  sPicture picture = ReadPicture(pOptions.fInput);
  PrintWarnings(pOptions.fInput, picture.fWarnings);
  cTempFile file(
      pOptions.fOutput);  // before the work, so that a place that cannot be written to is told early
  const auto output = ToneMap(picture, pOptions);
  picture.fBitmap.reset();
  WritePicture(*output, GetIccProfile(pOptions.fResult.fColorSpace), cMetadata(), format, file);
}

}  // namespace

void AddTonemapCommand(CLI::App& pProgram) {
  const auto options = std::make_shared<sTonemapOptions>();
  CLI::App* const verb = pProgram.add_subcommand(
      "tonemap",
      "Turns a high-dynamic-range photograph into a finished picture: contrasts too large for a\n"
      "screen or paper are compressed, details keep their own.");
  verb->add_option("IN", options->fInput,
                   "The photograph: .hdr, .exr, .pfm, .png, .tif or .jpg; told by its content")
      ->required()
      ->option_text(" ");
  verb->add_option("-o,--output", options->fOutput,
                   "The result: .png, .tif or .jpg; a file of that name is replaced")
      ->required()
      ->option_text("OUT");
  AddToneOptions(*verb, options->fTone);
  AddOutputOptions(*verb, options->fResult);
  verb->add_flag("--verbose", options->fVerbose, "Show what the engine measures and decides");
  verb->footer(
      "Linear files (.hdr, .exr, .pfm) are taken as sRGB primaries unless their header says otherwise, "
      "others\n"
      "by their embedded profile, else as sRGB.\n\n"
      "Examples:\n"
      "  quorvane tonemap photo.hdr -o photo.png\n"
      "  quorvane tonemap panorama.exr -o panorama.tif --wrap --strength 80 --depth 16 --colorspace "
      "prophoto");
  verb->callback([options] { Run(*options); });
}

}  // namespace Cli
