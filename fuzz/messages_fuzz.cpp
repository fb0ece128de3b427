// Any text as a message file: faults lie in it, what was read is found by its number and is read as
// the same from its escapes, and every expansion ends within its bounds, the same each time.
#include <string>
#include <vector>

#include "fuzz.h"
#include "messages/expand.h"
#include "messages/message_parser.h"
#include "text/code_units.h"

using namespace zo;

namespace {

using Faults = std::vector<ZoMessageFault>;

bool parse(std::wstring_view text, MessageData& data, Faults& faults) {
  return MessageParser(text, true, data, faults).parse();
}

// Every text written in escapes only, which leaves nothing to chance.
std::wstring escaped(const MessageData& data) {
  std::wstring text = L"@messages 1\n";
  for (const MessageEntry& entry : data.entries) {
    text += std::to_wstring(entry.number) + L' ';
    for (const wchar_t c : data.textOf(entry)) {
      wchar_t digits[4];
      writeHex(digits, static_cast<std::uint64_t>(c), 4);
      (text += L"\\u").append(digits, 4);
    }
    text += L'\n';
  }
  return text;
}

struct Source final : MessageSource {
  explicit Source(const MessageData& read) : data(read) {}
  bool find(std::wstring_view, unsigned int number, FoundMessage& found) const override {
    const MessageEntry* const entry = data.find(number);
    if (entry) found = {data.textOf(*entry), L"this", data.rule};
    return entry != nullptr;
  }
  const MessageData& data;
};

struct Arguments final : MessageArguments {
  bool has(unsigned int number) const override { return number <= 3; }
  void print(unsigned int number, ExpandedText& out) const override { out.append(number, L'%'); }
  PluralNumber numberOf(unsigned int number) const override {
    return {number < 3, number < 2, number};
  }
};

void expand(const MessageData& data) {
  const Source source(data);
  const Arguments arguments;
  for (std::size_t i = 0; i < data.entries.size() && i < 8; ++i) {
    const std::wstring_view text = data.textOf(data.entries[i]);
    ExpandedText first, second, plain;
    const bool complete =
        MessageExpander(source, &arguments, first).expand({text, L"this", data.rule});
    ZO_FUZZ_CHECK(first.size() <= kMaxExpanded);
    MessageExpander(source, &arguments, second).expand({text, L"this", data.rule});
    ZO_FUZZ_CHECK(first == second);
    MessageExpander(source, nullptr, plain).expand({text, L"this", data.rule});
    ZO_FUZZ_CHECK(plain.size() <= kMaxExpanded);
    if (text.find(L'%') == std::wstring_view::npos) ZO_FUZZ_CHECK(complete && first == text);
  }
}

}  // namespace

// The head is given, or hardly an input would have one. Bytes of 0x80 and more stand for characters
// of other alphabets.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  std::wstring text = L"@messages 1\n";
  for (std::size_t i = 0; i < size; ++i)
    text += static_cast<wchar_t>(data[i] < 0x80 ? data[i] : data[i] * 0x101);
  MessageData read, again;
  Faults faults, none;
  ZO_FUZZ_CHECK(parse(text, read, faults));
  for (const ZoMessageFault& fault : faults)
    ZO_FUZZ_CHECK(fault.line > 1 && fault.line <= size + 2 && fault.column > 0 &&
                  fault.column <= size + 1);
  for (const MessageEntry& entry : read.entries) ZO_FUZZ_CHECK(read.find(entry.number) == &entry);
  ZO_FUZZ_CHECK(parse(escaped(read), again, none));
  ZO_FUZZ_CHECK(none.empty() && again.texts.size() <= read.texts.size());
  ZO_FUZZ_CHECK(again.entries.size() == read.entries.size());
  for (std::size_t i = 0; i < read.entries.size(); ++i) {
    ZO_FUZZ_CHECK(again.entries[i].number == read.entries[i].number);
    ZO_FUZZ_CHECK(again.textOf(again.entries[i]) == read.textOf(read.entries[i]));
  }
  expand(read);
  return 0;
}
