// Archives: what each type of value is in bytes and in the dump, over every archive there is.
#include <gtest/gtest.h>
#include <windows.h>
#include <zo/host/mfc.h>

#include <cstring>
#include <filesystem>
#include <limits>
#include <random>

#include "support/faulty_files.h"
#include "file_io/file_fixture.h"
#include "persist/archive_support.h"
#include "persist/memory_watch.h"
#include "persist/persist_support.h"
#include "support/file_bytes.h"
#include "support/printers.h"
#include "support/temp_folder.h"

using namespace zo;
using namespace zo::test;

namespace {

using Use = std::function<void(ZoArchive&)>;

// One of the archives over files, the host framework's or ours, that stores or loads.
void withFile(bool mfc, bool store, const std::filesystem::path& path, const Use& use) {
  if (mfc) {
    CFile file(path.c_str(), store ? CFile::modeCreate | CFile::modeWrite : CFile::modeRead);
    CArchive under(&file, store ? CArchive::store : CArchive::load, 128);
    ZoMfcArchive archive(under);
    EXPECT_EQ(archive.isStoring(), store);
    return use(archive);
  }
  ZoFile file;
  EXPECT_EQ(file.open(ZoFileName(path), store ? ZoFile::kWrite : ZoFile::kRead,
                      store ? ZoFile::kCreateAlways : ZoFile::kOpenExisting),
            0);
  if (store) {
    ZoFileWriteArchive archive(file);
    use(archive);
  } else {
    ZoFileReadArchive archive(file);
    use(archive);
  }
}

ByteVector passed(const ArchivedValue& value, ZoArchive& from, bool fresh = true) {
  PlainArchive to;
  value.pass(from, fresh, to);
  return to.bytes;
}

ZoVariant nested(unsigned int depth) {
  ZoVariant value(1);
  for (; depth > 0; --depth) {
    ZoArray<ZoVariant> around;
    around.append(std::move(value));
    value = ZoVariant(std::move(around));
  }
  return value;
}

// The exception that `use` throws, as "POSITION MESSAGE"; empty for none.
std::wstring thrown(const std::function<void()>& use) {
  try {
    use();
  } catch (const ZoComException& e) {
    return std::to_wstring(e.position()) + L' ' + e.message();
  }
  return {};
}

template <class Function>
std::size_t slotOf(Function function) {
  std::size_t word = 0;
  std::memcpy(&word, &function, sizeof word);
  return (word - 1) / sizeof(void*);
}
template <class... T>
void addReads(std::vector<std::size_t>& slots) {
  (slots.push_back(slotOf(static_cast<void (ZoArchive::*)(T&)>(&ZoArchive::read))), ...);
}
template <class... T>
void addWrites(std::vector<std::size_t>& slots) {
  (slots.push_back(slotOf(static_cast<void (ZoArchive::*)(T, const wchar_t*)>(&ZoArchive::write))),
   ...);
}

}  // namespace

#if !defined(_MSC_VER)  // which lays overloads out backwards and shows slots in another way
TEST(Archive, VirtualFunctionsHaveTheirSlots) {
  std::vector<std::size_t> slots = {slotOf(&ZoArchive::isStoring), slotOf(&ZoArchive::flush),
                                    slotOf(&ZoArchive::pushScope), slotOf(&ZoArchive::popScope),
                                    slotOf(&ZoArchive::readBin)};
  addReads<_GUID, ZoHnd, ZoTol, ZoCoSystem, ZoMatrix, ZoPlane, ZoVector, ZoPoint, ZoFileName,
           ZoVariant, ZoString, ZoColor, wchar_t*, double, std::int64_t, std::uint64_t,
           unsigned int, int, unsigned short, short, unsigned char, signed char, bool>(slots);
  slots.push_back(slotOf(&ZoArchive::writeBin));
  addWrites<const _GUID&, const ZoHnd&, const ZoTol&, const ZoCoSystem&, const ZoMatrix&,
            const ZoPlane&, const ZoVector&, const ZoPoint&, const ZoFileName&, const ZoVariant&,
            const ZoString&, ZoColor&, const wchar_t*, double, std::int64_t, std::uint64_t,
            unsigned int, int, unsigned short, short, unsigned char, signed char, bool>(slots);
  slots.push_back(slotOf(&ZoArchive::needToConvertToUnicode));
  slots.push_back(slotOf(&PlainArchive::isdrftfilefiler));
  for (std::size_t i = 0; i < 54; ++i) EXPECT_EQ(slots.at(i), i);
  EXPECT_EQ(slotOf(&ZoDumpArchive::printf), 56U) << "behind a destructor of two slots";
  EXPECT_EQ(slotOf(&ZoDumpArchive::clear), 57U);
  EXPECT_EQ(slotOf(&ZoDumpArchive::dump), 58U);
}
#endif

