// test: every member read and compared with its check value, and the structure.
#include <algorithm>
#include <optional>
#include <span>

#include "cancel.h"
#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {
namespace {

// Members that one thread verifies at once.
struct Run {
  std::span<const ZoLibEntry> entries;
  std::vector<int> codes;

  [[nodiscard]] std::uint64_t size() const {
    std::uint64_t total = 0;
    for (const ZoLibEntry& entry : entries) total += entry.size;
    return total;
  }
};

std::uint64_t bytesOf(const ZoLibEntry& entry) noexcept {
  return std::max(entry.size, entry.storedSize);
}

// Neighbours together, that nobody waits longer for his turn than for the work; the fewer, the
// less is left, that all threads end at the same time.
std::vector<Run> runsOf(std::span<const ZoLibEntry> entries, unsigned int threads) {
  constexpr std::size_t kMost = 256;
  constexpr std::uint64_t kLeast = 64 << 10, kLargest = 1 << 20;  // bytes
  std::uint64_t left = 0;
  for (const ZoLibEntry& entry : entries) left += bytesOf(entry);
  std::vector<Run> runs;
  while (!entries.empty()) {
    const std::uint64_t share = std::clamp(left / threads / 8, kLeast, kLargest);
    std::size_t count = 0;
    for (std::uint64_t bytes = 0; count < std::min(entries.size(), kMost); ++count) {
      bytes += bytesOf(entries[count]);
      if (count > 0 && bytes > share) break;
      left -= bytesOf(entries[count]);
    }
    runs.push_back({entries.first(count), {}});
    entries = entries.subspan(count);
  }
  return runs;
}

class Tester {
 public:
  Tester(Session& session, Report& report, bool verbose)
      : session_(session), report_(report), verbose_(verbose) {}

  // False when it was cancelled.
  bool testAll(const std::vector<ZoLibEntry>& entries) {
    std::vector<Run> runs = runsOf(entries, session_.crew().threads);
    const auto memoryFor = [&](std::size_t i) {
      std::uint64_t memory = 0;
      for (const ZoLibEntry& entry : runs[i].entries)
        memory = std::max(memory, Session::memoryToRead(entry));
      return std::optional(memory);
    };
    const auto verify = [&](std::size_t i, unsigned int) {
      static_cast<void>(session_->verify(runs[i].entries, runs[i].codes));  // each has its own
    };
    inOrder(
        runs.size(), session_.crew(), memoryFor, verify,
        [&](std::size_t i) { return tell(runs[i]); }, [] {});
    return report_.code() != kCancelled;
  }

 private:
  bool tell(const Run& run) {
    if (session_.progress().isShown())
      session_.progress().begin(toUtf8(run.entries[0].name.view()), run.size());
    for (std::size_t i = 0; i < run.entries.size() && report_.code() != kCancelled; ++i)
      tell(run.entries[i], run.codes[i]);
    return report_.code() != kCancelled;
  }

  void tell(const ZoLibEntry& entry, int code) {
    const std::wstring_view name = entry.name.view();
    if (code && !isCancelled())
      code = session_.readAgain(
          entry, [&](const ZoLibEntry& now) { return session_->verify(now); });  // for the reason
    if (isCancelled()) {
      report_.cancelled();
    } else if (code == Session::kGone) {
      tellGone(session_, report_, name);
    } else if (code) {
      report_.member(name, "damaged")["code"] = code;
      report_.fail(kDamaged, {400, "%1 is damaged%2"}, name,
                   because(code == 1000 ? Text{401, "its bytes are not those of its check value"}
                                        : Text{402, "it cannot be read as a whole"}));
    } else {
      report_.member(name, entry.isProtected ? "ok" : "unprotected");
      if (!entry.isProtected && !verbose_)
        report_.note({403, "%1 is unprotected: its maker left no check value"}, name);
    }
  }

  Session& session_;
  Report& report_;
  bool verbose_;
};

}  // namespace

void test(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToRead()) return;
  const Session::Which which = options.deleted ? Session::kBoth : Session::kLive;
  session.progress().expect(session.totalSize(which));
  Tester tester(session, report, options.verbose);
  session.forPieces(
      which, [&](const std::vector<ZoLibEntry>& entries) { return tester.testAll(entries); });
  Json& json = report.json();
  for (const char* action : {"ok", "unprotected", "damaged"}) json[action] = report.count(action);
  json["trailingBytes"] = session->trailingBytes();
  session.reportTrailing(kDamaged);
  std::string text =
      say({404, "%1: %{?2 1 member|%2 members} ok"}, session.name(), report.count("ok"));
  if (const std::size_t count = report.count("unprotected"))
    text += say({405, ", %1 unprotected"}, count);
  if (const std::size_t count = report.count("damaged")) text += say({406, ", %1 damaged"}, count);
  report.note(text);
}

}  // namespace zolib
