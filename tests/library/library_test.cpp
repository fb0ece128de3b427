// What libraries promise: every operation against a model, result codes, names, foreign files.
#include "library/library_fixture.h"

using namespace zo::test;

namespace {

// What a library should hold: members in the order of the file.
struct Model {
  struct Member {
    std::wstring name;
    std::string bytes;
    bool isDeleted = false;
  };
  std::vector<Member> members;

  Member* live(const std::wstring& name) {
    for (Member& member : members) {
      if (!member.isDeleted && _wcsicmp(member.name.c_str(), name.c_str()) == 0) return &member;
    }
    return nullptr;
  }
  Member* lastDeleted(const std::wstring& name) {
    for (auto at = members.rbegin(); at != members.rend(); ++at) {
      if (at->isDeleted && _wcsicmp(at->name.c_str(), name.c_str()) == 0) return &*at;
    }
    return nullptr;
  }

  int add(const std::wstring& name, const std::string& bytes, bool replace) {
    if (Member* const old = live(name)) {
      if (!replace) return 1001;
      old->isDeleted = true;
    }
    members.push_back({name, bytes});
    return 0;
  }
  int rename(const std::wstring& from, const std::wstring& to) {
    Member* const member = live(from);
    if (!member) return 1;
    if (live(to) && live(to) != member) return 1001;
    if (from.size() == to.size()) {
      member->name = to;
    } else {
      const std::string bytes = member->bytes;
      member->isDeleted = true;
      members.push_back({to, bytes});
    }
    return 0;
  }
  int remove(const std::wstring& name, bool physically) {
    Member* const member = live(name);
    if (!member) return 1;
    if (physically) {
      members.erase(members.begin() + (member - members.data()));
    } else {
      member->isDeleted = true;
    }
    return 0;
  }
  int recover(const std::wstring& name) {
    if (live(name)) return 1001;
    Member* const member = lastDeleted(name);
    if (member) member->isDeleted = false;
    return member ? 0 : 1;
  }
  void reorganize() {
    std::erase_if(members, [](const Member& member) { return member.isDeleted; });
  }
};

}  // namespace

TEST_F(LibraryTest, HoldsWhatAModelHoldsThroughAnyOperations) {
  for (const unsigned seed : {1U, 2U, 3U}) {
    std::mt19937 random(seed);
    const auto below = [&random](unsigned n) { return random() % n; };
    const auto anyName = [&] {
      static constexpr const wchar_t* kNames[] = {L"a",         L"B",         L"bb",
                                                  L"dir/c.dwg", L"dir/C.dwh", L"\x00E4\x00F6.txt"};
      return std::wstring(kNames[below(6)]);
    };
    DeleteFileW(path_.fullName());
    Model model;
    ZoLibrary library;
    ASSERT_EQ(openForWriting(library), 0);
    std::uint32_t added = 0;
    for (int step = 0; step < 40; ++step) {
      const std::wstring name = anyName(), other = anyName();
      int expected = 0, code = 0;
      switch (below(8)) {
        case 0:
        case 1:
        case 2: {
          std::string bytes(below(3) ? below(700) : below(70000), static_cast<char>(random()));
          for (std::size_t i = 0; i < bytes.size(); i += 1 + below(40))
            bytes[i] = static_cast<char>(i);
          const bool replace = below(2) == 0;
          expected = model.add(name, bytes, replace);
          code = add(library, name, bytes, replace, static_cast<ZoLibrary::compMode>(below(3)),
                     1024 << below(3));
          added += code == 0;
          break;
        }
        case 3:
          expected = model.rename(name, other);
          code = library.renameFile(name.c_str(), other.c_str());
          break;
        case 4:
        case 5: {
          const bool physically = below(3) == 0;
          expected = model.remove(name, physically);
          code = library.deleteFile(name.c_str(), physically);
          break;
        }
        case 6:
          expected = model.recover(name);
          code = library.recoverFile(name.c_str());
          break;
        default:
          if (below(3) == 0) {
            model.reorganize();
            code = library.reorganize();
          } else {
            ASSERT_EQ(library.close(), 0);
            code = openForWriting(library);
          }
      }
      ASSERT_EQ(code, expected) << "seed " << seed << ", step " << step;
      if (step % 4 && code == 0) continue;
      // A reader beside the writer sees the same.
      ZoLibrary reader;
      ASSERT_EQ(reader.open(path_), 0);
      for (ZoLibrary* const seen : {&library, &reader}) {
        std::vector<std::wstring> expectedNames;
        for (const Model::Member& member : model.members) {
          expectedNames.push_back((member.isDeleted ? L"-" : L"") + member.name);
        }
        ASSERT_EQ(names(*seen, true), expectedNames) << "seed " << seed << ", step " << step;
        EXPECT_EQ(seen->counter(), added);
        EXPECT_EQ(seen->trailingBytes(), 0u);
      }
      if (const Model::Member* const member = model.live(name)) {
        ASSERT_EQ(content(reader, name), member->bytes) << "seed " << seed << ", step " << step;
      }
    }
    library.forEachEntry(
        [&](const ZoLibEntry& entry) {
          EXPECT_TRUE(entry.isProtected);
          return true;
        },
        true);
    for (const Model::Member& member : model.members) {
      if (!member.isDeleted) {
        EXPECT_EQ(content(library, member.name), member.bytes);
      }
    }
  }
}

