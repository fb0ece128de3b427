/* A client in plain C: what zo_c.h offers, used once. It runs within the suite, and as a program of
   its own that another compiler built against the installed DLL. */
#include <stdio.h>
#include <string.h>
#include <wchar.h>
#include <zo_c.h>

#include "client.h"

#define EXPECT(held) \
  if (!(held)) return #held

static ZocString text; /* one for all answers */

static int is(const char* expected) { return strcmp(zocStringUtf8(text), expected) == 0; }
static ZocText u(const char* s) { return zocUtf8(s); }
static const ZocText self = {NULL, 0, 0};

static const char* values(void) {
  ZocValue part, copy;
  ZocValueInfo info;
  int64_t whole = 0;
  double real = 0, place[3] = {1, 2.5, -3};
  uint32_t at = 0;
  int same = 0;
  EXPECT(zocValueNew(&part) == 0 && zocValueNew(&copy) == 0);
  EXPECT(zocValuePutReal(part, u("screw/length"), 12.5, ZOC_LENGTH) == 0);
  EXPECT(zocValuePutInt(part, u("screw/count"), 1LL << 40, ZOC_PLAIN) == 0);
  EXPECT(zocValuePutText(part, zocUtf16(L"screw/name"), u("M\xC3\xBC\0ller"), ZOC_PLAIN) == 0);
  EXPECT(zocValuePutTriple(part, u("at"), place, ZOC_PLAIN) == 0);
  EXPECT(zocValuePutTriple(part, u("along"), place, 0x2600) == 0);
  EXPECT(zocValuePutKind(part, u("list"), ZOC_SEQUENCE, 0x2702) == 0);
  EXPECT(zocValuePutInt(part, u("list/0"), 7, 0x2200) == 0);
  EXPECT(zocValueSetFlags(part, u("list/0"), 4) == 0);

  EXPECT(zocValueInfo(part, u("list/0"), &info) == 0);
  EXPECT(info.kind == ZOC_BIG_INT && info.code == 0x2200 && info.flags == 4 && info.entries == 0);
  EXPECT(zocValueInfo(part, self, &info) == 0 && info.kind == ZOC_DICT && info.entries == 4);
  EXPECT(zocValueGetInt(part, u("screw/count"), &whole) == 0 && whole == 1LL << 40);
  EXPECT(zocValueGetReal(part, u("SCREW/length"), &real) == 0 && real == 12.5);
  EXPECT(zocValueGetText(part, u("screw/name"), text) == 0 && is("M\xC3\xBC"));
  EXPECT(wcscmp(zocStringUtf16(text), L"M\u00FC") == 0);
  place[1] = 0;
  EXPECT(zocValueGetTriple(part, u("at"), place) == 0 && place[1] == 2.5);
  EXPECT(zocValueGetTriple(part, u("along"), place) == 0 && place[2] == -3);

  EXPECT(zocValueFormat(part, text) == 0);
  EXPECT(zocValueParse(copy, zocUtf16(zocStringUtf16(text)), &at) == 0);
  EXPECT(zocValueEqual(part, copy, &same) == 0 && same == 1);
  EXPECT(zocValueParse(copy, u("{ nothing"), &at) == ZOC_REFUSED);

  EXPECT(zocValueRemoveKey(part, u("screw"), u("Count")) == 0);
  EXPECT(zocValueRemoveAt(part, u("list"), 1) == ZOC_REFUSED);
  EXPECT(zocValueRemoveAt(part, u("list"), 0) == 0);
  EXPECT(zocValueEqual(part, copy, &same) == 0 && same == 0);
  EXPECT(zocValueGet(part, u("screw"), part) == 0); /* out of itself */
  EXPECT(zocValuePut(part, u("again"), part) == 0); /* and a copy into itself */
  EXPECT(zocValueGetReal(part, u("again/length"), &real) == 0);
  EXPECT(zocValueKeys(part, u("again"), part) == 0);
  EXPECT(zocValueInfo(part, self, &info) == 0 && info.kind == ZOC_SEQUENCE && info.entries == 2);
  EXPECT(zocClose(copy) == 0 && zocClose(part) == 0);
  return NULL;
}

