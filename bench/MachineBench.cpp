// What memory costs on this machine.
#include <sys/mman.h>

#include <cstring>
#include <new>
#include <vector>

#include "bench/Suites.h"

namespace Bench {
namespace {

constexpr std::size_t kBytes = std::size_t{64} << 20;

void Copy(benchmark::State& pState) {
  std::vector<char> from(kBytes, 1), to(kBytes, 2);
  while (pState.KeepRunning()) {
    std::memcpy(to.data(), from.data(), kBytes);
    benchmark::ClobberMemory();
  }
  pState.SetBytesProcessed(static_cast<std::int64_t>(2 * kBytes) * pState.iterations());
}

/// The first write to each page of a new block: the system finds, clears and maps it.
void FirstTouch(benchmark::State& pState, int pAdvice) {
  while (pState.KeepRunning()) {
    void* const block = mmap(nullptr, kBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED) throw std::bad_alloc();
    madvise(block, kBytes, pAdvice);
    pState.SetIterationTime(Seconds([block] { std::memset(block, 1, kBytes); }));
    munmap(block, kBytes);
  }
  pState.SetBytesProcessed(static_cast<std::int64_t>(kBytes) * pState.iterations());
}

}  // namespace

void RegisterMachine() {
  benchmark::RegisterBenchmark("machine/copy", Copy);
  benchmark::RegisterBenchmark("machine/first_touch_4K", FirstTouch, MADV_NOHUGEPAGE)->UseManualTime();
  benchmark::RegisterBenchmark("machine/first_touch_2M", FirstTouch, MADV_HUGEPAGE)->UseManualTime();
}

}  // namespace Bench
