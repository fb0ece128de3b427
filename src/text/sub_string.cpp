#include <zo/text/string.h>
#include <zo/text/sub_string.h>

#include <cstdio>

#include "platform/debug_output.h"

std::wstring_view ZoSubString::view() const noexcept {
  if (start_ == npos) return {L"", 0};
  // The string may have become shorter since.
  const std::wstring_view whole = string_->view();
  return start_ < whole.size() ? whole.substr(start_, length_) : std::wstring_view(L"", 0);
}

const wchar_t* ZoSubString::data() const noexcept { return view().data(); }

ZoSubString& ZoSubString::assign(std::wstring_view text) {
  if (start_ == npos) return *this;
  const unsigned int length = ZoString::lengthOf(text);
  const unsigned int before = string_->length();
  const auto replaced = static_cast<unsigned int>(view().size());
  string_->replace(start_, length_, text.data(), length);
  // What the string refused to take, the view does not cover.
  if (string_->length() - (before - replaced) == length) length_ = length;
  return *this;
}

ZoSubString& ZoSubString::operator=(const ZoSubString& text) { return assign(text.view()); }

ZoSubString& ZoSubString::operator=(const ZoString& text) { return assign(text.view()); }

wchar_t ZoSubString::charAt(unsigned int i) const noexcept {
  return assertElement(i) ? L'\0' : std::as_const(*string_)[size_t{start_} + i];
}

wchar_t& ZoSubString::charRef(unsigned int i) {
  return assertElement(i) ? string_->charRef(npos) : string_->charRef(start_ + i);
}

void ZoSubString::subStringError(unsigned int len, unsigned int start, unsigned int n) noexcept {
  char line[128];
  std::snprintf(line, sizeof line,
                "zo_com: substring of %u characters from %u in a text of %u characters\n", n, start,
                len);
  zo::debugOutput(line);
}
