// The host toolkit's registry class, or a stand-in for it with just the calls that the library
// makes. A build with ZO_WITH_SEC_REGISTRY takes the toolkit's own; what follows is the stand-in.
//
// An object connects to a root key, has at most one key under it open, and works on that one. Paths
// go from the root and part their levels by '\'; empty levels count for nothing, wherever they
// stand. Value names are taken as they are; null and the empty text name a key's unnamed value.
//
// The names and the order of the parameters are the toolkit's. The one difference: where the
// toolkit fills a CString, this fills a ZoString.
//
// Errors:  false when the platform refused; GetLastError() says why. Without a connection, or
//          without an open key where one is needed: false and ERROR_INVALID_HANDLE. Nothing throws
//          but std::bad_alloc.
// Threads: one thread at a time per object. Other objects and processes may change the registry at
//          any moment.
// Cost:    one call of the platform each.
#pragma once

#include <zo/config.h>
#include <zo/platform_types.h>
#include <zo/text/string.h>

#include <string_view>

#if defined(ZO_WITH_SEC_REGISTRY)

#include ZO_SEC_REGISTRY_HEADER

namespace zo {
using RegistryText = CString;
inline std::wstring_view viewOf(const RegistryText& text) {
  return {text.GetString(), static_cast<size_t>(text.GetLength())};
}
}  // namespace zo

#else

class ZO_COM_API SECRegistry {
 public:
  // The platform's numbers. Others occur.
  enum KeyValueTypes : unsigned long {
    typeNone = 0,
    typeString = 1,
    typeUnexpandedString = 2,
    typeBinary = 3,
    typeDoubleWord = 4,
    typeDoubleWordBigEndian = 5,
    typeSymbolicLink = 6,
    typeMultipleString = 7,
    typeQuadWord = 11,
  };
  enum CreatePermissions : unsigned long {
    permissionRead = 0x20019,
    permissionAllAccess = 0xF003F
  };
  enum CreateOptions : unsigned long { optionsNonVolatile = 0, optionsVolatile = 1 };

  SECRegistry() = default;
  SECRegistry(const SECRegistry&) = delete;
  SECRegistry& operator=(const SECRegistry&) = delete;
  ~SECRegistry() { Close(); }

  // Uses this root, a predefined key or one that the caller keeps open, from now on; the key that
  // was open is closed. Refused is only null: whether the root can be used shows when a key under
  // it is opened.
  bool Connect(HKEY root) noexcept;

  // Open a key, in place of the one that was open; after a failure none is. An empty path is the
  // root. Create makes the levels that are missing.
  [[nodiscard]] bool Open(const wchar_t* path, CreatePermissions access);
  [[nodiscard]] bool Create(const wchar_t* path, const wchar_t* className = nullptr,
                            CreateOptions options = optionsNonVolatile,
                            CreatePermissions access = permissionAllAccess);
  // Closes the open key; the connection stays. False when none was open.
  bool Close() noexcept;

  // Copies a value to a buffer of size bytes; afterwards size is that of the whole value, also when
  // it does not fit (then false and ERROR_MORE_DATA). A null buffer asks for type and size only.
  [[nodiscard]] bool QueryValue(const wchar_t* name, KeyValueTypes& type, unsigned char* buffer,
                                unsigned long& size) noexcept;
  [[nodiscard]] bool SetValue(const wchar_t* name, unsigned long value) noexcept;
  [[nodiscard]] bool SetValue(const wchar_t* name, KeyValueTypes type, const unsigned char* data,
                              unsigned long size) noexcept;
  [[nodiscard]] bool DeleteValue(const wchar_t* name) noexcept;

  // The name at an index from 0; false and ERROR_NO_MORE_ITEMS behind the last. Names move when
  // keys or values come or go meanwhile: one may then be missed, or come twice.
  [[nodiscard]] bool EnumerateKeys(unsigned long index, ZoString& name);
  [[nodiscard]] bool EnumerateValues(unsigned long index, ZoString& name, KeyValueTypes& type);

  // Deletes the key at a path from the root, with its values; recursive also with the keys below
  // it, otherwise it has none. The root itself is never deleted (an empty path:
  // ERROR_INVALID_PARAMETER).
  [[nodiscard]] bool DeleteKey(const wchar_t* path, bool recursive);

  [[nodiscard]] HKEY key() const noexcept { return m_hKey; }

 private:
  HKEY root_ = nullptr;
  HKEY m_hKey = nullptr;
};

namespace zo {
// What the enumerations fill, and what it holds.
using RegistryText = ZoString;
inline std::wstring_view viewOf(const RegistryText& text) noexcept { return text.view(); }
}  // namespace zo

#endif
