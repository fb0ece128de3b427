#include "parse/csv_scanner.h"

#include <algorithm>

namespace zo {
namespace {

constexpr bool isLineEnd(wchar_t c) noexcept { return c == L'\n' || c == L'\r'; }

// Behind the line end that stands at a place; the place itself where none does.
const wchar_t* behindLineEnd(const wchar_t* at, const wchar_t* end) noexcept {
  if (at == end || !isLineEnd(*at)) return at;
  return at + (*at == L'\r' && end - at > 1 && at[1] == L'\n' ? 2 : 1);
}

// Counts the line ends between two places; lineStart is where the last line begins.
std::size_t linesBetween(const wchar_t* at, const wchar_t* to, const wchar_t*& lineStart) noexcept {
  const FourUnits ends(L'\r', L'\n', L'\r', L'\n');
  std::size_t lines = 0;
  while ((at = ends.find(at, to)) != to) {
    at = lineStart = behindLineEnd(at, to);
    ++lines;
  }
  return lines;
}

std::wstring_view between(const wchar_t* from, const wchar_t* to) noexcept {
  return {from, static_cast<std::size_t>(to - from)};
}

// What stands most often between the fields of the first row in which any of them does.
wchar_t detected(std::wstring_view text, wchar_t quote) noexcept {
  std::size_t counts[kSeparators.size()] = {};
  bool atField = true;
  bool isFound = false;
  for (std::size_t i = 0; i < text.size() && !(isFound && isLineEnd(text[i])); ++i) {
    if (atField && quote != 0 && text[i] == quote) {
      const std::size_t close = text.find(quote, i + 1);
      if (close == std::wstring_view::npos) continue;  // a quote that is not closed is plain
      i = close;
      // A doubled quote begins anew where it ended.
      atField = i + 1 < text.size() && text[i + 1] == quote;
      continue;
    }
    const std::size_t which = kSeparators.find(text[i]);
    const bool isOne = which != std::wstring_view::npos;
    if (isOne) ++counts[which];
    isFound |= isOne;
    atField = isOne || isLineEnd(text[i]);
  }
  return kSeparators[static_cast<std::size_t>(std::max_element(counts, std::end(counts)) - counts)];
}

// Spreadsheets say the separator in a first line "sep=;". 0 where there is no such line.
wchar_t announced(std::wstring_view text) noexcept {
  if (!text.starts_with(L"sep=") || text.size() < 5) return 0;
  if (text.size() > 5 && !isLineEnd(text[5])) return 0;
  return kSeparators.find(text[4]) == std::wstring_view::npos ? L'\0' : text[4];
}

std::wstring_view withoutMark(std::wstring_view text) noexcept {
  return text.starts_with(L'\xFEFF') ? text.substr(1) : text;
}

wchar_t separatorOf(std::wstring_view text, const ZoCsvFormat& format) noexcept {
  if (format.separator != ZoCsvFormat::kDetect) return format.separator;
  const wchar_t said = announced(text);
  return said != 0 ? said : detected(text, format.quote);
}

}  // namespace

CsvScanner::CsvScanner(std::wstring_view text, const ZoCsvFormat& format) noexcept
    : separator_(separatorOf(withoutMark(text), format)),
      quote_(format.quote),
      emptyLinesAreRows_(format.emptyLines == ZoCsvFormat::kAreRows),
      ends_(separator_, L'\r', L'\n', L'\n'),
      quotes_(quote_, quote_, quote_, quote_),
      end_(text.data() + text.size()) {
  at_ = withoutMark(text).data();
  if (format.separator == ZoCsvFormat::kDetect && announced(withoutMark(text)) != 0) {
    at_ = behindLineEnd(at_ + 5, end_);
    line_ = 2;
  }
  row_ = rowEnd_ = faultAt_ = at_;
}

// ---- Rows ----

bool CsvScanner::next() {
  const wchar_t* at = at_;
  std::size_t line = line_;
  for (; !emptyLinesAreRows_ && at != end_ && isLineEnd(*at); ++line) at = behindLineEnd(at, end_);
  fields_.clear();
  joins_.clear();
  joined_.clear();
  fault_ = Fault::kNone;
  row_ = rowEnd_ = at;
  rowLine_ = line;
  if (at == end_) {
    at_ = at;
    line_ = line;
    return false;
  }
  for (bool hasQuotes = false;; ++at) {
    if (at != end_ && *at == quote_ && quote_ != 0) {
      hasQuotes = true;
      at = quoted(at);
    } else {
      at = unquoted(at);
    }
    if (at != end_ && *at == separator_) continue;
    rowEnd_ = at;
    const wchar_t* lineStart = nullptr;
    if (hasQuotes) line += linesBetween(row_, at, lineStart);
    break;
  }
  if (!joins_.empty()) resolve();
  at_ = behindLineEnd(at, end_);
  line_ = line + (at_ != at);
  return true;
}

const wchar_t* CsvScanner::unquoted(const wchar_t* at) {
  const wchar_t* const stop = ends_.find(at, end_);
  fields_.push_back(between(at, stop));
  return stop;
}

const wchar_t* CsvScanner::quoted(const wchar_t* open) {
  const wchar_t* from = open + 1;
  const std::size_t joinedFrom = joined_.size();
  for (;;) {
    const wchar_t* const close = quotes_.find(from, end_);
    if (close == end_) {  // a quote that is not closed is a character like any other
      joined_.resize(joinedFrom);
      setFault(Fault::kOpenQuote, open);
      return unquoted(open);
    }
    const wchar_t* const behind = close + 1;
    if (behind != end_ && *behind == quote_) {
      joined_.append(from, behind);
      from = behind + 1;
      continue;
    }
    const wchar_t* const stop = behind == end_ || *behind == separator_ || isLineEnd(*behind)
                                    ? behind
                                    : ends_.find(behind, end_);
    if (stop != behind) setFault(Fault::kTextBehindQuote, behind);
    if (stop == behind && joined_.size() == joinedFrom) {
      fields_.push_back(between(from, close));
    } else {
      joined_.append(from, close).append(behind, stop);
      joins_.push_back({fields_.size(), joinedFrom, joined_.size() - joinedFrom});
      fields_.emplace_back();
    }
    return stop;
  }
}

void CsvScanner::resolve() noexcept {
  for (const Joined& join : joins_)
    fields_[join.field] = std::wstring_view(joined_).substr(join.from, join.length);
}

void CsvScanner::setFault(Fault fault, const wchar_t* at) noexcept {
  if (fault_ != Fault::kNone) return;
  fault_ = fault;
  faultAt_ = at;
}

// ---- Places: found again when they are asked for ----

CsvScanner::Place CsvScanner::placeOf(const wchar_t* at) const noexcept {
  const wchar_t* lineStart = row_;
  const std::size_t lines = linesBetween(row_, at, lineStart);
  return {rowLine_ + lines, static_cast<std::size_t>(at - lineStart) + 1};
}

const wchar_t* CsvScanner::endOfQuoted(const wchar_t* open) const noexcept {
  for (const wchar_t* at = open + 1;; at += 2) {
    at = quotes_.find(at, end_);
    if (at == end_) return ends_.find(open, end_);
    if (end_ - at < 2 || at[1] != quote_) return ends_.find(at, end_);
  }
}

CsvScanner::Place CsvScanner::fieldPlace(std::size_t field) const noexcept {
  const wchar_t* at = row_;
  for (; field > 0 && at != rowEnd_; --field) {
    at = quote_ != 0 && *at == quote_ ? endOfQuoted(at) : ends_.find(at, end_);
    if (at == rowEnd_) break;
    ++at;
  }
  return placeOf(at);
}

}  // namespace zo
