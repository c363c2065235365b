#include "cli/ExrReader.h"

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfChromaticitiesAttribute.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfMultiPartInputFile.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfStandardAttributes.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <utility>
#include <vector>

#include "cli/Alpha.h"
#include "cli/ExrChunks.h"
#include "cli/ExrMetadata.h"
#include "cli/Failure.h"
#include "cli/LightRows.h"

namespace Cli {
namespace {

bool HasColours(const Imf::ChannelList& pChannels) {
  const auto has = [&](const char* pName) { return pChannels.findChannel(pName) != nullptr; };
  return (has("R") && has("G") && has("B")) || (has("Y") && !has("RY") && !has("BY"));
}

bool IsFlat(const Imf::Header& pHeader) {
  return !pHeader.hasType() || Imf::isImage(pHeader.type());
}

/// What the parts hold instead of a picture, and what to do about it.
std::string TellWhatIsMissing(const Imf::MultiPartInputFile& pFile) {
  std::string list;
  for (int part = 0; part < pFile.parts(); ++part) {
    if (!IsFlat(pFile.header(part))) return "its samples are deep (several a pixel); flatten it first";
    const Imf::ChannelList& channels = pFile.header(part).channels();
    if (channels.findChannel("RY") != nullptr || channels.findChannel("BY") != nullptr) {
      return "its colours are stored as luminance and chroma (Y, RY, BY); convert it to R, G, B";
    }
    for (auto channel = channels.begin(); channel != channels.end(); ++channel) {
      list += (list.empty() ? "" : ", ") + std::string(channel.name());
    }
  }
  return "it has neither the channels R, G, B nor a channel Y (it has: " + (list.empty() ? "none" : list) +
         ")";
}

/// The first part that is a picture with colours.
int ChoosePart(const std::string& pFile, const Imf::MultiPartInputFile& pFrom) {
  for (int part = 0; part < pFrom.parts(); ++part) {
    if (IsFlat(pFrom.header(part)) && HasColours(pFrom.header(part).channels())) return part;
  }
  throw cFailure(eExitCode_CannotRead, pFile, TellWhatIsMissing(pFrom));
}

bool IsWhole(const Imf::Channel& pChannel) {
  return pChannel.xSampling == 1 && pChannel.ySampling == 1;
}

/// The channels that make the picture: R, G, B, or Y alone.
std::vector<std::string> ChooseChannels(const std::string& pFile, const Imf::ChannelList& pChannels) {
  std::vector<std::string> chosen = {"R", "G", "B"};
  if (std::any_of(chosen.begin(), chosen.end(),
                  [&](const auto& pName) { return pChannels.findChannel(pName) == nullptr; })) {
    chosen = {"Y"};
  }
  for (const std::string& name : chosen) {
    if (IsWhole(pChannels[name])) continue;
    throw cFailure(eExitCode_CannotRead, pFile, "its channel " + name + " is subsampled; convert it first");
  }
  return chosen;
}

std::optional<sPrimaries> StatedPrimaries(const Imf::Header& pHeader) {
  if (!Imf::hasChromaticities(pHeader)) return std::nullopt;
  const Imf::Chromaticities& stated = Imf::chromaticities(pHeader);
  const auto point = [](const Imath::V2f& pV) { return TmEngine::cVector2(pV.x, pV.y); };
  return sPrimaries{point(stated.red), point(stated.green), point(stated.blue), point(stated.white)};
}

/// Reads a part, a few rows at a time.
class cPartReader {
 public:
  cPartReader(const std::string& pFile, Imf::InputPart& pPart)
      : fPart(pPart),
        fWindow(pPart.header().dataWindow()),
        fChannels(ChooseChannels(pFile, pPart.header().channels())),
        fPicture(MakePicture(pFile, std::int64_t{fWindow.max.x} - fWindow.min.x + 1,
                             std::int64_t{fWindow.max.y} - fWindow.min.y + 1)) {
    CheckExrChunks(pFile, pPart);
    const Imf::Channel* const alpha = pPart.header().channels().findChannel("A");
    if (alpha != nullptr && IsWhole(*alpha)) AddAlpha(pFile, fPicture);
  }

