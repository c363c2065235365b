#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <thread>

#include "engine/ToneMapImage.h"
#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapXYZ32.h"
#include "engine/image/cImageUtils.h"
#include "export/HostSettings.h"
#include "tests/cli/ToolTest.h"
#include "tests/photo/TestPictures.h"

// The built tool, end to end: it is run in a folder of its own, on pictures made here.

namespace {

class QuorvaneTool : public cToolTest {
 protected:
  /// Expects success, without a word but pWarning, and returns the result.
  static sStored ToneMap(const std::string& pInput, const std::string& pOptions = "",
                         const std::string& pOutput = "result.png", const std::string& pWarning = "") {
    ExpectDone("tonemap " + pInput + " -o " + pOutput + " --overwrite " + pOptions,
               pWarning.empty() ? "" : "quorvane: " + pInput + ": warning: " + pWarning + "\n");
    return Load(pOutput);
  }
};

/// What the engine itself makes of a picture with sRGB primaries.
std::vector<double> RenderDirectly(const sTestPicture& pPicture, tm_quorvane_settings pSettings,
                                   TmEngine::eColorSpaceID pColorSpace) {
  TmEngine::cBitmapXYZ32 input(pPicture.fWidth, pPicture.fHeight);
  input.CopyFromXYZ32(pPicture.fWidth, pPicture.fHeight, 12 * pPicture.fWidth, pPicture.fSamples.data());
  TmEngine::cImageUtils::ColorTransform(&input, TmEngine::cColorSpace_sRGB().GetRGBToXYZ());
  TmEngine::cBitmapBGR16 output(pPicture.fWidth, pPicture.fHeight, pColorSpace);
  TmEngine::ToneMapImage(input, &output, MapSettings(pSettings), false);
  std::vector<double> samples;
  for (int y = 0; y < pPicture.fHeight; ++y) {
    const unsigned short* pixel = output.GetBGR16Data() + output.GetStride() / 2 * y;
    for (int x = 0; x < pPicture.fWidth; ++x, pixel += 3) {
      for (int i = 2; i >= 0; --i) samples.push_back(pixel[i]);
    }
  }
  return samples;
}

TEST_F(QuorvaneTool, HandsSlidersAndFlagsToTheEngine) {
  const sTestPicture scene = MakeScene(53, 31);  // rows with padding
  WritePfm("scene.pfm", scene);
  tm_quorvane_settings settings{};
  settings.strength = 70.0f;
  settings.white_clip = 5.0f;
  settings.black_clip = 0.1f;
  EXPECT_EQ(ToneMap("scene.pfm", "--depth 16 --rendering engine", "a.tif").fSamples,
            RenderDirectly(scene, settings, TmEngine::eColorSpaceID_sRGB));
  settings = {-30.0f, 4.0f, 12.0f, 60.0f, 2.0f, -3.0f, {}, 0.0f, {}, 1.0f};
  const sStored result = ToneMap(
      "scene.pfm",
      "--strength -30 --lighting=4 --tone-compression 12 --white-clip 60 --black-clip 2 --microcontrast -3 "
      "--wrap horizontal --depth 16 --colorspace prophoto --rendering engine");
  int matches = 0;  // the tool begins with a column of its own choice
  for (int by = 0; by < scene.fWidth; ++by) {
    const auto rolled = RenderDirectly(Roll(scene, by), settings, TmEngine::eColorSpaceID_ProPhotoRGB);
    matches += RollRows(rolled, scene.fWidth, scene.fWidth - by) == result.fSamples ? 1 : 0;
  }
  EXPECT_EQ(matches, 1);
}

TEST_F(QuorvaneTool, TakesPrimariesFromTheHeader) {
  const sTestPicture scene = MakeScene();
  sTestPicture inXYZ = scene;  // the same light in XYZ: D65's white is as bright as sRGB's
  const TmEngine::cMatrix33 matrix = TmEngine::cColorSpace_sRGB().GetRGBToXYZNative();
  for (std::size_t i = 0; i < inXYZ.fSamples.size(); i += 3) {
    const TmEngine::cVector3 xyz =
        matrix * TmEngine::cVector3(scene.fSamples[i], scene.fSamples[i + 1], scene.fSamples[i + 2]);
    // XYZ whose white is (1, 1, 1) where RGB's is
    inXYZ.fSamples[i] = xyz[0] / 0.95044f;
    inXYZ.fSamples[i + 1] = xyz[1];
    inXYZ.fSamples[i + 2] = xyz[2] / 1.08892f;
  }
  const std::vector<float> xyz65 = {1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f, 0.31271f, 0.32902f};
  WriteExr("plain.exr", scene);
  WriteExr("xyz.exr", inXYZ, {{"R", "G", "B"}, false, xyz65});
  WriteExr("zeros.exr", scene, {{"R", "G", "B"}, false, std::vector<float>(8, 0.0f)});
  WriteExr("nonsense.exr", scene, {{"R", "G", "B"}, false, {0.3f, 0.3f, 0.4f, 0.4f, 0.5f, 0.5f, 0.3f, 0.3f}});
  WriteRadiance("xyz.hdr", inXYZ, "PRIMARIES= 1 0 0 1 0 0 .31271 .32902\nFORMAT=32-bit_rle_rgbe\n");
  const sStored expected = ToneMap("plain.exr");
  EXPECT_LT(MeanDifference(ToneMap("xyz.exr"), expected), 0.002);
  EXPECT_LT(MeanDifference(ToneMap("xyz.hdr"), expected), 0.3);
  EXPECT_EQ(ToneMap("zeros.exr").fSamples, expected.fSamples);
  EXPECT_EQ(ToneMap("nonsense.exr", "", "out.png",
                    "its header states primaries that span no colour space; sRGB is taken")
                .fSamples,
            expected.fSamples);
}

TEST_F(QuorvaneTool, HonoursExposureAndRowOrderOfRadianceFiles) {
  const sTestPicture scene = MakeScene(24, 20);
  sTestPicture bright = scene;
  for (float& sample : bright.fSamples) sample *= 8.0f;
  WriteRadiance("plain.hdr", scene);
  WriteRadiance("bright.hdr", bright, "EXPOSURE=4\nFORMAT=32-bit_rle_rgbe\nCOLORCORR=2 2 2\n");
  const std::string compress = "--tone-compression 20";  // the setting that looks at absolute light
  EXPECT_EQ(ToneMap("bright.hdr", compress).fSamples, ToneMap("plain.hdr", compress).fSamples);
  WriteRadiance("tall.hdr", scene, "", "-X 20 -Y 24");  // a stored row is a column, from the right
  VImage::new_from_file("plain.hdr").rad2float().rot90().tiffsave("rot90.tif");
  EXPECT_EQ(ToneMap("tall.hdr").fSamples, ToneMap("rot90.tif").fSamples);
}

TEST_F(QuorvaneTool, TurnsPicturesUpright) {
  const VImage scene = ToVips16(MakeScene());
  for (int orientation = 1; orientation <= 8; ++orientation) {
    VImage image = scene.copy();
    image.set(VIPS_META_ORIENTATION, orientation);
    image.tiffsave("stored.tif");
    image.autorot().tiffsave("upright.tif");
    const sStored result = ToneMap("stored.tif");
    EXPECT_EQ(result.fShape[0], orientation >= 5 ? 32 : 48);
    EXPECT_EQ(result.fSamples, ToneMap("upright.tif").fSamples) << orientation;
  }
}

TEST_F(QuorvaneTool, DecodesThroughTheEmbeddedProfile) {
  const VImage scene = ToVips16(MakeScene(48, 32, 2.0f));
  const std::string profile = ProfileOf(TmEngine::cColorSpace_ProPhotoRGB::GetIccProfile());
  WriteText("wide.icc", profile);
  scene.tiffsave("plain.tif");
  scene.icc_transform("wide.icc", VImage::option()->set("input_profile", "srgb")->set("depth", 16))
      .tiffsave("wide.tif");
  const sStored expected = ToneMap("plain.tif");
  EXPECT_LT(MeanDifference(ToneMap("wide.tif"), expected), 0.14);  // two conversions to 16 bits
  const VImage broken = scene.copy();
  SetBlob(broken, VIPS_META_ICC_NAME, profile.substr(0, 200));
  broken.tiffsave("broken.tif");
  EXPECT_EQ(
      ToneMap("broken.tif", "", "out.png", "its colour profile is damaged or unfit; taken as sRGB").fSamples,
      expected.fSamples);
}

TEST_F(QuorvaneTool, ReadsGreyPaletteAndInks) {
  sTestPicture grey = MakeScene();
  for (std::size_t i = 0; i < grey.fSamples.size(); i += 3)
    grey.fSamples[i + 1] = grey.fSamples[i + 2] = grey.fSamples[i];
  WriteExr("grey.exr", grey);
  WriteExr("y.exr", grey, {{"Y"}, false, {}});
  EXPECT_EQ(ToneMap("y.exr").fSamples, ToneMap("grey.exr").fSamples);
  ToVips8(grey).tiffsave("three.tif");
  ToVips8(grey)[0].copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_B_W)).tiffsave("one.tif");
  EXPECT_EQ(ToneMap("one.tif").fSamples, ToneMap("three.tif").fSamples);
  const VImage colours = ToVips8(MakeScene(48, 32, 2.0f));
  colours.pngsave("full.png");
  colours.pngsave("palette.png", VImage::option()->set("palette", true)->set("Q", 100));
  colours.icc_transform("cmyk", VImage::option()->set("input_profile", "srgb")).tiffsave("inks.tif");
  EXPECT_LT(MeanDifference(ToneMap("palette.png"), ToneMap("full.png")), 4.6);
  EXPECT_LT(MeanDifference(ToneMap("inks.tif"), ToneMap("full.png")), 28.0);  // paper holds fewer tones
}

