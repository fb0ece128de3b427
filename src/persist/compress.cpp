#include <zo/persist/compress.h>
#include <zo/persist/lzma_utils.h>
#include <zo/results.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "persist/file_streams.h"
#include "persist/part_source.h"

// What the handle holds.
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

// ---- The handle ----

ZoCompress::ZoCompress(ZoZip::compressMode mode) : imp_(new(std::nothrow) ZoCompressImp(mode)) {}

ZoCompress::~ZoCompress() { delete imp_; }

int ZoCompress::setMode(ZoZip::compressMode mode) {
  return imp_ ? imp_->setMode(mode) : ZoResult::refused;
}

bool ZoCompress::compressFast() const { return imp_ && imp_->compressFast(); }

int ZoCompress::operator()(const char* in, char*& out, unsigned int& outSize) const {
  out = nullptr;
  outSize = 0;
  return imp_ ? (*imp_)(in, out, outSize) : ZoResult::refused;
}

int ZoCompress::operator()(ZoFile& in, ZoFile& out) const {
  return imp_ ? (*imp_)(in, out) : ZoResult::refused;
}

int ZoCompress::operator()(const ZoFileName& in, const ZoFileName& out) const {
  return imp_ ? zo::betweenNames(in, out, *this) : ZoResult::refused;
}

// ---- The operations ----

int ZoCompressImp::setMode(ZoZip::compressMode mode) noexcept {
  mode_ = mode;
  return ZoResult::ok;
}

int ZoCompressImp::operator()(const char* in, char*& out, unsigned int& outSize) const noexcept {
  out = nullptr;
  outSize = 0;
  if (!in) return ZoResult::refused;
  std::vector<unsigned char> container;
  if (LzmaUtils::LzmaCompressData(container, in, std::strlen(in), zo::levelOf(mode_), 0) !=
          LzmaUtils::success ||
      container.size() > zo::kMaxContent) {
    return ZoResult::refused;
  }
  zo::Block block;
  if (!block.resize(container.size() + 1)) return ZoResult::refused;
  std::copy(container.begin(), container.end(), block.data());
  block.data()[container.size()] = 0;
  outSize = static_cast<unsigned int>(container.size());
  out = reinterpret_cast<char*>(block.release());
  return ZoResult::ok;
}

int ZoCompressImp::operator()(ZoFile& in, ZoFile& out) const noexcept {
  return zo::betweenFiles(in, out, [this](zo::FileStore& store, zo::FileSink& sink) {
    zo::PartSource source(store, 0, store.size());
    return zo::compressStream(source, store.size(), zo::levelOf(mode_), sink) ? ZoResult::refused
                                                                              : ZoResult::ok;
  });
}
