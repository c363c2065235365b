#include "photo/render/ChooseWrap.h"

#include "photo/picture/Panorama.h"

namespace Photo {

bool ChooseWrap(eWrap pWrap, const sPicture& pPicture) {
  if (pWrap != eWrap::kAuto) return pWrap == eWrap::kHorizontal;
  return pPicture.fIsPanorama || EdgesMeet(pPicture);
}

bool MayWrap(eWrap pWrap, bool pIsPanorama, int pWidth, int pHeight) {
  if (pWrap != eWrap::kAuto) return pWrap == eWrap::kHorizontal;
  return pIsPanorama || HasPanoramaShape(pWidth, pHeight);
}

}  // namespace Photo
