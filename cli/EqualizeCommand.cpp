#include "cli/EqualizeCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/Options.h"
#include "cli/batch/MemoryBudget.h"
#include "cli/batch/StandardStreams.h"
#include "cli/batch/VipsSession.h"
#include "cli/plot/CurvePlot.h"
#include "cli/plot/SvgDrawing.h"
#include "cli/terminal/FailureText.h"
#include "cli/terminal/Warnings.h"
#include "photo/EqualizePicture.h"
#include "photo/MemoryEstimate.h"
#include "photo/base/Failure.h"
#include "photo/encode/PictureWriter.h"
#include "photo/render/CurvePoints.h"

namespace Tool {
namespace {

constexpr char kVerb[] = "equalize";

struct sEqualizeOptions {
  std::string fInput;
  std::string fOutput;
  std::string fFormat;  ///< Of standard output, as a file extension without its point; "" for png.
  std::string fPlot;
  Photo::sPictureChoice fSource;
  Photo::sHueCurveOptions fCurves;
  int fDepth = 0;  ///< 0 for the input's.
  Photo::sFileOptions fFile;
  bool fOverwrite = false;
  std::int64_t fMemoryLimit = 0;  ///< As ChooseMemoryLimit takes it.
};

Photo::eOutputFormat ChooseFormat(const sEqualizeOptions& pOptions) {
  const std::string name = pOptions.fOutput != kStandardStream
                               ? pOptions.fOutput
                               : "result." + (pOptions.fFormat.empty() ? "png" : pOptions.fFormat);
  const int leastDepth = pOptions.fDepth != 0 ? pOptions.fDepth : 8;
  return Photo::NameFile(name, [&] { return Photo::ChooseOutputFormat(name, leastDepth, pOptions.fFile); });
}

/// The job in the options, whose input is read from pPath.
Photo::sEqualizeJob MakeJob(const sEqualizeOptions& pOptions, const std::string& pPath) {
  const bool isStream = pOptions.fOutput == kStandardStream;
  Photo::sEqualizeJob job;
  job.fInput = pPath;
  job.fOutput = isStream ? "standard output" : pOptions.fOutput;
  if (isStream) job.fOutputStream = STDOUT_FILENO;
  job.fFormat = ChooseFormat(pOptions);
  job.fSource = pOptions.fSource;
  job.fCurves = pOptions.fCurves;
  job.fDepth = pOptions.fDepth;
  job.fFile = pOptions.fFile;
  job.fMayReplace = pOptions.fOverwrite;
  job.fMemoryGate = [format = job.fFormat,
                     limit = ChooseMemoryLimit(pOptions.fMemoryLimit)](std::int64_t pPixels) {
    constexpr int kDeepest = 16;  // a deeper input makes a deeper result
    CheckMemoryLimit(Photo::EstimateMemory(pPixels, format, kDeepest), limit);
  };
  return job;
}

void EqualizeFile(const sEqualizeOptions& pOptions) {
  ChooseFormat(pOptions);  // refused before a stream is read
  const cInputFile input(pOptions.fInput);
  std::vector<std::string> warnings;
  const auto print = [&] { PrintWarnings(GetSpokenName(pOptions.fInput), NameOptions(warnings)); };
  try {
    input.Read([&] { Photo::EqualizePicture(MakeJob(pOptions, input.GetPath()), warnings); });
  } catch (const Photo::cFailure&) {
    print();
    throw;
  }
  print();
}

/// Whether two names lead to one file, which need not exist.
bool IsSameFile(const std::string& pA, const std::string& pB) {
  std::error_code error;
  const auto resolve = [&](const std::string& pName) {
    return std::filesystem::weakly_canonical(std::filesystem::absolute(pName, error), error);
  };
  return std::filesystem::equivalent(pA, pB, error) || resolve(pA) == resolve(pB);
}

void CheckArguments(const sEqualizeOptions& pOptions) {
  const bool hasPicture = !pOptions.fInput.empty() || !pOptions.fOutput.empty() || pOptions.fPlot.empty();
  if (hasPicture && pOptions.fInput.empty()) throw CLI::RequiredError("IN");
  if (hasPicture && pOptions.fOutput.empty()) throw CLI::RequiredError("--output");
  if (pOptions.fCurves.AreNeutral()) {
    throw CLI::RequiredError("A curve (--hue-shift, --saturation or --lightness)");
  }
  const bool isStream = pOptions.fOutput == kStandardStream;
  if (!isStream && !pOptions.fFormat.empty()) {
    throw CLI::ValidationError("--format", "goes with -o -; other results get their format by OUT");
  }
  if (isStream && isatty(STDOUT_FILENO) != 0) {
    throw Photo::cFailure(Photo::eFailure::kUsage, "", "-o -: a picture is not written to a terminal");
  }
}

void Run(const sEqualizeOptions& pOptions) {
  CheckArguments(pOptions);
  const std::string result = pOptions.fOutput == kStandardStream ? "" : pOptions.fOutput;
  for (const std::string& target : {result, pOptions.fPlot})
    Photo::NameFile(target, [&] { Photo::CheckIsAnother(pOptions.fInput, target); });
  for (const std::string& target : {result, pOptions.fPlot})
    Photo::NameFile(target, [&] { Photo::CheckReplacing(target, pOptions.fOverwrite); });
  if (!pOptions.fPlot.empty() && IsSameFile(pOptions.fOutput, pOptions.fPlot)) {
    throw Photo::cFailure(Photo::eFailure::kUsage, pOptions.fPlot,
                          "is the result as well; give the plot another name");
  }
  const ePlotFormat plotFormat =
      pOptions.fPlot.empty() ? ePlotFormat::kSvg : ChoosePlotFormat(pOptions.fPlot);
  const cVipsSession library;
  if (!pOptions.fOutput.empty()) EqualizeFile(pOptions);
  if (pOptions.fPlot.empty()) return;
  Photo::NameFile(pOptions.fPlot, [&] {
    Photo::cTempFile file(pOptions.fPlot, pOptions.fOverwrite);
    WritePlot(DrawHueCurves(pOptions.fCurves), plotFormat, file);
  });
}

void AddCurveOption(CLI::App& pVerb, const std::string& pName, Photo::tHuePoints& pPoints,
                    const std::string& pMeaning) {
  const auto parse = [pName, &pPoints](const std::string& pText) {
    try {
      pPoints = Photo::ParseHuePoints(pText);
    } catch (const std::invalid_argument& error) {
      throw CLI::ValidationError(pName, error.what());
    }
  };
  pVerb.add_option_function<std::string>(pName, parse, pMeaning)->option_text("POINTS")->group("Curves");
}

void AddCurveOptions(CLI::App& pVerb, Photo::sHueCurveOptions& pCurves) {
  AddCurveOption(pVerb, "--hue-shift", pCurves.fHueShift,
                 "Turns hues: 0 is -180 degrees, 0.5 none, 1 is +180 degrees");
  AddCurveOption(pVerb, "--saturation", pCurves.fSaturation,
                 "Purity of colours: 0 is grey, 0.5 as it is, 1 doubled");
  AddCurveOption(pVerb, "--lightness", pCurves.fLightness,
                 "Light of colours: 0 is darkest, 0.5 as it is, 1 lightest; pure colours feel it\n"
                 "most (black to doubled), greys not at all");
  const std::map<std::string, TmEngine::eSplineInterpolationMode> modes = {
      {"smooth", TmEngine::eSplineInterpolationMode_FiniteDifference},
      {"linear", TmEngine::eSplineInterpolationMode_Linear},
      {"flat", TmEngine::eSplineInterpolationMode_Flat}};
  pVerb
      .add_option_function<std::string>(
          "--mode", [modes, &pCurves](const std::string& pName) { pCurves.fMode = modes.at(pName); },
          "Interpolation between points: smooth (finite differences), linear, or flat tangents")
      ->check(CLI::IsMember({"smooth", "linear", "flat"}))
      ->option_text("smooth|linear|flat [smooth]")
      ->group("Curves");
}

constexpr char kFooter[] =
    "POINTS are HUE:VALUE,HUE:VALUE,... (1 to 100 of them, in any order): hue in degrees from 0 to 360, "
    "value\n"
    "from 0 to 1, 0.5 neutral. One point alone makes a level curve. A curve closes at 0 = 360 degrees: "
    "where\n"
    "only one of the two is given, the other gets its value; where none is, both get the value that lies "
    "there\n"
    "on the straight line from the last point to the first. A curve that is not given is neutral.\n\n"
    "Hues are those of linear ProPhoto RGB, in which colours are changed: the red of sRGB lies at 10 "
    "degrees,\n"
    "yellow at 68, green at 103, cyan at 190, blue at 248, magenta at 283. --plot shows them.\n\n"
    "The result keeps the input's colour profile, alpha, EXIF, XMP, IPTC and resolution as far as its "
    "format\n"
    "has a place for them; the picture is stored upright. Where the engine cannot work in the profile "
    "(tables,\n"
    "grey, CMYK), the result is in sRGB, Adobe RGB or ProPhoto RGB, the first that holds the profile's\n"
    "colours. A picture that states no colours, by a profile or by numbers, is taken as sRGB; PQ and HLG "
    "are\n"
    "refused: tone-map them first.\n\n"
    "Examples:\n"
    "  quorvane equalize photo.jpg -o calm.jpg --saturation 0:0.4\n"
    "  quorvane equalize photo.tif -o leaves.tif --hue-shift 40:0.5,80:0.6,130:0.5 --plot leaves.svg\n"
    "  quorvane equalize --lightness 250:0.3,180:0.5,310:0.5 --mode flat --plot curves.png";

}  // namespace

void AddEqualizeCommand(CLI::App& pProgram) {
  const auto options = std::make_shared<sEqualizeOptions>();
  CLI::App* const verb = pProgram.add_subcommand(
      kVerb, "Changes hue, saturation and lightness of a finished picture, each by a curve over hue.");
  verb->add_option("IN", options->fInput,
                   "The picture, 8 or 16 bits: .png, .tif, .jpg, .webp, .avif or .jxl (detected by its\n"
                   "content); - for standard input")
      ->option_text(" ");
  AddPageOption(*verb, options->fSource);
  verb->add_option("-o,--output", options->fOutput,
                   "The result: .png, .tif, .jpg, .webp, .avif or .jxl; - for standard output")
      ->option_text("OUT")
      ->group("Result");
  verb->add_option("--format", options->fFormat, "Format of a result on standard output")
      ->option_text("png|tif|jpg|webp|avif|jxl [png]")
      ->group("Result");
  verb->add_flag("--overwrite", options->fOverwrite,
                 "Replace a result and a plot that exist (refused otherwise)")
      ->group("Result");
  AddMemoryLimit(*verb, "What the work may take of memory: 4G, 500M; a picture that needs more is refused",
                 options->fMemoryLimit);
  AddCurveOptions(*verb, options->fCurves);
  AddDepthOption(*verb, options->fDepth, "the input's, or the most that the format holds");
  AddFileOptions(*verb, options->fFile);
  verb->add_option(
          "--plot", options->fPlot,
          "Draws the curves over the hue circle into an .svg or .png; IN and OUT may then be left out")
      ->option_text("FILE")
      ->group("Result");
  verb->footer(kFooter);
  verb->callback([options] { Run(*options); });
}

}  // namespace Tool
