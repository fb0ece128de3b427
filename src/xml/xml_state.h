// What a ZoXMLClass has besides its document.
#pragma once

#include <zo/xml/xml_class.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "xml/dom.h"
#include "xml/xml_names.h"
#include "xml/xml_scan.h"

namespace zo {

struct XmlState {
  std::shared_ptr<XmlDocument> document;  // null: empty
  std::vector<std::pair<std::wstring, std::wstring>> namespaces;
  XmlAllowed allowed{ZoXMLClass::kMaxDepth, false};
  std::uint64_t maxBytes = ZoXMLClass::kMaxBytes;
  bool keepsLayout = false;
  bool isUtf16 = false;  // what was read
  ZoXMLError error;

  // Notes a failure; returns the code.
  int fail(int code, std::wstring_view reason);
  int fail(int code, std::wstring_view reason, TextPlace place, std::wstring_view text);
  // Has the DOM read a text, whose declaration may name any encoding, as the document.
  int read(std::wstring_view text, bool isFromUtf16) { return read(text, isFromUtf16, allowed); }
  int read(std::wstring_view text, bool isFromUtf16, const XmlAllowed& limits);
  // For a text that is not given to the DOM.
  int failFound(std::wstring_view text, const XmlFinding& finding);
  // For a text that the DOM refused.
  int failRefused(XmlDocument& refusing, std::wstring_view text, const XmlFinding& finding);
  // What the DOM writes, behind a declaration with these attributes.
  int write(std::wstring_view declaration, ZoXMLClass::Format format, std::wstring& out);
};

static_assert(ZoXMLClass::kMaxDepth == kXmlDepth);
static_assert(ZoXMLClass::kMaxAttributes == kXmlAttributes);

}  // namespace zo
