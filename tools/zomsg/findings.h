// What a check has found, and telling it.
#pragma once

#include <string>
#include <vector>

#include "message_file.h"
#include "options.h"

namespace zomsg {

enum class Level { kWarning, kError };

struct Finding {
  const MessageFile* file;
  unsigned int line;
  unsigned int column;  // 0 for a message as a whole
  Level level;
  const char* kind;  // one word, for programs
  std::string text;
};

class Findings {
 public:
  void add(Finding finding) { all_.push_back(std::move(finding)); }
  // About message i of a file.
  void add(const MessageFile& file, unsigned int i, Level level, const char* kind,
           std::string text) {
    all_.push_back({&file, file.map.line(i), 0, level, kind,
                    toUtf8(file.numberText(i)) + " " + std::move(text)});
  }

  // All of them by file and line, as lines or as "findings"; then how many there are. Sets the exit
  // code.
  void tell(const MessageFiles& files, const Options& options, Report& report);

 private:
  std::vector<Finding> all_;
};

}  // namespace zomsg
