// What all dialogs promise, tried with each of them: taken, cancelled, an owner that is gone, no
// display, guards free while the user thinks, something to see, and answers in the user's place.
#include <gtest/gtest.h>
#include <zo/dialogs.h>
#include <zo/system/cfg.h>
#include <zo/system/message.h>

#include <memory>
#include <optional>
#include <ostream>

#include "dialogs/dialog_fixture.h"
#include "dialogs/editor_user.h"

namespace {

using zo::test::DialogUser;

std::wstring number(double value) { return ZoVariant(value).asString().data(); }

std::wstring valueOf(ZoDialog& dialog) {
  if (auto* const box = dynamic_cast<ZoMessageBox*>(&dialog)) return std::to_wstring(box->button());
  if (auto* const task = dynamic_cast<ZoTaskDialog*>(&dialog))
    return std::to_wstring(task->button()) + (task->isTicked() ? L" ticked" : L"");
  if (auto* const files = dynamic_cast<ZoFileDialog*>(&dialog)) {
    std::wstring names;
    for (const ZoFileName& name : files->files())
      names += (names.empty() ? L"" : L" ") + std::wstring(name.fileNameExt());
    return names;
  }
  if (auto* const folder = dynamic_cast<ZoFolderDialog*>(&dialog))
    return std::filesystem::path(std::wstring(folder->folder().view())).parent_path().filename();
  if (auto* const color = dynamic_cast<ZoColorDialog*>(&dialog))
    return color->color().toString().data();
  if (auto* const font = dynamic_cast<ZoFontDialog*>(&dialog))
    return number(font->font().points) + (font->font().italic ? L" italic " : L" ") +
           std::to_wstring(font->font().weight);
  if (auto* const print = dynamic_cast<ZoPrintDialog*>(&dialog))
    return std::to_wstring(print->copies()) + L" from " + std::to_wstring(print->fromPage());
  if (auto* const variant = dynamic_cast<ZoVariantDialog*>(&dialog))
    return variant->value().text(L"length").data();
  auto& page = dynamic_cast<ZoPageSetupDialog&>(dialog);
  return number(page.width().asReal()) + L"x" + number(page.height().asReal()) + L" left " +
         number(page.margins().left.asReal());
}

struct Case {
  const char* name;
  std::function<std::unique_ptr<ZoDialog>(const std::wstring& folder)> make;
  std::function<void(HWND)> enter;  // what the user does before OK
  int ok;                           // the button
  std::wstring before, after;
};

void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }

template <class Dialog, class... Arguments>
auto make(Arguments... arguments) {
  auto dialog = std::make_unique<Dialog>(std::move(arguments)...);
  dialog->setTitle(std::wstring(L"Title \u00DC"));
  return dialog;
}

template <ZoFileDialog::Kind kind>
std::unique_ptr<ZoDialog> makeFileDialog(const std::wstring& folder) {
  auto dialog = make<ZoFileDialog>(kind);
  dialog->addFilter(ZoFileName::kVal);
  dialog->addFilter(ZoFileName::kAnyFile);
  dialog->setFile(ZoFileName(folder + L"\\old.val"));
  return dialog;
}

std::function<void(HWND)> typeName(const wchar_t* name) {
  return [name](HWND dialog) { DialogUser::typeName(dialog, name); };
}

int CALLBACK takeScalable(const LOGFONTW* font, const TEXTMETRICW*, DWORD type, LPARAM face) {
  if (type != TRUETYPE_FONTTYPE || font->lfFaceName[0] == L'@') return 1;
  *reinterpret_cast<ZoString*>(face) = font->lfFaceName;
  return 0;
}

ZoString installedFace() {
  ZoString face;
  LOGFONTW any = {};
  any.lfCharSet = ANSI_CHARSET;
  HDC const screen = GetDC(nullptr);
  EnumFontFamiliesExW(screen, &any, takeScalable, reinterpret_cast<LPARAM>(&face), 0);
  ReleaseDC(nullptr, screen);
  return face;
}

