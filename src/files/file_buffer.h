// What holds bytes of an open file in a buffer of its own, as an archive over the file does. Before
// anything else is done with the file it is told to let go of them, so that all of its users see
// one position, as though there were no buffer.
//
// Threads: one, that of the file.
#pragma once

class ZoFileImp;

namespace zo {

class FileBuffer {
 public:
  // Joins the file, until it is closed or destroyed.
  explicit FileBuffer(ZoFileImp& file) noexcept;
  virtual ~FileBuffer();  // leaves it
  FileBuffer(const FileBuffer&) = delete;
  FileBuffer& operator=(const FileBuffer&) = delete;

  // Null once the file was closed or destroyed.
  [[nodiscard]] ZoFileImp* file() const noexcept { return file_; }

 protected:
  // Makes the file refuse everything until it is closed: what was held is lost, and nobody is told.
  void lose() noexcept;

 private:
  friend class ::ZoFileImp;
  // Gives the file what is to be written, and goes back to what was not used of what was read,
  // unless the file is closed next. Ends with lose() where that fails.
  virtual void settle(bool closing) noexcept = 0;
  // Forgets what it holds.
  virtual void drop() noexcept = 0;

  ZoFileImp* file_;
  FileBuffer* next_;  // of the same file
};

}  // namespace zo