TEST(Archive, EveryValueHasItsBytesAndComesBack) {
  PlainArchive whole;
  for (const ArchivedValue& value : archivedValues()) {
    SCOPED_TRACE(value.name);
    PlainArchive plain;
    value.write(plain);
    EXPECT_EQ(plain.bytes, value.bytes);
    EXPECT_EQ(passed(value, plain), value.bytes);
    EXPECT_EQ(plain.at, plain.bytes.size());
    ZoMemoryWriteArchive memory;
    value.write(memory);
    EXPECT_EQ(toBytes(memory.bytes()), value.bytes);
    EXPECT_EQ(memory.offset(), value.bytes.size());
    ZoMemoryReadArchive back(memory.bytes());
    EXPECT_EQ(passed(value, back), value.bytes);
    EXPECT_EQ(back.rest(), 0U);
    value.write(whole);
  }
  const Use writeAll = [](ZoArchive& to) {
    for (const ArchivedValue& value : archivedValues()) value.write(to);
  };
  const Use expectAll = [](ZoArchive& from) {
    for (const ArchivedValue& value : archivedValues())
      EXPECT_EQ(passed(value, from), value.bytes) << value.name;
  };
  const TempFolder folder;
  for (const bool mfc : {false, true}) {
    withFile(mfc, true, folder.path() / L"archive", writeAll);
    const std::string stored = fileBytes(folder.path() / L"archive");
    EXPECT_EQ(ByteVector(stored.begin(), stored.end()), whole.bytes);
    withFile(mfc, false, folder.path() / L"archive", expectAll);
  }
}

// Wherever the data ends: nothing of what the value held before is left, and nothing hangs.
TEST(Archive, DataThatEndsEarlyGivesZerosOrThrows) {
  for (const ArchivedValue& value : archivedValues()) {
    for (std::size_t size = 0; size < value.bytes.size(); ++size) {
      SCOPED_TRACE(value.name + " " + std::to_string(size));
      const ByteVector cut(value.bytes.begin(),
                           value.bytes.begin() + static_cast<std::ptrdiff_t>(size));
      PlainArchive fresh(cut), used(cut);
      EXPECT_EQ(passed(value, fresh), passed(value, used, false));
      ZoMemoryReadArchive memory(cut.data(), cut.size());
      const std::wstring what = thrown([&] { passed(value, memory); });
      EXPECT_NE(what.find(L" The archive ends "), std::wstring::npos);
      EXPECT_LE(std::stoul(what), size);
    }
  }
  const ByteVector claims = bytesOf("00270000 09000000 FFFFFFFF 00240000 04000000 FFFFFFFF 41");
  PlainArchive plain(claims);
  ZoVariant value;
  plain.read(value);
  EXPECT_EQ(value.entries(), 0U);
  ZoMemoryReadArchive memory(claims.data(), claims.size());
  EXPECT_EQ(thrown([&] { memory.read(value); }), L"25 The archive ends within a text");
  EXPECT_EQ(thrown([&] { memory.readBin(&value, 1); }), L"25 The archive ends within bytes");
}

// The promise of buffered_archive.h.
TEST(Archive, MutationsGiveAnErrorOrValuesInBoundedMemory) {
  PlainArchive whole;
  for (const ArchivedValue& value : archivedValues()) value.write(whole);
  std::mt19937 random(7);
  std::size_t errors = 0;
  ZoMemoryWriteArchive to;
#ifdef ZO_GUARDED
  const int count = mutationCount(150);
#else
  const int count = mutationCount(5000);
#endif
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
  ByteVector dicts = bytesOf("00270000 09000000 E8030000");  // a thousand empty ones
  const ByteVector dict = bytesOf("00280000 08000000 00000000");
  for (int i = 0; i < 1000; ++i) dicts.insert(dicts.end(), dict.begin(), dict.end());
  MemoryWatch watch;
  ZoVariant value;
  ZoMemoryReadArchive(dicts.data(), dicts.size()).read(value);
  EXPECT_LE(watch.peak(), (64U << 10) + 160 * dicts.size());
}

