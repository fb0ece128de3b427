// The text form of a member of a library (zo/names/member_name.h), as texts alone.
#pragma once

#include <string>
#include <string_view>

namespace zo {

struct MemberText {
  std::wstring library;
  std::wstring member;
};

// Whether a sign that separates stands in the text, be the rest right or wrong.
[[nodiscard]] bool isMemberText(std::wstring_view text) noexcept;
// A code of zo/names/member_name.h; the parts may be anything for a text that is wrong.
[[nodiscard]] int splitMemberText(std::wstring_view text, MemberText& parts);
[[nodiscard]] std::wstring joinMemberText(std::wstring_view library, std::wstring_view member);

}  // namespace zo
