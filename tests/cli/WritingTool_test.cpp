#include <gtest/gtest.h>

#include <limits>

#include "photo/base/Failure.h"
#include "photo/metadata/MetadataLibrary.h"
#include "photo/picture/ConvertFailures.h"
#include "tests/cli/ToolTest.h"
#include "tests/photo/TestPictures.h"

// What the built tool writes: formats, depths, alpha and metadata, checked by libvips and exiftool.

namespace {

using namespace std::string_literals;

const char* const kFiles[] = {"a.png", "a.tif", "a.jpg", "a.webp", "a.avif", "a.jxl"};

std::string Capture(const std::string& pCommand) {
  EXPECT_EQ(std::system((pCommand + " >captured.txt 2>&1").c_str()), 0) << pCommand;
  return ReadText("captured.txt");
}

class WritingTool : public cToolTest {
 protected:
  /// Expects success, and returns the warnings.
  static std::string Equalize(const std::string& pInput, const std::string& pOutput,
                              const std::string& pOptions = "") {
    return Expect(0, "equalize --overwrite " + pInput + " -o " + pOutput + " --saturation 0:0.5 " + pOptions)
        .fErrors;
  }

  /// A JPEG of 48 x 32 stored pixels, lying on its side, with every kind of metadata.
  static void MakeFullJpeg(const std::string& pFile) {
    ToVips8(MakeScene(48, 32, 1.5f)).jpegsave("thumb.jpg", VImage::option()->set("Q", 30));
    ToVips8(MakeScene(48, 32, 1.5f)).jpegsave(pFile.c_str(), VImage::option()->set("Q", 95));
    Capture(
        "exiftool -q -overwrite_original -Make=Maker -GPSLatitude=48.5 -GPSLatitudeRef=N "
        "-IPTC:Keywords=word -XMP-dc:Subject=topic -XMP-GPano:ProjectionType=equirectangular "
        "-XMP-GPano:FullPanoWidthPixels=64 -Orientation#=6 -XMP-tiff:Orientation#=6 "
        "-ExifIFD:ExifImageWidth=48 -ExifImageHeight=32 "
        "-ColorSpace#=1 '-ThumbnailImage<=thumb.jpg' " +
        pFile);
  }

  /// The values of the tags, with commas; "-" for a tag that is not there.
  static std::string ReadTags(const std::string& pFile, const std::string& pTags) {
    std::string text = Capture("exiftool -n -s3 -f " + pTags + " " + pFile);
    std::replace(text.begin(), text.end(), '\n', ',');
    return text;
  }

