#include <png.h>

#include <functional>

#include "photo/decode/LdrReader.h"
#include "photo/decode/PictureReader.h"
#include "photo/icc/NamedProfile.h"
#include "photo/io/BigEndian.h"
#include "photo/metadata/Metadata.h"
#include "photo/metadata/MetadataLibrary.h"
#include "tests/cli/ToolTest.h"
#include "tests/photo/TestPictures.h"
#include "tests/photo/TiffFile.h"

// What files state of their samples, and what they hold besides the picture that is read.

namespace {

using Photo::ReadPicture;
using Photo::sPicture;

using StatedTool = cToolTest;

/// The middle pixel's Y.
float LightOf(const sPicture& pPicture) {
  const int x = pPicture.fBitmap->GetWidth() / 2;
  return Photo::GetRow(pPicture, pPicture.fBitmap->GetHeight() / 2)[3 * x + 1];
}

/// The PNG with chunks behind its header.
void PutChunks(const std::string& pFrom, const std::string& pTo, const std::string& pChunks) {
  constexpr std::size_t kHeaderEnd = 33;
  WriteText(pTo, ReadText(pFrom).insert(kHeaderEnd, pChunks));
}

TEST_F(StatedTool, PngColoursCountInTheirOrder) {
  const VImage half = (VImage::black(8, 8, VImage::option()->set("bands", 3)) + 0.5806 * 65535.0)
                          .cast(VIPS_FORMAT_USHORT)
                          .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_RGB16));
  half.pngsave("plain.png");
  VImage profiled = half.copy();
  SetBlob(profiled, VIPS_META_ICC_NAME, ProfileOf(TmEngine::cColorSpace_AdobeRGB98::GetIccProfile()));
  profiled.pngsave("adobe.png");
  const auto codes = [](const std::string& pCodes) { return MakeChunk("cICP", pCodes); };
  const auto gamma = [](unsigned pNumber) { return MakeNumbers("gAMA", {pNumber}); };
  const std::string srgb = MakeChunk("sRGB", std::string(1, '\0'));
  const std::string wide = MakeNumbers("cHRM", {31270, 32900, 70800, 29200, 17000, 79700, 13100, 4600});
  std::string damaged = gamma(100000);
  damaged.back() ^= 1;
  const struct {
    const char* fFile;
    std::string fChunks;
    const char* fColorSpace;
    float fLight;
    std::size_t fWarnings;
  } cases[] = {
      {"plain.png", "", "sRGB", 0.2964f, 0},
      {"plain.png", codes({9, 16, 0, 1}), "Rec. 2020 PQ", 0.99906f, 0},  // just below white at 203 candela
      {"plain.png", codes({9, 18, 0, 1}), "Rec. 2020 HLG", 0.4426f, 0},
      {"plain.png", codes({1, 8, 0, 1}) + gamma(45455), "sRGB linear", 0.5806f, 0},
      {"plain.png", codes({12, 13, 0, 1}) + srgb, "Display P3", 0.2964f, 0},
      {"plain.png", codes({9, 16, 0, 0}), "Rec. 2020 PQ", 0.99906f, 1},
      {"plain.png", codes({9, 77, 0, 1}) + gamma(100000), "linear light, sRGB primaries", 0.5806f, 1},
      {"plain.png", srgb + gamma(100000), "sRGB", 0.2964f, 0},
      {"plain.png", gamma(100000), "linear light, sRGB primaries", 0.5806f, 0},
      {"plain.png", gamma(45455) + wide, "gamma 2.2, Rec. 2020 primaries", 0.30236f, 0},
      {"plain.png", wide, "curve of sRGB, Rec. 2020 primaries", 0.2964f, 0},
      {"plain.png", gamma(0), "sRGB", 0.2964f, 1},
      {"plain.png", MakeNumbers("cHRM", {31270, 32900, 0, 0, 0, 0, 0, 0}), "sRGB", 0.2964f, 1},
      {"plain.png", damaged, "sRGB", 0.2964f, 0},
      {"adobe.png", gamma(100000) + wide, "Adobe RGB (1998) (ICC)", 0.3025f, 0},
      {"adobe.png", codes({1, 8, 0, 1}), "sRGB linear", 0.5806f, 0}};
  for (const auto& row : cases) {
    PutChunks(row.fFile, "a.png", row.fChunks);
    const sPicture picture = ReadPicture("a.png");
    EXPECT_EQ(picture.fColorSpace, row.fColorSpace);
    EXPECT_NEAR(LightOf(picture), row.fLight, 6e-5f) << row.fColorSpace;
    EXPECT_EQ(picture.fWarnings.size(), row.fWarnings) << row.fColorSpace;
    const std::string equalize = "equalize a.png --overwrite -o b.png --saturation 0:0.5";
    const std::string name = row.fColorSpace;
    if (name.ends_with("PQ") || name.ends_with("HLG")) {
      ExpectFailure(3, equalize, "a.png: its light goes beyond white");
      continue;
    }
    Expect(0, equalize);  // and the result looks the same
    EXPECT_NEAR(LightOf(ReadPicture("b.png")), row.fLight, 6e-5f) << row.fColorSpace;
  }
}

