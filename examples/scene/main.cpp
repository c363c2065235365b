#include <CLI/CLI.hpp>
#include <iostream>

#include "examples/scene/Render.h"
#include "examples/scene/WriteExr.h"
#include "examples/scene/WriteHdr.h"

namespace {

constexpr int kUsage = 2;
constexpr int kCannotWrite = 4;
constexpr int kProcessing = 5;

constexpr char kHelp[] =
    "Renders a high-dynamic-range picture to try tone mapping on: a room with a window on a sunlit "
    "landscape\n"
    "and a lamp in a dark corner, or a seamless 360-degree panorama of the same room.";

constexpr char kExamples[] =
    "Pixels are linear light with sRGB primaries; a white wall indoors is about 1.0, the brightest cloud "
    "40.\n"
    "The same options always give the same picture.\n\n"
    "Examples:\n"
    "  quorvane-scene room.hdr\n"
    "  quorvane-scene --view panorama --width 2048 --height 1024 panorama.exr\n\n"
    "Exit codes: 0 done, 2 wrong usage, 4 cannot write the picture, 5 rendering failed.";

struct sArguments {
  Scene::sSceneOptions fOptions;
  std::string fView = "room";
  std::string fOut;
};

bool IsExr(const std::string& pPath) {
  return CLI::detail::to_lower(pPath).ends_with(".exr");
}

std::string CheckEnding(const std::string& pPath) {
  if (IsExr(pPath) || CLI::detail::to_lower(pPath).ends_with(".hdr")) return "";
  return "'" + pPath + "' must end in .hdr or .exr";
}

void Declare(CLI::App& pApp, sArguments& pTo) {
  pApp.add_option("OUT", pTo.fOut,
                  "The picture to write: .hdr (Radiance RGBE) or .exr (OpenEXR, 32-bit float)")
      ->required()
      ->check(CheckEnding);
  pApp.add_option("--view", pTo.fView, "room (a photograph) or panorama (360 degrees, equirectangular)")
      ->check(CLI::IsMember({"room", "panorama"}).description(""))
      ->type_name("VIEW")
      ->capture_default_str();
  pApp.add_option("--width", pTo.fOptions.fWidth, "Width in pixels; default 1200, panorama 1600")
      ->check(CLI::Range(1, 32768).description(""))
      ->type_name("N");
  pApp.add_option("--height", pTo.fOptions.fHeight,
                  "Height in pixels; default 2/3 of the width, panorama 1/2")
      ->check(CLI::Range(1, 32768).description(""))
      ->type_name("N");
  pApp.add_option("--seed", pTo.fOptions.fSeed, "Another number gives another film grain")
      ->type_name("N")
      ->capture_default_str();
  pApp.footer(kExamples);
}

/// Sizes that were not given follow from the view and from each other.
void FillSizes(const CLI::App& pApp, Scene::sSceneOptions& pOptions) {
  const bool isPanorama = pOptions.fView == Scene::eView::Panorama;
  const bool hasHeight = pApp.count("--height") > 0;
  if (pApp.count("--width") == 0) {
    const int fromHeight = isPanorama ? pOptions.fHeight * 2 : pOptions.fHeight * 3 / 2;
    pOptions.fWidth = hasHeight ? std::min(std::max(fromHeight, 1), 32768) : isPanorama ? 1600 : 1200;
  }
  if (!hasHeight) pOptions.fHeight = std::max(1, isPanorama ? pOptions.fWidth / 2 : pOptions.fWidth * 2 / 3);
}

}  // namespace

int main(int pCount, char** pValues) {
  CLI::App app(kHelp, "quorvane-scene");
  sArguments arguments;
  Declare(app, arguments);
  try {
    app.parse(pCount, pValues);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kUsage;
  }
  if (arguments.fView == "panorama") arguments.fOptions.fView = Scene::eView::Panorama;
  FillSizes(app, arguments.fOptions);
  Scene::sHdrPicture picture;
  try {
    picture = RenderScene(arguments.fOptions);
  } catch (const std::exception& exception) {
    std::cerr << "quorvane-scene: cannot render: " << exception.what() << "\n";
    return kProcessing;
  }
  try {
    IsExr(arguments.fOut) ? WriteExr(picture, arguments.fOut) : WriteHdr(picture, arguments.fOut);
  } catch (const std::exception& exception) {
    std::cerr << "quorvane-scene: " << exception.what() << "\n";
    return kCannotWrite;
  }
  return 0;
}
