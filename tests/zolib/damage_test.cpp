// The tool over libraries of which one bit was changed: what comes out is right, little is lost,
// and whatever is done to such a library, no fewer members can be rescued afterwards. Each call is
// the tool's own code from the command line on.
#include <windows.h>

#include <iostream>
#include <set>

#include "../../tools/shared/console.h"
#include "../../tools/shared/program.h"
#include "../../tools/zolib/session.h"
#include "library/library_fixture.h"
#include "library/listing.h"

namespace zolib {
namespace {

using Contents = std::multiset<std::string>;

class Damage : public zo::test::LibraryTest {
 protected:
  Damage() : before_(std::filesystem::current_path()), out_(GetStdHandle(STD_OUTPUT_HANDLE)) {
    std::filesystem::current_path(folder_.path());
    for (const DWORD stream : {STD_OUTPUT_HANDLE, STD_ERROR_HANDLE}) SetStdHandle(stream, nowhere_);
    make();
  }
  ~Damage() override {
    SetStdHandle(STD_OUTPUT_HANDLE, out_);
    SetStdHandle(STD_ERROR_HANDLE, err_);
    CloseHandle(nowhere_);
    std::filesystem::current_path(before_);
  }

  static ExitCode zolib(const std::vector<std::string>& arguments) {
    Console console;
    return runCommandLine(arguments, console);
  }

  // Packed and stored members, older versions, deleted ones, a folder, an empty one.
  void make() {
    std::filesystem::create_directory("parts");
    for (const int version : {1, 2}) {
      for (const std::string part : {"a", "b", "parts/c", "parts/d", "parts/e"})
        put(name(std::wstring(part.begin(), part.end())),
            (part + std::to_string(version) + " ") + std::string(60 * version + part[0], 'x'));
      put(name(L"empty"), "");
      EXPECT_EQ(zolib({"add", kSound, "a", "b", "empty", "--mode", "store"}), kOk);
      EXPECT_EQ(zolib({"add", kSound, "parts", "--mode", version == 1 ? "fast" : "best"}), kOk);
    }
    EXPECT_EQ(zolib({"delete", kSound, "b", "parts/d"}), kOk);
    put(name(L"new"), "what is added");
    sound_ = bytesOf(name(L"sound.lib"));
    all_ = rescued(kSound);
    EXPECT_EQ(all_.size(), 12u);
  }

  // What salvage gets of it, deleted members too.
  Contents rescued(const std::string& library) {
    std::filesystem::remove("rescued.lib");
    static_cast<void>(zolib({"salvage", library, "rescued.lib", "-q"}));
    Contents found;
    ZoLibrary rescue;
    if (rescue.open(L"rescued.lib")) return found;
    std::vector<ZoLibEntry> entries;
    const auto keep = [&](const ZoLibEntry& entry) { return entries.push_back(entry), true; };
    EXPECT_EQ(rescue.forEachEntry(keep, true), 0);
    for (const ZoLibEntry& entry : entries) {
      EXPECT_EQ(rescue.verify(entry), 0);
      ZoFile file;
      EXPECT_EQ(rescue.getFile(file, entry), 0);
      std::string content(entry.size, '\0');
      EXPECT_EQ(file.read(content.data(), static_cast<unsigned>(content.size())), content.size());
      found.insert(content);
    }
    return found;
  }

  // Those of the first that the second lacks.
  static Contents without(const Contents& first, const Contents& second) {
    Contents missing;
    std::ranges::set_difference(first, second, std::inserter(missing, missing.end()));
    return missing;
  }

  void flip(std::size_t bit) {
    damaged_ = sound_;
    damaged_[bit / 8] = static_cast<char>(damaged_[bit / 8] ^ (1 << bit % 8));
    put(name(L"a.lib"), damaged_);
  }

