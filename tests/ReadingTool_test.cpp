#include <OpenEXR/ImfEnvmap.h>
#include <gtest/gtest.h>

#include <numeric>

#include "cli/Alpha.h"
#include "cli/Failure.h"
#include "cli/Panorama.h"
#include "cli/PictureReader.h"
#include "cli/TonemapPicture.h"
#include "tests/Numbers.h"
#include "tests/cli/TestPictures.h"
#include "tests/cli/ToolTest.h"

// How files become what the engine takes, and panoramas through the built tool.

namespace {

using Cli::ReadPicture;
using Cli::sPicture;

class ReadingTool : public cToolTest {
 protected:
  static void SetUpTestSuite() {
    setenv("VIPS_WARNING", "0", 1);  // libvips is silent, as in the tool
    cToolTest::SetUpTestSuite();
  }
};

std::vector<float> SamplesOf(const sPicture& pPicture) {
  std::vector<float> samples;
  for (int y = 0; y < pPicture.fBitmap->GetHeight(); ++y) {
    const float* const row = Cli::GetRow(pPicture, y);
    samples.insert(samples.end(), row, row + 3 * pPicture.fBitmap->GetWidth());
  }
  return samples;
}

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

TEST_F(ReadingTool, TellsWhatEachFormatHolds) {
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
  of16.jxlsave("16.jxl", VImage::option()->set("lossless", true));
  of8.jxlsave("8.jxl", VImage::option()->set("lossless", true));
  of8.webpsave("8.webp", VImage::option()->set("lossless", true));
  const auto heif = [](VipsForeignHeifCompression pCodec, int pBits) {
    return VImage::option()->set("compression", pCodec)->set("bitdepth", pBits)->set("Q", 98);
  };
  of8.heifsave("8.avif", heif(VIPS_FOREIGN_HEIF_COMPRESSION_AV1, 8));
  of16.heifsave("12.avif", heif(VIPS_FOREIGN_HEIF_COMPRESSION_AV1, 12));
  of16.heifsave("10.heic", heif(VIPS_FOREIGN_HEIF_COMPRESSION_HEVC, 10));
  const char* const linear = "linear light, sRGB primaries";
  const struct {
    const char* fFile;
    const char* fFormat;
    int fDepth;
    const char* fColorSpace;
    double fTolerance;
  } cases[] = {{"a.hdr", "Radiance", 32, linear, 0.01},
               {"a.exr", "OpenEXR", 32, linear, 0.0},
               {"parts.exr", "OpenEXR", 16, linear, 1e-3},
               {"tiles.exr", "OpenEXR", 16, linear, 1e-3},
               {"float.tif", "TIFF", 32, linear, 0.0},
               {"float.jxl", "JPEG XL", 32, "RGB_D65_SRG_Rel_Lin (ICC)", 1e-4},
               {"16.jxl", "JPEG XL", 16, "RGB_D65_SRG_Rel_SRG (ICC)", 1e-3},
               {"8.jxl", "JPEG XL", 8, "RGB_D65_SRG_Rel_SRG (ICC)", 0.02},
               {"8.webp", "WebP", 8, "sRGB", 0.02},
               {"8.avif", "AVIF", 8, "sRGB", 0.1},  // colours at half the resolution
               {"12.avif", "AVIF", 12, "sRGB", 0.1},
               {"10.heic", "HEIF", 10, "sRGB", 0.1}};
  const sPicture expected = ReadPicture("a.pfm");
  EXPECT_EQ(expected.fFormat, "PFM");
  for (const auto& row : cases) {
    const sPicture picture = ReadPicture(row.fFile);
    EXPECT_EQ(picture.fFormat, row.fFormat) << row.fFile;
    EXPECT_EQ(picture.fFileDepth, row.fDepth) << row.fFile;
    EXPECT_EQ(picture.fColorSpace, row.fColorSpace) << row.fFile;
    EXPECT_LE(Compare(expected, picture), row.fTolerance) << row.fFile;
    EXPECT_TRUE(picture.fWarnings.empty()) << row.fFile << picture.fWarnings.front();
  }
}

/// The file with other bytes at pAt behind pName.
void Patch(const std::string& pFrom, const std::string& pTo, const std::string& pName, std::size_t pAt,
           const std::string& pBytes) {
  std::string file = ReadText(pFrom);
  file.replace(file.find(pName) + pName.size() + pAt, pBytes.size(), pBytes);
  std::ofstream(pTo, std::ios::binary) << file;
}

TEST_F(ReadingTool, DecodesPQAndHLG) {
  const VImage grey = (VImage::black(32, 32, VImage::option()->set("bands", 3)) + 0.5806 * 65535.0)
                          .cast(VIPS_FORMAT_USHORT)
                          .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_RGB16));
  grey.heifsave("a.avif", VImage::option()
                              ->set("compression", VIPS_FOREIGN_HEIF_COMPRESSION_AV1)
                              ->set("bitdepth", 12)
                              ->set("Q", 100));
  const struct {
    std::string fCodes;
    const char* fColorSpace;
    float fLight;
  } cases[] = {{{0, 9, 0, 16}, "Rec. 2020 PQ", 1.0f},  // 58.06 % are 203 candela
               {{0, 12, 0, 18}, "Display P3 HLG", 0.4426f},
               {{0, 1, 0, 8}, "sRGB linear", 0.5806f}};
  for (const auto& row : cases) {
    Patch("a.avif", "coded.avif", "colrnclx", 0, row.fCodes);
    const sPicture picture = ReadPicture("coded.avif");
    EXPECT_EQ(picture.fColorSpace, row.fColorSpace);
    EXPECT_NEAR(Cli::GetRow(picture, 16)[3 * 16 + 1], row.fLight, 0.01f) << row.fColorSpace;
  }
  Patch("a.avif", "odd.avif", "colrnclx", 0, {0, 9, 0, 77});
  EXPECT_EQ(ReadPicture("odd.avif").fWarnings.size(), 1u);
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
  EXPECT_NEAR(Cli::GetRow(picture, 3)[3 * 3 + 1], xyz[1], 0.01f * xyz[1]);
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

