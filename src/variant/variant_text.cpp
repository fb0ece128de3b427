// ZoVariant: its text form, written and read.
#include <zo/results.h>
#include <zo/text/number_text.h>
#include <zo/variant/variant.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include "text/text_buffer.h"
#include "variant/text_form.h"

static_assert(ZoVariant::kGuid == static_cast<unsigned int>(zo::FormKind::Guid));

namespace {

using zo::FormHead;
using zo::FormKind;

// ---- Writing ----

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
        out_ += L' ';
        writeScalar(value);
        return true;
    }
  }
  void writeTabs(unsigned int tabs) { out_.append(tabs, L'\t'); }
  void writeHead(const ZoVariant& value) {
    writeType(value);
    writeFlags(value.flags());
  }
  void writeType(const ZoVariant& value) {
    const std::wstring_view word = zo::wordOfCode(value.code());
    if (word.empty()) {
      out_ += L'#';
      writeHex(static_cast<unsigned int>(value.code()), 4);
    } else {
      for (const wchar_t c : word) out_ += c == L' ' ? L'_' : c;
    }
    const auto kind = static_cast<FormKind>(value.type());
    if (kind != zo::kindOfCode(value.code())) {
      out_ += L'(';
      out_ += zo::kFormKinds[value.type()];
      out_ += L')';
    }
  }
  void writeFlags(unsigned int flags) {
    if (flags == 0) return;
    out_ += L':';
    for (unsigned int bit = 0; bit < 26; ++bit) {
      if (flags >> bit & 1) out_ += static_cast<wchar_t>(L'A' + bit);
    }
  }
  [[nodiscard]] const std::wstring& text() const noexcept { return out_; }

 private:
  void writeScalar(const ZoVariant& value) {
    wchar_t number[ZoNumberTextSize];
    switch (value.type()) {
      case ZoVariant::kInt:
      case ZoVariant::kBigInt:
        out_.append(number, ZoIntToStr(value.asBigInt(), number));
        break;
      case ZoVariant::kReal:
        out_.append(number, ZoRealToStr(value.asReal(), number));
        break;
      case ZoVariant::kString:
        writeQuoted(value.asString().view());
        break;
      default:  // their conversions to text are what stands in text forms too
        out_ += value.asString().view();
        break;
    }
  }

  void writeHex(unsigned int value, int leastDigits) {
    int digits = 8;
    while (digits > leastDigits && value >> (4 * (digits - 1)) == 0) --digits;
    while (digits-- > 0) out_ += L"0123456789ABCDEF"[value >> (4 * digits) & 15];
  }

  void writeQuoted(std::wstring_view text) {
    out_ += L'"';
    size_t plainFrom = 0;
    for (size_t i = 0; i < text.size(); ++i) {
      const wchar_t c = text[i];
      if (c >= 0x20 && c != L'"' && c != L'\\' && (c < 0x7F || !mustBeEscaped(text, i))) continue;
      out_.append(text, plainFrom, i - plainFrom);
      plainFrom = i + 1;
      writeEscaped(c);
    }
    out_.append(text, plainFrom);
    out_ += L'"';
  }
  // Halves of a surrogate pair that stand alone, which no other encoding keeps, and DEL.
  static bool mustBeEscaped(std::wstring_view text, size_t i) noexcept {
    const auto isHigh = [&](size_t at) {
      return at < text.size() && (text[at] & 0xFC00) == 0xD800;
    };
    const auto isLow = [&](size_t at) { return at < text.size() && (text[at] & 0xFC00) == 0xDC00; };
    if (isHigh(i)) return !isLow(i + 1);
    if (isLow(i)) return i == 0 || !isHigh(i - 1);
    return text[i] == 0x7F;
  }
  void writeEscaped(wchar_t c) {
    out_ += L'\\';
    switch (c) {
      case L'"':
      case L'\\':
        out_ += c;
        break;
      case L'\n':
        out_ += L'n';
        break;
      case L'\r':
        out_ += L'r';
        break;
      case L'\t':
        out_ += L't';
        break;
      default:
        out_ += L'u';
        writeHex(c, 4);
        break;
    }
  }

  void startLine(unsigned int tabs) {
    out_ += L'\n';
    writeTabs(tabs);
  }

  bool writeSequence(const ZoVariant::Sequence& sequence, unsigned int tabs,
                     unsigned int depthLeft) {
    out_ += L" [";
    for (const ZoVariant& element : sequence) {
      startLine(tabs + 1);
      if (!write(element, tabs + 1, depthLeft)) return false;
    }
    if (!sequence.isEmpty()) startLine(tabs);
    out_ += L']';
    return true;
  }

  bool writeDict(const ZoVariant::Dict& dict, unsigned int tabs, unsigned int depthLeft) {
    std::vector<std::pair<std::wstring_view, const ZoVariant*>> entries;
    entries.reserve(dict.entries());
    for (const auto [key, value] : dict) entries.emplace_back(key.view(), &value);
    std::sort(entries.begin(), entries.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
    out_ += L" {";
    for (const auto& [key, value] : entries) {
      startLine(tabs + 1);
      writeQuoted(key);
      out_ += L" = ";
      if (!write(*value, tabs + 1, depthLeft)) return false;
    }
    if (!entries.empty()) startLine(tabs);
    out_ += L'}';
    return true;
  }

  std::wstring out_;
};

// ---- Reading ----

struct VariantBuilder {
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
    if (head.kind == FormKind::Dict) {
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
    out = head.kind == FormKind::Point
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
    if (result == ZoResult::outOfMemory) throw std::bad_alloc();
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
  out = ZoString(std::wstring_view(writer.text()));
  return ZoResult::ok;
}

ZoString ZoVariant::format(unsigned int tabs) const {
  ZoString out;
  format(out, tabs);
  return out;
}

ZoString ZoVariant::printType() const {
  FormWriter writer;
  writer.writeType(*this);
  return ZoString(std::wstring_view(writer.text()));
}

ZoString ZoVariant::printFlags() const {
  FormWriter writer;
  writer.writeFlags(flags());
  return ZoString(std::wstring_view(writer.text()));
}

int ZoVariant::parse(std::wstring_view text, unsigned int* end) {
  VariantBuilder builder;
  ZoVariant read;
  zo::TextFormParser<VariantBuilder> parser(text, builder, kMaxDepth);
  const bool ok = parser.parse(read);
  if (end) *end = static_cast<unsigned int>(parser.position());
  if (!ok) return ZoResult::refused;
  swap(read);
  return ZoResult::ok;
}

std::wostream& operator<<(std::wostream& out, const ZoVariant& value) {
  return out << value.format();
}
