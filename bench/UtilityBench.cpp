// Operations on images beside a memory copy of as many bytes as they read and write, in turn.
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Suites.h"
#include "engine/cColorEqRenderer.h"
#include "engine/color/cTransferLUT.h"
#include "engine/image/cBitmapBGR16.h"
#include "engine/image/cBitmapBGR8.h"
#include "engine/image/cBitmapXYZ32.h"
#include "engine/image/cBitmapY8.h"
#include "engine/image/cImageUtils.h"

using namespace TmEngine;
using tUtils = cImageUtils;

namespace Bench {
namespace {

// Rows with a sum of 1 and no negative entry: a picture that is transformed over and over stays a picture.
const cMatrix33 kMatrix{0.7f, 0.2f, 0.1f, 0.25f, 0.7f, 0.05f, 0.1f, 0.1f, 0.8f};

struct sLookUpTables {
  cColorSpace_sRGB fSpace;
  cTransferLUT_I8F32 fFrom8{fSpace.GetToLinear()};
  cTransferLUT_I16F32 fFrom16{fSpace.GetToLinear()};
  cTransferLUT_F32I8 fTo8{fSpace.GetFromLinear()};
  cTransferLUT_F32I16 fTo16{fSpace.GetFromLinear()};
};

sLookUpTables& LookUpTables() {
  static const auto tables = std::make_unique<sLookUpTables>();
  return *tables;
}

/// Images of one size, of every kind.
struct sImages {
  int fWidth, fHeight;
  cBitmapXYZ32 fA{fWidth, fHeight}, fB{fWidth, fHeight}, fC{fWidth, fHeight};
  cBitmapBGR8 f8{fWidth, fHeight, eColorSpaceID_sRGB}, fTo8{fWidth, fHeight, eColorSpaceID_sRGB};
  cBitmapBGR16 f16{fWidth, fHeight, eColorSpaceID_sRGB}, fTo16{fWidth, fHeight, eColorSpaceID_sRGB};
  cBitmapY8 fY{fWidth, fHeight}, fToY{fWidth, fHeight};
  std::vector<float> fPlane =
      std::vector<float>(static_cast<std::size_t>(fWidth) * static_cast<std::size_t>(fHeight));
  cColorEqRenderer fEqualiser8, fEqualiser16;

  /// Pixel i of a row holds the values that pixel pFirst + i of any other images holds.
  sImages(int pWidth, int pHeight, int pFirst);
  sImages(const sImages&) = delete;
  sImages& operator=(const sImages&) = delete;
  ~sImages();
  /// Every image's pixel pX of row 0, one behind the other.
  std::vector<unsigned char> PixelBytes(int pX);

