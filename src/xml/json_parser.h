// The parser of JSON (docs/formats/json.md).
//
// It knows the grammar and no variants: a builder makes the values, as for the text form
// (variant/text_form.h). It trusts nothing in the text; memory grows only with what has been read,
// and containers lie at most maxDepth deep in one another.
#pragma once

#include <zo/results.h>
#include <zo/text/number_text.h>
#include <zo/xml/xml_results.h>

#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "text/code_units.h"
#include "variant/form_head.h"
#include "xml/real_form.h"

namespace zo {

inline constexpr std::wstring_view kJsonTypeKey = L"$zo";

struct JsonFault {
  int code = ZoResult::ok;
  const wchar_t* reason = nullptr;
  size_t at = 0;
};

// Builder is that of TextFormParser, and its make() takes double[4] instead of double[3].
template <class Builder>
class JsonParser {
 public:
  using Value = typename Builder::Value;

  JsonParser(std::wstring_view text, Builder& builder, unsigned int maxDepth) noexcept
      : text_(text), builder_(builder), depthLeft_(maxDepth) {}

  // The one value that the whole text is.
  bool parse(Value& out) {
    if (!value(out)) return false;
    skipWhite();
    return at_ == text_.size() || fail(L"There is something behind the value.");
  }
  [[nodiscard]] const JsonFault& fault() const noexcept { return fault_; }

 private:
  using View = std::wstring_view;

  // ---- Failures ----
  bool fail(const wchar_t* reason, int code = ZoResult::notWellFormed) noexcept {
    return failAt(at_, reason, code);
  }
  bool failAt(size_t at, const wchar_t* reason, int code = ZoResult::notWellFormed) noexcept {
    if (fault_.code == ZoResult::ok) fault_ = {code, reason, at};
    return false;
  }
  bool failTyped(size_t at) noexcept {
    return at < text_.size() ? failAt(at, L"No variant is written so.", ZoResult::noVariant)
                             : failAt(at, L"A value is missing.");
  }
  // Where a sign is missing: is there the one that others would write, or is it no JSON?
  bool failInTyped(wchar_t others, const wchar_t* reason) noexcept {
    return peek() == others ? failTyped(at_) : fail(reason);
  }
  // Whether a value begins here that is of another kind than those which begin so.
  [[nodiscard]] bool isOtherValue(View beginnings) const noexcept {
    const wchar_t c = isDigit(peek()) ? L'-' : peek();
    return View(L"{[\"tfn-").find(c) != View::npos && beginnings.find(c) == View::npos;
  }

