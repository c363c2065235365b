#include "examples/scene/WriteHdr.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <stdexcept>

#include "examples/scene/Rgbe.h"
#include "examples/scene/WriteFile.h"

namespace Scene {
namespace {

using tBytes = std::vector<unsigned char>;

std::size_t RunLength(const unsigned char* pFrom, std::size_t pLeft) {
  std::size_t length = 1;
  while (length < pLeft && length < 127 && pFrom[length] == pFrom[0]) ++length;
  return length;
}

/// One channel of a row: runs of 4 and more as (128 + length, value), all else as (length, values...).
void PackChannel(const tBytes& pFrom, tBytes& pTo) {
  std::size_t i = 0;
  while (i < pFrom.size()) {
    const std::size_t run = RunLength(&pFrom[i], pFrom.size() - i);
    if (run >= 4) {
      pTo.push_back(static_cast<unsigned char>(128 + run));
      pTo.push_back(pFrom[i]);
      i += run;
      continue;
    }
    const std::size_t start = i;
    while (i < pFrom.size() && i - start < 128 && RunLength(&pFrom[i], pFrom.size() - i) < 4) ++i;
    pTo.push_back(static_cast<unsigned char>(i - start));
    pTo.insert(pTo.end(), pFrom.begin() + static_cast<std::ptrdiff_t>(start),
               pFrom.begin() + static_cast<std::ptrdiff_t>(i));
  }
}

tBytes PackRow(const float* pRow, int pWidth) {
  const auto width = static_cast<std::size_t>(pWidth);
  const bool packed = pWidth >= 8 && pWidth <= 32767;  // the format's limits for run-length encoded rows
  tBytes plain(4 * width);
  tBytes channels[4] = {tBytes(width), tBytes(width), tBytes(width), tBytes(width)};
  for (std::size_t x = 0; x < width; ++x) {
    unsigned char rgbe[4];
    ToRgbe(pRow + 3 * x, rgbe);
    for (std::size_t i = 0; i < 4; ++i) channels[i][x] = plain[4 * x + i] = rgbe[i];
  }
  if (!packed) return plain;
  tBytes row = {2, 2, static_cast<unsigned char>(pWidth >> 8), static_cast<unsigned char>(pWidth & 255)};
  for (const tBytes& channel : channels) PackChannel(channel, row);
  return row;
}

}  // namespace

void WriteHdr(const sHdrPicture& pPicture, const std::string& pPath) {
  WriteWhole(pPath, [&](const std::string& pName) {
    std::ofstream file(pName, std::ios::binary);
    file << "#?RADIANCE\nSOFTWARE=quorvane-scene\nFORMAT=32-bit_rle_rgbe\n"
         << "PRIMARIES=0.6400 0.3300 0.3000 0.6000 0.1500 0.0600 0.3127 0.3290\n\n"
         << "-Y " << pPicture.fHeight << " +X " << pPicture.fWidth << "\n";
    const std::size_t pitch = 3 * static_cast<std::size_t>(pPicture.fWidth);
    for (std::size_t y = 0; y < static_cast<std::size_t>(pPicture.fHeight); ++y) {
      const tBytes row = PackRow(&pPicture.fPixels[y * pitch], pPicture.fWidth);
      file.write(reinterpret_cast<const char*>(row.data()), static_cast<std::streamsize>(row.size()));
    }
    file.close();
    if (!file) throw std::runtime_error(std::strerror(errno));
  });
}

}  // namespace Scene
