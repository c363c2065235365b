#include "cli/terminal/PresetList.h"

#include <algorithm>
#include <cstddef>

#include "photo/Printable.h"

namespace Tool {
namespace {

/// One line of the list: the name, what it is for, and where it is.
std::string Describe(const Photo::sPresetEntry& pPreset) {
  constexpr std::size_t kNameColumns = 16;
  std::string text = pPreset.fFault.empty() ? pPreset.fDescription : "cannot be used: " + pPreset.fFault;
  std::replace(text.begin(), text.end(), '\n', ' ');
  std::string name = pPreset.fName;
  name.resize(std::max(name.size(), kNameColumns), ' ');
  const std::string place = pPreset.fIsBuiltIn ? "built in" : pPreset.fFile;
  return Photo::ToPrintable(name + ' ' + text + (text.empty() ? "(" : " (") + place +
                            (pPreset.fIsHidden ? ", hidden by yours)" : ")")) +
         "\n";
}

}  // namespace

std::string ListPresets(const std::vector<Photo::sPresetEntry>& pPresets) {
  std::string list;
  for (const Photo::sPresetEntry& preset : pPresets) list += Describe(preset);
  return list;
}

std::string ListPresetsForShells(const std::vector<Photo::sPresetEntry>& pPresets) {
  std::string list;
  for (const Photo::sPresetEntry& preset : pPresets) {
    if (preset.fIsHidden || !preset.fFault.empty()) continue;
    std::string text = preset.fDescription;
    std::replace_if(
        text.begin(), text.end(), [](unsigned char pC) { return pC < ' '; }, ' ');
    list += preset.fName + "\t" + text + "\n";
  }
  return list;
}

}  // namespace Tool
