// Any text as a table: it reads as a plain reader reads it, and what was read and written again
// reads back.
#include "parse/csv_reference.h"

#include "fuzz.h"
#include "parse/csv_scanner.h"
#include "parse/csv_text.h"

using namespace zo;
using test::ReferenceTable;

// The first byte chooses the format. Bytes of 0x80 and more stand for other characters, 0xFF for
// the byte order mark.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  if (size == 0) return 0;
  std::wstring text;
  for (std::size_t i = 1; i < size; ++i) {
    text += static_cast<wchar_t>(data[i] < 0x80 ? data[i] : data[i] == 0xFF ? 0xFEFF : data[i]);
  }
  ZoCsvFormat format{.separator = L",;|\t"[data[0] & 3]};
  if (data[0] & 4) format.quote = L'\'';
  if (data[0] & 8) format.quotes = ZoCsvFormat::kAlways;
  const ReferenceTable reference(text, format.separator, format.quote);
  CsvScanner scanner(text, format);
  CsvText written(format);
  for (const auto& row : reference.rows) {
    ZO_FUZZ_CHECK(scanner.next());
    ZO_FUZZ_CHECK(scanner.line() == row.line && scanner.fields().size() == row.fields.size());
    ZO_FUZZ_CHECK((scanner.fault() != ZoCsvReader::kNone) == (row.fault != 0));
    for (std::size_t i = 0; i < row.fields.size(); ++i) {
      ZO_FUZZ_CHECK(scanner.fields()[i] == row.fields[i]);
      ZO_FUZZ_CHECK(scanner.fieldPlace(i).line >= row.line);
      written.add(row.fields[i]);
    }
    ZO_FUZZ_CHECK(written.endRow());
  }
  ZO_FUZZ_CHECK(!scanner.next());
  if (data[0] & 16) format.separator = ZoCsvFormat::kDetect;
  CsvScanner back(written.rows(), format);
  for (const auto& row : reference.rows) {
    ZO_FUZZ_CHECK(back.next() && back.fault() == ZoCsvReader::kNone);
    ZO_FUZZ_CHECK(back.fields().size() == row.fields.size());
    for (std::size_t i = 0; i < row.fields.size(); ++i)
      ZO_FUZZ_CHECK(back.fields()[i] == row.fields[i]);
  }
  ZO_FUZZ_CHECK(!back.next());
  return 0;
}
