#include "photo/encode/OutputFormat.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <functional>

#include "photo/base/Failure.h"

namespace Photo {
namespace {

constexpr int kHuge = 1 << 30;

// The default qualities show no loss beside the original. Compression 3: a photograph of 12 megapixels takes
// 0.8 s and 16.2 MB as PNG, 0.4 s and 15.8 MB as TIFF; at 6 it takes three times as long and is 4 % smaller.
// AVIF of 10 bits is left out: the encoder of Debian 12 breaks off.
const sFormatTraits kFormats[] = {
    {eOutputFormat::kPng, "PNG", {".png"}, {8, 16}, 0, 3, true, kHuge},
    {eOutputFormat::kTiff, "TIFF", {".tif", ".tiff"}, {8, 16}, 0, 3, true, kHuge},
    {eOutputFormat::kJpeg, "JPEG", {".jpg", ".jpeg"}, {8}, 95, -1, false, 65500},
    {eOutputFormat::kWebp, "WebP", {".webp"}, {8}, 95, -1, true, 16383},
    {eOutputFormat::kAvif, "AVIF", {".avif"}, {8, 12}, 90, -1, true, 16384},
    {eOutputFormat::kJxl, "JPEG XL", {".jxl"}, {8, 16}, 95, -1, true, kHuge}};

/// "a", "a or b", "a, b or c" of what pText makes of the formats that pMatches; empty texts are left out.
std::string ListFormats(const std::function<std::string(const sFormatTraits&)>& pText) {
  std::vector<std::string> texts;
  for (const sFormatTraits& format : kFormats) {
    if (const std::string text = pText(format); !text.empty()) texts.push_back(text);
  }
  std::string list;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    list.append(i == 0 ? "" : i + 1 < texts.size() ? ", " : " or ").append(texts[i]);
  }
  return list;
}

std::string ListDepths(const sFormatTraits& pFormat) {
  std::string list;
  for (const int depth : pFormat.fDepths)
    list.append(list.empty() ? "" : " or ").append(std::to_string(depth));
  return list;
}

bool HasDepth(const sFormatTraits& pFormat, int pDepth) {
  return std::count(pFormat.fDepths.begin(), pFormat.fDepths.end(), pDepth) > 0;
}

void CheckDepth(const sFormatTraits& pFormat, int pDepth) {
  if (HasDepth(pFormat, pDepth)) return;
  const std::string others = ListFormats([&](const sFormatTraits& pOther) {
    return HasDepth(pOther, pDepth) ? pOther.fExtensions.front() : std::string();
  });
  throw cFailure(eFailure::kUsage, std::string(pFormat.fName) + " holds " + ListDepths(pFormat) + " bits" +
                                       (pFormat.fDepths.size() == 1 ? " only" : "") + "; use {depth} " +
                                       ListDepths(pFormat) + ", or write " + others);
}

void CheckOptions(const sFormatTraits& pFormat, const sFileOptions& pOptions) {
  if (pOptions.fQuality != 0 && pFormat.fQuality == 0) {
    throw cFailure(eFailure::kUsage, std::string(pFormat.fName) +
                                         " loses nothing and has no {quality}; {compression} is its " +
                                         "choice of size against time");
  }
  if (pOptions.fCompression >= 0 && pFormat.fCompression < 0) {
    throw cFailure(eFailure::kUsage,
                   "{compression} is for .png and .tif; " + std::string(pFormat.fName) + " takes {quality}");
  }
}

}  // namespace

const sFormatTraits& GetTraits(eOutputFormat pFormat) {
  return *std::find_if(std::begin(kFormats), std::end(kFormats),
                       [&](const sFormatTraits& pKnown) { return pKnown.fFormat == pFormat; });
}

std::string GetExtension(const std::string& pFile) {
  std::string extension = std::filesystem::path(pFile).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char pC) { return static_cast<char>(std::tolower(pC)); });
  return extension;
}

eOutputFormat ChooseOutputFormat(const std::string& pFile, int pDepth, const sFileOptions& pOptions) {
  const std::string extension = GetExtension(pFile);
  for (const sFormatTraits& format : kFormats) {
    if (std::count(format.fExtensions.begin(), format.fExtensions.end(), extension) == 0) continue;
    CheckDepth(format, pDepth);
    CheckOptions(format, pOptions);
    return format.fFormat;
  }
  throw cFailure(eFailure::kUsage,
                 "unknown extension of an output name; use " +
                     ListFormats([](const sFormatTraits& pFormat) { return pFormat.fExtensions.front(); }));
}

int ChooseDepth(eOutputFormat pFormat, int pDepth) {
  const std::vector<int>& depths = GetTraits(pFormat).fDepths;
  const auto above = std::upper_bound(depths.begin(), depths.end(), pDepth);
  return above == depths.begin() ? depths.front() : *(above - 1);
}

void CheckFits(eOutputFormat pFormat, std::int64_t pWidth, std::int64_t pHeight) {
  const sFormatTraits& format = GetTraits(pFormat);
  if (std::max(pWidth, pHeight) <= format.fLargestSide) return;
  throw cFailure(eFailure::kCannotWrite, std::string(format.fName) + " holds at most " +
                                             std::to_string(format.fLargestSide) +
                                             " pixels a side, and the picture has " + std::to_string(pWidth) +
                                             " x " + std::to_string(pHeight) + "; write .png, .tif or .jxl");
}

}  // namespace Photo
