#include "photo/icc/NamedProfile.h"

#include <glib.h>

#include <cstddef>
#include <memory>

#include "photo/icc/IccDecoder.h"
#include "photo/icc/ProfileSpace.h"

namespace Photo {
namespace {

using TmEngine::eColorSpaceID;

constexpr std::size_t kFlags = 44;
constexpr std::size_t kIntent = 64;
constexpr std::size_t kID = 84;
constexpr std::size_t kIDSize = 16;

/// Flags, intent and ID count as zeros.
std::string ComputeID(std::string pProfile) {
  for (const std::size_t field : {kFlags, kIntent}) pProfile.replace(field, 4, 4, '\0');
  pProfile.replace(kID, kIDSize, kIDSize, '\0');
  const std::unique_ptr<GChecksum, decltype(&g_checksum_free)> checksum(g_checksum_new(G_CHECKSUM_MD5),
                                                                        &g_checksum_free);
  g_checksum_update(checksum.get(), reinterpret_cast<const guchar*>(pProfile.data()),
                    static_cast<gssize>(pProfile.size()));
  std::string id(kIDSize, '\0');
  gsize size = kIDSize;
  g_checksum_get_digest(checksum.get(), reinterpret_cast<guint8*>(id.data()), &size);
  return id;
}

}  // namespace

std::string GetIccProfile(eColorSpaceID pColorSpace) {
  const auto profile = pColorSpace == TmEngine::eColorSpaceID_AdobeRGB98
                           ? TmEngine::cColorSpace_AdobeRGB98::GetIccProfile()
                       : pColorSpace == TmEngine::eColorSpaceID_ProPhotoRGB
                           ? TmEngine::cColorSpace_ProPhotoRGB::GetIccProfile()
                           : TmEngine::cColorSpace_sRGB::GetIccProfile();
  return {reinterpret_cast<const char*>(profile.fData), static_cast<std::size_t>(profile.fSize)};
}

std::string ToPngProfile(const std::string& pProfile) {
  if (pProfile != GetIccProfile(TmEngine::eColorSpaceID_sRGB)) return pProfile;
  return std::string(pProfile).replace(kID, kIDSize, ComputeID(pProfile));
}

std::string FromPngProfile(const std::string& pProfile) {
  std::string srgb = GetIccProfile(TmEngine::eColorSpaceID_sRGB);
  return pProfile == ToPngProfile(srgb) ? srgb : pProfile;
}

const char* FindInteropIndex(const std::string& pProfile) {
  const auto decoder = cIccDecoder::FromProfile(pProfile.data(), pProfile.size(), 3);
  const auto space = decoder == nullptr ? nullptr : MatchProfile(pProfile, *decoder);
  if (space == nullptr) return "";
  if (dynamic_cast<const TmEngine::cColorSpace_sRGB*>(space.get()) != nullptr) return "R98";
  return dynamic_cast<const TmEngine::cColorSpace_AdobeRGB98*>(space.get()) != nullptr ? "R03" : "";
}

}  // namespace Photo
