// Installation media and discs.
#include <zo/files/file.h>
#include <zo/files/forward_file_system.h>
#include <zo/persist/check_sum.h>
#include <zo/system/file_open.h>
#include <zo/system/file_search.h>

#include <map>

#include "files/file_fixture.h"
#include "search/manifest.h"
#include "support/slots.h"

namespace zo::test {
namespace {

#if !defined(_MSC_VER)
TEST(FileOpen, KeepsItsSlots) {
  using O = ZoFileOpen;
  int (O::*check)(const ZoFileName&, ZoMediaReport*, const ZoMediaWatcher&) = &O::checkMedia;
  int (O::*write)(const ZoFileName&, const ZoString&, const ZoMediaWatcher&) = &O::writeManifest;
  int (O::*request)(const ZoString&, ZoFileName&) = &O::requestMedia;
  int (O::*key)(const void*, std::size_t) = &O::setMediaKey;
  expectSlots(slotOf(&ZoSysObj::timeOut) + 1, &O::openDocument, &O::openFile, check, write, request,
              key, &O::setMediaPrompt);
}
#endif

class MediaTest : public FileTest {
 protected:
  MediaTest() {
    for (const wchar_t* folder : {L"disc", L"disc\\bolts", L"disc\\bolts\\small"})
      std::filesystem::create_directory(folder_.path() / folder);
    for (const auto& [file, content] : kFiles) put(on(file), content);
    EXPECT_EQ(open().setMediaKey("key", 3), 0);
  }
  static ZoFileOpen& open() { return ZoSystem::fileOpen(); }
  ZoFileName root() const { return name(L"disc\\"); }
  ZoFileName on(const std::wstring& file) const { return name(L"disc\\" + file); }
  ZoFileName manifest() const { return on(L"zomedia.txt"); }
  static std::string sumOf(const std::string& data, const std::string& key = "key") {
    ZoCheckSum::Sum sum;
    EXPECT_EQ(zoCheckSum(data.data(), data.size(), ZoCheckKey(key), sum), 0);
    std::string hex;
    for (const unsigned byte : sum) {
      for (const unsigned digit : {byte >> 4, byte & 15}) hex += "0123456789abcdef"[digit];
    }
    return hex;
  }
  static std::string upper(std::string digits) {
    for (char& c : digits) c = c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c;
    return digits;
  }
  // With the right sum below it.
  void putManifest(const std::string& text, const std::string& key = "key") const {
    put(manifest(), text + "sum " + sumOf(text, key) + "\n");
  }

