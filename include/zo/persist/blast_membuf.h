// Stream buffer that delivers the decompressed bytes of a legacy container in memory.
//
// Errors:  reading ends early where the body breaks the format; CRCStatus() then gives 1000. A
//          buffer for which there is no memory is empty. Nothing throws.
// Threads: one thread at a time per object; objects share nothing.
// Cost:    some 25 KB. The container is not copied and must stay as it is while it is read.
// Stored:  docs/formats/compressed-container.md, "Legacy container".
#pragma once

#include <zo/persist/zip_streambuf.h>

class ZO_COM_API Blastmembuf : public ZoZIPStreambuf {
 public:
  // Allocates the get area of 4096 bytes.
  Blastmembuf();
  ~Blastmembuf() override;

  // Reads from this area of the caller's instead. Null, no length, or unread bytes in the present
  // area: changes nothing and returns null.
  [[nodiscard]] ZoZIPStreambuf* setbuf(char* buffer, int length) override;
  // Nothing can be written: -1.
  [[nodiscard]] int overflow(int byte) override;
  [[nodiscard]] int underflow() override;

  // 0 when the check value matches the bytes decoded so far, as a CRC-32 register or inverted; 1000
  // when not, and before setZipArea. It is final once underflow gave -1.
  [[nodiscard]] virtual int CRCStatus() const;
  // Starts to read this container: body, size, check value. One under eight bytes, or null, has no
  // bytes and no check value.
  virtual void setZipArea(const char* data, unsigned int size);

 private:
  struct Reading;
  Reading* reading_ = nullptr;
};
