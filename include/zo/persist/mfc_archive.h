// ZoMfcArchive: a bridge to the host framework's archive.
//
// Without an archive attached every operation does nothing, and reading gives zeros and empty
// values.
//
// Errors:  what the CArchive throws passes through. Data that ends early is no error: the count
//          that CArchive::Read returns tells only what is left at zero.
// Threads: as the CArchive.
// Owned:   nothing; the CArchive must live as long as it is attached.
#pragma once

#include <zo/persist/archive.h>

class CArchive;

class ZO_COM_API ZoMfcArchive : public ZoArchive {
 public:
  ZoMfcArchive() noexcept = default;
  explicit ZoMfcArchive(CArchive& archive) noexcept : archive_(&archive) {}
  virtual ~ZoMfcArchive();

  void setArchive(CArchive& archive) noexcept { archive_ = &archive; }
  // Only while one is attached.
  [[nodiscard]] CArchive& archive() const noexcept { return *archive_; }

  // False for a CArchive that loads, and without one.
  bool isStoring() override;
  void flush() override;
  using ZoArchive::read;
  using ZoArchive::write;
  void readBin(void* buffer, unsigned int size) override;
  void writeBin(const void* data, unsigned int size, const wchar_t* name) override;
  // Whether the CArchive's file is a ZoStdioFile (zo/host/mfc.h) that is marked to hold 8-bit text.
  [[nodiscard]] bool needToConvertToUnicode() const override;

 private:
  CArchive* archive_ = nullptr;
};

static_assert(sizeof(ZoMfcArchive) == 2 * sizeof(void*));
