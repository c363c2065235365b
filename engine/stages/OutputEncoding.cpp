#include "engine/stages/OutputEncoding.h"

#include "engine/cColorSpace.h"

namespace TmEngine {

const unsigned short* cOutputEncoding::Table(const cColorSpace& pSpace) {
  if (fTable == nullptr) fTable = std::make_unique<cTransferLUT_F32I16>(pSpace.GetFromLinear());
  return fTable->GetTable();
}

}  // namespace TmEngine
