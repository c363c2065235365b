// Writes the inputs that the fuzz targets start from, one folder per target: small pictures, and noise.
//   MakeSeeds FOLDER

#include <cstdio>
#include <exception>
#include <filesystem>
#include <random>
#include <string>

#include "photo/icc/IccHandle.h"
#include "photo/io/FileBytes.h"
#include "photo/metadata/JxlContainer.h"
#include "tests/photo/TestPictures.h"
#include "tests/photo/TiffFile.h"

namespace {

using vips::VImage;

constexpr int kWidth = 20;
constexpr int kHeight = 12;

sTestPicture Scene() {
  return MakeScene(kWidth, kHeight);
}

void MakeExr(const std::string& pFolder) {
  WriteExr(pFolder + "rgb.exr", Scene());
  WriteExr(pFolder + "grey.exr", Scene(), {{"Y"}, false, {}});
  WriteExr(pFolder + "tiled.exr", Scene(),
           {{"A", "B", "G", "R"}, true, {0.7f, 0.3f, 0.2f, 0.8f, 0.1f, 0.1f, 0.3f, 0.3f}});
  const sTestPicture small = MakeScene(6, 5);
  WriteExrParts(pFolder + "parts.exr", small, false);
  WriteExrParts(pFolder + "tiled-parts.exr", small, true);
  for (const auto kind : {Imf::NO_COMPRESSION, Imf::RLE_COMPRESSION, Imf::PIZ_COMPRESSION,
                          Imf::PXR24_COMPRESSION, Imf::B44_COMPRESSION, Imf::DWAA_COMPRESSION}) {
    WriteExr(pFolder + "kind" + std::to_string(kind) + ".exr", small, {{"R", "G", "B"}, false, {}, kind});
  }
  WriteExr(pFolder + "window.exr", small,
           {.fAlpha = std::vector<float>(30, 0.5f), .fAt = {3, -2}, .fDisplay = {{0, 0}, {7, 7}}});
  WriteExr(pFolder + "layers.exr", small, {.fChannels = {"R", "a.G", "a.B"}});
  WriteExrChroma(pFolder + "chroma.exr", MakeScene(6, 4));
}

void MakeHdr(const std::string& pFolder) {
  WriteRadiance(pFolder + "flat.hdr", MakeScene(7, 5));
  WriteRadiance(pFolder + "short.hdr", MakeScene(4, 3), "", "", "#?RGBE");
  WriteRadiance(pFolder + "lines.hdr", MakeScene(5, 7),
                "FORMAT=32-bit_rle_xyze\nEXPOSURE=2.5\nCOLORCORR=1 2 0.5\n"
                "PRIMARIES=.64 .33 .3 .6 .15 .06 .3127 .329\n",
                "+X 5 -Y 7");
  ToVips8(Scene())
      .cast(VIPS_FORMAT_FLOAT)
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_scRGB))
      .float2rad()
      .radsave((pFolder + "rle.hdr").c_str());
}

void MakePfm(const std::string& pFolder) {
  WritePfm(pFolder + "colour.pfm", MakeScene(8, 6));
  std::ofstream(pFolder + "grey.pfm", std::ios::binary) << "Pf\n2 2\n1.0\n" << std::string(16, '\x3f');
}

