#include "photo/SettingsJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <vector>

#include "photo/Json.h"
#include "photo/base/Failure.h"
#include "photo/render/ColorSpaceName.h"

namespace Photo {
namespace {

// Numbers as options read them too: a preset and an option of the same text are the same float.
using tJson =
    nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t, std::uint64_t, long double>;

constexpr char kPresetKey[] = "quorvane-preset";
constexpr char kResultKey[] = "quorvane-settings";
constexpr char kLookKey[] = "quorvane-look";
constexpr int kVersion = 1;

constexpr float kMostDecades = 100.0f;  // of luminance: floats end at 38

std::string Quote(const std::string& pText) {
  return tJson(pText).dump(-1, ' ', false, tJson::error_handler_t::replace);
}

/// A value as messages show it.
std::string Show(const tJson& pValue) {
  if (pValue.is_number_float()) return fmt::format("{:.9g}", pValue.get<long double>());
  const std::string text = pValue.dump(-1, ' ', false, tJson::error_handler_t::replace);
  constexpr std::size_t kLongest = 40;
  return text.size() <= kLongest ? text : "the given value";
}

/// Refuses files with a word about what is wrong at which key.
class cReader {
 public:
  [[noreturn]] void Refuse(const std::string& pReason) const { throw cFailure(eFailure::kUsage, pReason); }
  [[noreturn]] void Refuse(const std::string& pKey, const tJson& pValue, const std::string& pWanted) const {
    Refuse("\"" + pKey + "\": " + Show(pValue) + " is not " + pWanted);
  }

  /// The file's object. A key that is given twice is refused: one of the two would be ignored. Nesting is
  /// limited before there is a value: what shows it takes stack for each level.
  tJson Parse(const std::string& pText) const {
    std::vector<std::set<std::string>> keys;
    const auto watch = [&](int pDepth, tJson::parse_event_t pEvent, tJson& pValue) {
      const bool isStart =
          pEvent == tJson::parse_event_t::object_start || pEvent == tJson::parse_event_t::array_start;
      if (isStart && pDepth >= kDeepestJson) {
        Refuse("cannot be used: it is nested deeper than " + std::to_string(kDeepestJson) + " levels");
      }
      if (pEvent == tJson::parse_event_t::object_start) keys.emplace_back();
      if (pEvent == tJson::parse_event_t::object_end) keys.pop_back();
      if (pEvent == tJson::parse_event_t::key && !keys.back().insert(pValue.get<std::string>()).second) {
        Refuse("the key " + Quote(pValue.get<std::string>()) + " is given twice");
      }
      return true;
    };
    try {
      return tJson::parse(pText, watch);
    } catch (const tJson::exception& error) {
      const std::string what = error.what();
      Refuse("cannot be used: " + what.substr(what.find("] ") + 2));
    }
  }

  void CheckObject(const tJson& pObject, const std::string& pWhere,
                   const std::vector<std::string>& pKnown) const {
    if (!pObject.is_object()) Refuse(pWhere + " must be an object in braces, { }");
    for (const auto& [key, value] : pObject.items()) {
      if (std::find(pKnown.begin(), pKnown.end(), key) != pKnown.end()) continue;
      std::string reason = "unknown key " + Quote(key) + " in " + pWhere + "; it knows " + pKnown.front();
      for (std::size_t i = 1; i < pKnown.size(); ++i) reason += ", " + pKnown[i];
      Refuse(reason);
    }
  }

  void CheckVersion(const tJson& pObject, const std::string& pKey, const std::string& pWhat) const {
    if (!pObject.is_object() || !pObject.contains(pKey)) {
      Refuse("is no " + pWhat + ": it lacks \"" + pKey + "\": " + std::to_string(kVersion));
    }
    const tJson& version = pObject[pKey];
    if (!version.is_number_integer() || version != kVersion) {
      Refuse(pKey, version, "a version that this program knows; it knows " + std::to_string(kVersion));
    }
  }

  std::string ReadText(const tJson& pObject, const std::string& pKey) const {
    if (!pObject.contains(pKey)) return "";
    if (!pObject[pKey].is_string()) Refuse(pKey, pObject[pKey], "a text in quotes");
    return pObject[pKey].get<std::string>();
  }