 private:
  template <class tImage, class tValue>
  void FillRows(tImage& pImage, int pFirst, const tValue& pValue) const;
};

/// Scattered over 0 to 65535.
unsigned Scattered(int pPixel, int pChannel) {
  return (static_cast<unsigned>(3 * pPixel + pChannel) * 2654435761u) >> 16;
}

template <class tImage, class tValue>
void sImages::FillRows(tImage& pImage, int pFirst, const tValue& pValue) const {
  auto* row = reinterpret_cast<unsigned char*>(pImage.GetBitmapData());
  for (int y = 0; y < fHeight; ++y, row += pImage.GetStride()) {
    for (int i = 0; i < 3 * fWidth; ++i) {
      const auto value = pValue(Scattered(pFirst + i / 3, i % 3));
      std::memcpy(row + static_cast<std::size_t>(i) * sizeof value, &value, sizeof value);
    }
  }
}

sImages::sImages(int pWidth, int pHeight, int pFirst) : fWidth(pWidth), fHeight(pHeight) {
  const auto unit = [](unsigned v) { return static_cast<float>(v) / 65535.0f; };
  FillRows(fA, pFirst, unit);
  FillRows(fB, pFirst, [](unsigned v) { return 0.5f + static_cast<float>(v % 256u) / 256.0f; });
  FillRows(fC, pFirst, unit);
  for (cBitmapBGR8* image : {&f8, &fTo8}) {
    FillRows(*image, pFirst, [](unsigned v) { return static_cast<unsigned char>(v); });
  }
  for (cBitmapBGR16* image : {&f16, &fTo16}) {
    FillRows(*image, pFirst, [](unsigned v) { return static_cast<unsigned short>(v); });
  }
  for (cBitmapY8* image : {&fY, &fToY}) {
    const auto stride = static_cast<std::size_t>(image->GetStride());
    std::memset(image->GetBitmapData(), 7, stride * static_cast<std::size_t>(fHeight));
  }
  fEqualiser8.SetInput(&f8);
  fEqualiser16.SetInput(&f16);
}

/// Images of 8 bits log their destruction unless their pixels are taken.
sImages::~sImages() {
  for (cBitmapBGR8* image : {&f8, &fTo8}) std::free(image->TakeBitmapData());
}

std::vector<unsigned char> sImages::PixelBytes(int pX) {
  std::vector<unsigned char> bytes;
  const auto add = [&](const void* pRow, int pPixelBytes) {
    const auto* const pixel = static_cast<const unsigned char*>(pRow) + pX * pPixelBytes;
    bytes.insert(bytes.end(), pixel, pixel + pPixelBytes);
  };
  for (const cBitmapXYZ32* image : {&fA, &fB, &fC}) add(image->GetBitmapData(), 12);
  for (cBitmapBGR8* image : {&f8, &fTo8}) add(image->GetBitmapData(), 3);
  for (cBitmapBGR16* image : {&f16, &fTo16}) add(image->GetBitmapData(), 6);
  for (const cBitmapY8* image : {&fY, &fToY}) add(image->GetBitmapData(), 1);
  add(fPlane.data(), 4);
  return bytes;
}

/// Renders what the renderer has prepared, as after a change of its curves.
void Rerender(cColorEqRenderer& pRenderer, cBitmapLDR& pTo) {
  pRenderer.SetOutput(&pTo);
  pRenderer.Render();
}

void Equalise(cColorEqRenderer& pRenderer, cBitmapLDR& pFrom, cBitmapLDR& pTo) {
  pRenderer.SetInput(&pFrom);
  Rerender(pRenderer, pTo);
}

struct sOperation {
  const char* fName;
  int fBytes;  // read and written, per pixel; lines of memory that are read in part count whole
  void (*fRun)(sImages&);
};

volatile double gResult;  // keeps what is measured from being left out

/// A pixel's result depends on that pixel alone.
const sOperation kPixelOperations[] = {
    {"Equaliser_8", 6, [](sImages& i) { Equalise(i.fEqualiser8, i.f8, i.fTo8); }},
    {"Equaliser_16", 12, [](sImages& i) { Equalise(i.fEqualiser16, i.f16, i.fTo16); }},
    {"Equaliser_8_new_curves", 13, [](sImages& i) { Rerender(i.fEqualiser8, i.fTo8); }},
    {"Equaliser_16_new_curves", 16, [](sImages& i) { Rerender(i.fEqualiser16, i.fTo16); }},
    {"ColorTransform", 24, [](sImages& i) { tUtils::ColorTransform(&i.fA, &i.fB, kMatrix); }},
    {"TransformInPlace", 24, [](sImages& i) { tUtils::TransformInPlace(&i.fB, kMatrix); }},
    {"ExtractChannel", 16, [](sImages& i) { tUtils::ExtractChannel(&i.fA, i.fPlane.data(), 1); }},
    {"ReplaceChannel", 28, [](sImages& i) { tUtils::ReplaceChannel(i.fPlane.data(), &i.fB, 1); }},
    {"ClampLow", 24, [](sImages& i) { tUtils::ClampLow(&i.fB, 1, 0.25f); }},
    {"BGR8ToBGR32", 15, [](sImages& i) { tUtils::BGR8ToBGR32(&i.f8, &i.fB); }},
    {"BGR16ToBGR32", 18, [](sImages& i) { tUtils::BGR16ToBGR32(&i.f16, &i.fB); }},
    {"BGR32ToBGR8", 15, [](sImages& i) { tUtils::BGR32ToBGR8(&i.fA, &i.fTo8); }},
    {"BGR32ToBGR16", 18, [](sImages& i) { tUtils::BGR32ToBGR16(&i.fA, &i.fTo16); }},
    {"BGR8ToBGR32Linear", 15, [](sImages& i) { tUtils::BGR8ToBGR32Linear(&i.f8, &i.fB); }},
    {"BGR16ToBGR32Linear", 18, [](sImages& i) { tUtils::BGR16ToBGR32Linear(&i.f16, &i.fB); }},
    {"BGR32LinearToBGR8", 15, [](sImages& i) { tUtils::BGR32LinearToBGR8(&i.fA, &i.fTo8); }},
    {"BGR32LinearToBGR16", 18, [](sImages& i) { tUtils::BGR32LinearToBGR16(&i.fA, &i.fTo16); }},
    {"BGR8ToFloat3", 15,
     [](sImages& i) { tUtils::BGR8ToFloat3(&i.f8, &i.fB, &LookUpTables().fFrom8, kMatrix); }},
    {"BGR16ToFloat3", 18,
     [](sImages& i) { tUtils::BGR16ToFloat3(&i.f16, &i.fB, &LookUpTables().fFrom16, kMatrix); }},
    {"Float3ToBGR8", 15,
     [](sImages& i) { tUtils::Float3ToBGR8(&i.fA, &i.fTo8, &LookUpTables().fTo8, kMatrix); }},
    {"Float3ToBGR16", 18,
     [](sImages& i) { tUtils::Float3ToBGR16(&i.fA, &i.fTo16, &LookUpTables().fTo16, kMatrix); }},
    {"Convert_16_to_8", 9, [](sImages& i) { tUtils::Convert(&i.f16, &i.fTo8); }},
    {"Convert_8_to_16", 9, [](sImages& i) { tUtils::Convert(&i.f8, &i.fTo16); }},
    {"Copy_8", 6, [](sImages& i) { tUtils::Copy(&i.f8, &i.fTo8, 0, 0, 0, 0, i.fWidth, i.fHeight); }},
    {"Copy_16", 12, [](sImages& i) { tUtils::Copy(&i.f16, &i.fTo16, 0, 0, 0, 0, i.fWidth, i.fHeight); }},
    {"Copy_Y8", 2, [](sImages& i) { tUtils::Copy(&i.fY, &i.fToY, 0, 0, 0, 0, i.fWidth, i.fHeight); }},
    {"Fill_8", 3, [](sImages& i) { tUtils::Fill(&i.fTo8, 10, 20, 30); }},
    {"Fill_16", 6, [](sImages& i) { tUtils::Fill(&i.fTo16, 1000, 2000, 3000); }},
    {"Fill_float", 12, [](sImages& i) { tUtils::Fill(&i.fB, 0.5f, 0.75f, 1.0f); }},
    {"Sub", 36, [](sImages& i) { tUtils::Sub(&i.fC, &i.fA); }},
    {"Mul_in_place", 24, [](sImages& i) { tUtils::Mul(&i.fB, 1.0f); }},
    {"Mul_by_factor", 24, [](sImages& i) { tUtils::Mul(&i.fA, &i.fB, 0.75f); }},
    {"Mul_images", 36, [](sImages& i) { tUtils::Mul(&i.fA, &i.fA, &i.fB); }},
};

/// What all pixels give together.
const sOperation kPictureOperations[] = {
    {"GetMinMax", 12,
     [](sImages& i) {
       float min, max;
       tUtils::GetMinMax(&i.fA, 1, min, max);
       gResult = static_cast<double>(min + max);
     }},
    {"Normalize", 36, [](sImages& i) { tUtils::Normalize(&i.fC, false); }},
    {"Normalize_per_channel", 36, [](sImages& i) { tUtils::Normalize(&i.fC, true); }},
    {"Mean", 12,
     [](sImages& i) {
       float mean[3];
       tUtils::Mean(&i.fA, mean[0], mean[1], mean[2]);
       gResult = static_cast<double>(mean[0]);
     }},
    {"Diff_8", 6, [](sImages& i) { gResult = tUtils::Diff(&i.f8, &i.fTo8); }},
    {"Diff_16", 12, [](sImages& i) { gResult = tUtils::Diff(&i.f16, &i.fTo16); }},
    {"Diff_float", 24, [](sImages& i) { gResult = tUtils::Diff(&i.fA, &i.fB); }},
    {"MaxDiff_8", 6, [](sImages& i) { gResult = tUtils::MaxDiff(&i.f8, &i.fTo8); }},
    {"MaxDiff_16", 12, [](sImages& i) { gResult = tUtils::MaxDiff(&i.f16, &i.fTo16); }},
};

/// A row gives what images of one of its pixels each give.
void Check(const sOperation& pOperation) {
  constexpr int kChecked = 37;
  sImages row(kChecked, 1, 0);
  pOperation.fRun(row);
  for (int x = 0; x < kChecked; x += 4) {
    sImages pixel(1, 1, x);
    pOperation.fRun(pixel);
    if (row.PixelBytes(x) == pixel.PixelBytes(0)) continue;
    throw std::runtime_error(std::string(pOperation.fName) + " depends on the neighbours of a pixel");
  }
}

sImages& LargeImages() {
  static const auto images = std::make_unique<sImages>(kWidth, kHeight, 0);
  return *images;
}

void Time(benchmark::State& pState, const sOperation* pOperation) {
  sImages& images = LargeImages();
  const auto copied =
      static_cast<std::size_t>(kPixels * pOperation->fBytes / 2);  // read once and written once
  const std::vector<char> from(copied, 1);
  std::vector<char> to(copied, 2);
  std::vector<double> copies, ratios;
  pOperation->fRun(images);
  while (pState.KeepRunning()) {
    const double seconds = Seconds([&] { pOperation->fRun(images); });
    copies.push_back(Seconds([&] { std::memcpy(to.data(), from.data(), copied); }));
    benchmark::DoNotOptimize(to.data());
    ratios.push_back(seconds / copies.back());
    pState.SetIterationTime(seconds);
  }
  ReportPixels(pState, kPixels, pOperation->fBytes);
  pState.counters["copy_per_pixel"] = Median(copies) / kPixels;
  pState.counters["copies"] = Median(ratios);
}

}  // namespace

void RegisterUtilities() {
  const auto add = [](const sOperation& pOperation) {
    const std::string name = std::string("utility/") + pOperation.fName;
    benchmark::RegisterBenchmark(name.c_str(), Time, &pOperation)->UseManualTime();
  };
  for (const sOperation& operation : kPixelOperations) {
    Check(operation);
    add(operation);
  }
  for (const sOperation& operation : kPictureOperations) add(operation);
}

}  // namespace Bench
