// The file forms, and the platform's files under them.
#include <gtest/gtest.h>
#include <zo/compress.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>

#include "file_io/faulty_files.h"
#include "persist/persist_support.h"
#include "support/temp_folder.h"

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

// Ends every file at the n-th read.
class EarlyEnd final : public FaultyFiles {
 public:
  bool read(HANDLE file, void* to, DWORD size, DWORD& done) override {
    done = 0;
    return --left == 0 || FaultyFiles::read(file, to, size, done);
  }
  int left = 0;
};

}  // namespace

TEST(CompressFile, ComesBackWhateverItsBytes) {
  const TempFolder folder;
  const fs::path plain = folder.path() / L"pläin \x4E2D.bin", packed = folder.path() / L"packed",
                 back = folder.path() / L"back";
  for (std::size_t size :
       {std::size_t{0}, std::size_t{1}, std::size_t{100000}, std::size_t{700000}}) {
    ByteVector content = sampleContent(size, 40);
    if (size > 2) content[1] = 0;
    writeFile(plain, content);
    EXPECT_EQ(ZoCompress(ZoZip::fast)(plain.c_str(), packed.c_str()), 0);
    EXPECT_TRUE(readFile(packed) == lzmaContainer(content, 0));
    EXPECT_EQ(ZoExplode()(packed.c_str(), back.c_str()), 0);
    EXPECT_TRUE(readFile(back) == content) << size;
    EXPECT_EQ(filesIn(folder.path()), 3u);
  }
}

TEST(CompressFile, ExplodesLegacyContainersAndDeliversDespiteAWrongCheckValue) {
  const TempFolder folder;
  const fs::path packed = folder.path() / L"packed", back = folder.path() / L"back";
  const ByteVector content = sourceFile("tests/data/implode/repeat518.orig");
  ByteVector container = sourceFile("tests/data/implode/repeat518.pk.bin1024.raw.legacy");
  for (int result : {0, 1000}) {
    writeFile(packed, container);
    EXPECT_EQ(ZoExplode()(packed.c_str(), back.c_str()), result);
    EXPECT_TRUE(readFile(back) == content);
    container.back() ^= 1;
  }
}

TEST(CompressFile, OneNameForBothReplacesTheFile) {
  const TempFolder folder;
  const fs::path file = folder.path() / L"file";
  const ByteVector content = sampleContent(5000, 41);
  writeFile(file, content);
  EXPECT_EQ(ZoCompress(ZoZip::best)(file.c_str(), file.c_str()), 0);
  EXPECT_TRUE(readFile(file) == lzmaContainer(content, 9));
  EXPECT_EQ(ZoExplode()(file.c_str(), file.c_str()), 0);
  EXPECT_TRUE(readFile(file) == content);
  EXPECT_EQ(filesIn(folder.path()), 1u);
}

TEST(CompressFile, BadNamesAndBadContentLeaveTheTargetAsItWas) {
  const TempFolder folder;
  const fs::path in = folder.path() / L"in", target = folder.path() / L"target";
  const ByteVector old = {'o', 'l', 'd'};
  writeFile(target, old);
  fs::create_directory(folder.path() / L"folder");
  ByteVector damaged = lzmaContainer(sampleContent(300000, 42), 0);
  damaged[damaged.size() / 2] ^= 0x55;
  damaged.resize(damaged.size() / 4 * 3);
  struct Case {
    ByteVector content;
    fs::path source, target;
  };
  const fs::path missing = folder.path() / L"missing" / L"file";
  for (const Case& c :
       {Case{damaged, in, target}, Case{{}, in, target}, Case{{1, 2, 3}, in, target},
        Case{{}, missing, target}, Case{old, folder.path(), target}}) {
    writeFile(in, c.content);
    EXPECT_EQ(ZoExplode()(c.source.c_str(), c.target.c_str()), 1);
    EXPECT_TRUE(readFile(target) == old);
  }
  EXPECT_EQ(ZoCompress(ZoZip::fast)(in.c_str(), missing.c_str()), 1);
  EXPECT_EQ(ZoCompress(ZoZip::fast)(in.c_str(), (folder.path() / L"folder").c_str()), 1);
  EXPECT_EQ(ZoCompress(ZoZip::fast)(missing.c_str(), target.c_str()), 1);
  EXPECT_EQ(ZoCompress(ZoZip::fast)(nullptr, target.c_str()), 1);
  EXPECT_EQ(ZoCompress(ZoZip::fast)(in.c_str(), nullptr), 1);
  EXPECT_EQ(ZoExplode()(static_cast<const wchar_t*>(nullptr), target.c_str()), 1);
  EXPECT_EQ(ZoExplode()(in.c_str(), nullptr), 1);
  EXPECT_TRUE(readFile(target) == old);
  EXPECT_EQ(filesIn(folder.path()), 3u) << "in, target, folder";
}

TEST(CompressFile, AnyCallOfThePlatformThatFailsOrComesShortLeavesTheTargetAsItWas) {
  const TempFolder folder;
  const fs::path plain = folder.path() / L"plain", packed = folder.path() / L"packed",
                 legacy = folder.path() / L"legacy", target = folder.path() / L"target";
  const ByteVector content = sampleContent(90000, 43), old = {'o', 'l', 'd'};
  writeFile(plain, content);
  writeFile(packed, lzmaContainer(content, 0));
  writeFile(legacy, legacyContainer(imploded(content, Literals::text, 6), content));
  const std::function<int()> operations[] = {
      [&] { return ZoCompress(ZoZip::fast)(plain.c_str(), target.c_str()); },
      [&] { return ZoExplode()(packed.c_str(), target.c_str()); },
      [&] { return ZoExplode()(legacy.c_str(), target.c_str()); }};
  enum Kind { failure, shortWrite, earlyEnd };
  for (const auto& operation : operations) {
    for (const Kind kind : {failure, shortWrite, earlyEnd}) {
      for (int nth = 1;; ++nth) {
        writeFile(target, old);
        EarlyEnd files;
        if (kind == earlyEnd) {
          files.left = nth;
        } else {
          files.arm({.fault = kind == failure ? Fault::fail : Fault::shorten,
                     .call = kind == failure ? "" : "write",
                     .nth = nth});
        }
        const int result = operation();
        const bool reached = files.met() || (kind == earlyEnd && files.left <= 0);
        files.arm({});
        EXPECT_EQ(result, reached ? 1 : 0) << nth;
        EXPECT_EQ(readFile(target) == old, reached) << nth;
        EXPECT_EQ(filesIn(folder.path()), 4u) << nth;
        if (!reached || HasFailure()) break;
      }
    }
  }
}
