// Libraries that are cut, flipped or mutated: what is whole is read, what is damaged is named, and
// nothing that a file says takes more memory than the file justifies.
#include <windows.h>

#include <psapi.h>

#include <zo/text/containers/array.h>

#include <cstdlib>

#include "library/library_fixture.h"
#include "library/listing.h"
#include "library/memory_disk.h"

using namespace zo::test;

namespace {

constexpr const wchar_t* kPath = L"M:\\parts.lib";

std::size_t peakMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
  return counters.PeakPagefileUsage;
}

}  // namespace

// Something done to a damaged library, and the member that it may take away.
struct Change {
  const char* what;
  std::function<int(ZoLibrary&)> run;
  std::string_view takes = {};
};

const std::vector<Change>& changes() {
  static const std::vector<Change> all = {
      {"add",
       [](ZoLibrary& l) { return l.addFile(L"M:\\some", L"new", false, ZoLibrary::kStore); }},
      {"delete", [](ZoLibrary& l) { return l.deleteFile(L"packed"); }},
      {"delete physically", [](ZoLibrary& l) { return l.deleteFile(L"packed", true); }, "packed"},
      {"rename", [](ZoLibrary& l) { return l.renameFile(L"dir/last", L"first"); }},
      {"recover", [](ZoLibrary& l) { return l.recoverFile(L"gone"); }},
      {"reorganize", [](ZoLibrary& l) { return l.reorganize(); }, "deleted"},
  };
  return all;
}

class LibraryDamage : public LibraryTest {
 protected:
  struct Member {
    std::wstring name;
    std::string content;
    std::size_t begin, end;
    [[nodiscard]] std::size_t data() const { return begin + 54 + name.size(); }
  };

  LibraryDamage() {
    using enum ZoLibrary::compMode;
    const std::string packed(90, 'p');
    // The entry before the last two is as long as a power of two: one bit makes the one before it
    // end where it ends itself.
    disk_.put({{L"M:\\some", "some bytes"},
               {L"M:\\packed", packed},
               {L"M:\\empty", ""},
               {L"M:\\gone", std::string(32, 'g')},
               {L"M:\\zeros", std::string(128 - 54 - 5, '\0')},
               {L"M:\\last", "last bytes"}});
    ZoLibrary library;
    EXPECT_EQ(library.open(kPath, kReadWrite, ZoFile::kOpenAlways), 0);
    const auto make = [&](const wchar_t* source, const wchar_t* member, ZoLibrary::compMode mode) {
      ZoLibEntry entry;
      EXPECT_EQ(library.addFile(source, member, false, mode, ZoLibrary::kFast), 0);
      EXPECT_EQ(library.getEntry(member, entry), 0);
      members_.push_back({member, disk_.image()[source], static_cast<std::size_t>(entry.position),
                          disk_.image()[kPath].size()});
    };
    make(L"M:\\some", L"stored", kStore);
    make(L"M:\\packed", L"packed", kCompress);
    make(L"M:\\empty", L"empty", kStore);
    make(L"M:\\gone", L"gone", kStore);
    make(L"M:\\zeros", L"zeros", kStore);
    make(L"M:\\last", L"dir/last", kStore);
    EXPECT_EQ(library.deleteFile(L"gone"), 0);
    EXPECT_EQ(library.close(), 0);
    whole_ = disk_.image()[kPath];
  }

  // The same from another maker: nothing in the fields that are hints.
  [[nodiscard]] std::string foreign() const {
    std::string bytes = whole_;
    for (const Member& member : members_) {
      for (const auto& [at, count] : {std::pair{0, 8}, {16, 8}, {48, 2}}) {
        bytes.replace(member.begin + static_cast<std::size_t>(at), static_cast<std::size_t>(count),
                      static_cast<std::size_t>(count), '\0');
      }
    }
    return bytes;
  }

