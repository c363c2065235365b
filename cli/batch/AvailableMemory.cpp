#include "cli/batch/AvailableMemory.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>

namespace Tool {
namespace {

constexpr std::int64_t kUnlimited = std::numeric_limits<std::int64_t>::max();

/// The names of what a control group counts.
struct sGroupFiles {
  const char* fRoot;
  const char* fLimit;
  const char* fUsed;
  const char* fReclaimable;  ///< In memory.stat: what is kept of files only becomes free when it is needed.
};
constexpr sGroupFiles kVersion1 = {"/sys/fs/cgroup/memory", "memory.limit_in_bytes", "memory.usage_in_bytes",
                                   "total_inactive_file"};
constexpr sGroupFiles kVersion2 = {"/sys/fs/cgroup", "memory.max", "memory.current", "inactive_file"};

/// The number behind a word, "MemAvailable: 123 kB"; the first one for no word. pElse where there is none.
std::int64_t ReadNumber(const std::string& pFile, const std::string& pWord, std::int64_t pElse) {
  std::ifstream stream(pFile);
  std::int64_t number = 0;
  if (pWord.empty()) return stream >> number ? number : pElse;
  for (std::string word; stream >> word;) {
    if (word == pWord) return stream >> number ? number : pElse;
  }
  return pElse;
}

/// What one control group leaves.
std::int64_t GetRoom(const std::string& pGroup, const sGroupFiles& pFiles) {
  const std::int64_t most = ReadNumber(pGroup + "/" + pFiles.fLimit, "", kUnlimited);
  if (most == kUnlimited) return kUnlimited;
  const std::int64_t used = ReadNumber(pGroup + "/" + pFiles.fUsed, "", 0);
  return most - used + ReadNumber(pGroup + "/memory.stat", pFiles.fReclaimable, 0);
}

/// A limit may be set on the process's own group or on any above it. In a container the own group's path is
/// often unknown, and the container's group is at the root.
std::int64_t GetRoomUpwards(const std::string& pRoot, const std::string& pGroup, const sGroupFiles& pFiles) {
  const std::string root = pRoot + pFiles.fRoot;
  std::int64_t room = kUnlimited;
  for (std::filesystem::path group = pGroup;; group = group.parent_path()) {
    const std::string below = group.has_relative_path() ? group.string() : "";
    room = std::min(room, GetRoom(std::string(root).append(below), pFiles));
    if (below.empty()) return room;
  }
}

/// Lines are "NUMBER:CONTROLLERS:/GROUP"; version 2 names no controllers.
std::int64_t GetRoomInGroups(const std::string& pRoot) {
  std::ifstream stream(pRoot + "/proc/self/cgroup");
  std::int64_t room = kUnlimited;
  for (std::string line; std::getline(stream, line);) {
    const std::size_t first = line.find(':');
    const std::size_t second = line.find(':', first + 1);
    if (first == std::string::npos || second == std::string::npos) continue;
    const std::string controllers = "," + line.substr(first + 1, second - first - 1) + ",";
    const std::string group = line.substr(second + 1);
    if (!group.starts_with('/')) continue;
    if (controllers == ",,") room = std::min(room, GetRoomUpwards(pRoot, group, kVersion2));
    if (controllers.find(",memory,") != std::string::npos)
      room = std::min(room, GetRoomUpwards(pRoot, group, kVersion1));
  }
  return room;
}

}  // namespace

std::int64_t GetAvailableMemory(const std::string& pRoot) {
  const std::int64_t machine = ReadNumber(pRoot + "/proc/meminfo", "MemAvailable:", kUnlimited / 1024) * 1024;
  return std::max<std::int64_t>(std::min(machine, GetRoomInGroups(pRoot)), 1);
}

}  // namespace Tool