TEST_F(LibraryTest, AnswersWithTheCodesOfItsTable) {
  ZoLibrary library;
  const ZoFileName url(L"http://host/a"), none(L"none"), a(L"a"), b(L"b"), target = name(L"out");
  ZoFile file;
  std::FILE* stream = nullptr;
  struct Row {
    const char* what;
    std::function<int()> call;
    int closed, readOnly, writable;
  };
  put(source_, "new");
  const std::vector<Row> rows = {
      {"add", [&] { return library.addFile(source_, L"new"); }, 1, 1004, 0},
      {"add again", [&] { return library.addFile(source_, L"A"); }, 1, 1004, 1001},
      {"add a URL", [&] { return library.addFile(source_, url); }, 1, 3, 3},
      {"add what is not there", [&] { return library.addFile(none, L"n"); }, 1, 1004, 1},
      {"add without a name", [&] { return library.addFile(source_, L""); }, 1, 1004, 1},
      {"add a name that is not ANSI", [&] { return library.addFile(source_, L"\x0416"); }, 1, 1004,
       1},
      {"add a name with best fit", [&] { return library.addFile(source_, L"\x0100"); }, 1, 1004, 1},
      {"extract", [&] { return library.extractFile(a, target); }, 1, 0, 0},
      {"extract nothing", [&] { return library.extractFile(none, target); }, 1, 1, 1},
      {"extract a URL", [&] { return library.extractFile(url, target); }, 1, 3, 3},
      {"extract to a URL", [&] { return library.extractFile(a, url); }, 1, 3, 3},
      {"rename", [&] { return library.renameFile(a, b); }, 1, 1004, 1001},
      {"rename nothing", [&] { return library.renameFile(none, L"n"); }, 1, 1004, 1},
      {"rename to a URL", [&] { return library.renameFile(a, url); }, 1, 1004, 3},
      {"delete nothing", [&] { return library.deleteFile(none); }, 1, 1004, 1},
      {"delete a URL", [&] { return library.deleteFile(url, true); }, 1, 3, 3},
      {"recover", [&] { return library.recoverFile(L"gone"); }, 1, 1004, 0},
      {"recover a live name", [&] { return library.recoverFile(b); }, 1, 1004, 1001},
      {"recover nothing", [&] { return library.recoverFile(none); }, 1, 1004, 1},
      {"get", [&] { return library.getFile(file, a); }, 1, 0, 0},
      {"get nothing", [&] { return library.getFile(file, none); }, 1, 1, 1},
      {"get for writing", [&] { return library.getFile(file, L"w", ZoFile::kWrite); }, 1, 1004, 0},
      {"get a URL", [&] { return library.getFile(file, url); }, 1, 3, 3},
      {"get a stream to write", [&] { return library.getCFile(&stream, a, ZoFile::kWrite); }, 1, 1,
       1},
      {"reorganize", [&] { return library.reorganize(); }, 1, 1004, 0},
      {"set the value", [&] { return library.setCheckSum(7); }, 1, 1004, 0},
  };
  const auto check = [&](int Row::* expected) {
    for (const Row& row : rows) EXPECT_EQ(row.call(), row.*expected) << row.what;
  };
  check(&Row::closed);
  EXPECT_FALSE(library.contains(a));
  EXPECT_EQ(library.checkSum(), 0u);
  EXPECT_EQ(library.open(path_), 1);  // not there

  ASSERT_EQ(openForWriting(library), 0);
  for (const wchar_t* const member : {L"a", L"b", L"gone"}) ASSERT_EQ(add(library, member, "x"), 0);
  ASSERT_EQ(library.deleteFile(L"gone"), 0);
  put(source_, "new");
  check(&Row::writable);
  EXPECT_EQ(file.close(), 0);
  EXPECT_EQ(names(library), (Names{L"a", L"b", L"gone", L"new", L"w"}));
  // The longest name, and one byte more.
  const std::wstring longest(65535, L'n');
  EXPECT_EQ(library.addFile(source_, ZoFileName(longest)), 0);
  EXPECT_EQ(library.addFile(source_, ZoFileName(longest + L"n")), 1);
  EXPECT_EQ(content(library, longest), "new");
  ASSERT_EQ(library.deleteFile(L"gone"), 0);
  EXPECT_EQ(library.close(), 0);

  ASSERT_EQ(library.open(path_), 0);
  check(&Row::readOnly);
  EXPECT_EQ(library.checkSum(), 7u);
  EXPECT_TRUE(library.contains(L"W"));
  EXPECT_FALSE(library.contains(L"gone"));
  EXPECT_TRUE(library.isLibrary());
}

