// The head of a value in the written forms of variants: code, kind and flags (docs/variant.md).
#pragma once

#include <zo/variant/type.h>

#include <cstdint>
#include <iterator>
#include <string_view>

#include "text/code_units.h"
#include "variant/code_names.h"
#include "variant/kinds.h"

namespace zo {

// What stands in front of every value.
struct FormHead {
  VariantKind kind = VariantKind::Empty;
  ZoTypeCode code = ZoTypeCode::NoType;
  unsigned int flags = 0;
};

class FormHeadReader {
 public:
  FormHeadReader(std::wstring_view text, size_t at) noexcept : text_(text), at_(at) {}

  // False where there is none; position() then says how far it was understood.
  bool read(FormHead& out) noexcept {
    const size_t first = at_;
    if (take(L'#')) {
      if (!number(out.code)) return false;
    } else if (!codeOfWord(word(), out.code)) {
      at_ = first;
      return false;
    }
    out.kind = kindOfCode(out.code);
    if (take(L'(') && !(kind(out.kind) && take(L')'))) return false;
    return !take(L':') || flags(out.flags);
  }
  [[nodiscard]] size_t position() const noexcept { return at_; }

 private:
  [[nodiscard]] wchar_t peek() const noexcept { return at_ < text_.size() ? text_[at_] : L'\0'; }
  bool take(wchar_t c) noexcept {
    if (at_ >= text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }
  std::wstring_view word() noexcept {
    const size_t first = at_;
    while (isLetter(peek()) || peek() == L'_') ++at_;
    return text_.substr(first, at_ - first);
  }
  // One to eight hexadecimal digits.
  bool number(ZoTypeCode& code) noexcept {
    std::uint32_t number = 0;
    const size_t first = at_;
    for (; at_ - first < 8 && hexDigit(peek()) < 16; ++at_) number = number << 4 | hexDigit(peek());
    // NOLINTNEXTLINE(clang-analyzer-optin.core.EnumCastOutOfRange): a code needs no name
    code = static_cast<ZoTypeCode>(number);
    return at_ > first;
  }
  bool kind(VariantKind& out) noexcept {
    const std::wstring_view name = word();
    for (unsigned int i = 0; i < std::size(kKinds); ++i) {
      if (name != kKinds[i].name) continue;
      out = static_cast<VariantKind>(i);
      return true;
    }
    return false;
  }
  bool flags(unsigned int& out) noexcept {
    const size_t first = at_;
    for (; isUpper(peek()); ++at_) out |= 1u << (peek() - L'A');
    return at_ > first;
  }

  std::wstring_view text_;
  size_t at_;
};

}  // namespace zo