const Case kCases[] = {
    {"message_box",
     [](auto&) {
       return make<ZoMessageBox>(std::wstring(L"Replace?"), ZoMessageBox::kYesNoCancel);
     },
     {},
     IDNO,
     L"0",
     L"7"},
    {"message_box_to_tick",
     [](auto&) {
       auto box = make<ZoMessageBox>(L"Replace?", ZoMessageBox::kOkCancel, ZoMessageBox::kWarning);
       box->remember(L"test");
       return box;
     },
     {},
     IDOK,
     L"0",
     L"1"},
    {"task_dialog",
     [](auto&) {
       auto task = make<ZoTaskDialog>(ZoString(L"Replace the part?"));
       task->setText(L"There is one of that name.");
       task->setDetails(L"bolt.dwg");
       task->setIcon(ZoMessageBox::kWarning);
       EXPECT_EQ(task->addButton(100, L"Replace\nThe old one is lost."), 0);
       EXPECT_EQ(task->addButton(101, L"Keep both"), 0);
       task->setLinks(true);
       task->setTick(L"For all parts", true);
       return task;
     },
     {},
     101,
     L"0 ticked",
     L"101 ticked"},
    {"file_open", makeFileDialog<ZoFileDialog::kOpen>, typeName(L"a.val"), IDOK, L"old.val",
     L"a.val"},
    {"file_open_several", makeFileDialog<ZoFileDialog::kOpenSeveral>,
     typeName(L"\"a.val\" \"b.val\""), IDOK, L"old.val", L"a.val b.val"},
    {"file_save", makeFileDialog<ZoFileDialog::kSave>, typeName(L"new"), IDOK, L"old.val",
     L"new.val"},
    {"folder", [](const std::wstring& folder) { return make<ZoFolderDialog>(ZoFileName(folder)); },
     typeName(L"inner"), IDOK, L"", L"inner"},
    {"color", [](auto&) { return make<ZoColorDialog>(ZoColor(ZoColor::kMagenta)); },
     [](HWND dialog) {
       constexpr int kRed = 706;
       for (int i = 0; i < 3; ++i) DialogUser::type(dialog, kRed + i, std::to_wstring(10 + i));
     },
     IDOK, L"magenta", L"#0A0B0C"},
    {"font",
     [](auto&) { return make<ZoFontDialog>(ZoFont{installedFace(), 12, 700, true}); },
     {},
     IDOK,
     L"12 italic 700",
     L"12 italic 700"},
    {"print",
     [](auto&) {
       auto print = make<ZoPrintDialog>();
       EXPECT_EQ(print->setPages(1, 20), 0);
       EXPECT_EQ(print->setRange(ZoPrintDialog::kPages, 3, 4), 0);
       return print;
     },
     [](HWND dialog) {
       constexpr int kCopies = 1154;
       DialogUser::type(dialog, kCopies, L"5");
     },
     IDOK, L"1 from 3", L"5 from 3"},
    {"page_setup",
     [](auto&) {
       auto page = make<ZoPageSetupDialog>();
       EXPECT_EQ(page->setPaper(279.4, 215.9), 0);
       return page;
     },
     [](HWND dialog) {
       constexpr int kLeft = 1155;
       DialogUser::type(dialog, kLeft, L"30");
     },
     IDOK, L"279.4x215.9 left 25", L"279.4x215.9 left 30"},
    {"variant", [](auto&) { return make<ZoVariantDialog>(zo::test::part()); },
     [](HWND dialog) {
       const zo::test::EditorUser user(dialog);
       user.select(L"length");
       user.command(zo::kEditorEdit);
       user.type(zo::kEditorField, L"2 in");
     },
     IDOK, L"12", L"50.8"},
};

class EveryDialog : public zo::test::DialogTest, public testing::WithParamInterface<Case> {
 protected:
  EveryDialog() {
    const std::string name = GetParam().name;
    if (name == "print" || name == "page_setup") printers_.emplace().add();
  }
  [[nodiscard]] std::unique_ptr<ZoDialog> made() { return GetParam().make(folder()); }