  TmEngine::sCommonLook ReadLook(const tJson& pLook) const {
    CheckObject(pLook, "\"look\"", {"black_point", "white_point", "base_mean", "detail_mean"});
    TmEngine::sCommonLook look;
    look.fPoints = TmEngine::sBlackWhite{ReadMember(pLook, "black_point", 0.0f, kLargestPoint),
                                         ReadMember(pLook, "white_point", 0.0f, kLargestPoint)};
    if (!AreUsable(*look.fPoints)) {
      Refuse("white_point", pLook["white_point"], "above the black_point, " + Show(pLook["black_point"]));
    }
    if (pLook.contains("base_mean") || pLook.contains("detail_mean")) {
      look.fMeans = TmEngine::sLayerMeans{ReadMember(pLook, "base_mean", -kMostDecades, kMostDecades),
                                          ReadMember(pLook, "detail_mean", 0.0f, kMostDecades)};
    }
    return look;
  }

  sSettingsChange ReadSettings(const tJson& pObject) const {
    if (!pObject.contains("settings")) Refuse("lacks \"settings\": { }");
    const tJson& settings = pObject["settings"];
    CheckObject(settings, "\"settings\"", GetSettingKeys());
    sSettingsChange change;
    for (std::size_t i = 0; i < change.fSliders.size(); ++i) {
      const sSlider& slider = GetSliders()[i];
      if (settings.contains(slider.fName)) change.fSliders[i] = ReadSlider(slider, settings[slider.fName]);
    }
    if (settings.contains("wrap")) {
      change.fWrap = FindWrap(ReadName(settings["wrap"]));
      if (!change.fWrap.has_value()) Refuse("wrap", settings["wrap"], "none, horizontal or auto");
    }
    if (settings.contains("rendering")) {
      change.fRendering = FindRendering(ReadName(settings["rendering"]));
      if (!change.fRendering.has_value()) Refuse("rendering", settings["rendering"], "color or engine");
    }
    return change;
  }

 private:
  static std::vector<std::string> GetSettingKeys() {
    std::vector<std::string> keys;
    for (const sSlider& slider : GetSliders()) keys.emplace_back(slider.fName);
    keys.emplace_back("wrap");
    keys.emplace_back("rendering");
    return keys;
  }

  /// Empty for what is no text.
  static std::string ReadName(const tJson& pValue) {
    return pValue.is_string() ? pValue.get<std::string>() : "";
  }

  float ReadMember(const tJson& pObject, const std::string& pKey, float pLowest, float pHighest) const {
    if (!pObject.contains(pKey)) Refuse("lacks \"" + pKey + "\" in \"look\"");
    return ReadNumber(pObject[pKey], pKey, pLowest, pHighest);
  }

  float ReadSlider(const sSlider& pSlider, const tJson& pValue) const {
    return ReadNumber(pValue, pSlider.fName, pSlider.fLowest, pSlider.fHighest);
  }

