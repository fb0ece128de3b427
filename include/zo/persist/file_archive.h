// Archives over a file object, from the position that it has when they are made. Until they are
// destroyed the file is theirs; afterwards it stands behind what they read or wrote.
//
// Errors, Threads, Memory: as in buffered_archive.h, and 64 KiB for a buffer.
// Cost:    one call of the file per buffer.
#pragma once

#include <zo/persist/buffered_archive.h>

#include <memory>

class ZoFile;
namespace zo {
class FileReader;
class FileWriter;
}  // namespace zo

// Takes any implementation of a file, a library's member too.
class ZO_COM_API ZoFileReadArchive final : public zo::ReadArchive {
 public:
  explicit ZoFileReadArchive(ZoFile& file);
  ~ZoFileReadArchive() override;

 private:
  bool refill() override;

  std::unique_ptr<zo::FileReader> reader_;
};

class ZO_COM_API ZoFileWriteArchive final : public zo::WriteArchive {
 public:
  explicit ZoFileWriteArchive(ZoFile& file);
  // Writes what is left; a failure of that is lost: call flush() where it matters.
  ~ZoFileWriteArchive() override;

  // Hands everything to the file (not to the disk: that is the file's flush).
  void flush() override;

 private:
  void overflow(const void* data, std::size_t size) override;
  void store(const void* data, std::size_t size);

  std::unique_ptr<zo::FileWriter> writer_;
  std::unique_ptr<std::byte[]> buffer_;
};