  // What salvage gets of a library: content, by size and check value, and how it is named.
  using Salvaged = std::map<std::pair<std::uint64_t, std::uint32_t>, std::string>;
  Salvaged salvaged(const std::string& bytes) {
    disk_.put({{kPath, bytes}});
    ZoLibrary library, rescued;
    Salvaged all;
    EXPECT_EQ(library.open(kPath), 0);
    EXPECT_EQ(rescued.open(L"M:\\rescued", kReadWrite, ZoFile::kOpenAlways), 0);
    EXPECT_EQ(library.salvageInto(rescued), 0);
    const auto keep = [&](const ZoLibEntry& entry) {
      EXPECT_TRUE(entry.isProtected);
      std::string& name = all[{entry.size, entry.crc}];
      if (name.empty() || name == "deleted") {
        const std::wstring_view text = entry.name.view();
        name = entry.isDeleted() ? "deleted" : std::filesystem::path(text).string();
      }
      return true;
    };
    EXPECT_EQ(rescued.forEachEntry(keep, true), 0);
    // At least what a reader gets.
    ZoArray<ZoFileName> names;
    EXPECT_EQ(library.getFileNames(names), 0);
    for (unsigned i = 0; i < names.entries(); ++i) {
      if (library.extractFile(names[i], L"M:\\target")) continue;
      const std::string content = disk_.image()[L"M:\\target"];
      EXPECT_TRUE(all.contains({content.size(), crcOf(content)})) << content;
    }
    return all;
  }

  // Whatever is done to a damaged library, it is refused and leaves it as it is, or takes no member
  // away that could be had before.
  void expectUnharmedByChanges(const std::string& bytes, const Salvaged& before) {
    for (const Change& change : changes()) {
      SCOPED_TRACE(change.what);
      disk_.put({{kPath, bytes}, {L"M:\\some", "added bytes"}});
      ZoLibrary library;
      EXPECT_EQ(library.open(kPath, kReadWrite), 0);
      const int code = change.run(library);
      EXPECT_EQ(library.close(), 0);
      const std::string now = disk_.image()[kPath];
      if (code != 0) {
        EXPECT_EQ(now, bytes);
        continue;
      }
      const Salvaged after = salvaged(now);
      for (const auto& [content, name] : before) {
        const bool isTaken = _stricmp(name.c_str(), std::string(change.takes).c_str()) == 0;
        EXPECT_TRUE(isTaken || after.contains(content)) << name;
      }
    }
  }

  // Reads all there is in whatever way there is one. Returns what salvage gives, by name; with
  // `damaged`, what neither it nor a check calls sound.
  std::map<std::wstring, std::string> rescue(const std::string& bytes) {
    disk_.put({{kPath, bytes}});
    ZoLibrary library, rescued;
    EXPECT_EQ(library.open(kPath), 0);
    static_cast<void>(seenIn(library));
    isNamed_ = library.trailingBytes() != 0 || !library.isLibrary();
    std::map<std::wstring, std::string> contents;
    EXPECT_EQ(rescued.open(L"M:\\rescued", kReadWrite, ZoFile::kOpenAlways), 0);
    EXPECT_EQ(library.salvageInto(rescued,
                                  [&](const ZoLibEntry& entry, int code) {
                                    isNamed_ |= code != 0 || !entry.isProtected;
                                    if (code == 0 && !entry.isDeleted())
                                      contents[std::wstring(entry.name.view())];
                                    return true;
                                  }),
              0);
    for (auto& [name, content] : contents) content = contentOf(rescued, name.c_str());
    EXPECT_EQ(rescued.close(), 0);
    EXPECT_EQ(library.close(), 0);
    // A writer makes nothing worse: what a reader finds it finds afterwards too.
    // (A counter that was harmed and grows again may prove more than before.)
    const auto look = [] { return without(seenAt(kPath), " number=", " read="); };
    const std::string seen = look();
    EXPECT_EQ(library.open(kPath, kReadWrite), 0);
    const int code = library.addFile(L"M:\\rescued", L"added", false, ZoLibrary::kStore);
    EXPECT_EQ(library.close(), 0);
    const std::string now = look();
    EXPECT_TRUE(code == 0 ? now.starts_with(seen) : now == seen) << seen << now;
    return contents;
  }

