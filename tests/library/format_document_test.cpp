// The hexdump of docs/formats/library.md is what the code writes and reads.
#include "library/format.h"
#include "library/library_fixture.h"
#include "library/write_lock.h"
#include "support/documents.h"

using namespace zo::test;

TEST_F(LibraryTest, DocumentShowsWhatIsWritten) {
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(add(library, L"a.txt", "hello"), 0);
  ASSERT_EQ(add(library, L"B", std::string(20, 'x'), false, ZoLibrary::kCompress, 1024), 0);
  for (const wchar_t* const member : {L"a.txt", L"B"}) {
    ZoFile file;
    ASSERT_EQ(library.getFile(file, member), 0);
    EXPECT_EQ(file.setCreationTime({0x69050000, 0x01D5C036}), 0);
    EXPECT_EQ(file.setLastAccessTime({0x0C358000, 0x01D6DFD1}), 0);
    EXPECT_EQ(file.setLastWriteTime({0x84FC4000, 0x01D7FEA2}), 0);
  }
  ASSERT_EQ(library.deleteFile(L"a.txt"), 0);
  ASSERT_EQ(library.setCheckSum(0x0102030405060708), 0);
  ASSERT_EQ(library.close(), 0);
  EXPECT_EQ(hexdumpOf("docs/formats/library.md", "hexdump library"), bytesOf(path_));
  for (std::size_t at = 455; at < 512 + 460; ++at) {
    EXPECT_EQ(zo::gateOf(at).offset, at % 512 >= 459 && at % 512 <= 461 ? 8u : 50u) << at;
  }
  EXPECT_EQ(zo::writeLockName(L"C:\\Parts\\a.lib"), zo::writeLockName(L"c:\\parts\\A.LIB"));
}
