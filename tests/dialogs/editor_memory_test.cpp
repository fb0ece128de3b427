// The editor when memory runs out at each request of a command: the window stays, and shows what
// the value is then.
#include <gtest/gtest.h>
#include <zo/dialogs.h>

#include "dialogs/dialog_fixture.h"
#include "dialogs/editor_user.h"
#include "support/failing_memory.h"

namespace {

using zo::test::EditorUser;
using zo::test::FailingMemory;
using namespace zo;  // the editor's controls

std::wstring shownOf(const ZoVariant& value) {
  const ZoVariantEdits edits(value);
  std::wstring all;
  for (const auto& element : edits.elements(L"")) {
    all += (all.empty() ? L"" : L" ") + std::wstring(element.name.view()) + L"=";
    all += shownText(*element.value).view();
  }
  return all;
}

std::wstring shownIn(const EditorUser& user) {
  std::wstring all;
  for (int i = 0; i < user.rows(); ++i)
    all += (i ? L" " : L"") + user.cell(i, EditorRows::kName) + L"=" +
           user.cell(i, EditorRows::kValue);
  return all;
}

void openField(const EditorUser& user) {
  user.select(L"coating");
  user.command(kEditorEdit);
  user.type(kEditorField, L"tin");
}

const struct {
  const char* name;
  void (*prepare)(const EditorUser&);
  int control;
  WPARAM key;
  bool isControl;
} kCases[] = {
    {"Enter opens the field", [](const EditorUser& user) { user.select(L"coating"); }, kEditorList,
     VK_RETURN, false},
    {"Enter in the field", openField, kEditorField, VK_RETURN, false},
    {"Del", [](const EditorUser& user) { user.select(L"holes"); }, kEditorList, VK_DELETE, false},
    {"Ctrl+Z",
     [](const EditorUser& user) {
       user.select(L"holes");
       user.key(kEditorList, VK_DELETE);
     },
     kEditorList, 'Z', true},
};

class EditorMemory : public zo::test::DialogTest {};

TEST_F(EditorMemory, NoCommandEndsTheEditorOrHidesItsEdit) {
  if (!FailingMemory::isPossible()) GTEST_SKIP() << "the guarded run does this";
  ZoVariantDialog dialog(zo::test::part());
  std::wstring value;
  int taken = 0;
  dialog.takeBy([&](const ZoVariant& now) {  // which tells what the edits are
    value = shownOf(now);
    return ++taken, ZoString(L"not yet");
  });
  ZoDialogs::setAnswer([](ZoDialog& asked) {
    auto* const box = dynamic_cast<ZoMessageBox*>(&asked);
    if (!box) return ZoDialogs::kAsk;
    static_cast<void>(box->setButton(ZoMessageBox::kYes));
    return ZoResult::ok;
  });
  const auto fail = [&](const EditorUser& user, const auto& c, unsigned n) {
    c.prepare(user);
    taken = 0;
    const FailingMemory failing(n, FailingMemory::kOnce);
    user.key(c.control, c.key,
             c.isControl ? std::initializer_list<int>{VK_CONTROL} : std::initializer_list<int>{});
    return failing.failed();
  };
  const auto work = [&](const EditorUser& user) {
    for (const auto& c : kCases) {
      bool failed = true;
      for (unsigned n = 1; failed && !HasFailure(); ++n) {
        failed = fail(user, c, n);
        user.command(IDOK);
        EXPECT_EQ(taken, 1) << c.name << n << ": a key that failed is no OK";
        EXPECT_EQ(shownIn(user), value) << c.name << n;
        while (IsWindowEnabled(user.item(kEditorUndo))) user.command(kEditorUndo);
      }
    }
    user.command(IDCANCEL);
  };
  EXPECT_EQ(zo::test::edit(dialog, {work}), ZoResult::cancelled);
  ZoDialogs::setAnswer({});
}

}  // namespace