/// A small ICC profile with a table of two steps per axis; for one colour (grey) a tone curve.
std::string MakeProfile(int pColours) {
  const Photo::tIccHandle profile(cmsCreateProfilePlaceholder(nullptr));
  cmsSetProfileVersion(profile.get(), 4.3);
  cmsSetDeviceClass(profile.get(), cmsSigOutputClass);
  cmsSetColorSpace(profile.get(), pColours == 1   ? cmsSigGrayData
                                  : pColours == 3 ? cmsSigRgbData
                                                  : cmsSigCmykData);
  cmsSetPCS(profile.get(), cmsSigLabData);
  if (pColours == 1) {
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, 2.2);
    cmsWriteTag(profile.get(), cmsSigGrayTRCTag, curve);
    cmsFreeToneCurve(curve);
  } else {
    const auto colours = static_cast<cmsUInt32Number>(pColours);
    std::vector<cmsUInt16Number> table(3u << colours);
    for (std::size_t i = 0; i < table.size(); ++i) table[i] = static_cast<cmsUInt16Number>(i * 40503);
    cmsPipeline* const pipeline = cmsPipelineAlloc(nullptr, colours, 3);
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, colours, nullptr));
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocCLut16bit(nullptr, 2, colours, 3, table.data()));
    cmsPipelineInsertStage(pipeline, cmsAT_END, cmsStageAllocToneCurves(nullptr, 3, nullptr));
    cmsWriteTag(profile.get(), cmsSigAToB0Tag, pipeline);
    cmsPipelineFree(pipeline);
  }
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile.get(), nullptr, &size);
  std::string bytes(size, '\0');
  cmsSaveProfileToMem(profile.get(), bytes.data(), &size);
  std::fill_n(bytes.begin() + 24, 12, '\0');  // the time of creation
  return bytes;
}

VImage WithProfile(const VImage& pImage, int pColours) {
  VImage image = pImage.copy();
  const std::string profile = MakeProfile(pColours);
  vips_image_set_blob_copy(image.get_image(), VIPS_META_ICC_NAME, profile.data(), profile.size());
  return image;
}

/// Pictures of many kinds of samples, which every format stores as far as it can.
std::vector<VImage> Kinds() {
  const VImage rgb = ToVips8(Scene());
  const VImage rgb16 = ToVips16(MakeScene(9, 7));
  VImage turned = rgb.copy();
  turned.set(VIPS_META_ORIENTATION, 6);
  const VImage alpha = rgb.bandjoin_const({128.0});
  const VImage profiled = rgb.icc_transform("p3", VImage::option()->set("input_profile", "srgb"));
  VImage inks = profiled.colourspace(VIPS_INTERPRETATION_CMYK).copy();
  inks.remove(VIPS_META_ICC_NAME);  // half a megabyte
  const VImage grey =
      rgb.extract_band(1).copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_B_W));
  const VImage grey1 = WithProfile(grey, 1), rgb3 = WithProfile(rgb, 3), inks4 = WithProfile(inks, 4);
  return {rgb, rgb16, grey, turned, alpha, profiled, inks, grey1, rgb3, inks4};
}

/// The file with other bytes behind its first pAt.
void Insert(const std::string& pFrom, const std::string& pTo, std::size_t pAt, const std::string& pBytes) {
  std::ofstream(pTo, std::ios::binary) << Photo::ReadBytes(pFrom).insert(pAt, pBytes);
}

void MakePng(const std::string& pFolder) {
  int number = 0;
  for (const VImage& image : Kinds()) image.pngsave((pFolder + std::to_string(number++) + ".png").c_str());
  ToVips8(Scene()).write_to_file((pFolder + "palette.png[palette,interlace]").c_str());
  const std::string plain = pFolder + "0.png";
  Insert(plain, pFolder + "codes.png", 33, MakeChunk("cICP", {9, 16, 0, 1}));
  const std::vector<unsigned> primaries = {31270, 32900, 68000, 32000, 26500, 69000, 15000, 6000};
  Insert(plain, pFolder + "numbers.png", 33, MakeNumbers("gAMA", {100000}) + MakeNumbers("cHRM", primaries));
}

void MakeJpeg(const std::string& pFolder) {
  int number = 0;
  for (const VImage& image : Kinds()) {
    const std::string name = pFolder + std::to_string(number++);
    image.jpegsave((name + ".jpg").c_str());
    image.jpegsave((name + "p.jpg").c_str(), VImage::option()->set("interlace", true)->set("strip", true));
  }
  const std::string index("\xff\xe2\0\x40MPF\0MM\0*\0\0\0\x8\0\1\xb0\2\0\7\0\0\0\x20\0\0\0\x1a", 30);
  Insert(pFolder + "0p.jpg", pFolder + "index.jpg", 2, index + std::string(36, '\0'));
}

