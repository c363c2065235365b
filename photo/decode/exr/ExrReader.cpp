#include "photo/decode/exr/ExrReader.h"

#include <fmt/format.h>

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfChromaticitiesAttribute.h>
#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfMultiPartInputFile.h>
#include <OpenEXR/ImfStandardAttributes.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "photo/base/Failure.h"
#include "photo/decode/exr/ExrChunks.h"
#include "photo/decode/exr/ExrLines.h"
#include "photo/decode/exr/ExrMetadata.h"
#include "photo/decode/exr/ExrParts.h"
#include "photo/light/RowConverter.h"
#include "photo/picture/Alpha.h"
#include "photo/picture/ConvertFailures.h"

namespace Photo {
namespace {

std::optional<sPrimaries> StatedPrimaries(const Imf::Header& pHeader) {
  if (!Imf::hasChromaticities(pHeader)) return std::nullopt;
  const Imf::Chromaticities& stated = Imf::chromaticities(pHeader);
  const auto point = [](const Imath::V2f& pV) { return TmEngine::cVector2(pV.x, pV.y); };
  return sPrimaries{point(stated.red), point(stated.green), point(stated.blue), point(stated.white)};
}

/// Does what the library may refuse.
template <class tDo>
auto ConvertRefusals(const tDo& pDo) {
  return ConvertFailures(eFailure::kCannotRead, "read", pDo, [](const std::string& pText) {
    return "damaged, cut short, or of an unknown kind of EXR (" + pText + ")";
  });
}

/// A source that has been opened, and the file that it belongs to.
struct sOpenPart {
  Imf::MultiPartInputFile fFile;
  sExrSource fSource;
  Imf::InputPart fPart;

  sOpenPart(const std::string& pFile, const sPictureChoice& pChoice)
      : fFile(pFile.c_str()), fSource(ChooseExrSource(fFile, pChoice)), fPart(fFile, fSource.fPart) {}
  const Imf::Header& GetHeader() const { return fPart.header(); }
};

/// A window, without the overflows of its ends.
struct sWindow {
  std::int64_t fX;
  std::int64_t fY;
  std::int64_t fWidth;
  std::int64_t fHeight;

  explicit sWindow(const Imath::Box2i& pBox)
      : fX(pBox.min.x),
        fY(pBox.min.y),
        fWidth(std::int64_t{pBox.max.x} - pBox.min.x + 1),
        fHeight(std::int64_t{pBox.max.y} - pBox.min.y + 1) {}
  bool operator==(const sWindow&) const = default;