  const std::map<std::wstring, std::string> kFiles = {
      {L"A.txt", "letter a"}, {L"bolts\\m8.dwg", "bolt"}, {L"bolts\\small\\\u00E4 b.dwg", ""}};
};

TEST_F(MediaTest, ManifestsListEveryFileWithItsSum) {
  ZoMediaReport report;
  EXPECT_EQ(open().checkMedia(root(), &report), ZoResult::noManifest);
  EXPECT_EQ(report.files, 0U);
  const std::string text = "zo media 1\nlabel Parts 2026\nfile 8 " + sumOf("letter a") +
                           " A.txt\nfile 4 " + sumOf("bolt") + " bolts/m8.dwg\nfile 0 " +
                           sumOf("") + " bolts/small/\xC3\xA4 b.dwg\n";
  for (int i = 0; i < 2; ++i) {  // the old one is not in the new one
    ASSERT_EQ(open().writeManifest(root(), std::wstring(L"Parts 2026")), 0);
    EXPECT_EQ(bytesOf(manifest()), text + "sum " + sumOf(text) + "\n");
  }
  put(on(L"more.txt"), "not listed");
  EXPECT_EQ(open().checkMedia(name(L"disc"), &report), 0) << "without its delimiter";
  EXPECT_EQ(report.label, L"Parts 2026");
  EXPECT_EQ(report.files, 3U);
  EXPECT_EQ(report.bytes, 12U);
  EXPECT_EQ(report.missing.entries() + report.different.entries(), 0U);
  EXPECT_EQ(open().checkMedia(name(L"nothing\\")), 1);
  EXPECT_EQ(open().checkMedia(L""), 1);
  for (const wchar_t* label : {L"", L"a/b", L"a\\b", L"a\nb"})
    EXPECT_EQ(open().writeManifest(root(), label), 1);
  EXPECT_EQ(open().setMediaKey(nullptr, 1), 1);
}

TEST_F(MediaTest, EveryChangeOfAFileIsFoundAndNamed) {
  ASSERT_EQ(open().writeManifest(root(), L"x"), 0);
  const auto expect = [&](const std::wstring& file, bool isMissing) {
    ZoMediaReport report;
    EXPECT_EQ(open().checkMedia(root(), &report), ZoResult::mediaDiffers);
    ASSERT_EQ(report.missing.entries(), isMissing ? 1U : 0U);
    ASSERT_EQ(report.different.entries(), isMissing ? 0U : 1U);
    EXPECT_TRUE((isMissing ? report.missing : report.different)[0] == on(file));
    EXPECT_EQ(report.files, 3U) << "all of them are looked at";
  };
  for (const auto& [file, content] : kFiles) {
    for (size_t bit = 0; bit < 8 * content.size(); ++bit) {
      std::string changed = content;
      changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ 1 << bit % 8);
      put(on(file), changed);
      expect(file, false);
    }
    put(on(file), content + "x");
    expect(file, false);
    std::filesystem::remove(on(file).fullName());
    expect(file, true);
    std::filesystem::create_directory(on(file).fullName());
    expect(file, false);
    std::filesystem::remove(on(file).fullName());
    put(on(file), content);
  }
  EXPECT_EQ(open().checkMedia(root()), 0);
}

TEST_F(MediaTest, AManifestThatIsNotTheMakersCountsForNothing) {
  ASSERT_EQ(open().writeManifest(root(), L"x"), 0);
  const std::string good = bytesOf(manifest());
  for (size_t i = 0; i <= good.size(); ++i) {
    std::string changed = good;
    if (i < good.size()) changed[i] = static_cast<char>(changed[i] ^ 1);
    put(manifest(), i < good.size() ? changed : good + "\n");
    EXPECT_EQ(open().checkMedia(root()), ZoResult::manifestDamaged) << i;
    if (i % 5 > 0 && i < good.size() - 5) continue;
    put(manifest(), good.substr(0, i));
    EXPECT_EQ(open().checkMedia(root()), i < good.size() ? ZoResult::manifestDamaged : 0) << i;
  }
  ASSERT_EQ(open().setMediaKey("other", 5), 0);
  EXPECT_EQ(open().checkMedia(root()), ZoResult::manifestDamaged);
}

TEST_F(MediaTest, NamesNeverLeadOutOfTheRoot) {
  put(name(L"outside"), "bolt");
  const std::string head = "zo media 1\nlabel x\n", file = "file 4 " + sumOf("bolt") + ' ';
  const std::wstring absolute(name(L"outside").view());
  for (const std::string& line :
       {file + "../outside\n",
        file + "bolts/../../outside\n",
        file + "bolts\\m8.dwg\n",
        file + std::string(absolute.begin(), absolute.end()) + "\n",
        file + "/outside\n",
        file + "bolts/m8.dwg:stream\n",
        file + "NUL\n",
        file + "bolts/con.txt\n",
        file + "\n",
        file + "bolts/m8.dwg. \n",
        file + "bolts/*\n",
        file + "//server/share/f\n",
        file + "./bolts/m8.dwg\n",
        file + ".\n",
        file + "bolts//m8.dwg\n",
        file + "bolts/\n",
        file + "bolts/m8.dwg\n" + file + "bolts/M8.dwg\n",
        file + "ZoMedia.txt\n",
        "file 04" + file.substr(6) + "bolts/m8.dwg\n",
        "file 4 " + upper(sumOf("bolt")) + " bolts/m8.dwg\n",
        "file 18446744073709551615" + file.substr(6) + "a\n" + file + "bolts/m8.dwg\n",
        std::string("file -1 ") + file.substr(7) + "a\n",
        std::string("file 4 00 a\n"),
        std::string("more\n"),
        std::string("label y\n"),
        file + "a"}) {
    putManifest(head + line);
    EXPECT_EQ(open().checkMedia(root()), ZoResult::manifestDamaged) << line;
  }
  putManifest(head + file + "bolts/M8.DWG\n");
  EXPECT_EQ(open().checkMedia(root()), 0) << "case does not matter";
  putManifest(head);
  EXPECT_EQ(open().checkMedia(root()), 0);
}

TEST_F(MediaTest, TellHowFarTheyAreAndCanBeCancelled) {
  put(on(L"large"), std::string(600'000, 'l'));
  std::uint64_t last = 0;
  const auto watch = [&](const ZoMediaProgress& progress) {
    EXPECT_TRUE(progress.bytesDone >= last && progress.bytesDone <= progress.bytes);
    EXPECT_TRUE(progress.filesDone < 4 && progress.files == 4 && progress.bytes == 600'012);
    last = progress.bytesDone;
    return true;
  };
  ASSERT_EQ(open().writeManifest(root(), L"x", watch), 0);
  EXPECT_EQ(last, 600'012U);
  last = 0;
  EXPECT_EQ(open().checkMedia(root(), nullptr, watch), 0);
  EXPECT_EQ(last, 600'012U);
  const std::string before = bytesOf(manifest());
  for (int stop = 0; stop < 8; ++stop) {
    ZoMediaReport report;
    report.label = L"as it was";
    int calls = 0;
    const auto cancel = [&](const ZoMediaProgress&) { return calls++ < stop; };
    EXPECT_EQ(open().checkMedia(root(), &report, cancel), ZoResult::cancelled);
    EXPECT_EQ(report.label, L"as it was");
    calls = 0;
    EXPECT_EQ(open().writeManifest(root(), L"y", cancel), ZoResult::cancelled);
  }
  EXPECT_EQ(bytesOf(manifest()), before);
}

TEST_F(MediaTest, AFailureOfAnyCallNeverPassesForAGoodCheckNorSpoilsAManifest) {
  ASSERT_EQ(open().writeManifest(root(), L"old"), 0);
  const std::string before = bytesOf(manifest());
  FaultyFiles files;
  bool met = true;
  for (int nth = 1; met; ++nth) {
    files.arm({.fault = Fault::fail, .nth = nth, .error = ERROR_CRC});
    const int code = open().writeManifest(root(), L"new");
    met = files.met();
    files.arm({});
    EXPECT_EQ(bytesOf(manifest()) != before, code == 0) << nth;
    put(manifest(), before);
  }
  put(on(L"A.txt"), "lettex a");
  for (const Fault fault : {Fault::fail, Fault::shorten}) {
    met = true;
    for (int nth = 1; met; ++nth) {
      files.arm({.fault = fault, .nth = nth, .error = ERROR_CRC});
      EXPECT_NE(open().checkMedia(root()), 0) << nth;
      met = files.met();
    }
  }
}

// ---- Discs: a drive that has the test's folder, or none ----

class Drives : public ZoForwardFileSystem {
 public:
  Drives(ZoFileSystem& next, ZoFileName root) : ZoForwardFileSystem(next), root_(std::move(root)) {}
  int getAbsolutePath(ZoFileName& name) override {
    if (!name.isCD()) return ZoForwardFileSystem::getAbsolutePath(name);
    ZoString volume, rest;
    EXPECT_EQ(name.parseCD(volume, rest), 0);
    if (label.empty() || volume != (L"cd://" + label).c_str()) return 1;
    name = std::wstring(root_.view()) + std::wstring(rest.view().substr(1));
    return 0;
  }
  int getVolumeInformation(unsigned int& number, unsigned int&, unsigned int&, const ZoFileName&,
                           ZoString&, ZoString&) override {
    number = changesAlways ? ++serial : serial;
    return 0;
  }

  std::wstring label;
  unsigned int serial = 1;
  bool changesAlways = false;

 private:
  ZoFileName root_;
};

class DiscTest : public MediaTest {
 protected:
  DiscTest() {
    drives_ = new Drives(fs(), root());
    ZoSystem::setFileSystem(drives_);
    EXPECT_EQ(open().setMediaPrompt([this](const ZoString& label, unsigned int attempt) {
      EXPECT_EQ(attempt, asked_++);
      asking_ = label.view();
      if (asked_ == comesAt_) drives_->label = asking_;
      return asked_ <= comesAt_;
    }),
              0);
  }
  ~DiscTest() override {
    ZoSystem::setFileSystem(nullptr);
    delete drives_;
  }
  // The code of opening, or what the file holds.
  std::string opened(const wchar_t* disc = L"cd://Parts 2026/bolts/m8.dwg") {
    asked_ = 0;
    ZoFile file;
    char content[8] = {};
    files_.arm({});
    const int code = open().open(ZoFileName(disc), file);
    EXPECT_EQ(file.isOpen(), code == 0);
    if (code) return std::to_string(code);
    return {content, file.read(content, sizeof content)};
  }
  bool hasRead() const { return std::ranges::count(files_.calls(), "read") > 3; }

  Drives* drives_;
  FaultyFiles files_;
  unsigned int asked_ = 0, comesAt_ = 0;
  std::wstring asking_;
};

TEST_F(DiscTest, AreAskedForUntilTheyAreThereOrTheUserGivesUp) {
  ZoFileName found = L"as it was";
  EXPECT_EQ(opened(), "1020");
  EXPECT_EQ(asked_, 1U);
  EXPECT_EQ(asking_, L"Parts 2026");
  asked_ = 0;
  EXPECT_EQ(open().requestMedia(L"other", found), ZoResult::cancelled);
  EXPECT_TRUE(found == L"as it was");
  EXPECT_EQ(open().requestMedia(L"", found), 1);
  expectError(ERROR_INVALID_NAME);
  asked_ = 0;
  EXPECT_EQ(open().requestMedia(std::wstring(L"other"), found), ZoResult::cancelled);
  comesAt_ = 3;
  EXPECT_EQ(opened(), "bolt") << "without a manifest as it is";
  EXPECT_EQ(asked_, 3U);
  EXPECT_EQ(opened(), "bolt");
  EXPECT_EQ(asked_, 0U) << "it is there";
  EXPECT_EQ(open().requestMedia(L"Parts 2026", found), 0);
  EXPECT_TRUE(found == root());
  EXPECT_EQ(opened(L"cd://Parts 2026/missing"), "1");
}

TEST_F(DiscTest, AreCheckedOnceForEachInsertion) {
  ASSERT_EQ(open().writeManifest(root(), L"Parts 2026"), 0);
  drives_->label = L"Parts 2026";
  EXPECT_EQ(open().checkMedia(L"cd://Parts 2026/"), 0);
  asked_ = 0;
  EXPECT_EQ(open().checkMedia(L"cd://other/"), ZoResult::cancelled) << "it is asked for";
  EXPECT_EQ(opened(), "bolt");
  EXPECT_TRUE(hasRead());
  EXPECT_EQ(opened(), "bolt");
  EXPECT_FALSE(hasRead());
  put(on(L"A.txt"), "lettex a");
  EXPECT_EQ(opened(), "bolt") << "it was checked";
  ++drives_->serial;
  EXPECT_EQ(opened(), "1011");
  EXPECT_EQ(opened(), "1011");
  put(on(L"A.txt"), "letter a");
  EXPECT_EQ(opened(), "bolt");
  put(manifest(), "forged");
  EXPECT_EQ(opened(), "1012");
  ASSERT_EQ(open().writeManifest(root(), L"Parts 2026"), 0);
  drives_->changesAlways = true;
  EXPECT_EQ(opened(), "1011") << "another disc came between";
  drives_->changesAlways = false;
  ASSERT_EQ(open().setMediaKey("other", 5), 0);
  EXPECT_EQ(opened(), "1012");
}

TEST_F(MediaTest, OtherFilesComeThroughTheSearch) {
  ZoFile file;
  ASSERT_EQ(ZoSystem::fileSearch().addPath(on(L"bolts\\"), L"test"), 0);
  EXPECT_EQ(open().open(L"m8.dwg", file), 0);
  EXPECT_EQ(file.size(), 4);
  EXPECT_EQ(open().open(L"m9.dwg", file), 1);
  EXPECT_EQ(open().open(on(L"A.txt"), file, ZoFile::kReadWrite), 0);
  EXPECT_EQ(file.write("x", 1), 1U);
  EXPECT_EQ(open().openDocument(on(L"A.txt")), 1) << "there is no host";

  struct Own : ZoFileOpen {
    int openDocument(const ZoFileName&) override { return 0; }
  } own;
  ZoFileName found;
  EXPECT_EQ(own.open(L"m8.dwg", file, ZoFile::kRead), 0);
  EXPECT_EQ(own.checkMedia(root()) + own.writeManifest(root(), L"x") + own.setMediaKey("", 0) +
                own.setMediaPrompt({}) + own.requestMedia(L"x", found),
            5);
}

}  // namespace
}  // namespace zo::test
