// The tool's decisions that need no library: patterns, names, exit codes, the progress line.
// check.py runs the tool itself.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../../tools/shared/exit_code.h"
#include "../../tools/shared/progress.h"
#include "../../tools/shared/text.h"
#include "../../tools/zolib/glob.h"
#include "../../tools/zolib/names.h"

namespace zolib {
namespace {

TEST(Tool, PatternsFitWhatTheySay) {
  const struct {
    const wchar_t *pattern, *name;
    bool fits;
  } kTable[] = {
      {L"*.dwg", L"m8.dwg", true},
      {L"*.dwg", L"bolts/steel/M8.DWG", true},
      {L"*.dwg", L"m8.dwg.bak", false},
      {L"bolts", L"bolts/steel/m8.dwg", true},
      {L"steel", L"bolts/steel/m8.dwg", true},
      {L"steel", L"bolts/steelwork", false},
      {L"/steel", L"bolts/steel/m8.dwg", false},
      {L"bolts/*.dwg", L"bolts\\m8.dwg", true},
      {L"bolts/*.dwg", L"bolts/steel/m8.dwg", false},
      {L"bolts/*.dwg", L"old/bolts/m8.dwg", false},
      {L"bolts/**.dwg", L"bolts/steel/m8.dwg", true},
      {L"bolts/**/m8.*", L"bolts/m8.dwg", true},
      {L"bolts/**/m8.*", L"bolts/a/b/m8.dwg", true},
      {L"bolts/**/m8.*", L"bolts/a/bm8.dwg", false},
      {L".\\bolts\\", L"Bolts/x", true},
      {L"m?.dwg", L"m8.dwg", true},
      {L"m?.dwg", L"m10.dwg", false},
      {L"m?x", L"m/x", false},
      {L"\u00C4*", L"\u00E4rger.txt", true},
      {L"**", L"a/b", true},
      {L"m[0-9x].dwg", L"M8.DWG", true},
      {L"m[0-9x].dwg", L"mx.dwg", true},
      {L"m[0-9x].dwg", L"m10.dwg", false},
      {L"m[!0-9].dwg", L"mx.dwg", true},
      {L"m[!0-9].dwg", L"m8.dwg", false},
      {L"a[!b]c", L"a/c", false},
      {L"[*]", L"*", true},
      {L"[*]", L"a", false},
      {L"[]a]", L"]", true},
      {L"[x", L"[x", true},
      {L"*.{dwg,d[xy]f}", L"a/m8.dxf", true},
      {L"*.{dwg,dxf}", L"m8.dgn", false},
      {L"{bolts,nuts{,-old}}/*", L"nuts-old/m8", true},
      {L"{bolts,nuts{,-old}}/*", L"x/nuts/m8", false},
      {L"{}", L"{}", true},
      {L"{a", L"{a", true},
      {L"{a,b}{a,b}{a,b}{a,b}{a,b}{a,b}{a,b}{a,b}{a,b}{a,b}", L"aaaaaaaabx", false},  // a bound
      {L"a*a*a*a*a*a*a*a*a*b", L"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa", false},
  };
  for (const auto& row : kTable)
    EXPECT_EQ(Glob(row.pattern).fits(folded(row.name)), row.fits)
        << toUtf8(row.pattern) << " / " << toUtf8(row.name);

  // Named members are whole names or folders; patterns among them fit at any depth.
  Selection selection({L"docs", L"a.txt", L"*.dwg", L"none", L"no?"}, {}, {L"*.bak"});
  const auto wants = [&](const wchar_t* name) { return selection.wants(name); };
  EXPECT_TRUE(wants(L"docs/x/y") && wants(L"A.TXT") && wants(L"x/m8.dwg"));
  EXPECT_FALSE(wants(L"x/a.txt") || wants(L"x/docs/y") || wants(L"docs/x.bak") || wants(L"docs2"));
  EXPECT_EQ(selection.unmatched(), (std::vector<std::wstring>{L"no?", L"none"}));
}

TEST(Tool, PathsBecomeMembersThatStayRelative) {
  const std::pair<const wchar_t*, const wchar_t*> kTable[] = {
      {L"docs/a.md", L"docs/a.md"},
      {L".\\docs\\\\a.md", L"docs/a.md"},
      {L"docs/../x/a.md", L"x/a.md"},
      {L"../docs", L"docs"},
      {L"../x/docs", L"docs"},
      {L"/home/u/docs", L"docs"},
      {L"C:\\x\\docs\\", L"docs"},
      {L"C:docs", L"docs"},
      {L".", L""},
      {L"..", L""},
      {L"/", L""},
      {L"a/..", L""},
  };
  for (const auto& [path, member] : kTable)
    EXPECT_EQ(toUtf8(memberName(path)), toUtf8(member)) << toUtf8(path);
}

TEST(Tool, ProgressAndExitCodesSayTheWorst) {
  EXPECT_EQ(progressLine(50 << 20, 100 << 20, 10, "bolts/m8.dwg"),
            " 50 %     5.0 MB/s  0:10 left  bolts/m8.dwg");
  EXPECT_EQ(progressLine(0, 0, 0, ""), "  0 %        0 B/s  0:00 left  ");
  const std::string longName = "a/" + std::string(200, 'x') + "/\xC3\xA4.dwg";
  const std::string line = progressLine(1, 2, 1, longName);
  EXPECT_TRUE(line.size() <= 78 && line.ends_with("/\xC3\xA4.dwg")) << line;
  EXPECT_EQ(readableSize(999), "999 B");
  EXPECT_EQ(readableSize(1536), "1.5 KB");
  EXPECT_EQ(readableSize(3ULL << 40), "3.0 TB");
  EXPECT_EQ(ratioText(1, 3) + ratioText(1, 0) + ratioText(5, 2), "33%-250%");
  const FILETIME late = fileTime(0x7FFF'0000'0000'0000);  // what a file may say
  EXPECT_EQ(std::string(localTime(late)).substr(0, 6), "30827-");
  EXPECT_EQ(localTime({}), "-");

  EXPECT_EQ(graver(kOk, kWarnings), kWarnings);
  EXPECT_EQ(graver(kNotFound, kWarnings), kNotFound);
  EXPECT_EQ(graver(kNotFound, kFailed), kFailed);
  EXPECT_EQ(graver(kDamaged, kFailed), kDamaged);
  EXPECT_EQ(graver(kDamaged, kCancelled), kCancelled);
}

}  // namespace
}  // namespace zolib
