// ZoXMLClass: variants as documents.
#include <zo/variant/variant.h>
#include <zo/xml/xml_class.h>

#include "xml/variant_xml.h"
#include "xml/xml_state.h"

int ZoXMLClass::fromVariant(const ZoVariant& value, ZoXMLClass& document) {
  std::wstring text;
  zo::XmlState& state = *document.state_;
  if (!zo::appendVariantXml(value, text) || text.size() > zo::kXmlUnits)
    return state.fail(ZoResult::beyondLimits, L"The value lies too deep, or is too large.");
  return state.read(text, false, {kMaxDepth, false});
}

int ZoXMLClass::toVariant(ZoVariant& value) const {
  std::wstring text;
  if (const int code = state_->write(L"", kIndented, text)) return code;
  std::size_t at = 0;
  if (zo::readVariantXml(text, value, at)) return ZoResult::ok;
  return state_->fail(ZoResult::noVariant, L"A variant is not written so.", zo::placeOf(text, at),
                      text);
}
