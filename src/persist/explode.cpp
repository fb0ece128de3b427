#include <zo/persist/explode.h>
#include <zo/results.h>

#include <new>

#include "persist/file_streams.h"

// What the handle holds: nothing but its operations.
class ZoExplodeImp {
 public:
  int operator()(const char* in, unsigned int inSize, char*& out,
                 unsigned int& outSize) const noexcept;
  int operator()(ZoFile& in, ZoFile& out) const noexcept;
};

// ---- The handle ----

ZoExplode::ZoExplode() : imp_(new(std::nothrow) ZoExplodeImp) {}

ZoExplode::~ZoExplode() { delete imp_; }

int ZoExplode::operator()(const char* in, unsigned int inSize, char*& out) const {
  unsigned int outSize;
  return (*this)(in, inSize, out, outSize);
}

int ZoExplode::operator()(const char* in, unsigned int inSize, char*& out,
                          unsigned int& outSize) const {
  out = nullptr;
  outSize = 0;
  return imp_ ? (*imp_)(in, inSize, out, outSize) : ZoResult::refused;
}

int ZoExplode::operator()(ZoFile& in, ZoFile& out) const {
  return imp_ ? (*imp_)(in, out) : ZoResult::refused;
}

int ZoExplode::operator()(const ZoFileName& in, const ZoFileName& out) const {
  return imp_ ? zo::betweenNames(in, out, *this) : ZoResult::refused;
}

// ---- The operations ----

int ZoExplodeImp::operator()(const char* in, unsigned int inSize, char*& out,
                             unsigned int& outSize) const noexcept {
  out = nullptr;
  outSize = 0;
  if (!in) return ZoResult::refused;
  zo::Block block;
  std::size_t size = 0;
  const int result =
      zo::explodeBuffer({reinterpret_cast<const unsigned char*>(in), inSize}, block, size);
  if (result == ZoResult::refused) return result;
  outSize = static_cast<unsigned int>(size);
  out = reinterpret_cast<char*>(block.release());
  return result;
}

int ZoExplodeImp::operator()(ZoFile& in, ZoFile& out) const noexcept {
  return zo::betweenFiles(in, out, zo::explodeStream);
}
