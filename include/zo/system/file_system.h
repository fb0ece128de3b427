// The file-system service: the library's one way to directories, volumes and whole files.
//
//   if (ZoSystem::fileSystem().copy(from, to, true)) show(ZoSystem::fileSystem().errorTxt());
//
// Names pass to the platform as they stand, however long; a disc name ("cd://label/...") has to go
// through getAbsolutePath first. A name that asks for a volume (volume, space, type, label) stands
// for its drive or network share, unless it ends in a delimiter: then it is taken for the root of a
// volume itself.
//
// FTP: createDirectory, move, erase and the remote operations serve ftp://[user:password@]host
//   [:port]/path, without a user anonymously. The path is the server's, from its root on, and is
//   taken as it stands.
//
// Errors:  int results are
//            0  success
//            1  the platform or the server refused
//            2  no memory for what was to be filled
//            3  a URL, where the operation has no use for it
//            4  move and erase: done in part (see there)
//          After all but 0, errorIO() was called and errorTxt() says why.
//          What a failed operation was to fill is as it was. Nothing throws but std::bad_alloc.
// Safety:  copy, and move to another volume, fill a temporary file beside the target
//          ("name~xxxxxxxx.tmp") and put it in the target's place in one step: whatever fails, and
//          if the process is killed, the target is as it was or complete, and the source is there.
// Threads: any, but there is one error for the whole process: a failure in one thread can replace
//          the one that another thread is about to ask for.
#pragma once

#include <zo/names/file_name.h>
#include <zo/results.h>
#include <zo/system/sys_obj.h>
#include <zo/text/string.h>

template <class T>
class ZoSequence;

namespace ZoResult {
inline constexpr int partial = 4;  // some of it was done, and cannot be undone
}

class ZO_COM_API ZoFileSystem : public ZoSysObj {
 public:
  // What erase erases. Numbers that callers may keep.
  enum EraseType : unsigned int {
    kFile = 0,
    kDirectory = 1,  // an empty one
    kTree = 2,       // a directory with all that is in it; links in it go, what they lead to stays
    kBackups = 3,    // of a directory: its files that end in .bak; of a file: the .bak beside it
  };
  // The platform's numbers.
  enum DriveType : unsigned int {
    kUnknown = 0,
    kNoRoot = 1,  // there is no such volume
    kRemovable = 2,
    kFixed = 3,
    kRemote = 4,
    kCdRom = 5,
    kRamDisk = 6,
  };

  // The order of the virtual functions is part of the interface.

  // ---- Directories ----
  // Makes a directory and those above it that are missing, here or on a server; 1 when it is there
  // already. A failure leaves none of them.
  [[nodiscard]] virtual int createDirectory(const ZoFileName& name) = 0;
  [[nodiscard]] virtual int getCurrentDirectory(ZoFileName& name) = 0;
  [[nodiscard]] virtual int setCurrentDirectory(const ZoFileName& name) = 0;
  [[nodiscard]] virtual int getTempPath(ZoFileName& name) = 0;

  // ---- Names ----
  // Makes a name absolute: a disc name by the disc of that label, any other against the current
  // directory. A URL is absolute.
  [[nodiscard]] virtual int getAbsolutePath(ZoFileName& name) = 0;
  // The name against the current directory, without "." and ".."; nothing needs to exist.
  [[nodiscard]] virtual int getFullPathName(const ZoFileName& name, ZoFileName& full) = 0;
  // Looks for a file in the directories of `path`, which are separated by semicolons; without
  // `path` where the platform looks for programs.
  [[nodiscard]] virtual int searchPath(const ZoFileName& file, ZoFileName& found,
                                       const ZoFileName& path) = 0;

