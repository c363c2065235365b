#include <gtest/gtest.h>

#include <numeric>

#include "photo/base/Failure.h"
#include "photo/decode/PictureReader.h"
#include "tests/Numbers.h"
#include "tests/cli/ToolTest.h"
#include "tests/photo/PictureOf.h"
#include "tests/photo/TestPictures.h"

// How files become what the engine takes, and panoramas through the built tool.

namespace {

using Photo::ReadPicture;
using Photo::sPicture;

using ReadingTool = cToolTest;

/// The mean difference of two pictures' light, as a part of the first one's mean.
double Compare(const sPicture& pA, const sPicture& pB) {
  const std::vector<float> a = SamplesOf(pA);
  const std::vector<float> b = SamplesOf(pB);
  if (a.size() != b.size()) return 1e9;
  double difference = 0.0;
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    difference += std::fabs(static_cast<double>(a[i]) - static_cast<double>(b[i]));
    sum += static_cast<double>(a[i]);
  }
  return difference / sum;
}

template <class tSample>
VImage ToVips(const std::vector<tSample>& pSamples, int pWidth, int pBands, VipsBandFormat pFormat) {
  const int height = static_cast<int>(pSamples.size()) / pWidth / pBands;
  return VImage::new_from_memory(const_cast<tSample*>(pSamples.data()), pSamples.size() * sizeof(tSample),
                                 pWidth, height, pBands, pFormat)
      .copy_memory();
}

VImage ToVipsFloat(const sTestPicture& pPicture) {
  return ToVips(pPicture.fSamples, pPicture.fWidth, 3, VIPS_FORMAT_FLOAT)
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_scRGB));
}

TEST_F(ReadingTool, ReadsLightDepthAndColoursOfEveryFormat) {
  const sTestPicture scene = MakeScene(48, 32, 2.0f);
  const VImage of8 = ToVips8(scene);
  const VImage of16 = ToVips16(scene);
  const VImage ofFloats = ToVipsFloat(scene);
  WritePfm("a.pfm", scene);
  WriteRadiance("a.hdr", scene);
  WriteExr("a.exr", scene);
  WriteExrParts("parts.exr", scene, false);
  WriteExrParts("tiles.exr", scene, true);
  ofFloats.tiffsave("float.tif");
  ofFloats.jxlsave("float.jxl", VImage::option()->set("lossless", true));
  of16.pngsave("16.png");
  of16.tiffsave("16.tif");
  of8.pngsave("8[1].png");
  of8.jpegsave("8.jpg", VImage::option()->set("Q", 100)->set("subsample_mode", VIPS_FOREIGN_SUBSAMPLE_OFF));
  fs::copy("a.exr", "exr-named.hdr");
  of16.jxlsave("16.jxl", VImage::option()->set("lossless", true));
  of8.jxlsave("8.jxl", VImage::option()->set("lossless", true));
  of8.webpsave("8.webp", VImage::option()->set("lossless", true));
  of8.write_to_file("8.avif[compression=av1,Q=98]");
  of16.write_to_file("12.avif[compression=av1,bitdepth=12,Q=98]");
  of16.write_to_file("10.heic[compression=hevc,bitdepth=10,Q=98]");
  const char* const linear = "linear light, sRGB primaries";
  const struct {
    const char* fFile;
    const char* fFormat;
    int fDepth;
    const char* fColorSpace;
    double fTolerance;  // just above what the format's precision or its encoder leaves
  } cases[] = {{"a.hdr", "Radiance", 32, linear, 1.3e-3},
               {"a.exr", "OpenEXR", 32, linear, 0.0},
               {"parts.exr", "OpenEXR", 16, linear, 1.3e-4},
               {"tiles.exr", "OpenEXR", 16, linear, 1.3e-4},
               {"exr-named.hdr", "OpenEXR", 32, linear, 0.0},
               {"float.tif", "TIFF", 32, linear, 0.0},
               {"16.png", "PNG", 16, "sRGB", 3e-5},
               {"16.tif", "TIFF", 16, "sRGB", 3e-5},
               {"8[1].png", "PNG", 8, "sRGB", 0.004},
               {"8.jpg", "JPEG", 8, "sRGB", 0.0071},
               {"float.jxl", "JPEG XL", 32, "RGB_D65_SRG_Rel_Lin (ICC)", 2e-5},
               {"16.jxl", "JPEG XL", 16, "RGB_D65_SRG_Rel_SRG (ICC)", 3e-5},
               {"8.jxl", "JPEG XL", 8, "RGB_D65_SRG_Rel_SRG (ICC)", 0.004},
               {"8.webp", "WebP", 8, "sRGB", 0.004},
               {"8.avif", "AVIF", 8, "sRGB", 0.009},  // colours at half the resolution
               {"12.avif", "AVIF", 12, "sRGB", 0.0013},
               {"10.heic", "HEIF", 10, "sRGB", 0.005}};
  const sPicture expected = ReadPicture("a.pfm");
  EXPECT_EQ(expected.fFormat, "PFM");
  for (const auto& row : cases) {
    const sPicture picture = ReadPicture(row.fFile);
    EXPECT_EQ(picture.fFormat, row.fFormat) << row.fFile;
    EXPECT_EQ(picture.fFileDepth, row.fDepth) << row.fFile;
    EXPECT_EQ(picture.fColorSpace, row.fColorSpace) << row.fFile;
    EXPECT_LE(Compare(expected, picture), row.fTolerance) << row.fFile;
    const bool hasParts = picture.fParts.size() > 1;  // which are left out
    EXPECT_EQ(picture.fWarnings.size(), hasParts ? 1u : 0u) << row.fFile << picture.fWarnings.front();
  }
}

