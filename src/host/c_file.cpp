#if !defined(ZO_WITH_MFC)
#include <zo/host/c_file.h>

#include "platform/file_api.h"
#include "platform/system_path.h"

CException::~CException() = default;
CFileException::~CFileException() = default;

namespace {

[[noreturn]] void throwFileError(DWORD error = GetLastError()) {
  const bool full = error == ERROR_DISK_FULL || error == ERROR_HANDLE_DISK_FULL;
  // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference): the framework throws pointers
  throw new CFileException(full ? CFileException::diskFull : CFileException::genericException,
                           static_cast<long>(error));
}

DWORD accessOf(unsigned int flags) {
  switch (flags & 0x3) {
    case CFile::modeWrite:
      return GENERIC_WRITE;
    case CFile::modeReadWrite:
      return GENERIC_READ | GENERIC_WRITE;
    default:
      return GENERIC_READ;
  }
}

DWORD shareOf(unsigned int flags) {
  switch (flags & 0x70) {
    case CFile::shareDenyWrite:
      return FILE_SHARE_READ;
    case CFile::shareDenyRead:
      return FILE_SHARE_WRITE;
    case CFile::shareDenyNone:
      return FILE_SHARE_READ | FILE_SHARE_WRITE;
    default:
      return 0;
  }
}

DWORD dispositionOf(unsigned int flags) {
  if (!(flags & CFile::modeCreate)) return OPEN_EXISTING;
  return flags & CFile::modeNoTruncate ? OPEN_ALWAYS : CREATE_ALWAYS;
}

}  // namespace

CFile::CFile() : m_hFile(INVALID_HANDLE_VALUE) {}
CFile::CFile(void* handle) : m_hFile(handle) {}
CFile::CFile(const wchar_t* name, unsigned int flags) : CFile() {
  if (!CFile::Open(name, flags)) throwFileError();
}
CFile::~CFile() {
  if (m_hFile != INVALID_HANDLE_VALUE) zo::fileApi().close(m_hFile);
}

int CFile::Open(const wchar_t* name, unsigned int flags, CFileException*) {
  if (m_hFile != INVALID_HANDLE_VALUE) zo::fileApi().close(m_hFile);
  m_hFile = zo::fileApi().create(zo::SystemPath(name ? name : L""), accessOf(flags), shareOf(flags),
                                 dispositionOf(flags), FILE_ATTRIBUTE_NORMAL);
  return m_hFile != INVALID_HANDLE_VALUE;
}

unsigned int CFile::Read(void* buffer, unsigned int count) {
  DWORD done = 0;
  if (count > 0 && !zo::fileApi().read(m_hFile, buffer, count, done)) throwFileError();
  return done;
}

void CFile::Write(const void* data, unsigned int count) {
  DWORD done = 0;
  if (count == 0) return;
  if (!zo::fileApi().write(m_hFile, data, count, done)) throwFileError();
  if (done != count) throwFileError(ERROR_DISK_FULL);
}

unsigned long long CFile::Seek(long long offset, unsigned int from) {
  std::int64_t position = 0;
  if (!zo::fileApi().seek(m_hFile, offset, from, position)) throwFileError();
  return static_cast<unsigned long long>(position);
}

unsigned long long CFile::GetPosition() const {
  std::int64_t position = 0;
  if (!zo::fileApi().seek(m_hFile, 0, FILE_CURRENT, position)) throwFileError();
  return static_cast<unsigned long long>(position);
}

unsigned long long CFile::GetLength() const {
  std::int64_t bytes = 0;
  if (!zo::fileApi().size(m_hFile, bytes)) throwFileError();
  return static_cast<unsigned long long>(bytes);
}

void CFile::Flush() {
  if (m_hFile != INVALID_HANDLE_VALUE && !zo::fileApi().flush(m_hFile)) throwFileError();
}

void CFile::Close() {
  if (m_hFile == INVALID_HANDLE_VALUE) return;
  void* const file = m_hFile;
  m_hFile = INVALID_HANDLE_VALUE;
  if (!zo::fileApi().close(file)) throwFileError();
}
#endif
