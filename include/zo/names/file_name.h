// File names: one value for files, folders, network and disc paths and URLs. A name is split into
// its parts once, when it is set, and answers everything from them; nothing here asks a disk.
//
// Forms    the first that fits, from top to bottom (docs/file-names.md has it all as tables):
//            C:\dir\file.ext                drive; on request any character stands for the letter
//            cd://label/dir/file.ext        disc, "cd" in any case
//            scheme://authority/file.ext    URL: any other text with a colon
//            \\server\share\dir\file.ext   network
//            dir\file.ext, \dir\file.ext   plain
//          Around these: "name" is name without the quotes; mailto:... is kept whole and never
//          split; $macro'path (or $macro"path") is a path below what the macro stands for.
// Parts    drive, directory, fileName and extension, one after the other, are the path. Both \ and
//          / split, whatever the form, and stay as written. The last of them ends the directory,
//          which for disc, URL and network names includes the volume; the last dot behind it begins
//          the extension. Directory levels begin behind drive or volume.
// Volume   cd://label, scheme://authority, \\server\share, without the delimiter that follows.
//          volume() is empty for a network name; parseUNC gives it.
// Checks   run in this order; the first code that is not 0 is the result, and the parts stay:
//          7  a character below the blank or one of <>"| anywhere but in the drive; a colon but in
//             directory and file name of a URL; * or ? but in the directory of a URL, or, with
//             wildcards allowed, in file name and extension. The volume of a disc name is not
//             tested. The extension of a URL is tested like any other, on purpose: no colon.
//          7  a network name without a server, a disc name without a label, a URL whose scheme is
//             not a letter and then letters, digits, +, - or dots
//          8  file name and extension, taken together, end in a blank
//          9  they end in a dot: the extension is only a dot. But "." and ".." are accepted.
//          6  the path has 261 characters or more
//          A text that cannot be split leaves an empty name: 7 for an empty quoted name, text
//          behind the last quote, or a colon not followed by two delimiters; 1 for a $ that no
//          quote follows.
// Macros   With a macro, the whole name is the value that setMacro gave and then the path; while
//          the value is unknown it is $macro'path. A path below a macro begins with a delimiter. An
//          empty macro ($'path) is none.
//
// Errors:  operations that change a name return 0 or a code of zo/names/name_results.h; those
//          that always return 0 may go unlooked at. Only
//          std::bad_alloc is thrown, and then the name is as it was.
// Threads: copies share their parts, and the count of sharers is not atomic: one thread at a time
//          per name, and per group of copies. Give another thread a deepCopy().
// Cost:    copying is O(1); a change copies what is shared. Comparing copies is O(1).
// Case:    names compare ignoring case, unit by unit by the platform's invariant lower case: alike
//          in every locale, and for all letters.
#pragma once

#include <zo/config.h>
#include <zo/names/name_results.h>
#include <zo/names/name_text.h>
#include <zo/names/not_a_flag.h>
#include <zo/text/string.h>
#include <zo/text/text_forms.h>

#include <compare>
#include <concepts>
#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

class ZoFileNameImp;
template <class T>
class ZoSequence;

class ZO_COM_API ZoFileName {
 public:
  // Kinds of files, told by the extension in any case. Callers keep the numbers: never renumber.
  enum FileKind : unsigned int {
    kGdb = 0,
    kSldOrSle = 1,
    kSlg = 2,
    kSld = 3,
    kSlb = 4,
    kSle = 5,
    kDxf = 6,
    kDwg = 7,
    kGplOfFolder = 8,     // .gpl named like its first directory level
    kGplNotOfFolder = 9,  // .gpl with a first directory level of another name
    kGpl = 10,
    kVal = 11,
    kXls = 12,
    kMdb = 13,
    kValOrMdb = 14,  // not .xls, on purpose
    kMld = 15,
    kJpg = 16,
    kBmp = 17,
    kTga = 18,
    kG3p = 19,
    kSat = 20,
    kVgr = 21,
    kWsk = 22,
    kDmc = 23,
    kAnyFile = 24
  };

