#include "engine/Elementary.h"
#include "engine/kernels/ElementaryTables.h"
#include "engine/kernels/InstructionSets.h"
#include "engine/kernels/Kernels.h"

#define TM_LANES 1

namespace TmEngine {
namespace {
#include "engine/kernels/Kernels.inc"
}  // namespace

const sKernels& Lanes1() {
  return kKernels;
}

}  // namespace TmEngine
