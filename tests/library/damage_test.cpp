// Libraries that are cut, flipped or mutated: what is whole is read, what is damaged is named, and
// nothing that a file says takes more memory than the file justifies.
#include <windows.h>

#include <psapi.h>

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

class LibraryDamage : public LibraryTest {
 protected:
  struct Member {
    std::wstring name;
    std::string content;
    std::size_t begin, end;
  };

  LibraryDamage() {
    using enum ZoLibrary::compMode;
    const std::string packed(90, 'p');
    disk_.put({{L"M:\\some", "some bytes"}, {L"M:\\packed", packed}, {L"M:\\empty", ""}});
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
    make(L"M:\\some", L"dir/last", kStore);
    EXPECT_EQ(library.close(), 0);
    whole_ = disk_.image()[kPath];
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
                                    if (code == 0) contents[std::wstring(entry.name.view())];
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
  const std::size_t step = bySpeed(13, 1);
  for (std::size_t bit = 0; bit < 8 * whole_.size() && !HasFailure(); bit += step) {
    SCOPED_TRACE(testing::Message() << "byte " << bit / 8 << ", bit " << bit % 8);
    const std::size_t at = bit / 8;
    std::string bytes = whole_;
    bytes[at] = static_cast<char>(bytes[at] ^ 1 << bit % 8);
    expectWhole(bytes, at, at + 1);
    for (const Member& member : members_) {
      const std::size_t data = member.begin + 54 + member.name.size();
      const bool isStoredSize = at >= member.begin + 8 && at < member.begin + 16;
      EXPECT_TRUE(isNamed_ || !(isStoredSize || (at >= data && at < member.end)));
    }
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
  const int rounds = isLong() ? 500'000 : bySpeed(300, 3000);
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
