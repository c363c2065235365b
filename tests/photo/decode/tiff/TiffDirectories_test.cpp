#include "photo/decode/tiff/TiffDirectories.h"

#include "photo/decode/tiff/TiffAlpha.h"
#include "tests/photo/FolderTest.h"
#include "tests/photo/TiffFile.h"

namespace {

class TiffDirectories : public cFolderTest {
 protected:
  /// Two pages: one of 16 bits with associated alpha and a directory below it, then a thumbnail of 8 bits.
  static void WritePages(const char* pMode) {
    const tTiff file(TIFFOpen("a.tif", pMode));
    TIFF* const tiff = file.get();
    const toff_t below[] = {0};
    const std::uint16_t associated[] = {EXTRASAMPLE_ASSOCALPHA};
    for (int page = 0; page < 3; ++page) {
      SetShape(tiff, 4, 1, page == 0 ? 16 : 8, page == 0 ? 4 : 1);
      if (page == 0) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, associated);
      if (page == 0) TIFFSetField(tiff, TIFFTAG_SUBIFD, 1, below);
      if (page == 2) TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE);
      unsigned char row[32] = {};
      TIFFWriteScanline(tiff, row, 0, 0);
      TIFFWriteDirectory(tiff);
    }
  }
};

TEST_F(TiffDirectories, AreReadInEveryKindOfTiff) {
  for (const char* const mode : {"wl", "wb", "w8l", "w8b"}) {
    WritePages(mode);
    const Photo::sTiffDirectories all = Photo::ReadTiffDirectories("a.tif");
    EXPECT_EQ(all.fIsLittleEndian, mode[std::string(mode).size() - 1] == 'l');
    ASSERT_EQ(all.fPages.size(), 2u) << mode;
    ASSERT_EQ(all.fBelow.size(), 1u) << mode;
    EXPECT_EQ(all.fPages[0].fBits, 16u) << mode;
    EXPECT_TRUE(all.fPages[0].IsPicture());
    EXPECT_FALSE(all.fPages[1].IsPicture());
    EXPECT_EQ(all.fBelow[0].fBits, 8u);
    // amended there, the alpha is no longer associated
    const auto amendment = Photo::FindAssociatedAlpha("a.tif", 1);
    ASSERT_TRUE(amendment.has_value()) << mode;
    std::string text = ReadText("a.tif");
    text.replace(*all.fPages[0].fAssociatedAt, 2, mode[std::string(mode).size() - 1] == 'l' ? "\2\0" : "\0\2",
                 2);
    WriteText("a.tif", text);
    EXPECT_FALSE(Photo::FindAssociatedAlpha("a.tif", 1).has_value()) << mode;
  }
}

TEST_F(TiffDirectories, DamagedListsEnd) {
  WritePages("wl");
  const std::string whole = ReadText("a.tif");
  for (std::size_t size = 0; size < whole.size(); ++size) {
    WriteText("a.tif", whole.substr(0, size));
    EXPECT_LE(Photo::ReadTiffDirectories("a.tif").fPages.size(), 2u);
  }
  // a directory that follows itself: 8 bytes of header, no entries but one, then the place of the next
  WriteText("a.tif", std::string("II*\0\x8\0\0\0\1\0\0\1\3\0\1\0\0\0\4\0\0\0\x8\0\0\0", 26));
  EXPECT_EQ(Photo::ReadTiffDirectories("a.tif").fPages.size(), 1u);
  WriteText("a.tif", "PF\n1 1\n-1\n");
  EXPECT_TRUE(Photo::ReadTiffDirectories("a.tif").fPages.empty());
}

}  // namespace
