#include <algorithm>
#include <string_view>
#include <utility>

#include "photo/metadata/MetadataLibrary.h"
#include "photo/metadata/XmpText.h"

namespace Photo {
namespace {

/// What libvips calls the groups of fields.
constexpr std::pair<std::string_view, std::string_view> kGroups[] = {{"Exif.Image.", "exif-ifd0-"},
                                                                     {"Exif.Photo.", "exif-ifd2-"},
                                                                     {"Exif.GPSInfo.", "exif-ifd3-"},
                                                                     {"Exif.Iop.", "exif-ifd4-"}};
constexpr std::string_view kColorSpace = "exif-ifd2-ColorSpace";
constexpr std::string_view kInteropIndex = "exif-ifd4-InteroperabilityIndex";
constexpr char kThumbnail[] = "jpeg-thumbnail-data";

/// "value (text)": libvips cuts off the last bracket, which holds the field's type where it comes from a
/// file.
std::string ToField(const std::string& pText) {
  return pText + " (text)";
}

/// libvips gives a field as "value (reading, type, sizes)"; the reading of a text begins with the text again.
std::string CutReading(const std::string& pField) {
  constexpr std::string_view kBracket = " (";
  for (std::size_t at = 0; (at = pField.find(kBracket, at)) != std::string::npos; ++at) {
    if (pField.compare(at + kBracket.size(), at, pField, 0, at) == 0) return pField.substr(0, at);
  }
  return pField.substr(0, pField.rfind(kBracket));
}

bool IsExif(const sVipsField& pField) {
  return pField.fName.starts_with("exif-");
}

bool IsLeftOut(const sVipsField& pField, const sMetadataKinds& pKinds) {
  if (IsExif(pField)) return !pKinds.fExif;
  return pField.fName == "photoshop-data" ? !pKinds.fIptc : !pKinds.AreAll();
}

/// Without fields, libvips would write an EXIF block that states nothing.
void CorrectExif(sMetadataBlocks& pBlocks, const sPictureFacts& pFacts) {
  if (std::none_of(pBlocks.fFields.begin(), pBlocks.fFields.end(), IsExif)) pBlocks.fExif.clear();
  const std::string index = pFacts.fInteropIndex;
  std::erase_if(pBlocks.fFields, [&](const sVipsField& pField) {
    return (pField.fName == kColorSpace && pFacts.fExifColorSpace > 1) ||
           (pField.fName == kInteropIndex && index.empty());
  });
  for (sVipsField& field : pBlocks.fFields) {
    if (field.fName == kInteropIndex) field.fContent = ToField(index);
  }
}

void CorrectXmpBlock(sMetadataBlocks& pBlocks, const sPictureFacts& pFacts,
                     std::vector<std::string>& pWarnings) {
  if (pBlocks.fXmp.empty()) return;
  const auto corrected = CorrectXmp(pBlocks.fXmp, pFacts.fWidth, pFacts.fHeight);
  if (!corrected) pWarnings.emplace_back("its XMP is left out (it is damaged)");
  pBlocks.fXmp = corrected.value_or("");
}

class cPlainLibrary : public cMetadataLibrary {
 public:
  sMetadataBlocks Read(const std::string&, const sMetadataBlocks& pFound,
                       std::vector<std::string>&) const override {
    return pFound;
  }

  sMetadataBlocks Make(const std::vector<sExifField>& pExif, std::vector<std::string>&) const override {
    const bool isBelowSea = std::any_of(pExif.begin(), pExif.end(), [](const sExifField& pField) {
      return pField.fKey == "Exif.GPSInfo.GPSAltitudeRef" && pField.fText == "1";
    });
    sMetadataBlocks blocks;
    for (const sExifField& field : pExif) {
      if (isBelowSea && field.fKey == "Exif.GPSInfo.GPSAltitude") continue;  // libvips leaves out the sign
      for (const auto& [group, name] : kGroups) {
        if (!field.fKey.starts_with(group)) continue;
        blocks.fFields.push_back({std::string(name) + field.fKey.substr(group.size()), ToField(field.fText)});
      }
    }
    return blocks;
  }

  tExifTexts ListExif(const sMetadataBlocks& pBlocks) const override {
    tExifTexts texts;
    for (const sVipsField& field : pBlocks.fFields) {
      for (const auto& [group, name] : kGroups) {
        if (!field.fName.starts_with(name)) continue;
        texts.emplace(std::string(group) + field.fName.substr(name.size()), CutReading(field.fContent));
      }
    }
    return texts;
  }

  sMetadataBlocks Correct(const sMetadataBlocks& pBlocks, const sCorrections& pCorrections,
                          std::vector<std::string>& pWarnings) const override {
    const sMetadataKinds& kinds = pCorrections.fKinds;
    sMetadataBlocks blocks = pBlocks;
    std::erase_if(blocks.fFields, [&](const sVipsField& pField) { return IsLeftOut(pField, kinds); });
    if (!kinds.fExif) blocks.fExif.clear();
    if (!kinds.fIptc) blocks.fIptc.clear();
    if (!kinds.fXmp) blocks.fXmp.clear();
    CorrectExif(blocks, pCorrections.fFacts);
    CorrectXmpBlock(blocks, pCorrections.fFacts, pWarnings);
    if (!pCorrections.fSettings.empty() && kinds.fXmp) {
      blocks.fXmp = PutSettingsIntoXmp(blocks.fXmp, pCorrections.fSettings);
    }
    if (!pCorrections.fThumbnail.empty()) {
      blocks.fFields.push_back({kThumbnail, pCorrections.fThumbnail, false});
    }
    return blocks;
  }

  bool WritesFiles() const override { return false; }
  void Write(const std::string&, const sMetadataBlocks&, const sCorrections&,
             std::vector<std::string>&) const override {}
};

}  // namespace

const cMetadataLibrary& GetPlainLibrary() {
  static const cPlainLibrary kLibrary;
  return kLibrary;
}

}  // namespace Photo