  // The members whose bytes are not among those that changed.
  void expectWhole(const std::string& bytes, std::size_t damageBegin, std::size_t damageEnd) {
    const auto found = rescue(bytes);
    for (const Member& member : members_) {
      const auto at = found.find(member.name);
      if (member.name == L"gone") continue;
      if (member.begin < damageEnd && damageBegin < member.end) {
        isNamed_ |= at != found.end() && at->second == member.content;  // it does not matter
        continue;
      }
      ASSERT_NE(at, found.end()) << member.content;
      EXPECT_EQ(at->second, member.content);
    }
  }

  MemoryDisk disk_;
  std::string whole_;
  std::vector<Member> members_;
  bool isNamed_ = false;
};

TEST_F(LibraryDamage, AllThatStandsBeforeACutIsThere) {
  for (std::size_t size = 0; size < whole_.size() && !HasFailure(); ++size) {
    SCOPED_TRACE(size);
    expectWhole(whole_.substr(0, size), size, whole_.size());
    const bool isAtEnd = std::any_of(members_.begin(), members_.end(), [&](const Member& member) {
      return member.end == size || member.begin == size;
    });
    EXPECT_TRUE(size < 32 || isNamed_ || isAtEnd);
  }
}

TEST_F(LibraryDamage, AFlippedBitHarmsNoOtherMember) {
  // What nothing protects: names, times, numbers, and the bit of deletion.
  const std::size_t step = bySpeed(97, 5);
  for (std::size_t bit = 0; bit < 8 * whole_.size() && !HasFailure(); bit += step) {
    SCOPED_TRACE(testing::Message() << "byte " << bit / 8 << ", bit " << bit % 8);
    const std::size_t at = bit / 8;
    std::string bytes = whole_;
    bytes[at] = static_cast<char>(bytes[at] ^ 1 << bit % 8);
    expectWhole(bytes, at, at + 1);
    for (const Member& member : members_) {
      const bool isSize =
          (at >= member.begin + 8 && at < member.begin + 24) && member.name != L"packed";
      EXPECT_TRUE(isNamed_ || !(isSize || (at >= member.data() && at < member.end)));
    }
  }
}

// Every bit of the header and of the entries, in a library of this maker and in one of another.
TEST_F(LibraryDamage, NoChangeTakesAMemberFromADamagedLibrary) {
  const std::size_t step = isLong() ? 1 : bySpeed(67, 3);
  for (const std::string& sound : {whole_, foreign()}) {
    const Salvaged all = salvaged(sound);
    ASSERT_EQ(all.size(), members_.size());
    for (std::size_t bit = 0; bit < 8 * whole_.size() && !HasFailure(); bit += step) {
      const std::size_t at = bit / 8;
      const bool isData = std::any_of(members_.begin(), members_.end(), [&](const Member& member) {
        return at >= member.data() && at < member.end;
      });
      if (isData) continue;
      SCOPED_TRACE(testing::Message() << (bit % 8) << " of byte " << at);
      std::string bytes = sound;
      bytes[at] = static_cast<char>(bytes[at] ^ 1 << bit % 8);
      const Salvaged before = salvaged(bytes);
      for (const Member& member : members_) {
        if (at >= member.begin && at < member.end) continue;
        EXPECT_TRUE(before.contains({member.content.size(), crcOf(member.content)}))
            << member.content;
      }
      expectUnharmedByChanges(bytes, before);
    }
  }
}

// Bytes that look like entries everywhere, or like compressed ones that cost much to read.
TEST_F(LibraryDamage, NoFileIsSearchedLongerThanItsSizeSays) {
  const std::size_t size = bySpeed(1, 4) * std::size_t{1} << 20;
  for (const unsigned flags : {0U, 0x100U}) {
    // Each ends right before the end of the file, and is as large as what follows it.
    std::string bytes = header() + std::string(54, '\xFF');
    while (bytes.size() < size) {
      const std::uint64_t rest = size - bytes.size() - 60;
      bytes +=
          HandMade{.name = "n", .flags = flags, .crc = 1, .size = rest, .storedSize = rest}.bytes();
    }
    disk_.put({{kPath, bytes}});
    ZoLibrary library, rescued;
    const std::uint64_t readBefore = disk_.bytesRead();
    ASSERT_EQ(library.open(kPath), 0);
    ASSERT_EQ(rescued.open(L"M:\\rescued", kReadWrite, ZoFile::kOpenAlways), 0);
    std::size_t found = 0;
    const auto count = [&](const ZoLibEntry&, int) { return ++found != 0; };
    EXPECT_EQ(library.salvageInto(rescued, count), 0);
    EXPECT_LT(found, 100U);
    EXPECT_LT(disk_.bytesRead() - readBefore, 20 * size + (70U << 20));
  }
}

