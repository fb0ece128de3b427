// ZoFileNameImp: changing parts, levels, macro and alias.
#include <algorithm>
#include <utility>

#include "names/file_name_imp.h"
#include "names/name_check.h"
#include "names/name_compare.h"
#include "names/name_levels.h"
#include "text/code_units.h"

using zo::NameKind;
using zo::NameParts;

namespace {

bool holdsDelimiter(std::wstring_view text) noexcept {
  return text.find_first_of(L"\\/") != std::wstring_view::npos;
}

bool mayBeFileName(std::wstring_view text, NameKind kind, bool wildcards) noexcept {
  return !holdsDelimiter(text) && zo::fitsFileName(text, kind, wildcards);
}

bool mayBeExtension(std::wstring_view text, bool wildcards) noexcept {
  return !holdsDelimiter(text) && zo::fitsExtension(text, wildcards);
}

// What may stand in the directory of any form; the parse looks closer.
bool mayBeDirectory(std::wstring_view text) noexcept {
  return zo::fitsDirectory(text, NameKind::Url);
}

}  // namespace

// The parts on their way to a new name.
struct ZoFileNameImp::Pieces {
  std::wstring drive;
  std::wstring directory;
  std::wstring fileName;
  std::wstring extension;

  bool putDrive(std::wstring_view text, bool anyDrive) {
    const bool isForm = text.size() == 1 || (text.size() == 2 && text[1] == L':');
    if (!text.empty() && !(isForm && (anyDrive || zo::isLetter(text[0])))) return false;
    drive = text.substr(0, 1);
    if (!drive.empty()) drive += L':';
    return true;
  }
  void putDirectory(std::wstring_view text, wchar_t delimiter) {
    directory = text;
    if (!text.empty() && !zo::isDelimiter(text.back())) directory += delimiter;
  }
  void putExtension(std::wstring_view text) {
    extension = text;
    if (!text.empty() && text[0] != L'.') extension.insert(0, 1, L'.');
  }
};

ZoFileNameImp::Pieces ZoFileNameImp::pieces() const {
  const NameParts name = parts();
  Pieces pieces;
  pieces.drive = name.drive;
  if (name.prefixLength > name.directory.size()) {  // a bare volume
    pieces.putDirectory(name.path, state_.delimiter);
  } else {
    pieces.directory = name.directory;
    pieces.fileName = name.fileName;
    pieces.extension = name.extension;
  }
  return pieces;
}

int ZoFileNameImp::recompose(const Pieces& pieces) {
  return retake(
      zo::wholeText(macro(), pieces.drive + pieces.directory + pieces.fileName + pieces.extension));
}

// ---- Parts ----

int ZoFileNameImp::setDrive(const wchar_t* text) {
  Pieces changed = pieces();
  if (!changed.putDrive(zo::textOf(text), state_.options.anyDrive)) return ZoResult::nameInvalid;
  if (!changed.drive.empty()) changed.directory.erase(0, state_.volumePrefixLength);
  return recompose(changed);
}

int ZoFileNameImp::setDirectory(const wchar_t* text) {
  if (!mayBeDirectory(zo::textOf(text))) return ZoResult::nameInvalid;
  Pieces changed = pieces();
  changed.putDirectory(zo::textOf(text), state_.delimiter);
  return recompose(changed);
}

int ZoFileNameImp::setFileName(const wchar_t* text) {
  if (!mayBeFileName(zo::textOf(text), parts().kind, state_.options.wildcards)) {
    return ZoResult::nameInvalid;
  }
  Pieces changed = pieces();
  changed.fileName = zo::textOf(text);
  return recompose(changed);
}

int ZoFileNameImp::setExtension(const wchar_t* text) {
  if (!mayBeExtension(zo::textOf(text), state_.options.wildcards)) return ZoResult::nameInvalid;
  Pieces changed = pieces();
  changed.putExtension(zo::textOf(text));
  return recompose(changed);
}

int ZoFileNameImp::setFileNameExt(const wchar_t* text) {
  const std::wstring_view both = zo::textOf(text);
  const size_t dot = std::min(both.rfind(L'.'), both.size());
  const bool wildcards = state_.options.wildcards;
  if (!mayBeFileName(both.substr(0, dot), parts().kind, wildcards) ||
      !mayBeExtension(both.substr(dot), wildcards)) {
    return ZoResult::nameInvalid;
  }
  Pieces changed = pieces();
  changed.fileName = both;
  changed.extension.clear();
  return recompose(changed);
}

