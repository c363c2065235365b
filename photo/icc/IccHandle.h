#pragma once

#include <lcms2.h>

#include <cstddef>
#include <limits>
#include <memory>

namespace Photo {

/// Closes a profile of Little CMS.
struct sCloseIccProfile {
  using pointer = cmsHPROFILE;
  void operator()(cmsHPROFILE pProfile) const { cmsCloseProfile(pProfile); }
};
using tIccHandle = std::unique_ptr<void, sCloseIccProfile>;

/// Null when the profile is damaged.
inline tIccHandle OpenIccProfile(const void* pData, std::size_t pSize) {
  if (pSize > std::numeric_limits<cmsUInt32Number>::max()) return nullptr;
  return tIccHandle(cmsOpenProfileFromMem(pData, static_cast<cmsUInt32Number>(pSize)));
}

}  // namespace Photo
