#include "xml/variant_xml.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>
#include <vector>

#include "variant/form_builder.h"
#include "variant/ordered_entries.h"
#include "xml/real_form.h"
#include "xml/value_form.h"
#include "xml/xml_scan.h"
#include "xml/xml_text.h"

namespace zo {

using View = std::wstring_view;

namespace {

bool isWhiteOnly(View text) noexcept { return text.find_first_not_of(L" \t\r\n") == View::npos; }

// ---- Texts that XML does not hold as they are: "\\" and "\uXXXX" ----

// A text of white space alone would not survive every editor.
bool needsEscapes(View text) noexcept {
  return firstUnfit(text) != View::npos || text.find(L'\r') != View::npos ||
         (!text.empty() && isWhiteOnly(text));
}
bool keyNeedsEscapes(View key) noexcept {
  return needsEscapes(key) || key.find_first_of(L"\t\n") != View::npos;
}

std::wstring escaped(View text) {
  std::wstring out;
  const bool isAll = isWhiteOnly(text);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const View character = firstCharacter(text.substr(i));
    if (character == L"\\") {
      out += L"\\\\";
    } else if (isAll || text[i] < 0x20 || firstUnfit(character) != View::npos) {
      wchar_t digits[4];
      writeHex(digits, text[i], 4);
      out += L"\\u";
      out.append(digits, 4);
    } else {
      out += character;
      i += character.size() - 1;
    }
  }
  return out;
}

bool unescaped(View text, std::wstring& out) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != L'\\') {
      out += text[i];
      continue;
    }
    const View rest = text.substr(i + 1);
    std::uint64_t unit = 0;
    if (rest.starts_with(L'\\')) {
      out += L'\\';
      ++i;
    } else if (rest.size() >= 5 && rest[0] == L'u' && readHex(rest.substr(1, 4), unit)) {
      out += static_cast<wchar_t>(unit);
      i += 5;
    } else {
      return false;
    }
  }
  return true;
}

// ---- Writing ----

class Writer {
 public:
  explicit Writer(std::wstring& out) noexcept : out_(out) {}

  bool write(const ZoVariant& value, View attributes, unsigned int depthLeft) {
    const View kind = kKinds[value.type()].name;
    out_ += L'<';
    out_ += kind;
    out_ += attributes;
    if (!isPlainType(value)) attribute(L"type", types_.of(value));
    const std::size_t before = out_.size();
    if (!content(value, depthLeft)) return false;
    if (out_.size() == before) {
      out_ += L"/>";
    } else {
      out_ += L"</";
      out_ += kind;
      out_ += L'>';
    }
    return true;
  }

 private:
  void attribute(View name, View value) { appendAttribute(name, value, out_); }
  static void appendAttribute(View name, View value, std::wstring& out) {
    out += L' ';
    out += name;
    out += L"=\"";
    appendXmlAttribute(value, out);
    out += L'"';
  }

  // What follows the attributes; nothing for an empty element.
  bool content(const ZoVariant& value, unsigned int depthLeft) {
    if (value.isEmpty()) return true;
    if (value.asDict() || value.asSequence()) {
      return depthLeft > 0 && (value.entries() == 0 || elements(value, depthLeft - 1));
    }
    const ZoString own = value.isTypeOf(ZoVariant::kString) ? value.asString() : ZoString();
    if (value.isTypeOf(ZoVariant::kString) && own.isEmpty()) return true;
    const bool isEscaped = needsEscapes(own.view());
    if (isEscaped) attribute(L"escaped", L"yes");
    out_ += L'>';
    if (value.isTypeOf(ZoVariant::kString)) {
      appendXmlText(isEscaped ? View(escaped(own.view())) : own.view(), out_);
    } else {
      scalar(value);
    }
    return true;
  }
  bool elements(const ZoVariant& value, unsigned int depthLeft) {
    out_ += L'>';
    if (const ZoVariant::Sequence* const sequence = value.asSequence()) {
      return std::all_of(sequence->begin(), sequence->end(),
                         [&](const ZoVariant& each) { return write(each, View(), depthLeft); });
    }
    std::wstring key;
    for (const KeyedValue& entry : inOrderOfKeys(*value.asDict())) {
      key.clear();
      const bool isEscaped = keyNeedsEscapes(entry.key);
      appendAttribute(isEscaped ? L"escapedKey" : L"key",
                      isEscaped ? View(escaped(entry.key)) : entry.key, key);
      if (!write(*entry.value, key, depthLeft)) return false;
    }
    return true;
  }

