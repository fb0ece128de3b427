// What libraries promise: every operation against a model, result codes, names, foreign files.
#include <atomic>
#include <future>
#include <thread>

#include "library/library_fixture.h"
#include "library/listing.h"

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

  Member* find(const std::wstring& name, bool isDeleted = false) {
    const auto found = std::find_if(members.begin(), members.end(), [&](const Member& member) {
      return member.isDeleted == isDeleted && _wcsicmp(member.name.c_str(), name.c_str()) == 0;
    });
    return found == members.end() ? nullptr : &*found;
  }
  int add(const std::wstring& name, const std::string& bytes, bool replace) {
    if (Member* const old = find(name)) {
      if (!replace) return 1001;
      old->isDeleted = true;
    }
    members.push_back({name, bytes});
    return 0;
  }
  int rename(const std::wstring& from, const std::wstring& to) {
    Member* const member = find(from);
    if (!member) return 1;
    if (find(to) && find(to) != member) return 1001;
    if (from.size() == to.size()) {
      member->name = to;
      return 0;
    }
    member->isDeleted = true;
    return add(to, std::string(member->bytes), false);
  }
  int remove(const std::wstring& name, bool physically) {
    Member* const member = find(name);
    if (!member) return 1;
    member->isDeleted = true;
    if (physically) members.erase(members.begin() + (member - members.data()));
    return 0;
  }
  int recover(const std::wstring& name) {
    if (find(name)) return 1001;
    Member* const member = find(name, true);
    if (member) member->isDeleted = false;
    return member ? 0 : 1;
  }
  void reorganize() {
    std::erase_if(members, [](const Member& member) { return member.isDeleted; });
  }
  [[nodiscard]] std::vector<std::wstring> names() const {
    std::vector<std::wstring> all;
    for (const Member& member : members) {
      all.push_back((member.isDeleted ? L"-" : L"") + member.name);
    }
    return all;
  }
};

}  // namespace

TEST_F(LibraryTest, HoldsWhatAModelHoldsThroughAnyOperations) {
  // At a path that is longer than the platform's plain ones.
  const std::wstring folder = std::wstring(150, L'l') + L"\\" + std::wstring(150, L'p');
  ASSERT_EQ(fs().createDirectory(name(folder)), 0);
  path_ = name(folder + L"\\parts.lib");
  for (const unsigned seed : {1U, 2U, 3U}) {
    std::mt19937 random(seed);
    const auto below = [&random](unsigned n) { return random() % n; };
    const auto anyName = [&] {
      static constexpr const wchar_t* kNames[] = {L"a",         L"B",         L"bb",
                                                  L"dir/c.dwg", L"dir/C.dwh", L"\x00E4\x00F6.txt"};
      return std::wstring(kNames[below(6)]);
    };
    static_cast<void>(fs().erase(path_, ZoFileSystem::kFile));
    Model model;
    ZoLibrary library;
    ASSERT_EQ(openForWriting(library), 0);
    std::uint32_t added = 0;
    for (int step = 0; step < 40; ++step) {
      const std::wstring name = anyName(), other = anyName();
      int expected = 0, code = 0;
      const bool replace = below(2) == 0, physically = below(3) == 0;
      std::string bytes(below(3) ? below(700) : below(70000), static_cast<char>(random()));
      for (std::size_t i = 0; i < bytes.size(); i += 1 + below(40)) bytes[i] = static_cast<char>(i);
      switch (below(9)) {
        case 0:
        case 1:
        case 2:
          expected = model.add(name, bytes, replace);
          code = add(library, name, bytes, replace, static_cast<ZoLibrary::compMode>(below(3)),
                     1024 << below(3));
          added += code == 0;
          break;
        case 3:
          expected = model.rename(name, other);
          code = library.renameFile(name.c_str(), other.c_str());
          break;
        case 4:
        case 5:
          expected = model.remove(name, physically);
          code = library.deleteFile(name.c_str(), physically);
          break;
        case 6:
          expected = model.recover(name);
          code = library.recoverFile(name.c_str());
          break;
        case 7:
          model.reorganize();
          code = library.reorganize();
          break;
        default:
          ASSERT_EQ(library.close(), 0);
          code = openForWriting(library);
      }
      ASSERT_EQ(code, expected) << "seed " << seed << ", step " << step;
      if (step % 4 && code == 0) continue;
      // A reader beside the writer sees the same.
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", step " << step);
      ZoLibrary reader;
      ASSERT_EQ(reader.open(path_), 0);
      for (ZoLibrary* const seen : {&library, &reader}) {
        ASSERT_EQ(names(*seen, true), model.names());
        EXPECT_EQ(seen->counter(), added);
        EXPECT_EQ(seen->trailingBytes(), 0u);
      }
      for (const Model::Member& member : model.members) {
        if (member.isDeleted) continue;
        ASSERT_EQ(contentOf(reader, member.name.c_str()), member.bytes);
      }
    }
  }
}

