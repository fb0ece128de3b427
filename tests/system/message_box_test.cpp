#include <gtest/gtest.h>
#include <windows.h>
#include <zo/results.h>
#include <zo/system/std_error.h>

#include <functional>
#include <string>
#include <vector>

#include "support/message_box.h"
#include "system/other_thread.h"
#include "system/suppressed_boxes.h"

namespace {

using zo::test::Box;
using zo::test::BoxUser;

void forgetSuppressed() {
  zo::suppressedBoxes.errors = false;
  zo::suppressedBoxes.warnings = false;
}

class MessageBoxes : public testing::Test {
 protected:
  MessageBoxes() { forgetSuppressed(); }
  ~MessageBoxes() override { forgetSuppressed(); }

  // The one box that a report shows, answered with `button`.
  Box shown(int button, const std::function<int(ZoError&)>& report) {
    BoxUser user([&](const Box&) { return button; });
    EXPECT_EQ(report(service_), 0);
    EXPECT_EQ(user.seen().size(), 1u);
    return user.seen().empty() ? Box() : user.seen().front();
  }
  bool isSilent(const std::function<int(ZoError&)>& report) {
    BoxUser user([](const Box&) { return IDABORT; });
    ZoStdError another;  // the choice is the process's
    EXPECT_EQ(report(service_), 0);
    EXPECT_EQ(report(another), 0);
    return user.seen().empty();
  }

  ZoStdError service_;
};

// A kind of report, as it looks, and after Ignore.
struct Kind {
  std::function<int(ZoError&)> report;
  std::wstring text;
  const wchar_t *caption, *icon;
  std::vector<int> buttons;
};
const std::wstring kLong(1000, L'x');
const std::vector<int> kAbortRetryIgnore{IDABORT, IDRETRY, IDIGNORE};

TEST_F(MessageBoxes, LookLikeTheirKindAndAreShownUntilAllAreIgnored) {
  const Kind error{[](ZoError& e) { return e.error(L"f.cpp", L"load", 12, L"100 %d %s"); },
                   L"\n*** Error: 100 %d %s\nf.cpp\nload\nposition: 12 \n", nullptr, IDI_HAND,
                   kAbortRetryIgnore};
  const Kind warning{[](ZoError& e) { return e.warning(L"f.cpp", 12, L"%d%% of %s", 5, L"%s"); },
                     L"\n*** Warning: 5% of %s\nf.cpp\nposition: 12 \n", L"Warning",
                     IDI_EXCLAMATION, kAbortRetryIgnore};
  const Kind bare{[](ZoError& e) { return e.error(nullptr, nullptr, -1, nullptr); },
                  L"\n*** Error: \n\n\nposition: -1 \n", nullptr, IDI_HAND, kAbortRetryIgnore};
  const Kind cut{[](ZoError& e) { return e.error(L"f", L"g", 1, kLong.c_str()); },
                 L"\n*** Error: " + kLong.substr(0, 256 - 12), nullptr, IDI_HAND,
                 kAbortRetryIgnore};
  const Kind prompt{[](ZoError& e) { return e.prompt(L"%s%s", L"%d", kLong.c_str()); },
                    L"%d" + kLong.substr(0, 254),
                    L"Prompt",
                    IDI_ASTERISK,
                    {}};
  const auto expectShown = [&](int button, const Kind& kind) {
    const Box box = shown(button, kind.report);
    EXPECT_EQ(box.text, kind.text);
    EXPECT_TRUE(kind.caption ? box.caption == kind.caption : !box.caption.empty());
    EXPECT_TRUE(kind.buttons.empty() ? box.buttons.size() == 1 : box.buttons == kind.buttons);
    EXPECT_EQ(box.icon, LoadIconW(nullptr, kind.icon));
    EXPECT_TRUE(box.ownWindowsLocked);
  };
  for (const Kind& kind : {bare, cut, warning}) expectShown(IDRETRY, kind);
  expectShown(IDIGNORE, error);
  EXPECT_TRUE(isSilent(error.report));
  expectShown(IDIGNORE, warning);
  EXPECT_TRUE(isSilent(warning.report));
  expectShown(IDOK, prompt);
  EXPECT_TRUE(isSilent([](ZoError& e) { return e.trace(L"%s", L"text"); }));
  EXPECT_TRUE(isSilent([](ZoError& e) { return e.taskDialog(L"t", nullptr, nullptr, 0) - 2; }));
  EXPECT_EQ(service_.trace(nullptr), ZoResult::refused);
  EXPECT_EQ(service_.prompt(nullptr), ZoResult::refused);
}

TEST_F(MessageBoxes, ReportsOfOtherThreadsAreDroppedWhileABoxIsUp) {
  zo::test::Impatient<ZoStdError> service;
  BoxUser user([&](const Box&) {
    const std::function<int()> reports[] = {
        [&] { return service.error(L"f", L"g", 1, L"t"); },
        [&] { return service.warning(L"f", 1, L"t"); },
        [&] { return service.trace(L"t"); },
        [&] { return service.prompt(L"t"); },
    };
    for (const auto& report : reports)
      EXPECT_EQ(zo::test::inOtherThread(report), ZoResult::refused);
    return IDOK;
  });
  EXPECT_EQ(service.prompt(L"first"), 0);
  EXPECT_EQ(user.seen().size(), 1u);
}

}  // namespace
