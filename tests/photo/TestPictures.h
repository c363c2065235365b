#pragma once

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfChromaticitiesAttribute.h>
#include <OpenEXR/ImfEnvmap.h>
#include <OpenEXR/ImfFloatAttribute.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfMultiPartOutputFile.h>
#include <OpenEXR/ImfOutputFile.h>
#include <OpenEXR/ImfOutputPart.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfRgbaFile.h>
#include <OpenEXR/ImfStandardAttributes.h>
#include <OpenEXR/ImfStringAttribute.h>
#include <OpenEXR/ImfTiledOutputFile.h>
#include <OpenEXR/ImfTiledOutputPart.h>
#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <string>
#include <utility>
#include <vector>
#include <vips/vips8>

#include "photo/io/BigEndian.h"

/// A picture of floats, linear light, that the tests store in every format.
struct sTestPicture {
  int fWidth = 0;
  int fHeight = 0;
  std::vector<float> fSamples;  ///< Red, green, blue.

  float* GetPixel(int pX, int pY) { return fSamples.data() + 3 * (pY * fWidth + pX); }
};

/// pDecades of light from left to right, colours from top to bottom, and a bright corner: no two ways of
/// turning it look alike.
inline sTestPicture MakeScene(int pWidth = 48, int pHeight = 32, float pDecades = 4.0f) {
  sTestPicture scene{pWidth, pHeight, {}};
  scene.fSamples.resize(std::size_t{3} * static_cast<unsigned>(pWidth) * static_cast<unsigned>(pHeight));
  for (int y = 0; y < pHeight; ++y) {
    for (int x = 0; x < pWidth; ++x) {
      const float u = static_cast<float>(x) / static_cast<float>(pWidth);
      const float v = static_cast<float>(y) / static_cast<float>(pHeight);
      float light = std::pow(10.0f, pDecades * (u - 1.0f)) * ((x / 3 + y / 3) % 2 == 0 ? 1.0f : 0.6f);
      if (u < 0.3f && v < 0.3f) light = 0.9f;
      const float colour[] = {0.3f + 0.7f * v, 0.7f, 1.0f - 0.8f * v};
      for (int i = 0; i < 3; ++i) scene.GetPixel(x, y)[i] = light * colour[i];
    }
  }
  return scene;
}

/// pSamples with every column moved pBy columns to the right, around the edge.
template <class tSample>
std::vector<tSample> RollRows(std::vector<tSample> pSamples, int pWidth, int pBy) {
  const std::ptrdiff_t row = 3 * std::ptrdiff_t{pWidth};
  for (auto at = pSamples.begin(); at != pSamples.end(); at += row) {
    std::rotate(at, at + row - 3 * std::ptrdiff_t{pBy}, at + row);
  }
  return pSamples;
}
inline sTestPicture Roll(const sTestPicture& pPicture, int pBy) {
  return {pPicture.fWidth, pPicture.fHeight, RollRows(pPicture.fSamples, pPicture.fWidth, pBy)};
}

/// A panorama: left and right edges meet, with sharp borders of light all over.
inline sTestPicture MakePanorama(int pWidth) {
  sTestPicture scene = MakeScene(pWidth, pWidth / 2);
  unsigned seed = 1;
  for (int y = 0; y < scene.fHeight; ++y) {
    for (int x = 0; x < pWidth; ++x) {
      const double angle = 2.0 * 3.14159265 * x / pWidth;
      const double wave = 1.5 * std::sin(angle) + 0.8 * std::sin(3.0 * angle + 0.05 * y);
      seed = seed * 1664525 + 1013904223;
      const double light = std::pow(10.0, wave + 0.1 * (seed >> 24) / 256.0);
      const bool isDark = std::sin(8.0 * angle + 0.2 * y) > 0.0;
      for (int i = 0; i < 3; ++i) {
        scene.GetPixel(x, y)[i] = static_cast<float>(light * (isDark ? 0.3 : 1.0) * (1.0 - 0.2 * i));
      }
    }
  }
  return scene;
}

inline void WritePfm(const std::string& pFile, const sTestPicture& pPicture) {
  std::ofstream stream(pFile, std::ios::binary);
  stream << "PF\n" << pPicture.fWidth << ' ' << pPicture.fHeight << "\n-1.0\n";
  const std::size_t row = std::size_t{3} * static_cast<unsigned>(pPicture.fWidth);
  for (auto y = static_cast<std::size_t>(pPicture.fHeight); y-- > 0;) {
    stream.write(reinterpret_cast<const char*>(&pPicture.fSamples[y * row]),
                 static_cast<std::streamsize>(row * sizeof(float)));
  }
}