  void scalar(const ZoVariant& value) {
    switch (value.type()) {
      case ZoVariant::kReal:
        real(value.asReal());
        break;
      case ZoVariant::kPoint: {
        const ZoPoint point = value.asPoint();
        triple(point);
        if (std::bit_cast<std::uint64_t>(point.w) == std::bit_cast<std::uint64_t>(1.0)) break;
        out_ += L' ';
        real(point.w);
        break;
      }
      case ZoVariant::kVector:
        triple(value.asVector());
        break;
      default:
        out_ += value.asString().view();
        break;
    }
  }
  template <class Geometry>
  void triple(const Geometry& g) {
    real(g.x);
    out_ += L' ';
    real(g.y);
    out_ += L' ';
    real(g.z);
  }
  void real(double value) {
    wchar_t buffer[ZoNumberTextSize];
    const unsigned int length = writeReal(value, buffer);
    out_.append(buffer, length);
  }

  std::wstring& out_;
  TypeTexts types_;
};

// ---- Reading ----

class Reader {
 public:
  explicit Reader(View xml) noexcept : scanner_(xml) {}

  bool run(ZoVariant& value) {
    XmlToken token = next();
    while (token == XmlToken::Text || token == XmlToken::DocumentType) token = next();
    Element root;
    return isTag(token) && open(token, root) && root.isRoot && !root.hasKey &&
           content(root, value, ZoVariant::kMaxDepth);
  }
  [[nodiscard]] std::size_t at() const noexcept { return at_; }

 private:
  struct Element {
    FormHead head;
    std::wstring key;
    bool hasKey = false, isEscaped = false, isRoot = false, isClosed = false;
  };

  static bool isTag(XmlToken token) noexcept {
    return token == XmlToken::StartTag || token == XmlToken::EmptyTag;
  }
  // Comments and instructions say nothing here.
  XmlToken next() noexcept {
    XmlToken token = scanner_.next();
    while (token == XmlToken::Comment || token == XmlToken::Instruction) token = scanner_.next();
    if (isTag(token)) at_ = scanner_.start();
    return token;
  }

  bool open(XmlToken token, Element& element) {
    const View tag = scanner_.piece();
    const auto* const row =
        std::find_if(std::begin(kKinds), std::end(kKinds),
                     [name = nameOfTag(tag)](const KindRow& each) { return each.name == name; });
    if (row == std::end(kKinds)) return false;
    const auto kind = static_cast<VariantKind>(row - std::begin(kKinds));
    element.head = {kind, row->code, 0};
    element.isClosed = token == XmlToken::EmptyTag;
    XmlAttributes attributes(tag);
    for (XmlAttribute attribute; attributes.next(attribute);)
      if (!take(attribute, element)) return false;
    return element.head.kind == kind && FormBuilder::head(element.head);
  }
  bool take(const XmlAttribute& attribute, Element& element) {
    std::wstring value;
    if (!takeXmlReferences(attribute.value, value)) return false;
    if (attribute.name == L"key" || attribute.name == L"escapedKey") {
      if (element.hasKey) return false;
      element.hasKey = true;
      if (attribute.name == L"escapedKey") return unescaped(value, element.key);
      element.key = std::move(value);
      return true;
    }
    if (attribute.name == L"type") return readWholeHead(value, element.head);
    if (attribute.name == L"escaped") return element.isEscaped = value == L"yes";
    if (attribute.name == L"zo") return element.isRoot = value == L"1";
    return attribute.name.starts_with(L"xml");  // declarations of namespaces, xml:space
  }

  bool content(const Element& element, ZoVariant& out, unsigned int depthLeft) {
    const VariantKind kind = element.head.kind;
    if (kind == VariantKind::Dict || kind == VariantKind::Sequence)
      return depthLeft > 0 && elements(element, out, depthLeft - 1);
    std::wstring text;
    if (!element.isClosed && !leafText(text)) return false;
    if (element.isEscaped) {
      std::wstring plain;
      if (kind != VariantKind::String || !unescaped(text, plain)) return false;
      text.swap(plain);
    }
    return leaf(element.head, text, out);
  }

