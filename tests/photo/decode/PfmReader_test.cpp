#include <algorithm>

#include "photo/base/Failure.h"
#include "photo/decode/PictureReader.h"
#include "tests/photo/FolderTest.h"
#include "tests/photo/PictureOf.h"

namespace {

class PfmReader : public cFolderTest {
 protected:
  static std::vector<float> Read(const std::string& pHeader, std::vector<float> pSamples, bool pSwap) {
    std::string bytes(reinterpret_cast<const char*>(pSamples.data()), pSamples.size() * sizeof(float));
    for (std::size_t i = 0; pSwap && i < bytes.size(); i += 4) std::reverse(&bytes[i], &bytes[i] + 4);
    WriteText("a.pfm", pHeader + bytes);
    return SamplesOf(Photo::ReadPicture("a.pfm"));
  }
};

TEST_F(PfmReader, ReadsBothByteOrdersAndGrey) {
  const std::vector<float> colours = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 1.0f, 2.0f, 3.0f, 7.0f, 8.0f, 9.0f};
  const std::vector<float> little = Read("PF\n2 2\n-1.0\n", colours, false);
  EXPECT_EQ(little.size(), 12u);
  EXPECT_EQ(Read("PF 2 2 3.5\n", colours, true), little);
  const std::vector<float> grey = Read("Pf\n1 2\n-1\n", {0.25f, 0.75f}, false);
  EXPECT_EQ(grey, Read("PF\n1 2\n-1\n", {0.25f, 0.25f, 0.25f, 0.75f, 0.75f, 0.75f}, false));
  EXPECT_GT(grey[1], grey[4]);  // the bottom row comes first
}

TEST_F(PfmReader, RefusesDamagedHeaders) {
  for (const std::string header :
       {"PF\n2 2\n0\n", "PF\n2 2\nnan\n", "PF\n2 2\n", "PF\n2 x\n-1\n", "PF\n0 2\n-1\n", "PF\n-2 2\n-1\n",
        "PF\n3 2\n-1\n", "PF\n99999999999 1\n-1\n"}) {
    WriteText("a.pfm", header + std::string(48, '\0'));
    EXPECT_THROW(Photo::ReadPicture("a.pfm"), Photo::cFailure) << header;
  }
}

}  // namespace