/// A page of samples that libvips does not read.
void WriteOddTiff(const std::string& pFile, int pBits, int pFormat, bool pIsTiled) {
  const tTiff file(TIFFOpen(pFile.c_str(), "w"));
  TIFF* const tiff = file.get();
  SetShape(tiff, 16, 16, pBits, 1);
  TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, pFormat);
  if (pIsTiled) SetTiles(tiff, 16);
  std::string samples;
  for (int i = 0; i < 16 * 2 * pBits; ++i) samples += static_cast<char>(i % 60);
  const std::size_t row = std::size_t{2} * static_cast<unsigned>(pBits);
  for (std::uint32_t y = 0; !pIsTiled && y < 16; ++y) TIFFWriteScanline(tiff, &samples[row * y], y, 0);
  if (pIsTiled) TIFFWriteTile(tiff, samples.data(), 0, 0, 0, 0);
}

void MakeOddTiff(const std::string& pFolder) {
  WriteOddTiff(pFolder + "half.tif", 16, SAMPLEFORMAT_IEEEFP, false);
  WriteOddTiff(pFolder + "double.tif", 64, SAMPLEFORMAT_IEEEFP, false);
  WriteOddTiff(pFolder + "12.tif", 12, SAMPLEFORMAT_UINT, true);
  const VImage page = ToVips8(MakeScene(6, 5));
  VImage pages = page.join(page, VIPS_DIRECTION_VERTICAL).copy();
  pages.set("page-height", 5);
  pages.tiffsave((pFolder + "pages.tif").c_str());
}

void MakeWebp(const std::string& pFolder) {
  const VImage rgb = ToVips8(Scene());
  rgb.webpsave((pFolder + "lossy.webp").c_str());
  rgb.webpsave((pFolder + "lossless.webp").c_str(), VImage::option()->set("lossless", true));
  rgb.bandjoin_const({128.0}).webpsave((pFolder + "alpha.webp").c_str());
}

void MakeHeif(const std::string& pFolder) {
  const VImage rgb = ToVips8(Scene());
  rgb.write_to_file((pFolder + "8.avif[compression=av1]").c_str());
  rgb.bandjoin_const({128.0}).write_to_file((pFolder + "alpha.avif[compression=av1]").c_str());
  ToVips16(Scene()).write_to_file((pFolder + "12.avif[compression=av1,bitdepth=12]").c_str());
  rgb.write_to_file((pFolder + "8.heic[compression=hevc]").c_str());
}

void MakeJxlPictures(const std::string& pFolder) {
  const VImage rgb = ToVips8(Scene());
  rgb.jxlsave((pFolder + "lossy.jxl").c_str());
  rgb.jxlsave((pFolder + "lossless.jxl").c_str(), VImage::option()->set("lossless", true));
  ToVips16(MakeScene(9, 7)).jxlsave((pFolder + "16.jxl").c_str(), VImage::option()->set("lossless", true));
  Insert(pFolder + "lossless.jxl", pFolder + "boxes.jxl", 0, "");
  Photo::WriteJxlMetadata(pFolder + "boxes.jxl", {std::string("MM\0*", 4), "<x:xmpmeta/>", false});
}

void MakeTiff(const std::string& pFolder) {
  int number = 0;
  for (const VImage& image : Kinds()) {
    const std::string name = pFolder + std::to_string(number++);
    image.tiffsave((name + ".tif").c_str());
    image.write_to_file(
        (name + "t.tif[tile,tile_width=16,tile_height=16,compression=lzw,predictor=horizontal]").c_str());
  }
  const VImage floats = ToVips8(MakeScene(5, 5)).cast(VIPS_FORMAT_FLOAT);
  floats.tiffsave((pFolder + "float.tif").c_str());
  for (const std::string kind : {"deflate", "packbits", "jpeg"}) {
    std::string target = pFolder;
    target.append(kind).append(".tif[compression=").append(kind).append("]");
    ToVips8(Scene()).write_to_file(target.c_str());
  }
}

