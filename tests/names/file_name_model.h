// The rules of file names written once more, plainly, and one look at everything a name shows.
#pragma once

#include <gtest/gtest.h>
#include <zo/names/file_name.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/printers.h"

inline void PrintTo(const ZoFileName& name, std::ostream* out) { PrintTo(ZoString(name), out); }

namespace names {

struct Options {
  bool ownDelimiters = false, asDirectory = false, wildcards = false, anyDrive = false;
};

inline int set(ZoFileName& name, const std::wstring& text, const Options& o = {}) {
  return name.setFullName(text.c_str(), o.ownDelimiters, o.asDirectory, o.wildcards, o.anyDrive);
}

struct Parts {
  int result = 0;
  std::wstring whole, macro, drive, directory, fileName, extension, volume;
  std::wstring form = L"plain";  // or drive, disc, url, network, mail
  size_t prefix = 0;
};

inline bool isDelimiter(wchar_t c) { return c == L'\\' || c == L'/'; }
inline bool holds(const std::wstring& text, const wchar_t* set) {
  return text.find_first_of(set) != std::wstring::npos ||
         std::any_of(text.begin(), text.end(), [](wchar_t c) { return c < 32; });
}
inline std::wstring lower(std::wstring text) {
  for (wchar_t& c : text) c = c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c;
  return text;
}

inline int modelCheck(const Parts& p, bool wildcards) {
  const bool url = p.form == L"url";
  const std::wstring both = p.fileName + p.extension;
  std::wstring directory = p.directory;
  if (p.form == L"disc") directory.erase(0, p.prefix);
  if (holds(p.fileName,
            url ? (wildcards ? L"<>\"|" : L"<>\"|*?") : (wildcards ? L"<>\":|" : L"<>\":|*?"))) {
    return 7;
  }
  if (holds(p.extension, wildcards ? L"<>\":|" : L"<>\":|*?")) return 7;
  if (holds(directory, url ? L"<>\"|" : L"<>\"|:?*")) return 7;
  if (p.form == L"network" && p.prefix == 2) return 7;
  if (p.form == L"disc" && p.prefix == 5) return 7;
  if (url) {
    const std::wstring scheme = lower(p.directory.substr(0, p.directory.find(L':')));
    const wchar_t* const kLetters = L"abcdefghijklmnopqrstuvwxyz";
    if (scheme.find_first_of(kLetters) != 0) return 7;
    if (scheme.find_first_not_of(std::wstring(kLetters) + L"0123456789+-.") != std::wstring::npos) {
      return 7;
    }
  }
  if (both != L"." && both != L".." && !both.empty()) {
    if (both.back() == L' ') return 8;
    if (both.back() == L'.') return 9;
  }
  return p.drive.size() + directory.size() + (p.directory.size() - directory.size()) + both.size() >
                 260
             ? 6
             : 0;
}

// Without the options that rewrite delimiters.
inline Parts modelParse(std::wstring text, bool wildcards = false, bool anyDrive = false) {
  Parts p;
  if (lower(text.substr(0, 7)) == L"mailto:") {
    p.form = L"mail";
    p.whole = text;
    return p;
  }
  if (!text.empty() && text[0] == L'"') {
    if (text.size() < 3 || text.back() != L'"') return p.result = 7, p;
    text = text.substr(1, text.size() - 2);
  }
  if (!text.empty() && text[0] == L'$') {
    const wchar_t quote = text.find(L'\'') != std::wstring::npos ? L'\'' : L'"';
    const size_t at = text.find(quote);
    if (at == std::wstring::npos) return p.result = 1, p;
    p.macro = text.substr(1, at - 1);
    text = text.substr(at + 1);
    if (!text.empty() && text.back() == L'"') text.pop_back();
    if (text.empty() || !isDelimiter(text[0])) text = L'\\' + text;
  }
  const auto delimiterAt = [&](size_t i) { return i < text.size() && isDelimiter(text[i]); };
  const auto upToDelimiter = [&](size_t from) {
    while (from < text.size() && !isDelimiter(text[from])) ++from;
    return from;
  };
  const size_t colon = text.find(L':');
  if (text.size() > 1 && text[1] == L':' &&
      (anyDrive || (lower(text)[0] >= L'a' && lower(text)[0] <= L'z'))) {
    p.form = L"drive";
    p.volume = p.drive = text.substr(0, 2);
  } else if (lower(text.substr(0, 3)) == L"cd:" && delimiterAt(3) && delimiterAt(4)) {
    p.form = L"disc";
    p.prefix = upToDelimiter(5);
    p.volume = text.substr(0, p.prefix);
  } else if (colon != std::wstring::npos) {
    if (!delimiterAt(colon + 1) || !delimiterAt(colon + 2)) return p.result = 7, p;
    p.form = L"url";
    p.prefix = upToDelimiter(colon + 3);
    p.volume = text.substr(0, p.prefix);
  } else if (delimiterAt(0) && delimiterAt(1)) {
    p.form = L"network";
    p.prefix = upToDelimiter(2);
    if (p.prefix > 2 && p.prefix + 1 < text.size() && !delimiterAt(p.prefix + 1)) {
      p.prefix = upToDelimiter(p.prefix + 1);
    }
  }
  p.whole = p.macro.empty() ? text : L"$" + p.macro + L"'" + text;
  std::wstring rest = text.substr(p.drive.size());
  size_t name = rest.size();
  while (name > 0 && !isDelimiter(rest[name - 1])) --name;
  p.directory = rest.substr(0, name);
  p.fileName = rest.substr(name);
  const size_t dot = p.fileName.rfind(L'.');
  if (dot != std::wstring::npos) {
    p.extension = p.fileName.substr(dot);
    p.fileName.erase(dot);
  }
  p.result = modelCheck(p, wildcards);
  return p;
}

inline std::string shown(const wchar_t* text) { return testing::PrintToString(ZoString(text)); }
inline std::string shown(const std::wstring& text) { return shown(text.c_str()); }

// Everything a name shows that follows from its parts.
inline void expectParts(const ZoFileName& n, const Parts& p) {
  const std::wstring both = p.fileName + p.extension;
  const bool url = p.form == L"url";
  const bool disc = p.form == L"disc";
  EXPECT_EQ(std::wstring(n.view()), p.whole);
  EXPECT_EQ(n.fullNameSize(), p.whole.size());
  EXPECT_EQ(n.isEmpty(), p.whole.empty());
  EXPECT_EQ(n.fullName()[p.whole.size()], 0);
  EXPECT_EQ(std::wstring(n.macro()), p.macro);
  EXPECT_EQ(std::wstring(n.drive()), p.drive);
  EXPECT_EQ(std::wstring(n.directory()), p.directory);
  EXPECT_EQ(std::wstring(n.fileName()), p.fileName);
  EXPECT_EQ(std::wstring(n.extension()), p.extension);
  EXPECT_EQ(std::wstring(n.fileNameExt()), both);
  EXPECT_EQ(std::wstring(n.volume()), p.volume);
  EXPECT_EQ(n.volumePrefixLength(), p.prefix);
  EXPECT_EQ(n.delimiter(), url || disc ? L'/' : L'\\');
  EXPECT_EQ(n.sysDelimiter(), L'\\');
  EXPECT_EQ(n.isURL(), url);
  EXPECT_EQ(n.isCD(), disc);
  EXPECT_EQ(n.isUNC(), p.form == L"network");
  EXPECT_EQ(n.isRelativ(), p.macro.empty() && (p.form == L"plain" || p.form == L"mail"));
  EXPECT_EQ(n.isDirectory(), both.empty());
  EXPECT_EQ(n.hasDirectory(), !p.directory.empty());
  EXPECT_EQ(n.hasMacro(), !p.macro.empty());
  EXPECT_EQ(n.hasWildcards(), both.find_first_of(L"*?") != std::wstring::npos);
}

}  // namespace names
