// Archives: what each type of value is in bytes and in the dump, over every archive there is.
#include <gtest/gtest.h>
#include <windows.h>
#include <zo/host/mfc.h>
#include <zo/names/file_name.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <filesystem>
#include <random>

#include "persist/archive_values.h"
#include "persist/memory_watch.h"
#include "persist/persist_support.h"
#include "support/faulty_files.h"
#include "support/file_bytes.h"
#include "support/guarded_heap.h"
#include "support/printers.h"
#include "support/slots.h"
#include "support/temp_folder.h"
#include "system/attached.h"

using namespace zo;
using namespace zo::test;

namespace {

using Use = std::function<void(ZoArchive&)>;

// Over a file of the host framework.
void withMfc(bool store, const std::filesystem::path& path, const Use& use) {
  CFile file(path.c_str(), store ? CFile::modeCreate | CFile::modeWrite : CFile::modeRead);
  CArchive under(&file, store ? CArchive::store : CArchive::load, 128);
  ZoMfcArchive archive(under);
  use(archive);
}

ZoVariant nested(unsigned int depth) {
  ZoVariant value(1);
  for (; depth > 0; --depth) {
    ZoArray<ZoVariant> around;
    EXPECT_EQ(around.append(std::move(value)), 0);
    value = ZoVariant(std::move(around));
  }
  return value;
}

}  // namespace

#if !defined(_MSC_VER)
// Those at the seams: whatever comes, goes or changes its kind moves one of them.
TEST(Archive, VirtualFunctionsHaveTheirSlots) {
  EXPECT_EQ(slotOf(&ZoArchive::readBin), 4U);
  EXPECT_EQ(slotOf(static_cast<void (ZoArchive::*)(_GUID&)>(&ZoArchive::read)), 5U);
  EXPECT_EQ(slotOf(static_cast<void (ZoArchive::*)(double&)>(&ZoArchive::read)), 18U);
  EXPECT_EQ(slotOf(&ZoArchive::writeBin), 28U);
  EXPECT_EQ(slotOf(&ZoArchive::needToConvertToUnicode), 52U);
  using Print = void (ZoDumpArchive::*)(const wchar_t*, ...);
  EXPECT_EQ(slotOf(static_cast<Print>(&ZoDumpArchive::printf)), 56U)
      << "behind a destructor of two slots";
}
#endif

TEST(Archive, ADumpPrintsTextsAndNumbersAsWhatTheyAre) {
  ZoDumpArchive dump;
  dump.printf(L"%s has %d of %s", ZoString(L"list"), std::size_t{3}, ZoFileName(L"m8.dwg"));
  dump.printf(L"100%%");
  dump.print(L"%d %s", std::int64_t{1} << 40, std::wstring(L"x"));
  EXPECT_EQ(dump.dump(), L"\nlist has 3 of m8.dwg\n100%\n1099511627776 x");
}

TEST(Archive, EveryValueHasItsBytesAndItsEntryAndComesBack) {
  PlainArchive whole;
  writeAll(whole);
  for (const ArchivedValue& value : archivedValues()) {
    SCOPED_TRACE(testing::PrintToString(value.dump));
    PlainArchive plain;
    value.write(plain);
    EXPECT_EQ(plain.bytes, value.bytes);
    EXPECT_EQ(passed(value, plain), value.bytes);
    EXPECT_EQ(plain.at, plain.bytes.size());
    ZoMemoryWriteArchive memory;
    value.write(memory);
    ASSERT_EQ(memory.bytes().size(), value.bytes.size());
    EXPECT_EQ(std::memcmp(memory.bytes().data(), value.bytes.data(), value.bytes.size()), 0);
    ZoMemoryReadArchive back(memory.bytes());
    EXPECT_EQ(passed(value, back), value.bytes);
    EXPECT_EQ(back.rest(), 0U);
    ZoDumpArchive dump;
    value.write(dump);
    EXPECT_EQ(dump.dump().view(), value.dump.empty() ? L"" : L'\n' + value.dump);
  }
  const TempFolder folder;
  withMfc(true, folder.path() / L"archive", writeAll);
  const std::string stored = fileBytes(folder.path() / L"archive");
  EXPECT_EQ(ByteVector(stored.begin(), stored.end()), whole.bytes);
  withMfc(false, folder.path() / L"archive", expectAll);
}

