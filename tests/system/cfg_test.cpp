#include <gtest/gtest.h>
#include <windows.h>
// windows.h first: sddl.h rests on it.
#include <sddl.h>
#include <zo/host/registry.h>
#include <zo/results.h>
#include <zo/system/cfg.h>

#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "support/child_process.h"
#include "support/printers.h"
#include "support/registry_base.h"

namespace {

// The protected operations, and no patience.
class OpenCfg : public ZoStdCfg {
 public:
  using ZoStdCfg::close;
  using ZoStdCfg::fullKey;
  using ZoStdCfg::getValue;
  using ZoStdCfg::insert;
  using ZoStdCfg::isKey;
  using ZoStdCfg::isValue;
  using ZoStdCfg::open;
  using ZoStdCfg::remove;
  int timeOut() override { return timeOut_; }
  int timeOut_ = 1000;
};

class Cfg : public testing::Test {
 protected:
  Cfg() { EXPECT_EQ(cfg_.init(base_.path().c_str(), nullptr), 0); }

  // The platform's own view of what is stored.
  struct Stored {
    DWORD type = REG_NONE;
    std::wstring text;
  };
  Stored stored(const std::wstring& below, const wchar_t* name) {
    Stored result;
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, base_.path(below).c_str(), 0, KEY_READ, &key),
              ERROR_SUCCESS);
    wchar_t buffer[256] = {};
    DWORD size = sizeof buffer;
    EXPECT_EQ(
        RegQueryValueExW(key, name, nullptr, &result.type, reinterpret_cast<BYTE*>(buffer), &size),
        ERROR_SUCCESS);
    result.text.assign(buffer, size / 2);
    RegCloseKey(key);
    return result;
  }

  // Stores as another program would.
  void store(const std::wstring& below, const wchar_t* name, DWORD type, const void* data,
             size_t size) {
    SECRegistry registry;
    ASSERT_TRUE(registry.Connect(HKEY_CURRENT_USER));
    ASSERT_TRUE(registry.Create(below.empty() ? base_.path().c_str() : base_.path(below).c_str()));
    ASSERT_TRUE(registry.SetValue(name, static_cast<SECRegistry::KeyValueTypes>(type),
                                  static_cast<const unsigned char*>(data),
                                  static_cast<unsigned long>(size)));
  }

  ZoString textAt(const wchar_t* key) {
    const ZoVariant value = cfg_.at(key, true);
    EXPECT_TRUE(value.isTypeOf(ZoVariant::kString));
    return value.asString();
  }

  zo::test::RegistryBase base_;
  OpenCfg cfg_;
};

TEST_F(Cfg, KeysBecomePathsUnderTheBase) {
  const std::wstring base = L"Software\\Tarvenco\\Mirel3D\\Config";
  const struct {
    const wchar_t *init, *key;
    std::wstring full;
  } rows[] = {
      {nullptr, L"zof@parts@repType2d", base + L"\\zof\\parts\\repType2d"},
      {nullptr, L"a@b@", base + L"\\a\\b"},
      {nullptr, L"a@@b", base + L"\\a\\\\b"},
      {nullptr, L"a@@", base + L"\\a\\"},
      {nullptr, L"@", base + L"\\"},
      {nullptr, L"", base + L"\\"},
      {nullptr, L"@a", base + L"\\\\a"},
      {L"", L"Software@x", L"\\Software\\x"},
      {L"", L"@", L"\\"},
      {L"my\\base", L"a", L"my\\base\\a"},
      {L"my@base", L"a", L"my\\base\\a"},
  };
  OpenCfg cfg;  // nothing here touches the registry
  for (const auto& [init, key, full] : rows) {
    ASSERT_EQ(cfg.init(init, nullptr), 0);
    EXPECT_EQ(cfg.fullKey(key).view(), full);
  }
}

