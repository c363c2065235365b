#include "photo/Inspection.h"

#include <nlohmann/json.hpp>

#include <cmath>

#include "photo/Printable.h"
#include "photo/decode/PictureReader.h"
#include "photo/picture/Alpha.h"
#include "photo/picture/Panorama.h"
#include "photo/render/AutoSettings.h"
#include "photo/render/ChooseWrap.h"

namespace Photo {
namespace {

const char* NameWrapReason(const sInspection& pInspection) {
  if (!pInspection.fWraps) return "none";
  return pInspection.fPicture.fIsPanorama ? "metadata" : "edges";
}

nlohmann::ordered_json PartsToJson(const std::vector<sPicturePart>& pParts) {
  auto json = nlohmann::ordered_json::array();
  for (const sPicturePart& part : pParts) {
    json.push_back({{"name", part.fName}, {"channels", part.fChannels}, {"layers", part.fLayers}});
  }
  return json;
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

sInspection InspectPicture(const std::string& pFile, const sPictureChoice& pChoice, const tMemoryGate& pGate,
                           cWatch* pWatch) {
  sInspection inspection;
  inspection.fFile = pFile;
  inspection.fPicture = LoadPicture(OpenPicture(pFile, pChoice, pGate), pWatch);
  if (const cMetadata* const metadata = inspection.fPicture.fMetadata.get()) {
    const std::vector<std::string>& warnings = metadata->GetWarnings();
    inspection.fPicture.fWarnings.insert(inspection.fPicture.fWarnings.end(), warnings.begin(),
                                         warnings.end());
    inspection.fMetadata = SummariseMetadata(*metadata);
  }
  inspection.fStatistics = MeasurePicture(inspection.fPicture);
  SettleAlpha(inspection.fPicture);  // what is measured above is what the file holds
  inspection.fWraps = ChooseWrap(eWrap::kAuto, inspection.fPicture);
  inspection.fSuggested = SuggestSettings(SamplePicture(inspection.fPicture));
  return inspection;
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
          {"warnings", ToPrintable(picture.fWarnings)}};
}

}  // namespace Photo