TEST_F(ReadingTool, TakesTheCodesOfAvif) {
  ToVips16(MakeScene()).write_to_file("a.avif[compression=av1,bitdepth=12]");
  const auto read = [](const std::string& pCodes) {
    std::string file = ReadText("a.avif");
    WriteText("coded.avif", file.replace(file.find("colrnclx") + 8, 4, pCodes));
    return ReadPicture("coded.avif");
  };
  EXPECT_EQ(read({0, 9, 0, 16}).fColorSpace, "Rec. 2020 PQ");
  EXPECT_EQ(read({0, 1, 0, 8}).fColorSpace, "sRGB linear");
  EXPECT_EQ(read({0, 9, 0, 77}).fWarnings.size(), 1u);
}

/// Floats with a profile: that of a linear space is no reason to clip, that of a gamma goes on above 1.
TEST_F(ReadingTool, DecodesFloatsThroughTheirProfile) {
  sTestPicture scene = MakeScene(16, 8);
  scene.GetPixel(3, 3)[1] = 40.0f;
  const std::string profile = ProfileOf(TmEngine::cColorSpace_AdobeRGB98::GetIccProfile());
  VImage image = ToVipsFloat(scene).copy();
  vips_image_set_blob_copy(image.get_image(), VIPS_META_ICC_NAME, profile.data(), profile.size());
  image.tiffsave("adobe.tif");
  const sPicture picture = ReadPicture("adobe.tif");
  TmEngine::cVector3 linear;
  for (int i = 0; i < 3; ++i) linear[i] = std::pow(scene.GetPixel(3, 3)[i], 563.0f / 256.0f);
  const TmEngine::cVector3 xyz = TmEngine::cColorSpace_AdobeRGB98().GetRGBToXYZ() * linear;
  EXPECT_NEAR(Photo::GetRow(picture, 3)[3 * 3 + 1], xyz[1], 2e-5f * xyz[1]);
}

TEST_F(ReadingTool, KeepsAlphaToTheBit) {
  const sTestPicture scene = MakeScene(32, 16);
  std::vector<unsigned short> ramp(32 * 16);
  std::iota(ramp.begin(), ramp.end(), static_cast<unsigned short>(0));
  const VImage alpha = ToVips(ramp, 32, 1, VIPS_FORMAT_USHORT);
  const VImage of8 = ToVips8(scene).bandjoin((alpha / 2).cast(VIPS_FORMAT_UCHAR));
  VImage turned = of8.copy();
  turned.set(VIPS_META_ORIENTATION, 3);
  turned.tiffsave("turned.tif");
  ToVips16(scene).bandjoin((alpha * 128).cast(VIPS_FORMAT_USHORT)).pngsave("16.png");
  of8.pngsave("8.png");
  of8.webpsave("8.webp", VImage::option()->set("lossless", true));
  ToVipsFloat(scene).bandjoin(alpha / 512.0).cast(VIPS_FORMAT_FLOAT).tiffsave("float.tif");
  const struct {
    const char* fFile;
    unsigned (*fAlpha)(unsigned);
  } cases[] = {{"8.png", [](unsigned pI) { return pI / 2 * 257; }},
               {"8.webp", [](unsigned pI) { return pI / 2 * 257; }},
               {"turned.tif", [](unsigned pI) { return (511 - pI) / 2 * 257; }},
               {"16.png", [](unsigned pI) { return pI * 128; }},
               {"float.tif", [](unsigned pI) { return (pI * 65535 * 2 + 512) / 1024; }}};
  for (const auto& row : cases) {
    const sPicture picture = ReadPicture(row.fFile);
    ASSERT_EQ(picture.fAlpha.size(), ramp.size()) << row.fFile;
    for (unsigned i = 0; i < ramp.size(); ++i) {
      ASSERT_EQ(picture.fAlpha[i], row.fAlpha(i)) << row.fFile << ' ' << i;
    }
  }
}