TEST(Archive, ContainersLieAtMostSoDeep) {
  const unsigned int most = ZoVariant::kMaxDepth;
  ZoMemoryWriteArchive memory;
  memory.write(nested(most), L"");
  ZoMemoryReadArchive back(memory.bytes());
  ZoVariant value;
  back.read(value);
  EXPECT_EQ(value, nested(most));
  memory.clear();
  const std::wstring tooDeep = L" The archive's containers lie too deep in one another";
  EXPECT_EQ(thrown([&] { memory.write(nested(most + 1), L""); }),
            std::to_wstring(12 * most) + tooDeep);
  PlainArchive plain;
  plain.write(nested(most + 1), L"");
  ZoMemoryReadArchive deep(plain.bytes.data(), plain.bytes.size());
  for (int i = 0; i < 2; ++i)  // the second time it stands where it threw, and has left all levels
    EXPECT_EQ(thrown([&] { deep.read(value); }),
              i ? L"" : std::to_wstring(12 * most + 8) + tooDeep);
  for (int i = 0; i < 2; ++i) {
    plain.at = 0;
    plain.read(value);
    EXPECT_EQ(value.entries(), 0U);
    EXPECT_TRUE(value.isTypeOf(ZoVariant::kSequence));
  }
}

// The rest of the format: what has no round trip, or not the same bytes.
TEST(Archive, OdditiesOfTheFormatAreKept) {
  PlainArchive plain;
  ZoHnd both(L"A");
  both.setId(0x100000007);
  plain.write(both, L"");
  EXPECT_EQ(plain.bytes, bytesOf("03000000 0700000001000000 01000000 4100"));
  ZoHnd handle;
  plain.read(handle);  // 4 bytes of the id; the others are the length of the text
  EXPECT_EQ(handle.id(), 7);
  EXPECT_STREQ(handle.handle(), L"\1");
  EXPECT_EQ(plain.at, 14U);

  PlainArchive filer;
  filer.shortPointers = true;
  const ZoVariant pointer(reinterpret_cast<void*>(0x100000002));
  filer.write(pointer, L"");
  EXPECT_EQ(filer.bytes, bytesOf("00290000 05000000 02000000"));
  ZoVariant value;
  filer.read(value);
  EXPECT_EQ(value.asPointer(), reinterpret_cast<void*>(2));

  const auto read = [&](std::string_view bytes) {
    PlainArchive from(bytesOf(bytes));
    from.read(value);
    EXPECT_EQ(from.at, from.bytes.size()) << bytes;
    return value;
  };
  EXPECT_EQ(read("00200000 4B000000"), ZoVariant(ZoVariant::kEmpty, ZoTypeCode::NoType, 1));
  EXPECT_EQ(read("00210000 21000000 07000000"), ZoVariant(7)) << "a reference bit";
  EXPECT_EQ(read("00280000 08000000 02000000 01000000 6100 00210000 01000000 01000000"
                 "01000000 4100 00210000 01000000 02000000")
                .at(L"A")
                ->asInt(),
            1);
  EXPECT_EQ(read("00240000 04000000 03000000 4100 0000 4200").asString(), L"A");
  for (const char* code : {"04", "FC", "7F"}) {
    EXPECT_EQ(
        read(std::string("00260000 07000000") + code + std::string(44, '0') + "F03F").asVector().z,
        1)
        << code;
  }
  bool truth = false;
  PlainArchive(bytesOf("80")).read(truth);
  EXPECT_TRUE(truth);

  PlainArchive labels;
  labels.write(ZoVector(2, 0, 0), L"no");
  labels.write(ZoVector(1, 0, 0), L"v");
  labels.write(ZoPlane(ZoPoint(0, 0, 1), ZoVector::s_zAxis), L"no");
  labels.write(static_cast<const wchar_t*>(nullptr), L"no");
  labels.write(ZoString(), L"no");
  labels.write(1, L"i");
  labels.write(_GUID(), L"g");
  labels.write(ZoVariant(1), L"no");
  EXPECT_EQ(labels.calls, L"/1 /8 /8 /8 v/1 /1 /32 /4 /0 /4 i/4 g/16 /4 /4 /4 ");
  ZoMemoryWriteArchive streamed;
  streamed << L"a" << ZoColor(ZoColor::kRed) << 1.0;
  static_assert(!Archivable<void*>);
}

