// The text form of variants: what its writer and its parser share, and the parser.
//
// The parser knows the grammar (docs/variant.md) and no variants: a builder makes the values. It
// trusts nothing in the text; memory grows only with what has been read, and containers lie at most
// maxDepth deep in one another.
#pragma once

#include <zo/results.h>
#include <zo/text/number_text.h>
#include <zo/variant/type.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "text/code_units.h"
#include "variant/form_head.h"

namespace zo {

inline constexpr size_t kGuidTextLength = 38;

// Builder has the types Value and Key, and
//   bool head(const FormHead&)                      false: such a code does not go with such a kind
//   void make(Value&, const FormHead&, payload)     for int, int64, double, wstring_view (a text),
//                                                   void* and double[3]
//   bool makeGuid(Value&, const FormHead&, wstring_view)   false: this is no GUID
//   void makeEmpty(Value&, const FormHead&)         an empty value or container
//   Key key(wstring_view)
//   bool addEntry(Value& dict, Key&&, Value&&)      false: there is such a key already
//   void addElement(Value& sequence, Value&&)
template <class Builder>
class TextFormParser {
 public:
  using Value = typename Builder::Value;

  TextFormParser(std::wstring_view text, Builder& builder, unsigned int maxDepth) noexcept
      : text_(text), builder_(builder), depthLeft_(maxDepth) {}

  // The one value that the whole text is.
  bool parse(Value& out) {
    if (!value(out)) return false;
    skipWhite();
    return at_ == text_.size();
  }
  // How far the text was understood.
  [[nodiscard]] size_t position() const noexcept { return at_; }

