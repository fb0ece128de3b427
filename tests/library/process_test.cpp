// Libraries in real processes: killed at random moments, and several at once.
#include <cstdlib>

#include "library/library_fixture.h"
#include "library/listing.h"
#include "support/child_process.h"

using namespace zo::test;

namespace {

int perform(ZoLibrary& library, const std::wstring& folder, unsigned seed) {
  std::mt19937 random(seed);
  const ZoFileName source((folder + L"\\source").c_str());
  const std::wstring member = L"member" + std::to_wstring(random() % 5);
  const std::wstring other = L"member" + std::to_wstring(random() % 12);
  switch (random() % 8) {
    case 0:
      return library.deleteFile(member.c_str(), random() % 3 == 0);
    case 1:
      return library.renameFile(member.c_str(), other.c_str());
    case 2:
      return library.recoverFile(member.c_str());
    case 3:
      return library.reorganize();
    case 4:
      return library.extractFile(member.c_str(), (folder + L"\\target").c_str());
    default:
      return library.addFile(source, member.c_str(), true,
                             static_cast<ZoLibrary::compMode>(random() % 3), ZoLibrary::kFast);
  }
}

}  // namespace

// Performs what it hears of: seeds.
ZO_TEST_CHILD(libraryWorker) {
  const Attached attached;
  const std::wstring folder = parent.argument(0);
  ZoLibrary library;
  if (library.open((folder + L"\\parts.lib").c_str(), ZoFile::kReadWrite, ZoFile::kOpenAlways)) {
    return 1;
  }
  parent.say("open");
  while (const auto seed = parent.hear()) {
    parent.say(std::to_string(perform(library, folder, static_cast<unsigned>(std::stoul(*seed)))));
  }
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

namespace {

// Reading the source may set the time of its last access.
std::string steady(const std::string& seen) { return without(seen, " accessed=", " written="); }

}  // namespace

// A twin that nothing befalls tells what each call makes of the library.
TEST_F(LibraryTest, KilledProcessesLeaveTheLibraryBeforeOrAfterTheCall) {
  const int rounds = std::getenv("ZO_TEST_LONG") ? 200 : 12;
  const ZoFileName twin = name(L"twin.lib"), target = name(L"target");
  const std::wstring folder = folder_.path().wstring();
  std::mt19937 random(1);
  int undone = 0;
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE(round);
    ChildProcess worker(L"libraryWorker", {folder});
    ASSERT_EQ(worker.hear(), "open");
    put(twin, bytesOf(path_));
    std::string source(random() % 200'000, '\0');
    for (char& byte : source) byte = static_cast<char>(random() % 16 + (random() & 128));
    put(source_, source);
    const std::string oldTarget = bytesOf(target);
    unsigned seed = 0;
    // Some calls run through; during the last the process is killed.
    for (int calls = static_cast<int>(random() % 6); calls >= 0; --calls) {
      seed = random();
      worker.say(std::to_string(seed));
      if (calls == 0) break;
      const auto code = worker.hear();
      ZoLibrary library;
      ASSERT_EQ(library.open(twin, kReadWrite), 0);
      ASSERT_EQ(std::to_string(perform(library, folder, seed)), code);
    }
    LARGE_INTEGER now{}, end;
    QueryPerformanceFrequency(&end);
    end.QuadPart = static_cast<LONGLONG>(static_cast<double>(random() % 6000) * 1e-6 *
                                         static_cast<double>(end.QuadPart));
    LARGE_INTEGER begin;
    QueryPerformanceCounter(&begin);
    while (now.QuadPart - begin.QuadPart < end.QuadPart) QueryPerformanceCounter(&now);
    worker.kill();
    const bool isDone = worker.hear().has_value();

    const std::string before = steady(seenAt(twin));
    ZoLibrary library;
    ASSERT_EQ(library.open(twin, kReadWrite), 0);
    static_cast<void>(perform(library, folder, seed));
    ASSERT_EQ(library.close(), 0);
    const std::string after = steady(seenAt(twin)), found = steady(seenAt(path_));
    EXPECT_TRUE(found == after || (!isDone && found == before))
        << found << "before: " << before << "after: " << after;
    undone += found == before && before != after;
    ASSERT_EQ(openForWriting(library, 0), 0) << "nobody holds it";
    EXPECT_EQ(steady(seenIn(library)), found);
    EXPECT_EQ(library.trailingBytes(), 0u);
  }
  EXPECT_GE(undone, rounds / 100);
}

TEST_F(LibraryTest, SeveralProcessesAddAndReadAtOnce) {
  put(source_, std::string(5000, 's'));
  for (const std::vector<std::wstring>& owners :
       {std::vector<std::wstring>{L"a", L"b"}, {L"c", L"d", L"e", L"doomed"}}) {
    std::vector<std::unique_ptr<ChildProcess>> adders;
    for (const std::wstring& owner : owners) {
      adders.push_back(std::make_unique<ChildProcess>(
          L"libraryAdder", std::vector<std::wstring>{path_.fullName(), source_.fullName(), owner}));
    }
    if (owners.back() == L"doomed") {
      // It dies while it holds what the others wait for.
      ASSERT_EQ(adders.back()->hear(), "holding");
      ZoLibrary late;
      EXPECT_EQ(openForWriting(late, 10), 1005);
      adders.back()->kill();
      adders.pop_back();
    }
    // What a reader sees meanwhile is whole.
    std::size_t least = 0;
    while (std::any_of(adders.begin(), adders.end(), [](const auto& a) { return a->running(); })) {
      ZoLibrary reader;
      if (reader.open(path_)) continue;  // before the first of them
      std::size_t count = 0;
      reader.forEachEntry([&](const ZoLibEntry& entry) {
        ++count;
        EXPECT_EQ(entry.size, 5000u);
        return true;
      });
      EXPECT_GE(count, least);
      least = count;
    }
    for (const auto& adder : adders) EXPECT_EQ(adder->wait(), 0);
  }
  ZoLibrary library;
  ASSERT_EQ(library.open(path_), 0);
  const std::string seen = seenIn(library);
  for (const wchar_t owner : std::wstring(L"abcde")) {
    for (int i = 0; i < 8; ++i) EXPECT_TRUE(library.contains((owner + std::to_wstring(i)).c_str()));
  }
  EXPECT_EQ(names(library).size(), 44u);
  EXPECT_EQ(seen.find("check=1"), std::string::npos);
}
