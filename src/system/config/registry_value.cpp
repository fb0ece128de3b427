#include "system/config/registry_value.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "bytes/little_endian.h"

namespace zo {
namespace {

using Bytes = std::basic_string_view<unsigned char>;

// The bytes as a number, the lowest first; missing ones count as zero.
std::uint64_t numberOf(Bytes bytes) noexcept {
  unsigned char all[8] = {};
  bytes.copy(all, sizeof all);
  return load64(all);
}

std::uint64_t bigEndianNumberOf(Bytes bytes) noexcept {
  unsigned char all[8] = {};
  std::reverse(all, all + bytes.copy(all, sizeof all));
  return load64(all);
}

// The bytes as text without the zeros at its end; an odd last byte is the lower half of a
// character.
std::wstring textIn(Bytes bytes) {
  std::wstring text((bytes.size() + 1) / 2, L'\0');
  std::memcpy(text.data(), bytes.data(), bytes.size());
  while (!text.empty() && text.back() == L'\0') text.pop_back();
  return text;
}

ZoVariant variantOf(SECRegistry::KeyValueTypes type, Bytes bytes) {
  switch (type) {
    case SECRegistry::typeDoubleWord:
      return ZoVariant(static_cast<int>(static_cast<std::uint32_t>(numberOf(bytes))));
    case SECRegistry::typeQuadWord:
      return ZoVariant(ZoString(std::to_wstring(numberOf(bytes)).c_str()));
    case SECRegistry::typeDoubleWordBigEndian:
      return ZoVariant(ZoString(std::to_wstring(bigEndianNumberOf(bytes)).c_str()));
    case SECRegistry::typeMultipleString: {
      std::wstring lines = textIn(bytes);
      std::replace(lines.begin(), lines.end(), L'\0', L'\n');
      return ZoVariant(ZoString(std::wstring_view(lines)));
    }
    default:
      return ZoVariant(ZoString(std::wstring_view(textIn(bytes))));
  }
}

bool isNumber(const ZoVariant& value) noexcept {
  return value.isTypeOf(ZoVariant::kInt) || value.isTypeOf(ZoVariant::kReal);
}

}  // namespace

bool readValue(SECRegistry& registry, const wchar_t* name, ZoVariant& value) {
  SECRegistry::KeyValueTypes type{};
  unsigned char buffer[512];
  unsigned long size = sizeof buffer;
  if (registry.QueryValue(name, type, buffer, size)) {
    value = variantOf(type, {buffer, size});
    return true;
  }
  // It may grow while it is being asked for.
  std::vector<unsigned char> large;
  while (GetLastError() == ERROR_MORE_DATA) {
    large.resize(size);
    if (registry.QueryValue(name, type, large.data(), size)) {
      value = variantOf(type, {large.data(), size});
      return true;
    }
  }
  return false;
}

bool isStorable(const ZoVariant& value) noexcept {
  int number = 0;
  return !isNumber(value) || value.get(number) == 0;
}

bool writeValue(SECRegistry& registry, const wchar_t* name, const ZoVariant& value) {
  if (isNumber(value)) {
    int number = 0;
    return value.get(number) == 0 && registry.SetValue(name, static_cast<unsigned long>(number));
  }
  const ZoString text = value.asString();
  const size_t bytes = (size_t{text.length()} + 1) * sizeof(wchar_t);
  if (bytes > 0xFFFFFFFF) return false;
  return registry.SetValue(name, SECRegistry::typeString,
                           reinterpret_cast<const unsigned char*>(text.data()),
                           static_cast<unsigned long>(bytes));
}

}  // namespace zo
