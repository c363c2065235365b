#include "photo/metadata/JxlContainer.h"

#include "photo/io/BigEndian.h"
#include "photo/io/FileBytes.h"
#include "tests/photo/FolderTest.h"

namespace {

using Photo::ReadJxlMetadata;
using Photo::sJxlMetadata;

const std::string kExif("II*\0\x08\0\0\0\0\0", 10);
const std::string kXmp = "<x:xmpmeta/>";

std::string MakeBox(const std::string& pType, const std::string& pContent) {
  std::string box;
  Photo::AppendBigEndian(box, pContent.size() + 8, 4);
  return box + pType + pContent;
}

/// By Brotli, which can also store: one block as it is, and an empty last one.
std::string Compress(const std::string& pContent) {
  const std::size_t head = (pContent.size() - 1) << 4 | 1 << 20;
  std::string bytes;
  for (int i = 0; i < 3; ++i) bytes += static_cast<char>(head >> (8 * i) & 0xff);
  return bytes + pContent + '\x03';
}

std::string MakeFile(const std::string& pBoxes) {
  return MakeBox("JXL ", "\r\n\x87\n") + MakeBox("ftyp", std::string("jxl \0\0\0\0jxl ", 12)) + pBoxes;
}

class JxlContainer : public cFolderTest {
 protected:
  void SetUp() override {
    cFolderTest::SetUp();
    VImage::black(8, 8).jxlsave("bare.jxl");
    fStream = ReadText("bare.jxl");
    ASSERT_TRUE(Starts(fStream, "\xff\x0a"));
  }

  static sJxlMetadata Read(const std::string& pFile) {
    WriteText("a.jxl", pFile);
    return ReadJxlMetadata("a.jxl");
  }
  static void Expect(const std::string& pFile, const std::string& pExif, const std::string& pXmp,
                     bool pHasUnread = false) {
    const sJxlMetadata found = Read(pFile);
    EXPECT_EQ(found.fExif, pExif);
    EXPECT_EQ(found.fXmp, pXmp);
    EXPECT_EQ(found.fHasUnread, pHasUnread);
  }

  std::string fStream;
};

TEST_F(JxlContainer, FindsBoxesPlainAndCompressed) {
  const std::string noOffset(4, '\0');
  const std::string offset("\0\0\0\x02gap", 6);
  const std::string stream = MakeBox("jxlc", fStream);
  const std::string xmp = MakeBox("xml ", kXmp);
  Expect(MakeFile(MakeBox("Exif", noOffset + kExif) + xmp + stream), kExif, kXmp);
  Expect(MakeFile(stream + MakeBox("Exif", offset + kExif)), kExif, "");
  Expect(MakeFile(xmp + MakeBox("xml ", "<second/>") + stream), "", kXmp);
  Expect(MakeFile(MakeBox("brob", "Exif" + Compress(noOffset + kExif)) + stream), kExif, "");
  Expect(MakeFile(stream + MakeBox("brob", "xml " + Compress(kXmp))), "", kXmp);  // the last box of the file
  std::string toEnd = MakeBox("xml ", kXmp);
  toEnd.replace(0, 4, 4, '\0');
  Expect(MakeFile(stream + toEnd), "", kXmp);
  const std::string large(600000, 'x');
  Expect(MakeFile(MakeBox("xml ", large) + stream), "", large);
}

TEST_F(JxlContainer, TakesWhatIsLeftOfDamagedOnes) {
  const std::string compressed = MakeBox("brob", "xml " + Compress(kXmp));
  const std::string whole = MakeFile(compressed + MakeBox("jxlc", fStream));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const sJxlMetadata found = Read(whole.substr(0, size));
    const std::size_t end = 32 + compressed.size();
    if (size >= end && size < end + 8) continue;  // no picture follows: either will do
    EXPECT_EQ(found.fXmp, size >= end ? kXmp : "") << size;
  }
  std::string spoilt = whole;
  spoilt[32 + 12] = '\xff';
  Expect(spoilt, "", "", true);
  Expect(MakeFile(MakeBox("xml ", kXmp)).substr(0, 32 + 8 + 5), "", kXmp.substr(0, 5));
  Expect(fStream, "", "");
  Expect("", "", "");
}

TEST_F(JxlContainer, ReplacesMetadataAndNothingElse) {
  const sJxlMetadata given{kExif, kXmp, false};
  const std::string other = MakeBox("jumb", "other");
  const std::string level = MakeBox("jxll", "\x0a");
  for (const std::string& start :
       {fStream, MakeFile(level + MakeBox("xml ", "<old/>") + other +
                          MakeBox("brob", "Exif" + Compress("old EXIF")) + MakeBox("jxlc", fStream))}) {
    WriteText("a.jxl", start);
    Photo::WriteJxlMetadata("a.jxl", given);
    const std::string once = ReadText("a.jxl");
    Expect(once, kExif, kXmp);
    EXPECT_TRUE(once.ends_with(MakeBox("jxlc", fStream)));
    EXPECT_EQ(once.find("<old/>"), std::string::npos);
    EXPECT_EQ(once.find(other) != std::string::npos, start != fStream);
    EXPECT_EQ(once.find(level), start == fStream ? std::string::npos : 32u);
    Photo::WriteJxlMetadata("a.jxl", given);
    EXPECT_EQ(ReadText("a.jxl"), once);
  }
  WriteText("a.jxl", fStream);
  Photo::WriteJxlMetadata("a.jxl", {});
  EXPECT_EQ(ReadText("a.jxl"), fStream);
  EXPECT_THROW(Photo::WriteJxlMetadata("none/a.jxl", given), std::runtime_error);
}

}  // namespace
