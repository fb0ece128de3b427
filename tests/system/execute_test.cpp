#include <gtest/gtest.h>
#include <windows.h>
#include <zo/files/file_name.h>
#include <zo/results.h>
#include <zo/system/execute.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/handle.h"
#include "support/child_process.h"
#include "support/printers.h"
#include "support/temp_folder.h"
#include "system/other_thread.h"

namespace {

using zo::test::TempFolder;

// What the started program tells over the pipe that its command line names: its show command, and
// its further arguments, one in each line.
ZO_TEST_CHILD(startedByShell) {
  STARTUPINFOW startup{};
  GetStartupInfoW(&startup);
  std::wstring told =
      startup.dwFlags & STARTF_USESHOWWINDOW ? std::to_wstring(startup.wShowWindow) : L"none";
  for (std::size_t i = 1; !parent.argument(i).empty(); ++i) told += L'\n' + parent.argument(i);
  const zo::Handle pipe(CreateFileW(parent.argument(0).c_str(), GENERIC_WRITE, 0, nullptr,
                                    OPEN_EXISTING, 0, nullptr));
  DWORD written = 0;
  WriteFile(pipe.get(), told.data(), static_cast<DWORD>(told.size() * sizeof(wchar_t)), &written,
            nullptr);
  return 0;
}

// The other end of one such pipe.
class Listener {
 public:
  Listener()
      : name_(L"\\\\.\\pipe\\zo-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
              std::to_wstring(++s_count)),
        pipe_(CreateNamedPipeW(name_.c_str(), PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE | PIPE_WAIT, 1, 0,
                               65536, 0, nullptr)) {
    EXPECT_TRUE(pipe_);
  }
  [[nodiscard]] const std::wstring& name() const { return name_; }
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

 private:
  static inline int s_count = 0;
  std::wstring name_;
  zo::Handle pipe_;
};

std::wstring thisProgram() {
  wchar_t path[MAX_PATH];
  return {path, GetModuleFileNameW(nullptr, path, MAX_PATH)};
}

std::wstring argumentsFor(const Listener& listener) {
  return L"--zo-child=startedByShell " + listener.name();
}

// A kind of document that our program opens. It is registered for the whole machine: some shells
// look nowhere else.
class DocumentType {
 public:
  explicit DocumentType(const std::wstring& command)
      : extension_(L".zo" + std::to_wstring(GetCurrentProcessId())),
        kind_(L"ZoTest" + std::to_wstring(GetCurrentProcessId())) {
    set(kClasses + extension_, kind_);
    set(kClasses + kind_ + L"\\shell\\open\\command", command);
  }
  ~DocumentType() {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kClasses + extension_).c_str());
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kClasses + kind_).c_str());
  }
  DocumentType(const DocumentType&) = delete;
  DocumentType& operator=(const DocumentType&) = delete;
  [[nodiscard]] const std::wstring& extension() const { return extension_; }

 private:
  static inline const std::wstring kClasses = L"Software\\Classes\\";
  static void set(const std::wstring& key, const std::wstring& value) {
    EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), nullptr, REG_SZ, value.c_str(),
                              static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))),
              ERROR_SUCCESS);
  }
  std::wstring extension_, kind_;
};

std::filesystem::path makeFile(const TempFolder& folder, const std::wstring& name) {
  std::filesystem::path path = folder.path() / name;
  std::ofstream(path) << "text";
  return path;
}

struct Execute : zo::test::Impatient<ZoStdExecute> {
  using ZoStdExecute::convertErr;
};

TEST(Execute, TheShellStartsAProgramWithItsArguments) {
  ZoStdExecute service;
  const ZoFileName program(thisProgram());
  // Nothing is started hidden.
  for (const auto& [show, seen] : {std::pair(0, L"1"), {SW_SHOWMINNOACTIVE, L"7"}}) {
    for (const bool automatic : {false, true}) {
      Listener listener;
      const std::wstring arguments = argumentsFor(listener) + L" \"two words\" \u03C0";
      ASSERT_EQ(automatic ? service.automatic(program, arguments.c_str(), show, false)
                          : service.shell(program, arguments.c_str(), show),
                0);
      EXPECT_EQ(listener.hear(), seen + std::wstring(L"\ntwo words\n\u03C0"));
    }
  }
}

