#include "engine/stages/OutputEncoding.h"

#include "engine/color/cColorSpace.h"

namespace TmEngine {

const unsigned short* cOutputEncoding::Table(const cColorSpace& pSpace, const bool* pCancel) {
  if (fTable == nullptr) fTable = BuildTable<cTransferLUT_F32I16>(pSpace.GetFromLinear(), pCancel);
  return fTable != nullptr ? fTable->GetTable() : nullptr;
}

}  // namespace TmEngine
