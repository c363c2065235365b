#pragma once

#include "photo/PictureRecord.h"

namespace Cli {

/// Does a job of the plan, in which "-" is standard input or output, or leaves it out, and reports it. Throws
/// std::bad_alloc alone. libvips must be running.
tPictureRecord RunPictureTask(const sTonemapJob& pJob);

}  // namespace Cli
