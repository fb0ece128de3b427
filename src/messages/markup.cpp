#include "messages/markup.h"

#include "text/code_units.h"

namespace zo {
namespace {

// Names of message files, as references have them.
bool isNameUnit(wchar_t c) noexcept {
  return c > L' ' && c != L'{' && c != L'}' && c != L'|' && c != L':' && c != L'%';
}

}  // namespace

std::optional<unsigned int> messageNumber(std::wstring_view text) noexcept {
  const bool hex = text.size() > 2 && text[0] == L'0' && lowerAscii(text[1]) == L'x';
  if (hex) text.remove_prefix(2);
  if (text.empty()) return std::nullopt;
  const unsigned int base = hex ? 16 : 10;
  unsigned long long number = 0;
  for (const wchar_t c : text) {
    const unsigned int digit = hexDigit(c);
    if (digit >= base) return std::nullopt;
    number = number * base + digit;
    if (number > 0xFFFFFFFF) return std::nullopt;
  }
  return static_cast<unsigned int>(number);
}

bool MarkupReader::isSpecial(wchar_t c) const noexcept {
  return c == L'%' || (depth_ > 0 && (c == L'|' || c == L'}'));
}

MarkupReader::Piece MarkupReader::next() noexcept {
  if (at_ >= text_.size()) return {kEnd, {}, 0, {}};
  const wchar_t c = text_[at_];
  if (c == L'%') return mark();
  if (isSpecial(c)) {
    if (c == L'|') return take(kNextForm, 1);
    --depth_;
    return take(kClose, 1);
  }
  std::size_t end = at_ + 1;
  if (depth_ == 0) {
    while (end < text_.size() && text_[end] != L'%') ++end;
  } else {
    while (end < text_.size() && !isSpecial(text_[end])) ++end;
  }
  return take(kText, end - at_);
}

MarkupReader::Piece MarkupReader::mark() noexcept {
  const wchar_t c = at_ + 1 < text_.size() ? text_[at_ + 1] : L'\0';
  if (isSpecial(c)) {
    ++at_;
    return take(kText, 1);
  }
  if (isDigit(c)) return argument();
  if (c != L'{') return take(kText, 1);
  return at_ + 2 < text_.size() && text_[at_ + 2] == L'?' ? plural() : reference();
}

unsigned int MarkupReader::argumentNumber(std::size_t at, std::size_t& end) const noexcept {
  if (at >= text_.size() || !isDigit(text_[at])) return 0;
  unsigned int number = text_[at] - L'0';
  end = at + 1;
  if (end < text_.size() && isDigit(text_[end])) number = number * 10 + (text_[end++] - L'0');
  return number;
}

MarkupReader::Piece MarkupReader::argument() noexcept {
  std::size_t end = at_;
  const unsigned int number = argumentNumber(at_ + 1, end);
  return number == 0 ? take(kText, 1) : take(kArgument, end - at_, number);
}

MarkupReader::Piece MarkupReader::reference() noexcept {
  std::size_t colon = std::wstring_view::npos, at = at_ + 2;
  for (; at < text_.size() && text_[at] != L'}'; ++at) {
    if (text_[at] == L':' && colon == std::wstring_view::npos) {
      colon = at;
    } else if (!isNameUnit(text_[at])) {
      return bad(false);
    }
  }
  const std::size_t digits = colon == std::wstring_view::npos ? at_ + 2 : colon + 1;
  if (at >= text_.size() || colon == at_ + 2) return bad(false);
  const auto number = messageNumber(text_.substr(digits, at - digits));
  if (!number) return bad(false);
  const std::wstring_view file =
      colon == std::wstring_view::npos ? L"" : text_.substr(at_ + 2, colon - at_ - 2);
  return take(kReference, at + 1 - at_, *number, file);
}

MarkupReader::Piece MarkupReader::plural() noexcept {
  std::size_t end = at_;
  const unsigned int number = argumentNumber(at_ + 3, end);
  if (number == 0 || end >= text_.size() || text_[end] != L' ' || depth_ == kMaxPluralDepth)
    return bad(true);
  ++depth_;
  return take(kPlural, end + 1 - at_, number);
}

MarkupReader::Piece MarkupReader::bad(bool plural) noexcept {
  Piece piece = take(kBad, 1);
  piece.plural = plural;
  return piece;
}

unsigned int MarkupReader::countForms() const noexcept {
  MarkupReader ahead = *this;
  unsigned int forms = 1;
  for (Kind kind = kText; ahead.depth_ >= depth_ && kind != kEnd;) {
    kind = ahead.next().kind;
    if (kind == kNextForm && ahead.depth_ == depth_) ++forms;
  }
  return forms;
}

void MarkupReader::skipForms() noexcept {
  for (const unsigned int inside = depth_; depth_ >= inside && next().kind != kEnd;) {
  }
}

}  // namespace zo
