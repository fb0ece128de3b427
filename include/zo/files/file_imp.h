// What a ZoFile passes its operations on to: as it stands, a file of the operating system. A class
// derived from it can serve anything else that is read and written like a file, by overriding what
// it can do; the operations' contracts are those of zo/files/file.h.
//
//   class Member : public ZoFileImp {
//     bool isOpen() const noexcept override { ... }
//     unsigned int read(void* buffer, unsigned int count) override { ... }
//   };
//   ZoFile file(new Member(...));
//
// What is not overridden answers as for a file that is not open: 1, 0, -1 or nothing. A class whose
// files can be copied overrides clone() and, for another access mode, cloneFor().
//
// Errors:  those of zo/files/file.h; a derived class keeps to them.
// Threads: as there. The operations here see to it themselves, and so does a derived class.
#pragma once

#include <zo/config.h>
#include <zo/files/file.h>

class ZoFileSystem;
namespace zo {
class FileBuffer;
}

class ZO_COM_API ZoFileImp {
 public:
  // Failures are reported to the service, by default the one that is in force then, if any is.
  explicit ZoFileImp(ZoFileSystem* service = nullptr) noexcept;
  explicit ZoFileImp(void* handle, ZoFileSystem* service = nullptr) noexcept;
  ZoFileImp(const ZoFileImp& other);
  ZoFileImp(const ZoFileImp& other, unsigned int access);
  ZoFileImp& operator=(const ZoFileImp& other);
  virtual ~ZoFileImp();

  // A copy for another ZoFile, which deletes it.
  [[nodiscard]] virtual ZoFileImp* clone() const;
  [[nodiscard]] virtual ZoFileImp* cloneFor(unsigned int access) const;

  [[nodiscard]] virtual int open(const ZoFileName& name, int access, ZoFile::CreationMode mode,
                                 int share, int flags);
  [[nodiscard]] virtual int createTemp(ZoFileName& name, int access, ZoFile::CreationMode mode,
                                       int share, int flags);
  [[nodiscard]] virtual bool isOpen() const noexcept;
  [[nodiscard]] virtual int close();

  [[nodiscard]] virtual unsigned int read(void* buffer, unsigned int count);
  [[nodiscard]] virtual unsigned int write(const void* data, unsigned int count);
  [[nodiscard]] virtual std::int64_t seek(std::int64_t offset, ZoFile::MoveMethod method);
  [[nodiscard]] virtual std::int64_t size();
  [[nodiscard]] virtual int setEndOfFile();
  [[nodiscard]] virtual int flush();
  [[nodiscard]] virtual int lockRange(std::int64_t start, std::int64_t length);
  [[nodiscard]] virtual int unlockRange(std::int64_t start, std::int64_t length);

  [[nodiscard]] virtual const ZoFileName& name() const noexcept;
  [[nodiscard]] virtual unsigned int accessMode() const noexcept;
  [[nodiscard]] virtual unsigned int shareMode() const noexcept;
  [[nodiscard]] virtual unsigned int attributes();
  [[nodiscard]] virtual FILETIME creationTime();
  [[nodiscard]] virtual FILETIME lastAccessTime();
  [[nodiscard]] virtual FILETIME lastWriteTime();
  [[nodiscard]] virtual int setCreationTime(FILETIME time);
  [[nodiscard]] virtual int setLastAccessTime(FILETIME time);
  [[nodiscard]] virtual int setLastWriteTime(FILETIME time);

  [[nodiscard]] virtual std::FILE* getCFileHandle(bool text, bool writable);
  [[nodiscard]] virtual std::FILE* getCFileHandle(const wchar_t* mode);
  [[nodiscard]] virtual void* handle(bool give);

  // As it stands: close(), whose failure is lost. A class that commits on close() drops instead.
  virtual void cancel();
  // Whether another file can be opened by it. A ZoFile that opens one takes a plain implementation
  // instead where this is false.
  [[nodiscard]] virtual bool opensFiles() const noexcept;

  // ---- Buffers above the file: archives (zo/persist/file_archive.h) ----
  // A ZoFile calls these before it passes an operation on; classes derived have nothing to do.
  //
  // Has the buffers hand over what they hold. Returns 0; or 1 when bytes were lost that way since
  // the file was opened.
  int settleBuffers() noexcept;
  // The same for good, before the file is closed: the buffers refuse everything from then on.
  int releaseBuffers() noexcept;
  // The same without what they hold.
  void dropBuffers() noexcept;

 protected:
  // Reports the platform's last error. Returns 1, so that a failed operation can end with it.
  int report(const wchar_t* operation) const;
  // The same for an error that the platform did not give.
  int report(const wchar_t* operation, unsigned long error) const;
  // For classes that serve a name and modes of their own.
  void setModes(const ZoFileName& name, unsigned int access, unsigned int share);

 private:
  // Whether a file is open; reports if not.
  bool mayUse(const wchar_t* operation) const;
  std::FILE* noStream(unsigned long error) const;  // reports, and is null
  void adopt(void* handle, ZoFileName&& own, int access, int share) noexcept;
  int lockOrUnlock(bool lock, std::int64_t start, std::int64_t length, const wchar_t* operation);
  int setTime(FILETIME time, unsigned int which, const wchar_t* operation);
  FILETIME time(unsigned int which, const wchar_t* operation);

  // Needs no memory, as a std::mutex does where its first lock makes it.
  class Mutex {
   public:
    void lock() noexcept;
    void unlock() noexcept;

   private:
    void* state_ = nullptr;  // the platform's SRWLOCK
  };

  mutable Mutex mutex_;
  ZoFileName name_;  // shares its parts with no other name, so that files can go to other threads
  void* handle_;
  unsigned int access_ = 0;
  unsigned int share_ = 0;
  ZoFileSystem* service_;
  friend class zo::FileBuffer;
  zo::FileBuffer* buffers_ = nullptr;  // the first
  bool hasLost_ = false;               // what a buffer could not hand over
};
