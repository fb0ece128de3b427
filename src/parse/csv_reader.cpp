#include <zo/parse/csv_reader.h>
#include <zo/results.h>
#include <zo/text/containers/hash_dict.h>
#include <zo/text/number_text.h>

#include <span>
#include <vector>

#include "parse/csv_scanner.h"
#include "text/code_units.h"

namespace zo {

struct CsvReaderState {
  CsvReaderState(std::wstring_view text, const ZoCsvFormat& format_)
      : format(format_), scanner(format.isValid() ? text : std::wstring_view(), format) {}

  void takeNames(std::span<const std::wstring_view> fields);

  ZoCsvFormat format;
  CsvScanner scanner;
  unsigned int columns = 0;  // 0 before the first row
  std::vector<ZoString> names;
  ZoHashDict<unsigned int, ZoString> numbers;
};

}  // namespace zo

namespace {

std::wstring_view withoutBlanks(std::wstring_view text) noexcept {
  while (!text.empty() && zo::isWhite(text.front())) text.remove_prefix(1);
  while (!text.empty() && zo::isWhite(text.back())) text.remove_suffix(1);
  return text;
}

ZoString placeText(zo::CsvScanner::Place place) {
  const auto number = [](std::size_t n) { return ZoIntToStr(static_cast<std::int64_t>(n)); };
  return L"line " + number(place.line) + L", column " + number(place.column);
}

// Takes the number that a field is: read(text, number, end) gives a code and where it ended.
template <class Number, class Read>
int takeNumber(std::wstring_view field, Number& value, Read read) noexcept {
  const std::wstring_view text = withoutBlanks(field);
  Number number{};
  unsigned int end = 0;
  const int code = read(text, number, end);
  if (code == ZoResult::refused || end != text.size()) return ZoResult::refused;
  if (code == ZoResult::ok) value = number;
  return code;
}

}  // namespace

void zo::CsvReaderState::takeNames(std::span<const std::wstring_view> fields) {
  std::vector<ZoString> taken;
  ZoHashDict<unsigned int, ZoString> where;
  for (const std::wstring_view field : fields) {
    taken.emplace_back(withoutBlanks(field));
    const auto number = static_cast<unsigned int>(taken.size() - 1);
    zo::throwIfNoMemory(where.insertAt(taken.back(), number));  // the first of equal ones stays
  }
  names = std::move(taken);
  numbers = std::move(where);
  columns = static_cast<unsigned int>(fields.size());
}

ZoCsvReader::ZoCsvReader(Viewed viewed, const ZoCsvFormat& format)
    : state_(std::make_unique<zo::CsvReaderState>(viewed.text, format)) {
  if (!format.isValid()) fault_ = kBadFormat;
}

ZoCsvReader::~ZoCsvReader() = default;

wchar_t ZoCsvReader::separator() const noexcept { return state_->scanner.separator(); }

// ---- Columns by name ----

int ZoCsvReader::readHeader() {
  if (!next()) {
    state_->names.clear();
    state_->numbers.removeAll();
    return ZoResult::refused;
  }
  try {
    state_->takeNames({fields_, count_});
  } catch (...) {
    state_->scanner.readAgain();
    throw;
  }
  return ZoResult::ok;
}

unsigned int ZoCsvReader::columnOf(std::wstring_view name) const noexcept {
  const unsigned int* const number = state_->numbers.at(withoutBlanks(name));
  return number ? *number : npos;
}

const ZoString& ZoCsvReader::nameOf(unsigned int column) const noexcept {
  static const ZoString kUnnamed;
  return column < state_->names.size() ? state_->names[column] : kUnnamed;
}

unsigned int ZoCsvReader::columns() const noexcept { return state_->columns; }

// ---- Rows ----

bool ZoCsvReader::next() {
  if (fault_ == kBadFormat) return false;
  fields_ = nullptr;
  count_ = 0;
  fault_ = kNone;
  zo::CsvScanner& scanner = state_->scanner;
  if (!scanner.next()) return false;
  fields_ = scanner.fields().data();
  count_ = static_cast<unsigned int>(scanner.fields().size());
  if (state_->columns == 0) state_->columns = count_;
  fault_ = scanner.fault();
  if (fault_ == kNone && count_ != state_->columns)
    fault_ = count_ < state_->columns ? kFewerFields : kMoreFields;
  return true;
}

std::size_t ZoCsvReader::line() const noexcept { return state_->scanner.line(); }

ZoString ZoCsvReader::placeOf(unsigned int column) const {
  return placeText(state_->scanner.fieldPlace(column));
}

ZoString ZoCsvReader::message() const {
  const auto fields = [](unsigned int n) {
    return ZoIntToStr(std::int64_t{n}) + (n == 1 ? L" field" : L" fields");
  };
  const zo::CsvScanner& scanner = state_->scanner;
  switch (fault_) {
    case kNone:
      return {};
    case kOpenQuote:
      return placeText(scanner.faultPlace()) + L": a quote that is not closed";
    case kTextBehindQuote:
      return placeText(scanner.faultPlace()) + L": text behind a closing quote";
    case kBadFormat:
      return L"separator and quote are the same, or one of them is none";
    default:
      return placeText(scanner.fieldPlace(fault_ == kMoreFields ? state_->columns : count_)) +
             L": expected " + fields(state_->columns) + L", found " +
             ZoIntToStr(std::int64_t{count_});
  }
}

// ---- Values ----

int ZoCsvReader::textAt(unsigned int column, ZoString& value) const {
  if (column >= count_) return ZoResult::refused;
  value = fields_[column];
  return ZoResult::ok;
}

int ZoCsvReader::realAt(unsigned int column, double& value) const noexcept {
  if (column >= count_) return ZoResult::refused;
  const auto read = [&](std::wstring_view text, double& number, unsigned int& end) noexcept {
    return ZoStrToReal(text, number, &end, state_->format.decimal);
  };
  return takeNumber(fields_[column], value, read);
}

int ZoCsvReader::integerAt(unsigned int column, std::int64_t& value) const noexcept {
  if (column >= count_) return ZoResult::refused;
  const auto read = [](std::wstring_view text, std::int64_t& number, unsigned int& end) noexcept {
    return ZoStrToInt(text, number, &end);
  };
  return takeNumber(fields_[column], value, read);
}
