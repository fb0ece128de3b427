// The C interface used wrongly: each function with each wrong handle, null arguments, from another
// thread, and without the library.
#include <zo_c.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "c_interface/client.h"
#include "c_interface/handles.h"
#include "support/documents.h"
#include "support/temp_folder.h"
#include "system/attached.h"
#include "system/other_thread.h"

namespace {

using zo::c::Kind;
using zo::test::inOtherThread;

constexpr ZocText kNone{};
const ZocText kName = zocUtf8("name");

// Handles of all kinds, and of an archive each way.
struct Handles {
  ZocString string = nullptr;
  ZocValue value = nullptr;
  ZocArchive written = nullptr, read = nullptr;
  ZocLibrary library = nullptr;

  explicit Handles(const std::string& name) {
    EXPECT_EQ(zocStringNew(&string), 0);
    EXPECT_EQ(zocValueNew(&value), 0);
    EXPECT_EQ(zocArchiveNew(&written), 0);
    EXPECT_EQ(zocArchiveLoad(nullptr, 0, &read), 0);
    EXPECT_EQ(zocLibraryOpen(zocUtf8(name.c_str()), ZOC_CREATE, &library), 0);
  }
  [[nodiscard]] std::vector<void*> all() const { return {string, value, written, read, library}; }
};

struct Function {
  const char* call;
  Kind kind;  // of its first handle
  int (*run)(void* handle, const Handles& others);
};

#define TAKES(kind, Type, call)                                             \
  {#call, Kind::kind, [](void* handle, [[maybe_unused]] const Handles& h) { \
     const auto x = static_cast<Type>(handle);                              \
     return call;                                                           \
   }}
#define STRING(call) TAKES(string, ZocString, call)
#define VALUE(call) TAKES(value, ZocValue, call)
#define ARCHIVE(call) TAKES(archive, ZocArchive, call)
#define LIBRARY(call) TAKES(library, ZocLibrary, call)

int whole;
int32_t number;
int64_t large;
double real[3];
uint32_t count;
uint64_t size;
size_t length;
const void* bytes;
ZocValueInfo info;

const Function kFunctions[] = {
    STRING(zocStringLength(x, &length, &length)),
    STRING(zocResultText(1, ZOC_FAMILY_COMMON, x)),
    STRING(zocPlatformText(x)),
    STRING(zocUnitsPrint(1, ZOC_LENGTH, x)),
    STRING(zocMessageFormat(kName, 1, nullptr, x)),
    VALUE(zocValueParse(x, kName, nullptr)),
    VALUE(zocValueFormat(x, h.string)),
    VALUE(zocValueEqual(x, h.value, &whole)),
    VALUE(zocValueEqual(h.value, x, &whole)),
    VALUE(zocValueInfo(x, kNone, &info)),
    VALUE(zocValueGetInt(x, kNone, &large)),
    VALUE(zocValueGetReal(x, kNone, real)),
    VALUE(zocValueGetText(x, kNone, h.string)),
    VALUE(zocValueGetTriple(x, kNone, real)),
    VALUE(zocValueGet(x, kNone, h.value)),
    VALUE(zocValueGet(h.value, kNone, x)),
    VALUE(zocValueKeys(x, kNone, h.value)),
    VALUE(zocValuePutInt(x, kName, 1, ZOC_PLAIN)),
    VALUE(zocValuePutReal(x, kName, 1, ZOC_PLAIN)),
    VALUE(zocValuePutText(x, kName, kName, ZOC_PLAIN)),
    VALUE(zocValuePutTriple(x, kName, real, ZOC_PLAIN)),
    VALUE(zocValuePut(x, kName, h.value)),
    VALUE(zocValuePut(h.value, kName, x)),
    VALUE(zocValuePutKind(x, kName, ZOC_DICT, ZOC_PLAIN)),
    VALUE(zocValueSetFlags(x, kNone, 1)),
    VALUE(zocValueRemoveKey(x, kNone, kName)),
    VALUE(zocValueRemoveAt(x, kNone, 0)),
    VALUE(zocArchiveWriteValue(h.written, x)),
    VALUE(zocArchiveReadValue(h.read, x)),
    VALUE(zocLibraryList(h.library, 0, x)),
    ARCHIVE(zocArchiveBytes(x, &bytes, &length)),
    ARCHIVE(zocArchiveRest(x, &length)),
    ARCHIVE(zocArchiveWriteValue(x, h.value)),
    ARCHIVE(zocArchiveWriteText(x, kName)),
    ARCHIVE(zocArchiveWriteInt(x, 1)),
    ARCHIVE(zocArchiveWriteBigInt(x, 1)),
    ARCHIVE(zocArchiveWriteReal(x, 1)),
    ARCHIVE(zocArchiveWriteRaw(x, "", 1)),
    ARCHIVE(zocArchiveReadValue(x, h.value)),
    ARCHIVE(zocArchiveReadText(x, h.string)),
    ARCHIVE(zocArchiveReadInt(x, &number)),
    ARCHIVE(zocArchiveReadBigInt(x, &large)),
    ARCHIVE(zocArchiveReadReal(x, real)),
    ARCHIVE(zocArchiveReadRaw(x, real, 1)),
    LIBRARY(zocLibraryAddFile(x, kName, kName, 0, ZOC_STORE)),
    LIBRARY(zocLibraryExtract(x, kName, kName)),
    LIBRARY(zocLibraryRename(x, kName, kName)),
    LIBRARY(zocLibraryDelete(x, kName)),
    LIBRARY(zocLibraryRecover(x, kName)),
    LIBRARY(zocLibraryReorganize(x)),
    LIBRARY(zocLibraryVerify(x, kName)),
    LIBRARY(zocLibraryBeginBatch(x)),
    LIBRARY(zocLibraryEndBatch(x)),
    LIBRARY(zocLibraryCancelBatch(x)),
    LIBRARY(zocLibraryList(x, 0, h.value)),
    LIBRARY(zocLibrarySize(x, kName, &size)),
    LIBRARY(zocLibraryRead(x, kName, 0, real, 1, &count)),
    LIBRARY(zocLibraryWrite(x, kName, real, 1, ZOC_STORE)),
};