TEST_F(ReadingTool, LightWithoutCoverStaysLight) {
  const sTestPicture scene = MakeScene(90, 60);
  sExrKind kind{.fAlpha = std::vector<float>(90 * 60)};  // a candle below its flame
  std::fill(kind.fAlpha.begin() + 90 * 30, kind.fAlpha.end(), 1.0f);
  WriteExr("plain.exr", scene);
  WriteExr("candle.exr", scene, kind);
  const auto tonemap = [](const std::string& pArguments, const std::string& pFile) {
    return Expect(0, "tonemap " + pArguments + " --overwrite -o " + pFile).fErrors;
  };
  const auto overBlack = [](const std::string& pFile) {
    return VImage::new_from_file(pFile.c_str()).flatten().cast(VIPS_FORMAT_DOUBLE);
  };
  for (const std::string options : {"--depth 8", "--depth 16", "--preview 45"}) {
    tonemap("plain.exr " + options, "plain.png");
    const VImage expected = VImage::new_from_file("plain.png").cast(VIPS_FORMAT_DOUBLE);
    EXPECT_TRUE(Has(tonemap("candle.exr " + options, "a.png"), "alpha is raised in "));
    EXPECT_LE((overBlack("a.png") - expected).abs().max(), 1.0) << options;
    EXPECT_EQ(tonemap("candle.exr --alpha ignore " + options, "b.png"), "");
    EXPECT_EQ((VImage::new_from_file("b.png") - expected).abs().max(), 0.0) << options;
    EXPECT_EQ(tonemap("candle.exr " + options, "a.tif"), "");
    tonemap("candle.exr --alpha black " + options, "c.png");
    EXPECT_EQ((VImage::new_from_file("c.png") - expected).abs().max(), 0.0) << options;
  }
  // premultiplied, and says so
  const std::string tiff = ReadText("a.tif");
  EXPECT_TRUE(Has(tiff, std::string("\x52\x01\x03\x00\x01\x00\x00\x00\x01\x00", 10)));
  // and is read as it was written
  tonemap("candle.exr --depth 16", "a.tif");
  tonemap("candle.exr --depth 16 --alpha ignore", "b.tif");
  EXPECT_EQ(SamplesOf(ReadPicture("a.tif")), SamplesOf(ReadPicture("b.tif")));
  EXPECT_TRUE(ReadPicture("a.tif").fHasOwnLight);
  EXPECT_TRUE(Has(tonemap("candle.exr", "a.jpg"), "JPEG holds no transparency: the picture over black"));
}

