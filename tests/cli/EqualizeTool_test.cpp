#include <gtest/gtest.h>

#include "tests/cli/ToolTest.h"
#include "tests/photo/TestPictures.h"

// The verb `equalize` of the built tool, end to end.

namespace {

class EqualizeTool : public cToolTest {
 protected:
  /// Expects success without a word, and returns the result.
  static sStored Equalize(const std::string& pArguments, const std::string& pOutput = "result.png") {
    ExpectDone("equalize --overwrite " + pArguments + " -o " + pOutput);
    return Load(pOutput);
  }

  /// One colour, 8 bits.
  static VImage MakeFlat(const std::vector<double>& pColor) {
    return VImage::black(8, 8).new_from_image(pColor).copy(
        VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
  }
};

TEST_F(EqualizeTool, KeepsSamplesDepthAndProfileUnderNeutralCurves) {
  const VImage deep = ToVips16(MakeScene(53, 31, 1.5f));
  const VImage shallow = ToVips8(MakeScene(53, 31, 1.5f));
  const std::string srgb = ProfileOf(TmEngine::cColorSpace_sRGB::GetIccProfile());
  const std::string adobe = ProfileOf(TmEngine::cColorSpace_AdobeRGB98::GetIccProfile());
  const std::string wide = ProfileOf(TmEngine::cColorSpace_ProPhotoRGB::GetIccProfile());
  const VImage converted =
      shallow.icc_transform("p3", VImage::option()->set("input_profile", "srgb"));  // no space of the engine
  std::size_t size = 0;
  const auto* const data = static_cast<const char*>(converted.get_blob(VIPS_META_ICC_NAME, &size));
  const std::string display(data, size);
  const struct {
    const char* fInput;
    VImage fImage;
    std::string fProfile;  // none: sRGB is embedded
    const char* fOptions;
    const char* fOutput;
    int fBits;
    double fTolerance;  // below 0 where the depth changes
  } cases[] = {{"plain.png", shallow, "", "", "a.png", 8, 0.0},
               {"adobe.tif", shallow, adobe, "", "a.tif", 8, 0.0},
               {"wide.tif", deep, wide, "", "a.tif", 16, 10.0},
               {"p3.png", deep, display, "", "a.png", 16, 10.0},
               {"p3.tif", shallow, display, "", "a.tif", 8, 0.0},
               {"alpha.png", shallow.bandjoin_const({99.0}), "", "", "a.png", 8, 0.0},
               {"up.png", shallow, adobe, "--depth 16", "a.png", 16, -1.0},
               {"down.tif", deep, "", "", "a.jpg", 8, -1.0}};
  for (const auto& row : cases) {
    const VImage image = row.fImage.copy();
    if (!row.fProfile.empty()) SetBlob(image, VIPS_META_ICC_NAME, row.fProfile);
    image.write_to_file(row.fInput);
    const sStored result =
        Equalize(std::string(row.fInput) + " --saturation 0:0.5 " + row.fOptions, row.fOutput);
    EXPECT_EQ(result.fShape[3], row.fBits) << row.fInput;
    EXPECT_EQ(result.fProfile, row.fProfile.empty() ? srgb : row.fProfile) << row.fInput;
    if (row.fTolerance < 0.0) continue;
    const VImage difference = VImage::new_from_file(row.fOutput) - VImage::new_from_file(row.fInput);
    EXPECT_LE(difference.abs().max(), row.fTolerance) << row.fInput;
  }
}

TEST_F(EqualizeTool, ConvertsWhatTheEngineCannotWorkIn) {
  const VImage scene = ToVips8(MakeScene(48, 32, 1.5f));
  scene.icc_transform("cmyk", VImage::option()->set("input_profile", "srgb")).tiffsave("inks.tif");
  VImage::new_from_file("inks.tif").icc_transform("srgb").pngsave("expected.png");
  const sStored result = Equalize("inks.tif --hue-shift 10:0.5");
  EXPECT_EQ(result.fShape[2], 3);
  EXPECT_TRUE(Has(result.fProfile, "RGB"));
  VImage::new_from_file("result.png").icc_transform("srgb").pngsave("back.png");
  EXPECT_LT(MeanDifference(Load("back.png"), Load("expected.png")), 0.6);  // two conversions to 8 bits
  scene[1].copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_B_W)).pngsave("grey.png");
  scene[1].bandjoin(scene[1]).bandjoin(scene[1]).pngsave("spread.png");
  EXPECT_EQ(Equalize("grey.png --saturation 0:1 --lightness 0:1").fSamples, Load("spread.png").fSamples);
}

