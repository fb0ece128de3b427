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
      report.fail(kDamaged, name + " is damaged" +
                                because(code == 1000 ? "its bytes are not those of its check value"
                                                     : "it cannot be read as a whole"));
    } else {
      report.member(entry.name.view(), entry.isProtected ? "ok" : "unprotected");
      if (!entry.isProtected && !options.verbose)
        report.note(name + " is unprotected: its maker left no check value");
    }
  }
  Json& json = report.json();
  for (const char* action : {"ok", "unprotected", "damaged"}) json[action] = report.count(action);
  json["trailingBytes"] = session->trailingBytes();
  session.reportTrailing(kDamaged);
  std::string text = session.name() + ": " + counted(report.count("ok"), "member") + " ok";
  if (report.count("unprotected"))
    text += ", " + std::to_string(report.count("unprotected")) + " unprotected";
  if (report.count("damaged")) text += ", " + std::to_string(report.count("damaged")) + " damaged";
  report.note(text);
}

}  // namespace zolib
