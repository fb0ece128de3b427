// The platform's DOM, and how its version is chosen and its errors are placed.
#pragma once

// Its headers take windows.h, which comes first for its settings.
#include <msxml2.h>
#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/com.h"
#include "xml/xml_text.h"

namespace zo {

// Elements in one another that every version of the DOM takes, and that a variant of
// ZoVariant::kMaxDepth needs.
inline constexpr unsigned int kXmlDepth = 257;

// Units of the longest text that Automation takes.
inline constexpr std::size_t kXmlUnits = 0x3FFFFFF0;

using DomNode = ComPtr<IXMLDOMNode>;

// A document as its nodes keep it alive.
struct XmlDocument {
  ComUsage com;  // outlives the DOM
  ComPtr<IXMLDOMDocument2> dom;
  std::wstring documentType;  // as it was read: not every DOM writes it
  // Prefixes for paths and searches, with their namespaces.
  std::vector<std::pair<std::wstring, std::wstring>> namespaces;

  // Has the DOM know the prefixes. False when it refuses them.
  [[nodiscard]] bool useNamespaces();
  // Null for a prefix that it does not know.
  [[nodiscard]] const std::wstring* namespaceOf(std::wstring_view prefix) const noexcept;
};

// For a call; the text stays the owner.
[[nodiscard]] VARIANT asVariant(const ComText& text) noexcept;

// An empty document; null where the platform has no DOM.
[[nodiscard]] std::shared_ptr<XmlDocument> newXmlDocument();

// Whether the DOM takes the text as its document.
[[nodiscard]] bool parseXml(XmlDocument& document, const ComText& text);

// The document as the DOM writes it, whitespace as it is; false when the DOM refuses.
[[nodiscard]] bool writeXml(const XmlDocument& document, std::wstring& text);

// What the platform says of a text that it refused, with the place if it tells one.
struct XmlRefusal {
  TextPlace place;
  std::wstring reason;
};
[[nodiscard]] XmlRefusal whyRefused(XmlDocument& document, const ComText& text);

[[nodiscard]] ComPtr<IXMLDOMElement> elementOf(const DomNode& node) noexcept;

}  // namespace zo
