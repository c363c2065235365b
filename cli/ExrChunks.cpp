#include "cli/ExrChunks.h"

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfTileDescription.h>

#include <algorithm>

#include "cli/Failure.h"

namespace Cli {
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

/// Of a pixel as it is stored without compression. Subsampled channels, which nobody reads here, do not
/// count.
double CountBytes(const Imf::ChannelList& pChannels) {
  double bytes = 0.0;
  for (auto channel = pChannels.begin(); channel != pChannels.end(); ++channel) {
    const Imf::Channel& stored = channel.channel();
    if (stored.xSampling == 1 && stored.ySampling == 1) bytes += stored.type == Imf::HALF ? 2.0 : 4.0;
  }
  return bytes;
}

class cChunkCheck {
 public:
  cChunkCheck(const std::string& pFile, Imf::InputPart& pFrom)
      : fName(pFile),
        fFrom(pFrom),
        fWindow(pFrom.header().dataWindow()),
        fExtent(fWindow.size() + Imath::V2i(1)),
        fPixelBytes(CountBytes(pFrom.header().channels())) {}

  void CheckLines() {
    const int lines = CountChunkLines(fFrom.header());
    for (int y = 0; y < fExtent.y; y += lines) {
      fFrom.rawPixelData(fWindow.min.y + y, fData, fSize);
      Check(fExtent.x, std::min(lines, fExtent.y - y));
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
        Check(std::min(width, fExtent.x - x), std::min(height, fExtent.y - y));
      }
    }
  }

 private:
  /// What is compressed is known to need some byte.
  void Check(int pWidth, int pHeight) const {
    const bool isPlain = fFrom.header().compression() == Imf::NO_COMPRESSION;
    if (fSize >= (isPlain ? fPixelBytes * pWidth * pHeight : 1.0)) return;
    throw cFailure(eExitCode_CannotRead, fName, "cut short: it holds fewer pixels than its header promises");
  }

  const std::string& fName;
  Imf::InputPart& fFrom;
  Imath::Box2i fWindow;
  Imath::V2i fExtent;
  double fPixelBytes;
  const char* fData = nullptr;
  int fSize = 0;  ///< Of the chunk that was read last, in the file.
};

}  // namespace

int CountChunkLines(const Imf::Header& pHeader) {
  if (!IsTiled(pHeader)) return CountLines(pHeader.compression());
  const unsigned lines = pHeader.tileDescription().ySize;
  const int height = pHeader.dataWindow().max.y - pHeader.dataWindow().min.y + 1;
  return lines < static_cast<unsigned>(height) ? static_cast<int>(lines) : height;
}

void CheckExrChunks(const std::string& pFile, Imf::InputPart& pFrom) {
  cChunkCheck check(pFile, pFrom);
  if (IsTiled(pFrom.header())) return check.CheckTiles();
  check.CheckLines();
}

}  // namespace Cli
