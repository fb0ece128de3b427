#include <gtest/gtest.h>
#include <windows.h>

#include <sddl.h>
#include <zo/host/sec_registry.h>
#include <zo/results.h>
#include <zo/system/cfg.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "support/printers.h"
#include "support/registry_base.h"

namespace {

struct OpenCfg : ZoStdCfg {
  using ZoStdCfg::close;
  using ZoStdCfg::fullKey;
  using ZoStdCfg::insert;
  using ZoStdCfg::isKey;
  using ZoStdCfg::isValue;
  using ZoStdCfg::remove;
};

class Cfg : public testing::Test {
 protected:
  Cfg() { EXPECT_EQ(cfg_.init(base_.path().c_str(), nullptr), 0); }

  // Values of the key k, as another program sees them.
  void store(const wchar_t* name, DWORD type, const void* data, size_t size) {
    EXPECT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, base_.path(L"k").c_str(), name, type, data,
                              static_cast<DWORD>(size)),
              ERROR_SUCCESS);
  }
  DWORD typeStored(const wchar_t* name) {
    DWORD type = REG_NONE;
    RegGetValueW(HKEY_CURRENT_USER, base_.path(L"k").c_str(), name, RRF_RT_ANY, &type, nullptr,
                 nullptr);
    return type;
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
      {nullptr, L"a@@", base + L"\\a\\"},
      {nullptr, L"", base + L"\\"},
      {nullptr, L"@a", base + L"\\\\a"},
      {L"", L"Software@x", L"\\Software\\x"},
      {L"my@base", L"a", L"my\\base\\a"},
  };
  for (const auto& [init, key, full] : rows) {
    ASSERT_EQ(cfg_.init(init, nullptr), 0);
    EXPECT_EQ(cfg_.fullKey(key).view(), full);
  }
}

TEST_F(Cfg, WritesNumbersAsNumbersAndAllElseAsItsText) {
  const ZoString large = ZoString(L'x').append(L'y', 5000);
  const int smallest = std::numeric_limits<int>::min();
  const struct {
    const wchar_t* name;
    ZoVariant written, read;
    DWORD type;
  } rows[] = {
      {L"smallest", smallest, smallest, REG_DWORD},
      {L"real", 3.0, 3, REG_DWORD},
      {L"long", std::int64_t{1} << 40, L"1099511627776", REG_SZ},
      {L"nothing", ZoVariant(), L"", REG_SZ},
      {L"\u00E4\u4E2D\xD83D\xDE00", L"\u20AC", L"\u20AC", REG_SZ},
      {L"large", large, large, REG_SZ},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.name)));
    const std::wstring key = std::wstring(L"k@") + row.name;
    EXPECT_EQ(cfg_.insertAt(key.c_str(), row.written), 0);
    EXPECT_TRUE(cfg_[key.c_str()] == row.read);
    EXPECT_EQ(typeStored(row.name), row.type);
  }
  // Not an int: refused, before anything is removed.
  EXPECT_EQ(cfg_.replaceAt(L"k@real", ZoVariant(1e10)), 1);
  EXPECT_EQ(cfg_.at(L"k@real", true).asInt(), 3);
}

TEST_F(Cfg, WhatIsPutIsGotAsTheSameAndAllElseAsTheCallersOwn) {
  const auto expectSame = [&](auto value, auto otherwise, const std::wstring& text) {
    EXPECT_EQ(cfg_.put(L"k@x", value), 0);
    EXPECT_EQ(cfg_.get(L"k@x", otherwise), value);
    EXPECT_EQ(cfg_.get(L"k@x", L"mm"), text);
  };
  expectSame(0.25, 1.0, L"0.25");
  expectSame(1e300, 1.0, L"1e+300");
  expectSame(-2147483647 - 1, 1, L"-2147483648");
  expectSame(std::size_t{1} << 40, std::size_t{1}, L"1099511627776");
  expectSame(true, false, L"1");
  expectSame(ZoString(L"12 mm"), ZoString(L"in"), L"12 mm");
  EXPECT_EQ(cfg_.get(L"k@x", 7), 7) << "a text that is more than a number";
  EXPECT_EQ(cfg_.get(L"k@x", 0.5), 0.5);
  EXPECT_EQ(cfg_.put(L"k@x", ~std::uint64_t{0}), ZoResult::refused);
  EXPECT_EQ(cfg_.put(L"k@x", 300), 0);
  EXPECT_EQ(cfg_.get<unsigned char>(L"k@x", 8), 8) << "out of range";
  EXPECT_EQ(cfg_.get<double>(L"k@x", 1), 300.0);
  EXPECT_EQ(typeStored(L"x"), DWORD{REG_DWORD});
  EXPECT_EQ(cfg_.get(L"k", 9), 9) << "a registry key";
  EXPECT_EQ(cfg_.get(L"k@none", L"mm"), L"mm");
}

