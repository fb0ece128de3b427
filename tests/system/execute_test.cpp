#include <gtest/gtest.h>
#include <windows.h>
#include <zo/files/file_name.h>
#include <zo/results.h>
#include <zo/system/execute.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "platform/handle.h"
#include "support/child_process.h"
#include "support/temp_folder.h"
#include "system/other_thread.h"

namespace {

// What the started program tells over the pipe that its command line names: its show command, and
// its further arguments, one in each line.
ZO_TEST_CHILD(startedByShell) {
  STARTUPINFOW startup{};
  GetStartupInfoW(&startup);
  std::wstring told =
      startup.dwFlags & STARTF_USESHOWWINDOW ? std::to_wstring(startup.wShowWindow) : L"none";
  for (std::size_t i = 1; !parent.argument(i).empty(); ++i) told += L'\n' + parent.argument(i);
  std::ofstream(std::filesystem::path(parent.argument(0)), std::ios::binary)
      .write(reinterpret_cast<const char*>(told.data()),
             static_cast<std::streamsize>(told.size() * sizeof(wchar_t)));
  return 0;
}

std::wstring thisProgram() {
  wchar_t path[MAX_PATH];
  return {path, GetModuleFileNameW(nullptr, path, MAX_PATH)};
}

struct Execute : zo::test::Impatient<ZoStdExecute> {
  using ZoStdExecute::convertErr;
};

TEST(Execute, TheShellStartsAProgramWithItsArguments) {
  ZoStdExecute service;
  const ZoFileName program(thisProgram());
  const std::wstring pipeName = L"\\\\.\\pipe\\zo-" + std::to_wstring(GetCurrentProcessId());
  const std::wstring arguments =
      L"--zo-child=startedByShell " + pipeName + L" \"two words\" \u03C0";
  // Nothing is started hidden.
  for (const auto& [show, seen] : {std::pair(0, L"1"), {SW_SHOWMINNOACTIVE, L"7"}}) {
    const zo::Handle pipe(CreateNamedPipeW(pipeName.c_str(), PIPE_ACCESS_INBOUND, PIPE_WAIT, 1, 0,
                                           65536, 0, nullptr));
    ASSERT_EQ(show ? service.shell(program, arguments.c_str(), show)
                   : service.automatic(program, arguments.c_str(), show, false),
              0);
    ConnectNamedPipe(pipe.get(), nullptr);
    std::wstring told;
    wchar_t buffer[512];
    DWORD got = 0;
    while (ReadFile(pipe.get(), buffer, sizeof buffer, &got, nullptr) && got > 0)
      told.append(buffer, got / sizeof(wchar_t));
    EXPECT_EQ(told, seen + std::wstring(L"\ntwo words\n\u03C0"));
  }
}

TEST(Execute, TellsWhyTheShellDidNotStartIt) {
  const zo::test::TempFolder folder;
  const std::filesystem::path document = folder.path() / L"a.zounknown";
  std::ofstream(document) << "text";
  const ZoFileName absent(folder.path() / L"absent.exe");
  ZoStdExecute service;
  EXPECT_EQ(service.shell(absent, nullptr, 1), ZoExecute::kFileNotFound);
  EXPECT_EQ(service.automatic(absent, nullptr, 1, true), ZoExecute::kFileNotFound);
  EXPECT_EQ(service.shell(ZoFileName(document), nullptr, 1), ZoExecute::kNoAssociation);
  EXPECT_EQ(service.process(ZoFileName(thisProgram()), nullptr, 1, false), ZoResult::refused);
  EXPECT_EQ(service.release(L"zo_com"), 1) << "it stays whatever is released";
}

TEST(Execute, ConvertsEveryResultOfTheShell) {
  Execute service;
  const std::map<int, int> known{{2, 1000},  {3, 1001},  {5, 1003},  {8, 1011},      {11, 1002},
                                 {26, 1013}, {27, 1004}, {28, 1007}, {29, 1006},     {30, 1005},
                                 {31, 1010}, {32, 1008}, {33, 0},    {0x7FFFFFFF, 0}};
  for (int result = -2; result <= 32; ++result)
    EXPECT_EQ(service.convertErr(result), known.contains(result) ? known.at(result) : 1) << result;
  for (const auto& [from, to] : known) EXPECT_EQ(service.convertErr(from), to) << from;
  const zo::test::HeldElsewhere held(service);
  EXPECT_EQ(service.shell(ZoFileName(thisProgram()), nullptr, 1), ZoResult::refused);
  EXPECT_EQ(service.convertErr(33), ZoResult::refused);
}

TEST(Execute, AutomaticTriesAProcessFirst) {
  struct Mine : ZoStdExecute {
    int process(const ZoFileName&, const wchar_t* arguments, int show, bool option) override {
      calls.push_back(L"process " + (arguments + std::to_wstring(show)) + (option ? L"+" : L"-"));
      return answer;
    }
    int shell(const ZoFileName&, const wchar_t* arguments, int show) override {
      calls.push_back(L"shell " + (arguments + std::to_wstring(show)));
      return ZoExecute::kDdeBusy;
    }
    int answer = 0;
    std::vector<std::wstring> calls;
  } service;
  const ZoFileName file(L"C:\\a.exe");
  EXPECT_EQ(service.automatic(file, L"x", 3, true), 0);
  service.answer = 5;
  EXPECT_EQ(service.automatic(file, L"x", 0, false), ZoExecute::kDdeBusy);
  EXPECT_EQ(service.calls,
            (std::vector<std::wstring>{L"process x3+", L"process x0-", L"shell x0"}));
}

}  // namespace
