#if !defined(ZO_WITH_MFC)
#include <windows.h>
#include <zo/host/stdio_file.h>

#include <fcntl.h>
#include <io.h>

#include <cstdlib>
#include <utility>

#include "platform/file_api.h"

namespace {

[[noreturn]] void throwError(int cause, DWORD error) {
  // NOLINTNEXTLINE(misc-throw-by-value-catch-by-reference): the framework throws pointers
  throw new CFileException(cause, static_cast<long>(error ? error : ERROR_GEN_FAILURE));
}

// The runtime keeps the platform's error: by now the thread's may be another one.
[[noreturn]] void throwStreamError() {
  throwError(CFileException::genericException, static_cast<DWORD>(_doserrno));
}

// The runtime ends the program for a null stream.
std::FILE* checked(std::FILE* stream) {
  if (!stream) throwError(CFileException::genericException, ERROR_INVALID_HANDLE);
  return stream;
}

// The stream's mode for the access that the flags ask for.
const wchar_t* modeOf(unsigned int flags) {
  const bool text = (flags & CFile::typeText) != 0;
  switch (flags & 0x3) {
    case CFile::modeWrite:
      return text ? L"wt" : L"wb";
    case CFile::modeReadWrite:
      return text ? L"r+t" : L"r+b";
    default:
      return text ? L"rt" : L"rb";
  }
}

}  // namespace

CStdioFile::CStdioFile() : m_pStream(nullptr), closeOnDelete_(false) {}
CStdioFile::CStdioFile(std::FILE* stream) : m_pStream(stream), closeOnDelete_(false) {}
CStdioFile::CStdioFile(const wchar_t* name, unsigned int flags) : CStdioFile() {
  if (!CStdioFile::Open(name, flags)) throwError(CFileException::fileNotFound, GetLastError());
}
CStdioFile::~CStdioFile() { letGo(); }

void CStdioFile::letGo() noexcept {
  if (closeOnDelete_ && m_pStream) std::fclose(m_pStream);
  m_pStream = nullptr;
  m_hFile = INVALID_HANDLE_VALUE;  // the stream has closed it, or its owner will
  closeOnDelete_ = false;
}

// The handle becomes the stream's, so that fopen's modes need not say what the flags do.
int CStdioFile::Open(const wchar_t* name, unsigned int flags, CFileException* error) {
  letGo();
  if (!CFile::Open(name, flags, error)) return FALSE;
  const int descriptor =
      _open_osfhandle(reinterpret_cast<intptr_t>(m_hFile), flags & typeText ? _O_TEXT : 0);
  m_pStream = descriptor < 0 ? nullptr : _wfdopen(descriptor, modeOf(flags));
  if (!m_pStream) {
    if (descriptor >= 0) {
      _close(descriptor);
      m_hFile = INVALID_HANDLE_VALUE;
    } else {
      zo::fileApi().close(std::exchange(m_hFile, INVALID_HANDLE_VALUE));
    }
    return FALSE;
  }
  closeOnDelete_ = true;
  return TRUE;
}

unsigned int CStdioFile::Read(void* buffer, unsigned int count) {
  const std::size_t got = std::fread(buffer, 1, count, checked(m_pStream));
  if (got < count && std::ferror(m_pStream)) throwStreamError();
  return static_cast<unsigned int>(got);
}

void CStdioFile::Write(const void* data, unsigned int count) {
  if (std::fwrite(data, 1, count, checked(m_pStream)) != count) throwStreamError();
}

unsigned long long CStdioFile::Seek(long long offset, unsigned int from) {
  if (_fseeki64(checked(m_pStream), offset, static_cast<int>(from)) != 0) throwStreamError();
  return CStdioFile::GetPosition();
}

unsigned long long CStdioFile::GetPosition() const {
  const long long position = _ftelli64(checked(m_pStream));
  if (position < 0) throwStreamError();
  return static_cast<unsigned long long>(position);
}

unsigned long long CStdioFile::GetLength() const {
  // By the stream, which may have more than the file.
  const unsigned long long position = CStdioFile::GetPosition();
  if (_fseeki64(m_pStream, 0, SEEK_END) != 0) throwStreamError();
  const unsigned long long length = CStdioFile::GetPosition();
  if (_fseeki64(m_pStream, static_cast<long long>(position), SEEK_SET) != 0) throwStreamError();
  return length;
}

void CStdioFile::Flush() {
  if (m_pStream && std::fflush(m_pStream) != 0) throwStreamError();
}

void CStdioFile::Close() {
  std::FILE* const stream = m_pStream;
  m_pStream = nullptr;
  m_hFile = INVALID_HANDLE_VALUE;
  closeOnDelete_ = false;
  if (stream && std::fclose(stream) != 0) throwStreamError();
}
#endif
