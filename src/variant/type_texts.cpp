#include "variant/type_texts.h"

#include <atomic>

namespace zo {
namespace {
std::atomic<TextLookup> installedLookup{nullptr};
}

TextLookup setTextLookup(TextLookup lookup) noexcept { return installedLookup.exchange(lookup); }

const wchar_t* lookUpText(TextList list, unsigned int number, const wchar_t* byDefault) noexcept {
  const TextLookup lookup = installedLookup.load();
  const wchar_t* const text = lookup ? lookup(list, number, byDefault) : nullptr;
  return text ? text : byDefault;
}

}  // namespace zo
