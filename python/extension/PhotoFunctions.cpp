#include "python/extension/PhotoFunctions.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "photo/Printable.h"
#include "photo/base/Failure.h"
#include "photo/decode/PictureReader.h"
#include "photo/encode/PictureWriter.h"
#include "photo/icc/NamedProfile.h"
#include "photo/metadata/MetadataSummary.h"
#include "photo/picture/Alpha.h"
#include "python/extension/Arguments.h"
#include "python/extension/FileOptions.h"
#include "python/extension/LightSpaces.h"
#include "python/extension/VipsWork.h"
#include "python/extension/WatchedWork.h"

namespace Python {
namespace {

namespace py = pybind11;

/// What a file holds besides its picture, on its way from read to write.
struct sMetadata {
  std::shared_ptr<const Photo::cMetadata> fMetadata;  ///< Null for none.
};

/// A row of the picture as the samples that are asked for.
void CopyRow(const Photo::sPicture& pPicture, int pY, const TmEngine::cMatrix33* pFromXYZ, int pChannels,
             float* pTo) {
  const float* from = Photo::GetRow(pPicture, pY);
  const int width = pPicture.fBitmap->GetWidth();
  const std::uint16_t* alpha = pPicture.fAlpha.data() + std::ptrdiff_t{pY} * width;
  for (int x = 0; x < width; ++x, from += 3, pTo += pChannels) {
    const TmEngine::cVector3 xyz(from[0], from[1], from[2]);
    const TmEngine::cVector3 samples = pFromXYZ != nullptr ? *pFromXYZ * xyz : xyz;
    for (int i = 0; i < 3; ++i) pTo[i] = samples[i];
    if (pChannels == 4) pTo[3] = static_cast<float>(alpha[x]) / 65535.0f;
  }
}

py::array_t<float> ToArray(const Photo::sPicture& pPicture, const std::string& pSpace) {
  const int channels = pPicture.fAlpha.empty() ? 3 : 4;
  const int width = pPicture.fBitmap->GetWidth();
  const int height = pPicture.fBitmap->GetHeight();
  py::array_t<float> array({height, width, channels});
  const TmEngine::cMatrix33 matrix = GetFromXYZ(pSpace);
  float* const to = array.mutable_data();
  RunWatched(py::none(), [&](Photo::cWatch& pWatch) {
    for (int y = 0; y < height; ++y) {
      pWatch.Check();
      CopyRow(pPicture, y, pSpace == "xyz-d50" ? nullptr : &matrix, channels,
              to + std::ptrdiff_t{y} * width * channels);
    }
  });
  return array;
}

py::dict DescribePicture(const Photo::sPicture& pPicture) {
  std::vector<std::string> warnings = pPicture.fWarnings;
  if (pPicture.fMetadata != nullptr) {
    const std::vector<std::string>& more = pPicture.fMetadata->GetWarnings();
    warnings.insert(warnings.end(), more.begin(), more.end());
  }
  py::dict info;
  info["format"] = pPicture.fFormat;
  info["profile"] = Photo::ToPrintable(pPicture.fColorSpace);
  info["depth"] = pPicture.fFileDepth;
  info["premultiplied"] = pPicture.fIsPremultiplied;
  info["panorama"] = pPicture.fIsPanorama;
  info["metadata"] = sMetadata{pPicture.fMetadata};
  info["repairs"] = ToDict(pPicture.fRepairs);
  info["warnings"] = ToTexts(warnings);
  return info;
}

py::tuple Read(const std::string& pFile, const std::string& pSpace, const py::dict& pOptions,
               const py::object& pProgress) {
  GetLight(pSpace);
  const Photo::sPictureChoice choice = ToChoice(cOptions(pOptions));
  Photo::sPicture picture;
  RunWithVips(pProgress, [&](Photo::cWatch& pWatch) {
    Photo::NameFile(pFile, [&] {
      picture = Photo::LoadPicture(Photo::OpenPicture(pFile, choice), &pWatch);
      Photo::SettleAlpha(picture);
    });
  });
  return py::make_tuple(ToArray(picture, pSpace), DescribePicture(picture));
}

Photo::cResultPixels ToResult(const sPixelArray& pPixels, int pDepth) {
  Photo::cResultPixels result(pPixels.fWidth, pPixels.fHeight, pDepth);
  for (int y = 0; y < pPixels.fHeight; ++y) GatherRow(pPixels, y, result.GetRow(y));
  return result;
}

std::vector<std::uint16_t> ToAlphaValues(const sPixelArray& pPixels) {
  if (pPixels.fChannels == 3) return {};
  const auto width = static_cast<std::size_t>(pPixels.fWidth);
  std::vector<std::uint16_t> alpha(width * static_cast<std::size_t>(pPixels.fHeight));
  for (int y = 0; y < pPixels.fHeight; ++y) {
    GatherAlpha(pPixels, y, alpha.data() + width * static_cast<std::size_t>(y));
  }
  return alpha;
}

/// Samples of 16 bits are written with as many as a format holds that has more than 8.
Photo::eOutputFormat ChooseFormat(const std::string& pFile, const sPixelArray& pPixels,
                                  const Photo::sFileOptions& pFileOptions) {
  const int depth = 8 * pPixels.SampleBytes();
  const bool isAvif = Photo::GetExtension(pFile) == ".avif";
  return Photo::ChooseOutputFormat(pFile, depth == 16 && isAvif ? 12 : depth, pFileOptions);
}

/// Returns what had to be left out.
std::vector<std::string> Write(const std::string& pFile, const py::array& pImage, const sMetadata* pMetadata,
                               const py::dict& pOptions) {
  const sPixelArray pixels = ViewPixels(pImage, "image");
  CheckIntegers(pixels, "image");
  const cOptions options(pOptions);
  const TmEngine::eColorSpaceID space = GetColorSpace(options.Get<std::string>("color_space", "srgb"));
  const Photo::sFileOptions fileOptions = ToFileOptions(options);
  const bool mayReplace = options.Get("overwrite", false);
  std::vector<std::string> warnings;
  RunWithVips(py::none(), [&](Photo::cWatch& pWatch) {
    Photo::NameFile(pFile, [&] {
      const Photo::eOutputFormat format = ChooseFormat(pFile, pixels, fileOptions);
      Photo::CheckReplacing(pFile, mayReplace);
      Photo::CheckFits(format, pixels.fWidth, pixels.fHeight);
      Photo::cTempFile file(pFile, mayReplace);
      Photo::sFinishedPicture picture{ToResult(pixels, 8 * pixels.SampleBytes()), ToAlphaValues(pixels),
                                      Photo::GetIccProfile(space),
                                      pMetadata != nullptr ? pMetadata->fMetadata : nullptr, ""};
      warnings = Photo::WritePicture(picture, format, fileOptions, file, &pWatch);
    });
  });
  return ToTexts(warnings);
}

py::bytes GetXmp(const sMetadata& pMetadata) {
  return pMetadata.fMetadata == nullptr ? "" : pMetadata.fMetadata->GetXmpPacket();
}

py::bytes GetExif(const sMetadata& pMetadata) {
  return pMetadata.fMetadata == nullptr ? "" : pMetadata.fMetadata->GetBlocks().fExif;
}

py::dict GetSummary(const sMetadata& pMetadata) {
  py::dict dict;
  if (pMetadata.fMetadata == nullptr) return dict;
  const Photo::sMetadataSummary summary = Photo::SummariseMetadata(*pMetadata.fMetadata);
  const auto put = [&](const char* pName, const std::string& pText) {
    if (!pText.empty()) dict[pName] = Photo::ToPrintable(pText);
  };
  put("camera", summary.fCamera);
  put("lens", summary.fLens);
  put("exposure", summary.fExposure);
  put("distance", summary.fDistance);
  put("date", summary.fDate);
  put("description", summary.fDescription);
  put("copyright", summary.fCopyright);
  put("position", summary.fPosition);
  return dict;
}

}  // namespace

void AddPhotoFunctions(py::module_& pModule) {
  py::class_<sMetadata>(pModule, "Metadata",
                        "EXIF, XMP and IPTC of a photograph: blocks as bytes, and a summary in words.")
      .def_property_readonly("xmp", &GetXmp)
      .def_property_readonly("exif", &GetExif)
      .def_property_readonly("summary", &GetSummary);
  pModule.def("read", &Read);
  pModule.def("write", &Write);
}

}  // namespace Python
