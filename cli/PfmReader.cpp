#include "cli/PfmReader.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

#include "cli/Failure.h"
#include "cli/LinearLight.h"

namespace Cli {
namespace {

struct sPfmHeader {
  int fSamples = 0;  ///< A pixel: 1 or 3.
  std::int64_t fWidth = 0;
  std::int64_t fHeight = 0;
  bool fSwap = false;  ///< The file's byte order is not the machine's.
};

sPfmHeader ReadHeader(const std::string& pFile, std::istream& pStream) {
  sPfmHeader header;
  std::string kind;
  double scale = 0.0;
  pStream >> kind >> header.fWidth >> header.fHeight >> scale;
  pStream.get();  // the one blank before the samples
  const bool isSound =
      pStream.good() && (kind == "PF" || kind == "Pf") && std::isfinite(scale) && scale != 0.0;
  if (!isSound) throw cFailure(eExitCode_CannotRead, pFile, "its PFM header is damaged");
  header.fSamples = kind == "PF" ? 3 : 1;
  header.fSwap = (scale < 0.0) != (std::endian::native == std::endian::little);
  return header;
}

/// Refuses a file that holds fewer samples than its header promises, before memory is asked for.
void CheckSize(const std::string& pFile, const sPfmHeader& pHeader, std::istream& pStream) {
  const double needed =
      4.0 * pHeader.fSamples * static_cast<double>(pHeader.fWidth) * static_cast<double>(pHeader.fHeight);
  std::error_code error;
  const auto size = static_cast<double>(std::filesystem::file_size(pFile, error));
  if (error || size - static_cast<double>(pStream.tellg()) < needed) {
    throw cFailure(eExitCode_CannotRead, pFile, "cut short: it holds fewer pixels than its header promises");
  }
}

void SwapBytes(std::vector<float>& pSamples) {
  for (float& sample : pSamples) {
    sample = std::bit_cast<float>(__builtin_bswap32(std::bit_cast<std::uint32_t>(sample)));
  }
}

}  // namespace

sPicture ReadPfm(const std::string& pFile) {
  std::ifstream stream(pFile, std::ios::binary);
  const sPfmHeader header = ReadHeader(pFile, stream);
  if (header.fWidth > 0 && header.fHeight > 0) CheckSize(pFile, header, stream);
  sPicture picture = MakePicture(pFile, header.fWidth, header.fHeight);
  std::vector<float> row(static_cast<std::size_t>(header.fWidth * header.fSamples));
  for (int y = picture.fBitmap->GetHeight() - 1; y >= 0; --y) {
    stream.read(reinterpret_cast<char*>(row.data()),
                static_cast<std::streamsize>(row.size() * sizeof(float)));
    if (!stream) throw cFailure(eExitCode_CannotRead, pFile, "cut short, or unreadable");
    if (header.fSwap) SwapBytes(row);
    float* pixel = GetRow(picture, y);
    for (std::size_t i = 0; i < row.size(); i += static_cast<std::size_t>(header.fSamples), pixel += 3) {
      std::memcpy(pixel, &row[i], static_cast<std::size_t>(header.fSamples) * sizeof(float));
    }
  }
  if (header.fSamples == 1) SpreadGrey(picture);
  LinearToXYZ(picture, std::nullopt);
  return picture;
}

}  // namespace Cli