TEST_F(Cfg, WritesNumbersAsNumbersAndAllElseAsItsText) {
  const struct {
    const wchar_t* name;
    ZoVariant written, read;
    DWORD type;
  } rows[] = {
      {L"int", 42, 42, REG_DWORD},
      {L"negative", -1, -1, REG_DWORD},
      {L"smallest", std::numeric_limits<int>::min(), std::numeric_limits<int>::min(), REG_DWORD},
      {L"real", 3.0, 3, REG_DWORD},
      {L"text", L"a text", L"a text", REG_SZ},
      {L"empty", L"", L"", REG_SZ},
      {L"long", std::int64_t{1} << 40, L"1099511627776", REG_SZ},
      {L"at@sign", L"level", L"level", REG_SZ},
      {L"nothing", ZoVariant(), L"", REG_SZ},
      {L"\u00E4\u4E2D\xD83D\xDE00", L"\u20AC", L"\u20AC", REG_SZ},
      {L"large", ZoString(L'x').append(L'y', 5000), ZoString(L'x').append(L'y', 5000), REG_SZ},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.name)));
    EXPECT_FALSE(cfg_.isValid(row.name));
    EXPECT_EQ(cfg_.insertAt(row.name, row.written), 0);
    EXPECT_TRUE(cfg_.isValid(row.name));
    ZoVariant value;
    EXPECT_EQ(cfg_.getAt(row.name, value, false), 0);
    EXPECT_TRUE(value == row.read);
    EXPECT_TRUE(cfg_[row.name] == row.read);
  }
  EXPECT_EQ(stored(L"", L"real").type, static_cast<DWORD>(REG_DWORD));
  EXPECT_EQ(stored(L"", L"text").type, static_cast<DWORD>(REG_SZ));
  EXPECT_EQ(stored(L"", L"text").text, std::wstring(L"a text\0", 7));
  EXPECT_EQ(stored(L"at", L"sign").text, std::wstring(L"level\0", 6));
}

// Each operation against a key that names nothing, a value, an empty registry key, and one with
// others below it, with "@" at the end and without.
TEST_F(Cfg, OperationsDoWhatTheKeyAllows) {
  enum State { Missing, Value, Key, Tree };
  const auto prepare = [&](State state) {
    RegDeleteTreeW(HKEY_CURRENT_USER, base_.path(L"k").c_str());
    ASSERT_EQ(cfg_.insert(L"other", 1), 0);
    ASSERT_EQ(cfg_.insert(L"k@y@keep", 1), 0);
    ASSERT_EQ(cfg_.remove(L"k@y@"), 0);
    if (state == Value) {
      ASSERT_EQ(cfg_.insert(L"k@x", 5), 0);
    }
    if (state == Key) {
      ASSERT_EQ(cfg_.insert(L"k@x@a", 6), 0);
    }
    if (state == Tree) {
      ASSERT_EQ(cfg_.insert(L"k@x@sub@a", 6), 0);
    }
  };
  const ZoVariant seven(7);
  const auto insertAt = [&](const wchar_t* key) { return cfg_.insertAt(key, seven); };
  const auto setAt = [&](const wchar_t* key) { return cfg_.setAt(key, seven); };
  const auto replaceAt = [&](const wchar_t* key) { return cfg_.replaceAt(key, seven); };
  const auto removeAt = [&](const wchar_t* key) { return cfg_.removeAt(key); };
  using Operation = std::function<int(const wchar_t*)>;
  const struct {
    const char* what;
    Operation operation;
    const wchar_t* key;
    State state;
    int result;
    bool value, keyLeft;  // afterwards
    int number;
  } rows[] = {
      {"insertAt", insertAt, L"k@x", Missing, 0, true, false, 7},
      {"insertAt", insertAt, L"k@x", Value, 1, true, false, 5},
      {"insertAt", insertAt, L"k@x", Key, 1, false, true, 0},
      {"insertAt", insertAt, L"k@x@", Value, 1, true, false, 5},
      {"setAt", setAt, L"k@x", Missing, 1, false, false, 0},
      {"setAt", setAt, L"k@x", Value, 0, true, false, 7},
      {"setAt", setAt, L"K@X", Value, 0, true, false, 7},
      {"setAt", setAt, L"k@x", Tree, 0, true, true, 7},
      {"replaceAt", replaceAt, L"k@x", Missing, 0, true, false, 7},
      {"replaceAt", replaceAt, L"k@x", Value, 0, true, false, 7},
      {"replaceAt", replaceAt, L"k@x", Key, 0, true, false, 7},
      {"replaceAt", replaceAt, L"k@x", Tree, 1, false, true, 0},
      {"replaceAt", replaceAt, L"k@x@", Tree, 0, true, false, 7},
      {"removeAt", removeAt, L"k@x", Missing, 1, false, false, 0},
      {"removeAt", removeAt, L"k@x@", Missing, 1, false, false, 0},
      {"removeAt", removeAt, L"k@x", Value, 0, false, false, 0},
      {"removeAt", removeAt, L"k@x@", Value, 0, false, false, 0},
      {"removeAt", removeAt, L"k@x", Key, 0, false, false, 0},
      {"removeAt", removeAt, L"k@x", Tree, 1, false, true, 0},
      {"removeAt", removeAt, L"k@x@", Tree, 0, false, false, 0},
      {"removeAt", removeAt, L"", Tree, 1, false, true, 0},
      {"removeAt", removeAt, L"@", Tree, 1, false, true, 0},
      {"removeAt", removeAt, L"@@@", Tree, 1, false, true, 0},
      {"removeAt", removeAt, nullptr, Tree, 1, false, true, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.what) + " " +
                 testing::PrintToString(row.key ? std::wstring(row.key) : L"null") + " state " +
                 std::to_string(row.state));
    prepare(row.state);
    EXPECT_EQ(row.operation(row.key), row.result);
    EXPECT_EQ(cfg_.isValue(L"k@x"), row.value);
    EXPECT_EQ(cfg_.isKey(L"k@x"), row.keyLeft);
    EXPECT_EQ(cfg_.isKey(L"k@x@sub"), row.keyLeft && row.state == Tree);
    EXPECT_EQ(cfg_.isValid(L"k@x"), row.value || row.keyLeft);
    EXPECT_EQ(cfg_.at(L"k@x", 0, false).asInt(), row.number);
    EXPECT_EQ(cfg_.at(L"other", 0, false).asInt(), 1);
  }
}