/// pLines: header lines with their line ends. pResolution: empty for the picture's own.
inline void WriteRadiance(const std::string& pFile, const sTestPicture& pPicture,
                          const std::string& pLines = "", const std::string& pResolution = "",
                          const std::string& pName = "#?RADIANCE") {
  std::ofstream stream(pFile, std::ios::binary);
  const std::string own = "-Y " + std::to_string(pPicture.fHeight) + " +X " + std::to_string(pPicture.fWidth);
  stream << pName << "\n" << (pLines.empty() ? "FORMAT=32-bit_rle_rgbe\n" : pLines) << "\n";
  stream << (pResolution.empty() ? own : pResolution) << "\n";
  for (std::size_t i = 0; i < pPicture.fSamples.size(); i += 3) {
    int exponent = 0;
    std::frexp(*std::max_element(&pPicture.fSamples[i], &pPicture.fSamples[i] + 3), &exponent);
    for (std::size_t k = 0; k < 3; ++k) {
      stream.put(static_cast<char>(static_cast<int>(std::ldexp(pPicture.fSamples[i + k], 8 - exponent))));
    }
    stream.put(static_cast<char>(exponent + 128));
  }
}

struct sExrKind {
  std::vector<std::string> fChannels{"R", "G", "B"};  ///< Filled with red, green, blue in this order.
  bool fTiled = false;
  std::vector<float> fChromaticities{};  ///< Eight numbers, or none.
  Imf::Compression fCompression = Imf::ZIP_COMPRESSION;
  std::vector<std::pair<const char*, std::string>> fTexts{};  ///< Attributes of these names.
  std::vector<std::pair<const char*, float>> fNumbers{};
  std::vector<float> fAlpha{};  ///< A value per pixel, or none; the colours are stored as they are.
  Imath::V2i fAt{0, 0};         ///< Where the data window begins.
  Imath::Box2i fDisplay{};      ///< Empty for the data window.
  float fAspect = 1.0f;
  bool fIsPanorama = false;
};

inline void WriteExr(const std::string& pFile, const sTestPicture& pPicture, const sExrKind& pKind = {}) {
  const Imath::Box2i data(pKind.fAt, pKind.fAt + Imath::V2i(pPicture.fWidth - 1, pPicture.fHeight - 1));
  Imf::Header header(pKind.fDisplay.isEmpty() ? data : pKind.fDisplay, data, pKind.fAspect);
  header.compression() = pKind.fCompression;
  if (pKind.fIsPanorama) Imf::addEnvmap(header, Imf::ENVMAP_LATLONG);
  Imf::FrameBuffer frame;
  const auto add = [&](const std::string& pName, const float* pFirst, std::size_t pStep) {
    header.channels().insert(pName, Imf::Channel(Imf::FLOAT));
    frame.insert(pName, Imf::Slice::Make(Imf::FLOAT, pFirst, data, pStep,
                                         pStep * static_cast<std::size_t>(pPicture.fWidth)));
  };
  const float* base = pPicture.fSamples.data();
  for (const std::string& channel : pKind.fChannels) add(channel, base++, 3 * sizeof(float));
  if (!pKind.fAlpha.empty()) add("A", pKind.fAlpha.data(), sizeof(float));
  if (const std::vector<float>& c = pKind.fChromaticities; !c.empty()) {
    Imf::addChromaticities(header,
                           Imf::Chromaticities({c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}, {c[6], c[7]}));
  }
  for (const auto& [name, text] : pKind.fTexts) header.insert(name, Imf::StringAttribute(text));
  for (const auto& [name, number] : pKind.fNumbers) header.insert(name, Imf::FloatAttribute(number));
  if (pKind.fTiled) {
    header.setTileDescription(Imf::TileDescription(16, 16));
    Imf::TiledOutputFile file(pFile.c_str(), header);
    file.setFrameBuffer(frame);
    file.writeTiles(0, file.numXTiles() - 1, 0, file.numYTiles() - 1);
  } else {
    Imf::OutputFile file(pFile.c_str(), header);
    file.setFrameBuffer(frame);
    file.writePixels(pPicture.fHeight);
  }
}

