#include "cli/batch/StoredSettings.h"

#include "cli/batch/VipsSession.h"
#include "cli/batch/workers/WorkerPool.h"
#include "photo/base/Failure.h"
#include "photo/metadata/PictureMetadata.h"

namespace Tool {

std::string ReadStoredSettingsApart(const std::string& pFile) {
  const auto makeTask = [&pFile](const tAskForMemory&) -> tTask {
    static const cVipsSession library;
    return [&pFile](std::size_t) { return Photo::ReadStoredSettings(pFile); };
  };
  cWorkerPool pool({}, makeTask);
  pool.Begin(0);
  std::optional<sTaskEnd> end;
  while (!(end = pool.Wait(-1, -1))) {
  }
  if (!end->fIsAnswered) throw Photo::cFailure(Photo::eFailure::kCannotRead, pFile, end->fText);
  return end->fText;
}

}  // namespace Tool
