#pragma once

#include "engine/Quantise.h"

namespace TmEngine {

class cColorSpace;

/// Linear light to the samples of an output image's colour space, built once and kept until it is
/// invalidated. A large object: put it on the heap.
class cOutputEncoding {
 public:
  void Invalidate() { fBuilt = false; }
  /// 65,536 entries of 16 bits: truncate(T(i / 65535) * 65535), T the space's from-linear transfer. Built for
  /// pSpace unless a table is there. Throws cArgumentNullException for a space without transfer, and
  /// std::bad_alloc.
  const unsigned short* Table(const cColorSpace& pSpace);

 private:
  unsigned short fTable[kTableSize];
  bool fBuilt = false;
};

}  // namespace TmEngine
