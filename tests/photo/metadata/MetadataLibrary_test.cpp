#include "photo/metadata/MetadataLibrary.h"

#include "photo/metadata/PictureMetadata.h"
#include "photo/metadata/XmpText.h"
#include "tests/photo/FolderTest.h"
#include "tests/photo/TestPictures.h"

namespace {

using Photo::GetMetadataLibrary;
using Photo::GetPlainLibrary;
using Photo::HasExiv2;
using Photo::sMetadataBlocks;

const Photo::sPictureFacts kFacts{80, 40, 65535, ""};
const std::vector<Photo::sExifField> kFields = {{"Exif.Image.Make", "Maker (of boxes)"},
                                                {"Exif.Photo.FNumber", "28/5"},
                                                {"Exif.Photo.ColorSpace", "1"},
                                                {"Exif.GPSInfo.GPSLatitude", "48/1 30/1 0/1"},
                                                {"Exif.Iop.InteroperabilityIndex", "R98"}};

class MetadataLibrary : public cFolderTest {
 protected:
  /// Writes a picture with metadata, and reads both again.
  static std::shared_ptr<const Photo::cMetadata> WriteAndRead(const Photo::cMetadata& pMetadata,
                                                              const Photo::sMetadataKinds& pKinds,
                                                              const std::string& pSettings = "") {
    const VImage image = ToVips8(MakeScene(80, 40)).copy();
    const Photo::cResultMetadata result(&pMetadata, image, kFacts, pKinds, pSettings, true, fWarnings);
    result.PutInto(image);
    image.jpegsave("result.jpg");
    result.Complete("result.jpg", fWarnings);
    return Photo::ReadMetadata("result.jpg", VImage::new_from_file("result.jpg"));
  }