TEST_F(ReadingTool, UndoesWhatExrMultipliesIntoItsColours) {
  sTestPicture stored{4, 1, {0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f}};
  std::vector<float> alpha = {0.25f, 0.0f, 1.0f, kNaN};
  Imf::Header header(4, 1);
  Imf::FrameBuffer frame;
  for (int i = 0; i < 3; ++i) {
    const char* const name = i == 0 ? "R" : i == 1 ? "G" : "B";
    header.channels().insert(name, Imf::Channel(Imf::FLOAT));
    frame.insert(name, Imf::Slice(Imf::FLOAT, reinterpret_cast<char*>(&stored.fSamples[0] + i), 12, 48));
  }
  header.channels().insert("A", Imf::Channel(Imf::FLOAT));
  frame.insert("A", Imf::Slice(Imf::FLOAT, reinterpret_cast<char*>(alpha.data()), 4, 16));
  Imf::addEnvmap(header, Imf::ENVMAP_LATLONG);
  {
    Imf::OutputFile file("a.exr", header);
    file.setFrameBuffer(frame);
    file.writePixels(1);
  }
  const sPicture picture = ReadPicture("a.exr");
  const float* const row = Cli::GetRow(picture, 0);
  EXPECT_NEAR(row[1], 2.0f, 1e-5f);
  for (int x = 1; x < 4; ++x) EXPECT_NEAR(row[3 * x + 1], 0.5f, 1e-5f);
  EXPECT_EQ(picture.fAlpha, (std::vector<std::uint16_t>{16384, 0, 65535, 0}));
  EXPECT_TRUE(picture.fIsPanorama);
}

/// What lies under full transparency is never seen, and what is seen does not depend on it.
TEST_F(ReadingTool, TransparentPixelsDoNotCount) {
  const sTestPicture scene = MakeScene(60, 40);
  std::vector<unsigned short> alpha(60 * 40, 65535);
  for (std::size_t i = 0; i < alpha.size(); i += 3) alpha[i] = 0;
  const VImage mask = ToVips(alpha, 60, 1, VIPS_FORMAT_USHORT);
  std::vector<sStored> results;
  for (const float hidden : {0.0f, 1.0f}) {
    sTestPicture other = scene;
    for (std::size_t i = 0; i < alpha.size(); i += 3) std::fill_n(&other.fSamples[3 * i], 3, hidden);
    ToVips16(other).bandjoin(mask).pngsave("a.png");
    ASSERT_EQ(Run("tonemap a.png --overwrite -o out.png").fExitCode, 0);
    results.push_back(Load("out.png"));
  }
  EXPECT_EQ(results[0].fSamples, results[1].fSamples);
  sPicture picture = ReadPicture("a.png");
  const std::vector<float> before = SamplesOf(picture);
  Cli::HideTransparent(picture);
  const std::vector<float> after = SamplesOf(picture);
  double visible = 0.0;
  double all = 0.0;
  for (std::size_t i = 0; i < alpha.size(); ++i) {
    if (alpha[i] != 0) visible += static_cast<double>(before[3 * i + 1]) / 1600.0;
    all += static_cast<double>(after[3 * i + 1]) / 2400.0;
  }
  EXPECT_NEAR(all, visible, 0.02 * visible);
  const auto bands = static_cast<std::size_t>(results[0].fShape[2]);
  for (std::size_t i = 0; i < alpha.size(); i += 3) ASSERT_EQ(results[0].fSamples[bands * i], 0.0);
}

