// set and convert: values into files.
#include <cstdint>

#include "value_file.h"
#include "verbs.h"

namespace zoval {
namespace {

// A value in text form ("Length 12.5", "Point (1, 2, 3)"), a whole number, another number; or else
// just the text.
ZoVariant valueOf(const std::wstring& text) {
  const ZoVariant value{ZoString(text)};
  std::int64_t whole = 0;
  double real = 0;
  if (value.get(whole) == 0) {
    const int small = static_cast<int>(whole);
    return small == whole ? ZoVariant(small) : ZoVariant(whole);
  }
  if (value.get(real) == 0) return {real};
  ZoVariant parsed;
  return parsed.parse(text) == 0 ? parsed : value;
}

}  // namespace

bool isToWrite(const ValueFile& file, bool isChange, const Options& options, Report& report) {
  report.json()["changed"] = isChange;
  if (!isChange) report.note({173, "%1 has that value already"}, file.shown);
  if (isChange && options.dryRun) report.note({174, "would change %1"}, file.shown);
  return isChange && !options.dryRun;
}

void keep(ValueFile& file, bool isChange, const Options& options, Report& report) {
  if (!isToWrite(file, isChange, options, report)) return;
  if (const Fault fault = writeValue(file, report)) return tell(fault, report);
  if (options.verbose) report.note({175, "changed %1"}, file.shown);
}

// What is there keeps its type: 13 for a length is a length. Only a value in text form brings its
// own, and what is new has what it is given.
void set(const Options& options, Report& report) {
  ValueFile file;
  const Use use = options.dryRun ? Use::kRead : Use::kChange;
  if (!readValue(options.file, options, file, report, use)) return;
  ZoVariant* const old = file.value.find(options.path);
  ZoVariant parsed;
  const bool isForm = parsed.parse(options.value) == 0;
  ZoVariant next = isForm ? parsed : old ? *old : valueOf(options.value);
  if (!isForm && old && next.set(ZoVariant(ZoString(options.value))) != 0)
    return report.fail(zolib::kUsage,
                       {171, "%1 is no %2; write a value in text form for another type"},
                       options.value, old->printType().view());
  const ZoVariant before = old ? *old : ZoVariant();
  if (file.value.put(options.path, next) != 0)
    return report.fail(zolib::kNotFound, {172, "no way leads to %1 in %2"}, options.path,
                       file.shown);
  keep(file, !old || before != next, options, report);
}

void convert(const Options& options, Report& report) {
  ValueFile file, target;
  const bool isToOutput = options.second == L"-";
  const bool isToFile = !isToOutput && !options.dryRun;
  if (!locate(options.second, options, target, report)) return;
  if (isToFile && !lockFile(target, report)) return;
  if (!readValue(options.file, options, file, report)) return;
  const auto form = options.to.empty() ? formOf(options.second) : formNamed(options.to);
  if (!form) return report.fail(zolib::kUsage, {176, "say the form of %1 by --to"}, options.second);
  report.json()["from"] = nameOf(file.form);
  report.json()["to"] = nameOf(*form);
  if (isToOutput) {
    std::string bytes;
    if (const Fault fault = encode(file.value, *form, bytes)) return tell(fault, report);
    if (options.json && *form != Form::kArchive)
      report.json()["text"] = bytes;
    else if (options.json)
      report.fail(zolib::kUsage, {177, "an archive is no text for --json"});
    else
      report.console().out(bytes);
    return;
  }
  target.value = std::move(file.value);
  target.form = *form;
  target.size = file.size;
  if (options.dryRun) return report.note({178, "would write %1"}, target.shown);
  if (const Fault fault = writeValue(target, report)) return tell(fault, report);
  if (options.verbose) report.note({179, "wrote %1"}, target.shown);
}

}  // namespace zoval
