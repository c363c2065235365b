#include "cli/terminal/InspectionText.h"

#include <fmt/format.h>

#include "cli/terminal/Console.h"
#include "cli/terminal/TextHistogram.h"
#include "photo/Printable.h"

namespace Tool {
namespace {

constexpr double kStopsPerDecade = 3.321928094887362;

void AddLine(std::string& pTo, const char* pName, const std::string& pText) {
  if (!pText.empty()) pTo += fmt::format("  {:<15}", pName) + Photo::ToPrintable(pText) + "\n";
}

std::string DescribeSize(const Photo::sPicture& pPicture) {
  const int width = pPicture.fBitmap->GetWidth();
  const int height = pPicture.fBitmap->GetHeight();
  const std::string size = fmt::format("{} x {} pixels", width, height);
  const double millions = width * 1e-6 * height;
  return millions < 0.1 ? size : size + fmt::format(" ({:.1f} megapixels)", millions);
}

std::string DescribeFormat(const Photo::sPicture& pPicture) {
  return fmt::format("{}, {} bits a sample{}",
                     pPicture.fFormat.empty() ? "picture" : pPicture.fFormat.c_str(), pPicture.fFileDepth,
                     pPicture.fAlpha.empty() ? "" : ", alpha");
}

std::string DescribeRange(double pDecades) {
  return fmt::format("{:.2f} decades ({:.1f} stops)", pDecades, pDecades * kStopsPerDecade);
}

std::string DescribeRepairs(const Photo::sRepairs& pRepairs) {
  if (pRepairs.fNaN + pRepairs.fInfinite + pRepairs.fOutliers + pRepairs.fNegative == 0) return "none";
  return fmt::format("{} not a number, {} infinite, {} outliers, {} negative", pRepairs.fNaN,
                     pRepairs.fInfinite, pRepairs.fOutliers, pRepairs.fNegative);
}

void AddLight(std::string& pTo, const Photo::sPictureStatistics& pStatistics) {
  if (pStatistics.CountPositive() == 0) return AddLine(pTo, "Dynamic range", "none: no pixel has light");
  AddLine(
      pTo, "Dynamic range",
      DescribeRange(pStatistics.GetDynamicRange()) + ", from the 1 % to the 99.9 % quantile of luminance");
  AddLine(pTo, "Full range",
          DescribeRange(pStatistics.fLogMax - pStatistics.fLogMin) +
              fmt::format(", 10^{:.2f} to 10^{:.2f} of the file's white", pStatistics.fLogMin,
                          pStatistics.fLogMax));
  if (pStatistics.fDark > 0) AddLine(pTo, "Without light", std::to_string(pStatistics.fDark) + " pixels");
}

std::string DescribeWrap(const Photo::sInspection& pInspection) {
  if (!pInspection.fWraps) return "do not meet";
  return pInspection.fPicture.fIsPanorama ? "meet, as the metadata say; tonemap wraps around"
                                          : "look as if they met; tonemap wraps around";
}

/// "0 (depth): Z"; nothing for files of one part and layer.
void AddParts(std::string& pTo, const Photo::sPicture& pPicture) {
  const std::vector<Photo::sPicturePart>& parts = pPicture.fParts;
  if (parts.size() < 2 && (parts.empty() || parts.front().fLayers.size() < 2)) return;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    std::string text = std::to_string(i) + (parts[i].fName.empty() ? "" : " (" + parts[i].fName + ")") + ":";
    for (const std::string& channel : parts[i].fChannels) text += " " + channel;
    AddLine(pTo, i == 0 ? "Parts" : "", text);
  }
}

void AddMetadata(std::string& pTo, const Photo::sInspection& pInspection) {
  const Photo::sMetadataSummary& metadata = pInspection.fMetadata;
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

}  // namespace

std::string ToOptions(const Photo::sSettings& pSettings) {
  std::string options;
  for (const Photo::sSlider& slider : Photo::GetSliders()) {
    const float value = pSettings.*slider.fField;
    if (value == Photo::sSettings().*slider.fField) continue;
    options += fmt::format("{}--{} {}", options.empty() ? "" : " ", slider.fName, Photo::ToText(value));
  }
  return options;
}

std::string DescribeInspection(const Photo::sInspection& pInspection, const sTerminal& pTerminal) {
  const Photo::sPicture& picture = pInspection.fPicture;
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

}  // namespace Tool
