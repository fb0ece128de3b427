// Makes the text that a user sees of a message: puts texts in the place of references, and
// arguments and forms by number in theirs. Needs no platform.
#pragma once

#include <array>
#include <cstddef>
#include <memory_resource>
#include <string>
#include <string_view>
#include <vector>

#include "messages/markup.h"
#include "messages/plural_rules.h"

namespace zo {

inline constexpr unsigned int kMaxReferences = 16;      // open in one another
inline constexpr std::size_t kMaxExpanded = 65536;      // units of the result
inline constexpr std::size_t kMaxExpandRead = 1048576;  // units of messages read for it

// What a text is collected in: of most of them in memory of the look-up's own.
using ExpandedText = std::pmr::wstring;

struct FoundMessage {
  std::wstring_view text;
  std::wstring_view file;  // where it stands
  const PluralRule* rule;
};

// Where references lead.
class MessageSource {
 public:
  virtual ~MessageSource() = default;
  // False when there is no such message. What is found stays as it is while the source is used.
  [[nodiscard]] virtual bool find(std::wstring_view file, unsigned int number,
                                  FoundMessage& found) const = 0;
};

// What stands for %1, %2, ..., counted from 1.
class MessageArguments {
 public:
  virtual ~MessageArguments() = default;
  [[nodiscard]] virtual bool has(unsigned int number) const = 0;
  // Appends it.
  virtual void print(unsigned int number, ExpandedText& out) const = 0;
  [[nodiscard]] virtual PluralNumber numberOf(unsigned int number) const = 0;
};

class MessageExpander {
 public:
  // Null arguments: their places stay as they are written, and nothing is missing.
  MessageExpander(const MessageSource& source, const MessageArguments* arguments,
                  ExpandedText& out) noexcept
      : source_(source), arguments_(arguments), out_(out) {}

  // Appends the text. False when something in it could not be filled in.
  bool expand(const FoundMessage& message);

 private:
  // A plural that is open: which form is wanted, and which one the reader is in.
  struct Level {
    unsigned int wanted, current;
  };

  void run(const FoundMessage& message);
  void place(const MarkupReader::Piece& piece, const FoundMessage& message, MarkupReader& reader,
             std::vector<Level>& levels);
  void argument(const MarkupReader::Piece& piece);
  void reference(const MarkupReader::Piece& piece, const FoundMessage& message);
  void plural(const MarkupReader::Piece& piece, const FoundMessage& message, MarkupReader& reader,
              std::vector<Level>& levels);
  void append(std::wstring_view text);
  void cut();
  [[nodiscard]] bool isOpen(const FoundMessage& message) const noexcept;

  const MessageSource& source_;
  const MessageArguments* arguments_;
  ExpandedText& out_;
  std::size_t read_ = 0;
  bool complete_ = true;
  bool full_ = false;  // something was cut off
  // The texts that are being read, each at a place of its own.
  unsigned int depth_ = 0;
  std::array<const wchar_t*, kMaxReferences> open_{};
};

}  // namespace zo