  bool elements(const Element& parent, ZoVariant& out, unsigned int depthLeft) {
    FormBuilder::makeEmpty(out, parent.head);
    if (parent.isClosed) return true;
    const bool isDict = parent.head.kind == VariantKind::Dict;
    for (XmlToken token = next(); token != XmlToken::EndTag; token = next()) {
      if (token == XmlToken::Text && isWhiteOnly(scanner_.piece())) continue;
      Element element;
      ZoVariant value;
      if (!isTag(token) || !open(token, element) || element.hasKey != isDict || element.isRoot)
        return false;
      const std::size_t start = at_;
      if (!content(element, value, depthLeft)) return false;
      if (!isDict) {
        FormBuilder::addElement(out, std::move(value));
      } else if (!FormBuilder::addEntry(out, ZoString(element.key), std::move(value))) {
        at_ = start;
        return false;
      }
    }
    return true;
  }

  bool leafText(std::wstring& text) {
    constexpr std::size_t kOpening = 9, kClosing = 3;  // of <![CDATA[ and ]]>
    for (XmlToken token = next(); token != XmlToken::EndTag; token = next()) {
      const View piece = scanner_.piece();
      if (token == XmlToken::Text) {
        if (!takeXmlReferences(piece, text)) return false;
      } else if (token == XmlToken::CharacterData) {
        text += piece.substr(kOpening, piece.size() - kOpening - kClosing);
      } else {
        return false;
      }
    }
    return true;
  }

  static bool leaf(const FormHead& head, View text, ZoVariant& out) {
    switch (head.kind) {
      case VariantKind::Empty:
        FormBuilder::makeEmpty(out, head);
        return text.empty();
      case VariantKind::String:
        FormBuilder::make(out, head, text);
        return true;
      case VariantKind::Int:
      case VariantKind::BigInt:
        return integer(head, text, out);
      case VariantKind::Real: {
        double value = 0;
        if (!readReal(text, value)) return false;
        FormBuilder::make(out, head, value);
        return true;
      }
      case VariantKind::Pointer: {
        void* address = nullptr;
        if (!readAddress(text, address)) return false;
        FormBuilder::make(out, head, address);
        return true;
      }
      case VariantKind::Guid:
        return FormBuilder::makeGuid(out, head, text);
      default:
        return components(head, text, out);
    }
  }
  static bool integer(const FormHead& head, View text, ZoVariant& out) {
    std::int64_t value = 0;
    if (!isPlainNumber(text, true) || ZoStrToInt(text, value) != ZoResult::ok) return false;
    if (head.kind == VariantKind::BigInt) {
      FormBuilder::make(out, head, value);
    } else {
      if (!std::in_range<int>(value)) return false;
      FormBuilder::make(out, head, static_cast<int>(value));
    }
    return true;
  }
  // Three numbers; a point may have its weight behind them.
  static bool components(const FormHead& head, View text, ZoVariant& out) {
    double c[4] = {0, 0, 0, 1};
    int count = 0;
    while (!text.empty()) {
      const std::size_t blank = std::min(text.find(L' '), text.size());
      if (count == 4 || !readReal(text.substr(0, blank), c[count++])) return false;
      if (blank + 1 == text.size()) return false;
      text.remove_prefix(std::min(blank + 1, text.size()));
    }
    FormBuilder::make(out, head, c);
    return count == 3 || (count == 4 && head.kind == VariantKind::Point);
  }

  XmlScanner scanner_;
  std::size_t at_ = 0;  // of the last tag
};

}  // namespace

bool appendVariantXml(const ZoVariant& value, std::wstring& out) {
  return Writer(out).write(value, L" zo=\"1\"", ZoVariant::kMaxDepth);
}

bool readVariantXml(View xml, ZoVariant& value, std::size_t& at) {
  Reader reader(xml);
  ZoVariant read;
  const bool isRead = reader.run(read);
  at = reader.at();
  if (isRead) value.swap(read);
  return isRead;
}

}  // namespace zo
