#include <gtest/gtest.h>
#include <zo/results.h>
#include <zo/system.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace {

std::wstring ended;

struct Globals : ZoDwgGlobals {
  explicit Globals(const wchar_t* name) : name_(name) {}
  ~Globals() override { ended += name_.view(); }
  ZoString name() override { return name_; }
  int release(const wchar_t* module) override {
    if (name_ == ZoString(L"throws")) throw std::runtime_error("stays");
    if (std::wstring_view(module) != L"mine") return 1;
    delete this;
    return 0;
  }

 private:
  ZoString name_;
};

TEST(Cad, GlobalsGoWithTheirModuleOrWithTheService) {
  auto cad = std::make_unique<ZoStdCad>();
  for (const wchar_t* name : {L"a", L"throws", L"b"})
    EXPECT_EQ(cad->registerGlobals(new Globals(name)), 0);
  Globals sameName(L"A");
  EXPECT_EQ(cad->registerGlobals(&sameName), ZoResult::refused);
  cad->poolRelease(nullptr);
  EXPECT_THROW(cad->poolRelease(L"other"), std::runtime_error);
  EXPECT_EQ(ended, L"");
  EXPECT_THROW(cad->poolRelease(L"mine"), std::runtime_error);
  EXPECT_EQ(ended.size(), 2u) << "the others are asked all the same";
  EXPECT_TRUE(cad->dwgGlobals(L"THROWS") && !cad->dwgGlobals(L"a"));
  cad.reset();
  EXPECT_TRUE(ended.ends_with(L"throws"));
}

}  // namespace