TEST_F(LibraryTest, AnswersWithTheCodesOfItsTable) {
  ZoLibrary library;
  const ZoFileName url(L"http://host/a"), none(L"none"), a(L"a"), target = name(L"out");
  ZoFile file;
  struct Row {
    const char* what;
    std::function<int()> call;
    int closed, readOnly, writable;
  };
  put(source_, "new");
  const std::vector<Row> rows = {
      {"add", [&] { return library.addFile(source_, L"new"); }, 1, 1004, 0},
      {"add a URL", [&] { return library.addFile(source_, url); }, 1, 3, 3},
      {"add what is not there", [&] { return library.addFile(none, L"n"); }, 1, 1004, 1},
      {"add without a name", [&] { return library.addFile(source_, L""); }, 1, 1004, 1},
      {"extract", [&] { return library.extractFile(a, target); }, 1, 0, 0},
      {"extract a URL", [&] { return library.extractFile(url, target); }, 1, 3, 3},
      {"extract to a URL", [&] { return library.extractFile(a, url); }, 1, 3, 3},
      {"rename to a URL", [&] { return library.renameFile(a, url); }, 1, 1004, 3},
      {"delete nothing", [&] { return library.deleteFile(none); }, 1, 1004, 1},
      {"delete a URL", [&] { return library.deleteFile(url, true); }, 1, 3, 3},
      {"recover", [&] { return library.recoverFile(L"gone"); }, 1, 1004, 0},
      {"get", [&] { return library.getFile(file, a); }, 1, 0, 0},
      {"get for writing", [&] { return library.getFile(file, L"w", ZoFile::kWrite); }, 1, 1004, 0},
      {"get a URL", [&] { return library.getFile(file, url); }, 1, 3, 3},
      {"reorganize", [&] { return library.reorganize(); }, 1, 1004, 0},
      {"set the value", [&] { return library.setCheckSum(7); }, 1, 1004, 0},
  };
  const auto check = [&](int Row::* expected) {
    for (const Row& row : rows) EXPECT_EQ(row.call(), row.*expected) << row.what;
  };
  check(&Row::closed);
  EXPECT_EQ(library.open(path_), 1);  // not there

  ASSERT_EQ(openForWriting(library), 0);
  for (const wchar_t* const member : {L"a", L"gone"}) ASSERT_EQ(add(library, member, "x"), 0);
  ASSERT_EQ(library.deleteFile(L"gone"), 0);
  put(source_, "new");
  check(&Row::writable);
  EXPECT_EQ(file.close(), 0);
  EXPECT_EQ(names(library), (Names{L"a", L"gone", L"new", L"w"}));
  // The longest name, and one byte more.
  const std::wstring longest(65535, L'n');
  EXPECT_EQ(library.addFile(source_, ZoFileName(longest)), 0);
  EXPECT_EQ(library.addFile(source_, ZoFileName(longest + L"n")), 1);
  EXPECT_EQ(contentOf(library, ZoFileName(longest)), "new");
  EXPECT_EQ(library.close(), 0);

  ASSERT_EQ(library.open(path_), 0);
  check(&Row::readOnly);
  EXPECT_EQ(library.checkSum(), 7u);
}

TEST_F(LibraryTest, KeepsTimesSizesAndModes) {
  const FILETIME accessed{2, 0x01D10000}, written{3, 0x01D20000};
  const std::string text(5000, 't'), noise = "\1\2\3\4\5\6";
  struct Row {
    const char* what;
    const std::string& content;
    ZoLibrary::compMode mode;
    int level;
    unsigned kept, flags;
  };
  const Row rows[] = {{"stored", text, ZoLibrary::kStore, ZoLibrary::kBest, 0, 0},
                      {"any other level", text, ZoLibrary::kCompress, 77, 2048, 0x100},
                      {"shrinks", text, ZoLibrary::kAutomatic, 4096, 4096, 0x100},
                      {"does not shrink", noise, ZoLibrary::kAutomatic, 4096, 0, 0}};
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  const ZoFileName target = name(L"target");
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    put(source_, row.content);
    ZoFile source, extracted;
    ASSERT_EQ(source.open(source_, ZoFile::kReadWrite), 0);
    ASSERT_EQ(source.setLastAccessTime(accessed), 0);
    ASSERT_EQ(source.setLastWriteTime(written), 0);
    ASSERT_EQ(library.addFile(source, L"member", true, row.mode, row.level), 0);
    ZoLibEntry entry;
    ASSERT_EQ(library.getEntry(L"member", entry), 0);
    EXPECT_EQ(entry.mode, row.kept);
    EXPECT_EQ(entry.flags, row.flags);
    EXPECT_EQ(entry.size, row.content.size());
    EXPECT_EQ(entry.storedSize < entry.size, row.flags != 0);
    EXPECT_TRUE(entry.isProtected);
    ASSERT_EQ(library.extractFile(L"member", target), 0);
    ASSERT_EQ(extracted.open(target), 0);
    const FILETIME times[] = {extracted.lastAccessTime(), extracted.lastWriteTime()};
    EXPECT_EQ(CompareFileTime(&times[0], &accessed), 0);
    EXPECT_EQ(CompareFileTime(&times[1], &written), 0);
    EXPECT_EQ(bytesOf(target), row.content);
  }
}

