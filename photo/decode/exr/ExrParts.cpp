#include "photo/decode/exr/ExrParts.h"

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfPartType.h>

#include <algorithm>
#include <charconv>

#include "photo/base/Failure.h"

namespace Photo {
namespace {

bool IsFlat(const Imf::Header& pHeader) {
  return !pHeader.hasType() || Imf::isImage(pHeader.type());
}

eExrColours FindColours(const Imf::Header& pHeader, const std::string& pLayer) {
  if (!IsFlat(pHeader)) return eExrColours::kNone;
  const sExrSource names{0, pLayer, eExrColours::kNone};
  const auto has = [&](const char* pName) {
    return pHeader.channels().findChannel(names.NameOf(pName)) != nullptr;
  };
  if (has("R") && has("G") && has("B")) return eExrColours::kRgb;
  if (!has("Y") || has("RY") != has("BY")) return eExrColours::kNone;
  return has("RY") ? eExrColours::kChroma : eExrColours::kGrey;
}

/// "diffuse" for "diffuse.R"; "" for "R".
std::string LayerOf(const std::string& pChannel) {
  const std::size_t point = pChannel.rfind('.');
  return point == std::string::npos ? "" : pChannel.substr(0, point);
}

sPicturePart Describe(const Imf::Header& pHeader) {
  sPicturePart part{pHeader.hasName() ? pHeader.name() : "", {}, {}};
  for (auto channel = pHeader.channels().begin(); channel != pHeader.channels().end(); ++channel) {
    part.fChannels.emplace_back(channel.name());
    part.fLayers.push_back(LayerOf(channel.name()));
  }
  std::sort(part.fLayers.begin(), part.fLayers.end());
  part.fLayers.erase(std::unique(part.fLayers.begin(), part.fLayers.end()), part.fLayers.end());
  std::erase_if(part.fLayers, [&](const std::string& pLayer) {
    return FindColours(pHeader, pLayer) == eExrColours::kNone;
  });
  return part;
}

/// The first few, and how many more there are.
std::string Join(const std::vector<std::string>& pNames) {
  constexpr std::size_t kMost = 8;
  std::string list;
  for (std::size_t i = 0; i < std::min(pNames.size(), kMost); ++i) list += (i == 0 ? "" : ", ") + pNames[i];
  if (pNames.size() <= kMost) return list;
  return list + " and " + std::to_string(pNames.size() - kMost) + " more";
}

std::string NamePart(const std::vector<sPicturePart>& pParts, std::size_t pIndex) {
  const std::string& name = pParts[pIndex].fName;
  return "part " + std::to_string(pIndex) + (name.empty() ? "" : " (" + name + ")");
}

/// By its name, or else by its number.
int FindPart(const std::vector<sPicturePart>& pParts, const std::string& pWanted) {
  const auto named = std::find_if(pParts.begin(), pParts.end(),
                                  [&](const sPicturePart& pPart) { return pPart.fName == pWanted; });
  if (named != pParts.end()) return static_cast<int>(named - pParts.begin());
  std::size_t number = 0;
  const char* const end = pWanted.data() + pWanted.size();
  const auto read = std::from_chars(pWanted.data(), end, number);
  if (read.ec == std::errc() && read.ptr == end && number < pParts.size()) return static_cast<int>(number);
  std::vector<std::string> names;
  for (std::size_t i = 0; i < pParts.size(); ++i) names.push_back(NamePart(pParts, i));
  throw cFailure(eFailure::kCannotRead, "has no part " + pWanted + "; it has " + Join(names));
}

/// What the parts from pFirst to pLast hold in place of the wanted colours.
[[noreturn]] void RefuseSource(const Imf::MultiPartInputFile& pFrom, const std::vector<sPicturePart>& pParts,
                               int pFirst, int pLast, const std::string& pLayer) {
  std::vector<std::string> layers;
  std::string channels;
  bool hasChroma = false;
  for (int part = pFirst; part <= pLast; ++part) {
    const sPicturePart& held = pParts[static_cast<std::size_t>(part)];
    if (!IsFlat(pFrom.header(part))) {
      throw cFailure(eFailure::kCannotRead, "its samples are deep (several a pixel); flatten it first");
    }
    for (const std::string& layer : held.fLayers)
      layers.push_back(layer.empty() ? "one without a name" : layer);
    for (const std::string& name : held.fChannels) channels += (channels.empty() ? "" : ", ") + name;
    hasChroma = hasChroma || pFrom.header(part).channels().findChannel("RY") != nullptr ||
                pFrom.header(part).channels().findChannel("BY") != nullptr;
  }
  const std::string list = layers.empty() ? "" : "; layers with colours: " + Join(layers);
  if (!pLayer.empty()) {
    throw cFailure(eFailure::kCannotRead, "has no layer " + pLayer + " with colours (R, G, B or Y)" +
                                              (layers.empty() ? "; no layer has them" : list));
  }
  if (hasChroma) {
    throw cFailure(eFailure::kCannotRead,
                   "its colours are stored as luminance and chroma (Y, RY, BY), and one of them is missing");
  }
  throw cFailure(eFailure::kCannotRead, "it has neither the channels R, G, B nor a channel Y (it has: " +
                                            (channels.empty() ? "none" : channels) + ")" +
                                            (layers.empty() ? "" : list + "; {layer} chooses one"));
}

}  // namespace

std::vector<sPicturePart> ListExrParts(const Imf::MultiPartInputFile& pFrom) {
  std::vector<sPicturePart> parts;
  parts.reserve(static_cast<std::size_t>(pFrom.parts()));
  for (int part = 0; part < pFrom.parts(); ++part) parts.push_back(Describe(pFrom.header(part)));
  return parts;
}

sExrSource ChooseExrSource(const Imf::MultiPartInputFile& pFrom, const sPictureChoice& pChoice) {
  const std::vector<sPicturePart> parts = ListExrParts(pFrom);
  int first = 0;
  int last = pFrom.parts() - 1;
  if (!pChoice.fPart.empty()) first = last = FindPart(parts, pChoice.fPart);
  for (int part = first; part <= last; ++part) {
    const eExrColours colours = FindColours(pFrom.header(part), pChoice.fLayer);
    if (colours != eExrColours::kNone) return {part, pChoice.fLayer, colours};
  }
  RefuseSource(pFrom, parts, first, last, pChoice.fLayer);
}

std::string DescribeLeftOut(const std::vector<sPicturePart>& pParts, const sExrSource& pUsed) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < pParts.size(); ++i) {
    const bool isUsed = static_cast<int>(i) == pUsed.fPart;
    if (!isUsed) names.push_back(NamePart(pParts, i));
    for (const std::string& layer : pParts[i].fLayers) {
      if (!isUsed || layer == pUsed.fLayer) continue;
      names.push_back(layer.empty() ? "the layer without a name" : "layer " + layer);
    }
  }
  return names.empty() ? "" : "left out: " + Join(names) + "; {part} and {layer} choose";
}

}  // namespace Photo
