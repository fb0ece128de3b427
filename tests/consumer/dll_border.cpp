// What a client module sees across the DLL's border.
#include <windows.h>
// windows.h first, with its macros, as many a client has it.
#include <gtest/gtest.h>
#include <zo_com.h>

#include <sstream>
#include <thread>
#include <unordered_set>
#include <vector>

namespace {

TEST(Consumer, TheDllIsTheVersionOfItsHeadersAndItsResourceSaysSo) {
  EXPECT_STREQ(zoComVersion(), ZO_COM_VERSION);
  DWORD ignored = 0;
  std::vector<char> info(GetFileVersionInfoSizeW(L"zo_com.dll", &ignored));
  ASSERT_FALSE(info.empty());
  ASSERT_TRUE(GetFileVersionInfoW(L"zo_com.dll", 0, static_cast<DWORD>(info.size()), info.data()));
  VS_FIXEDFILEINFO* fixed = nullptr;
  UINT size = 0;
  ASSERT_TRUE(VerQueryValueW(info.data(), L"\\", reinterpret_cast<void**>(&fixed), &size));
  EXPECT_EQ(HIWORD(fixed->dwFileVersionMS), ZO_COM_VERSION_MAJOR);
  EXPECT_EQ(LOWORD(fixed->dwFileVersionMS), ZO_COM_VERSION_MINOR);
  EXPECT_EQ(HIWORD(fixed->dwFileVersionLS), ZO_COM_VERSION_PATCH);
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