TEST_F(LibraryTest, KeepsTimesSizesAndModes) {
  const FILETIME times[] = {{1, 0x01D00000}, {2, 0x01D10000}, {3, 0x01D20000}};
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  const std::string text(5000, 't');
  struct Row {
    const wchar_t* name;
    ZoLibrary::compMode mode;
    int level;
    unsigned kept, flags;
  };
  const Row rows[] = {{L"stored", ZoLibrary::kStore, ZoLibrary::kBest, 0, 0},
                      {L"fast", ZoLibrary::kCompress, 1024, 1024, 0x100},
                      {L"normal", ZoLibrary::kCompress, 77, 2048, 0x100},
                      {L"best", ZoLibrary::kAutomatic, 4096, 4096, 0x100}};
  for (const Row& row : rows) {
    put(source_, text);
    ZoFile source;
    ASSERT_EQ(source.open(source_, ZoFile::kReadWrite), 0);
    source.setLastAccessTime(times[1]);
    source.setLastWriteTime(times[2]);
    ASSERT_EQ(library.addFile(source, row.name, false, row.mode, row.level), 0);
  }
  ASSERT_EQ(add(library, L"noise", "\1\2\3\4\5\6", false, ZoLibrary::kAutomatic), 0);
  ZoLibEntry entry;
  for (const Row& row : rows) {
    ASSERT_EQ(library.getEntry(row.name, entry), 0);
    EXPECT_EQ(entry.mode, row.kept) << row.name;
    EXPECT_EQ(entry.flags, row.flags);
    EXPECT_EQ(entry.size, text.size());
    EXPECT_EQ(entry.storedSize < 100, row.flags != 0);
    EXPECT_EQ(CompareFileTime(&entry.written, &times[2]), 0);
    EXPECT_EQ(library.verify(entry), 0);
    const ZoFileName target = name(L"target");
    ASSERT_EQ(library.extractFile(row.name, target), 0);
    ZoFile out;
    ASSERT_EQ(out.open(target), 0);
    const FILETIME accessed = out.lastAccessTime(), written = out.lastWriteTime();
    EXPECT_EQ(CompareFileTime(&accessed, &times[1]), 0);
    EXPECT_EQ(bytesOf(target), text);
    EXPECT_EQ(CompareFileTime(&written, &times[2]), 0);
  }
  ASSERT_EQ(library.getEntry(L"noise", entry), 0);
  EXPECT_EQ(entry.storedSize, 6u);
  EXPECT_EQ(entry.mode, 0u);
  ZoArray<ZoFileName> all;
  ZoArray<FILETIME> written;
  ZoArray<unsigned int> sizes;
  ASSERT_EQ(library.getFileNames(all, false, &written, &sizes), 0);
  EXPECT_EQ(all.entries(), 5u);
  EXPECT_EQ(sizes[4], 6u);
  EXPECT_EQ(CompareFileTime(&written[0], &times[2]), 0);
}

