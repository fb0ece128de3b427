#include <zo/results.h>
#include <zo/system/message.h>
#include <zo/text/containers/sequence.h>
#include <zo/text/string.h>
#include <zo/variant/variant.h>

#include <vector>

#include "messages/expand.h"
#include "messages/interned.h"
#include "messages/variant_arguments.h"

static_assert(ZoMessage::kMaxDepth == zo::kMaxReferences);
static_assert(ZoMessage::kMaxLength == zo::kMaxExpanded);
static_assert(ZoMessage::kMaxRead == zo::kMaxExpandRead);

namespace {

class NoReferences final : public zo::MessageSource {
 public:
  bool find(std::wstring_view, unsigned int, zo::FoundMessage&) const override { return false; }
};

}  // namespace

int ZoMessage::formatWith(const ZoString& file, int number, std::span<const ZoVariant> arguments,
                          ZoString& text) {
  ZoString given;
  const int result = getText(file, number, given);
  if (result != ZoResult::ok && result != ZoResult::incomplete) return result;
  zo::ExpandedText filled;
  const zo::VariantArguments values(arguments);
  const NoReferences nothing;
  zo::MessageExpander expander(nothing, &values, filled);
  const bool isComplete = expander.expand({given.view(), {}, &zo::pluralRule({})});
  text = std::wstring_view(filled);
  return isComplete ? result : ZoResult::incomplete;
}

int ZoMessage::format(const ZoString& file, int number, std::initializer_list<ZoVariant> arguments,
                      ZoString& text) {
  return formatWith(file, number, {arguments.begin(), arguments.size()}, text);
}

int ZoMessage::format(const ZoString& file, int number, const ZoSequence<ZoVariant>& arguments,
                      ZoString& text) {
  const std::vector<ZoVariant> inARow(arguments.begin(), arguments.end());
  return formatWith(file, number, inARow, text);
}

int ZoMessage::load(const ZoFileName&, const wchar_t*) { return ZoResult::refused; }
int ZoMessage::setLanguages(const ZoSequence<ZoString>&) { return ZoResult::refused; }
int ZoMessage::getLanguages(ZoSequence<ZoString>&) { return ZoResult::refused; }
int ZoMessage::reload() { return ZoResult::refused; }

const wchar_t* ZoMessage::lasting(const wchar_t* file, int number,
                                  const wchar_t* byDefault) noexcept {
  try {
    ZoString text;
    if (getText(ZoString(file), number, text) != ZoResult::ok) return byDefault;
    if (byDefault && text.view() == byDefault) return byDefault;
    const wchar_t* const kept = zo::interned(text.view());
    return kept ? kept : byDefault;
  } catch (...) {
    return byDefault;  // that of a client's service, too
  }
}
