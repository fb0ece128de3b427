#include "findings.h"

#include <algorithm>
#include <tuple>

namespace zomsg {
namespace {

std::string lineOf(const Finding& finding) {
  std::string text = toUtf8(finding.file->path) + ":" + std::to_string(finding.line) + ":";
  if (finding.column) text += std::to_string(finding.column) + ":";
  return text + (finding.level == Level::kError ? " error: " : " warning: ") + finding.text + "\n";
}

zolib::Json jsonOf(const Finding& finding) {
  zolib::Json json{{"file", toUtf8(finding.file->path)}, {"line", finding.line}};
  if (finding.column) json["column"] = finding.column;
  json["level"] = finding.level == Level::kError ? "error" : "warning";
  json["kind"] = finding.kind;
  json["text"] = finding.text;
  return json;
}

}  // namespace

void Findings::tell(const MessageFiles& files, const Options& options, Report& report) {
  std::ranges::stable_sort(all_, {}, [](const Finding& each) {
    return std::tuple(each.file->firstId, folded(each.file->path), each.line, each.column);
  });
  zolib::Json& json = report.json();
  json["findings"] = zolib::Json::array();
  std::size_t errors = 0;
  for (const Finding& finding : all_) {
    errors += finding.level == Level::kError;
    if (options.json)
      json["findings"].push_back(jsonOf(finding));
    else
      report.console().out(lineOf(finding));
  }
  std::size_t messages = 0;
  for (const MessageFile& file : files) messages += file.map.entries();
  const std::size_t warnings = all_.size() - errors;
  json["files"] = files.size();
  json["count"] = messages;
  json["errors"] = errors;
  json["warnings"] = warnings;
  if (errors) report.raise(zolib::kDamaged);
  if (warnings && options.strict) report.raise(zolib::kWarnings);
  report.note(counted(files.size(), "file") + ", " + counted(messages, "message") + ": " +
              counted(errors, "error") + ", " + counted(warnings, "warning"));
}

}  // namespace zomsg
