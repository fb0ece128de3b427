// The stand-in for the framework's file over a stdio stream.
#include <gtest/gtest.h>
#include <windows.h>
#include <zo/host/stdio_file.h>

#include <filesystem>
#include <string>

#include "support/open_handles.h"
#include "support/temp_folder.h"

namespace zo::test {
namespace {

class StdioFile : public ::testing::Test {
 protected:
  static constexpr unsigned int kNew = CFile::modeCreate | CFile::modeReadWrite;

  std::wstring name(const wchar_t* relative) const { return (folder_.path() / relative).wstring(); }
  static std::string readAll(CFile& file) {
    std::string text(100, '?');
    text.resize(file.Read(text.data(), 100));
    return text;
  }
  // The platform's code in what an operation throws; -1 when it throws nothing.
  template <class Operation>
  static long errorOf(Operation operation) {
    try {
      operation();
    } catch (CFileException* thrown) {
      const long error = thrown->m_lOsError;
      thrown->Delete();
      return error;
    }
    return -1;
  }
  TempFolder folder_;
};

TEST_F(StdioFile, WritesReadsAndSeeksAsTextOrBinary) {
  for (const auto& [type, stored] : {std::pair{CFile::typeText, 6ULL}, {CFile::typeBinary, 5ULL}}) {
    CStdioFile file(name(L"f").c_str(), kNew | type);
    file.Write("ab\ncd", 5);
    EXPECT_EQ(file.GetLength(), stored) << "with what the stream still has";
    EXPECT_EQ(file.GetPosition(), stored) << "which stays where it was";
    file.Flush();
    EXPECT_EQ(std::filesystem::file_size(name(L"f")), stored);
    EXPECT_EQ(file.Seek(-2, CFile::end), stored - 2);
    EXPECT_EQ(readAll(file), "cd");
    EXPECT_EQ(file.Seek(0, CFile::begin), 0U);
    EXPECT_EQ(readAll(file), "ab\ncd");
    file.Close();
    file.Close();  // once is enough
  }
}

TEST_F(StdioFile, AStreamIsItsOwnersAndAFileItsOwn) {
  const unsigned long before = openHandles();
  std::FILE* const stream = _wfopen(name(L"s").c_str(), L"w+b");
  ASSERT_NE(stream, nullptr);
  {
    CStdioFile(stream).Write("x", 1);
  }
  EXPECT_EQ(std::fclose(stream), 0) << "still open";
  {
    CStdioFile file(name(L"s").c_str(), CFile::modeRead);
    EXPECT_TRUE(file.Open(name(L"s").c_str(), CFile::modeRead)) << "in the place of the first";
    EXPECT_EQ(readAll(file), "x");
  }
  EXPECT_EQ(openHandles(), before);
}

TEST_F(StdioFile, FailuresAreThrownAndOpenAnswersThem) {
  CStdioFile closed;
  EXPECT_FALSE(closed.Open(name(L"none\\f").c_str(), CFile::modeRead));
  EXPECT_FALSE(closed.Open(nullptr, CFile::modeRead));
  EXPECT_EQ(errorOf([&] { CStdioFile(name(L"none").c_str(), CFile::modeRead); }),
            ERROR_FILE_NOT_FOUND);
  char byte = 'x';
  EXPECT_EQ(errorOf([&] { closed.Read(&byte, 1); }), ERROR_INVALID_HANDLE);
  EXPECT_EQ(errorOf([&] { closed.Write(&byte, 1); }), ERROR_INVALID_HANDLE);
  EXPECT_EQ(errorOf([&] { closed.Seek(0, CFile::begin); }), ERROR_INVALID_HANDLE);
  EXPECT_EQ(errorOf([&] { closed.GetPosition(); }), ERROR_INVALID_HANDLE);
  EXPECT_EQ(errorOf([&] { closed.GetLength(); }), ERROR_INVALID_HANDLE);
  EXPECT_EQ(errorOf([&] { closed.Flush(); }), -1);
  CStdioFile file(name(L"f").c_str(), kNew);
  EXPECT_GT(errorOf([&] { file.Seek(-1, CFile::begin); }), 0) << "with a reason";
  file.Close();
  CStdioFile reader(name(L"f").c_str(), CFile::modeRead);
  EXPECT_GT(errorOf([&] {
              reader.Write(&byte, 1);
              reader.Flush();
            }),
            0);
}

}  // namespace
}  // namespace zo::test
