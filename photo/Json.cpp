#include "photo/Json.h"

#include <glib.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "photo/Printable.h"

namespace Photo {

using tJson = nlohmann::ordered_json;

std::string ToLine(const tJson& pObject) {
  return ToPrintableJson(pObject.dump(-1, ' ', false, tJson::error_handler_t::replace));
}

tJson FromLine(const std::string& pLine) {
  const auto watch = [](int pDepth, tJson::parse_event_t, const tJson&) {
    if (pDepth > kDeepestJson) throw std::runtime_error("nested too deeply");
    return true;
  };
  return tJson::parse(pLine, watch);
}

void PutName(tJson& pObject, const std::string& pKey, const std::string& pName) {
  pObject[pKey] = pName;
  if (IsUtf8(pName)) return;
  gchar* const text = g_base64_encode(reinterpret_cast<const guchar*>(pName.data()), pName.size());
  pObject[pKey + "_base64"] = text;
  g_free(text);
}

}  // namespace Photo