TEST_F(Cfg, AValueAndAKeyOfOneNameAreToldApartByTheMark) {
  ASSERT_EQ(cfg_.insert(L"x", 5), 0);
  ASSERT_EQ(cfg_.insert(L"x@a", 6), 0);
  EXPECT_EQ(cfg_.at(L"x", true).asInt(), 5);
  EXPECT_TRUE(cfg_.at(L"x@", true).isTypeOf(ZoVariant::kDict));
  EXPECT_EQ(cfg_.removeAt(L"x@"), 0);
  EXPECT_EQ(cfg_.at(L"x@", true).asInt(), 5);
  ASSERT_EQ(cfg_.insert(L"x@a", 6), 0);
  EXPECT_EQ(cfg_.removeAt(L"x"), 0);
  EXPECT_EQ(cfg_.at(L"x@a", true).asInt(), 6);
}

TEST_F(Cfg, AKeyReadsAsANestedDictionary) {
  ASSERT_EQ(cfg_.insert(L"k@n", 1), 0);
  ASSERT_EQ(cfg_.insert(L"k@", L"k's own text"), 0);  // a value of the base, named k
  ASSERT_EQ(cfg_.insert(L"k@sub@t", L"text"), 0);
  ASSERT_EQ(cfg_.insert(L"k@sub@deep@z", 2), 0);
  ASSERT_EQ(cfg_.insert(L"k@both", 3), 0);
  ASSERT_EQ(cfg_.insert(L"k@both@inner", 4), 0);
  store(L"k", L"", REG_SZ, L"unnamed", 16);

  const ZoVariant all = cfg_[L"k@"];
  ASSERT_TRUE(all.isTypeOf(ZoVariant::kDict));
  EXPECT_EQ(all.entries(), 5u);
  const auto at = [&](std::wstring_view path) {
    const ZoVariant* const found = all.find(path);
    return found ? found->asString() : ZoString(L"missing");
  };
  EXPECT_EQ(at(L"n"), ZoString(L"1"));
  EXPECT_EQ(at(L"N"), ZoString(L"1"));
  EXPECT_EQ(at(L"sub/t"), ZoString(L"text"));
  EXPECT_EQ(at(L"sub/deep/z"), ZoString(L"2"));
  EXPECT_EQ(at(L"both"), ZoString(L"3"));
  EXPECT_EQ(at(L"both@/inner"), ZoString(L"4"));
  EXPECT_EQ(all.at(L"")->asString(), ZoString(L"unnamed"));

  ZoVariant flat;
  EXPECT_EQ(cfg_.getAt(L"k@", flat, false), 0);
  EXPECT_EQ(flat.entries(), 3u);
  EXPECT_EQ(flat.at(L"sub"), nullptr);
  EXPECT_EQ(cfg_.at(L"k@sub", true).entries(), 2u);
  EXPECT_EQ(cfg_.at(L"", true).entries(), 2u);  // the base
  EXPECT_EQ(cfg_.at(L"@", false).entries(), 1u);
}

