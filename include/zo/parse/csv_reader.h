// Reading tables of text (CSV) row by row.
//
//   ZoString text;
//   if (const int code = zoReadText(name, text)) return code;      // zo/files/text_file.h
//   ZoCsvReader table(text);
//   if (const int code = table.readHeader()) return code;
//   double length = 0;
//   while (table.next()) {
//     if (table.fault() != ZoCsvReader::kNone) warn(table.message());
//     if (table.real(L"length", length)) warn(table.where(L"length") + L": no number");
//   }
//
// Fields stand between separators, rows between line ends (CR LF, LF or CR, mixed at will; the last
// one may lack its own). A field that begins with a quote goes on to the next single one, over
// separators and line ends; two quotes in it stand for one. A quote elsewhere is a character like
// any other, and blanks belong to their field. A byte order mark at the front is skipped. Empty
// lines are skipped, unless the format says that they are rows.
//
// Without a separator in the format it is found: of comma, semicolon, tab and bar the one that
// stands most often, outside of quotes, in the first row with any of them; a comma if there is no
// such row. Or a first line "sep=;" says it.
//
// No row is dropped and none ends the table: what is wrong with a row is told by fault(), and its
// fields are read as well as can be.
//
// Nothing is copied: the text must outlive the reader. A temporary string does not compile.
//
// Numbers are those of ZoStrToReal: "nan" and "inf" among them, which std::isfinite tells.
//
// Errors:  int results are 0; ZoResult::refused where there is no such field, or no number that is
//          all of it but for blanks; ZoResult::overflow for a number that is too large. Values stay
//          as they were then. Nothing throws but std::bad_alloc, and then the row is still the
//          next.
// Threads: one at a time per object.
// Cost:    linear; a row allocates only what its fields need more than those before.
#pragma once

#include <zo/config.h>
#include <zo/parse/csv_format.h>
#include <zo/text/lasting_text.h>
#include <zo/text/number_text.h>
#include <zo/text/string.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace zo {
struct CsvReaderState;

// What names a column: its number from 0, or its name in the header.
template <class T>
concept ColumnNumber = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, wchar_t> &&
                       !std::same_as<T, char>;
template <class T>
concept Column = ColumnNumber<T> || AnyText<T>;
}  // namespace zo

class ZO_COM_API ZoCsvReader {
 public:
  static constexpr unsigned int npos = 0xFFFFFFFF;

  // What is wrong with a row; the first that applies, but for the number of fields.
  enum Fault : int {
    kNone,
    kOpenQuote,        // a quote that is not closed: it counts as a character like any other
    kTextBehindQuote,  // text between a closing quote and the end of the field: it is taken in
    kFewerFields,      // than the header or the first row
    kMoreFields,
    kBadFormat,  // the reader's format is not valid: there are no rows
  };

  template <class Text>
    requires zo::LastingText<Text>
  explicit ZoCsvReader(Text&& text, const ZoCsvFormat& format = {})
      : ZoCsvReader(Viewed{zo::textOf(text)}, format) {}
  template <class Text>
    requires(!zo::LastingText<Text>)
  explicit ZoCsvReader(Text&&, const ZoCsvFormat& = {}) = delete;  // give the text a name
  ZoCsvReader(const ZoCsvReader&) = delete;
  ZoCsvReader& operator=(const ZoCsvReader&) = delete;
  ~ZoCsvReader();

  // The one of the format, or that was found.
  [[nodiscard]] wchar_t separator() const noexcept;

  // ---- Columns by name ----
  // Takes the next row for the names of the columns, without the blanks around them. Refused, and
  // then there are none, where no row is left; a row with a fault is taken all the same.
  [[nodiscard]] int readHeader();
  // The number of a column, or npos. Names ignore case as keys of dictionaries do; of equal ones
  // the first counts.
  template <zo::AnyText Name>
  [[nodiscard]] unsigned int column(const Name& name) const noexcept {
    return columnOf(zo::textOf(name));
  }
  template <zo::NotText T>
  unsigned int column(T) const = delete;  // takes a name
  // The name of a column; empty where it has none.
  template <zo::ColumnNumber Index>
  [[nodiscard]] const ZoString& columnName(Index index) const noexcept {
    return nameOf(toIndex(index));
  }
  // Fields of the header, or else of the first row that was read.
  [[nodiscard]] unsigned int columns() const noexcept;

  // ---- Rows ----
  // Goes to the next row; false behind the last.
  [[nodiscard]] bool next();
  [[nodiscard]] unsigned int fields() const noexcept { return count_; }
  // A field, or an empty text where the row has none there. Valid until the next row is read.
  template <zo::Column Column>
  [[nodiscard]] std::wstring_view field(const Column& column) const noexcept {
    const unsigned int i = indexOf(column);
    return i < count_ ? fields_[i] : std::wstring_view();
  }
  [[nodiscard]] const std::wstring_view* begin() const noexcept { return fields_; }
  [[nodiscard]] const std::wstring_view* end() const noexcept { return fields_ + count_; }

  // The line in which the row begins, from 1.
  [[nodiscard]] std::size_t line() const noexcept;
  [[nodiscard]] Fault fault() const noexcept { return fault_; }
  // "line 3, column 7: a quote that is not closed"; empty without a fault.
  [[nodiscard]] ZoString message() const;
  // "line 3, column 7": where a field begins, or the row ends that does not have it. Lines and
  // columns are those of ZoToken.
  template <zo::Column Column>
  [[nodiscard]] ZoString where(const Column& column) const {
    return placeOf(indexOf(column));
  }

  // ---- Values ----
  template <zo::Column Column>
  [[nodiscard]] int text(const Column& column, ZoString& value) const {
    return textAt(indexOf(column), value);
  }
  template <zo::Column Column>
  [[nodiscard]] int real(const Column& column, double& value) const noexcept {
    return realAt(indexOf(column), value);
  }
  template <zo::Column Column>
  [[nodiscard]] int integer(const Column& column, std::int64_t& value) const noexcept {
    return integerAt(indexOf(column), value);
  }

 private:
  struct Viewed {
    std::wstring_view text;
  };
  ZoCsvReader(Viewed viewed, const ZoCsvFormat& format);

  template <std::integral Index>
  static constexpr unsigned int toIndex(Index i) noexcept {
    return std::in_range<unsigned int>(i) ? static_cast<unsigned int>(i) : npos;
  }
  template <class Column>
  [[nodiscard]] unsigned int indexOf(const Column& column) const noexcept {
    if constexpr (zo::ColumnNumber<Column>) {
      return toIndex(column);
    } else {
      return columnOf(zo::textOf(column));
    }
  }
  [[nodiscard]] unsigned int columnOf(std::wstring_view name) const noexcept;
  [[nodiscard]] const ZoString& nameOf(unsigned int column) const noexcept;
  [[nodiscard]] ZoString placeOf(unsigned int column) const;
  [[nodiscard]] int textAt(unsigned int column, ZoString& value) const;
  [[nodiscard]] int realAt(unsigned int column, double& value) const noexcept;
  [[nodiscard]] int integerAt(unsigned int column, std::int64_t& value) const noexcept;

  const std::wstring_view* fields_ = nullptr;
  unsigned int count_ = 0;
  Fault fault_ = kNone;
  std::unique_ptr<zo::CsvReaderState> state_;
};