TEST_F(ReadingTool, CountsWhatItRepairs) {
  sTestPicture scene = MakeScene(40, 30);
  std::fill_n(scene.GetPixel(5, 2), 3, kInfinity);  // before the largest sample is known
  scene.GetPixel(6, 2)[0] = kNaN;
  scene.GetPixel(7, 2)[1] = -kInfinity;
  scene.GetPixel(8, 2)[2] = 1e35f;
  std::fill_n(scene.GetPixel(9, 20), 3, -0.01f);
  scene.GetPixel(10, 20)[0] = -1e-3f;
  std::fill_n(scene.GetPixel(11, 29), 3, 500.0f);
  WriteExr("a.exr", scene);
  const sPicture picture = ReadPicture("a.exr");
  EXPECT_EQ(picture.fRepairs.fNaN, 1);
  EXPECT_EQ(picture.fRepairs.fInfinite, 3);
  EXPECT_GE(picture.fRepairs.fNegative, 2);
  EXPECT_NEAR(Cli::GetRow(picture, 2)[3 * 5 + 1], 500.0f, 0.01f);
  EXPECT_EQ(picture.fWarnings.size(), 1u);
  for (const float sample : SamplesOf(picture)) ASSERT_TRUE(std::isfinite(sample) && sample > -1e-6f);
}

TEST_F(ReadingTool, RowsThatAreRenderedAsTheyComeGiveTheSame) {
  sTestPicture scene = MakeScene(300, 900);
  const auto tonemap = [](const std::string& pInput) {
    Cli::sTonemapJob job;
    job.fInput = pInput;
    job.fOutput = pInput + ".png";
    job.fExisting = Cli::eExisting::kReplace;
    return Cli::TonemapPicture(job);
  };
  for (const float odd : {0.5f, std::nanf(""), kInfinity}) {  // which needs all rows first
    scene.GetPixel(123, 456)[1] = odd;
    WritePfm("whole.pfm", scene);
    ToVipsFloat(scene).tiffsave("rows.tif");
    const Cli::sPictureReport whole = tonemap("whole.pfm");
    const Cli::sPictureReport rows = tonemap("rows.tif");
    EXPECT_EQ(Load("rows.tif.png").fSamples, Load("whole.pfm.png").fSamples) << odd;
    EXPECT_EQ(rows.fDynamicRange, whole.fDynamicRange) << odd;
    EXPECT_EQ(rows.fWarnings, whole.fWarnings) << odd;
    EXPECT_EQ(rows.fColorSpace, whole.fColorSpace);
    EXPECT_EQ(rows.fRendering.fWhiteShare, whole.fRendering.fWhiteShare) << odd;
    EXPECT_GE(rows.fRendering.fSeconds.fPreparation, 0.0);
  }
}

TEST_F(ReadingTool, PicturesWithoutContrastGivePictures) {
  for (const float light : {0.0f, 0.18f, 1e9f}) {
    for (const int size : {1, 24}) {
      sTestPicture flat = MakeScene(2 * size, size);
      std::fill(flat.fSamples.begin(), flat.fSamples.end(), light);
      WriteExr("flat.exr", flat);
      ASSERT_EQ(Run("tonemap flat.exr --overwrite -o flat.png").fExitCode, 0) << light << ' ' << size;
      EXPECT_EQ(Load("flat.png").fShape[0], 2 * size);
    }
  }
  ToVips8(MakeScene()).bandjoin_const({0.0}).pngsave("clear.png");
  ASSERT_EQ(Run("tonemap clear.png --overwrite -o out.png").fExitCode, 0);
  EXPECT_EQ(VImage::new_from_file("out.png").extract_band(0, VImage::option()->set("n", 3)).max(), 0.0);
}

