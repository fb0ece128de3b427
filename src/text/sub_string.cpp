#include <zo/text/string.h>
#include <zo/text/sub_string.h>

#include <cstdio>

#include "platform/debug_output.h"

std::wstring_view ZoSubString::view() const noexcept {
  if (m_start == npos) return {L"", 0};
  // The string may have become shorter since.
  const std::wstring_view whole = m_string->view();
  return m_start < whole.size() ? whole.substr(m_start, m_length) : std::wstring_view(L"", 0);
}

const wchar_t* ZoSubString::data() const noexcept { return view().data(); }

ZoSubString& ZoSubString::assign(const wchar_t* text, unsigned int length) {
  if (m_start == npos) return *this;
  const unsigned int before = m_string->length();
  const auto replaced = static_cast<unsigned int>(view().size());
  m_string->replace(m_start, m_length, text, length);
  // What the string refused to take, the view does not cover.
  if (m_string->length() - (before - replaced) == length) m_length = length;
  return *this;
}

ZoSubString& ZoSubString::operator=(const ZoSubString& text) {
  const std::wstring_view source = text.view();
  return assign(source.data(), static_cast<unsigned int>(source.size()));
}

ZoSubString& ZoSubString::operator=(const ZoString& text) {
  return assign(text.data(), text.length());
}

ZoSubString& ZoSubString::operator=(const wchar_t* text) {
  const std::wstring_view source = text ? std::wstring_view(text) : std::wstring_view();
  return assign(source.data(), source.size() <= ZoString::maxLength()
                                   ? static_cast<unsigned int>(source.size())
                                   : npos);
}

wchar_t ZoSubString::charAt(unsigned int i) const noexcept {
  return assertElement(i) ? L'\0' : std::as_const(*m_string)[size_t{m_start} + i];
}

wchar_t& ZoSubString::charRef(unsigned int i) {
  return assertElement(i) ? m_string->charRef(npos) : m_string->charRef(m_start + i);
}

void ZoSubString::subStringError(unsigned int len, unsigned int start, unsigned int n) noexcept {
  char line[128];
  std::snprintf(line, sizeof line,
                "zo_com: substring of %u characters from %u in a text of %u characters\n", n, start,
                len);
  zo::debugOutput(line);
}
