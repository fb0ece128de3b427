// ZoToken: what it says, and how it is shown.
#include <zo/parse/parser_token.h>
#include <zo/text/number_text.h>

#include <limits>

#include "parse/parser_scanner.h"
#include "text/code_units.h"
#include "text/text_buffer.h"

namespace {

void addNumber(zo::TextBuffer& out, std::size_t number) {
  out << ZoIntToStr(static_cast<std::int64_t>(number)).view();
}

// A text in quotes for a message: in one line, and cut where it is long.
void addShown(zo::TextBuffer& out, std::wstring_view text) {
  constexpr std::size_t kLongest = 40;
  std::size_t units = 0;
  out << L'"';
  for (std::wstring_view rest = text; !rest.empty();) {
    const std::wstring_view character = zo::firstCharacter(rest);
    if (units + character.size() > kLongest) break;
    if (character[0] >= 0x20 && (character.size() == 2 || !zo::isSurrogate(character[0]))) {
      out << character;
    } else {
      wchar_t escape[6] = {L'\\', L'u'};
      zo::writeHex(escape + 2, character[0], 4);
      out << std::wstring_view(escape, 6);
    }
    units += character.size();
    rest.remove_prefix(character.size());
  }
  out << (units < text.size() ? L"...\"" : L"\"");
}

const wchar_t* faultText(ZoToken::Fault fault) noexcept {
  switch (fault) {
    case ZoToken::kOpenText:
      return L"a quote that is not closed";
    case ZoToken::kOpenComment:
      return L"a comment that is not closed";
    case ZoToken::kTooBig:
      return L"a number that is too large, ";
    case ZoToken::kUnknownSign:
      return L"the unknown character ";
    default:
      return L"a text with an unknown escape, ";
  }
}

}  // namespace

ZoString ZoToken::value() const {
  return kind_ == kText ? ZoString(zo::TokenScanner::unescaped(text_, escapes_)) : ZoString(text_);
}

std::int64_t ZoToken::integer() const noexcept {
  if (kind_ != kReal) return integer_;
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  if (real_ >= kLimit) return std::numeric_limits<std::int64_t>::max();
  return real_ < -kLimit ? std::numeric_limits<std::int64_t>::min()
                         : static_cast<std::int64_t>(real_);
}

ZoString ZoToken::where() const {
  zo::TextBuffer out;
  out << L"line ";
  addNumber(out, line_);
  out << L", column ";
  addNumber(out, column_);
  return out.toString();
}

ZoString ZoToken::describe() const {
  zo::TextBuffer out;
  switch (kind_) {
    case kEnd:
      return L"the end of the text";
    case kWord:
      out << L"the word ";
      break;
    case kInteger:
    case kReal:
      out << L"the number ";
      break;
    case kText:
      out << L"the text ";
      addShown(out, text_.substr(1, text_.size() - 2));
      return out.toString();
    case kSign:
      break;
    case kBad:
      out << faultText(fault_);
      if (fault_ == kOpenText || fault_ == kOpenComment) return out.toString();
      break;
  }
  addShown(out, text_);
  return out.toString();
}
