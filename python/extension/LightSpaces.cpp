#include "python/extension/LightSpaces.h"

#include <pybind11/pybind11.h>

#include <memory>
#include <optional>
#include <vector>

#include "photo/render/ColorSpaceName.h"

namespace Python {
namespace {

using TmEngine::cColorSpace;
using TmEngine::cMatrix33;

constexpr char kSRGB[] = "linear-srgb";
constexpr char kXYZ[] = "xyz-d50";

/// Spaces by their primaries, under the name that Photo::FindPrimaries knows.
struct sPrimariesName {
  const char* fName;
  const char* fPrimaries;
};
constexpr sPrimariesName kPrimaries[] = {{kSRGB, "sRGB primaries"},
                                         {"linear-display-p3", "Display P3 primaries"},
                                         {"linear-rec2020", "Rec. 2020 primaries"},
                                         {"aces2065-1", "ACES primaries"},
                                         {"acescg", "ACEScg primaries"}};

struct sSpaceName {
  const char* fName;
  TmEngine::eColorSpaceID fSpace;
};
constexpr sSpaceName kSpaces[] = {{"linear-adobergb", TmEngine::eColorSpaceID_AdobeRGB98},
                                  {"linear-prophoto", TmEngine::eColorSpaceID_ProPhotoRGB}};

std::optional<Photo::sPrimaries> FindPrimaries(const std::string& pName) {
  for (const sPrimariesName& space : kPrimaries) {
    if (pName == space.fName) return *Photo::FindPrimaries(space.fPrimaries);
  }
  return std::nullopt;
}

std::unique_ptr<cColorSpace> FindSpace(const std::string& pName) {
  for (const sSpaceName& space : kSpaces) {
    if (pName == space.fName) return std::unique_ptr<cColorSpace>(cColorSpace::FromID(space.fSpace));
  }
  return nullptr;
}

[[noreturn]] void Refuse(const std::string& pName) {
  std::string known;
  for (const sPrimariesName& space : kPrimaries) known += std::string(space.fName) + ", ";
  for (const sSpaceName& space : kSpaces) known += std::string(space.fName) + ", ";
  throw pybind11::value_error("source is '" + pName + "'; it must be one of " + known + kXYZ);
}

}  // namespace

Photo::sLinearLight GetLight(const std::string& pName) {
  std::vector<std::string> ignored;
  if (const auto primaries = FindPrimaries(pName)) {
    return Photo::MakeLinearLight(pName == kSRGB ? std::nullopt : primaries, ignored);
  }
  if (const auto space = FindSpace(pName)) return {space->GetRGBToXYZ(), true, pName};
  if (pName == kXYZ) return {std::nullopt, false, pName};  // what Photo::OpenPicture gives is fitted
  Refuse(pName);
}

cMatrix33 GetFromXYZ(const std::string& pName) {
  if (const auto primaries = FindPrimaries(pName)) {
    const Photo::sPrimaries& p = *primaries;
    return cColorSpace::BuildXYZToRGB(p.fRed.fX, p.fRed.fY, p.fGreen.fX, p.fGreen.fY, p.fBlue.fX, p.fBlue.fY,
                                      p.fWhite.fX, p.fWhite.fY);
  }
  if (const auto space = FindSpace(pName)) return space->GetXYZToRGB();
  if (pName == kXYZ) return cMatrix33(1.0f, 0.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 1.0f);
  Refuse(pName);
}

TmEngine::eColorSpaceID GetColorSpace(const std::string& pName) {
  for (const Photo::sColorSpaceName& space : Photo::kColorSpaceNames) {
    if (pName == space.fName) return space.fColorSpace;
  }
  throw pybind11::value_error("color_space is '" + pName + "'; it must be srgb, adobergb or prophoto");
}

}  // namespace Python
