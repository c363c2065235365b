#include "photo/metadata/XmpText.h"

#include <charconv>
#include <optional>
#include <string_view>
#include <utility>

#include "photo/metadata/PanoramaSizes.h"

namespace Cli {
namespace {

constexpr char kProperty[] = "quorvane:Settings";
constexpr char kEnd[] = "</rdf:RDF>";

struct sEntity {
  std::string_view fText;
  char fCharacter;
};
constexpr sEntity kEntities[] = {{"&amp;", '&'},   {"&lt;", '<'},   {"&gt;", '>'},   {"&quot;", '"'},
                                 {"&apos;", '\''}, {"&#x9;", '\t'}, {"&#xA;", '\n'}, {"&#xD;", '\r'}};

std::string Escape(const std::string& pText) {
  std::string result;
  for (const char c : pText) {
    std::string_view written(&c, 1);
    for (const sEntity& entity : kEntities) {
      if (entity.fCharacter == c) written = entity.fText;
    }
    result += written;
  }
  return result;
}

std::string Unescape(std::string_view pText) {
  std::string result;
  while (!pText.empty()) {
    std::size_t length = 1;
    char character = pText.front();
    for (const sEntity& entity : kEntities) {
      if (!pText.starts_with(entity.fText)) continue;
      length = entity.fText.size();
      character = entity.fCharacter;
    }
    result += character;
    pText.remove_prefix(length);
  }
  return result;
}

/// Where the property's value is, as an attribute's or an element's: start and length; 0, 0 for nowhere.
std::pair<std::size_t, std::size_t> FindValue(const std::string& pPacket,
                                              const std::string& pProperty = kProperty) {
  const std::size_t name = pPacket.find(pProperty);
  const std::size_t mark = name == std::string::npos ? name : pPacket.find_first_of("\"'>", name);
  if (mark == std::string::npos) return {0, 0};
  const std::size_t end = pPacket.find(pPacket[mark] == '>' ? '<' : pPacket[mark], mark + 1);
  return end == std::string::npos ? std::pair<std::size_t, std::size_t>{0, 0}
                                  : std::pair{mark + 1, end - mark - 1};
}

/// The end of the attribute or element that begins at pName; 0 where it has none.
std::size_t FindEnd(const std::string& pPacket, std::size_t pName) {
  const std::string name = pPacket.substr(pName, pPacket.find_first_of(" =/>\t\r\n", pName) - pName);
  if (pPacket[pName - 1] != '<') {
    const std::size_t quote = pPacket.find_first_of("\"'", pName);
    return quote == std::string::npos ? 0 : pPacket.find(pPacket[quote], quote + 1) + 1;
  }
  const std::size_t mark = pPacket.find('>', pName);
  if (mark != std::string::npos && pPacket[mark - 1] == '/') return mark + 1;
  const std::string close = "</" + name + ">";
  const std::size_t end = pPacket.find(close, pName);
  return end == std::string::npos ? 0 : end + close.size();
}

}  // namespace

std::string PutSettingsIntoXmp(std::string pPacket, const std::string& pJson) {
  const std::string value = Escape(pJson);
  if (const auto [start, length] = FindValue(pPacket); start != 0) {
    return pPacket.replace(start, length, value);
  }
  if (pPacket.rfind(kEnd) == std::string::npos) {
    pPacket =
        "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
        "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"></rdf:RDF></x:xmpmeta>";
  }
  return pPacket.insert(pPacket.rfind(kEnd),
                        std::string("<rdf:Description rdf:about=\"\" xmlns:quorvane=\"urn:quorvane:xmp#\" ") +
                            kProperty + "=\"" + value + "\"/>");
}

std::string FindSettingsInXmp(const std::string& pPacket) {
  const auto [start, length] = FindValue(pPacket);
  return Unescape(std::string_view(pPacket).substr(start, length));
}

std::string DropDevelopment(std::string pPacket) {
  constexpr std::string_view kPrefix = "crs:";
  for (std::size_t at = pPacket.find(kPrefix); at != std::string::npos; at = pPacket.find(kPrefix, at)) {
    const char before = at == 0 ? 'x' : pPacket[at - 1];
    const bool isName = before == '<' || before == ' ' || before == '\t' || before == '\r' || before == '\n';
    const std::size_t end = isName ? FindEnd(pPacket, at) : 0;
    if (end <= at) {
      ++at;
      continue;
    }
    pPacket.erase(at - 1, end - at + 1);
    --at;
  }
  return pPacket;
}

std::string FitPanorama(std::string pPacket, int pWidth, int pHeight) {
  const auto get = [&](const std::string& pName) -> std::optional<long> {
    const auto [start, length] = FindValue(pPacket, "GPano:" + pName);
    long number = 0;
    const char* const first = pPacket.data() + start;
    const bool isNumber = length > 0 && std::from_chars(first, first + length, number).ptr == first + length;
    return isNumber ? std::optional(number) : std::nullopt;
  };
  for (const auto& [name, number] : FollowSize(get, pWidth, pHeight)) {
    const auto [start, length] = FindValue(pPacket, "GPano:" + name);
    pPacket.replace(start, length, std::to_string(number));
  }
  return pPacket;
}

std::string TurnXmpUpright(std::string pPacket) {
  constexpr std::string_view kName = "tiff:Orientation";
  for (std::size_t at = pPacket.find(kName); at != std::string::npos; at = pPacket.find(kName, at + 1)) {
    const std::size_t value = pPacket.find_first_not_of(" =\"'>", at + kName.size());
    if (value != std::string::npos && pPacket[value] >= '1' && pPacket[value] <= '8') pPacket[value] = '1';
  }
  return pPacket;
}

}  // namespace Cli
