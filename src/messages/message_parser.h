// Reads the text of a message file. Needs no platform.
#pragma once

#include <zo/messages/message_fault.h>

#include <string>
#include <string_view>
#include <vector>

#include "messages/message_data.h"

namespace zo {

inline constexpr unsigned int kMaxMessageLength = 65536;
inline constexpr unsigned int kMaxMessageFaults = 1000;
// Stands in a decoded text for bytes that are no text.
inline constexpr wchar_t kNoCharacter = 0xFFFD;

// "de", "de-AT", "zh-Hant-TW": letters and digits in groups of 1 to 8.
[[nodiscard]] bool isLanguageTag(std::wstring_view tag) noexcept;

class MessageParser {
 public:
  // Both outlive the parser; data comes empty. `knowsCodepage`: what a line "@codepage" says was
  // heeded.
  MessageParser(std::wstring_view text, bool knowsCodepage, MessageData& data,
                std::vector<ZoMessageFault>& faults)
      : rest_(text), knowsCodepage_(knowsCodepage), data_(data), faults_(faults) {}

  // False when it is no message file.
  bool parse();

 private:
  // A stretch of a text that stands in the file as it is.
  struct Stretch {
    std::size_t offset;  // in the text
    unsigned int line, column;
  };

  bool nextLine();
  [[nodiscard]] bool skipBlanks() noexcept;
  [[nodiscard]] std::wstring_view takeWord() noexcept;
  [[nodiscard]] unsigned int column() const noexcept;
  void fault(ZoMessageFault::Reason reason, unsigned int line, unsigned int column);
  void fault(ZoMessageFault::Reason reason) { fault(reason, line_, column()); }

  bool parseHead();
  void parseDirective();
  void parseMessage();
  bool takeContinuation() noexcept;
  bool unescape();
  bool unescapeOne();
  bool checkMarks(std::wstring_view text);
  void markFault(ZoMessageFault::Reason reason, std::size_t offset);
  void finish();

  std::wstring_view rest_;          // behind the line
  std::wstring_view whole_, left_;  // the line, and what is left of it
  unsigned int line_ = 0;
  bool knowsCodepage_;
  MessageData& data_;
  std::vector<ZoMessageFault>& faults_;
  std::size_t start_ = 0;  // of the text that is read, in data_.texts
  std::vector<Stretch> stretches_;
};

}  // namespace zo
