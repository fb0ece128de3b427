// Archives over a file object.
//
//   ZoFileSave save;
//   if (save.open(name)) return report();
//   ZoFileWriteArchive archive(save.file());
//   archive << part;
//   if (save.commit()) return report();  // takes in what the archive still holds
//
// Archive and ZoFile share one position, as though there were no buffer between them: whatever is
// done with the file takes in first what its archives hold, and gives back what they have read
// ahead. So several archives may be over one file, and values may stand among bytes that were
// written without one.
//
// Errors:  as in buffered_archive.h. What an archive holds and cannot write fails the operation of
//          the file that asked for it, close() and ZoFileSave::commit() among them; the file then
//          refuses everything until it is closed. An archive that could not write throws from then
//          on, and so does one whose file was closed, handed over or destroyed: opening it again
//          does not revive the archive.
// Lives:   archive and ZoFile may go in either order. The archive stays with the open file when its
//          ZoFile is moved. A copy of the ZoFile has the same position, but knows nothing of the
//          archive: flush() before using it.
// Threads: one, for the archive and its file. Memory: as in buffered_archive.h, and 64 KiB for a
//          buffer.
// Cost:    one call of the file per buffer.
#pragma once

#include <zo/persist/buffered_archive.h>

#include <memory>

class ZoFile;

// Takes any implementation of a file, a library's member too.
class ZO_COM_API ZoFileReadArchive final : public zo::ReadArchive {
 public:
  explicit ZoFileReadArchive(ZoFile& file);
  // The file then stands behind what was read; where it cannot, it refuses everything.
  ~ZoFileReadArchive() override;

 private:
  class Buffer;
  bool refill() override;

  std::unique_ptr<Buffer> buffer_;
};

class ZO_COM_API ZoFileWriteArchive final : public zo::WriteArchive {
 public:
  explicit ZoFileWriteArchive(ZoFile& file);
  // Writes what is left; where that fails, closing the file tells.
  ~ZoFileWriteArchive() override;

  // Hands everything to the file (not to the disk: that is the file's flush).
  void flush() override;

 private:
  class Buffer;
  void overflow(const void* data, std::size_t size) override;

  std::unique_ptr<Buffer> buffer_;
};