class CInterface : public testing::Test {
 protected:
  [[nodiscard]] std::string path(const char* name) const {
    return reinterpret_cast<const char*>((folder_.path() / name).u8string().c_str());
  }

  zo::test::TempFolder folder_;
  zo::test::Attached attached_;
  Handles handles_{path("parts.lib")};

  ~CInterface() override {
    for (void* const handle : handles_.all()) (void)zocClose(handle);
  }
};

TEST_F(CInterface, DoesWhatItSaysForAClientInC) {
  const char* const failed = zocClient(path("client.lib").c_str());
  EXPECT_EQ(failed, nullptr) << failed;
}

TEST_F(CInterface, EachFunctionWithAHandleIsInTheTable) {
  std::ifstream file(zo::test::sourcePath("include/zo_c.h"));
  std::stringstream header;
  header << file.rdbuf();
  const std::string text = header.str();
  const std::regex declared(R"(ZOC_API int (zoc\w+)\([^)]*Zoc(String|Value|Archive|Library) )");
  unsigned int found = 0;
  for (std::sregex_iterator i(text.begin(), text.end(), declared), end; i != end; ++i, ++found) {
    const std::string begin = (*i)[1].str() + "(";
    const auto isIt = [&](const Function& f) {
      return std::string_view(f.call).starts_with(begin);
    };
    EXPECT_TRUE(std::ranges::any_of(kFunctions, isIt)) << begin;
  }
  EXPECT_GT(found, 40U);
}