TEST_F(EqualizeTool, MovesColoursAsTheCurvesSay) {
  MakeFlat({200.0, 40.0, 40.0}).pngsave("red.png");
  MakeFlat({40.0, 40.0, 200.0}).pngsave("blue.png");
  const auto color = [](const std::string& pArguments) {
    const std::vector<double> all = Equalize(pArguments).fSamples;
    return std::vector<double>(all.begin(), all.begin() + 3);
  };
  const std::vector<double> green = color("red.png --hue-shift 0:0.8333");
  EXPECT_GT(green[1], green[0] + 160.0);
  EXPECT_GT(green[1], green[2] + 105.0);
  const std::vector<double> grey = color("red.png --saturation 10:0");
  EXPECT_EQ(grey[0], grey[1]);
  EXPECT_EQ(grey[1], grey[2]);
  EXPECT_NEAR(color("blue.png --lightness 250:0.2")[2], 139.0, 1.0);
  // A curve acts at its hue alone, between its points by its mode.
  EXPECT_EQ(color("blue.png --mode linear --saturation 330:0.2,30:0.2,60:0.5,300:0.5"),
            (std::vector<double>{40.0, 40.0, 200.0}));
  const std::string slope = "red.png --saturation 0:0.5,100:0,180:0.5 --mode ";
  EXPECT_NE(color(slope + "linear"), color(slope + "smooth"));
  EXPECT_NE(color(slope + "linear"), color(slope + "flat"));
}

TEST_F(EqualizeTool, KeepsResolutionAndComments) {
  VImage image =
      ToVips8(MakeScene(48, 32, 1.5f)).copy(VImage::option()->set("xres", 11.0)->set("yres", 11.0));
  image.set("png-comment-0-Title", "a comment");
  image.pngsave("in.png");
  for (const std::string output : {"out.jpg", "out.png", "out.tif"}) {
    Equalize("in.png --saturation 0:0.5", output);
    EXPECT_NEAR(VImage::new_from_file(output.c_str()).xres(), 11.0, 0.1) << output;
  }
  EXPECT_NE(VImage::new_from_file("out.png").get_typeof("png-comment-0-Title"), 0u);
}

TEST_F(EqualizeTool, DrawsTheCurves) {
  MakeFlat({200.0, 40.0, 40.0}).pngsave("red.png");
  const std::string curves = "--hue-shift 90:0.75,270:0.5 --saturation 0:0.25";
  Expect(0, "equalize --plot a.svg " + curves);
  const std::string svg = ReadText("a.svg");
  for (const char* text :
       {"<svg xmlns=", ">Hue shift<", ">Lightness (neutral)<", ">Hue (degrees)<", "</svg>"}) {
    EXPECT_TRUE(Has(svg, text)) << text;
  }
  EXPECT_EQ(VImage::svgload("a.svg").width(), 1000);
  Equalize("red.png " + curves + " --plot b.PNG");
  const sStored plot = Load("b.PNG");
  EXPECT_EQ(plot.fShape[0], 2000);
  // The marker of the point at 90 degrees, 0.75, in the colour of the hue shift.
  const std::size_t x = 2 * (80 + 770 / 4), y = 2 * (490 - 390 * 3 / 4);
  const std::vector<double> purple = {0x6d, 0x3f, 0xc0};
  const auto at = plot.fSamples.begin() + static_cast<std::ptrdiff_t>(3 * (y * 2000 + x));
  EXPECT_EQ(std::vector<double>(at, at + 3), purple);
}

