#include "photo/decode/PngColors.h"

#include <fmt/format.h>

#include <zlib.h>

#include <algorithm>
#include <map>
#include <string_view>

#include "photo/io/BigEndian.h"
#include "photo/io/FileReader.h"

namespace Photo {
namespace {

constexpr std::size_t kName = 4;

/// The content of the first chunk of each name that is looked for.
using tChunks = std::map<std::string, std::string, std::less<>>;

bool IsLookedFor(std::string_view pName, std::uint64_t pSize) {
  return (pName == "cICP" && pSize == 4) || (pName == "sRGB" && pSize == 1) ||
         (pName == "gAMA" && pSize == 4) || (pName == "cHRM" && pSize == 32);
}

bool HasChecksum(const std::string& pNameAndContent, std::string_view pChecksum) {
  const auto* const bytes = reinterpret_cast<const Bytef*>(pNameAndContent.data());
  return crc32(0, bytes, static_cast<uInt>(pNameAndContent.size())) == ReadBigEndian(pChecksum);
}

/// A chunk is its size, its name, the content and a checksum of name and content.
tChunks ReadChunks(const std::string& pFile) {
  constexpr int kMostChunks = 4096;
  cFileReader file(pFile);
  tChunks chunks;
  std::uint64_t at = 8;
  for (int i = 0; i < kMostChunks; ++i) {
    const std::string head = file.Read(at, 4 + kName);
    const std::string name = head.substr(std::min(head.size(), kName));
    if (name.size() < kName || name == "IDAT") break;
    const std::uint64_t size = ReadBigEndian(std::string_view(head).substr(0, 4));
    if (IsLookedFor(name, size)) {
      const auto whole = kName + static_cast<std::size_t>(size);
      const std::string bytes = file.Read(at + 4, whole + 4);
      const std::string content = bytes.substr(0, whole);
      if (bytes.size() == whole + 4 && HasChecksum(content, std::string_view(bytes).substr(whole))) {
        chunks.emplace(name, content.substr(kName));
      }
    }
    at += 12 + size;
  }
  return chunks;
}

/// Numbers in chunks are whole ones, in parts of 100,000.
double ReadPart(std::string_view pContent, std::size_t pIndex) {
  return static_cast<double>(ReadBigEndian(pContent.substr(4 * pIndex, 4))) / 100000.0;
}

std::optional<sCicpColors> ReadCodes(const std::string& pContent, std::vector<std::string>& pWarnings) {
  const auto code = [&](std::size_t pIndex) { return static_cast<unsigned char>(pContent[pIndex]); };
  auto colors =
      FindCodedColors(code(0), code(1), "what else the file says of its colours is taken", pWarnings);
  if (colors && (code(2) != 0 || code(3) != 1)) {
    pWarnings.emplace_back("its samples are stated not to be RGB of full range (cICP); they are taken so");
  }
  return colors;
}

sPrimaries ReadPrimaries(const std::string& pContent, std::vector<std::string>& pWarnings) {
  const auto point = [&](std::size_t pIndex) {
    return TmEngine::cVector2(static_cast<float>(ReadPart(pContent, pIndex)),
                              static_cast<float>(ReadPart(pContent, pIndex + 1)));
  };
  const sPrimaries primaries = {point(2), point(4), point(6), point(0)};
  if (SpanColorSpace(primaries)) return primaries;
  pWarnings.emplace_back("its primaries (cHRM) span no colour space; those of sRGB are taken");
  return {};
}

/// 0 where it is not of use.
double ReadPower(const std::string& pContent, std::vector<std::string>& pWarnings) {
  constexpr double kLargest = 10.0;
  const double power = 1.0 / ReadPart(pContent, 0);
  if (power <= kLargest && power >= 1.0 / kLargest) return power;
  pWarnings.emplace_back("its gamma (gAMA) is of no use; the curve of sRGB is taken");
  return 0.0;
}

/// From gAMA and cHRM, each as far as it is there.
std::optional<sCicpColors> ReadNumbers(const tChunks& pChunks, std::vector<std::string>& pWarnings) {
  sCicpColors colors;
  const auto primaries = pChunks.find("cHRM");
  if (primaries != pChunks.end()) colors.fPrimaries = ReadPrimaries(primaries->second, pWarnings);
  const auto gamma = pChunks.find("gAMA");
  const double power = gamma == pChunks.end() ? 0.0 : ReadPower(gamma->second, pWarnings);
  const std::string name = NamePrimaries(colors.fPrimaries);
  if (power == 0.0 && name == NamePrimaries({})) return std::nullopt;
  if (power != 0.0) {
    colors.fEncoding = eEncoding::kPower;
    colors.fPower = power;
  }
  colors.fName = (power == 0.0   ? "curve of sRGB"
                  : power == 1.0 ? "linear light"
                                 : fmt::format("gamma {:.3g}", power)) +
                 ", " + name;
  return colors;
}

}  // namespace

std::optional<sCicpColors> ReadPngColors(const std::string& pFile, bool pHasProfile,
                                         std::vector<std::string>& pWarnings) {
  const tChunks chunks = ReadChunks(pFile);
  if (const auto codes = chunks.find("cICP"); codes != chunks.end()) {
    if (auto colors = ReadCodes(codes->second, pWarnings)) return colors;
  }
  if (pHasProfile || chunks.find("sRGB") != chunks.end()) return std::nullopt;
  return ReadNumbers(chunks, pWarnings);
}

}  // namespace Photo
