#include "cli/CompareCommand.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include <cstdint>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "cli/Options.h"
#include "cli/batch/MemoryBudget.h"
#include "cli/batch/StandardStreams.h"
#include "cli/batch/VipsSession.h"
#include "cli/plot/SideBySide.h"
#include "cli/terminal/Console.h"
#include "cli/terminal/FailureText.h"
#include "cli/terminal/Warnings.h"
#include "photo/Json.h"
#include "photo/base/Failure.h"
#include "photo/decode/LdrReader.h"
#include "photo/encode/OutputFormat.h"
#include "photo/encode/PictureWriter.h"
#include "photo/picture/PictureDifference.h"

namespace Tool {
namespace {

constexpr char kVerb[] = "compare";
constexpr std::int64_t kBytesPerPixel = 32;  // of both pictures, and of what is drawn of them; measured
constexpr const char* kChannels[] = {"red", "green", "blue"};

struct sCompareOptions {
  std::string fA;
  std::string fB;
  std::string fOutput;
  Photo::sPictureChoice fSource{.fTakesSingle = true};
  bool fOverwrite = false;
  std::optional<double> fFailAbove;
  bool fJson = false;
  std::int64_t fMemoryLimit = 0;  ///< As ChooseMemoryLimit takes it.
};

/// pLimit: of memory, for both pictures together.
Photo::sLdrPicture Read(const std::string& pFile, const Photo::sPictureChoice& pChoice, std::int64_t pLimit) {
  const cInputFile input(pFile);
  Photo::sLdrPicture picture = Photo::NameFile(GetSpokenName(pFile), [&] {
    return Photo::ReadLdrPicture(input.GetPath(), kVerb, pChoice, MakeMemoryGate(kBytesPerPixel, pLimit));
  });
  PrintWarnings(GetSpokenName(pFile), NameOptions(picture.fWarnings));
  return picture;
}

void CheckSizes(const sCompareOptions& pOptions, const Photo::sLdrPicture& pA, const Photo::sLdrPicture& pB) {
  const TmEngine::cBitmapLDR& a = *pA.fBitmap;
  const TmEngine::cBitmapLDR& b = *pB.fBitmap;
  if (a.GetWidth() == b.GetWidth() && a.GetHeight() == b.GetHeight()) return;
  throw Photo::cFailure(
      Photo::eFailure::kProcessing, GetSpokenName(pOptions.fB),
      fmt::format("its size is {} x {}, that of ", b.GetWidth(), b.GetHeight()) + GetSpokenName(pOptions.fA) +
          fmt::format(" {} x {}; only pictures of one size can be compared", a.GetWidth(), a.GetHeight()));
}

std::string Describe(const Photo::sPictureDifference& pDifference) {
  if (pDifference.fAll.fLargest == 0.0) return "The pictures are equal.\n";
  std::string text = "8-bit codes    largest      mean\n";
  const auto add = [&](const char* pName, const Photo::sPictureDifference::sExtent& pExtent) {
    text += fmt::format("{:<12} {:9.2f} {:9.4f}\n", pName, pExtent.fLargest, pExtent.fMean);
  };
  for (int i = 0; i < 3; ++i) add(kChannels[i], pDifference.fChannels[i]);
  add("all", pDifference.fAll);
  text += fmt::format("99 % of the samples differ by {:.2f} or less; {:.4g} % of the pixels differ.\n",
                      pDifference.fQuantile99, 100.0 * pDifference.fDifferentShare);
  return text + fmt::format("The largest difference is at column {}, row {}, counted from 0.\n",
                            pDifference.fLargestX, pDifference.fLargestY);
}

nlohmann::ordered_json ToJson(const Photo::sPictureDifference& pDifference) {
  const auto extent = [](const Photo::sPictureDifference::sExtent& pExtent) {
    return nlohmann::ordered_json{{"largest", pExtent.fLargest}, {"mean", pExtent.fMean}};
  };
  nlohmann::ordered_json json;
  for (int i = 0; i < 3; ++i) json[kChannels[i]] = extent(pDifference.fChannels[i]);
  json["all"] = extent(pDifference.fAll);
  json["quantile_99"] = pDifference.fQuantile99;
  json["different_share"] = pDifference.fDifferentShare;
  json["largest_at"] = {pDifference.fLargestX, pDifference.fLargestY};
  return json;
}

void CheckArguments(const sCompareOptions& pOptions) {
  if (pOptions.fA == kStandardStream && pOptions.fB == kStandardStream) {
    throw Photo::cFailure(Photo::eFailure::kUsage, "", "standard input (-) can be A or B, not both");
  }
  if (pOptions.fOutput.empty()) return;
  if (Photo::GetExtension(pOptions.fOutput) != ".png") {
    throw Photo::cFailure(Photo::eFailure::kUsage, pOptions.fOutput,
                          "the picture of the comparison is a .png");
  }
  Photo::NameFile(pOptions.fOutput, [&] {
    Photo::CheckIsAnother(pOptions.fA, pOptions.fOutput);
    Photo::CheckIsAnother(pOptions.fB, pOptions.fOutput);
    Photo::CheckReplacing(pOptions.fOutput, pOptions.fOverwrite);
  });
}

void Run(const sCompareOptions& pOptions) {
  CheckArguments(pOptions);
  const cVipsSession library;
  const std::int64_t limit = ChooseMemoryLimit(pOptions.fMemoryLimit);
  const Photo::sLdrPicture a = Read(pOptions.fA, pOptions.fSource, limit);
  const Photo::sLdrPicture b = Read(pOptions.fB, pOptions.fSource, limit);
  CheckSizes(pOptions, a, b);
  if (a.fProfile != b.fProfile || a.fBeyondWhite != b.fBeyondWhite) {
    PrintWarnings(GetSpokenName(pOptions.fB), {"its colour profile is not that of " +
                                               GetSpokenName(pOptions.fA) + "; codes are compared"});
  }
  const Photo::sPictureDifference difference = Photo::ComparePictures(*a.fBitmap, *b.fBitmap);
  if (!pOptions.fOutput.empty()) {
    Photo::NameFile(pOptions.fOutput, [&] {
      Photo::cTempFile file(pOptions.fOutput, pOptions.fOverwrite);
      WriteSideBySide(*a.fBitmap, *b.fBitmap, ChooseAmplification(difference), a.fProfile, file);
    });
  }
  Print(pOptions.fJson ? Photo::ToLine(ToJson(difference)) + "\n" : Describe(difference));
  if (pOptions.fFailAbove && difference.fAll.fLargest > *pOptions.fFailAbove) {
    throw Photo::cFailure(Photo::eFailure::kSomePictures, "",
                          fmt::format("the largest difference, {:.2f}, is above {:g}",
                                      difference.fAll.fLargest, *pOptions.fFailAbove));
  }
}

}  // namespace

void AddCompareCommand(CLI::App& pProgram) {
  const auto options = std::make_shared<sCompareOptions>();
  CLI::App* const verb =
      pProgram.add_subcommand(kVerb, "Measures how much two finished pictures of one size differ.");
  verb->add_option("A", options->fA, "A picture of 8 or 16 bits")->required()->option_text(" ");
  verb->add_option("B", options->fB, "Another; A or B may be -, standard input")
      ->required()
      ->option_text(" ");
  AddPageOption(*verb, options->fSource);
  verb->add_option("-o,--output", options->fOutput,
                   "Draws A, B and their amplified difference side by side; a .png")
      ->option_text("FILE");
  verb->add_flag("--overwrite", options->fOverwrite,
                 "Replace a picture of a comparison that exists (refused otherwise)");
  verb->add_option("--fail-above", options->fFailAbove,
                   "Exit with 1 when the largest difference is above N 8-bit codes")
      ->check(CLI::Range(0.0, 255.0))
      ->option_text("N");
  AddMemoryLimit(*verb, "What the work may take of memory: 4G, 500M; a picture that needs more is refused",
                 options->fMemoryLimit);
  verb->add_flag("--json", options->fJson, "One JSON object instead of words");
  verb->footer(
      "Differences are counted in 8-bit codes; a 16-bit code is 1/257 of one. Samples are compared as they "
      "are,\n"
      "whatever the profiles say, and without alpha. The exit code is 0 when the pictures were compared, "
      "equal or "
      "not.\n\n"
      "Examples:\n"
      "  quorvane compare before.png after.png -o side.png\n"
      "  quorvane compare --fail-above 1 expected.png result.png");
  verb->callback([options] { Run(*options); });
}

}  // namespace Tool
