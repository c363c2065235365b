// How the sanitizers treat memory. Blocks of more than 24 MB, which is more than a small picture takes,
// cannot be allocated, as on a machine without free memory: this tests how the code handles that, and saves
// the time for huge pictures.

#include <cstdlib>
#include <new>

extern "C" __attribute__((visibility("default"))) const char* __asan_default_options();       // NOLINT
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions();  // NOLINT

extern "C" const char* __asan_default_options() {  // NOLINT
  return "allocator_may_return_null=1:max_allocation_size_mb=24:quarantine_size_mb=32:"
         "detect_stack_use_after_return=0";
}

// The texts of a thrown exception stay allocated on purpose (see cException). OpenEXR loses what it has when
// it fails to get more. libheif (1.15) keeps the 40 bytes in which it handed an empty AV1 picture to
// libdav1d.
extern "C" const char* __lsan_default_suppressions() {  // NOLINT
  return "leak:CopyText\nleak:libOpenEXR\nleak:libdav1d\n";
}

// The sanitizer's own operators end the program where there is no memory.
void* operator new(std::size_t pSize) {
  if (void* const block = std::malloc(pSize)) return block;
  throw std::bad_alloc();
}
void* operator new[](std::size_t pSize) {
  return operator new(pSize);
}
void* operator new(std::size_t pSize, const std::nothrow_t&) noexcept {
  return std::malloc(pSize);
}
void* operator new[](std::size_t pSize, const std::nothrow_t&) noexcept {
  return std::malloc(pSize);
}
void operator delete(void* pBlock) noexcept {
  std::free(pBlock);
}
void operator delete[](void* pBlock) noexcept {
  std::free(pBlock);
}
void operator delete(void* pBlock, std::size_t) noexcept {
  std::free(pBlock);
}
void operator delete[](void* pBlock, std::size_t) noexcept {
  std::free(pBlock);
}
