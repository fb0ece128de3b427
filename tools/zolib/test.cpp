// test: every member read and compared with its check value, and the structure.

#include "cancel.h"
#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {
namespace {

void testAll(const std::vector<ZoLibEntry>& entries, Session& session, Report& report,
             bool verbose) {
  std::vector<int> codes(entries.size());
  const auto take = [&](std::size_t i) {
    const ZoLibEntry& entry = entries[i];
    const std::string name = toUtf8(entry.name.view());
    session.progress().begin(name, entry.size);
    forgetReason();
    if (codes[i] && !isCancelled()) codes[i] = session->verify(entry);  // alone: for the reason
    if (isCancelled()) {
      report.cancelled();
    } else if (codes[i]) {
      report.member(entry.name.view(), "damaged")["code"] = codes[i];
      report.fail(kDamaged, {400, "%1 is damaged%2"}, name,
                  because(codes[i] == 1000 ? Text{401, "its bytes are not those of its check value"}
                                           : Text{402, "it cannot be read as a whole"}));
    } else {
      report.member(entry.name.view(), entry.isProtected ? "ok" : "unprotected");
      if (!entry.isProtected && !verbose)
        report.note({403, "%1 is unprotected: its maker left no check value"}, name);
    }
    return report.code() != kCancelled;
  };
  inOrder(
      entries.size(), session.crew(),
      [&](std::size_t i) { return std::optional(session.memoryToRead(entries[i])); },
      [&](std::size_t i, unsigned int) { codes[i] = session->verify(entries[i]); }, take, [] {});
}

}  // namespace

void test(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToRead()) return;
  const std::vector<ZoLibEntry> entries =
      session.select(options.deleted ? Session::kBoth : Session::kLive);
  std::uint64_t total = 0;
  for (const ZoLibEntry& entry : entries) total += entry.size;
  session.progress().expect(total);
  testAll(entries, session, report, options.verbose);
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
