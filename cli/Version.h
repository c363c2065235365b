#pragma once

#include <string>

namespace Tool {

/// "1.0.0".
std::string GetVersion();

/// "quorvane 1.0.0", and in further lines the libraries, the formats that this build reads and writes, and
/// the licence. Starts libvips: not for a process that begins workers.
std::string DescribeVersion();

}  // namespace Tool
