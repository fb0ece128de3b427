// The helpers that other tests rest on: child processes and temporary folders.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/temp_folder.h"

using zo::test::ChildProcess;
using zo::test::TempFolder;

ZO_TEST_CHILD(echo) {
  parent.say("ready");
  while (const auto line = parent.hear()) parent.say(*line + "!");
  return 7;
}

const std::vector<std::wstring> oddArguments = {L"\x444 \x4E2D", L"", L"a \"b\\\" \\\\\"c\\",
                                                L"back\\slash\\"};

ZO_TEST_CHILD(arguments) {
  for (std::size_t i = 0; i < oddArguments.size(); ++i) {
    if (parent.argument(i) != oddArguments[i]) return static_cast<int>(i) + 1;
  }
  return 0;
}

// Starts a child that listens to nothing, and waits to be killed itself.
ZO_TEST_CHILD(starts_another) {
  ChildProcess other(L"hang");
  parent.say(std::to_string(other.id()));
  parent.hear();
  return 0;
}

TEST(ChildProcess, TalksInLinesAndEndsWithItsCode) {
  ChildProcess child(L"echo");
  EXPECT_EQ(child.hear(), "ready");
  const std::string longLine(100000, 'x');
  for (const std::string& line : {std::string("one"), std::string(), longLine}) {
    child.say(line);
    EXPECT_EQ(child.hear(), line + "!");
  }
  EXPECT_TRUE(child.running());
  EXPECT_NE(child.id(), GetCurrentProcessId());
  child.closeInput();
  EXPECT_EQ(child.hear(), std::nullopt);
  EXPECT_EQ(child.wait(), 7);
  EXPECT_EQ(child.wait(), 7);
  EXPECT_FALSE(child.running());
}

TEST(ChildProcess, KeepsArgumentsAsTheyAre) {
  ChildProcess child(L"arguments", oddArguments);
  EXPECT_EQ(child.wait(), 0);
}

TEST(ChildProcess, KilledOrForgottenIsGone) {
  HANDLE process = nullptr;
  {
    ChildProcess killed(L"echo");
    ChildProcess forgotten(L"echo");
    EXPECT_EQ(killed.hear(), "ready");
    killed.kill(42);
    EXPECT_EQ(killed.wait(), 42);
    EXPECT_EQ(forgotten.hear(), "ready");  // its pipes are its own
    process = OpenProcess(SYNCHRONIZE, FALSE, forgotten.id());
    ASSERT_NE(process, nullptr);
  }
  EXPECT_EQ(WaitForSingleObject(process, 0), WAIT_OBJECT_0);
  CloseHandle(process);
}

TEST(ChildProcess, DoesNotOutliveAKilledParent) {
  ChildProcess child(L"starts_another");
  const auto id = child.hear();
  ASSERT_TRUE(id);
  HANDLE other = OpenProcess(SYNCHRONIZE, FALSE, std::stoul(*id));
  ASSERT_NE(other, nullptr);
  child.kill();
  EXPECT_EQ(WaitForSingleObject(other, INFINITE), WAIT_OBJECT_0);  // the watchdog ends it otherwise
  CloseHandle(other);
}

TEST(TempFolder, IsFreshAndLeavesNothing) {
  std::filesystem::path path;
  {
    const TempFolder folder;
    const TempFolder other;
    path = folder.path();
    EXPECT_NE(path, other.path());
    EXPECT_TRUE(path.is_absolute());
    EXPECT_TRUE(std::filesystem::is_empty(path));
    std::wstring deep = L"\\\\?\\" + path.wstring();
    for (int i = 0; i < 3; ++i) {
      deep += L"\\" + std::wstring(120, L'd');
      ASSERT_TRUE(CreateDirectoryW(deep.c_str(), nullptr));
    }
    for (const std::wstring& file : {deep + L"\\f", path.wstring() + L"\\\x4E2D"}) {
      HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                  FILE_ATTRIBUTE_READONLY, nullptr);
      ASSERT_NE(handle, INVALID_HANDLE_VALUE);
      CloseHandle(handle);
    }
  }
  EXPECT_EQ(GetFileAttributesW(path.c_str()), INVALID_FILE_ATTRIBUTES);
}