// Numbers that the counter comes to, over fields that are no check value and no size of ours.
TEST_F(LibraryTest, AMembersNumberByChanceDoesNotMakeItDamaged) {
  std::string bytes = header();
  for (unsigned i = 1; i <= 4; ++i) {
    bytes += HandMade{.name = "m" + std::to_string(i),
                      .data = "whole " + std::to_string(i),
                      .number = i,
                      .crc = i % 2 * 0x12345678,
                      .size = i % 2 ? 7u : 7777u}
                 .bytes();
  }
  put(path_, bytes);
  const auto expectWhole = [&](ZoLibrary& library) {
    for (const wchar_t* name : {L"m1", L"m2", L"m4"})
      EXPECT_EQ(contentOf(library, name), "whole " + std::string(1, static_cast<char>(name[1])));
  };
  {
    ZoLibrary library;
    ASSERT_EQ(openForWriting(library), 0);
    ASSERT_EQ(add(library, L"own 1", "own"), 0);
    expectWhole(library);
    ASSERT_EQ(library.beginBatch(), 0);
    ASSERT_EQ(add(library, L"own 2", "own"), 0);
    ASSERT_EQ(add(library, L"m3", "replaced", true), 0);
    ASSERT_EQ(library.endBatch(), 0);
    expectWhole(library);
  }
  ZoLibrary library;
  ASSERT_EQ(library.open(path_), 0);
  expectWhole(library);
  EXPECT_EQ(contentOf(library, L"m3"), "replaced");
  EXPECT_EQ(contentOf(library, L"own 2"), "own");
  EXPECT_EQ(library.counter(), 3u);
}

// Files that other programs made, and what becomes of them when they are written to.
TEST_F(LibraryTest, ReadsWhateverAFileHolds) {
  const std::string a = HandMade{.name = "a", .data = "first", .number = 77, .crc = 5}.bytes();
  const std::string a2 = HandMade{.name = "A", .data = "second"}.bytes();
  const std::string last = HandMade{.name = "last", .data = "l", .flags = 0x80}.bytes();
  const std::string nameless = HandMade{.data = "what is it"}.bytes();
  const std::string foreign = std::string(16, '?') + std::string(16, '\0');
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
      {"a text", "Dear Sir", {}, false, 0, 1, 1},
      {"a longer text", std::string(500, 't'), {}, false, 468, 1, 1},
      {"no magic", foreign + a, {L"a"}, false, 0, 1, 0},
      {"no magic, more behind", foreign + a + "x", {L"a"}, false, 1, 1, 1},
      {"duplicates", header() + a + a2, {L"a", L"A"}, true, 0, 1, 0},
      {"a mark", header() + a + last + a2, {L"a", L"last"}, true, a2.size(), 1002, 1},
      {"a mark at the end", header() + a + last, {L"a", L"last"}, true, 0, 1002, 0},
      {"no names", header() + nameless + a + nameless + a2, {L"a", L"A"}, true, 0, 1, 0},
      {"zeros between", header() + a + std::string(108, '\0') + a2, {L"a", L"A"}, true, 0, 1, 0},
      {"something short", header() + a + "?", {L"a"}, true, 1, 1, 0},
      {"something behind", header() + a + std::string(54, '?'), {L"a"}, true, 54, 1, 1},
      {"one byte short", header().replace(20, 1, 1, 1).substr(0, 31), {}, true, 0, 1, 1},
      {"zeros", header() + a + std::string(99, '\0'), {L"a"}, true, 99, 1, 0},
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
    ZoLibEntry entry;
    if (library.getEntry(L"a", entry) == 0) {
      EXPECT_FALSE(entry.isProtected);
      EXPECT_EQ(library.verify(entry), 0);
    }
    ASSERT_EQ(openForWriting(library), 0);
    SetLastError(ERROR_FILE_CORRUPT);
    fs().errorIO(L"");
    const ZoString corrupt = fs().errorTxt();
    SetLastError(ERROR_SUCCESS);
    fs().errorIO(L"");
    EXPECT_EQ(add(library, L"added", "new"), row.adding);
    EXPECT_EQ(fs().errorTxt() == corrupt, row.adding != 0) << "the reason";
    Names expected = row.names;
    if (row.adding == 0) expected.push_back(L"added");
    EXPECT_EQ(names(library), expected);
    ASSERT_EQ(library.close(), 0);
    EXPECT_EQ(bytesOf(path_) == row.bytes, row.adding != 0);
    if (row.adding || row.names.empty()) continue;
    // All of a name go, or the second would come to light.
    ASSERT_EQ(openForWriting(library), 0);
    EXPECT_EQ(library.renameFile(L"a", L"longer"), 0);
    EXPECT_FALSE(library.contains(L"a"));
    EXPECT_EQ(contentOf(library, L"longer"), "first");
    EXPECT_EQ(contentOf(library, L"added"), "new");
    // What has no name is no member, and stays.
    const bool hasNameless = bytesOf(path_).find("what is it") != std::string::npos;
    expected = names(library);
    EXPECT_EQ(library.reorganize(), 0);
    EXPECT_EQ(names(library, true), expected);
    EXPECT_EQ(bytesOf(path_).find("what is it") != std::string::npos, hasNameless);
  }
}