TEST_F(StatedTool, ExifNamesAdobeRGB) {
  const VImage scene = ToVips8(MakeScene(40, 30));
  const std::string adobe = Photo::GetIccProfile(TmEngine::eColorSpaceID_AdobeRGB98);
  const auto index = [](const char* pFile) {
    return Photo::GetMetadataLibrary().ListExif(
        ReadPicture(pFile).fMetadata->GetBlocks())["Exif.Iop.InteroperabilityIndex"];
  };
  VImage named = scene.copy();
  named.set("exif-ifd4-InteroperabilityIndex", "R03 (R03, ASCII, 4 components, 4 bytes)");
  named.set("exif-ifd2-ColorSpace", "65535 (Uncalibrated, Short, 1 components, 2 bytes)");
  named.jpegsave("named.jpg");
  SetBlob(named, VIPS_META_ICC_NAME, ProfileOf(TmEngine::cColorSpace_sRGB::GetIccProfile()));
  named.jpegsave("profiled.jpg");
  EXPECT_EQ(ReadPicture("named.jpg").fColorSpace, "Adobe RGB (1998) (EXIF)");
  EXPECT_NE(ReadPicture("profiled.jpg").fColorSpace, "Adobe RGB (1998) (EXIF)");
  EXPECT_EQ(Photo::ReadLdrPicture("named.jpg", "equalize").fProfile, adobe);
  for (const auto& [space, expected] : {std::pair{"srgb", "R98"}, {"adobergb", "R03"}, {"prophoto", ""}}) {
    Expect(0, std::string("tonemap named.jpg --overwrite -o a.jpg --colorspace ") + space);
    EXPECT_EQ(index("a.jpg"), expected) << space;
  }
  Expect(0, "equalize profiled.jpg -o b.jpg --saturation 0:0.5");
  EXPECT_EQ(index("b.jpg"), "R98");
}

/// A run of libpng as other programs have it.
std::vector<std::string> ListPngWarnings(const std::string& pFile) {
  std::vector<std::string> warnings;
  const auto warn = [](png_structp pPng, png_const_charp pText) {
    static_cast<std::vector<std::string>*>(png_get_error_ptr(pPng))->emplace_back(pText);
  };
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &warnings, nullptr, warn);
  png_infop info = png_create_info_struct(png);
  std::FILE* const file = std::fopen(pFile.c_str(), "rb");
  png_init_io(png, file);
  png_read_info(png, info);
  png_destroy_read_struct(&png, &info, nullptr);
  std::fclose(file);
  return warnings;
}

TEST_F(StatedTool, PngLibrariesDoNotWarnOfItsProfiles) {
  WriteRadiance("a.hdr", MakeScene());
  for (const auto& [name, id] : {std::pair{"srgb", TmEngine::eColorSpaceID_sRGB},
                                 {"adobergb", TmEngine::eColorSpaceID_AdobeRGB98},
                                 {"prophoto", TmEngine::eColorSpaceID_ProPhotoRGB}}) {
    Expect(0, std::string("tonemap a.hdr --overwrite -o a.png --colorspace ") + name);
    EXPECT_EQ(ListPngWarnings("a.png"), std::vector<std::string>()) << name;
    EXPECT_EQ(Photo::ReadLdrPicture("a.png", "equalize").fProfile, Photo::GetIccProfile(id)) << name;
  }
}

struct sTiffKind {
  int fBits;
  int fFormat;
  const char* fMode = "w";
  bool fIsTiled = false;
  bool fIsPlanar = false;
  int fOrientation = 1;
};

template <class tSample>
std::string BytesOf(tSample pSample) {
  return {reinterpret_cast<const char*>(&pSample), sizeof pSample};
}