TEST(Execute, TheShellOpensADocumentWithItsProgram) {
  const TempFolder folder;
  Listener listener;
  const DocumentType type(L"\"" + thisProgram() + L"\" " + argumentsFor(listener) + L" \"%1\"");
  const std::filesystem::path document = makeFile(folder, L"bolt \u03C0 100%" + type.extension());
  ZoStdExecute service;
  ASSERT_EQ(service.shell(ZoFileName(document), nullptr, SW_SHOWNORMAL), 0);
  EXPECT_EQ(listener.hear(), L"1\n" + document.wstring());
}

TEST(Execute, TellsWhyTheShellDidNotStartIt) {
  const TempFolder folder;
  ZoStdExecute service;
  EXPECT_EQ(service.shell(ZoFileName(folder.path() / L"absent.exe"), nullptr, 1),
            ZoExecute::kFileNotFound);
  EXPECT_EQ(service.automatic(ZoFileName(folder.path() / L"absent.exe"), nullptr, 1, true),
            ZoExecute::kFileNotFound);
  EXPECT_EQ(service.shell(ZoFileName(makeFile(folder, L"a.zounknown")), nullptr, 1),
            ZoExecute::kNoAssociation);
  EXPECT_EQ(service.process(ZoFileName(thisProgram()), nullptr, 1, false), ZoResult::refused);
}

TEST(Execute, ConvertsEveryResultOfTheShell) {
  Execute service;
  const std::vector<std::pair<int, int>> known{{2, 1000},  {3, 1001},  {5, 1003},      {8, 1011},
                                               {11, 1002}, {26, 1013}, {27, 1004},     {28, 1007},
                                               {29, 1006}, {30, 1005}, {31, 1010},     {32, 1008},
                                               {33, 0},    {42, 0},    {0x7FFFFFFF, 0}};
  for (int result = -2; result <= 32; ++result) {
    int expected = 1;
    for (const auto& [from, to] : known)
      if (from == result) expected = to;
    EXPECT_EQ(service.convertErr(result), expected) << result;
  }
  for (const auto& [from, to] : known) EXPECT_EQ(service.convertErr(from), to) << from;
}

TEST(Execute, AutomaticTriesAProcessFirst) {
  struct Mine : ZoStdExecute {
    int process(const ZoFileName& file, const wchar_t* arguments, int show, bool option) override {
      calls.push_back(L"process " + std::wstring(file.view()) + L" " + arguments + L" " +
                      std::to_wstring(show) + (option ? L" on" : L" off"));
      return answer;
    }
    int shell(const ZoFileName& file, const wchar_t* arguments, int show) override {
      calls.push_back(L"shell " + std::wstring(file.view()) + L" " + arguments + L" " +
                      std::to_wstring(show));
      return ZoExecute::kDdeBusy;
    }
    int answer = 0;
    std::vector<std::wstring> calls;
  } service;
  const ZoFileName file(L"C:\\a.exe");
  EXPECT_EQ(service.automatic(file, L"x", 3, true), 0);
  EXPECT_EQ(service.calls, std::vector<std::wstring>{L"process C:\\a.exe x 3 on"});
  service.calls.clear();
  service.answer = 5;
  EXPECT_EQ(service.automatic(file, L"x", 0, false), ZoExecute::kDdeBusy);
  EXPECT_EQ(service.calls,
            (std::vector<std::wstring>{L"process C:\\a.exe x 0 off", L"shell C:\\a.exe x 0"}));
}

TEST(Execute, RefusesWhileTheGuardIsHeldAndStaysWhateverIsReleased) {
  Execute service;
  {
    const zo::test::HeldElsewhere held(service);
    EXPECT_EQ(service.shell(ZoFileName(thisProgram()), nullptr, 1), ZoResult::refused);
    EXPECT_EQ(service.convertErr(33), ZoResult::refused);
  }
  EXPECT_EQ(service.release(L"zo_com"), 1);
  EXPECT_EQ(service.release(nullptr), 1);
}

}  // namespace