namespace {

std::vector<ZoLibEntry> entriesOf(ZoLibrary& library) {
  std::vector<ZoLibEntry> all;
  EXPECT_EQ(library.forEachEntry(
                [&](const ZoLibEntry& entry) {
                  all.push_back(entry);
                  return true;
                },
                true),
            0);
  return all;
}

std::string contentOf(ZoLibrary& library, const ZoLibEntry& entry) {
  ZoFile file;
  char bytes[100];
  if (library.getFile(file, entry)) return "?";
  return {bytes, file.read(bytes, sizeof bytes)};
}

}  // namespace

// The code page here is 1252: the last name fits, the others need escapes.
TEST_F(LibraryTest, KeepsNamesBeyondTheCodePage) {
  const std::vector<std::wstring> all = {L"\x0416\x65E5/\xD83D\xDE00.dwg",
                                         L"\x0100",
                                         L"\xDC00",
                                         L"a\\U+0041",
                                         L"\\U+005CU+0041",
                                         L"\\U+00e4\\U+00",
                                         L"\\\\U+0416",
                                         L"\x00E4\x20AC"};
  ZoLibrary library, reader;
  ASSERT_EQ(openForWriting(library), 0);
  int number = 0;
  for (const std::wstring& member : all) {
    ASSERT_EQ(add(library, member, std::to_string(++number)), 0);
  }
  ASSERT_EQ(reader.open(path_), 0);
  EXPECT_EQ(names(reader), all);
  for (std::size_t i = 0; i < all.size(); ++i) {
    ZoLibrary first;
    ASSERT_EQ(first.open(path_), 0);
    EXPECT_EQ(contentOf(first, all[i].c_str()), std::to_string(i + 1));
  }
  EXPECT_FALSE(library.contains(L"aA"));
  EXPECT_TRUE(library.contains(L"\x0101")) << "in lower case";
  EXPECT_EQ(library.renameFile(L"\x0100", L"\x0436\x65E5/\xD83D\xDE00.DWG"), 1001);
  EXPECT_EQ(library.renameFile(L"\x00E4\x20AC", L"\x0417"), 0);
  EXPECT_EQ(contentOf(reader, L"\x0437"), "8");
  EXPECT_NE(bytesOf(path_).find("\\U+0416\\U+65E5/\\U+D83D\\U+DE00.dwg"), std::string::npos);
  EXPECT_NE(bytesOf(path_).find("a\\U+005CU+0041"), std::string::npos);
  EXPECT_EQ(library.addFile(source_, ZoFileName(std::wstring(65535 / 7 + 1, L'\x0416'))), 1);
}

