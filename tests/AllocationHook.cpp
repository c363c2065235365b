#include "tests/AllocationHook.h"

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <new>

// A sanitizer keeps the C library's names for itself: there the linker sends the program's calls here
// (--wrap).
#if defined(TEST_SANITIZED)
#define TEST_HOOKED(pName) __wrap_##pName
#define TEST_GENUINE(pName) __real_##pName
#else
#define TEST_HOOKED(pName) pName
#define TEST_GENUINE(pName) __libc_##pName
#endif

extern "C" {
void* TEST_GENUINE(malloc)(std::size_t) noexcept;
void* TEST_GENUINE(calloc)(std::size_t, std::size_t) noexcept;
void* TEST_GENUINE(realloc)(void*, std::size_t) noexcept;
void TEST_GENUINE(free)(void*) noexcept;
}

#if defined(TEST_SANITIZED)
extern "C" void* __real_mmap(void*, std::size_t, int, int, int,
                             off_t) noexcept;               // NOLINT: the linker's names
extern "C" int __real_munmap(void*, std::size_t) noexcept;  // NOLINT
#endif

namespace {

thread_local cAllocationHook* gHook = nullptr;

void* MapGenuinely(void* pAt, std::size_t pBytes, int pProtection, int pFlags, int pFile, off_t pOffset) {
#if defined(TEST_SANITIZED)
  return __real_mmap(pAt, pBytes, pProtection, pFlags, pFile, pOffset);
#else
  return reinterpret_cast<void*>(syscall(SYS_mmap, pAt, pBytes, pProtection, pFlags, pFile, pOffset));
#endif
}

int UnmapGenuinely(void* pBlock, std::size_t pBytes) {
#if defined(TEST_SANITIZED)
  return __real_munmap(pBlock, pBytes);
#else
  return static_cast<int>(syscall(SYS_munmap, pBlock, pBytes));
#endif
}

template <class tTake>
void* Take(std::size_t pBytes, const tTake& pTake) {
  if (gHook != nullptr && !gHook->Allows(pBytes)) {
    errno = ENOMEM;
    return nullptr;
  }
  void* const block = pTake();
  if (gHook != nullptr && block != nullptr) gHook->Taken(block, pBytes);
  return block;
}

}  // namespace

cAllocationHook::cAllocationHook() {
  gHook = this;
}

cAllocationHook::~cAllocationHook() {
  Remove();
}

void cAllocationHook::Remove() {
  if (gHook == this) gHook = nullptr;
}

// Visible, so that shared libraries take and return their blocks here as well.
#pragma GCC visibility push(default)
extern "C" {

void* TEST_HOOKED(malloc)(std::size_t pBytes) noexcept {
  return Take(pBytes, [=] { return TEST_GENUINE(malloc)(pBytes); });
}

void* TEST_HOOKED(calloc)(std::size_t pCount, std::size_t pBytes) noexcept {
  return Take(pCount * pBytes, [=] { return TEST_GENUINE(calloc)(pCount, pBytes); });
}

void* TEST_HOOKED(realloc)(void* pBlock, std::size_t pBytes) noexcept {
  return Take(pBytes, [=] {
    if (gHook != nullptr && pBlock != nullptr) gHook->Returned(pBlock);
    return TEST_GENUINE(realloc)(pBlock, pBytes);
  });
}

void TEST_HOOKED(free)(void* pBlock) noexcept {
  if (gHook != nullptr && pBlock != nullptr) gHook->Returned(pBlock);
  TEST_GENUINE(free)(pBlock);
}

void* TEST_HOOKED(mmap)(void* pAt, std::size_t pBytes, int pProtection, int pFlags, int pFile,
                        off_t pOffset) noexcept {
  if (gHook != nullptr && !gHook->AllowsMapping(pBytes)) {
    errno = ENOMEM;
    return MAP_FAILED;
  }
  void* const block = MapGenuinely(pAt, pBytes, pProtection, pFlags, pFile, pOffset);
  if (gHook != nullptr && block != MAP_FAILED) gHook->Mapped(pBytes);
  return block;
}

int TEST_HOOKED(munmap)(void* pBlock, std::size_t pBytes) noexcept {
  if (gHook != nullptr) gHook->Unmapped(pBytes);
  return UnmapGenuinely(pBlock, pBytes);
}

}  // extern "C"
#pragma GCC visibility pop

#if defined(TEST_SANITIZED)
// The other forms of these operators end in the ones below, except where the sanitizer brings its own.
void* operator new(std::size_t pBytes, const std::nothrow_t&) noexcept {
  return TEST_HOOKED(malloc)(pBytes);
}
void* operator new(std::size_t pBytes) {
  void* const block = TEST_HOOKED(malloc)(pBytes);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new[](std::size_t pBytes) {
  return operator new(pBytes);
}
void* operator new[](std::size_t pBytes, const std::nothrow_t& pNoThrow) noexcept {
  return operator new(pBytes, pNoThrow);
}
void operator delete(void* pBlock) noexcept {
  TEST_HOOKED(free)(pBlock);
}
void operator delete(void* pBlock, std::size_t) noexcept {
  TEST_HOOKED(free)(pBlock);
}
void operator delete(void* pBlock, const std::nothrow_t&) noexcept {
  TEST_HOOKED(free)(pBlock);
}
void operator delete[](void* pBlock) noexcept {
  TEST_HOOKED(free)(pBlock);
}
void operator delete[](void* pBlock, std::size_t) noexcept {
  TEST_HOOKED(free)(pBlock);
}
void operator delete[](void* pBlock, const std::nothrow_t&) noexcept {
  TEST_HOOKED(free)(pBlock);
}
#endif
