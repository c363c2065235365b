#pragma once

namespace TmEngine {

/// A one-dimensional curve from a float to a float. Values are nominally in [0, 1]; nothing is clamped.
class cTransfer {
 public:
  cTransfer() = default;
  cTransfer(const cTransfer&) = delete;
  cTransfer& operator=(const cTransfer&) = delete;
  virtual ~cTransfer();
  virtual cTransfer* Clone() const = 0;  ///< A new copy, owned by the caller.
  virtual float Evaluate(float pX) const = 0;
  /// Evaluate of each of pCount values. pTo may be pX. Not virtual: hosts know the virtual operations of
  /// transfers and curves by their places, and this one has none among them (see cRowTransfer).
  void EvaluateRow(const float* pX, float* pTo, int pCount) const;
};

/// A transfer that works on rows: a value by itself is a row of one.
class cRowTransfer : public cTransfer {
 public:
  float Evaluate(float pX) const override;
  virtual void FillRow(const float* pX, float* pTo, int pCount) const = 0;  ///< What EvaluateRow does.
};

/// x to the power 1 / gamma: a field of 2.2 encodes, a field of 1/2.2 decodes.
class cTransferGamma : public cRowTransfer {
 public:
  explicit cTransferGamma(float pGamma);
  ~cTransferGamma() override;
  cTransfer* Clone() const override;
  void FillRow(const float* pX, float* pTo, int pCount) const override;

 private:
  float fGamma;
};

/// sRGB decoding (IEC 61966-2-1): encoded value to linear light.
class cTransfer_sRGBToLinear : public cRowTransfer {
 public:
  cTransfer_sRGBToLinear();
  ~cTransfer_sRGBToLinear() override;
  cTransfer* Clone() const override;
  void FillRow(const float* pX, float* pTo, int pCount) const override;
};

/// sRGB encoding (IEC 61966-2-1): linear light to encoded value.
class cTransferLinearTo_sRGB : public cRowTransfer {
 public:
  cTransferLinearTo_sRGB();
  ~cTransferLinearTo_sRGB() override;
  cTransfer* Clone() const override;
  void FillRow(const float* pX, float* pTo, int pCount) const override;
};

/// The check of the tables made of transfers: cArgumentNullException for null, in the name of pSignature.
/// Their exceptions name the transfers' source, so it is written there.
void CheckTransfer(const cTransfer* pTransfer, const char* pSignature);

/// Linear interpolation in a table of equally spaced samples over [0, 1].
class cTransfer_Table : public cTransfer {
 public:
  /// Copies pTableSize (at least 2) entries; 65535 means 1.0. The caller keeps its array.
  /// Throws cArgumentNullException (pTable), then cArgumentException (pTableSize).
  cTransfer_Table(unsigned short* pTable, int pTableSize);
  ~cTransfer_Table() override;
  cTransfer* Clone() const override;
  float Evaluate(float pX) const override;

 private:
  explicit cTransfer_Table(const cTransfer_Table* pFrom);

  float* fTable;  // fCount samples and a guard equal to the last one
  int fCount;
};

}  // namespace TmEngine