TEST_F(Cfg, ForeignTypesReadAsDocumented) {
  const unsigned char bytes[] = {0x41, 0, 0xAC, 0x20, 0x42, 0, 0, 0};
  const std::uint64_t quad = 0xFFFFFFFFFFFFFFFE;
  const wchar_t several[] = L"one\0two\0three\0";
  const struct {
    const wchar_t* name;
    DWORD type;
    const void* data;
    size_t size;
    ZoVariant read;
  } rows[] = {
      {L"binary", REG_BINARY, bytes, 6, L"A\u20ACB"},
      {L"terminated", REG_BINARY, bytes, 8, L"A\u20ACB"},
      {L"odd", REG_BINARY, bytes, 5, L"A\u20ACB"},
      {L"one byte", REG_BINARY, bytes, 1, L"A"},
      {L"no bytes", REG_BINARY, bytes, 0, L""},
      {L"none", REG_NONE, bytes, 4, L"A\u20AC"},
      {L"unexpanded", REG_EXPAND_SZ, L"%TEMP%\\x", 18, L"%TEMP%\\x"},
      {L"several", REG_MULTI_SZ, several, sizeof several, L"one\ntwo\nthree"},
      {L"none of several", REG_MULTI_SZ, L"\0", 4, L""},
      {L"quad", REG_QWORD, &quad, 8, L"18446744073709551614"},
      {L"short quad", REG_QWORD, bytes, 2, L"65"},
      {L"big-endian", REG_DWORD_BIG_ENDIAN, bytes + 1, 4, L"11280450"},
      {L"short number", REG_DWORD, bytes, 1, 65},
      {L"long number", REG_DWORD, bytes, 8, 0x20AC0041},
      {L"unknown", 4711, bytes, 6, L"A\u20ACB"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.name)));
    store(L"k", row.name, row.type, row.data, row.size);
    const ZoVariant value = cfg_.at((std::wstring(L"k@") + row.name).c_str(), true);
    EXPECT_TRUE(value == row.read) << testing::PrintToString(std::wstring(value.asString().view()));
  }
  // Unterminated text of an odd length, next to a whole dictionary of all of them.
  store(L"k", L"broken", REG_SZ, bytes, 5);
  EXPECT_EQ(textAt(L"k@broken"), ZoString(L"A\u20ACB"));
  EXPECT_EQ(cfg_.at(L"k@", true).entries(), std::size(rows) + 1);
}

TEST_F(Cfg, NamesAtAndBeyondTheLimits) {
  const std::wstring level(255, L'l');
  const std::wstring name(16383, L'n');
  EXPECT_EQ(cfg_.insertAt((level + L"@x").c_str(), 1), 0);
  EXPECT_EQ(cfg_.insertAt(name.c_str(), 2), 0);
  EXPECT_EQ(cfg_.at((level + L"@x").c_str(), true).asInt(), 1);
  EXPECT_EQ(cfg_.at(name.c_str(), true).asInt(), 2);
  EXPECT_EQ(cfg_.at(L"@", true).entries(), 2u);
  // Refused, and no level before the bad one is made.
  EXPECT_EQ(cfg_.insertAt((L"a@" + level + L"l@x").c_str(), 1), 1);
  EXPECT_EQ(cfg_.replaceAt((L"a@" + name + L"n").c_str(), 1), 1);
  EXPECT_FALSE(cfg_.isValid(L"a"));
  // Empty levels count for nothing, and an empty last one is the key's unnamed value.
  EXPECT_EQ(cfg_.insertAt(L"a@@b", 3), 0);
  EXPECT_EQ(cfg_.at(L"a@b", true).asInt(), 3);
  EXPECT_EQ(cfg_.insertAt(L"@@c@d", 4), 0);
  EXPECT_EQ(cfg_.at(L"c@d", true).asInt(), 4);
  EXPECT_EQ(cfg_.insertAt(L"c@@", 5), 1);  // names the key c
  EXPECT_EQ(cfg_.setAt(L"c@@", 5), 0);
  EXPECT_EQ(stored(L"c", L"").type, static_cast<DWORD>(REG_DWORD));
}

