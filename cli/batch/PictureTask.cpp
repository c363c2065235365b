#include "cli/batch/PictureTask.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "cli/batch/StandardStreams.h"
#include "cli/terminal/FailureText.h"
#include "photo/base/ShortText.h"
#include "photo/io/TempFile.h"

namespace Tool {
namespace {

/// From now on the peak is that of what follows, where the system lets us.
void ResetPeakMemory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

std::int64_t GetPeakMemory() {
  std::ifstream stream("/proc/self/status");
  std::int64_t kilobytes = 0;
  for (std::string word; stream >> word;) {
    if (word == "VmHWM:" && stream >> kilobytes) return kilobytes * 1024;
  }
  return 0;
}

/// Streams are opened as late as here: only one that is asked for a picture may be waited for.
Photo::sPictureReport Tonemap(const Photo::sTonemapJob& pJob) {
  const cInputFile input(pJob.fInput);
  Photo::sTonemapJob job = pJob;
  job.fInput = input.GetPath();
  if (pJob.fOutput == kStandardStream) job.fOutput = "standard output";
  return input.Read([&] { return Photo::TonemapPicture(job); });
}

}  // namespace

Photo::tPictureRecord RunPictureTask(const Photo::sTonemapJob& pJob) {
  try {
    if (pJob.fExisting == Photo::eExisting::kSkip && Photo::HasTarget(pJob)) {
      Photo::cTempFile::RemoveLeftovers(pJob.fOutput);
      return Photo::MakeSkippedRecord(pJob);
    }
    ResetPeakMemory();
    Photo::sPictureReport report = Tonemap(pJob);
    report.fWarnings = NameOptions(report.fWarnings);
    return Photo::MakeDoneRecord(pJob, report, GetPeakMemory());
  } catch (const Photo::cFailure& failure) {
    return Photo::MakeFailedRecord(pJob, failure.GetKind(), DescribeFailure(failure));
  } catch (const std::exception& exception) {
    return Photo::MakeFailedRecord(pJob, Photo::eFailure::kProcessing,
                                   pJob.fInput + ": " + Photo::Shorten(exception.what()));
  }
}

}  // namespace Tool