int ZoFileNameImp::makePath(const wchar_t* drive, const wchar_t* directory, const wchar_t* fileName,
                            const wchar_t* extension) {
  const bool wildcards = state_.options.wildcards;
  // Of all forms only a URL has a colon in its directory, and may have one in its file name.
  const std::wstring_view levels = zo::textOf(directory);
  const bool isURL = levels.find(L':') != std::wstring_view::npos;
  Pieces made;
  if (!made.putDrive(zo::textOf(drive), state_.options.anyDrive) || !mayBeDirectory(levels) ||
      !mayBeFileName(zo::textOf(fileName), isURL ? NameKind::Url : NameKind::Plain, wildcards) ||
      !mayBeExtension(zo::textOf(extension), wildcards)) {
    return ZoResult::nameInvalid;
  }
  made.putDirectory(levels, isURL ? L'/' : L'\\');
  made.fileName = zo::textOf(fileName);
  made.putExtension(zo::textOf(extension));
  return recompose(made);
}

int ZoFileNameImp::setDelimiter(wchar_t delimiter) noexcept {
  state_.delimiter = delimiter;
  return ZoResult::ok;
}

template <class Change>
int ZoFileNameImp::changeCase(Change change) {
  State state = state_;
  ZoString parts(state.parts.all());
  for (ZoString* text : {&state.whole, &state.written, &parts, &state.macroValue}) change(*text);
  state.parts = state.parts.withAll(parts.view());
  state_ = std::move(state);
  return ZoResult::ok;
}

int ZoFileNameImp::toLower() {
  return changeCase([](ZoString& text) { text.toLower(); });
}

int ZoFileNameImp::toUpper() {
  return changeCase([](ZoString& text) { text.toUpper(); });
}

// ---- Directory levels ----

int ZoFileNameImp::appendDirectory(const wchar_t* text) {
  std::wstring_view level = zo::textOf(text);
  level = zo::withoutFinalDelimiters(level);
  while (!level.empty() && zo::isDelimiter(level.front())) level.remove_prefix(1);
  if (level.empty()) return ZoResult::refused;
  if (!mayBeDirectory(level)) return ZoResult::nameInvalid;
  Pieces changed = pieces();
  (changed.directory += level) += state_.delimiter;
  return recompose(changed);
}

int ZoFileNameImp::removeLastDir() {
  std::wstring_view levels = zo::levelStretch(parts());
  const size_t stretch = levels.size();
  while (!levels.empty() && zo::isDelimiter(levels.back())) levels.remove_suffix(1);
  if (levels.empty()) return ZoResult::refused;
  const size_t kept = levels.find_last_of(L"\\/") + 1;  // 0 when no delimiter precedes it
  Pieces changed = pieces();
  changed.directory.resize(changed.directory.size() - stretch + kept);
  return recompose(changed);
}

const wchar_t* ZoFileNameImp::nextDirPart(bool restart) {
  if (restart) state_.nextLevel = 0;
  size_t at = state_.nextLevel;
  const std::wstring_view level = zo::nextLevel(zo::levelStretch(parts()), at);
  if (level.empty()) return nullptr;
  state_.level = ZoString(level);
  state_.nextLevel = at;
  return state_.level.data();
}

// ---- Macro and alias ----

namespace {

// Whether path begins with the levels of value, ignoring case and the shape of delimiters.
bool beginsWithLevels(std::wstring_view path, std::wstring_view value) {
  if (value.empty() || path.size() < value.size()) return false;
  if (path.size() > value.size() && !zo::isDelimiter(path[value.size()])) return false;
  for (size_t i = 0; i < value.size(); ++i) {
    if (zo::isDelimiter(path[i]) && zo::isDelimiter(value[i])) continue;
    if (!zo::equalNames(path.substr(i, 1), value.substr(i, 1))) return false;
  }
  return true;
}

}  // namespace

int ZoFileNameImp::setMacro(const wchar_t* macro, const wchar_t* value) {
  const std::wstring_view name = zo::textOf(macro);
  if (name.empty()) return ZoResult::refused;
  if (name.find(L'\'') != std::wstring_view::npos) return ZoResult::nameInvalid;
  std::wstring_view below = path();
  if (this->macro().empty()) {
    const std::wstring_view folder = zo::withoutFinalDelimiters(zo::textOf(value));
    if (beginsWithLevels(below, folder)) {
      below = below.substr(folder.size());
    } else if (parts().kind != NameKind::Plain) {
      return ZoResult::refused;
    }
  }
  const std::wstring text = zo::wholeText(name, below);
  std::wstring scratch;
  const NameParts parsed = zo::parseName(text, state_.options, false, scratch);
  if (parsed.isSplit) assign(parsed, ZoString(value));
  return parsed.result;
}

int ZoFileNameImp::resetMacro(const wchar_t* text) {
  if (macro().empty()) return ZoResult::refused;
  std::wstring whole(
      zo::withoutFinalDelimiters(text ? std::wstring_view(text) : state_.macroValue.view()));
  whole += path();
  return retake(whole);
}

int ZoFileNameImp::setLocalAlias(const ZoString& alias) noexcept {
  state_.localAlias = alias;
  return ZoResult::ok;
}
