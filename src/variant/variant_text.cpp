// ZoVariant: its text form, written and read.
#include <zo/results.h>
#include <zo/text/number_text.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <cstdint>
#include <ostream>
#include <string_view>
#include <vector>

#include "text/code_units.h"
#include "text/text_buffer.h"
#include "variant/form_builder.h"
#include "variant/ordered_entries.h"
#include "variant/text_form.h"

static_assert(ZoVariant::kGuid == static_cast<unsigned int>(zo::VariantKind::Guid));

namespace {

using zo::VariantKind;

class FormWriter {
 public:
  // False when containers lie too deep in one another.
  bool write(const ZoVariant& value, unsigned int tabs, unsigned int depthLeft) {
    writeHead(value);
    switch (value.type()) {
      case ZoVariant::kEmpty:
        return true;
      case ZoVariant::kDict:
        return depthLeft > 0 && writeDict(*value.asDict(), tabs, depthLeft - 1);
      case ZoVariant::kSequence:
        return depthLeft > 0 && writeSequence(*value.asSequence(), tabs, depthLeft - 1);
      default:
        out_ << L' ';
        writeScalar(value);
        return true;
    }
  }
  void writeTabs(unsigned int tabs) { out_.append(L'\t', tabs); }
  void writeHead(const ZoVariant& value) {
    writeType(value);
    writeFlags(value.flags());
  }
  void writeType(const ZoVariant& value) {
    const std::wstring_view word = zo::wordOfCode(value.code());
    if (word.empty()) {
      out_ << L'#';
      writeCode(static_cast<unsigned int>(value.code()));
    } else {
      for (const wchar_t c : word) out_ << (c == L' ' ? L'_' : c);
    }
    const auto kind = static_cast<VariantKind>(value.type());
    if (kind != zo::kindOfCode(value.code())) {
      out_ << L'(';
      out_ << zo::kKinds[value.type()].name;
      out_ << L')';
    }
  }
  void writeFlags(unsigned int flags) {
    if (flags == 0) return;
    out_ << L':';
    for (unsigned int bit = 0; bit < 26; ++bit) {
      if (flags >> bit & 1) out_ << static_cast<wchar_t>(L'A' + bit);
    }
  }
  [[nodiscard]] std::wstring_view text() const noexcept { return out_.view(); }

 private:
  void writeScalar(const ZoVariant& value) {
    switch (value.type()) {
      case ZoVariant::kInt:
      case ZoVariant::kBigInt:
        out_.advance(ZoIntToStr(value.asBigInt(), out_.room(ZoNumberTextSize)));
        break;
      case ZoVariant::kReal:
        out_.advance(ZoRealToStr(value.asReal(), out_.room(ZoNumberTextSize)));
        break;
      case ZoVariant::kString:
        writeQuoted(value.asString().view());
        break;
      default:  // their conversions to text are what stands in text forms too
        out_ << value.asString().view();
        break;
    }
  }

  // At least four digits.
  void writeCode(unsigned int code) {
    const int digits = code >> 16 ? 8 : 4;
    zo::writeHex(out_.room(8), code, digits);
    out_.advance(static_cast<size_t>(digits));
  }

  void writeQuoted(std::wstring_view text) {
    out_ << L'"';
    constexpr size_t kPiece = 256;
    for (size_t i = 0; i < text.size(); i += kPiece)
      writePiece(text, i, std::min(i + kPiece, text.size()));
    out_ << L'"';
  }
  void writePiece(std::wstring_view text, size_t from, size_t end) {
    // No character takes more than the six of an escape.
    wchar_t* const first = out_.room(6 * (end - from));
    wchar_t* to = first;
    for (size_t i = from; i < end; ++i) {
      const wchar_t c = text[i];
      if (c >= 0x20 && c != L'"' && c != L'\\' && (c < 0x7F || !mustBeEscaped(text, i))) {
        *to++ = c;
      } else {
        to = writeEscaped(c, to);
      }
    }
    out_.advance(static_cast<size_t>(to - first));
  }
  // Halves of a surrogate pair that stand alone, which no other encoding keeps, and DEL.
  static bool mustBeEscaped(std::wstring_view text, size_t i) noexcept {
    if (zo::isHighSurrogate(text[i])) return zo::firstCharacter(text.substr(i)).size() == 1;
    if (zo::isLowSurrogate(text[i])) return i == 0 || !zo::isHighSurrogate(text[i - 1]);
    return text[i] == 0x7F;
  }
  static wchar_t* writeEscaped(wchar_t c, wchar_t* to) noexcept {
    *to++ = L'\\';
    switch (c) {
      case L'"':
      case L'\\':
        *to++ = c;
        break;
      case L'\n':
        *to++ = L'n';
        break;
      case L'\r':
        *to++ = L'r';
        break;
      case L'\t':
        *to++ = L't';
        break;
      default:
        *to++ = L'u';
        to = zo::writeHex(to, c, 4);
        break;
    }
    return to;
  }

  void startLine(unsigned int tabs) {
    out_ << L'\n';
    writeTabs(tabs);
  }

  bool writeSequence(const ZoVariant::Sequence& sequence, unsigned int tabs,
                     unsigned int depthLeft) {
    out_ << L" [";
    for (const ZoVariant& element : sequence) {
      startLine(tabs + 1);
      if (!write(element, tabs + 1, depthLeft)) return false;
    }
    if (!sequence.isEmpty()) startLine(tabs);
    out_ << L']';
    return true;
  }

  bool writeDict(const ZoVariant::Dict& dict, unsigned int tabs, unsigned int depthLeft) {
    const std::vector<zo::KeyedValue> entries = zo::inOrderOfKeys(dict);
    out_ << L" {";
    for (const zo::KeyedValue& entry : entries) {
      startLine(tabs + 1);
      writeQuoted(entry.key);
      out_ << L" = ";
      if (!write(*entry.value, tabs + 1, depthLeft)) return false;
    }
    if (!entries.empty()) startLine(tabs);
    out_ << L'}';
    return true;
  }

  zo::TextBuffer out_;
};

}  // namespace

int ZoVariant::format(ZoString& out, unsigned int tabs) const {
  FormWriter writer;
  writer.writeTabs(tabs);
  if (!writer.write(*this, tabs, kMaxDepth) || writer.text().size() > ZoString::maxLength()) {
    out = ZoString();
    return ZoResult::refused;
  }
  out = ZoString(writer.text());
  return ZoResult::ok;
}

ZoString ZoVariant::format(unsigned int tabs) const {
  ZoString out;
  (void)format(out, tabs);  // empty then
  return out;
}

ZoString ZoVariant::printType() const {
  FormWriter writer;
  writer.writeType(*this);
  return ZoString(writer.text());
}

ZoString ZoVariant::printFlags() const {
  FormWriter writer;
  writer.writeFlags(flags());
  return ZoString(writer.text());
}

int ZoVariant::parse(std::wstring_view text, unsigned int* end) {
  zo::FormBuilder builder;
  ZoVariant read;
  zo::TextFormParser<zo::FormBuilder> parser(text, builder, kMaxDepth);
  const bool ok = parser.parse(read);
  if (end) *end = static_cast<unsigned int>(parser.position());
  if (!ok) return ZoResult::refused;
  swap(read);
  return ZoResult::ok;
}

std::wostream& operator<<(std::wostream& out, const ZoVariant& value) {
  ZoString text;
  if (value.format(text) != ZoResult::ok) out.setstate(std::ios::failbit);
  return out << text;
}
