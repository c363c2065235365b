#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>

#include "photo/TonemapPicture.h"
#include "photo/base/Failure.h"

namespace Photo {

/// What is reported of a picture, as an object for other programs:
///   input, output (and input_base64, output_base64 of names that are not UTF-8),
///   status ("done", "skipped", "failed"), and
///   of a done one  width, height, format, depth, color_space (of the file), result (depth, dither,
///                  color_space),
///                  settings, look (black_point, white_point, and where Tone Compression is in use
///                  base_mean, detail_mean; only of a picture in a set), wrap, dynamic_range (decades),
///                  black_point, white_point, black_share, white_share (0 to 1), repaired (nan, infinite,
///                  outliers, negative), milliseconds (a stage each), peak_memory (bytes), warnings
///   of a failed one  error (code, message).
using tPictureRecord = nlohmann::ordered_json;

/// pPeakMemory: the most that the process held, in bytes; 0 where that is unknown.
tPictureRecord MakeDoneRecord(const sTonemapJob& pJob, const sPictureReport& pReport,
                              std::int64_t pPeakMemory);
/// Of a picture that was left out, as its target exists.
tPictureRecord MakeSkippedRecord(const sTonemapJob& pJob);
tPictureRecord MakeFailedRecord(const sTonemapJob& pJob, eFailure pKind, const std::string& pMessage);

}  // namespace Photo
