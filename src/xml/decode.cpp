#include "xml/decode.h"

#include <zo/results.h>
#include <zo/system/codepage.h>

#include <algorithm>
#include <string>

#include "system/codepage/detect.h"
#include "system/codepage/in_force.h"
#include "text/code_units.h"
#include "text/utf8.h"
#include "xml/xml_scan.h"

namespace zo {
namespace {

using Bytes = std::string_view;

void fail(DecodedText& decoded, const wchar_t* reason) {
  decoded.hasFailed = true;
  decoded.reason = reason;
}

void decodeUtf8(Bytes bytes, DecodedText& decoded) {
  std::size_t units = 0;
  const std::size_t taken = utf8ToUtf16Strictly(bytes, decoded.text.room(bytes.size()), units);
  decoded.text.advance(units);
  if (taken < bytes.size()) fail(decoded, L"Bytes that are no text in UTF-8.");
}

void decodeUtf16(Bytes bytes, bool bigEndian, DecodedText& decoded) {
  decoded.isUtf16 = true;
  const std::size_t units = bytes.size() / 2;
  wchar_t* const out = decoded.text.room(units);
  for (std::size_t i = 0; i < units; ++i) {
    const auto first = static_cast<unsigned char>(bytes[2 * i]);
    const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
    out[i] = static_cast<wchar_t>(bigEndian ? first << 8 | second : second << 8 | first);
  }
  decoded.text.advance(units);
  if (bytes.size() % 2 != 0) fail(decoded, L"An odd byte at the end of a text in UTF-16.");
}

// What a mark says. False without one.
bool decodeMarked(Bytes bytes, DecodedText& decoded) {
  unsigned int mark = 0;
  const ByteForm form = markedForm(bytes, mark);
  bytes.remove_prefix(mark);
  if (form == ByteForm::Utf8) {
    decodeUtf8(bytes, decoded);
  } else if (form != ByteForm::Other) {
    decodeUtf16(bytes, form == ByteForm::Utf16BigEndian, decoded);
  }
  return form != ByteForm::Other;
}

// The name in a declaration that is in ASCII so far; empty without one.
std::wstring declaredEncoding(Bytes bytes) {
  constexpr std::size_t kLongest = 1000;
  const Bytes head = bytes.substr(0, kLongest);
  const std::size_t end = head.find("?>");
  if (!isXmlDeclaration(head) || end == Bytes::npos) return {};
  const std::wstring declaration(head.begin(), head.begin() + static_cast<std::ptrdiff_t>(end));
  XmlAttributes attributes(declaration);
  for (XmlAttribute attribute; attributes.next(attribute);)
    if (attribute.name == L"encoding") return std::wstring(attribute.value);
  return {};
}

// The platform takes any byte for it, and seven bits of each.
constexpr unsigned int kAscii = 20127;
bool isAscii(Bytes bytes) noexcept {
  return std::all_of(bytes.begin(), bytes.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void decodeNamed(Bytes bytes, const std::wstring& name, DecodedText& decoded) {
  const CodepagesInForce codepages;
  unsigned int codepage = 0;
  if (codepages->find(name.c_str(), codepage) != ZoResult::ok || codepage == ZoCodepage::kUtf16 ||
      codepage == ZoCodepage::kUtf16BigEndian) {
    fail(decoded, L"The encoding is not known here, or is not that of the bytes.");
  } else if (codepage == ZoCodepage::kUtf8) {
    decodeUtf8(bytes, decoded);
  } else if (codepage == kAscii && !isAscii(bytes)) {
    fail(decoded, L"Bytes that are no text in the encoding that is declared.");
  } else {
    ZoString text;
    if (codepages->toText(bytes, codepage, ZoCodepage::kRefuse, text) == ZoResult::ok) {
      decoded.text << text.view();
    } else {
      fail(decoded, L"Bytes that are no text in the encoding that is declared.");
    }
  }
}

}  // namespace

void decodeXml(Bytes bytes, DecodedText& decoded) {
  using namespace std::string_view_literals;
  if (decodeMarked(bytes, decoded)) return;
  if (bytes.starts_with("<\0"sv) || bytes.starts_with("\0<"sv)) {
    decodeUtf16(bytes, bytes[0] == '\0', decoded);
    return;
  }
  const std::wstring name = declaredEncoding(bytes);
  if (name.empty()) {
    decodeUtf8(bytes, decoded);
  } else {
    decodeNamed(bytes, name, decoded);
  }
}

// A text in JSON begins with a character of ASCII, which tells UTF-16.
void decodeJson(Bytes bytes, DecodedText& decoded) {
  if (decodeMarked(bytes, decoded)) return;
  if (bytes.size() >= 2 && (bytes[0] == '\0') != (bytes[1] == '\0')) {
    decodeUtf16(bytes, bytes[0] == '\0', decoded);
  } else {
    decodeUtf8(bytes, decoded);
  }
}

}  // namespace zo
