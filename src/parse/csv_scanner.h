// The rows of a table of text: what ZoCsvReader (zo/parse/csv_reader.h) stands on. Needs no
// platform.
//
// Fields are views of the text; those that do not stand there as they are (doubled quotes, text
// behind a closing quote) are put together in a buffer of the row.
#pragma once

#include <zo/parse/csv_format.h>
#include <zo/parse/csv_reader.h>

#include <string>
#include <string_view>
#include <vector>

#include "parse/csv_units.h"

namespace zo {

class CsvScanner {
 public:
  using Fault = ZoCsvReader::Fault;
  struct Place {
    std::size_t line, column;
  };

  // The format must be valid; the text must outlive this.
  CsvScanner(std::wstring_view text, const ZoCsvFormat& format) noexcept;

  // The next row; false behind the last. Where it throws, the row is still the next.
  bool next();
  // Makes this row the next again.
  void readAgain() noexcept {
    at_ = row_;
    line_ = rowLine_;
  }

  // ---- Of this row; valid until the next ----
  [[nodiscard]] const std::vector<std::wstring_view>& fields() const noexcept { return fields_; }
  [[nodiscard]] std::size_t line() const noexcept { return rowLine_; }
  [[nodiscard]] Fault fault() const noexcept { return fault_; }
  [[nodiscard]] Place faultPlace() const noexcept { return placeOf(faultAt_); }
  // Where a field begins; where the row ends for one that it does not have.
  [[nodiscard]] Place fieldPlace(std::size_t field) const noexcept;

  [[nodiscard]] wchar_t separator() const noexcept { return separator_; }

 private:
  // Between fields, or at the end of the row.
  const wchar_t* unquoted(const wchar_t* at);
  const wchar_t* quoted(const wchar_t* open);
  void setFault(Fault fault, const wchar_t* at) noexcept;
  void resolve() noexcept;
  [[nodiscard]] const wchar_t* endOfQuoted(const wchar_t* open) const noexcept;
  [[nodiscard]] Place placeOf(const wchar_t* at) const noexcept;

  wchar_t separator_, quote_;
  bool emptyLinesAreRows_;
  FourUnits ends_;    // of a field without quotes
  FourUnits quotes_;  // of one with them
  const wchar_t* at_;
  const wchar_t* end_;
  std::size_t line_ = 1;  // of at_

  const wchar_t* row_;
  const wchar_t* rowEnd_;
  std::size_t rowLine_ = 1;
  Fault fault_ = Fault::kNone;
  const wchar_t* faultAt_ = nullptr;
  std::vector<std::wstring_view> fields_;
  struct Joined {
    std::size_t field, from, length;  // where in joined_
  };
  std::vector<Joined> joins_;
  std::wstring joined_;
};

// The separators that detection knows, the likeliest first.
inline constexpr std::wstring_view kSeparators = L",;\t|";

}  // namespace zo
