#include "python/extension/Differences.h"

#include <string>

#include "photo/base/Failure.h"
#include "photo/picture/PictureDifference.h"

namespace Python {
namespace {

namespace py = pybind11;

constexpr const char* kChannels[] = {"red", "green", "blue"};

std::string DescribeSize(const TmEngine::cBitmapLDR& pBitmap) {
  return std::to_string(pBitmap.GetWidth()) + " x " + std::to_string(pBitmap.GetHeight());
}

void CheckSizes(const TmEngine::cBitmapLDR& pA, const TmEngine::cBitmapLDR& pB) {
  if (pA.GetWidth() == pB.GetWidth() && pA.GetHeight() == pB.GetHeight()) return;
  throw Photo::cFailure(Photo::eFailure::kUsage, "the size of b is " + DescribeSize(pB) + ", that of a " +
                                                     DescribeSize(pA) +
                                                     "; only pictures of one size can be compared");
}

py::dict ToDict(const Photo::sPictureDifference::sExtent& pExtent) {
  py::dict dict;
  dict["largest"] = pExtent.fLargest;
  dict["mean"] = pExtent.fMean;
  return dict;
}

}  // namespace

py::dict MeasureDifference(const std::function<Photo::sLdrPicture()>& pMakeA,
                           const std::function<Photo::sLdrPicture()>& pMakeB, tRun pRun) {
  Photo::sPictureDifference difference;
  pRun(py::none(), [&](Photo::cWatch& pWatch) {
    const Photo::sLdrPicture a = pMakeA();
    pWatch.Check();
    const Photo::sLdrPicture b = pMakeB();
    pWatch.Check();
    CheckSizes(*a.fBitmap, *b.fBitmap);
    difference = Photo::ComparePictures(*a.fBitmap, *b.fBitmap);
  });
  py::dict dict;
  for (int i = 0; i < 3; ++i) dict[kChannels[i]] = ToDict(difference.fChannels[i]);
  dict["all"] = ToDict(difference.fAll);
  dict["quantile_99"] = difference.fQuantile99;
  dict["different_share"] = difference.fDifferentShare;
  dict["largest_at"] = py::make_tuple(difference.fLargestX, difference.fLargestY);
  return dict;
}

}  // namespace Python