TEST_F(CInterface, WrongHandlesAreRefused) {
  Handles closed(path("closed.lib"));
  for (void* const handle : closed.all()) EXPECT_EQ(zocClose(handle), 0);
  const Handles reused(path("closed.lib"));  // has the places of those that were closed
  for (const Function& function : kFunctions) {
    SCOPED_TRACE(function.call);
    for (void* const handle : handles_.all()) {
      const bool fits = zo::c::findHandle(handle)->kind() == function.kind;
      EXPECT_TRUE(fits || function.run(handle, handles_) == ZOC_WRONG_HANDLE);
    }
    for (void* const handle : closed.all())
      EXPECT_EQ(function.run(handle, handles_), ZOC_BAD_HANDLE);
    for (void* const handle : {static_cast<void*>(nullptr), static_cast<void*>(&whole),
                               reinterpret_cast<void*>(~std::uintptr_t{0})})
      EXPECT_EQ(function.run(handle, handles_), ZOC_BAD_HANDLE);
  }
  for (void* const handle : closed.all()) EXPECT_EQ(zocClose(handle), ZOC_BAD_HANDLE);
  EXPECT_EQ(zocClose(nullptr), ZOC_BAD_HANDLE);
  EXPECT_EQ(zocStringUtf8(closed.string), nullptr);
  EXPECT_EQ(zocStringUtf16(nullptr), nullptr);
  EXPECT_EQ(zocArchiveWriteInt(handles_.read, 1), ZOC_WRONG_HANDLE);
  EXPECT_EQ(zocArchiveReadInt(handles_.written, &number), ZOC_WRONG_HANDLE);
  for (void* const handle : reused.all()) EXPECT_EQ(zocClose(handle), 0);
}

TEST_F(CInterface, WhatAnotherThreadIsUsingIsRefused) {
  Handles held(path("held.lib"));
  for (void* const handle : held.all()) ASSERT_TRUE(zo::c::findHandle(handle)->enter());
  inOtherThread([&] {
    for (const Function& function : kFunctions) {
      if (function.kind == Kind::library) continue;
      for (void* const handle : held.all()) {
        const bool fits = zo::c::findHandle(handle)->kind() == function.kind;
        EXPECT_TRUE(!fits || function.run(handle, handles_) == ZOC_WRONG_THREAD) << function.call;
      }
    }
    for (void* const handle : held.all()) EXPECT_EQ(zocClose(handle), ZOC_WRONG_THREAD);
    EXPECT_EQ(zocLibraryVerify(held.library, kName), ZOC_REFUSED) << "serves several threads";
    return 0;
  });
  for (void* const handle : held.all()) zo::c::findHandle(handle)->leave();
  EXPECT_EQ(inOtherThread([&] { return zocClose(held.library); }), ZOC_WRONG_THREAD);
  EXPECT_EQ(inOtherThread([&] { return zocClose(held.value); }), 0);
  for (void* const handle : held.all())
    EXPECT_EQ(zocClose(handle), handle == held.value ? ZOC_BAD_HANDLE : 0);
}

TEST_F(CInterface, NothingWorksBeforeAttaching) {
  ASSERT_EQ(zoComDllDetach(), 0);
  for (const Function& function : kFunctions)
    for (void* const handle : handles_.all())
      EXPECT_EQ(function.run(handle, handles_), ZOC_NOT_ATTACHED) << function.call;
  EXPECT_EQ(zocClose(handles_.value), ZOC_NOT_ATTACHED);
  ZocValue none = handles_.value;
  EXPECT_EQ(zocValueNew(&none), ZOC_NOT_ATTACHED);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(zocUnitsParse(kName, ZOC_LENGTH, real), ZOC_NOT_ATTACHED);
  EXPECT_EQ(zocDetach(), ZOC_NOT_ATTACHED);
  EXPECT_EQ(zocAttach(), 0);
  EXPECT_EQ(zocAttach(), ZOC_REFUSED) << "once in a process";
  EXPECT_EQ(zocDetach(), 0);
  EXPECT_EQ(zocAttach(), 0);
  EXPECT_EQ(zocClose(handles_.value), ZOC_BAD_HANDLE) << "detaching closes all";
}

