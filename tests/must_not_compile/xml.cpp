// clang-format off
#include <zo/variant/variant.h>
#include <zo/xml.h>

#include <string>
#include <vector>

void documents(ZoXMLClass& document, ZoVariant& value, std::wstring& text) {
  ZoXMLClass copy(document);                                       // error: deleted
  document.allowDocumentType(1);                                   // error: true or false
  document.keepLayout(0);                                          // error: true or false
  document.allowDocumentType(L"true");                             // error: true or false
  document.allowDocumentType(&document);                           // error: true or false
  document.allowDocumentType(1.0);                                 // error: true or false
  document.keepLayout("x");                                        // error: true or false
  document.keepLayout(&document);                                  // error: true or false
  document.keepLayout(1.5);                                        // error: true or false
  document.keepLayout(ZoXMLClass::kAsIs);                          // error: true or false
  document.setLimits(true, false);                                 // error: whole numbers
  document.setLimits(1.5, 2);                                      // error: whole numbers
  static_cast<void>(ZoXMLClass().error());                         // error: gone with the document
  document.root() = ZoXMLNode();                                   // error: discards qualifiers
  static_cast<void>(document.parse(0));                            // error: cannot convert
  document.load(L"a.xml");                                         // error: nodiscard
  static_cast<void>(document.parse("<a/>"));                       // error: cannot convert
  static_cast<void>(document.get(L"a/b", text));                   // error: cannot bind
  static_cast<void>(ZoXMLClass::fromVariant(document, value));     // error: cannot bind
}

void nodes(ZoXMLNode node, std::vector<ZoXMLNode>& all) {
  if (node) return;                                                // error: write isEmpty()
  static_cast<void>(node.put(L"length", 12.5));                    // error: cannot convert
  static_cast<void>(node.select(L"//part", all));                  // error: cannot convert
}

void json(ZoVariant& value, ZoString& text) {
  static_cast<void>(ZoJson::format(value, text, true));            // error: cannot convert
  ZoJson::parse(L"1", value);                                      // error: nodiscard
  ZoJson made;                                                     // error: deleted
}