 private:
  // ---- Characters ----
  [[nodiscard]] wchar_t peek() const noexcept { return at_ < text_.size() ? text_[at_] : L'\0'; }
  void skipWhite() noexcept {
    while (isWhite(peek())) ++at_;
  }
  bool take(wchar_t c) noexcept {
    if (at_ >= text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }
  // What follows a number must not look like a part of it.
  [[nodiscard]] bool atEndOfNumber() const noexcept {
    const wchar_t c = peek();
    return at_ == text_.size() || isWhite(c) || c == L']' || c == L'}';
  }

  // Up to `digits` hexadecimal digits, at least one.
  bool hex(unsigned int digits, std::uint64_t& out) noexcept {
    out = 0;
    const size_t first = at_;
    for (; at_ - first < digits; ++at_) {
      const unsigned int digit = hexDigit(peek());
      if (digit > 15) break;
      out = out << 4 | digit;
    }
    return at_ > first;
  }

  bool head(FormHead& out) {
    FormHeadReader reader(text_, at_);
    const bool isHead = reader.read(out);
    if (isHead && !builder_.head(out)) return false;
    at_ = reader.position();
    return isHead;
  }

  // ---- Values ----
  bool value(Value& out) {
    FormHead head_;
    skipWhite();
    if (!head(head_)) return false;
    if (head_.kind == VariantKind::Empty) {
      builder_.makeEmpty(out, head_);
      return at_ == text_.size() || isWhite(peek()) || peek() == L']' || peek() == L'}';
    }
    skipWhite();
    switch (head_.kind) {
      case VariantKind::Int:
      case VariantKind::BigInt:
        return integer(out, head_);
      case VariantKind::Real: {
        double number = 0;
        if (!real(number)) return false;
        builder_.make(out, head_, number);
        return atEndOfNumber();
      }
      case VariantKind::String: {
        std::wstring_view text;
        if (!quoted(text)) return false;
        builder_.make(out, head_, text);
        return true;
      }
      case VariantKind::Pointer: {
        std::uint64_t address = 0;
        if (!take(L'0') || !take(L'x') || !hex(16, address)) return false;
        builder_.make(out, head_, reinterpret_cast<void*>(static_cast<std::uintptr_t>(address)));
        return atEndOfNumber();
      }
      case VariantKind::Point:
      case VariantKind::Vector:
        return components(out, head_);
      case VariantKind::Guid: {
        const std::wstring_view text = text_.substr(at_, kGuidTextLength);
        if (text.size() != kGuidTextLength || !builder_.makeGuid(out, head_, text)) return false;
        at_ += kGuidTextLength;
        return true;
      }
      default:
        return container(out, head_);
    }
  }

  bool integer(Value& out, const FormHead& head_) {
    std::int64_t number = 0;
    unsigned int length = 0;
    if (ZoStrToInt(text_.substr(at_), number, &length) != ZoResult::ok) return false;
    if (head_.kind == VariantKind::BigInt) {
      builder_.make(out, head_, number);
    } else {
      if (!std::in_range<int>(number)) return false;
      builder_.make(out, head_, static_cast<int>(number));
    }
    at_ += length;
    return atEndOfNumber();
  }

  bool real(double& out) noexcept {
    unsigned int length = 0;
    if (ZoStrToReal(text_.substr(at_), out, &length) != ZoResult::ok) return false;
    at_ += length;
    return true;
  }

  bool components(Value& out, const FormHead& head_) {
    double numbers[3];
    for (int i = 0; i < 3; ++i) {
      skipWhite();
      if (!take(i == 0 ? L'(' : L',') || !real(numbers[i])) return false;
    }
    skipWhite();
    if (!take(L')')) return false;
    builder_.make(out, head_, numbers);
    return true;
  }

  bool container(Value& out, const FormHead& head_) {
    const bool isDict = head_.kind == VariantKind::Dict;
    if (depthLeft_ == 0 || !take(isDict ? L'{' : L'[')) return false;
    --depthLeft_;
    builder_.makeEmpty(out, head_);
    for (;;) {
      skipWhite();
      if (take(isDict ? L'}' : L']')) break;
      if (isDict ? !entry(out) : !element(out)) return false;
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

  bool entry(Value& dict) {
    const size_t first = at_;
    std::wstring_view name;
    if (!quoted(name)) return false;
    auto key = builder_.key(name);
    skipWhite();
    if (!take(L'=')) return false;
    Value child;
    if (!value(child)) return false;
    if (builder_.addEntry(dict, std::move(key), std::move(child))) return true;
    at_ = first;
    return false;
  }

  // ---- Quoted texts: valid until the next one ----
  bool quoted(std::wstring_view& out) {
    if (!take(L'"')) return false;
    const size_t first = at_;
    const size_t stop = text_.find_first_of(L"\"\\", first);
    if (stop == std::wstring_view::npos) return false;
    at_ = stop;
    if (text_[stop] == L'"') {
      out = text_.substr(first, stop - first);
      ++at_;
      return true;
    }
    unescaped_.assign(text_, first, stop - first);
    while (!take(L'"')) {
      const size_t from = at_;
      const size_t next = text_.find_first_of(L"\"\\", from);
      if (next == std::wstring_view::npos) return false;
      unescaped_.append(text_, from, next - from);
      at_ = next;
      if (take(L'\\') && !escape()) return false;
    }
    out = unescaped_;
    return true;
  }

  bool escape() {
    const wchar_t c = peek();
    ++at_;
    switch (c) {
      case L'"':
      case L'\\':
        unescaped_ += c;
        return true;
      case L'n':
        unescaped_ += L'\n';
        return true;
      case L'r':
        unescaped_ += L'\r';
        return true;
      case L't':
        unescaped_ += L'\t';
        return true;
      case L'u': {
        const size_t first = at_;
        std::uint64_t unit = 0;
        if (!hex(4, unit) || at_ - first != 4) return false;
        unescaped_ += static_cast<wchar_t>(unit);
        return true;
      }
      default:
        --at_;
        return false;
    }
  }

  std::wstring_view text_;
  Builder& builder_;
  unsigned int depthLeft_;
  size_t at_ = 0;
  std::wstring unescaped_;
};

}  // namespace zo
