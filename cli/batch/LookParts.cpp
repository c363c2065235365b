#include "cli/batch/LookParts.h"

#include <cstddef>
#include <nlohmann/json.hpp>
#include <utility>

#include "photo/Json.h"

namespace Tool {

std::string LookPartToText(const Photo::sLookPart& pPart) {
  const Photo::sPictureStatistics& light = pPart.fLuminance;
  auto bins = nlohmann::ordered_json::array();  // those that are not empty, each with its place
  for (std::size_t i = 0; i < light.fBins.size(); ++i) {
    if (light.fBins[i] != 0) bins.push_back({i, light.fBins[i]});
  }
  return Photo::ToLine({{"base", pPart.fBase},
                        {"detail", pPart.fDetail},
                        {"pixels", pPart.fPixels},
                        {"counted", light.fPixels},
                        {"dark", light.fDark},
                        {"min", light.fLogMin},
                        {"max", light.fLogMax},
                        {"mean", light.fLogMean},
                        {"size", light.fBins.size()},
                        {"bins", bins}});
}

Photo::sLookPart LookPartFromText(const std::string& pText) {
  const nlohmann::ordered_json part = Photo::FromLine(pText);
  Photo::sPictureStatistics light;
  light.fPixels = part.at("counted");
  light.fDark = part.at("dark");
  light.fLogMin = part.at("min");
  light.fLogMax = part.at("max");
  light.fLogMean = part.at("mean");
  light.fBins.resize(part.at("size").get<std::size_t>());
  for (const auto& bin : part.at("bins")) light.fBins.at(bin.at(0).get<std::size_t>()) = bin.at(1);
  return {std::move(light), part.at("base"), part.at("detail"), part.at("pixels")};
}

}  // namespace Tool
