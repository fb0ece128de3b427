// What the archive suites share: every type of value with its bytes, and the ways to store them.
#pragma once

#include <zo/archive.h>
#include <zo/files.h>
#include <zo/geometry.h>
#include <zo/system/exception.h>
#include <zo/variant.h>

#include <functional>
#include <string>
#include <vector>

#include "persist/memory_streams.h"

namespace zo::test {

// Only the byte primitives: everything else is ZoArchive's.
class PlainArchive final : public ZoArchive {
 public:
  explicit PlainArchive(ByteVector stored = {}) : bytes(std::move(stored)) {}
  bool isStoring() override { return false; }
  using ZoArchive::read, ZoArchive::write, ZoArchive::isdrftfilefiler;
  void readBin(void* buffer, unsigned int size) override {
    const std::size_t got = std::min<std::size_t>(size, bytes.size() - at);
    std::copy_n(bytes.data() + at, got, static_cast<unsigned char*>(buffer));
    at += got;
    if (got < size) cameShort();
  }
  void writeBin(const void* data, unsigned int size, const wchar_t* name) override {
    const auto* const first = static_cast<const unsigned char*>(data);
    bytes.insert(bytes.end(), first, first + size);
    calls += std::wstring(name) + L'/' + std::to_wstring(size) + L' ';
  }
  bool isdrftfilefiler() const override { return shortPointers; }
  ByteVector bytes;
  std::size_t at = 0;
  std::wstring calls;  // "LABEL/SIZE " for each writeBin
  bool shortPointers = false;
};

struct ArchivedValue {
  std::string name;
  ByteVector bytes;
  std::function<void(ZoArchive&)> write;
  // Reads a value, in the place of the one at hand or of a fresh one, and writes what was read.
  std::function<void(ZoArchive& from, bool fresh, ZoArchive& to)> pass;
};

const std::vector<ArchivedValue>& archivedValues();

ByteVector bytesOf(std::string_view hexadecimal);  // blanks count for nothing
ByteVector toBytes(std::span<const std::byte> bytes);

}  // namespace zo::test
