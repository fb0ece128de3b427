// XML and JSON when memory runs out.
#include <gtest/gtest.h>
#include <zo/containers.h>
#include <zo/variant.h>
#include <zo/xml.h>

#include <memory>
#include <utility>

#include "support/failing_memory.h"
#include "support/printers.h"

namespace {

using zo::test::failEveryRequest;

ZoVariant part() {
  ZoVariant value(ZoVariant::kDict);
  EXPECT_EQ(value.put(L"name", L"a screw that has a long name\r"), 0);
  EXPECT_EQ(value.put(L"size/length", ZoVariant(20.5, ZoTypeCode::Length)), 0);
  EXPECT_EQ(value.put(L"list", ZoVariant(ZoArray<ZoVariant>{1, L"\xD800", {}})), 0);
  return value;
}

TEST(OutOfMemory, JsonStaysOrCompletes) {
  const ZoVariant original = part();
  ZoString written;
  ASSERT_EQ(ZoJson::format(original, written), 0);
  failEveryRequest(
      "parse", [] { return ZoVariant(L"old"); },
      [&](ZoVariant& v) { return ZoJson::parse(written, v); },
      [&](const ZoVariant& v, bool done) { EXPECT_EQ(v, done ? original : ZoVariant(L"old")); });
  failEveryRequest(
      "format", [] { return ZoString(L"old"); },
      [&](ZoString& text) { return ZoJson::format(original, text); },
      [&](const ZoString& text, bool done) { EXPECT_EQ(text, done ? written : L"old"); });
}

TEST(OutOfMemory, DocumentsStayOrComplete) {
  const ZoVariant original = part();
  using Document = std::unique_ptr<ZoXMLClass>;
  const auto old = [] {
    auto document = std::make_unique<ZoXMLClass>();
    EXPECT_EQ(document->parse(L"<old><a/></old>"), 0);
    return document;
  };
  const auto isOld = [](const Document& document) {
    ZoString text;
    EXPECT_EQ(document->write(text, ZoXMLClass::kAsIs), 0);
    EXPECT_EQ(text, L"<?xml version=\"1.0\"?>\n<old><a/></old>\n");
  };
  failEveryRequest(
      "fromVariant and back", [&] { return std::make_pair(old(), ZoVariant()); },
      [&](auto& state) {
        const int code = ZoXMLClass::fromVariant(original, *state.first);
        return code == 0 ? state.first->toVariant(state.second) : code;
      },
      [&](const auto& state, bool done) {
        EXPECT_EQ(state.second, done ? original : ZoVariant());
      });
  failEveryRequest(
      "parse", old, [](Document& document) { return document->parse(L"<new>&lt;</new>"); },
      [&](const Document& document, bool done) {
        EXPECT_EQ(document->root().text(), done ? L"<" : L"");
        if (!done) isOld(document);
      });
  failEveryRequest(
      "put", old, [](Document& document) { return document->put(L"b/c/@d", L"x"); },
      [&](const Document& document, bool done) {
        EXPECT_EQ(document->root().find(L"b/c").attribute(L"d"), done ? L"x" : L"");
        if (!done) isOld(document);
      });
}

}  // namespace
