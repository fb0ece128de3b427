#include "messages/read_messages.h"

#include <zo/results.h>
#include <zo/system/codepage.h>

#include <algorithm>
#include <cstring>

#include "messages/message_parser.h"
#include "messages/plural_rules.h"
#include "system/codepage/detect.h"
#include "system/codepage/in_force.h"
#include "text/utf8.h"

namespace zo {
namespace {

struct Decoded {
  std::wstring text;  // bytes that are no text have become kNoCharacter
  unsigned int codepage = 0;
  bool knowsCodepage = true;  // what the file says of itself was heeded
};

constexpr std::string_view kBlanks = " \t";

// The next line without blanks around it; takes it from the bytes.
std::string_view takeLine(std::string_view& bytes) noexcept {
  const std::size_t end = std::min(bytes.find_first_of("\r\n"), bytes.size());
  std::string_view line = bytes.substr(0, end);
  bytes.remove_prefix(std::min(end + 1, bytes.size()));
  line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
  return line.substr(0, line.find_last_not_of(kBlanks) + 1);
}

// The code page that a line before the first message names; empty when none does.
std::string_view namedCodepage(std::string_view bytes) noexcept {
  constexpr std::string_view kDirective = "@codepage";
  while (!bytes.empty()) {
    std::string_view line = takeLine(bytes);
    if (line.empty() || line.front() == '#') continue;
    if (line.front() != '@') break;
    if (!line.starts_with(kDirective)) continue;
    line.remove_prefix(kDirective.size());
    const std::size_t start = line.find_first_not_of(kBlanks);
    if (start == std::string_view::npos || start == 0) continue;
    line.remove_prefix(start);
    return line.substr(0, line.find_first_of(kBlanks));
  }
  return {};
}

// A file begins with "@messages", which tells UTF-16 in any script. A zero among other bytes is a
// fault of its line and says nothing of the others.
ByteForm formOfFile(std::string_view bytes) {
  using namespace std::string_view_literals;
  if (bytes.starts_with("@\0"sv)) return ByteForm::Utf16;
  if (bytes.starts_with("\0@"sv)) return ByteForm::Utf16BigEndian;
  return formOfWhole(bytes);
}

std::wstring widened(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

std::wstring fromUtf8(std::string_view bytes) {
  std::wstring text(utf16Size(bytes), L'\0');
  utf8ToUtf16(bytes, text.data());
  return text;
}

std::wstring fromUtf16(std::string_view bytes, bool bigEndian) {
  std::wstring text(bytes.size() / 2, L'\0');
  std::memcpy(text.data(), bytes.data(), text.size() * 2);
  if (bigEndian)
    for (wchar_t& c : text) c = static_cast<wchar_t>(c << 8 | c >> 8);
  if (bytes.size() % 2 != 0) text += kNoCharacter;
  return text;
}

// Line by line, where the whole is refused: so a bad byte costs its own line only.
std::wstring byLines(ZoCodepage& service, std::string_view bytes, unsigned int codepage) {
  std::wstring text;
  while (!bytes.empty()) {
    const std::string_view line = bytes.substr(0, bytes.find('\n'));
    bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
    ZoString converted;
    if (service.toText(line, codepage, ZoCodepage::kRefuse, converted) == ZoResult::ok) {
      text += converted.view();
    } else {
      text += kNoCharacter;
    }
    text += L'\n';
  }
  return text;
}

std::wstring fromCodepage(ZoCodepage& service, std::string_view bytes, unsigned int codepage) {
  ZoString text;
  if (service.toText(bytes, codepage, ZoCodepage::kRefuse, text) == ZoResult::ok)
    return std::wstring(text.view());
  return byLines(service, bytes, codepage);
}

Decoded decode(std::string_view bytes) {
  unsigned int markLength = 0;
  ByteForm form = markedForm(bytes, markLength);
  bytes.remove_prefix(markLength);
  if (markLength == 0) form = formOfFile(bytes);
  if (form == ByteForm::Utf16) return {fromUtf16(bytes, false), ZoCodepage::kUtf16};
  if (form == ByteForm::Utf16BigEndian)
    return {fromUtf16(bytes, true), ZoCodepage::kUtf16BigEndian};
  const std::string_view name = markLength == 0 ? namedCodepage(bytes) : std::string_view();
  if (name.empty() && form == ByteForm::Ascii) return {widened(bytes), ZoCodepage::kUtf8};
  if (name.empty() && form != ByteForm::Other) return {fromUtf8(bytes), ZoCodepage::kUtf8};

  const CodepagesInForce codepages;
  Decoded decoded;
  if (!name.empty())
    decoded.knowsCodepage =
        codepages->find(widened(name).c_str(), decoded.codepage) == ZoResult::ok;
  if (name.empty() || !decoded.knowsCodepage) {
    decoded.codepage = ZoCodepage::kUtf8;
    if (form == ByteForm::Other) static_cast<void>(codepages->getDefault(decoded.codepage));
  }
  decoded.text = decoded.codepage == ZoCodepage::kUtf8
                     ? fromUtf8(bytes)
                     : fromCodepage(*codepages, bytes, decoded.codepage);
  return decoded;
}

}  // namespace

std::shared_ptr<const MessageData> readMessages(std::string_view bytes,
                                                std::vector<ZoMessageFault>& faults,
                                                std::wstring_view language) {
  if (bytes.size() > kMaxMessageBytes) {
    faults.push_back({1, 1, ZoMessageFault::kTooLong});
    return nullptr;
  }
  const Decoded decoded = decode(bytes);
  auto data = std::make_shared<MessageData>();
  data->codepage = decoded.codepage;
  MessageParser parser(decoded.text, decoded.knowsCodepage, *data, faults);
  if (!parser.parse()) return nullptr;
  if (data->language.empty()) data->rule = &pluralRule(language);
  return data;
}

}  // namespace zo
