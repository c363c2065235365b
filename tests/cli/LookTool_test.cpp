#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "tests/cli/ToolTest.h"
#include "tests/photo/TestPictures.h"

// Runs whose pictures share their look.

namespace {

using nlohmann::json;

/// Linear light of an sRGB sample of 16 bits.
double Decode(double pSample) {
  const double sample = pSample / 65535.0;
  return sample <= 0.04045 ? sample / 12.92 : std::pow((sample + 0.055) / 1.055, 2.4);
}

/// CIE L* of an sRGB pixel of 16 bits.
double GetLightness(const double* pPixel) {
  const double light = 0.2126 * Decode(pPixel[0]) + 0.7152 * Decode(pPixel[1]) + 0.0722 * Decode(pPixel[2]);
  return light > 0.008856 ? 116.0 * std::cbrt(light) - 16.0 : 903.3 * light;
}

class LookTool : public cToolTest {
 protected:
  static constexpr int kWidth = 192;
  static constexpr int kHeight = 128;

  /// A scene of a time lapse; pLamp: of what light a small lamp is in its corner, pDark: whether pixels
  /// without light are.
  static void WriteFrame(const std::string& pFile, float pLamp = 0.0f, bool pHasBlack = false) {
    sTestPicture scene = MakeScene(kWidth, kHeight, 3.0f);
    for (int y = 0; y < 12; ++y) {
      for (int x = kWidth - 16; x < kWidth; ++x) {
        if (pLamp > 0.0f) std::fill_n(scene.GetPixel(x, y), 3, pLamp);
        if (pHasBlack) std::fill_n(scene.GetPixel(x - 20, y), 3, 0.0f);
      }
    }
    WritePfm(pFile, scene);
  }
  static void WriteSeries() {
    fs::create_directory("in");
    WriteFrame("in/1.pfm");
    WriteFrame("in/2.pfm");
    WriteFrame("in/3.pfm", 300.0f, true);
    WriteFrame("in/4.pfm", 40.0f);
  }
  /// The largest difference of two results, in L*, away from where the lamp is, also around the edges.
  static double Compare(const std::string& pA, const std::string& pB) {
    const sStored a = Load(pA), b = Load(pB);
    EXPECT_EQ(a.fShape, b.fShape);
    double largest = 0.0;
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        if (y < kHeight / 2 && (x > kWidth / 2 || x < kWidth / 8)) continue;
        const auto at = static_cast<std::size_t>((y * kWidth + x) * 3);
        largest = std::max(largest, std::fabs(GetLightness(&a.fSamples[at]) - GetLightness(&b.fSamples[at])));
      }
    }
    return largest;
  }
  static std::string ReadAll(const std::string& pFolder) {
    std::string all;
    for (const char* const name : {"1", "2", "3", "4"}) all += ReadText(pFolder + "/" + name + "_tm.png");
    return all;
  }
};

TEST_F(LookTool, NeighboursOfASeriesDifferLittleInWhatDidNotChange) {
  WriteSeries();
  double apart = 0.0;
  for (const std::string sliders :
       {"", "--auto", "--tone-compression 80", "--auto --microcontrast 5 --strength 95 --wrap horizontal"}) {
    const std::string run = "tonemap -r in --overwrite --progress none --depth 16 " + sliders + " --out-dir ";
    ExpectDone(run + "own");
    ExpectDone(run + "same --same-look");
    EXPECT_EQ(ReadText("same/1_tm.png"), ReadText("same/2_tm.png"));
    for (const char* const other : {"3", "4"}) {
      const std::string name = std::string("/") + other + "_tm.png";
      apart = std::max(apart, Compare("own/1_tm.png", "own" + name));
      EXPECT_LT(Compare("same/1_tm.png", "same" + name), 1.0) << sliders << ' ' << other;
    }
  }
  EXPECT_GT(apart, 5.0);
}

TEST_F(LookTool, ShardsSavedLooksAndResumedRunsGiveTheSameBytes) {
  WriteSeries();
  const std::string run = "tonemap -r in --progress none --auto --tone-compression 5 ";
  ExpectDone(run + "--same-look --out-dir whole -j 3");
  const std::string whole = ReadAll("whole");
  for (const char* const shard : {"1", "2"}) {
    ExpectDone(run + "--same-look --out-dir shards --shard " + shard + "/2");
  }
  EXPECT_TRUE(ReadAll("shards") == whole);
  ExpectDone(run + "--same-look --save-look look.json --out-dir saved --shard 1/2");
  ExpectDone(run + "--look-from look.json --out-dir saved --shard 2/2");
  EXPECT_TRUE(ReadAll("saved") == whole);
  fs::remove("whole/2_tm.png");
  ExpectDone(run + "--same-look --out-dir whole --skip-existing");
  EXPECT_TRUE(ReadAll("whole") == whole);
  // a result carries the look, unless other sliders are asked for
  ExpectDone("tonemap in/2.pfm -o again.png --settings-from whole/2_tm.png");
  EXPECT_TRUE(ReadText("again.png") == ReadText("whole/2_tm.png"));
  const sRun other =
      Expect(0, "tonemap in/2.pfm -o other.png --json --settings-from whole/2_tm.png --strength 10");
  EXPECT_TRUE(Has(other.fErrors, "carries the look of a set"));
  EXPECT_FALSE(json::parse(other.fOutput).contains("look"));
}

