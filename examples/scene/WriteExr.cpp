#include "examples/scene/WriteExr.h"

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfOutputFile.h>

#include "examples/scene/WriteFile.h"

namespace Scene {

void WriteExr(const sHdrPicture& pPicture, const std::string& pPath) {
  Imf::Header header(pPicture.fWidth, pPicture.fHeight);
  header.compression() = Imf::ZIP_COMPRESSION;
  // The library takes a writable address, but only reads.
  auto* pixels = const_cast<char*>(reinterpret_cast<const char*>(pPicture.fPixels.data()));
  const std::size_t step = 3 * sizeof(float);
  Imf::FrameBuffer frame;
  std::size_t offset = 0;
  for (const char* channel : {"R", "G", "B"}) {
    header.channels().insert(channel, Imf::Channel(Imf::FLOAT));
    frame.insert(channel, Imf::Slice(Imf::FLOAT, pixels + offset, step,
                                     step * static_cast<std::size_t>(pPicture.fWidth)));
    offset += sizeof(float);
  }
  WriteWhole(pPath, [&](const std::string& pName) {
    Imf::OutputFile file(pName.c_str(), header);
    file.setFrameBuffer(frame);
    file.writePixels(pPicture.fHeight);
  });
}

}  // namespace Scene
