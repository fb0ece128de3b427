#include <zo/parse/reg_exp.h>
#include <zo/text/string.h>

#include <array>
#include <ostream>
#include <string>

#include "parse/reg_exp_code.h"
#include "parse/reg_exp_wide.h"
#include "text/code_units.h"
#include "text/text_buffer.h"

ZoRegExp::ZoRegExp(const ZoRegExp& other) noexcept
    : code_(other.code_),
      status_(other.status_),
      error_(other.error_),
      errorPosition_(other.errorPosition_),
      limits_(other.limits_) {
  if (code_) code_->addReference();
}

ZoRegExp::ZoRegExp(ZoRegExp&& other) noexcept { swap(other); }

ZoRegExp::~ZoRegExp() {
  if (code_) code_->release();
}

void ZoRegExp::swap(ZoRegExp& other) noexcept {
  std::swap(code_, other.code_);
  std::swap(status_, other.status_);
  std::swap(error_, other.error_);
  std::swap(errorPosition_, other.errorPosition_);
  std::swap(limits_, other.limits_);
}

int ZoRegExp::set(std::wstring_view pattern, Option options) noexcept {
  zo::RegExpError error;
  const zo::RegExpCode* const made = zo::RegExpCode::make(zo::unitsOf(pattern), options, error);
  if (made) {
    if (code_) code_->release();
    code_ = made;
    error_ = 0;
    errorPosition_ = 0;
    return status_ = ZoResult::ok;
  }
  error_ = error.code;
  errorPosition_ = static_cast<unsigned int>(error.position);
  const bool isMemory = error.code == zo::RegExpCode::kNoMemory;
  return status_ = isMemory ? ZoResult::outOfMemory : ZoResult::badPattern;
}

ZoString ZoRegExp::errorText() const {
  if (error_ == 0) return {};
  if (error_ == zo::RegExpCode::kNoMemory) return L"Out of memory.";
  if (error_ == zo::RegExpCode::kTooLong) return L"The pattern is longer than 65535 characters.";
  std::array<PCRE2_UCHAR, 256> words{};
  const int length = pcre2_get_error_message(error_, words.data(), words.size());
  if (length <= 0) return L"The pattern is wrong.";
  std::wstring sentence(words.begin(), words.begin() + length);
  sentence.front() = zo::upperAscii(sentence.front());
  return ZoString(sentence + L'.');
}

std::wstring_view ZoRegExp::pattern() const noexcept {
  return code_ ? zo::wideOf(code_->pattern()) : std::wstring_view();
}
ZoRegExp::Option ZoRegExp::options() const noexcept { return code_ ? code_->options() : kDefault; }
bool ZoRegExp::hasMachineCode() const noexcept { return code_ && code_->hasMachineCode(); }
unsigned int ZoRegExp::groups() const noexcept { return code_ ? code_->groups() : 0; }

unsigned int ZoRegExp::group(std::wstring_view name) const noexcept {
  unsigned int found = npos;
  if (code_) {
    code_->eachName([&](std::u16string_view group, unsigned int number) {
      if (group != zo::unitsOf(name)) return false;
      found = number;
      return true;
    });
  }
  return found;
}

ZoString ZoRegExp::groupName(unsigned int group) const {
  ZoString found;
  if (code_) {
    code_->eachName([&](std::u16string_view name, unsigned int number) {
      if (number == group) found = zo::wideOf(name);
      return number == group;
    });
  }
  return found;
}

// A backslash makes every other ASCII character a plain one; and what kExtended takes for blanks.
ZoString ZoRegExp::escape(std::wstring_view text) {
  constexpr std::wstring_view kBlanks = L"\x85\x200E\x200F\x2028\x2029";
  zo::TextBuffer escaped;
  for (const wchar_t c : text) {
    const bool isSign = c < 0x80 && c != 0 && c != L'_' && !zo::isLetter(c) && !zo::isDigit(c);
    if (isSign || kBlanks.find(c) != kBlanks.npos) escaped << L'\\';
    escaped << c;
  }
  return escaped.toString();
}

std::wostream& operator<<(std::wostream& out, const ZoRegExp& expression) {
  return out << expression.pattern();
}