TEST_F(ReadingTool, CutOutsAreTheSameStraightAndPremultiplied) {
  const sTestPicture scene = MakeScene(90, 60);
  sTestPicture multiplied = scene;
  sExrKind kind;
  std::vector<float> straight;
  for (int i = 0; i < 90 * 60; ++i) {
    const float alpha = std::clamp(static_cast<float>(i % 90 - 30) / 20.0f, 0.0f, 1.0f);
    kind.fAlpha.push_back(alpha);
    for (int k = 0; k < 3; ++k) {
      float& sample = multiplied.fSamples[static_cast<std::size_t>(3 * i + k)];
      straight.push_back(alpha > 0.0f ? sample : 7.0f);  // hidden
      sample *= alpha;
    }
    straight.push_back(alpha);
  }
  WriteExr("a.exr", multiplied, kind);
  ToVips(straight, 90, 4, VIPS_FORMAT_FLOAT)
      .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_scRGB))
      .tiffsave("a.tif");
  ExpectDone("tonemap a.exr -o a.exr.png");
  ExpectDone("tonemap a.tif -o a.tif.png");
  const VImage kept = VImage::new_from_file("a.exr.png");
  EXPECT_EQ(kept.getpoint(0, 0), std::vector<double>(4));
  EXPECT_LE((kept - VImage::new_from_file("a.tif.png")).abs().max(), 1.0);
  for (const std::string colour : {"'#c08040'", "c08040"}) {
    ExpectDone("tonemap a.exr --overwrite -o over.png --alpha " + colour);
    const VImage over = kept.flatten(VImage::option()->set("background", std::vector<double>{192, 128, 64}));
    EXPECT_LE((VImage::new_from_file("over.png") - over).abs().max(), 1.0);
  }
  ExpectDone("tonemap a.exr -o over.tif --depth 16 --colorspace prophoto --alpha c08040");
  const auto corner = VImage::new_from_file("over.tif").icc_transform("srgb").getpoint(0, 0);
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(corner[static_cast<std::size_t>(i)], 192 - 64 * i, 0.5) << i;
  ExpectFailure(2, "tonemap a.exr --overwrite -o over.png --alpha orange", "--alpha: ");
  // and the choice is kept with the result
  ExpectDone("tonemap a.tif -o again.png --settings-from over.png");
  EXPECT_EQ(Load("again.png").fShape[2], 3);
}

/// An outlier is repaired like +infinity, in every format of floats.
TEST_F(ReadingTool, RepairsOutliersOfEveryFormat) {
  const auto spot = [](float pLight) {
    sTestPicture scene = MakeScene(60, 80);
    std::fill_n(scene.GetPixel(31, 40), 3, pLight);
    return scene;
  };
  WritePfm("infinite.pfm", spot(kInfinity));
  const std::vector<float> expected = SamplesOf(ReadPicture("infinite.pfm"));
  const sTestPicture outlier = spot(1e20f);
  WritePfm("a.pfm", outlier);
  WriteExr("a.exr", outlier);
  WriteRadiance("a.hdr", outlier);
  ToVipsFloat(outlier).tiffsave("a.tif");
  for (const char* const file : {"a.pfm", "a.exr", "a.hdr", "a.tif"}) {
    const sPicture picture = ReadPicture(file);
    EXPECT_EQ(picture.fRepairs.fOutliers, 1) << file;
    EXPECT_EQ(picture.fWarnings.size(), 1u) << file;
    EXPECT_EQ(SamplesOf(picture) == expected, file[2] != 'h') << file;  // whose samples have 8 bits
  }
}

TEST_F(ReadingTool, ExrPicturesAreTheirDisplayWindow) {
  const sTestPicture scene = MakeScene(48, 32);
  WriteExr("whole.exr", scene);
  const sPicture whole = ReadPicture("whole.exr");
  const struct {
    Imath::V2i fAt;
    Imath::Box2i fDisplay;
    Imath::V2i fSize;
    bool fHasAlpha;
    std::size_t fWarnings;
  } cases[] = {{{-5, 7}, {{-5, 7}, {42, 38}}, {48, 32}, false, 0},
               {{-5, 7}, {{0, 9}, {30, 20}}, {31, 12}, false, 1},
               {{10, 20}, {{0, 0}, {99, 79}}, {100, 80}, true, 1},
               {{10, 20}, {{30, 0}, {99, 40}}, {70, 41}, true, 1},
               {{0, 0}, {{500, 500}, {600, 600}}, {48, 32}, false, 1},
               {{0, 0}, {{0, 0}, {100000, 100000}}, {48, 32}, false, 1}};
  for (const auto& row : cases) {
    for (const bool isTiled : {false, true}) {
      WriteExr("a.exr", scene, {.fTiled = isTiled, .fAt = row.fAt, .fDisplay = row.fDisplay});
      const sPicture picture = ReadPicture("a.exr");
      ASSERT_EQ(picture.fBitmap->GetWidth(), row.fSize.x);
      ASSERT_EQ(picture.fBitmap->GetHeight(), row.fSize.y);
      EXPECT_EQ(!picture.fAlpha.empty(), row.fHasAlpha);
      EXPECT_EQ(picture.fWarnings.size(), row.fWarnings);
      const bool isWhole = row.fSize == Imath::V2i(48, 32);
      for (int y = 0; y < row.fSize.y; ++y) {
        for (int x = 0; x < row.fSize.x; ++x) {
          const Imath::V2i at = isWhole ? Imath::V2i(x, y) : row.fDisplay.min + Imath::V2i(x, y) - row.fAt;
          const bool isStored = at.x >= 0 && at.x < 48 && at.y >= 0 && at.y < 32;
          const float expected = isStored ? Photo::GetRow(whole, at.y)[3 * at.x + 1] : 0.0f;
          ASSERT_EQ(Photo::GetRow(picture, y)[3 * x + 1], expected) << x << ' ' << y;
          if (!row.fHasAlpha) continue;
          ASSERT_EQ(picture.fAlpha[static_cast<std::size_t>(y * row.fSize.x + x)], isStored ? 65535 : 0);
        }
      }
    }
  }
  // an environment map is its data window, whatever is displayed
  WriteExr("a.exr", scene, {.fDisplay = {{4, 4}, {9, 9}}, .fIsPanorama = true});
  EXPECT_TRUE(ReadPicture("a.exr").fIsPanorama);
  EXPECT_EQ(ReadPicture("a.exr").fBitmap->GetWidth(), 48);
  WriteExr("a.exr", scene, {.fAspect = 2.0f});
  EXPECT_TRUE(Has(ReadPicture("a.exr").fWarnings.at(0), "2 times as wide as high"));
}

