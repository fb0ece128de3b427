#include "dialogs/library_step.h"

#include <zo/names/member_name.h>
#include <zo/system/file_search.h>

#include <algorithm>
#include <string>

#include "dialogs/member_dialog.h"
#include "names/name_compare.h"
#include "names/wildcard.h"
#include "system/service_or_null.h"

namespace {

// As the search service spells it, which opens it.
ZoFileName found(const ZoFileName& name) {
  auto* const search = zo::serviceOrNull<ZoFileSearch>();
  ZoFileName spelled;
  return search && search->find(name, spelled) == ZoResult::ok ? spelled : name;
}

}  // namespace

std::wstring zo::joinedPatterns(std::wstring_view a, std::wstring_view b) {
  return std::wstring(a).append(a.empty() || b.empty() ? L"" : L";").append(b);
}

ZoFileName zo::fileOnDisk(const ZoFileName& name) {
  ZoMemberName parts;
  return zoSplitMemberName(name, parts) == ZoResult::ok ? parts.library : name;
}

int zo::LibraryStep::ask(std::vector<ZoFileName>& files, HWND owner) {
  std::vector<ZoFileName> taken;
  ZoMemberName before;
  const bool hasBefore = zoSplitMemberName(first, before) == ZoResult::ok;
  filter = request.filter;
  for (const ZoFileName& file : files) {
    MemberRows rows;
    if (!fitsAnyWildcard(file.fileNameExt(), patterns) || !rows.read(file)) {
      taken.push_back(file);
      continue;
    }
    MemberDialog dialog(rows, request, file.fileNameExt());
    const bool isThat = hasBefore && equalNames(before.library.view(), file.view());
    const int button = dialog.show(owner, isThat ? before.member.view() : std::wstring_view());
    error = dialog.error();
    if (button != IDOK) return button;
    filter = dialog.filter();
    std::ranges::transform(dialog.names(), std::back_inserter(taken), found);
  }
  files.swap(taken);
  return IDOK;
}
