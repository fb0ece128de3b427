// Stand-in for the host framework's file over a stdio stream: a CFile whose bytes pass through the
// stream, as text or binary.
//
// Errors:  as CFile; using one without a stream is a failure, but for Flush and Close.
// Threads: one at a time per file.
#pragma once

#include <zo/host/c_file.h>

#include <cstdio>

class ZO_COM_API CStdioFile : public CFile {
 public:
  CStdioFile();
  explicit CStdioFile(std::FILE* stream);  // stays the caller's until Close
  CStdioFile(const wchar_t* name, unsigned int flags);
  ~CStdioFile() override;

  [[nodiscard]] int Open(const wchar_t* name, unsigned int flags,
                         CFileException* = nullptr) override;
  unsigned int Read(void* buffer, unsigned int count) override;
  void Write(const void* data, unsigned int count) override;
  unsigned long long Seek(long long offset, unsigned int from) override;
  [[nodiscard]] unsigned long long GetPosition() const override;
  [[nodiscard]] unsigned long long GetLength() const override;
  void Flush() override;
  void Close() override;

  std::FILE* m_pStream;

 private:
  void letGo() noexcept;  // of the stream, which is closed if this opened it

  bool closeOnDelete_;
};