TEST_F(Cfg, OperationsDoWhatTheKeyAllows) {
  // k@x is nothing, a value, a registry key, one with others below it.
  const wchar_t* const states[] = {L"k@y", L"k@x", L"k@x@a", L"k@x@sub@a"};
  using Operation = std::function<int(const wchar_t*)>;
  const Operation insertAt = [&](const wchar_t* key) { return cfg_.insertAt(key, 7); };
  const Operation setAt = [&](const wchar_t* key) { return cfg_.setAt(key, 7); };
  const Operation replaceAt = [&](const wchar_t* key) { return cfg_.replaceAt(key, 7); };
  const Operation removeAt = [&](const wchar_t* key) { return cfg_.removeAt(key); };
  // The result, and what is there afterwards: a value with its number, a key, one with others.
  const struct {
    Operation operation;
    const wchar_t* key;
    const char* outcomes[4];  // of each state
  } rows[] = {
      {insertAt, L"k@x", {"0 7", "1 5", "1 key", "1 tree"}},
      {setAt, L"K@X", {"1", "0 7", "0 7 key", "0 7 tree"}},
      {replaceAt, L"k@x", {"0 7", "0 7", "0 7", "1 tree"}},
      {replaceAt, L"k@x@", {"0 7", "0 7", "0 7", "0 7"}},
      {removeAt, L"k@x", {"1", "0", "0", "1 tree"}},
      {removeAt, L"k@x@", {"1", "0", "0", "0"}},
      {removeAt, nullptr, {"1", "1 5", "1 key", "1 tree"}},
  };
  for (const auto& row : rows) {
    for (int state = 0; state < 4; ++state) {
      SCOPED_TRACE("row " + std::to_string(&row - rows) + " state " + std::to_string(state));
      RegDeleteTreeW(HKEY_CURRENT_USER, base_.path(L"k").c_str());
      ASSERT_EQ(cfg_.insert(states[state], 5), 0);
      std::string outcome = std::to_string(row.operation(row.key));
      EXPECT_FALSE(cfg_.close()) << "a key was left open";
      if (cfg_.isValue(L"k@x")) outcome += " " + std::to_string(cfg_.at(L"k@x", true).asInt());
      if (cfg_.isKey(L"k@x")) outcome += cfg_.isKey(L"k@x@sub") ? " tree" : " key";
      EXPECT_EQ(outcome, row.outcomes[state]);
    }
  }
}

