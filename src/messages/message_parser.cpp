#include "messages/message_parser.h"

#include <utility>

#include "messages/markup.h"
#include "text/code_units.h"

namespace zo {
namespace {

constexpr bool isBlank(wchar_t c) noexcept { return c == L' ' || c == L'\t'; }

std::wstring_view withoutBlanksBehind(std::wstring_view text) noexcept {
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

constexpr bool isNoText(wchar_t c) noexcept { return c == 0 || c == kNoCharacter; }

}  // namespace

bool isLanguageTag(std::wstring_view tag) noexcept {
  std::size_t group = 0;
  for (const wchar_t c : tag) {
    if (c == L'-' ? group == 0 : !isLetter(c) && !isDigit(c)) return false;
    group = c == L'-' ? 0 : group + 1;
    if (group > 8) return false;
  }
  return group > 0 && tag.size() <= 35;
}

// ---- Lines ----

// To the next line; false at the end.
bool MessageParser::nextLine() {
  if (rest_.empty()) return false;
  std::size_t end = 0;
  while (end < rest_.size() && rest_[end] != L'\n' && rest_[end] != L'\r') ++end;
  whole_ = left_ = rest_.substr(0, end);
  rest_.remove_prefix(end);
  if (rest_.starts_with(L"\r\n")) {
    rest_.remove_prefix(2);
  } else if (!rest_.empty()) {
    rest_.remove_prefix(1);
  }
  ++line_;
  return true;
}

unsigned int MessageParser::column() const noexcept {
  return static_cast<unsigned int>(left_.data() - whole_.data()) + 1;
}

// Whether something is left behind the blanks.
bool MessageParser::skipBlanks() noexcept {
  while (!left_.empty() && isBlank(left_.front())) left_.remove_prefix(1);
  return !left_.empty();
}

std::wstring_view MessageParser::takeWord() noexcept {
  std::size_t length = 0;
  while (length < left_.size() && !isBlank(left_[length])) ++length;
  const std::wstring_view word = left_.substr(0, length);
  left_.remove_prefix(length);
  return word;
}

void MessageParser::fault(ZoMessageFault::Reason reason, unsigned int line, unsigned int column) {
  if (faults_.size() < kMaxMessageFaults) faults_.push_back({line, column, reason});
}

// ---- The file ----

bool MessageParser::parse() {
  data_.texts.reserve(rest_.size());
  if (!parseHead()) return false;
  while (nextLine()) {
    if (!skipBlanks() || left_.front() == L'#') continue;
    if (left_.front() == L'@') {
      parseDirective();
    } else {
      parseMessage();
    }
  }
  finish();
  return true;
}

bool MessageParser::parseHead() {
  if (!nextLine()) line_ = 1;
  const bool isHead = takeWord() == L"@messages" && skipBlanks() && takeWord() == L"1" &&
                      (!skipBlanks() || left_.front() == L'#');
  if (!isHead) fault(ZoMessageFault::kHead, 1, 1);
  return isHead;
}

void MessageParser::parseDirective() {
  const unsigned int at = column();
  const std::wstring_view name = takeWord();
  const std::wstring_view value = skipBlanks() ? takeWord() : L"";
  std::wstring* const tag = name == L"@language"   ? &data_.language
                            : name == L"@fallback" ? &data_.fallback
                                                   : nullptr;
  const bool goesOn = skipBlanks() && left_.front() != L'#';
  const bool isKnown = tag ? isLanguageTag(value) : name == L"@codepage" && !value.empty();
  if (!isKnown || goesOn || !data_.entries.empty() || (tag && !tag->empty())) {
    fault(ZoMessageFault::kDirective, line_, at);
  } else if (tag) {
    *tag = value;
  } else if (!knowsCodepage_) {
    fault(ZoMessageFault::kCodepage, line_, at);
  }
}

// ---- Messages ----

void MessageParser::parseMessage() {
  const MessageEntry begin{0, static_cast<unsigned int>(data_.texts.size()), 0, line_};
  const unsigned int at = column();
  const bool isText = !isNoText(left_.front());
  const auto number = messageNumber(takeWord());
  if (!number) fault(isText ? ZoMessageFault::kNumber : ZoMessageFault::kCharacter, line_, at);
  start_ = begin.offset;
  stretches_.clear();
  bool isSound = number.has_value();
  while (true) {
    static_cast<void>(skipBlanks());
    const bool goesOn = takeContinuation();
    isSound = isSound && unescape();
    if (!goesOn) break;
    if (!nextLine()) {
      if (isSound) fault(ZoMessageFault::kContinuation, line_, 1);
      isSound = false;
      break;
    }
  }
  const std::wstring_view text = std::wstring_view(data_.texts).substr(start_);
  if (isSound && text.size() > kMaxMessageLength) {
    fault(ZoMessageFault::kTooLong, begin.line, at);
    isSound = false;
  }
  if (!isSound || !checkMarks(text)) {
    data_.texts.resize(start_);
    return;
  }
  data_.entries.push_back(
      {number.value_or(0), begin.offset, static_cast<unsigned int>(text.size()), begin.line});
  data_.texts += L'\0';
}

// Takes blanks, and the backslash that continues the line, from its end; whether there was one.
bool MessageParser::takeContinuation() noexcept {
  left_ = withoutBlanksBehind(left_);
  std::size_t backslashes = 0;
  while (backslashes < left_.size() && left_[left_.size() - 1 - backslashes] == L'\\')
    ++backslashes;
  if (backslashes % 2 == 0) return false;
  left_.remove_suffix(1);
  return true;
}

// What is left of the line as a part of the text.
bool MessageParser::unescape() {
  stretches_.push_back({data_.texts.size() - start_, line_, column()});
  while (!left_.empty()) {
    std::size_t plain = 0;
    while (plain < left_.size() && left_[plain] != L'\\' && !isNoText(left_[plain])) ++plain;
    data_.texts += left_.substr(0, plain);
    left_.remove_prefix(plain);
    if (left_.empty()) break;
    if (isNoText(left_.front())) {
      fault(ZoMessageFault::kCharacter);
      return false;
    }
    if (!unescapeOne()) return false;
    stretches_.push_back({data_.texts.size() - start_, line_, column()});
  }
  return true;
}

bool MessageParser::unescapeOne() {
  constexpr std::wstring_view kEscapes = L"\\nrt", kUnits = L"\\\n\r\t";
  const wchar_t c = left_.size() > 1 ? left_[1] : L'\0';
  const std::size_t simple = kEscapes.find(c);
  if (simple != std::wstring_view::npos) {
    data_.texts += kUnits[simple];
    left_.remove_prefix(2);
    return true;
  }
  const std::wstring_view digits = c == L'u' ? left_.substr(2, 4) : L"";
  unsigned int unit = 0;
  bool isHex = digits.size() == 4;
  for (const wchar_t digit : digits) {
    isHex = isHex && hexDigit(digit) < 16;
    unit = unit << 4 | (hexDigit(digit) & 15);
  }
  if (!isHex || unit == 0) {
    fault(ZoMessageFault::kEscape);
    return false;
  }
  data_.texts += static_cast<wchar_t>(unit);
  left_.remove_prefix(6);
  return true;
}

bool MessageParser::checkMarks(std::wstring_view text) {
  if (text.find(L'%') == std::wstring_view::npos) return true;
  MarkupReader reader(text);
  std::size_t at = 0, plural = 0;
  for (MarkupReader::Piece piece = reader.next(); piece.kind != MarkupReader::kEnd;
       piece = reader.next()) {
    if (piece.kind == MarkupReader::kBad) {
      markFault(piece.plural ? ZoMessageFault::kPlural : ZoMessageFault::kReference, at);
      return false;
    }
    if (piece.kind == MarkupReader::kPlural && reader.depth() == 1) plural = at;
    at = reader.position();
  }
  if (reader.depth() == 0) return true;
  markFault(ZoMessageFault::kPlural, plural);
  return false;
}

void MessageParser::markFault(ZoMessageFault::Reason reason, std::size_t offset) {
  const auto behind = std::ranges::upper_bound(stretches_, offset, {}, &Stretch::offset);
  const Stretch& stretch = *(behind - 1);
  fault(reason, stretch.line, stretch.column + static_cast<unsigned int>(offset - stretch.offset));
}

// Sorts the messages; of those with one number the first counts.
void MessageParser::finish() {
  data_.rule = &pluralRule(data_.language);
  std::vector<MessageEntry>& entries = data_.entries;
  const auto order = [](const MessageEntry& entry) {
    return std::pair(entry.number, entry.offset);
  };
  if (!std::ranges::is_sorted(entries, {}, order)) std::ranges::sort(entries, {}, order);
  const auto isSame = [](const MessageEntry& a, const MessageEntry& b) {
    return a.number == b.number;
  };
  if (std::ranges::adjacent_find(entries, isSame) == entries.end()) return;
  for (std::size_t i = 1; i < entries.size(); ++i)
    if (isSame(entries[i - 1], entries[i])) fault(ZoMessageFault::kDuplicate, entries[i].line, 1);
  const auto doubles = std::ranges::unique(entries, isSame);
  entries.erase(doubles.begin(), doubles.end());
  std::ranges::sort(faults_, {},
                    [](const ZoMessageFault& each) { return std::pair(each.line, each.column); });
}

}  // namespace zo
