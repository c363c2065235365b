#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "photo/picture/Picture.h"

/// A picture in memory of these XYZ samples, without a file.
inline Photo::sPicture PictureOf(int pWidth, const std::vector<float>& pXYZ,
                                 std::vector<std::uint16_t> pAlpha = {}) {
  Photo::sPicture picture;
  const int height = static_cast<int>(pXYZ.size()) / 3 / pWidth;
  picture.fBitmap = std::make_unique<TmEngine::cBitmapXYZ32>(pWidth, height);
  picture.fBitmap->CopyFromXYZ32(pWidth, height, 12 * pWidth, pXYZ.data());
  picture.fAlpha = std::move(pAlpha);
  return picture;
}

/// The same value for X, Y and Z of a pixel.
inline std::vector<float> SpreadToXYZ(const std::vector<float>& pLuminances) {
  std::vector<float> samples;
  for (const float luminance : pLuminances) samples.insert(samples.end(), 3, luminance);
  return samples;
}

/// All samples, in the order of rows.
inline std::vector<float> SamplesOf(const Photo::sPicture& pPicture) {
  std::vector<float> samples;
  for (int y = 0; y < pPicture.fBitmap->GetHeight(); ++y) {
    const float* const row = Photo::GetRow(pPicture, y);
    samples.insert(samples.end(), row, row + 3 * pPicture.fBitmap->GetWidth());
  }
  return samples;
}