TEST_F(ReadingTool, ChoosesPartsAndLayersOfExr) {
  const sTestPicture scene = MakeScene(48, 32);
  WriteExr("plain.exr", scene);
  const sPicture plain = ReadPicture("plain.exr");
  sTestPicture half = scene;
  for (float& sample : half.fSamples) sample *= 0.5f;
  WriteExr("layers.exr", half, {.fChannels = {"spec.R", "spec.G", "spec.B"}});
  EXPECT_NEAR(Compare(plain, ReadPicture("layers.exr", {"", "spec"})), 0.5, 1e-9);
  WriteExrParts("parts.exr", scene, false);
  EXPECT_TRUE(Has(ReadPicture("parts.exr").fWarnings.at(0), "part 0 (depth), part 2 (small)"));
  for (const char* const part : {"1", "colour"}) {
    EXPECT_LE(Compare(plain, ReadPicture("parts.exr", {part, ""})), 1.3e-4) << part;
  }
  const std::pair<std::string, const char*> refused[] = {
      {"parts.exr --part 3",
       "parts.exr: has no part 3; it has part 0 (depth), part 1 (colour), part 2 (small)"},
      {"parts.exr --part 0", "parts.exr: it has neither the channels R, G, B nor a channel Y (it has: Z)"},
      {"parts.exr --layer spec", "parts.exr: has no layer spec with colours"},
      {"layers.exr", "layers.exr: it has neither the channels"},
      {"layers.exr --layer diffuse",
       "layers.exr: has no layer diffuse with colours (R, G, B or Y); layers with colours: spec"},
      {"plain.hdr --part 1", "plain.hdr: is not OpenEXR"}};
  WriteRadiance("plain.hdr", scene);
  for (const auto& [arguments, text] : refused) ExpectFailure(3, "tonemap -o out.png " + arguments, text);
}

/// Chroma at half the resolution, and Radiance by another name.
TEST_F(ReadingTool, ReadsLuminanceChromaAndShortRadianceNames) {
  const sTestPicture scene = MakeScene(64, 48);
  WriteExr("plain.exr", scene);
  WriteExrChroma("chroma.exr", scene);
  const sPicture chroma = ReadPicture("chroma.exr");
  EXPECT_LE(Compare(ReadPicture("plain.exr"), chroma), 0.002);
  EXPECT_EQ(chroma.fFileDepth, 16);
  WriteRadiance("a.hdr", scene);
  for (const char* const name : {"#?RGBE", "#?RGBE\r"}) {
    for (const char* const order : {"-Y 48 +X 64", "+Y 48 +X 64"}) {
      WriteRadiance("a.hdr", scene, "", order);
      WriteRadiance("b.hdr", scene, "", order, name);
      EXPECT_EQ(Compare(ReadPicture("a.hdr"), ReadPicture("b.hdr")), 0.0) << name << order;
    }
  }
}

