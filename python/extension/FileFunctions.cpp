#include "python/extension/FileFunctions.h"

#include <pybind11/numpy.h>
#include <pybind11/stl.h>
#include <vips/vips.h>

#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "photo/EqualizePicture.h"
#include "photo/Inspection.h"
#include "photo/Json.h"
#include "photo/PictureRecord.h"
#include "photo/Presets.h"
#include "photo/Printable.h"
#include "photo/TonemapPicture.h"
#include "photo/decode/LdrReader.h"
#include "photo/decode/PictureReader.h"
#include "photo/encode/PictureWriter.h"
#include "photo/icc/NamedProfile.h"
#include "photo/io/VipsLibrary.h"
#include "photo/metadata/MetadataSummary.h"
#include "photo/picture/Alpha.h"
#include "python/extension/Arguments.h"
#include "python/extension/Differences.h"
#include "python/extension/LightSpaces.h"
#include "python/extension/WatchedWork.h"

namespace Python {
namespace {

namespace py = pybind11;

/// What a file holds besides its picture, on its way from read to write.
struct sMetadata {
  std::shared_ptr<const Photo::cMetadata> fMetadata;  ///< Null for none.
};

/// Gives back what libvips keeps for a thread.
class cVipsThread {
 public:
  cVipsThread() = default;
  cVipsThread(const cVipsThread&) = delete;
  cVipsThread& operator=(const cVipsThread&) = delete;
  ~cVipsThread() { vips_thread_shutdown(); }
};

/// RunWatched for work that libvips takes part in. It is started here, and never ended: other modules may use
/// it as well.
void RunWithVips(const py::object& pProgress, const std::function<void(Photo::cWatch&)>& pWork) {
  Photo::StartVips();
  RunWatched(pProgress, [&](Photo::cWatch& pWatch) {
    const cVipsThread thread;
    pWork(pWatch);
  });
}

/// Keywords of a call, taken one by one.
class cOptions {
 public:
  explicit cOptions(const py::dict& pOptions) : fOptions(pOptions) {}

  template <class tValue>
  tValue Get(const char* pName, tValue pDefault) const {
    if (!fOptions.contains(pName) || fOptions[pName].is_none()) return pDefault;
    try {
      return fOptions[pName].cast<tValue>();
    } catch (const py::cast_error&) {
      throw py::type_error(std::string(pName) + " is " + std::string(py::repr(fOptions[pName])) +
                           ", which has another type than it takes");
    }
  }
  int GetWithin(const char* pName, int pLowest, int pHighest, int pDefault) const {
    const auto value = Get<std::optional<int>>(pName, std::nullopt);
    if (!value) return pDefault;
    if (*value >= pLowest && *value <= pHighest) return *value;
    throw py::value_error(std::string(pName) + " is " + std::to_string(*value) + "; it must be from " +
                          std::to_string(pLowest) + " to " + std::to_string(pHighest));
  }

