#include "cli/PfmReader.h"

#include <bit>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <vector>

#include "cli/Failure.h"
#include "cli/LightRows.h"

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

void ReadRow(const std::string& pFile, std::istream& pStream, const sPfmHeader& pHeader,
             std::vector<float>& pRow) {
  pStream.read(reinterpret_cast<char*>(pRow.data()),
               static_cast<std::streamsize>(pRow.size() * sizeof(float)));
  if (!pStream) throw cFailure(eExitCode_CannotRead, pFile, "cut short, or unreadable");
  if (pHeader.fSwap) SwapBytes(pRow);
}

}  // namespace

sPicture ReadPfm(const std::string& pFile) {
  std::ifstream stream(pFile, std::ios::binary);
  const sPfmHeader header = ReadHeader(pFile, stream);
  if (header.fWidth > 0 && header.fHeight > 0) CheckSize(pFile, header, stream);
  sPicture picture = MakePicture(pFile, header.fWidth, header.fHeight);
  picture.fFormat = "PFM";
  cLightRows light(LightOf(std::nullopt, picture.fWarnings));
  std::vector<float> row(static_cast<std::size_t>(header.fWidth * header.fSamples));
  for (int y = picture.fBitmap->GetHeight() - 1; y >= 0; --y) {
    ReadRow(pFile, stream, header, row);
    float* pixel = GetRow(picture, y);
    for (std::size_t i = 0; i < row.size(); i += static_cast<std::size_t>(header.fSamples), pixel += 3) {
      for (std::size_t k = 0; k < 3; ++k) pixel[k] = row[header.fSamples == 3 ? i + k : i];
    }
    light.Take(GetRow(picture, y), picture.fBitmap->GetWidth());
  }
  light.Finish(picture);
  return picture;
}

}  // namespace Cli
