#include "photo/decode/VipsSource.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "photo/base/Failure.h"
#include "photo/decode/tiff/RawFile.h"
#include "photo/decode/tiff/TiffDirectories.h"
#include "photo/decode/tiff/TiffSamples.h"
#include "photo/icc/NamedProfile.h"
#include "photo/io/VipsLibrary.h"

namespace Photo {
namespace {

using vips::VImage;

constexpr char kHeifBits[] = "heif-bitdepth";

/// What libvips reads for us.
struct sFormat {
  std::string_view fClass;     ///< The start of its loader's class,
  std::string_view fNickname;  ///< and of the name that it leaves in the picture.
  const char* fName;
  bool fIsTurned;  ///< Its decoder turns pictures upright already; EXIF must not turn them again.
};
constexpr sFormat kFormats[] = {
    {"VipsForeignLoadRad", "rad", "Radiance", false}, {"VipsForeignLoadPng", "png", "PNG", false},
    {"VipsForeignLoadTiff", "tiff", "TIFF", false},   {"VipsForeignLoadJpeg", "jpeg", "JPEG", false},
    {"VipsForeignLoadWebp", "webp", "WebP", false},   {"VipsForeignLoadHeif", "heif", "HEIF", true},
    {"VipsForeignLoadJxl", "jxl", "JPEG XL", true}};

/// Where samples are missing, JPEG decoders make up grey ones: some bytes with a large size in their header
/// could take all memory and a day.
void CheckSize(const std::string& pFile, const VImage& pImage) {
  constexpr double kLarge = 1 << 26;            // pixels
  constexpr double kMostPixelsAByte = 1 << 16;  // far more than any photograph's file holds
  const double pixels = static_cast<double>(pImage.width()) * pImage.height();
  std::error_code error;
  const auto bytes = static_cast<double>(std::filesystem::file_size(pFile, error));
  if (error || pixels <= kLarge || pixels <= bytes * kMostPixelsAByte) return;
  throw cFailure(eFailure::kCannotRead, "damaged or cut short: it is too small for the size it states");
}

const sFormat& FindFormat(const vips::VSource& pSource) {
  const char* const loader = vips_foreign_find_load_source(pSource.get_source());
  const std::string_view name = loader == nullptr ? "" : loader;
  const auto* const format =
      std::find_if(std::begin(kFormats), std::end(kFormats),
                   [&](const sFormat& pKnown) { return name.starts_with(pKnown.fClass); });
  if (format != std::end(kFormats)) return *format;
  vips_error_clear();
  throw cFailure(
      eFailure::kCannotRead,
      "not a picture of a known format, or damaged (known: .exr .hdr .pfm .tif .png .jpg .webp .heic "
      ".avif .jxl)");
}

/// Radiance files begin with the name of the program that wrote them, of which libvips knows one.
vips::VSource OpenSource(const std::string& pFile, const sAmendment* pAmendment) {
  if (pAmendment != nullptr) return OpenAmended(pFile, *pAmendment);
  const std::string shortName = "#?RGBE";
  std::string start(shortName.size() + 1, '\0');
  std::ifstream(pFile, std::ios::binary).read(start.data(), static_cast<std::streamsize>(start.size()));
  if (start == shortName + "\n" || start == shortName + "\r") {
    return OpenAmended(pFile, {0, static_cast<std::int64_t>(shortName.size()), "#?RADIANCE"});
  }
  return vips::VSource::new_from_file(pFile.c_str());
}

void RefuseRawFile(const std::string& pFile) {
  const std::string kind = NameRawFile(pFile);
  if (kind.empty()) return;
  throw cFailure(eFailure::kCannotRead,
                 "is " + kind + ", which cannot be read yet; develop it to a 16-bit TIFF first");
}

/// From a source, not a name: libvips takes a "[" in a name for the start of options. pPage: counted from 1;
/// 0 for the one that comes first, or is the main one.
VImage OpenPage(const std::string& /*pFile*/, const vips::VSource& pSource, VipsAccess pAccess, int pPage) {
  vips::VOption* const options = VImage::option()->set("access", pAccess)->set("fail_on", VIPS_FAIL_ON_ERROR);
  if (pPage > 0) options->set("page", pPage - 1);
  return VImage::new_from_source(pSource, "", options);
}

/// Opens a page of a TIFF file: libvips does not read all kinds of samples.
VImage OpenTiffPage(const std::string& pFile, const vips::VSource& pSource, VipsAccess pAccess, int pPage) {
  const std::vector<sTiffDirectory> pages = ReadTiffDirectories(pFile).fPages;
  const int index = std::max(pPage - 1, 0);
  if (static_cast<std::size_t>(index) < pages.size()) {
    const sTiffDirectory& page = pages[static_cast<std::size_t>(index)];
    if (AreOddSamples(page)) return OpenTiffSamples(pFile, index, pAccess == VIPS_ACCESS_RANDOM);
    if (page.fBits > 8 && page.fBits != 16 && page.fBits != 32) {
      RefuseLayout("it has " + std::to_string(page.fBits) + " bits per sample");
    }
  }
  return OpenPage(pFile, pSource, pAccess, pPage);
}

VImage Open(const std::string& pFile, VipsAccess pAccess, const sPictureChoice& pChoice,
            const sAmendment* pAmendment) {
  RefuseRawFile(pFile);
  const vips::VSource source = OpenSource(pFile, pAmendment);
  const sFormat& format = FindFormat(source);
  const auto open = format.fNickname == "tiff" ? &OpenTiffPage : &OpenPage;
  VImage image = open(pFile, source, pAccess, 0);
  const int pages = CountPages(image);
  if (pChoice.fPage > pages && !(pages == 1 && pChoice.fTakesSingle)) {
    throw cFailure(eFailure::kCannotRead,
                   pages == 1 ? "has only one page; leave {page} out"
                              : "has " + std::to_string(pages) + " pages; give {page} one of them");
  }
  if (pChoice.fPage > 0 && pages > 1) {
    image = open(pFile, OpenSource(pFile, pAmendment), pAccess, pChoice.fPage);
  }
  CheckSize(pFile, image);
  if (!format.fIsTurned || vips_image_get_orientation(image.get_image()) == 1) return image;
  image = image.copy();
  image.set(VIPS_META_ORIENTATION, 1);
  return image;
}

int ColoursOf(VipsInterpretation pModel) {
  switch (pModel) {
    case VIPS_INTERPRETATION_B_W:
    case VIPS_INTERPRETATION_GREY16:
      return 1;
    case VIPS_INTERPRETATION_RGB:
    case VIPS_INTERPRETATION_sRGB:
    case VIPS_INTERPRETATION_RGB16:
    case VIPS_INTERPRETATION_scRGB:
      return 3;
    case VIPS_INTERPRETATION_CMYK:
      return 4;
    default:
      RefuseLayout("its colour model is not supported");
  }
}

}  // namespace

VImage OpenUpright(const std::string& pFile, int pOrientation, const sPictureChoice& pChoice,
                   const sAmendment* pAmendment) {
  VImage image = Open(pFile, VIPS_ACCESS_SEQUENTIAL, pChoice, pAmendment);
  const int orientation = pOrientation > 1 ? pOrientation : vips_image_get_orientation(image.get_image());
  if (orientation > 1) image = Open(pFile, VIPS_ACCESS_RANDOM, pChoice, pAmendment);
  if (orientation <= 1) return image;
  image = Uncode(image).copy();
  image.set(VIPS_META_ORIENTATION, orientation);
  return image.autorot();
}

bool IsCoded(const VImage& pImage) {
  return pImage.coding() == VIPS_CODING_RAD;
}

VImage Uncode(const VImage& pImage) {
  return IsCoded(pImage) ? pImage.rad2float() : pImage;
}

std::string GetFormatName(const VImage& pImage) {
  const auto text = [&](const char* pName) {
    return std::string_view(pImage.get_typeof(pName) == 0 ? "" : pImage.get_string(pName));
  };
  if (text("heif-compression") == "av1") return "AVIF";
  const std::string_view loader = text("vips-loader");
  const auto* const format =
      std::find_if(std::begin(kFormats), std::end(kFormats),
                   [&](const sFormat& pKnown) { return loader.starts_with(pKnown.fNickname); });
  return format == std::end(kFormats) ? "unknown" : format->fName;
}

int CountPages(const VImage& pImage) {
  return pImage.get_typeof(VIPS_META_N_PAGES) == 0 ? 1 : std::max(pImage.get_int(VIPS_META_N_PAGES), 1);
}

int GetSampleBits(const VImage& pImage) {
  if (pImage.get_typeof(kStoredBits) != 0) return pImage.get_int(kStoredBits);
  switch (pImage.format()) {
    case VIPS_FORMAT_UCHAR:
      return 8;
    case VIPS_FORMAT_USHORT:
      return pImage.get_typeof(kHeifBits) == 0 ? 16 : std::clamp(pImage.get_int(kHeifBits), 9, 16);
    default:
      return pImage.format() == VIPS_FORMAT_DOUBLE ? 64 : 32;
  }
}

int GetFullSample(const VImage& pImage) {
  if (pImage.format() == VIPS_FORMAT_UCHAR) return 255;
  if (pImage.get_typeof(kHeifBits) == 0) return 65535;
  return 65536 - (1 << (16 - std::clamp(GetSampleBits(pImage), 1, 16)));
}

void RefuseDamaged() {
  throw cFailure(eFailure::kCannotRead, "damaged or cut short (" + TakeVipsError() + ")");
}

void RefuseLayout(const std::string& pWhat) {
  throw cFailure(eFailure::kCannotRead, pWhat + "; convert it to 8- or 16-bit RGB first");
}

int CountColours(const VImage& pImage) {
  const int colours = ColoursOf(pImage.interpretation());
  const int bands = pImage.bands();
  if (bands < colours || bands > colours + 1) {
    RefuseLayout("it has " + std::to_string(bands) + " channels");
  }
  return colours;
}

std::string GetEmbeddedProfile(const VImage& pImage) {
  if (pImage.get_typeof(VIPS_META_ICC_NAME) == 0) return "";
  std::size_t size = 0;
  const void* const data = pImage.get_blob(VIPS_META_ICC_NAME, &size);
  return FromPngProfile({static_cast<const char*>(data), size});
}

std::unique_ptr<cIccDecoder> MakeDecoder(const std::string& pProfile, int pColours,
                                         std::vector<std::string>& pWarnings) {
  std::unique_ptr<cIccDecoder> decoder;
  if (!pProfile.empty()) {
    decoder = cIccDecoder::FromProfile(pProfile.data(), pProfile.size(), pColours);
    if (decoder == nullptr) {
      pWarnings.emplace_back("its colour profile is damaged or unfit; taken as " +
                             std::string(pColours == 4 ? "common CMYK" : "sRGB"));
    }
  }
  VipsBlob* blob = nullptr;
  if (decoder == nullptr && pColours == 4 && vips_profile_load("cmyk", &blob, nullptr) == 0) {
    std::size_t size = 0;
    const void* const data = vips_blob_get(blob, &size);
    decoder = cIccDecoder::FromProfile(data, size, pColours);
    vips_area_unref(VIPS_AREA(blob));
  }
  return decoder;
}

}  // namespace Photo
