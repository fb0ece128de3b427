// Any text as XML: what is cut into pieces is all of it, what is looked for is bounded, and a text
// that was written indented is cut into the same tags.
#include <string>
#include <vector>

#include "fuzz.h"
#include "xml/xml_fault.h"
#include "xml/xml_layout.h"
#include "xml/xml_path.h"
#include "xml/xml_scan.h"
#include "xml/xml_text.h"
#include "xml/xml_write.h"

using namespace zo;

namespace {

std::vector<std::wstring> tagsOf(std::wstring_view text) {
  std::vector<std::wstring> tags;
  XmlScanner scanner(text);
  std::size_t at = 0;
  for (XmlToken token = scanner.next(); token != XmlToken::End; token = scanner.next()) {
    ZO_FUZZ_CHECK(scanner.start() == at && !scanner.piece().empty());
    at += scanner.piece().size();
    if (token == XmlToken::Text) continue;
    tags.emplace_back();
    appendXmlAsIs(scanner.piece(), tags.back());
    XmlAttributes attributes(scanner.piece());
    for (XmlAttribute attribute; attributes.next(attribute);)
      ZO_FUZZ_CHECK(attribute.value.data() > attribute.name.data());
  }
  ZO_FUZZ_CHECK(at == text.size());
  return tags;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  std::wstring text;
  for (std::size_t i = 0; i < size; ++i)
    text += static_cast<wchar_t>(data[i] < 0x80 ? data[i] : data[i] * 0x101);
  const std::vector<std::wstring> tags = tagsOf(text);
  const XmlFinding finding = scanXml(text, {20, size % 2 == 0});
  ZO_FUZZ_CHECK(finding.at <= text.size());
  ZO_FUZZ_CHECK(finding.encodingStart + finding.encodingLength <= text.size());
  const XmlFault fault = findXmlFault(text);
  ZO_FUZZ_CHECK(fault.at <= text.size());
  const TextPlace place = placeOf(text, fault.at);
  ZO_FUZZ_CHECK(place.line >= 1 && place.column >= 1);
  ZO_FUZZ_CHECK(positionOf(text, place) <= fault.at);
  ZO_FUZZ_CHECK(lineAround(text, fault.at).size() <= 400);

  std::wstring plain;
  std::wstring written;
  appendXmlText(text, written);
  ZO_FUZZ_CHECK(takeXmlReferences(written, plain) && plain == text);
  written.clear();
  plain.clear();
  appendXmlAttribute(text, written);
  ZO_FUZZ_CHECK(takeXmlReferences(written, plain) && plain == text);
  if (!fault.reason) {
    written.clear();
    appendXmlIndented(text, written);
    ZO_FUZZ_CHECK(tagsOf(written) == tags);
    std::wstring again;
    const XmlLayout layout = layoutOf(text);
    plain.resize(layout.sizeWithout(text));
    layout.copyWithout(text, plain.data());
    ZO_FUZZ_CHECK(tagsOf(plain) == tags);
    appendXmlIndented(plain, again);
    ZO_FUZZ_CHECK(again == written);
  }
  std::vector<XmlStep> steps;
  if (cutXmlPath(text, steps)) {
    const std::wstring xpath = xpathOf(steps, steps.size());
    ZO_FUZZ_CHECK(xpath.find_first_of(L"'\"|()*<> ") == std::wstring::npos);
  }
  return 0;
}
