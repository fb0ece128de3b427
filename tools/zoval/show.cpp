// show and get: values as text.
#include <zo/xml/json.h>

#include "text.h"
#include "value_file.h"
#include "verbs.h"

namespace zoval {
namespace {

using zolib::toUtf8;

void tell(const ZoVariant& value, const std::string& text, const ValueFile& file,
          const Options& options, Report& report) {
  if (!options.json) return report.console().out(text + "\n");
  zolib::Json& json = report.json();
  json["file"] = file.shown;
  json["form"] = nameOf(file.form);
  json["type"] = toUtf8(value.printType().view());
  json["flags"] = toUtf8(ZoType::flagsToString(value.flags()));
  if (value.asDict() || value.asSequence()) json["entries"] = value.entries();
  json["text"] = text;
  ZoString form;
  if (ZoJson::format(value, form, ZoJson::kCompact) == 0)
    json["value"] = zolib::Json::parse(toUtf8(form.view()));
}

bool formOfValue(const ZoVariant& value, std::string& text, Report& report) {
  if (const Fault fault = encode(value, Form::kText, text)) return tell(fault, report), false;
  text.pop_back();  // its line end
  return true;
}

}  // namespace

void show(const Options& options, Report& report) {
  ValueFile file;
  std::string text;
  if (readValue(options.file, options, file, report) && formOfValue(file.value, text, report))
    tell(file.value, text, file, options, report);
}

// The value alone, for scripts: a text without quotes, a number without its type.
void get(const Options& options, Report& report) {
  ValueFile file;
  if (!readValue(options.file, options, file, report)) return;
  const ZoVariant* const found = file.value.find(options.path);
  if (!found) return report.fail(zolib::kNotFound, {170, "%1 has no %2"}, file.shown, options.path);
  std::string text;
  if (found->asDict() || found->asSequence()) {
    if (!formOfValue(*found, text, report)) return;
  } else {
    text = toUtf8(found->asString().view());
  }
  tell(*found, text, file, options, report);
}

}  // namespace zoval