TEST(MfcArchive, TextsOfAStdioFileMayBeEightBit) {
  const TempFolder folder;
  const std::filesystem::path path = folder.path() / L"archive";
  withFile(true, true, path, [](ZoArchive& to) {
    const ByteVector bytes = bytesOf("03000000 41E442 02000000 5C43 5C 0200 4445 FFFFFF7F 41");
    to.writeBin(bytes.data(), static_cast<unsigned int>(bytes.size()), L"");
  });
  for (const bool ansi : {false, true}) {
    ZoStdioFile file(path.c_str(), CFile::modeRead, ansi);
    CArchive under(&file, CArchive::load);
    ZoMfcArchive archive(under);
    EXPECT_EQ(archive.needToConvertToUnicode(), ansi);
    if (!ansi) continue;
    ZoString text, past(L"old");
    wchar_t* allocated = nullptr;
    ZoFileName name;
    archive >> text >> allocated >> name >> past;
    EXPECT_EQ(text, ZoString().setFromMB("A\xE4"
                                         "B"));
    EXPECT_STREQ(allocated, L"\\C");
    delete[] allocated;
    EXPECT_EQ(name, L"DE");
    EXPECT_TRUE(past.isEmpty());
  }
}

template <class Exception>
int causeOf(const std::function<void()>& use) {
  try {
    use();
  } catch (Exception* e) {
    const int cause = e->m_cause;
    e->Delete();
    return cause;
  }
  return 0;
}

TEST(MfcArchive, WithoutArchiveNothingHappensAndExceptionsPass) {
  ZoMfcArchive archive;
  EXPECT_FALSE(archive.isStoring() || archive.needToConvertToUnicode());
  archive.flush();
  archive.write(1, L"");
  for (const ArchivedValue& value : archivedValues()) {
    PlainArchive empty;
    EXPECT_EQ(passed(value, archive, false), passed(value, empty)) << value.name;
  }
  const TempFolder folder;
  const std::filesystem::path path = folder.path() / L"archive";
  withFile(true, true, path, [](ZoArchive& to) { to << 1 << 2; });
  CFile file(path.c_str(), CFile::modeRead | CFile::shareDenyNone);
  CArchive under(&file, CArchive::load);
  archive.setArchive(under);
  EXPECT_EQ(&archive.archive(), &under);
  int number = 0;
  archive.read(number);
  EXPECT_EQ(number, 1);
  archive.flush();  // gives the file back at what was read
  EXPECT_EQ(file.GetPosition(), 4U);
  EXPECT_EQ(causeOf<CArchiveException>([&] { archive.write(1, L""); }),
            CArchiveException::readOnly);
  FaultyFiles faulty;
  for (const Fault fault : {Fault::fail, Fault::shorten}) {
    faulty.arm({.fault = fault, .call = "write"});
    CFile target(path.c_str(), CFile::modeCreate | CFile::modeReadWrite | CFile::shareDenyNone);
    CArchive store(&target, CArchive::store | CArchive::bNoFlushOnDelete);
    archive.setArchive(store);
    archive.write(1, L"");
    EXPECT_EQ(causeOf<CFileException>([&] { archive.flush(); }), CFileException::diskFull);
    EXPECT_EQ(causeOf<CArchiveException>([&] { archive.read(number); }),
              CArchiveException::writeOnly);
  }
}

