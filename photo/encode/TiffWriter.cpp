#include "photo/encode/TiffWriter.h"

#include <tiffio.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace Photo {
namespace {

using vips::VImage;

constexpr int kRowsPerStrip = 64;

struct sCloseTiff {
  void operator()(TIFF* pTiff) const { TIFFClose(pTiff); }
};
using tTiff = std::unique_ptr<TIFF, sCloseTiff>;

std::size_t GetRowBytes(const VImage& pImage) {
  return VIPS_IMAGE_SIZEOF_LINE(pImage.get_image());
}

/// Offsets of more than 32 bits only where they may be needed: not everybody reads them.
const char* ChooseMode(const VImage& pImage) {
  constexpr double kSafeSize = 3.9e9;
  return static_cast<double>(GetRowBytes(pImage)) * pImage.height() > kSafeSize ? "w8" : "w";
}

void SetShape(TIFF* pTiff, const VImage& pImage, int pCompression, bool pIsPremultiplied) {
  constexpr double kMillimetresPerInch = 25.4;
  TIFFSetField(pTiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(pImage.width()));
  TIFFSetField(pTiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(pImage.height()));
  TIFFSetField(pTiff, TIFFTAG_BITSPERSAMPLE, pImage.format() == VIPS_FORMAT_USHORT ? 16 : 8);
  TIFFSetField(pTiff, TIFFTAG_SAMPLESPERPIXEL, pImage.bands());
  TIFFSetField(pTiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
  TIFFSetField(pTiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(pTiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  TIFFSetField(pTiff, TIFFTAG_ROWSPERSTRIP, static_cast<std::uint32_t>(kRowsPerStrip));
  TIFFSetField(pTiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  TIFFSetField(pTiff, TIFFTAG_XRESOLUTION, pImage.xres() * kMillimetresPerInch);
  TIFFSetField(pTiff, TIFFTAG_YRESOLUTION, pImage.yres() * kMillimetresPerInch);
  const std::uint16_t alpha = pIsPremultiplied ? EXTRASAMPLE_ASSOCALPHA : EXTRASAMPLE_UNASSALPHA;
  if (pImage.bands() == 4) TIFFSetField(pTiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
  TIFFSetField(pTiff, TIFFTAG_COMPRESSION, pCompression == 0 ? COMPRESSION_NONE : COMPRESSION_ADOBE_DEFLATE);
  if (pCompression == 0) return;
  TIFFSetField(pTiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
  TIFFSetField(pTiff, TIFFTAG_ZIPQUALITY, pCompression);
}

/// IPTC is the one block that is counted in words of 32 bits.
void SetBlocks(TIFF* pTiff, const VImage& pImage) {
  const struct {
    const char* fField;
    std::uint32_t fTag;
    std::size_t fUnit;
  } blocks[] = {{VIPS_META_ICC_NAME, TIFFTAG_ICCPROFILE, 1},
                {VIPS_META_XMP_NAME, TIFFTAG_XMLPACKET, 1},
                {VIPS_META_IPTC_NAME, TIFFTAG_RICHTIFFIPTC, 4},
                {VIPS_META_PHOTOSHOP_NAME, TIFFTAG_PHOTOSHOP, 1}};
  for (const auto& block : blocks) {
    if (pImage.get_typeof(block.fField) == 0) continue;
    std::size_t size = 0;
    const auto* const data = static_cast<const char*>(pImage.get_blob(block.fField, &size));
    std::vector<char> whole(data, data + size);
    whole.resize((size + block.fUnit - 1) / block.fUnit * block.fUnit);
    TIFFSetField(pTiff, block.fTag, static_cast<std::uint32_t>(whole.size() / block.fUnit), whole.data());
  }
  if (pImage.get_typeof(VIPS_META_IMAGEDESCRIPTION) == 0) return;
  TIFFSetField(pTiff, TIFFTAG_IMAGEDESCRIPTION, pImage.get_string(VIPS_META_IMAGEDESCRIPTION));
}

/// Strip by strip, so that no more of the picture than one is made at a time.
void WriteStrips(TIFF* pTiff, const VImage& pImage) {
  const std::size_t rowBytes = GetRowBytes(pImage);
  std::vector<VipsPel> strip(rowBytes * kRowsPerStrip);
  const vips::VRegion region = vips::VRegion::new_from_image(pImage);
  std::uint32_t number = 0;
  for (int y = 0; y < pImage.height(); y += kRowsPerStrip, ++number) {
    const int rows = std::min(kRowsPerStrip, pImage.height() - y);
    region.prepare(0, y, pImage.width(), rows);
    for (int i = 0; i < rows; ++i) {
      std::memcpy(&strip[rowBytes * static_cast<std::size_t>(i)], region.addr(0, y + i), rowBytes);
    }
    const auto size = static_cast<tmsize_t>(rowBytes * static_cast<std::size_t>(rows));
    if (TIFFWriteEncodedStrip(pTiff, number, strip.data(), size) < 0) throw vips::VError();
  }
}

}  // namespace

void WriteTiff(const VImage& pImage, int pCompression, bool pIsPremultiplied, const std::string& pPath) {
  const tTiff tiff(TIFFOpen(pPath.c_str(), ChooseMode(pImage)));
  if (tiff == nullptr) throw vips::VError();
  SetShape(tiff.get(), pImage, pCompression, pIsPremultiplied);
  SetBlocks(tiff.get(), pImage);
  WriteStrips(tiff.get(), pImage);
  if (TIFFFlush(tiff.get()) == 0) throw vips::VError();
}

}  // namespace Photo