 private:
  py::dict fOptions;
};

Photo::sPictureChoice ToChoice(const cOptions& pOptions) {
  Photo::sPictureChoice choice;
  choice.fPart = pOptions.Get<std::string>("part", "");
  choice.fLayer = pOptions.Get<std::string>("layer", "");
  choice.fPage = pOptions.GetWithin("page", 1, 1000000, 0);
  return choice;
}

Photo::sMetadataKinds ToKinds(const cOptions& pOptions) {
  Photo::sMetadataKinds kinds{false, false, false};
  const std::map<std::string, bool Photo::sMetadataKinds::*> names = {
      {"exif", &Photo::sMetadataKinds::fExif},
      {"xmp", &Photo::sMetadataKinds::fXmp},
      {"iptc", &Photo::sMetadataKinds::fIptc}};
  for (const std::string& name : pOptions.Get<std::vector<std::string>>("keep", {"exif", "xmp", "iptc"})) {
    const auto found = names.find(name);
    if (found == names.end()) throw py::value_error("'" + name + "' is none of exif, xmp and iptc");
    kinds.*found->second = true;
  }
  return kinds;
}

Photo::sFileOptions ToFileOptions(const cOptions& pOptions) {
  return {pOptions.GetWithin("quality", 1, 100, 0), pOptions.GetWithin("compression", 0, 9, -1),
          ToKinds(pOptions)};
}

Photo::sAlphaChoice ToAlpha(const cOptions& pOptions) {
  const auto name = pOptions.Get<std::string>("alpha", "keep");
  if (const auto choice = Photo::ParseAlpha(name)) return *choice;
  throw py::value_error("alpha is '" + name + "'; it must be keep, ignore or a colour such as #808080");
}

Photo::sOutputOptions ToOutputOptions(const cOptions& pOptions) {
  Photo::sOutputOptions result;
  result.fDepth = pOptions.Get("depth", 8);
  if (result.fDepth != 8 && result.fDepth != 12 && result.fDepth != 16) {
    throw py::value_error("depth is " + std::to_string(result.fDepth) + "; it must be 8, 12 or 16");
  }
  result.fColorSpace = GetColorSpace(pOptions.Get<std::string>("color_space", "srgb"));
  result.fPreview = pOptions.GetWithin("preview", 0, 65535, 0);
  result.fAlpha = ToAlpha(pOptions);
  result.fFile = ToFileOptions(pOptions);
  return result;
}

/// The record of the job, as JSON.
std::string TonemapFile(const std::string& pSource, const std::string& pTarget, const py::dict& pSettings,
                        const py::dict& pOptions, const py::object& pProgress) {
  const cOptions options(pOptions);
  Photo::sTonemapJob job;
  job.fInput = pSource;
  job.fOutput = pTarget;
  const bool replaces = options.Get("overwrite", false);
  job.fExisting = replaces ? Photo::eExisting::kReplace : Photo::eExisting::kRefuse;
  job.fAuto = options.Get("auto", false);
  job.fChange = ToChange(pSettings);
  job.fSource = ToChoice(options);
  job.fResult = ToOutputOptions(options);
  std::string record;
  if (options.Get("skip_existing", false) && Photo::HasTarget(job)) {
    return Photo::ToLine(Photo::MakeSkippedRecord(job));
  }
  RunWithVips(pProgress, [&](Photo::cWatch& pWatch) {
    job.fWatch = &pWatch;
    Photo::sPictureReport report = Photo::TonemapPicture(job);
    for (std::string& warning : report.fWarnings) warning = Photo::NameParameters(warning);
    Photo::tPictureRecord done = Photo::MakeDoneRecord(job, report, 0);
    done.erase("peak_memory");  // of a process, not of a call
    record = Photo::ToLine(done);
  });
  return record;
}

void Append(std::vector<std::string>& pTo, const std::vector<std::string>& pTexts) {
  for (const std::string& text : pTexts) pTo.push_back(Photo::ToPrintable(Photo::NameParameters(text)));
}

/// Returns what had to be put right or left out.
std::vector<std::string> EqualizeFile(const std::string& pSource, const std::string& pTarget,
                                      const py::dict& pCurves, const py::dict& pOptions) {
  const cOptions options(pOptions);
  Photo::sEqualizeJob job;
  job.fInput = pSource;
  job.fOutput = pTarget;
  job.fSource = ToChoice(options);
  job.fCurves = ToCurves(pCurves);
  job.fDepth = options.Get("depth", 0);
  job.fFile = ToFileOptions(options);
  job.fMayReplace = options.Get("overwrite", false);
  std::vector<std::string> warnings;
  RunWithVips(py::none(), [&](Photo::cWatch& pWatch) {
    Photo::NameFile(pTarget, [&] {
      job.fFormat = Photo::ChooseOutputFormat(pTarget, job.fDepth != 0 ? job.fDepth : 8, job.fFile);
      Photo::CheckIsAnother(pSource, pTarget);
      Photo::CheckReplacing(pTarget, job.fMayReplace);
    });
    job.fWatch = &pWatch;
    std::vector<std::string> texts;
    Photo::EqualizePicture(job, texts);
    Append(warnings, texts);
  });
  return warnings;
}

std::string Inspect(const std::string& pFile, const py::dict& pOptions) {
  const Photo::sPictureChoice choice = ToChoice(cOptions(pOptions));
  std::string record;
  RunWithVips(py::none(), [&](Photo::cWatch&) {
    Photo::NameFile(pFile, [&] {
      nlohmann::ordered_json json = Photo::ToJson(Photo::InspectPicture(pFile, choice));
      Photo::PutName(json, "input", pFile);
      record = Photo::ToLine(json);
    });
  });
  return record;
}

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
  std::vector<std::string> warnings;
  Append(warnings, pPicture.fWarnings);
  if (pPicture.fMetadata != nullptr) Append(warnings, pPicture.fMetadata->GetWarnings());
  py::dict repairs;
  repairs["nan"] = pPicture.fRepairs.fNaN;
  repairs["infinite"] = pPicture.fRepairs.fInfinite;
  repairs["outliers"] = pPicture.fRepairs.fOutliers;
  repairs["negative"] = pPicture.fRepairs.fNegative;
  py::dict info;
  info["format"] = pPicture.fFormat;
  info["profile"] = Photo::ToPrintable(pPicture.fColorSpace);
  info["depth"] = pPicture.fFileDepth;
  info["premultiplied"] = pPicture.fIsPremultiplied;
  info["panorama"] = pPicture.fIsPanorama;
  info["metadata"] = sMetadata{pPicture.fMetadata};
  info["repairs"] = repairs;
  info["warnings"] = warnings;
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
      Append(warnings, Photo::WritePicture(picture, format, fileOptions, file, &pWatch));
    });
  });
  return warnings;
}

