#include "platform/output_file.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/utf8_writer.h"
#include "support/faulty_files.h"
#include "support/file_bytes.h"
#include "support/temp_folder.h"

namespace {

using zo::test::Fault;
using zo::test::fileBytes;

std::string utf8(const std::vector<std::wstring>& pieces) {
  const zo::test::TempFolder folder;
  const std::filesystem::path path = folder.path() / L"text";
  zo::OutputFile file(path.c_str());
  zo::Utf8Writer writer(file);
  for (const std::wstring& piece : pieces) writer << piece;
  writer.flush();
  EXPECT_EQ(file.close(), 0);
  return fileBytes(path);
}

}  // namespace

TEST(OutputFile, TheFirstFailureIsReportedAndEndsWriting) {
  const zo::test::TempFolder folder;
  const std::filesystem::path path = folder.path() / L"\x65E5 file";
  zo::test::FaultyFiles files;
  const struct {
    Fault fault;
    int reported;  // a short write claims success
    const char* left;
  } cases[] = {{Fault::fail, ERROR_NETNAME_DELETED, "one,"},
               {Fault::shorten, ERROR_HANDLE_DISK_FULL, "one,tw"},
               {Fault::none, 0, "one,two,three"}};
  for (const auto& [fault, reported, left] : cases) {
    files.arm({.fault = fault, .call = "write", .nth = 2, .error = ERROR_NETNAME_DELETED});
    zo::OutputFile file(path.c_str());
    file.write("one,", 4);
    EXPECT_EQ(file.error(), 0);
    file.write("two,", 4);
    EXPECT_EQ(file.error(), reported);
    file.write("three", 5);
    EXPECT_EQ(file.close(), reported);
    EXPECT_EQ(fileBytes(path), left);
  }
  zo::OutputFile none((folder.path() / L"none" / L"file").c_str());
  none.write("x", 1);
  EXPECT_EQ(none.close(), ERROR_PATH_NOT_FOUND);
}

TEST(Utf8Writer, EncodesWhateverIsGivenInWhateverPieces) {
  const struct {
    std::vector<std::wstring> pieces;
    const char* bytes;
  } cases[] = {{{}, ""},
               {{L"", L"a\n", L"b\r\n"}, "a\nb\r\n"},
               {{L"\x7F\x80\x7FF\x800\xFFFF"}, "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
               {{L"\xD83D\xDE00", L"\xD83D", L"\xDE00"}, "\xF0\x9F\x98\x80\xF0\x9F\x98\x80"},
               {{L"\xD83D", L"x\xDE00", L"\xD83D"}, "\xEF\xBF\xBDx\xEF\xBF\xBD\xEF\xBF\xBD"}};
  for (const auto& [pieces, bytes] : cases) EXPECT_EQ(utf8(pieces), bytes);
}

TEST(Utf8Writer, LosesNothingWhereABlockEnds) {
  for (size_t ahead = 32 * 1024 - 4; ahead < 32 * 1024 + 2; ++ahead) {
    const std::wstring start(ahead, L'x'), rest(70'000, L'\x65E5');
    std::string expected = std::string(ahead, 'x') + "\xF0\x9F\x98\x80";
    for (size_t i = 0; i < rest.size(); ++i) expected += "\xE6\x97\xA5";
    // No EXPECT_EQ: it would print them.
    EXPECT_TRUE(utf8({start, L"\xD83D", L"\xDE00", rest}) == expected) << ahead;
    EXPECT_TRUE(utf8({start + L"\xD83D\xDE00" + rest}) == expected) << ahead;
  }
}
