// Case of file names: a character's lower-case form as the platform maps it, one unit to one unit.
//
// The mapping is the invariant one: it knows all of Unicode and is the same in every locale, so
// that names keep their equality, order and hash when a program sets its locale. (The runtime's
// towlower knows ASCII only until then.)
#pragma once

namespace zo {

// For units from 0x80 up; the units below are the caller's own business, and faster there.
[[nodiscard]] wchar_t lowerByPlatform(wchar_t c) noexcept;

[[nodiscard]] inline wchar_t lowerFold(wchar_t c) noexcept {
  if (c >= 0x80) return lowerByPlatform(c);
  return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
}

}  // namespace zo
