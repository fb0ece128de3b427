#include "member_argument.h"

#include <zo/names/member_name.h>

namespace zolib {

int splitMember(std::wstring& library, std::wstring& member) {
  // No macro of a file name stands in front.
  const ZoFileName name(library.starts_with(L'$') ? L"./" + library : library);
  const bool isNoName = name.isEmpty() && library.find(L'|') != library.npos;
  ZoMemberName parts;
  const int code = isNoName ? ZoResult::nameInvalid : zoSplitMemberName(name, parts);
  if (code != ZoResult::ok) return code;
  library = parts.library.view();
  member = parts.member.view();
  return ZoResult::ok;
}

}  // namespace zolib