// Versions of a name, a name that is no file's, and one with a zero at its end.
TEST_F(LibraryTest, TakesAnyMemberByItsEntry) {
  const std::string noName("a\x01:b\0", 5);
  put(path_, header().replace(20, 1, 1, 1) + HandMade{.name = noName, .data = "odd"}.bytes() +
                 HandMade{.name = "twin", .data = "1"}.bytes() +
                 HandMade{.name = "TWIN", .data = "2"}.bytes());
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  for (const char* const content : {"first", "second", "third"}) {
    ASSERT_EQ(add(library, L"a", content, true), 0);
  }
  const std::vector<ZoLibEntry> all = entriesOf(library);
  std::string versions;
  ASSERT_EQ(library.forEachVersion(L"A",
                                   [&](const ZoLibEntry& entry) {
                                     versions += contentOf(library, entry) + ' ';
                                     return contentOf(library, entry) != "third";
                                   }),
            0);
  EXPECT_EQ(versions, "first second third ");
  for (std::size_t i = 0; i < all.size(); ++i) {
    ZoLibEntry entry, found;
    EXPECT_EQ(all[i].ordinal, i + 1);
    ASSERT_EQ(library.getEntry(i + 1, entry), 0);
    EXPECT_EQ(entry.isHidden, i == 2);
    EXPECT_EQ(all[i].isHidden, i == 2);
    std::uint64_t first = 0;
    const auto isFirst = [&](const ZoLibEntry& one) { return (first = one.ordinal) == 0; };
    EXPECT_EQ(library.forEachEntry(isFirst, true, i + 1), 0);
    EXPECT_EQ(first, i + 1);
    EXPECT_EQ(entry.position, all[i].position);
    if (entry.isDeleted()) continue;
    ZoLibrary other;  // which has no index yet
    if (entry.name != L"twin" && !entry.name.isEmpty() && other.open(path_) == 0 &&
        other.getEntry(entry.name, found) == 0) {
      EXPECT_EQ(found.ordinal, i + 1);
    }
  }
  ZoLibEntry none;
  EXPECT_EQ(library.getEntry(0, none), 1);
  EXPECT_EQ(library.getEntry(all.size() + 1, none), 1);
  const std::function<bool(const ZoLibEntry&)> nobody;
  const auto fail = [](const ZoLibEntry&) -> bool { throw 5; };
  EXPECT_EQ(library.forEachEntry(fail, true, all.size() + 1), 0);
  for (const std::uint64_t noOrdinal :
       {std::uint64_t{0}, std::uint64_t{1} << 63, ~std::uint64_t{0}})
    EXPECT_EQ(library.forEachEntry(fail, true, noOrdinal), 1);
  EXPECT_EQ(library.forEachEntry(nobody) + library.forEachVersion(L"a", nobody), 2);
  EXPECT_THROW(static_cast<void>(library.forEachEntry(fail)), int);
  EXPECT_THROW(static_cast<void>(library.forEachVersion(L"a", fail)), int);
  std::thread([&] { EXPECT_TRUE(library.contains(L"a")); }).join();  // which waits for no lock

  EXPECT_EQ(contentOf(library, all[0]) + contentOf(library, all[2]), "odd2");
  EXPECT_EQ(library.extractFile(all[3], name(L"out")), 0);
  EXPECT_EQ(bytesOf(name(L"out")), "first");
  EXPECT_EQ(library.recoverFile(all[3]), 1001);
  EXPECT_EQ(library.recoverFile(all[4], true), 0);
  EXPECT_EQ(contentOf(library, L"a"), "second");
  EXPECT_EQ(library.recoverFile(all[4]), 1) << "not deleted";
  EXPECT_EQ(library.deleteFile(all[5]), 1) << "deleted already";
  EXPECT_EQ(library.deleteFile(all[5], true), 0);
  EXPECT_EQ(library.deleteFile(all[5], true), 1) << "not there any more";
  ZoLibEntry wrong = all[3];
  wrong.name = L"c";
  EXPECT_EQ(library.recoverFile(wrong), 1) << "not that one";
  EXPECT_EQ(library.renameFile(all[1], L"Twin"), 1001);
  EXPECT_EQ(library.renameFile(all[1], L"twin 1"), 0);
  EXPECT_EQ(library.renameFile(all[0], L"typed"), 0);
  EXPECT_EQ(names(library), (Names{L"typed", L"TWIN", L"a", L"twin 1"}));
  EXPECT_EQ(library.deleteFiles(std::span<const ZoLibEntry>(&all[4], 1), ZoLibrary::kAllVersions),
            0);
  EXPECT_EQ(library.reorganize(), 0);
  EXPECT_EQ(names(library, true), (Names{L"typed", L"TWIN", L"twin 1"}));
  EXPECT_EQ(contentOf(library, L"twin 1") + contentOf(library, L"typed"), "1odd");
}

// Small ones are read at once, which nobody must see: also with a damage, one that is large, one
// that is gone, and in any order.
TEST_F(LibraryTest, VerifiesManyAsEachAlone) {
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  for (int i = 0; i < 40; ++i) {
    const std::string content(i == 20 ? 1'500'000 : 37 * i, static_cast<char>('A' + i));
    ASSERT_EQ(add(library, std::to_wstring(i), content, false,
                  i % 3 ? ZoLibrary::kStore : ZoLibrary::kCompress, ZoLibrary::kFast),
              0);
  }
  ASSERT_EQ(library.deleteFile(L"7"), 0);
  ASSERT_EQ(library.close(), 0);
  std::string bytes = bytesOf(path_);
  for (const char damaged : {'F', 'L', 'U'}) bytes[bytes.rfind(std::string(30, damaged))] ^= 1;
  put(path_, bytes);
  ASSERT_EQ(library.open(path_), 0);
  std::vector<ZoLibEntry> entries = entriesOf(library);
  constexpr int kStale = 4;
  const std::size_t sound = entries.size();
  for (int i = 0; i < kStale; ++i) entries.push_back(entries[3]);
  entries[sound].position += 1;
  ++entries[sound + 1].number;
  ++entries[sound + 2].storedSize;
  entries[sound + 3].name = L"x";
  for (int order = 0; order < 3; ++order) {
    std::vector<int> codes, alone;
    for (const ZoLibEntry& entry : entries) alone.push_back(library.verify(entry));
    const auto bad = std::ranges::find_if(alone, [](int code) { return code != 0; });
    EXPECT_EQ(library.verify(entries, codes), *bad);
    EXPECT_EQ(codes, alone);
    EXPECT_EQ(std::ranges::count(alone, 1000), 3);
    EXPECT_EQ(std::ranges::count(alone, 1), kStale);
    order == 0 ? std::ranges::reverse(entries)
               : std::ranges::shuffle(entries, std::mt19937(static_cast<unsigned>(order)));
  }
  std::vector<int> codes;
  library.onProgress([](std::uint64_t, std::uint64_t) { return false; });
  EXPECT_EQ(library.verify(entries, codes), 1);
  EXPECT_TRUE(library.wasCancelled());
  EXPECT_EQ(codes, std::vector<int>(entries.size(), 1));
}