TEST_F(CInterface, WrongArgumentsAreRefused) {
  const ZocValue v = handles_.value;
  const ZocLibrary l = handles_.library;
  ASSERT_EQ(zocValuePutInt(v, kName, 1, ZOC_PLAIN), 0);
  ZocText coded = kName;
  coded.encoding = 3;
  const int codes[] = {
      zocStringNew(nullptr), zocValueNew(nullptr), zocArchiveNew(nullptr),
      zocArchiveLoad("", 0, nullptr), zocLibraryOpen(kName, ZOC_READ, nullptr),
      // no place for the result
      zocValueEqual(v, v, nullptr), zocValueInfo(v, kName, nullptr),
      zocValueGetInt(v, kName, nullptr), zocValueGetReal(v, kName, nullptr),
      zocValueGetTriple(v, kName, nullptr), zocValuePutTriple(v, kName, nullptr, ZOC_PLAIN),
      zocArchiveLoad(nullptr, 1, &handles_.read),
      zocArchiveLoad("", SIZE_MAX >> 17, &handles_.read),
      zocArchiveBytes(handles_.written, nullptr, &length),
      zocArchiveWriteRaw(handles_.written, nullptr, 1), zocUnitsParse(kName, ZOC_LENGTH, nullptr),
      zocUnitsConvert(1, ZOC_LENGTH, kNone, kNone, nullptr), zocLibrarySize(l, kName, nullptr),
      zocLibraryRead(l, kName, 0, nullptr, 1, &count),
      zocLibraryRead(l, kName, 0, real, 1, nullptr),
      zocLibraryWrite(l, kName, nullptr, 1, ZOC_STORE),
      // numbers and texts that are none
      zocLibraryOpen(kName, 3, &handles_.library), zocLibraryWrite(l, kName, "", 0, 3),
      zocLibraryAddFile(l, kName, kName, 0, -1), zocValuePutKind(v, kName, 11, ZOC_PLAIN),
      zocValuePutKind(v, kName, ZOC_DICT, ZOC_LENGTH), zocValuePutInt(v, kName, 1, ZOC_LENGTH),
      zocValuePutInt(v, kName, 1LL << 40, 0x2100), zocValuePutText(v, kName, kName, ZOC_LENGTH),
      zocValuePutText(v, kName, coded, ZOC_PLAIN), zocValueParse(v, coded, nullptr),
      zocValueSetFlags(v, kName, 0x80000000), zocValueSetFlags(v, kName, 0x4000000),
      zocResultText(1, -1, handles_.string), zocResultText(1, 0x18, handles_.string),
      zocResultText(1, 0x10003, handles_.string)};
  for (std::size_t i = 0; i < std::size(codes); ++i) EXPECT_EQ(codes[i], ZOC_BAD_ARGUMENT) << i;
  EXPECT_EQ(zocClose(l), 0);  // the calls that failed made these two null
  EXPECT_EQ(handles_.library, nullptr);
  EXPECT_EQ(zocValueGetInt(v, kName, &large), 0);
  EXPECT_EQ(large, 1) << "nothing has changed";
  EXPECT_EQ(zocValueSetFlags(v, kName, 0x3FFFFFF), 0);
  EXPECT_EQ(zocResultText(ZOC_NO_LIBRARY, 0x18, handles_.string), 0) << "in any family";
}

TEST_F(CInterface, ABatchIsEndedByItsEndOnly) {
  const ZocLibrary l = handles_.library;
  const auto write = [&](const char* name, int mode = ZOC_STORE) {
    return zocLibraryWrite(l, zocUtf8(name), "data", 4, mode);
  };
  const auto sizeOf = [&](const char* name) { return zocLibrarySize(l, zocUtf8(name), &size); };
  const ZocText old = zocUtf8("old"), gone = zocUtf8("gone"), again = zocUtf8("NEW");
  EXPECT_EQ(write("old") + write("gone") + zocLibraryDelete(l, gone), 0);
  for (const bool ends : {false, true}) {
    EXPECT_EQ(zocLibraryEndBatch(l), ZOC_NO_BATCH);
    EXPECT_EQ(zocLibraryCancelBatch(l), ZOC_NO_BATCH);
    EXPECT_EQ(zocLibraryBeginBatch(l), 0);
    EXPECT_EQ(write("new", 3), ZOC_BAD_ARGUMENT);  // and does not count as written
    EXPECT_EQ(write("new"), 0);
    const int codes[] = {
        zocLibraryBeginBatch(l),
        zocLibraryRename(l, old, kName),
        zocLibraryDelete(l, old),
        zocLibraryRecover(l, gone),
        zocLibraryReorganize(l),
        write("NEW"),
        zocLibraryAddFile(l, zocUtf8(path("parts.lib").c_str()), again, 1, ZOC_STORE)};
    for (std::size_t i = 0; i < std::size(codes); ++i) EXPECT_EQ(codes[i], ZOC_IN_BATCH) << i;
    EXPECT_EQ(zocLibraryAddFile(l, kName, again, 0, ZOC_STORE), 1001);
    EXPECT_EQ(write("old"), 0);
    EXPECT_EQ(sizeOf("new"), ZOC_REFUSED) << "not yet visible";
    EXPECT_EQ(ends ? zocLibraryEndBatch(l) : zocLibraryCancelBatch(l), 0);
    EXPECT_EQ(sizeOf("new"), ends ? 0 : ZOC_REFUSED);
    EXPECT_EQ(sizeOf("old"), 0);
  }
  EXPECT_EQ(zocLibraryReorganize(l), 0);
  EXPECT_EQ(zocLibraryBeginBatch(l) + write("new") + write("last"), 0);
  EXPECT_EQ(zocClose(l), 0);
  EXPECT_EQ(zocLibraryOpen(zocUtf8(path("parts.lib").c_str()), ZOC_READ, &handles_.library), 0);
  EXPECT_EQ(zocLibrarySize(handles_.library, zocUtf8("last"), &size), 0) << "closing ends it";
  EXPECT_EQ(zocLibraryBeginBatch(handles_.library), 1004);
  EXPECT_EQ(zocLibraryEndBatch(handles_.library), ZOC_NO_BATCH);
}