/// pCount samples, pStep from one to the next.
std::string PackSamples(const sTiffKind& pKind, const float* pFrom, int pCount, int pStep) {
  std::string bytes;
  unsigned held = 0;
  int heldBits = 0;
  for (int i = 0; i < pCount; ++i, pFrom += pStep) {
    if (pKind.fFormat == SAMPLEFORMAT_IEEEFP) {
      bytes += pKind.fBits == 16 ? BytesOf(Imath::half(*pFrom).bits()) : BytesOf(double{*pFrom});
      continue;
    }
    const auto full = static_cast<float>((1 << pKind.fBits) - 1);
    held = held << pKind.fBits | static_cast<unsigned>(std::lround(*pFrom * full));
    for (heldBits += pKind.fBits; heldBits >= 8; heldBits -= 8) {
      bytes += static_cast<char>(held >> (heldBits - 8) & 0xff);
    }
  }
  if (heldBits > 0) bytes += static_cast<char>(held << (8 - heldBits) & 0xff);
  return bytes;
}

void WriteTiff(const std::string& pFile, const sTestPicture& pPicture, const sTiffKind& pKind) {
  constexpr int kTile = 16;
  const tTiff tiff(TIFFOpen(pFile.c_str(), pKind.fMode));
  SetShape(tiff.get(), pPicture.fWidth, pPicture.fHeight, pKind.fBits, 3);
  TIFFSetField(tiff.get(), TIFFTAG_SAMPLEFORMAT, pKind.fFormat);
  TIFFSetField(tiff.get(), TIFFTAG_ORIENTATION, pKind.fOrientation);
  TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_LZW);
  if (pKind.fIsPlanar) TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_SEPARATE);
  if (pKind.fIsTiled) {
    SetTiles(tiff.get(), kTile);
  } else {
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, 7);
  }
  const int planes = pKind.fIsPlanar ? 3 : 1;
  const int step = pKind.fIsPlanar ? 3 : 1;
  sTestPicture picture = pPicture;
  for (int plane = 0; plane < planes; ++plane) {
    const auto sample = static_cast<std::uint16_t>(plane);
    for (int y = 0; !pKind.fIsTiled && y < picture.fHeight; ++y) {
      std::string row = PackSamples(pKind, picture.GetPixel(0, y) + plane, picture.fWidth * 3 / planes, step);
      TIFFWriteScanline(tiff.get(), row.data(), static_cast<std::uint32_t>(y), sample);
    }
    for (int i = 0; pKind.fIsTiled && i < picture.fWidth * picture.fHeight; i += kTile * kTile) {
      const int x = i / kTile % picture.fWidth / kTile * kTile;
      const int y = i / kTile / picture.fWidth * kTile;
      std::string tile;
      for (int k = 0; k < kTile; ++k) {
        tile += PackSamples(pKind, picture.GetPixel(x, y + k) + plane, kTile * 3 / planes, step);
      }
      TIFFWriteTile(tiff.get(), tile.data(), static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y), 0,
                    sample);
    }
  }
}

