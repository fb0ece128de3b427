// Stand-in for the host framework's file class, with just the calls that the library makes.
//
// Names, numbers and the order of the parameters are the framework's. Failures throw a pointer to a
// CFileException, as the framework does; who catches it calls Delete().
//
// Errors:  as said. Open answers, and the destructor loses a failure.
// Threads: one at a time per file.
#pragma once

#include <zo/config.h>

// Thrown by pointer; Delete() frees it.
class ZO_COM_API CException {
 public:
  CException() = default;
  CException(const CException&) = delete;
  CException& operator=(const CException&) = delete;
  void Delete() { delete this; }

 protected:
  virtual ~CException();
};

class ZO_COM_API CFileException final : public CException {
 public:
  enum Cause { none = 0, genericException = 1, fileNotFound = 2, endOfFile = 9, diskFull = 13 };
  CFileException(int cause, long osError) : m_cause(cause), m_lOsError(osError) {}

  int m_cause;
  long m_lOsError;  // the platform's code

 protected:
  ~CFileException() override;
};

class ZO_COM_API CFile {
 public:
  enum OpenFlags : unsigned int {
    modeRead = 0x0,
    modeWrite = 0x1,
    modeReadWrite = 0x2,
    shareExclusive = 0x10,
    shareDenyWrite = 0x20,
    shareDenyRead = 0x30,
    shareDenyNone = 0x40,
    modeCreate = 0x1000,  // emptied if it exists
    modeNoTruncate = 0x2000,
    typeText = 0x4000,  // of stdio files
    typeBinary = 0x8000
  };
  enum SeekPosition { begin = 0, current = 1, end = 2 };

  CFile();
  explicit CFile(void* handle);  // takes an open handle of the platform over
  CFile(const wchar_t* name, unsigned int flags);
  CFile(const CFile&) = delete;
  CFile& operator=(const CFile&) = delete;
  virtual ~CFile();  // closes

  // In the place of what is open. False for a failure; this alone does not throw.
  [[nodiscard]] virtual int Open(const wchar_t* name, unsigned int flags,
                                 CFileException* = nullptr);
  virtual unsigned int Read(void* buffer, unsigned int count);
  virtual void Write(const void* data, unsigned int count);
  virtual unsigned long long Seek(long long offset, unsigned int from);
  [[nodiscard]] virtual unsigned long long GetPosition() const;
  [[nodiscard]] virtual unsigned long long GetLength() const;
  virtual void Flush();
  virtual void Close();

  void* m_hFile;  // all bits set while none is open
};
