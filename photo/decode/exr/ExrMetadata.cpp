#include "photo/decode/exr/ExrMetadata.h"

#include <fmt/format.h>

#include <OpenEXR/ImfFloatAttribute.h>
#include <OpenEXR/ImfStringAttribute.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "photo/metadata/MetadataLibrary.h"

namespace Photo {
namespace {

/// Later versions of the library have more of these attributes than its own functions know here.
struct sAttribute {
  const char* fName;
  const char* fKey;
};

constexpr sAttribute kTexts[] = {{"owner", "Exif.Image.Copyright"},
                                 {"comments", "Exif.Image.ImageDescription"},
                                 {"cameraMake", "Exif.Image.Make"},
                                 {"cameraModel", "Exif.Image.Model"},
                                 {"cameraSerialNumber", "Exif.Photo.BodySerialNumber"},
                                 {"lensMake", "Exif.Photo.LensMake"},
                                 {"lensModel", "Exif.Photo.LensModel"},
                                 {"lensSerialNumber", "Exif.Photo.LensSerialNumber"}};

constexpr sAttribute kPositives[] = {{"expTime", "Exif.Photo.ExposureTime"},
                                     {"aperture", "Exif.Photo.FNumber"},
                                     {"focus", "Exif.Photo.SubjectDistance"},
                                     {"nominalFocalLength", "Exif.Photo.FocalLength"}};

/// Up to its first zero byte; empty for none.
std::string GetText(const Imf::Header& pHeader, const char* pName) {
  const auto* const text = pHeader.findTypedAttribute<Imf::StringAttribute>(pName);
  return text == nullptr ? "" : text->value().substr(0, text->value().find('\0'));
}

/// None for NaN; infinity is a number.
std::optional<double> GetNumber(const Imf::Header& pHeader, const char* pName) {
  const auto* const number = pHeader.findTypedAttribute<Imf::FloatAttribute>(pName);
  if (number == nullptr || std::isnan(number->value())) return std::nullopt;
  return static_cast<double>(number->value());
}

/// The simplest fraction within the precision of a float of a positive number: 0.004f is 1/250. Infinity is
/// what EXIF takes for it. Empty for what fits into no fraction of 32 bits.
std::string ToFraction(double pNumber) {
  constexpr double kMost = 4294967295.0;
  constexpr double kNearEnough = 1e-7;
  if (std::isinf(pNumber)) return "4294967295/1";
  double over = 1.0, under = 0.0, lastOver = 0.0, lastUnder = 1.0;
  for (double rest = pNumber;;) {  // a continued fraction, term by term
    const double whole = std::floor(rest);
    lastOver = std::exchange(over, whole * over + lastOver);
    lastUnder = std::exchange(under, whole * under + lastUnder);
    if (std::fabs(over / under - pNumber) <= kNearEnough * pNumber) break;
    rest = 1.0 / (rest - whole);
  }
  return over >= 1.0 && over < kMost && under <= kMost ? fmt::format("{:.0f}/{:.0f}", over, under) : "";
}

/// Gathers fields; those without a text are passed over.
class cFields {
 public:
  explicit cFields(const Imf::Header& pHeader) : fHeader(pHeader) {}

  void AddTexts() {
    for (const sAttribute& attribute : kTexts) Add(attribute.fKey, GetText(fHeader, attribute.fName));
  }

  void AddPositives() {
    for (const sAttribute& attribute : kPositives) {
      const double number = GetNumber(fHeader, attribute.fName).value_or(0.0);
      if (number > 0.0) Add(attribute.fKey, ToFraction(number));
    }
    const double speed = std::round(GetNumber(fHeader, "isoSpeed").value_or(0.0));
    if (speed >= 1.0 && speed <= 65535.0) Add("Exif.Photo.ISOSpeedRatings", fmt::format("{:.0f}", speed));
  }

  void AddDate() {
    constexpr std::string_view kForm = "0000:00:00 00:00:00";
    const std::string date = GetText(fHeader, "capDate");
    const auto fits = [](char pForm, char pC) { return pForm == '0' ? pC >= '0' && pC <= '9' : pC == pForm; };
    if (!std::equal(kForm.begin(), kForm.end(), date.begin(), date.end(), fits)) return;
    Add("Exif.Photo.DateTimeOriginal", date);
    // EXIF counts the other way: what local time is ahead of UTC
    const auto ahead = GetNumber(fHeader, "utcOffset");
    if (!ahead || !(std::fabs(*ahead) < 86370.0)) return;
    const auto minutes = std::lround(-*ahead / 60.0);
    Add("Exif.Photo.OffsetTimeOriginal", fmt::format("{}{:02}:{:02}", minutes < 0 ? '-' : '+',
                                                     std::labs(minutes) / 60, std::labs(minutes) % 60));
  }

  void AddPosition() {
    const std::size_t before = fFields.size();
    AddAngle("latitude", "Exif.GPSInfo.GPSLatitude", "NS", 90.0);
    AddAngle("longitude", "Exif.GPSInfo.GPSLongitude", "EW", 180.0);
    const auto altitude = GetNumber(fHeader, "altitude");
    if (altitude && std::isfinite(*altitude)) {
      Add("Exif.GPSInfo.GPSAltitudeRef", *altitude < 0.0 ? "1" : "0");
      Add("Exif.GPSInfo.GPSAltitude", *altitude == 0.0 ? "0/1" : ToFraction(std::fabs(*altitude)));
    }
    if (fFields.size() > before) Add("Exif.GPSInfo.GPSVersionID", "2 3 0 0");
  }

  const std::vector<sExifField>& Get() const { return fFields; }

 private:
  void Add(const char* pKey, const std::string& pText) {
    if (!pText.empty()) fFields.push_back({pKey, pText});
  }

  /// pSigns: what positive and negative angles are called. A hundredth of a second is 30 cm, and finer than
  /// floats are.
  void AddAngle(const char* pName, const std::string& pKey, const char* pSigns, double pMost) {
    const auto degrees = GetNumber(fHeader, pName);
    if (!degrees || !(std::fabs(*degrees) <= pMost)) return;
    const auto hundredths = std::lround(std::fabs(*degrees) * 360000.0);
    Add((pKey + "Ref").c_str(), std::string(1, pSigns[*degrees < 0.0 ? 1 : 0]));
    Add(pKey.c_str(),
        fmt::format("{}/1 {}/1 {}/100", hundredths / 360000, hundredths / 6000 % 60, hundredths % 6000));
  }

  const Imf::Header& fHeader;
  std::vector<sExifField> fFields;
};

}  // namespace

std::shared_ptr<const cMetadata> ReadExrMetadata(const Imf::Header& pHeader) {
  cFields fields(pHeader);
  fields.AddTexts();
  fields.AddPositives();
  fields.AddDate();
  fields.AddPosition();
  std::vector<std::string> warnings;
  sMetadataBlocks blocks = GetMetadataLibrary().Make(fields.Get(), warnings);
  constexpr double kMillimetresPerInch = 25.4;
  const double density = GetNumber(pHeader, "xDensity").value_or(0.0) / kMillimetresPerInch;
  const double aspect = static_cast<double>(pHeader.pixelAspectRatio());
  if (density > 0.0 && density * aspect > 0.0 && std::isfinite(density) && std::isfinite(density * aspect)) {
    blocks.fXResolution = density;
    blocks.fYResolution = density * aspect;
    blocks.fFields.push_back({"resolution-unit", "in"});
  }
  return std::make_shared<cMetadata>(std::move(blocks), "", std::move(warnings));
}

}  // namespace Photo
