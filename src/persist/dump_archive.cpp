#include <zo/names/file_name.h>
#include <zo/names/handle.h>
#include <zo/persist/dump_archive.h>

#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <span>

#include "persist/variant_layout.h"
#include "text/code_units.h"

namespace {

// The format of the archive's own entries: their numbers are text already, so that they look the
// same whatever the runtime makes of exponents.
constexpr wchar_t kAnyText[] = L"%ls";

// The text of one entry; what is more than fits is cut off.
class Entry {
 public:
  Entry() = default;
  // Begins with the label, or with that of the type where there is none.
  Entry(const wchar_t* label, std::wstring_view type) {
    *this << (label && *label ? std::wstring_view(label) : type) << L":";
  }

  Entry& operator<<(std::wstring_view text) {
    used_ += text.copy(text_ + used_, kRoom - used_);
    return *this;
  }
  // A text as "%s" prints it.
  Entry& quoted(const wchar_t* text) {
    return *this << L"\"" << (text ? std::wstring_view(text) : std::wstring_view()) << L"\"";
  }
  template <class Integer>
    requires std::is_integral_v<Integer>
  Entry& operator<<(Integer number) {
    char digits[24];
    return ascii(digits, std::to_chars(digits, std::end(digits), number).ptr);
  }
  // As "%g", with exponents of two digits.
  Entry& operator<<(double number) {
    char digits[32];
    return ascii(
        digits, std::to_chars(digits, std::end(digits), number, std::chars_format::general, 6).ptr);
  }
  // "(1, 2, 3)"
  Entry& numbers(std::span<const double> numbers, std::wstring_view separator = L", ") {
    *this << L"(";
    for (const double& number : numbers)
      *this << (&number == numbers.data() ? std::wstring_view() : separator) << number;
    return *this << L")";
  }

  void sendTo(ZoDumpArchive& dump) {
    text_[used_] = L'\0';
    dump.printf(kAnyText, text_);
  }

 private:
  static constexpr std::size_t kRoom = 1023;

  Entry& ascii(const char* first, const char* last) {
    for (; first != last && used_ < kRoom; ++first) text_[used_++] = static_cast<wchar_t>(*first);
    return *this;
  }

  wchar_t text_[kRoom + 1];
  std::size_t used_ = 0;
};

// One level more, as long as it lives.
class Deeper {
 public:
  explicit Deeper(unsigned int& level) : level_(level) { ++level_; }
  Deeper(const Deeper&) = delete;
  Deeper& operator=(const Deeper&) = delete;
  ~Deeper() { --level_; }

 private:
  unsigned int& level_;
};

std::span<const double> xyz(const ZoPoint& point) { return {point.asDblArray(), 3}; }
std::span<const double> xyz(const ZoVector& vector) { return {vector.asDblArray(), 3}; }

}  // namespace

ZoDumpArchive::~ZoDumpArchive() = default;

bool ZoDumpArchive::isStoring() { return true; }

void ZoDumpArchive::readBin(void*, unsigned int) { cameShort(); }

// ---- The text ----

void ZoDumpArchive::add(std::wstring_view entry) {
  pending_ += L'\n';
  pending_.append(std::size_t{3} * depth_, L' ');
  pending_ += entry;
}

void ZoDumpArchive::printArguments(const wchar_t* format, const zo::FormatArguments& arguments) {
  constexpr void (ZoDumpArchive::*slot)(const wchar_t*, ...) = &ZoDumpArchive::printf;
  wchar_t text[1024];
  zo::printTo(text, std::size(text), format, arguments);
  (this->*slot)(L"%ls", text);
}

void ZoDumpArchive::printf(const wchar_t* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  if (format == kAnyText) {
    add(va_arg(arguments, const wchar_t*));
  } else {
    wchar_t text[1024];
    _vsnwprintf(text, std::size(text), format ? format : L"", arguments);
    text[std::size(text) - 1] = L'\0';  // the runtime leaves it out when it cuts
    add(text);
  }
  va_end(arguments);
}

void ZoDumpArchive::clear() {
  text_ = ZoString();
  pending_.clear();
}

const ZoString& ZoDumpArchive::dump() {
  if (!pending_.empty()) {
    text_ += std::wstring_view(pending_);
    pending_.clear();
  }
  return text_;
}

// The name is the format; a '%' that stands alone is none.
void ZoDumpArchive::pushScope(const wchar_t* name) {
  std::wstring format;
  for (const wchar_t* c = name ? name : L""; *c; ++c) {
    format += *c;
    if (*c != L'%') continue;
    format += L'%';
    if (c[1] == L'%') ++c;
  }
  printf(format.c_str());
  ++depth_;
}

void ZoDumpArchive::popScope() {
  if (depth_ > 0) --depth_;
}

// ---- One entry for each value ----

void ZoDumpArchive::writeBin(const void* data, unsigned int size, const wchar_t* name) {
  Entry entry(name, L"Hex");
  entry << L" ";
  const auto* const bytes = static_cast<const unsigned char*>(data);
  for (unsigned int i = 0; i < size && i < 512; ++i) {
    wchar_t digits[2];
    entry << std::wstring_view(digits, zo::writeHex(digits, bytes[i], 2));
  }
  entry.sendTo(*this);
}

void ZoDumpArchive::write(const _GUID& value, const wchar_t* name) {
  wchar_t text[ZoGuidTextSize];
  ZoGuid2String(value, text, false);
  (Entry(name, L"GUID") << L" {" << text << L"}").sendTo(*this);
}

