#include "engine/base/LargeBlock.h"

#include <cstdlib>

#include "engine/base/System.h"

namespace TmEngine {
namespace {

constexpr std::size_t kLargeBytes = std::size_t{1} << 22;

}  // namespace

void* AllocLargeBlock(std::size_t pBytes) {
  void* const block = std::malloc(pBytes);
  if (block != nullptr && pBytes >= kLargeBytes) AdviseLargePages(block, pBytes);
  return block;
}

}  // namespace TmEngine
