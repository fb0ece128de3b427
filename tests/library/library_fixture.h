// What the tests of libraries share: a library in a folder of its own, members from memory, the
// bytes of members, and library files built by hand, field by field.
#pragma once

#include <zo/library/library.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "files/file_fixture.h"
#include "platform/file_api.h"

namespace zo::test {

// Whether long loops are asked for; and one of two sizes, the smaller for the guarded heap.
inline bool isLong() { return std::getenv("ZO_TEST_LONG") != nullptr; }
template <class T>
T bySpeed(T guarded, T plain) {
#ifdef ZO_GUARDED
  return isLong() ? plain : guarded;
#else
  static_cast<void>(guarded);
  return plain;
#endif
}

// An entry as other programs might write it; see docs/formats/library.md.
struct HandMade {
  std::string name = {}, data = {};
  unsigned flags = 0;
  unsigned number = 0, crc = 0, mode = 0;
  std::uint64_t size = 0;
  std::uint64_t storedSize = ~std::uint64_t{0};  // by default that of the data

  [[nodiscard]] std::string bytes() const {
    std::string out;
    const auto put = [&out](std::uint64_t value, int count) {
      for (int i = 0; i < count; ++i) out += static_cast<char>(value >> 8 * i);
    };
    put(number, 4), put(crc, 4);
    put(storedSize == ~std::uint64_t{0} ? data.size() : storedSize, 8);
    put(size, 8), put(1, 8), put(2, 8), put(3, 8);
    put(mode, 2), put(flags, 2), put(name.size(), 2);
    return out + name + data;
  }
};

// The platform's files without waiting for the disk, which proves nothing here and takes most of
// the time.
class UnflushedFiles : public FileApi {
 public:
  UnflushedFiles() : before_(setFileApi(this)) {}
  ~UnflushedFiles() override { setFileApi(before_); }
  UnflushedFiles(const UnflushedFiles&) = delete;
  UnflushedFiles& operator=(const UnflushedFiles&) = delete;
  bool flush(HANDLE) override { return true; }

 private:
  FileApi* before_;
};

class LibraryTest : public FileTest {
 protected:
  static constexpr int kReadWrite = ZoFile::kReadWrite;

  int openForWriting(ZoLibrary& library, unsigned int timeOut = 5000) const {
    return library.open(path_, kReadWrite, ZoFile::kOpenAlways, timeOut);
  }
  int add(ZoLibrary& library, const std::wstring& member, const std::string& bytes,
          bool replace = false, ZoLibrary::compMode mode = ZoLibrary::kStore,
          int level = ZoLibrary::kNormal) const {
    put(source_, bytes);
    return library.addFile(source_, member.c_str(), replace, mode, level);
  }
  static std::vector<std::wstring> names(ZoLibrary& library, bool withDeleted = false) {
    std::vector<std::wstring> all;
    const int code = library.forEachEntry(
        [&](const ZoLibEntry& entry) {
          all.emplace_back((entry.isDeleted() ? L"-" : L"") + std::wstring(entry.name.view()));
          return true;
        },
        withDeleted);
    EXPECT_EQ(code, 0);
    return all;
  }
  static std::string header() { return "ZORVEX LIBRARY" + std::string(18, '\0'); }

  UnflushedFiles unflushed_;
  ZoFileName path_ = name(L"parts.lib");
  ZoFileName source_ = name(L"source");
};

}  // namespace zo::test
