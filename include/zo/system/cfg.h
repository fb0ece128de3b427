// The configuration service: settings in the Windows registry, addressed by keys whose levels are
// separated by "@", as "zof@parts@repType2d". What keys name, which registry types are written and
// read, and how a whole registry key becomes a dictionary: docs/configuration.md.
//
// Errors:  the int operations return 0 or ZoResult::refused, also when the guard was not obtained
//          within timeOut(), and then nothing was changed; out-parameters stay as they were.
//          Nothing throws but std::bad_alloc. Null keys count as empty.
// Threads: any. Reading takes the writer side of the guard as well: the service works through one
//          registry object, whose open key all callers share. Other processes may change settings
//          at any moment.
// Cost:    every operation opens what it reads and closes it again.
#pragma once

#include <zo/platform_types.h>
#include <zo/system/sys_obj.h>
#include <zo/text/string.h>
#include <zo/variant/variant.h>

#include <memory>

class SECRegistry;

// The order of the virtual functions is part of the interface.
class ZO_COM_API ZoCfg : public ZoSysObj {
 public:
  // As at(key, true).
  virtual ZoVariant operator[](const wchar_t* key) = 0;
  // What getAt gives; a copy of defaultValue, or an empty variant, when it fails.
  virtual ZoVariant at(const wchar_t* key, const ZoVariant& defaultValue, bool nested) = 0;
  virtual ZoVariant at(const wchar_t* key, bool nested) = 0;
  // The value that the key names, or else the registry key, as a dictionary of its values and, when
  // nested is true, of the keys below it to any depth; otherwise those are left out. Refused when
  // it names neither.
  virtual int getAt(const wchar_t* key, ZoVariant& value, bool nested) = 0;
  // Whether the key names a value or a registry key. False also without the guard.
  virtual bool isValid(const wchar_t* key) = 0;
  // Writes a new setting. Refused when the key is valid.
  virtual int insertAt(const wchar_t* key, const ZoVariant& value) = 0;
  // Deletes what the key names: the value, or else the registry key. A registry key that has others
  // below it is deleted, with all of them, only when the key ends in "@"; otherwise it is refused.
  virtual int removeAt(const wchar_t* key) = 0;
  // Removes what the key names, if anything, as removeAt does, and writes the setting.
  virtual int replaceAt(const wchar_t* key, const ZoVariant& value) = 0;
  // Overwrites a setting. Refused when the key is not valid.
  virtual int setAt(const wchar_t* key, const ZoVariant& value) = 0;
  // Waits for whoever works with the service. There is nothing to write: every change is in the
  // registry when its operation returns.
  virtual int write(const wchar_t* key) = 0;
  // Sets the registry path under which all keys lie, without a delimiter at its ends, and the root
  // to connect to. Null are "Software\Tarvenco\Mirel3D\Config" and the current user's root; the
  // empty path makes keys full paths. The root is a predefined key, or one that the caller keeps
  // open as long as the service uses it.
  virtual int init(const wchar_t* path, HKEY* root) = 0;

 protected:
  // What the operations above are made of; they hold the guard when they call these.
  // Writes a setting, whatever was there. Integers and reals become 32-bit numbers (a real that no
  // int can hold is refused), all else its text.
  virtual int insert(const wchar_t* key, const ZoVariant& value) = 0;
  virtual int remove(const wchar_t* key) = 0;
  // The registry path of a key: base, "\" and key with every "@" turned into "\"; one at the very
  // end is removed instead.
  virtual ZoString fullKey(ZoString key) = 0;
  // Open a registry key by its path from the root with all access; close it.
  virtual bool open(ZoString path) = 0;
  virtual bool close() = 0;
  // Whether getValue succeeds; whether the registry key can be opened.
  virtual bool isValue(ZoString key) = 0;
  virtual bool isKey(ZoString key) = 0;
  // Reads the value whose name is the last level of fullKey(key). Leaves no key open.
  virtual int getValue(ZoString key, ZoVariant& value) = 0;
};

class ZO_COM_API ZoStdCfg : public ZoCfg {
 public:
  ZoStdCfg();
  ~ZoStdCfg() override;
  ZoStdCfg(const ZoStdCfg&) = delete;
  ZoStdCfg& operator=(const ZoStdCfg&) = delete;

  int release(const wchar_t* module) override;

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