TEST_F(Cfg, WhatCannotBeStoredIsRefusedBeforeAnythingIsRemoved) {
  ASSERT_EQ(cfg_.insert(L"x", 5), 0);
  for (const double value : {1e10, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(cfg_.setAt(L"x", value), 1);
    EXPECT_EQ(cfg_.replaceAt(L"x", value), 1);
    EXPECT_EQ(cfg_.insertAt(L"y", value), 1);
  }
  EXPECT_EQ(cfg_.at(L"x", true).asInt(), 5);
  EXPECT_FALSE(cfg_.isValid(L"y"));
}

TEST_F(Cfg, MissingKeysAndRootsGiveTheDefault) {
  const auto expectNothing = [&](OpenCfg& cfg) {
    ZoVariant value(L"untouched");
    EXPECT_EQ(cfg.getAt(L"missing@x", value, true), 1);
    EXPECT_EQ(cfg.getAt(L"missing@", value, true), 1);
    EXPECT_EQ(cfg.getValue(L"missing", value), 1);
    EXPECT_TRUE(value == ZoVariant(L"untouched"));
    EXPECT_EQ(cfg.at(L"missing", L"default", true).asString(), ZoString(L"default"));
    EXPECT_TRUE(cfg.at(L"missing", true).isEmpty());
    EXPECT_TRUE(cfg[L"missing"].isEmpty());
  };
  expectNothing(cfg_);
  // A root that is no open key.
  HKEY stale = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, base_.path().c_str(), 0, KEY_READ, &stale),
            ERROR_SUCCESS);
  RegCloseKey(stale);
  OpenCfg broken;
  ASSERT_EQ(broken.init(L"", &stale), 0);
  expectNothing(broken);
  EXPECT_EQ(broken.insertAt(L"a@x", 1), 1);
  EXPECT_EQ(broken.removeAt(L"a@x"), 1);
  EXPECT_EQ(broken.replaceAt(L"a@x", 1), 1);
}

TEST_F(Cfg, ARootOfTheCallersOwnAndAnEmptyBase) {
  HKEY root = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, base_.path().c_str(), 0, KEY_ALL_ACCESS, &root),
            ERROR_SUCCESS);
  {
    OpenCfg cfg;
    ASSERT_EQ(cfg.init(L"", &root), 0);
    EXPECT_EQ(cfg.insertAt(L"a@b", 1), 0);
    EXPECT_EQ(cfg_.at(L"a@b", true).asInt(), 1);
    EXPECT_EQ(cfg.at(L"", true).entries(), 1u);
    EXPECT_EQ(cfg.removeAt(L"@"), 1);  // never the root
    EXPECT_EQ(cfg.removeAt(L"a@"), 0);
    EXPECT_FALSE(cfg_.isValid(L"a"));
  }
  RegCloseKey(root);
}

TEST_F(Cfg, KeysWithoutPermissionAreNone) {
  ASSERT_EQ(cfg_.insert(L"k@closed@x", 1), 0);
  ASSERT_EQ(cfg_.insert(L"k@open@x", 2), 0);
  HKEY key = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, base_.path(L"k\\closed").c_str(), 0,
                          READ_CONTROL | WRITE_DAC, &key),
            ERROR_SUCCESS);
  const auto protect = [&](const wchar_t* list) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(list, SDDL_REVISION_1,
                                                                     &descriptor, nullptr));
    EXPECT_EQ(RegSetKeySecurity(key, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
    LocalFree(descriptor);
  };
  protect(L"D:(D;;KA;;;WD)");
  HKEY probe = nullptr;
  const bool enforced = RegOpenKeyExW(HKEY_CURRENT_USER, base_.path(L"k\\closed").c_str(), 0,
                                      KEY_ALL_ACCESS, &probe) == ERROR_ACCESS_DENIED;
  if (probe) RegCloseKey(probe);
  if (enforced) {
    EXPECT_FALSE(cfg_.isValid(L"k@closed@x"));
    EXPECT_FALSE(cfg_.isKey(L"k@closed"));
    EXPECT_EQ(cfg_.setAt(L"k@closed@x", 3), 1);
    EXPECT_EQ(cfg_.replaceAt(L"k@closed@x", 3), 1);
    EXPECT_EQ(cfg_.insertAt(L"k@closed@y", 3), 1);
    EXPECT_EQ(cfg_.removeAt(L"k@closed@x"), 1);
    EXPECT_EQ(cfg_.at(L"k@", true).entries(), 1u);
    EXPECT_EQ(cfg_.at(L"k@", true).find(L"open/x")->asInt(), 2);
  }
  protect(L"D:(A;;KA;;;WD)");
  RegCloseKey(key);
  EXPECT_EQ(cfg_.at(L"k@closed@x", true).asInt(), 1);
  if (!enforced) GTEST_SKIP() << "this platform does not enforce the permissions of keys";
}