TEST_F(LibraryTest, ChangesManyMembersOrNone) {
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  for (const std::string member : {"a", "b", "c", "c", "gone", "gone"}) {
    const std::string content = member + std::to_string(library.counter() + 1);
    ASSERT_EQ(add(library, std::wstring(member.begin(), member.end()), content, true), 0);
  }
  ASSERT_EQ(library.deleteFile(L"gone"), 0);
  const auto before = [] { return Names{L"a", L"b", L"-c", L"c", L"-gone", L"-gone"}; };
  using List = std::vector<ZoFileName>;
  using Pairs = std::vector<ZoLibRename>;
  std::size_t at = 99;
  const auto remove = [&](const List& list) { return library.deleteFiles(list, {}, &at); };
  const auto recover = [&](const List& list) { return library.recoverFiles(list, false, &at); };
  const auto rename = [&](const Pairs& pairs) { return library.renameFiles(pairs, &at); };
  const auto recoverAs = [&](const Pairs& pairs) { return library.recoverFilesAs(pairs, &at); };
  const struct {
    const char* what;
    std::function<int()> call;
    int code;
    std::size_t at;
  } refusals[] = {
      {"delete what is not there", [&] { return remove({L"a", L"x", L"b"}); }, 1, 1},
      {"delete a URL", [&] { return remove({L"a", L"http://host/b"}); }, 3, 1},
      {"recover what is live", [&] { return recover({L"gone", L"c"}); }, 1001, 1},
      {"recover what is not there", [&] { return recover({L"x", L"gone"}); }, 1, 0},
      {"rename to what stays", [&] { return rename({{L"a", L"x"}, {L"b", L"C"}}); }, 1001, 1},
      {"rename two alike", [&] { return rename({{L"a", L"x"}, {L"b", L"X"}}); }, 1001, 1},
      {"rename one twice", [&] { return rename({{L"a", L"x"}, {L"A", L"y"}}); }, 1, 1},
      {"rename the second twice",
       [&] { return rename({{L"b", L"x"}, {L"a", L"y"}, {L"a", L"z"}}); }, 1, 2},
      {"rename what is not there", [&] { return rename({{L"x", L"y"}}); }, 1, 0},
      {"rename to nothing", [&] { return rename({{L"a", L"b"}, {L"b", L""}}); }, 1, 1},
      {"rename to a URL", [&] { return rename({{L"a", L"http://host/b"}}); }, 3, 0},
      {"recover as what is live", [&] { return recoverAs({{L"gone", L"x"}, {L"c", L"A"}}); }, 1001,
       1},
      {"recover two alike", [&] { return recoverAs({{L"c", L"x"}, {L"gone", L"X"}}); }, 1001, 1},
      {"recover one as two", [&] { return recoverAs({{L"gone", L"x"}, {L"gone", L"y"}}); }, 1, 1},
      {"recover what is live, as", [&] { return recoverAs({{L"gone", L"x"}, {L"b", L"y"}}); }, 1001,
       1},
  };
  for (const auto& row : refusals) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(row.call(), row.code);
    EXPECT_EQ(at, row.at);
    EXPECT_EQ(names(library, true), before());
  }
  const auto contents = [&](const List& list) {
    std::string all;
    for (const ZoFileName& member : list) all += contentOf(library, member);
    return all;
  };
  // They swap names, by moving and without, and a case changes.
  EXPECT_EQ(rename({{L"a", L"b"}, {L"b", L"a"}, {L"c", L"C"}}), 0);
  EXPECT_EQ(contents({L"a", L"b", L"C"}), "b2a1c4");
  EXPECT_EQ(rename({{L"a", L"long"}, {L"b", L"a"}, {L"C", L"b"}, {L"A", L"long"}}), 0);
  EXPECT_EQ(contents({L"long", L"a", L"b"}), "b2a1c4");
  EXPECT_EQ(remove({L"A", L"a", L"b"}), 0);
  EXPECT_EQ(at, 3u);
  EXPECT_EQ(names(library), (Names{L"long"}));
  // The one of each that was added last comes back.
  EXPECT_EQ(recover({L"gone", L"a", L"GONE"}), 0);
  EXPECT_EQ(contents({L"gone", L"a"}), "gone6b2");
  // All of a name, by moving and without.
  EXPECT_EQ(remove({L"gone"}), 0);
  std::vector<ZoLibEntry> versions;
  const auto keep = [&](const ZoLibEntry& entry) { return versions.push_back(entry), true; };
  EXPECT_EQ(library.forEachVersion(L"gone", keep), 0);
  ASSERT_EQ(versions.size(), 2u);
  EXPECT_EQ(recoverAs({{{}, L"gone~1", &versions[0]}, {{}, L"gone", &versions[1]}}), 0);
  EXPECT_EQ(contents({L"gone~1", L"gone"}), "gone5gone6");
  EXPECT_EQ(recoverAs({{{}, L"x", &versions[1]}}), 1) << "live again";
  EXPECT_EQ(remove({L"gone~1"}), 0);
  EXPECT_EQ(library.deleteFiles(List{L"gone", L"long"}, ZoLibrary::kAllVersions), 0);
  EXPECT_EQ(recover({}) + remove({}) + rename({}), 0);
  EXPECT_EQ(names(library), (Names{L"a"}));
  EXPECT_EQ(recover({L"gone"}), 1);
}

