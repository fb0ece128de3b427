// The library for other compilers and other languages: plain C11, from the same DLL.
//
//   ZocValue part = NULL;
//   ZocString text = NULL;
//   if (zocAttach() != 0) return 1;
//   if (zocValueNew(&part) == 0 && zocStringNew(&text) == 0 &&
//       zocValuePutReal(part, zocUtf8("screw/length"), 12.5, ZOC_LENGTH) == 0 &&
//       zocValueFormat(part, text) == 0)
//     puts(zocStringUtf8(text));
//   zocDetach();  // closes what is still open
//
// No exception, stream, allocation or class passes this border, so nothing needs the runtime that
// the library was built with. docs/c-interface.md explains it and has longer examples.
//
// Handles  are values, never addresses. Each use is checked: null, closed and made-up handles give
//          ZOC_BAD_HANDLE, one of another kind ZOC_WRONG_HANDLE. Who makes one closes it by
//          zocClose. Handles share nothing: what is put into a value is copied.
// Texts    that are given may be UTF-8 or UTF-16 and are read during the call. What is no UTF-8
//          becomes U+FFFD. Texts come back in a ZocString that the caller made, in both forms.
// Bytes    with a size are taken for as many as that says. ZOC_BAD_ARGUMENT only where there cannot
//          be so many: null with a size, or one that ends behind all memory of programs.
//
// Errors:  0 success. Codes from ZOC_BAD_HANDLE on are this interface's; ZOC_OUT_OF_MEMORY and all
//          others are those of the library's family, as docs/results.md lists them:
//          zocResultText tells. After an error, out-parameters and objects are as they were, but
//          for handles, which are null. Every function but zocAttach, zocVersion and the two that
//          give a ZocString's characters answers ZOC_NOT_ATTACHED while nobody has attached.
// Threads: any. A library may be used by several at once. A string, value or archive that another
//          thread is using at the moment answers ZOC_WRONG_THREAD, and so does closing a library
//          that another thread opened for writing.
// Cost:    a handle is looked up under a lock in each call.
#ifndef ZO_C_H
#define ZO_C_H

#include <stddef.h>
#include <stdint.h>

#if !defined(_WIN32) || defined(ZO_COM_STATIC)
#define ZOC_API
#elif defined(ZO_COM_BUILD)
#define ZOC_API __declspec(dllexport)
#else
#define ZOC_API __declspec(dllimport)
#endif

