// Writing tables of text (CSV) that read back as they were.
//
//   ZoCsvWriter table({.separator = L';'});
//   if (const int code = table.row(L"name", L"length")) return code;
//   if (const int code = table.row(name, 12.5)) return code;
//   return zoSaveText(file, table.text());                         // zo/files/text_file.h
//
// A field gets quotes where it holds the separator, a quote or a line end, and where else it would
// read back otherwise: a first field that begins with a byte order mark, a row of one empty field,
// another separator where the first one of the table is still to come, which could be mistaken for
// it. ZoCsvReader then reads back exactly what was written, with the same format or, where the
// separator is one that it detects, with none.
//
// Nothing is done about fields that a spreadsheet takes for formulas ("=1+1"): a program that gives
// tables with foreign texts to spreadsheets must decide that itself.
//
// Nothing is in the text but whole rows.
//
// Errors:  ending a row gives 0, or ZoResult::refused, and then the row is dropped: it has no
//          field; a field cannot be written because the format has no quotes; or the format is not
//          valid. Nothing throws but std::bad_alloc: a field is then as it was not added, and row()
//          has added nothing.
// Threads: one at a time per object.
// Cost:    linear; the table lies in memory until it is saved.
#pragma once

#include <zo/config.h>
#include <zo/parse/csv_format.h>
#include <zo/text/string.h>
#include <zo/text/text_forms.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <string_view>

namespace zo {
class CsvText;

// A truth value or a narrow character is no number here.
template <class T>
concept CsvInteger = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> &&
                     !std::same_as<T, wchar_t> && !std::same_as<T, char8_t> &&
                     !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;
}  // namespace zo

class ZO_COM_API ZoCsvWriter {
 public:
  explicit ZoCsvWriter(const ZoCsvFormat& format = {});
  ZoCsvWriter(const ZoCsvWriter&) = delete;
  ZoCsvWriter& operator=(const ZoCsvWriter&) = delete;
  ~ZoCsvWriter();

  // ---- Whole rows ----
  template <class... Fields>
  [[nodiscard]] int row(const Fields&... fields) {
    const Pending pending(*this);
    (add(fields), ...);
    return endRow();
  }
  // The elements of a range.
  template <zo::AnyText Text>
  int rowOf(const Text&) = delete;  // row(text): this would be a row of characters
  template <class Range>
  [[nodiscard]] int rowOf(const Range& fields) {
    const Pending pending(*this);
    for (const auto& field : fields) add(field);
    return endRow();
  }

  // ---- Field by field ----
  // Numbers are written so that they read back as the same, with the format's decimal character.
  template <zo::AnyText Text>
  ZoCsvWriter& add(const Text& text) {
    return addText(zo::textOf(text));
  }
  template <zo::CsvInteger Number>
  ZoCsvWriter& add(Number number) {
    if constexpr (std::signed_integral<Number>) {
      return addSigned(number);
    } else {
      return addUnsigned(number);
    }
  }
  template <std::floating_point Number>
  ZoCsvWriter& add(Number number) {
    return addReal(static_cast<double>(number));
  }
  template <class T>
    requires(zo::NotText<T> && !zo::CsvInteger<T> && !std::floating_point<T>)
  ZoCsvWriter& add(T) = delete;  // write what stands for it: L"yes", 1, L'c'
  [[nodiscard]] int endRow();
  // Drops what was added since the last row.
  void dropRow() noexcept;

  // All rows. Valid until the next field.
  [[nodiscard]] std::wstring_view text() const noexcept;

 private:
  // Drops a row that was begun before, and one that is not ended for an exception.
  class Pending {
   public:
    explicit Pending(ZoCsvWriter& writer) noexcept : writer_(writer) { writer.dropRow(); }
    Pending(const Pending&) = delete;
    Pending& operator=(const Pending&) = delete;
    ~Pending() { writer_.dropRow(); }

   private:
    ZoCsvWriter& writer_;
  };

  ZoCsvWriter& addText(std::wstring_view text);
  ZoCsvWriter& addSigned(std::int64_t number);
  ZoCsvWriter& addUnsigned(std::uint64_t number);
  ZoCsvWriter& addReal(double number);

  std::unique_ptr<zo::CsvText> text_;
};
