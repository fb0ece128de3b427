// diff: what differs between two values.
#include <zo/variant/variant_report.h>

#include "text.h"
#include "value_file.h"
#include "verbs.h"

namespace zoval {
namespace {

using zolib::Json;
using zolib::toUtf8;

Json jsonOf(const ZoVariantChange& change) {
  static constexpr const char* kKinds[] = {"", "added", "removed", "changed"};
  Json json{{"change", kKinds[change.kind]}, {"path", toUtf8(change.path.view())}};
  if (change.kind != ZoVariantChange::kAdded)
    json["before"] = toUtf8(change.before.format().view());
  if (change.kind != ZoVariantChange::kRemoved)
    json["after"] = toUtf8(change.after.format().view());
  return json;
}

}  // namespace

void diff(const Options& options, Report& report) {
  ValueFile before, after;
  if (!readValue(options.file, options, before, report) ||
      !readValue(options.second, options, after, report))
    return;
  ZoVariantReportOptions how;
  how.tol = ZoTol(options.tolerance, options.tolerance);
  how.anyOrder = options.anyOrder;
  how.codes = how.flags = !options.valuesOnly;
  const auto changes = [&] {
    const zolib::Step comparing = report.step(before.size + after.size, {183, "comparing"});
    return ZoVariantReport(before.value, after.value, how);
  }();
  if (!report.goesOn()) return;
  if (!changes.isEmpty()) report.raise(zolib::kWarnings);
  if (!options.json) return report.console().out(toUtf8(changes.asText().view()));
  Json list = Json::array();
  for (const ZoVariantChange& change : changes.changes()) list.push_back(jsonOf(change));
  report.json()["changes"] = std::move(list);
}

}  // namespace zoval