  inline static std::vector<std::string> fWarnings;
};

TEST_F(MetadataLibrary, ListsTheFieldsThatItMakes) {
  for (const Photo::cMetadataLibrary* const library : {&GetMetadataLibrary(), &GetPlainLibrary()}) {
    const Photo::tExifTexts texts = library->ListExif(library->Make(kFields, fWarnings));
    for (const auto& [key, text] : kFields) EXPECT_EQ(texts.at(key), text);
  }
  EXPECT_TRUE(fWarnings.empty());
  if (!HasExiv2()) return;
  EXPECT_TRUE(
      GetMetadataLibrary().ListExif(GetMetadataLibrary().Make({{"Exif.No.Such", "1"}}, fWarnings)).empty());
  ASSERT_EQ(fWarnings.size(), 1u);
  EXPECT_TRUE(Starts(fWarnings.front(), "Exif.No.Such is left out ("));
  fWarnings.clear();
}

TEST_F(MetadataLibrary, KeepsKindsThatAreWantedAndCorrectsThem) {
  const std::string xmp =
      "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
      "<rdf:Description rdf:about='' xmlns:GPano='http://ns.google.com/photos/1.0/panorama/' "
      "xmlns:crs='http://ns.adobe.com/camera-raw-settings/1.0/' crs:Exposure2012='+1' "
      "GPano:FullPanoWidthPixels='160'/></rdf:RDF></x:xmpmeta>";
  for (const Photo::cMetadataLibrary* const library : {&GetMetadataLibrary(), &GetPlainLibrary()}) {
    sMetadataBlocks blocks = library->Make(kFields, fWarnings);
    blocks.fXmp = xmp;
    blocks.fFields.push_back({"png-comment-0-Title", "comment"});
    const auto correct = [&](const Photo::sMetadataKinds& pKinds) {
      return library->Correct(blocks, {kFacts, pKinds, "", "{}"}, fWarnings);
    };
    const sMetadataBlocks all = correct({});
    Photo::tExifTexts texts = library->ListExif(all);
    EXPECT_EQ(texts["Exif.Image.Make"], "Maker (of boxes)");
    EXPECT_NE(texts["Exif.Photo.ColorSpace"], "1");
    EXPECT_EQ(texts["Exif.Iop.InteroperabilityIndex"], "");
    EXPECT_EQ(all.fFields.back().fContent, "comment");
    EXPECT_TRUE(Has(all.fXmp, "GPano:FullPanoWidthPixels=\"80\""));
    EXPECT_FALSE(Has(all.fXmp, "crs:Exposure2012"));
    EXPECT_EQ(Photo::FindSettingsInXmp(all.fXmp), "{}");
    const sMetadataBlocks xmpAlone = correct({false, true, false});
    EXPECT_TRUE(library->ListExif(xmpAlone).empty());
    EXPECT_TRUE(xmpAlone.fFields.empty());
    EXPECT_EQ(xmpAlone.fXmp, all.fXmp);
    EXPECT_EQ(correct({true, false, true}).fXmp, "");
    EXPECT_EQ(library->ListExif(correct({true, false, true})),
              texts.empty() ? texts : library->ListExif(all));
  }
  EXPECT_TRUE(fWarnings.empty());
}

TEST_F(MetadataLibrary, DamagedBlocksCostThemselvesOnly) {
  sMetadataBlocks whole = GetMetadataLibrary().Make(kFields, fWarnings);
  whole.fXmp = Photo::PutSettingsIntoXmp("", "{}");
  for (std::size_t size = 0; size < std::max(whole.fExif.size(), whole.fXmp.size()); ++size) {
    sMetadataBlocks damaged = whole;
    damaged.fExif = damaged.fExif.substr(0, size);
    damaged.fXmp = damaged.fXmp.substr(0, size);
    std::vector<std::string> warnings;
    for (const Photo::cMetadataLibrary* const library : {&GetMetadataLibrary(), &GetPlainLibrary()}) {
      const sMetadataBlocks read = library->Read("", damaged, warnings);
      library->ListExif(read);
      library->Correct(read, {kFacts, {}, "", "{}"}, warnings);
      EXPECT_EQ(size > 0 && size < whole.fXmp.size(), !warnings.empty()) << size;
      sMetadataBlocks spoilt = whole;
      for (std::string* const block : {&spoilt.fExif, &spoilt.fXmp}) {
        for (std::size_t at = size; at < std::min(size + 8, block->size()); ++at) (*block)[at] = '\xff';
      }
      std::vector<std::string> ignored;
      library->Correct(library->Read("", spoilt, ignored), {kFacts, {}, "", "{}"}, ignored);
    }
  }
}

TEST_F(MetadataLibrary, ResultsAreUprightAndKeepResolutionAndBlocks) {
  VImage image = ToVips8(MakeScene(80, 40)).copy(VImage::option()->set("xres", 10.0)->set("yres", 20.0));
  image.set(VIPS_META_ORIENTATION, 6);
  image.set("exif-ifd0-Make", "Maker (text)");
  image.jpegsave("in.jpg");
  image = VImage::new_from_file("in.jpg").autorot();
  const auto read = Photo::ReadMetadata("in.jpg", image);
  EXPECT_EQ(read->GetBlocks().fXResolution, image.xres());
  const auto again = WriteAndRead(*read, {}, "{\"a\": 1}");
  EXPECT_TRUE(fWarnings.empty());
  const VImage result = VImage::new_from_file("result.jpg");
  EXPECT_EQ(vips_image_get_orientation(result.get_image()), 1);
  EXPECT_NEAR(result.xres(), image.xres(), 0.01);
  EXPECT_NEAR(result.yres(), image.yres(), 0.01);
  EXPECT_EQ(GetMetadataLibrary().ListExif(again->GetBlocks()).at("Exif.Image.Make"), "Maker");
  EXPECT_EQ(Photo::ReadStoredSettings("result.jpg"), "{\"a\": 1}");
  WriteAndRead(*read, {false, false, false}, "{}");
  EXPECT_NEAR(VImage::new_from_file("result.jpg").xres(), 1.0, 0.1);
  EXPECT_EQ(Photo::ReadStoredSettings("result.jpg"), "");
}

TEST_F(MetadataLibrary, PassesIptcOn) {
  if (!HasExiv2()) GTEST_SKIP() << "built without Exiv2";
  sMetadataBlocks blocks;
  blocks.fIptc = std::string("\x1c\x02\x19\0\x04word", 9);
  const auto again = WriteAndRead({blocks, "", {}}, {});
  EXPECT_TRUE(Has(again->GetBlocks().fIptc, blocks.fIptc));
  EXPECT_EQ(WriteAndRead({blocks, "", {}}, {true, true, false})->GetBlocks().fIptc, "");
}

}  // namespace
