// A name as the platform's file functions take it, however long it is.
//
// Most names pass as they stand. One that is too long for the platform's plain form gets the prefix
// that lifts its limit, and with it the full, cleaned path that this form asks for. Names that have
// such a prefix already are left alone.
//
// Errors:  nothing throws but std::bad_alloc.
// Cost:    none for short absolute names; a relative one is measured against the current folder.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

namespace zo {

class SystemPath {
 public:
  explicit SystemPath(const wchar_t* name);

  // Valid as long as this object and the name.
  operator const wchar_t*() const noexcept { return long_.empty() ? name_ : long_.c_str(); }

 private:
  const wchar_t* name_;
  std::wstring long_;
};

// What a call of the platform writes whose result is a count of characters: asked with the size of
// a buffer and the buffer, it gives what it wrote, or a size that is not smaller (the one it needs,
// or the one it was given), or 0 for a failure.
// Nothing comes of a failure, and GetLastError() is then as the call left it.
template <std::invocable<unsigned long, wchar_t*> Call>
std::wstring platformText(Call call) {
  std::wstring text(260, L'\0');
  for (;;) {
    const auto size = static_cast<unsigned long>(text.size());
    const unsigned long count = call(size, text.data());
    if (count < size) {
      text.resize(count);
      return text;
    }
    // No larger than needed: some calls keep sizes in 16 bits.
    text.resize(count > size ? count : 2 * size);
  }
}

}  // namespace zo