  double CountPixels() const { return static_cast<double>(fWidth) * static_cast<double>(fHeight); }
  bool Meets(const sWindow& pOther) const {
    return fX < pOther.fX + pOther.fWidth && pOther.fX < fX + fWidth && fY < pOther.fY + pOther.fHeight &&
           pOther.fY < fY + fHeight;
  }
  bool Covers(const sWindow& pOther) const {
    return fX <= pOther.fX && fY <= pOther.fY && fX + fWidth >= pOther.fX + pOther.fWidth &&
           fY + fHeight >= pOther.fY + pOther.fHeight;
  }
};

std::string SizeOf(const sWindow& pWindow) {
  return fmt::format("{} x {}", pWindow.fWidth, pWindow.fHeight);
}

/// What of the two windows is the picture.
sWindow ChooseWindow(const Imf::Header& pHeader, std::vector<std::string>& pWarnings) {
  constexpr double kLarge = 1 << 25;  // pixels
  constexpr double kMostTimesLarger = 64;
  const sWindow data(pHeader.dataWindow());
  const sWindow display(pHeader.displayWindow());
  if (Imf::hasEnvmap(pHeader) || data == display) return data;
  if (display.fWidth < 1 || display.fHeight < 1 || !data.Meets(display)) {
    pWarnings.emplace_back("its pixels lie outside its display window; all of them are taken");
    return data;
  }
  if (display.CountPixels() > kLarge && display.CountPixels() > kMostTimesLarger * data.CountPixels()) {
    pWarnings.push_back("its display window of " + SizeOf(display) + " is far too large for its " +
                        SizeOf(data) + " pixels; only these are taken");
    return data;
  }
  const std::string sizes = "its " + SizeOf(data) + " pixels and its display window of " + SizeOf(display);
  pWarnings.push_back(sizes + " differ: " + (display.Covers(data) ? "" : "what lies outside is cut off") +
                      (display.Covers(data) || data.Covers(display) ? "" : ", ") +
                      (data.Covers(display) ? "" : "what is missing is transparent"));
  return display;
}

/// The rows of the picture, whose lines are read a few at a time.
class cExrRows : public cPictureRows {
 public:
  cExrRows(const std::string& pFile, std::unique_ptr<sOpenPart> pPart, const sWindow& pWindow, bool pHasAlpha,
           const sLinearLight& pLight)
      : cPictureRows(static_cast<int>(pWindow.fWidth), static_cast<int>(pWindow.fHeight), pHasAlpha),
        fPart(std::move(pPart)),
        fReader(OpenExrLines(pFile, fPart->fPart, fPart->fSource)),
        fData(fPart->GetHeader().dataWindow()),
        fDown(pWindow.fY - fData.fY),
        fRight(pWindow.fX - fData.fX),
        fHasAlphaChannel(HasAlphaChannel(fPart->GetHeader(), fPart->fSource)),
        fLight(pLight),
        fLines(std::max(CountChunkLines(fPart->GetHeader()), 16)) {}

  bool Read(int pY, float* pTo, std::uint16_t* pToAlpha) override {
    const std::int64_t line = pY + fDown;
    const std::int64_t first = std::clamp<std::int64_t>(-fRight, 0, GetWidth());
    const std::int64_t end = std::clamp<std::int64_t>(fData.fWidth - fRight, first, GetWidth());
    const bool isStored = line >= 0 && line < fData.fHeight;
    if (!isStored || end - first < GetWidth()) {
      std::fill_n(pTo, 3 * std::ptrdiff_t{GetWidth()}, 0.0f);
      if (pToAlpha != nullptr) std::fill_n(pToAlpha, GetWidth(), std::uint16_t{0});
    }
    if (isStored) Copy(FindLine(static_cast<int>(line)), first, end, pTo, pToAlpha);
    return fLight.Take(pTo, GetWidth());
  }

  void Hold() override { fLight.Hold(); }
  std::optional<sRepairs> Finish() override { return fLight.Finish(); }

 private:
  /// The place of a line in what has been read last.
  std::size_t FindLine(int pLine) {
    const int first = pLine - pLine % fLines;
    if (first != fFirst) {
      const int count = static_cast<int>(std::min<std::int64_t>(fLines, fData.fHeight - first));
      ConvertRefusals([&] { ReadLines(first, count); });
      fFirst = first;
    }
    return static_cast<std::size_t>(pLine - first) * static_cast<std::size_t>(fData.fWidth);
  }

  void ReadLines(int pFirst, int pCount) {
    const std::size_t pixels = static_cast<std::size_t>(pCount) * static_cast<std::size_t>(fData.fWidth);
    fColours.resize(3 * pixels);
    if (HasAlpha() && fHasAlphaChannel) fAlpha.resize(pixels);
    fReader->Read(static_cast<int>(fData.fY + pFirst), pCount, fColours.data(),
                  fAlpha.empty() ? nullptr : fAlpha.data());
  }

