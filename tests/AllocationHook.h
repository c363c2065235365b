#pragma once

#include <cstddef>

/// Sees the heap blocks that the thread that made it takes and gives back while it lives: of the whole
/// process, or, under a sanitizer, of the code that is linked into the program. One at a time in a thread.
class cAllocationHook {
 public:
  cAllocationHook();
  cAllocationHook(const cAllocationHook&) = delete;
  cAllocationHook& operator=(const cAllocationHook&) = delete;
  virtual ~cAllocationHook();

  /// Ends what the constructor began.
  void Remove();

  // None of these may allocate.
  virtual bool Allows(std::size_t pBytes) = 0;  ///< Whether a block may be allocated.
  /// Whether memory outside the heap can be mapped.
  virtual bool AllowsMapping(std::size_t) { return true; }
  virtual void Mapped(std::size_t) {}
  virtual void Unmapped(std::size_t) {}
  virtual void Taken(void* pBlock, std::size_t pBytes) = 0;
  virtual void Returned(void* pBlock) = 0;  ///< Before the block is freed.
};