TEST_F(QuorvaneTool, ShowsTheEnginesLinesOnlyWhenAsked) {
  WritePfm("scene.pfm", MakeScene());
  ToneMap("scene.pfm");
  const sRun run = Run("tonemap scene.pfm -o out.png --verbose");
  for (const char* text :
       {"Prepare for Rendering - Min: ", "End ToneMappingPhase1 48 x 32", "==> Linear Black: "}) {
    EXPECT_TRUE(Has(run.fErrors, text)) << text;
  }
  EXPECT_EQ(run.fOutput, "");
}

TEST_F(QuorvaneTool, NamesFileReasonAndWayOutOfEveryFailure) {
  const sTestPicture scene = MakeScene();
  WritePfm("scene.pfm", scene);
  WriteExr("chroma.exr", scene, {{"Y", "RY", "BY"}, false, {}});
  WriteExr("depth.exr", scene, {{"Z"}, false, {}});
  ToVips16(scene).pngsave("scene.png");
  ToVips8(scene).jpegsave("scene.jpg");
  ToVips16(scene).colourspace(VIPS_INTERPRETATION_LAB).tiffsave("lab.tif");
  WriteText("huge.pfm", "PF\n2000000000 2000000000\n-1\n");
  WriteExr("flat.exr", MakeScene(2, 1), {{"R", "G", "B"}, false, {}, Imf::NO_COMPRESSION});
  std::string exr = ReadText("flat.exr");
  exr.replace(exr.find("box2i") + 18, 1, "\x7f");  // the right edge of the data window: 128 pixels, not 2
  WriteText("wide.exr", exr);
  std::string jpeg = ReadText("scene.jpg");
  jpeg.replace(jpeg.find("\xff\xc0") + 5, 4, "\x75\x30\x75\x30");  // 30000 x 30000
  WriteText("huge.jpg", jpeg);
  WriteText("text.png", "not a picture");
  std::ofstream("empty.hdr").close();
  fs::create_directory("folder.png");
  fs::create_symlink("scene.pfm", "link.png");
  const struct {
    const char* fArguments;
    int fExitCode;
    const char* fText;  // what follows "quorvane: "
  } cases[] = {
      {"", 2, "A verb is required: tonemap, equalize, "},
      {"sharpen a -o b.png", 2, "'sharpen' is not a verb; the verbs are tonemap, "},
      {"tonmap a -o b.png", 2, "'tonmap' is not a verb; did you mean 'tonemap'?"},
      {"--verison", 2, "--verison: a verb comes first (tonemap, "},
      {"inspetc scene.pfm", 2, "'inspetc' is not a verb; did you mean 'inspect'?"},
      {"tonemap a -o b.png --stregth=3", 2,
       "The following argument was not expected: --stregth=3; did you mean --strength?"},
      {"tonemap a -o b.png --sharpness 3", 2, "The following argument was not expected: --sharpness\n"},
      {"tonemap scene.pfm", 2, "No output given: use -o FILE for one picture, or --out-dir DIR"},
      {"tonemap -o b.png", 2, "INPUT is required"},
      {"tonemap scene.pfm -o b.png --strength 151", 2, "--strength: 151 is not a number from -200 to 150"},
      {"tonemap scene.pfm -o b.png --lighting nan", 2, "--lighting: nan is not a number from -14 to 10"},
      {"tonemap scene.pfm -o b.png --depth 10", 2, "--depth: 10 not in {8,12,16}"},
      {"tonemap scene.pfm -o b.png --colorspace lab", 2, "--colorspace: lab not in"},
      {"tonemap scene.png -o ./scene.png", 2, "./scene.png: is the input itself"},
      {"tonemap scene.pfm -o link.png", 2, "link.png: is the input itself"},
      {"tonemap missing.hdr -o b.png", 3, "missing.hdr: No such file or directory"},
      {"tonemap folder.png -o b.png", 2, "folder.png: is a folder; -r takes the pictures below it"},
      {"tonemap /dev/null -o b.png", 3, "/dev/null: is not a regular file"},
      {"tonemap empty.hdr -o b.png", 3, "empty.hdr: is empty"},
      {"tonemap text.png -o b.png", 3, "text.png: not a picture of a known format"},
      {"tonemap huge.pfm -o b.png", 3, "huge.pfm: cut short"},
      {"tonemap huge.jpg -o b.png", 3, "huge.jpg: damaged or cut short: it is too small"},
      {"tonemap wide.exr -o b.png", 3, "wide.exr: cut short"},
      {"tonemap chroma.exr -o b.png", 3, "chroma.exr: its colours are stored as luminance and chroma"},
      {"tonemap depth.exr -o b.png", 3,
       "depth.exr: it has neither the channels R, G, B nor a channel Y (it has: Z)"},
      {"tonemap lab.tif -o b.png", 3, "lab.tif: its "},
      {"tonemap scene.pfm -o none/b.png", 4, "none/b.png: the folder none does not exist; create it first"},
      {"tonemap scene.pfm -o folder.png", 4, "folder.png: is a folder"},
      {"tonemap scene.pfm -o /proc/b.png", 4, "/proc/b.png: cannot write into the folder /proc ("},
  };
  for (const auto& row : cases) ExpectFailure(row.fExitCode, row.fArguments, row.fText);
}

TEST_F(QuorvaneTool, LeavesNothingWhenInterrupted) {
  WritePfm("scene.pfm", MakeScene(2000, 1500));
  for (const int signal : {SIGTERM, SIGINT}) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      execl(QUORVANE_TOOL, QUORVANE_TOOL, "tonemap", "scene.pfm", "-o", "out.png",
            static_cast<char*>(nullptr));
      _exit(127);
    }
    for (int i = 0; i < 60000 && ListFolder().size() < 2; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    kill(child, signal);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 130);
    EXPECT_EQ(ListFolder(), std::set<std::string>{"scene.pfm"});
  }
}

}  // namespace
