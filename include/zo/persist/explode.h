// Decompressor of whole buffers and whole files: the library's LZMA container and, for data of
// older versions, the legacy container with an imploded body. The first byte tells them apart.
//
// Errors:  0; 1000 (ZoZip::checkMismatch) when the check value does not match, with the output
//          delivered all the same; 1 for everything else, without output: a null argument, an
//          input that is too short (13 and 8 bytes are the least), cut or damaged, an output of
//          4 GiB or more, no memory, a file that cannot be read or written. A legacy body that
//          ends without its end code is taken when the check value holds. Nothing throws.
// Threads: any number of calls at once. Callers that also run with older versions of the library
//          must not decompress two legacy containers at once. File forms are for the time while
//          the library is attached.
// Cost:    what a container says of itself is a limit, not an order: memory follows the data that
//          was really decoded. At any time it is at most 128 KiB + 16 times the input + 3 times
//          the bytes decoded so far; a file form needs no more than that either, and of an LZMA
//          container no more than its dictionary.
// Stored:  docs/formats/compressed-container.md.
#pragma once

#include <zo/config.h>
#include <zo/names/file_name.h>
#include <zo/persist/zip.h>

class ZoExplodeImp;
class ZoFile;

class ZO_COM_API ZoExplode {
 public:
  // When there is no memory the object stays empty and each operation gives 1.
  ZoExplode();
  virtual ~ZoExplode();
  ZoExplode(const ZoExplode&) = delete;
  ZoExplode& operator=(const ZoExplode&) = delete;

  // Decompresses all of an open file, whatever its position, into another from that one's position
  // on, and ends it there. After a 1, and a write that comes short gives one, `out` is cut off at
  // the position where writing began; what stood behind that is lost.
  [[nodiscard]] virtual int operator()(ZoFile& in, ZoFile& out) const;
  // `out` receives the decompressed bytes with a zero byte after them; the caller frees it with
  // free(). On failure it is null.
  [[nodiscard]] virtual int operator()(const char* in, unsigned int inSize, char*& out) const;
  // The same; outSize receives the number of bytes without that zero, 0 on failure. Of an LZMA
  // container it is the size that the container states, of a legacy container it need not be.
  [[nodiscard]] int operator()(const char* in, unsigned int inSize, char*& out,
                               unsigned int& outSize) const;

  // Decompresses a whole file into the file `out`, which is created or replaced. The target
  // changes in one step at the very end: after a 1 it is as it was. Both names may be the same
  // file's.
  [[nodiscard]] int operator()(const ZoFileName& in, const ZoFileName& out) const;

 private:
  ZoExplodeImp* imp_;
};
