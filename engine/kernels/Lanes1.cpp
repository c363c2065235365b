#include "engine/kernels/InstructionSets.h"
#include "engine/kernels/Kernels.h"
#include "engine/math/Elementary.h"
#include "engine/math/ElementaryTables.h"

#define TM_LANES 1

namespace TmEngine {
namespace {
#include "engine/kernels/Kernels.inc"
}  // namespace

const sKernels& Lanes1() {
  return kKernels;
}

}  // namespace TmEngine