 private:
  std::optional<zo::test::Printers> printers_;
};
INSTANTIATE_TEST_SUITE_P(Dialogs, EveryDialog, testing::ValuesIn(kCases),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(EveryDialog, IsTakenOrCancelledWhileAllGuardsAreFree) {
  const Case& c = GetParam();
  const std::wstring start = std::filesystem::current_path();
  for (const bool isTaken : {false, true}) {
    const auto dialog = made();
    const std::wstring before = valueOf(*dialog);
    const bool asks = dynamic_cast<ZoVariantDialog*>(dialog.get()) != nullptr;  // before it is left
    int code = 0;
    DialogUser user([&](HWND window) {
      expectGuardsFree();
      if (!isTaken) expectPicture(window, c.name);
      if (c.enter && (isTaken || !asks)) c.enter(window);
      DialogUser::press(window, isTaken ? c.ok : IDCANCEL);
    });
    code = dialog->show();
    EXPECT_EQ(user.shown(), 1);
    EXPECT_EQ(code, isTaken ? ZoResult::ok : ZoResult::cancelled) << dialog->errorTxt().toUtf8();
    if (isTaken && !c.after.empty()) {
      EXPECT_EQ(valueOf(*dialog), c.after);
    }
    if (!isTaken && !dynamic_cast<ZoMessageBox*>(dialog.get()) &&
        !dynamic_cast<ZoTaskDialog*>(dialog.get())) {
      EXPECT_EQ(valueOf(*dialog), before);
    }
    EXPECT_EQ(user.title(), dialog->title().data());
  }
  EXPECT_EQ(std::filesystem::current_path(), start);
}

TEST_P(EveryDialog, SaysWhyItIsNotShown) {
  const auto dialog = made();
  const std::wstring before = valueOf(*dialog);
  EXPECT_EQ(dialog->show(deadWindow()), ZoResult::noOwner);
  {
    const zo::test::NoWindows none;
    EXPECT_EQ(dialog->show(), ZoResult::notShown);
  }
  const std::wstring reason(dialog->errorTxt().view());
  ASSERT_FALSE(reason.empty());
  EXPECT_GT(reason.back(), L' ') << "no line break";
  EXPECT_EQ(reason.find(L"handle"), std::wstring::npos) << dialog->errorTxt().toUtf8();
  EXPECT_EQ(valueOf(*dialog), before);
}

TEST_P(EveryDialog, IsAnsweredWithoutAUser) {
  const auto dialog = made();
  ZoDialog* asked = nullptr;
  const auto before = ZoDialogs::setAnswer([&](ZoDialog& which) {
    asked = &which;
    return ZoResult::cancelled;
  });
  EXPECT_FALSE(before);
  const zo::test::NoWindows none;
  EXPECT_EQ(dialog->show(deadWindow()), ZoResult::cancelled);
  EXPECT_EQ(asked, dialog.get());
  ZoDialogs::setAnswer([](ZoDialog&) { return ZoDialogs::kAsk; });
  EXPECT_EQ(dialog->show(), ZoResult::notShown);
  EXPECT_TRUE(ZoDialogs::setAnswer({}));
}

using OneDialog = zo::test::DialogTest;
TEST_F(OneDialog, IsNotTakenByAnAnswerWhereThereIsNothingToTake) {
  ZoMessageBox box(L"?");
  ZoTaskDialog task(L"?");
  ZoFileDialog files;
  ZoFolderDialog folder;
  ZoColorDialog color;
  files.setFiles({ZoFileName()});
  ZoDialogs::setAnswer([](ZoDialog&) { return ZoResult::ok; });
  for (ZoDialog* const dialog : std::initializer_list<ZoDialog*>{&box, &task, &files, &folder})
    EXPECT_EQ(dialog->show(), ZoResult::refused) << typeid(*dialog).name();
  EXPECT_EQ(color.show(), ZoResult::ok);
  files.setFile(L"C:\\a.val");
  EXPECT_EQ(files.show(), ZoResult::ok);
  ZoDialogs::setAnswer({});
}

// As platforms say it: a system error, or an HRESULT that has one within.
TEST_F(OneDialog, ErrorsAreTheSameInBothForms) {
  struct Failing final : ZoDialog {
    explicit Failing(unsigned long number) : error(number) {}
    int run(HWND__*) override { return failed(error); }
    unsigned long error;
  };
  for (const auto& [error, wanted] : {std::pair(ERROR_CANCELLED, ZoResult::cancelled),
                                      std::pair(ERROR_PRINTER_NOT_FOUND, ZoResult::noPrinter),
                                      std::pair(ERROR_INVALID_WINDOW_HANDLE, ZoResult::notShown)}) {
    Failing plain(error), inResult(static_cast<unsigned long>(HRESULT_FROM_WIN32(error)));
    EXPECT_EQ(plain.show(), wanted);
    EXPECT_EQ(inResult.show(), wanted);
    EXPECT_EQ(inResult.errorTxt(), plain.errorTxt());
  }
}

TEST_F(OneDialog, AFolderThatWasSetIsTakenByOkAlone) {
  ZoFolderDialog dialog{ZoFileName(folder())};
  const ZoString before(dialog.folder());
  const DialogUser user([](HWND window) {
    DialogUser::press(window, IDOK);
    DialogUser::press(window, IDCANCEL);  // were it still there
  });
  EXPECT_EQ(dialog.show(), 0);
  EXPECT_EQ(ZoString(dialog.folder()), before);
}

}  // namespace