static const char* archives(void) {
  static const char raw[] = "raw";
  ZocArchive written, read;
  ZocValue value;
  const void* bytes;
  size_t size = 0, rest = 1;
  int32_t small = 0;
  int64_t large = 0;
  double real = 0;
  char buffer[sizeof raw];
  EXPECT(zocArchiveNew(&written) == 0 && zocValueNew(&value) == 0);
  EXPECT(zocValuePutInt(value, u("a/b"), 5, ZOC_PLAIN) == 0);
  EXPECT(zocArchiveWriteValue(written, value) == 0);
  EXPECT(zocArchiveWriteText(written, zocUtf16(L"\u03C0")) == 0);
  EXPECT(zocArchiveWriteInt(written, -1) == 0 && zocArchiveWriteBigInt(written, 1LL << 50) == 0);
  EXPECT(zocArchiveWriteReal(written, 0.1) == 0);
  EXPECT(zocArchiveWriteRaw(written, raw, sizeof raw) == 0);
  EXPECT(zocArchiveBytes(written, &bytes, &size) == 0);

  EXPECT(zocArchiveLoad(bytes, size, &read) == 0);
  EXPECT(zocClose(written) == 0); /* the bytes were copied */
  EXPECT(zocArchiveReadValue(read, value) == 0);
  EXPECT(zocValueGetInt(value, u("a/b"), &large) == 0 && large == 5);
  EXPECT(zocArchiveReadText(read, text) == 0 && is("\xCF\x80"));
  EXPECT(zocArchiveReadInt(read, &small) == 0 && small == -1);
  EXPECT(zocArchiveReadBigInt(read, &large) == 0 && large == 1LL << 50);
  EXPECT(zocArchiveReadReal(read, &real) == 0 && real == 0.1);
  EXPECT(zocArchiveReadRaw(read, buffer, sizeof buffer + 1) == ZOC_ENDED);
  EXPECT(zocArchiveReadRaw(read, buffer, sizeof buffer) == 0 && strcmp(buffer, raw) == 0);
  EXPECT(zocArchiveRest(read, &rest) == 0 && rest == 0);
  EXPECT(zocArchiveReadInt(read, &small) == ZOC_ENDED && small == -1);
  EXPECT(zocArchiveReadValue(read, value) == ZOC_ENDED);
  EXPECT(zocValueGetInt(value, u("a/b"), &large) == 0);
  EXPECT(zocArchiveWriteInt(read, 1) == ZOC_WRONG_HANDLE);
  EXPECT(zocClose(read) == 0 && zocClose(value) == 0);
  return NULL;
}

static const char* unitsAndMessages(void) {
  ZocValue arguments;
  double number = 0;
  EXPECT(zocUnitsSetFormat(ZOC_LENGTH, u("in"), 2) == 0);
  EXPECT(zocUnitsPrint(25.4, ZOC_LENGTH, text) == 0 && is("1.00 in"));
  EXPECT(zocUnitsParse(u("2 in"), ZOC_LENGTH, &number) == 0 && number == 50.8);
  EXPECT(zocUnitsSetFormat(ZOC_LENGTH, self, -1) == 0);
  EXPECT(zocUnitsConvert(1, ZOC_LENGTH, u("m"), self, &number) == 0 && number == 1000);
  EXPECT(zocUnitsConvert(1, ZOC_LENGTH, u("kg"), self, &number) == ZOC_REFUSED && number == 1000);

  EXPECT(zocMessageSetLanguages(u("de, en")) == 0);
  EXPECT(zocMessageFormat(u("no such file"), 1, NULL, text) == ZOC_REFUSED);
  EXPECT(zocValueNew(&arguments) == 0);
  EXPECT(zocMessageFormat(u("no such file"), 1, arguments, text) == ZOC_BAD_ARGUMENT);
  EXPECT(zocClose(arguments) == 0);
  EXPECT(zocResultText(1001, ZOC_FAMILY_LIBRARIES, text) == 0 && *zocStringUtf8(text) != 0);
  EXPECT(zocResultText(ZOC_ENDED, ZOC_FAMILY_COMMON, text) == 0);
  EXPECT(is("The data of the archive ended, or is no such value."));
  return NULL;
}

