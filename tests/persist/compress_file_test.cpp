// The file forms, and the platform's files under them.
#include <gtest/gtest.h>
#include <zo/compress.h>
#include <zo/files/file_imp.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "persist/persist_support.h"
#include "support/faulty_files.h"
#include "support/temp_folder.h"
#include "system/attached.h"

using namespace zo;
using namespace zo::test;
namespace fs = std::filesystem;

namespace {

void writeFile(const fs::path& path, const ByteVector& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

ByteVector readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t filesIn(const fs::path& folder) {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

class CompressFile : public ::testing::Test {
 protected:
  fs::path path(const wchar_t* name) const { return folder_.path() / name; }
  ZoFileName name(const wchar_t* name) const { return ZoFileName(path(name)); }
  // Opens a file of this content for reading and writing, at a position.
  void open(ZoFile& file, const wchar_t* name, const ByteVector& content, std::int64_t position) {
    file.close();
    writeFile(path(name), content);
    ASSERT_EQ(file.open(ZoFileName(path(name)), ZoFile::kReadWrite), 0);
    ASSERT_EQ(file.seek(position), position);
  }

  Attached attached_;
  TempFolder folder_;
  const ByteVector old_ = {'o', 'l', 'd'};
};

// A file whose n-th write, from 1, takes half of the bytes and says so.
class ShortFile : public ZoFileImp {
 public:
  explicit ShortFile(int shortWrite) : left_(shortWrite) {}
  unsigned int write(const void* data, unsigned int count) override {
    return ZoFileImp::write(data, --left_ == 0 ? count / 2 : count);
  }
  bool reached() const { return left_ <= 0; }

 private:
  int left_;
};

}  // namespace

TEST_F(CompressFile, ComesBackWhateverItsBytes) {
  const ZoFileName plain = name(L"pläin \x4E2D.bin"), packed = name(L"packed"),
                   back = name(L"back");
  for (std::size_t size :
       {std::size_t{0}, std::size_t{1}, std::size_t{100000}, std::size_t{700000}}) {
    ByteVector content = sampleContent(size, 40);
    if (size > 2) content[1] = 0;
    writeFile(plain.fullName(), content);
    EXPECT_EQ(ZoCompress(ZoZip::fast)(plain, packed), 0);
    EXPECT_TRUE(readFile(packed.fullName()) == lzmaContainer(content, 0));
    EXPECT_EQ(ZoExplode()(packed, back), 0);
    EXPECT_TRUE(readFile(back.fullName()) == content) << size;
    EXPECT_EQ(filesIn(folder_.path()), 3u);
  }
}

TEST_F(CompressFile, ExplodesLegacyContainersAndDeliversDespiteAWrongCheckValue) {
  const ByteVector content = sourceFile("tests/data/implode/repeat518.orig");
  ByteVector container = sourceFile("tests/data/implode/repeat518.pk.bin1024.raw.legacy");
  for (int result : {0, 1000}) {
    writeFile(path(L"packed"), container);
    EXPECT_EQ(ZoExplode()(name(L"packed"), name(L"back")), result);
    EXPECT_TRUE(readFile(path(L"back")) == content);
    container.back() ^= 1;
  }
}

TEST_F(CompressFile, OneNameForBothReplacesTheFile) {
  const ByteVector content = sampleContent(5000, 41);
  writeFile(path(L"file"), content);
  EXPECT_EQ(ZoCompress(ZoZip::best)(name(L"file"), name(L"file")), 0);
  EXPECT_TRUE(readFile(path(L"file")) == lzmaContainer(content, 9));
  EXPECT_EQ(ZoExplode()(name(L"file"), name(L"file")), 0);
  EXPECT_TRUE(readFile(path(L"file")) == content);
  EXPECT_EQ(filesIn(folder_.path()), 1u);
}

TEST_F(CompressFile, OpenFilesAreReadWholeAndWrittenFromTheirPositionOn) {
  const ByteVector content = sampleContent(90000, 43), packed = lzmaContainer(content, 0);
  ByteVector expected(2 + packed.size(), 'x');
  std::copy(packed.begin(), packed.end(), expected.begin() + 2);
  ZoFile in, out, back;
  open(in, L"in", content, 77);
  open(out, L"out", ByteVector(300000, '-'), 0);
  EXPECT_EQ(out.write("xx", 2), 2u);
  EXPECT_EQ(ZoCompress(ZoZip::fast)(in, out), 0);
  EXPECT_TRUE(readFile(path(L"out")) == expected) << "and nothing behind it";
  EXPECT_EQ(out.currentPos(), static_cast<std::int64_t>(expected.size()));
  open(in, L"in", packed, 0);
  open(back, L"back", {}, 0);
  EXPECT_EQ(ZoExplode()(in, back), 0);
  EXPECT_TRUE(readFile(path(L"back")) == content);

  // What cannot be read, or is no container, touches nothing.
  open(back, L"back", old_, 1);
  ZoFile none;
  EXPECT_EQ(ZoCompress(ZoZip::fast)(none, back), 1);
  EXPECT_EQ(ZoExplode()(in, none), 1);
  open(in, L"in", {1, 2, 3}, 0);
  EXPECT_EQ(ZoExplode()(in, back), 1);
  EXPECT_TRUE(readFile(path(L"back")) == old_);
}

TEST_F(CompressFile, AShortWriteIsAFailureAndTakenBack) {
  const ByteVector content = sampleContent(90000, 43), packed = lzmaContainer(content, 0);
  for (const bool compresses : {true, false}) {
    for (int nth = 1;; ++nth) {
      ZoFile in;
      auto* const shortening = new ShortFile(nth);
      ZoFile out(shortening);
      open(in, L"in", compresses ? content : packed, 0);
      open(out, L"out", {'o', 'l', 'd', '-', '-'}, 3);
      const int result = compresses ? ZoCompress(ZoZip::fast)(in, out) : ZoExplode()(in, out);
      EXPECT_EQ(result, shortening->reached() ? 1 : 0) << nth;
      if (!shortening->reached()) {
        EXPECT_GT(nth, compresses ? 3 : 1);
        break;
      }
      EXPECT_TRUE(readFile(path(L"out")) == old_) << nth;
      EXPECT_EQ(out.currentPos(), 3) << nth;
    }
  }
}

TEST_F(CompressFile, BadNamesAndBadContentLeaveTheTargetAsItWas) {
  const ZoFileName in = name(L"in"), target = name(L"target"), missing = name(L"missing\\file"),
                   folder = name(L"folder"), none;
  writeFile(path(L"target"), old_);
  fs::create_directory(path(L"folder"));
  ByteVector damaged = lzmaContainer(sampleContent(300000, 42), 0);
  damaged[damaged.size() / 2] ^= 0x55;
  damaged.resize(damaged.size() / 4 * 3);
  for (const ByteVector& content : {damaged, ByteVector{}, ByteVector{1, 2, 3}}) {
    writeFile(path(L"in"), content);
    EXPECT_EQ(ZoExplode()(in, target), 1);
  }
  const std::pair<ZoFileName, ZoFileName> cases[] = {{in, missing},
                                                     {in, folder},
                                                     {folder, target},
                                                     {missing, target},
                                                     {none, target},
                                                     {in, none},
                                                     {in, ZoFileName(L"ftp://host/f")}};
  for (const auto& [from, to] : cases) {
    EXPECT_EQ(ZoCompress(ZoZip::fast)(from, to), 1);
    EXPECT_EQ(ZoExplode()(from, to), 1);
  }
  EXPECT_TRUE(readFile(path(L"target")) == old_);
  EXPECT_EQ(filesIn(folder_.path()), 3u) << "in, target, folder";
}

TEST_F(CompressFile, AnyCallOfThePlatformThatFailsOrComesShortLeavesTheTargetAsItWas) {
  const ByteVector content = sampleContent(90000, 43);
  writeFile(path(L"plain"), content);
  writeFile(path(L"packed"), lzmaContainer(content, 0));
  writeFile(path(L"legacy"), legacyContainer(imploded(content, Literals::text, 6), content));
  for (const wchar_t* source : {L"plain", L"packed", L"legacy"}) {
    for (const FaultPlan& plan :
         {FaultPlan{.fault = Fault::fail, .call = "create size seek read write flush close move"},
          FaultPlan{.fault = Fault::shorten, .call = "write"}}) {
      FaultyFiles files;
      bool met = true;
      for (FaultPlan now = plan; met; ++now.nth) {
        writeFile(path(L"target"), old_);
        files.arm(now);
        const int result = std::wstring_view(source) == L"plain"
                               ? ZoCompress(ZoZip::fast)(name(source), name(L"target"))
                               : ZoExplode()(name(source), name(L"target"));
        met = files.met();
        files.arm({});
        EXPECT_EQ(result, met ? 1 : 0) << now.nth;
        EXPECT_EQ(readFile(path(L"target")) == old_, result != 0) << now.nth;
        EXPECT_EQ(filesIn(folder_.path()), 4u) << now.nth;
        if (HasFailure()) return;
      }
    }
  }
}
