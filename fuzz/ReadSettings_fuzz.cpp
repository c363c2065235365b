// Presets, looks, and the settings that results carry. What cannot be used is refused with a cFailure
// (usage); what can is in its range, and is the same when it is written and read again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "photo/SettingsJson.h"
#include "photo/base/Failure.h"

namespace {

void Expect(bool pHolds) {
  if (!pHolds) std::abort();
}

void CheckRanges(const Photo::sSettingsChange& pChange) {
  for (std::size_t i = 0; i < pChange.fSliders.size(); ++i) {
    const Photo::sSlider& slider = Photo::GetSliders()[i];
    const float value = pChange.fSliders[i].value_or(slider.fLowest);
    Expect(value >= slider.fLowest && value <= slider.fHighest);
  }
}

void ReadPreset(const std::string& pText) {
  const Photo::sPreset preset = Photo::ParsePreset(pText);
  CheckRanges(preset.fChange);
  const Photo::sPreset again = Photo::ParsePreset(Photo::ToJson(preset));
  Expect(again.fChange == preset.fChange && again.fName == preset.fName);
  Expect(again.fDescription == preset.fDescription);
}

void ReadResult(const std::string& pText) {
  const auto isGiven = [](const std::string&) { return false; };
  Photo::sSettings settings;
  Photo::sOutputOptions result;
  Photo::ParseResultSettings(pText, isGiven, settings, result);
  CheckRanges(Photo::ChangeTo(settings));
  Photo::sSettings again;
  Photo::sOutputOptions resultAgain;
  Photo::ParseResultSettings(Photo::ToJson(settings, result), isGiven, again, resultAgain);
  Expect(again == settings && resultAgain.fDepth == result.fDepth);
  Expect(resultAgain.fColorSpace == result.fColorSpace && resultAgain.fPreview == result.fPreview);
}

void ReadLook(const std::string& pText) {
  const Photo::sSettings look = Photo::ParseLook(pText);
  CheckRanges(Photo::ChangeTo(look));
  Expect(look.fLook && look.fLook->fPoints && Photo::AreUsable(*look.fLook->fPoints));
  Expect(Photo::ParseLook(Photo::LookToJson(look)) == look);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t pSize) {
  const std::string text(reinterpret_cast<const char*>(pData), pSize);
  for (const auto read : {ReadPreset, ReadResult, ReadLook}) {
    try {
      read(text);
    } catch (const Photo::cFailure& failure) {
      Expect(failure.GetKind() == Photo::eFailure::kUsage);
    }
  }
  return 0;
}