// Files that other programs made, and what becomes of them when they are written to.
TEST_F(LibraryTest, ReadsWhateverAFileHolds) {
  const std::string a = HandMade{.name = "a", .data = "first", .number = 77, .crc = 5}.bytes();
  const std::string a2 = HandMade{.name = "A", .data = "second"}.bytes();
  const std::string last = HandMade{.name = "last", .data = "l", .flags = 0x80}.bytes();
  const std::string foreign(32, '?');
  struct Row {
    const char* what;
    std::string bytes;
    Names names;
    bool isLibrary;
    std::uint64_t trailing;
    int missing, adding;
  };
  const Row rows[] = {
      {"empty", "", {}, false, 0, 1, 0},
      {"short", "ZORVEX", {}, false, 0, 1, 0},
      {"a text", "Dear Sir", {}, false, 0, 1, 1},
      {"a longer text", std::string(500, 't'), {}, false, 468, 1, 1},
      {"no magic", foreign + a, {L"a"}, false, 0, 1, 0},
      {"no magic, more behind", foreign + a + "x", {L"a"}, false, 1, 1, 1},
      {"duplicates", header() + a + a2, {L"a", L"A"}, true, 0, 1, 0},
      {"a mark", header() + a + last + a2, {L"a", L"last"}, true, 0, 1002, 0},
      {"a torn entry", header() + a + a2.substr(0, 57), {L"a"}, true, 57, 1, 0},
      {"zeros", header() + a + std::string(99, '\0'), {L"a"}, true, 99, 1, 0},
      {"a huge size",
       header() + a + HandMade{.name = "h", .storedSize = 1ULL << 62}.bytes(),
       {L"a"},
       true,
       55,
       1,
       0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    put(path_, row.bytes);
    ZoLibrary library;
    ASSERT_EQ(library.open(path_), 0);
    EXPECT_EQ(names(library), row.names);
    EXPECT_EQ(library.isLibrary(), row.isLibrary);
    EXPECT_EQ(library.trailingBytes(), row.trailing);
    EXPECT_EQ(library.extractFile(L"missing", name(L"x")), row.missing);
    if (!row.names.empty()) {
      EXPECT_EQ(content(library, L"a"), "first");
      ZoLibEntry entry;
      ASSERT_EQ(library.getEntry(L"a", entry), 0);
      EXPECT_FALSE(entry.isProtected);
      EXPECT_EQ(library.verify(entry), 0);
    }
    ASSERT_EQ(openForWriting(library), 0);
    EXPECT_EQ(add(library, L"added", "new"), row.adding);
    Names expected = row.names;
    if (row.adding == 0) expected.push_back(L"added");
    EXPECT_EQ(names(library), expected);
    ASSERT_EQ(library.close(), 0);
    if (row.adding) {
      EXPECT_EQ(bytesOf(path_), row.bytes);
    } else {
      ASSERT_EQ(openForWriting(library), 0);
      EXPECT_EQ(names(library), expected);
      EXPECT_EQ(content(library, L"added"), "new");
      if (row.names.empty()) continue;
      // All of a name go, or the second would come to light.
      EXPECT_EQ(library.renameFile(L"a", L"longer"), 0);
      EXPECT_FALSE(library.contains(L"a"));
      EXPECT_EQ(content(library, L"longer"), "first");
    }
  }
}

TEST_F(LibraryTest, NamesADamageAndMakesItNoWorse) {
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  const std::string text(3000, 'x');
  for (const wchar_t* const member : {L"one", L"two", L"three", L"four"}) {
    const auto mode = member[0] == L't' ? ZoLibrary::kCompress : ZoLibrary::kStore;
    ASSERT_EQ(add(library, member, text + static_cast<char>(member[0]), false, mode), 0);
  }
  ZoLibEntry two, four;
  ASSERT_EQ(library.getEntry(L"two", two), 0);
  ASSERT_EQ(library.getEntry(L"four", four), 0);
  ASSERT_EQ(library.close(), 0);
  const std::string whole = bytesOf(path_);

  // The data of a stored and of a compressed member.
  std::string damaged = whole;
  damaged[static_cast<std::size_t>(four.position) + 60] ^= 1;
  damaged[static_cast<std::size_t>(two.position) + 57 + 20] ^= 1;
  put(path_, damaged);
  ASSERT_EQ(library.open(path_), 0);
  EXPECT_EQ(library.verify(four), 1000);
  EXPECT_NE(library.verify(two), 0);
  put(name(L"extracted"), "before");
  EXPECT_EQ(library.extractFile(L"four", name(L"extracted")), 1);
  EXPECT_EQ(bytesOf(name(L"extracted")), "before");
  EXPECT_EQ(listing(), (Names{L"extracted", L"parts.lib", L"source"}));

  // A stored size that hides all that follows: nothing writes, the rest is saved.
  damaged = whole;
  damaged[static_cast<std::size_t>(two.position) + 14] = 1;
  put(path_, damaged);
  ASSERT_EQ(openForWriting(library), 0);
  EXPECT_EQ(names(library), (Names{L"one"}));
  EXPECT_EQ(add(library, L"five", "5"), 1);
  EXPECT_EQ(library.reorganize(), 1);
  ZoLibrary rescued;
  ASSERT_EQ(rescued.open(name(L"rescued.lib"), kReadWrite, ZoFile::kCreateAlways), 0);
  std::map<std::wstring, int> codes;
  EXPECT_EQ(library.salvageInto(rescued,
                                [&](const ZoLibEntry& entry, int code) {
                                  codes[std::wstring(entry.name.view())] = code;
                                  return true;
                                }),
            0);
  EXPECT_EQ(codes, (std::map<std::wstring, int>{{L"one", 0}, {L"three", 0}, {L"four", 0}}));
  EXPECT_EQ(names(rescued), (Names{L"one", L"three", L"four"}));
  EXPECT_EQ(content(rescued, L"three"), text + "t");
  EXPECT_EQ(bytesOf(path_), damaged);
}

TEST_F(LibraryTest, CancelsAtAnyStepAndIsThenAsItWas) {
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  const std::string large(400'000, 'l');
  ASSERT_EQ(add(library, L"old", "old"), 0);
  ASSERT_EQ(add(library, L"large", large), 0);
  ASSERT_EQ(library.deleteFile(L"old"), 0);
  put(source_, large);
  const std::string before = bytesOf(path_);
  const ZoFileName target = name(L"target");
  put(target, "target");
  const std::vector<std::pair<const char*, std::function<int()>>> calls = {
      {"add", [&] { return library.addFile(source_, L"new", false, ZoLibrary::kStore); }},
      {"compress",
       [&] { return library.addFile(source_, L"new", false, ZoLibrary::kCompress, 1024); }},
      {"replace",
       [&] { return library.addFile(source_, L"large", true, ZoLibrary::kAutomatic, 1024); }},
      {"rename", [&] { return library.renameFile(L"large", L"longer"); }},
      {"extract", [&] { return library.extractFile(L"large", target); }},
      {"reorganize", [&] { return library.reorganize(); }},
  };
  for (const auto& [what, call] : calls) {
    SCOPED_TRACE(what);
    int steps = 0;
    for (int at = 1, code = 1; code != 0 && at < 100; ++at) {
      std::uint64_t last = 0, total = 0;
      steps = 0;
      library.onProgress([&](std::uint64_t done, std::uint64_t all) {
        EXPECT_LE(last, done);
        last = done, total = all;
        return ++steps != at;
      });
      code = call();
      EXPECT_EQ(library.wasCancelled(), code != 0);
      if (code == 0) {
        EXPECT_EQ(last, total);
        EXPECT_GE(total, large.size());
        break;
      }
      ASSERT_EQ(bytesOf(path_), before) << at;
      EXPECT_EQ(names(library, true), (Names{L"-old", L"large"}));
      EXPECT_EQ(bytesOf(target), "target");
      EXPECT_EQ(listing(), (Names{L"parts.lib", L"source", L"target"}));
    }
    EXPECT_GE(steps, 4);
    library.onProgress(nullptr);
    ASSERT_EQ(library.close(), 0);
    put(path_, before);
    put(target, "target");
    ASSERT_EQ(openForWriting(library), 0);
  }
}

TEST_F(LibraryTest, AddsABatchInOneStep) {
  ZoLibrary library, reader;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(add(library, L"old", "old"), 0);
  ASSERT_EQ(reader.open(path_), 0);
  const std::string before = bytesOf(path_);
  const auto fill = [&] {
    ASSERT_EQ(library.beginBatch(), 0);
    EXPECT_EQ(add(library, L"one", "1"), 0);
    EXPECT_EQ(add(library, L"ONE", "2"), 1001);
    EXPECT_EQ(add(library, L"old", "2"), 1001);
    EXPECT_EQ(add(library, L"old", "new", true), 0);
    library.onProgress([](std::uint64_t done, std::uint64_t) { return done == 0; });
    EXPECT_EQ(add(library, L"cancelled", std::string(5000, 'c')), 1);
    library.onProgress(nullptr);
    EXPECT_EQ(add(library, L"two", "2", false, ZoLibrary::kCompress), 0);
    EXPECT_EQ(names(library, true), (Names{L"old"}));
    EXPECT_EQ(names(reader, true), (Names{L"old"}));
    EXPECT_EQ(content(library, L"old"), "old");
  };
  fill();
  EXPECT_EQ(library.cancelBatch(), 0);
  EXPECT_EQ(bytesOf(path_), before);
  EXPECT_EQ(names(library, true), (Names{L"old"}));
  fill();
  EXPECT_EQ(library.endBatch(), 0);
  const Names expected{L"-old", L"one", L"old", L"two"};
  for (ZoLibrary* const seen : {&library, &reader}) {
    EXPECT_EQ(names(*seen, true), expected);
    EXPECT_EQ(content(*seen, L"old"), "new");
    EXPECT_EQ(content(*seen, L"two"), "2");
    EXPECT_EQ(seen->counter(), 4u);
  }
  // A second member of a name, another change, and closing end a batch.
  ASSERT_EQ(library.beginBatch(), 0);
  EXPECT_EQ(add(library, L"x", "1"), 0);
  EXPECT_EQ(add(library, L"X", "2", true), 0);
  EXPECT_EQ(names(library), (Names{L"one", L"old", L"two", L"x"}));
  EXPECT_EQ(library.deleteFile(L"one"), 0);
  EXPECT_EQ(names(library), (Names{L"old", L"two", L"X"}));
  ASSERT_EQ(library.beginBatch(), 0);
  EXPECT_EQ(add(library, L"y", "y"), 0);
  EXPECT_EQ(library.close(), 0);
  EXPECT_TRUE(reader.contains(L"y"));
}