/// Boxes only, without a codestream.
void MakeJxl(const std::string& pFolder) {
  const std::string codestream("\xff\x0a what is no picture");
  std::ofstream(pFolder + "bare.jxl", std::ios::binary) << codestream;
  std::ofstream(pFolder + "boxes.jxl", std::ios::binary) << codestream;
  Photo::WriteJxlMetadata(pFolder + "boxes.jxl", {std::string("MM\0*", 4), "<x:xmpmeta/>", false});
}

void MakeSettings(const std::string& pFolder) {
  const std::string start = R"({"quorvane-preset": 1, "name": "x", "settings": {"strength": )";
  for (const int levels : {3, 60, 100, 20000}) {  // some are read, some are refused
    const auto count = static_cast<std::size_t>(levels);
    std::ofstream(pFolder + "arrays" + std::to_string(levels))
        << start + std::string(count, '[') + "1" + std::string(count, ']') + "}}";
  }
  const std::string look =
      R"("look": {"black_point": 0.01, "white_point": 3, "base_mean": -1, "detail_mean": 0.1})";
  std::ofstream(pFolder + "look") << R"({"quorvane-look": 1, "settings": {"tone-compression": 10}, )" + look +
                                         "}";
  std::ofstream(pFolder + "looked") << R"({"quorvane-settings": 1, "settings": {}, )" + look + "}";
  std::string objects;
  for (int i = 0; i < 5000; ++i) objects += R"({"a":)";
  std::ofstream(pFolder + "objects") << objects;
}

void MakeNameList(const std::string& pFolder) {
  const std::string lines = "a b.hdr\r\nsub/\xc3\xa9.exr\n\n-\r\r\nlast";
  std::ofstream(pFolder + "lines", std::ios::binary) << "0" + lines;
  std::ofstream(pFolder + "marked", std::ios::binary) << "0\xef\xbb\xbf" + lines;
  std::string names = lines;
  std::replace(names.begin(), names.end(), '\n', '\0');
  std::ofstream(pFolder + "nul", std::ios::binary) << "1" + names;
  std::ofstream(pFolder + "mixed", std::ios::binary) << "0" + names + "\n";
}

/// For targets that take plain numbers.
void MakeNoise(const std::string& pFolder) {
  std::mt19937 random(1);
  for (const int size : {20, 50, 100, 200, 500, 1000}) {
    std::ofstream stream(pFolder + std::to_string(size), std::ios::binary);
    for (int i = 0; i < size; ++i) stream.put(static_cast<char>(random() & 0xFFu));
  }
}

void MakeAll(const std::string& pFolder) {
  const auto make = [&](const std::string& pDoor, void (*pMake)(const std::string&)) {
    std::filesystem::create_directories(pFolder + "/" + pDoor);
    pMake(pFolder + "/" + pDoor + "/seed-");
  };
  for (const char* const target : {"Equaliser", "ExportedCall", "Renderer", "Spline", "Transfer"})
    make(target, MakeNoise);
  make("ReadExr", MakeExr);
  make("ReadHdr", MakeHdr);
  make("ReadPfm", MakePfm);
  make("ReadPng", MakePng);
  make("ReadJpeg", MakeJpeg);
  make("ReadTiff", MakeTiff);
  make("ReadTiff", MakeOddTiff);
  make("ReadWebp", MakeWebp);
  make("ReadHeif", MakeHeif);
  make("ReadJxl", MakeJxlPictures);
  make("JxlContainer", MakeJxl);
  make("ReadSettings", MakeSettings);
  make("NameList", MakeNameList);
}

}  // namespace

int main(int pCount, char** pArguments) {
  if (pCount != 2 || VIPS_INIT(pArguments[0]) != 0) return 2;
  try {
    MakeAll(pArguments[1]);
  } catch (const std::exception& exception) {
    std::fprintf(stderr, "%s\n", exception.what());
    return 1;
  }
  return 0;
}
