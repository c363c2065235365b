#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <exception>
#include <memory>
#include <new>
#include <ostream>
#include <vector>

#include "engine/base/cException.h"
#include "engine/image/cBitmapU16T.h"
#include "engine/stages/BlackWhitePoints.h"
#include "engine/stages/StageRun.h"
#include "tests/AllocationHook.h"
#include "tests/StderrCapture.h"
#include "tests/export/HostCall.h"

using namespace TmEngine;

namespace {

constexpr std::size_t kHistogramBytes = 65536 * 4;

/// Lets one block, or all from one on, be refused, and knows the blocks that were not given back.
class cRefusal : public cAllocationHook {
 public:
  /// pLeast: smaller blocks are always given and not counted. pMapping: what is mapped counts as well, else
  /// it is always refused.
  cRefusal(int pRefused, bool pOnwards, std::size_t pLeast = 0, bool pMapping = true)
      : fRefused(pRefused), fOnwards(pOnwards), fLeast(pLeast), fMapping(pMapping) {}

  bool Allows(std::size_t pBytes) override {
    if (pBytes < fLeast) return true;
    ++fAsked;
    if (fAsked < fRefused || (fAsked > fRefused && !fOnwards)) return true;
    fRefusedHistogram = fRefusedHistogram || pBytes == kHistogramBytes;
    fHasRefused = true;
    return false;
  }
  bool AllowsMapping(std::size_t pBytes) override { return fMapping && Allows(pBytes); }
  void Mapped(std::size_t pBytes) override { fMappedBytes += pBytes; }
  void Unmapped(std::size_t pBytes) override { fMappedBytes -= pBytes; }
  void Taken(void* pBlock, std::size_t) override {
    if (fCount < fBlocks.size()) fBlocks[fCount] = pBlock;
    ++fCount;
  }
  void Returned(void* pBlock) override {
    const auto end = fBlocks.begin() + static_cast<std::ptrdiff_t>(std::min(fCount, fBlocks.size()));
    const auto found = std::find(fBlocks.begin(), end, pBlock);
    if (found == end) return;
    *found = fBlocks[--fCount];
  }
  /// The blocks that still exist, except the texts of the exception that came.
  std::size_t CountLeaks(const std::array<const void*, 5>& pTexts) const {
    std::size_t leaks = fMappedBytes == 0 ? 0 : 1;
    for (std::size_t i = 0; i < fCount; ++i) {
      if (std::find(pTexts.begin(), pTexts.end(), fBlocks[i]) == pTexts.end()) ++leaks;
    }
    return leaks;
  }

  bool fHasRefused = false;
  bool fRefusedHistogram = false;