  // ---- Characters ----
  [[nodiscard]] wchar_t peek() const noexcept { return at_ < text_.size() ? text_[at_] : L'\0'; }
  void skipWhite() noexcept {
    while (at_ < text_.size() && (text_[at_] == L' ' || text_[at_] == L'\n' ||
                                  text_[at_] == L'\r' || text_[at_] == L'\t'))
      ++at_;
  }
  bool take(wchar_t c) noexcept {
    if (at_ >= text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }
  // Behind white space.
  bool takeNext(wchar_t c) noexcept {
    skipWhite();
    return take(c);
  }
  bool takeWord(View word) noexcept {
    if (!text_.substr(at_).starts_with(word)) return fail(L"No value begins so.");
    at_ += word.size();
    return true;
  }

  // ---- Values ----
  bool value(Value& out) {
    skipWhite();
    switch (peek()) {
      case L'{':
        return object(out);
      case L'[':
        return container(out, {VariantKind::Sequence, ZoTypeCode::Sequence, 0});
      case L'"': {
        View text;
        if (!quoted(text)) return false;
        builder_.make(out, {VariantKind::String, ZoTypeCode::String, 0}, text);
        return true;
      }
      case L't':
      case L'f': {
        const bool isTrue = peek() == L't';
        builder_.make(out, {VariantKind::Int, ZoTypeCode::Bool, 0}, int{isTrue});
        return takeWord(isTrue ? View(L"true") : View(L"false"));
      }
      case L'n':
        builder_.makeEmpty(out, FormHead());
        return takeWord(L"null");
      default:
        return number(out);
    }
  }

  bool number(Value& out) {
    Number read;
    if (!number(read)) return false;
    if (read.isReal) {
      builder_.make(out, {VariantKind::Real, ZoTypeCode::Real, 0}, read.real);
    } else if (std::in_range<int>(read.integer)) {
      builder_.make(out, {VariantKind::Int, ZoTypeCode::Int, 0}, static_cast<int>(read.integer));
    } else {
      builder_.make(out, {VariantKind::BigInt, ZoTypeCode::BigInt, 0}, read.integer);
    }
    return true;
  }

  // ---- Numbers ----
  struct Number {
    bool isReal = false;
    std::int64_t integer = 0;
    double real = 0;
  };

  bool digits() noexcept {
    const size_t first = at_;
    while (isDigit(peek())) ++at_;
    return at_ > first;
  }
  // The extent of a number, and whether it is a real: with a fraction or an exponent, or "-0".
  bool numberText(View& text, bool& isReal) noexcept {
    const size_t first = at_;
    const bool isNegative = take(L'-');
    const bool isZero = peek() == L'0';
    if (isZero ? !take(L'0') : !digits())
      return failAt(first, at_ == text_.size() ? L"A value is missing." : L"No value begins so.");
    isReal = isZero && isNegative;
    if (isZero && isDigit(peek())) return fail(L"A number has a zero in front.");
    if (take(L'.')) {
      isReal = true;
      if (!digits()) return fail(L"A fraction has no digits.");
    }
    if (take(L'e') || take(L'E')) {
      isReal = true;
      if (!take(L'-')) (void)take(L'+');
      if (!digits()) return fail(L"An exponent has no digits.");
    }
    text = text_.substr(first, at_ - first);
    return true;
  }
  bool number(Number& out) noexcept {
    const size_t first = at_;
    View text;
    if (!numberText(text, out.isReal)) return false;
    const int code = out.isReal ? ZoStrToReal(text, out.real) : ZoStrToInt(text, out.integer);
    return code == ZoResult::ok || failAt(first, L"The number is too large.");
  }
  // A number, or a text that stands for one that JSON has no digits for.
  bool anyReal(double& out) {
    skipWhite();
    const size_t first = at_;
    if (peek() == L'"') {
      View text;
      if (!quoted(text)) return false;
      return (readReal(text, out) && !std::isfinite(out)) || failTyped(first);
    }
    Number read;
    if (isOtherValue(L"-")) return failTyped(first);
    if (!number(read)) return false;
    out = read.isReal ? read.real : static_cast<double>(read.integer);
    return true;
  }

  // ---- Containers ----
  bool enter() noexcept {
    if (depthLeft_ == 0)
      return fail(L"Containers lie deeper in one another than allowed.", ZoResult::beyondLimits);
    --depthLeft_;
    return true;
  }

  // An array of a sequence, or an object or an array of pairs of a dictionary.
  bool container(Value& out, const FormHead& head) {
    if (!enter()) return false;
    const bool isDict = head.kind == VariantKind::Dict;
    const wchar_t close = peek() == L'{' ? L'}' : L']';
    ++at_;
    builder_.makeEmpty(out, head);
    if (!takeNext(close)) {
      do {
        if (!isDict ? !element(out) : close == L'}' ? !entry(out) : !pair(out)) return false;
      } while (takeNext(L','));
      if (!take(close)) return fail(L"A comma or a closing bracket is missing.");
    }
    ++depthLeft_;
    return true;
  }

  bool element(Value& sequence) {
    Value child;
    if (!value(child)) return false;
    builder_.addElement(sequence, std::move(child));
    return true;
  }

  // A member of an object. Where an object may tell a type, that key is no key.
  bool entry(Value& dict, bool mayBeTyped = false) {
    skipWhite();
    const size_t first = at_;
    View name;
    if (peek() != L'"') return fail(L"A key is missing.");
    if (!quoted(name)) return false;
    if (mayBeTyped && name == kJsonTypeKey) return failTyped(first);
    return rest(dict, builder_.key(name), first, L':');
  }
  // [key, value]
  bool pair(Value& dict) {
    skipWhite();
    const size_t first = at_;
    View name;
    if (!take(L'[')) return failTyped(at_);
    skipWhite();
    if (!anyText(name)) return false;
    return rest(dict, builder_.key(name), first, L',') &&
           (takeNext(L']') || failInTyped(L',', L"A closing bracket is missing."));
  }
  template <class Key>
  bool rest(Value& dict, Key key, size_t first, wchar_t separator) {
    Value child;
    if (!takeNext(separator))
      return separator == L':' ? fail(L"A colon is missing.")
                               : failInTyped(L']', L"A comma is missing.");
    if (!value(child)) return false;
    return builder_.addEntry(dict, std::move(key), std::move(child)) ||
           failAt(first, L"There is such a key already; upper and lower case are the same.");
  }

  // An object: a dictionary, or a value with its type.
  bool object(Value& out) {
    const size_t start = at_;
    const FormHead plain{VariantKind::Dict, ZoTypeCode::Dict, 0};
    ++at_;
    if (takeNext(L'}')) {
      if (depthLeft_ == 0) return enter();
      builder_.makeEmpty(out, plain);
      return true;
    }
    const size_t keyAt = at_;
    if (mayBeTypeKey()) {
      View key;
      if (!quoted(key)) return false;
      if (key == kJsonTypeKey) return typed(out, keyAt);
    }
    at_ = start;
    if (!enter()) return false;
    ++at_;
    builder_.makeEmpty(out, plain);
    do {
      if (!entry(out, true)) return false;
    } while (takeNext(L','));
    if (!take(L'}')) return fail(L"A comma or a closing bracket is missing.");
    ++depthLeft_;
    return true;
  }
  [[nodiscard]] bool mayBeTypeKey() const noexcept {
    const View next = text_.substr(at_);
    return next.starts_with(L"\"$") || next.starts_with(L"\"\\");
  }

  // ---- Typed values: {"$zo": [type, value]}, of which the key is taken ----
  bool typed(Value& out, size_t first) {
    if (!takeNext(L':')) return fail(L"A colon is missing.");
    FormHead head;
    View type;
    if (!takeNext(L'[')) return failTyped(first);
    skipWhite();
    const size_t typeAt = at_;
    if (peek() != L'"') return failTyped(at_);
    if (!quoted(type)) return false;
    if (!readWholeHead(type, head) || !builder_.head(head)) return failTyped(typeAt);
    if (!takeNext(L',')) return failInTyped(L']', L"A comma is missing.");
    skipWhite();
    return payload(out, head) &&
           (takeNext(L']') || failInTyped(L',', L"A closing bracket is missing.")) &&
           (takeNext(L'}') || failInTyped(L',', L"A closing bracket is missing."));
  }

  bool payload(Value& out, const FormHead& head) {
    const size_t first = at_;
    View read;
    switch (head.kind) {
      case VariantKind::Empty:
        if (isOtherValue(L"n")) return failTyped(first);
        builder_.makeEmpty(out, head);
        return takeWord(L"null");
      case VariantKind::Int:
      case VariantKind::BigInt:
        return integer(out, head);
      case VariantKind::Real: {
        double number = 0;
        if (!anyReal(number)) return false;
        builder_.make(out, head, number);
        return true;
      }
      case VariantKind::String:
        if (!anyText(read)) return false;
        builder_.make(out, head, read);
        return true;
      case VariantKind::Pointer: {
        void* address = nullptr;
        if (peek() != L'"') return failTyped(first);
        if (!quoted(read)) return false;
        if (!readAddress(read, address)) return failTyped(first);
        builder_.make(out, head, address);
        return true;
      }
      case VariantKind::Guid:
        if (peek() != L'"') return failTyped(first);
        if (!quoted(read)) return false;
        return builder_.makeGuid(out, head, read) || failTyped(first);
      case VariantKind::Dict:
      case VariantKind::Sequence: {
        const bool isList = peek() == L'[';
        if (!isList && (peek() != L'{' || head.kind != VariantKind::Dict)) return failTyped(first);
        return container(out, head);
      }
      default:
        return components(out, head);
    }
  }

  bool integer(Value& out, const FormHead& head) {
    const size_t first = at_;
    Number read;
    if (isOtherValue(L"-")) return failTyped(first);
    if (!number(read)) return false;
    if (read.isReal) return failTyped(first);
    if (head.kind == VariantKind::BigInt) {
      builder_.make(out, head, read.integer);
    } else {
      if (!std::in_range<int>(read.integer)) return failTyped(first);
      builder_.make(out, head, static_cast<int>(read.integer));
    }
    return true;
  }

  // Three numbers; a point may have its weight behind them.
  bool components(Value& out, const FormHead& head) {
    const size_t first = at_;
    double c[4] = {0, 0, 0, 1};
    int count = 0;
    if (!take(L'[')) return failTyped(first);
    do {
      if (count == 4) return failTyped(first);
      if (!anyReal(c[count++])) return false;
    } while (takeNext(L','));
    if (!take(L']')) return fail(L"A comma or a closing bracket is missing.");
    if (count < 3 || (count == 4 && head.kind == VariantKind::Vector)) return failTyped(first);
    builder_.make(out, head, c);
    return true;
  }

  // ---- Texts: valid until the next one ----
  // A string; or an array of UTF-16 units, for texts that strings of JSON cannot hold.
  bool anyText(View& out) {
    const size_t first = at_;
    if (peek() == L'"') return quoted(out);
    if (!take(L'[')) return failTyped(first);
    unescaped_.clear();
    out = unescaped_;
    if (takeNext(L']')) return true;
    do {
      skipWhite();
      const size_t unitAt = at_;
      Number unit;
      if (isOtherValue(L"-")) return failTyped(unitAt);
      if (!number(unit)) return false;
      if (unit.isReal || unit.integer < 0 || unit.integer > 0xFFFF) return failTyped(unitAt);
      unescaped_ += static_cast<wchar_t>(unit.integer);
    } while (takeNext(L','));
    if (!take(L']')) return fail(L"A comma or a closing bracket is missing.");
    out = unescaped_;
    return true;
  }

  // Up to what is not simply a character of the text.
  void skipPlain() noexcept {
    while (at_ < text_.size()) {
      const wchar_t c = text_[at_];
      if (c < 0x20 || c == L'"' || c == L'\\' || isSurrogate(c)) return;
      ++at_;
    }
  }
  bool quoted(View& out) {
    ++at_;
    const size_t first = at_;
    skipPlain();
    if (peek() == L'"') {
      out = text_.substr(first, at_ - first);
      ++at_;
      return true;
    }
    unescaped_.assign(text_, first, at_ - first);
    for (;;) {
      const size_t from = at_;
      skipPlain();
      unescaped_.append(text_, from, at_ - from);
      if (take(L'"')) break;
      if (!special()) return false;
    }
    out = unescaped_;
    return true;
  }

  // What skipPlain() stops at, but for the closing quote.
  bool special() {
    if (at_ == text_.size()) return fail(L"A string does not end.");
    if (take(L'\\')) return escape();
    if (peek() < 0x20) return fail(L"A control character in a string.");
    const View pair = firstCharacter(text_.substr(at_));
    if (pair.size() < 2) return fail(L"Half of a surrogate pair.");
    unescaped_ += pair;
    at_ += pair.size();
    return true;
  }

  bool escape() {
    constexpr View kNames = L"\"\\/bfnrt";
    constexpr View kMeant = L"\"\\/\b\f\n\r\t";
    const size_t found = at_ < text_.size() ? kNames.find(text_[at_]) : View::npos;
    if (found != View::npos) {
      ++at_;
      unescaped_ += kMeant[found];
      return true;
    }
    const size_t start = at_ - 1;
    wchar_t first = 0;
    wchar_t second = 0;
    if (!unit(first)) return failAt(start, L"No escape begins so.");
    unescaped_ += first;
    if (!isSurrogate(first)) return true;
    if (isLowSurrogate(first) || !take(L'\\') || !unit(second) || !isLowSurrogate(second))
      return failAt(start, L"Half of a surrogate pair.");
    unescaped_ += second;
    return true;
  }
  // uXXXX
  bool unit(wchar_t& out) noexcept {
    std::uint64_t number = 0;
    if (peek() != L'u' || text_.size() - at_ < 5 || !readHex(text_.substr(at_ + 1, 4), number))
      return false;
    at_ += 5;
    out = static_cast<wchar_t>(number);
    return true;
  }

  std::wstring_view text_;
  Builder& builder_;
  unsigned int depthLeft_;
  size_t at_ = 0;
  JsonFault fault_;
  std::wstring unescaped_;
};

}  // namespace zo
