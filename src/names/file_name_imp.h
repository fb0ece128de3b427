// What a ZoFileName stands on: the parts of a name and the operations on them. Operations have the
// names and contracts of zo/names/file_name.h; names that share one count themselves as holders.
#pragma once

#include <zo/names/file_name.h>

#include <string>
#include <string_view>

#include "names/name_parser.h"
#include "names/name_texts.h"

class ZoFileNameImp {
 public:
  ZoFileNameImp() noexcept = default;
  // Parsed with all options false.
  explicit ZoFileNameImp(std::wstring_view text) { static_cast<void>(parse(text, {}, false)); }
  // The same name for a holder of its own.
  ZoFileNameImp(const ZoFileNameImp& other) noexcept : state_(other.state_) {}
  ZoFileNameImp& operator=(const ZoFileNameImp&) = delete;

  // The name of all empty and moved-from handles: counts no holders, is never changed or freed.
  [[nodiscard]] static ZoFileNameImp* emptyName() noexcept;
  void addHolder() noexcept {
    if (holders_ != kNotCounted) ++holders_;
  }
  // Frees the name with its last holder.
  void removeHolder() noexcept {
    if (holders_ == kNotCounted) return;
    --holders_;
    if (holders_ == 0) delete this;
  }
  [[nodiscard]] bool isShared() const noexcept { return holders_ != 1; }

  // ---- Changing: all or nothing, should memory end ----
  int parse(std::wstring_view text, const zo::NameOptions& options, bool asDirectory);
  int empty() noexcept;
  int toLower();
  int toUpper();
  int setDrive(const wchar_t* text);
  int setDirectory(const wchar_t* text);
  int setFileName(const wchar_t* text);
  int setExtension(const wchar_t* text);
  int setFileNameExt(const wchar_t* text);
  int makePath(const wchar_t* drive, const wchar_t* directory, const wchar_t* fileName,
               const wchar_t* extension);
  int setDelimiter(wchar_t delimiter) noexcept;
  int appendDirectory(const wchar_t* text);
  int removeLastDir();
  const wchar_t* nextDirPart(bool restart);
  int setMacro(const wchar_t* macro, const wchar_t* value);
  int resetMacro(const wchar_t* text);
  int setLocalAlias(const ZoString& alias) noexcept;
  // Takes a whole name that was computed from this one and keeps what parsing does not tell: the
  // macro's value, and the delimiter of a plain name. Changes nothing when no name comes of it.
  int retake(std::wstring_view text);
  // Options and macro value of the name that this one is going to lie below.
  void moveBelow(const ZoFileNameImp& base) noexcept;
  void unshareTexts();

  // ---- Asking ----
  [[nodiscard]] const ZoString& fullName() const noexcept { return state_.whole; }
  // All end with a zero.
  [[nodiscard]] std::wstring_view drive() const noexcept { return state_.parts[Texts::kDrive]; }
  [[nodiscard]] std::wstring_view directory() const noexcept {
    return state_.parts[Texts::kDirectory];
  }
  [[nodiscard]] std::wstring_view fileName() const noexcept {
    return state_.parts[Texts::kFileName];
  }
  [[nodiscard]] std::wstring_view extension() const noexcept {
    return state_.parts[Texts::kExtension];
  }
  [[nodiscard]] std::wstring_view macro() const noexcept { return state_.parts[Texts::kMacro]; }
  [[nodiscard]] std::wstring_view volume() const noexcept { return state_.parts[Texts::kVolume]; }
  [[nodiscard]] const wchar_t* fileNameExt() const noexcept;
  [[nodiscard]] unsigned int volumePrefixLength() const noexcept {
    return state_.volumePrefixLength;
  }
  [[nodiscard]] wchar_t delimiter() const noexcept { return state_.delimiter; }
  [[nodiscard]] const ZoString& localAlias() const noexcept { return state_.localAlias; }
  [[nodiscard]] bool isURL() const noexcept { return state_.isURL; }
  [[nodiscard]] bool isUNC() const noexcept { return state_.isUNC; }
  [[nodiscard]] bool isCD() const noexcept { return state_.isCD; }
  [[nodiscard]] bool isRelativ() const noexcept;
  [[nodiscard]] bool isValid(const wchar_t* text) const;
  [[nodiscard]] bool isAnsi() const noexcept;
  [[nodiscard]] bool hasDeviceName() const noexcept;
  [[nodiscard]] bool isKindOf(ZoFileName::FileKind kind) const noexcept;
  [[nodiscard]] ZoFileName::FileKind isKindOf() const noexcept;
  int getDirParts(ZoSequence<ZoString>& levels) const;
  int parseUNC(ZoString& volume, ZoString& rest) const;
  int parseCD(ZoString& volume, ZoString& rest) const;

  // The stored parts as views; result is 0.
  [[nodiscard]] zo::NameParts parts() const noexcept;

 private:
  using Texts = zo::NameTexts;
  struct State {
    ZoString whole;    // with the macro's value in its place, where it is known
    ZoString written;  // composed from macro and parts, where that is another text; else empty
    Texts parts;
    wchar_t delimiter = L'\\';
    bool isURL = false;
    bool isUNC = false;
    bool isCD = false;
    bool hasDriveLetter = false;
    unsigned int volumePrefixLength = 0;
    ZoString localAlias;
    zo::NameOptions options;
    ZoString macroValue;  // empty while it is unknown
    ZoString level;       // what nextDirPart gave last
    size_t nextLevel = 0;
  };
  struct Pieces;
  static constexpr unsigned int kNotCounted = 0;

  explicit ZoFileNameImp(unsigned int holders) noexcept : holders_(holders) {}

  // All of them anew but the options; all or nothing, should memory end. The texts are not this
  // name's own.
  void assign(zo::NameParts name, const ZoString& macroValue);
  [[nodiscard]] bool isOwnText(std::wstring_view text) const noexcept;
  [[nodiscard]] std::wstring_view path() const noexcept;
  [[nodiscard]] Pieces pieces() const;
  int recompose(const Pieces& pieces);
  template <class Change>
  int changeCase(Change change);
  int splitVolume(bool isOfForm, ZoString& volume, ZoString& rest) const;
  [[nodiscard]] bool isGplOfFolder(bool sameName) const noexcept;

  State state_;
  unsigned int holders_ = 1;
};