TEST_F(StatedTool, ReadsOddSamplesOfTiff) {
  const sTestPicture scene = MakeScene(48, 32, 2.0f);
  WriteExr("scene.exr", scene);
  const sPicture linear = ReadPicture("scene.exr");
  const float half = LightOf(linear);
  sTestPicture encoded = scene;
  std::fill(encoded.fSamples.begin(), encoded.fSamples.end(), 0.5806f);
  std::fill_n(encoded.GetPixel(47, 31), 3, 1.0f);
  constexpr int kFloat = SAMPLEFORMAT_IEEEFP;
  constexpr int kInteger = SAMPLEFORMAT_UINT;
  const sTiffKind kinds[] = {{16, kFloat},
                             {16, kFloat, "wb"},
                             {16, kFloat, "w8", true},
                             {16, kFloat, "w", false, true},
                             {16, kFloat, "w", false, false, 3},
                             {64, kFloat},
                             {64, kFloat, "wb", true, true},
                             {12, kInteger},
                             {12, kInteger, "wb", false, true},
                             {12, kInteger, "w", true},
                             {10, kInteger, "w", false, false, 3},
                             {14, kInteger}};
  for (const sTiffKind& kind : kinds) {
    const bool isFloat = kind.fFormat == kFloat;
    sTestPicture stored = isFloat ? scene : encoded;
    if (kind.fOrientation == 3) {
      for (std::size_t i = 0; i < stored.fSamples.size() / 6; ++i) {
        std::swap_ranges(&stored.fSamples[3 * i], &stored.fSamples[3 * i] + 3,
                         &stored.fSamples[stored.fSamples.size() - 3 * i - 3]);
      }
    }
    WriteTiff("a.tif", stored, kind);
    const sPicture picture = ReadPicture("a.tif");
    const std::string name = std::to_string(kind.fBits) + kind.fMode + (kind.fIsTiled ? " tiled" : "") +
                             (kind.fIsPlanar ? " planar" : "");
    EXPECT_EQ(picture.fFileDepth, kind.fBits) << name;
    EXPECT_NEAR(LightOf(picture), isFloat ? half : 0.2964f, isFloat ? 1.2e-4f * half : 1e-4f) << name;
    const float last = Photo::GetRow(picture, 31)[3 * 47 + 1];
    const float expected = isFloat ? Photo::GetRow(linear, 31)[3 * 47 + 1] : 1.0f;
    EXPECT_NEAR(last, expected, 4e-5f * expected) << name;
    EXPECT_TRUE(picture.fWarnings.empty()) << name;
    Expect(isFloat ? 3 : 0, "equalize a.tif --overwrite -o b.png --saturation 0:0.5");
    const std::string whole = ReadText("a.tif");
    WriteText("cut.tif", whole.substr(0, whole.size() / 2));
    ExpectFailure(3, "tonemap cut.tif --overwrite -o b.png", "cut.tif: ");
  }
  WriteTiff("a.tif", encoded, {24, kInteger});
  EXPECT_TRUE(Has(Run("inspect a.tif").fErrors, "24 bits per sample"));
}

/// A page of one colour, with what pSet sets before its pixels are written.
void WritePage(
    TIFF* pTiff, int pLight, const std::function<void()>& pSet = [] {}) {
  SetShape(pTiff, 16, 8, 8, 3);
  pSet();
  std::vector<unsigned char> row(48, static_cast<unsigned char>(pLight));
  for (std::uint32_t y = 0; y < 8; ++y) TIFFWriteScanline(pTiff, row.data(), y, 0);
  TIFFWriteDirectory(pTiff);
}

/// A thumbnail that its real picture follows in a directory below.
void WriteBelow(TIFF* pTiff, int pPhotometric, bool pIsDng) {
  WritePage(pTiff, 50, [&] {
    const toff_t below[] = {0};
    const unsigned char version[] = {1, 4, 0, 0};
    TIFFSetField(pTiff, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE);
    TIFFSetField(pTiff, TIFFTAG_SUBIFD, 1, below);
    TIFFSetField(pTiff, TIFFTAG_MAKE, "Maker");
    if (pIsDng) TIFFSetField(pTiff, TIFFTAG_DNGVERSION, version);
  });
  SetShape(pTiff, 16, 8, 16, 1);
  TIFFSetField(pTiff, TIFFTAG_PHOTOMETRIC, pPhotometric);
  std::vector<unsigned short> row(16, 999);
  for (std::uint32_t y = 0; y < 8; ++y) TIFFWriteScanline(pTiff, row.data(), y, 0);
  TIFFWriteDirectory(pTiff);
}

TEST_F(StatedTool, RefusesRawFilesAndNoOthers) {
  const auto write = [](const char* pFile, const std::function<void(TIFF*)>& pWrite) {
    pWrite(tTiff(TIFFOpen(pFile, "w")).get());
  };
  const unsigned char version[] = {1, 4, 0, 0};
  write("a.dng", [](TIFF* pTiff) { WriteBelow(pTiff, PHOTOMETRIC_CFA, true); });
  write("b.dng", [](TIFF* pTiff) { WriteBelow(pTiff, 34892, true); });
  write("a.nef", [](TIFF* pTiff) { WriteBelow(pTiff, PHOTOMETRIC_CFA, false); });
  write("preview.tif", [](TIFF* pTiff) { WriteBelow(pTiff, PHOTOMETRIC_MINISBLACK, false); });
  write("copied.tif", [&](TIFF* pTiff) {  // by a program that copies all tags
    WritePage(pTiff, 99, [&] { TIFFSetField(pTiff, TIFFTAG_DNGVERSION, version); });
  });
  WriteText("a.cr2", std::string("II*\0\x10\0\0\0CR\2\0\0\0\0\0\0\0\0\0\0\0", 22) + std::string(99, '\0'));
  WriteText("a.orf", std::string("IIRO\x8\0\0\0", 8) + std::string(99, '\0'));
  const std::pair<std::string, std::string> cases[] = {{"a.dng", "is a raw file (DNG)"},
                                                       {"b.dng", "is a raw file (DNG)"},
                                                       {"a.nef", "is a raw file of a camera"},
                                                       {"a.cr2", "is a raw file (CR2)"},
                                                       {"a.orf", "is a raw file (ORF)"}};
  for (const auto& [file, kind] : cases) {
    for (const std::string verb : {"tonemap ", "equalize --saturation 0:1 "}) {
      const sRun run = ExpectFailure(3, verb + file + " -o b.png", file + ": " + kind);
      EXPECT_TRUE(Has(run.fErrors, "develop it to a 16-bit TIFF first"));
    }
  }
  ExpectDone("tonemap copied.tif -o b.png");
  const sRun run = Expect(0, "tonemap preview.tif -o c.png");
  EXPECT_TRUE(Has(run.fErrors, "is stated to be a thumbnail"));
}

