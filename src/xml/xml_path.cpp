#include "xml/xml_path.h"

#include <algorithm>

#include "text/code_units.h"
#include "xml/xml_text.h"

namespace zo {

using View = std::wstring_view;

namespace {

// "[n]" with n from 1; false for anything else.
bool cutPosition(View text, unsigned int& position) noexcept {
  constexpr std::size_t kDigits = 9;
  if (text.size() < 3 || text.size() > kDigits + 2 || text.back() != L']') return false;
  for (const wchar_t c : text.substr(1, text.size() - 2)) {
    if (!isDigit(c)) return false;
    position = 10 * position + static_cast<unsigned int>(c - L'0');
  }
  return position > 0;
}

bool cutStep(View text, XmlStep& step) noexcept {
  if (text.starts_with(L'@')) {
    step.isAttribute = true;
    step.name = text.substr(1);
    return isXmlName(step.name);
  }
  const std::size_t bracket = std::min(text.find(L'['), text.size());
  step.name = text.substr(0, bracket);
  return isXmlName(step.name) &&
         (bracket == text.size() || cutPosition(text.substr(bracket), step.position));
}

}  // namespace

bool cutXmlPath(View path, std::vector<XmlStep>& steps) {
  steps.clear();
  while (!path.empty()) {
    const std::size_t slash = path.find(L'/');
    XmlStep& step = steps.emplace_back();
    if (!cutStep(path.substr(0, slash), step)) return false;
    if (slash == View::npos) return true;
    path.remove_prefix(slash + 1);
    if (path.empty() || step.isAttribute) return false;
  }
  return true;
}

std::wstring xpathOf(const std::vector<XmlStep>& steps, std::size_t count) {
  std::wstring xpath = count == 0 ? L"." : L"";
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) xpath += L'/';
    if (steps[i].isAttribute) xpath += L'@';
    xpath += steps[i].name;
    if (!steps[i].isAttribute)
      xpath += L'[' + std::to_wstring(std::max(steps[i].position, 1U)) + L']';
  }
  return xpath;
}

View prefixOf(View name) noexcept {
  const std::size_t colon = name.find(L':');
  return colon == View::npos ? View() : name.substr(0, colon);
}

View withoutPrefix(View name) noexcept { return name.substr(name.find(L':') + 1); }

}  // namespace zo
