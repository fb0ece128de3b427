// edit: a value in a window.
#include <zo/dialogs/variant_dialog.h>
#include <zo/system/message.h>
#include <zo/system/registry.h>

#include "text.h"
#include "value_file.h"
#include "verbs.h"

namespace zoval {
namespace {

using zolib::toUtf8;

// The window speaks the user's language where there are message files; else English.
void loadWords() {
  for (const wchar_t* const file : {L"zodialog", L"zotype", L"zoflag"})
    static_cast<void>(ZoSystem::message().load(file, L"zoval"));
}

std::string reasonOf(const ZoDialog& dialog) {
  std::string reason = toUtf8(dialog.errorTxt().view());
  while (!reason.empty() && (reason.back() == '\n' || reason.back() == '\r')) reason.pop_back();
  return reason;
}

}  // namespace

// Others that want to write the file wait or give up until the window is closed.
void edit(const Options& options, Report& report) {
  ValueFile file, other;
  const bool isToBeWritten = !options.readOnly && !options.dryRun;
  if (!readValue(options.file, options, file, report, isToBeWritten ? Use::kChange : Use::kRead))
    return;
  if (!options.second.empty() && !readValue(options.second, options, other, report)) return;
  loadWords();
  ZoVariantDialog dialog(file.value);
  dialog.setTitle(ZoString(zolib::toWide(file.shown + " - zoval")));
  dialog.setReadOnly(options.readOnly);
  if (!options.second.empty()) dialog.compareWith(std::move(other.value));
  const int code = dialog.show();
  if (code == ZoResult::cancelled) {
    if (!options.readOnly) report.cancelled();
    return;
  }
  if (code != ZoResult::ok)
    return report.fail(zolib::kFailed, {184, "cannot show the editor: %1"}, reasonOf(dialog));
  const bool isChange = dialog.value() != file.value;
  file.value = dialog.value();
  keep(file, isChange, options, report);
}

}  // namespace zoval
