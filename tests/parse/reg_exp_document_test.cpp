// The example of docs/regular-expressions.md compiles, and does what its remarks say.
#include <gtest/gtest.h>
#include <zo/parse.h>
#include <zo/strings.h>

#include <sstream>
#include <string>

#include "shown.h"
#include "support/documents.h"
#include "support/file_bytes.h"

namespace zo::test {
namespace {

TEST(RegExp, TheDocumentsExampleWorks) {
  std::wostringstream sizes;
  // clang-format off
  // ```cpp
  const ZoRegExp thread(L"M(?<size>[0-9]+)x(?<length>[0-9]+)");
  ZoString name = L"bolts M8x20 and M10x60";
  unsigned length = 0;
  const unsigned at = name.index(thread, &length);  // 6, and 5 long
  bool isOne = ZoString(L"M8x20").matches(thread);  // the whole text
  for (const ZoSearch& match : ZoSearch(thread, name))
    sizes << match.match(L"size") << L' ';  // 8 10
  int code = ZoSearch::replaceAll(name, thread, L"${length} long M$1");
  name(ZoRegExp(L"^\\w+")) = L"screws";  // screws 20 long M8 and 60 long M10
  // ```
  // clang-format on
  EXPECT_TRUE(at == 6 && length == 5 && isOne && code == 0 && sizes.str() == L"8 10 ");
  EXPECT_EQ(name, L"screws 20 long M8 and 60 long M10");

  const auto blockOf = [](const char* file, bool isIndented) {
    std::istringstream lines(fileBytes(sourcePath(file)));
    const std::string indent = isIndented ? "  " : "", mark = isIndented ? "// ```" : "```";
    std::string block, line;
    while (std::getline(lines, line) && !line.starts_with(indent + mark + "cpp")) continue;
    while (std::getline(lines, line) && !line.starts_with(indent + mark))
      block += line.substr(indent.size()) + '\n';
    return block;
  };
  EXPECT_EQ(blockOf("docs/regular-expressions.md", false),
            blockOf("tests/parse/reg_exp_document_test.cpp", true));
}

}  // namespace
}  // namespace zo::test
