#include "cli/Options.h"

#include <CLI/CLI.hpp>

#include <map>
#include <string>

#include "photo/render/ColorSpaceName.h"

namespace Tool {
namespace {

/// Whole numbers alone: 2.5 is none.
CLI::Validator IntegerIn(int pLowest, int pHighest) {
  const std::string range = std::to_string(pLowest) + " to " + std::to_string(pHighest);
  const auto check = [=](std::string& pText) -> std::string {
    int number = 0;
    const bool isNumber = CLI::detail::lexical_cast(pText, number);
    if (isNumber && number >= pLowest && number <= pHighest) return "";
    return pText + " is not a whole number from " + range;
  };
  return CLI::Validator(check, range);
}

/// "all", "none", or names with commas between them. Throws CLI::ValidationError.
Photo::sMetadataKinds ParseKinds(const std::string& pText) {
  if (pText == "all") return {};
  Photo::sMetadataKinds kinds{false, false, false};
  if (pText == "none") return kinds;
  const std::map<std::string, bool Photo::sMetadataKinds::*> names = {
      {"exif", &Photo::sMetadataKinds::fExif},
      {"xmp", &Photo::sMetadataKinds::fXmp},
      {"iptc", &Photo::sMetadataKinds::fIptc}};
  for (const std::string& name : CLI::detail::split(pText, ',')) {
    const auto found = names.find(name);
    if (found == names.end()) {
      throw CLI::ValidationError("--metadata",
                                 "'" + name + "' is neither all nor none, nor one of exif, xmp and iptc");
    }
    kinds.*found->second = true;
  }
  return kinds;
}

/// Throws CLI::ValidationError.
Photo::sAlphaChoice ReadAlpha(const std::string& pText) {
  if (const auto choice = Photo::ParseAlpha(pText)) return *choice;
  throw CLI::ValidationError(
      "--alpha", "'" + pText + "' is neither keep nor ignore, nor a colour such as white or ffd040");
}

}  // namespace

void AddDepthOption(CLI::App& pVerb, int& pDepth, const std::string& pDefault) {
  pVerb
      .add_option("--depth", pDepth,
                  "Bits per sample of the result: 16 for .png, .tif and .jxl, 12 for .avif, 8 for all")
      ->check(CLI::IsMember({8, 12, 16}))
      ->option_text("8|12|16 [" + pDefault + "]")
      ->group("Result");
}

void AddFileOptions(CLI::App& pVerb, Photo::sFileOptions& pOptions) {
  pVerb
      .add_option("--quality", pOptions.fQuality,
                  "Quality of .jpg, .webp, .avif and .jxl: 100 is best and largest\n"
                  "(defaults: 90 for .avif, 95 for the others); .jxl of 100, and of other colours\n"
                  "than sRGB, loses nothing")
      ->check(IntegerIn(1, 100))
      ->option_text("1..100 [95]")
      ->group("Result");
  pVerb
      .add_option("--compression", pOptions.fCompression,
                  "Size of .png and .tif against time: 0 is fastest, 9 smallest; the picture stays the same")
      ->check(IntegerIn(0, 9))
      ->option_text("0..9 [3]")
      ->group("Result");
  pVerb
      .add_option_function<std::string>(
          "--metadata", [&pOptions](const std::string& pText) { pOptions.fMetadata = ParseKinds(pText); },
          "What the result keeps of the input's metadata: all, none, or some of exif (with GPS),\n"
          "xmp and iptc, with commas between them; the profile is always embedded. Without xmp,\n"
          "the settings used are not noted in the result either")
      ->option_text("all|none|exif,xmp,iptc [all]")
      ->group("Result");
}

void AddChoiceOptions(CLI::App& pVerb, Photo::sPictureChoice& pChoice) {
  pVerb
      .add_option("--part", pChoice.fPart,
                  "The part of an OpenEXR file, by its number from 0 on or by its name; the first one with\n"
                  "colours otherwise")
      ->option_text("N|NAME");
  pVerb
      .add_option("--layer", pChoice.fLayer,
                  "The layer of an OpenEXR file: diffuse stands for diffuse.R, diffuse.G and diffuse.B")
      ->option_text("NAME");
}

void AddPageOption(CLI::App& pVerb, Photo::sPictureChoice& pChoice) {
  pVerb
      .add_option("--page", pChoice.fPage,
                  "The page of a .tif, or the picture of another file that holds several, counted from 1;\n"
                  "the first or main one otherwise")
      ->check(IntegerIn(1, 1000000))
      ->option_text("N");
}

void AddOutputOptions(CLI::App& pVerb, Photo::sOutputOptions& pOptions) {
  AddDepthOption(pVerb, pOptions.fDepth, "8");
  AddFileOptions(pVerb, pOptions.fFile);
  std::map<std::string, TmEngine::eColorSpaceID> names;
  for (const Photo::sColorSpaceName& name : Photo::kColorSpaceNames) names[name.fName] = name.fColorSpace;
  pVerb
      .add_option_function<std::string>(
          "--colorspace",
          [names, &pOptions](const std::string& pName) { pOptions.fColorSpace = names.at(pName); },
          "Colour space of the result, whose profile is embedded")
      ->check(CLI::IsMember({"srgb", "adobergb", "prophoto"}))
      ->option_text("srgb|adobergb|prophoto [srgb]")
      ->group("Result");
  pVerb
      .add_option_function<std::string>(
          "--alpha", [&pOptions](const std::string& pText) { pOptions.fAlpha = ReadAlpha(pText); },
          "Transparency: keep writes it beside the colours, ignore takes the stored colours as they are,\n"
          "and a colour (black, white, grey, or digits of sRGB such as ffd040) is what the result is laid\n"
          "over. Light without cover, as of flames and glow in OpenEXR, stays light in all cases")
      ->option_text("keep|ignore|COLOUR [keep]")
      ->group("Result");
}

}  // namespace Tool
