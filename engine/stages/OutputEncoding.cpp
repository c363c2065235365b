#include "engine/stages/OutputEncoding.h"

#include <algorithm>
#include <memory>

#include "engine/cColorSpace.h"
#include "engine/cTransferLUT.h"

namespace TmEngine {

const unsigned short* cOutputEncoding::Table(const cColorSpace& pSpace) {
  if (fBuilt) return fTable;
  const auto table = std::make_unique<cTransferLUT_F32I16>(pSpace.GetFromLinear());
  std::copy_n(table->GetTable(), kTableSize, fTable);
  fBuilt = true;
  return fTable;
}

}  // namespace TmEngine