TEST_F(ReadingTool, PicturesWithoutContrastGivePictures) {
  for (const float light : {0.18f, 1e9f, 0.0f, kNaN}) {
    for (const int size : {1, 24}) {
      sTestPicture flat = MakeScene(2 * size, size);
      std::fill(flat.fSamples.begin(), flat.fSamples.end(), light);
      WriteExr("flat.exr", flat);
      Expect(0, "tonemap flat.exr --overwrite -o flat.png");
      EXPECT_EQ(Load("flat.png").fShape[0], 2 * size);
      EXPECT_EQ(VImage::new_from_file("flat.png").max() > 0.0, light > 0.0f) << light;
    }
  }
  ToVips8(MakeScene()).bandjoin_const({0.0}).pngsave("clear.png");
  Expect(0, "tonemap clear.png -o out.png");
  EXPECT_EQ(VImage::new_from_file("out.png").extract_band(0, VImage::option()->set("n", 3)).max(), 0.0);
}

TEST_F(ReadingTool, RefusesWhatIsBrokenOrUnknown) {
  const VImage of8 = ToVips8(MakeScene(200, 150));
  WriteExrParts("a.exr", MakeScene(200, 150), true);
  of8.webpsave("a.webp");
  of8.heifsave("a.avif", VImage::option()->set("compression", VIPS_FOREIGN_HEIF_COMPRESSION_AV1));
  of8.heifsave("a.heic", VImage::option()->set("compression", VIPS_FOREIGN_HEIF_COMPRESSION_HEVC));
  of8.jxlsave("a.jxl");
  of8.pngsave("a.png");
  of8.jpegsave("a.jpg");
  of8.write_to_file("a.tif[compression=lzw]");
  WritePfm("a.pfm", MakeScene(200, 150));
  WriteRadiance("a.hdr", MakeScene(200, 150));
  for (const char* extension : {"exr", "webp", "avif", "heic", "jxl", "png", "jpg", "tif", "pfm", "hdr"}) {
    const std::string whole = ReadText(std::string("a.") + extension);
    Expect(0, std::string("tonemap a.") + extension + " --overwrite -o out.png");
    for (const std::size_t size : {whole.size() / 20, whole.size() / 2}) {
      WriteText("cut", whole.substr(0, size));
      ExpectFailure(3, "tonemap cut --overwrite -o out.png", "cut: ");
    }
  }
  WriteText("a.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>");
  ExpectFailure(3, "tonemap a.svg -o b.png", "a.svg: not a picture of a known format");
}

TEST_F(ReadingTool, RefusesRowsThatAreTooLong) {
  const auto write = [](const char* pFile, int pWidth, int pHeight) {
    std::ofstream(pFile, std::ios::binary)
        << "Pf\n"
        << pWidth << ' ' << pHeight << "\n-1.0\n"
        << std::string(std::size_t{4} * 748984, '\x3d').substr(0, std::size_t{4} * pWidth * pHeight);
  };
  write("wide.pfm", 748981, 1);
  write("longest.pfm", 748980, 1);
  const sRun run = ExpectFailure(5, "tonemap wide.pfm -o wide.jpg",
                                 "wide.pfm: is 748981 pixels wide, and at most 748980 are possible");
  EXPECT_TRUE(Has(run.fErrors, "turn it by 90 degrees"));
  for (const char* const job : {"longest.pfm", "wide.pfm --preview 1000"})
    Expect(0, std::string("tonemap --overwrite -o a.tif ") + job);
}

TEST_F(ReadingTool, RolledPanoramasGiveTheRolledResult) {
  const std::string options = " --overwrite --wrap horizontal --depth 16 --tone-compression 20";
  for (const int width : {160, 230}) {  // the grid's cells are 4 and 5.75 pixels wide
    const sTestPicture scene = MakePanorama(width);
    WritePfm("a.pfm", scene);
    ExpectDone("tonemap a.pfm -o a.tif" + options);
    const VImage expected = VImage::new_from_file("a.tif");
    for (const int by : {1, 23, 80}) {
      WritePfm("b.pfm", Roll(scene, by));
      ExpectDone("tonemap b.pfm -o b.tif" + options);
      const VImage back =
          VImage::new_from_file("b.tif").wrap(VImage::option()->set("x", width - by)->set("y", 0));
      EXPECT_EQ((back - expected).abs().max(), 0.0) << width << ' ' << by;
    }
  }
}

TEST_F(ReadingTool, RecognisesPanoramasByTheirMetadata) {
  VImage tagged = ToVips8(MakeScene(40, 30)).copy();
  SetBlob(tagged, VIPS_META_XMP_NAME, "<GPano:ProjectionType>equirectangular</GPano:ProjectionType>");
  tagged.jpegsave("tagged.jpg");
  EXPECT_TRUE(ReadPicture("tagged.jpg").fIsPanorama);
}

}  // namespace
