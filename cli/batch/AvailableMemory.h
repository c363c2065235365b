#pragma once

#include <cstdint>
#include <string>

namespace Tool {

/// What this process may use without pressing others out, in bytes: what the machine has available, or less
/// where a control group (version 1 or 2) sets a limit. pRoot: the folder of proc and sys.
std::int64_t GetAvailableMemory(const std::string& pRoot = "");

}  // namespace Tool
