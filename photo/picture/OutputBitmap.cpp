#include "photo/picture/OutputBitmap.h"

#include <cstdlib>

#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"

namespace {

using namespace TmEngine;

class cSilentBitmapBGR8 : public cBitmapBGR8 {
 public:
  using cBitmapBGR8::cBitmapBGR8;
  ~cSilentBitmapBGR8() override { std::free(TakeBitmapData()); }
};

}  // namespace

std::unique_ptr<cBitmapLDR> MakeOutputBitmap(int pWidth, int pHeight, int pBitDepth, eColorSpaceID pID) {
  switch (pBitDepth) {
    case 8:
      return std::make_unique<cSilentBitmapBGR8>(pWidth, pHeight, pID);
    case 12:
    case 16:
      return std::make_unique<cBitmapBGR16>(pWidth, pHeight, pID);
    default:
      return nullptr;
  }
}
