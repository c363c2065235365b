// Time and memory of whole calls: the exported function and the plain build of the same arithmetic (see
// tests/reference) in turn, on the example scene, repeated to fill the size. Every figure is a median.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Usage.h"
#include "examples/scene/HostPixels.h"
#include "export/quorvane.h"
#include "tests/reference/ReferenceToneMapper.h"

namespace {

constexpr double kMega = 1e6;
constexpr double kPlainBytes = 60.0;  // per pixel; more than either build takes

struct sSize {
  std::string fName;
  int fWidth;
  int fHeight;

  double Pixels() const { return static_cast<double>(fWidth) * fHeight; }
};

struct sDepth {
  int fInput;
  int fOutput;
};

struct sArguments {
  std::vector<std::string> fSizes = {"2", "24"};
  std::vector<std::string> fDepths = {"16-16"};
  int fRounds = 3;
  double fPlainLimit = 24.0;
  std::string fJson;
};

const std::vector<std::string> kAllSizes = {"0.25", "2", "24", "100", "200", "100000x50", "50x100000"};
const std::vector<std::string> kAllDepths = {"16-16", "32-8", "8-8"};

// ---- Pictures ----

struct sPicture {
  tm_quorvane_image fImage;
  std::vector<unsigned char> fPixels;
};

/// Megapixels of a picture of 3:2, or WIDTHxHEIGHT.
sSize SizeOf(const std::string& pName) {
  int width = 0, height = 0;
  if (std::sscanf(pName.c_str(), "%dx%d", &width, &height) == 2) return {pName, width, height};
  const double pixels = std::strtod(pName.c_str(), nullptr) * kMega;
  width = static_cast<int>(std::lround(std::sqrt(pixels * 1.5)));
  return {pName + " MP", width, static_cast<int>(std::lround(pixels / width))};
}

sDepth DepthOf(const std::string& pName) {
  sDepth depth = {};
  std::sscanf(pName.c_str(), "%d-%d", &depth.fInput, &depth.fOutput);
  return depth;
}

std::size_t OutputBytes(const tm_quorvane_image& pImage) {
  return static_cast<std::size_t>(pImage.width) * static_cast<std::size_t>(pImage.height) * 3 *
         static_cast<std::size_t>(pImage.output_bits / 8);
}

/// The whole scene, in pictures of any shape; larger ones show it several times.
sPicture MakePicture(const sSize& pSize, const sDepth& pDepth) {
  Scene::sSceneOptions options;
  options.fWidth = std::min(options.fWidth, pSize.fWidth);
  options.fHeight = std::min(options.fHeight, pSize.fHeight);
  const tm_quorvane_image image = {
      pSize.fWidth, pSize.fHeight, 3, pDepth.fInput, pDepth.fOutput, 0, 3 * pSize.fWidth, 0, {0, 0}};
  return {image, Scene::HostPixels(Scene::RenderScene(options), pSize.fWidth, pSize.fHeight, pDepth.fInput)};
}

// ---- Builds ----

using tCall = int (*)(const sPicture&, unsigned char*);

int CallEngine(const sPicture& pPicture, unsigned char* pOutput) {
  tm_quorvane_settings settings = {};
  return cpp_tm_quorvane(&pPicture.fImage, nullptr, 0, &settings, pPicture.fPixels.data(), pOutput);
}

int CallPlain(const sPicture& pPicture, unsigned char* pOutput) {
  tm_quorvane_settings settings = {};
  return Reference::ToneMap(pPicture.fImage, 0, settings, pPicture.fPixels.data(), pOutput, nullptr);
}

// ---- Measuring ----

/// One build's calls: nanoseconds and bytes per pixel, one value per call.
struct sCalls {
  std::vector<double> fTotal, fSystem, fBytes;

