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
#include "variant/text_form.h"

static_assert(ZoVariant::kGuid == static_cast<unsigned int>(zo::VariantKind::Guid));

namespace {

using zo::FormHead;
using zo::VariantKind;

// ---- Writing ----

struct KeyedValue {
  std::uint64_t rank;  // the first units behind what all keys begin with, as a number
  std::wstring_view key;
  const ZoVariant* value;
};

// The entries in the order of their keys' code units.
std::vector<KeyedValue> inOrderOfKeys(const ZoVariant::Dict& dict) {
  std::vector<KeyedValue> entries;
  entries.reserve(dict.entries());
  for (const auto [key, value] : dict) entries.push_back({0, key.view(), &value});
  if (entries.empty()) return entries;

  // Keys of one dictionary tend to begin alike: most comparisons are then one of two numbers.
  const std::wstring_view first = entries.front().key;
  size_t common = first.size();
  for (const KeyedValue& entry : entries) {
    const size_t n = std::min(common, entry.key.size());
    common = static_cast<size_t>(std::mismatch(first.begin(),
                                               first.begin() + static_cast<std::ptrdiff_t>(n),
                                               entry.key.begin())
                                     .first -
                                 first.begin());
  }
  for (KeyedValue& entry : entries) {
    for (size_t i = common; i < common + 4; ++i)
      entry.rank = entry.rank << 16 | (i < entry.key.size() ? std::uint64_t{entry.key[i]} : 0);
  }
  std::sort(entries.begin(), entries.end(), [](const KeyedValue& a, const KeyedValue& b) {
    return a.rank != b.rank ? a.rank < b.rank : a.key < b.key;
  });
  return entries;
}

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
    const std::vector<KeyedValue> entries = inOrderOfKeys(dict);
    out_ << L" {";
    for (const KeyedValue& entry : entries) {
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

// ---- Reading ----

struct FormBuilder {
  using Value = ZoVariant;

  static ZoVariant::Type typeOf(const FormHead& head) noexcept {
    return static_cast<ZoVariant::Type>(head.kind);
  }
  // Code 0 goes with every kind: it is what a code that does not fit was made into.
  static bool head(const FormHead& head) {
    return static_cast<unsigned int>(head.code) == 0 ||
           ZoVariant::isFitting(head.code, typeOf(head));
  }
  static void makeEmpty(ZoVariant& out, const FormHead& head) {
    if (head.kind == VariantKind::Dict) {
      // A text of many small dictionaries must not take many large tables.
      constexpr unsigned int kFirstBuckets = 8;
      out = ZoVariant(ZoHashDict<ZoVariant, ZoString>(kFirstBuckets), head.code, head.flags);
    } else {
      out = ZoVariant(typeOf(head), head.code, head.flags);
    }
  }
  template <class T>
  static void make(ZoVariant& out, const FormHead& head, T payload) {
    out = ZoVariant(payload, head.code, head.flags);
  }
  static void make(ZoVariant& out, const FormHead& head, std::wstring_view text) {
    out = ZoVariant(ZoString(text), head.code, head.flags);
  }
  static void make(ZoVariant& out, const FormHead& head, const double (&c)[3]) {
    out = head.kind == VariantKind::Point
              ? ZoVariant(ZoPoint(c[0], c[1], c[2]), head.code, head.flags)
              : ZoVariant(ZoVector(c[0], c[1], c[2]), head.code, head.flags);
  }
  static bool makeGuid(ZoVariant& out, const FormHead& head, std::wstring_view text) {
    _GUID guid;
    ZoString exact;
    if (ZoString2Guid(ZoString(text), guid) != ZoResult::ok) return false;
    // Short groups and the like are no GUID here: the text must be what would be written.
    ZoGuid2String(guid, exact);
    if (!exact.equals(text, ZoString::ignoreCase)) return false;
    out = ZoVariant(guid, head.code, head.flags);
    return true;
  }
  static ZoString key(std::wstring_view text) { return ZoString(text); }
  static bool addEntry(ZoVariant& dict, ZoString&& key, ZoVariant&& value) {
    const int result = dict.asDict()->insertAt(std::move(key), std::move(value));
    zo::throwIfNoMemory(result);
    return result == ZoResult::ok;
  }
  static void addElement(ZoVariant& sequence, ZoVariant&& value) {
    if (sequence.asSequence()->append(std::move(value)) != ZoResult::ok) throw std::bad_alloc();
  }
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
  FormBuilder builder;
  ZoVariant read;
  zo::TextFormParser<FormBuilder> parser(text, builder, kMaxDepth);
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