void ZoDumpArchive::write(const ZoHnd& value, const wchar_t* name) {
  Entry entry(name, L"Handle");
  (entry << L" ").quoted(value.handle());
  (entry << L" " << static_cast<std::int32_t>(value.id())).sendTo(*this);
}

void ZoDumpArchive::write(const ZoTol& value, const wchar_t* name) {
  (Entry(name, L"Tolerance") << L" " << value.getPntTol() << L"(Pnt) " << value.getVecTol()
                             << L"(Vec)")
      .sendTo(*this);
}

void ZoDumpArchive::write(const ZoCoSystem& value, const wchar_t* name) {
  Entry(name, L"CoordSystem").sendTo(*this);
  (Entry() << L"   Origin").numbers(xyz(value.origin())).sendTo(*this);
  (Entry() << L"   X-Axis").numbers(xyz(value.xAxis())).sendTo(*this);
  (Entry() << L"   Y-Axis").numbers(xyz(value.yAxis())).sendTo(*this);
}

void ZoDumpArchive::write(const ZoMatrix& value, const wchar_t* name) {
  Entry(name, L"Matrix").sendTo(*this);
  const std::span<const double> numbers(value.asDblArray(), 16);
  for (std::size_t row = 0; row < 4; ++row)
    (Entry() << L"   ").numbers(numbers.subspan(4 * row, 4), L" ").sendTo(*this);
}

void ZoDumpArchive::write(const ZoPlane& value, const wchar_t* name) {
  Entry entry(name, L"Plane");
  (entry << L" RefPnt").numbers(xyz(value.refPoint()));
  (entry << L" Normal").numbers(xyz(value.normal())).sendTo(*this);
}

void ZoDumpArchive::write(const ZoVector& value, const wchar_t* name) {
  (Entry(name, L"Vector") << L" ").numbers(xyz(value)).sendTo(*this);
}

void ZoDumpArchive::write(const ZoPoint& value, const wchar_t* name) {
  (Entry(name, L"Point") << L" ").numbers(xyz(value)).sendTo(*this);
}

void ZoDumpArchive::write(const ZoFileName& value, const wchar_t* name) {
  (Entry(name, L"FileName") << L" ").quoted(value.fullName()).sendTo(*this);
}

void ZoDumpArchive::write(const ZoVariant& value, const wchar_t* name) {
  if (!zo::isContainer(value)) return zo::writeVariantValue<ZoArchive>(*this, value, name, false);
  if (nested_ == ZoVariant::kMaxDepth) {
    (Entry(name, L"Variant") << L" containers lie too deep").sendTo(*this);
    return;
  }
  const bool scope = name && *name;
  if (scope) pushScope(name);
  const Deeper deeper(nested_);
  zo::writeVariantValue<ZoArchive>(*this, value, name, false);
  if (scope) popScope();
}

void ZoDumpArchive::write(const ZoString& value, const wchar_t* name) { write(value.data(), name); }

void ZoDumpArchive::write(ZoColor& value, const wchar_t* name) {
  unsigned char red = 0, green = 0, blue = 0;
  value.getRgb(red, green, blue);
  (Entry(name, L"Color") << L" " << int{value.type()} << L" (" << int{red} << L" " << int{green}
                         << L" " << int{blue} << L")")
      .sendTo(*this);
}

void ZoDumpArchive::write(const wchar_t* text, const wchar_t* name) {
  (Entry(name, L"String") << L" ").quoted(text).sendTo(*this);
}

void ZoDumpArchive::write(double value, const wchar_t* name) {
  (Entry(name, L"Real") << L" " << value).sendTo(*this);
}

// These two have each other's names, on purpose.
void ZoDumpArchive::write(std::int64_t value, const wchar_t* name) {
  (Entry(name, L"UInt64") << L" " << static_cast<std::uint32_t>(value) << L" (trimmed to 32 bit)")
      .sendTo(*this);
}
void ZoDumpArchive::write(std::uint64_t value, const wchar_t* name) {
  (Entry(name, L"Int64") << L" " << static_cast<std::int32_t>(value) << L" (trimmed to 32 bit)")
      .sendTo(*this);
}

void ZoDumpArchive::write(unsigned int value, const wchar_t* name) {
  (Entry(name, L"UInt32") << L" " << value).sendTo(*this);
}
void ZoDumpArchive::write(int value, const wchar_t* name) {
  (Entry(name, L"Int32") << L" " << value).sendTo(*this);
}
void ZoDumpArchive::write(unsigned short value, const wchar_t* name) {
  (Entry(name, L"UInt16") << L" " << int{value}).sendTo(*this);
}
void ZoDumpArchive::write(short value, const wchar_t* name) {
  (Entry(name, L"Int16") << L" " << int{value}).sendTo(*this);
}
void ZoDumpArchive::write(unsigned char value, const wchar_t* name) {
  (Entry(name, L"UInt8") << L" " << int{value}).sendTo(*this);
}
void ZoDumpArchive::write(signed char value, const wchar_t* name) {
  (Entry(name, L"Int8") << L" " << int{value}).sendTo(*this);
}
void ZoDumpArchive::write(bool value, const wchar_t* name) {
  (Entry(name, L"Bool") << L" " << (value ? L"true" : L"false")).sendTo(*this);
}
