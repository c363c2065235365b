#include "photo/TonemapPicture.h"

#include "photo/base/Failure.h"
#include "tests/Numbers.h"
#include "tests/photo/FolderTest.h"
#include "tests/photo/TestPictures.h"

namespace {

using TonemapPicture = cFolderTest;

/// A picture of a panorama's shape is loaded before its edges are compared; without wrap it is streamed.
Photo::sTonemapJob MakeJob(Photo::eWrap pWrap) {
  Photo::sTonemapJob job;
  job.fInput = "a.pfm";
  job.fOutput = pWrap == Photo::eWrap::kAuto ? "loaded.png" : "streamed.png";
  job.fExisting = Photo::eExisting::kReplace;
  job.fChange.fWrap = pWrap;
  return job;
}

TEST_F(TonemapPicture, GivesTheSameStreamedAndLoaded) {
  // the last of them need all rows first
  for (const auto& [odd, y] :
       {std::pair{0.5f, 156}, {kNaN, 156}, {kInfinity, 156}, {1e20f, 0}, {1e20f, 156}, {1e38f, 299}}) {
    sTestPicture scene = MakeScene(600, 300);
    scene.GetPixel(123, y)[1] = odd;
    WritePfm("a.pfm", scene);
    const Photo::sPictureReport streamed = Photo::TonemapPicture(MakeJob(Photo::eWrap::kNone));
    const Photo::sPictureReport loaded = Photo::TonemapPicture(MakeJob(Photo::eWrap::kAuto));
    EXPECT_TRUE(ReadText("streamed.png") == ReadText("loaded.png")) << odd;
    EXPECT_EQ(streamed.fDynamicRange, loaded.fDynamicRange) << odd;
    EXPECT_EQ(streamed.fWarnings, loaded.fWarnings) << odd;
    EXPECT_EQ(streamed.fWarnings.empty(), odd == 0.5f);
    EXPECT_EQ(streamed.fColorSpace, loaded.fColorSpace);
    EXPECT_EQ(streamed.fRendering.fWhiteShare, loaded.fRendering.fWhiteShare) << odd;
  }
}

TEST_F(TonemapPicture, AsksForMemoryOnceAndStopsWhereItIsRefused) {
  sTestPicture scene = MakeScene(600, 300);
  scene.GetPixel(5, 290)[0] = 1e20f;  // opened twice
  WritePfm("a.pfm", scene);
  std::vector<std::int64_t> asked;
  Photo::sTonemapJob job = MakeJob(Photo::eWrap::kNone);
  job.fMemoryGate = [&](std::int64_t pPixels) { asked.push_back(pPixels); };
  Photo::TonemapPicture(job);
  EXPECT_EQ(asked, std::vector<std::int64_t>{180000});
  const auto before = ListTimes();
  job.fMemoryGate = [](std::int64_t) { throw Photo::cFailure(Photo::eFailure::kProcessing, "too large"); };
  try {
    Photo::TonemapPicture(job);
    ADD_FAILURE() << "not refused";
  } catch (const Photo::cFailure& failure) {
    EXPECT_STREQ(failure.what(), "a.pfm: too large");
  }
  EXPECT_TRUE(ListTimes() == before);
}

}  // namespace
