#include "xml/json_writer.h"

#include <zo/text/number_text.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "parse/reg_exp_wide.h"
#include "text/code_units.h"
#include "text/eight_units.h"
#include "text/lone_surrogate.h"
#include "xml/json_parser.h"
#include "xml/real_form.h"

namespace zo {

namespace {

using View = std::wstring_view;

bool hasLoneSurrogate(View text) noexcept { return loneSurrogate(unitsOf(text)) < text.size(); }

bool isEscaped(wchar_t c) noexcept { return c < 0x20 || c == L'"' || c == L'\\'; }

// Copies the units up to the first one to be escaped, and perhaps some behind it; gives their
// number. There is room for the whole text.
size_t copyPlain(View text, wchar_t* to) noexcept {
  size_t i = 0;
  for (; i + kLane <= text.size(); i += kLane) {
    const __m128i v = load8(text.data() + i);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), v);
    const __m128i escaped = _mm_or_si128(
        between8(v, 0, 0x1F),
        _mm_or_si128(_mm_cmpeq_epi16(v, fill8(L'"')), _mm_cmpeq_epi16(v, fill8(L'\\'))));
    if (const unsigned int found = mask8(escaped))
      return i + static_cast<size_t>(std::countr_zero(found)) / 2;
  }
  for (; i < text.size() && !isEscaped(text[i]); ++i) to[i] = text[i];
  return i;
}

constexpr size_t kLongestEscape = 6;
wchar_t* writeEscaped(wchar_t c, wchar_t* to) noexcept {
  constexpr View kMeant = L"\"\\\b\f\n\r\t";
  constexpr View kNames = L"\"\\bfnrt";
  const size_t named = kMeant.find(c);
  *to++ = L'\\';
  *to++ = named == View::npos ? L'u' : kNames[named];
  return named == View::npos ? writeHex(to, c, 4, kLowerHexDigits) : to;
}

// Whether an object of JSON can have the keys.
bool areKeysOfObject(const std::vector<KeyedValue>& entries) noexcept {
  return std::none_of(entries.begin(), entries.end(),
                      [](const KeyedValue& entry) { return hasLoneSurrogate(entry.key); });
}
bool isTypeAmong(const std::vector<KeyedValue>& entries) noexcept {
  return std::any_of(entries.begin(), entries.end(),
                     [](const KeyedValue& entry) { return entry.key == kJsonTypeKey; });
}

// Whether JSON's own form of a value that is no container comes back as this value.
bool isPlainScalar(const ZoVariant& value) {
  if (!isPlainType(value)) {
    return value.isTypeOf(ZoVariant::kInt) && value.code() == ZoTypeCode::Bool &&
           value.flags() == 0 && static_cast<unsigned int>(value.asInt()) < 2;
  }
  switch (value.type()) {
    case ZoVariant::kEmpty:
    case ZoVariant::kInt:
      return true;
    case ZoVariant::kBigInt:
      return !std::in_range<int>(value.asBigInt());
    case ZoVariant::kReal:
      return std::isfinite(value.asReal());
    case ZoVariant::kString:
      return true;  // but for lone surrogates
    default:
      return false;
  }
}

}  // namespace

bool JsonWriter::write(const ZoVariant& value, unsigned int level, unsigned int depthLeft) {
  if (!value.isTypeOf(ZoVariant::kDict) && !value.isTypeOf(ZoVariant::kSequence)) {
    writeLeaf(value);
    return true;
  }
  const bool isDict = value.isTypeOf(ZoVariant::kDict);
  const Entries entries = isDict ? inOrderOfKeys(*value.asDict()) : Entries();
  const bool isObject = !isDict || areKeysOfObject(entries);
  const bool isPlain = isPlainType(value) && isObject && !isTypeAmong(entries);
  if (depthLeft == 0) return false;
  if (!isPlain) beginTyped(value);
  if (!(isDict ? writeDict(entries, isObject, level, depthLeft - 1)
               : writeSequence(*value.asSequence(), level, depthLeft - 1)))
    return false;
  if (!isPlain) endTyped();
  return true;
}

void JsonWriter::writeLeaf(const ZoVariant& value) {
  const ZoString own = value.isTypeOf(ZoVariant::kString) ? value.asString() : ZoString();
  const bool isHalf = hasLoneSurrogate(own.view());
  const bool isPlain = !isHalf && isPlainScalar(value);
  if (!isPlain) beginTyped(value);
  if (isHalf) {
    writeUnits(own.view());
  } else if (value.isTypeOf(ZoVariant::kString)) {
    writeQuoted(own.view());
  } else if (isPlain && value.code() == ZoTypeCode::Bool) {
    out_ << (value.asInt() == 0 ? View(L"false") : View(L"true"));
  } else {
    writeScalar(value);
  }
  if (!isPlain) endTyped();
}

