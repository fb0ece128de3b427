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
#include <vector>

#include "support/child_process.h"
#include "support/printers.h"
#include "support/registry_base.h"
#include "system/other_thread.h"

namespace {

// The protected operations, and no patience.
struct OpenCfg : zo::test::Impatient<ZoStdCfg> {
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

  // A value of the key k, as another program sees it.
  SECRegistry& other() {
    EXPECT_TRUE(other_.Connect(HKEY_CURRENT_USER) && other_.Create(base_.path(L"k").c_str()));
    return other_;
  }
  void store(const wchar_t* name, DWORD type, const void* data, size_t size) {
    EXPECT_TRUE(other().SetValue(name, static_cast<SECRegistry::KeyValueTypes>(type),
                                 static_cast<const unsigned char*>(data),
                                 static_cast<unsigned long>(size)));
  }
  DWORD typeStored(const wchar_t* name) {
    SECRegistry::KeyValueTypes type{};
    unsigned long size = 0;
    EXPECT_TRUE(other().QueryValue(name, type, nullptr, size));
    return type;
  }

  zo::test::RegistryBase base_;
  OpenCfg cfg_;
  SECRegistry other_;
};

TEST_F(Cfg, KeysBecomePathsUnderTheBase) {
  const std::wstring base = L"Software\\Tarvenco\\Mirel3D\\Config";
  const struct {
    const wchar_t *init, *key;
    std::wstring full;
  } rows[] = {
      {nullptr, L"zof@parts@repType2d", base + L"\\zof\\parts\\repType2d"},
      {nullptr, L"a@b@", base + L"\\a\\b"},
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
      {L"negative", -1, -1, REG_DWORD},
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
    EXPECT_FALSE(cfg_.isValid(key.c_str()));
    EXPECT_EQ(cfg_.insertAt(key.c_str(), row.written), 0);
    EXPECT_TRUE(cfg_.isValid(key.c_str()));
    EXPECT_TRUE(cfg_[key.c_str()] == row.read);
    EXPECT_EQ(typeStored(row.name), row.type);
  }
  // Not an int: refused, before anything is removed.
  for (const double value : {1e10, std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(cfg_.setAt(L"k@real", value), 1);
    EXPECT_EQ(cfg_.replaceAt(L"k@real", value), 1);
    EXPECT_EQ(cfg_.insertAt(L"new", value), 1);
  }
  EXPECT_EQ(cfg_.at(L"k@real", true).asInt(), 3);
  EXPECT_FALSE(cfg_.isValid(L"new"));
}

// Each operation against a key that names nothing, a value, an empty registry key, and one with
// others below it, with "@" at the end and without.
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
      {insertAt, L"k@x@", {"0 7", "1 5", "1 key", "1 tree"}},
      {setAt, L"K@X", {"1", "0 7", "0 7 key", "0 7 tree"}},
      {replaceAt, L"k@x", {"0 7", "0 7", "0 7", "1 tree"}},
      {replaceAt, L"k@x@", {"0 7", "0 7", "0 7", "0 7"}},
      {removeAt, L"k@x", {"1", "0", "0", "1 tree"}},
      {removeAt, L"k@x@", {"1", "0", "0", "0"}},
      {removeAt, L"@@@", {"1", "1 5", "1 key", "1 tree"}},
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
      EXPECT_EQ(cfg_.isValid(L"k@x"), outcome.size() > 1);
    }
  }
  // A value and a key of one name are told apart by the mark.
  ASSERT_EQ(cfg_.insert(L"x", 5), 0);
  ASSERT_EQ(cfg_.insert(L"x@a", 6), 0);
  EXPECT_EQ(cfg_.at(L"x", true).asInt(), 5);
  EXPECT_TRUE(cfg_.at(L"x@", true).isTypeOf(ZoVariant::kDict));
  EXPECT_EQ(cfg_.removeAt(L"x@"), 0);
  EXPECT_EQ(cfg_.at(L"x@", true).asInt(), 5);
}

TEST_F(Cfg, AKeyReadsAsANestedDictionary) {
  ASSERT_EQ(cfg_.insert(L"k@n", 1), 0);
  ASSERT_EQ(cfg_.insert(L"k@", L"k's own text"), 0);  // a value of the base, named k
  ASSERT_EQ(cfg_.insert(L"k@sub@deep@z", 2), 0);
  ASSERT_EQ(cfg_.insert(L"k@both", 3), 0);
  ASSERT_EQ(cfg_.insert(L"k@both@inner", 4), 0);
  store(L"", REG_SZ, L"unnamed", 16);
  const ZoVariant all = cfg_[L"k@"];
  EXPECT_EQ(all.entries(), 5u);
  EXPECT_EQ(all.at(L"")->asString(), ZoString(L"unnamed"));
  const std::pair<const wchar_t*, int> expected[] = {
      {L"N", 1}, {L"sub/deep/z", 2}, {L"both", 3}, {L"both@/inner", 4}};
  for (const auto& [path, number] : expected) {
    const ZoVariant* const found = all.find(path);
    EXPECT_TRUE(found && *found == ZoVariant(number)) << number;
  }
  const ZoVariant flat = cfg_.at(L"k@", false);
  EXPECT_EQ(flat.entries(), 3u);
  EXPECT_EQ(flat.at(L"sub"), nullptr);
  EXPECT_EQ(cfg_.at(L"", true).entries(), 2u);  // the base
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
      {L"no bytes", REG_BINARY, bytes, 0, L""},
      {L"unexpanded", REG_EXPAND_SZ, L"%TEMP%\\x", 18, L"%TEMP%\\x"},
      {L"several", REG_MULTI_SZ, several, sizeof several, L"one\ntwo\nthree"},
      {L"quad", REG_QWORD, &quad, 8, L"18446744073709551614"},
      {L"short quad", REG_QWORD, bytes, 2, L"65"},
      {L"big-endian", REG_DWORD_BIG_ENDIAN, bytes + 1, 4, L"11280450"},
      {L"short number", REG_DWORD, bytes, 1, 65},
      {L"long number", REG_DWORD, bytes, 8, 0x20AC0041},
      {L"unknown", 4711, bytes, 8, L"A\u20ACB"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::PrintToString(std::wstring(row.name)));
    store(row.name, row.type, row.data, row.size);
    const ZoVariant value = cfg_.at((std::wstring(L"k@") + row.name).c_str(), true);
    EXPECT_TRUE(value == row.read) << testing::PrintToString(std::wstring(value.asString().view()));
  }
  EXPECT_EQ(cfg_.at(L"k@", true).entries(), std::size(rows));
}

