// test: every member read and compared with its check value, and the structure.

#include "cancel.h"
#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {

void test(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToRead()) return;
  const std::vector<ZoLibEntry> entries =
      session.select(options.deleted ? Session::kBoth : Session::kLive);
  std::uint64_t total = 0;
  for (const ZoLibEntry& entry : entries) total += entry.size;
  session.progress().expect(total);
  for (const ZoLibEntry& entry : entries) {
    if (report.code() == kCancelled) break;
    const std::string name = toUtf8(entry.name.view());
    session.progress().begin(name, entry.size);
    forgetReason();
    const int code = session->verify(entry);
    if (isCancelled()) {
      report.cancelled();
    } else if (code) {
      report.member(entry.name.view(), "damaged")["code"] = code;
      report.fail(kDamaged, {400, "%1 is damaged%2"}, name,
                  because(code == 1000 ? Text{401, "its bytes are not those of its check value"}
                                       : Text{402, "it cannot be read as a whole"}));
    } else {
      report.member(entry.name.view(), entry.isProtected ? "ok" : "unprotected");
      if (!entry.isProtected && !options.verbose)
        report.note({403, "%1 is unprotected: its maker left no check value"}, name);
    }
  }
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
