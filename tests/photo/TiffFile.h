#pragma once

#include <tiffio.h>

#include <memory>

struct sCloseTiff {
  void operator()(TIFF* pTiff) const { TIFFClose(pTiff); }
};
using tTiff = std::unique_ptr<TIFF, sCloseTiff>;

/// Begins a page of grey or, from three samples on, of red, green and blue.
inline void SetShape(TIFF* pTiff, int pWidth, int pHeight, int pBits, int pSamples) {
  TIFFSetField(pTiff, TIFFTAG_IMAGEWIDTH, pWidth);
  TIFFSetField(pTiff, TIFFTAG_IMAGELENGTH, pHeight);
  TIFFSetField(pTiff, TIFFTAG_BITSPERSAMPLE, pBits);
  TIFFSetField(pTiff, TIFFTAG_SAMPLESPERPIXEL, pSamples);
  TIFFSetField(pTiff, TIFFTAG_PHOTOMETRIC, pSamples >= 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
  TIFFSetField(pTiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
}
inline void SetTiles(TIFF* pTiff, int pSide) {
  TIFFSetField(pTiff, TIFFTAG_TILEWIDTH, pSide);
  TIFFSetField(pTiff, TIFFTAG_TILELENGTH, pSide);
}
