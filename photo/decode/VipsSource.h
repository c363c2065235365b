#pragma once

#include <memory>
#include <string>
#include <vector>
#include <vips/vips8>

#include "photo/icc/IccDecoder.h"
#include "photo/io/AmendedFile.h"
#include "photo/picture/PictureChoice.h"

namespace Photo {

/// Opens a Radiance, PNG, TIFF, JPEG, WebP, HEIF, AVIF or JPEG XL file and turns the picture upright; rows
/// are streamed unless they must be turned. Radiance pixels stay coded unless they are turned.
/// pOrientation, as EXIF counts it, replaces what the file's metadata say unless it is 1. pAmendment: of the
/// file's bytes, or null. Throws cFailure and vips::VError.
vips::VImage OpenUpright(const std::string& pFile, int pOrientation, const sPictureChoice& pChoice,
                         const sAmendment* pAmendment = nullptr);

/// Whether each pixel is four bytes: samples of red, green and blue, and their common exponent.
bool IsCoded(const vips::VImage& pImage);
/// With floats in place of coded pixels.
vips::VImage Uncode(const vips::VImage& pImage);

/// Ends the work on a picture that libvips failed to read.
[[noreturn]] void RefuseDamaged();
/// Ends the work on a picture whose kind of samples is not supported.
[[noreturn]] void RefuseLayout(const std::string& pWhat);

/// The format of the file that the picture was opened from: "TIFF", "JPEG XL".
std::string GetFormatName(const vips::VImage& pImage);
/// 1 for files of a single picture.
int CountPages(const vips::VImage& pImage);
/// Bits of a sample in the file.
int GetSampleBits(const vips::VImage& pImage);
/// The integer sample for full colour. Samples of 10 and 12 bits of HEIF are at the upper end of 16.
int GetFullSample(const vips::VImage& pImage);

/// How many samples of each pixel are colours: 1 grey, 3 RGB, 4 CMYK; alpha may follow.
/// Throws cFailure for other layouts.
int CountColours(const vips::VImage& pImage);

/// The embedded ICC profile; empty for none.
std::string GetEmbeddedProfile(const vips::VImage& pImage);

/// Through the profile; for inks without a sound one through the profile that libvips brings along. Null for
/// the rest, with a warning where a profile is of no use.
std::unique_ptr<cIccDecoder> MakeDecoder(const std::string& pProfile, int pColours,
                                         std::vector<std::string>& pWarnings);

}  // namespace Photo
