#include "dialogs/member_rows.h"

#include <zo/library/library.h>
#include <zo/names/member_name.h>

#include <algorithm>

#include "names/name_compare.h"
#include "names/wildcard.h"

namespace {

constexpr wchar_t kSlash = L'/';

bool isBefore(const zo::MemberRows::Member& a, const zo::MemberRows::Member& b) noexcept {
  return zo::orderNames(a.path, b.path) < 0;
}

// Between the levels stands one slash, and none in front: no level is empty.
std::wstring withSlashes(std::wstring_view path) {
  std::wstring text;
  text.reserve(path.size());
  for (const wchar_t c : path) {
    const bool isSlash = c == L'\\' || c == kSlash;
    if (!isSlash || (!text.empty() && text.back() != kSlash)) text += isSlash ? kSlash : c;
  }
  return text;
}

}  // namespace

bool zo::MemberRows::read(const ZoFileName& library) {
  ZoLibrary file;
  if (file.open(library, ZoFile::kRead) != ZoResult::ok || !file.isLibrary()) return false;
  std::vector<Member> members;
  const int code = file.forEachEntry([&](const ZoLibEntry& entry) {
    ZoFileName name = zoMemberName(library, entry.name);
    if (!name.isEmpty())
      members.push_back(
          {withSlashes(entry.name.view()), std::move(name), entry.size, entry.written});
    return true;
  });
  if (code != ZoResult::ok) return false;
  std::ranges::stable_sort(members, isBefore);
  const auto again = std::ranges::unique(
      members, [](const Member& a, const Member& b) { return equalNames(a.path, b.path); });
  members.erase(again.begin(), again.end());
  rows_.clear();
  members_.swap(members);
  enter({});
  return true;
}

void zo::MemberRows::setFilter(std::wstring_view patterns) {
  filter_ = patterns;
  makeRows();
}

void zo::MemberRows::enter(std::wstring_view folder) {
  folder_ = withSlashes(folder);
  makeRows();
}

void zo::MemberRows::enterOuter() {
  const std::size_t slash = folder_.rfind(kSlash);
  enter(std::wstring(folder_, 0, slash == folder_.npos ? 0 : slash));
}

std::wstring zo::MemberRows::pathOf(const Row& row) const {
  std::wstring path = folder_;
  if (!path.empty()) path += kSlash;
  return path.append(row.name);
}

std::size_t zo::MemberRows::placeOf(std::wstring_view name) const noexcept {
  const auto found =
      std::ranges::find_if(rows_, [&](const Row& row) { return equalNames(row.name, name); });
  return static_cast<std::size_t>(found - rows_.begin());
}

// What lies below a folder stands together.
void zo::MemberRows::makeRows() {
  rows_.clear();
  const std::wstring prefix = folder_.empty() ? folder_ : folder_ + kSlash;
  auto member = std::ranges::partition_point(
      members_, [&](const Member& each) { return orderNames(each.path, prefix) < 0; });
  std::vector<Row> inside;
  for (; member != members_.end(); ++member) {
    const std::wstring_view path = member->path;
    if (!equalNames(path.substr(0, prefix.size()), prefix)) break;
    const std::wstring_view below = path.substr(prefix.size());
    const std::wstring_view level = below.substr(0, below.find(kSlash));
    if (level.size() == below.size()) {
      if (filter_.empty() || fitsAnyWildcard(level, filter_)) inside.push_back({level, &*member});
    } else if (rows_.empty() || !equalNames(rows_.back().name, level)) {
      rows_.push_back({level, nullptr});
    }
  }
  rows_.insert(rows_.end(), inside.begin(), inside.end());
}
