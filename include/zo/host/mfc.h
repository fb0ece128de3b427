// The host framework's files and archives, or their stand-ins (CMake option ZO_WITH_MFC), and the
// library's own file over them.
//
// Errors, Threads: as CStdioFile.
#pragma once

#if defined(ZO_WITH_MFC)
#include <afx.h>
#else
#include <zo/host/c_archive.h>
#include <zo/host/c_file.h>
#include <zo/host/stdio_file.h>
#endif

// A stdio file that may hold 8-bit text: texts that a ZoMfcArchive reads from it are then taken as
// bytes in the ANSI code page.
class ZoStdioFile : public CStdioFile {
 public:
  ZoStdioFile() = default;
  explicit ZoStdioFile(std::FILE* stream, bool ansi = false) : CStdioFile(stream), ansi_(ansi) {}
  ZoStdioFile(const wchar_t* name, unsigned int flags, bool ansi = false)
      : CStdioFile(name, flags), ansi_(ansi) {}

  [[nodiscard]] bool isAnsi() const noexcept { return ansi_; }
  void setAnsi(bool ansi) noexcept { ansi_ = ansi; }

 private:
  bool ansi_ = false;
};
