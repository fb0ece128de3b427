// Copying or moving many files, with a view of how far it is, and a report of what failed.
//
//   ZoFileTransfer transfer;
//   transfer.addTree(L"C:\\parts\\*.dwg", L"D:\\backup\\");
//   transfer.onProgress([&](const ZoFileTransfer::Progress& p) { return show(p.bytesDone); });
//   if (transfer.run(ZoFileTransfer::kCopy)) {
//     for (const auto& failure : transfer.failures()) list(failure.source, failure.reason);
//   }
//
// Missing folders of targets are made. Each file is copied beside its target and put in place in
// one step, with its attributes and the time of its last change, so a target is always as it was or
// complete, and a source that is to be moved is erased only then. Sources and targets may be FTP
// names, but not both of one file.
//
// Errors:  add answers 0, addTree also 1 when a folder could not be read. run answers 0 when all is
//          done, 1 when nothing is, 4 when a part is; failures() says what and why. What is done
//          leaves the list: another run tries the rest.
// Threads: one per object.
#pragma once

#include <zo/names/file_name.h>
#include <zo/text/containers/array.h>

#include <cstdint>
#include <functional>

class ZO_COM_API ZoFileTransfer {
 public:
  enum Mode : unsigned int { kCopy = 0, kMove = 1 };

  // Where a run is: called before each file, within large ones, and behind each. References hold
  // during the call.
  struct Progress {
    const ZoFileName& source;
    const ZoFileName& target;
    unsigned int filesDone, files;  // of this run; failures count as done
    std::int64_t bytesDone, bytes;  // of all its files, as large as they were when it began
  };
  using Watcher = std::function<bool(const Progress&)>;  // false cancels the run

  struct Failure {
    ZoFileName source, target;
    int code;         // of the operation that failed
    ZoString reason;  // what errorTxt() said
  };

  ZoFileTransfer();
  ZoFileTransfer(const ZoFileTransfer&) = delete;
  ZoFileTransfer& operator=(const ZoFileTransfer&) = delete;
  ~ZoFileTransfer();

  // ---- The list ----
  int add(const ZoFileName& source, const ZoFileName& target);
  // The files that a pattern finds in its folder and those below, each to the same place below a
  // folder (zo/files/find_file.h has the pattern's rules).
  [[nodiscard]] int addTree(const ZoFileName& pattern, const ZoFileName& targetFolder);
  [[nodiscard]] unsigned int entries() const noexcept;
  void clear() noexcept;

  // ---- The run ----
  void onProgress(Watcher watcher);
  // Whether targets that exist are refused; at first they are replaced.
  void refuseExisting(bool refuse) noexcept;
  template <zo::NotAFlag T>
  void refuseExisting(const T& refuse) = delete;  // true or false
  [[nodiscard]] int run(Mode mode);
  [[nodiscard]] bool wasCancelled() const noexcept;                 // the last run
  [[nodiscard]] const ZoArray<Failure>& failures() const noexcept;  // of the last run

 private:
  struct Imp;
  Imp* imp_;
};
