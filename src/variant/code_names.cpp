#include "variant/code_names.h"

#include <zo/variant/type.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace zo {
namespace {

// By code, so that it can be searched.
constexpr CodeNames kCodes[] = {
    {ZoTypeCode::XString, L"XString", nullptr},
    {ZoTypeCode::XAppName, L"XAppName", nullptr},
    {ZoTypeCode::XControl, L"XControl", nullptr},
    {ZoTypeCode::XLayer, L"XLayer", nullptr},
    {ZoTypeCode::XHandle, L"XHandle", nullptr},
    {ZoTypeCode::XPoint, L"XPoint", nullptr},
    {ZoTypeCode::XPosition, L"XPosition", nullptr},
    {ZoTypeCode::XDirection, L"XDirection", nullptr},
    {ZoTypeCode::XReal, L"XReal", nullptr},
    {ZoTypeCode::XDistance, L"XDistance", nullptr},
    {ZoTypeCode::XScale, L"XScale", nullptr},
    {ZoTypeCode::XShort, L"XShort", nullptr},
    {ZoTypeCode::XLong, L"XLong", nullptr},
    {ZoTypeCode::NoType, L"NoType", L"No Type"},
    {ZoTypeCode::Int, L"Int", L"Integer"},
    {ZoTypeCode::Long, L"Long", L"Long"},
    {ZoTypeCode::Short, L"Short", L"Short"},
    {ZoTypeCode::Bool, L"Bool", L"Bool"},
    {ZoTypeCode::Access, L"Access", L"Access"},
    {ZoTypeCode::BigInt, L"BigInt", L"BigInt"},
    {ZoTypeCode::Date, L"Date", L"Date"},
    {ZoTypeCode::Guid, L"NoType", L"GUID"},
    {ZoTypeCode::Real, L"Real", L"Real"},
    {ZoTypeCode::Length, L"Length", L"Length"},
    {ZoTypeCode::Angle, L"Angle", L"Angle"},
    {ZoTypeCode::Time, L"Time", L"Time"},
    {ZoTypeCode::Mass, L"Mass", L"Mass"},
    {ZoTypeCode::Area, L"Area", L"Area"},
    {ZoTypeCode::Volume, L"Volume", L"Volume"},
    {ZoTypeCode::Force, L"Force", L"Force"},
    {ZoTypeCode::SpringRate, L"Spring rate", L"Spring rate"},
    {ZoTypeCode::Pressure, L"Pressure", L"Pressure"},
    {ZoTypeCode::Density, L"Density", L"Density"},
    {ZoTypeCode::Speed, L"Speed", L"Speed"},
    {ZoTypeCode::Power, L"Power", L"Power"},
    {ZoTypeCode::Torque, L"Torque", L"Torque"},
    {ZoTypeCode::ThreadFactor, L"Thread factor", L"Thread factor"},
    {ZoTypeCode::LinearDensity, L"Linear density", L"Linear density"},
    {ZoTypeCode::Voltage, L"Voltage", L"Voltage"},
    {ZoTypeCode::ForceOfCurrent, L"Force of current", L"Force of current"},
    {ZoTypeCode::Resistance, L"Resistance", L"Resistance"},
    {ZoTypeCode::String, L"String", L"String"},
    {ZoTypeCode::FName, L"FName", L"File"},
    {ZoTypeCode::Path, L"Path", L"Path"},
    {ZoTypeCode::Macro, L"Macro", L"Macro"},
    {ZoTypeCode::DLink, L"DLink", L"Link"},
    {ZoTypeCode::PLink, L"PLink", L"Link"},
    {ZoTypeCode::Chunk, L"Chunk", L"Chunk"},
    {ZoTypeCode::Point, L"Point", L"Point"},
    {ZoTypeCode::Vector, L"Vector", L"Vector"},
    {ZoTypeCode::Sequence, L"Sequence", L"Sequence"},
    {ZoTypeCode::Array, L"Array", L"Array"},
    {ZoTypeCode::List, L"List", L"List"},
    {ZoTypeCode::Dict, L"Dict", L"Dictionary"},
    {ZoTypeCode::Firm, L"Firm", L"Firm"},
    {ZoTypeCode::Catalog, L"Catalog", L"Catalog"},
    {ZoTypeCode::Standard, L"Standard", L"Standard"},
    {ZoTypeCode::Class, L"Class", L"Folder"},
    {ZoTypeCode::Part, L"Part", L"Part"},
    {ZoTypeCode::Switch, L"Switch", L"Switch"},
    {ZoTypeCode::Case, L"Case", L"Case"},
    {ZoTypeCode::Admin, L"Admin", L"Admin"},
    {ZoTypeCode::User, L"User", L"User"},
    {ZoTypeCode::Guest, L"Guest", L"Guest"},
    {ZoTypeCode::View, L"View", L"View"},
    {ZoTypeCode::Callback, L"Callback", L"Callback"},
    {ZoTypeCode::Favorite, L"Favorite", L"Favorite"},
    {ZoTypeCode::FavoriteClass, L"FavoriteClass", L"FavoriteClass"},
    {ZoTypeCode::FavoriteCatalog, L"FavoriteCatalog", L"FavoriteCatalog"},
    {ZoTypeCode::Pointer, L"Pointer", L"Pointer"},
    {ZoTypeCode::Unknown, L"IUnknown", L"Unknown"},
    {ZoTypeCode::Dispatch, L"IDispatch", L"Dispatch"},
};
constexpr size_t kCount = std::size(kCodes);

// The name in text forms: one word, and a different one for each code that has a row.
constexpr std::wstring_view wordOf(const CodeNames& row) noexcept {
  return row.code == ZoTypeCode::Guid ? std::wstring_view(L"GUID") : std::wstring_view(row.name);
}

// Order of a word, in which '_' may stand for a blank, and a name.
constexpr int compareWord(std::wstring_view word, std::wstring_view name) noexcept {
  const size_t n = std::min(word.size(), name.size());
  for (size_t i = 0; i < n; ++i) {
    const wchar_t c = word[i] == L'_' ? L' ' : word[i];
    if (c != name[i]) return c < name[i] ? -1 : 1;
  }
  return word.size() < name.size() ? -1 : word.size() > name.size();
}

// The rows by their words.
constexpr auto kByWord = [] {
  std::array<unsigned char, kCount> order{};
  for (size_t i = 0; i < kCount; ++i) order[i] = static_cast<unsigned char>(i);
  std::sort(order.begin(), order.end(),
            [](unsigned char a, unsigned char b) { return wordOf(kCodes[a]) < wordOf(kCodes[b]); });
  return order;
}();

}  // namespace

std::span<const CodeNames> codeNames() noexcept { return kCodes; }

const CodeNames* findCode(ZoTypeCode code) noexcept {
  const auto* const found = std::lower_bound(
      std::begin(kCodes), std::end(kCodes), code,
      [](const CodeNames& row, ZoTypeCode wanted) noexcept { return row.code < wanted; });
  return found != std::end(kCodes) && found->code == code ? found : nullptr;
}

std::wstring_view wordOfCode(ZoTypeCode code) noexcept {
  const CodeNames* const row = findCode(code);
  return row ? wordOf(*row) : std::wstring_view();
}

bool codeOfWord(std::wstring_view word, ZoTypeCode& code) noexcept {
  const auto* const found =
      std::lower_bound(kByWord.data(), kByWord.data() + kByWord.size(), word,
                       [](unsigned char row, std::wstring_view wanted) noexcept {
                         return compareWord(wanted, wordOf(kCodes[row])) > 0;
                       });
  if (found == kByWord.data() + kByWord.size() || compareWord(word, wordOf(kCodes[*found])) != 0)
    return false;
  code = kCodes[*found].code;
  return true;
}

}  // namespace zo
