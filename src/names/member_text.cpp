#include "names/member_text.h"

#include <zo/names/name_results.h>

#include <cstddef>

namespace zo {
namespace {

constexpr wchar_t kSign = L'|', kEscape = L'<';
// What stands behind an escape, and what it stands for.
constexpr std::wstring_view kEscaped = L"|<;", kPlain = L"|<:";

void append(std::wstring& text, std::wstring_view part, bool escapesColons) {
  for (const wchar_t c : part) {
    const std::size_t at = kPlain.substr(0, escapesColons ? 3 : 2).find(c);
    if (at == std::wstring_view::npos) {
      text += c;
    } else {
      (text += kEscape) += kEscaped[at];
    }
  }
}

}  // namespace

bool isMemberText(std::wstring_view text) noexcept {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == kSign) return true;
    if (text[i] == kEscape) ++i;
  }
  return false;
}

int splitMemberText(std::wstring_view text, MemberText& parts) {
  if (!isMemberText(text)) return ZoResult::refused;
  parts = {};
  std::wstring* part = &parts.library;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == kSign) {
      if (part == &parts.member) return ZoResult::nameInvalid;
      part = &parts.member;
    } else if (text[i] != kEscape) {
      *part += text[i];
    } else {
      const std::size_t at = i + 1 < text.size() ? kEscaped.find(text[++i]) : kEscaped.npos;
      if (at == kEscaped.npos) return ZoResult::nameInvalid;
      *part += kPlain[at];
    }
  }
  // One text for each member: not a colon that is, or is not, escaped where it need not, or must.
  const bool isRight = !parts.library.empty() && !parts.member.empty() &&
                       joinMemberText(parts.library, parts.member) == text;
  return isRight ? ZoResult::ok : ZoResult::nameInvalid;
}

std::wstring joinMemberText(std::wstring_view library, std::wstring_view member) {
  std::wstring text;
  text.reserve(library.size() + 1 + member.size());
  append(text, library, false);
  text += kSign;
  append(text, member, true);
  return text;
}

}  // namespace zo
