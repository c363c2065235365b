#include "photo/decode/HeifColors.h"

#include <libheif/heif.h>

#include <algorithm>
#include <memory>

#include "photo/io/LazyLibrary.h"

namespace Photo {
namespace {

struct sHeifLibrary {
  cLazyLibrary fLibrary{QUORVANE_HEIF_LIBRARY};
  PHOTO_LAZY_FUNCTION(heif_context_alloc);
  PHOTO_LAZY_FUNCTION(heif_context_free);
  PHOTO_LAZY_FUNCTION(heif_context_read_from_file);
  PHOTO_LAZY_FUNCTION(heif_context_get_primary_image_handle);
  PHOTO_LAZY_FUNCTION(heif_image_handle_get_nclx_color_profile);
  PHOTO_LAZY_FUNCTION(heif_image_handle_release);
  PHOTO_LAZY_FUNCTION(heif_nclx_color_profile_free);
};
const sHeifLibrary& Heif() {
  static const sHeifLibrary library;
  return library;
}

struct sFree {
  void operator()(heif_context* pContext) const { Heif().heif_context_free(pContext); }
  void operator()(heif_image_handle* pHandle) const { Heif().heif_image_handle_release(pHandle); }
  void operator()(heif_color_profile_nclx* pColors) const { Heif().heif_nclx_color_profile_free(pColors); }
};
using tContext = std::unique_ptr<heif_context, sFree>;
using tHandle = std::unique_ptr<heif_image_handle, sFree>;
using tNclx = std::unique_ptr<heif_color_profile_nclx, sFree>;

/// Null where the file cannot be read.
tHandle OpenPrimary(const tContext& pContext, const std::string& pFile) {
  heif_image_handle* handle = nullptr;
  if (Heif().heif_context_read_from_file(pContext.get(), pFile.c_str(), nullptr).code != heif_error_Ok ||
      Heif().heif_context_get_primary_image_handle(pContext.get(), &handle).code != heif_error_Ok) {
    return nullptr;
  }
  return tHandle(handle);
}

}  // namespace

std::optional<sCicpColors> ReadHeifColors(const std::string& pFile, std::vector<std::string>& pWarnings) {
  const tContext context(Heif().heif_context_alloc());
  const tHandle handle = OpenPrimary(context, pFile);
  if (handle == nullptr) return std::nullopt;
  heif_color_profile_nclx* found = nullptr;
  const heif_error error = Heif().heif_image_handle_get_nclx_color_profile(handle.get(), &found);
  const tNclx colors(found);
  const std::string instead = "sRGB is taken";
  if (error.subcode == heif_suberror_Unknown_NCLX_color_primaries ||
      error.subcode == heif_suberror_Unknown_NCLX_transfer_characteristics) {
    const std::string text = error.message;  // "Invalid input: Unknown ..."
    pWarnings.push_back("its colours are of a kind that is not known here (" +
                        text.substr(std::min(text.find("Unknown"), text.size())) + "); " + instead);
    return std::nullopt;
  }
  if (colors == nullptr) return std::nullopt;
  return FindCodedColors(colors->color_primaries, colors->transfer_characteristics, instead, pWarnings);
}

}  // namespace Photo