  // Texts are parsed with all options false; null counts as empty. What the parse found is to be
  // had from setFullName. Where a name is taken, std::wstring and std::filesystem::path are, too.
  ZoFileName();
  ZoFileName(std::nullptr_t) : ZoFileName() {}
  ZoFileName(const wchar_t* text);
  ZoFileName(const ZoString& text);
  explicit ZoFileName(std::wstring_view text);
  template <zo::NameSource Source>  // std::wstring, std::filesystem::path
  ZoFileName(const Source& source) : ZoFileName(std::wstring_view(zo::wideOf(source))) {}
  ZoFileName(const ZoFileName& other) noexcept;
  ZoFileName(ZoFileName&& other) noexcept;  // the other name is empty then
  virtual ~ZoFileName();

  ZoFileName& operator=(const ZoFileName& other) noexcept;
  ZoFileName& operator=(ZoFileName&& other) noexcept;
  ZoFileName& operator=(const wchar_t* text);
  ZoFileName& operator=(const ZoString& text);
  ZoFileName& operator=(std::wstring_view text);
  template <zo::NameSource Source>
  ZoFileName& operator=(const Source& source) {
    return *this = std::wstring_view(zo::wideOf(source));
  }
  void swap(ZoFileName& other) noexcept { std::swap(imp_, other.imp_); }

  // A name that shares nothing, with options, macro value and local alias: what another thread may
  // be given.
  [[nodiscard]] virtual ZoFileName deepCopy() const;

  // ---- The whole name ----
  // Replaces the name by a text, which is parsed. Options, which later changes of parts keep but
  // for asDirectory:
  // - ownDelimiters: write each \ and / as the delimiter of the name's form;
  // - asDirectory: the last component is a directory level, even if no delimiter ends it;
  // - wildcards: * and ? may stand in file name and extension;
  // - anyDrive: any character before a colon in second place is a drive.
  // The delimiter becomes / for URL and disc names and \ for all others; the local alias goes.
  [[nodiscard]] virtual int setFullName(const wchar_t* text, bool ownDelimiters = false,
                                        bool asDirectory = false, bool wildcards = false,
                                        bool anyDrive = false);
  [[nodiscard]] int setFullName(const zo::NameText& text, bool ownDelimiters = false,
                                bool asDirectory = false, bool wildcards = false,
                                bool anyDrive = false) {
    return setFullName(text.get(), ownDelimiters, asDirectory, wildcards, anyDrive);
  }
  template <class Text, class... Options>
    requires(zo::NotAFlag<Options> || ...)
  int setFullName(const Text&, const Options&...) = delete;  // one text: makePath joins texts
  virtual int empty();                                       // returns 0
  [[nodiscard]] virtual bool isEmpty() const noexcept;

  // Texts are valid until the name is changed or destroyed.
  [[nodiscard]] virtual const wchar_t* fullName() const noexcept;
  [[nodiscard]] virtual unsigned int fullNameSize() const noexcept;
  [[nodiscard]] virtual operator ZoString() const;
  [[nodiscard]] virtual operator const wchar_t*() const noexcept;
  // Makes std::wstring and std::filesystem::path, too. Where several conversions fit, say
  // name.view() or name.fullName().
  [[nodiscard]] std::wstring_view view() const noexcept { return {fullName(), fullNameSize()}; }
  operator std::wstring_view() const noexcept { return view(); }
  template <zo::WidePath Path>
  operator Path() const {
    return Path(std::wstring(view()));
  }
  // As a pointer the text is always true, and moves with a number.
  explicit operator bool() const = delete;  // write isEmpty()
  template <std::integral Number>
  friend void operator+(const ZoFileName& name, Number number) = delete;  // write name.view()
  // The character at that place of the whole name, 0 past its end.
  [[nodiscard]] virtual wchar_t operator[](unsigned int i) const noexcept;

