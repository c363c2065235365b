#include "photo/Inspection.h"

#include <nlohmann/json.hpp>

#include <cmath>

#include "cli/terminal/Console.h"
#include "cli/terminal/TextHistogram.h"
#include "photo/base/Printable.h"
#include "photo/base/Printf.h"
#include "photo/decode/PictureReader.h"
#include "photo/picture/Alpha.h"
#include "photo/picture/Panorama.h"
#include "photo/render/AutoSettings.h"

namespace Cli {
namespace {

constexpr double kStopsPerDecade = 3.321928094887362;

void AddLine(std::string& pTo, const char* pName, const std::string& pText) {
  if (!pText.empty()) pTo += Printf("  %-15s", pName) + ToPrintable(pText) + "\n";
}

std::string DescribeSize(const sPicture& pPicture) {
  const int width = pPicture.fBitmap->GetWidth();
  const int height = pPicture.fBitmap->GetHeight();
  const std::string size = Printf("%d x %d pixels", width, height);
  const double millions = width * 1e-6 * height;
  return millions < 0.1 ? size : size + Printf(" (%.1f megapixels)", millions);
}

std::string DescribeFormat(const sPicture& pPicture) {
  return Printf("%s, %d bits a sample%s", pPicture.fFormat.empty() ? "picture" : pPicture.fFormat.c_str(),
                pPicture.fFileDepth, pPicture.fAlpha.empty() ? "" : ", alpha");
}

std::string DescribeRange(double pDecades) {
  return Printf("%.2f decades (%.1f stops)", pDecades, pDecades * kStopsPerDecade);
}

std::string DescribeRepairs(const sRepairs& pRepairs) {
  if (pRepairs.fNaN + pRepairs.fInfinite + pRepairs.fOutliers + pRepairs.fNegative == 0) return "none";
  return Printf("%lld not a number, %lld infinite, %lld outliers, %lld negative",
                static_cast<long long>(pRepairs.fNaN), static_cast<long long>(pRepairs.fInfinite),
                static_cast<long long>(pRepairs.fOutliers), static_cast<long long>(pRepairs.fNegative));
}

void AddLight(std::string& pTo, const sPictureStatistics& pStatistics) {
  if (pStatistics.CountPositive() == 0) return AddLine(pTo, "Dynamic range", "none: no pixel has light");
  AddLine(
      pTo, "Dynamic range",
      DescribeRange(pStatistics.GetDynamicRange()) + ", from the 1 % to the 99.9 % quantile of luminance");
  AddLine(pTo, "Full range",
          DescribeRange(pStatistics.fLogMax - pStatistics.fLogMin) +
              Printf(", 10^%.2f to 10^%.2f of the file's white", pStatistics.fLogMin, pStatistics.fLogMax));
  if (pStatistics.fDark > 0) AddLine(pTo, "Without light", std::to_string(pStatistics.fDark) + " pixels");
}

const char* NameWrapReason(const sInspection& pInspection) {
  if (!pInspection.fWraps) return "none";
  return pInspection.fPicture.fIsPanorama ? "metadata" : "edges";
}

std::string DescribeWrap(const sInspection& pInspection) {
  if (!pInspection.fWraps) return "do not meet";
  return pInspection.fPicture.fIsPanorama ? "meet, as the metadata say; tonemap wraps around"
                                          : "look as if they met; tonemap wraps around";
}

/// "0 (depth): Z"; nothing for files of one part and layer.
void AddParts(std::string& pTo, const sPicture& pPicture) {
  const std::vector<sPicturePart>& parts = pPicture.fParts;
  if (parts.size() < 2 && (parts.empty() || parts.front().fLayers.size() < 2)) return;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    std::string text = std::to_string(i) + (parts[i].fName.empty() ? "" : " (" + parts[i].fName + ")") + ":";
    for (const std::string& channel : parts[i].fChannels) text += " " + channel;
    AddLine(pTo, i == 0 ? "Parts" : "", text);
  }
}

nlohmann::ordered_json PartsToJson(const std::vector<sPicturePart>& pParts) {
  auto json = nlohmann::ordered_json::array();
  for (const sPicturePart& part : pParts) {
    json.push_back({{"name", part.fName}, {"channels", part.fChannels}, {"layers", part.fLayers}});
  }
  return json;
}

void AddMetadata(std::string& pTo, const sInspection& pInspection) {
  const sMetadataSummary& metadata = pInspection.fMetadata;
  AddLine(pTo, "Camera", metadata.fCamera);
  AddLine(pTo, "Lens", metadata.fLens);
  AddLine(pTo, "Exposure", metadata.fExposure);
  AddLine(pTo, "Distance", metadata.fDistance);
  AddLine(pTo, "Date", metadata.fDate);
  AddLine(pTo, "Description", metadata.fDescription);
  AddLine(pTo, "Copyright", metadata.fCopyright);
  AddLine(pTo, "GPS position", metadata.fPosition.empty() ? "no" : metadata.fPosition);
  AddLine(pTo, "Panorama", pInspection.fPicture.fIsPanorama ? "yes" : "not stated");
  AddLine(pTo, "Edges", DescribeWrap(pInspection));
}

nlohmann::ordered_json LightToJson(const sPictureStatistics& pStatistics) {
  if (pStatistics.CountPositive() == 0) return nullptr;
  nlohmann::ordered_json quantiles;
  for (const auto& [name, share] : {std::pair{"0.01", 0.01}, {"0.5", 0.5}, {"0.999", 0.999}}) {
    quantiles[name] = pStatistics.GetQuantile(share);
  }
  const double from = std::floor(pStatistics.fLogMin * 10.0) / 10.0;
  return {{"dynamic_range", pStatistics.GetDynamicRange()},
          {"min", pStatistics.fLogMin},
          {"max", pStatistics.fLogMax},
          {"mean", pStatistics.fLogMean},
          {"quantiles", quantiles},
          {"histogram", {{"from", from}, {"step", 0.1}, {"counts", pStatistics.CountTenths(from)}}}};
}

nlohmann::ordered_json MetadataToJson(const sInspection& pInspection) {
  const sMetadataSummary& metadata = pInspection.fMetadata;
  return {{"camera", metadata.fCamera},       {"lens", metadata.fLens},
          {"exposure", metadata.fExposure},   {"distance", metadata.fDistance},
          {"date", metadata.fDate},           {"description", metadata.fDescription},
          {"copyright", metadata.fCopyright}, {"gps", !metadata.fPosition.empty()},
          {"position", metadata.fPosition},   {"panorama", pInspection.fPicture.fIsPanorama}};
}

nlohmann::ordered_json SlidersToJson(const sSettings& pSettings) {
  nlohmann::ordered_json sliders;
  for (const sSlider& slider : GetSliders())
    sliders[slider.fName] = nlohmann::json::parse(ToText(pSettings.*slider.fField));
  return sliders;
}

}  // namespace

