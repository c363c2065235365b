#include "cli/ExrReader.h"

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfChromaticitiesAttribute.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfInputFile.h>
#include <OpenEXR/ImfStandardAttributes.h>

#include <cstdint>
#include <exception>
#include <vector>

#include "cli/ExrChunks.h"
#include "cli/Failure.h"
#include "cli/LinearLight.h"

namespace Cli {
namespace {

std::string ListChannels(const Imf::ChannelList& pChannels) {
  std::string list;
  for (auto channel = pChannels.begin(); channel != pChannels.end(); ++channel) {
    list += (list.empty() ? "" : ", ") + std::string(channel.name());
  }
  return list.empty() ? "none" : list;
}

/// The channels that make the picture: R, G, B, or Y alone.
std::vector<std::string> ChooseChannels(const std::string& pFile, const Imf::ChannelList& pChannels) {
  const auto has = [&](const char* pName) { return pChannels.findChannel(pName) != nullptr; };
  std::vector<std::string> chosen;
  if (has("R") && has("G") && has("B")) {
    chosen = {"R", "G", "B"};
  } else if (has("RY") || has("BY")) {
    throw cFailure(eExitCode_CannotRead, pFile,
                   "its colours are stored as luminance and chroma (Y, RY, BY); convert it to R, G, B");
  } else if (has("Y")) {
    chosen = {"Y"};
  } else {
    throw cFailure(
        eExitCode_CannotRead, pFile,
        "it has neither the channels R, G, B nor a channel Y (it has: " + ListChannels(pChannels) + ")");
  }
  for (const std::string& name : chosen) {
    const Imf::Channel& channel = pChannels[name];
    if (channel.xSampling != 1 || channel.ySampling != 1) {
      throw cFailure(eExitCode_CannotRead, pFile, "its channel " + name + " is subsampled; convert it first");
    }
  }
  return chosen;
}

std::optional<sPrimaries> StatedPrimaries(const Imf::Header& pHeader) {
  if (!Imf::hasChromaticities(pHeader)) return std::nullopt;
  const Imf::Chromaticities& stated = Imf::chromaticities(pHeader);
  const auto point = [](const Imath::V2f& pV) { return TmEngine::cVector2(pV.x, pV.y); };
  return sPrimaries{point(stated.red), point(stated.green), point(stated.blue), point(stated.white)};
}

/// Lets the library write the channels where the engine wants them.
Imf::FrameBuffer PlaceChannels(const sPicture& pPicture, const Imath::Box2i& pWindow,
                               const std::vector<std::string>& pChannels) {
  Imf::FrameBuffer frame;
  float* sample = GetRow(pPicture, 0);
  for (const std::string& name : pChannels) {
    frame.insert(name, Imf::Slice::Make(Imf::FLOAT, sample++, pWindow.min, pPicture.fBitmap->GetWidth(),
                                        pPicture.fBitmap->GetHeight(), 3 * sizeof(float),
                                        static_cast<std::size_t>(pPicture.fBitmap->GetStride())));
  }
  return frame;
}

sPicture ReadChecked(const std::string& pFile) {
  Imf::InputFile file(pFile.c_str());
  const Imath::Box2i window = file.header().dataWindow();
  const std::vector<std::string> channels = ChooseChannels(pFile, file.header().channels());
  sPicture picture = MakePicture(pFile, std::int64_t{window.max.x} - window.min.x + 1,
                                 std::int64_t{window.max.y} - window.min.y + 1);
  CheckExrChunks(pFile, file);
  file.setFrameBuffer(PlaceChannels(picture, window, channels));
  file.readPixels(window.min.y, window.max.y);
  if (channels.size() == 1) SpreadGrey(picture);
  LinearToXYZ(picture, StatedPrimaries(file.header()));
  return picture;
}

}  // namespace

sPicture ReadExr(const std::string& pFile) {
  try {
    return ReadChecked(pFile);
  } catch (const cFailure&) {
    throw;
  } catch (const std::exception& exception) {
    throw cFailure(
        eExitCode_CannotRead, pFile,
        std::string("damaged, cut short, or of an unknown kind of EXR (") + exception.what() + ")");
  }
}

}  // namespace Cli
