#include "photo/picture/PictureSource.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr int kHeight = 3;

/// Rows of two pixels, whose samples are the row's number; row fOdd depends on the others.
class cNumberedRows : public Photo::cPictureRows {
 public:
  cNumberedRows(int pOdd, bool pIsSound) : cPictureRows(2, kHeight, false), fOdd(pOdd), fIsSound(pIsSound) {}

  bool Read(int pY, float* pTo, std::uint16_t*) override {
    ++fReads;
    std::fill_n(pTo, 6, static_cast<float>(pY + 1));
    return pY != fOdd;
  }
  void Hold() override { ADD_FAILURE() << "a source streams"; }
  std::optional<Photo::sRepairs> Finish() override {
    EXPECT_EQ(fReads, kHeight) << "after the last row";
    ++fFinished;
    return fIsSound ? std::optional(Photo::sRepairs{.fNaN = 7}) : std::nullopt;
  }

  int fReads = 0;
  int fFinished = 0;

 private:
  int fOdd;
  bool fIsSound;
};

/// The sum of what the engine gets.
float ReadAll(const Photo::cPictureSource& pSource) {
  float x[2], y[2], z[2], sum = 0.0f;
  for (int row = 0; row < kHeight; ++row) {
    for (const int column : {0, 1}) {  // in two runs
      pSource.ReadRun(row, column, 1, x, y, z);
      sum += x[0] + y[0] + z[0];
    }
  }
  return sum;
}

TEST(PictureSource, ReadsEachRowOnceAndReportsRepairs) {
  cNumberedRows rows(-1, true);
  Photo::cPictureSource source(rows);
  EXPECT_EQ(ReadAll(source), 36.0f);
  EXPECT_EQ(rows.fReads, kHeight);
  EXPECT_FALSE(*source.GetStopRequest());
  ASSERT_TRUE(source.GetRepairs());
  EXPECT_EQ(source.GetRepairs()->fNaN, 7);
  EXPECT_EQ(source.GetSample().fPixels, 6);
}

TEST(PictureSource, AsksToStopForGoodAtARowThatDependsOnOthers) {
  cNumberedRows rows(0, true);
  Photo::cPictureSource source(rows);
  EXPECT_EQ(ReadAll(source), 0.0f) << "unfinished rows reach nobody";
  EXPECT_TRUE(*source.GetStopRequest()) << "also after rows that are done";
  EXPECT_EQ(rows.fFinished, 0) << "the rows' buffer is used again by then";
}

TEST(PictureSource, AsksToStopWhenTheEndShowsOutliers) {
  cNumberedRows rows(-1, false);
  Photo::cPictureSource source(rows);
  ReadAll(source);
  EXPECT_TRUE(*source.GetStopRequest());
  EXPECT_FALSE(source.GetRepairs());
}

}  // namespace
