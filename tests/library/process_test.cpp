// Libraries in real processes: killed at random moments, and several at once.
#include <chrono>
#include <cstdlib>

#include "library/library_fixture.h"
#include "library/listing.h"
#include "support/child_process.h"

using namespace zo::test;

namespace {

// Members of a folder, deleted, recovered or moved into another one, all in one step.
int performOnMany(ZoLibrary& library, unsigned what) {
  std::vector<ZoLibEntry> entries;
  std::vector<ZoLibRename> renamings;
  const auto keep = [&](const ZoLibEntry& entry) {
    if (entry.isDeleted() == (what == 1)) entries.push_back(entry);
    return true;
  };
  if (const int code = library.forEachEntry(keep, true)) return code;
  if (what == 0) return library.deleteFiles(entries);
  if (what == 1) return library.recoverFiles(entries, true);
  for (const ZoLibEntry& entry : entries) {
    const std::wstring name = entry.name.fullName();
    const bool isMoved = name.starts_with(L"moved/");
    renamings.push_back({{}, (isMoved ? name.substr(6) : L"moved/" + name).c_str(), &entry});
  }
  return library.renameFiles(renamings);
}

int perform(ZoLibrary& library, const std::wstring& folder, unsigned seed) {
  std::mt19937 random(seed);
  const ZoFileName source((folder + L"\\source").c_str());
  const std::wstring member = L"member" + std::to_wstring(random() % 5);
  const std::wstring other = L"member" + std::to_wstring(random() % 12);
  switch (random() % 12) {
    case 0:
      return library.deleteFile(member.c_str(), random() % 3 == 0);
    case 1:
      return library.renameFile(member.c_str(), other.c_str());
    case 2:
      return library.recoverFile(member.c_str());
    case 3:
      return library.reorganize();
    case 8:
    case 9:
    case 10:
      return performOnMany(library, random() % 3);
    case 4:
      return library.extractFile(member.c_str(), (folder + L"\\target").c_str());
    default:
      return library.addFile(source, member.c_str(), true,
                             static_cast<ZoLibrary::compMode>(random() % 3), ZoLibrary::kFast);
  }
}

// Reading the source may set the time of its last access.
std::string steady(const std::string& seen) { return without(seen, " accessed=", " written="); }

}  // namespace

// Performs what it hears of: a seed.
ZO_TEST_CHILD(libraryWorker) {
  const Attached attached;
  const std::wstring folder = parent.argument(0);
  ZoLibrary library;
  if (library.open((folder + L"\\parts.lib").c_str(), ZoFile::kReadWrite, ZoFile::kOpenAlways)) {
    return 1;
  }
  parent.say("open");
  const auto seed = static_cast<unsigned>(std::stoul(parent.hear().value()));
  parent.say(std::to_string(perform(library, folder, seed)));
  return 0;
}

// Adds members of its own, each with a library that it opens for that.
ZO_TEST_CHILD(libraryAdder) {
  const Attached attached;
  const std::wstring path = parent.argument(0), own = parent.argument(2);
  const ZoFileName source(parent.argument(1).c_str());
  for (int i = 0; i < 8; ++i) {
    ZoLibrary library;
    const std::wstring member = own + std::to_wstring(i);
    if (library.open(path.c_str(), ZoFile::kReadWrite, ZoFile::kOpenAlways, 200'000)) return 1;
    if (library.addFile(source, member.c_str(), false, ZoLibrary::kStore)) return 2;
    if (contentOf(library, member.c_str()).size() != 5000) return 3;
    if (own == L"doomed" && i == 3) {
      parent.say("holding");
      parent.hear();
    }
  }
  return 0;
}

// A twin that nothing befalls tells what each call makes of the library.
TEST_F(LibraryTest, KilledProcessesLeaveTheLibraryBeforeOrAfterTheCall) {
  const int rounds = isLong() ? 200 : 12;
  const ZoFileName twin = name(L"twin.lib");
  const std::wstring folder = folder_.path().wstring();
  std::mt19937 random(1);
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    ChildProcess worker(L"libraryWorker", {folder});
    ASSERT_EQ(worker.hear(), "open");
    put(twin, bytesOf(path_));
    const std::string before = steady(seenAt(twin));
    std::string source(random() % 200'000, '\0');
    for (char& byte : source) byte = static_cast<char>(random() % 16 + (random() & 128));
    put(source_, source);
    const unsigned seed = random();
    worker.say(std::to_string(seed));
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::microseconds(random() % 6000);
    while (Clock::now() < end) continue;
    worker.kill();
    const bool isDone = worker.hear().has_value();

    ZoLibrary library;
    ASSERT_EQ(library.open(twin, kReadWrite), 0);
    static_cast<void>(perform(library, folder, seed));
    ASSERT_EQ(library.close(), 0);
    const std::string after = steady(seenAt(twin)), found = steady(seenAt(path_));
    EXPECT_TRUE(found == after || (!isDone && found == before))
        << found << "before: " << before << "after: " << after;
    ASSERT_EQ(openForWriting(library, 0), 0) << "nobody holds it";
    EXPECT_EQ(steady(seenIn(library)), found);
    EXPECT_EQ(library.trailingBytes(), 0u);
  }
}

TEST_F(LibraryTest, SeveralProcessesAddAndReadAtOnce) {
  put(source_, std::string(5000, 's'));
  std::vector<std::unique_ptr<ChildProcess>> adders;
  for (const wchar_t* const owner : {L"a", L"b", L"c", L"doomed"}) {
    adders.push_back(std::make_unique<ChildProcess>(
        L"libraryAdder", std::vector<std::wstring>{path_.fullName(), source_.fullName(), owner}));
  }
  // One dies while it holds what the others wait for, whatever the spelling of the path.
  ASSERT_EQ(adders.back()->hear(), "holding");
  const ZoFileName spelled = name(L".\\PARTS.lib");
  for (const ZoFileName& path : {path_, spelled}) {
    ZoLibrary late;
    EXPECT_EQ(late.open(path, kReadWrite, ZoFile::kOpenExisting, 10), 1005);
  }
  adders.back()->kill();
  adders.pop_back();
  // What a reader sees meanwhile is whole.
  std::size_t least = 4;
  while (std::any_of(adders.begin(), adders.end(), [](const auto& a) { return a->running(); })) {
    ZoLibrary reader;
    ASSERT_EQ(reader.open(path_), 0);
    const Names seen = names(reader);
    EXPECT_GE(seen.size(), least);
    EXPECT_EQ(reader.trailingBytes(), 0u);
    least = seen.size();
    EXPECT_EQ(contentOf(reader, seen.back().c_str()).size(), 5000u);
  }
  for (const auto& adder : adders) EXPECT_EQ(adder->wait(), 0);
  ZoLibrary library;
  ASSERT_EQ(library.open(path_), 0);
  EXPECT_EQ(names(library).size(), 3u * 8 + 4);
  EXPECT_EQ(seenIn(library).find("check=1"), std::string::npos);
}