  // ---- Files ----
  // Copies content, attributes and time of the last change. A target that exists is replaced, or
  // with `failIfExists` refused; one that is read-only is refused always.
  [[nodiscard]] virtual int copy(const ZoFileName& from, const ZoFileName& to,
                                 bool failIfExists = false) = 0;
  // Adds a file's content to the end of another, which is made unless it `mustExist`. A failure
  // leaves the target as it was. A process that is killed leaves a new target absent or complete;
  // behind the old content of any other it can leave a part of what was to come.
  [[nodiscard]] virtual int append(const ZoFileName& from, const ZoFileName& to,
                                   bool mustExist = false) = 0;
  // Renames a file or directory, or moves a file to another volume; a target that exists is
  // refused. The case of letters alone can be changed, too; where the platform does not do that in
  // one step, it goes by a name "name~xxxxxxxx.tmp" beside, under which a killed process leaves it.
  // 4: the target is complete, and the source could not be erased. Two URLs on one server are
  // renamed there.
  [[nodiscard]] virtual int move(const ZoFileName& from, const ZoFileName& to) = 0;
  // Erases what the type says. 4: some of it was erased, some could not be. Backups that are not
  // there are erased. The root of a volume is refused.
  [[nodiscard]] virtual int erase(const ZoFileName& name, EraseType type) = 0;
  // Makes an empty file under a name that was not there, in the directory of `pattern` (that for
  // temporary files when it has none), which begins with the first three characters of its name.
  [[nodiscard]] virtual int getTempFileName(ZoFileName& name, const ZoFileName& pattern) = 0;
  // The platform's bits; 0 for a failure; 3 for a URL, on purpose the same as for a hidden file
  // that is read-only.
  [[nodiscard]] virtual unsigned int getAttributes(const ZoFileName& name) = 0;
  // Replaces the attributes.
  [[nodiscard]] virtual int subSetAttributes(const ZoFileName& name, unsigned int attributes) = 0;

  // ---- Volumes ----
  [[nodiscard]] virtual int getVolumeInformation(unsigned int& serial,
                                                 unsigned int& longestComponent,
                                                 unsigned int& flags, const ZoFileName& volume,
                                                 ZoString& label, ZoString& fileSystem) = 0;
  // In KiB, 0xFFFFFFFF for that and more.
  [[nodiscard]] virtual int getDiskFreeSpace(unsigned int& freeKiB, unsigned int& totalKiB,
                                             const ZoFileName& volume) = 0;
  [[nodiscard]] virtual DriveType getDriveType(const ZoFileName& volume) = 0;  // no error
  [[nodiscard]] virtual int getLogicalDrivesStrings(
      ZoSequence<ZoFileName>& drives) = 0;  // "C:\" and so on
  [[nodiscard]] virtual int setVolumeLabel(const wchar_t* label,
                                           const ZoFileName& volume) = 0;  // null: none
  // The drives for discs, and for each the label of its disc, empty when there is none.
  [[nodiscard]] virtual int getCDRom(ZoSequence<ZoFileName>& drives,
                                     ZoSequence<ZoString>& labels) = 0;

  // ---- Errors ----
  // Called at once after a call of the platform failed: keeps the calling thread's last error,
  // which may then be asked for by errorTxt(). The operation's name is not kept. Returns 0.
  virtual int errorIO(const wchar_t* operation) = 0;
  // The system's message for the error that was kept last, in the user's language and as it comes,
  // with its line end; what a server said, when it refused; "Error N." where there is no message.
  [[nodiscard]] virtual ZoString errorTxt() = 0;

  // ---- Files of a server ----
  // Fetches a file of a server to `local`, making its directories. An empty `local` becomes the
  // name that isRemote gives. A file that exists is replaced when the new one is complete, or with
  // `failIfExists` refused. 3 for what is no FTP name.
  [[nodiscard]] virtual int getRemote(const ZoFileName& remote, ZoFileName& local,
                                      bool failIfExists = false) = 0;
  // Stores a local file on a server, in the place of one that is there. It is sent under another
  // name and renamed when it is complete.
  [[nodiscard]] virtual int putRemote(const ZoFileName& local, const ZoFileName& remote) = 0;
  // 0 for a name that getRemote can fetch, and then `local` is where a copy has its place: the
  // name's local alias, else below "zo_remote" in the directory for temporary files; 1 for any
  // other name. Asks neither server nor disk.
  [[nodiscard]] virtual int isRemote(const ZoFileName& name, ZoFileName& local) = 0;

  // ---- No slots ----
  [[nodiscard]] int setVolumeLabel(const zo::NameText& label, const ZoFileName& volume) {
    return setVolumeLabel(label.get(), volume);
  }
  template <zo::NotAFlag T>
  int copy(const ZoFileName&, const ZoFileName&, const T&) = delete;  // failIfExists is a bool
  template <zo::NotAFlag T>
  int append(const ZoFileName&, const ZoFileName&, const T&) = delete;  // mustExist is a bool
  template <zo::NotAFlag T>
  int getRemote(const ZoFileName&, ZoFileName&, const T&) = delete;  // failIfExists is a bool
};
