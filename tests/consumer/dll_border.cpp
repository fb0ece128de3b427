// What a client module sees across the DLL's border.
#include <windows.h>
// windows.h first, with its macros, as many a client has it.
#include <gtest/gtest.h>
#include <zo_com.h>

#include <sstream>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

namespace {

// The version that the platform shows of a file of the package.
DWORDLONG shownVersion(const std::string& file) {
  DWORD ignored = 0;
  std::vector<char> info(GetFileVersionInfoSizeA(file.c_str(), &ignored));
  VS_FIXEDFILEINFO* fixed = nullptr;
  UINT size = 0;
  if (info.empty() ||
      !GetFileVersionInfoA(file.c_str(), 0, static_cast<DWORD>(info.size()), info.data()) ||
      !VerQueryValueW(info.data(), L"\\", reinterpret_cast<void**>(&fixed), &size))
    return 0;
  return DWORDLONG{fixed->dwFileVersionMS} << 32 | fixed->dwFileVersionLS;
}

TEST(Consumer, TheDllIsTheVersionOfItsHeadersAndAllProgramsSaySo) {
  EXPECT_STREQ(zoComVersion(), ZO_COM_VERSION);
  constexpr DWORDLONG version = DWORDLONG{ZO_COM_VERSION_MAJOR} << 48 |
                                DWORDLONG{ZO_COM_VERSION_MINOR} << 32 | ZO_COM_VERSION_PATCH << 16;
  for (const char* const file : {ZO_DLL, "zolib.exe", "zomsg.exe", "zoval.exe"})
    EXPECT_EQ(shownVersion(ZO_PACKAGED "/" + std::string(file)), version) << file;
}

TEST(Consumer, StringsCrossTheBorderWithTheirStorageStreamsAndMemory) {
  ZoString text(L"part");
  std::wostringstream out;
  out << text + L"-" << text(1, 2);
  EXPECT_EQ(out.str(), L"part-ar");
  std::wistringstream in(L"read from a client's stream");
  text.readLine(in);
  EXPECT_EQ(text, L"read from a client's stream");
  const std::unordered_set<ZoString> set{text, L"other"};
  EXPECT_TRUE(set.contains(text));
  delete[] text.getMBString();

  // The empty block lies in the DLL and is shared by both sides.
  const ZoString ours;
  EXPECT_EQ(ours.data(), ours.copy().data());
}

TEST(Consumer, ThreadsMayUseEmptyStringsAtTheSameTime) {
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([] {
      for (int i = 0; i < 50000; ++i) {
        ZoString empty;
        ZoString other(empty);
        other.append(L'x');
        if (other.length() != 1 || !empty.isEmpty()) std::abort();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_STREQ(ZoString().data(), L"");
}

TEST(Consumer, FileTimesConvertFromAndToThePlatforms) {
  const FILETIME time{.dwLowDateTime = 0x89ABCDEF, .dwHighDateTime = 0x01D01234};
  const ZoFileTime ours = time;
  EXPECT_EQ(ours.ticks, 0x01D0123489ABCDEFU);
  EXPECT_LT(ZoFileTime(), ours);
  const FILETIME back = ours;
  EXPECT_EQ(CompareFileTime(&time, &back), 0);
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
