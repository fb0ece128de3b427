// list: the table of members.
#include <algorithm>

#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {
namespace {

const char* modeText(const ZoLibEntry& entry) noexcept {
  if (!entry.isCompressed()) return "store";
  return entry.mode == ZoLibrary::kFast   ? "fast"
         : entry.mode == ZoLibrary::kBest ? "best"
                                          : "normal";
}

// Which of kStates; in JSON the word itself.
enum State : unsigned int { kOkState, kUnprotectedState, kDeletedState, kHiddenState };
constexpr const char* kStates[] = {"ok", "unprotected", "deleted", "hidden"};

State stateOf(const ZoLibEntry& entry, bool hidden) noexcept {
  if (entry.isDeleted()) return kDeletedState;
  if (hidden) return kHiddenState;  // another member of the name comes first
  return entry.isProtected ? kOkState : kUnprotectedState;
}

std::string row(std::string_view size, std::string_view packed, std::string_view ratio,
                std::string_view modified, std::string_view mode, std::string_view state,
                std::string_view name) {
  std::string line;
  line.reserve(80 + name.size());
  appendRight(line, size, 11);
  appendRight(line, packed, 11);
  appendRight(line, ratio, 5);
  appendLeft(line, modified, 16);
  appendLeft(line, mode, 6);
  appendLeft(line, state, 11);
  return line.append(name);
}

Json toJson(const ZoLibEntry& entry, bool hidden) {
  return {{"name", toUtf8(entry.name.view())},
          {"size", entry.size},
          {"packed", entry.storedSize},
          {"modified", isoTime(entry.written)},
          {"created", isoTime(entry.created)},
          {"accessed", isoTime(entry.accessed)},
          {"mode", modeText(entry)},
          {"state", kStates[stateOf(entry, hidden)]},
          {"number", entry.number},
          {"position", entry.position}};
}

}  // namespace

void list(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToRead()) return;
  const std::vector<ZoLibEntry> entries =
      session.select(options.deleted ? Session::kBoth : Session::kLive);
  const std::vector<bool> hidden = Session::hidden(entries);
  Console& console = report.console();
  const bool table = !options.json && !options.namesOnly;
  if (table && !options.quiet)
    console.line(row(say({440, "SIZE"}), say({441, "PACKED"}), say({442, "RATIO"}),
                     say({443, "MODIFIED"}), say({444, "MODE"}), say({445, "STATE"}),
                     say({446, "NAME"})));
  const std::string states[] = {say({73, "ok"}), say({75, "unprotected"}), say({65, "deleted"}),
                                say({70, "hidden"})};
  std::uint64_t size = 0, packed = 0;
  Json members = Json::array();
  for (std::size_t i = 0; i < entries.size() && !console.outputFailed(); ++i) {
    const ZoLibEntry& entry = entries[i];
    size += entry.size;
    packed += entry.storedSize;
    if (options.json) {
      members.push_back(toJson(entry, hidden[i]));
    } else if (options.namesOnly) {
      console.line(toUtf8(entry.name.view()));
    } else {
      console.line(row(std::to_string(entry.size), std::to_string(entry.storedSize),
                       ratioText(entry.storedSize, entry.size), localTime(entry.written),
                       modeText(entry), states[stateOf(entry, hidden[i])],
                       toUtf8(entry.name.view())));
    }
  }
  if (table && !options.quiet)
    console.line(row(std::to_string(size), std::to_string(packed), ratioText(packed, size), "", "",
                     "", say({447, "%{?1 1 member|%1 members}"}, entries.size())));
  if (options.json) {
    report.json()["members"] = std::move(members);
    report.json()["size"] = size;
    report.json()["packed"] = packed;
  }
  session.reportTrailing(kWarnings);
}

}  // namespace zolib