// Wherever the data ends: all or nothing of what the value held before is left, and nothing hangs.
TEST(Archive, DataThatEndsEarlyGivesZerosOrThrows) {
  for (const ArchivedValue& value : archivedValues()) {
    PlainArchive empty;
    ZoMfcArchive none;
    EXPECT_EQ(passed(value, none, false), passed(value, empty)) << "no archive is an empty one";
    for (std::size_t size = 0; size < value.bytes.size(); ++size) {
      SCOPED_TRACE(testing::PrintToString(value.dump) + std::to_string(size));
      const ByteVector cut(value.bytes.data(), value.bytes.data() + size);
      PlainArchive fresh(cut), used(cut);
      EXPECT_EQ(passed(value, fresh), passed(value, used, false));
      ZoMemoryReadArchive memory(cut.data(), cut.size());
      ByteVector left;
      const std::wstring what = thrown([&] { passed(value, memory, false, &left); });
      EXPECT_EQ(left, value.bytes) << "as it was";
      EXPECT_NE(what.find(L" The archive ends "), std::wstring::npos);
      EXPECT_LE(std::stoul(what), size);
    }
  }
  const ByteVector claims = bytesOf("00270000 09000000 FFFFFFFF 00240000 04000000 FFFFFFFF 41");
  ZoMemoryReadArchive memory(claims.data(), claims.size());
  ZoVariant value;
  EXPECT_EQ(thrown([&] { memory.read(value); }), L"25 The archive ends within a text");
}

// The promise of buffered_archive.h.
TEST(Archive, MutationsGiveAnErrorOrValuesInBoundedMemory) {
  PlainArchive whole;
  writeAll(whole);
  const int count = mutationCount(allocationMark() != 0 ? 150 : 5000);
  std::mt19937 random(7);
  std::size_t errors = 0;
  ZoMemoryWriteArchive to;
  for (int i = 0; i < count && !HasFailure(); ++i) {
    const ByteVector bytes = mutated(whole.bytes, random);
    PlainArchive plain(bytes);
    ZoMemoryReadArchive memory(bytes.data(), bytes.size());
    MemoryWatch watch;
    const auto passAll = [&](ZoArchive& from) {
      to.clear();
      for (const ArchivedValue& value : archivedValues()) value.pass(from, true, to);
    };
    passAll(plain);
    errors += !thrown([&] { passAll(memory); }).empty();
    EXPECT_LE(watch.peak(), (64U << 10) + 160 * bytes.size());
  }
  EXPECT_GT(errors, 0U);
  std::string dicts = "00270000 09000000 E8030000";  // a thousand empty ones: the worst
  for (int i = 0; i < 1000; ++i) dicts += "00280000 08000000 00000000";
  const ByteVector bytes = bytesOf(dicts);
  MemoryWatch watch;
  ZoVariant value;
  ZoMemoryReadArchive(bytes.data(), bytes.size()).read(value);
  EXPECT_LE(watch.peak(), (64U << 10) + 160 * bytes.size());
}

