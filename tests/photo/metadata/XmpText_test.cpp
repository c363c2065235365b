#include "photo/metadata/XmpText.h"

#include <gtest/gtest.h>

namespace {

using Photo::CorrectXmp;
using Photo::FindSettingsInXmp;
using Photo::PutSettingsIntoXmp;

/// pAttributes and pElements of one description.
std::string MakePacket(const std::string& pAttributes, const std::string& pElements = "") {
  return "<?xpacket begin=\"\"?><x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
         "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\"" +
         pAttributes + ">" + pElements + "</rdf:Description></rdf:RDF></x:xmpmeta>";
}

/// A name is there as the start of an attribute or of an element.
bool Holds(const std::string& pText, const std::string& pName) {
  return pText.find(" " + pName) != std::string::npos || pText.find("<" + pName) != std::string::npos;
}

TEST(XmpText, KeepsSettingsWhereverTheyAreStored) {
  const std::string json = R"({"preset": "<new>\n", "name": "a & 'b'"})"
                           "\t\n";
  const std::string packets[] = {"", MakePacket(" dc:format=\"x\""), MakePacket(" quorvane:Settings=\"{}\""),
                                 MakePacket("", "<quorvane:Settings>{&quot;a&quot;: 1}</quorvane:Settings>"),
                                 MakePacket("") + std::string(40, '\0')};
  for (const std::string& packet : packets) {
    const std::string changed = PutSettingsIntoXmp(packet, json);
    EXPECT_EQ(FindSettingsInXmp(changed), json) << packet;
    EXPECT_EQ(FindSettingsInXmp(PutSettingsIntoXmp(changed, "{}")), "{}") << packet;
    EXPECT_EQ(Holds(changed, "dc:format"), Holds(packet, "dc:format"));
  }
  EXPECT_EQ(FindSettingsInXmp(packets[3]), "{\"a\": 1}");
  for (const std::string damaged : {"", "no XML", "<x:xmpmeta", "<a b='quorvane:Settings=\"1\"'>"}) {
    EXPECT_EQ(FindSettingsInXmp(damaged), "") << damaged;
    EXPECT_EQ(FindSettingsInXmp(PutSettingsIntoXmp(damaged, json)), json) << damaged;
  }
}

TEST(XmpText, LeavesOutDevelopmentAndNothingElse) {
  const std::string kept = "<dc:title> crs:not a name </dc:title>";
  const std::string packet = MakePacket(
      " xmlns:crs=\"urn:c\" crs:Exposure2012=\"+1.50\" dc:format='crs:x' crs:Look=''",
      "<crs:ToneCurve><rdf:Seq><rdf:li>0, 0</rdf:li></rdf:Seq></crs:ToneCurve>" + kept + "<crs:Table/>");
  const std::string text = CorrectXmp(packet, 80, 40).value();
  EXPECT_FALSE(Holds(text, "crs:E") || Holds(text, "crs:L") || Holds(text, "crs:T")) << text;
  EXPECT_EQ(text.find("rdf:Seq"), std::string::npos);
  EXPECT_NE(text.find(kept), std::string::npos);
  EXPECT_NE(text.find("dc:format=\"crs:x\""), std::string::npos);
}

TEST(XmpText, FitsPanoramasAndTurnsUpright) {
  const std::string packet = MakePacket(
      " GPano:FullPanoWidthPixels=\"100\" GPano:CroppedAreaImageWidthPixels=\"80\" tiff:Orientation='6' "
      "GPano:CroppedAreaImageHeightPixels=\"40\" GPano:CroppedAreaTopPixels=\"4\"",
      "<GPano:CroppedAreaLeftPixels>10</GPano:CroppedAreaLeftPixels>"
      "<GPano:FullPanoHeightPixels>many</GPano:FullPanoHeightPixels>");
  const std::string text = CorrectXmp(packet, 40, 20).value();
  for (const char* part :
       {"WidthPixels=\"50\"", "ImageWidthPixels=\"40\"", "LeftPixels>5<", "ImageHeightPixels=\"20\"",
        "TopPixels=\"2\"", "HeightPixels>many<", "tiff:Orientation=\"1\""}) {
    EXPECT_NE(text.find(part), std::string::npos) << part << " in " << text;
  }
  EXPECT_EQ(CorrectXmp(packet, 80, 20).value().find("=\"40\""), std::string::npos);
}

TEST(XmpText, TakesDamagedAndDeepPackets) {
  for (const std::string damaged : {"<crs:A", "x crs:A='", "<a></b>"})
    EXPECT_FALSE(CorrectXmp(damaged, 8, 8));
  std::string deep;
  for (int i = 0; i < 200000; ++i) deep += "<a>";
  for (int i = 0; i < 200000; ++i) deep += "</a>";
  EXPECT_TRUE(CorrectXmp(deep, 8, 8));
}

}  // namespace