TEST_F(CInterface, WhatIsNoLibraryIsNotOpened) {
  const std::string junk = "nothing but some letters";
  const std::filesystem::path file = folder_.path() / "junk";
  const struct {
    std::string content;
    int access, code;
  } rows[] = {{junk, ZOC_READ, ZOC_NO_LIBRARY},
              {junk, ZOC_WRITE, ZOC_NO_LIBRARY},
              {junk, ZOC_CREATE, ZOC_NO_LIBRARY},
              {junk + junk, ZOC_WRITE, ZOC_NO_LIBRARY},
              {"", ZOC_READ, ZOC_NO_LIBRARY},
              {"", ZOC_WRITE, 0},
              {"", ZOC_CREATE, 0}};
  for (const auto& [content, access, code] : rows) {
    std::ofstream(file, std::ios::binary) << content;
    ZocLibrary library = handles_.library;
    EXPECT_EQ(zocLibraryOpen(zocUtf8(path("junk").c_str()), access, &library), code) << content;
    EXPECT_EQ(library == nullptr, code != 0);
    EXPECT_EQ(zocClose(library), code ? ZOC_BAD_HANDLE : 0);
    EXPECT_TRUE(code == 0 || std::filesystem::file_size(file) == content.size());
  }
}

TEST_F(CInterface, TextsKeepZerosAndReplaceWhatIsNoUtf8) {
  const ZocText given{"a\0\xFF", 3, ZOC_UTF8};
  ASSERT_EQ(zocValuePutText(handles_.value, kNone, given, ZOC_PLAIN), 0);
  ASSERT_EQ(zocValueGetText(handles_.value, kNone, handles_.string), 0);
  size_t utf8 = 0;
  size_t utf16 = 0;
  ASSERT_EQ(zocStringLength(handles_.string, &utf8, &utf16), 0);
  EXPECT_EQ(std::string_view(zocStringUtf8(handles_.string), utf8),
            std::string_view("a\0\xEF\xBF\xBD", 5));
  EXPECT_EQ(std::wstring_view(zocStringUtf16(handles_.string), utf16),
            std::wstring_view(L"a\0\xFFFD", 3));
}

TEST_F(CInterface, ThreadsMakeAndCloseHandlesBesideOneAnother) {
  std::atomic<int> failed = 0;
  const auto work = [&] {
    std::vector<ZocValue> values(50);
    for (int round = 0; round < 20; ++round) {
      for (int i = 0; ZocValue & value : values)
        failed += zocValueNew(&value) + zocValuePutInt(value, kNone, i++, ZOC_PLAIN);
      for (int64_t i = 0; const ZocValue value : values) {
        int64_t got = -1;
        failed += zocValueGetInt(value, kNone, &got) + (got != i++) + zocClose(value);
        failed += zocClose(value) != ZOC_BAD_HANDLE;
      }
    }
  };
  std::thread other(work);
  work();
  other.join();
  EXPECT_EQ(failed, 0);
}

}  // namespace
