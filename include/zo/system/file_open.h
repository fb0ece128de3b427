// The file open service: opens a file wherever the file search finds it, asks for the disc on which
// it is, and checks installation media.
//
//   ZoFile file;
//   if (const int code = ZoSystem::fileOpen().open(L"cd://Parts 2026/bolts/m8.dwg", file)) ...
//
// Discs    cd://label/path is a file of the disc with that label. While no drive has it, the user
//          is asked for it (setMediaPrompt). A disc with a manifest is checked once for each time
//          that it is put in, and a file of one that is not right is not opened. A disc without one
//          is opened as it is.
// Media    are folders with all that is below them, as a rule the root of a disc. The manifest
//          "zomedia.txt" in it lists size and keyed checksum of every file (zo/persist/check_sum.h
//          says what that is good for), and has a sum itself; docs/media.md describes it. Files
//          that it does not list do not matter.
//
// Errors:  0; 1 refused, not found, not readable, or the guard was not obtained within timeOut(); 3
//          as the file search gives it; and the codes of zo/system/open_results.h. What was to be
//          filled then stays as it was, unless it is said otherwise. errorTxt() says why, where the
//          platform refused.
// Threads: any. No guard is held while files are read and while the user thinks.
#pragma once

#include <zo/names/file_name.h>
#include <zo/system/open_results.h>
#include <zo/system/sys_obj.h>
#include <zo/text/containers/array.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

class ZoFile;

// What a check found.
struct ZoMediaReport {
  ZoString label;               // as the manifest gives it
  unsigned int files = 0;       // that it lists
  std::uint64_t bytes = 0;      // of all of them
  ZoArray<ZoFileName> missing;  // full names, as all that follow
  ZoArray<ZoFileName> different;
};

// Called between the pieces of a file. References hold during the call; false cancels.
struct ZoMediaProgress {
  const ZoFileName& file;
  unsigned int filesDone, files;
  std::uint64_t bytesDone, bytes;
};
using ZoMediaWatcher = std::function<bool(const ZoMediaProgress&)>;
// One that gives something else, such as a pointer, which would pass for true.
template <class T>
inline constexpr bool zoIsNoMediaWatcher = requires(T& f, const ZoMediaProgress& progress) {
  f(progress);
  requires !std::same_as<decltype(f(progress)), bool>;
};

// Asks for the disc with a label, and comes back when it should be there; false gives up. `attempt`
// counts from 0.
using ZoMediaPrompt = std::function<bool(const ZoString& label, unsigned int attempt)>;

class ZO_COM_API ZoFileOpen : public ZoSysObj {
 public:
  // ---- What a service of one's own must give; the rest has a meaning already ----
  // Opens a drawing or part in the host application.
  [[nodiscard]] virtual int openDocument(const ZoFileName& file) = 0;

  // ---- The order of the virtual functions is part of the interface ----
  // Finds and opens a file; access and share as in ZoFile::open. Here: through the file search.
  [[nodiscard]] virtual int openFile(const ZoFileName& name, ZoFile& file, int access, int share);
  // Whether media are what they should be: 0 when all files are; noManifest, manifestDamaged,
  // mediaDiffers, cancelled; 1 when nothing can be read there. A report is filled with 0 and with
  // mediaDiffers. Here: refused. The root may be that of a disc by its label, cd://label/, which is
  // asked for as requestMedia does; so in writeManifest.
  [[nodiscard]] virtual int checkMedia(const ZoFileName& root, ZoMediaReport* report = nullptr,
                                       const ZoMediaWatcher& watcher = {});
  // For who makes media: writes the manifest of what lies there now. Links are left out; a name
  // that no manifest can hold is refused. Here: refused.
  [[nodiscard]] virtual int writeManifest(const ZoFileName& root, const ZoString& label,
                                          const ZoMediaWatcher& watcher = {});
  // The root of the disc with a label, which the user is asked for until it is there; `cancelled`
  // when he gives up. Here: refused.
  [[nodiscard]] virtual int requestMedia(const ZoString& label, ZoFileName& root);
  // The key for manifests, which is copied; at first there is none, so that everybody can make a
  // manifest. Media that were checked are checked anew. Here: refused.
  [[nodiscard]] virtual int setMediaKey(const void* key, std::size_t size);
  // Who asks for a disc. Without one (at first, and again with {}) a message box does, which a
  // program without a user must replace. Here: refused.
  [[nodiscard]] virtual int setMediaPrompt(ZoMediaPrompt prompt);

  // ---- No slots ----
  [[nodiscard]] int open(const ZoFileName& name, ZoFile& file);  // to read; others may read, too
  [[nodiscard]] int open(const ZoFileName& name, ZoFile& file, int access);
  [[nodiscard]] int open(const ZoFileName& name, ZoFile& file, int access, int share) {
    return openFile(name, file, access, share);
  }
  // ZoFile, which need not be known here.
  template <class File, class Access, class Share = int>
  // NOLINTNEXTLINE(misc-redundant-expression): the check does not see the arguments differ
    requires(!File::template kMayBe<Access, typename File::Access> ||
             !File::template kMayBe<Share, typename File::Share>)
  int open(const ZoFileName&, File&, Access, Share = {}) = delete;  // access, then share
  // Labels as other libraries hold them.
  template <class Text>
    requires std::same_as<Text, std::wstring> || std::same_as<Text, std::wstring_view>
  [[nodiscard]] int writeManifest(const ZoFileName& root, const Text& label,
                                  const ZoMediaWatcher& watcher = {}) {
    return writeManifest(root, ZoString(label), watcher);
  }
  template <class Text>
    requires std::same_as<Text, std::wstring> || std::same_as<Text, std::wstring_view>
  [[nodiscard]] int requestMedia(const Text& label, ZoFileName& root) {
    return requestMedia(ZoString(label), root);
  }
  int checkMedia(std::nullptr_t, ZoMediaReport* = nullptr,
                 const ZoMediaWatcher& = {}) = delete;  // name the root
  template <class Label>
  int writeManifest(std::nullptr_t, const Label&,
                    const ZoMediaWatcher& = {}) = delete;  // name the root
  int writeManifest(const ZoFileName&, std::nullptr_t,
                    const ZoMediaWatcher& = {}) = delete;          // give the label
  int requestMedia(std::nullptr_t, ZoFileName&) = delete;          // give the label
  int setMediaKey(const void*, std::same_as<bool> auto) = delete;  // the key's bytes, and how many
  template <class T>
    requires std::same_as<T, wchar_t> || std::same_as<T, char16_t> || std::same_as<T, char32_t>
  int setMediaKey(const T*, std::integral auto) = delete;  // a key is bytes: give it in UTF-8
  template <class T>
    requires zoIsNoMediaWatcher<T>
  int checkMedia(const ZoFileName&, ZoMediaReport*, const T&) = delete;  // a watcher returns bool
  template <class T, class Label>
    requires zoIsNoMediaWatcher<T>
  int writeManifest(const ZoFileName&, const Label&, const T&) = delete;  // a watcher returns bool
  int open(const ZoFileName&) = delete;  // openDocument(name) opens it in the host
};
