// Result codes as texts: one table, which the headers' constants and docs/results.md must match.
#include "attach/result_table.h"

#include <gtest/gtest.h>
#include <zo/text/string.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "support/documents.h"

namespace {

constexpr const char* kFamilies[] = {
    "common",        "numbers",    "containers", "variants",    "geometry",  "names",
    "files",         "fileSystem", "libraries",  "compression", "lzma",      "services",
    "configuration", "errors",     "execute",    "exceptions",  "waits",     "expressions",
    "messages",      "search",     "opening",    "xml",         "standards", "dialogs"};

std::string nameOf(ZoResultFamily family) {
  const bool isApart = family == ZoResultFamily::cInterface;  // numbered apart from the others
  return isApart ? "cInterface" : kFamilies[static_cast<int>(family)];
}

std::vector<std::string> linesOf(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

TEST(ResultText, EveryCodeHasItsSentenceAndOthersTellTheirNumber) {
  std::set<std::pair<ZoResultFamily, std::wstring>> texts;
  for (const zo::ResultEntry& entry : zo::resultTable()) {
    const std::wstring text = zoResultText(entry.code, entry.family).data();
    EXPECT_EQ(text, entry.text);
    EXPECT_TRUE(text.ends_with(L'.') && texts.emplace(entry.family, text).second) << entry.name;
  }
  const struct {
    int code;
    ZoResultFamily family;
    const wchar_t* text;
  } others[] = {
      {0, ZoResultFamily::libraries, L"Success."},  // the common ones hold for most families
      {2, ZoResultFamily::files, L"Out of memory. Nothing was lost."},
      {1000, ZoResultFamily::libraries, L"Unknown result code 1000."},
      {-5, ZoResultFamily::common, L"Unknown result code -5."},
      {8, ZoResultFamily::lzma, L"Unknown result code 8."},  // but not for these
      {5, ZoResultFamily::waits, L"Unknown result code 5."},
      {2, static_cast<ZoResultFamily>(99), L"Out of memory. Nothing was lost."},
  };
  for (const auto& [code, family, text] : others) EXPECT_EQ(zoResultText(code, family), text);
}

TEST(ResultText, TheTableHasEveryConstantOfTheHeaders) {
  std::set<std::string> names;
  for (const zo::ResultEntry& entry : zo::resultTable()) names.insert(entry.name);
  const std::regex constant(R"(inline constexpr int (\w+) = .*)");
  int seen = 0;
  for (const auto& file :
       std::filesystem::recursive_directory_iterator(zo::test::sourcePath("include/zo"))) {
    bool inside = false;
    for (const std::string& line : linesOf(file.path())) {
      if (line.starts_with("namespace ZoResult")) inside = true;
      if (line.starts_with("}")) inside = false;
      std::smatch match;
      if (!inside || !std::regex_match(line, match, constant)) continue;
      ++seen;
      EXPECT_TRUE(names.contains("ZoResult::" + match.str(1))) << line;
    }
  }
  EXPECT_GE(seen, 17);
}

TEST(ResultText, TheDocumentShowsTheTable) {
  std::vector<std::string> wanted, found;
  for (const zo::ResultEntry* before = nullptr; const zo::ResultEntry& entry : zo::resultTable()) {
    if (!before || before->family != entry.family) {
      wanted.push_back("## " + nameOf(entry.family));
      wanted.insert(wanted.end(), {"| code | constant | text |", "|---:|---|---|"});
    }
    wanted.push_back("| " + std::to_string(entry.code) + " | `" + entry.name + "` | " +
                     std::string(entry.text, entry.text + std::wcslen(entry.text)) + " |");
    before = &entry;
  }
  std::ranges::copy_if(
      linesOf(zo::test::sourcePath("docs/results.md")), std::back_inserter(found),
      [](const std::string& s) { return s.starts_with("|") || s.starts_with("## "); });
  if (wanted == found) return;
  std::string text;
  for (const std::string& line : wanted) text += line + '\n';
  FAIL() << "docs/results.md should show:\n" << text;
}

}  // namespace