  /// To the columns from pX to pEnd.
  void Copy(std::size_t pFrom, std::int64_t pX, std::int64_t pEnd, float* pTo,
            std::uint16_t* pToAlpha) const {
    const std::size_t from = pFrom + static_cast<std::size_t>(pX + fRight);
    std::copy_n(&fColours[3 * from], 3 * (pEnd - pX), pTo + 3 * pX);
    if (pToAlpha == nullptr) return;
    for (std::int64_t x = pX; x < pEnd; ++x) {
      pToAlpha[x] = fAlpha.empty() ? std::uint16_t{65535}
                                   : AlphaOfFloat(fAlpha[from + static_cast<std::size_t>(x - pX)]);
    }
  }

  std::unique_ptr<sOpenPart> fPart;
  std::unique_ptr<cExrLines> fReader;
  sWindow fData;
  std::int64_t fDown;   ///< The line of the first row, and the place in a line of the first column;
  std::int64_t fRight;  ///< below 0 where the picture begins before its data.
  bool fHasAlphaChannel;
  cRowConverter fLight;
  int fLines;       ///< Number of lines that are read together.
  int fFirst = -1;  ///< First of the lines that were read last.
  std::vector<float> fColours;
  std::vector<float> fAlpha;
};

void WarnOfShape(const Imf::Header& pHeader, std::vector<std::string>& pWarnings) {
  const auto aspect = static_cast<double>(pHeader.pixelAspectRatio());
  if (!(aspect > 0.0) || std::fabs(aspect - 1.0) < 1e-3) return;
  pWarnings.push_back(
      fmt::format("its pixels are {:.4g} times as wide as high; they are kept as they are, so that the "
                  "result looks {} where pixels are square",
                  aspect, aspect > 1.0 ? "too narrow" : "too wide"));
}

/// The size in memory is that of the larger one of picture and data.
void CheckWindows(const sWindow& pPicture, const sWindow& pData, const tMemoryGate& pGate) {
  const sWindow& larger = pPicture.CountPixels() > pData.CountPixels() ? pPicture : pData;
  CheckSize(larger.fWidth, larger.fHeight, pGate);
}

sOpenedPicture OpenChecked(const std::string& pFile, const sPictureChoice& pChoice,
                           const tMemoryGate& pGate) {
  auto part = std::make_unique<sOpenPart>(pFile, pChoice);
  const Imf::Header& header = part->GetHeader();
  CheckExrSource(header, part->fSource);
  sOpenedPicture picture;
  picture.fParts = ListExrParts(part->fFile);
  const std::string leftOut = DescribeLeftOut(picture.fParts, part->fSource);
  if (!leftOut.empty()) picture.fWarnings.push_back(leftOut);
  const sWindow data(header.dataWindow());
  const sWindow window = ChooseWindow(header, picture.fWarnings);
  WarnOfShape(header, picture.fWarnings);
  CheckWindows(window, data, pGate);
  CheckExrChunks(part->fPart);
  const bool isRgb = part->fSource.fColours == eExrColours::kRgb;
  picture.fFormat = "OpenEXR";
  picture.fFileDepth = header.channels()[part->fSource.NameOf(isRgb ? "R" : "Y")].type == Imf::HALF ? 16 : 32;
  picture.fIsPanorama = Imf::hasEnvmap(header) && Imf::envmap(header) == Imf::ENVMAP_LATLONG;
  picture.fMetadata = ReadExrMetadata(header);
  const sLinearLight light = MakeLinearLight(StatedPrimaries(header), picture.fWarnings);
  const bool hasAlpha = HasAlphaChannel(header, part->fSource) || !data.Covers(window);
  picture.fColorSpace = light.fColorSpace;
  picture.fIsPremultiplied = hasAlpha && !pChoice.fIgnoresAlpha;
  picture.fRows = std::make_unique<cExrRows>(pFile, std::move(part), window, picture.fIsPremultiplied, light);
  return picture;
}

}  // namespace

sOpenedPicture OpenExr(const std::string& pFile, const sPictureChoice& pChoice, const tMemoryGate& pGate) {
  return ConvertRefusals([&] { return OpenChecked(pFile, pChoice, pGate); });
}

}  // namespace Photo
