// Files and libraries when memory runs out: nothing that was on the disk is lost.
#include <zo/files.h>
#include <zo/strings.h>

#include <memory>
#include <set>
#include <string>

#include "library/library_fixture.h"
#include "support/failing_memory.h"

namespace zo::test {
namespace {

class OutOfMemoryInFiles : public LibraryTest {
 protected:
  UnflushedFiles unflushed_;
};

TEST_F(OutOfMemoryInFiles, SavingLeavesTheOldFileOrTheNewOne) {
  const ZoFileName target = name(L"saved.txt");
  failEveryRequest(
      "save", [&] { return put(target, "old"), 0; },
      [&](int&) {
        ZoFileSave save;
        if (const int code = save.open(target)) return code;
        if (save.file().write("new", 3) != 3) return 1;
        return save.commit();
      },
      [&](int, bool done) {
        EXPECT_EQ(bytesOf(target), done ? "new" : "old");
        EXPECT_EQ(listing(), Names{L"saved.txt"});
      });
}

TEST_F(OutOfMemoryInFiles, NamesSearchesAndTransfersCompleteOrSayNo) {
  put(name(L"one.dwg"), "1"), put(name(L"two.dwg"), "2");
  failEveryRequest(
      "name", [] { return ZoFileName(L"old"); },
      [](ZoFileName& n) {
        n = ZoFileName(L"C:\\a folder with a long name\\and another one\\file.dwg");
        return n.fileName() == std::wstring_view(L"file") ? 0 : 1;
      },
      [](const ZoFileName& n, bool done) {
        if (!done) {
          EXPECT_STREQ(n.fullName(), L"old");
        }
      });
  failEveryRequest(
      "find", [] { return ZoArray<ZoFileName>(); },
      [&](ZoArray<ZoFileName>& names) {
        names.removeAll();
        return ZoFindFile().findAll(name(L"*.dwg"), names);
      },
      [](const ZoArray<ZoFileName>& names, bool done) {
        if (done) {
          EXPECT_EQ(names.entries(), 2u);
        }
      });
  failEveryRequest(
      "copy", [&] { return std::filesystem::remove(name(L"copy").fullName()), 0; },
      [&](int&) {
        ZoFileTransfer transfer;
        if (const int code = transfer.add(name(L"one.dwg"), name(L"copy"))) return code;
        return transfer.run(ZoFileTransfer::kCopy);
      },
      [&](int, bool done) {
        EXPECT_EQ(bytesOf(name(L"one.dwg")), "1");
        if (done) {
          EXPECT_EQ(bytesOf(name(L"copy")), "1");
        }
      });
}

TEST_F(OutOfMemoryInFiles, LibrariesKeepTheirMembers) {
  const auto read = [&](const wchar_t* member) {
    ZoLibrary library;
    ZoFile file;
    if (library.open(path_) || library.getFile(file, member)) return std::string("(none)");
    std::string bytes(static_cast<std::size_t>(file.size()), ' ');
    bytes.resize(file.read(bytes.data(), static_cast<unsigned>(bytes.size())));
    return bytes;
  };
  const auto fresh = [&] {
    std::filesystem::remove(path_.fullName());
    ZoLibrary library;
    EXPECT_EQ(openForWriting(library), 0);
    EXPECT_EQ(add(library, L"first", "the first"), 0);
    EXPECT_EQ(add(library, L"second", "the second", false, ZoLibrary::kCompress), 0);
    EXPECT_EQ(library.close(), 0);
    put(source_, "the new one");
    return 0;
  };
  using Operation = int (*)(ZoLibrary&, const ZoFileName& source, const ZoFileName& target);
  const struct {
    const char* what;
    Operation operation;
    std::set<std::string> first, second;  // what the members may hold afterwards
  } operations[] = {
      {"add",
       [](ZoLibrary& l, const ZoFileName& source, const ZoFileName&) {
         return l.addFile(source, L"third", true, ZoLibrary::kCompress);
       },
       {"the first"},
       {"the second"}},
      {"replace",
       [](ZoLibrary& l, const ZoFileName& source, const ZoFileName&) {
         return l.addFile(source, L"first", true, ZoLibrary::kCompress);
       },
       {"the first", "the new one"},
       {"the second"}},
      {"rename",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) {
         return l.contains(L"renamed") ? 0 : l.renameFile(L"first", L"renamed");
       },
       {"the first", "(none)"},
       {"the second"}},
      {"delete for good",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) {
         return l.contains(L"first") ? l.deleteFile(L"first", true) : 0;
       },
       {"the first", "(none)"},
       {"the second"}},
      {"reorganise",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) { return l.reorganize(); },
       {"the first"},
       {"the second"}},
      {"extract",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName& target) {
         return l.extractFile(L"second", target);
       },
       {"the first"},
       {"the second"}},
      {"list",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) {
         ZoArray<ZoFileName> names;
         return l.getFileNames(names);
       },
       {"the first"},
       {"the second"}},
  };
  for (const auto& [what, operation, first, second] : operations) {
    failEveryRequest(
        what, fresh,
        [&](int&) {
          ZoLibrary library;
          const int opened = openForWriting(library);
          if (opened) return opened;
          const int code = operation(library, source_, name(L"extracted"));
          return code ? code : library.close();
        },
        [&](int, bool done) {
          EXPECT_TRUE(first.contains(read(L"first"))) << read(L"first");
          EXPECT_TRUE(second.contains(read(L"second"))) << read(L"second");
          if (done && first.size() == 2) {
            EXPECT_NE(read(L"first"), "the first");
          }
        });
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace zo::test