  double Total() const { return Bench::Median(fTotal); }
  double System() const { return Bench::Median(fSystem); }
  double Bytes() const { return Bench::Median(fBytes); }
};

struct sResult {
  sSize fSize;
  sDepth fDepth;
  sCalls fEngine;
  sCalls fPlain;  // empty above the limit
  double fRatio;  // engine to plain; 0 when there is none
};

void Measure(tCall pCall, const sPicture& pPicture, unsigned char* pOutput, sCalls& pTo) {
  const Bench::cSilence silence;
  const double pixels = static_cast<double>(pPicture.fImage.width) * pPicture.fImage.height;
  Bench::WarmMemory(kPlainBytes * pixels);
  const double before = Bench::RestartPeak();
  const Bench::sProcessorTime start = Bench::ProcessorTime();
  if (pCall(pPicture, pOutput) != 1) throw std::runtime_error("a call failed");
  const Bench::sProcessorTime end = Bench::ProcessorTime();
  pTo.fTotal.push_back((end.fTotal - start.fTotal) * 1e9 / pixels);
  pTo.fSystem.push_back((end.fSystem - start.fSystem) * 1e9 / pixels);
  pTo.fBytes.push_back((Bench::PeakBytes() - before) / pixels);
}

/// The median of the ratios of calls that followed each other: what else runs weighs on both.
double RatioOf(const sCalls& pEngine, const sCalls& pPlain) {
  std::vector<double> ratios;
  for (std::size_t i = 0; i < pPlain.fTotal.size(); ++i) {
    ratios.push_back(pEngine.fTotal[i] / pPlain.fTotal[i]);
  }
  return Bench::Median(ratios);
}

sResult MeasureInTurn(const sSize& pSize, const sDepth& pDepth, int pRounds, bool pWithPlain) {
  const sPicture picture = MakePicture(pSize, pDepth);
  std::vector<unsigned char> output(OutputBytes(picture.fImage), 1);
  std::vector<unsigned char> plainOutput(pWithPlain ? output.size() : 0, 2);
  sResult result = {pSize, pDepth, {}, {}, 0.0};
  for (int round = 0; round < pRounds; ++round) {
    Measure(CallEngine, picture, output.data(), result.fEngine);
    if (pWithPlain) Measure(CallPlain, picture, plainOutput.data(), result.fPlain);
  }
  if (pWithPlain && output != plainOutput) throw std::runtime_error("the builds' pictures differ");
  result.fRatio = RatioOf(result.fEngine, result.fPlain);
  return result;
}

bool FitsMemory(const sSize& pSize, const sDepth& pDepth) {
  const double hostBytes = 3.0 * (pDepth.fInput + 2.0 * pDepth.fOutput) / 8.0;
  return pSize.Pixels() * (kPlainBytes + hostBytes) < Bench::AvailableBytes();
}

// ---- Printing ----

void PrintHeading() {
  std::printf(
      "nanoseconds of processor time per pixel (the system's part), bytes per pixel above the host's\n\n");
  std::printf("%-12s %-6s  %22s  %22s  %s\n", "size", "bits", "engine", "plain build", "ratio");
}

void PrintCalls(const sCalls& pCalls) {
  if (pCalls.fTotal.empty()) return void(std::printf("  %22s", ""));
  std::printf("  %7.1f (%4.1f) %5.1f B", pCalls.Total(), pCalls.System(), pCalls.Bytes());
}

void PrintResult(const sResult& pResult) {
  std::printf("%-12s %2d-%-3d", pResult.fSize.fName.c_str(), pResult.fDepth.fInput, pResult.fDepth.fOutput);
  PrintCalls(pResult.fEngine);
  PrintCalls(pResult.fPlain);
  if (pResult.fRatio > 0.0) std::printf("  %.3f", pResult.fRatio);
  std::printf("\n");
  std::fflush(stdout);
}

void WriteCalls(std::FILE* pTo, const char* pName, const sCalls& pCalls) {
  if (pCalls.fTotal.empty()) return;
  std::fprintf(pTo, ", \"%s\": {\"ns\": %.2f, \"system_ns\": %.2f, \"bytes\": %.2f}", pName, pCalls.Total(),
               pCalls.System(), pCalls.Bytes());
}

void WriteJson(const std::string& pPath, const std::vector<sResult>& pResults) {
  std::FILE* const file = std::fopen(pPath.c_str(), "w");
  if (file == nullptr) throw std::runtime_error("cannot write " + pPath);
  const char* separator = "[\n";
  for (const sResult& result : pResults) {
    std::fprintf(file, "%s  {\"size\": \"%s\", \"width\": %d, \"height\": %d, \"input\": %d, \"output\": %d",
                 separator, result.fSize.fName.c_str(), result.fSize.fWidth, result.fSize.fHeight,
                 result.fDepth.fInput, result.fDepth.fOutput);
    WriteCalls(file, "engine", result.fEngine);
    WriteCalls(file, "plain", result.fPlain);
    std::fprintf(file, ", \"ratio\": %.4f}", result.fRatio);
    separator = ",\n";
  }
  std::fprintf(file, "\n]\n");
  std::fclose(file);
}

// ---- The program ----

/// Above the limit the plain build is not run; its largest picture of that depth is taken in its place.
void RelateToLargest(const std::vector<sResult>& pDone, sResult& pResult) {
  if (!pResult.fPlain.fTotal.empty()) return;
  double largest = 0.0;
  for (const sResult& done : pDone) {
    if (done.fDepth.fInput != pResult.fDepth.fInput || done.fDepth.fOutput != pResult.fDepth.fOutput)
      continue;
    if (done.fPlain.fTotal.empty() || done.fSize.Pixels() <= largest) continue;
    largest = done.fSize.Pixels();
    pResult.fRatio = pResult.fEngine.Total() / done.fPlain.Total();
  }
}

/// Small pictures take more calls: what else runs disturbs short ones more.
int RoundsOf(const sSize& pSize, int pRounds) {
  return static_cast<int>(pRounds * std::clamp(2.0 * kMega / pSize.Pixels(), 1.0, 8.0));
}

void MeasureAll(const sArguments& pArguments) {
  PrintHeading();
  std::vector<sResult> results;
  for (const std::string& depthName : pArguments.fDepths) {
    for (const std::string& sizeName : pArguments.fSizes) {
      const sSize size = SizeOf(sizeName);
      const sDepth depth = DepthOf(depthName);
      if (!FitsMemory(size, depth)) {
        std::printf("%-12s %-6s  not enough memory now\n", size.fName.c_str(), depthName.c_str());
        continue;
      }
      const bool withPlain = size.Pixels() <= 1.001 * kMega * pArguments.fPlainLimit;
      results.push_back(MeasureInTurn(size, depth, RoundsOf(size, pArguments.fRounds), withPlain));
      RelateToLargest(results, results.back());
      PrintResult(results.back());
    }
  }
  if (!pArguments.fJson.empty()) WriteJson(pArguments.fJson, results);
}

std::string CheckSize(const std::string& pName) {
  if (pName == "all") return "";
  const sSize size = SizeOf(pName);
  return size.fWidth > 0 && size.fHeight > 0 ? "" : "'" + pName + "' is neither megapixels nor WIDTHxHEIGHT";
}

void Declare(CLI::App& pApp, sArguments& pTo) {
  std::vector<std::string> depths = kAllDepths;
  depths.insert(depths.end(), {"16-8", "8-16", "32-16", "all"});
  pApp.add_option("--sizes", pTo.fSizes, "Megapixels of a 3:2 picture or WIDTHxHEIGHT, or all; default 2,24")
      ->delimiter(',')
      ->check(CheckSize);
  pApp.add_option("--depths", pTo.fDepths, "Bits in and out, such as 16-16 or 32-8 (32: RGBE), or all")
      ->delimiter(',')
      ->check(CLI::IsMember(depths));
  pApp.add_option("--rounds", pTo.fRounds, "Calls of each build; small pictures take up to 8 times as many")
      ->check(CLI::Range(1, 1000))
      ->capture_default_str();
  pApp.add_option("--plain-limit", pTo.fPlainLimit, "Megapixels up to which the plain build is run")
      ->capture_default_str();
  pApp.add_option("--json", pTo.fJson, "Writes the figures to this file as well");
}

}  // namespace

int main(int pCount, char** pArguments) {
  sArguments arguments;
  CLI::App app("Measures whole calls of the engine beside a plain build of the same arithmetic.");
  Declare(app, arguments);
  CLI11_PARSE(app, pCount, pArguments);
  if (arguments.fSizes.front() == "all") arguments.fSizes = kAllSizes;
  if (arguments.fDepths.front() == "all") arguments.fDepths = kAllDepths;
  try {
    MeasureAll(arguments);
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "quorvane-bench: %s\n", failure.what());
    return 1;
  }
  return 0;
}
