// Files and libraries when memory runs out: nothing that was on the disk is lost.
#include <zo/files.h>
#include <zo/persist/file_archive.h>
#include <zo/strings.h>

#include <filesystem>
#include <initializer_list>
#include <new>
#include <string>
#include <vector>

#include "library/library_fixture.h"
#include "support/failing_memory.h"

namespace zo::test {
namespace {

// Once more where it throws: what failed for want of memory must not have broken what it belongs
// to.
template <class Try>
auto twice(Try once) {
  try {
    return once();
  } catch (const std::bad_alloc&) {
    return once();
  }
}

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
  failEveryRequest(
      "archive", [&] { return put(target, "old"), 0; },
      [&](int&) {
        ZoFileSave save;
        if (const int code = save.open(target)) return code;
        ZoFileWriteArchive archive(save.file());
        archive << ZoString(L"kept");
        return save.commit();
      },
      [&](int, bool done) {
        ZoString text;
        if (done) {
          ZoFile file;
          ASSERT_EQ(file.open(target), 0);
          ZoFileReadArchive(file).read(text);
        }
        EXPECT_TRUE(done ? text == L"kept" : bytesOf(target) == "old");
      });
  failEveryRequest(
      "createTemp", [&] { return std::filesystem::remove(target.fullName()), ZoFileName(); },
      [&](ZoFileName& made) {
        ZoFile file;
        made = name(L"temporary.tmp");
        return file.createTemp(made);
      },
      [&](const ZoFileName& made, bool done) {
        EXPECT_EQ(listing().size(), done ? 1u : 0u);
        if (done) {
          EXPECT_TRUE(std::filesystem::remove(made.fullName()));
        }
      });
}

TEST_F(OutOfMemoryInFiles, NamesSearchesAndTransfersCompleteOrSayNo) {
  const ZoFileName one = name(L"one.dwg"), copied = name(L"new\\folder\\copy");
  put(one, "1"), put(name(L"two.dwg"), "2");
  std::filesystem::create_directory(name(L"below").fullName());
  put(name(L"below\\three.dwg"), "3");
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
        return ZoFindFile().findAll(name(L"*.dwg"), names, true);
      },
      [](const ZoArray<ZoFileName>& names, bool done) {
        if (done) {
          EXPECT_EQ(names.entries(), 3u);
        }
      });
  failEveryRequest(
      "go on", [] { return 0u; },
      [&](unsigned& found) {
        found = 0;
        ZoFindFile find;
        if (const int code = find.open(name(L"*.dwg"), true)) return code;
        while (twice([&] { return find.next(); })) ++found;
        return find.result();
      },
      [](unsigned found, bool done) {
        if (done) {
          EXPECT_EQ(found, 3u);
        }
      });
  const auto transfer = [](const ZoFileName& from, const ZoFileName& to,
                           ZoFileTransfer::Mode mode) {
    ZoFileTransfer run;
    if (const int code = run.add(from, to)) return code;
    return run.run(mode);
  };
  failEveryRequest(
      "copy", [&] { return std::filesystem::remove_all(name(L"new").fullName()), 0; },
      [&](int&) { return transfer(one, copied, ZoFileTransfer::kCopy); },
      [&](int, bool done) {
        EXPECT_EQ(bytesOf(one), "1");
        if (done) {
          EXPECT_EQ(bytesOf(copied), "1");
        }
      });
  failEveryRequest(
      "move", [&] { return put(one, "moved"), std::filesystem::remove(copied.fullName()), 0; },
      [&](int&) { return transfer(one, copied, ZoFileTransfer::kMove); },
      [&](int, bool done) { EXPECT_EQ(bytesOf(done ? copied : one), "moved"); });
}

