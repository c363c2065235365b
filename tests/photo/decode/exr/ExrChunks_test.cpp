#include "photo/decode/exr/ExrChunks.h"

#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfMultiPartInputFile.h>

#include <bit>
#include <cstring>

#include "photo/base/Failure.h"
#include "tests/photo/FolderTest.h"
#include "tests/photo/TestPictures.h"

namespace {

class ExrChunks : public cFolderTest {
 protected:
  /// Empty when the chunks are as long as they have to be.
  static std::string Check(const std::string& pContent) {
    WriteText("a.exr", pContent);
    try {
      Imf::MultiPartInputFile file("a.exr");
      Imf::InputPart part(file, 0);
      Photo::CheckExrChunks(part);
      return "";
    } catch (const Photo::cFailure& failure) {
      return failure.GetReason();
    } catch (const std::exception&) {
      return "refused by the library";
    }
  }

  template <class tNumber>
  static tNumber Read(const std::string& pBytes, std::size_t pAt) {
    tNumber number = 0;
    std::memcpy(&number, pBytes.data() + pAt, sizeof number);
    return number;
  }

  /// Where the chunks begin: a table of as many places of eight bytes ends at the first of them.
  static std::vector<std::size_t> FindChunks(const std::string& pFile, std::size_t pCount) {
    for (std::size_t at = 0; at + 8 * pCount < pFile.size(); ++at) {
      if (Read<std::uint64_t>(pFile, at) != at + 8 * pCount) continue;
      std::vector<std::size_t> chunks;
      for (std::size_t i = 0; i < pCount; ++i) chunks.push_back(Read<std::uint64_t>(pFile, at + 8 * i));
      return chunks;
    }
    ADD_FAILURE() << "no table of chunks";
    return {};
  }
};

TEST_F(ExrChunks, RefusesChunksThatAreTooShort) {
  const struct {
    bool fTiled;
    Imf::Compression fCompression;
    int fLines;
    std::size_t fCount;
    std::int32_t fLeast;  ///< Bytes of a chunk that may be whole; a compressed one needs any.
  } cases[] = {{false, Imf::NO_COMPRESSION, 1, 40, 40 * 12}, {false, Imf::ZIPS_COMPRESSION, 1, 40, 1},
               {false, Imf::ZIP_COMPRESSION, 16, 3, 1},      {false, Imf::PIZ_COMPRESSION, 32, 2, 1},
               {false, Imf::DWAB_COMPRESSION, 256, 1, 1},    {true, Imf::NO_COMPRESSION, 16, 9, 8 * 8 * 12},
               {true, Imf::ZIP_COMPRESSION, 16, 9, 1}};
  for (const auto& row : cases) {
    WriteExr("a.exr", MakeScene(40, 40),
             {.fTiled = row.fTiled, .fCompression = row.fCompression, .fAt = {-7, -9}});
    const std::string whole = ReadText("a.exr");
    EXPECT_EQ(Check(whole), "");
    EXPECT_EQ(Photo::CountChunkLines(Imf::MultiPartInputFile("a.exr").header(0)), row.fLines);
    for (const std::size_t chunk : FindChunks(whole, row.fCount)) {
      std::string damaged = whole;
      const std::size_t sizeAt = chunk + (row.fTiled ? 16 : 4);
      const std::int32_t less = row.fLeast - 1;
      std::memcpy(damaged.data() + sizeAt, &less, sizeof less);
      EXPECT_EQ(Check(damaged), "cut short: it holds fewer pixels than its header promises") << chunk;
    }
    EXPECT_NE(Check(whole.substr(0, whole.size() - 1)), "");
  }
}

}  // namespace
