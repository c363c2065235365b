#pragma once

#include <memory>

#include "engine/color/cTransferLUT.h"

namespace TmEngine {

class cColorSpace;

/// Linear light to the samples of an output image's colour space, built once and kept until it is
/// invalidated.
class cOutputEncoding {
 public:
  void Invalidate() { fTable.reset(); }
  /// 65,536 entries of 16 bits: truncate(T(i / 65535) * 65535), T the space's from-linear transfer. Built for
  /// pSpace unless a table is there. Throws cArgumentNullException for a space without transfer, and
  /// std::bad_alloc. Polls pCancel every few entries; null, with the table still to be built, when it is set.
  const unsigned short* Table(const cColorSpace& pSpace, const bool* pCancel = nullptr);

 private:
  std::unique_ptr<cTransferLUT_F32I16> fTable;
};

}  // namespace TmEngine
