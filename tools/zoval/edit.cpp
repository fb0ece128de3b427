// edit: a value in a window.
#include <zo/dialogs/variant_dialog.h>
#include <zo/system/message.h>
#include <zo/system/registry.h>

#include "say.h"
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

// Writes what the user takes. Where that fails the window says why and stays, with all edits; the
// user may mend it and press OK again, also to replace what another program has put there.
class Keeper {
 public:
  Keeper(ValueFile& file, Report& report) : file_(file), report_(report), before_(file.value) {}

  [[nodiscard]] ZoString take(const ZoVariant& value) {
    fault_.reset();
    if (!isChange(value)) return {};
    file_.value = value;
    fault_ = writeValue(file_, report_);
    if (!fault_) return {};
    std::string reason = fault_->text;
    if (fault_->code == zolib::kLocked && file_.before) {
      acceptPresent(file_);
      reason = zolib::say({187, "%1\n\nOK once more writes it nevertheless"}, reason);
    }
    return ZoString(zolib::toWide(reason));
  }
  [[nodiscard]] bool isChange(const ZoVariant& value) const { return value != before_; }
  // Why the last OK has not written it.
  [[nodiscard]] const Fault& fault() const noexcept { return fault_; }

 private:
  ValueFile& file_;
  Report& report_;
  ZoVariant before_;
  Fault fault_;
};

}  // namespace

// Others that want to write the file wait or give up until the window is closed.
void edit(const Options& options, Report& report) {
  ValueFile file, other;
  const bool isToBeWritten = !options.readOnly && !options.dryRun;
  if (!readValue(options.file, options, file, report, isToBeWritten ? Use::kChange : Use::kRead))
    return;
  if (isToBeWritten && !isWritable(file, report)) return;
  if (!options.second.empty() && !readValue(options.second, options, other, report)) return;
  loadWords();
  Keeper keeper(file, report);
  ZoVariantDialog dialog(file.value);
  dialog.setTitle(ZoString(zolib::toWide(file.shown + " - zoval")));
  dialog.setReadOnly(options.readOnly);
  if (!options.second.empty()) dialog.compareWith(std::move(other.value));
  if (isToBeWritten) dialog.takeBy([&](const ZoVariant& value) { return keeper.take(value); });
  const int code = dialog.show();
  if (keeper.fault()) return tell(keeper.fault(), report);
  if (code == ZoResult::cancelled) {
    if (!options.readOnly) report.cancelled();
    return;
  }
  if (code != ZoResult::ok)
    return report.fail(zolib::kFailed, {184, "cannot show the editor: %1"}, reasonOf(dialog));
  if (isToWrite(file, keeper.isChange(dialog.value()), options, report) && options.verbose)
    report.note({175, "changed %1"}, file.shown);
}

}  // namespace zoval
