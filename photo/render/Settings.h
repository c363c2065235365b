#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>

#include "engine/ToneMapImage.h"
#include "engine/stages/CommonLook.h"
#include "photo/base/FloatText.h"  // values as text

namespace Photo {

/// Whether the left and right edges of a picture meet.
enum class eWrap { kNone, kHorizontal, kAuto };

/// What the last tone curve does to colours: they keep hue and purity, or each channel is curved by itself,
/// as the exported function does.
enum class eRendering { kColor, kEngine };

/// How a picture is made to look: the sliders, in the units that people see, and what is done at the edges.
struct sSettings {
  float fStrength = 70.0f;
  float fLighting = 0.0f;
  float fToneCompression = 0.0f;
  float fWhiteClip = 5.0f;
  float fBlackClip = 0.1f;
  float fMicrocontrast = 0.0f;
  float fContrast = 20.0f;
  float fSaturation = 0.0f;
  eWrap fWrap = eWrap::kAuto;
  eRendering fRendering = eRendering::kColor;
  /// Of a set of pictures; none for a picture on its own.
  std::optional<TmEngine::sCommonLook> fLook = std::nullopt;

  bool operator==(const sSettings&) const = default;
};

/// One slider: what options, presets, reports and the help say of it. Its default is that of sSettings.
struct sSlider {
  const char* fName;
  float sSettings::*fField;
  float fLowest;   ///< The ranges end where the engine stops telling values apart,
  float fHighest;  ///< or where pictures stop being pictures.
  const char* fMeaning;
};
std::span<const sSlider> GetSliders();

/// Some of the settings, as a preset or a command line asks for them; what is not given stays as it was.
struct sSettingsChange {
  static constexpr std::size_t kSliders = 8;
  std::array<std::optional<float>, kSliders> fSliders;  ///< In the order of GetSliders().
  std::optional<eWrap> fWrap;
  std::optional<eRendering> fRendering;

  bool operator==(const sSettingsChange&) const = default;
};

/// All of pSettings.
sSettingsChange ChangeTo(const sSettings& pSettings);
void Apply(const sSettingsChange& pChange, sSettings& pSettings);
/// pLater wins where both say something.
void Apply(const sSettingsChange& pLater, sSettingsChange& pChange);

/// The name of a way to treat the edges: "none", "horizontal" or "auto".
const char* GetWrapName(eWrap pWrap);
/// None for a name that is unknown.
std::optional<eWrap> FindWrap(const std::string& pName);

/// The name of a rendering: "color" or "engine".
const char* GetRenderingName(eRendering pRendering);
/// None for a name that is unknown.
std::optional<eRendering> FindRendering(const std::string& pName);

/// Luminances that a look can have as black and white points end here.
inline constexpr float kLargestPoint = 1e30f;
/// Whether these can be a look's points: 0 or more, white above black.
bool AreUsable(const TmEngine::sBlackWhite& pPoints);

/// The engine's parameters. pWrap: whether the edges of this picture meet. Saturation is none of them: it is
/// a curve over hue.
TmEngine::sToneParameters MapToParameters(const sSettings& pSettings, bool pWrap);

}  // namespace Photo
