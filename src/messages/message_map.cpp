#include <zo/messages/message_map.h>
#include <zo/results.h>

#include "messages/message_data.h"
#include "messages/message_parser.h"
#include "messages/read_messages.h"
#include "text/code_units.h"
#include "text/text_buffer.h"

static_assert(ZoMessageMap::kMaxBytes == zo::kMaxMessageBytes);
static_assert(ZoMessageMap::kMaxLength == zo::kMaxMessageLength);
static_assert(ZoMessageMap::kMaxFaults == zo::kMaxMessageFaults);

namespace {

// Shared by all maps without texts.
const std::shared_ptr<const zo::MessageData>& noData() {
  static const auto none = std::make_shared<const zo::MessageData>();
  return none;
}

bool needsEscape(std::wstring_view text, std::size_t i) noexcept {
  const wchar_t c = text[i];
  if (c == L' ') return i == 0 || i + 1 == text.size();
  if (c < L' ' || c == zo::kNoCharacter) return true;
  if (!zo::isSurrogate(c)) return false;
  const bool isPaired = zo::isHighSurrogate(c)
                            ? i + 1 < text.size() && zo::isLowSurrogate(text[i + 1])
                            : i > 0 && zo::isHighSurrogate(text[i - 1]);
  return !isPaired;
}

void writeText(zo::TextBuffer& out, std::wstring_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'\\') {
      out << L"\\\\";
    } else if (text[i] == L'\n') {
      out << L"\\n";
    } else if (text[i] == L'\t') {
      out << L"\\t";
    } else if (needsEscape(text, i)) {
      out << L"\\u";
      zo::writeHex(out.room(4), text[i], 4);
      out.advance(4);
    } else {
      out << text[i];
    }
  }
}

void writeTag(zo::TextBuffer& out, std::wstring_view directive, std::wstring_view tag) {
  if (!tag.empty()) out << directive << tag << L'\n';
}

}  // namespace

ZoMessageMap::ZoMessageMap() : data_(noData()) {}

int ZoMessageMap::parse(std::string_view bytes, std::vector<ZoMessageFault>* faults) {
  std::vector<ZoMessageFault> found;
  auto data = zo::readMessages(bytes, found);
  if (faults) *faults = std::move(found);
  if (!data) return ZoResult::refused;
  data_ = std::move(data);
  return ZoResult::ok;
}

const wchar_t* ZoMessageMap::find(unsigned int number) const noexcept {
  const zo::MessageEntry* const entry = data_->find(number);
  return entry ? data_->textOf(*entry).data() : nullptr;
}

unsigned int ZoMessageMap::entries() const noexcept {
  return static_cast<unsigned int>(data_->entries.size());
}
unsigned int ZoMessageMap::number(unsigned int i) const noexcept {
  return data_->entries[i].number;
}
std::wstring_view ZoMessageMap::text(unsigned int i) const noexcept {
  return data_->textOf(data_->entries[i]);
}
unsigned int ZoMessageMap::line(unsigned int i) const noexcept { return data_->entries[i].line; }

ZoString ZoMessageMap::language() const { return ZoString(data_->language); }
ZoString ZoMessageMap::fallback() const { return ZoString(data_->fallback); }
unsigned int ZoMessageMap::codepage() const noexcept { return data_->codepage; }
unsigned int ZoMessageMap::pluralForms() const noexcept { return data_->rule->forms; }

int ZoMessageMap::write(ZoString& out) const {
  zo::TextBuffer text;
  text << L"@messages 1\n";
  writeTag(text, L"@language ", data_->language);
  writeTag(text, L"@fallback ", data_->fallback);
  for (const zo::MessageEntry& entry : data_->entries) {
    text << std::to_wstring(entry.number) << L'\t';
    writeText(text, data_->textOf(entry));
    text << L'\n';
  }
  out = text.toString();
  return ZoResult::ok;
}
