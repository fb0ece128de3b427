#include <gtest/gtest.h>
#include <windows.h>
#include <zo/names/file_name.h>
#include <zo/results.h>
#include <zo/system/execute.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "platform/handle.h"
#include "support/child_process.h"
#include "support/temp_folder.h"

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

// The other end of the pipe.
class Listener {
 public:
  // Waits until the program has come, told and ended.
  std::wstring hear() {
    ConnectNamedPipe(pipe_.get(), nullptr);
    std::wstring told;
    wchar_t buffer[512];
    DWORD got = 0;
    while (ReadFile(pipe_.get(), buffer, sizeof buffer, &got, nullptr) && got > 0)
      told.append(buffer, got / sizeof(wchar_t));
    return told;
  }
  [[nodiscard]] std::wstring arguments() const { return L"--zo-child=startedByShell " + name_; }

 private:
  std::wstring name_ = L"\\\\.\\pipe\\zo-" + std::to_wstring(GetCurrentProcessId());
  zo::Handle pipe_{
      CreateNamedPipeW(name_.c_str(), PIPE_ACCESS_INBOUND, PIPE_WAIT, 1, 0, 65536, 0, nullptr)};
};

TEST(Execute, TheShellStartsAProgramWithItsArguments) {
  ZoStdExecute service;
  const ZoFileName program(thisProgram());
  // Nothing is started hidden.
  for (const auto& [show, seen] : {std::pair(0, L"1"), {SW_SHOWMINNOACTIVE, L"7"}}) {
    Listener listener;
    const std::wstring arguments = listener.arguments() + L" \"two words\" \u03C0";
    ASSERT_EQ(show ? service.shell(program, arguments.c_str(), show)
                   : service.automatic(program, arguments.c_str(), show, false),
              0);
    EXPECT_EQ(listener.hear(), seen + std::wstring(L"\ntwo words\n\u03C0"));
  }
}

// Registered for the whole machine: some shells look nowhere else.
TEST(Execute, TheShellOpensADocumentWithItsProgram) {
  const std::wstring kind = L"ZoTest" + std::to_wstring(GetCurrentProcessId());
  const std::wstring classes = L"Software\\Classes\\", extension = L"." + kind;
  const auto set = [&](const std::wstring& key, const std::wstring& value) {
    ASSERT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, (classes + key).c_str(), nullptr, REG_SZ,
                              value.c_str(), static_cast<DWORD>(2 * value.size() + 2)),
              ERROR_SUCCESS);
  };
  Listener listener;
  set(extension, kind);
  set(kind + L"\\shell\\open\\command",
      L"\"" + thisProgram() + L"\" " + listener.arguments() + L" \"%1\"");
  const zo::test::TempFolder folder;
  const std::filesystem::path document = folder.path() / (L"bolt \u03C0 100%" + extension);
  std::ofstream(document) << "text";
  EXPECT_EQ(ZoStdExecute().shell(ZoFileName(document), nullptr, SW_SHOWNORMAL), 0);
  EXPECT_EQ(listener.hear(), L"1\n" + document.wstring());
  for (const std::wstring& key : {extension, kind})
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, (classes + key).c_str());
}

TEST(Execute, TellsWhyNothingWasStarted) {
  const zo::test::TempFolder folder;
  const std::filesystem::path document = folder.path() / L"a.zounknown";
  std::ofstream(document) << "text";
  struct : ZoStdExecute {
    using ZoStdExecute::convertErr;
  } service;
  EXPECT_EQ(service.automatic(ZoFileName(folder.path() / L"absent.exe"), nullptr, 1, true),
            ZoExecute::kFileNotFound);
  EXPECT_EQ(service.shell(ZoFileName(document), nullptr, 1), ZoExecute::kNoAssociation);
  const std::map<int, int> known{{2, 1000},  {3, 1001},  {5, 1003},  {8, 1011},  {11, 1002},
                                 {26, 1013}, {27, 1004}, {28, 1007}, {29, 1006}, {30, 1005},
                                 {31, 1010}, {32, 1008}, {33, 0}};
  for (int result = -2; result <= 33; ++result)
    EXPECT_EQ(service.convertErr(result), known.contains(result) ? known.at(result) : 1) << result;
}

}  // namespace
