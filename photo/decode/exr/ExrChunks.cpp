#include "photo/decode/exr/ExrChunks.h"

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfTileDescription.h>

#include <algorithm>
#include <cstdint>

#include "photo/base/Failure.h"

namespace Photo {
namespace {

bool IsTiled(const Imf::Header& pHeader) {
  return pHeader.hasType() && Imf::isTiled(pHeader.type());
}

int CountLines(Imf::Compression pCompression) {
  switch (pCompression) {
    case Imf::ZIP_COMPRESSION:
    case Imf::PXR24_COMPRESSION:
      return 16;
    case Imf::PIZ_COMPRESSION:
    case Imf::B44_COMPRESSION:
    case Imf::B44A_COMPRESSION:
    case Imf::DWAA_COMPRESSION:
      return 32;
    case Imf::DWAB_COMPRESSION:
      return 256;
    default:
      return 1;
  }
}

/// How many of the coordinates from pFirst to pLast are multiples of pStep.
double CountMultiples(int pFirst, int pLast, int pStep) {
  const auto floor = [pStep](std::int64_t pV) { return pV >= 0 ? pV / pStep : -((pStep - 1 - pV) / pStep); };
  return static_cast<double>(floor(pLast) - floor(std::int64_t{pFirst} - 1));
}

/// The size of an area that is stored without compression.
double CountBytes(const Imf::ChannelList& pChannels, const Imath::Box2i& pArea) {
  double bytes = 0.0;
  for (auto channel = pChannels.begin(); channel != pChannels.end(); ++channel) {
    const Imf::Channel& stored = channel.channel();
    bytes += (stored.type == Imf::HALF ? 2.0 : 4.0) *
             CountMultiples(pArea.min.x, pArea.max.x, stored.xSampling) *
             CountMultiples(pArea.min.y, pArea.max.y, stored.ySampling);
  }
  return bytes;
}

class cChunkCheck {
 public:
  explicit cChunkCheck(Imf::InputPart& pFrom)
      : fFrom(pFrom), fWindow(pFrom.header().dataWindow()), fExtent(fWindow.size() + Imath::V2i(1)) {}

  void CheckLines() {
    const int lines = CountChunkLines(fFrom.header());
    for (int y = 0; y < fExtent.y; y += lines) {
      fFrom.rawPixelData(fWindow.min.y + y, fData, fSize);
      Check(0, y, fExtent.x, std::min(lines, fExtent.y - y));
    }
  }

  void CheckTiles() {
    const Imf::TileDescription& tile = fFrom.header().tileDescription();
    const int width = static_cast<int>(tile.xSize);
    const int height = static_cast<int>(tile.ySize);
    for (int y = 0; y < fExtent.y; y += height) {
      for (int x = 0; x < fExtent.x; x += width) {
        int place[] = {x / width, y / height, 0, 0};
        fFrom.rawTileData(place[0], place[1], place[2], place[3], fData, fSize);
        Check(x, y, std::min(width, fExtent.x - x), std::min(height, fExtent.y - y));
      }
    }
  }

 private:
  /// A chunk from the pixel at pX, pY of the window on. What is compressed is known to need some byte.
  void Check(int pX, int pY, int pWidth, int pHeight) const {
    const bool isPlain = fFrom.header().compression() == Imf::NO_COMPRESSION;
    const Imath::V2i corner = fWindow.min + Imath::V2i(pX, pY);
    const Imath::Box2i area(corner, corner + Imath::V2i(pWidth - 1, pHeight - 1));
    if (fSize >= (isPlain ? CountBytes(fFrom.header().channels(), area) : 1.0)) return;
    throw cFailure(eFailure::kCannotRead, "cut short: it holds fewer pixels than its header promises");
  }

  Imf::InputPart& fFrom;
  Imath::Box2i fWindow;
  Imath::V2i fExtent;
  const char* fData = nullptr;
  int fSize = 0;  ///< Bytes in the file of the chunk that was read last.
};

}  // namespace

int CountChunkLines(const Imf::Header& pHeader) {
  if (!IsTiled(pHeader)) return CountLines(pHeader.compression());
  const unsigned lines = pHeader.tileDescription().ySize;
  const int height = pHeader.dataWindow().max.y - pHeader.dataWindow().min.y + 1;
  return lines < static_cast<unsigned>(height) ? static_cast<int>(lines) : height;
}

void CheckExrChunks(Imf::InputPart& pFrom) {
  cChunkCheck check(pFrom);
  if (IsTiled(pFrom.header())) return check.CheckTiles();
  check.CheckLines();
}

}  // namespace Photo
