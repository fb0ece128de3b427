#include <zo/persist/zip_streambuf.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace {

constexpr int kDefaultBuffer = 512;

int asByte(int c) { return c & 0xFF; }

}  // namespace

ZoZIPStreambuf::ZoZIPStreambuf(char* buffer, int length) noexcept {
  if (buffer && length > 0) {
    base_ = buffer;
    ebuf_ = buffer + length;
  } else {
    unbuffered_ = 1;
  }
}

ZoZIPStreambuf::~ZoZIPStreambuf() {
  if (ownsBuffer_) delete[] base_;
}

int ZoZIPStreambuf::sync() { return gptr_ < egptr_ || pbase_ < pptr_ ? endOfFile : 0; }

ZoZIPStreambuf* ZoZIPStreambuf::setbuf(char* buffer, int length) {
  if (base_) return nullptr;
  if (!buffer || length <= 0) {
    unbuffered_ = 1;
  } else {
    setb(buffer, buffer + length, 0);
    unbuffered_ = 0;
  }
  return this;
}

int ZoZIPStreambuf::sputc(int byte) {
  if (unbuffered_ || pptr_ >= epptr_) return overflow(asByte(byte));
  *pptr_++ = static_cast<char>(byte);
  return asByte(byte);
}

int ZoZIPStreambuf::xsputn(const char* data, int count) {
  int taken = 0;
  while (taken < count) {
    if (!unbuffered_ && pptr_ < epptr_) {
      const int part = static_cast<int>(std::min<std::ptrdiff_t>(count - taken, epptr_ - pptr_));
      std::memcpy(pptr_, data + taken, static_cast<std::size_t>(part));
      pptr_ += part;
      taken += part;
    } else {
      if (overflow(asByte(data[taken])) == endOfFile) break;
      ++taken;
    }
  }
  return taken;
}

int ZoZIPStreambuf::xsgetn(char* to, int count) {
  int delivered = 0;
  while (delivered < count) {
    if (gptr_ < egptr_) {
      const int part =
          static_cast<int>(std::min<std::ptrdiff_t>(count - delivered, egptr_ - gptr_));
      std::memcpy(to + delivered, gptr_, static_cast<std::size_t>(part));
      gptr_ += part;
      delivered += part;
      continue;
    }
    const int byte = underflow();
    if (byte == endOfFile) break;
    if (gptr_ >= egptr_) to[delivered++] = static_cast<char>(byte);
  }
  return delivered;
}

int ZoZIPStreambuf::doallocate() {
  char* const buffer = new (std::nothrow) char[kDefaultBuffer];
  if (!buffer) return -1;
  setb(buffer, buffer + kDefaultBuffer, 1);
  return 1;
}

int ZoZIPStreambuf::allocate() {
  if (unbuffered_ || base_) return 0;
  return doallocate() == 1 ? 1 : -1;
}

void ZoZIPStreambuf::setg(char* back, char* next, char* end) noexcept {
  eback_ = back;
  gptr_ = next;
  egptr_ = end;
}

void ZoZIPStreambuf::setp(char* begin, char* end) noexcept {
  pbase_ = pptr_ = begin;
  epptr_ = end;
}

void ZoZIPStreambuf::setb(char* begin, char* end, int owned) noexcept {
  if (ownsBuffer_ && base_ != begin) delete[] base_;
  base_ = begin;
  ebuf_ = end;
  ownsBuffer_ = owned;
}
