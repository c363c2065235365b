#include "photo/decode/PictureStart.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>

namespace Photo {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kLength = 16;

constexpr std::string_view kStarts[] = {
    "\x76\x2f\x31\x01"sv,          // OpenEXR
    "#?RADIANCE"sv,                // Radiance
    "#?RGBE"sv,                    //
    "II*\0"sv,                     // TIFF
    "MM\0*"sv,                     //
    "II+\0\x08\0\0\0"sv,           // with offsets of 64 bits
    "MM\0+\0\x08\0\0"sv,           //
    "\x89PNG\r\n\x1a\n"sv,         // PNG
    "\xff\xd8\xff"sv,              // JPEG
    "\xff\x0a"sv,                  // JPEG XL
    "\0\0\0\x0cJXL \r\n\x87\n"sv,  // in boxes
};

/// Of the pictures among the files that begin with a box of their type; films are others.
constexpr std::string_view kBrands[] = {"avif"sv, "avis"sv, "heic"sv, "heix"sv, "heim"sv,
                                        "heis"sv, "hevc"sv, "hevx"sv, "mif1"sv, "msf1"sv};

/// Two letters and a number on the next line: the letters alone may begin any text.
bool IsPfm(std::string_view pStart) {
  if (!pStart.starts_with("PF") && !pStart.starts_with("Pf")) return false;
  const std::string_view rest = pStart.substr(2);
  const std::size_t digit = rest.find_first_not_of(" \t\r\n");
  return digit != 0 && digit != std::string_view::npos && rest[digit] >= '1' && rest[digit] <= '9';
}

}  // namespace

bool IsPictureStart(std::string_view pStart) {
  const auto begins = [pStart](std::string_view pBegin) { return pStart.starts_with(pBegin); };
  if (std::any_of(std::begin(kStarts), std::end(kStarts), begins) || IsPfm(pStart)) return true;
  if (pStart.size() < 12) return false;
  if (begins("RIFF")) return pStart.substr(8, 4) == "WEBP";
  return pStart.substr(4, 4) == "ftyp" &&
         std::find(std::begin(kBrands), std::end(kBrands), pStart.substr(8, 4)) != std::end(kBrands);
}

bool HoldsPicture(const std::string& pFile) {
  const int handle = open(pFile.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
  if (handle < 0) return false;
  struct stat status = {};
  char start[kLength];
  const bool isFile = fstat(handle, &status) == 0 && S_ISREG(status.st_mode);
  const ssize_t size = isFile ? read(handle, start, kLength) : -1;
  close(handle);
  return size > 0 && IsPictureStart({start, static_cast<std::size_t>(size)});
}

}  // namespace Photo
