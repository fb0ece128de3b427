// What libraries promise of any instant: whatever call fails, wherever the process ends, whatever a
// loss of power takes of the writes, a library is as before the call or as after it, and goes on
// from there.
#include "library/library_fixture.h"
#include "library/listing.h"
#include "library/memory_disk.h"
#include "support/child_process.h"

using namespace zo::test;

namespace {

constexpr const wchar_t* kPath = L"M:\\parts.lib";
constexpr const wchar_t* kTarget = L"M:\\target";

// Of all the calls, and of what may be left of the writes.
const int kEveryCall = bySpeed(7, 1), kRemainders = bySpeed(3, 64);

constexpr std::string_view kMuch = "add much";

struct Operation {
  std::string_view name;
  std::function<int(ZoLibrary&)> run;
};

std::string noise(std::size_t size) {
  std::mt19937 random(static_cast<unsigned>(size));
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

std::function<int(ZoLibrary&)> adding(const wchar_t* source, const wchar_t* member, bool replaces,
                                      ZoLibrary::compMode mode) {
  return [=](ZoLibrary& library) {
    return library.addFile(source, member, replaces, mode, ZoLibrary::kFast);
  };
}

int setTimesOf(ZoLibrary& library, const wchar_t* member) {
  ZoFile file;
  if (const int code = library.getFile(file, member)) return code;
  const FILETIME time{.dwLowDateTime = 0x55555555, .dwHighDateTime = 0x01D55555};
  return file.setLastAccessTime(time);
}

int writeMember(ZoLibrary& library) {
  ZoFile file;
  const std::string bytes = noise(700);
  if (const int code = library.getFile(file, L"last", ZoFile::kWrite)) return code;
  if (file.write(bytes.data(), 700) != 700) return 1;
  return file.close();
}

// The second is given up after much of it was written; it looks like entries.
int addBatch(ZoLibrary& library) {
  if (const int code = library.beginBatch()) return code;
  int code = library.addFile(L"M:\\text", L"new", false, ZoLibrary::kCompress, ZoLibrary::kFast);
  // A source whose size could not be asked is told as 0 of 0.
  library.onProgress(
      [calls = 0](std::uint64_t done, std::uint64_t) mutable { return done == 0 && ++calls < 3; });
  if (!code && !library.addFile(L"M:\\nested", L"given up", false, ZoLibrary::kStore)) return 1;
  library.onProgress(nullptr);
  if (!code) code = library.addFile(L"M:\\nested", L"Member", true, ZoLibrary::kStore);
  if (code) library.cancelBatch();
  return code ? code : library.endBatch();
}

// Each takes the name of another, one of them moves for it, and what is in the way goes.
int renameAll(ZoLibrary& library) {
  const ZoLibRename renamings[] = {
      {L"member", L"nested"}, {L"nested", L"the last one"}, {L"last", L"member"}};
  return library.renameFiles(renamings);
}

const ZoFileName kSome[] = {L"member", L"last", L"nested"};

int salvage(ZoLibrary& library) {
  ZoLibrary damaged;
  if (const int code = damaged.open(L"M:\\nested")) return code;
  return damaged.salvageInto(library, [](const ZoLibEntry&, int code) { return code == 0; });
}

const std::vector<Operation>& operations() {
  using enum ZoLibrary::compMode;
  static const std::vector<Operation> all = {
      {"add stored", adding(L"M:\\noise", L"new", false, kStore)},
      {"add compressed", adding(L"M:\\text", L"new", false, kCompress)},
      {"add what does not shrink", adding(L"M:\\noise", L"new", false, kAutomatic)},
      {"add a library", adding(L"M:\\nested", L"new", false, kStore)},
      {kMuch, adding(L"M:\\much", L"new", false, kStore)},
      {"replace", adding(L"M:\\noise", L"member", true, kStore)},
      {"replace by a library", adding(L"M:\\nested", L"MEMBER", true, kStore)},
      {"rename", [](ZoLibrary& library) { return library.renameFile(L"member", L"rebmem"); }},
      {"rename to another length",
       [](ZoLibrary& library) { return library.renameFile(L"nested", L"nested.lib"); }},
      {"delete", [](ZoLibrary& library) { return library.deleteFile(L"member"); }},
      {"recover", [](ZoLibrary& library) { return library.recoverFile(L"G\x00D6NE"); }},
      {"delete physically", [](ZoLibrary& library) { return library.deleteFile(L"member", true); }},
      {"delete the last", [](ZoLibrary& library) { return library.deleteFile(L"last", true); }},
      {"reorganize", [](ZoLibrary& library) { return library.reorganize(); }},
      {"rename many", renameAll},
      {"delete many", [](ZoLibrary& library) { return library.deleteFiles(kSome); }},
      {"delete all versions",
       [](ZoLibrary& library) {
         return library.deleteFiles(std::span(kSome, 1), ZoLibrary::kAllVersions);
       }},
      {"recover many",
       [](ZoLibrary& library) {
         const ZoFileName gone[] = {L"pad", L"g\x00F6ne"};
         return library.recoverFiles(gone, true);
       }},
      {"recover under other names",
       [](ZoLibrary& library) {
         const ZoLibRename gone[] = {{L"pad", L"dap"}, {L"g\x00F6ne", L"nested gone"}};
         return library.recoverFilesAs(gone);
       }},
      {"set the value", [](ZoLibrary& library) { return library.setCheckSum(0x0123456789ABCDEF); }},
      {"set a time", [](ZoLibrary& library) { return setTimesOf(library, L"member"); }},
      {"write a member", writeMember},
      {"add some in one step", addBatch},
      {"extract", [](ZoLibrary& library) { return library.extractFile(L"member", kTarget); }},
      {"salvage", salvage},
  };
  return all;
}

}  // namespace

class LibraryPromise : public LibraryTest {
 protected:
  LibraryPromise() {
    MemoryDisk::Image sources = {{L"M:\\text", std::string(900, 't')},
                                 {L"M:\\noise", noise(600)},
                                 {L"M:\\much", noise(300'000)},
                                 {L"M:\\small", "small"},
                                 {kTarget, "target"}};
    disk_.put(sources);
    ZoLibrary nested;
    EXPECT_EQ(nested.open(L"M:\\nested", kReadWrite, ZoFile::kOpenAlways), 0);
    for (const wchar_t* const member : {L"one", L"two", L"deleted"}) {
      EXPECT_EQ(nested.addFile(L"M:\\small", member, false, ZoLibrary::kStore), 0);
    }
    EXPECT_EQ(nested.deleteFile(L"deleted"), 0);
    EXPECT_EQ(nested.close(), 0);
    sources_ = disk_.image();
  }

  // A library in which an entry to be changed stands at one place of a sector, and the end at
  // another. `isMarked` ends it by a mark.
  void makeBase(std::size_t member, std::size_t end, bool isMarked) {
    disk_.put(sources_);
    std::string bytes = header();
    bytes[20] = 20;  // the counter
    const auto pad = [&](std::size_t place) {
      const std::size_t size = (place + 2 * 512 - (bytes.size() + 57) % 512) % 512;
      bytes += HandMade{.name = "pad", .data = noise(size), .flags = 0x200}.bytes();
    };
    pad(member);
    const std::string data = noise(100);
    bytes += HandMade{.name = "member", .data = data, .number = 2, .crc = crcOf(data), .size = 100}
                 .bytes();
    bytes += HandMade{.name = "nested", .data = sources_[L"M:\\nested"]}.bytes();
    bytes += HandMade{.name = "g\xF6ne", .data = "gone", .flags = 0x200}.bytes();
    pad((end + 512 - 62) % 512);
    bytes += HandMade{.name = "last", .data = "last", .flags = isMarked ? 0x80U : 0U}.bytes();
    auto image = sources_;
    image[kPath] = bytes;
    disk_.put(image);
  }

  // What the operation makes of the base, for `before_` and `after_`.
  void expectFrom(const Operation& operation) {
    base_ = disk_.image();
    before_ = seenAt(kPath);
    ASSERT_EQ(perform(operation), 0);
    after_ = seenAt(kPath);
    afterImage_ = disk_.image();
  }

  int perform(const Operation& operation) {
    ZoLibrary library;
    if (const int code = library.open(kPath, kReadWrite, ZoFile::kOpenAlways)) return code;
    library.onProgress(
        [&, steps = 0](std::uint64_t, std::uint64_t) mutable { return ++steps != cancelledStep_; });
    const int code = operation.run(library);
    // When a call failed and the next ones do not: what the object itself says then.
    if (disk_.isOver() && library.isOpen()) {
      const std::string found = seenIn(library);
      EXPECT_TRUE(found == after_ || (code != 0 && isBefore(found))) << found;
    }
    return code;
  }

  [[nodiscard]] bool isBefore(const std::string& found) const {
    return found == before_ || (before_ == kNoFile && found.find(" number=") == std::string::npos);
  }

  // The disk holds the library before or after, and it can be used. `code` is the result of the
  // operation, if it had one.
  void check(int code) {
    const std::string found = seenAt(kPath);
    const std::string target = disk_.image()[kTarget];
    EXPECT_TRUE(found == after_ || (code != 0 && isBefore(found)))
        << found << "before: " << before_ << "after: " << after_;
    EXPECT_TRUE(target == afterImage_[kTarget] || (code != 0 && target == base_[kTarget]));
    ZoLibrary library;
    ASSERT_EQ(library.open(kPath, kReadWrite, ZoFile::kOpenAlways), 0);
    const std::string kept = found == kNoFile ? std::string() : found;
    EXPECT_EQ(seenIn(library).substr(0, kept.size()), kept);
    EXPECT_EQ(library.addFile(L"M:\\small", L"added next"), 0);
    const std::string next = seenIn(library);
    EXPECT_EQ(next.substr(0, kept.size()), kept);
    EXPECT_EQ(contentOf(library, L"added next"), "small");
    EXPECT_EQ(library.close(), 0);
    EXPECT_EQ(seenAt(kPath), next);
  }

  // The calls of the operation go wrong, one after the other.
  void failEachCall(const Operation& operation,
                    const std::vector<Trouble>& troubles = {Trouble::fail, Trouble::shorten,
                                                            Trouble::full, Trouble::stop}) {
    ASSERT_NO_FATAL_FAILURE(expectFrom(operation));
    for (const Trouble trouble : troubles) {
      for (int nth = 1;; nth += kEveryCall) {
        SCOPED_TRACE(testing::Message() << static_cast<int>(trouble) << ", call " << nth);
        disk_.put(base_);
        disk_.arm(trouble, nth);
        const int code = perform(operation);
        const int calls = disk_.calls();
        disk_.arm(Trouble::none, 0);
        const auto image = disk_.image();
        EXPECT_TRUE(trouble == Trouble::stop || image.size() <= afterImage_.size());
        disk_.put(image);
        if (onImage_) onImage_(image);
        if (trouble == Trouble::stop) expectNoDamage(image);
        check(code);
        if (HasFailure()) return;
        if (calls < nth) break;
      }
    }
  }

  // What a killed writer leaves is an unfinished change, and ends where the members do or does not.
  static void expectNoDamage(const MemoryDisk::Image& image) {
    ZoLibrary reader;
    if (reader.open(kPath)) return;
    EXPECT_EQ(reader.trailingBytes(), 0u);
    std::uint64_t end = 32;
    std::vector<ZoLibEntry> entries;
    EXPECT_EQ(reader.forEachEntry(
                  [&](const ZoLibEntry& entry) {
                    entries.push_back(entry);
                    end = entry.position + 54 + entry.name.fullNameSize() + entry.storedSize;
                    return true;
                  },
                  true),
              0);
    const std::uint64_t size = image.at(kPath).size();
    EXPECT_TRUE(size <= 32 || reader.hasUnfinishedChange() == (end != size)) << end << ' ' << size;
    for (const ZoLibEntry& entry : entries) {  // as the change leaves it, though it is not finished
      ZoFile file;
      EXPECT_EQ(reader.getFile(file, entry), 0) << entry.name.fullName();
    }
  }

  // Whatever part of the writes reaches the disk. Returns the number of cases.
  int loseThePower(const Operation& operation, std::size_t sector, int most) {
    expectFrom(operation);
    disk_.put(base_);
    std::vector<MemoryDisk::File> instants;
    const auto keep = [&](const std::wstring& name) {
      if (name == kPath && disk_.find(kPath)) instants.push_back(*disk_.find(kPath));
    };
    disk_.beforeDurable = keep;
    EXPECT_EQ(perform(operation), 0);
    disk_.beforeDurable = nullptr;
    keep(kPath);
    auto image = disk_.image();
    int cases = 0;
    for (std::size_t i = 0; i < instants.size() && !HasFailure(); ++i) {
      SCOPED_TRACE(testing::Message() << "instant " << i + 1 << " of " << instants.size());
      const bool isDone = i + 1 == instants.size();
      cases += forEachRemainder(instants[i], sector, most, [&](const std::string& bytes) {
        if (HasFailure()) return;
        image[kPath] = bytes;
        disk_.put(image);
        check(isDone ? 0 : 1);
      });
    }
    return cases;
  }

  MemoryDisk disk_;
  MemoryDisk::Image sources_, base_, afterImage_;
  std::string before_, after_;
  int cancelledStep_ = 0;
  std::function<void(const MemoryDisk::Image&)> onImage_;  // that a fault left
};

TEST_F(LibraryPromise, AnyCallOfThePlatformMayFail) {
  for (const Operation& operation : operations()) {
    for (const bool isMarked : {false, true}) {
      SCOPED_TRACE(std::string(operation.name) + (isMarked ? ", marked" : ""));
      makeBase(470, 300, isMarked);
      ASSERT_NO_FATAL_FAILURE(failEachCall(operation));
      if (HasFailure()) return;
    }
  }
  disk_.put(sources_);
  SCOPED_TRACE("a new library");
  failEachCall(operations().front());
}

TEST_F(LibraryPromise, WhatIsCancelledChangesNothing) {
  for (const Operation& operation : operations()) {
    makeBase(470, 300, false);
    ASSERT_NO_FATAL_FAILURE(expectFrom(operation));
    for (int code = 1; code != 0 && !HasFailure();) {
      ++cancelledStep_;
      SCOPED_TRACE(std::string(operation.name) + ", step " + std::to_string(cancelledStep_));
      disk_.put(base_);
      code = perform(operation);
      EXPECT_TRUE(code == 0 || disk_.image() == base_);
      check(code);
    }
    EXPECT_TRUE(operation.name != kMuch || cancelledStep_ > 3);
    cancelledStep_ = 0;
  }
}

TEST_F(LibraryPromise, AnyUnflushedWriteMayBeLostOrTorn) {
  // Places of an entry where its gate, its name or its times lie in two sectors, or in one.
  constexpr std::pair<std::size_t, std::size_t> kPlaces[] = {{0, 0},     {459, 460}, {470, 459},
                                                             {455, 461}, {480, 496}, {511, 511}};
  int cases = 0;
  for (const Operation& operation : operations()) {
    if (operation.name == kMuch) continue;  // more of the same
    for (const auto& [member, end] : kPlaces) {
      for (const std::size_t sector : {512U, 4096U}) {
        if (sector != 512 && kEveryCall != 1) continue;
        SCOPED_TRACE(std::string(operation.name) + ", places " + std::to_string(member) + " and " +
                     std::to_string(end) + ", sectors of " + std::to_string(sector));
        makeBase(member, end, end == 496);
        cases += loseThePower(operation, sector, kRemainders);
        if (HasFailure()) return;
      }
    }
  }
  disk_.put(sources_);
  SCOPED_TRACE("a new library");
  cases += loseThePower(operations().front(), 512, kRemainders);
  EXPECT_GT(cases, 45 * kRemainders);
}

// The file has grown by a member and the begin of another each time that its size was asked for.
TEST_F(LibraryPromise, AWriterAtWorkIsNoDamage) {
  const std::string member = HandMade{.name = "m", .data = std::string(1000, 'm')}.bytes();
  std::string begun = member.substr(0, 500), bytes = header();
  begun.replace(50, 4, "\xFF\xFF\0\0", 4);
  disk_.put({{kPath, bytes + begun}});
  int rounds = 12 * 3;
  disk_.beforeRead = [&] {
    if (rounds-- > 0) disk_.change(kPath, (bytes += member) + begun);
  };
  ZoLibrary reader;
  ASSERT_EQ(reader.open(kPath), 0);
  EXPECT_EQ(reader.trailingBytes(), 0u);
  EXPECT_TRUE(reader.hasUnfinishedChange());
  disk_.beforeRead = nullptr;
}

// Libraries as they are after each operation and where a process ended in it, for other readers.
class LibrarySamples : public LibraryPromise {
 public:
  int write(const std::wstring& folder) {
    std::map<std::string, std::string> samples;
    const auto keep = [&](const MemoryDisk::Image& image) {
      const auto found = image.find(kPath);
      if (found != image.end()) samples[found->second] = seenAt(kPath);
    };
    onImage_ = keep;
    for (const Operation& operation : operations()) {
      makeBase(460, 459, operation.name == "extract");
      failEachCall(operation, {Trouble::stop});
    }
    disk_.put(sources_);
    ZoLibrary library;
    EXPECT_EQ(library.open(kPath, kReadWrite, ZoFile::kOpenAlways), 0);
    for (const wchar_t* const odd : {L"\x0416/\x20AC", L"\\U+0041\x65E5", L"\\U+00e4"}) {
      EXPECT_EQ(library.addFile(L"M:\\small", odd), 0);
    }
    keep(disk_.image());
    int number = 0;
    for (const auto& [bytes, seen] : samples) {
      const std::wstring path = folder + L"/" + std::to_wstring(++number);
      put((path + L".lib").c_str(), bytes);
      put((path + L".txt").c_str(), seen);
    }
    return HasFailure() ? 1 : 0;
  }

 private:
  void TestBody() override {}
};

ZO_TEST_CHILD(writeLibraries) { return LibrarySamples().write(parent.argument(0)); }
