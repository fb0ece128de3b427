#include "names/name_levels.h"

#include <zo/names/name_results.h>

#include <algorithm>

#include "names/name_check.h"
#include "names/name_compare.h"

namespace zo {
namespace {

constexpr size_t kLongestComponent = 255;  // of the platform's file systems

bool startsAtDelimiter(std::wstring_view text) noexcept {
  return !text.empty() && isDelimiter(text[0]);
}

// What follows drive or volume.
std::wstring_view behindRoot(const NameParts& name) noexcept {
  return name.path.substr(name.root().size());
}

// A relative text that a parse would take for something else starts at the current folder.
void guardStart(std::wstring& text, wchar_t delimiter) {
  if (text.empty() || text[0] == L'$' || text[0] == L'"') {
    text.insert(0, {L'.', delimiter});
  }
}

void appendLevels(std::wstring& text, const NormalName& name, size_t from) {
  for (size_t i = from; i < name.levels.size(); ++i) {
    text += name.levels[i];
    text += name.delimiter;
  }
  text += name.last;
}

// Whether the platform keeps a component as it is.
bool isOrdinary(std::wstring_view component) noexcept {
  return component.size() <= kLongestComponent && checkEnd(component) == ZoResult::ok &&
         !isDeviceName(component);
}

// Goes on from the levels of a name; a component that no delimiter follows becomes the last one.
void appendComponents(NormalName& name, std::wstring_view path) {
  size_t at = 0;
  for (auto part = nextLevel(path, at); !part.empty(); part = nextLevel(path, at)) {
    if (part == L".") continue;
    if (part == L"..") {
      if (!name.levels.empty() && name.levels.back() != L"..") {
        name.levels.pop_back();
      } else if (!name.isRooted) {
        name.levels.push_back(part);
      }
    } else if (at == path.size()) {
      name.last = part;
    } else {
      name.levels.push_back(part);
    }
  }
}

template <class Check>
bool allComponents(std::wstring_view path, Check check) {
  size_t at = 0;
  for (auto part = nextLevel(path, at); !part.empty(); part = nextLevel(path, at)) {
    if (!check(part)) return false;
  }
  return true;
}

}  // namespace

std::wstring_view levelStretch(const NameParts& name) noexcept {
  const size_t root = name.root().size();
  const size_t end = name.drive.size() + name.directory.size();
  return end > root ? name.path.substr(root, end - root) : std::wstring_view();
}

std::wstring_view nextLevel(std::wstring_view stretch, size_t& at) noexcept {
  while (at < stretch.size() && isDelimiter(stretch[at])) ++at;
  const size_t begin = at;
  while (at < stretch.size() && !isDelimiter(stretch[at])) ++at;
  return stretch.substr(std::min(begin, stretch.size()), at - begin);
}

std::wstring wholeText(std::wstring_view macro, std::wstring_view path) {
  std::wstring text;
  text.reserve(macro.size() + path.size() + 2);
  if (!macro.empty()) ((text += L'$') += macro) += L'\'';
  return text += path;
}

NormalName normalise(const NameParts& name) {
  NormalName normal;
  normal.kind = name.kind;
  normal.macro = name.macro;
  normal.root = name.kind == NameKind::Mail ? name.path : name.root();
  normal.delimiter = delimiterOf(name.kind);
  const std::wstring_view rest = name.path.substr(normal.root.size());
  normal.isBare = rest.empty();
  normal.isRooted = name.prefixLength > 0 || startsAtDelimiter(rest);
  appendComponents(normal, rest);
  return normal;
}

std::wstring NormalName::text() const {
  std::wstring path(root);
  if (kind != NameKind::Mail) std::replace_if(path.begin(), path.end(), isDelimiter, delimiter);
  if (isRooted && !isBare) path += delimiter;
  appendLevels(path, *this, 0);
  if (kind == NameKind::Plain && macro.empty() && !isRooted && !isBare) {
    guardStart(path, delimiter);
  }
  return wholeText(macro, path);
}

std::optional<std::wstring> relativeText(const NormalName& name, const NormalName& base) {
  if (name.kind != base.kind || name.kind == NameKind::Mail || name.isRooted != base.isRooted ||
      !equalNames(name.macro, base.macro) || !equalNames(name.root, base.root)) {
    return std::nullopt;
  }
  const auto [mine, theirs] = std::mismatch(name.levels.begin(), name.levels.end(),
                                            base.levels.begin(), base.levels.end(), equalNames);
  std::wstring text;
  for (auto level = theirs; level != base.levels.end(); ++level) {
    if (*level == L"..") return std::nullopt;  // where it leads back to is not known
    (text += L"..") += name.delimiter;
  }
  appendLevels(text, name, static_cast<size_t>(mine - name.levels.begin()));
  guardStart(text, name.delimiter);
  return text;
}

std::wstring resolvedText(const NameParts& name, const NameParts& base) {
  const std::wstring_view path = behindRoot(name);
  const bool isRooted = startsAtDelimiter(path);
  const bool sameDrive = name.kind == NameKind::Drive && base.kind == NameKind::Drive &&
                         !isRooted && equalNames(name.drive, base.drive);
  const bool isSeenFromBase = name.macro.empty() && base.kind != NameKind::Mail &&
                              (name.kind == NameKind::Plain || sameDrive);
  if (!isSeenFromBase) return normalise(name).text();

  NormalName resolved = normalise(base);
  resolved.last = {};
  if (isRooted) {
    resolved.isRooted = true;
    resolved.levels.clear();
  }
  resolved.isBare = resolved.isBare && path.empty() && resolved.root.empty();
  appendComponents(resolved, path);
  return resolved.text();
}

bool isContained(const NameParts& name) {
  if (name.kind != NameKind::Plain || !name.macro.empty() || name.path.empty() ||
      startsAtDelimiter(name.path) || checkCharacters(name, false) != ZoResult::ok) {
    return false;
  }
  size_t depth = 0;
  return allComponents(name.path, [&](std::wstring_view part) {
    if (part == L"..") return depth-- > 0;
    if (part != L".") ++depth;
    return isOrdinary(part);
  });
}

bool isPossible(const NameParts& name) noexcept {
  if (name.path.empty() || name.kind == NameKind::Mail || checkCharacters(name, false) != 0 ||
      checkForm(name) != ZoResult::ok) {
    return false;
  }
  if (name.kind == NameKind::Url) return true;
  return allComponents(behindRoot(name), isOrdinary);
}

}  // namespace zo
