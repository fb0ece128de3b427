#include "names/name_parser.h"

#include <zo/names/name_results.h>

#include <algorithm>

#include "names/name_check.h"
#include "text/code_units.h"

namespace zo {
namespace {

constexpr size_t npos = std::wstring_view::npos;

NameParts unsplit(int result, std::wstring_view macro = {}) noexcept {
  NameParts name;
  name.isSplit = false;
  name.result = result;
  name.macro = macro;
  return name;
}

bool delimiterAt(std::wstring_view text, size_t i) noexcept {
  return i < text.size() && isDelimiter(text[i]);
}

// The position of the first delimiter at or after from; the length when there is none.
size_t delimiterFrom(std::wstring_view text, size_t from) noexcept {
  while (from < text.size() && !isDelimiter(text[from])) ++from;
  return from;
}

// False when the text has no form that a name may have.
bool findKind(std::wstring_view path, bool anyDrive, NameKind& kind) noexcept {
  const size_t colon = path.find(L':');
  if (colon == npos) {
    kind = delimiterAt(path, 0) && delimiterAt(path, 1) ? NameKind::Network : NameKind::Plain;
    return true;
  }
  // Any character may be a drive, another colon in first place too.
  if (path.size() >= 2 && path[1] == L':' && (anyDrive || isLetter(path[0]))) {
    kind = NameKind::Drive;
    return true;
  }
  kind = beginsWith(path, L"cd:") ? NameKind::Disc : NameKind::Url;
  return delimiterAt(path, colon + 1) && delimiterAt(path, colon + 2);
}

size_t measurePrefix(std::wstring_view path, NameKind kind) noexcept {
  switch (kind) {
    case NameKind::Network: {
      const size_t server = delimiterFrom(path, 2);
      const size_t share = delimiterFrom(path, std::min(server + 1, path.size()));
      return server > 2 && share > server + 1 ? share : server;
    }
    case NameKind::Url:
      return delimiterFrom(path, path.find(L':') + 3);
    case NameKind::Disc:
      return delimiterFrom(path, 5);
    default:
      return 0;
  }
}

void split(NameParts& name) noexcept {
  const std::wstring_view path = name.path;
  const size_t driveLength = name.kind == NameKind::Drive ? 2 : 0;
  const size_t lastDelimiter = path.find_last_of(L"\\/");
  const size_t nameStart = std::max(lastDelimiter == npos ? 0 : lastDelimiter + 1, driveLength);
  const size_t lastDot = path.rfind(L'.');
  const size_t dot = lastDot == npos || lastDot < nameStart ? path.size() : lastDot;
  name.drive = path.substr(0, driveLength);
  name.directory = path.substr(driveLength, nameStart - driveLength);
  name.fileName = path.substr(nameStart, dot - nameStart);
  name.extension = path.substr(dot);
  name.prefixLength = measurePrefix(path, name.kind);
}

NameParts parsePath(std::wstring_view path, std::wstring_view macro, const NameOptions& options,
                    bool asDirectory, std::wstring& scratch) {
  NameParts name;
  if (!findKind(path, options.anyDrive, name.kind)) {
    return unsplit(ZoResult::nameInvalid, macro);
  }
  name.macro = macro;
  name.path = path;
  split(name);
  const bool addsDelimiter = asDirectory && !name.fileNameExt().empty();
  if (addsDelimiter || options.ownDelimiters) {
    if (path.data() != scratch.data()) scratch = path;
    const wchar_t delimiter = delimiterOf(name.kind);
    if (options.ownDelimiters) {
      std::replace_if(scratch.begin(), scratch.end(), isDelimiter, delimiter);
    }
    if (addsDelimiter) scratch += delimiter;
    name.path = scratch;
    split(name);
  }
  name.result = checkName(name, options.wildcards);
  return name;
}

// text begins with $.
NameParts parseMacro(std::wstring_view text, const NameOptions& options, bool asDirectory,
                     std::wstring& scratch) {
  size_t quote = text.find(L'\'');
  if (quote == npos) quote = text.find(L'"');
  if (quote == npos) return unsplit(ZoResult::refused);
  const std::wstring_view macro = text.substr(1, quote - 1);
  std::wstring_view path = text.substr(quote + 1);
  if (path.ends_with(L'"')) path.remove_suffix(1);
  if (!delimiterAt(path, 0)) {
    scratch = L'\\';
    scratch += path;
    path = scratch;
  }
  return parsePath(path, macro, options, asDirectory, scratch);
}

}  // namespace

bool beginsWith(std::wstring_view text, std::wstring_view lowerPrefix) noexcept {
  if (text.size() < lowerPrefix.size()) return false;
  for (size_t i = 0; i < lowerPrefix.size(); ++i) {
    const wchar_t c = lowerAscii(text[i]);
    if (c != lowerPrefix[i]) return false;
  }
  return true;
}

NameParts parseName(std::wstring_view text, const NameOptions& options, bool asDirectory,
                    std::wstring& scratch) {
  if (beginsWith(text, L"mailto:")) {
    NameParts name;
    name.kind = NameKind::Mail;
    name.path = text;
    return name;
  }
  if (text.starts_with(L'"')) {
    if (text.size() <= 2 || !text.ends_with(L'"')) return unsplit(ZoResult::nameInvalid);
    text = text.substr(1, text.size() - 2);
  }
  if (text.starts_with(L'$')) return parseMacro(text, options, asDirectory, scratch);
  return parsePath(text, {}, options, asDirectory, scratch);
}

}  // namespace zo