TEST_F(LibraryTest, WhoReadsMakesAndEmptiesNothing) {
  constexpr ZoFile::CreationMode kModes[] = {ZoFile::kCreateNew, ZoFile::kCreateAlways,
                                             ZoFile::kTruncateExisting, ZoFile::kOpenAlways};
  const ZoFileName absent = name(L"absent.lib");
  for (const bool isHeld : {false, true}) {
    for (const ZoFile::CreationMode mode : kModes) {
      ZoLibrary writer, reader;
      ASSERT_EQ(openForWriting(writer), 0);
      if (!isHeld) {
        ASSERT_EQ(writer.close(), 0);
      }
      EXPECT_EQ(reader.open(path_, ZoFile::kRead, mode, 0), mode == ZoFile::kOpenAlways ? 0 : 1);
      EXPECT_EQ(std::filesystem::file_size(path_.fullName()), 32u);
      EXPECT_EQ(reader.open(absent, ZoFile::kRead, mode, 0), 1);
      EXPECT_FALSE(std::filesystem::exists(absent.fullName()));
    }
  }
}

TEST_F(LibraryTest, DeletesNothingWhereTheHeaderCountsNothing) {
  put(path_, header() + HandMade{.name = "a", .data = "data"}.bytes());
  const std::string before = bytesOf(path_);
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  EXPECT_EQ(library.deleteFile(L"a"), 1);
  EXPECT_EQ(library.deleteFile(L"a", true), 1);
  EXPECT_EQ(bytesOf(path_), before);
}

TEST_F(LibraryTest, AnswersAnyThreadAboutOneObject) {
  ZoLibrary library;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(library.close(), 0);
  std::atomic<bool> isDone = false;
  const auto ask = [&] {
    while (!isDone) {
      const ZoFileName name = library.name();
      EXPECT_TRUE(name.isEmpty() || name == path_);
      static_cast<void>(library.isOpen() && library.isWritable());
      library.onProgress([](std::uint64_t, std::uint64_t) { return true; });
      EXPECT_FALSE(library.wasCancelled());
    }
  };
  std::thread first(ask), second(ask);
  for (int i = 0; i < bySpeed(100, 300); ++i) {
    EXPECT_EQ(library.open(path_), 0);
    EXPECT_EQ(library.close(), 0);
  }
  isDone = true;
  first.join();
  second.join();
}

namespace {

// Tells when another thread comes to open the library that all use here.
class TellsOfOpening : public UnflushedFiles {
 public:
  DWORD fullPath(const wchar_t* name, DWORD size, wchar_t* buffer) override {
    const bool isMet = std::this_thread::get_id() != owner_ && !isTold_.exchange(true);
    if (isMet) opening_.set_value();
    return UnflushedFiles::fullPath(name, size, buffer);
  }
  void awaitOpening() { opening_.get_future().wait(); }

 private:
  std::thread::id owner_ = std::this_thread::get_id();
  std::atomic<bool> isTold_ = false;
  std::promise<void> opening_;
};

}  // namespace