  // Change the case of the whole name as ZoString does. Return 0.
  virtual int toLower();
  virtual int toUpper();

  // ---- Parts ----
  [[nodiscard]] virtual const wchar_t* drive() const noexcept;        // with its colon
  [[nodiscard]] virtual const wchar_t* directory() const noexcept;    // with its final delimiter
  [[nodiscard]] virtual const wchar_t* fileName() const noexcept;     // without extension
  [[nodiscard]] virtual const wchar_t* extension() const noexcept;    // with its dot
  [[nodiscard]] virtual const wchar_t* fileNameExt() const noexcept;  // both
  [[nodiscard]] virtual const wchar_t* macro() const noexcept;        // without $ and quote
  [[nodiscard]] virtual const wchar_t* volume() const noexcept;
  [[nodiscard]] virtual unsigned int volumePrefixLength() const noexcept;  // 0 for drive and plain

  // Replace one part, null or empty removing it, and parse the name that comes of it: the parts are
  // always those of the whole name, so that setFileName(L"a.b") on an empty name gives the
  // extension ".b". What is missing is added: the colon of a drive, the final delimiter of a
  // directory, the dot of an extension. A drive takes the place of a network, disc or URL volume; a
  // bare volume counts as a directory. The local alias goes.
  // Return the code of the parse. When it is 1, or 7 because the part has a character that may not
  // stand there, or no name comes of it, the name stays as it was.
  [[nodiscard]] virtual int setDrive(const wchar_t* text);
  [[nodiscard]] virtual int setDirectory(const wchar_t* text);
  [[nodiscard]] virtual int setFileName(const wchar_t* text);
  [[nodiscard]] virtual int setExtension(const wchar_t* text);
  [[nodiscard]] virtual int setFileNameExt(const wchar_t* text);
  // The name of all four at once, below the macro that the name has, if any.
  [[nodiscard]] virtual int makePath(const wchar_t* drive, const wchar_t* directory,
                                     const wchar_t* fileName, const wchar_t* extension);
  // The same from std::wstring, std::filesystem::path and std::wstring_view.
  [[nodiscard]] int setDrive(const zo::NameText& text) { return setDrive(text.get()); }
  [[nodiscard]] int setDirectory(const zo::NameText& text) { return setDirectory(text.get()); }
  [[nodiscard]] int setFileName(const zo::NameText& text) { return setFileName(text.get()); }
  [[nodiscard]] int setExtension(const zo::NameText& text) { return setExtension(text.get()); }
  [[nodiscard]] int setFileNameExt(const zo::NameText& text) { return setFileNameExt(text.get()); }
  [[nodiscard]] int makePath(const zo::NameText& drive, const zo::NameText& directory,
                             const zo::NameText& fileName, const zo::NameText& extension) {
    return makePath(drive.get(), directory.get(), fileName.get(), extension.get());
  }

  [[nodiscard]] virtual wchar_t delimiter() const noexcept;
  // Delimiter for levels that are added later; the text stays as it is. Returns 0.
  virtual int setDelimiter(wchar_t delimiter);
  [[nodiscard]] virtual wchar_t sysDelimiter() const noexcept;  // always the backslash

  // ---- Directory levels ----
  // Levels stand behind drive or volume; several delimiters in a row count as one.
  // Adds a level (or several, when the text holds delimiters) behind the last one; 1 when the text
  // is empty but for delimiters, 7 as with setDirectory.
  [[nodiscard]] virtual int appendDirectory(const wchar_t* text);
  [[nodiscard]] int appendDirectory(const zo::NameText& text) {
    return appendDirectory(text.get());
  }
  [[nodiscard]] virtual int removeLastDir();  // 1 when there is no level
  // All levels in order, in the place of what the sequence held. Returns the code of the sequence
  // when that refuses or has no memory.
  [[nodiscard]] virtual int getDirParts(ZoSequence<ZoString>& levels) const;
  // The levels one by one, null behind the last; true starts again. The text is valid until the
  // next call or change. The place in the walk belongs to the name: copies walk on their own, and
  // any change starts again.
  virtual const wchar_t* nextDirPart(bool restart = false);

