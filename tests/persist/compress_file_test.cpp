// The file forms, and the platform's files under them.
#include <gtest/gtest.h>
#include <zo/compress.h>
#include <zo/files/file.h>

#include <filesystem>
#include <fstream>

#include "persist/persist_support.h"
#include "support/faulty_files.h"
#include "support/file_bytes.h"
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
  const std::string bytes = fileBytes(path);
  return {bytes.begin(), bytes.end()};
}

// From name to name, or from open file to open file.
template <class File>
int converted(bool compresses, File& in, File& out) {
  return compresses ? ZoCompress(ZoZip::fast)(in, out) : ZoExplode()(in, out);
}

class CompressFile : public ::testing::Test {
 protected:
  fs::path path(const wchar_t* name) const { return folder_.path() / name; }
  std::ptrdiff_t filesInFolder() const {
    return std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator());
  }
  // Opens a file of this content for reading and writing, at a position.
  void open(ZoFile& file, const wchar_t* name, const ByteVector& content, std::int64_t position) {
    writeFile(path(name), content);
    ASSERT_EQ(file.open(ZoFileName(path(name)), ZoFile::kReadWrite), 0);
    ASSERT_EQ(file.seek(position), position);
  }

  Attached attached_;
  TempFolder folder_;
  const ByteVector old_ = {'o', 'l', 'd'};
};

}  // namespace

TEST_F(CompressFile, ComesBackByNameAlsoOfTheSameFile) {
  const ZoFileName plain(path(L"pläin \x4E2D.bin")), packed(path(L"packed"));
  for (std::size_t size : {0, 1, 100000, 700000}) {
    const ByteVector content = sampleContent(size, 40);
    writeFile(plain.fullName(), content);
    EXPECT_EQ(ZoCompress(ZoZip::fast)(plain, packed), 0);
    EXPECT_TRUE(readFile(packed.fullName()) == lzmaContainer(content, 0)) << size;
    EXPECT_EQ(ZoExplode()(packed, packed), 0);
    EXPECT_TRUE(readFile(packed.fullName()) == content) << size;
    EXPECT_EQ(filesInFolder(), 2);
  }
  ByteVector legacy = sourceFile("tests/data/implode/repeat518.pk.bin1024.raw.legacy");
  legacy.back() ^= 1;
  writeFile(packed.fullName(), legacy);
  EXPECT_EQ(ZoExplode()(packed, plain), 1000) << "a wrong check value still delivers";
  EXPECT_TRUE(readFile(plain.fullName()) == sourceFile("tests/data/implode/repeat518.orig"));
}

TEST_F(CompressFile, OpenFilesAreReadWholeAndWrittenFromTheirPositionOn) {
  const ByteVector content = sampleContent(90000, 43), packed = lzmaContainer(content, 0);
  for (const bool compresses : {true, false}) {
    ByteVector expected = compresses ? packed : content;
    expected.insert(expected.begin(), 2, '-');
    ZoFile in, out;
    open(in, L"in", compresses ? content : packed, 7);
    open(out, L"out", ByteVector(300000, '-'), 2);
    EXPECT_EQ(converted(compresses, in, out), 0);
    EXPECT_TRUE(readFile(path(L"out")) == expected) << "and nothing behind it";
    EXPECT_EQ(out.currentPos(), static_cast<std::int64_t>(expected.size()));
  }
}

TEST_F(CompressFile, BadNamesAndBadContentLeaveTheTargetAsItWas) {
  const ZoFileName in(path(L"in")), target(path(L"target")), missing(path(L"missing\\file")),
      folder(path(L"folder")), none, remote(L"ftp://host/f");
  writeFile(path(L"target"), old_);
  fs::create_directory(path(L"folder"));
  ByteVector damaged = lzmaContainer(sampleContent(300000, 42), 0);
  damaged.resize(damaged.size() / 4 * 3);
  for (const ByteVector& content : {damaged, ByteVector{}, ByteVector{1, 2, 3}}) {
    writeFile(path(L"in"), content);
    EXPECT_EQ(ZoExplode()(in, target), 1);
  }
  const std::pair<ZoFileName, ZoFileName> cases[] = {
      {in, missing},  {in, folder}, {folder, target}, {missing, target},
      {none, target}, {in, none},   {in, remote}};
  for (const auto& [from, to] : cases) {
    for (const bool compresses : {true, false}) EXPECT_EQ(converted(compresses, from, to), 1);
  }
  EXPECT_TRUE(readFile(path(L"target")) == old_);
  EXPECT_EQ(filesInFolder(), 3) << "in, target, folder";
}

// By name any call may fail. An open file is cut off where writing began.
TEST_F(CompressFile, WhateverThePlatformDoesNotDoLeavesTheTargetAsItWas) {
  const ByteVector content = sampleContent(90000, 43);
  const ByteVector sources[] = {content, lzmaContainer(content, 0),
                                legacyContainer(imploded(content, Literals::text, 6), content)};
  struct Case {
    bool open;
    Fault fault;
    const char* call;
  };
  const Case cases[] = {{false, Fault::fail, "create size seek read write flush close move"},
                        {true, Fault::fail, "read write"},
                        {true, Fault::shorten, "write"}};
  for (const Case& c : cases) {
    for (const ByteVector& source : sources) {
      FaultyFiles files;
      const bool compresses = &source == sources;
      int nth = 1;
      for (bool met = true; met && !HasFailure(); ++nth) {
        SCOPED_TRACE(testing::Message() << c.open << ' ' << c.call << ' ' << nth);
        const ZoFileName from(path(L"source")), to(path(L"target"));
        ZoFile in, out;
        open(in, L"source", source, 0);
        open(out, L"target", old_, 3);
        if (!c.open) {
          ASSERT_EQ(in.close() + out.close(), 0);
        }
        files.arm({.fault = c.fault, .call = c.call, .nth = nth});
        const int result =
            c.open ? converted(compresses, in, out) : converted(compresses, from, to);
        met = files.met();
        files.arm({});
        EXPECT_EQ(result, met ? 1 : 0);
        EXPECT_EQ(readFile(path(L"target")) == old_, met);
        EXPECT_EQ(filesInFolder(), 2);
      }
      EXPECT_GT(nth, 2);
    }
  }
}
