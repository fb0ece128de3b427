// The three streams of the tool. Data goes to standard output, talk to standard error; a status
// line stands on a terminal only, and goes before anything else is said there.
//
// A terminal is written to in UTF-16, anything else in UTF-8.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace zolib {

class Console {
 public:
  Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;
  ~Console();  // flushes

  // Text, or any bytes when standard output is no terminal. Collected, and written in large pieces.
  void out(std::string_view utf8);
  // A line of text. On a terminal its control characters are shown as "?": in a name they could do
  // whatever the terminal can.
  void line(std::string_view utf8);
  // Whether all of it could be written so far.
  bool flush();
  [[nodiscard]] bool outputFailed() const noexcept { return error_ != ERROR_SUCCESS; }
  [[nodiscard]] DWORD outputError() const noexcept { return error_; }
  // Whether that was because nobody reads it any more, as behind "| head".
  [[nodiscard]] bool readerLeft() const noexcept;

  // The same to standard error.
  void err(std::string_view utf8);
  [[nodiscard]] bool errIsTerminal() const noexcept { return errIsTerminal_; }
  // Replaces the status line, an empty text removes it. Nothing without a terminal.
  void status(std::string_view utf8);

 private:
  static bool write(HANDLE stream, bool terminal, std::string_view utf8);

  HANDLE out_, err_;
  bool outIsTerminal_, errIsTerminal_;
  DWORD error_ = ERROR_SUCCESS;  // of the first write that failed
  std::size_t statusLength_ = 0;
  std::string pending_;
};

[[nodiscard]] bool inputIsTyped();
// Reads up to `size` bytes from standard input, at least 4; 0 at its end. False for a failure, and
// when the program was cancelled: then it does not wait any longer. What is typed on a terminal
// comes as UTF-8, and ends with Ctrl-D or Ctrl-Z; Ctrl-C cancels. For one thread.
bool readInput(void* buffer, DWORD size, DWORD& got);

}  // namespace zolib
