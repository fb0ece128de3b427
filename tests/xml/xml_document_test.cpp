// Documents over the platform's DOM: what is read, refused and written, and where errors lie.
#include <gtest/gtest.h>
#include <objbase.h>
#include <zo/containers.h>
#include <zo/xml.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>

#include "support/faulty_files.h"
#include "support/file_bytes.h"
#include "support/printers.h"
#include "support/temp_folder.h"

using namespace zo::test;

namespace {

using Nodes = ZoArray<ZoXMLNode>;

std::wstring written(const ZoXMLClass& document, ZoXMLClass::Format format = ZoXMLClass::kAsIs) {
  ZoString text;
  EXPECT_EQ(document.write(text, format), 0) << document.error().code;
  return std::wstring(text.view());
}
// What the root holds, as it is read back.
ZoString rootText(std::wstring_view text) {
  ZoXMLClass document;
  EXPECT_EQ(document.parse(text), 0) << document.error().line;
  return document.root().text();
}
std::wstring nestedElements(unsigned int depth) {
  std::wstring text;
  for (unsigned int i = 0; i < depth; ++i) text += L"<a>";
  for (unsigned int i = 0; i < depth; ++i) text += L"</a>";
  return text;
}

TEST(XmlDocument, TellsWhereAndWhyATextIsRefused) {
  const struct {
    const wchar_t* text;
    int code;
    unsigned int line;
    const wchar_t* source;
  } rows[] = {
      {L"", ZoResult::notWellFormed, 1, L""},
      {L"no markup", ZoResult::notWellFormed, 1, L"no markup"},
      {L"<a>\r\n <b>\n</a>", ZoResult::notWellFormed, 3, L"</a>"},
      {L"<a>\n\n<b x=1/></a>", ZoResult::notWellFormed, 3, L"<b x=1/></a>"},
      {L"<a>\n<b>&no;</b></a>", ZoResult::notWellFormed, 2, L"<b>&no;</b></a>"},
      {L"<a/>\n<a/>", ZoResult::notWellFormed, 2, L"<a/>"},
      {L"<a>\r\rx\x01</a>", ZoResult::notWellFormed, 3, L"x\x01</a>"},
      {L"<a>\n\xD800 </a>", ZoResult::notWellFormed, 2, nullptr},
      {L"<a>\n<!-- -- ></a>", ZoResult::notWellFormed, 2, L"<!-- -- ></a>"},
      {L"<a>\n<![CDATA[x</a>", ZoResult::notWellFormed, 2, L"<![CDATA[x</a>"},
      {L"<?xml version='1.0'?>\n<!DOCTYPE a><a/>", ZoResult::hasDocumentType, 2,
       L"<!DOCTYPE a><a/>"},
  };
  for (const auto& row : rows) {
    ZoXMLClass document;
    ASSERT_EQ(document.parse(L"<before/>"), 0);
    EXPECT_EQ(document.parse(row.text), row.code) << row.text;
    const ZoXMLError& error = document.error();
    EXPECT_EQ(error.code, row.code);
    EXPECT_EQ(error.line, row.line) << row.text << " " << error.column;
    EXPECT_EQ(error.column > 0, row.line > 0);
    EXPECT_FALSE(error.reason.isEmpty());
    if (row.source) {
      EXPECT_EQ(error.source, row.source) << row.text;
    }
    EXPECT_EQ(document.root().name(), L"before") << "it stays as it was";
  }
  ZoXMLClass document;
  EXPECT_NE(document.parse(L"<a\xE4\xE4>\n<b\x01/>"), 0);
  EXPECT_EQ(document.error().message(), L"line 2, column 3: A character that XML cannot hold.");
}

TEST(XmlDocument, RefusesNamesWithoutAMeaning) {
  const struct {
    const wchar_t* text;
    unsigned int column;  // in line 2; 0: it is taken
  } rows[] = {
      {L"<r x:c='1' c='2'/>", 4},
      {L"<r><x:a/></r>", 4},
      {L"<r><a xmlns:x='u'/><x:a/></r>", 20},
      {L"<r><a xmlns:x='u'><x:b/></a><b x:c=''/></r>", 31},
      {L"<:a/>", 1},
      {L"<a:/>", 1},
      {L"<a:b:c xmlns:a='u'/>", 2},
      {L"<a:1 xmlns:a='u'/>", 2},
      {L"<a xmlns:='u'/>", 4},
      {L"<a xmlns:a=''/>", 4},
      {L"<a xmlns:a='u' xmlns:b='u' a:x='' b:x=''/>", 30},
      {L"<a xmlns:xml='u'/>", 4},
      {L"<xmlns:a/>", 2},
      {L"<?a:b?><a/>", 1},
      {L"<r b=1><x:a/></r>", 4},  // the first fault counts
      {L"<x:r x:a='1' a='2' xml:lang='de' xmlns:x='u'><x:b xmlns:x='v'/><x:b/></x:r>", 0},
      {L"<r a='x:y' xmlns='u'>x:y<!--x:y--></r>", 0},
  };
  for (const auto& row : rows) {
    ZoXMLClass document;
    EXPECT_EQ(document.parse(std::wstring(L"<!---->\n") + row.text),
              row.column > 0 ? ZoResult::notWellFormed : 0)
        << row.text;
    EXPECT_EQ(document.error().line, row.column > 0 ? 2u : 0u) << row.text;
    EXPECT_NEAR(document.error().column, row.column, 1) << row.text;
  }
}

TEST(XmlDocument, ReadsEveryEncodingAndRefusesWhatIsNotInIt) {
  using namespace std::string_literals;
  const TempFolder folder;
  const auto utf16 = [](const std::wstring& text, bool bigEndian) {
    std::string bytes;
    for (const wchar_t c : text) {
      bytes += static_cast<char>(bigEndian ? c >> 8 : c & 0xFF);
      bytes += static_cast<char>(bigEndian ? c & 0xFF : c >> 8);
    }
    return bytes;
  };
  const std::wstring wide = L"<?xml version='1.0' encoding='UTF-16'?><a>\xE4\x20AC</a>";
  const struct {
    std::string bytes;
    int code;
    const wchar_t* text;
  } rows[] = {
      {"<a>\xC3\xA4\xE2\x82\xAC</a>", 0, L"\xE4\x20AC"},
      {"\xEF\xBB\xBF<?xml version='1.0' encoding='ISO-8859-1'?><a>\xC3\xA4</a>", 0, L"\xE4"},
      {"<?xml version='1.0' encoding='UTF-8' standalone='yes'?>\r\n<a>\xF0\x9F\x98\x80</a>", 0,
       L"\xD83D\xDE00"},
      {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a>\xE4</a>", 0, L"\xE4"},
      {"<?xml version = '1.0' encoding = 'windows-1252' ?><a>\x80</a>", 0, L"\x20AC"},
      {"<?xml-stylesheet encoding=\"ISO-8859-1\"?><a>\xC3\xA4</a>", 0, L"\xE4"},
      {"<?p encoding='bogus'?><a>\xC3\xA4</a>", 0, L"\xE4"},
      {"<?xml\tversion='1.0' encoding='us-ascii'?><a>a</a>", 0, L"a"},
      {"<?xml version='1.0' encoding='us-ascii'?><a>\xE4</a>", ZoResult::wrongEncoding, L""},
      {"\xFF\xFE" + utf16(wide, false), 0, L"\xE4\x20AC"},
      {"\xFE\xFF" + utf16(wide, true), 0, L"\xE4\x20AC"},
      {utf16(wide, false), 0, L"\xE4\x20AC"},
      {utf16(wide, true), 0, L"\xE4\x20AC"},
      {"<a>\n\xE4</a>", ZoResult::wrongEncoding, L""},
      {"<a>\xED\xA0\x80</a>", ZoResult::wrongEncoding, L""},
      {"<?xml version='1.0' encoding='no such'?><a/>", ZoResult::wrongEncoding, L""},
      {"<?xml version='1.0' encoding='UTF-16'?><a/>", ZoResult::wrongEncoding, L""},
      {"\xFF\xFE" + utf16(wide, false) + ' ', ZoResult::wrongEncoding, L""},
      {"\xFF\xFE\0\0<\0\0\0"s, ZoResult::notWellFormed, L""},
      {"\xEF\xBB\xBF", ZoResult::notWellFormed, L""},
      {"\xEF\xBB\xBF\xEF\xBB\xBF<a/>", ZoResult::notWellFormed, L""},
      {"", ZoResult::notWellFormed, L""},
      {"<a>x\0y</a>"s, ZoResult::notWellFormed, L""},
  };
  const auto path = folder.path() / "a.xml";
  for (const auto& row : rows) {
    std::ofstream(path, std::ios::binary) << row.bytes;
    ZoXMLClass document;
    EXPECT_EQ(document.load(ZoFileName(path.wstring())), row.code) << row.bytes;
    EXPECT_EQ(document.root().text(), row.text) << row.bytes;
    if (row.code != 0) continue;
    ASSERT_EQ(document.save(ZoFileName(path.wstring())), 0);
    ZoXMLClass again;
    EXPECT_EQ(again.load(ZoFileName(path.wstring())), 0) << row.bytes;
    EXPECT_EQ(again.root().text(), row.text) << row.bytes;
  }
  ZoXMLClass document;
  EXPECT_EQ(document.load(ZoFileName((folder.path() / "none.xml").wstring())), ZoResult::refused);
}

TEST(XmlDocument, BoundsWhatIsRead) {
  ZoXMLClass document;
  EXPECT_EQ(document.parse(nestedElements(ZoXMLClass::kMaxDepth)), 0);
  EXPECT_EQ(document.parse(nestedElements(ZoXMLClass::kMaxDepth + 1)), ZoResult::beyondLimits);
  EXPECT_EQ(document.parse(nestedElements(100'000)), ZoResult::beyondLimits);
  document.setLimits(20, 2);
  EXPECT_EQ(document.parse(L"<a/>"), 0);
  EXPECT_EQ(document.parse(nestedElements(3)), ZoResult::beyondLimits);
  EXPECT_EQ(document.parse(L"<a><b/></a>"), ZoResult::beyondLimits) << "22 bytes";
  document.setLimits(-1, -1);
  EXPECT_EQ(document.parse(L"<a/>"), ZoResult::beyondLimits);
  document.setLimits(ZoXMLClass::kMaxBytes, 1000);
  EXPECT_EQ(document.parse(nestedElements(ZoXMLClass::kMaxDepth + 1)), ZoResult::beyondLimits);

  const auto wide = [](unsigned int attributes) {
    std::wstring text = L"<a xmlns:x='u'";
    for (unsigned int i = 0; i < attributes; ++i) text += L" b" + std::to_wstring(i) + L"=''";
    return text + L"/>";
  };
  EXPECT_EQ(document.parse(wide(40'000)), ZoResult::beyondLimits);
  EXPECT_EQ(document.parse(wide(ZoXMLClass::kMaxAttributes + 1)), ZoResult::beyondLimits);
  EXPECT_EQ(document.parse(wide(ZoXMLClass::kMaxAttributes)), 0);
  EXPECT_EQ(document.put(L"@c", L""), ZoResult::refused);

  const TempFolder folder;
  const auto path = folder.path() / "large.xml";
  std::ofstream(path) << "<a>" << std::string(2000, ' ') << "</a>";
  document.setLimits(2007, 9);
  EXPECT_EQ(document.load(ZoFileName(path.wstring())), 0);
  document.setLimits(2006, 9);
  EXPECT_EQ(document.load(ZoFileName(path.wstring())), ZoResult::beyondLimits);
}

TEST(XmlDocument, AllowsDocumentTypesOnlyOnDemandAndFetchesNothing) {
  const TempFolder folder;
  std::ofstream(folder.path() / "secret.txt") << "secret";
  const std::wstring file = L"file:///" + (folder.path() / "secret.txt").generic_wstring();
  const std::wstring internal = L"<!DOCTYPE a [<!ENTITY e \"[>]\"><!-- ' --><?p '?>]><a>&e;</a>";
  const std::wstring external = L"<!DOCTYPE a [<!ENTITY e SYSTEM \"" + file + L"\">]><a>&e;</a>";
  const std::wstring parameter = L"<!DOCTYPE a [<!ENTITY % p SYSTEM \"" + file + L"\"> %p;]><a/>";
  std::wstring bomb = L"<!DOCTYPE a [<!ENTITY e0 \"0123456789\">";
  for (int i = 1; i < 12; ++i) {
    bomb += L"<!ENTITY e" + std::to_wstring(i) + L" \"";
    for (int k = 0; k < 10; ++k) bomb += L"&e" + std::to_wstring(i - 1) + L';';
    bomb += L"\">";
  }
  bomb += L"]><a>&e11;</a>";
  for (const std::wstring& text : {internal, external, parameter, bomb}) {
    ZoXMLClass document;
    EXPECT_EQ(document.parse(text), ZoResult::hasDocumentType);
    EXPECT_EQ(document.parse(L"<!-- <!DOCTYPE a> --><a><![CDATA[<!DOCTYPE a>]]></a>"), 0);
    document.allowDocumentType(true);
    const int code = document.parse(text);
    EXPECT_EQ(document.root().text().view().find(L"secret"), std::wstring_view::npos);
    if (text == internal) {
      EXPECT_EQ(code, 0);
    }
    if (text == bomb) {
      EXPECT_NE(code, 0);
    }
  }
}

TEST(XmlDocument, NoCutIsReadAndNoneHarms) {
  const std::wstring whole =
      L"<?xml version=\"1.0\"?><!-- c --><?p x?><a b=\"1\" c='2'>t<![CDATA[d]]>&amp;<e/></a>";
  ZoXMLClass document;
  ASSERT_EQ(document.parse(whole), 0);
  const std::wstring before = written(document);
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_EQ(document.parse(std::wstring_view(whole).substr(0, length)), ZoResult::notWellFormed)
        << length;
  }
  EXPECT_EQ(written(document), before);
}

TEST(XmlDocument, WritesNothingThatCannotBeReadBack) {
  ZoXMLClass document;
  ASSERT_EQ(document.create(L"root"), 0);
  ZoXMLNode root = document.root();
  const std::wstring texts[] = {L"a<b&c]]>\"'",      L"\t two\nlines\r\n\r ", L"  ",  L"",
                                L"\xD83D\xDE00\xE4", L"&amp;&#65;<!--",       L"-->", L"\xFFFD"};
  for (const std::wstring& text : texts) {
    EXPECT_EQ(root.put(L"text", text), 0);
    EXPECT_EQ(root.put(L"text/@\xE4", text), 0);
    for (const auto format : {ZoXMLClass::kAsIs, ZoXMLClass::kIndented}) {
      ZoXMLClass again;
      ASSERT_EQ(again.parse(written(document, format)), 0);
      ZoString value;
      EXPECT_EQ(again.get(L"text", value), 0);
      EXPECT_EQ(value, ZoString(text));
      EXPECT_EQ(again.get(L"text/@\xE4", value), 0);
      EXPECT_EQ(value, ZoString(text));
    }
  }
  const std::wstring before = written(document);
  for (const std::wstring& bad :
       {std::wstring(L"\x01"), std::wstring(1, L'\0'), std::wstring(L"x\xD800"),
        std::wstring(L"\xDC00"), std::wstring(L"\xFFFE"), std::wstring(L"\x1F")}) {
    EXPECT_EQ(root.setText(bad), ZoResult::unfitForXml);
    EXPECT_EQ(root.put(L"new/one", bad), ZoResult::unfitForXml);
    EXPECT_EQ(root.setAttribute(L"a", bad), ZoResult::unfitForXml);
    EXPECT_EQ(root.appendComment(bad), ZoResult::unfitForXml);
  }
  for (const wchar_t* name : {L"1 x", L"", L"a b", L"-a", L"a:", L":a", L"a:b:c", L"<", L"a>",
                              L"a\xD7", L"\xD83D\xDE00"}) {
    EXPECT_EQ(root.append(name), ZoResult::unfitForXml) << name;
    EXPECT_EQ(root.setAttribute(name, L"x"), ZoResult::unfitForXml) << name;
    EXPECT_NE(document.create(name), 0) << name;
  }
  for (const wchar_t* comment : {L"a--b", L"a-", L"--"})
    EXPECT_EQ(root.appendComment(comment), ZoResult::unfitForXml);
  EXPECT_EQ(root.setAttribute(L"xmlns", L"urn:x"), ZoResult::unfitForXml);
  EXPECT_EQ(root.setAttribute(L"xmlns:p", L"urn:x"), ZoResult::unfitForXml);
  EXPECT_EQ(written(document), before);
}

TEST(XmlDocument, PathsLeadWhereTheySayAndNowhereElse) {
  ZoXMLClass document;
  ASSERT_EQ(document.parse(L"<r><a/><a n='1'><b>x</b><b>y</b></a>t<c>z</c></r>"), 0);
  const struct {
    const wchar_t* path;
    int code;
    const wchar_t* text;
  } found[] = {
      {L"c", 0, L"z"},
      {L"", 0, L"xytz"},
      {L"a[2]/b", 0, L"x"},
      {L"a[2]/b[2]", 0, L"y"},
      {L"a[2]/@n", 0, L"1"},
      {L"a/b", ZoResult::refused, L""},  // of the first a
      {L"a[3]", ZoResult::refused, L""},
      {L"@n", ZoResult::refused, L""},
      {L"p:a", ZoResult::badXmlPath, L""},
      {L"/r", ZoResult::badXmlPath, L""},
      {L"a/", ZoResult::badXmlPath, L""},
      {L"a//b", ZoResult::badXmlPath, L""},
      {L"..", ZoResult::badXmlPath, L""},
      {L"*", ZoResult::badXmlPath, L""},
      {L"a[0]", ZoResult::badXmlPath, L""},
      {L"a[1 or 1]", ZoResult::badXmlPath, L""},
      {L"a[last()]", ZoResult::badXmlPath, L""},
      {L"a[4294967298]", ZoResult::badXmlPath, L""},
      {L"@n/a", ZoResult::badXmlPath, L""},
      {L"c']|//b['", ZoResult::badXmlPath, L""},
      {L"c | a", ZoResult::badXmlPath, L""},
      {L"text()", ZoResult::badXmlPath, L""},
  };
  for (const auto& row : found) {
    ZoString text;
    EXPECT_EQ(document.get(row.path, text), row.code) << row.path;
    EXPECT_EQ(text, row.text) << row.path;
    if (row.code == ZoResult::badXmlPath) {
      EXPECT_EQ(document.put(row.path, L"!"), row.code) << row.path;
      EXPECT_TRUE(document.root().find(row.path).isEmpty());
    }
  }
  for (const wchar_t* path : {L"c", L"a/b", L"a[3]/@k", L"d/e/f", L"d/e/@g", L"d/e[2]", L"@h"}) {
    ZoString text;
    EXPECT_EQ(document.put(path, path), 0) << path;
    EXPECT_EQ(document.get(path, text), 0) << path;
    EXPECT_EQ(text, path);
  }
  for (const wchar_t* path : {L"a[5]", L"g[2]", L"g/h[2]", L"@n/@m"})
    EXPECT_NE(document.put(path, L"!"), 0) << path;
  EXPECT_EQ(
      written(document),
      L"<?xml version=\"1.0\"?>\n<r h=\"@h\"><a><b>a/b</b></a><a n=\"1\"><b>x</b><b>y</b></a>t"
      L"<c>c</c><a k=\"a[3]/@k\"/><d><e g=\"d/e/@g\"><f>d/e/f</f></e><e>d/e[2]</e></d></r>\n");
}

TEST(XmlDocument, NamespacesHaveThePrefixesThatAreGivenHere) {
  ZoXMLClass document;
  EXPECT_EQ(document.setNamespace(L"d", L"urn:d"), 0);
  ASSERT_EQ(document.parse(L"<r xmlns='urn:d' xmlns:q='urn:p'><i>1</i><q:i q:k='2'>3</q:i></r>"),
            0);
  EXPECT_EQ(document.setNamespace(L"p", L"urn:p"), 0);
  ZoString text;
  EXPECT_EQ(document.get(L"d:i", text), 0);
  EXPECT_EQ(text, L"1");
  EXPECT_EQ(document.get(L"p:i/@p:k", text), 0);
  EXPECT_EQ(text, L"2");
  EXPECT_EQ(document.root().find(L"p:i").attribute(L"p:k"), L"2");
  EXPECT_EQ(document.get(L"q:i", text), ZoResult::badXmlPath) << "the document's own prefix";
  EXPECT_EQ(document.get(L"i", text), ZoResult::refused);
  EXPECT_EQ(document.put(L"i", L"lost"), ZoResult::refused) << "would be read back as d:i";
  EXPECT_EQ(document.put(L"d:new/p:new/@p:new", L"4"), 0);
  EXPECT_EQ(document.put(L"p:i/@xml:space", L"preserve"), 0);
  EXPECT_EQ(document.root().setAttribute(L"xml:lang", L"de"), 0);
  EXPECT_EQ(document.put(L"d:i/@xml:lang", L"en"), 0);
  EXPECT_EQ(document.root().find(L"d:i").removeAttribute(L"xml:lang"), 0);
  EXPECT_EQ(document.root().append(L"xml:i"), ZoResult::unfitForXml);
  ZoXMLClass again;
  EXPECT_EQ(again.setNamespace(L"x", L"urn:d"), 0);
  EXPECT_EQ(again.setNamespace(L"y", L"urn:p"), 0);
  ASSERT_EQ(again.parse(written(document)), 0) << again.error().line;
  for (const ZoXMLClass* each : {&document, &again}) {
    EXPECT_EQ(each->get(L"@xml:lang", text), 0);
    EXPECT_EQ(text, L"de");
    EXPECT_EQ(each->root().find(L"@xml:lang").name(), L"xml:lang");
  }
  EXPECT_EQ(again.get(L"x:i/@xml:lang", text), ZoResult::refused);
  EXPECT_EQ(again.get(L"y:i/@xml:space", text), 0);
  EXPECT_EQ(again.get(L"x:new/y:new/@y:new", text), 0);
  EXPECT_EQ(text, L"4");
  EXPECT_EQ(again.root().namespaceUri(), L"urn:d");
  EXPECT_EQ(again.root().find(L"y:i").name(), L"q:i");
  EXPECT_EQ(again.root().find(L"y:i").localName(), L"i");
  EXPECT_EQ(again.setNamespace(L"y", L""), 0);
  EXPECT_EQ(again.get(L"y:i", text), ZoResult::badXmlPath);
  for (const wchar_t* prefix : {L"", L"xml", L"xmlns", L"a:b", L"1"})
    EXPECT_EQ(again.setNamespace(prefix, L"urn:a"), ZoResult::unfitForXml) << prefix;
  for (const wchar_t* uri : {L"a b", L"a\"b", L"'", L"<", L"\x01"})
    EXPECT_EQ(again.setNamespace(L"a", uri), ZoResult::unfitForXml) << uri;
  EXPECT_EQ(document.create(L"p:r"), 0);
  EXPECT_EQ(document.root().namespaceUri(), L"urn:p");
  EXPECT_EQ(document.create(L"nobody:r"), ZoResult::badXmlPath);
}

TEST(XmlDocument, SearchesFindWhatALoopFinds) {
  using namespace std::string_view_literals;
  ZoXMLClass document;
  ASSERT_EQ(document.create(L"catalog"), 0);
  for (int i = 0; i < 30; ++i) {
    ZoXMLNode part;
    ASSERT_EQ(document.root().append(i % 3 ? L"part" : L"screw", &part), 0);
    ASSERT_EQ(part.setAttribute(L"id", std::to_wstring(i)), 0);
    ASSERT_EQ(part.put(L"length", std::to_wstring(i * 2)), 0);
    ASSERT_EQ(part.appendComment(L"made"), 0);
  }
  int parts = 0;
  int comments = 0;
  for (ZoXMLNode e = document.root().firstChild(); !e.isEmpty(); e = e.nextSibling()) {
    parts += e.name() == L"part";
    ++comments;
    EXPECT_EQ(e.parent().name(), L"catalog");
  }
  Nodes nodes;
  const struct {
    const wchar_t* xpath;
    unsigned int count;
  } rows[] = {{L"/catalog/part", static_cast<unsigned int>(parts)},
              {L"//comment()", static_cast<unsigned int>(comments)},
              {L"//@id", 30},
              {L"//part[length>40]", 6},
              {L"//*[@id='17']/length/text()", 1},
              {L"/catalog/*[last()]", 1},
              {L"//none", 0}};
  for (const auto& [xpath, count] : rows) {
    EXPECT_EQ(document.select(xpath, nodes), 0) << xpath;
    EXPECT_EQ(nodes.entries(), count) << xpath;
    EXPECT_EQ(document.selectFirst(xpath).isEmpty(), count == 0) << xpath;
  }
  const ZoXMLNode::Kind kinds[] = {document.selectFirst(L"//@id").kind(),
                                   document.selectFirst(L"//length/text()").kind(),
                                   document.selectFirst(L"//comment()").kind(),
                                   document.selectFirst(L"//part").kind(), ZoXMLNode().kind()};
  EXPECT_EQ(kinds[0], ZoXMLNode::kAttribute);
  EXPECT_EQ(kinds[1], ZoXMLNode::kText);
  EXPECT_EQ(kinds[2], ZoXMLNode::kComment);
  EXPECT_EQ(kinds[3], ZoXMLNode::kElement);
  EXPECT_EQ(kinds[4], ZoXMLNode::kNone);
  ASSERT_EQ(document.select(L"//part", nodes), 0);
  for (const std::wstring_view bad :
       {L"//part["sv, L""sv, L"string(//part)"sv, L"//nope:part"sv, L"//part\0"sv}) {
    EXPECT_EQ(document.select(bad, nodes), ZoResult::badXmlPath) << bad.data();
    EXPECT_EQ(nodes.entries(), 20u) << "they stay";
  }
  EXPECT_EQ(nodes.at(0)->select(L"length", nodes), 0);
  EXPECT_EQ(nodes.entries(), 1u);
}

TEST(XmlDocument, NodesAreChangedAndKeepTheirDocument) {
  ZoXMLNode kept;
  {
    ZoXMLClass document;
    ASSERT_EQ(document.parse(L"<r a='1' b='2'><c/></r>"), 0);
    kept = document.root();
    EXPECT_EQ(kept.removeAttribute(L"a"), 0);
    EXPECT_EQ(kept.removeAttribute(L"a"), ZoResult::refused);
    EXPECT_EQ(kept.remove(), ZoResult::refused) << "the root";
    ASSERT_EQ(document.parse(L"<other/>"), 0);
  }
  Nodes nodes;
  EXPECT_EQ(kept.attributes(nodes), 0);
  ASSERT_EQ(nodes.entries(), 1u);
  EXPECT_EQ(nodes.at(0)->name(), L"b");
  ZoXMLNode c = kept.firstChild();
  EXPECT_EQ(c.remove(), 0);
  EXPECT_EQ(c.setText(L"x"), 0);
  EXPECT_EQ(c.text(), L"x");
  EXPECT_TRUE(kept.firstChild().isEmpty());
  const wchar_t* const null = nullptr;
  ZoXMLClass nulls;
  EXPECT_EQ(nulls.parse(null), ZoResult::notWellFormed);
  EXPECT_EQ(nulls.create(nullptr), ZoResult::unfitForXml);
  EXPECT_EQ(c.setText(nullptr), 0);
  EXPECT_EQ(kept.put(L"@a", nullptr), 0);
  EXPECT_EQ(kept.setAttribute(L"b", null), 0);
  EXPECT_TRUE(c.text().isEmpty() && kept.attribute(L"b", L"x").isEmpty());
  ZoXMLNode none;
  ZoString text = L"stays";
  EXPECT_EQ(kept.get(null, text), 0);
  text = L"stays";
  EXPECT_EQ(none.get(L"a", text), ZoResult::refused);
  EXPECT_EQ(none.put(L"a", L""), ZoResult::refused);
  EXPECT_EQ(none.append(L"a"), ZoResult::refused);
  EXPECT_EQ(none.remove(), ZoResult::refused);
  EXPECT_TRUE(none.firstChild().isEmpty() && none.name().isEmpty() && text == L"stays");
  ZoXMLClass empty;
  EXPECT_TRUE(empty.isEmpty() && empty.root().isEmpty());
  EXPECT_EQ(empty.write(text), ZoResult::refused);
  EXPECT_EQ(empty.select(L"/", nodes), ZoResult::refused);
  // As deep as can be read, and no deeper.
  ASSERT_EQ(empty.parse(nestedElements(ZoXMLClass::kMaxDepth - 1)), 0);
  kept = empty.selectFirst(L"//a[not(a)]");
  EXPECT_EQ(kept.put(L"b/c", L"x"), ZoResult::refused);
  EXPECT_EQ(kept.put(L"b", L"x"), 0);
  EXPECT_EQ(kept.find(L"b").append(L"c"), ZoResult::refused);
}

TEST(XmlDocument, IndentsWhatIsLayoutAndNothingElse) {
  ZoXMLClass document;
  ASSERT_EQ(document.parse(L"<?xml version='1.0'?><!--top--><r><a>x</a>\n\n<b k='a  b'><c/><!--n-->"
                           L"</b><m>text <i>it</i> <i/></m><s xml:space='preserve'> <i/> </s>"
                           L"<w>  </w><t><u> <v/> </u> x</t><d><![CDATA[<]]></d></r><?end x?>"),
            0);
  const std::wstring wanted =
      L"<?xml version=\"1.0\"?>\n<!--top-->\n<r>\n  <a>x</a>\n  <b k=\"a  b\">\n    <c/>\n"
      L"    <!--n-->\n  </b>\n  <m>text <i>it</i> <i/></m>\n"
      L"  <s xml:space=\"preserve\"> <i/> </s>\n  <w>  </w>\n  <t><u> <v/> </u> x</t>\n"
      L"  <d><![CDATA[<]]></d>\n</r>\n"
      L"<?end x?>\n";
  EXPECT_EQ(written(document, ZoXMLClass::kIndented), wanted);
  for (const bool isKept : {false, true}) {
    document.keepLayout(isKept);
    ASSERT_EQ(document.parse(wanted), 0);
    EXPECT_EQ(written(document, ZoXMLClass::kIndented), wanted);
    EXPECT_EQ(written(document),
              isKept ? wanted
                     : L"<?xml version=\"1.0\"?>\n<!--top-->\n<r><a>x</a><b k=\"a  b\"><c/><!--n-->"
                       L"</b><m>text <i>it</i> <i/></m><s xml:space=\"preserve\"> <i/> </s>"
                       L"<w>  </w><t><u> <v/> </u> x</t><d><![CDATA[<]]></d></r>\n<?end x?>\n");
  }
  EXPECT_EQ(rootText(L"<a>\r\n\r</a>"), L"\n\n") << "line ends";
}

// Texts are looked at in steps of some units.
TEST(XmlDocument, TakesEveryLengthOfTagsAndTexts) {
  for (unsigned int n = 0; n < 40; ++n) {
    const std::wstring fill(n, L'x');
    const std::wstring front = L"<a b='" + fill + L">'>" + fill;
    EXPECT_EQ(rootText(front + L"\t\x20AC<!--<-->" + fill + L"</a>").view(),
              fill + L"\t\x20AC" + fill);
    for (const wchar_t unfit : {L'\x1F', L'\xFFFE', L'\xD800', L'\xDFFF'}) {
      ZoXMLClass document;
      EXPECT_EQ(document.parse(front + unfit + L"</a>"), ZoResult::notWellFormed);
      EXPECT_EQ(document.error().column, front.size() + 1);
    }
  }
}

TEST(XmlDocument, IsSavedWholeOrNotAtAll) {
  const TempFolder folder;
  const auto path = folder.path() / "a.xml";
  const ZoFileName name(path.wstring());
  ZoXMLClass document;
  ASSERT_EQ(document.parse(L"<old/>"), 0);
  ASSERT_EQ(document.save(name), 0);
  const std::string before = fileBytes(path);
  EXPECT_EQ(before, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<old/>\n");
  std::wstring large = L"<new>";
  for (int i = 0; i < 9000; ++i) large += L"<part>text</part>";
  ASSERT_EQ(document.parse(large + L"</new>"), 0);
  FaultyFiles files;
  for (const char* call : {"create", "write", "flush", "close", "rename move"}) {
    for (int nth = 1;; ++nth) {
      files.arm({.fault = Fault::fail, .call = call, .nth = nth});
      const int code = document.save(name);
      if (!files.met()) break;
      EXPECT_EQ(code, ZoResult::refused) << call << nth;
      EXPECT_FALSE(document.error().reason.isEmpty());
      files.arm({});
      EXPECT_EQ(fileBytes(path), before) << call << nth;
      ASSERT_LT(nth, 100);
      if (std::string_view(call) == "close") break;  // a file that is closed is there
    }
    files.arm({});
    std::ofstream(path, std::ios::binary) << before;
  }
  files.arm({});
  EXPECT_EQ(document.save(name), 0);
  EXPECT_EQ(document.save(ZoFileName((folder.path() / "none" / "a.xml").wstring())),
            ZoResult::refused);
}

TEST(XmlDocument, WorksWhateverTheThreadDoesWithCom) {
  const auto use = [] {
    ZoXMLClass document;
    EXPECT_EQ(document.parse(L"<a><b>x</b></a>"), 0);
    for (int i = 0; i < 20; ++i) EXPECT_EQ(document.put(L"b", std::to_wstring(i)), 0);
    EXPECT_EQ(document.root().text(), L"19");
    EXPECT_NE(document.parse(L"<a><b"), 0);
    EXPECT_EQ(document.error().line, 1u);
    return document.root();
  };
  for (const int mode : {-1, int{COINIT_APARTMENTTHREADED}, int{COINIT_MULTITHREADED}}) {
    const auto run = [&] {
      if (mode >= 0) {
        EXPECT_EQ(CoInitializeEx(nullptr, static_cast<DWORD>(mode)), S_OK);
      }
      ZoXMLNode kept = use();
      if (mode >= 0) CoUninitialize();
      EXPECT_EQ(kept.text(), L"19") << "beyond the end of COM";
      // What the thread does later is its own affair.
      if (mode < 0) {
        EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
        CoUninitialize();
      }
    };
    std::thread one(run);
    std::thread two(run);
    one.join();
    two.join();
  }
}

TEST(XmlDocument, MutatedDocumentsAreReadOrRefusedAndReadBack) {
  const std::wstring seed =
      L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE r [<!ENTITY e \"x\">]>\n<r "
      L"xmlns:p='urn:p'><p:a b=\"&lt;\">t&e;&#65;<![CDATA[c]]></p:a><!-- - --><?i ?></r>";
  constexpr wchar_t kUnits[] = L"<>&;!?-[]/\"'=: ax\n\x01\xD800\xDC00\xFFFF";
  const char* const wanted = std::getenv("ZO_MUTATIONS");
  const int rounds = wanted ? std::atoi(wanted) : 1500;
  std::mt19937 random(7);
  for (int i = 0; i < rounds; ++i) {
    std::wstring text = seed;
    for (auto changes = 1 + random() % 4; changes > 0; --changes) {
      const std::size_t at = random() % text.size();
      const std::size_t length = random() % 3;
      if (random() % 2) text.erase(at, random() % 6);
      text.insert(std::min(at, text.size()), kUnits + random() % (std::size(kUnits) - 3), length);
      if (text.empty()) text = L" ";
    }
    ZoXMLClass document;
    document.allowDocumentType(true);
    if (document.parse(text) != 0) {
      EXPECT_FALSE(document.error().reason.isEmpty());
      continue;
    }
    ZoXMLClass again;
    again.allowDocumentType(true);
    ASSERT_EQ(again.parse(written(document)), 0)
        << text << '\n'
        << written(document) << again.error().message().toUtf8();
    ASSERT_EQ(again.root().text(), document.root().text()) << text;
  }
}

}  // namespace
