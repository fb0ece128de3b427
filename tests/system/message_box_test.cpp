#include <gtest/gtest.h>
#include <windows.h>
#include <zo/results.h>
#include <zo/system/std_error.h>

#include <functional>
#include <string>

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

const std::vector<int> kAbortRetryIgnore{IDABORT, IDRETRY, IDIGNORE};
const std::wstring kLong(1000, L'x');

TEST_F(MessageBoxes, ErrorsOfferToIgnoreAllFurtherOnes) {
  const auto report = [](ZoError& e) { return e.error(L"f.cpp", L"load", 12, L"100 %d %s"); };
  const Box box = shown(IDRETRY, report);
  EXPECT_EQ(box.text, L"\n*** Error: 100 %d %s\nf.cpp\nload\nposition: 12 \n");
  EXPECT_NE(box.caption, L"");
  EXPECT_EQ(box.buttons, kAbortRetryIgnore);
  EXPECT_EQ(box.icon, LoadIconW(nullptr, IDI_HAND));
  EXPECT_TRUE(box.ownWindowsLocked);

  const Box bare =
      shown(IDIGNORE, [](ZoError& e) { return e.error(nullptr, nullptr, -1, nullptr); });
  EXPECT_EQ(bare.text, L"\n*** Error: \n\n\nposition: -1 \n");
  EXPECT_TRUE(isSilent(report));
  EXPECT_EQ(shown(IDABORT, [](ZoError& e) { return e.warning(L"f", 1, L"still"); }).text,
            L"\n*** Warning: still\nf\nposition: 1 \n");
}

TEST_F(MessageBoxes, WarningsOfferToIgnoreAllFurtherOnes) {
  const auto report = [](ZoError& e) { return e.warning(L"f.cpp", 12, L"%d%% of %s", 5, L"%s"); };
  const Box box = shown(IDIGNORE, report);
  EXPECT_EQ(box.text, L"\n*** Warning: 5% of %s\nf.cpp\nposition: 12 \n");
  EXPECT_EQ(box.caption, L"Warning");
  EXPECT_EQ(box.buttons, kAbortRetryIgnore);
  EXPECT_EQ(box.icon, LoadIconW(nullptr, IDI_EXCLAMATION));
  EXPECT_TRUE(box.ownWindowsLocked);
  EXPECT_TRUE(isSilent(report));
  EXPECT_EQ(shown(IDABORT, [](ZoError& e) { return e.error(L"f", L"g", 1, kLong.c_str()); }).text,
            L"\n*** Error: " + kLong.substr(0, 256 - 12))
      << "cut to 256 characters";
}

TEST_F(MessageBoxes, PromptsHaveOneButton) {
  const Box box = shown(IDOK, [](ZoError& e) { return e.prompt(L"%s%s", L"%d", kLong.c_str()); });
  EXPECT_EQ(box.text, L"%d" + kLong.substr(0, 254));
  EXPECT_EQ(box.caption, L"Prompt");
  EXPECT_EQ(box.buttons.size(), 1u);
  EXPECT_EQ(box.icon, LoadIconW(nullptr, IDI_ASTERISK));
  EXPECT_TRUE(box.ownWindowsLocked);
}

TEST_F(MessageBoxes, TracesAndTaskDialogsShowNothing) {
  EXPECT_TRUE(isSilent([](ZoError& e) { return e.trace(L"%s", L"text"); }));
  EXPECT_TRUE(isSilent([](ZoError& e) { return e.taskDialog(L"t", nullptr, nullptr, 0) - 2; }));
  EXPECT_EQ(service_.trace(nullptr), ZoResult::refused);
  EXPECT_EQ(service_.prompt(nullptr), ZoResult::refused);
}

TEST_F(MessageBoxes, ReportsOfOtherThreadsAreDroppedWhileABoxIsUp) {
  struct Service : zo::test::Impatient<ZoStdError> {
  } service;
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
