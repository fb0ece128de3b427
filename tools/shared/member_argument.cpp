#include "member_argument.h"

#include <zo/names/member_name.h>

namespace zolib {

int splitMember(std::wstring& library, std::wstring& member) {
  // No macro of a file name stands in front.
  ZoMemberName parts;
  const int code =
      zoSplitMemberName(ZoFileName(library.starts_with(L'$') ? L"./" + library : library), parts);
  if (code != ZoResult::ok) return code;
  library = parts.library.view();
  member = parts.member.view();
  return ZoResult::ok;
}

}  // namespace zolib
