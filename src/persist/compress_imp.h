// What ZoCompress holds.
#pragma once

#include <zo/persist/zip.h>

class ZoFile;

class ZoCompressImp {
 public:
  explicit ZoCompressImp(ZoZip::compressMode mode) noexcept : mode_(mode) {}

  int setMode(ZoZip::compressMode mode) noexcept;
  [[nodiscard]] bool compressFast() const noexcept { return mode_ == ZoZip::fast; }
  int operator()(const char* in, char*& out, unsigned int& outSize) const noexcept;
  int operator()(ZoFile& in, ZoFile& out) const noexcept;

 private:
  ZoZip::compressMode mode_;
};

static_assert(sizeof(ZoCompressImp) == 4);
