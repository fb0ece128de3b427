#include <zo/parse/csv_writer.h>
#include <zo/results.h>
#include <zo/text/number_text.h>

#include <limits>

#include "parse/csv_text.h"

ZoCsvWriter::ZoCsvWriter(const ZoCsvFormat& format)
    : text_(std::make_unique<zo::CsvText>(format)) {}

ZoCsvWriter::~ZoCsvWriter() = default;

ZoCsvWriter& ZoCsvWriter::addText(std::wstring_view text) {
  text_->add(text);
  return *this;
}

ZoCsvWriter& ZoCsvWriter::addSigned(std::int64_t number) {
  wchar_t digits[ZoNumberTextSize];
  const unsigned int length = ZoIntToStr(number, digits);
  return addText({digits, length});
}

ZoCsvWriter& ZoCsvWriter::addUnsigned(std::uint64_t number) {
  if (number <= std::uint64_t{std::numeric_limits<std::int64_t>::max()})
    return addSigned(static_cast<std::int64_t>(number));
  wchar_t digits[ZoNumberTextSize];
  unsigned int length = ZoIntToStr(static_cast<std::int64_t>(number / 10), digits);
  digits[length++] = static_cast<wchar_t>(L'0' + number % 10);
  return addText({digits, length});
}

ZoCsvWriter& ZoCsvWriter::addReal(double number) {
  wchar_t digits[ZoNumberTextSize];
  const unsigned int length = ZoRealToStr(number, digits, text_->format().decimal);
  return addText({digits, length});
}

int ZoCsvWriter::endRow() { return text_->endRow() ? ZoResult::ok : ZoResult::refused; }

void ZoCsvWriter::dropRow() noexcept { text_->dropRow(); }

std::wstring_view ZoCsvWriter::text() const noexcept { return text_->rows(); }
