// The configuration service: settings in the Windows registry, addressed by keys whose levels are
// separated by "@", as "zof@parts@repType2d". What keys name, which registry types are written and
// read, and how a whole registry key becomes a dictionary: docs/configuration.md.
//
//   const double scale = ZoSystem::cfg().get(L"zof@view@scale", 1.0);
//   if (ZoSystem::cfg().put(L"zof@view@scale", 0.25) != 0) ...
//
// Errors:  the int operations return 0 or ZoResult::refused, also when the guard was not obtained
//          within timeOut(), and then nothing was changed; out-parameters stay as they were.
//          Nothing throws but std::bad_alloc. Null keys count as empty.
// Threads: any. Reading takes the writer side of the guard as well: the service works through one
//          registry object, whose open key all callers share. Other processes may change settings
//          at any moment.
// Cost:    every operation opens what it reads and closes it again.
#pragma once

#include <zo/config.h>
#include <zo/platform_types.h>
#include <zo/results.h>
#include <zo/system/sys_obj.h>
#include <zo/text/string.h>
#include <zo/variant/variant.h>

#include <concepts>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

class SECRegistry;

// A number that a setting can be: not a character.
template <class T>
concept ZoCfgNumber = std::is_arithmetic_v<T> && !std::is_same_v<T, wchar_t> &&
                      !std::is_same_v<T, char> && sizeof(T) <= sizeof(std::int64_t);

class ZO_COM_API ZoCfg : public ZoSysObj {
 public:
  // ---- Settings by type ----
  // The setting; `otherwise` where there is none, where it is no such value (a text that is no
  // number, a number that T does not hold), and without the guard. get(key, L"mm") gives a text,
  // and reads a number as its text.
  template <ZoCfgNumber T>
  [[nodiscard]] T get(const wchar_t* key, T otherwise) {
    if constexpr (std::is_floating_point_v<T>) {
      double value = 0;
      return readReal(key, value) ? static_cast<T>(value) : otherwise;
    } else {
      std::int64_t value = 0;
      if (!readWhole(key, value)) return otherwise;
      if constexpr (std::is_same_v<T, bool>)
        return value != 0;
      else
        return std::in_range<T>(value) ? static_cast<T>(value) : otherwise;
    }
  }
  template <std::same_as<ZoString> T = ZoString>
  [[nodiscard]] T get(const wchar_t* key, const ZoString& otherwise) {
    return readText(key, otherwise);
  }
  // Writes what get() reads back as the same, by replaceAt. Refused is also a whole number of more
  // than 63 bits.
  template <ZoCfgNumber T>
  [[nodiscard]] int put(const wchar_t* key, T value) {
    if constexpr (std::is_floating_point_v<T>)
      return putReal(key, static_cast<double>(value));
    else
      return std::in_range<std::int64_t>(+value) ? putWhole(key, static_cast<std::int64_t>(value))
                                                 : ZoResult::refused;
  }
  [[nodiscard]] int put(const wchar_t* key, const ZoString& text);

  // ---- Settings as variants. The order of the virtual functions is part of the interface ----
  // As at(key, true).
  [[nodiscard]] virtual ZoVariant operator[](const wchar_t* key) = 0;
  // What getAt gives; a copy of defaultValue, or an empty variant, when it fails.
#ifndef ZO_OVERLOADS_BACKWARDS
  [[nodiscard]] virtual ZoVariant at(const wchar_t* key, const ZoVariant& defaultValue,
                                     bool nested) = 0;
  [[nodiscard]] virtual ZoVariant at(const wchar_t* key, bool nested) = 0;
#else
  [[nodiscard]] virtual ZoVariant at(const wchar_t* key, bool nested) = 0;
  [[nodiscard]] virtual ZoVariant at(const wchar_t* key, const ZoVariant& defaultValue,
                                     bool nested) = 0;
#endif
  template <class T>
    requires(!std::is_same_v<T, bool>)
  ZoVariant at(const wchar_t* key, const T& otherwise) = delete;  // write get(key, otherwise)
  // The value that the key names, or else the registry key, as a dictionary of its values and, when
  // nested is true, of the keys below it to any depth; otherwise those are left out. Refused when
  // it names neither.
  [[nodiscard]] virtual int getAt(const wchar_t* key, ZoVariant& value, bool nested) = 0;
  // Whether the key names a value or a registry key. False also without the guard.
  [[nodiscard]] virtual bool isValid(const wchar_t* key) = 0;
  // Writes a new setting. Refused when the key is valid.
  [[nodiscard]] virtual int insertAt(const wchar_t* key, const ZoVariant& value) = 0;
  // Deletes what the key names: the value, or else the registry key. A registry key that has others
  // below it is deleted, with all of them, only when the key ends in "@"; otherwise it is refused.
  [[nodiscard]] virtual int removeAt(const wchar_t* key) = 0;
  // Removes what the key names, if anything, as removeAt does, and writes the setting.
  [[nodiscard]] virtual int replaceAt(const wchar_t* key, const ZoVariant& value) = 0;
  // Overwrites a setting. Refused when the key is not valid.
  [[nodiscard]] virtual int setAt(const wchar_t* key, const ZoVariant& value) = 0;
  // Waits for whoever works with the service. There is nothing to write: every change is in the
  // registry when its operation returns.
  [[nodiscard]] virtual int write(const wchar_t* key) = 0;
  // Sets the registry path under which all keys lie, without a delimiter at its ends, and the root
  // to connect to. Null are "Software\Tarvenco\Mirel3D\Config" and the current user's root; the
  // empty path makes keys full paths. The root is a predefined key, or one that the caller keeps
  // open as long as the service uses it.
  [[nodiscard]] virtual int init(const wchar_t* path, HKEY* root) = 0;

