// ZoArchive: how values are stored and read back, whatever they are stored in.
//
//   void Part::store(ZoArchive& archive) const { archive << name_ << length_ << material_; }
//   void Part::load(ZoArchive& archive) { archive >> name_ >> length_ >> material_; }
//
// The base class owns the layout of every type of value and brings all of them down to readBin and
// writeBin, which the archives supply: over memory (memory_archive.h), over a file
// (file_archive.h), over the host framework's archive (mfc_archive.h), or as text for the eye
// (dump_archive.h). An archive either stores or loads, for its whole life.
//
// The `name` of a write is a label: binary archives ignore it, the dump prints it. Composite values
// give their components the label "", but for the code of a vector along an axis.
//
// Reading trusts nothing: memory grows only as data arrives, and containers lie at most
// ZoVariant::kMaxDepth deep in one another. What happens when the data ends is the archive's
// choice: its readBin throws, or calls cameShort() and leaves the rest of its buffer alone. The
// base class then gives zeros and empty values and reads on no further in the value at hand;
// containers that lie too deep end a value likewise.
//
// Errors:  as the archive's readBin and writeBin report them; nothing else throws but
//          std::bad_alloc. A value whose reading throws is empty, zero or as it was.
// Threads: one thread at a time per archive.
// Cost:    two virtual calls for each number, unless the archive does better.
// Stored:  docs/formats/archive.md.
#pragma once

#include <zo/config.h>
#include <zo/platform_types.h>
#include <zo/variant/color.h>

#include <concepts>
#include <cstdint>
#include <type_traits>

class ZoCoSystem;
class ZoFileName;
class ZoHnd;
class ZoMatrix;
class ZoPlane;
class ZoPoint;
class ZoString;
class ZoTol;
class ZoVariant;
class ZoVector;

class ZO_COM_API ZoArchive {
 public:
  ZoArchive() = default;
  ZoArchive(const ZoArchive&) = default;
  ZoArchive(ZoArchive&&) = default;
  ZoArchive& operator=(const ZoArchive&) = default;
  ZoArchive& operator=(ZoArchive&&) = default;

  // The order of the virtual functions is part of the interface. (Visual Studio lays overloads of
  // one name out backwards; a build that must fit binaries of that compiler has to turn them.)
  virtual bool isStoring() = 0;
  virtual void flush();
  // A scope groups what is written up to its end, for archives that show it.
  virtual void pushScope(const wchar_t* name);
  virtual void popScope();

  // Exactly so many bytes.
  virtual void readBin(void* buffer, unsigned int size) = 0;
  virtual void read(_GUID& value);
  // The id as 4 bytes, although it is written as 8: the next 4 bytes are read as what follows. Kept
  // on purpose; stored data relies on where a reader stands.
  virtual void read(ZoHnd& value);
  virtual void read(ZoTol& value);
  // Axes that span nothing give the world's system at the world's origin.
  virtual void read(ZoCoSystem& value);
  virtual void read(ZoMatrix& value);
  // A plane that is none of the predefined ones comes back with the reference point nearest to the
  // origin and a unit normal.
  virtual void read(ZoPlane& value);
  virtual void read(ZoVector& value);
  virtual void read(ZoPoint& value);
  virtual void read(ZoFileName& value);
  // Of equal keys in a dictionary the first one stays. A sequence of code List is made as a list,
  // any other as an array.
  virtual void read(ZoVariant& value);
  virtual void read(ZoString& value);
  virtual void read(ZoColor& value);
  // Gives a new text, never null, which the caller frees with delete[]. What the pointer pointed to
  // before is not freed. Null after a throw.
  virtual void read(wchar_t*& value);
  virtual void read(double& value);
  virtual void read(std::int64_t& value);
  virtual void read(std::uint64_t& value);
  virtual void read(unsigned int& value);
  virtual void read(int& value);
  virtual void read(unsigned short& value);
  virtual void read(short& value);
  virtual void read(unsigned char& value);
  virtual void read(signed char& value);
  virtual void read(bool& value);  // true for any byte but 0

  virtual void writeBin(const void* data, unsigned int size, const wchar_t* name) = 0;
  virtual void write(const _GUID& value, const wchar_t* name);
  virtual void write(const ZoHnd& value, const wchar_t* name);
  virtual void write(const ZoTol& value, const wchar_t* name);
  virtual void write(const ZoCoSystem& value, const wchar_t* name);
  virtual void write(const ZoMatrix& value, const wchar_t* name);
  virtual void write(const ZoPlane& value, const wchar_t* name);
  virtual void write(const ZoVector& value, const wchar_t* name);
  virtual void write(const ZoPoint& value, const wchar_t* name);
  // A name of more than 65535 characters is cut there.
  virtual void write(const ZoFileName& value, const wchar_t* name);
  // A reference is written as its value, and a variant's text up to its first zero character.
  virtual void write(const ZoVariant& value, const wchar_t* name);
  virtual void write(const ZoString& value, const wchar_t* name);
  virtual void write(ZoColor& value, const wchar_t* name);
  virtual void write(const wchar_t* text, const wchar_t* name);  // null as an empty text
  virtual void write(double value, const wchar_t* name);
  virtual void write(std::int64_t value, const wchar_t* name);
  virtual void write(std::uint64_t value, const wchar_t* name);
  virtual void write(unsigned int value, const wchar_t* name);
  virtual void write(int value, const wchar_t* name);
  virtual void write(unsigned short value, const wchar_t* name);
  virtual void write(short value, const wchar_t* name);
  virtual void write(unsigned char value, const wchar_t* name);
  virtual void write(signed char value, const wchar_t* name);
  virtual void write(bool value, const wchar_t* name);

  // Whether texts are read as bytes in the ANSI code page. They are always written as UTF-16.
  [[nodiscard]] virtual bool needToConvertToUnicode() const;

 protected:
  // No archive is destroyed through this class.
  ~ZoArchive() = default;

  // Whether pointers in variants take 4 bytes, as the host's own filers have it.
  [[nodiscard]] virtual bool isdrftfilefiler() const;

  // For a readBin that got fewer bytes than it was asked for and does not throw.
  static void cameShort() noexcept;
};

static_assert(sizeof(ZoArchive) == sizeof(void*));

namespace zo {
// What has a write of its own. (A pointer would be taken for a bool.)
template <class T>
concept Archivable = requires(ZoArchive& archive, const T& value) { archive.write(value, L""); } &&
                     (!std::is_pointer_v<T> || std::convertible_to<T, const wchar_t*>);
}  // namespace zo

// Without labels.
template <zo::Archivable T>
ZoArchive& operator<<(ZoArchive& archive, const T& value) {
  archive.write(value, L"");
  return archive;
}
inline ZoArchive& operator<<(ZoArchive& archive, ZoColor value) {
  archive.write(value, L"");
  return archive;
}
template <class T>
  requires requires(ZoArchive& archive, T& value) { archive.read(value); }
ZoArchive& operator>>(ZoArchive& archive, T& value) {
  archive.read(value);
  return archive;
}
