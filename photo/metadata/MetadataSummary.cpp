#include "photo/metadata/MetadataSummary.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <initializer_list>
#include <sstream>

#include "photo/metadata/MetadataLibrary.h"

namespace Photo {
namespace {

std::string Get(const tExifTexts& pExif, const std::string& pKey) {
  const auto field = pExif.find(pKey);
  return field == pExif.end() ? "" : field->second;
}

/// The first of these fields that is set, on one line and without the blanks that cameras fill it up with.
std::string GetText(const tExifTexts& pExif, std::initializer_list<const char*> pKeys) {
  for (const char* key : pKeys) {
    std::string text = Get(pExif, key);
    std::replace_if(
        text.begin(), text.end(), [](unsigned char pC) { return pC < ' '; }, ' ');
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    text.erase(text.find_last_not_of(' ') + 1);
    if (!text.empty()) return text;
  }
  return "";
}

/// The numbers of a field, fractions as well; 0 for those that are not there.
struct sNumbers {
  double fFirst = 0.0;
  double fSecond = 0.0;
  double fThird = 0.0;
};

sNumbers GetNumbers(const tExifTexts& pExif, const char* pKey) {
  sNumbers numbers;
  std::istringstream words(Get(pExif, pKey));
  for (double* const to : {&numbers.fFirst, &numbers.fSecond, &numbers.fThird}) {
    std::string word;
    words >> word;
    double over = 0.0;
    double under = 1.0;
    if (std::sscanf(word.c_str(), "%lf/%lf", &over, &under) >= 1 && under != 0.0) *to = over / under;
  }
  return numbers;
}

double GetNumber(const tExifTexts& pExif, const char* pKey) {
  return GetNumbers(pExif, pKey).fFirst;
}

void Append(std::string& pTo, const std::string& pText, const char* pBetween) {
  if (!pText.empty()) pTo += (pTo.empty() ? "" : pBetween) + pText;
}

std::string DescribeCamera(const tExifTexts& pExif) {
  std::string text = GetText(pExif, {"Exif.Image.Make"});
  const std::string model = GetText(pExif, {"Exif.Image.Model"});
  if (model.starts_with(text)) text.clear();
  Append(text, model, " ");
  return text;
}

std::string DescribeTime(double pSeconds) {
  if (pSeconds <= 0.0) return "";
  return pSeconds < 0.4 ? fmt::format("1/{:.0f} s", 1.0 / pSeconds) : fmt::format("{:g} s", pSeconds);
}

std::string DescribeExposure(const tExifTexts& pExif) {
  std::string text = DescribeTime(GetNumber(pExif, "Exif.Photo.ExposureTime"));
  if (const double stop = GetNumber(pExif, "Exif.Photo.FNumber"); stop > 0.0)
    Append(text, fmt::format("f/{:.3g}", stop), ", ");
  if (const double speed = GetNumber(pExif, "Exif.Photo.ISOSpeedRatings"); speed > 0.0) {
    Append(text, fmt::format("ISO {:.0f}", speed), ", ");
  }
  if (const double length = GetNumber(pExif, "Exif.Photo.FocalLength"); length > 0.0) {
    Append(text, fmt::format("{:.3g} mm", length), ", ");
  }
  return text;
}

std::string DescribeDistance(const tExifTexts& pExif) {
  constexpr double kInfinite = 4294967295.0;  // a numerator with all bits set
  const double metres = GetNumber(pExif, "Exif.Photo.SubjectDistance");
  if (metres >= kInfinite) return "infinite";
  return metres > 0.0 ? fmt::format("{:.3g} m", metres) : "";
}

std::string DescribeDate(const tExifTexts& pExif) {
  std::string text = GetText(pExif, {"Exif.Photo.DateTimeOriginal"});
  if (text.empty()) return GetText(pExif, {"Exif.Photo.DateTimeDigitized", "Exif.Image.DateTime"});
  Append(text, GetText(pExif, {"Exif.Photo.OffsetTimeOriginal"}), " ");
  return text;
}

/// "27.71700 N"; empty where latitude or longitude is not stated.
std::string DescribeAngle(const tExifTexts& pExif, const std::string& pName) {
  const std::string key = "Exif.GPSInfo." + pName;
  if (Get(pExif, key).empty()) return "";
  const sNumbers angle = GetNumbers(pExif, key.c_str());
  std::string text = fmt::format("{:.5f}", angle.fFirst + angle.fSecond / 60.0 + angle.fThird / 3600.0);
  Append(text, GetText(pExif, {(key + "Ref").c_str()}), " ");
  return text;
}

std::string DescribePosition(const tExifTexts& pExif) {
  std::string text = DescribeAngle(pExif, "GPSLatitude");
  Append(text, DescribeAngle(pExif, "GPSLongitude"), ", ");
  if (text.empty() || Get(pExif, "Exif.GPSInfo.GPSAltitude").empty()) return text;
  const double metres = GetNumber(pExif, "Exif.GPSInfo.GPSAltitude");
  const bool isBelow = GetNumber(pExif, "Exif.GPSInfo.GPSAltitudeRef") == 1.0;
  return text + fmt::format(", {:.0f} m", isBelow ? -metres : metres);
}

}  // namespace

sMetadataSummary SummariseMetadata(const cMetadata& pMetadata) {
  const tExifTexts exif = GetMetadataLibrary().ListExif(pMetadata.GetBlocks());
  return {DescribeCamera(exif),
          GetText(exif, {"Exif.Photo.LensModel"}),
          DescribeExposure(exif),
          DescribeDistance(exif),
          DescribeDate(exif),
          GetText(exif, {"Exif.Image.ImageDescription"}),
          GetText(exif, {"Exif.Image.Copyright"}),
          DescribePosition(exif)};
}

}  // namespace Photo