TEST_F(LibraryTest, WhoWaitsForAWriterKeepsNobodyWaiting) {
  put(source_, "bytes");
  for (const bool isOnAnotherMachine : {false, true}) {
    SCOPED_TRACE(isOnAnotherMachine);
    ZoLibrary holder, other, late;
    ZoFile file;  // without the lock of this machine
    ASSERT_EQ(openForWriting(holder), 0);
    if (isOnAnotherMachine) {
      ASSERT_EQ(holder.close(), 0);
      ASSERT_EQ(file.open(path_, kReadWrite, ZoFile::kOpenExisting, ZoFile::kShareRead), 0);
    }
    TellsOfOpening files;
    int code = -1;
    std::thread waiter([&] {
      code = openForWriting(late, 200'000);
      EXPECT_EQ(late.close(), 0);
    });
    files.awaitOpening();
    // It gets the library only when this thread has overtaken it with another one, and lets go.
    EXPECT_EQ(other.open(name(L"other.lib"), kReadWrite, ZoFile::kOpenAlways), 0);
    EXPECT_EQ(other.addFile(source_, L"member", true), 0);
    EXPECT_FALSE(late.isOpen());
    if (!isOnAnotherMachine) {
      EXPECT_EQ(holder.addFile(source_, L"the last"), 0);
    }
    EXPECT_EQ(file.close() + holder.close(), 0);
    waiter.join();
    EXPECT_EQ(code, 0);
  }
}

TEST_F(LibraryTest, AddsABatchInOneStep) {
  ZoLibrary library, reader;
  ASSERT_EQ(openForWriting(library), 0);
  ASSERT_EQ(add(library, L"old", "old"), 0);
  ASSERT_EQ(reader.open(path_), 0);
  ASSERT_EQ(library.beginBatch(), 0);
  EXPECT_EQ(add(library, L"one", "1"), 0);
  EXPECT_EQ(add(library, L"ONE", "2"), 1001);
  EXPECT_EQ(add(library, L"old", "new", true), 0);
  for (ZoLibrary* const seen : {&library, &reader}) {
    EXPECT_EQ(names(*seen, true), (Names{L"old"}));
    EXPECT_EQ(contentOf(*seen, L"old"), "old");
  }
  EXPECT_EQ(library.endBatch(), 0);
  EXPECT_EQ(names(reader, true), (Names{L"-old", L"one", L"old"}));
  EXPECT_EQ(contentOf(reader, L"old"), "new");
  // A second member of a name, another change, and closing end a batch.
  ASSERT_EQ(library.beginBatch(), 0);
  EXPECT_EQ(add(library, L"x", "1"), 0);
  EXPECT_EQ(add(library, L"X", "2", true), 0);
  EXPECT_EQ(names(reader), (Names{L"one", L"old", L"x"}));
  EXPECT_EQ(library.deleteFile(L"one"), 0);
  EXPECT_EQ(names(reader), (Names{L"old", L"X"}));
  ASSERT_EQ(library.beginBatch(), 0);
  EXPECT_EQ(add(library, L"y", "y"), 0);
  EXPECT_EQ(library.close(), 0);
  EXPECT_EQ(names(reader), (Names{L"old", L"X", L"y"}));
}

namespace {

// A platform that replaces no file that others have open, as long as they have it.
class HeldFiles : public UnflushedFiles {
 public:
  HANDLE create(const wchar_t* name, DWORD access, DWORD share, DWORD disposition,
                DWORD flags) override {
    const HANDLE file = UnflushedFiles::create(name, access, share, disposition, flags);
    const bool isRefused = file == INVALID_HANDLE_VALUE && share == 0;
    const DWORD error = GetLastError();
    if (isRefused && ++refusals == letGoAt) reader.close() == 0 ? void() : ADD_FAILURE();
    SetLastError(error);
    return file;
  }

  ZoLibrary reader;
  int refusals = 0, letGoAt = 0;
};

}  // namespace

TEST_F(LibraryTest, WaitsForReadersToReplaceTheFile) {
  const auto physically = [](ZoLibrary& l) { return l.deleteFile(L"a", true); };
  const auto reorganizing = [](ZoLibrary& l) { return l.reorganize(); };
  for (const std::function<int(ZoLibrary&)>& call :
       {std::function<int(ZoLibrary&)>(physically), std::function<int(ZoLibrary&)>(reorganizing)}) {
    HeldFiles files;
    ZoLibrary library;
    ASSERT_EQ(library.open(path_, kReadWrite, ZoFile::kCreateAlways), 0);
    for (const wchar_t* member : {L"a", L"b", L"c"}) ASSERT_EQ(add(library, member, "x"), 0);
    ASSERT_EQ(library.deleteFile(L"b"), 0);
    ASSERT_EQ(library.close(), 0);
    const std::string before = bytesOf(path_);
    for (const unsigned timeOut : {0U, 200'000U}) {
      ASSERT_EQ(openForWriting(library, timeOut), 0);
      ASSERT_EQ(files.reader.open(path_), 0);
      files.refusals = 0;
      files.letGoAt = timeOut ? 3 : 0;
      EXPECT_EQ(call(library), timeOut ? 0 : 1006);
      EXPECT_EQ(bytesOf(path_) == before, timeOut == 0);
      EXPECT_EQ(add(library, L"added", "x"), 0) << "it is still open";
      EXPECT_EQ(files.reader.close() + library.deleteFile(L"added", true) + library.close(), 0);
    }
  }
}
