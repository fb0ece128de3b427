// Compressor of whole texts and whole files into the library's LZMA container.
//
// Errors:  0, or 1 for everything that goes wrong: a null argument, an input of 4 GiB or more, no
//          memory, a file that cannot be read or written. Nothing throws.
// Threads: calls of const members may run at once; they keep all state on the call. File forms are
//          for the time while the library is attached.
// Cost:    memory follows the input up to the level's limit: some 16 bytes for each input byte at
//          `best`, never more than 2.5 GB, and 2 MB at `fast`. A file form holds no more of the
//          files than that.
// Stored:  docs/formats/compressed-container.md.
#pragma once

#include <zo/config.h>
#include <zo/names/file_name.h>
#include <zo/persist/zip.h>

class ZoCompressImp;
class ZoFile;

class ZO_COM_API ZoCompress {
 public:
  // When there is no memory for its one field, the object stays empty and each operation gives 1.
  explicit ZoCompress(ZoZip::compressMode mode);
  virtual ~ZoCompress();
  ZoCompress(const ZoCompress&) = delete;
  ZoCompress& operator=(const ZoCompress&) = delete;

  // The mode of the compressions to come. Returns 0.
  [[nodiscard]] virtual int setMode(ZoZip::compressMode mode);
  // Whether the mode is exactly ZoZip::fast.
  [[nodiscard]] virtual bool compressFast() const;

  // Compresses all of an open file, whatever its position and its bytes, into another from that
  // one's position on, and ends it there. When something fails, a write that comes short among
  // that, `out` is cut off at the position where writing began; what stood behind that is lost.
  [[nodiscard]] virtual int operator()(ZoFile& in, ZoFile& out) const;
  // Compresses the zero-terminated 8-bit text `in`: what follows its first zero byte is left out
  // (LzmaUtils compresses arbitrary bytes). `out` receives the container with a zero byte after it,
  // which the caller frees with free(), and outSize its size without that byte. On failure they
  // are null and 0.
  [[nodiscard]] virtual int operator()(const char* in, char*& out, unsigned int& outSize) const;

  // Compresses a whole file into the file `out`, which is created or replaced. The target changes
  // in one step at the very end: after a failure it is as it was. Both names may be the same
  // file's.
  [[nodiscard]] int operator()(const ZoFileName& in, const ZoFileName& out) const;

 private:
  ZoCompressImp* imp_;
};