TEST(Archive, ContainersLieAtMostSoDeep) {
  const unsigned int most = ZoVariant::kMaxDepth;
  ZoMemoryWriteArchive memory;
  ZoVariant value;
  memory.write(nested(most), L"");
  ZoMemoryReadArchive(memory.bytes()).read(value);
  EXPECT_EQ(value, nested(most));
  memory.clear();
  const std::wstring tooDeep = L" The archive's containers lie too deep in one another";
  // Nothing is written of what is too deep, and what follows is.
  const ZoVariant tooMuch(ZoArray<ZoVariant>{1, nested(most)});
  const auto refuses = [&](ZoArchive& to, const wchar_t* at) {
    to << 1;
    EXPECT_EQ(thrown([&] { to << tooMuch; }), at + tooDeep);
    to << nested(most) << 2;
  };
  refuses(memory, L"4");
  PlainArchive plain;
  refuses(plain, L"0");
  const TempFolder folder;
  withMfc(true, folder.path() / L"mfc", [&](ZoArchive& to) { refuses(to, L"0"); });
  {
    const Attached attached;
    ZoFile file;
    ASSERT_EQ(file.open(ZoFileName(folder.path() / L"file"), ZoFile::kWrite, ZoFile::kCreateAlways),
              0);
    ZoFileWriteArchive to(file);
    refuses(to, L"4");
  }
  EXPECT_EQ(plain.bytes.size(), 8 + 12 * most + 12);
  const std::string bytes(plain.bytes.begin(), plain.bytes.end());
  EXPECT_EQ(bytes, std::string(reinterpret_cast<const char*>(memory.bytes().data()), bytes.size()));
  EXPECT_EQ(fileBytes(folder.path() / L"mfc"), bytes);
  EXPECT_EQ(fileBytes(folder.path() / L"file"), bytes);
  ZoDumpArchive dump;
  dump << nested(most) << nested(most + 1);
  const std::wstring_view note = L"Variant: containers lie too deep";
  EXPECT_TRUE(dump.dump().view().ends_with(note));
  EXPECT_EQ(dump.dump().view().find(note), dump.dump().length() - note.size()) << "the second";

  plain.bytes.clear();
  for (unsigned int i = 0; i <= most; ++i) {
    const ByteVector one = bytesOf("00270000 09000000 01000000");
    plain.bytes.insert(plain.bytes.end(), one.begin(), one.end());
  }
  plain << ZoVariant(1);
  ZoMemoryReadArchive deep(plain.bytes.data(), plain.bytes.size());
  EXPECT_EQ(thrown([&] { deep.read(value); }), std::to_wstring(12 * most + 8) + tooDeep);
  EXPECT_EQ(thrown([&] { deep.read(value); }), L"") << "it stands there, and has left all levels";
}