  sPicture Read() {
    TellOfPart();
    const int height = fPicture.fBitmap->GetHeight();
    const int lines = std::max(CountChunkLines(fPart.header()), 16);
    cLightRows light(LightOf(StatedPrimaries(fPart.header()), fPicture.fWarnings));
    for (int y = 0; y < height; y += std::min(lines, height - y)) {
      const int count = std::min(lines, height - y);
      ReadLines(y, count);
      for (int i = 0; i < count; ++i) {
        FinishRow(y + i, i);
        light.Take(GetRow(fPicture, y + i), fPicture.fBitmap->GetWidth());
      }
    }
    light.Finish(fPicture);
    return std::move(fPicture);
  }

 private:
  void TellOfPart() {
    const Imf::Header& header = fPart.header();
    fPicture.fFormat = "OpenEXR";
    fPicture.fFileDepth = header.channels()[fChannels.front()].type == Imf::HALF ? 16 : 32;
    fPicture.fIsPanorama = Imf::hasEnvmap(header) && Imf::envmap(header) == Imf::ENVMAP_LATLONG;
    fPicture.fMetadata = ReadExrMetadata(header);
  }

  /// Lets the library write the colours where the engine wants them, and alpha where it can be rounded.
  void ReadLines(int pY, int pCount) {
    const int width = fPicture.fBitmap->GetWidth();
    const Imath::V2i origin(fWindow.min.x, fWindow.min.y + pY);
    Imf::FrameBuffer frame;
    float* sample = GetRow(fPicture, pY);
    for (const std::string& name : fChannels) {
      frame.insert(name, Imf::Slice::Make(Imf::FLOAT, sample++, origin, width, pCount, 3 * sizeof(float),
                                          static_cast<std::size_t>(fPicture.fBitmap->GetStride())));
    }
    if (!fPicture.fAlpha.empty()) {
      fAlpha.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(pCount));
      frame.insert("A", Imf::Slice::Make(Imf::FLOAT, fAlpha.data(), origin, width, pCount));
    }
    fPart.setFrameBuffer(frame);
    fPart.readPixels(origin.y, origin.y + pCount - 1);
  }

  /// Row pY, whose alpha is row pAlphaRow of those at hand.
  void FinishRow(int pY, int pAlphaRow) {
    const int width = fPicture.fBitmap->GetWidth();
    float* pixel = GetRow(fPicture, pY);
    if (fChannels.size() == 1) SpreadGrey(pixel, width);
    if (fPicture.fAlpha.empty()) return;
    std::uint16_t* const alphas = GetAlphaRow(fPicture, pY);
    for (int x = 0; x < width; ++x, pixel += 3) {
      const float alpha = fAlpha[static_cast<std::size_t>(pAlphaRow) * static_cast<std::size_t>(width) +
                                 static_cast<std::size_t>(x)];
      alphas[x] = AlphaOfFloat(alpha);
      if (!(alpha > 0.0f && alpha < 1.0f)) continue;
      for (int i = 0; i < 3; ++i) pixel[i] /= alpha;
    }
  }

  Imf::InputPart& fPart;
  Imath::Box2i fWindow;
  std::vector<std::string> fChannels;
  sPicture fPicture;
  std::vector<float> fAlpha;  ///< Of the rows that were read last.
};

}  // namespace

sPicture ReadExr(const std::string& pFile) {
  try {
    Imf::MultiPartInputFile file(pFile.c_str());
    Imf::InputPart part(file, ChoosePart(pFile, file));
    return cPartReader(pFile, part).Read();
  } catch (const cFailure&) {
    throw;
  } catch (const std::exception& exception) {
    throw cFailure(
        eExitCode_CannotRead, pFile,
        std::string("damaged, cut short, or of an unknown kind of EXR (") + exception.what() + ")");
  }
}

}  // namespace Cli
