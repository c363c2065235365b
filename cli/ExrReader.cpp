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
#include <memory>
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

/// Does what the library may refuse.
template <class tDo>
auto NameRefusals(const std::string& pFile, const tDo& pDo) {
  return NameFailures(eExitCode_CannotRead, pFile, "read", pDo, [](const std::string& pText) {
    return "damaged, cut short, or of an unknown kind of EXR (" + pText + ")";
  });
}

/// A part that has been opened, and the file that it belongs to.
struct sOpenPart {
  Imf::MultiPartInputFile fFile;
  Imf::InputPart fPart;

  explicit sOpenPart(const std::string& pFile)
      : fFile(pFile.c_str()), fPart(fFile, ChoosePart(pFile, fFile)) {}
  const Imf::Header& GetHeader() const { return fPart.header(); }
};

bool HasAlphaChannel(const Imf::ChannelList& pChannels) {
  const Imf::Channel* const alpha = pChannels.findChannel("A");
  return alpha != nullptr && IsWhole(*alpha);
}

/// The rows of a part, which are read a few at a time.
class cExrRows : public cPictureRows {
 public:
  cExrRows(const std::string& pFile, std::unique_ptr<sOpenPart> pPart, std::vector<std::string> pChannels,
           const sLight& pLight)
      : cPictureRows(CountColumns(*pPart), CountRows(*pPart), HasAlphaChannel(pPart->GetHeader().channels())),
        fFile(pFile),
        fPart(std::move(pPart)),
        fChannels(std::move(pChannels)),
        fLight(pLight),
        fLines(std::max(CountChunkLines(fPart->GetHeader()), 16)) {}

  static int CountColumns(const sOpenPart& pPart) {
    const Imath::Box2i& window = pPart.GetHeader().dataWindow();
    return window.max.x - window.min.x + 1;
  }
  static int CountRows(const sOpenPart& pPart) {
    const Imath::Box2i& window = pPart.GetHeader().dataWindow();
    return window.max.y - window.min.y + 1;
  }

  bool Read(int pY, float* pTo, std::uint16_t* pToAlpha) override {
    const int line = pY % fLines;
    if (line == 0) NameRefusals(fFile, [&] { ReadLines(pY, std::min(fLines, GetHeight() - pY)); });
    std::copy_n(&fColours[3 * FirstOf(line)], 3 * GetWidth(), pTo);
    if (fChannels.size() == 1) SpreadGrey(pTo, GetWidth());
    if (pToAlpha != nullptr) TakeAlpha(&fAlpha[FirstOf(line)], pTo, pToAlpha);
    return fLight.Take(pTo, GetWidth());
  }

  void Finish(sPicture& pPicture) override { fLight.Finish(pPicture); }

 private:
  std::size_t FirstOf(int pLine) const {
    return static_cast<std::size_t>(pLine) * static_cast<std::size_t>(GetWidth());
  }

  void ReadLines(int pY, int pCount) {
    const Imath::V2i& corner = fPart->GetHeader().dataWindow().min;
    const Imath::V2i origin(corner.x, corner.y + pY);
    const std::size_t rowBytes = 3 * sizeof(float) * FirstOf(1);
    fColours.resize(3 * FirstOf(pCount));
    Imf::FrameBuffer frame;
    float* sample = fColours.data();
    for (const std::string& name : fChannels) {
      frame.insert(name, Imf::Slice::Make(Imf::FLOAT, sample++, origin, GetWidth(), pCount, 3 * sizeof(float),
                                          rowBytes));
    }
    if (HasAlpha()) {
      fAlpha.resize(FirstOf(pCount));
      frame.insert("A", Imf::Slice::Make(Imf::FLOAT, fAlpha.data(), origin, GetWidth(), pCount));
    }
    fPart->fPart.setFrameBuffer(frame);
    fPart->fPart.readPixels(origin.y, origin.y + pCount - 1);
  }

  /// Colours were multiplied by alpha.
  void TakeAlpha(const float* pAlpha, float* pPixel, std::uint16_t* pTo) const {
    for (int x = 0; x < GetWidth(); ++x, pPixel += 3) {
      pTo[x] = AlphaOfFloat(pAlpha[x]);
      if (!(pAlpha[x] > 0.0f && pAlpha[x] < 1.0f)) continue;
      for (int i = 0; i < 3; ++i) pPixel[i] /= pAlpha[x];
    }
  }

  std::string fFile;
  std::unique_ptr<sOpenPart> fPart;
  std::vector<std::string> fChannels;
  cLightRows fLight;
  int fLines;                   ///< That are read together.
  std::vector<float> fColours;  ///< Of the lines that were read last.
  std::vector<float> fAlpha;
};

sPicture OpenChecked(const std::string& pFile) {
  auto part = std::make_unique<sOpenPart>(pFile);
  const Imf::Header& header = part->GetHeader();
  std::vector<std::string> channels = ChooseChannels(pFile, header.channels());
  const Imath::Box2i& window = header.dataWindow();
  CheckSize(pFile, std::int64_t{window.max.x} - window.min.x + 1,
            std::int64_t{window.max.y} - window.min.y + 1);
  CheckExrChunks(pFile, part->fPart);
  sPicture picture;
  picture.fFormat = "OpenEXR";
  picture.fFileDepth = header.channels()[channels.front()].type == Imf::HALF ? 16 : 32;
  picture.fIsPanorama = Imf::hasEnvmap(header) && Imf::envmap(header) == Imf::ENVMAP_LATLONG;
  picture.fMetadata = ReadExrMetadata(header);
  const sLight light = LightOf(StatedPrimaries(header), picture.fWarnings);
  picture.fRows = std::make_unique<cExrRows>(pFile, std::move(part), std::move(channels), light);
  return picture;
}

}  // namespace

sPicture OpenExr(const std::string& pFile) {
  return NameRefusals(pFile, [&] { return OpenChecked(pFile); });
}

}  // namespace Cli
