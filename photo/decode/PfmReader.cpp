#include "photo/decode/PfmReader.h"

#include <bit>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>
#include <vector>

#include "photo/base/Failure.h"
#include "photo/light/RowConverter.h"

namespace Photo {
namespace {

struct sPfmHeader {
  int fSamples = 0;  ///< Per pixel: 1 or 3.
  std::int64_t fWidth = 0;
  std::int64_t fHeight = 0;
  bool fSwap = false;  ///< The file's byte order is not the machine's.
};

sPfmHeader ReadHeader(std::istream& pStream) {
  sPfmHeader header;
  std::string kind;
  double scale = 0.0;
  pStream >> kind >> header.fWidth >> header.fHeight >> scale;
  pStream.get();  // the one blank before the samples
  const bool isValid =
      pStream.good() && (kind == "PF" || kind == "Pf") && std::isfinite(scale) && scale != 0.0;
  if (!isValid) throw cFailure(eFailure::kCannotRead, "its PFM header is damaged");
  header.fSamples = kind == "PF" ? 3 : 1;
  header.fSwap = (scale < 0.0) != (std::endian::native == std::endian::little);
  return header;
}

/// Refuses a file that holds fewer samples than its header promises, before memory is asked for.
void CheckLength(const std::string& pFile, const sPfmHeader& pHeader, std::istream& pStream) {
  const double needed =
      4.0 * pHeader.fSamples * static_cast<double>(pHeader.fWidth) * static_cast<double>(pHeader.fHeight);
  std::error_code error;
  const auto size = static_cast<double>(std::filesystem::file_size(pFile, error));
  if (error || size - static_cast<double>(pStream.tellg()) < needed) {
    throw cFailure(eFailure::kCannotRead, "cut short: it holds fewer pixels than its header promises");
  }
}

/// The rows, which are stored from bottom to top.
class cPfmRows : public cPictureRows {
 public:
  cPfmRows(std::ifstream pStream, const sPfmHeader& pHeader, const sLinearLight& pLight)
      : cPictureRows(static_cast<int>(pHeader.fWidth), static_cast<int>(pHeader.fHeight), false),
        fStream(std::move(pStream)),
        fHeader(pHeader),
        fStart(fStream.tellg()),
        fLight(pLight),
        fRow(static_cast<std::size_t>(pHeader.fWidth * pHeader.fSamples)) {}

  bool Read(int pY, float* pTo, std::uint16_t*) override {
    ReadSamples(GetHeight() - 1 - pY);
    const auto samples = static_cast<std::size_t>(fHeader.fSamples);
    float* pixel = pTo;
    for (std::size_t i = 0; i < fRow.size(); i += samples, pixel += 3) {
      for (std::size_t k = 0; k < 3; ++k) pixel[k] = fRow[samples == 3 ? i + k : i];
    }
    return fLight.Take(pTo, GetWidth());
  }

  void Hold() override { fLight.Hold(); }
  std::optional<sRepairs> Finish() override { return fLight.Finish(); }

 private:
  /// Reads the samples of a row, counted in the file's order.
  void ReadSamples(int pRow) {
    const auto bytes = static_cast<std::streamsize>(fRow.size() * sizeof(float));
    fStream.seekg(fStart + std::streamoff{bytes} * pRow);
    fStream.read(reinterpret_cast<char*>(fRow.data()), bytes);
    if (!fStream) throw cFailure(eFailure::kCannotRead, "cut short, or unreadable");
    if (!fHeader.fSwap) return;
    for (float& sample : fRow) {
      sample = std::bit_cast<float>(__builtin_bswap32(std::bit_cast<std::uint32_t>(sample)));
    }
  }

  std::ifstream fStream;
  sPfmHeader fHeader;
  std::streampos fStart;
  cRowConverter fLight;
  std::vector<float> fRow;
};

}  // namespace

sOpenedPicture OpenPfm(const std::string& pFile, const tMemoryGate& pGate) {
  std::ifstream stream(pFile, std::ios::binary);
  const sPfmHeader header = ReadHeader(stream);
  if (header.fWidth > 0 && header.fHeight > 0) CheckLength(pFile, header, stream);
  CheckSize(header.fWidth, header.fHeight, pGate);
  sOpenedPicture picture;
  picture.fFormat = "PFM";
  const sLinearLight light = MakeLinearLight(std::nullopt, picture.fWarnings);
  picture.fColorSpace = light.fColorSpace;
  picture.fRows = std::make_unique<cPfmRows>(std::move(stream), header, light);
  return picture;
}

}  // namespace Photo
