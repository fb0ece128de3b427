#include "parse/csv_text.h"

#include "parse/csv_scanner.h"

namespace zo {

CsvText::CsvText(const ZoCsvFormat& format) noexcept
    : format_(format),
      special_(format.separator == ZoCsvFormat::kDetect ? kSeparators[0] : format.separator,
               format.quote != 0 ? format.quote : L'\n', L'\r', L'\n') {
  if (format.separator == ZoCsvFormat::kDetect) format_.separator = kSeparators[0];
}

namespace {

// What a reader would take for a byte order mark, or for the begin of a line that says the
// separator.
bool isAnnouncement(std::wstring_view first) noexcept {
  return first.starts_with(L'\xFEFF') || first == L"sep=";
}

}  // namespace

bool CsvText::needsQuotes(std::wstring_view field) const noexcept {
  const wchar_t* const end = field.data() + field.size();
  if (special_.find(field.data(), end) != end) return true;
  if (showsSeparator_) return false;
  return (text_.empty() && isAnnouncement(field)) ||
         field.find_first_of(kSeparators) != std::wstring_view::npos;
}

// All of it or nothing: what grows the text comes first.
void CsvText::add(std::wstring_view field) {
  const bool hasQuotes =
      format_.quote != 0 && (format_.quotes == ZoCsvFormat::kAlways || needsQuotes(field));
  const std::size_t before = text_.size();
  try {
    if (fields_ > 0) text_ += format_.separator;
    if (hasQuotes) {
      addQuoted(field);
    } else {
      text_ += field;
    }
  } catch (...) {
    text_.resize(before);
    throw;
  }
  ++fields_;
  if (format_.quote == 0) {
    const wchar_t* const end = field.data() + field.size();
    isRefused_ |= special_.find(field.data(), end) != end || (before == 0 && isAnnouncement(field));
  }
}

void CsvText::addQuoted(std::wstring_view field) {
  text_ += format_.quote;
  for (std::size_t at = 0;;) {
    const std::size_t next = field.find(format_.quote, at);
    if (next == std::wstring_view::npos) {
      text_.append(field, at).append(1, format_.quote);
      return;
    }
    text_.append(field, at, next + 1 - at).append(1, format_.quote);
    at = next + 1;
  }
}

bool CsvText::endRow() {
  // Without quotes it would be an empty line.
  const bool isOneEmpty = fields_ == 1 && text_.size() == row_;
  if (isOneEmpty && format_.quote == 0 && format_.emptyLines != ZoCsvFormat::kAreRows)
    isRefused_ = true;
  if (fields_ == 0 || isRefused_ || !format_.isValid()) {
    dropRow();
    return false;
  }
  std::wstring_view end = format_.lineEnd == ZoCsvFormat::kLf ? L"\n" : L"\r\n";
  text_.reserve(text_.size() + 4);  // nothing throws behind it
  if (isOneEmpty && format_.quote != 0) text_.append(2, format_.quote);
  text_ += end;
  row_ = text_.size();
  showsSeparator_ |= fields_ > 1;
  fields_ = 0;
  return true;
}

void CsvText::dropRow() noexcept {
  text_.resize(row_);
  fields_ = 0;
  isRefused_ = false;
}

}  // namespace zo
