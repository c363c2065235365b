#include "engine/Elementary.h"
#include "engine/kernels/ElementaryTables.h"
#include "engine/kernels/InstructionSets.h"
#include "engine/kernels/Kernels.h"

#define TM_LANES 4

namespace TmEngine {
namespace {
#include "engine/kernels/Kernels.inc"
}  // namespace

const sKernels& Lanes4() {
  return kKernels;
}

}  // namespace TmEngine
