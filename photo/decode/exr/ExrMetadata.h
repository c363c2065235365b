#pragma once

#include <OpenEXR/ImfHeader.h>

#include <memory>

#include "photo/metadata/Metadata.h"

namespace Photo {

/// The standard attributes of a header that describe the photograph, as the corresponding fields of EXIF:
/// owner (as Copyright), comments, capDate with utcOffset, expTime, aperture, isoSpeed, focus,
/// nominalFocalLength, make, model and serial number of camera and lens, latitude, longitude and altitude;
/// xDensity as resolution. What cannot be true (a date in another form, a negative time) is left out.
std::shared_ptr<const cMetadata> ReadExrMetadata(const Imf::Header& pHeader);

}  // namespace Photo