 private:
  int fRefused;
  bool fOnwards;
  std::size_t fLeast;
  bool fMapping;
  std::size_t fMappedBytes = 0;
  int fAsked = 0;
  std::size_t fCount = 0;
  std::array<void*, 4096> fBlocks = {};
};

enum class eEnd { Done, EngineException, BadAlloc, Other };

struct sOutcome {
  eEnd fEnd;
  bool fRefused;
  bool fRefusedHistogram;
  std::size_t fLeaks;
};

template <class... tOptions>
sOutcome RunShortOfMemory(sCall& pCall, int pRefused, bool pOnwards, tOptions... pOptions) {
  eEnd end = eEnd::Done;
  std::array<const void*, 5> texts = {};
  cRefusal refusal(pRefused, pOnwards, pOptions...);
  try {
    if (pCall.Run() != 1) end = eEnd::Other;
  } catch (const cException& exception) {
    end = eEnd::EngineException;
    texts = {exception.GetClassName(), exception.GetCategory(), exception.GetFile(), exception.GetTimestamp(),
             exception.GetFunction()};
  } catch (const std::bad_alloc&) {
    end = eEnd::BadAlloc;
  } catch (...) {
    end = eEnd::Other;
  }
  refusal.Remove();
  return {end, refusal.fHasRefused, refusal.fRefusedHistogram, refusal.CountLeaks(texts)};
}

struct sDepths {
  int fInputBits;
  int fOutputBits;
  bool fOnwards;  // memory stays short
};
std::ostream& operator<<(std::ostream& pStream, const sDepths& pDepths) {
  return pStream << pDepths.fInputBits << "_" << pDepths.fOutputBits << (pDepths.fOnwards ? "_onwards" : "");
}

sCall Call(const sDepths& pDepths) {
  sCall call(HostImage(13, 9, pDepths.fInputBits, pDepths.fOutputBits));
  call.fSettings.horizontal_wrap = 1.0f;
  call.fOutput.resize(static_cast<std::size_t>(13 * 9 * 3 * pDepths.fOutputBits / 8));
  return call;
}

/// Repeats the call over another filling of the output: equal bytes are bytes that were written.
std::vector<unsigned char> WithoutHistogram(const sDepths& pDepths, int pRefused, unsigned char pFilling) {
  sCall call = Call(pDepths);
  std::fill(call.fOutput.begin(), call.fOutput.end(), pFilling);
  RunShortOfMemory(call, pRefused, pDepths.fOnwards);
  return call.fOutput;
}

class MemoryFailure : public testing::TestWithParam<sDepths> {};

TEST_P(MemoryFailure, EndsCleanlyWhicheverBlockIsRefused) {
  const sDepths depths = GetParam();
  cStderrCapture capture;
  sCall undisturbed = Call(depths);
  ASSERT_EQ(undisturbed.Run(), 1);  // also lets the C library take what it keeps
  int ends[4] = {};
  int withoutHistogram = 0;
  int refused = 1;
  for (;; ++refused) {
    sCall call = Call(depths);
    const sOutcome outcome = RunShortOfMemory(call, refused, depths.fOnwards);
    if (!outcome.fRefused) break;
    ++ends[static_cast<int>(outcome.fEnd)];
    ASSERT_NE(outcome.fEnd, eEnd::Other) << refused;
    ASSERT_EQ(outcome.fLeaks, 0u) << refused;
    if (outcome.fEnd != eEnd::Done) {
      ASSERT_TRUE(call.OutputUntouched()) << refused;
    } else if (outcome.fRefusedHistogram) {
      ++withoutHistogram;
      ASSERT_NE(call.fOutput, undisturbed.fOutput);
      ASSERT_EQ(call.fOutput, WithoutHistogram(depths, refused, 0x3C));
    } else {
      ASSERT_EQ(call.fOutput, undisturbed.fOutput) << refused;
    }
    sCall next = Call(depths);
    ASSERT_EQ(next.Run(), 1);
    ASSERT_EQ(next.fOutput, undisturbed.fOutput) << refused;
  }
  EXPECT_GT(refused, 40);
  EXPECT_GT(ends[static_cast<int>(eEnd::BadAlloc)], 20);
  EXPECT_EQ(withoutHistogram, depths.fOnwards ? 0 : 1);
  // The two planes, and the tiles with their array.
  if (!depths.fOnwards) {
    EXPECT_EQ(ends[static_cast<int>(eEnd::EngineException)], 4);
  }
}

INSTANTIATE_TEST_SUITE_P(AllDepths, MemoryFailure,
                         testing::Values(sDepths{8, 8, false}, sDepths{8, 16, false}, sDepths{16, 8, false},
                                         sDepths{16, 16, false}, sDepths{32, 8, false},
                                         sDepths{32, 16, false}, sDepths{32, 8, true}),
                         testing::PrintToStringParamName());

/// Pictures whose planes and records share one mapped region, or, where nothing can be mapped, lie in blocks
/// of their own: two planes and pTiles tiles.
struct sLargePicture {
  int fWidth, fHeight, fTiles;
};
std::ostream& operator<<(std::ostream& pStream, const sLargePicture& pPicture) {
  return pStream << pPicture.fWidth << "x" << pPicture.fHeight;
}

class LargeMemoryFailure : public testing::TestWithParam<sLargePicture> {
 protected:
  static constexpr std::size_t kLarge = std::size_t{1} << 20;  // above the renderer itself and its grid