TEST_F(StatedTool, PagesAreChosenAndReported) {
  {
    const tTiff tiff(TIFFOpen("pages.tif", "w"));
    for (const int light : {40, 120, 200}) WritePage(tiff.get(), light);
    WritePage(tiff.get(), 9, [&] { TIFFSetField(tiff.get(), TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE); });
  }
  VImage::new_from_file("pages.tif[page=1]").pngsave("second.png");
  const auto light = [](int pPage) { return LightOf(ReadPicture("pages.tif", {.fPage = pPage})); };
  EXPECT_EQ(light(0), light(1));
  EXPECT_EQ(light(2), LightOf(ReadPicture("second.png")));
  const std::string warning = "warning: only one of its 3 pages is read; --page chooses another";
  for (const std::string verb :
       {"tonemap pages.tif --overwrite -o b.png", "inspect pages.tif", "compare pages.tif pages.tif",
        "equalize pages.tif --saturation 0:0.5 --overwrite -o b.png"}) {
    EXPECT_TRUE(Has(Run(verb).fErrors, warning)) << verb;
    EXPECT_EQ(Expect(0, verb + " --page 2").fErrors, "") << verb;
    ExpectFailure(3, verb + " --page 5", "pages.tif: ");
    ExpectFailure(2, verb + " --page 0", "--page: ");
  }
  EXPECT_EQ(Run("compare --page 2 pages.tif second.png").fOutput, "The pictures are equal.\n");
  ExpectFailure(3, "inspect second.png --page 2", "second.png: has only one page");
}

TEST_F(StatedTool, ReportsWhatElseAJpegHolds) {
  const VImage scene = ToVips8(MakeScene());
  scene.jpegsave("plain.jpg");
  scene.copy(VImage::option()->set("xres", 12.0)->set("yres", 6.0)).jpegsave("flat.jpg");
  const auto put = [](const std::string& pSegment) {
    std::string segment = "\xff\xe2";
    Photo::AppendBigEndian(segment, pSegment.size() + 2, 2);
    WriteText("a.jpg", ReadText("plain.jpg").insert(2, segment + pSegment));
    return ReadPicture("a.jpg").fWarnings;
  };
  const auto index = [](const std::string& pAttribute) {
    const std::string head("MPF\0MM\0*\0\0\0\x8\0\1\xb0\2\0\7\0\0\0\x20\0\0\0\x1a\0\0\0\0", 30);
    return head + std::string(16, '\0') + pAttribute + std::string(12, '\0');
  };
  using tTexts = std::vector<std::string>;
  EXPECT_EQ(ReadPicture("plain.jpg").fWarnings, tTexts());
  EXPECT_EQ(put(std::string("urn:iso:std:iso:ts:21496:-1\0\0\0\0\0", 32)),
            tTexts{"its gain map is left out: what it adds beyond white is not read"});
  EXPECT_EQ(put(index(std::string(4, '\0'))), tTexts{"1 further picture in the file is left out"});
  EXPECT_EQ(put(index({0, 1, 0, 1})), tTexts());  // a smaller copy for a camera's screen
  ASSERT_EQ(ReadPicture("flat.jpg").fWarnings.size(), 1u);
  EXPECT_TRUE(Has(ReadPicture("flat.jpg").fWarnings.front(), "not to be square"));
}

}  // namespace