TEST_F(Cfg, AKeyReadsAsANestedDictionary) {
  ASSERT_EQ(cfg_.insert(L"k@n", 1), 0);
  ASSERT_EQ(cfg_.insert(L"k@", L"k's own text"), 0);  // a value of the base, named k
  ASSERT_EQ(cfg_.insert(L"k@sub@deep@z", 2), 0);
  ASSERT_EQ(cfg_.insert(L"k@both", 3), 0);
  ASSERT_EQ(cfg_.insert(L"k@both@inner", 4), 0);
  const ZoVariant all = cfg_[L"k@"];
  EXPECT_EQ(all.entries(), 4u);
  const std::pair<const wchar_t*, int> expected[] = {
      {L"N", 1}, {L"sub/deep/z", 2}, {L"both", 3}, {L"both@/inner", 4}};
  for (const auto& [path, number] : expected) {
    const ZoVariant* const found = all.find(path);
    EXPECT_TRUE(found && *found == ZoVariant(number)) << number;
  }
  EXPECT_EQ(cfg_.at(L"k@", false).entries(), 2u);
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
      {L"odd", REG_BINARY, bytes, 5, L"A\u20ACB"},
      {L"unexpanded", REG_EXPAND_SZ, L"%TEMP%\\x", 18, L"%TEMP%\\x"},
      {L"several", REG_MULTI_SZ, several, sizeof several, L"one\ntwo\nthree"},
      {L"quad", REG_QWORD, &quad, 8, L"18446744073709551614"},
      {L"big-endian", REG_DWORD_BIG_ENDIAN, bytes + 1, 4, L"11280450"},
      {L"short number", REG_DWORD, bytes, 1, 65},
      {L"unknown", 4711, bytes, 8, L"A\u20ACB"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.name)));
    store(row.name, row.type, row.data, row.size);
    const ZoVariant value = cfg_.at((std::wstring(L"k@") + row.name).c_str(), true);
    EXPECT_TRUE(value == row.read) << testing::PrintToString(std::wstring(value.asString().view()));
  }
}

TEST_F(Cfg, NamesBeyondTheLimitsAreRefusedBeforeAnyLevelIsMade) {
  const std::wstring level(255, L'l'), name(16383, L'n');
  EXPECT_EQ(cfg_.insertAt((level + L"@" + name).c_str(), 2), 0);
  EXPECT_EQ(cfg_.at((L"@" + level + L"@@" + name).c_str(), true).asInt(), 2);
  EXPECT_EQ(cfg_[L"@"].find(level + L"/" + name)->asInt(), 2) << "and are enumerated";
  EXPECT_EQ(cfg_.insertAt((L"a@" + level + L"l@x").c_str(), 1), 1);
  EXPECT_EQ(cfg_.replaceAt((L"a@" + name + L"n").c_str(), 1), 1);
  EXPECT_FALSE(cfg_.isValid(L"a"));
}

TEST_F(Cfg, ARootOfTheCallersIsNeverRemoved) {
  HKEY root = nullptr;
  ASSERT_EQ(RegOpenKeyW(HKEY_CURRENT_USER, base_.path().c_str(), &root), ERROR_SUCCESS);
  OpenCfg own;
  ASSERT_EQ(own.init(L"", &root), 0);
  EXPECT_EQ(own.insertAt(L"a@b", 1), 0);
  EXPECT_EQ(own.removeAt(L"@"), 1);
  SECRegistry registry;
  ASSERT_TRUE(registry.Connect(root));
  for (const wchar_t* path : {L"", L"\\\\", static_cast<const wchar_t*>(nullptr)})
    EXPECT_FALSE(registry.DeleteKey(path, true) || registry.DeleteKey(path, false));
  unsigned long size = 0;
  SECRegistry::KeyValueTypes type{};
  EXPECT_FALSE(registry.QueryValue(L"a", type, nullptr, size)) << "no key is open";
  EXPECT_FALSE(registry.SetValue(L"a", 1) || registry.DeleteValue(L"a"));
  RegCloseKey(root);
  EXPECT_EQ(own.insertAt(L"a@x", 1), 1);
  EXPECT_EQ(cfg_.at(L"a@", true).entries(), 1u);
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
  EXPECT_FALSE(cfg_.isValid(L"k@closed@x"));
  EXPECT_EQ(cfg_.replaceAt(L"k@closed@x", 3), 1);
  EXPECT_EQ(cfg_.insertAt(L"k@closed@y", 3), 1);
  EXPECT_EQ(cfg_.removeAt(L"k@closed@x"), 1);
  EXPECT_EQ(cfg_.at(L"k@", true).entries(), 1u);
  EXPECT_EQ(cfg_.at(L"k@", true).find(L"open/x")->asInt(), 2);
  protect(L"D:(A;;KA;;;WD)");
  RegCloseKey(key);
  EXPECT_EQ(cfg_.at(L"k@closed@x", true).asInt(), 1);
}

}  // namespace
