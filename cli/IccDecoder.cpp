#include "cli/IccDecoder.h"

#include "cli/IccHandle.h"

namespace Cli {
namespace {

struct sColourModel {
  int fColours;
  cmsColorSpaceSignature fSignature;
  cmsUInt32Number fFormat;
};
constexpr sColourModel kModels[] = {
    {1, cmsSigGrayData, TYPE_GRAY_FLT}, {3, cmsSigRgbData, TYPE_RGB_FLT}, {4, cmsSigCmykData, TYPE_CMYK_FLT}};

void* MakeTransform(cmsHPROFILE pFrom, int pColours) {
  for (const sColourModel& model : kModels) {
    if (model.fColours != pColours || model.fSignature != cmsGetColorSpace(pFrom)) continue;
    const tIccHandle xyz(cmsCreateXYZProfile());
    if (xyz == nullptr) return nullptr;
    return cmsCreateTransform(pFrom, model.fFormat, xyz.get(), TYPE_XYZ_FLT, INTENT_RELATIVE_COLORIMETRIC,
                              cmsFLAGS_NOCACHE);
  }
  return nullptr;
}

}  // namespace

std::unique_ptr<cIccDecoder> cIccDecoder::FromProfile(const void* pData, std::size_t pSize, int pColours) {
  const tIccHandle profile = OpenIccProfile(pData, pSize);
  if (profile == nullptr) return nullptr;
  void* const transform = MakeTransform(profile.get(), pColours);
  return transform == nullptr ? nullptr : std::unique_ptr<cIccDecoder>(new cIccDecoder(transform));
}

cIccDecoder::~cIccDecoder() {
  cmsDeleteTransform(fTransform);
}

void cIccDecoder::ToXYZ(const float* pFrom, float* pTo, int pWidth) const {
  cmsDoTransform(fTransform, pFrom, pTo, static_cast<cmsUInt32Number>(pWidth));
}

}  // namespace Cli