// What has no stored type of its own, but one that fits.
TEST(Archive, KindredTypesAndContainersComeBack) {
  ZoHashDict<ZoVariant, ZoString> dict;
  ASSERT_EQ(dict.insertAt(L"Key", list()), 0);
  const ZoArray<ZoVariant> array{7, L"x"};
  const ZoList<ZoVariant> chain{1, 2};
  const ZoArray<ZoString> names{L"a", L""};
  ZoHashDict<double, ZoString> lengths;
  ASSERT_EQ(lengths.insertAt(L"l", 2.5), 0);
  const std::wstring text(L"M\0x", 3);
  const auto write = [&](ZoArchive& to) {
    to << 7L << 0xFFFFFFFFUL << text << std::wstring_view(text) << ZoString(L"sub")(1, 2);
    to << dict << array << chain << names << lengths << L"end";
  };
  ZoMemoryWriteArchive memory;
  write(memory);
  PlainArchive plain;
  write(plain);
  ASSERT_EQ(plain.bytes.size(), memory.bytes().size());
  EXPECT_EQ(std::memcmp(memory.bytes().data(), plain.bytes.data(), plain.bytes.size()), 0);
  PlainArchive expected;
  expected.write(7, L"");
  expected.write(0xFFFFFFFFU, L"");
  for (int i = 0; i < 2; ++i) expected.write(ZoString(text), L"");
  expected.write(L"ub", L"");
  for (const ZoVariant& value : {ZoVariant(dict), ZoVariant(array), ZoVariant(chain)})
    expected.write(value, L"");
  const ByteVector typed = bytesOf("02000000 01000000 6100 00000000 01000000 01000000 6C00");
  expected.writeBin(typed.data(), static_cast<unsigned int>(typed.size()), L"");
  expected.write(2.5, L"");
  expected.write(L"end", L"");
  EXPECT_EQ(plain.bytes, expected.bytes);

  const auto read = [&](ZoArchive& from) {
    long number = 0;
    unsigned long word = 0;
    std::wstring one, other;
    ZoString part, end;
    ZoHashDict<ZoVariant, ZoString> readDict;
    EXPECT_EQ(readDict.insertAt(L"old", 1), 0);
    ZoArray<ZoVariant> readArray{1};
    ZoList<ZoVariant> readChain;
    ZoArray<ZoString> readNames{L"old"};
    ZoHashDict<double, ZoString> readLengths;
    from >> number >> word >> one >> other >> part;
    from >> readDict >> readArray >> readChain >> readNames >> readLengths >> end;
    PlainArchive again;
    again << number << word << one << other << part;
    again << readDict << readArray << readChain << readNames << readLengths << end;
    return again.bytes;
  };
  ZoMemoryReadArchive from(memory.bytes());
  EXPECT_EQ(read(from), plain.bytes);
  EXPECT_EQ(read(plain), plain.bytes);

  PlainArchive claims(bytesOf("FFFFFFFF 01000000 6100 05"));
  ZoArray<ZoString> readNames{L"old"};
  claims >> readNames;
  EXPECT_EQ(readNames.entries(), 1U);
  EXPECT_EQ(*readNames.at(0), L"a");
  ZoMemoryReadArchive throwing(claims.bytes.data(), claims.bytes.size());
  EXPECT_EQ(thrown([&] { throwing >> readNames; }), L"11 The archive ends within a 32-bit number");
  EXPECT_EQ(readNames.entries(), 1U) << "as it was";
  PlainArchive other(bytesOf("00210000 01000000 07000000"));
  other >> dict;
  EXPECT_TRUE(dict.isEmpty()) << "another kind of value";
}

TEST(Archive, EqualShortTextsOfOneVariantShareTheirMemory) {
  ZoArray<ZoVariant> texts;  // pairs of all lengths; most differ in one unit from those around
  for (std::size_t length = 0; length <= 66; ++length) {
    for (std::size_t at = 0; at <= length; ++at) {
      std::wstring text(length, L'a');
      if (at < length) text[at] = L'b';
      for (int i = 0; i < 2; ++i) ASSERT_EQ(texts.append(ZoVariant(text.c_str())), 0);
    }
  }
  const ZoVariant written(std::move(texts));
  ZoMemoryWriteArchive memory;
  memory << written << written;
  ZoMemoryReadArchive from(memory.bytes());
  ZoVariant one, other;
  from >> one >> other;
  EXPECT_EQ(one, written);
  EXPECT_EQ(other, written);
  const auto memoryOf = [](const ZoVariant& of, unsigned int i) {
    return of.at(i)->asString().data();
  };
  for (unsigned int i = 16; i < one.entries() && !HasFailure(); i += 2) {
    const bool isShort = one.at(i)->asString().length() <= 64;
    EXPECT_EQ(memoryOf(one, i) == memoryOf(one, i + 1), isShort) << i;
    EXPECT_NE(memoryOf(one, i), memoryOf(other, i)) << i;
  }
}

