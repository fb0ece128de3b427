// What was read from one message file.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "messages/plural_rules.h"

namespace zo {

struct MessageEntry {
  unsigned int number;
  unsigned int offset;  // in MessageData::texts
  unsigned int length;
  unsigned int line;
};

struct MessageData {
  std::wstring language, fallback;
  unsigned int codepage = 0;
  const PluralRule* rule = &pluralRule({});
  std::vector<MessageEntry> entries;  // by number
  std::wstring texts;                 // each with a zero behind it

  [[nodiscard]] std::wstring_view textOf(const MessageEntry& entry) const noexcept {
    return std::wstring_view(texts).substr(entry.offset, entry.length);
  }
  // Null when there is none.
  [[nodiscard]] const MessageEntry* find(unsigned int number) const noexcept {
    const auto found = std::ranges::lower_bound(entries, number, {}, &MessageEntry::number);
    return found != entries.end() && found->number == number ? &*found : nullptr;
  }
};

}  // namespace zo
