#include "cli/plot/SideBySide.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <vector>
#include <vips/vips8>

#include "cli/plot/SvgDrawing.h"
#include "photo/icc/NamedProfile.h"
#include "photo/io/VipsLibrary.h"

namespace Tool {
namespace {

using vips::VImage;

constexpr int kPanels = 3;
constexpr int kLeastPanel = 180;  // small pictures leave room for the captions
constexpr int kGap = 8;
constexpr int kCaption = 28;          // in height, for panels up to
constexpr double kCaptioned = 600.0;  // so wide; larger ones have larger captions

int ToCode(int pSample16) {
  return (pSample16 + 128) / 257;
}

/// Fills three pixels of the row: A's, B's and the difference's.
void PutPixel(unsigned char* pRow, int pX, int pPanel, const Photo::sPixel16& pA, const Photo::sPixel16& pB,
              int pFactor) {
  for (int i = 0; i < 3; ++i) {
    const int a = pA.fSamples[i];
    const int b = pB.fSamples[i];
    const int codes[kPanels] = {ToCode(a), ToCode(b), std::min(ToCode(std::abs(a - b) * pFactor), 255)};
    for (int panel = 0; panel < kPanels; ++panel) {
      pRow[std::ptrdiff_t{3} * (panel * pPanel + pX) + i] = static_cast<unsigned char>(codes[panel]);
    }
  }
}

VImage DrawCaptions(int pWidth, int pPanel, int pFactor) {
  const double scale = std::max(pPanel / kCaptioned, 1.0);
  cSvgDrawing svg(static_cast<int>(std::ceil(pWidth / scale)), kCaption, "Comparison");
  const std::string captions[kPanels] = {"A", "B", fmt::format("difference × {}", pFactor)};
  for (int panel = 0; panel < kPanels; ++panel) {
    svg.AddText(panel * pPanel / scale + 6.0, 19.0, "class=\"name\"", captions[panel]);
  }
  const std::string text = svg.Finish();
  VipsBlob* const blob = vips_blob_copy(text.data(), text.size());
  const VImage image = VImage::svgload_buffer(blob, VImage::option()->set("scale", scale));
  vips_area_unref(VIPS_AREA(blob));
  return image.flatten(VImage::option()->set("background", 255.0)).crop(0, 0, pWidth, image.height());
}

}  // namespace

int ChooseAmplification(const Photo::sPictureDifference& pDifference) {
  const double usual = pDifference.fQuantile99 > 0.0 ? pDifference.fQuantile99 : pDifference.fAll.fLargest;
  int chosen = 1;
  for (const int factor : {2, 5, 10, 20, 50, 100, 200}) {
    if (factor * usual <= 255.0) chosen = factor;
  }
  return chosen;
}

void WriteSideBySide(TmEngine::cBitmapLDR& pA, TmEngine::cBitmapLDR& pB, int pFactor,
                     const std::string& pProfile, Photo::cTempFile& pFile) {
  const int panel = std::max(pA.GetWidth(), kLeastPanel) + kGap;
  const int width = kPanels * panel - kGap;
  const std::size_t row = std::size_t{3} * static_cast<std::size_t>(width);
  std::vector<unsigned char> pixels(row * static_cast<std::size_t>(pA.GetHeight()), 255);
  for (int y = 0; y < pA.GetHeight(); ++y) {
    unsigned char* const to = pixels.data() + row * static_cast<std::size_t>(y);
    for (int x = 0; x < pA.GetWidth(); ++x) {
      PutPixel(to, x, panel, Photo::GetPixel16(pA, x, y), Photo::GetPixel16(pB, x, y), pFactor);
    }
  }
  try {
    const VImage pictures =
        VImage::new_from_memory(pixels.data(), pixels.size(), width, pA.GetHeight(), 3, VIPS_FORMAT_UCHAR)
            .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
    const VImage image = DrawCaptions(width, panel, pFactor).join(pictures, VIPS_DIRECTION_VERTICAL).copy();
    if (!pProfile.empty()) {
      const std::string profile = Photo::ToPngProfile(pProfile);
      vips_image_set_blob_copy(image.get_image(), VIPS_META_ICC_NAME, profile.data(), profile.size());
    }
    image.pngsave(pFile.GetPath().c_str());
  } catch (const vips::VError&) {
    pFile.Refuse(Photo::TakeVipsError());
  }
  pFile.Commit();
}

}  // namespace Tool
