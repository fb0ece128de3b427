#include <zo/names/member_name.h>

#include <utility>

#include "names/member_text.h"

bool zoIsMemberName(const ZoFileName& name) noexcept { return zo::isMemberText(name.view()); }

int zoSplitMemberName(const ZoFileName& name, ZoMemberName& parts) {
  zo::MemberText texts;
  if (const int code = zo::splitMemberText(name.view(), texts)) return code;
  ZoMemberName split{.library = texts.library, .member = texts.member};
  if (split.library.isEmpty() || split.member.isEmpty()) return ZoResult::nameInvalid;
  parts = std::move(split);
  return ZoResult::ok;
}

ZoFileName zoMemberName(const ZoFileName& library, const ZoFileName& member) {
  return zo::joinMemberText(library.view(), member.view());
}
