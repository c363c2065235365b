#include "photo/decode/exr/ExrLines.h"

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfRgbaFile.h>

#include <cstdint>
#include <vector>

#include "photo/base/Failure.h"
#include "photo/picture/Picture.h"

namespace Photo {
namespace {

bool IsWhole(const Imf::Channel& pChannel) {
  return pChannel.xSampling == 1 && pChannel.ySampling == 1;
}

std::vector<std::string> NameChannels(const sExrSource& pSource) {
  if (pSource.fColours != eExrColours::kRgb) return {pSource.NameOf("Y")};
  return {pSource.NameOf("R"), pSource.NameOf("G"), pSource.NameOf("B")};
}

int CountColumns(const Imf::Header& pHeader) {
  return pHeader.dataWindow().max.x - pHeader.dataWindow().min.x + 1;
}

/// Red, green and blue, or grey, each in a channel of its own.
class cPlainLines : public cExrLines {
 public:
  cPlainLines(Imf::InputPart& pPart, const sExrSource& pSource)
      : fPart(pPart), fSource(pSource), fWidth(CountColumns(pPart.header())), fNames(NameChannels(pSource)) {}

  void Read(int pY, int pCount, float* pTo, float* pToAlpha) override {
    const Imath::V2i origin(fPart.header().dataWindow().min.x, pY);
    const std::size_t rowBytes = 3 * sizeof(float) * static_cast<std::size_t>(fWidth);
    Imf::FrameBuffer frame;
    float* sample = pTo;
    for (const std::string& name : fNames) {
      frame.insert(
          name, Imf::Slice::Make(Imf::FLOAT, sample++, origin, fWidth, pCount, 3 * sizeof(float), rowBytes));
    }
    if (pToAlpha != nullptr) {
      frame.insert(fSource.NameOf("A"), Imf::Slice::Make(Imf::FLOAT, pToAlpha, origin, fWidth, pCount));
    }
    fPart.setFrameBuffer(frame);
    fPart.readPixels(pY, pY + pCount - 1);
    if (fNames.size() > 1) return;
    for (int line = 0; line < pCount; ++line) SpreadGrey(pTo + std::ptrdiff_t{3} * fWidth * line, fWidth);
  }

 private:
  Imf::InputPart& fPart;
  sExrSource fSource;
  int fWidth;
  std::vector<std::string> fNames;
};

/// Luminance, and chroma at half the resolution, which the library makes RGB in half floats.
class cChromaLines : public cExrLines {
 public:
  cChromaLines(const std::string& pFile, const Imf::Header& pHeader, const sExrSource& pSource)
      : fFile(pFile.c_str(), pSource.fLayer), fX(pHeader.dataWindow().min.x), fWidth(CountColumns(pHeader)) {}

  void Read(int pY, int pCount, float* pTo, float* pToAlpha) override {
    fLines.resize(static_cast<std::size_t>(fWidth) * static_cast<std::size_t>(pCount));
    // where the pixel of the coordinates 0, 0 would be, which is outside the lines: no pointer may go there
    const std::int64_t before = fX + std::int64_t{fWidth} * pY;
    const auto base = reinterpret_cast<std::uintptr_t>(fLines.data()) -
                      static_cast<std::uintptr_t>(before) * sizeof(Imf::Rgba);
    auto* const origin = reinterpret_cast<Imf::Rgba*>(base);  // NOLINT(performance-no-int-to-ptr)
    fFile.setFrameBuffer(origin, 1, static_cast<std::size_t>(fWidth));
    fFile.readPixels(pY, pY + pCount - 1);
    for (const Imf::Rgba& pixel : fLines) {
      *pTo++ = pixel.r;
      *pTo++ = pixel.g;
      *pTo++ = pixel.b;
      if (pToAlpha != nullptr) *pToAlpha++ = pixel.a;
    }
  }

 private:
  Imf::RgbaInputFile fFile;
  int fX;
  int fWidth;
  std::vector<Imf::Rgba> fLines;
};

}  // namespace

bool HasAlphaChannel(const Imf::Header& pHeader, const sExrSource& pSource) {
  const Imf::Channel* const alpha = pHeader.channels().findChannel(pSource.NameOf("A"));
  return alpha != nullptr && IsWhole(*alpha);
}

void CheckExrSource(const Imf::Header& pHeader, const sExrSource& pSource) {
  for (const std::string& name : NameChannels(pSource)) {
    if (IsWhole(pHeader.channels()[name])) continue;
    throw cFailure(eFailure::kCannotRead, "its channel " + name + " is subsampled; convert it first");
  }
  if (pSource.fColours != eExrColours::kChroma) return;
  const auto isHalf = [&](const char* pName) {
    const Imf::Channel& chroma = pHeader.channels()[pSource.NameOf(pName)];
    return chroma.xSampling == 2 && chroma.ySampling == 2;
  };
  if (!isHalf("RY") || !isHalf("BY")) {
    throw cFailure(eFailure::kCannotRead,
                   "its colours are stored as luminance and chroma (Y, RY, BY), and chroma not at half the "
                   "resolution; convert it to R, G, B");
  }
  if (pSource.fPart == 0) return;
  throw cFailure(eFailure::kCannotRead,
                 "luminance and chroma (Y, RY, BY) are read from the first part only; convert it to R, G, B");
}

std::unique_ptr<cExrLines> OpenExrLines(const std::string& pFile, Imf::InputPart& pPart,
                                        const sExrSource& pSource) {
  if (pSource.fColours != eExrColours::kChroma) return std::make_unique<cPlainLines>(pPart, pSource);
  return std::make_unique<cChromaLines>(pFile, pPart.header(), pSource);
}

}  // namespace Photo
