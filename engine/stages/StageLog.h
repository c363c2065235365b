#pragma once

namespace TmEngine {

class cLuminanceHistogram;
struct sBlackWhite;
struct sExposureScales;
struct sLayerStatistics;
struct sLuminanceRange;
struct sToneMappedRange;
struct sToneTables;

/// The lines that the tone mapper's stages write to standard error. Hosts read them: their texts and their
/// order are part of the interface.
class cStageLog {
 public:
  /// A log that is off writes nothing.
  explicit cStageLog(bool pIsOn) : fIsOn(pIsOn) {}

  void Preparation(const sLuminanceRange& pInput) const;
  void Layers(int pWidth, int pHeight, const sLayerStatistics& pLayers, const sLuminanceRange& pInput) const;
  void Compression(float pExponent, const sToneTables& pTables, const sLayerStatistics& pLayers,
                   const sLuminanceRange& pInput, const sExposureScales& pScales) const;
  void ToneMapped(const sToneMappedRange& pRange, double pPixels, const sLuminanceRange& pInput,
                  const sExposureScales& pScales) const;
  /// Two lines, and none for a histogram that is empty.
  void BlackAndWhite(const cLuminanceHistogram& pHistogram, const sBlackWhite& pPoints,
                     const sToneMappedRange& pRange) const;

 private:
  bool fIsOn;
};

}  // namespace TmEngine