TEST_F(ReadingTool, RefusesWhatIsBrokenOrUnknown) {
  const VImage of8 = ToVips8(MakeScene(200, 150));
  WriteExrParts("a.exr", MakeScene(200, 150), true);
  of8.webpsave("a.webp");
  of8.heifsave("a.avif", VImage::option()->set("compression", VIPS_FOREIGN_HEIF_COMPRESSION_AV1));
  of8.heifsave("a.heic", VImage::option()->set("compression", VIPS_FOREIGN_HEIF_COMPRESSION_HEVC));
  of8.jxlsave("a.jxl");
  for (const char* ending : {"exr", "webp", "avif", "heic", "jxl"}) {
    const std::string whole = ReadText(std::string("a.") + ending);
    ASSERT_EQ(Run(std::string("tonemap a.") + ending + " --overwrite -o out.png").fExitCode, 0) << ending;
    for (const std::size_t size : {whole.size() / 20, whole.size() / 2}) {
      std::ofstream("cut", std::ios::binary) << whole.substr(0, size);
      const sRun run = Run("tonemap cut --overwrite -o out.png");
      EXPECT_EQ(run.fExitCode, 3) << ending << ' ' << size;
      EXPECT_EQ(run.fErrors.rfind("quorvane: cut: ", 0), 0u) << run.fErrors;
    }
  }
  std::ofstream("a.svg") << "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>";
  EXPECT_NE(Run("tonemap a.svg --overwrite -o out.png").fErrors.find("not a picture of a known format"),
            std::string::npos);
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
  const sRun run = Run("tonemap wide.pfm -o wide.jpg");
  EXPECT_EQ(run.fExitCode, 5);
  EXPECT_NE(run.fErrors.find("wide.pfm: is 748981 pixels wide, and at most 748980 are possible"),
            std::string::npos)
      << run.fErrors;
  EXPECT_NE(run.fErrors.find("turn it by 90 degrees"), std::string::npos) << run.fErrors;
  for (const char* const job : {"longest.pfm", "wide.pfm --preview 1000"})
    EXPECT_EQ(Run(std::string("tonemap --overwrite -o a.tif ") + job).fExitCode, 0) << job;
}

/// A scene that goes on around its edges, with sharp borders of light all over.
sTestPicture MakePanorama(int pWidth) {
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

TEST_F(ReadingTool, RolledPanoramasGiveTheRolledResult) {
  for (const int width : {160, 230}) {  // the grid's cells are 4 and 5.75 pixels wide
    const sTestPicture scene = MakePanorama(width);
    WritePfm("a.pfm", scene);
    ASSERT_EQ(Run("tonemap a.pfm --overwrite -o a.tif --wrap horizontal --depth 16 --tone-compression 20")
                  .fExitCode,
              0);
    const VImage expected = VImage::new_from_file("a.tif");
    for (const int by : {1, 23, 80}) {
      WritePfm("b.pfm", Roll(scene, by));
      ASSERT_EQ(Run("tonemap b.pfm --overwrite -o b.tif --wrap horizontal --depth 16 --tone-compression 20")
                    .fExitCode,
                0);
      const VImage back =
          VImage::new_from_file("b.tif").wrap(VImage::option()->set("x", width - by)->set("y", 0));
      EXPECT_EQ((back - expected).abs().max(), 0.0) << width << ' ' << by;
    }
  }
}

TEST_F(ReadingTool, KnowsPanoramas) {
  const auto tells = [](const sTestPicture& pPicture) {
    WriteExr("a.exr", pPicture);
    return Cli::ChooseWrap(Cli::eWrap::kAuto, ReadPicture("a.exr"));
  };
  const sTestPicture panorama = MakePanorama(256);
  for (const int by : {0, 50, 150}) EXPECT_TRUE(tells(Roll(panorama, by))) << by;
  EXPECT_FALSE(tells(MakeScene(256, 128)));
  sTestPicture half = MakePanorama(512);  // its left half, of the same shape
  for (int y = 0; y < 128; ++y)
    std::copy_n(half.GetPixel(0, 2 * y), 3 * 256, half.fSamples.data() + 3 * 256 * y);
  half.fWidth = 256;
  half.fHeight = 128;
  half.fSamples.resize(std::size_t{3} * 256 * 128);
  EXPECT_FALSE(tells(half));
  const std::string type = "<GPano:ProjectionType>equirectangular</GPano:ProjectionType>";
  EXPECT_TRUE(Cli::StatesPanorama(type));
  EXPECT_TRUE(
      Cli::StatesPanorama("GPano:CroppedAreaImageWidthPixels=\"80\" GPano:FullPanoWidthPixels='80' " + type));
  EXPECT_FALSE(
      Cli::StatesPanorama("GPano:CroppedAreaImageWidthPixels=\"40\" GPano:FullPanoWidthPixels='80' " + type));
  EXPECT_FALSE(Cli::StatesPanorama("GPano:ProjectionType=\"cylindrical\""));
  VImage tagged = ToVips8(MakeScene(40, 30)).copy();
  vips_image_set_blob_copy(tagged.get_image(), VIPS_META_XMP_NAME, type.data(), type.size());
  tagged.jpegsave("tagged.jpg");
  EXPECT_TRUE(ReadPicture("tagged.jpg").fIsPanorama);
}

}  // namespace
