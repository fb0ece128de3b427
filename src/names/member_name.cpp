#include <zo/names/member_name.h>

#include <utility>

#include "names/member_text.h"

bool zoIsMemberName(const ZoFileName& name) noexcept { return zo::isMemberText(name.view()); }

int zoSplitMemberName(const ZoFileName& name, ZoMemberName& parts) {
  zo::MemberText texts;
  if (const int code = zo::splitMemberText(name.view(), texts)) return code;
  ZoMemberName split{.library = texts.library, .member = texts.member};
  // A file name may read its text in another way (quotes, macros): that would be another member.
  if (split.library.view() != texts.library || split.member.view() != texts.member)
    return ZoResult::nameInvalid;
  parts = std::move(split);
  return ZoResult::ok;
}

ZoFileName zoMemberName(const ZoFileName& library, const ZoFileName& member) {
  const ZoFileName name(zo::joinMemberText(library.view(), member.view()));
  ZoMemberName parts;
  const bool isRight = zoSplitMemberName(name, parts) == ZoResult::ok &&
                       parts.library.view() == library.view() &&
                       parts.member.view() == member.view();
  return isRight ? name : ZoFileName();
}