TEST(FileArchive, GoesThroughItsBufferAndGivesTheFileBackInPlace) {
  const TempFolder folder;
  const Attached attached;  // failures of files are reported to a service
  const std::wstring longText(100000, L'x');
  const ZoFileName name(folder.path() / L"archive");
  ZoFile file;
  ASSERT_EQ(file.open(name, ZoFile::kReadWrite, ZoFile::kCreateAlways), 0);
  file.write("head", 4);
  {
    ZoFileWriteArchive archive(file);
    for (int i = 0; i < 50000; ++i) archive.write(i, L"");
    archive.write(longText.c_str(), L"");
    archive.write(7, L"");
    archive.flush();
    EXPECT_EQ(file.currentPos(), 4 + 400008);
    EXPECT_EQ(archive.offset(), 400008U);
    int number = 0;
    EXPECT_EQ(thrown([&] { archive.read(number); }),
              L"400008 An archive that stores was read from");
  }
  file.write("tail", 4);
  file.seek(4);
  {
    ZoFileReadArchive archive(file);
    int number = 0, wrong = 0;
    for (int i = 0; i < 50000; ++i) {
      archive.read(number);
      wrong += number != i;
    }
    EXPECT_EQ(wrong, 0);
    ZoString text;
    archive >> text >> number;
    EXPECT_TRUE(text == longText && number == 7);
    EXPECT_EQ(thrown([&] { archive.write(1, L""); }),
              L"400008 An archive that loads was written to");
  }
  char tail[4];
  EXPECT_EQ(file.read(tail, 4), 4U);
  EXPECT_EQ(std::string_view(tail, 4), "tail");

  FaultyFiles faulty;
  faulty.arm({.fault = Fault::fail, .call = "read"});
  file.seek(0);
  ZoFileReadArchive unreadable(file);
  EXPECT_EQ(thrown([&] { unreadable.readBin(tail, 4); }), L"0 The archive's file cannot be read");
  faulty.arm({.fault = Fault::fail, .call = "write"});
  ZoFileWriteArchive unwritable(file);
  unwritable.write(1, L"");
  EXPECT_EQ(thrown([&] { unwritable.flush(); }), L"0 The archive's file cannot be written");
}

