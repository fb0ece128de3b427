#include "parse/unitwise.h"

#include <cstddef>

#include "text/code_units.h"

namespace zo {
namespace {

bool isSign(char16_t c) noexcept { return c > u' ' && c < 0x7F && !isLetter(c) && !isDigit(c); }

// Reads a pattern piece by piece, and keeps what the last piece says of the next.
class UnitwisePattern {
 public:
  UnitwisePattern(std::u16string_view rest, bool hasBlanks) noexcept
      : rest_(rest), mayBeWide_(!hasBlanks) {}

  bool isSound() noexcept {
    while (!rest_.empty())
      if (!take()) return false;
    return before_ != kOneWide;
  }

 private:
  // What a match has consumed just before a place of the pattern, whichever way it came there.
  enum Before { kAny, kAscii, kOneWide };

  bool take() noexcept {
    const char16_t c = rest_.front();
    if (c >= 0x80) return false;
    if (c == u'.') return wide(1);
    if (c == u'[') return characterClass();
    if (before_ == kOneWide) return false;
    if (c == u'{') return skip(endOfCount(), kAny);
    if (c == u'\\') return rest_.size() > 1 && isSign(rest_[1]) && ascii(2);
    if (c == u'(') return open();
    if (std::u16string_view(u"*+?|)^$").find(c) != std::u16string_view::npos) return skip(0, kAny);
    return ascii(1);
  }

  // Goes behind the unit at a place; npos stands for the last.
  bool skip(std::size_t last, Before before) noexcept {
    rest_ = last < rest_.size() ? rest_.substr(last + 1) : std::u16string_view();
    before_ = before;
    return true;
  }

  // Of {2,5}; a brace that is none of such stands for itself.
  std::size_t endOfCount() const noexcept {
    const std::size_t end = rest_.find_first_not_of(u"0123456789,", 1);
    return end != rest_.npos && rest_[end] == u'}' ? end : 0;
  }

  bool open() noexcept {
    if (rest_.starts_with(u"(*")) return false;
    if (rest_.starts_with(u"(?:")) return skip(2, before_);
    return !rest_.starts_with(u"(?") && skip(0, before_);
  }

  // Without signs that could end it later than it seems.
  bool characterClass() noexcept {
    const bool isNegated = rest_.substr(1).starts_with(u'^');
    const std::size_t first = isNegated ? 2 : 1;
    std::size_t end = first;
    for (; end < rest_.size() && rest_[end] != u']'; ++end) {
      if (rest_[end] >= 0x80 || rest_[end] == u'[') return false;
      if (rest_[end] == u'\\' && (++end >= rest_.size() || !isSign(rest_[end]))) return false;
    }
    if (end >= rest_.size() || end == first) return false;
    return isNegated ? wide(end + 1) : before_ != kOneWide && ascii(end + 1);
  }

  bool isRepeated(std::size_t at) const noexcept {
    return at < rest_.size() && std::u16string_view(u"*+?{").find(rest_[at]) != rest_.npos;
  }

  bool ascii(std::size_t length) noexcept { return skip(length - 1, kAscii); }

  bool wide(std::size_t length) noexcept {
    if (!mayBeWide_ || before_ == kAny) return false;
    if (!isRepeated(length)) return before_ == kAscii && skip(length - 1, kOneWide);
    const char16_t sign = rest_[length];
    const bool isRun = sign == u'*' || (sign == u'+' && before_ == kAscii);
    return isRun && !isRepeated(length + 1) && skip(length, kAny);
  }

  std::u16string_view rest_;
  bool mayBeWide_;
  Before before_ = kAny;
};

}  // namespace

bool isUnitwise(std::u16string_view pattern, bool hasBlanks) noexcept {
  return UnitwisePattern(pattern, hasBlanks).isSound();
}

}  // namespace zo