bool JsonWriter::writeSequence(const ZoVariant::Sequence& sequence, unsigned int level,
                               unsigned int depthLeft) {
  out_ << L'[';
  bool isFirst = true;
  for (const ZoVariant& element : sequence) {
    if (!isFirst) out_ << L',';
    isFirst = false;
    startLine(level + 1);
    if (!write(element, level + 1, depthLeft)) return false;
  }
  if (!isFirst) startLine(level);
  out_ << L']';
  return true;
}

bool JsonWriter::writeDict(const Entries& entries, bool isObject, unsigned int level,
                           unsigned int depthLeft) {
  out_ << (isObject ? L'{' : L'[');
  for (const KeyedValue& entry : entries) {
    if (&entry != entries.data()) out_ << L',';
    startLine(level + 1);
    if (!isObject) out_ << L'[';
    if (isObject || !hasLoneSurrogate(entry.key)) {
      writeQuoted(entry.key);
    } else {
      writeUnits(entry.key);
    }
    separate(isObject ? L':' : L',');
    if (!write(*entry.value, level + 1, depthLeft)) return false;
    if (!isObject) out_ << L']';
  }
  if (!entries.empty()) startLine(level);
  out_ << (isObject ? L'}' : L']');
  return true;
}

void JsonWriter::beginTyped(const ZoVariant& value) {
  out_ << L"{\"$zo\"";
  separate(L':');
  out_ << L"[\"";
  out_ << types_.of(value);  // needs no escapes
  out_ << L'"';
  separate(L',');
}

void JsonWriter::startLine(unsigned int level) {
  if (!isIndented_) return;
  const size_t count = 1 + 2 * size_t{level};
  wchar_t* const line = out_.room(count);
  line[0] = L'\n';
  std::fill_n(line + 1, count - 1, L' ');
  out_.advance(count);
}

void JsonWriter::separate(wchar_t sign) {
  out_ << sign;
  if (isIndented_) out_ << L' ';
}

// ---- Values ----

void JsonWriter::writeScalar(const ZoVariant& value) {
  switch (value.type()) {
    case ZoVariant::kEmpty:
      out_ << L"null";
      break;
    case ZoVariant::kInt:
    case ZoVariant::kBigInt:
      writeInteger(value.asBigInt());
      break;
    case ZoVariant::kReal:
      writeReal(value.asReal());
      break;
    case ZoVariant::kPoint: {
      const ZoPoint point = value.asPoint();
      writeTriple(point);
      if (std::bit_cast<std::uint64_t>(point.w) != std::bit_cast<std::uint64_t>(1.0)) {
        separate(L',');
        writeReal(point.w);
      }
      out_ << L']';
      break;
    }
    case ZoVariant::kVector:
      writeTriple(value.asVector());
      out_ << L']';
      break;
    default:  // their conversions to text are all that there is to say
      writeQuoted(value.asString().view());
      break;
  }
}

template <class Geometry>
void JsonWriter::writeTriple(const Geometry& g) {
  out_ << L'[';
  writeReal(g.x);
  separate(L',');
  writeReal(g.y);
  separate(L',');
  writeReal(g.z);
}

// A number shows that it is a real.
void JsonWriter::writeReal(double value) {
  wchar_t* const text = out_.room(ZoNumberTextSize + 2);
  if (std::isfinite(value)) {
    unsigned int length = zo::writeReal(value, text);
    const View written(text, length);
    if (std::none_of(written.begin(), written.end(),
                     [](wchar_t c) { return c == L'.' || c == L'e'; })) {
      text[length++] = L'.';
      text[length++] = L'0';
    }
    out_.advance(length);
  } else {
    text[0] = L'"';
    const unsigned int length = zo::writeReal(value, text + 1);
    text[length + 1] = L'"';
    out_.advance(length + 2);
  }
}

void JsonWriter::writeInteger(std::int64_t value) {
  out_.advance(ZoIntToStr(value, out_.room(ZoNumberTextSize)));
}

// What no string of JSON can hold.
void JsonWriter::writeUnits(View text) {
  out_ << L'[';
  for (const wchar_t& unit : text) {
    if (&unit != text.data()) separate(L',');
    writeInteger(unit);
  }
  out_ << L']';
}

void JsonWriter::writeQuoted(View text) {
  out_ << L'"';
  for (;;) {
    const size_t plain = copyPlain(text, out_.room(text.size() + 1));
    out_.advance(plain);
    text.remove_prefix(plain);
    if (text.empty()) break;
    wchar_t* const first = out_.room(kLongestEscape);
    out_.advance(static_cast<size_t>(writeEscaped(text.front(), first) - first));
    text.remove_prefix(1);
  }
  out_ << L'"';
}

}  // namespace zo