static const char* libraries(const char* name) {
  static const char bytes[] = "eight screws, eight screws, eight screws";
  ZocLibrary library;
  ZocValue list;
  char buffer[8];
  char file[300];
  uint32_t got = 0;
  uint64_t size = 0;
  int64_t flag = 0;
  snprintf(file, sizeof file, "%s.txt", name);
  EXPECT(zocLibraryOpen(u(name), ZOC_WRITE, &library) != 0 && library == NULL);
  EXPECT(zocLibraryOpen(u(name), ZOC_CREATE, &library) == 0 && zocValueNew(&list) == 0);
  EXPECT(zocLibraryBeginBatch(library) == 0);
  EXPECT(zocLibraryWrite(library, u("a/screws"), bytes, sizeof bytes, ZOC_COMPRESS) == 0);
  EXPECT(zocLibraryWrite(library, u("b"), NULL, 0, ZOC_STORE) == 0);
  EXPECT(zocLibraryEndBatch(library) == 0);
  EXPECT(zocLibrarySize(library, u("a/screws"), &size) == 0 && size == sizeof bytes);
  EXPECT(zocLibraryRead(library, u("a/screws"), 14, buffer, 5, &got) == 0 && got == 5);
  EXPECT(memcmp(buffer, "eight", 5) == 0);
  EXPECT(zocLibraryRead(library, u("a/screws"), 39, buffer, 5, &got) == 0 && got == 2);
  EXPECT(zocLibraryRead(library, u("a/screws"), ~0ULL, buffer, 5, &got) == 0 && got == 0);
  EXPECT(zocLibraryVerify(library, u("a/screws")) == 0);
  EXPECT(zocLibraryExtract(library, u("a/screws"), u(file)) == 0);
  EXPECT(zocLibraryAddFile(library, u(file), u("a/screws"), 0, ZOC_AUTOMATIC) == 1001);
  EXPECT(zocLibraryAddFile(library, u(file), u("a/screws"), 1, ZOC_AUTOMATIC) == 0);
  EXPECT(zocLibraryRename(library, u("b"), u("c")) == 0);
  EXPECT(zocLibraryDelete(library, u("c")) == 0);
  EXPECT(zocLibraryRecover(library, u("c")) == 0 && zocLibraryDelete(library, u("c")) == 0);
  EXPECT(zocLibraryVerify(library, u("c")) != 0);
  EXPECT(zocLibraryReorganize(library) == 0);
  EXPECT(zocLibraryBeginBatch(library) == 0 && zocLibraryCancelBatch(library) == 0);
  EXPECT(zocLibraryList(library, 1, list) == 0);
  EXPECT(zocValueGetText(list, u("0/name"), text) == 0 && is("a/screws"));
  EXPECT(zocValueGetInt(list, u("0/deleted"), &flag) == 0 && flag == 0);
  EXPECT(zocValueGetInt(list, u("0/size"), &flag) == 0 && flag == sizeof bytes);
  EXPECT(zocValueGetInt(list, u("1/size"), &flag) == ZOC_REFUSED);
  EXPECT(zocClose(library) == 0);
  EXPECT(zocLibraryOpen(u(name), ZOC_READ, &library) == 0);
  EXPECT(zocLibraryDelete(library, u("a/screws")) == 1004);
  EXPECT(zocPlatformText(text) == 0);
  EXPECT(zocClose(library) == 0 && zocClose(list) == 0);
  return NULL;
}

const char* zocClient(const char* library) {
  const char* failed;
  EXPECT(zocVersion() != 0);
  EXPECT(zocStringNew(&text) == 0);
  failed = values();
  if (!failed) failed = archives();
  if (!failed) failed = unitsAndMessages();
  if (!failed) failed = libraries(library);
  EXPECT(zocClose(text) == 0);
  return failed;
}

#ifdef ZOC_CLIENT_PROGRAM
int main(int count, char** arguments) {
  const char* failed = count < 2 ? "a name for a library" : NULL;
  if (!failed && zocAttach() != 0) failed = "zocAttach";
  if (!failed) failed = zocClient(arguments[1]);
  if (!failed && zocDetach() != 0) failed = "zocDetach";
  if (failed) fprintf(stderr, "not so: %s\n", failed);
  return failed != NULL;
}
#endif