  // ---- Macro ----
  // Puts the name below the macro: a name that begins with value's levels gets the macro in their
  // place, a plain one or one that has a macro is taken as the path below it. A null or empty value
  // is unknown. 1 without a macro name, or for any other absolute name; 7 when the macro name holds
  // an apostrophe. The name then stays as it was.
  [[nodiscard]] virtual int setMacro(const wchar_t* macro, const wchar_t* value);
  [[nodiscard]] int setMacro(const zo::NameText& macro, const zo::NameText& value) {
    return setMacro(macro.get(), value.get());
  }
  // Removes the macro and puts a text in its place: null stands for the value that setMacro gave,
  // and an empty text leaves the path alone. 1 without a macro.
  [[nodiscard]] virtual int resetMacro(const wchar_t* text = nullptr);
  [[nodiscard]] int resetMacro(const zo::NameText& text) { return resetMacro(text.get()); }
  [[nodiscard]] virtual bool hasMacro() const noexcept;

  // ---- Local alias ----
  // Name of a local substitute file. An empty name removes it. Returns 0. Every other change of the
  // name but that of case or delimiter removes it, too.
  virtual int setLocalAlias(const ZoFileName& alias);
  // 0 and a new name, which the caller deletes; 1 and null when there is none.
  [[nodiscard]] virtual int getLocalAlias(ZoFileName*& alias) const;
  [[nodiscard]] ZoFileName localAlias() const;  // empty when there is none

  // ---- Questions ----
  [[nodiscard]] virtual bool isDirectory() const noexcept;   // neither file name nor extension
  [[nodiscard]] virtual bool hasDirectory() const noexcept;  // the directory part is not empty
  // Neither drive nor macro, and no URL, network or disc name. So \dir is relative, and mailto:
  // too.
  [[nodiscard]] virtual bool isRelativ() const noexcept;
  [[nodiscard]] virtual bool isURL() const noexcept;
  [[nodiscard]] virtual bool isUNC() const noexcept;
  [[nodiscard]] virtual bool isCD() const noexcept;
  // Whether a text can be split, with this name's options, and holds no forbidden character; null
  // stands for the name itself.
  [[nodiscard]] virtual bool isValid(const wchar_t* text = nullptr) const;
  [[nodiscard]] bool isValid(const zo::NameText& text) const { return isValid(text.get()); }
  [[nodiscard]] virtual bool hasWildcards() const noexcept;  // ? or * in file name or extension
  // Whether a file of this name can be there, as far as its text tells: not empty, no forbidden
  // character or wildcard, the volume complete; and, but in a URL, each component at most 255
  // characters, no device name, without a blank or dot at its end. Long paths are possible.
  [[nodiscard]] virtual bool possibleOnVolume() const noexcept;
  // Whether the ANSI code page holds each character of the whole name.
  [[nodiscard]] virtual bool isAnsi() const noexcept;
  // Whether any component, but of a URL, is what the platform takes for a device: con, prn, aux,
  // nul, com1 to com9, lpt1 to lpt9 (with superscripts, too), conin$, conout$, clock$, whatever
  // their extension.
  [[nodiscard]] virtual bool hasDeviceName() const noexcept;
  // Whether the name stays inside every folder that it is put below: plain, not rooted, never above
  // its start, each component kept by the platform as it is written. Ask this before a name from
  // outside decides where to write.
  [[nodiscard]] virtual bool isContained() const noexcept;

  [[nodiscard]] virtual bool isKindOf(FileKind kind) const noexcept;  // false above kAnyFile
  [[nodiscard]] virtual FileKind isKindOf() const noexcept;           // the smallest that matches

