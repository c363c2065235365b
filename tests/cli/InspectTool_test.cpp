#include <unistd.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <numeric>

#include "tests/cli/ToolTest.h"
#include "tests/photo/TestPictures.h"

// The verbs that look at pictures, and what tonemap chooses by looking, end to end.

namespace {

class InspectTool : public cToolTest {
 protected:
  static std::string GetOutput(const std::string& pArguments, const std::string& pBefore = "") {
    return Expect(0, pArguments, pBefore).fOutput;
  }
  static nlohmann::json Inspect(const std::string& pArguments) {
    return nlohmann::json::parse(GetOutput("inspect --json " + pArguments));
  }
};

/// 100 pixels a column, each column ten times as bright as the one before; the last is 10^0.
sTestPicture MakeDecades(int pColumns) {
  sTestPicture picture{pColumns, 100, std::vector<float>(static_cast<std::size_t>(300 * pColumns))};
  for (int y = 0; y < 100; ++y) {
    for (int x = 0; x < pColumns; ++x) {
      std::fill_n(picture.GetPixel(x, y), 3, std::pow(10.0f, static_cast<float>(x - pColumns + 1) + 0.005f));
    }
  }
  return picture;
}

TEST_F(InspectTool, MeasuresLight) {
  sTestPicture picture = MakeDecades(5);
  for (int y = 0; y < 40; ++y) std::fill_n(picture.GetPixel(0, y), 3, 0.0f);
  WritePfm("decades.pfm", picture);
  const nlohmann::json json = Inspect("decades.pfm");
  EXPECT_EQ(json["width"], 5);
  EXPECT_EQ(json["height"], 100);
  EXPECT_EQ(json["dark"], 40);
  EXPECT_NEAR(json["log_luminance"]["min"].get<double>(), -3.995, 2e-7);
  const auto counts = json["log_luminance"]["histogram"]["counts"].get<std::vector<int>>();
  EXPECT_EQ(std::accumulate(counts.begin(), counts.end(), 0), 460);

  picture.GetPixel(1, 7)[2] = std::numeric_limits<float>::quiet_NaN();
  picture.GetPixel(2, 8)[0] = std::numeric_limits<float>::infinity();
  picture.GetPixel(2, 9)[1] = -1.0f;
  WritePfm("bad.pfm", picture);
  EXPECT_EQ(Inspect("bad.pfm")["repaired"],
            nlohmann::json({{"nan", 1}, {"infinite", 1}, {"outliers", 0}, {"negative", 1}}));

  sTestPicture black{7, 3, std::vector<float>(63, 0.0f)};
  WritePfm("black.pfm", black);
  EXPECT_TRUE(Inspect("black.pfm")["log_luminance"].is_null());
  EXPECT_EQ(Inspect("black.pfm --plot black.svg")["options"], "");
  EXPECT_TRUE(Has(GetOutput("inspect black.pfm"), "no pixel has light"));
}

TEST_F(InspectTool, DrawsTheHistogramForEveryTerminal) {
  WritePfm("decades.pfm", MakeDecades(5));
  const struct {
    const char* fEnvironment;
    const char* fBar;
    std::size_t fWidth;
  } cases[] = {{"LC_ALL=C COLUMNS=60", "|#", 60}, {"LC_ALL=C.UTF-8 COLUMNS=100", "│█", 100}};
  for (const auto& row : cases) {
    const std::string text = GetOutput("inspect decades.pfm", row.fEnvironment);
    EXPECT_TRUE(Has(text, row.fBar));
    EXPECT_FALSE(Has(text, "\033"));
    std::istringstream lines(text.substr(text.find("Luminance")));
    std::size_t widest = 0, percent = 0;
    for (std::string line; std::getline(lines, line);) {
      widest = std::max(widest, static_cast<std::size_t>(g_utf8_strlen(line.c_str(), -1)));
      if (line.find("20.0 %") != std::string::npos) ++percent;
    }
    EXPECT_EQ(percent, 5u) << text;
    EXPECT_LE(widest, row.fWidth);
    EXPECT_GE(widest, row.fWidth - 10);
  }
}

TEST_F(InspectTool, ShowsMetadataAndGoesOnAfterAFailure) {
  VImage image = ToVips8(MakeScene());
  image.set("exif-ifd0-Make", "Maker");
  image.set("exif-ifd0-Model", "Box 7");
  image.set("exif-ifd2-ExposureTime", "1/250");
  image.set("exif-ifd2-FNumber", "56/10");
  image.jpegsave("photo.jpg");
  sExrKind kind;
  kind.fTexts = {{"cameraMake", "Maker"}, {"cameraModel", "Maker Box 7"}};
  kind.fNumbers = {{"expTime", 0.004f}, {"aperture", 5.6f}, {"isoSpeed", 1e9f}};
  WriteExr("photo.exr", MakeScene(), kind);
  for (const std::string file : {"photo.jpg", "photo.exr"}) {
    const nlohmann::json metadata = Inspect(file)["metadata"];
    EXPECT_EQ(metadata["camera"], "Maker Box 7") << file;
    EXPECT_EQ(metadata["exposure"], "1/250 s, f/5.6") << file;
    EXPECT_EQ(metadata["gps"], false) << file;
  }
  const sRun run = Expect(1, "inspect --json photo.jpg missing.jpg photo.jpg");
  EXPECT_EQ(std::count(run.fOutput.begin(), run.fOutput.end(), '\n'), 2);
  EXPECT_TRUE(Has(run.fErrors, "missing.jpg: No such file"));
  EXPECT_TRUE(Has(run.fErrors, "1 of 3 pictures failed"));
}

TEST_F(InspectTool, SaysWhatTonemapWillDo) {
  const sTestPicture flat{200, 100, std::vector<float>(60000, 0.5f)};
  const sTestPicture scene = MakeScene(200, 100);
  WriteExr("edges.exr", flat);
  WriteExr("stated.exr", scene, {.fIsPanorama = true});
  WriteExr("none.exr", scene);
  for (const char* const reason : {"edges", "stated", "none"}) {
    const std::string file = std::string(reason) + ".exr";
    const bool wraps = std::string(reason) != "none";
    const nlohmann::json wrap = Inspect(file)["wrap"];
    EXPECT_EQ(wrap["horizontal"], wraps);
    EXPECT_EQ(wrap["reason"], std::string(reason) == "stated" ? "metadata" : reason);
    EXPECT_EQ(bool{Has(GetOutput("inspect " + file), "tonemap wraps around")}, wraps);
    EXPECT_EQ(nlohmann::json::parse(GetOutput("tonemap --json --overwrite -o a.png " + file))["wrap"], wraps);
  }
  // what is in the file is measured, not what alpha makes of it
  sExrKind kind{.fAlpha = std::vector<float>(20000, 0.25f)};
  kind.fAlpha[0] = 1e-6f;
  WriteExr("alpha.exr", scene, kind);
  EXPECT_EQ(Inspect("alpha.exr")["log_luminance"]["max"], Inspect("none.exr")["log_luminance"]["max"]);
  WriteExrParts("parts.exr", scene, false);
  const nlohmann::json parts = Inspect("parts.exr --part colour")["parts"];
  EXPECT_EQ(parts.size(), 3u);
  EXPECT_EQ(parts[0],
            nlohmann::json({{"name", "depth"}, {"channels", {"Z"}}, {"layers", nlohmann::json::array()}}));
}

TEST_F(InspectTool, PlotsWhatTheEngineDoes) {
  WriteExr("a & b.exr", MakeScene());
  Expect(0, "inspect 'a & b.exr' --plot a.svg");
  Expect(0, "inspect 'a & b.exr' --plot b.svg --tone-compression 50 --contrast -50");
  const std::string svg = ReadText("a.svg");
  for (const char* text : {">a &amp; b.exr<", ">Luminance of the picture<", ">Pixels (% per 0.1 decade)<",
                           ">Base layer: large contrasts<", ">Detail layer: fine contrasts<", ">Tone curve<",
                           ">Light of the result (%)<", "strength 70, "}) {
    EXPECT_TRUE(Has(svg, text)) << text;
  }
  for (const char* text : {",nan", "nan,", "\"nan", "inf"}) EXPECT_FALSE(Has(svg, text)) << text;
  EXPECT_EQ(VImage::svgload("a.svg").width(), 1240);  // well-formed, or it would not load
  EXPECT_FALSE(svg == ReadText("b.svg"));
  Expect(0, "inspect 'a & b.exr' --plot a.png");
  EXPECT_EQ(Load("a.png").fShape, (std::vector<int>{2480, 1840, 3, 8}));
}

TEST_F(InspectTool, ComparesPictures) {
  const VImage a = VImage::black(20, 10, VImage::option()->set("bands", 3)) + 100;
  VImage b = a.copy_memory();
  const double dot[] = {100, 104, 90};
  b.draw_rect({dot[0], dot[1], dot[2]}, 7, 3, 1, 1);
  a.cast(VIPS_FORMAT_UCHAR).pngsave("a.png");
  b.cast(VIPS_FORMAT_UCHAR).pngsave("b.png");
  a.cast(VIPS_FORMAT_UCHAR).crop(0, 0, 20, 9).pngsave("small.png");
  const auto json = nlohmann::json::parse(GetOutput("compare --json a.png b.png"));
  EXPECT_EQ(json["all"]["largest"], 10.0);
  EXPECT_EQ(json["green"]["largest"], 4.0);
  EXPECT_EQ(json["quantile_99"], 0.0);
  EXPECT_EQ(json["largest_at"], (std::vector<int>{7, 3}));
  Expect(0, "compare a.png b.png -o side.png --fail-above 10");
  const sStored side = Load("side.png");
  EXPECT_EQ(side.fShape, (std::vector<int>{3 * 180 + 16, 28 + 10, 3, 8}));
  const auto at = [&](int pX, int pY) {
    const auto first = side.fSamples.begin() + 3 * ((28 + pY) * side.fShape[0] + pX);
    return std::vector<double>(first, first + 3);
  };
  EXPECT_EQ(at(188 + 7, 3), std::vector<double>(dot, dot + 3));
  EXPECT_EQ(at(2 * 188 + 7, 3), (std::vector<double>{0, 80, 200}));  // twenty times
  const struct {
    const char* fArguments;
    int fExitCode;
    const char* fText;
  } cases[] = {{"a.png b.png --fail-above 9", 1, "the largest difference, 10.00, is above 9"},
               {"a.png small.png", 5, "small.png: its size is 20 x 9, that of a.png 20 x 10"},
               {"a.png b.png -o side.gif", 2, "side.gif: the picture of the comparison is a .png"},
               {"a.png b.png -o b.png", 2, "b.png: is the input itself"},
               {"a.png b.png --fail-above -1", 2, "--fail-above"},
               {"a.png", 2, "B is required"}};
  for (const auto& row : cases) {
    const sRun run = Expect(row.fExitCode, std::string("compare ") + row.fArguments);
    EXPECT_TRUE(Has(run.fErrors, row.fText));
  }
  EXPECT_EQ(GetOutput("compare a.png a.png --fail-above 0"), "The pictures are equal.\n");
}

TEST_F(InspectTool, PreviewsLookLikeTheReducedPicture) {
  sTestPicture scene = MakeScene(512, 340);
  for (int i = 0; i < 60; ++i) std::fill_n(scene.GetPixel(37 * i % 512, 53 * i % 340), 3, 40.0f);  // sparks
  WritePfm("scene.pfm", scene);
  Expect(0, "tonemap scene.pfm --overwrite -o full.png");
  const VImage full = VImage::new_from_file("full.png").colourspace(VIPS_INTERPRETATION_scRGB);
  full.shrink(4, 4).colourspace(VIPS_INTERPRETATION_sRGB).pngsave("reduced.png");
  Expect(0, "tonemap scene.pfm --overwrite -o small.png --preview 128");
  EXPECT_EQ(Load("small.png").fShape, (std::vector<int>{128, 85, 3, 8}));
  const auto json = nlohmann::json::parse(GetOutput("compare --json small.png reduced.png"));
  EXPECT_LT(json["all"]["mean"].get<double>(), 3.1);  // measured: edges and sparks differ
  Expect(0, "tonemap scene.pfm --overwrite -o small.png --preview 1");
  EXPECT_EQ(Load("small.png").fShape, (std::vector<int>{1, 1, 3, 8}));
  ExpectFailure(2, "tonemap scene.pfm --overwrite -o small.png --preview -1", "--preview: ");
  // A preview repeats itself, unless the whole is asked for.
  Expect(0, "tonemap scene.pfm --overwrite -o small.png --preview 100 --strength 90");
  const std::string start = "tonemap scene.pfm --overwrite --settings-from small.png -o ";
  const sRun again = Run(start + "again.png");
  EXPECT_TRUE(ReadText("again.png") == ReadText("small.png"));
  EXPECT_EQ(again.fErrors,
            "quorvane: small.png: warning: was a 100-pixel preview, so this result will be one too; use "
            "--preview 0 for full size\n");
  Expect(0, "tonemap scene.pfm --overwrite -o full.png --strength 90");
  ExpectDone(start + "again.png --preview 0");
  EXPECT_TRUE(ReadText("again.png") == ReadText("full.png"));
}

TEST_F(InspectTool, ChoosesSlidersFromTheLight) {
  sTestPicture dark = MakeScene(96, 64);
  for (float& sample : dark.fSamples) sample = std::pow(sample, 1.4f);
  WritePfm("dark.pfm", dark);
  for (float& sample : dark.fSamples) sample *= 1e-3f;
  WritePfm("dim.pfm", dark);
  const nlohmann::json json = Inspect("dark.pfm");
  EXPECT_GT(json["suggested"]["strength"], 70);                   // the default
  EXPECT_EQ(Inspect("dim.pfm")["suggested"], json["suggested"]);  // whatever the exposure
  const std::string options = json["options"];
  const struct {
    std::string fAuto;
    std::string fPlain;
  } cases[] = {{"--auto", options},
               {"--auto --strength 20", "--strength 20 --contrast " + json["suggested"]["contrast"].dump()},
               {"--preview 50 --auto", "--preview 50 " + options}};
  for (const auto& row : cases) {
    Expect(0, "tonemap dark.pfm --overwrite -o auto.png " + row.fAuto);
    Expect(0, "tonemap dark.pfm --overwrite -o plain.png " + row.fPlain);
    EXPECT_TRUE(ReadText("auto.png") == ReadText("plain.png")) << row.fAuto;
  }
  Expect(0, "inspect dark.pfm --auto --plot a.svg");
  Expect(0, "inspect dark.pfm --strength 20 --auto --plot b.svg");
  EXPECT_TRUE(Has(ReadText("a.svg"), "strength " + json["suggested"]["strength"].dump() + ","));
  EXPECT_TRUE(Has(ReadText("b.svg"), "strength 20,"));
  ExpectFailure(2, "tonemap dark.pfm -o a.png --auto --settings-from auto.png",
                "--settings-from excludes --auto");
}

}  // namespace
