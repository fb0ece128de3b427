#include <gtest/gtest.h>
#include <windows.h>
#include <zo/host/sec_registry.h>

#include <string>
#include <vector>

#include "support/printers.h"
#include "support/registry_base.h"

namespace {

constexpr auto kAll = SECRegistry::permissionAllAccess;

class Registry : public testing::Test {
 protected:
  Registry() {
    EXPECT_TRUE(registry_.Connect(HKEY_CURRENT_USER));
    EXPECT_TRUE(registry_.Create(base_.path().c_str()));
  }

  zo::test::RegistryBase base_;
  SECRegistry registry_;
};

TEST_F(Registry, ValuesOfAnyTypeAndSizeComeBackByteForByte) {
  using Data = std::vector<unsigned char>;
  const struct {
    const wchar_t* name;
    SECRegistry::KeyValueTypes type;
    Data data;
  } values[] = {{L"quad", SECRegistry::typeQuadWord, {1, 2, 3, 4, 5, 6, 7, 255}},
                {L"", SECRegistry::typeBinary, Data(100'000, 7)}};
  for (const auto& [name, type, data] : values)
    ASSERT_TRUE(registry_.SetValue(name, type, data.data(), static_cast<DWORD>(data.size())));
  for (const auto& value : values) {
    Data data(value.data.size() + 1, 0xEE);
    SECRegistry::KeyValueTypes type{};
    unsigned long size = static_cast<unsigned long>(data.size());
    ASSERT_TRUE(registry_.QueryValue(value.name, type, data.data(), size));
    data.resize(size);
    EXPECT_TRUE(type == value.type && data == value.data);
    unsigned long tooSmall = size - 1;
    EXPECT_FALSE(registry_.QueryValue(value.name, type, data.data(), tooSmall));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(tooSmall, size);
  }
}

TEST_F(Registry, NamesUpToThePlatformsLimitsAreEnumerated) {
  const std::wstring longKey(255, L'k'), longValue(16383, L'v');
  EXPECT_TRUE(registry_.SetValue(longValue.c_str(), 5));
  ZoString name;
  SECRegistry::KeyValueTypes type{};
  ASSERT_TRUE(registry_.EnumerateValues(0, name, type));
  EXPECT_TRUE(name.view() == longValue && type == SECRegistry::typeDoubleWord);

  EXPECT_TRUE(registry_.Create(base_.path(longKey).c_str()));
  EXPECT_FALSE(registry_.Create(base_.path(longKey + L"kk").c_str()));
  ASSERT_TRUE(registry_.Open(base_.path().c_str(), kAll));
  EXPECT_TRUE(registry_.EnumerateKeys(0, name) && name.view() == longKey);
  EXPECT_FALSE(registry_.EnumerateKeys(1, name));
}

TEST_F(Registry, OnlyARecursiveDeletionTakesSubkeysAndNoneTheRoot) {
  ASSERT_TRUE(registry_.Create(base_.path(L"a\\b").c_str()));
  EXPECT_FALSE(registry_.DeleteKey(base_.path(L"a").c_str(), false));
  EXPECT_TRUE(registry_.Open(base_.path(L"a\\b").c_str(), kAll));
  EXPECT_TRUE(registry_.DeleteKey(base_.path(L"a").c_str(), true));
  EXPECT_FALSE(registry_.Open(base_.path(L"a").c_str(), kAll));
  // A root of the test's own, so that a fault here deletes nothing else.
  SECRegistry below;
  ASSERT_TRUE(registry_.Open(base_.path().c_str(), kAll) && below.Connect(registry_.key()) &&
              below.Create(L"kept"));
  for (const wchar_t* path : {L"", L"\\\\", static_cast<const wchar_t*>(nullptr)})
    EXPECT_FALSE(below.DeleteKey(path, true) || below.DeleteKey(path, false));
  EXPECT_TRUE(below.Open(L"kept", kAll));
}

TEST_F(Registry, WithoutAnOpenKeyEverythingIsRefused) {
  EXPECT_FALSE(registry_.Open(base_.path(L"missing").c_str(), kAll));
  SECRegistry::KeyValueTypes type{};
  unsigned long size = 0;
  ZoString name;
  EXPECT_FALSE(registry_.QueryValue(L"a", type, nullptr, size));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_FALSE(registry_.SetValue(L"a", 1) || registry_.DeleteValue(L"a"));
  EXPECT_FALSE(registry_.EnumerateKeys(0, name) || registry_.EnumerateValues(0, name, type));
}

}  // namespace
