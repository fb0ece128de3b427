#include <gtest/gtest.h>
#include <windows.h>
#include <zo/host/registry.h>

#include <string>
#include <vector>

#include "platform/registry_path.h"
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

  std::vector<std::wstring> keys() {
    std::vector<std::wstring> names;
    ZoString name;
    while (registry_.EnumerateKeys(static_cast<DWORD>(names.size()), name))
      names.emplace_back(name.view());
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_ITEMS});
    return names;
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
                {L"a\\b@c", SECRegistry::typeBinary, {1, 2, 3}},
                {L"nothing", SECRegistry::typeNone, {}},
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
    if (size == 0) continue;
    unsigned long tooSmall = size - 1;
    EXPECT_FALSE(registry_.QueryValue(value.name, type, data.data(), tooSmall));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MORE_DATA});
    EXPECT_EQ(tooSmall, size);
  }
}

TEST_F(Registry, NamesUpToThePlatformsLimitsAreEnumerated) {
  const std::wstring longKey(255, L'k');
  const std::wstring longValue(16383, L'v');
  EXPECT_TRUE(registry_.SetValue(longValue.c_str(), 5));
  ZoString name;
  SECRegistry::KeyValueTypes type{};
  ASSERT_TRUE(registry_.EnumerateValues(0, name, type));
  EXPECT_TRUE(name.view() == longValue && type == SECRegistry::typeDoubleWord);
  EXPECT_FALSE(registry_.EnumerateValues(1, name, type));
  EXPECT_EQ(name.view(), longValue);

  EXPECT_TRUE(registry_.Create(base_.path(longKey).c_str()));
  EXPECT_FALSE(registry_.Create(base_.path(longKey + L"kk").c_str()));
  EXPECT_EQ(registry_.key(), nullptr);
  ASSERT_TRUE(registry_.Open(base_.path().c_str(), kAll));
  EXPECT_EQ(keys(), std::vector<std::wstring>{longKey});
}

TEST_F(Registry, EmptyLevelsCountForNothing) {
  const std::pair<const wchar_t*, const wchar_t*> paths[] = {
      {L"", L""}, {L"\\\\", L""}, {L"a\\b", L"a\\b"}, {L"\\\\a\\\\\\b\\\\", L"a\\b"}};
  for (const auto& [path, same] : paths) EXPECT_EQ(zo::withoutEmptyLevels(path), same);
  ASSERT_TRUE(registry_.Create((L"\\" + base_.path(L"\\a\\\\b\\")).c_str()));
  EXPECT_TRUE(registry_.Open(base_.path(L"a\\b").c_str(), kAll));
  EXPECT_TRUE(registry_.Open(base_.path(L"\\\\A\\B\\\\").c_str(), kAll));
}

TEST_F(Registry, OnlyARecursiveDeletionTakesSubkeysAndNoneTheRoot) {
  ASSERT_TRUE(registry_.Create(base_.path(L"a\\b").c_str()));
  EXPECT_TRUE(registry_.SetValue(L"value", 1));
  EXPECT_FALSE(registry_.DeleteKey(base_.path(L"a").c_str(), false));
  EXPECT_TRUE(registry_.Open(base_.path(L"a\\b").c_str(), kAll));
  EXPECT_TRUE(registry_.DeleteKey(base_.path(L"a").c_str(), true));
  EXPECT_FALSE(registry_.Open(base_.path(L"a").c_str(), kAll));
  EXPECT_FALSE(registry_.DeleteKey(base_.path(L"a").c_str(), true));

  // A root of the test's own, so that a fault here deletes nothing else.
  SECRegistry below;
  ASSERT_TRUE(registry_.Open(base_.path().c_str(), kAll));
  ASSERT_TRUE(below.Connect(registry_.key()) && below.Create(L"kept"));
  for (const wchar_t* path : {L"", L"\\\\", static_cast<const wchar_t*>(nullptr)})
    EXPECT_FALSE(below.DeleteKey(path, true) || below.DeleteKey(path, false));
  EXPECT_EQ(keys(), std::vector<std::wstring>{L"kept"});
}

TEST_F(Registry, WithoutConnectionOrOpenKeyEverythingIsRefused) {
  SECRegistry none;
  EXPECT_FALSE(none.Connect(nullptr) || none.Open(L"Software", kAll));
  EXPECT_FALSE(none.Create(L"Software") || none.DeleteKey(base_.path().c_str(), true));
  EXPECT_TRUE(registry_.Close());
  EXPECT_FALSE(registry_.Open(base_.path(L"missing").c_str(), kAll));
  for (SECRegistry* registry : {&none, &registry_}) {
    SECRegistry::KeyValueTypes type{};
    unsigned long size = 0;
    ZoString name;
    EXPECT_FALSE(registry->QueryValue(L"a", type, nullptr, size));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    EXPECT_FALSE(registry->SetValue(L"a", 1) || registry->DeleteValue(L"a") || registry->Close());
    EXPECT_FALSE(registry->EnumerateKeys(0, name) || registry->EnumerateValues(0, name, type));
  }
}

}  // namespace