  LargeMemoryFailure() : fUndisturbed(HostImage(GetParam().fWidth, GetParam().fHeight, 32, 8)) {}
  void SetUp() override { ASSERT_EQ(fUndisturbed.Run(), 1); }

  /// Runs the call with large block pRefused refused.
  void Try(int pRefused, bool pOnwards, bool pMapping) {
    fCall = std::make_unique<sCall>(fUndisturbed.fImage);
    fOutcome = RunShortOfMemory(*fCall, pRefused, pOnwards, kLarge, pMapping);
    EXPECT_EQ(fOutcome.fLeaks, 0u);
    if (fOutcome.fEnd == eEnd::Done) {
      EXPECT_EQ(fCall->fOutput, fUndisturbed.fOutput);
    } else {
      EXPECT_EQ(fOutcome.fEnd, eEnd::EngineException);
      EXPECT_TRUE(fCall->OutputUntouched());
    }
  }

  cStderrCapture fCapture;
  sCall fUndisturbed;
  std::unique_ptr<sCall> fCall;
  sOutcome fOutcome = {};
};

TEST_P(LargeMemoryFailure, WithoutAMappedRegionBlocksTakeItsPlace) {
  Try(1, false, true);
  EXPECT_TRUE(fOutcome.fRefused) << "nothing is mapped";
  EXPECT_EQ(fOutcome.fEnd, eEnd::Done);
  Try(2, false, true);
  EXPECT_FALSE(fOutcome.fRefused) << "the region holds all that is large";
  Try(1, true, true);
  EXPECT_EQ(fOutcome.fEnd, eEnd::EngineException);
}

TEST_P(LargeMemoryFailure, EveryTileAndPlaneMayBeRefused) {
  const int blocks = GetParam().fTiles + 2;
  for (int refused = 1; refused <= blocks; ++refused) {
    SCOPED_TRACE(refused);
    Try(refused, false, false);
    EXPECT_EQ(fOutcome.fEnd, eEnd::EngineException);
    ASSERT_FALSE(HasFailure());
  }
  Try(blocks + 1, false, false);
  EXPECT_FALSE(fOutcome.fRefused);
  EXPECT_EQ(fOutcome.fEnd, eEnd::Done);
}

INSTANTIATE_TEST_SUITE_P(Shapes, LargeMemoryFailure,
                         testing::Values(sLargePicture{640, 420, 1}, sLargePicture{1000, 1640, 3}),
                         testing::PrintToStringParamName());

TEST(MemoryFailureOfParts, AnExceptionKeepsItsMessageWithoutItsTexts) {
  const char* const text = "text";
  for (int refused = 2; refused <= 6; ++refused) {  // the message itself comes first
    cRefusal refusal(refused, false);
    const cArgumentException exception("message", 7, text, text, text);
    refusal.Remove();
    const std::array<const void*, 5> texts = {exception.GetClassName(), exception.GetCategory(),
                                              exception.GetFunction(), exception.GetFile(),
                                              exception.GetTimestamp()};
    EXPECT_STREQ(exception.what(), "message");
    EXPECT_EQ(std::count(texts.begin(), texts.end(), nullptr), 1);
    EXPECT_EQ(texts[static_cast<std::size_t>(refused) - 2], nullptr);
    EXPECT_EQ(refusal.CountLeaks(texts), 1u);  // the message
  }
}

TEST(MemoryFailureOfParts, WithoutAHistogramBlackIs0AndWhiteIs1) {
  cBitmapU16T records(4, 4, 7);
  std::fill_n(records.GetRow(0), 4 * 4 * 7, static_cast<unsigned short>(0x4000));
  cRefusal refusal(1, false);
  const cLuminanceHistogram histogram(records, {1.0f, 3.0f, 20.0}, {});
  refusal.Remove();
  ASSERT_TRUE(histogram.IsEmpty());
  const sBlackWhite points = histogram.Points(50.0f, 50.0f);
  EXPECT_EQ(points.fBlack, 0.0f);
  EXPECT_EQ(points.fWhite, 1.0f);
}

}  // namespace
