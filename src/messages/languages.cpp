#include "messages/languages.h"

#include <zo/system/cfg.h>

#include <algorithm>

#include "messages/message_parser.h"
#include "platform/ui_languages.h"
#include "system/service_or_null.h"
#include "text/code_units.h"

namespace zo {
namespace {

void appendSetting(std::vector<std::wstring>& languages) {
  auto* const settings = serviceOrNull<ZoCfg>();
  if (!settings) return;
  const ZoString setting = settings->get(L"messages@language", ZoString());
  constexpr std::wstring_view kBetween = L" \t,;";
  std::wstring_view rest = setting.view();
  while (!rest.empty()) {
    const std::wstring_view tag = rest.substr(0, rest.find_first_of(kBetween));
    if (isLanguageTag(tag)) languages.emplace_back(tag);
    rest.remove_prefix(std::min(tag.size() + 1, rest.size()));
  }
}

}  // namespace

bool isSameTag(std::wstring_view a, std::wstring_view b) noexcept {
  return std::ranges::equal(a, b, {}, lowerAscii, lowerAscii);
}

std::vector<std::wstring> userLanguages() {
  std::vector<std::wstring> languages;
  appendSetting(languages);
  for (std::wstring& tag : uiLanguages())
    if (isLanguageTag(tag)) languages.push_back(std::move(tag));
  return languages;
}

std::vector<std::wstring> withParents(const std::vector<std::wstring>& languages) {
  std::vector<std::wstring> all;
  for (std::wstring_view tag : languages) {
    while (!tag.empty()) {
      const bool isNew =
          std::ranges::none_of(all, [&](std::wstring_view known) { return isSameTag(known, tag); });
      if (isNew) all.emplace_back(tag);
      const std::size_t dash = tag.rfind(L'-');
      tag = tag.substr(0, dash == std::wstring_view::npos ? 0 : dash);
    }
  }
  return all;
}

}  // namespace zo
