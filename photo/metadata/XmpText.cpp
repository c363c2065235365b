#include "photo/metadata/XmpText.h"

#include <charconv>
#include <pugixml.hpp>
#include <sstream>
#include <string_view>

#include "photo/metadata/PanoramaSizes.h"

namespace Photo {
namespace {

constexpr char kProperty[] = "quorvane:Settings";
constexpr std::string_view kDevelopment = "crs:";

/// A property is an attribute of a description, or an element in it.
struct sProperty {
  pugi::xml_attribute fAttribute;
  pugi::xml_node fElement;

  explicit operator bool() const { return fAttribute || fElement; }
  std::string Get() const { return fAttribute ? fAttribute.value() : fElement.text().get(); }
  void Set(const std::string& pValue) {
    if (fAttribute) {
      fAttribute.set_value(pValue.c_str());
    } else {
      fElement.text().set(pValue.c_str());
    }
  }
};

/// Blanks and instructions stay, so that the packet is as it was but for what is changed.
bool Parse(const std::string& pPacket, pugi::xml_document& pTo) {
  const std::size_t size = pPacket.find_last_not_of('\0') + 1;  // some files fill up with them
  return pTo.load_buffer(pPacket.data(), size,
                         pugi::parse_default | pugi::parse_pi | pugi::parse_comments | pugi::parse_ws_pcdata);
}

std::string Save(const pugi::xml_document& pDocument) {
  std::ostringstream stream;
  pDocument.save(stream, "", pugi::format_raw | pugi::format_no_declaration);
  return stream.str();
}

/// The next node outside pNode and what is in it. Null at the end.
pugi::xml_node SkipNode(pugi::xml_node pNode) {
  while (pNode && !pNode.next_sibling()) pNode = pNode.parent();
  return pNode.next_sibling();
}

/// In the order of the text. Packets can be nested deeper than a call stack is.
pugi::xml_node NextNode(pugi::xml_node pNode) {
  return pNode.first_child() ? pNode.first_child() : SkipNode(pNode);
}

sProperty FindProperty(const pugi::xml_document& pDocument, const char* pName) {
  for (pugi::xml_node node = pDocument.first_child(); node; node = NextNode(node)) {
    if (const pugi::xml_attribute attribute = node.attribute(pName)) return {attribute, {}};
    if (std::string_view(node.name()) == pName) return {{}, node};
  }
  return {};
}

void DropDevelopment(pugi::xml_document& pDocument) {
  const auto isDropped = [](const char* pName) { return std::string_view(pName).starts_with(kDevelopment); };
  for (pugi::xml_node node = pDocument.first_child(); node;) {
    if (isDropped(node.name())) {
      const pugi::xml_node dropped = node;
      node = SkipNode(node);
      dropped.parent().remove_child(dropped);
      continue;
    }
    for (pugi::xml_attribute attribute = node.first_attribute(); attribute;) {
      const pugi::xml_attribute next = attribute.next_attribute();
      if (isDropped(attribute.name())) node.remove_attribute(attribute);
      attribute = next;
    }
    node = NextNode(node);
  }
}

void FitPanorama(pugi::xml_document& pDocument, int pWidth, int pHeight) {
  const auto find = [&](const std::string& pName) {
    return FindProperty(pDocument, ("GPano:" + pName).c_str());
  };
  const auto get = [&](const std::string& pName) -> std::optional<long> {
    const sProperty property = find(pName);
    if (!property) return std::nullopt;
    const std::string text = property.Get();
    long number = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
  };
  for (const auto& [name, number] : FitPanoramaSizes(get, pWidth, pHeight)) {
    find(name).Set(std::to_string(number));
  }
}

}  // namespace

std::string PutSettingsIntoXmp(const std::string& pPacket, const std::string& pJson) {
  pugi::xml_document document;
  const bool isRead = Parse(pPacket, document);
  sProperty settings = isRead ? FindProperty(document, kProperty) : sProperty{};
  if (settings) {
    settings.Set(pJson);
    return Save(document);
  }
  sProperty list = isRead ? FindProperty(document, "rdf:RDF") : sProperty{};
  if (!list.fElement) {
    document.reset();
    pugi::xml_node packet = document.append_child("x:xmpmeta");
    packet.append_attribute("xmlns:x").set_value("adobe:ns:meta/");
    list.fElement = packet.append_child("rdf:RDF");
    list.fElement.append_attribute("xmlns:rdf").set_value("http://www.w3.org/1999/02/22-rdf-syntax-ns#");
  }
  pugi::xml_node description = list.fElement.append_child("rdf:Description");
  description.append_attribute("rdf:about").set_value("");
  description.append_attribute("xmlns:quorvane").set_value("urn:quorvane:xmp#");
  description.append_attribute(kProperty).set_value(pJson.c_str());
  return Save(document);
}

std::string FindSettingsInXmp(const std::string& pPacket) {
  pugi::xml_document document;
  if (!Parse(pPacket, document)) return "";
  const sProperty settings = FindProperty(document, kProperty);
  return settings ? settings.Get() : "";
}

std::optional<std::string> CorrectXmp(const std::string& pPacket, int pWidth, int pHeight) {
  pugi::xml_document document;
  if (!Parse(pPacket, document)) return std::nullopt;
  DropDevelopment(document);
  FitPanorama(document, pWidth, pHeight);
  if (sProperty orientation = FindProperty(document, "tiff:Orientation")) orientation.Set("1");
  return Save(document);
}

}  // namespace Photo
