#include "python/extension/FileFunctions.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "photo/EqualizePicture.h"
#include "photo/Inspection.h"
#include "photo/Json.h"
#include "photo/PictureRecord.h"
#include "photo/TonemapPicture.h"
#include "photo/decode/LdrReader.h"
#include "photo/encode/PictureWriter.h"
#include "python/extension/Arguments.h"
#include "python/extension/Differences.h"
#include "python/extension/FileOptions.h"
#include "python/extension/VipsWork.h"

namespace Python {
namespace {

namespace py = pybind11;

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
    Photo::EqualizePicture(job, warnings);
  });
  return ToTexts(warnings);
}

std::string Inspect(const std::string& pFile, const py::dict& pOptions) {
  const Photo::sPictureChoice choice = ToChoice(cOptions(pOptions));
  std::string record;
  RunWithVips(py::none(), [&](Photo::cWatch& pWatch) {
    Photo::NameFile(pFile, [&] {
      Photo::sInspection inspection = Photo::InspectPicture(pFile, choice, {}, &pWatch);
      for (std::string& warning : inspection.fPicture.fWarnings) warning = Photo::NameParameters(warning);
      nlohmann::ordered_json json = Photo::ToJson(inspection);
      Photo::PutName(json, "input", pFile);
      record = Photo::ToLine(json);
    });
  });
  return record;
}

py::dict CompareFiles(const std::string& pA, const std::string& pB) {
  const auto read = [](const std::string& pFile) {
    return Photo::NameFile(pFile,
                           [&] { return Photo::ReadLdrPicture(pFile, "compare", {.fTakesSingle = true}); });
  };
  return MeasureDifference([&] { return read(pA); }, [&] { return read(pB); }, &RunWithVips);
}

}  // namespace

void AddFileFunctions(py::module_& pModule) {
  pModule.def("tonemap_file", &TonemapFile);
  pModule.def("equalize_file", &EqualizeFile);
  pModule.def("inspect", &Inspect);
  pModule.def("compare_files", &CompareFiles);
}

}  // namespace Python