#ifdef __cplusplus
#define ZOC_NOEXCEPT noexcept
extern "C" {
#else
#define ZOC_NOEXCEPT
#endif

// ---- Result codes ----

enum {
  ZOC_OK = 0,
  ZOC_REFUSED = 1,  // not found, failed: the library's family says more
  ZOC_OUT_OF_MEMORY = 2,

  ZOC_BAD_HANDLE = 901,    // null, closed, or never given
  ZOC_WRONG_HANDLE = 902,  // of another kind; an archive of the other direction
  ZOC_WRONG_THREAD = 903,  // another thread is using it, or has to close it
  ZOC_BAD_ARGUMENT = 904,  // a null pointer; a number, code or encoding that is none; too long
  ZOC_NOT_ATTACHED = 905,
  ZOC_ENDED = 906,       // the data of an archive ended
  ZOC_FAILURE = 907,     // an exception that the library did not foresee
  ZOC_IN_BATCH = 908,    // what a batch that is open does not allow
  ZOC_NO_BATCH = 909,    // none is open
  ZOC_NO_LIBRARY = 910,  // the file is there, and is no library
};

// Families of codes, for zocResultText.
enum {
  ZOC_FAMILY_COMMON = 0,
  ZOC_FAMILY_NUMBERS = 1,  // zocUnits...
  ZOC_FAMILY_VALUES = 3,
  ZOC_FAMILY_LIBRARIES = 8,
  ZOC_FAMILY_MESSAGES = 18,
};

// ---- Handles and texts ----

typedef struct ZocString_* ZocString;    // a text that the library gives
typedef struct ZocValue_* ZocValue;      // a value, or a whole tree of them
typedef struct ZocArchive_* ZocArchive;  // stored values in memory, written or read
typedef struct ZocLibrary_* ZocLibrary;  // many files in one

enum { ZOC_UTF8 = 1, ZOC_UTF16 = 2 };
#define ZOC_TERMINATED 0xFFFFFFFFu

// A text that is given. Without units it is empty, whatever the rest says.
typedef struct ZocText {
  const void* units;
  uint32_t length;    // in units of the encoding; ZOC_TERMINATED: up to a zero
  uint32_t encoding;  // ZOC_UTF8 or ZOC_UTF16
} ZocText;

static inline ZocText zocUtf8(const char* text) {
  ZocText result;
  result.units = text;
  result.length = ZOC_TERMINATED;
  result.encoding = ZOC_UTF8;
  return result;
}
static inline ZocText zocUtf16(const wchar_t* text) {
  ZocText result;
  result.units = text;
  result.length = ZOC_TERMINATED;
  result.encoding = ZOC_UTF16;
  return result;
}

// ---- Start, end, and what all share ----

// As zoComDllAttach: 0; or 1 when the process has attached the library already: use it then, and
// leave the end to whoever attached. From one thread.
ZOC_API int zocAttach(void) ZOC_NOEXCEPT;
// Closes all handles, then as zoComDllDetach. From one thread, while no other uses the library.
ZOC_API int zocDetach(void) ZOC_NOEXCEPT;
// Major, minor and patch number in 0x00MMmmpp, of the DLL.
ZOC_API uint32_t zocVersion(void) ZOC_NOEXCEPT;

// Any handle; it is invalid afterwards, also where a library's close fails: the code is that of
// ZoLibrary::close. ZOC_WRONG_THREAD closes nothing.
ZOC_API int zocClose(void* handle) ZOC_NOEXCEPT;

// A sentence for a code that a function of the family gave, in the user's language where the
// message file "zoresult" is loaded. Codes of this interface have theirs with any family; with
// others a family that is none is ZOC_BAD_ARGUMENT.
ZOC_API int zocResultText(int code, int family, ZocString out) ZOC_NOEXCEPT;
// What the platform said of the last failure of a file or library.
ZOC_API int zocPlatformText(ZocString out) ZOC_NOEXCEPT;

// An empty string. One can serve for all texts of a thread, one after the other.
ZOC_API int zocStringNew(ZocString* out) ZOC_NOEXCEPT;
// The characters with a zero behind them, valid until the string is filled anew or closed; zeros
// within the text are kept. Null for what is no string, and for want of memory.
ZOC_API const char* zocStringUtf8(ZocString text) ZOC_NOEXCEPT;
ZOC_API const wchar_t* zocStringUtf16(ZocString text) ZOC_NOEXCEPT;
// The number of units in each form, without the zero behind them; either pointer may be null.
ZOC_API int zocStringLength(ZocString text, size_t* utf8, size_t* utf16) ZOC_NOEXCEPT;

// ---- Values ----
//
// A value has a kind, a type code that says what it means, flags, and perhaps elements. `path`
// names an element: keys and positions with '/' between them, "parts/3/length"; in a key "~1"
// stands for '/' and "~0" for '~'. The empty path is the value itself. ZOC_REFUSED where a path
// leads nowhere.

enum {
  ZOC_EMPTY = 0,
  ZOC_INT = 1,
  ZOC_BIG_INT = 2,
  ZOC_REAL = 3,
  ZOC_STRING = 4,
  ZOC_POINTER = 5,
  ZOC_POINT = 6,
  ZOC_VECTOR = 7,
  ZOC_DICT = 8,
  ZOC_SEQUENCE = 9,
  ZOC_GUID = 10,
};

// Some type codes; zo/variant/type_code.h has all. Any number that goes with the kind is taken.
enum {
  ZOC_PLAIN = 0,  // the code of the kind itself
  ZOC_LENGTH = 0x2301,
  ZOC_ANGLE = 0x2302,
  ZOC_MASS = 0x2304,
  ZOC_FORCE = 0x2307,
  ZOC_PRESSURE = 0x2309,
};

typedef struct ZocValueInfo {
  uint32_t kind;
  uint32_t code;
  uint32_t flags;
  uint32_t entries;  // 0 for kinds without elements
} ZocValueInfo;

ZOC_API int zocValueNew(ZocValue* out) ZOC_NOEXCEPT;  // empty
// The text form of the whole value (docs/variant.md). `errorAt` may be null; it receives the
// position, in UTF-16 units, of what is wrong, with ZOC_REFUSED.
ZOC_API int zocValueParse(ZocValue value, ZocText text, uint32_t* errorAt) ZOC_NOEXCEPT;
ZOC_API int zocValueFormat(ZocValue value, ZocString out) ZOC_NOEXCEPT;
// Whether kind, code, flags and value are the same: 1 or 0.
ZOC_API int zocValueEqual(ZocValue a, ZocValue b, int* equal) ZOC_NOEXCEPT;
ZOC_API int zocValueInfo(ZocValue value, ZocText path, ZocValueInfo* out) ZOC_NOEXCEPT;

// Converted where that makes sense, ZOC_REFUSED otherwise.
ZOC_API int zocValueGetInt(ZocValue value, ZocText path, int64_t* out) ZOC_NOEXCEPT;
ZOC_API int zocValueGetReal(ZocValue value, ZocText path, double* out) ZOC_NOEXCEPT;
ZOC_API int zocValueGetText(ZocValue value, ZocText path, ZocString out) ZOC_NOEXCEPT;
// Of a point or a vector, three numbers.
ZOC_API int zocValueGetTriple(ZocValue value, ZocText path, double* out) ZOC_NOEXCEPT;
ZOC_API int zocValueGet(ZocValue value, ZocText path, ZocValue out) ZOC_NOEXCEPT;  // a copy
// The keys of a dictionary as a sequence of texts; out may be the value itself.
ZOC_API int zocValueKeys(ZocValue value, ZocText path, ZocValue out) ZOC_NOEXCEPT;

// Replace what is there; what is missing on the way is made. A code that does not go with the kind
// is ZOC_BAD_ARGUMENT. An integer takes the kind of its code, and with ZOC_PLAIN the smaller one
// that holds it; three numbers are a point where the code says nothing else.
ZOC_API int zocValuePutInt(ZocValue value, ZocText path, int64_t number,
                           uint32_t code) ZOC_NOEXCEPT;
ZOC_API int zocValuePutReal(ZocValue value, ZocText path, double number,
                            uint32_t code) ZOC_NOEXCEPT;
ZOC_API int zocValuePutText(ZocValue value, ZocText path, ZocText text, uint32_t code) ZOC_NOEXCEPT;
ZOC_API int zocValuePutTriple(ZocValue value, ZocText path, const double* numbers,
                              uint32_t code) ZOC_NOEXCEPT;
ZOC_API int zocValuePut(ZocValue value, ZocText path, ZocValue element) ZOC_NOEXCEPT;  // a copy
// The kind's zero value: an empty sequence or dictionary, 0, an empty text.
ZOC_API int zocValuePutKind(ZocValue value, ZocText path, uint32_t kind,
                            uint32_t code) ZOC_NOEXCEPT;
// Bits 0 to 25; higher ones are ZOC_BAD_ARGUMENT.
ZOC_API int zocValueSetFlags(ZocValue value, ZocText path, uint32_t flags) ZOC_NOEXCEPT;
// Takes an entry out of the dictionary, or an element out of the sequence, at the path.
ZOC_API int zocValueRemoveKey(ZocValue value, ZocText path, ZocText key) ZOC_NOEXCEPT;
ZOC_API int zocValueRemoveAt(ZocValue value, ZocText path, uint32_t position) ZOC_NOEXCEPT;

// ---- Archives: values as bytes, in the format of docs/formats/archive.md ----

ZOC_API int zocArchiveNew(ZocArchive* out) ZOC_NOEXCEPT;  // to be written
// To be read; the bytes are copied. Nothing in them is trusted.
ZOC_API int zocArchiveLoad(const void* bytes, size_t size, ZocArchive* out) ZOC_NOEXCEPT;
// What was written so far; valid until the next write, or until it is closed.
ZOC_API int zocArchiveBytes(ZocArchive archive, const void** bytes, size_t* size) ZOC_NOEXCEPT;
ZOC_API int zocArchiveRest(ZocArchive archive, size_t* size) ZOC_NOEXCEPT;  // bytes left to read

ZOC_API int zocArchiveWriteValue(ZocArchive archive, ZocValue value) ZOC_NOEXCEPT;
ZOC_API int zocArchiveWriteText(ZocArchive archive, ZocText text) ZOC_NOEXCEPT;
ZOC_API int zocArchiveWriteInt(ZocArchive archive, int32_t number) ZOC_NOEXCEPT;
ZOC_API int zocArchiveWriteBigInt(ZocArchive archive, int64_t number) ZOC_NOEXCEPT;
ZOC_API int zocArchiveWriteReal(ZocArchive archive, double number) ZOC_NOEXCEPT;
ZOC_API int zocArchiveWriteRaw(ZocArchive archive, const void* bytes, uint32_t size) ZOC_NOEXCEPT;

// Read what was written, in the same order and by the same types. ZOC_ENDED where the data ends or
// is no such value: the archive is then of no more use.
ZOC_API int zocArchiveReadValue(ZocArchive archive, ZocValue out) ZOC_NOEXCEPT;
ZOC_API int zocArchiveReadText(ZocArchive archive, ZocString out) ZOC_NOEXCEPT;
ZOC_API int zocArchiveReadInt(ZocArchive archive, int32_t* out) ZOC_NOEXCEPT;
ZOC_API int zocArchiveReadBigInt(ZocArchive archive, int64_t* out) ZOC_NOEXCEPT;
ZOC_API int zocArchiveReadReal(ZocArchive archive, double* out) ZOC_NOEXCEPT;
ZOC_API int zocArchiveReadRaw(ZocArchive archive, void* bytes, uint32_t size) ZOC_NOEXCEPT;

// ---- Units: docs/units.md ----

// In the format that all modules share for the code's quantity.
ZOC_API int zocUnitsPrint(double number, uint32_t code, ZocString out) ZOC_NOEXCEPT;
ZOC_API int zocUnitsParse(ZocText text, uint32_t code, double* out) ZOC_NOEXCEPT;
// From one unit into another of the code's quantity; an empty name is the internal unit.
ZOC_API int zocUnitsConvert(double number, uint32_t code, ZocText from, ZocText to,
                            double* out) ZOC_NOEXCEPT;
// Prints the code's quantity, for all modules, as decimals in a unit with so many digits behind the
// decimal character (-1: all that there are).
ZOC_API int zocUnitsSetFormat(uint32_t code, ZocText unit, int precision) ZOC_NOEXCEPT;

// ---- Messages: docs/messages.md ----

// Until the module is released.
ZOC_API int zocMessageLoad(ZocText file, ZocText module) ZOC_NOEXCEPT;
// The most wanted one first, with commas or blanks between; empty: the user's own.
ZOC_API int zocMessageSetLanguages(ZocText languages) ZOC_NOEXCEPT;
// The text with its arguments: a sequence, or null for none. Code 4 of the family: the text was
// given, but a place in it could not be filled in.
ZOC_API int zocMessageFormat(ZocText file, int number, ZocValue arguments,
                             ZocString out) ZOC_NOEXCEPT;

// ---- Libraries: docs/formats/library.md ----

enum { ZOC_READ = 0, ZOC_WRITE = 1, ZOC_CREATE = 2 };  // an existing one; made where missing
enum { ZOC_STORE = 0, ZOC_COMPRESS = 1, ZOC_AUTOMATIC = 2 };

// ZOC_WRITE and ZOC_CREATE wait at most five seconds for another writer; code 1005 then. An empty
// file becomes a library when it is opened for writing; any other file that does not begin as one
// does stays as it is: ZOC_NO_LIBRARY.
ZOC_API int zocLibraryOpen(ZocText name, int access, ZocLibrary* out) ZOC_NOEXCEPT;
ZOC_API int zocLibraryAddFile(ZocLibrary library, ZocText source, ZocText member, int replace,
                              int mode) ZOC_NOEXCEPT;
ZOC_API int zocLibraryExtract(ZocLibrary library, ZocText member, ZocText target) ZOC_NOEXCEPT;
ZOC_API int zocLibraryRename(ZocLibrary library, ZocText member, ZocText newName) ZOC_NOEXCEPT;
ZOC_API int zocLibraryDelete(ZocLibrary library, ZocText member) ZOC_NOEXCEPT;  // by a mark
ZOC_API int zocLibraryRecover(ZocLibrary library, ZocText member) ZOC_NOEXCEPT;
ZOC_API int zocLibraryReorganize(ZocLibrary library) ZOC_NOEXCEPT;  // drops what is deleted
ZOC_API int zocLibraryVerify(ZocLibrary library, ZocText member) ZOC_NOEXCEPT;
// What zocLibraryAddFile and zocLibraryWrite add between the first two, on whatever thread, becomes
// visible in one step (in several, where it replaces tens of thousands). Until then every other
// change, a second member of a name and another begin change nothing and answer ZOC_IN_BATCH.
// Whatever the other two answer, no batch is open then; ZOC_NO_BATCH where none was. Closing the
// library ends a batch, too.
ZOC_API int zocLibraryBeginBatch(ZocLibrary library) ZOC_NOEXCEPT;
ZOC_API int zocLibraryEndBatch(ZocLibrary library) ZOC_NOEXCEPT;
ZOC_API int zocLibraryCancelBatch(ZocLibrary library) ZOC_NOEXCEPT;  // none of it is added

// A sequence with a dictionary for each member: "name", "size", "stored" (bytes in the library),
// "written" (100 ns since 1601, UTC), "deleted", "compressed".
ZOC_API int zocLibraryList(ZocLibrary library, int withDeleted, ZocValue out) ZOC_NOEXCEPT;
// The bytes of a member.
ZOC_API int zocLibrarySize(ZocLibrary library, ZocText member, uint64_t* size) ZOC_NOEXCEPT;
// As many from `offset` on as there are, at most `size`; `got` receives their number. They are read
// in place and no check value is looked at: damage can go unseen. zocLibraryVerify finds it.
ZOC_API int zocLibraryRead(ZocLibrary library, ZocText member, uint64_t offset, void* bytes,
                           uint32_t size, uint32_t* got) ZOC_NOEXCEPT;
// A member out of memory, replacing what has its name.
ZOC_API int zocLibraryWrite(ZocLibrary library, ZocText member, const void* bytes, uint32_t size,
                            int mode) ZOC_NOEXCEPT;

#ifdef __cplusplus
}  // extern "C"
#endif

#endif