TEST_F(Cfg, WhileAnotherThreadHoldsTheGuardNothingIsDone) {
  ASSERT_EQ(cfg_.insertAt(L"x", 5), 0);
  cfg_.timeOut_ = 0;
  ASSERT_EQ(cfg_.waitToRead(), 0);  // readers keep the configuration's readers out, too
  std::thread([&] {
    ZoVariant value(L"untouched");
    EXPECT_EQ(cfg_.getAt(L"x", value, true), 1);
    EXPECT_TRUE(value == ZoVariant(L"untouched"));
    EXPECT_EQ(cfg_.at(L"x", 9, true).asInt(), 9);
    EXPECT_TRUE(cfg_.at(L"x", true).isEmpty());
    EXPECT_TRUE(cfg_[L"x"].isEmpty());
    EXPECT_FALSE(cfg_.isValid(L"x"));
    EXPECT_EQ(cfg_.insertAt(L"y", 1), 1);
    EXPECT_EQ(cfg_.setAt(L"x", 1), 1);
    EXPECT_EQ(cfg_.replaceAt(L"x", 1), 1);
    EXPECT_EQ(cfg_.removeAt(L"x"), 1);
    EXPECT_EQ(cfg_.write(L"x"), 1);
    EXPECT_EQ(cfg_.init(L"elsewhere", nullptr), 1);
  }).join();
  cfg_.doneReading();
  EXPECT_EQ(cfg_.write(L"x"), 0);
  EXPECT_EQ(cfg_.at(L"x", true).asInt(), 5);
  EXPECT_FALSE(cfg_.isValid(L"y"));
}

// Derived services see what the public operations do through the protected ones.
TEST_F(Cfg, PublicOperationsGoThroughTheProtectedOnes) {
  class Fixed : public OpenCfg {
   public:
    int getValue(ZoString, ZoVariant& value) override {
      value = 77;
      return 0;
    }
    int insert(const wchar_t*, const ZoVariant&) override { return 33; }
    int remove(const wchar_t*) override { return 0; }
  } fixed;
  EXPECT_EQ(fixed.at(L"any", false).asInt(), 77);
  EXPECT_TRUE(fixed.isValid(L"any"));
  EXPECT_EQ(fixed.insertAt(L"any", 1), 1);
  EXPECT_EQ(fixed.setAt(L"any", 1), 33);
  EXPECT_EQ(fixed.replaceAt(L"any", 1), 33);
  EXPECT_EQ(fixed.removeAt(L"any"), 0);
}

ZO_TEST_CHILD(settings_reader) {
  OpenCfg cfg;
  cfg.init(parent.argument(0).c_str(), nullptr);
  parent.say(std::to_string(cfg.at(L"a@b", 0, true).asInt()));
  return cfg.setAt(L"a@b", 8);
}

TEST_F(Cfg, OtherProcessesSeeChangesAtOnce) {
  ASSERT_EQ(cfg_.insertAt(L"a@b", 7), 0);
  zo::test::ChildProcess child(L"settings_reader", {base_.path()});
  EXPECT_EQ(child.hear(), "7");
  EXPECT_EQ(child.wait(), 0);
  EXPECT_EQ(cfg_.at(L"a@b", 0, true).asInt(), 8);
}

TEST_F(Cfg, NoOperationLeavesAHandleOpen) {
  cfg_.insert(L"k@a@b", 1);
  const auto everything = [&] {
    cfg_.insertAt(L"k@c", 1);
    cfg_.setAt(L"k@c", 2);
    cfg_.replaceAt(L"k@c", L"t");
    cfg_[L"k@"];
    cfg_[L"missing@x"];
    cfg_.isValid(L"k@");
    cfg_.removeAt(L"k@c");
    cfg_.removeAt(L"k@a");
    cfg_.init(base_.path().c_str(), nullptr);
  };
  everything();
  DWORD before = 0, after = 0;
  GetProcessHandleCount(GetCurrentProcess(), &before);
  for (int i = 0; i < 20; ++i) everything();
  GetProcessHandleCount(GetCurrentProcess(), &after);
  EXPECT_EQ(after, before);
}

TEST(CfgService, GoesWithTheLibraryOnly) {
  ZoCfg* const cfg = new ZoStdCfg;
  EXPECT_EQ(cfg->release(nullptr), 1);
  EXPECT_EQ(cfg->release(L"other"), 1);
  EXPECT_EQ(cfg->release(L"ZO_COM"), 0);
}

}  // namespace