TEST_F(Cfg, NamesAtAndBeyondTheLimits) {
  const std::wstring level(255, L'l');
  const std::wstring name(16383, L'n');
  // Empty levels count for nothing, and an empty last one is the key's unnamed value.
  const std::pair<std::wstring, std::wstring> written[] = {
      {level + L"@x", level + L"@@x"}, {name, L"@" + name}, {L"k@@b", L"k@b"}, {L"@@c@d", L"c@d"}};
  for (const auto& [key, read] : written) {
    EXPECT_EQ(cfg_.insertAt(key.c_str(), 2), 0);
    EXPECT_EQ(cfg_.at(read.c_str(), true).asInt(), 2);
  }
  EXPECT_EQ(cfg_.at(L"@", true).entries(), 4u);
  EXPECT_EQ(cfg_.insertAt(L"k@@", 5), 1);  // names the key k
  EXPECT_EQ(cfg_.setAt(L"k@@", 5), 0);
  EXPECT_EQ(typeStored(L""), DWORD{REG_DWORD});
  // Refused, and no level before the bad one is made.
  EXPECT_EQ(cfg_.insertAt((L"a@" + level + L"l@x").c_str(), 1), 1);
  EXPECT_EQ(cfg_.replaceAt((L"a@" + name + L"n").c_str(), 1), 1);
  EXPECT_FALSE(cfg_.isValid(L"a"));
}

TEST_F(Cfg, MissingKeysAndRootsGiveTheDefault) {
  HKEY root = nullptr;
  ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, base_.path().c_str(), 0, KEY_ALL_ACCESS, &root),
            ERROR_SUCCESS);
  OpenCfg own;  // over a root of the caller's own
  ASSERT_EQ(own.init(L"", &root), 0);
  EXPECT_EQ(own.insertAt(L"a@b", 1), 0);
  EXPECT_EQ(cfg_.at(L"a@b", true).asInt(), 1);
  EXPECT_EQ(own.removeAt(L"@"), 1) << "never the root";
  EXPECT_EQ(own.removeAt(L"a@"), 0);
  EXPECT_FALSE(cfg_.isValid(L"a"));
  RegCloseKey(root);
  for (OpenCfg* cfg : {&cfg_, &own}) {  // a missing key, and a root that is no open key any more
    ZoVariant value(L"untouched");
    EXPECT_EQ(cfg->getAt(L"missing@x", value, true), 1);
    EXPECT_EQ(cfg->getAt(L"missing@", value, true), 1);
    EXPECT_TRUE(value == ZoVariant(L"untouched"));
    EXPECT_TRUE(cfg->at(L"missing", L"default", true) == ZoVariant(L"default"));
    EXPECT_TRUE((*cfg)[L"missing"].isEmpty());
  }
  EXPECT_EQ(own.insertAt(L"a@x", 1), 1);
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

TEST_F(Cfg, WhileAnotherThreadHoldsTheGuardNothingIsDone) {
  ASSERT_EQ(cfg_.insertAt(L"x", 5), 0);
  ASSERT_EQ(cfg_.waitToRead(), 0);  // readers keep the configuration's readers out, too
  zo::test::inOtherThread([&] {
    ZoVariant value(L"untouched");
    for (const int code :
         {cfg_.getAt(L"x", value, true), cfg_.insertAt(L"y", 1), cfg_.setAt(L"x", 1),
          cfg_.replaceAt(L"x", 1), cfg_.removeAt(L"x"), cfg_.write(L"x"), cfg_.init(L"", nullptr)})
      EXPECT_EQ(code, ZoResult::refused);
    EXPECT_TRUE(value == ZoVariant(L"untouched"));
    EXPECT_FALSE(cfg_.isValid(L"x"));
    return 0;
  });
  cfg_.doneReading();
  EXPECT_EQ(cfg_.write(L"x"), 0);
  EXPECT_EQ(cfg_.at(L"x", true).asInt(), 5);
  EXPECT_FALSE(cfg_.isValid(L"y"));
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

}  // namespace