  /// Mean difference of one band, in parts of the full sample.
  static double BandDifference(const std::string& pA, const std::string& pB, int pBand) {
    const auto load = [&](const std::string& pFile) {
      const VImage image = VImage::new_from_file(pFile.c_str());
      return image[pBand].cast(VIPS_FORMAT_DOUBLE) / (image.format() == VIPS_FORMAT_USHORT ? 65535.0 : 255.0);
    };
    return (load(pA) - load(pB)).abs().avg();
  }
};

TEST_F(WritingTool, HoldsDepthColoursAndAlpha) {
  const VImage shallow = ToVips8(MakeScene(48, 32, 1.5f));
  const VImage deep = ToVips16(MakeScene(48, 32, 1.5f));
  const VImage ramp = VImage::xyz(48, 32)[0];
  shallow.bandjoin((ramp * 5).cast(VIPS_FORMAT_UCHAR)).pngsave("8.png");
  deep.bandjoin((ramp * 1311).cast(VIPS_FORMAT_USHORT)).pngsave("16.png");
  const struct {
    const char* fInput;
    const char* fFile;
    const char* fOptions;
    int fDepth;          // of the loaded picture
    double fDifference;  // of the colours: just above what the format and its encoder leave
    double fAlpha;       // of alpha; below 0 for none
  } cases[] = {{"8.png", "a.png", "--compression 9", 8, 0.0, 0.0},
               {"8.png", "a.tif", "--compression 0", 8, 0.0, 0.0},
               {"8.png", "a.TIFF", "", 8, 0.0, 0.0},
               {"8.png", "a.webp", "", 8, 0.0077, 0.0},
               {"8.png", "a.jpeg", "", 8, 0.0074, -1.0},
               {"8.png", "a.avif", "", 8, 0.0051, 7e-4},
               {"8.png", "a.jxl", "--quality 100", 8, 0.0, 0.0},
               {"16.png", "a.png", "", 16, 2.1e-5, 0.0},
               {"16.png", "a.tif", "", 16, 2.1e-5, 0.0},
               {"16.png", "a.jxl", "", 16, 0.0089, 1.3e-6},
               {"16.png", "a.avif", "", 16, 0.0032, 4.5e-4},
               {"16.png", "a.png", "--depth 8", 8, 0.0013, 0.001},
               {"16.png", "a.webp", "", 8, 0.0078, 0.001}};
  for (const auto& row : cases) {
    const std::string name = std::string(row.fInput) + " to " + row.fFile + " " + row.fOptions;
    const std::string said = Equalize(row.fInput, row.fFile, row.fOptions);
    EXPECT_EQ(bool{Has(said, "JPEG holds no transparency")}, row.fAlpha < 0.0) << name << said;
    const sStored stored = Load(row.fFile);
    EXPECT_EQ(stored.fShape, (std::vector<int>{48, 32, row.fAlpha < 0.0 ? 3 : 4, row.fDepth})) << name;
    if (std::string(row.fFile) != "a.jxl") {  // which names the colour space
      EXPECT_EQ(stored.fProfile, ProfileOf(TmEngine::cColorSpace_sRGB::GetIccProfile())) << name;
    }
    if (row.fAlpha >= 0.0) {
      EXPECT_LE(BandDifference(row.fFile, row.fInput, 3), row.fAlpha) << name;
      continue;  // under small alphas, encoders are free in their choice of colours
    }
    for (int i = 0; i < 3; ++i) EXPECT_LE(BandDifference(row.fFile, row.fInput, i), row.fDifference) << name;
  }
  shallow.pngsave("8.png");
  deep.pngsave("16.png");
  for (const auto& row : cases) {
    Equalize(row.fInput, row.fFile, row.fOptions);
    for (int i = 0; i < 3; ++i) {
      EXPECT_LE(BandDifference(row.fFile, row.fInput, i), row.fDifference) << row.fFile << ' ' << row.fInput;
    }
  }
}

TEST_F(WritingTool, ChoosesBetweenSizeAndQualityOrTime) {
  ToVips8(MakeScene(400, 300, 1.5f)).pngsave("in.png");
  for (const char* file : kFiles) {
    const bool isLossless = std::string(file) == "a.png" || std::string(file) == "a.tif";
    const std::string option = isLossless ? "--compression " : "--quality ";
    Equalize("in.png", file, option + (isLossless ? "9" : "30"));
    const auto small = fs::file_size(file);
    Equalize("in.png", file);
    const auto usual = fs::file_size(file);
    Equalize("in.png", file, option + (isLossless ? "0" : "100"));
    EXPECT_LT(small, usual) << file;
    EXPECT_LT(usual, fs::file_size(file)) << file;
  }
}

TEST_F(WritingTool, WritesTheSameBytesAgain) {
  MakeFullJpeg("in.jpg");
  WriteRadiance("in.hdr", MakeScene(700, 500));
  for (const std::string file : kFiles) {
    for (const std::string verb :
         {"tonemap in.hdr --overwrite -o ", "equalize in.jpg --overwrite --saturation 0:0.6 -o "}) {
      std::set<std::string> results;
      for (const char* threads : {"1", "2", "5"}) {
        Expect(0, verb + file, std::string("VIPS_CONCURRENCY=") + threads);
        results.insert(ReadText(file));
      }
      EXPECT_EQ(results.size(), 1u) << verb << file;
    }
  }
}

TEST_F(WritingTool, KeepsAndCorrectsMetadata) {
  if (!Photo::HasExiv2()) GTEST_SKIP() << "built without Exiv2";
  MakeFullJpeg("in.jpg");
  const std::string tags =
      "-IFD0:Make -GPS:GPSLatitude -IPTC:Keywords -XMP-dc:Subject -XMP-GPano:ProjectionType "
      "-IFD0:Orientation -XMP-tiff:Orientation -ExifIFD:ExifImageWidth -ExifIFD:ColorSpace -Warning";
  const std::string start = "Maker,48.5,";
  const std::string end = "topic,equirectangular,1,1,32,1,-,";
  const struct {
    const char* fFile;
    const char* fOptions;
    std::string fTags;
    bool fHasThumbnail;
  } cases[] = {{"a.jpg", "", start + "word," + end, true},
               {"a.png", "", start + "word," + end, true},
               {"a.tif", "", start + "word," + end, false},
               {"a.webp", "", start + "-," + end, true},
               {"a.avif", "", start + "-," + end, true},
               {"a.jxl", "", start + "-," + end, true},
               {"a.jxl", "--metadata exif --quality 100", "Maker,48.5,-,-,-,1,-,32,1,-,", true},
               {"a.jxl", "--metadata none", "-,-,-,-,-,-,-,-,-,-,", false},
               {"a.jpg", "--metadata none", "-,-,-,-,-,-,-,-,-,-,", false},
               {"a.tif", "--metadata exif", "Maker,48.5,-,-,-,1,-,32,1,-,", false},
               {"a.png", "--metadata xmp,iptc", "-,-,word,topic,equirectangular,-,1,-,-,-,", false},
               {"a.tif", "--metadata iptc", "-,-,word,-,-,1,-,-,-,-,", false}};
  for (const auto& row : cases) {
    const std::string name = std::string(row.fFile) + " " + row.fOptions;
    EXPECT_EQ(Equalize("in.jpg", row.fFile, row.fOptions), "") << name;
    EXPECT_EQ(ReadTags(row.fFile, tags), row.fTags) << name;
    EXPECT_EQ(Capture(std::string("exiftool -s3 -FileTypeExtension ") + row.fFile), row.fFile + 2 + "\n"s);
    const std::string record = Run(std::string("inspect --json ") + row.fFile).fOutput;
    const bool isMade = row.fTags.starts_with("Maker");
    EXPECT_EQ(bool{Has(record, "\"camera\":\"Maker\"")}, isMade) << name << record;
    EXPECT_EQ(bool{Has(record, "\"position\":\"48.50000 N\"")}, isMade) << name << record;
    const std::string thumbnail = Capture(std::string("exiftool -b -ThumbnailImage ") + row.fFile);
    EXPECT_EQ(!thumbnail.empty(), row.fHasThumbnail) << name;
    if (!row.fHasThumbnail) continue;
    WriteText("shown.jpg", thumbnail);
    EXPECT_EQ(Load("shown.jpg").fShape[1], 160) << name;  // upright
  }
  // TIFF, PNG and JPEG XL hand on what they hold.
  for (const std::string input : {"a.tif", "a.png", "a.jxl"}) {
    Equalize("in.jpg", input);
    Equalize(input, "b.jpg");
    EXPECT_EQ(ReadTags("b.jpg", tags), start + (input == "a.jxl" ? "-," : "word,") + end) << input;
  }
  // A tone-mapped picture states its own colours and sizes.
  Expect(0, "tonemap in.jpg --overwrite -o a.jpg --colorspace adobergb --preview 24");
  EXPECT_EQ(ReadTags("a.jpg", "-IFD0:Make -ExifIFD:ColorSpace -XMP-GPano:FullPanoWidthPixels"),
            "Maker,65535,16,");
}

TEST_F(WritingTool, MetadataLeaveThePictureOfJpegXlAsItIs) {
  if (!Photo::HasExiv2()) GTEST_SKIP() << "built without Exiv2";
  MakeFullJpeg("in.jpg");
  for (const std::string options : {"--depth 8", "--depth 16 --quality 100"}) {  // boxes without metadata too
    Equalize("in.jpg", "a.jxl", options);
    Equalize("in.jpg", "b.jxl", options + " --metadata none");
    EXPECT_LT(fs::file_size("b.jxl"), fs::file_size("a.jxl")) << options;
    EXPECT_EQ(Load("a.jxl").fSamples, Load("b.jxl").fSamples) << options;
    for (const std::string name : {"a", "b"}) Capture("djxl " + name + ".jxl " + name + ".ppm");
    EXPECT_TRUE(ReadText("a.ppm") == ReadText("b.ppm")) << options;
  }
  Capture("cjxl in.jpg packed.jxl");  // by Brotli
  EXPECT_EQ(Equalize("packed.jxl", "a.png"), "");
  EXPECT_EQ(ReadTags("a.png", "-IFD0:Make -XMP-dc:Subject"), "Maker,topic,");
}

TEST_F(WritingTool, WritesExrAttributesAsExif) {
  if (!Photo::HasExiv2()) GTEST_SKIP() << "built without Exiv2";
  const float infinity = std::numeric_limits<float>::infinity();
  const struct {
    sExrKind fKind;
    const char* fTags;
    const char* fExpected;
  } cases[] = {
      {{.fTexts = {{"owner", "Ann"}, {"comments", "K\xc3\xbcste"}, {"capDate", "2026:03:01 12:34:56"}},
        .fNumbers = {{"utcOffset", -20700.0f}}},
       "-IFD0:Copyright -IFD0:ImageDescription -ExifIFD:DateTimeOriginal -ExifIFD:OffsetTimeOriginal",
       "Ann,K\xc3\xbcste,2026:03:01 12:34:56,+05:45,"},
      {{.fNumbers =
            {{"expTime", 1.0f / 3.0f}, {"aperture", 2.8f}, {"isoSpeed", 400.0f}, {"focus", infinity}}},
       "-ExposureTime -FNumber -ISO -SubjectDistance",
       "0.3333333333,2.8,400,4294967295,"},
      {{.fTexts = {{"lensModel", "Long"}}, .fNumbers = {{"nominalFocalLength", 85.5f}, {"xDensity", 300.0f}}},
       "-LensModel -ExifIFD:FocalLength -XResolution -ResolutionUnit",
       "Long,85.5,300,2,"},
      {{.fNumbers = {{"latitude", 27.717f}, {"longitude", 85.317f}, {"altitude", 1305.0f}}},
       "-GPS:GPSLatitude -GPS:GPSLatitudeRef -GPS:GPSLongitude -GPS:GPSAltitude",
       "27.717,N,85.317,1305,"},
      {{.fNumbers = {{"latitude", -0.5f}, {"longitude", -180.0f}, {"altitude", -3.5f}}},
       "-Composite:GPSLatitude -Composite:GPSLongitude -Composite:GPSAltitude",
       "-0.5,-180,-3.5,"},
      {{.fTexts = {{"capDate", "1 March 2026"}, {"owner", ""}},
        .fNumbers = {{"expTime", -1.0f}, {"latitude", 91.0f}, {"isoSpeed", std::nanf("")}, {"focus", 0.0f}}},
       "-ExifIFD:all -GPS:all -IFD0:Copyright",
       "-,"}};
  for (const auto& row : cases) {
    WriteExr("in.exr", MakeScene(), row.fKind);
    for (const char* file : {"a.jpg", "a.tif"}) {
      ExpectDone(std::string("tonemap in.exr --overwrite -o ") + file);
      EXPECT_EQ(ReadTags(file, row.fTags), row.fExpected) << file;
    }
    const auto summarize = [](const std::string& pFile) {
      const std::string record = Run("inspect --json " + pFile).fOutput;
      const std::size_t start = record.find("\"metadata\"");
      return record.substr(start, record.find("\"suggested\"") - start);
    };
    EXPECT_EQ(summarize("in.exr"), summarize("a.tif"));
  }
}

/// Twice as much as a JPEG's segment takes.
TEST_F(WritingTool, LeavesOutXmpThatIsTooLong) {
  if (!Photo::HasExiv2()) GTEST_SKIP() << "built without Exiv2";
  WriteText("long.txt", std::string(60000, '&'));
  ToVips8(MakeScene()).tiffsave("long.tif");
  Capture("exiftool -q -overwrite_original -Make=Maker '-XMP-dc:Title<=long.txt' long.tif");
  EXPECT_TRUE(Has(Equalize("long.tif", "a.jpg"), "warning: its XMP is left out ("));
  EXPECT_EQ(ReadTags("a.jpg", "-IFD0:Make -XMP-dc:Title"), "Maker,-,");
}

TEST_F(WritingTool, LeavesTheOldFileWhenTheDiskIsFullBeforeItsMetadata) {
  if (!Photo::HasExiv2()) GTEST_SKIP() << "built without Exiv2";
  MakeFullJpeg("in.jpg");
  Equalize("in.jpg", "a.jpg", "--metadata none");
  const std::string before = ReadText("a.jpg");
  const std::string limit = "ulimit -f " + std::to_string(before.size() / 512 + 2) + ";";
  ExpectFailure(4, "equalize in.jpg --overwrite --saturation 0:0.5 -o a.jpg", "a.jpg: writing failed (",
                limit);
  EXPECT_EQ(ReadText("a.jpg"), before);
}

TEST_F(WritingTool, KeepsWideColours) {
  ToVips16(MakeScene(48, 32, 1.5f)).pngsave("in.png");
  const auto show = [](const std::string& pFile) {
    VImage::new_from_file(pFile.c_str()).icc_transform("srgb").pngsave("shown.png");
    return Load("shown.png");
  };
  Run("tonemap in.png --overwrite -o a.png --colorspace prophoto");
  const sStored expected = show("a.png");
  const std::pair<std::string, double> cases[] = {
      {"a.tif", 0.0}, {"a.jpg", 2.8}, {"a.webp", 3.2}, {"a.avif", 1.9}, {"a.jxl", 0.0}};
  for (const auto& [file, limit] : cases) {
    Expect(0, "tonemap in.png --colorspace prophoto --overwrite -o " + file);
    EXPECT_LE(MeanDifference(show(file), expected), limit) << file;
  }
}

TEST_F(WritingTool, RefusesOptionsThatDoNotFit) {
  WritePfm("in.pfm", MakeScene());
  ToVips8(MakeScene(17000, 2)).pngsave("wide.png");
  const std::pair<const char*, const char*> cases[] = {
      {"a.png --quality 90", "a.png: PNG loses nothing and has no --quality; --compression is its"},
      {"a.tif --quality 90", "a.tif: TIFF loses nothing and has no --quality"},
      {"a.jpg --compression 6", "a.jpg: --compression is for .png and .tif; JPEG takes --quality"},
      {"a.webp --compression 6", "a.webp: --compression is for .png and .tif; WebP takes --quality"},
      {"a.jxl --quality 0", "--quality: 0 is not a whole number from 1 to 100"},
      {"a.jpg --quality 2.5", "--quality: 2.5 is not a whole number from 1 to 100"},
      {"a.png --compression 10", "--compression: 10 is not a whole number from 0 to 9"},
      {"a.webp --depth 16", "a.webp: WebP holds 8 bits only; use --depth 8, or write .png, .tif or .jxl"},
      {"a.avif --depth 16", "a.avif: AVIF holds 8 or 12 bits; use --depth 8 or 12, or write .png"},
      {"a.png --depth 12", "a.png: PNG holds 8 or 16 bits; use --depth 8 or 16, or write .avif"},
      {"a.png --metadata exif,all", "--metadata: 'all' is neither all nor none, nor one of exif, xmp"},
      {"a.bmp", "a.bmp: unknown extension of an output name; use .png, .tif, .jpg, .webp, .avif or .jxl"}};
  for (const auto& [arguments, text] : cases) {
    ExpectFailure(2, std::string("tonemap in.pfm --overwrite -o ") + arguments, text);
  }
  ExpectFailure(4, "equalize wide.png -o a.webp --saturation 0:0",
                "a.webp: WebP holds at most 16383 pixels a side, and the picture has 17000 x 2");
}

/// For runs that end in the same way for every kind of file that the tool writes: pBefore as in Run, pFolder
/// ends in a slash.
class FullDiskTool : public cToolTest {
 protected:
  static void ExpectRefused(const std::string& pBefore, const std::string& pFolder,
                            const std::string& pReason) {
    WritePfm("scene.pfm", MakeScene(400, 300));
    Run("tonemap scene.pfm -o a.png --overwrite");
    const std::pair<const char*, const char*> cases[] = {
        {"tonemap scene.pfm --overwrite -o ", "a.tif"},
        {"tonemap scene.pfm --overwrite -o ", "b.png"},
        {"tonemap scene.pfm --overwrite -o ", "c.jpg"},
        {"tonemap scene.pfm --overwrite -o ", "d.webp"},
        {"tonemap scene.pfm --overwrite -o ", "e.avif"},
        {"tonemap scene.pfm --overwrite -o ", "f.jxl"},
        {"inspect scene.pfm --overwrite --plot ", "g.svg"},
        {"inspect scene.pfm --overwrite --plot ", "h.png"},
        {"compare a.png a.png --overwrite -o ", "i.png"},
        {"equalize a.png --saturation 0:0.4 --overwrite -o ", "j.tif"},
        {"equalize --saturation 0:0.4 --overwrite --plot ", "k.svg"}};
    for (const auto& [command, file] : cases) {
      const std::string target = pFolder + file;
      WriteText(target, "old");
      const sRun run = Expect(4, command + target, pBefore);  // inspect prints before it plots
      EXPECT_EQ(run.fErrors, "quorvane: " + target + ": writing failed (" + pReason + ")\n");
      EXPECT_EQ(ReadText(target), "old");
      fs::remove(target);
    }
    EXPECT_EQ(ListFolder(), (std::set<std::string>{"a.png", "full", "scene.pfm"}));
    EXPECT_TRUE(fs::is_empty("full"));
  }
};

TEST_F(FullDiskTool, NamesTheTargetAndTheReason) {
  fs::create_directory("full");
  ExpectRefused("ulimit -f 8;", "", "File too large");
  const sRun stream = Run("tonemap scene.pfm -o -", "ulimit -f 8;");  // part of it may be printed
  EXPECT_EQ(stream.fErrors, "quorvane: standard output: writing failed (File too large)\n");
  EXPECT_EQ(
      std::system("'" QUORVANE_TOOL "' equalize a.png --saturation 0:0.4 -o - >/dev/full 2>errors") / 256, 4);
  EXPECT_EQ(ReadText("errors"), "quorvane: standard output: No space left on device\n");
  fs::remove("errors");
  if (std::system("mount -t tmpfs -o size=12k none full 2>/dev/null") != 0) {
    GTEST_SKIP() << "no file system can be mounted here: a full one is left out";
  }
  ExpectRefused("", "full/", "No space left on device");
  EXPECT_EQ(std::system("umount full"), 0);
}

TEST(Failure, NamesFileAndReasonWhenTheEngineIsOutOfMemory) {
  const auto render = [] {
    throw TmEngine::cOutOfMemoryException("The grid is too large.", 1, "file", "time", "function");
  };
  try {
    Photo::NameFile("a.hdr",
                    [&] { Photo::ConvertFailures(Photo::eFailure::kProcessing, "tone-map", render); });
    ADD_FAILURE() << "no failure";
  } catch (const Photo::cFailure& failure) {
    EXPECT_STREQ(failure.what(), "a.hdr: not enough memory to tone-map it: The grid is too large.");
    EXPECT_EQ(failure.GetKind(), Photo::eFailure::kProcessing);
  }
}

}  // namespace