  // ---- Splitting the whole name ----
  // 1 when the name is no URL, and then nothing is changed. protocol becomes 0 for ftp, 1 for http,
  // 2 for gopher, whatever follows these letters, and else stays as it was. The authority lies
  // between :// and the next /, from which the path runs to the end. Up to a colon in the authority
  // it is the user; from there to an @ it is the password, and behind that the host, whose port is
  // dropped. Without the @ a port is not told from a password: the whole authority is the host, and
  // its beginning is the user, too. On purpose; callers rely on it.
  [[nodiscard]] virtual int parseURL(int& protocol, ZoString& host, ZoString& path, ZoString& user,
                                     ZoString& password) const;
  [[nodiscard]] virtual int parseURL(int& protocol, ZoString& host, ZoString& path,
                                     ZoString& user) const;
  [[nodiscard]] virtual int parseURL(int& protocol, ZoString& host, ZoString& path) const;
  [[nodiscard]] virtual int parseURL(int& protocol, ZoString& host) const;
  // The first volumePrefixLength() characters of the path, and the rest of it with its first
  // delimiter. 1 when the name is no network or no disc name, and then nothing is changed.
  [[nodiscard]] virtual int parseUNC(ZoString& volume, ZoString& rest) const;
  [[nodiscard]] virtual int parseCD(ZoString& volume, ZoString& rest) const;

  // ---- Names computed from texts alone; the disk is never asked ----
  // Without levels "." and, as far as a level precedes them, ".."; at a root, ".." goes. Delimiters
  // are those of the form, one at a time. What becomes nothing is ".\".
  [[nodiscard]] ZoFileName normalized() const;
  // How this name is reached from the directory (not the file) of base: a plain name, for which
  // resolvedAgainst(base) gives normalized() again. When there is none, as from one drive to the
  // other, it is normalized() itself.
  [[nodiscard]] ZoFileName relativeTo(const ZoFileName& base) const;
  // A plain name as seen from the directory of base, normalized; \dir takes drive or volume from
  // base, C:file is seen from a base on that drive. Any other name is just normalized.
  [[nodiscard]] ZoFileName resolvedAgainst(const ZoFileName& base) const;

  // ---- Comparing whole names: an empty one precedes all others ----
  [[nodiscard]] virtual bool isEqual(const ZoFileName& other,
                                     bool caseSensitive = false) const noexcept;
  template <zo::NotAFlag T>
  bool isEqual(const ZoFileName& other, const T& caseSensitive) const = delete;  // true or false
  [[nodiscard]] virtual bool operator==(const ZoFileName& other) const noexcept;
  [[nodiscard]] virtual bool operator<(const ZoFileName& other) const noexcept;
  [[nodiscard]] virtual bool operator>(const ZoFileName& other) const noexcept;
  [[nodiscard]] std::weak_ordering operator<=>(const ZoFileName& other) const noexcept;
  // With the text as it stands, which is not parsed.
  [[nodiscard]] bool operator==(std::wstring_view text) const noexcept;
  [[nodiscard]] bool operator==(const ZoString& text) const noexcept {
    return *this == text.view();
  }
  template <zo::NameSource Source>
  [[nodiscard]] bool operator==(const Source& source) const noexcept {
    return *this == std::wstring_view(zo::wideOf(source));
  }
  [[nodiscard]] bool operator==(const wchar_t* text) const noexcept {
    return *this == (text ? std::wstring_view(text) : std::wstring_view());
  }
  // Agrees with operator==.
  [[nodiscard]] virtual std::size_t hash() const noexcept;

  friend ZO_COM_API std::wostream& operator<<(std::wostream& out, const ZoFileName& name);

 private:
  explicit ZoFileName(ZoFileNameImp* imp) noexcept : imp_(imp) {}
  // The implementation, held by this name alone.
  ZoFileNameImp& own();

  ZoFileNameImp* imp_;
};

static_assert(sizeof(ZoFileName) == 2 * sizeof(void*));

inline void swap(ZoFileName& a, ZoFileName& b) noexcept { a.swap(b); }

template <>
struct std::hash<ZoFileName> {
  size_t operator()(const ZoFileName& name) const noexcept { return name.hash(); }
};
