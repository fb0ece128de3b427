// The text of a table: what ZoCsvWriter (zo/parse/csv_writer.h) stands on. Needs no platform.
#pragma once

#include <zo/parse/csv_format.h>

#include <string>
#include <string_view>

#include "parse/csv_units.h"

namespace zo {

class CsvText {
 public:
  explicit CsvText(const ZoCsvFormat& format) noexcept;

  [[nodiscard]] const ZoCsvFormat& format() const noexcept { return format_; }
  void add(std::wstring_view field);
  // False, and then the row is dropped, where it cannot be written.
  [[nodiscard]] bool endRow();
  void dropRow() noexcept;
  [[nodiscard]] std::wstring_view rows() const noexcept {
    return std::wstring_view(text_).substr(0, row_);
  }

 private:
  [[nodiscard]] bool needsQuotes(std::wstring_view field) const noexcept;
  void addQuoted(std::wstring_view field);

  ZoCsvFormat format_;
  FourUnits special_;
  std::wstring text_;
  std::size_t row_ = 0;          // where the row begins that is not ended
  std::size_t fields_ = 0;       // of it
  bool showsSeparator_ = false;  // there is a row by which it can be detected
  bool isRefused_ = false;       // it holds what cannot be written
};

}  // namespace zo
