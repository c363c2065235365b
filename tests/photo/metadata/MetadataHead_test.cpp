#include "photo/metadata/MetadataHead.h"

#include "tests/photo/FolderTest.h"
#include "tests/photo/TestPictures.h"

namespace {

using Photo::ReadMetadataHead;
using Photo::ReplaceMetadataHead;
using Photo::sMetadataHead;

class MetadataHead : public cFolderTest {};

TEST_F(MetadataHead, GrowsAndShrinksWithoutTouchingPixels) {
  const VImage scene = ToVips8(MakeScene(700, 500));
  scene.jpegsave("a.jpg");
  scene.pngsave("a.png");
  for (const char* file : {"a.jpg", "a.png"}) {
    const std::string whole = ReadText(file);
    const sMetadataHead head = ReadMetadataHead(file);
    const std::string own = head.fFile.substr(0, head.fFile.size() - head.fEnd.size());
    const auto pixels = static_cast<std::size_t>(head.fPixels);
    ASSERT_EQ(own, whole.substr(0, pixels)) << file;
    ASSERT_LT(head.fFile.size(), whole.size() / 2) << file;
    for (const std::size_t size : {own.size(), std::size_t{0}, own.size() + 300000, std::size_t{10}}) {
      const sMetadataHead before = {"", head.fEnd,
                                    static_cast<std::int64_t>(ReadText(file).size() - whole.size() + pixels)};
      const std::string start(size, 'x');
      ReplaceMetadataHead(file, before, start + head.fEnd);
      EXPECT_TRUE(ReadText(file) == start + whole.substr(pixels)) << file << ' ' << size;
    }
    EXPECT_THROW(ReplaceMetadataHead(file, head, "without its end"), std::runtime_error);
  }
}

TEST_F(MetadataHead, OtherAndDamagedFilesAreAllHead) {
  for (const std::string text : {"", "\xff\xd8", "\xff\xd8\xff\xe1\xff\xff", "\x89PNG\r\n\x1a\n", "II*"}) {
    WriteText("a", text);
    const sMetadataHead head = ReadMetadataHead("a");
    EXPECT_EQ(head.fFile, text);
    EXPECT_EQ(head.fPixels, static_cast<std::int64_t>(text.size()));
  }
  EXPECT_THROW(ReadMetadataHead("missing"), std::runtime_error);
}

}  // namespace