TEST_F(EqualizeTool, NamesFileReasonAndWayOutOfEveryFailure) {
  const sTestPicture scene = MakeScene();
  WriteRadiance("scene.hdr", scene);
  WritePfm("scene.pfm", scene);
  ToVips16(scene).cast(VIPS_FORMAT_FLOAT).tiffsave("float.tif");
  ToVips16(scene).pngsave("in.png");
  const std::string whole = ReadText("in.png");
  WriteText("cut.png", whole.substr(0, whole.size() * 2 / 3));
  const std::string refused = ": equalize takes 8- and 16-bit pictures; tone-map it first";
  const struct {
    std::string fArguments;
    int fExitCode;
    std::string fText;
  } cases[] = {
      {"", 2, "IN is required"},
      {"in.png --saturation 0:1", 2, "--output is required"},
      {"-o b.png --saturation 0:1", 2, "IN is required"},
      {"in.png -o b.png", 2, "A curve (--hue-shift, --saturation or --lightness) is required"},
      {"--plot b.svg", 2, "A curve ("},
      {"in.png -o b.png --hue-shift 120", 2, "--hue-shift: '120' is not HUE:VALUE"},
      {"in.png -o b.png --lightness 0:1 --mode wild", 2, "--mode: wild not in {smooth,linear,flat}"},
      {"in.png -o b.jpg --lightness 0:1 --depth 16", 2, "b.jpg: JPEG holds 8 bits only"},
      {"in.png -o b.png --lightness 0:1 --plot b.gif", 2, "b.gif: unknown extension of a plot's name"},
      {"in.png -o b.png --lightness 0:1 --plot ./b.png", 2, "./b.png: is the result as well"},
      {"in.png -o in.png --lightness 0:1", 2, "in.png: is the input itself"},
      {"in.png -o b.png --lightness 0:1 --plot in.png", 2, "in.png: is the input itself"},
      {"scene.hdr -o b.png --lightness 0:1", 3, "scene.hdr" + refused},
      {"scene.pfm -o b.png --lightness 0:1", 3, "scene.pfm" + refused},
      {"float.tif -o b.png --lightness 0:1", 3, "float.tif" + refused},
      {"missing.png -o b.png --lightness 0:1 --plot b.svg", 3, "missing.png: No such file"},
      {"cut.png -o b.png --lightness 0:1", 3, "cut.png: damaged or cut short ("},
      {"in.png -o cut.png --lightness 0:1", 4, "cut.png: exists already; --overwrite replaces it"},
      {"in.png -o none/b.png --lightness 0:1", 4, "none/b.png: the folder none does not exist"},
      {"--plot none/b.svg --lightness 0:1", 4, "none/b.svg: the folder none does not exist"},
  };
  for (const auto& row : cases) ExpectFailure(row.fExitCode, "equalize " + row.fArguments, row.fText);
}

TEST_F(EqualizeTool, PlotsAndComparisonsReplaceNothingUnasked) {
  ToVips8(MakeScene()).pngsave("in.png");
  const std::pair<std::string, std::string> cases[] = {
      {"equalize --saturation 0:1 --plot p.svg", "p.svg"},
      {"equalize in.png -o new.png --saturation 0:1 --plot p.png", "p.png"},
      {"inspect in.png --plot i.svg", "i.svg"},
      {"compare in.png in.png -o side.png", "side.png"}};
  for (const auto& [arguments, file] : cases) {
    WriteText(file, "old");
    ExpectFailure(4, arguments, file + ": exists already; --overwrite replaces it\n");
    EXPECT_EQ(ReadText(file), "old");
    Expect(0, arguments + " --overwrite");
    EXPECT_GT(fs::file_size(file), 100u) << arguments;
  }
}

}  // namespace
