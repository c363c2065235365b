#pragma once

#include <memory>

#include "engine/color/cTransfer.h"
#include "engine/math/Quantise.h"

namespace TmEngine {

/// A transfer sampled once into a fixed table, held in the object itself (up to 256 KiB: put it on the heap).
/// The transfer is not kept. Constructors and BuildCache throw cArgumentNullException for a null transfer.
class cTransferLUT {
 public:
  cTransferLUT() = default;
  cTransferLUT(const cTransferLUT&) = delete;
  cTransferLUT& operator=(const cTransferLUT&) = delete;
  virtual ~cTransferLUT();
  virtual void BuildCache(cTransfer* pTransfer) = 0;
};

/// A new table, but null when *pCancel, which is polled every few entries, is set before it is complete. A
/// null pCancel is never set.
template <class tTable>
std::unique_ptr<tTable> BuildTable(cTransfer* pTransfer, const bool* pCancel);

/// Decodes 8-bit samples to floats: entry i = T(i / 255).
class cTransferLUT_I8F32 : public cTransferLUT {
 public:
  explicit cTransferLUT_I8F32(cTransfer* pTransfer);
  ~cTransferLUT_I8F32() override;
  void BuildCache(cTransfer* pTransfer) override;
  const float* GetTable() const { return fTable; }  ///< 256 entries, indexed by the sample.

 private:
  friend std::unique_ptr<cTransferLUT_I8F32> BuildTable<>(cTransfer* pTransfer, const bool* pCancel);
  cTransferLUT_I8F32() = default;
  bool Fill(const cTransfer& pTransfer, const bool* pCancel);

  float fTable[256];
};

/// Decodes 16-bit samples to floats: entry i = T(i / 65535).
class cTransferLUT_I16F32 : public cTransferLUT {
 public:
  explicit cTransferLUT_I16F32(cTransfer* pTransfer);
  ~cTransferLUT_I16F32() override;
  void BuildCache(cTransfer* pTransfer) override;
  const float* GetTable() const { return fTable; }  ///< 65,536 entries, indexed by the sample.

 private:
  friend std::unique_ptr<cTransferLUT_I16F32> BuildTable<>(cTransfer* pTransfer, const bool* pCancel);
  cTransferLUT_I16F32() = default;
  bool Fill(const cTransfer& pTransfer, const bool* pCancel);

  float fTable[kTableSize];
};

/// Encodes floats to 8-bit samples: entry i = truncate(T(i / 65535) * 255), modulo 256.
class cTransferLUT_F32I8 : public cTransferLUT {
 public:
  explicit cTransferLUT_F32I8(cTransfer* pTransfer);
  ~cTransferLUT_F32I8() override;
  void BuildCache(cTransfer* pTransfer) override;
  /// 65,536 entries, indexed by UnitToIndex(value).
  const unsigned char* GetTable() const { return fTable; }

 private:
  friend std::unique_ptr<cTransferLUT_F32I8> BuildTable<>(cTransfer* pTransfer, const bool* pCancel);
  cTransferLUT_F32I8() = default;
  bool Fill(const cTransfer& pTransfer, const bool* pCancel);

  unsigned char fTable[kTableSize];
};

/// Encodes floats to 16-bit samples: entry i = truncate(T(i / 65535) * 65535), modulo 65536.
class cTransferLUT_F32I16 : public cTransferLUT {
 public:
  explicit cTransferLUT_F32I16(cTransfer* pTransfer);
  ~cTransferLUT_F32I16() override;
  void BuildCache(cTransfer* pTransfer) override;
  /// 65,536 entries, indexed by UnitToIndex(value).
  const unsigned short* GetTable() const { return fTable; }

 private:
  friend std::unique_ptr<cTransferLUT_F32I16> BuildTable<>(cTransfer* pTransfer, const bool* pCancel);
  cTransferLUT_F32I16() = default;
  bool Fill(const cTransfer& pTransfer, const bool* pCancel);

  unsigned short fTable[kTableSize];
};

}  // namespace TmEngine
