// Minimal byte stream buffer with a put area and a get area over one buffer, in the style of the
// classic stream buffers and independent of the standard library's.
//
// A derived class supplies overflow and underflow. "End of file" is the value -1.
//
// Errors:  -1, a short count or null, as each function says. Nothing throws.
// Threads: one thread at a time per object.
// Cost:    bytes in an area are moved in one piece.
#pragma once

#include <zo/config.h>

class ZO_COM_API ZoZIPStreambuf {
 public:
  static constexpr int endOfFile = -1;

  // No buffer; the first allocate() makes one.
  ZoZIPStreambuf() noexcept = default;
  // The caller's buffer, which stays the caller's. Null or no length: unbuffered.
  ZoZIPStreambuf(char* buffer, int length) noexcept;
  virtual ~ZoZIPStreambuf();
  ZoZIPStreambuf(const ZoZIPStreambuf&) = delete;
  ZoZIPStreambuf& operator=(const ZoZIPStreambuf&) = delete;

  // -1 while unread input or unwritten output remains, else 0. Flushes nothing.
  [[nodiscard]] virtual int sync();
  // Takes the caller's buffer and returns this object. Null or no length: marks the object
  // unbuffered. Returns null and changes nothing when a buffer is set already.
  [[nodiscard]] virtual ZoZIPStreambuf* setbuf(char* buffer, int length);
  // Puts bytes into the put area, or through overflow when that is full or the object is
  // unbuffered. Returns how many were taken until overflow reported the end of file.
  [[nodiscard]] virtual int xsputn(const char* data, int count);
  // Takes bytes from the get area and refills it through underflow. Returns how many there were.
  [[nodiscard]] virtual int xsgetn(char* to, int count);
  // Makes room and takes the byte, or returns -1.
  [[nodiscard]] virtual int overflow(int byte) = 0;
  // Fills the get area and returns its first byte, as 0 to 255, without taking it; -1 at the end.
  // One that fills no area returns a byte that counts as taken.
  [[nodiscard]] virtual int underflow() = 0;

  // Unread bytes in the get area, unwritten ones in the put area.
  [[nodiscard]] int in_avail() const noexcept { return static_cast<int>(egptr_ - gptr_); }
  [[nodiscard]] int out_waiting() const noexcept { return static_cast<int>(pptr_ - pbase_); }
  // Puts one byte. Returns it, as 0 to 255, or what overflow returns.
  [[nodiscard]] int sputc(int byte);
  [[nodiscard]] int sputn(const char* data, int count) { return xsputn(data, count); }
  [[nodiscard]] int sgetn(char* to, int count) { return xsgetn(to, count); }

 protected:
  // Allocates a buffer of 512 bytes in place of an owned one. Returns 1, or -1 without memory.
  [[nodiscard]] virtual int doallocate();
  // Returns 0 when nothing is to be done (unbuffered, or a buffer is there), 1 after doallocate
  // made one, -1 when that failed.
  [[nodiscard]] int allocate();

  [[nodiscard]] char* base() const noexcept { return base_; }
  [[nodiscard]] char* ebuf() const noexcept { return ebuf_; }
  [[nodiscard]] int blen() const noexcept {
    return ebuf_ > base_ ? static_cast<int>(ebuf_ - base_) : 0;
  }
  [[nodiscard]] char* pbase() const noexcept { return pbase_; }
  [[nodiscard]] char* pptr() const noexcept { return pptr_; }
  [[nodiscard]] char* epptr() const noexcept { return epptr_; }
  [[nodiscard]] char* eback() const noexcept { return eback_; }
  [[nodiscard]] char* gptr() const noexcept { return gptr_; }
  [[nodiscard]] char* egptr() const noexcept { return egptr_; }
  void gbump(int count) noexcept { gptr_ += count; }
  void pbump(int count) noexcept { pptr_ += count; }
  void setg(char* back, char* next, char* end) noexcept;
  void setp(char* begin, char* end) noexcept;
  // Replaces the buffer and frees an owned one. With `owned` the object frees the new one with
  // delete[].
  void setb(char* begin, char* end, int owned) noexcept;
  void unbuffered(int on) noexcept { unbuffered_ = on; }
  [[nodiscard]] int unbuffered() const noexcept { return unbuffered_; }

 private:
  int ownsBuffer_ = 0;
  int unbuffered_ = 0;
  int lastByte_ = -1;  // no byte is held back; here for the layout, which derived classes rely on
  char* base_ = nullptr;
  char* ebuf_ = nullptr;
  char* pbase_ = nullptr;
  char* pptr_ = nullptr;
  char* epptr_ = nullptr;
  char* eback_ = nullptr;
  char* gptr_ = nullptr;
  char* egptr_ = nullptr;
};

static_assert(sizeof(ZoZIPStreambuf) == 88);
