// list: the table of members.
#include <algorithm>
#include <map>
#include <utility>

#include "names.h"
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

State stateOf(const ZoLibEntry& entry) noexcept {
  if (entry.isDeleted()) return kDeletedState;
  if (entry.isHidden) return kHiddenState;  // another member of the name comes first
  return entry.isProtected ? kOkState : kUnprotectedState;
}

// A line of the table; with --versions the entry's number stands in front.
struct Row {
  std::string_view number, size, packed, ratio, modified, mode, state, name;

  void appendTo(std::string& line, bool withNumber) const {
    if (withNumber) appendRight(line, number, 6);
    appendRight(line, size, 11);
    appendRight(line, packed, 11);
    appendRight(line, ratio, 5);
    appendLeft(line, modified, 16);
    appendLeft(line, mode, 6);
    appendLeft(line, state, 11);
    line.append(name);
  }
};

Json toJson(const ZoLibEntry& entry) {
  return {{"name", toUtf8(entry.name.view())},
          {"size", entry.size},
          {"packed", entry.storedSize},
          {"modified", isoTime(entry.written)},
          {"created", isoTime(entry.created)},
          {"accessed", isoTime(entry.accessed)},
          {"mode", modeText(entry)},
          {"state", kStates[stateOf(entry)]},
          {"number", entry.number},
          {"entry", entry.ordinal},
          {"position", entry.position}};
}

// What members, or those of a folder, are together.
struct Sum {
  std::uint64_t members = 0, size = 0, packed = 0;
  std::string name;

  void add(const ZoLibEntry& entry) noexcept {
    ++members;
    size += entry.size;
    packed += entry.storedSize;
  }
};

class Listing {
 public:
  Listing(const Options& options, Report& report) : options_(options), report_(report) {}

  void head() {
    if (isTable() && !options_.quiet)
      line({say({448, "ENTRY"}), say({440, "SIZE"}), say({441, "PACKED"}), say({442, "RATIO"}),
            say({443, "MODIFIED"}), say({444, "MODE"}), say({445, "STATE"}), say({446, "NAME"})});
  }

  void add(const ZoLibEntry& entry) {
    all_.add(entry);
    if (options_.folders) return addToFolders(entry);
    if (options_.json) {
      members_.push_back(toJson(entry));
      return;
    }
    toUtf8(entry.name.view(), name_);
    if (options_.namesOnly) {
      report_.console().line(name_);
    } else {
      line({"@" + std::to_string(entry.ordinal), std::to_string(entry.size),
            std::to_string(entry.storedSize), ratioText(entry.storedSize, entry.size),
            localTime(entry.written), modeText(entry), states_[stateOf(entry)], name_});
    }
  }

  void end() {
    if (options_.folders) endFolders();
    if (isTable() && !options_.quiet) sum(all_, {});
    if (!options_.json) return;
    report_.json()[options_.folders ? "folders" : "members"] = std::move(members_);
    report_.json()["size"] = all_.size;
    report_.json()["packed"] = all_.packed;
  }

 private:
  [[nodiscard]] bool isTable() const noexcept { return !options_.json && !options_.namesOnly; }
  void line(const Row& row) {
    line_.clear();
    row.appendTo(line_, options_.versions);
    report_.console().line(line_);
  }

  void sum(const Sum& sum, const std::string& folder) {
    const std::string count = say({447, "%{?1 1 member|%1 members}"}, sum.members);
    const std::string name = folder.empty() ? count : folder + "  " + count;
    line({"", std::to_string(sum.size), std::to_string(sum.packed), ratioText(sum.packed, sum.size),
          "", "", "", name});
  }

  // To each folder that it lies in.
  void addToFolders(const ZoLibEntry& entry) {
    std::wstring_view folder = folderOf(entry.name.view());
    for (; !folder.empty(); folder = folderOf(folder)) {
      Sum& sum = folders_[folded(folder)];
      if (!sum.members) sum.name = toUtf8(folder) + "/";
      sum.add(entry);
    }
  }

  void endFolders() {
    std::vector<const Sum*> sorted;
    for (const auto& [key, folder] : folders_) sorted.push_back(&folder);
    if (options_.sort == Sort::kSize) std::ranges::stable_sort(sorted, {}, &Sum::size);
    if (options_.sort == Sort::kPacked) std::ranges::stable_sort(sorted, {}, &Sum::packed);
    for (const Sum* const each : sorted) {
      const Sum& folder = *each;
      if (options_.json)
        members_.push_back({{"name", folder.name},
                            {"members", folder.members},
                            {"size", folder.size},
                            {"packed", folder.packed}});
      else
        sum(folder, folder.name);
    }
  }

  const Options& options_;
  Report& report_;
  std::string name_, line_;  // there may be a million
  Sum all_;
  std::map<std::wstring, Sum> folders_;  // by folded name
  Json members_ = Json::array();
  const std::string states_[4] = {say({73, "ok"}), say({75, "unprotected"}), say({65, "deleted"}),
                                  say({70, "hidden"})};
};

// By a key that is made once of each.
template <class Key>
void sortBy(std::vector<ZoLibEntry>& entries, const Key& key) {
  std::vector<std::pair<decltype(key(entries[0])), std::size_t>> order;  // with the place
  order.reserve(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) order.emplace_back(key(entries[i]), i);
  std::ranges::sort(order);
  std::vector<ZoLibEntry> sorted;
  sorted.reserve(entries.size());
  for (const auto& [made, place] : order) sorted.push_back(std::move(entries[place]));
  entries = std::move(sorted);
}

std::vector<ZoLibEntry> sorted(std::vector<ZoLibEntry> entries, Sort sort) {
  switch (sort) {
    case Sort::kFile:
      break;
    case Sort::kName:
      sortBy(entries, [](const ZoLibEntry& entry) { return folded(entry.name.view()); });
      break;
    case Sort::kSize:
      sortBy(entries, [](const ZoLibEntry& entry) { return entry.size; });
      break;
    case Sort::kPacked:
      sortBy(entries, [](const ZoLibEntry& entry) { return entry.storedSize; });
      break;
    case Sort::kTime:
      sortBy(entries, [](const ZoLibEntry& entry) { return ticks(entry.written); });
      break;
  }
  return entries;
}

}  // namespace

void list(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToRead()) return;
  const bool all = options.deleted || options.versions;
  const Session::Which which = all ? Session::kBoth : Session::kLive;
  Listing listing(options, report);
  listing.head();
  const auto add = [&](const ZoLibEntry& entry) {
    listing.add(entry);
    return !report.console().outputFailed();
  };
  if (options.sort == Sort::kFile) {
    session.forEach(which, add);
  } else {
    for (const ZoLibEntry& entry : sorted(session.select(which), options.sort))
      if (!add(entry)) break;
  }
  listing.end();
  session.reportTrailing(kWarnings);
}

}  // namespace zolib
