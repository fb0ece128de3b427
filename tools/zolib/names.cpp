#include "names.h"

#include <zo/names/file_name.h>

#include <vector>

namespace zolib {
namespace {

constexpr Text kNoName{470, "it has no name that a file can have"};

constexpr std::wstring_view kSlashes = L"\\/";

constexpr bool isSlash(wchar_t c) noexcept { return c == L'\\' || c == L'/'; }

std::vector<std::wstring_view> levelsOf(std::wstring_view path) {
  std::vector<std::wstring_view> levels;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find_first_of(kSlashes), path.size());
    if (end > 0) levels.push_back(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return levels;
}

}  // namespace

std::wstring memberName(std::wstring_view path) {
  bool lastOnly = false;
  if (path.size() > 1 && path[1] == L':') {
    path.remove_prefix(2);
    lastOnly = true;
  }
  if (!path.empty() && isSlash(path[0])) lastOnly = true;
  std::vector<std::wstring_view> kept;
  for (const std::wstring_view level : levelsOf(path)) {
    if (level == L".") continue;
    if (level != L"..") {
      kept.push_back(level);
    } else if (kept.empty()) {
      lastOnly = true;
    } else {
      kept.pop_back();
    }
  }
  if (lastOnly && kept.size() > 1) kept.erase(kept.begin(), kept.end() - 1);
  std::wstring name;
  for (const std::wstring_view level : kept) {
    if (!name.empty()) name += L'/';
    name += level;
  }
  return name;
}

std::optional<Text> refusalOf(std::wstring_view member) {
  if (member.empty()) return kNoName;
  if (member[0] == L'$') return Text{211, "a $ in front begins a macro"};
  if (isSlash(member[0])) return Text{471, "it is absolute"};
  if (member.find(L':') != std::wstring_view::npos) {
    const bool drive = member.size() > 1 && member[1] == L':';
    return drive ? Text{472, "it names a drive"} : Text{473, "it names a stream (a colon)"};
  }
  if (isSlash(member.back())) return Text{474, "it names a folder"};
  int depth = 0;
  for (const std::wstring_view level : levelsOf(member)) {
    if (level == L".") continue;
    if (level == L"..") {
      if (--depth < 0) return Text{475, "it leads out of the target folder"};
      continue;
    }
    ++depth;
    if (level.ends_with(L' ') || level.ends_with(L'.'))
      return Text{476, "a level of it ends in a blank or a dot"};
    if (ZoFileName(level).hasDeviceName()) return Text{477, "it names a device"};
  }
  if (depth == 0) return kNoName;
  // What the file names themselves know beyond that; the library decides.
  const ZoFileName name(member);
  if (name.isEmpty()) return kNoName;
  if (!name.isContained()) return Text{478, "the platform cannot keep it as it is"};
  return std::nullopt;
}

}  // namespace zolib
