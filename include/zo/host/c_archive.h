// Stand-in for the host framework's archive: a buffer over a CFile that either loads or stores,
// with just the calls that the library makes.
//
// Read gives fewer bytes than asked for at the end of the file, and no error. Reading an archive
// that stores, or writing one that loads, throws a pointer to a CArchiveException; failures of the
// file pass through.
//
// Errors:  as said; nothing else throws but std::bad_alloc. The destructor loses a failure.
// Threads: one at a time per archive and its file.
#pragma once

#include <zo/host/c_file.h>

#include <cstddef>
#include <memory>

class ZO_COM_API CArchiveException final : public CException {
 public:
  enum Cause { none = 0, genericException = 1, readOnly = 2, endOfFile = 3, writeOnly = 4 };
  explicit CArchiveException(int cause) : m_cause(cause) {}

  int m_cause;

 protected:
  ~CArchiveException() override;
};

class ZO_COM_API CArchive {
 public:
  enum Mode : unsigned int { store = 0, load = 1, bNoFlushOnDelete = 2 };

  // From the file's position on; the file stays the caller's.
  CArchive(CFile* file, unsigned int mode, int bufferSize = 4096);
  CArchive(const CArchive&) = delete;
  CArchive& operator=(const CArchive&) = delete;
  ~CArchive();  // as Close, unless told otherwise; a failure is lost

  [[nodiscard]] int IsLoading() const noexcept { return (mode_ & load) != 0; }
  [[nodiscard]] int IsStoring() const noexcept { return (mode_ & load) == 0; }
  [[nodiscard]] CFile* GetFile() const noexcept { return file_; }

  unsigned int Read(void* buffer, unsigned int count);
  void Write(const void* data, unsigned int count);
  // Storing: hands everything to the file. Loading: gives the file back at what was read.
  void Flush();
  void Close();  // flushes and lets the file go

 private:
  CFile* file_;
  unsigned int mode_;
  std::unique_ptr<std::byte[]> buffer_;
  unsigned int capacity_;
  unsigned int next_ = 0;  // loading: of what is in the buffer; storing: how much
  unsigned int end_ = 0;
};