  // What extract writes is whole and right, whatever it says.
  void expectRightFiles() {
    std::filesystem::remove_all("out");
    static_cast<void>(zolib({"extract", "a.lib", "-o", "out", "-q"}));
    if (!std::filesystem::exists("out")) return;
    for (const auto& file : std::filesystem::recursive_directory_iterator("out")) {
      if (!file.is_regular_file()) continue;
      const std::string content = bytesOf(ZoFileName(file.path().wstring().c_str()));
      EXPECT_TRUE(all_.contains(content)) << file.path();
    }
  }

  static constexpr const char* kSound = "sound.lib";
  std::string sound_, damaged_;
  Contents all_;

 private:
  std::filesystem::path before_;
  HANDLE out_, err_ = GetStdHandle(STD_ERROR_HANDLE);
  HANDLE nowhere_ =
      CreateFileW(L"NUL", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
};

// A verb, and how many members it takes away when it is done.
const struct {
  std::vector<std::string> arguments;
  std::size_t takes;
} kChanges[] = {
    {{"add", "a.lib", "new"}, 0},
    {{"update", "a.lib", "parts", "--by-content"}, 0},
    {{"sync", "a.lib", "parts"}, 0},
    {{"delete", "a.lib", "parts"}, 0},
    {{"rename", "a.lib", "parts", "more parts"}, 0},
    {{"recover", "a.lib", "parts"}, 0},
    {{"recover", "a.lib", "**", "--all"}, 0},
    {{"delete", "a.lib", "a", "--physically"}, 1},
    {{"delete", "a.lib", "a", "--physically", "--versions"}, 2},
    {{"reorganize", "a.lib"}, 8},
};

}  // namespace

TEST_F(Damage, OfOneBitLosesLittleAndNoChangeLosesMore) {
  const int rounds = zo::test::isLong() ? 10'000 : zo::test::bySpeed(40, 200);
  std::mt19937 random(1);
  std::map<std::size_t, int> lost;
  int changed = 0;
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    const std::size_t bit = random() % (8 * sound_.size());
    SCOPED_TRACE("bit " + std::to_string(bit));
    flip(bit);
    const Contents before = rescued("a.lib");
    EXPECT_TRUE(without(before, all_).empty()) << "what was never packed";
    const std::size_t count = without(all_, before).size();
    EXPECT_LE(count, 1u);
    ++lost[count];
    expectRightFiles();
    for (const auto& change : kChanges) {
      if (!zo::test::isLong() && random() % 4) continue;
      SCOPED_TRACE(testing::PrintToString(change.arguments));
      put(name(L"a.lib"), damaged_);
      const ExitCode code = zolib(change.arguments);
      if (bytesOf(name(L"a.lib")) == damaged_) continue;
      ++changed;
      EXPECT_LE(without(before, rescued("a.lib")).size(), change.takes) << code;
    }
  }
  for (const auto& [count, times] : lost)
    std::cout << times << " times " << count << " members lost; ";
  std::cout << changed << " changes made, none of which lost more\n";
}

// What another program removes or replaces while the library is read is none.
TEST_F(Damage, IsNotWhatChangesMeanwhile) {
  Options options;
  options.library = L"sound.lib";
  Console console;
  Report report(options, console);
  Session session(options, report);
  ASSERT_TRUE(session.openToRead());
  const std::vector<ZoLibEntry> entries = session.select(Session::kLive);
  EXPECT_EQ(zolib({"delete", kSound, "parts/e", "--physically"}), kOk);
  EXPECT_EQ(zolib({"add", kSound, "a"}), kOk);
  const auto verify = [&](const ZoLibEntry& entry) { return session->verify(entry); };
  for (const ZoLibEntry& entry : entries)
    EXPECT_EQ(session.readAgain(entry, verify), entry.name == L"parts/e" ? Session::kGone : 0);
  EXPECT_EQ(session.readAgain(entries[0], [](const ZoLibEntry&) { return 1000; }), 1000);
}

}  // namespace zolib