TEST_F(OutOfMemoryInFiles, LibrariesKeepTheirMembers) {
  const auto read = [&](std::initializer_list<const wchar_t*> members) {
    std::vector<std::string> contents;
    ZoLibrary library;
    EXPECT_EQ(library.open(path_), 0);
    for (const wchar_t* const member : members) {
      ZoFile file;
      std::string bytes = "(none)";
      if (!library.getFile(file, member)) {
        bytes.resize(static_cast<std::size_t>(file.size()));
        bytes.resize(file.read(bytes.data(), static_cast<unsigned>(bytes.size())));
      }
      contents.push_back(bytes);
    }
    return contents;
  };
  const auto fresh = [&] {
    std::filesystem::remove(path_.fullName());
    ZoLibrary library;
    EXPECT_EQ(openForWriting(library), 0);
    EXPECT_EQ(add(library, L"first", "the first"), 0);
    EXPECT_EQ(add(library, L"second", "the second", false, ZoLibrary::kCompress), 0);
    EXPECT_EQ(add(library, L"gone", "the gone one"), 0);
    EXPECT_EQ(library.deleteFile(L"gone"), 0);
    EXPECT_EQ(library.close(), 0);
    put(source_, "the new one");
    return 0;
  };
  using Operation = int (*)(ZoLibrary&, const ZoFileName& source, const ZoFileName& target);
  const struct {
    const char* what;
    Operation operation;
    const wchar_t* member;  // that it changes
    std::string before, after;
  } operations[] = {
      {"add",
       [](ZoLibrary& l, const ZoFileName& source, const ZoFileName&) {
         return l.addFile(source, L"third", true, ZoLibrary::kCompress);
       },
       L"third", "(none)", "the new one"},
      {"replace",
       [](ZoLibrary& l, const ZoFileName& source, const ZoFileName&) {
         return l.addFile(source, L"first", true, ZoLibrary::kCompress);
       },
       L"first", "the first", "the new one"},
      {"add in a batch",
       [](ZoLibrary& l, const ZoFileName& source, const ZoFileName&) {
         if (const int code = l.beginBatch()) return code;
         for (const wchar_t* const member : {L"first", L"third", L"fourth"}) {
           const auto addOne = [&] { return l.addFile(source, member, true, ZoLibrary::kStore); };
           if (const int code = twice(addOne)) return code;
         }
         const int code = l.endBatch();
         return code || (l.contains(L"third") && l.contains(L"fourth")) ? code : 99;
       },
       L"first", "the first", "the new one"},
      {"write as a file",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) {
         ZoFile file;
         if (const int code = l.getFile(file, L"third", ZoFile::kWrite)) return code;
         return file.write("written", 7) == 7 ? file.close() : 1;
       },
       L"third", "(none)", "written"},
      {"rename",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) {
         return l.contains(L"renamed") ? 0 : l.renameFile(L"first", L"renamed");
       },
       L"renamed", "(none)", "the first"},
      {"delete for good",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) {
         return l.contains(L"first") ? l.deleteFile(L"first", true) : 0;
       },
       L"first", "the first", "(none)"},
      {"recover",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) {
         return l.contains(L"gone") ? 0 : l.recoverFile(L"gone");
       },
       L"gone", "(none)", "the gone one"},
      {"reorganise",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) { return l.reorganize(); }, L"second",
       "the second", "the second"},
      {"extract",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName& target) {
         return l.extractFile(L"second", target);
       },
       L"second", "the second", "the second"},
      {"read as a file",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) {
         ZoFile file;
         char bytes[10];
         if (const int code = l.getFile(file, L"second")) return code;
         return file.read(bytes, 10) == 10 ? file.close() : 1;
       },
       L"second", "the second", "the second"},
      {"salvage",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName& target) {
         ZoLibrary into;
         if (const int code = into.open(target, ZoFile::kReadWrite, ZoFile::kCreateAlways))
           return code;
         if (const int code = l.salvageInto(into)) return code;
         const bool isAll = into.contains(L"first") && into.contains(L"second");
         return isAll ? into.close() : 99;
       },
       L"second", "the second", "the second"},
      {"list",
       [](ZoLibrary& l, const ZoFileName&, const ZoFileName&) {
         ZoArray<ZoFileName> names;
         return l.getFileNames(names);
       },
       L"second", "the second", "the second"},
  };
  for (const auto& [what, operation, member, before, after] : operations) {
    failEveryRequest(
        what, fresh,
        [&](int&) {
          ZoLibrary library;
          const int opened = openForWriting(library);
          if (opened) return opened;
          const int code = operation(library, source_, name(L"other"));
          return code ? code : library.close();
        },
        [&](int, bool done) {
          const auto contents = read({member, L"first", L"second"});
          const std::string& now = contents[0];
          EXPECT_TRUE(now == after || (!done && now == before)) << now;
          EXPECT_TRUE(contents[1] == "the first" || now == after) << contents[1];
          EXPECT_EQ(contents[2], "the second");
        });
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace zo::test
