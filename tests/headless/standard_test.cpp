#include <gtest/gtest.h>
#include <zo/files/file_save.h>
#include <zo/files/text_file.h>
#include <zo/library/library.h>
#include <zo/results.h>
#include <zo/system.h>
#include <zo/variant/variant.h>
#include <zo/xml/json.h>
#include <zo/xml/xml_class.h>

#include <filesystem>
#include <random>
#include <string>
#include <thread>

#include "headless/notices.h"
#include "headless/standard_name.h"
#include "support/documents.h"
#include "support/registry_base.h"
#include "support/temp_folder.h"
#include "system/attached.h"

namespace {

using zo::test::Attached;
using zo::test::narrow;
using zo::test::Notices;

using Entries = std::initializer_list<std::pair<const wchar_t*, ZoVariant>>;

ZoVariant standard(const ZoString& name, Entries more = {}) {
  ZoVariant value(ZoVariant::kDict, ZoTypeCode::Standard);
  EXPECT_EQ(value.put(L"Name", name), 0);
  for (const auto& [key, entry] : more) EXPECT_EQ(value.put(key, entry), 0);
  return value;
}

// The title of what is found, or the code.
std::wstring titleOf(ZoStandardMgr& standards, const wchar_t* name) {
  ZoVariant value;
  const int code = standards.getStandard(name, value);
  return code ? std::to_wstring(code) : std::wstring(value.text(L"Title").view());
}

template <class List, class... Arguments>
std::wstring listed(ZoStandardMgr& standards, List list, const Arguments&... arguments) {
  ZoArray<ZoString> texts;
  if (const int code = (standards.*list)(arguments..., texts)) return std::to_wstring(code);
  std::wstring text;
  for (const ZoString& each : texts) (text += text.empty() ? L"" : L"|") += each.view();
  return text;
}

std::wstring successorOf(ZoStandardMgr& standards, const wchar_t* name) {
  ZoString successor;
  const int code = standards.getSuccessor(name, successor);
  return code ? std::to_wstring(code) : std::wstring(successor.view());
}

TEST(Standard, IsFoundUnderEveryUsualSpelling) {
  const struct {
    const wchar_t* spelling;
    const wchar_t* key;
    const wchar_t* core = nullptr;  // the key
    const wchar_t* edition = L"";
  } names[] = {
      {L"ISO 4014", L"ISO4014"},
      {L"  iso-04014 : 2011 ", L"ISO4014", nullptr, L"2011"},
      {L"DIN EN ISO 4014", L"DINENISO4014", L"ISO4014"},
      {L"dineniso\xA0"
       L"4014",
       L"DINENISO4014", L"ISO4014"},
      {L"BS IEC 60050", L"BSIEC60050", L"IEC60050"},
      {L"DIN EN 10025", L"DINEN10025", L"EN10025"},
      {L"DIN 4014", L"DIN4014"},
      {L"EN 1", L"EN1"},
      {L"ISO 286-1", L"ISO286-1"},
      {L"iso286/001", L"ISO286-1"},
      {L"ISO 2861", L"ISO2861"},
      {L"B18.2.1", L"B18-2-1"},
      {L"M8 x 1,25", L"M8X1-25"},
      {L"007", L"7"},
      {L"0", L"0"},
      {L"a00", L"A0"},
      {L"\xF6norm EN 5", L"\xD6NORMEN5", L"EN5"},
      {L" -/ ", L""},
      {L"", L""},
      {L":2011", L"", nullptr, L"2011"},
  };
  for (const auto& [spelling, key, core, edition] : names) {
    const zo::StandardName name(spelling);
    EXPECT_EQ(name.key(), key) << narrow(spelling);
    EXPECT_EQ(name.core(), core ? core : key) << narrow(spelling);
    EXPECT_EQ(name.edition(), edition) << narrow(spelling);
  }
  EXPECT_EQ(zo::StandardName(std::wstring(255, L'a')).key().size(), 255u);
  EXPECT_EQ(zo::StandardName(std::wstring(256, L'a')).key(), L"");
  EXPECT_EQ(zo::StandardName(std::wstring(254, L'a') + L"1-1").key(), L"");

  ZoStdStandardMgr standards;
  for (const wchar_t* name : {L"ISO 4014", L"DIN EN ISO 4762", L"DIN EN ISO 1", L"ISO 1"})
    EXPECT_EQ(standards.add(standard(name, {{L"Title", name}}), L"m"), 0);
  EXPECT_EQ(titleOf(standards, L"nf en iso 4014"), L"ISO 4014");
  EXPECT_EQ(titleOf(standards, L"iso4762"), L"DIN EN ISO 4762");
  EXPECT_EQ(titleOf(standards, L"BS EN ISO 4762"), L"DIN EN ISO 4762");
  EXPECT_EQ(titleOf(standards, L"din en iso 1"), L"DIN EN ISO 1");
  EXPECT_EQ(titleOf(standards, L"BS ISO 1"), L"ISO 1");
  for (const wchar_t* none : {L"DIN 4014", L"4014", L"ISO 401", L"", L"-", L"ISO 4014:2011"})
    EXPECT_EQ(titleOf(standards, none), L"1") << narrow(none);
  for (const wchar_t* other : {L"ISO 4762", L"BS EN ISO 4762", L"DIN ISO 1", L"-", L"ISO 1:2011"})
    EXPECT_EQ(standards.remove(other, L"m"), 1) << narrow(other);
  EXPECT_EQ(standards.remove(L"din-en-iso4762", L"m"), 0);
  EXPECT_EQ(standards.add(standard(ZoString().append(L'x', 255)), nullptr), 0);
  EXPECT_EQ(standards.remove(ZoString().append(L'X', 255), nullptr), 0);
}

TEST(Standard, OfSeveralEditionsTheNewestIsMeantAndSuccessorsAreFollowed) {
  ZoStdStandardMgr standards;
  const auto add = [&](const wchar_t* name, const wchar_t* edition, const wchar_t* by,
                       const wchar_t* module = L"m") {
    const std::wstring title = std::wstring(name) + L"/" + edition + L"/" + module;
    EXPECT_EQ(standards.add(standard(name, {{L"Edition", edition},
                                            {L"ReplacedBy", by},
                                            {L"Title", ZoString(title)}}),
                            module),
              0);
  };
  add(L"ISO 1", L"1999", L"");
  add(L"ISO 1", L"2011-04", L"");
  add(L"ISO 1", L"2004", L"");
  EXPECT_EQ(titleOf(standards, L"ISO 1"), L"ISO 1/2011-04/m");
  EXPECT_EQ(titleOf(standards, L"ISO 1:2004"), L"ISO 1/2004/m");
  EXPECT_EQ(titleOf(standards, L"ISO 1-1999"), L"ISO 1/1999/m");
  EXPECT_EQ(titleOf(standards, L"ISO 1-2000"), L"1");
  EXPECT_EQ(listed(standards, &ZoStandardMgr::getEditions, L"iso1"), L"2011-04|2004|1999");
  EXPECT_EQ(successorOf(standards, L"ISO 1"), L"1") << "nothing has replaced it";
  EXPECT_EQ(successorOf(standards, L"ISO 1:1999"), L"ISO 1:2011-04");

  add(L"ISO 1", L"2004", L"", L"other");
  EXPECT_EQ(titleOf(standards, L"ISO 1:2004"), L"ISO 1/2004/other") << "the last comes first";
  add(L"ISO 1", L"2004", L"x");
  EXPECT_EQ(titleOf(standards, L"ISO 1:2004"), L"ISO 1/2004/m") << "its own is replaced";
  standards.poolRelease(L"M");
  EXPECT_EQ(listed(standards, &ZoStandardMgr::getEditions, L"ISO 1"), L"2004");
  EXPECT_EQ(titleOf(standards, L"ISO 1"), L"ISO 1/2004/other");

  add(L"A 1", L"", L"A 2");
  add(L"A 2", L"", L"a-03");
  add(L"A 3", L"", L"B 9");
  EXPECT_EQ(successorOf(standards, L"A 1"), L"B 9") << "though that is not there";
  add(L"A 3", L"", L"A 4");
  add(L"A 4", L"", L"");
  EXPECT_EQ(successorOf(standards, L"a1"), L"A 4");
  add(L"A 4", L"", L"A 2");
  for (const wchar_t* name : {L"A 1", L"A 2", L"A 4"})
    EXPECT_EQ(successorOf(standards, name), std::to_wstring(ZoResult::standardCircle));
  EXPECT_EQ(successorOf(standards, L"none"), L"1");

  for (const wchar_t* edition : {L"", L"2001", L"2011"})
    add(L"DIN ISO 5", edition, L"DIN EN ISO 5");
  for (const wchar_t* name : {L"DIN ISO 5", L"DIN ISO 5:2001", L"ISO 5"})
    EXPECT_EQ(successorOf(standards, name), L"DIN EN ISO 5") << "which is not there";
  add(L"DIN EN ISO 5", L"", L"ISO 5");
  EXPECT_EQ(successorOf(standards, L"DIN ISO 5"), L"ISO 5");
}

TEST(Standard, TablesGiveRowsByNominalSize) {
  ZoStdStandardMgr standards;
  ZoVariant value = standard(L"ISO 1");
  for (const wchar_t* path : {L"Tables/main/M10/s", L"Tables/main/M8/s", L"Tables/main/M4/s",
                              L"Tables/main/M8 x 1/s", L"Tables/main/A4/s"})
    ASSERT_EQ(value.put(path, path), 0);
  ASSERT_EQ(standards.add(value, L"m"), 0);
  EXPECT_EQ(listed(standards, &ZoStandardMgr::getTables, L"ISO 1"), L"main");
  EXPECT_EQ(listed(standards, &ZoStandardMgr::getSizes, L"ISO 1", L""), L"A4|M4|M8|M8 x 1|M10");
  const auto row = [&](const wchar_t* table, const wchar_t* size) {
    ZoVariant found;
    const int code = standards.getRow(L"iso1", table, size, found);
    return code ? std::to_wstring(code) : std::wstring(found.text(L"s").view().substr(12));
  };
  EXPECT_EQ(row(L"MAIN", L"M8"), L"M8/s");
  EXPECT_EQ(row(L"", L"m 08"), L"M8/s");
  EXPECT_EQ(row(L"", L"8"), L"M8/s");
  EXPECT_EQ(row(L"", L"m8x1"), L"M8 x 1/s");
  for (const wchar_t* none : {L"4", L"9", L"", L"M", L"x"}) EXPECT_EQ(row(L"", none), L"1");
  EXPECT_EQ(row(L"other", L"M8"), L"1");
  ASSERT_EQ(value.put(L"Tables/second", ZoVariant(ZoVariant::kDict)), 0);
  ASSERT_EQ(standards.add(value, L"m"), 0);
  EXPECT_EQ(row(L"", L"M8"), L"1") << "there are two tables";
}

TEST(Standard, OnlyWholeStandardsGetIn) {
  ZoStdStandardMgr standards;
  const Entries bad = {{L"Name", 1},        {L"Name", L""},
                       {L"Name", L"-"},     {L"Name", L"ISO 1:2011"},
                       {L"Edition", 2011},  {L"ReplacedBy", ZoVariant(ZoVariant::kDict)},
                       {L"Class", 1.5},     {L"Name", ZoString().append(L'x', 256)},
                       {L"Tables", 1},      {L"Tables/t", L"x"},
                       {L"Tables/t/M8", 1}, {L"Withdrawn", L"true"},
                       {L"Withdrawn", 2},   {L"Withdrawn", 1.0}};
  for (const auto& [path, value] : bad) {
    ZoVariant two(ZoVariant::kSequence);
    ASSERT_EQ(two.put(L"0", standard(L"ISO 1")), 0);
    ASSERT_EQ(two.put(L"1", standard(L"ISO 2")), 0);
    ASSERT_EQ(two.put(ZoString(L"1/") + path, value), 0);
    EXPECT_EQ(standards.add(two, L"m"), ZoResult::invalid) << narrow(path);
  }
  for (const ZoVariant& none : {ZoVariant(), ZoVariant(1), ZoVariant(L"ISO 1")})
    EXPECT_EQ(standards.add(none, L"m"), ZoResult::invalid);
  EXPECT_EQ(listed(standards, &ZoStandardMgr::find, ZoStandardFilter()), L"");
  ZoVariant foreign = standard(L"ISO 1", {{L"Own/deep", 7}}), found;
  ASSERT_EQ(foreign.put(L"Self", foreign), 0);
  EXPECT_EQ(standards.add(foreign, nullptr), 0);
  EXPECT_EQ(standards.getStandard(L"ISO 1", found), 0);
  EXPECT_EQ(found, foreign) << "what it does not know it keeps";
}

TEST(Standard, AreListedByNameClassFirmAndCatalogue) {
  ZoStdStandardMgr standards;
  ASSERT_EQ(standards.add(standard(L"ISO 10", {{L"Class", L"Bolts"}, {L"Firm", L"F"}}), L"m"), 0);
  ASSERT_EQ(standards.add(standard(L"ISO 9", {{L"Class", L"bolts"}, {L"Catalog", L"C"}}), L"m"), 0);
  ASSERT_EQ(standards.add(standard(L"DIN-9", {{L"ReplacedBy", L"ISO 9"}}), L"m"), 0);
  ASSERT_EQ(standards.add(standard(L"DIN 8", {{L"Withdrawn", true}}), L"m"), 0);
  const auto list = [&](const ZoStandardFilter& filter) {
    return listed(standards, &ZoStandardMgr::find, filter);
  };
  EXPECT_EQ(list({}), L"DIN 8|DIN-9|ISO 9|ISO 10");
  EXPECT_EQ(list({.pattern = L"iso*"}), L"ISO 9|ISO 10");
  EXPECT_EQ(list({.pattern = L"*n9"}), L"DIN-9");
  EXPECT_EQ(list({.standardClass = L"BOLTS"}), L"ISO 9|ISO 10");
  EXPECT_EQ(list({.firm = L"f"}), L"ISO 10");
  EXPECT_EQ(list({.catalog = L"C"}), L"ISO 9");
  EXPECT_EQ(list({.withdrawn = false}), L"ISO 9|ISO 10");
  EXPECT_EQ(list({.pattern = L"x"}), L"");
}

TEST(Standard, ComeFromFilesAndMembersOfLibrariesAndGoWithTheirModule) {
  const Attached attached;
  const zo::test::TempFolder folder;
  Notices notices(L"ZoStandards");
  ZoStandardMgr& standards = ZoSystem::standardMgr();
  const std::filesystem::path shipped = zo::test::sourcePath("share/standards");
  EXPECT_EQ(standards.addFile(ZoFileName(shipped / L"screws.example.txt"), L"mine"), 0);
  EXPECT_EQ(standards.addFile(ZoFileName(shipped / L"made-up.example.txt"), L"mine"), 0);
  EXPECT_EQ(notices.take(),
            L"ChangedDict{Module=mine,Names=Sequence[DIN 931,ISO 4014]}"
            L"ChangedDict{Module=mine,Names=Sequence[Example 1]}");
  EXPECT_EQ(standards.addFile(ZoFileName(shipped / L"screws.example.txt"), L"mine"), 0);
  EXPECT_EQ(notices.take(), L"") << "nothing changed";
  ZoVariant row;
  EXPECT_EQ(standards.getRow(L"DIN EN ISO 4014", L"", L"8", row), 0);
  EXPECT_EQ(row.value(L"s"), ZoVariant(13.0, ZoTypeCode::Length));
  EXPECT_EQ(successorOf(standards, L"din 931"), L"ISO 4014");

  const ZoFileName name(folder.path() / L"a.lib");
  ZoLibrary library;
  ASSERT_EQ(library.open(name, ZoFile::kReadWrite, ZoFile::kCreateNew), 0);
  ASSERT_EQ(library.addFile(ZoFileName(shipped / L"screws.example.txt"), ZoFileName(L"s.txt")), 0);
  ZoFile member;
  ASSERT_EQ(library.getFile(member, ZoFileName(L"s.txt")), 0);
  EXPECT_EQ(standards.addOpenFile(member, ZoFileName(L"s.txt"), L"other"), 0);
  ZoString module;
  ZoFileName file;
  EXPECT_EQ(standards.getOrigin(L"ISO 4014", module, file), 0);
  EXPECT_EQ(module, L"other");
  EXPECT_EQ(file.view(), L"s.txt");
  notices.take();

  const ZoVariant spacer = standard(L"SP 1", {{L"Edition", L"2"}});
  const ZoFileName json(folder.path() / L"a.json"), xml(folder.path() / L"a.xml");
  ZoXMLClass document;
  ASSERT_EQ(ZoJson::save(json, spacer), 0);
  ASSERT_EQ(ZoXMLClass::fromVariant(spacer, document), 0);
  ASSERT_EQ(document.save(xml), 0);
  for (const ZoFileName& form : {json, xml}) {
    ZoVariant found;
    EXPECT_EQ(standards.addFile(form, L"form"), 0) << narrow(form.view());
    EXPECT_EQ(standards.getStandard(L"sp-1", found), 0);
    EXPECT_EQ(found, spacer);
    EXPECT_EQ(standards.remove(L"SP 1", L"form"), 0);
  }
  notices.take();

  const ZoFileName none(folder.path() / L"none.txt"), bad(folder.path() / L"bad.txt");
  ASSERT_EQ(zoSaveText(bad, L"Sequence [ Standard {} ]"), 0);
  EXPECT_EQ(standards.addFile(none, L"mine"), ZoResult::refused);
  EXPECT_EQ(standards.addFile(bad, L"mine"), ZoResult::invalid);
  for (const wchar_t* text : {L"no value", L"", L" ", L"{\"Name\": 1}", L"[", L"<a/>", L"<a"}) {
    ASSERT_EQ(zoSaveText(bad, text), 0);
    EXPECT_EQ(standards.addFile(bad, L"mine"), ZoResult::invalid) << narrow(text);
  }
  EXPECT_EQ(standards.remove(L"ISO 4014:1999", L"mine"), ZoResult::refused);
  EXPECT_EQ(standards.remove(L"iso4014:2011", L"mine"), 0);
  EXPECT_EQ(notices.take(), L"ChangedDict{Module=mine,Names=Sequence[ISO 4014]}");
  ZoVariant released(ZoVariant::kDict);
  ASSERT_EQ(released.put(L"Module", L"MINE"), 0);
  ASSERT_EQ(ZoSystem::sysDisp().sendNotice(ZoSysNotice::moduleReleased, released), 0);
  EXPECT_EQ(listed(standards, &ZoStandardMgr::find, ZoStandardFilter()), L"DIN 931|ISO 4014");
}

TEST(Standard, TheFavouriteOfAClassIsASetting) {
  const Attached attached;
  const zo::test::RegistryBase registry;
  ASSERT_EQ(ZoSystem::cfg().init(registry.path().c_str(), nullptr), 0);
  ZoStandardMgr& standards = ZoSystem::standardMgr();
  ZoString name(L"kept");
  EXPECT_EQ(standards.getPreferred(L"Bolts", name), 1);
  EXPECT_EQ(name, L"kept");
  EXPECT_EQ(standards.setPreferred(L"Bolts", L"ISO 4014"), 0);
  EXPECT_EQ(standards.setPreferred(L"Bolts", L"ISO 4017"), 0);
  EXPECT_EQ(standards.getPreferred(L"bolts", name), 0);
  EXPECT_EQ(name, L"ISO 4017");
  EXPECT_EQ(ZoSystem::cfg().get(L"standards@preferred@Bolts", L""), L"ISO 4017");
  EXPECT_EQ(standards.setPreferred(L"Bolts", L""), 0);
  EXPECT_EQ(standards.getPreferred(L"Bolts", name), 1);
  for (const wchar_t* bad : {L"", L"a@b"}) {
    EXPECT_EQ(standards.setPreferred(bad, L"x"), 1);
    EXPECT_EQ(standards.getPreferred(bad, name), 1);
  }
}

TEST(Standard, AHundredThousandAreFoundWhileAnotherThreadAdds) {
#ifdef ZO_GUARDED
  constexpr int kStandards = 1000;
#else
  constexpr int kStandards = 100000;
#endif
  ZoStdStandardMgr standards;
  ZoVariant all(ZoVariant::kSequence);
  ZoVariant::Sequence& sequence = all;
  for (int i = 0; i < kStandards; ++i)
    ASSERT_EQ(sequence.append(standard(ZoString(L"DIN EN ISO ") + ZoIntToStr(i))), 0);
  ASSERT_EQ(standards.add(all, L"m"), 0);
  std::jthread writer([&] {
    for (int i = 0; i < 50; ++i) {
      EXPECT_EQ(standards.add(standard(L"EN 1"), L"w"), 0);
      EXPECT_EQ(standards.remove(L"en1", L"w"), 0);
    }
  });
  ZoString name;
  for (int i = 0; i < kStandards; ++i)
    ASSERT_EQ(standards.getName(ZoString(L"iso-0") + ZoIntToStr(i), name), 0) << i;
  EXPECT_EQ(name.view(), L"DIN EN ISO " + std::to_wstring(kStandards - 1));
}

// Whatever a file says, it is taken whole or refused, and what is there stays.
TEST(Standard, ChangedFilesNeverBreakIt) {
  ZoString text;
  ASSERT_EQ(
      zoReadText(ZoFileName(zo::test::sourcePath("share/standards/screws.example.txt")), text), 0);
  std::mt19937 random(3);
  for (int i = 0; i < 300; ++i) {
    std::wstring changed(text.view());
    for (unsigned int k = 0; k < 1 + random() % 3; ++k) {
      const std::size_t at = random() % changed.size();
      if (random() % 2)
        changed.erase(at, random() % 20);
      else
        changed[at] = L"{}[]\":x1 \n\xD800"[random() % 11];
    }
    ZoVariant value, found;
    if (value.parse(changed) != 0) continue;
    ZoStdStandardMgr standards;
    ASSERT_EQ(standards.add(standard(L"ISO 1"), L"m"), 0);
    const int code = standards.add(value, L"m");
    EXPECT_TRUE(code == 0 || code == ZoResult::invalid) << code;
    EXPECT_EQ(standards.getStandard(L"ISO 1", found), 0);
  }
}

}  // namespace