TEST_F(LibraryDamage, ADamagedMemberIsNotExtracted) {
  std::string bytes = whole_;
  bytes.back() = static_cast<char>(bytes.back() ^ 1);
  const MemoryDisk::Image image = {{kPath, bytes}, {L"M:\\target", "before"}};
  disk_.put(image);
  ZoLibrary library;
  ZoLibEntry entry;
  ASSERT_EQ(library.open(kPath), 0);
  ASSERT_EQ(library.getEntry(L"dir/last", entry), 0);
  EXPECT_EQ(library.verify(entry), 1000);
  EXPECT_EQ(library.extractFile(L"dir/last", L"M:\\target"), 1);
  EXPECT_EQ(disk_.image(), image);
}

TEST_F(LibraryDamage, MutationsNeitherCrashNorTakeMemory) {
  const char* const wanted = std::getenv("ZO_MUTATIONS");
  const int ordinary = isLong() ? 500'000 : bySpeed(300, 3000);
  const int rounds = wanted ? std::atoi(wanted) : ordinary;
  std::mt19937 random(7);
  static_cast<void>(rescue(whole_));
  const std::size_t before = peakMemory();
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    std::string bytes = whole_;
    for (unsigned changes = 1 + random() % 4; changes > 0; --changes) {
      const std::size_t at = random() % bytes.size(), other = random() % bytes.size();
      switch (random() % 6) {
        case 0:
          bytes.resize(at + 1);
          break;
        case 1:
          bytes.insert(at, bytes.substr(other, random() % 100));
          break;
        case 2:
          bytes.erase(at + 1, 1 + random() % 20);
          break;
        case 3: {  // a field of a record
          const Member& member = members_[random() % members_.size()];
          const std::size_t field = member.begin + random() % 54;
          bytes.replace(std::min(field, bytes.size()), 4, 4, random() % 3 ? '\xFF' : '\0');
          break;
        }
        default:
          bytes[at] = static_cast<char>(random());
      }
    }
    rescue(bytes);
  }
  EXPECT_LT(peakMemory(), before + (64 << 20));
}

// A writer cuts what a reader is about to read: a redo that is done with, or a member that failed.
TEST_F(LibraryDamage, AReaderLooksAgainWhenTheFileBecomesShorter) {
  const MemoryDisk::Image longer = {{kPath, whole_ + std::string(5000, '\0')}};
  const std::vector<std::function<int(ZoLibrary&)>> readings = {
      [](ZoLibrary& l) { return l.forEachEntry([](const ZoLibEntry&) { return true; }); },
      [](ZoLibrary& l) {
        ZoLibEntry entry;
        return l.getEntry(L"dir/last", entry) ? 1 : l.verify(entry);
      },
      [](ZoLibrary& l) { return l.contains(L"nothing") ? 1 : 0; },
      [](ZoLibrary& l) { return l.extractFile(L"dir/last", L"M:\\target"); },
  };
  for (const auto& reading : readings) {
    for (int nth = 1, calls = nth; calls >= nth && !HasFailure(); ++nth) {
      SCOPED_TRACE(testing::Message() << &reading - readings.data() << ", read " << nth);
      disk_.put(longer);
      ZoLibrary library;
      ASSERT_EQ(library.open(kPath), 0);
      calls = 0;
      disk_.beforeRead = [&] {
        if (++calls == nth) disk_.change(kPath, whole_);
      };
      EXPECT_EQ(reading(library), 0);
      disk_.beforeRead = nullptr;
    }
  }
  // What is being added is no damage; it shows no more than that.
  disk_.put({{kPath, whole_ + std::string(50, '\0') + "\xFF\xFF" + std::string(200, '\0')}});
  ZoLibrary library;
  ASSERT_EQ(library.open(kPath), 0);
  EXPECT_EQ(library.trailingBytes(), 0U);
  EXPECT_EQ(names(library).size(), members_.size() - 1);
}