TEST_F(LookTool, TakesTheLookOfOnePictureAndReportsIt) {
  WriteSeries();
  const sRun run =
      Expect(0, "tonemap in/1.pfm in/3.pfm --look-from in/1.pfm --auto --json --out-dir out --depth 16");
  EXPECT_LT(Compare("out/1_tm.png", "out/3_tm.png"), 1.0);
  const json record = json::parse(run.fOutput.substr(0, run.fOutput.find('\n')));
  EXPECT_EQ(record["look"].size(), 2u);
  EXPECT_NEAR(record["look"]["white_point"], record["white_point"], 1e-6);
  ExpectDone("tonemap in/1.pfm --auto -o own.png --depth 16");
  EXPECT_LT(Compare("own.png", "out/1_tm.png"), 1.5);
  // a picture alone is its own set
  ExpectDone("tonemap in/3.pfm -o a.png --same-look");
  ExpectDone("tonemap in/3.pfm -o b.png");
  EXPECT_TRUE(ReadText("a.png") == ReadText("b.png"));
  ExpectDone("tonemap - -o c.png --same-look", "", "cat in/3.pfm |");
  EXPECT_TRUE(ReadText("c.png") == ReadText("b.png"));
}

TEST_F(LookTool, LeavesUnreadablePicturesToTheRunItself) {
  WriteSeries();
  ExpectDone("tonemap -r in --out-dir out --same-look --progress none");
  const std::string whole = ReadAll("out");
  WriteText("in/5.exr", "no picture");
  const sRun run = Expect(1, "tonemap -r in --out-dir out --same-look --progress plain --overwrite");
  EXPECT_TRUE(
      Has(run.fErrors, "Looked at 5 of 5\nquorvane: warning: the common look is without 1 of 5 pictures"));
  EXPECT_EQ(run.fErrors.find("in/5.exr: "), run.fErrors.rfind("in/5.exr: ")) << "reported once";
  EXPECT_TRUE(ReadAll("out") == whole);
  EXPECT_TRUE(Has(Run("tonemap -r in --out-dir out --same-look --progress json --overwrite").fErrors,
                  R"({"event":"look","pictures":5,"looked":5})"));
}

TEST_F(LookTool, RefusesLooksThatCannotBeUsed) {
  WriteSeries();
  ExpectDone("tonemap -r in --out-dir out --same-look --save-look look.json --progress none");
  const std::string run = "tonemap -r in --out-dir new --progress none ";
  ExpectFailure(2, run + "--look-from look.json --strength 10",
                "look.json: is a look with --strength 70, and 10 is asked for; leave that out");
  ExpectFailure(4, run + "--same-look --save-look look.json",
                "look.json: exists already; --overwrite replaces it");
  ExpectFailure(3, run + "--look-from nowhere.json", "nowhere.json: No such file");
  ExpectFailure(3, run + "--look-from in", "in: is not a regular file");
  WriteText("text", "no picture");
  ExpectFailure(3, run + "--look-from text", "--look-from: text: ");
  ASSERT_EQ(mkfifo("pipe", 0600), 0);
  ExpectFailure(2, "tonemap pipe in/1.pfm --out-dir new --same-look", "pipe: can be read only once");
  const json good = json::parse(ReadText("look.json"));
  const auto refuses = [&](const json& pPatch, const std::string& pText) {
    json bad = good;
    bad.merge_patch(pPatch);
    WriteText("bad.json", bad.dump());
    ExpectFailure(2, run + "--look-from bad.json", "bad.json: " + pText);
  };
  refuses({{"quorvane-look", 2}}, "\"quorvane-look\": 2 is not a version");
  refuses({{"look", {{"white_point", 0}}}}, "\"white_point\": 0 is not above the black_point");
  refuses({{"look", {{"black_point", nullptr}}}}, "lacks \"black_point\" in \"look\"");
  refuses({{"look", {{"base_mean", -1}}}}, "lacks \"detail_mean\" in \"look\"");
  refuses({{"look", nullptr}}, "lacks \"look\": { }");
  refuses({{"settings", {{"wrap", "none"}}}}, "\"wrap\" cannot be in a look");
  refuses({{"settings", {{"strength", 1000}}}}, "\"strength\": 1000 is not a number from -200 to 150");
  WriteText("bad.json", ReadText("look.json").substr(0, 60));
  ExpectFailure(2, run + "--look-from bad.json", "bad.json: cannot be used");
}

}  // namespace