// What has no round trip, or not the same bytes.
TEST(Archive, OdditiesOfTheFormatAreKept) {
  PlainArchive plain;
  ZoHnd handle(L"A");
  handle.setId(0x100000007);
  plain.write(handle, L"");
  EXPECT_EQ(plain.bytes, bytesOf("03000000 0700000001000000 01000000 4100"));
  plain.read(handle);  // 4 bytes of the id; the others are the length of the text
  EXPECT_EQ(handle.id(), 7);
  EXPECT_STREQ(handle.handle(), L"\1");

  PlainArchive filer;
  filer.shortPointers = true;
  filer.write(ZoVariant(reinterpret_cast<void*>(0x100000002)), L"");
  EXPECT_EQ(filer.bytes, bytesOf("00290000 05000000 02000000"));
  ZoVariant value;
  filer.read(value);
  EXPECT_EQ(value.asPointer(), reinterpret_cast<void*>(2));

  const auto read = [&](const std::string& bytes) {
    PlainArchive from(bytesOf(bytes));
    from.read(value);
    EXPECT_EQ(from.at, from.bytes.size()) << bytes;
    return value;
  };
  EXPECT_EQ(read("00200000 4B000000"), ZoVariant(ZoVariant::kEmpty, ZoTypeCode::NoType, 1));
  EXPECT_EQ(read("00210000 21000000 07000000"), ZoVariant(7)) << "a reference bit";
  EXPECT_EQ(read("00260000 07000000 04" + std::string(44, '0') + "F03F").asVector().z, 1)
      << "an unknown code of a vector";
}

TEST(MfcArchive, TextsOfAStdioFileMayBeEightBit) {
  const TempFolder folder;
  const std::filesystem::path path = folder.path() / L"archive";
  withMfc(true, path, [](ZoArchive& to) {
    const ByteVector bytes = bytesOf("03000000 41E442 02000000 5C43 5C 0200 4445 FFFFFF7F 41");
    to.writeBin(bytes.data(), static_cast<unsigned int>(bytes.size()), L"");
  });
  ZoStdioFile file(path.c_str(), CFile::modeRead, true);
  CArchive under(&file, CArchive::load);
  ZoMfcArchive archive(under);
  EXPECT_TRUE(archive.needToConvertToUnicode());
  ZoString text, past(L"old");
  wchar_t* allocated = nullptr;
  ZoFileName name;
  archive >> text >> allocated >> name >> past;
  EXPECT_EQ(text, ZoString().setFromMB("A\344B"));
  EXPECT_STREQ(allocated, L"\\C");
  delete[] allocated;
  EXPECT_EQ(name, L"DE");
  EXPECT_TRUE(past.isEmpty());
}

// Whatever is written, whole and in order.
TEST(DumpArchive, EveryEntryPassesPrintf) {
  class Watched : public ZoDumpArchive {
   public:
    void printf(const wchar_t* format, ...) override {
      wchar_t entry[1024];
      std::va_list arguments;
      va_start(arguments, format);
      _vsnwprintf(entry, std::size(entry), format, arguments);
      va_end(arguments);
      ZoDumpArchive::printf(L"%ls", entry);
      ++entries;
    }
    std::size_t entries = 0;
  };
  Watched watched;
  ZoDumpArchive dump;
  for (ZoDumpArchive* to : {static_cast<ZoDumpArchive*>(&watched), &dump}) {
    to->pushScope(L"50 %d %% %s");
    writeAll(*to);
    *to << 1e100 << 1e-7;
  }
  EXPECT_EQ(watched.dump(), dump.dump());
  EXPECT_EQ(watched.entries,
            static_cast<std::size_t>(std::ranges::count(dump.dump().view(), L'\n')));
  EXPECT_NE(dump.dump().view().find(L"   Real: 1e+100\n   Real: 1e-07"), std::wstring_view::npos);
}

TEST(DumpArchive, ScopesIndentLabelsReplaceTheTypeAndEntriesAreCut) {
  ZoDumpArchive dump;
  dump.pushScope(L"50 %d %% %s");
  dump.write(1, nullptr);
  dump.write(ZoVariant(ZoArray<ZoVariant>{}), L"Lab%s");
  dump.writeBin("\1\xAB", 2, L"");
  EXPECT_EQ(dump.dump(),
            L"\n50 %d % %s\n   Int32: 1\n   Lab%s\n      List\n         Entries: 0\n   Hex: 01AB");
  dump.popScope();
  dump.popScope();  // one too many
  dump.clear();
  dump.write(std::wstring(2000, L'x').c_str(), L"T");
  EXPECT_EQ(dump.dump().length(), 1024U);
}