py::dict CompareFiles(const std::string& pA, const std::string& pB) {
  const auto read = [](const std::string& pFile) {
    return Photo::NameFile(pFile,
                           [&] { return Photo::ReadLdrPicture(pFile, "compare", {.fTakesSingle = true}); });
  };
  return MeasureDifference([&] { return read(pA); }, [&] { return read(pB); }, &RunWithVips);
}

py::list ListPresets(const std::string& pUserFolder, const std::string& pOwnFolder) {
  py::list list;
  for (const Photo::sPresetEntry& entry : Photo::FindPresets({pUserFolder, pOwnFolder})) {
    if (!entry.fIsHidden && entry.fFault.empty()) list.append(Photo::ToPrintable(entry.fName));
  }
  return list;
}

py::tuple LoadPreset(const std::string& pUserFolder, const std::string& pOwnFolder,
                     const std::string& pName) {
  const Photo::sPreset preset = Photo::LoadPreset({pUserFolder, pOwnFolder}, pName);
  return py::make_tuple(ToDict(preset.fChange), Photo::ToPrintable(preset.fDescription));
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

void AddFileFunctions(py::module_& pModule) {
  py::class_<sMetadata>(pModule, "Metadata",
                        "EXIF, XMP and IPTC of a photograph: blocks as bytes, and a summary in words.")
      .def_property_readonly("xmp", &GetXmp)
      .def_property_readonly("exif", &GetExif)
      .def_property_readonly("summary", &GetSummary);
  pModule.def("tonemap_file", &TonemapFile);
  pModule.def("equalize_file", &EqualizeFile);
  pModule.def("inspect", &Inspect);
  pModule.def("read", &Read);
  pModule.def("write", &Write);
  pModule.def("compare_files", &CompareFiles);
  pModule.def("list_presets", &ListPresets);
  pModule.def("load_preset", &LoadPreset);
}

}  // namespace Python
