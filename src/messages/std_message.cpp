#include <zo/messages/std_message.h>
#include <zo/names/file_name.h>
#include <zo/results.h>
#include <zo/text/containers/array.h>

#include <algorithm>
#include <cstddef>

#include "messages/message_parser.h"
#include "messages/message_store.h"
#include "messages/variant_arguments.h"
#include "system/service_scope.h"

namespace {

constexpr std::size_t kShortText = 480;

int lookUp(const zo::MessageStore& store, const ZoString& file, int number,
           const zo::MessageArguments* arguments, ZoString& text) {
  const auto catalogues = store.current();
  zo::FoundMessage found;
  if (!catalogues->find(file.view(), static_cast<unsigned int>(number), found))
    return ZoResult::refused;
  if (found.text.find(L'%') == std::wstring_view::npos) {
    text = found.text;
    return ZoResult::ok;
  }
  std::byte room[1024];
  std::pmr::monotonic_buffer_resource memory(room, sizeof room);
  zo::ExpandedText expanded(&memory);
  expanded.reserve(std::max(kShortText, found.text.size() + found.text.size() / 4));
  zo::MessageExpander expander(*catalogues, arguments, expanded);
  const bool isComplete = expander.expand(found);
  text = std::wstring_view(expanded);
  return isComplete ? ZoResult::ok : ZoResult::incomplete;
}

std::wstring_view viewOf(const wchar_t* text) noexcept { return text ? text : L""; }

}  // namespace

ZoStdMessage::ZoStdMessage() : store_(std::make_unique<zo::MessageStore>()) {}
ZoStdMessage::~ZoStdMessage() = default;

int ZoStdMessage::release(const wchar_t* module) { return zo::releaseWithLibrary(this, module); }

void ZoStdMessage::poolRelease(const wchar_t* module) {
  if (!module) return;
  const zo::Writing writing(*this);
  if (writing) store_->release(module);
}

int ZoStdMessage::getText(const ZoString& file, int number, ZoString& text) {
  return lookUp(*store_, file, number, nullptr, text);
}

int ZoStdMessage::formatWith(const ZoString& file, int number, std::span<const ZoVariant> arguments,
                             ZoString& text) {
  const zo::VariantArguments values(arguments);
  return lookUp(*store_, file, number, &values, text);
}

int ZoStdMessage::load(const ZoFileName& file, const wchar_t* module) {
  const zo::Writing writing(*this);
  return writing ? store_->load(file.view(), viewOf(module)) : ZoResult::refused;
}

int ZoStdMessage::setLanguages(const ZoSequence<ZoString>& languages) {
  std::vector<std::wstring> wanted;
  for (const ZoString& language : languages) {
    std::wstring tag(language.view());
    std::ranges::replace(tag, L'_', L'-');
    if (!zo::isLanguageTag(tag)) return ZoResult::refused;
    wanted.push_back(std::move(tag));
  }
  const zo::Writing writing(*this);
  return writing ? store_->setLanguages(std::move(wanted)) : ZoResult::refused;
}

int ZoStdMessage::getLanguages(ZoSequence<ZoString>& languages) {
  ZoArray<ZoString> found;
  {
    const zo::Writing writing(*this);  // they may have to be asked for
    if (!writing) return ZoResult::refused;
    for (const std::wstring& tag : store_->languages())
      if (const int result = found.append(ZoString(tag))) return result;
  }
  return languages.copyFrom(found);
}

int ZoStdMessage::reload() {
  const zo::Writing writing(*this);
  return writing ? store_->reload() : ZoResult::refused;
}