/// Three parts: depth, half-float colours, and small colours that are not read.
inline void WriteExrParts(const std::string& pFile, const sTestPicture& pPicture, bool pTiled) {
  const Imf::Header header(pPicture.fWidth, pPicture.fHeight);
  Imf::Header headers[3] = {header, header, header};
  const char* const names[] = {"depth", "colour", "small"};
  for (int i = 0; i < 3; ++i) {
    headers[i].setName(names[i]);
    if (i != 1) headers[i].dataWindow().max = Imath::V2i(7, 3);
    headers[i].setType(pTiled && i == 1 ? Imf::TILEDIMAGE : Imf::SCANLINEIMAGE);
    for (const char* channel : {"R", "G", "B"}) {
      if (i > 0) headers[i].channels().insert(channel, Imf::Channel(Imf::HALF));
    }
  }
  headers[0].channels().insert("Z", Imf::Channel(Imf::FLOAT));
  headers[1].channels().insert("A", Imf::Channel(Imf::HALF));
  if (pTiled) headers[1].setTileDescription(Imf::TileDescription(16, 16));
  std::vector<Imath::half> samples(pPicture.fSamples.begin(), pPicture.fSamples.end());
  std::vector<Imath::half> opaque(samples.size() / 3, Imath::half(1.0f));
  Imf::FrameBuffer frame;
  auto* const base = reinterpret_cast<char*>(samples.data());
  const auto stride = static_cast<std::size_t>(6 * pPicture.fWidth);
  frame.insert("R", Imf::Slice(Imf::HALF, base, 6, stride));
  frame.insert("G", Imf::Slice(Imf::HALF, base + 2, 6, stride));
  frame.insert("B", Imf::Slice(Imf::HALF, base + 4, 6, stride));
  frame.insert("A", Imf::Slice(Imf::HALF, reinterpret_cast<char*>(opaque.data()), 2, stride / 3));
  Imf::MultiPartOutputFile file(pFile.c_str(), headers, 3);
  if (pTiled) {
    Imf::TiledOutputPart part(file, 1);
    part.setFrameBuffer(frame);
    part.writeTiles(0, part.numXTiles() - 1, 0, part.numYTiles() - 1);
  } else {
    Imf::OutputPart part(file, 1);
    part.setFrameBuffer(frame);
    part.writePixels(pPicture.fHeight);
  }
}

/// Chroma at half the resolution.
inline void WriteExrChroma(const std::string& pFile, const sTestPicture& pPicture) {
  std::vector<Imf::Rgba> pixels;
  for (std::size_t i = 0; i < pPicture.fSamples.size(); i += 3) {
    pixels.emplace_back(pPicture.fSamples[i], pPicture.fSamples[i + 1], pPicture.fSamples[i + 2], 1.0f);
  }
  Imf::RgbaOutputFile file(pFile.c_str(), Imf::Header(pPicture.fWidth, pPicture.fHeight), Imf::WRITE_YCA);
  file.setFrameBuffer(pixels.data(), 1, static_cast<std::size_t>(pPicture.fWidth));
  file.writePixels(pPicture.fHeight);
}

/// A chunk of a PNG file.
inline std::string MakeChunk(const std::string& pName, const std::string& pContent) {
  const std::string body = pName + pContent;
  std::string chunk;
  Photo::AppendBigEndian(chunk, pContent.size(), 4);
  chunk += body;
  const auto* const bytes = reinterpret_cast<const Bytef*>(body.data());
  Photo::AppendBigEndian(chunk, crc32(0, bytes, static_cast<uInt>(body.size())), 4);
  return chunk;
}
inline std::string MakeNumbers(const std::string& pName, const std::vector<unsigned>& pNumbers) {
  std::string content;
  for (const unsigned number : pNumbers) Photo::AppendBigEndian(content, number, 4);
  return MakeChunk(pName, content);
}

/// The picture with the transfer of sRGB, 16 bits per sample, as libvips takes it.
inline vips::VImage ToVips16(const sTestPicture& pPicture) {
  std::vector<unsigned short> samples;
  for (const float linear : pPicture.fSamples) {
    const double x = std::clamp(static_cast<double>(linear), 0.0, 1.0);
    const double encoded = x <= 0.0031308 ? 12.92 * x : 1.055 * std::pow(x, 1.0 / 2.4) - 0.055;
    samples.push_back(static_cast<unsigned short>(std::lround(encoded * 65535.0)));
  }
  return vips::VImage::new_from_memory(samples.data(), samples.size() * sizeof(unsigned short),
                                       pPicture.fWidth, pPicture.fHeight, 3, VIPS_FORMAT_USHORT)
      .copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_RGB16))
      .copy_memory();
}

inline vips::VImage ToVips8(const sTestPicture& pPicture) {
  return ToVips16(pPicture).msb().copy(
      vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}
