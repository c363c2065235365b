#include "cli/InspectCommand.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/Options.h"
#include "cli/SettingsOptions.h"
#include "cli/batch/MemoryBudget.h"
#include "cli/batch/StandardStreams.h"
#include "cli/batch/VipsSession.h"
#include "cli/plot/SvgDrawing.h"
#include "cli/plot/TonePlot.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/FailureText.h"
#include "cli/terminal/InspectionText.h"
#include "cli/terminal/Warnings.h"
#include "photo/Inspection.h"
#include "photo/Json.h"
#include "photo/Printable.h"
#include "photo/base/Failure.h"
#include "photo/encode/PictureWriter.h"
#include "photo/render/AutoSettings.h"
#include "photo/render/PictureRendering.h"

namespace Tool {
namespace {

struct sInspectOptions {
  std::vector<std::string> fFiles;
  Photo::sPictureChoice fSource;
  Photo::sSettingsChange fGiven;  ///< Sliders of the plot;
  bool fAuto = false;             ///< the others are the suggested ones.
  std::string fPlot;
  bool fOverwrite = false;
  std::int64_t fMemoryLimit = 0;  ///< As ChooseMemoryLimit takes it.
  bool fJson = false;
};

std::string DescribeSettings(const Photo::sSettings& pSettings) {
  std::string text;
  for (const Photo::sSlider& slider : Photo::GetSliders()) {
    text += (text.empty() ? "" : ", ") + std::string(slider.fName) + " " +
            Photo::ToText(pSettings.*slider.fField);
  }
  return text;
}

void WriteFigure(Photo::sInspection& pInspection, const sInspectOptions& pOptions) {
  const ePlotFormat format = ChoosePlotFormat(pOptions.fPlot);
  Photo::sSettings settings = pOptions.fAuto ? pInspection.fSuggested : Photo::sSettings();
  Photo::Apply(pOptions.fGiven, settings);
  Photo::cTempFile file(pOptions.fPlot, pOptions.fOverwrite);
  const auto renderer = std::make_unique<TmEngine::cTmRenderer>();
  Photo::sRenderingReport report;
  Photo::NameFile(pInspection.fFile, [&] {
    Photo::RenderWith(*renderer, pInspection.fPicture, {.fSettings = settings}, report);
  });
  WritePlot(DrawToneFigure(Photo::ToPrintable(std::filesystem::path(pInspection.fFile).filename()),
                           DescribeSettings(settings), pInspection.fStatistics, *renderer),
            format, file);
}

/// The inspection's own record, and the suggestion as options to type. Warnings stay last.
nlohmann::ordered_json MakeRecord(const std::string& pFile, const Photo::sInspection& pInspection) {
  nlohmann::ordered_json record = Photo::ToJson(pInspection);
  Photo::PutName(record, "input", pFile);
  const nlohmann::ordered_json warnings = record["warnings"];
  record.erase("warnings");
  record["options"] = ToOptions(pInspection.fSuggested);
  record["warnings"] = warnings;
  return record;
}

void Inspect(const std::string& pFile, const sInspectOptions& pOptions) {
  // measured: the picture and its decoder; the engine renders it for a plot
  const Photo::tMemoryGate gate =
      MakeMemoryGate(pOptions.fPlot.empty() ? 24 : 44, ChooseMemoryLimit(pOptions.fMemoryLimit));
  const cInputFile input(pFile);
  Photo::sInspection inspection = Photo::NameFile(
      GetSpokenName(pFile), [&] { return Photo::InspectPicture(input.GetPath(), pOptions.fSource, gate); });
  inspection.fFile = GetSpokenName(pFile);
  inspection.fPicture.fWarnings = NameOptions(inspection.fPicture.fWarnings);
  PrintWarnings(inspection.fFile, inspection.fPicture.fWarnings);
  if (pOptions.fJson) {
    Print(Photo::ToLine(MakeRecord(pFile, inspection)) + "\n");
  } else {
    Print(DescribeInspection(inspection, GetTerminal()));
  }
  if (!pOptions.fPlot.empty()) Photo::NameFile(pOptions.fPlot, [&] { WriteFigure(inspection, pOptions); });
}

void CheckArguments(const sInspectOptions& pOptions) {
  if (std::count(pOptions.fFiles.begin(), pOptions.fFiles.end(), kStandardStream) > 1) {
    throw Photo::cFailure(Photo::eFailure::kUsage, "", "standard input (-) can be read only once");
  }
  if (pOptions.fPlot.empty()) return;
  if (pOptions.fFiles.size() > 1) throw CLI::ValidationError("--plot", "draws one picture; give one FILE");
  ChoosePlotFormat(pOptions.fPlot);
  Photo::NameFile(pOptions.fPlot, [&] {
    Photo::CheckIsAnother(pOptions.fFiles.front(), pOptions.fPlot);
    Photo::CheckReplacing(pOptions.fPlot, pOptions.fOverwrite);
  });
}

/// A picture that cannot be read does not keep the others from being looked at.
void Run(const sInspectOptions& pOptions) {
  CheckArguments(pOptions);
  const cVipsSession library;
  if (pOptions.fFiles.size() == 1) return Inspect(pOptions.fFiles.front(), pOptions);
  std::size_t failed = 0;
  for (const std::string& file : pOptions.fFiles) {
    try {
      Inspect(file, pOptions);
    } catch (const Photo::cFailure& failure) {
      if (failure.GetKind() == Photo::eFailure::kCannotWrite) throw;  // the output, not a picture
      ++failed;
      PrintMessage("quorvane: " + DescribeFailure(failure));
    }
  }
  if (failed == 0) return;
  throw Photo::cFailure(
      Photo::eFailure::kSomePictures, "",
      std::to_string(failed) + " of " + std::to_string(pOptions.fFiles.size()) + " pictures failed");
}

constexpr char kFooter[] =
    "Dynamic range is the logarithm of the 99.9 % over the 1 % quantile of the luminances above 0; full "
    "range\n"
    "that of the largest over the smallest. A decade is a factor of 10, a stop one of 2. The suggested\n"
    "sliders are those of 'quorvane tonemap --auto'.\n\n"
    "Examples:\n"
    "  quorvane inspect photo.hdr\n"
    "  quorvane inspect photo.exr --plot photo.svg --strength 90\n"
    "  quorvane inspect --json *.hdr";

}  // namespace

void AddInspectCommand(CLI::App& pProgram) {
  const auto options = std::make_shared<sInspectOptions>();
  CLI::App* const verb = pProgram.add_subcommand(
      "inspect",
      "Shows size, format, dynamic range, invalid pixels, metadata and suggested sliders of a photograph.");
  verb->add_option("FILE", options->fFiles,
                   "The photographs, of any format that tonemap reads; - for standard input")
      ->required()
      ->option_text(" ");
  AddChoiceOptions(*verb, options->fSource);
  AddPageOption(*verb, options->fSource);
  verb->add_flag("--json", options->fJson, "One JSON object per photograph and line");
  verb->add_option("--plot", options->fPlot,
                   "Draws the distribution of luminance, the curves of base and detail layer and the\n"
                   "tone curve into an .svg or .png; the sliders below apply to it")
      ->option_text("FILE");
  verb->add_flag("--overwrite", options->fOverwrite, "Replace a plot that exists (refused otherwise)");
  AddMemoryLimit(*verb, "What the work may take of memory: 4G, 500M; a picture that needs more is refused",
                 options->fMemoryLimit);
  verb->add_flag("--auto", options->fAuto, "Take the suggested sliders for the plot where none are given")
      ->group("Sliders");
  AddSliderOptions(*verb, options->fGiven);
  verb->footer(kFooter);
  verb->callback([options] { Run(*options); });
}

}  // namespace Tool
