// A message file with its bytes, faults and what its name says.
#pragma once

#include <zo/messages.h>

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "report.h"
#include "text.h"

namespace zomsg {

using zolib::folded;
using zolib::Report;
using zolib::toUtf8;

// "de", "de-AT", "zh-Hant-TW".
[[nodiscard]] bool isLanguageTag(std::wstring_view tag) noexcept;
// Decimal, or hexadecimal behind 0x, perhaps with a minus in front.
[[nodiscard]] std::optional<int> messageNumber(std::wstring_view text) noexcept;

// "folder/parts.de.msg" in its parts. What stands in front of the extension counts as a language
// when it looks like one of the usual two or three letters: zoresult.library.msg has none.
struct FileParts {
  std::wstring folder;  // with the slash behind it; empty without one
  std::wstring name;
  std::wstring tag;  // empty: NAME.msg

  [[nodiscard]] std::wstring path() const;
};
[[nodiscard]] FileParts partsOf(std::wstring_view path);

// A text by its lines, which are counted from 1.
class Lines {
 public:
  Lines() = default;
  explicit Lines(std::wstring text);

  [[nodiscard]] std::size_t count() const noexcept { return starts_.size(); }
  // Empty when there is no such line.
  [[nodiscard]] std::wstring_view operator[](std::size_t line) const noexcept;

 private:
  std::wstring text_;
  std::vector<unsigned int> starts_;
};

struct MessageFile {
  std::wstring path;  // as the user named it, or its folder
  FileParts parts;
  std::string bytes;
  Lines lines;  // as the library reads the bytes
  ZoMessageMap map;
  std::vector<ZoMessageFault> faults;
  bool isMessageFile = false;
  std::size_t firstId = 0;  // of its first message, counted over all files

  // That its name says, or else the file.
  [[nodiscard]] std::wstring language() const;
  // The number of message i as its line has it: decimal or hexadecimal.
  [[nodiscard]] std::wstring_view numberText(unsigned int i) const;
};
// None of them moves while others are added.
using MessageFiles = std::deque<MessageFile>;

// False for one that cannot be read, which is reported. What is no message file has just its fault.
bool readMessageFile(const std::wstring& path, MessageFile& file, Report& report);
// Adds the message files of a folder, by name.
void readFolder(const std::wstring& path, MessageFiles& files, Report& report);

// "3 messages", "1 message".
std::string counted(std::size_t count, std::string_view noun);

}  // namespace zomsg