  // As a variant, a real is stored as a whole number.
  template <std::floating_point T>
  int insertAt(const wchar_t* key, T value) = delete;  // write put(key, value)
  template <std::floating_point T>
  int replaceAt(const wchar_t* key, T value) = delete;  // write put(key, value)
  template <std::floating_point T>
  int setAt(const wchar_t* key, T value) = delete;  // write put(key, value)

 protected:
  // What the operations above are made of; they hold the guard when they call these.
  // Writes a setting, whatever was there. Integers and reals become 32-bit numbers (a real that no
  // int can hold is refused), all else its text.
  [[nodiscard]] virtual int insert(const wchar_t* key, const ZoVariant& value) = 0;
  [[nodiscard]] virtual int remove(const wchar_t* key) = 0;
  // The registry path of a key: base, "\" and key with every "@" turned into "\"; one at the very
  // end is removed instead.
  virtual ZoString fullKey(ZoString key) = 0;
  // Open a registry key by its path from the root with all access; close it.
  [[nodiscard]] virtual bool open(ZoString path) = 0;
  virtual bool close() = 0;
  // Whether getValue succeeds; whether the registry key can be opened.
  [[nodiscard]] virtual bool isValue(ZoString key) = 0;
  [[nodiscard]] virtual bool isKey(ZoString key) = 0;
  // Reads the value whose name is the last level of fullKey(key). Leaves no key open.
  [[nodiscard]] virtual int getValue(ZoString key, ZoVariant& value) = 0;

 private:
  bool readWhole(const wchar_t* key, std::int64_t& value);
  bool readReal(const wchar_t* key, double& value);
  ZoString readText(const wchar_t* key, const ZoString& otherwise);
  int putWhole(const wchar_t* key, std::int64_t value);
  int putReal(const wchar_t* key, double value);
};

class ZO_COM_API ZoStdCfg : public ZoCfg {
 public:
  ZoStdCfg();
  ~ZoStdCfg() override;
  ZoStdCfg(const ZoStdCfg&) = delete;
  ZoStdCfg& operator=(const ZoStdCfg&) = delete;

  int release(const wchar_t* module) override;

  using ZoCfg::at;
  using ZoCfg::insertAt;
  using ZoCfg::replaceAt;
  using ZoCfg::setAt;
  ZoVariant operator[](const wchar_t* key) override;
  ZoVariant at(const wchar_t* key, const ZoVariant& defaultValue, bool nested) override;
  ZoVariant at(const wchar_t* key, bool nested) override;
  int getAt(const wchar_t* key, ZoVariant& value, bool nested) override;
  bool isValid(const wchar_t* key) override;
  int insertAt(const wchar_t* key, const ZoVariant& value) override;
  int removeAt(const wchar_t* key) override;
  int replaceAt(const wchar_t* key, const ZoVariant& value) override;
  int setAt(const wchar_t* key, const ZoVariant& value) override;
  int write(const wchar_t* key) override;
  int init(const wchar_t* path, HKEY* root) override;

 protected:
  int insert(const wchar_t* key, const ZoVariant& value) override;
  int remove(const wchar_t* key) override;
  ZoString fullKey(ZoString key) override;
  bool open(ZoString path) override;
  bool close() override;
  bool isValue(ZoString key) override;
  bool isKey(ZoString key) override;
  int getValue(ZoString key, ZoVariant& value) override;

 private:
  // Reads the registry key at a path from the root; false when it cannot be opened.
  bool readKey(const ZoString& path, bool nested, unsigned int depth, ZoVariant& value);

  ZoString base_;
  HKEY root_ = nullptr;
  std::unique_ptr<SECRegistry> registry_;
};
