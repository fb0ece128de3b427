// Wrong use of file search and macros, and what the compiler says of it.
#include <zo/files.h>
#include <zo/persist/check_sum.h>
#include <zo/search/download_cache.h>
#include <zo/system.h>
#include <zo/system/file_open.h>
#include <zo/text/containers/array.h>

// clang-format off

void places(ZoFileSearch& search) {
  (void)search.addPath(L"C:\\parts", L"module", true);        // error: the priority comes first
  (void)search.addPath(L"C:\\parts", L"module", 1, L"below"); // error: below is a bool
  (void)search.addPath(L"C:\\parts", L"module", 1, 2);         // error: below is a bool
  (void)search.addLibrary(L"a.lib", L"module", true);         // error: the priority is an int
  (void)search.addServer(L"http://a/", L"module", true);      // error: the priority is an int
  (void)search.setCache(L"cache", 1, true);                   // error: no matching function
  (void)search.setCache(L"cache", -1, 0);                     // error: negativeOrTooLarge
  (void)search.setCache(L"cache", 1, 1LL << 32);              // error: negativeOrTooLarge
}

void find(ZoFileSearch& search, ZoFile& file, ZoArray<ZoFileName>& names) {
  (void)search.findAll(L"*", ZoFileName::kDwg);               // error: a sum of ZoFindFile::kind
  (void)search.findAll(L"*", names, ZoFileName::kDwg);        // error: a sum of ZoFindFile::kind
  (void)search.findAll(L"*", true);                           // error: a sum of ZoFindFile::kind
  (void)search.findAll(L"*", names, true);                    // error: a sum of ZoFindFile::kind
  (void)search.findNames(L"*", names, true);                  // error: a sum of ZoFindFile::kind
  (void)search.findNames(L"*", names, ZoFileName::kDwg);      // error: a sum of ZoFindFile::kind
  (void)search.open(L"a", file, true);                        // error: access, then share
  (void)search.open(L"a", file, ZoFile::kShareRead);          // error: access, then share
  (void)search.open(L"a", file, ZoFile::kOpenExisting);       // error: access, then share
  (void)search.open(L"a", file, 1, ZoFile::kOpenExisting);    // error: access, then share
  (void)search.open(L"a", file, ZoFile::kRead, true);         // error: access, then share
  search.open(L"a", file);                                    // error: nodiscard
  zoMemberName(L"parts.lib", L"a");                           // error: nodiscard
}

void macros(ZoMacroLib& macros) {
  (void)macros.setMacro(L"a", L"b");                          // error: candidate expects 3 arguments
  (void)macros.setMacro(L"a", nullptr, L"m");                 // error: removeMacro
  (void)macros.useEnvironment(L"x");                          // error: a bool
  (void)macros.useEnvironment(2);                             // error: a bool
  const std::wstring text = L"b";
  static_assert(requires { macros.setMacro(text, text, L"m"); macros.setMacro(L"a", text, L"m"); });
}

void media(ZoFileOpen& service, ZoFile& file) {
  (void)service.open(L"a", file, true);                       // error: access, then share
  (void)service.open(L"a", file, ZoFile::kOpenExisting);      // error: access, then share
  (void)service.open(L"a", file, ZoFile::kRead, true);        // error: access, then share
}

void media(ZoFileOpen& open, ZoFileName& root) {
  (void)open.checkMedia(nullptr);                             // error: name the root
  (void)open.writeManifest(nullptr, L"label");                // error: name the root
  (void)open.writeManifest(L"x", nullptr);                    // error: give the label
  (void)open.requestMedia(nullptr, root);                     // error: give the label
  (void)open.setMediaKey("abc", true);                        // error: and how many
  (void)open.setMediaKey(L"abc", 3);                          // error: give it in UTF-8
  (void)open.setMediaKey(L"abc", true);                       // error: give it in UTF-8
  (void)open.checkMedia(root, nullptr, [](const ZoMediaProgress& p) { return &p; });  // error: returns bool
}

void downloads(ZoDownloadCache& cache, ZoFileName& file) {
  (void)cache.open(nullptr);                                  // error: name a folder
  (void)cache.get(nullptr, file);                             // error: give a URL
  (void)cache.find(nullptr, file);                            // error: give a URL
  (void)cache.remove(nullptr);                                // error: give a URL
  (void)cache.get(L"http://h/f", file, [](const auto& p) { return &p; });  // error: returns bool
}

void sums(ZoCheckSum& sum, ZoCheckSum::Sum& made) {
  (void)sum.add(L"wide", 4);                                  // error: sums are of bytes
  (void)sum.add(L"wide", true);                               // error: sums are of bytes
  (void)sum.add("x", true);                                   // error: how many bytes
  (void)sum.start(ZoCheckKey(L"key", 3));                     // error: give it in UTF-8
  (void)sum.start(ZoCheckKey(L"key", true));                  // error: give it in UTF-8
  (void)zoCheckSum(L"wide", 4, ZoCheckKey("key"), made);      // error: sums are of bytes
  (void)zoCheckSumFile(nullptr, ZoCheckKey("key"), made);     // error: name a file
}