sInspection InspectPicture(const std::string& pFile, const sPictureChoice& pChoice) {
  sInspection inspection;
  inspection.fFile = pFile;
  inspection.fPicture = ReadPicture(pFile, pChoice);
  const std::vector<std::string>& warnings = inspection.fPicture.fMetadata.GetWarnings();
  inspection.fPicture.fWarnings.insert(inspection.fPicture.fWarnings.end(), warnings.begin(), warnings.end());
  inspection.fStatistics = MeasurePicture(inspection.fPicture);
  inspection.fMetadata = SummariseMetadata(inspection.fPicture.fMetadata);
  SettleAlpha(inspection.fPicture);  // what is measured above is what the file holds
  inspection.fWraps = ChooseWrap(eWrap::kAuto, inspection.fPicture);
  inspection.fSuggested = SuggestSettings(SamplePicture(inspection.fPicture));
  return inspection;
}

std::string ToOptions(const sSettings& pSettings) {
  std::string options;
  for (const sSlider& slider : GetSliders()) {
    const float value = pSettings.*slider.fField;
    if (value == sSettings().*slider.fField) continue;
    options += Printf("%s--%s %s", options.empty() ? "" : " ", slider.fName, ToText(value).c_str());
  }
  return options;
}

std::string DescribeInspection(const sInspection& pInspection, const sTerminal& pTerminal) {
  const sPicture& picture = pInspection.fPicture;
  std::string text = NameForOutput(pInspection.fFile) + "\n";
  AddLine(text, "Size", DescribeSize(picture));
  AddLine(text, "Format", DescribeFormat(picture));
  AddLine(text, "Colour space", picture.fColorSpace);
  AddParts(text, picture);
  AddLight(text, pInspection.fStatistics);
  AddLine(text, "Bad pixels", DescribeRepairs(picture.fRepairs));
  AddMetadata(text, pInspection);
  const std::string options = ToOptions(pInspection.fSuggested);
  AddLine(text, "Suggested", options.empty() ? "the defaults" : options);
  const std::string histogram = DrawTextHistogram(pInspection.fStatistics, pTerminal);
  if (!histogram.empty()) text += "  Luminance, log10 of the file's white:\n" + histogram;
  return text;
}

nlohmann::ordered_json ToJson(const sInspection& pInspection) {
  const sPicture& picture = pInspection.fPicture;
  return {{"input", pInspection.fFile},
          {"width", picture.fBitmap->GetWidth()},
          {"height", picture.fBitmap->GetHeight()},
          {"format", picture.fFormat},
          {"depth", picture.fFileDepth},
          {"alpha", !picture.fAlpha.empty()},
          {"parts", PartsToJson(picture.fParts)},
          {"color_space", picture.fColorSpace},
          {"pixels", pInspection.fStatistics.fPixels},
          {"dark", pInspection.fStatistics.fDark},
          {"repaired",
           {{"nan", picture.fRepairs.fNaN},
            {"infinite", picture.fRepairs.fInfinite},
            {"outliers", picture.fRepairs.fOutliers},
            {"negative", picture.fRepairs.fNegative}}},
          {"log_luminance", LightToJson(pInspection.fStatistics)},
          {"metadata", MetadataToJson(pInspection)},
          {"wrap", {{"horizontal", pInspection.fWraps}, {"reason", NameWrapReason(pInspection)}}},
          {"suggested", SlidersToJson(pInspection.fSuggested)},
          {"options", ToOptions(pInspection.fSuggested)},
          {"warnings", ToPrintable(picture.fWarnings)}};
}

}  // namespace Cli
