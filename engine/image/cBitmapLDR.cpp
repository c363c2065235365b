#include "engine/image/cBitmapLDR.h"

#include "engine/image/BitmapChecks.h"

namespace TmEngine {
namespace {

constexpr char kSourceFile[] = ".\\cBitmapLDR.cpp";

}  // namespace

cBitmapLDR::~cBitmapLDR() {
  delete fColorSpace;
}

void cBitmapLDR::SetColorSpace(cColorSpace* pColorSpace) {
  static constexpr char kSignature[] =
      "void __cdecl TmEngine::cBitmapLDR::SetColorSpace(class TmEngine::cColorSpace *)";
  CheckNotNull(pColorSpace, "pColorSpace", TM_HERE);
  cColorSpace* const copy = pColorSpace->Clone();  // first: the argument may be the image's own space
  delete fColorSpace;
  fColorSpace = copy;
}

void cBitmapLDR::SetColorSpace(eColorSpaceID pID) {
  cColorSpace* const space = cColorSpace::FromID(pID);
  delete fColorSpace;
  fColorSpace = space;
}

}  // namespace TmEngine
