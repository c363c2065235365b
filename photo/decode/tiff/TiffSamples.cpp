#include "photo/decode/tiff/TiffSamples.h"

#include <Imath/half.h>
#include <tiffio.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <vector>

namespace Photo {
namespace {

using vips::VImage;

struct sCloseTiff {
  void operator()(TIFF* pTiff) const { TIFFClose(pTiff); }
};

template <class tNumber>
tNumber GetTag(TIFF* pTiff, std::uint32_t pTag) {
  tNumber number = 0;
  TIFFGetFieldDefaulted(pTiff, pTag, &number);
  return number;
}

/// Floats are stored as the machine has them.
template <class tStored, class tToFloat>
void UnpackFloats(const std::uint8_t* pFrom, int pCount, int pStep, float* pTo, const tToFloat& pToFloat) {
  for (int i = 0; i < pCount; ++i, pFrom += sizeof(tStored), pTo += pStep) {
    tStored stored;
    std::memcpy(&stored, pFrom, sizeof stored);
    *pTo = pToFloat(stored);
  }
}

/// Integers follow each other bit by bit, the highest first.
void UnpackBits(const std::uint8_t* pFrom, int pBits, int pCount, int pStep, std::uint16_t* pTo) {
  const unsigned full = (1u << pBits) - 1;
  std::uint32_t held = 0;
  int heldBits = 0;
  for (int i = 0; i < pCount; ++i, pTo += pStep) {
    for (; heldBits < pBits; heldBits += 8) held = held << 8 | *pFrom++;
    heldBits -= pBits;
    *pTo = static_cast<std::uint16_t>(((held >> heldBits & full) * 65535u + full / 2) / full);
  }
}

/// Reads and unpacks the rows of a page.
class cTiffSamples {
 public:
  cTiffSamples(const std::string& pFile, int pPage, bool pKeepsRows)
      : fTiff(TIFFOpen(pFile.c_str(), "r")), fPage(static_cast<tdir_t>(pPage)), fKeepsRows(pKeepsRows) {
    Check(fTiff != nullptr && TIFFSetDirectory(Tiff(), fPage) != 0);
    fWidth = static_cast<int>(GetTag<std::uint32_t>(Tiff(), TIFFTAG_IMAGEWIDTH));
    fHeight = static_cast<int>(GetTag<std::uint32_t>(Tiff(), TIFFTAG_IMAGELENGTH));
    fSamples = GetTag<std::uint16_t>(Tiff(), TIFFTAG_SAMPLESPERPIXEL);
    fBits = GetTag<std::uint16_t>(Tiff(), TIFFTAG_BITSPERSAMPLE);
    fIsFloat = GetTag<std::uint16_t>(Tiff(), TIFFTAG_SAMPLEFORMAT) == SAMPLEFORMAT_IEEEFP;
    fIsPlanar = GetTag<std::uint16_t>(Tiff(), TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    fPhotometric = GetTag<std::uint16_t>(Tiff(), TIFFTAG_PHOTOMETRIC);
    Check(fWidth > 0 && fHeight > 0 && fWidth < VIPS_MAX_COORD && fHeight < VIPS_MAX_COORD);
    constexpr int kMostSamples = 8;
    Check(fSamples > 0 && fSamples <= kMostSamples);
    Check(fIsFloat ? fBits == 16 || fBits == 64 : fBits > 8 && fBits < 16);
    SetBlocks();
  }

  TIFF* Tiff() const { return fTiff.get(); }
  int GetBits() const { return fBits; }

  /// In the shape of the page, without pixels.
  void Describe(VipsImage* pTo) const {
    const bool isKnown = fPhotometric == PHOTOMETRIC_RGB || fPhotometric == PHOTOMETRIC_MINISBLACK;
    const bool isGrey = fPhotometric == PHOTOMETRIC_MINISBLACK;
    const VipsInterpretation integers = isGrey ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_RGB16;
    const VipsInterpretation floats = isGrey ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_scRGB;
    vips_image_init_fields(pTo, fWidth, fHeight, fSamples, fIsFloat ? VIPS_FORMAT_FLOAT : VIPS_FORMAT_USHORT,
                           VIPS_CODING_NONE,
                           !isKnown   ? VIPS_INTERPRETATION_MULTIBAND
                           : fIsFloat ? floats
                                      : integers,
                           1.0, 1.0);
  }

  void ReadRows(VipsRegion* pTo) {
    const std::lock_guard<std::mutex> lock(fMutex);
    const VipsRect& area = pTo->valid;
    if (fKeepsRows && fRows.empty()) KeepRows();
    const std::size_t pixelBytes = GetRowBytes() / static_cast<std::size_t>(fWidth);
    for (int y = area.top; y < area.top + area.height; ++y) {
      const std::uint8_t* const row =
          fKeepsRows ? &fRows[GetRowBytes() * static_cast<std::size_t>(y)] : Seek(y);
      std::memcpy(VIPS_REGION_ADDR(pTo, area.left, y), row + pixelBytes * static_cast<std::size_t>(area.left),
                  pixelBytes * static_cast<std::size_t>(area.width));
    }
  }

 private:
  static void Check(bool pIsRight) {
    if (!pIsRight) throw std::runtime_error("a TIFF page cannot be read");
  }

  std::size_t GetSampleBytes() const { return fIsFloat ? sizeof(float) : sizeof(std::uint16_t); }
  std::size_t GetRowBytes() const {
    return GetSampleBytes() * static_cast<std::size_t>(fSamples) * static_cast<std::size_t>(fWidth);
  }

  /// Rows come in blocks: tiles side by side, strips, or single rows of strips that hold whole pixels. Blocks
  /// far larger than the picture are not worth their memory.
  void SetBlocks() {
    fIsTiled = TIFFIsTiled(Tiff()) != 0;
    fBlockWidth = fIsTiled ? static_cast<int>(GetTag<std::uint32_t>(Tiff(), TIFFTAG_TILEWIDTH)) : fWidth;
    fBlockHeight = 1;
    if (fIsTiled) fBlockHeight = static_cast<int>(GetTag<std::uint32_t>(Tiff(), TIFFTAG_TILELENGTH));
    if (!fIsTiled && fIsPlanar) {
      const auto rows = GetTag<std::uint32_t>(Tiff(), TIFFTAG_ROWSPERSTRIP);
      fBlockHeight = static_cast<int>(std::min(rows, static_cast<std::uint32_t>(fHeight)));
    }
    Check(fBlockWidth > 0 && fBlockHeight > 0);
    fAcross = (fWidth - 1) / fBlockWidth + 1;
    const tmsize_t size = fIsTiled    ? TIFFTileSize(Tiff())
                          : fIsPlanar ? TIFFStripSize(Tiff())
                                      : TIFFScanlineSize(Tiff());
    fBlockRowBytes = fIsTiled ? TIFFTileRowSize(Tiff()) : TIFFScanlineSize(Tiff());
    const double most = 16.0 * fSamples * (fWidth + 1024.0) * (fHeight + 1024.0);
    Check(size > 0 && fBlockRowBytes > 0 && size >= fBlockRowBytes * fBlockHeight);
    Check(static_cast<double>(size) * fAcross * GetPlanes() <= most);
    const std::int64_t rowBits = std::int64_t{fBlockWidth} * (fIsPlanar ? 1 : fSamples) * fBits;
    Check(fBlockRowBytes >= (rowBits + 7) / 8);
    fBlockBytes = static_cast<std::size_t>(size);
  }
  int GetPlanes() const { return fIsPlanar ? fSamples : 1; }

  void KeepRows() {
    std::vector<std::uint8_t> rows(GetRowBytes() * static_cast<std::size_t>(fHeight));
    for (int y = 0; y < fHeight; ++y) {
      std::memcpy(&rows[GetRowBytes() * static_cast<std::size_t>(y)], Seek(y), GetRowBytes());
    }
    fRows.swap(rows);
  }

  /// The unpacked row.
  const std::uint8_t* Seek(int pY) {
    if (fRow.empty()) {  // not before: until now nobody knows whether there is memory for the picture
      fBlocks.resize(fBlockBytes * static_cast<std::size_t>(fAcross * GetPlanes()));
      fRow.resize(GetRowBytes());
    }
    if (pY + 1 < fNext) {  // decoders go downwards
      Check(TIFFSetDirectory(Tiff(), fPage) != 0);
      fNext = 0;
    }
    for (; fNext <= pY; ++fNext) {
      if (fNext % fBlockHeight == 0) ReadBlocks(fNext);
      if (fNext == pY) UnpackRow(fNext % fBlockHeight);
    }
    return fRow.data();
  }

  void ReadBlocks(int pY) {
    std::uint8_t* to = fBlocks.data();
    const auto size = static_cast<tmsize_t>(fBlockBytes);
    const auto y = static_cast<std::uint32_t>(pY);
    for (int plane = 0; plane < GetPlanes(); ++plane) {
      const auto sample = static_cast<std::uint16_t>(plane);
      for (int i = 0; i < fAcross; ++i, to += fBlockBytes) {
        if (fIsTiled) {
          const auto x = static_cast<std::uint32_t>(i * fBlockWidth);
          Check(TIFFReadEncodedTile(Tiff(), TIFFComputeTile(Tiff(), x, y, 0, sample), to, size) >= 0);
        } else if (fIsPlanar) {
          Check(TIFFReadEncodedStrip(Tiff(), TIFFComputeStrip(Tiff(), y, sample), to, size) >= 0);
        } else {
          Check(TIFFReadScanline(Tiff(), to, y, 0) >= 0);
        }
      }
    }
  }

  void UnpackRow(int pRowOfBlock) {
    const int step = fIsPlanar ? fSamples : 1;
    const std::uint8_t* from = fBlocks.data() + fBlockRowBytes * pRowOfBlock;
    for (int plane = 0; plane < GetPlanes(); ++plane) {
      for (int i = 0; i < fAcross; ++i, from += fBlockBytes) {
        const int x = i * fBlockWidth;
        const int pixels = std::min(fBlockWidth, fWidth - x);
        const int count = fIsPlanar ? pixels : pixels * fSamples;
        Unpack(from, count, step, x * fSamples + plane);
      }
    }
  }

  void Unpack(const std::uint8_t* pFrom, int pCount, int pStep, int pTo) {
    auto* const floats = reinterpret_cast<float*>(fRow.data());
    if (!fIsFloat) {
      return UnpackBits(pFrom, fBits, pCount, pStep, reinterpret_cast<std::uint16_t*>(fRow.data()) + pTo);
    }
    if (fBits == 16) {
      return UnpackFloats<std::uint16_t>(pFrom, pCount, pStep, floats + pTo, [](std::uint16_t pBits) {
        Imath::half number;
        number.setBits(pBits);
        return static_cast<float>(number);
      });
    }
    UnpackFloats<double>(pFrom, pCount, pStep, floats + pTo,
                         [](double pNumber) { return static_cast<float>(pNumber); });
  }

  std::unique_ptr<TIFF, sCloseTiff> fTiff;
  tdir_t fPage;
  bool fKeepsRows;
  int fWidth = 0;
  int fHeight = 0;
  int fSamples = 0;
  int fBits = 0;
  bool fIsFloat = false;
  bool fIsPlanar = false;
  bool fIsTiled = false;
  int fPhotometric = 0;
  int fBlockWidth = 0;
  int fBlockHeight = 0;
  int fAcross = 0;  ///< Blocks in a row of blocks and a plane.
  tmsize_t fBlockRowBytes = 0;
  std::size_t fBlockBytes = 0;
  std::vector<std::uint8_t> fBlocks;  ///< A row of them, plane by plane.
  std::vector<std::uint8_t> fRow;     ///< The last one, unpacked.
  int fNext = 0;                      ///< The row behind it.
  std::vector<std::uint8_t> fRows;    ///< All, where they are kept.
  std::mutex fMutex;
};

/// Exceptions must not go through libvips.
int Generate(VipsRegion* pTo, void*, void* pSamples, void*, gboolean*) {
  try {
    static_cast<cTiffSamples*>(pSamples)->ReadRows(pTo);
    return 0;
  } catch (const std::exception& error) {
    vips_error("tiff", "%s", error.what());
    return -1;
  }
}

void SetBlob(TIFF* pTiff, std::uint32_t pTag, VipsImage* pTo, const char* pName) {
  std::uint32_t size = 0;
  void* data = nullptr;
  if (TIFFGetField(pTiff, pTag, &size, &data) != 0) vips_image_set_blob_copy(pTo, pName, data, size);
}

void SetMetadata(TIFF* pTiff, VipsImage* pTo) {
  SetBlob(pTiff, TIFFTAG_ICCPROFILE, pTo, VIPS_META_ICC_NAME);
  SetBlob(pTiff, TIFFTAG_XMLPACKET, pTo, VIPS_META_XMP_NAME);
  const int orientation = GetTag<std::uint16_t>(pTiff, TIFFTAG_ORIENTATION);
  vips_image_set_int(pTo, VIPS_META_ORIENTATION, orientation >= 1 && orientation <= 8 ? orientation : 1);
  vips_image_set_string(pTo, VIPS_META_LOADER, "tiffload_source");
  const bool isMetric = GetTag<std::uint16_t>(pTiff, TIFFTAG_RESOLUTIONUNIT) == RESUNIT_CENTIMETER;
  const double across = static_cast<double>(GetTag<float>(pTiff, TIFFTAG_XRESOLUTION));
  const double down = static_cast<double>(GetTag<float>(pTiff, TIFFTAG_YRESOLUTION));
  if (!(across > 0.0 && down > 0.0)) return;
  pTo->Xres = across / (isMetric ? 10.0 : 25.4);
  pTo->Yres = down / (isMetric ? 10.0 : 25.4);
  vips_image_set_string(pTo, VIPS_META_RESOLUTION_UNIT, isMetric ? "cm" : "in");
}

}  // namespace

bool AreOddSamples(const sTiffDirectory& pPage) {
  constexpr std::uint64_t kUnsigned = 1;
  constexpr std::uint64_t kFloat = 3;
  const std::uint64_t bits = pPage.fBits;
  return (pPage.fSampleFormat == kFloat && (bits == 16 || bits == 64)) ||
         (pPage.fSampleFormat == kUnsigned && bits > 8 && bits < 16);
}

VImage OpenTiffSamples(const std::string& pFile, int pPage, bool pIsRandom) {
  std::unique_ptr<cTiffSamples> samples;
  try {
    samples = std::make_unique<cTiffSamples>(pFile, pPage, pIsRandom);
  } catch (const std::exception&) {
    throw vips::VError();
  }
  VipsImage* const made = vips_image_new();
  const VImage image(made);
  samples->Describe(made);
  SetMetadata(samples->Tiff(), made);
  vips_image_set_int(made, kStoredBits, samples->GetBits());
  const auto pages = static_cast<int>(ReadTiffDirectories(pFile).fPages.size());
  if (pages > 1) vips_image_set_int(made, VIPS_META_N_PAGES, pages);
  cTiffSamples* const kept = samples.release();
  g_object_set_data_full(G_OBJECT(made), "samples", kept,
                         [](gpointer pKept) { delete static_cast<cTiffSamples*>(pKept); });
  if (vips_image_pipelinev(made, VIPS_DEMAND_STYLE_THINSTRIP, nullptr) != 0 ||
      vips_image_generate(made, nullptr, &Generate, nullptr, kept, nullptr) != 0) {
    throw vips::VError();
  }
  return pIsRandom ? image : image.sequential();
}

}  // namespace Photo
