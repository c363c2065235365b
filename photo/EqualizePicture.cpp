#include "photo/EqualizePicture.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "engine/cColorEqRenderer.h"
#include "photo/base/Failure.h"
#include "photo/encode/PictureWriter.h"
#include "photo/picture/ConvertFailures.h"
#include "photo/picture/OutputBitmap.h"
#include "photo/render/PictureRendering.h"

namespace Photo {
namespace {

constexpr char kVerb[] = "equalize";

/// Renders into pPicture's own pixels where the depth stays.
cResultPixels RenderCurves(sLdrPicture& pPicture, int pDepth, const sHueCurveOptions& pCurves,
                           cWatch* pWatch) {
  TmEngine::cBitmapLDR& input = *pPicture.fBitmap;
  std::unique_ptr<TmEngine::cBitmapLDR> output;
  if ((pDepth > 8 ? 16 : 8) != input.GetBitDepth()) {
    output = MakeOutputBitmap(input.GetWidth(), input.GetHeight(), pDepth, TmEngine::eColorSpaceID_sRGB);
    output->SetColorSpace(input.GetColorSpace());
  }
  const auto renderer = std::make_unique<TmEngine::cColorEqRenderer>();
  renderer->SetInput(&input);
  renderer->SetOutput(output != nullptr ? output.get() : &input);
  renderer->SetHueCurves(MakeHueCurve(pCurves.fHueShift, pCurves.fMode).get(),
                         MakeHueCurve(pCurves.fSaturation, pCurves.fMode).get(),
                         MakeHueCurve(pCurves.fLightness, pCurves.fMode).get());
  bool isStopped = false;
  renderer->Render(pWatch != nullptr ? pWatch->GetStopRequest() : nullptr, &isStopped);
  if (pWatch != nullptr) pWatch->Check();
  return cResultPixels(output != nullptr ? *output : input);
}

/// Samples that go beyond white are no finished picture.
void RefuseBeyondWhite(const sLdrPicture& pPicture) {
  if (pPicture.fBeyondWhite.empty()) return;
  throw cFailure(eFailure::kCannotRead, "its light goes beyond white (" + pPicture.fBeyondWhite +
                                            "); tone-map it first, then equalize the result");
}

void Append(std::vector<std::string>& pTo, std::vector<std::string> pTexts) {
  std::ranges::move(pTexts, std::back_inserter(pTo));
}

sLdrPicture Read(const sEqualizeJob& pJob, std::vector<std::string>& pWarnings) {
  sLdrPicture picture = ReadLdrPicture(pJob.fInput, kVerb, pJob.fSource, pJob.fMemoryGate);
  RefuseBeyondWhite(picture);
  Append(pWarnings, picture.fWarnings);
  CheckRowLength(picture.fBitmap->GetWidth(), TmEngine::kHueChannels);
  return picture;
}

}  // namespace

cResultPixels EqualizePixels(sLdrPicture& pPicture, int pDepth, const sHueCurveOptions& pCurves,
                             cWatch* pWatch) {
  return ConvertFailures(eFailure::kProcessing, kVerb,
                         [&] { return RenderCurves(pPicture, pDepth, pCurves, pWatch); });
}

void EqualizePicture(const sEqualizeJob& pJob, std::vector<std::string>& pWarnings) {
  sLdrPicture picture = NameFile(pJob.fInput, [&] { return Read(pJob, pWarnings); });
  NameFile(pJob.fOutput, [&] {
    CheckFits(pJob.fFormat, picture.fBitmap->GetWidth(), picture.fBitmap->GetHeight());
    const int depth = pJob.fDepth != 0 ? pJob.fDepth : ChooseDepth(pJob.fFormat, picture.fFileDepth);
    // before the work, so that a place that cannot be written to is reported early
    cTempFile file = OpenTarget(pJob.fOutput, pJob.fMayReplace, pJob.fOutputStream);
    sFinishedPicture finished{
        NameFile(pJob.fInput, [&] { return EqualizePixels(picture, depth, pJob.fCurves, pJob.fWatch); }),
        std::move(picture.fAlpha), picture.fProfile, picture.fMetadata, ""};
    picture.fBitmap.reset();
    Append(pWarnings, WritePicture(finished, pJob.fFormat, pJob.fFile, file, pJob.fWatch));
  });
}

}  // namespace Photo