  float ReadNumber(const tJson& pValue, const std::string& pName, float pLowest, float pHighest) const {
    if (pValue.is_number()) {
      const auto number = static_cast<float>(pValue.get<long double>());
      if (number >= pLowest && number <= pHighest) return number;
    }
    Refuse(pName, pValue, "a number from " + ToText(pLowest) + " to " + ToText(pHighest));
  }
};

std::string WriteUnless(int pDefault, int pValue) {
  return pValue == pDefault ? "" : std::to_string(pValue);
}

bool ReadInteger(const tJson& pValue, int pLowest, int pHighest, int& pTo) {
  if (!pValue.is_number_integer() || pValue < pLowest || pValue > pHighest) return false;
  pTo = pValue.get<int>();
  return true;
}

// What a result may keep besides all. Without XMP it would keep no settings either.
constexpr sMetadataKinds kKindsWithXmp[] = {{false, true, false}, {true, true, false}, {false, true, true}};

std::string NameKinds(const sMetadataKinds& pKinds) {
  return std::string(pKinds.fExif ? "exif," : "") + "xmp" + (pKinds.fIptc ? ",iptc" : "");
}

std::string WriteKinds(const sMetadataKinds& pKinds) {
  return pKinds.fExif && pKinds.fIptc ? "" : Quote(NameKinds(pKinds));
}

/// One output option that a result remembers, under the name of its option.
struct sResultField {
  const char* fName;
  std::string (*fWrite)(const sOutputOptions& pResult);  ///< As JSON; "" where the default holds.
  bool (*fRead)(const tJson& pValue, sOutputOptions& pResult);
  const char* fWanted;
};

constexpr sResultField kResultFields[] = {
    {"depth", [](const sOutputOptions& pResult) { return std::to_string(pResult.fDepth); },
     [](const tJson& pValue, sOutputOptions& pResult) {
       if (pValue != 8 && pValue != 12 && pValue != 16) return false;
       pResult.fDepth = pValue.get<int>();
       return true;
     },
     "8, 12 or 16"},
    {"dither", [](const sOutputOptions& pResult) { return std::string(pResult.fDithers ? "true" : ""); },
     [](const tJson& pValue, sOutputOptions& pResult) {
       if (!pValue.is_boolean()) return false;
       pResult.fDithers = pValue.get<bool>();
       return true;
     },
     "true or false"},
    {"colorspace",
     [](const sOutputOptions& pResult) {
       for (const sColorSpaceName& name : kColorSpaceNames) {
         if (name.fColorSpace == pResult.fColorSpace) return Quote(name.fName);
       }
       return std::string("null");
     },
     [](const tJson& pValue, sOutputOptions& pResult) {
       for (const sColorSpaceName& name : kColorSpaceNames) {
         if (pValue != name.fName) continue;
         pResult.fColorSpace = name.fColorSpace;
         return true;
       }
       return false;
     },
     "srgb, adobergb or prophoto"},
    {"alpha",
     [](const sOutputOptions& pResult) {
       return pResult.fAlpha == sAlphaChoice() ? "" : Quote(ToText(pResult.fAlpha));
     },
     [](const tJson& pValue, sOutputOptions& pResult) {
       const auto choice = ParseAlpha(pValue.is_string() ? pValue.get<std::string>() : "");
       if (choice) pResult.fAlpha = *choice;
       return choice.has_value();
     },
     "keep, ignore or a colour such as #808080"},
    {"preview", [](const sOutputOptions& pResult) { return WriteUnless(0, pResult.fPreview); },
     [](const tJson& pValue, sOutputOptions& pResult) {
       return ReadInteger(pValue, 1, 65535, pResult.fPreview);
     },
     "a whole number from 1 to 65535"},
    {"quality", [](const sOutputOptions& pResult) { return WriteUnless(0, pResult.fFile.fQuality); },
     [](const tJson& pValue, sOutputOptions& pResult) {
       return ReadInteger(pValue, 1, 100, pResult.fFile.fQuality);
     },
     "a whole number from 1 to 100"},
    {"compression", [](const sOutputOptions& pResult) { return WriteUnless(-1, pResult.fFile.fCompression); },
     [](const tJson& pValue, sOutputOptions& pResult) {
       return ReadInteger(pValue, 0, 9, pResult.fFile.fCompression);
     },
     "a whole number from 0 to 9"},
    {"metadata", [](const sOutputOptions& pResult) { return WriteKinds(pResult.fFile.fMetadata); },
     [](const tJson& pValue, sOutputOptions& pResult) {
       for (const sMetadataKinds kinds : kKindsWithXmp) {
         if (pValue != NameKinds(kinds)) continue;
         pResult.fFile.fMetadata = kinds;
         return true;
       }
       return false;
     },
     "xmp, exif,xmp or xmp,iptc"}};

/// The settings' members, each after pSeparator but the first.
std::string WriteSettings(const sSettingsChange& pChange, const std::string& pSeparator) {
  std::string text;
  const auto add = [&](const std::string& pKey, const std::string& pValue) {
    text += (text.empty() ? "" : pSeparator) + "\"" + pKey + "\": " + pValue;
  };
  for (std::size_t i = 0; i < pChange.fSliders.size(); ++i) {
    if (pChange.fSliders[i].has_value()) add(GetSliders()[i].fName, ToText(*pChange.fSliders[i]));
  }
  if (pChange.fWrap.has_value()) add("wrap", Quote(GetWrapName(*pChange.fWrap)));
  if (pChange.fRendering.has_value()) add("rendering", Quote(GetRenderingName(*pChange.fRendering)));
  return text;
}

/// What a result stores: results without a rendering are of the engine's.
sSettingsChange ResultChange(const sSettings& pSettings) {
  sSettingsChange change = ChangeTo(pSettings);
  if (pSettings.fRendering == eRendering::kEngine) change.fRendering.reset();
  return change;
}

std::string WriteLook(const TmEngine::sCommonLook& pLook) {
  std::string text = "{\"black_point\": " + ToText(pLook.fPoints->fBlack) +
                     ", \"white_point\": " + ToText(pLook.fPoints->fWhite);
  if (pLook.fMeans) {
    text += ", \"base_mean\": " + ToText(pLook.fMeans->fBase) +
            ", \"detail_mean\": " + ToText(pLook.fMeans->fDetail);
  }
  return text + "}";
}

}  // namespace

std::string LookToJson(const sSettings& pSettings) {
  sSettingsChange change = ChangeTo(pSettings);
  change.fWrap.reset();  // decided for each picture
  return "{\n  \"" + std::string(kLookKey) + "\": " + std::to_string(kVersion) +
         ",\n  \"settings\": {\n    " + WriteSettings(change, ",\n    ") +
         "\n  },\n  \"look\": " + WriteLook(*pSettings.fLook) + "\n}\n";
}

sSettings ParseLook(const std::string& pText) {
  const cReader reader;
  const tJson object = reader.Parse(pText);
  reader.CheckVersion(object, kLookKey, "look of a set");
  reader.CheckObject(object, "the look", {kLookKey, "settings", "look"});
  const sSettingsChange change = reader.ReadSettings(object);
  if (change.fWrap) reader.Refuse("\"wrap\" cannot be in a look: it is decided for each picture");
  sSettings settings;
  Apply(change, settings);
  if (!object.contains("look")) reader.Refuse("lacks \"look\": { }");
  settings.fLook = reader.ReadLook(object["look"]);
  return settings;
}

std::string ToJson(const sPreset& pPreset) {
  return "{\n  \"" + std::string(kPresetKey) + "\": " + std::to_string(kVersion) +
         ",\n  \"name\": " + Quote(pPreset.fName) + ",\n  \"description\": " + Quote(pPreset.fDescription) +
         ",\n  \"settings\": {\n    " + WriteSettings(pPreset.fChange, ",\n    ") + "\n  }\n}\n";
}

sPreset ParsePreset(const std::string& pText) {
  const cReader reader;
  const tJson object = reader.Parse(pText);
  reader.CheckVersion(object, kPresetKey, "preset");
  reader.CheckObject(object, "the preset", {kPresetKey, "name", "description", "settings"});
  return {reader.ReadText(object, "name"), reader.ReadText(object, "description"),
          reader.ReadSettings(object)};
}

std::string ToJson(const sSettings& pSettings, const sOutputOptions& pResult) {
  std::string fields;
  for (const sResultField& field : kResultFields) {
    const std::string value = field.fWrite(pResult);
    if (!value.empty())
      fields += (fields.empty() ? "\"" : ", \"") + std::string(field.fName) + "\": " + value;
  }
  return "{\"" + std::string(kResultKey) + "\": " + std::to_string(kVersion) + ", \"settings\": {" +
         WriteSettings(ResultChange(pSettings), ", ") + "}, " +
         (pSettings.fLook ? "\"look\": " + WriteLook(*pSettings.fLook) + ", " : "") + "\"result\": {" +
         fields + "}}";
}

void ParseResultSettings(const std::string& pText, const std::function<bool(const std::string&)>& pIsGiven,
                         sSettings& pSettings, sOutputOptions& pResult) {
  const cReader reader;
  const tJson object = reader.Parse(pText);
  reader.CheckVersion(object, kResultKey, "result of this program");
  reader.CheckObject(object, "the settings that it carries", {kResultKey, "settings", "look", "result"});
  pSettings.fRendering = eRendering::kEngine;  // what results state nothing of were made by
  Apply(reader.ReadSettings(object), pSettings);
  if (object.contains("look")) pSettings.fLook = reader.ReadLook(object["look"]);
  if (!object.contains("result")) return;
  std::vector<std::string> names;
  for (const sResultField& field : kResultFields) names.emplace_back(field.fName);
  reader.CheckObject(object["result"], "\"result\"", names);
  for (const sResultField& field : kResultFields) {
    if (!object["result"].contains(field.fName)) continue;
    const tJson& value = object["result"][field.fName];
    sOutputOptions stored = pResult;
    if (!field.fRead(value, stored)) reader.Refuse(field.fName, value, field.fWanted);
    if (!pIsGiven(field.fName)) pResult = stored;
  }
}

}  // namespace Photo
