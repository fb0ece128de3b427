#include "names/name_check.h"

#include <zo/names/name_results.h>

#include <algorithm>
#include <array>

#include "text/code_units.h"

namespace zo {
namespace {

// Lengths of 261 and more are too long: the platform's 260 characters, on purpose.
constexpr size_t kLongest = 260;

// What a character is forbidden as.
constexpr unsigned char kNever = 1;  // control characters and <>"|
constexpr unsigned char kColon = 2;
constexpr unsigned char kWildcard = 4;
constexpr unsigned char kAll = kNever | kColon | kWildcard;

constexpr auto kClasses = [] {
  std::array<unsigned char, 0x80> classes{};
  for (size_t c = 0; c < 0x20; ++c) classes[c] = kNever;
  for (const wchar_t c : {L'<', L'>', L'"', L'|'}) classes[c] = kNever;
  classes[':'] = kColon;
  classes['*'] = classes['?'] = kWildcard;
  return classes;
}();

bool isFree(std::wstring_view text, unsigned int forbidden) noexcept {
  return std::none_of(text.begin(), text.end(), [=](wchar_t c) {
    return static_cast<std::size_t>(c) < kClasses.size() && (kClasses[c] & forbidden) != 0;
  });
}

// The stretch of a directory that is tested: the volume of a disc name is not.
std::wstring_view testedDirectory(const NameParts& name) noexcept {
  if (name.kind != NameKind::Disc) return name.directory;
  return name.directory.substr(std::min(name.prefixLength, name.directory.size()));
}

bool isScheme(std::wstring_view text) noexcept {
  return !text.empty() && isLetter(text[0]) && std::all_of(text.begin(), text.end(), [](wchar_t c) {
    return isLetter(c) || isDigit(c) || c == L'+' || c == L'-' || c == L'.';
  });
}

}  // namespace

bool fitsFileName(std::wstring_view text, NameKind kind, bool wildcards) noexcept {
  const unsigned int colon = kind == NameKind::Url ? 0u : kColon;
  const unsigned int wildcard = wildcards ? 0u : kWildcard;
  return isFree(text, kNever | colon | wildcard);
}

bool fitsExtension(std::wstring_view text, bool wildcards) noexcept {
  // The extension of a URL is tested like any other: no colon, on purpose.
  return fitsFileName(text, NameKind::Plain, wildcards);
}

bool fitsDirectory(std::wstring_view text, NameKind kind) noexcept {
  return isFree(text, kind == NameKind::Url ? kNever : kAll);
}

int checkCharacters(const NameParts& name, bool wildcards) noexcept {
  const bool fits = fitsFileName(name.fileName, name.kind, wildcards) &&
                    fitsExtension(name.extension, wildcards) &&
                    fitsDirectory(testedDirectory(name), name.kind);
  return fits ? ZoResult::ok : ZoResult::nameInvalid;
}

int checkForm(const NameParts& name) noexcept {
  switch (name.kind) {
    case NameKind::Network:
      return name.prefixLength > 2 ? ZoResult::ok : ZoResult::nameInvalid;
    case NameKind::Disc:
      return name.prefixLength > 5 ? ZoResult::ok : ZoResult::nameInvalid;
    case NameKind::Url:
      return isScheme(name.path.substr(0, name.path.find(L':'))) ? ZoResult::ok
                                                                 : ZoResult::nameInvalid;
    default:
      return ZoResult::ok;
  }
}

int checkEnd(std::wstring_view component) noexcept {
  if (component == L"." || component == L"..") return ZoResult::ok;
  if (component.ends_with(L' ')) return ZoResult::nameEndsInBlank;
  return component.ends_with(L'.') ? ZoResult::nameEndsInDot : ZoResult::ok;
}

int checkName(const NameParts& name, bool wildcards) noexcept {
  const bool tooLong = name.path.size() > kLongest;
  for (const int code : {checkCharacters(name, wildcards), checkForm(name),
                         checkEnd(name.fileNameExt()), tooLong ? ZoResult::nameTooLong : 0}) {
    if (code != ZoResult::ok) return code;
  }
  return ZoResult::ok;
}

bool holdsWildcards(std::wstring_view text) noexcept { return !isFree(text, kWildcard); }

bool isDeviceName(std::wstring_view component) noexcept {
  std::wstring_view stem = component.substr(0, component.find_first_of(L".:"));
  while (stem.ends_with(L' ')) stem.remove_suffix(1);
  const auto is = [&](std::wstring_view device) {
    return stem.size() == device.size() && beginsWith(stem, device);
  };
  if (is(L"con") || is(L"prn") || is(L"aux") || is(L"nul")) return true;
  if (is(L"conin$") || is(L"conout$") || is(L"clock$")) return true;
  if (stem.size() != 4 || !(beginsWith(stem, L"com") || beginsWith(stem, L"lpt"))) return false;
  constexpr std::wstring_view kNumbers = L"123456789\xB9\xB2\xB3";
  return kNumbers.find(stem[3]) != std::wstring_view::npos;
}

}  // namespace zo