TEST(DumpArchive, EveryWriteHasItsEntry) {
  const _GUID guid = {0x6F9619FF, 0x8B86, 0xD011, {0xB4, 0x2D, 0, 0xC0, 0x4F, 0xC9, 0x64, 0xFF}};
  ZoHnd both(L"1F");
  both.setId(0x100000005);
  ZoHashDict<ZoVariant, ZoString> entries;
  entries.insertAt(L"k", ZoVariant(ZoArray<ZoVariant>{ZoVariant(1), ZoVariant(L"t")}));
  const ZoVariant dict(std::move(entries));
  using Write = std::function<void(ZoArchive&, const wchar_t*)>;
  const auto value = [](auto what) {
    return Write([what](ZoArchive& to, const wchar_t* name) mutable { to.write(what, name); });
  };
  struct Case {
    Write write;
    const wchar_t *label, *text;
  };
  const wchar_t* const null = nullptr;
  const Case cases[] = {
      {value(true), L"Bool", L": true"},
      {value(false), L"Bool", L": false"},
      {value(static_cast<signed char>(-2)), L"Int8", L": -2"},
      {value(static_cast<unsigned char>(254)), L"UInt8", L": 254"},
      {value(static_cast<short>(-2)), L"Int16", L": -2"},
      {value(static_cast<unsigned short>(65534)), L"UInt16", L": 65534"},
      {value(-2), L"Int32", L": -2"},
      {value(4294967294U), L"UInt32", L": 4294967294"},
      {value(std::uint64_t{0x1FFFFFFFE}), L"Int64", L": -2 (trimmed to 32 bit)"},
      {value(std::int64_t{-2}), L"UInt64", L": 4294967294 (trimmed to 32 bit)"},
      {value(1e10), L"Real", L": 1e+10"},
      {value(1 / 3.0), L"Real", L": 0.333333"},
      {value(-1e-300), L"Real", L": -1e-300"},
      {value(std::numeric_limits<double>::infinity()), L"Real", L": inf"},
      {value(L"a \"%s\""), L"String", L": \"a \"%s\"\""},
      {value(null), L"String", L": \"\""},
      {value(ZoString(L"a\0b", 3)), L"String", L": \"a\""},
      {value(ZoColor(1, 2, 3)), L"Color", L": 102 (1 2 3)"},
      {value(ZoColor(ZoColor::kYellow)), L"Color", L": 2 (255 255 0)"},
      {value(ZoFileName(L"C:\\a.b")), L"FileName", L": \"C:\\a.b\""},
      {value(ZoPoint(1, 2.5, -3)), L"Point", L": (1, 2.5, -3)"},
      {value(ZoVector::s_xAxis), L"Vector", L": (1, 0, 0)"},
      {value(ZoPlane(ZoPoint(1, 2, 3), ZoVector(0, 0, 2))), L"Plane",
       L": RefPnt(1, 2, 3) Normal(0, 0, 2)"},
      {value(ZoMatrix()), L"Matrix",
       L":\n      (1 0 0 0)\n      (0 1 0 0)\n      (0 0 1 0)\n      (0 0 0 1)"},
      {value(ZoCoSystem()), L"CoordSystem",
       L":\n      Origin(0, 0, 0)\n      X-Axis(1, 0, 0)\n      Y-Axis(0, 1, 0)"},
      {value(ZoTol(1, 0.5)), L"Tolerance", L": 1(Pnt) 0.5(Vec)"},
      {value(ZoHnd()), L"Handle", L": \"\" 0"},
      {value(both), L"Handle", L": \"1F\" 5"},
      {value(guid), L"GUID", L": {6F9619FF-8B86-d011-B42D-00C04FC964FF}"},
      {Write([](ZoArchive& to, const wchar_t* name) { to.writeBin("\1\xAB", 2, name); }), L"Hex",
       L": 01AB"},
      {value(ZoVariant(1)), L"Int32", L": 1"},
      {value(ZoVariant(std::int64_t{1})), L"UInt64", L": 1 (trimmed to 32 bit)"},
      {value(ZoVariant(1.5)), L"Real", L": 1.5"},
      {value(ZoVariant(L"t")), L"String", L": \"t\""},
      {value(ZoVariant(reinterpret_cast<void*>(16))), L"Int64", L": 16 (trimmed to 32 bit)"},
      {value(ZoVariant(ZoPoint(1, 2, 3))), L"Point", L": (1, 2, 3)"},
      {value(ZoVariant(ZoVector(1, 2, 3))), L"Vector", L": (1, 2, 3)"},
      {value(ZoVariant(guid)), L"GUID", L": {6F9619FF-8B86-d011-B42D-00C04FC964FF}"},
  };
  ZoDumpArchive dump;
  EXPECT_TRUE(dump.isStoring());
  EXPECT_EQ(dump.dump(), L"");
  dump.pushScope(L"50 %d %% %s");
  ZoString expected(L"\n50 %d % %s");
  for (const Case& c : cases) {
    for (const wchar_t* label : {null, L"", L"Lab%s"}) {
      c.write(dump, label);
      expected += ZoString(L"\n   ") + (label && *label ? label : c.label) + c.text;
    }
    EXPECT_EQ(dump.dump(), expected) << "linear only at the end, but right at any time";
  }
  dump.write(ZoVariant(), L"none");
  EXPECT_EQ(dump.dump(), expected);

  dump.clear();
  dump.write(dict, L"");
  dump.write(*dict.at(L"k"), L"parts");
  ZoDumpArchive copy(dump);
  copy.popScope();
  copy.popScope();  // one too many
  copy.printf(L"%d %ls", 5, std::wstring(2000, L'x').c_str());
  const ZoString tree =
      L"\n   HashDictionary\n      Entries: 1\n      Key: \"k\"\n      List\n"
      L"         Entries: 2\n         Int32: 1\n         String: \"t\""
      L"\n   parts\n      List\n         Entries: 2\n         Int32: 1\n         String: \"t\"";
  EXPECT_EQ(dump.dump(), tree);
  EXPECT_EQ(copy.dump(), tree + L"\n5 " + ZoString(std::wstring(1021, L'x')));
  copy.clear();
  copy.write(std::wstring(2000, L'x').c_str(), L"T");
  EXPECT_EQ(copy.dump().length(), 1024U);
  int number = 1;
  copy.read(number);
  EXPECT_EQ(number, 0);
}
