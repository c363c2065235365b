#pragma once

#include "photo/PictureRecord.h"

namespace Tool {

/// Does a job of the plan, in which "-" is standard input or output, or leaves it out, and reports it. Throws
/// std::bad_alloc alone. libvips must be running.
Photo::tPictureRecord RunPictureTask(const Photo::sTonemapJob& pJob);

}  // namespace Tool
