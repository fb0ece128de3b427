// Libraries of members, beside the plain calls of the platform that do the same work for the disk,
// and beside the LZMA SDK called directly.
//
// All files lie in the temporary folder, in the system's cache; what is flushed, is flushed on both
// sides.
#include <benchmark/benchmark.h>
#include <windows.h>

#include <7zCrc.h>
#include <LzmaDec.h>
#include <LzmaEnc.h>
#include <zo/attach/life_cycle.h>
#include <zo/files.h>
#include <zo/text/containers/array.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

// A folder that is gone when the program ends.
class Folder {
 public:
  Folder()
      : path_(fs::temp_directory_path() / ("zo_bench_" + std::to_string(GetCurrentProcessId()))) {
    fs::create_directory(path_);
    if (zoComDllAttach() != 0) std::abort();
    CrcGenerateTable();
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    zoComDllDetach();
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  [[nodiscard]] std::wstring operator()(const std::wstring& name) const {
    return (path_ / name).wstring();
  }

 private:
  fs::path path_;
};

Folder& folder() {
  static Folder instance;
  return instance;
}

void check(int code, const char* what) {
  if (code == 0) return;
  std::fprintf(stderr, "%s: %d\n", what, code);
  std::abort();
}

// Bytes that no compressor makes much smaller.
std::string noise(std::size_t size, unsigned seed) {
  std::string bytes(size, '\0');
  for (char& c : bytes) c = static_cast<char>((seed = seed * 1664525 + 1013904223) >> 24);
  return bytes;
}

// Source text: lines that resemble each other.
std::string text(unsigned number) {
  std::string out;
  for (unsigned i = 0; i < 120; ++i) {
    out += "  if (part" + std::to_string((number * 31 + i * i) % 977) + ".diameter() > limit_[" +
           std::to_string(i % 13) + "]) return refuse(\"thread " + std::to_string(number) +
           "\");\n";
  }
  return out;
}

// A library file written byte by byte, since half a million flushes prove nothing: members of one
// size, named by their number.
std::wstring libraryOf(const std::wstring& name, unsigned count, std::size_t size,
                       unsigned deletedEvery = 0) {
  const std::wstring path = folder()(name);
  if (fs::exists(path)) return path;
  std::ofstream out(fs::path(path), std::ios::binary);
  const auto number = [](std::uint64_t value, int bytes) {
    std::string text;
    for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> 8 * i);
    return text;
  };
  const std::string data = noise(size, 1);
  const std::string crc = number(CrcCalc(data.data(), data.size()), 4);
  out << std::string("ZORVEX LIBRARY\0\0\0\0\0\0", 20) << number(count, 4) << number(0, 8);
  for (unsigned i = 1; i <= count; ++i) {
    const std::string member =
        "folder" + std::to_string(i % 100) + "/part" + std::to_string(i) + ".dwg";
    const unsigned flags = deletedEvery && i % deletedEvery == 0 ? 0x200 : 0;
    out << number(i, 4) << crc << number(size, 8) << number(size, 8);
    for (int time = 0; time < 3; ++time) out << number(0x01DC000000000000 + i, 8);
    out << number(0, 2) << number(flags, 2) << number(member.size(), 2) << member << data;
  }
  out.close();
  ZoFile made;
  check(made.open(path.c_str(), ZoFile::kReadWrite), "open");
  if (made.flush() != 0) std::abort();  // so that no one else waits for it
  return path;
}

void addStored(benchmark::State& state, unsigned members, std::size_t size) {
  const std::wstring path = libraryOf(L"add" + std::to_wstring(members), members, size);
  const ZoFileName source(folder()(L"added").c_str());
  std::ofstream(fs::path(source.fullName()), std::ios::binary) << noise(100'000, 2);
  ZoLibrary library;
  check(library.open(path.c_str(), ZoFile::kReadWrite), "open");
  check(library.contains(L"none"), "contains");  // the index is made
  unsigned added = 0;
  for (auto _ : state) {
    const std::wstring name = L"added" + std::to_wstring(added++);
    check(library.addFile(source, name.c_str(), false, ZoLibrary::kStore), "add");
  }
  check(library.close(), "close");
  fs::remove(path);
}

void appendPlain(benchmark::State& state) {
  const std::wstring path = folder()(L"plain");
  const std::string bytes = noise(100'000, 2);
  std::ofstream(fs::path(path), std::ios::binary) << bytes;
  ZoFile file;
  check(file.open(path.c_str(), ZoFile::kReadWrite), "open");
  for (auto _ : state) {
    if (file.seekToEnd() < 0 || file.write(bytes.data(), 100'000) != 100'000) std::abort();
    check(file.flush(), "flush");
    if (file.write("gate", 4) != 4) std::abort();
    check(file.flush(), "flush");
  }
}

void list(benchmark::State& state, unsigned members) {
  const std::wstring path = libraryOf(L"list" + std::to_wstring(members), members, 100);
  for (auto _ : state) {
    ZoLibrary library;
    check(library.open(path.c_str()), "open");
    std::uint64_t count = 0, bytes = 0;
    const int code = library.forEachEntry([&](const ZoLibEntry& entry) {
      bytes += entry.size + entry.name.fullNameSize();
      return ++count != 0;
    });
    check(code, "entries");
    if (count != members) std::abort();
    benchmark::DoNotOptimize(bytes);
  }
}

// The same bytes, merely read.
void readPlain(benchmark::State& state, unsigned members) {
  const std::wstring path = libraryOf(L"list" + std::to_wstring(members), members, 100);
  const auto buffer = std::make_unique<char[]>(256 * 1024);
  for (auto _ : state) {
    ZoFile file;
    check(file.open(path.c_str()), "open");
    while (file.read(buffer.get(), 256 * 1024) != 0) benchmark::DoNotOptimize(buffer[0]);
  }
}

void openFindRead(benchmark::State& state, unsigned members) {
  const std::wstring path = libraryOf(L"list" + std::to_wstring(members), members, 100);
  char bytes[100];
  for (auto _ : state) {
    ZoLibrary library;
    check(library.open(path.c_str()), "open");
    ZoFile file;
    check(library.getFile(file, L"folder50/part77750.dwg"), "find");
    if (file.read(bytes, 100) != 100) std::abort();
  }
}

void find(benchmark::State& state, unsigned members) {
  const std::wstring path = libraryOf(L"list" + std::to_wstring(members), members, 100);
  ZoLibrary library;
  check(library.open(path.c_str()), "open");
  ZoLibEntry entry;
  for (auto _ : state) check(library.getEntry(L"folder50/part77750.dwg", entry), "find");
}

void reorganize(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    const std::wstring path = libraryOf(L"reorganized", 500, 400'000, 50);
    ZoLibrary library;
    check(library.open(path.c_str(), ZoFile::kReadWrite), "open");
    state.ResumeTiming();
    check(library.reorganize(), "reorganize");
    state.PauseTiming();
    check(library.close(), "close");
    fs::remove(path);
    state.ResumeTiming();
  }
}

void copyPlain(benchmark::State& state, bool toDisk) {
  const std::wstring path = libraryOf(L"reorganized", 490, 400'000);
  const std::wstring copy = folder()(L"copy");
  for (auto _ : state) {
    if (!CopyFileW(path.c_str(), copy.c_str(), FALSE)) std::abort();
    ZoFile file;
    check(file.open(copy.c_str(), ZoFile::kReadWrite), "open");
    if (toDisk) check(file.flush(), "flush");
    state.PauseTiming();
    check(file.close(), "close");
    fs::remove(copy);
    state.ResumeTiming();
  }
  fs::remove(path);
}

constexpr unsigned kSmallOnes = 10'000;

// A hundred of them: a search for a name in a large folder would be all that is measured.
void emptyFolders(const std::wstring& out) {
  fs::remove_all(out);
  for (int i = 0; i < 100; ++i) fs::create_directories(out + L"\\" + std::to_wstring(i));
}

void extractSmall(benchmark::State& state) {
  const std::wstring path = libraryOf(L"list10000", kSmallOnes, 100);
  ZoLibrary library;
  check(library.open(path.c_str()), "open");
  const std::wstring out = folder()(L"out");
  for (auto _ : state) {
    state.PauseTiming();
    emptyFolders(out);
    state.ResumeTiming();
    for (unsigned i = 1; i <= kSmallOnes; ++i) {
      const std::wstring name =
          L"folder" + std::to_wstring(i % 100) + L"/part" + std::to_wstring(i) + L".dwg";
      const std::wstring target =
          out + L"\\" + std::to_wstring(i % 100) + L"\\part" + std::to_wstring(i) + L".dwg";
      check(library.extractFile(name.c_str(), target.c_str()), "extract");
    }
  }
}

// The least that a complete file in one step takes.
void makeSmall(benchmark::State& state) {
  const std::wstring out = folder()(L"out");
  const std::string bytes = noise(100, 1);
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  for (auto _ : state) {
    state.PauseTiming();
    emptyFolders(out);
    state.ResumeTiming();
    for (unsigned i = 1; i <= kSmallOnes; ++i) {
      const std::wstring target =
          out + L"\\" + std::to_wstring(i % 100) + L"\\part" + std::to_wstring(i) + L".dwg";
      const std::wstring beside = target + L"~.tmp";
      const HANDLE file =
          CreateFileW(beside.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
      DWORD done = 0;
      WriteFile(file, bytes.data(), 100, &done, nullptr);
      SetFileTime(file, &now, &now, &now);
      CloseHandle(file);
      if (!MoveFileExW(beside.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) std::abort();
    }
  }
}

// ---- Compression ----

constexpr unsigned kSources = 300;

std::vector<std::wstring> sources() {
  std::vector<std::wstring> files;
  fs::create_directory(folder()(L"src"));
  for (unsigned i = 0; i < kSources; ++i) {
    files.push_back(folder()(L"src\\file" + std::to_wstring(i) + L".cpp"));
    if (!fs::exists(files.back()))
      std::ofstream(fs::path(files.back()), std::ios::binary) << text(i);
  }
  return files;
}

std::wstring packed() {
  const std::wstring path = folder()(L"packed.lib");
  ZoLibrary library;
  check(library.open(path.c_str(), ZoFile::kReadWrite, ZoFile::kCreateAlways), "open");
  check(library.beginBatch(), "batch");
  unsigned number = 0;
  for (const std::wstring& file : sources()) {
    const std::wstring name = std::to_wstring(number++);
    check(
        library.addFile(file.c_str(), name.c_str(), false, ZoLibrary::kCompress, ZoLibrary::kBest),
        "add");
  }
  check(library.endBatch(), "batch");
  return path;
}

void pack(benchmark::State& state) {
  static_cast<void>(sources());
  for (auto _ : state) static_cast<void>(packed());
}

void* allocate(ISzAllocPtr, size_t size) { return std::malloc(size); }
void release(ISzAllocPtr, void* block) { std::free(block); }
const ISzAlloc kHeap = {allocate, release};

std::vector<unsigned char> contentOf(const std::wstring& path) {
  ZoFile file;
  check(file.open(path.c_str()), "open");
  std::vector<unsigned char> bytes(static_cast<std::size_t>(file.size()));
  if (file.read(bytes.data(), static_cast<unsigned int>(bytes.size())) != bytes.size())
    std::abort();
  return bytes;
}

// Each file compressed into memory, all written to one file, flushed once.
void packSdk(benchmark::State& state) {
  const std::vector<std::wstring> files = sources();
  for (auto _ : state) {
    ZoFile out;
    check(out.open(folder()(L"packed.raw").c_str(), ZoFile::kWrite, ZoFile::kCreateAlways), "open");
    for (const std::wstring& file : files) {
      const std::vector<unsigned char> in = contentOf(file);
      std::vector<unsigned char> packed(in.size() + in.size() / 3 + 128);
      SizeT size = packed.size(), headerSize = LZMA_PROPS_SIZE;
      Byte header[LZMA_PROPS_SIZE];
      CLzmaEncProps properties;
      LzmaEncProps_Init(&properties);
      properties.level = 9;
      properties.reduceSize = in.size();
      properties.numThreads = 1;
      check(LzmaEncode(packed.data(), &size, in.data(), in.size(), &properties, header, &headerSize,
                       0, nullptr, &kHeap, &kHeap),
            "encode");
      benchmark::DoNotOptimize(CrcCalc(in.data(), in.size()));
      if (out.write(header, LZMA_PROPS_SIZE) != LZMA_PROPS_SIZE ||
          out.write(packed.data(), static_cast<unsigned int>(size)) != size)
        std::abort();
    }
    check(out.flush(), "flush");
  }
}

// As pack(), with so many threads that pack and one that adds, in order.
void packByThreads(benchmark::State& state, unsigned threads) {
  const std::vector<std::wstring> files = sources();
  for (auto _ : state) {
    std::vector<ZoPackedMember> packed(files.size());
    std::vector<std::atomic<bool>> isPacked(files.size());
    std::atomic<std::size_t> next = 0;
    std::vector<std::thread> workers;
    for (unsigned i = 0; i < threads; ++i) {
      workers.emplace_back([&] {
        ZoPacker packer;
        for (std::size_t at; (at = next++) < files.size();) {
          check(packer.pack(files[at].c_str(), packed[at], ZoLibrary::kCompress, ZoLibrary::kBest),
                "pack");
          isPacked[at] = true;
          isPacked[at].notify_one();
        }
      });
    }
    ZoLibrary library;
    check(library.open(folder()(L"threads.lib").c_str(), ZoFile::kReadWrite, ZoFile::kCreateAlways),
          "open");
    check(library.beginBatch(), "batch");
    for (std::size_t at = 0; at < files.size(); ++at) {
      isPacked[at].wait(false);
      check(library.addFile(packed[at], std::to_wstring(at).c_str()), "add");
      packed[at] = ZoPackedMember();
    }
    check(library.endBatch(), "batch");
    for (std::thread& worker : workers) worker.join();
  }
}

void verifyByThreads(benchmark::State& state, unsigned threads) {
  const std::wstring path = packed();
  for (auto _ : state) {
    ZoLibrary library;
    check(library.open(path.c_str()), "open");
    std::vector<ZoLibEntry> entries;
    const int code = library.forEachEntry([&](const ZoLibEntry& entry) {
      entries.push_back(entry);
      return true;
    });
    check(code, "entries");
    std::atomic<std::size_t> next = 0;
    std::vector<std::thread> workers;
    for (unsigned i = 0; i < threads; ++i) {
      workers.emplace_back([&] {
        for (std::size_t at; (at = next++) < entries.size();) {
          check(library.verify(entries[at]), "verify");
        }
      });
    }
    for (std::thread& worker : workers) worker.join();
  }
}

void verifyAll(benchmark::State& state) {
  const std::wstring path = packed();
  for (auto _ : state) {
    ZoLibrary library;
    check(library.open(path.c_str()), "open");
    std::vector<ZoLibEntry> entries;
    const int code = library.forEachEntry([&](const ZoLibEntry& entry) {
      entries.push_back(entry);
      return true;
    });
    check(code, "entries");
    for (const ZoLibEntry& entry : entries) check(library.verify(entry), "verify");
  }
}

void decodeSdk(benchmark::State& state) {
  const std::wstring path = packed();
  struct Part {
    std::uint64_t at, stored, size;
  };
  std::vector<Part> parts;
  {
    ZoLibrary library;
    check(library.open(path.c_str()), "open");
    const int code = library.forEachEntry([&](const ZoLibEntry& entry) {
      parts.push_back(
          {entry.position + 54 + entry.name.fullNameSize(), entry.storedSize, entry.size});
      return true;
    });
    check(code, "entries");
  }
  for (auto _ : state) {
    ZoFile file;
    check(file.open(path.c_str()), "open");
    for (const Part& part : parts) {
      std::vector<unsigned char> in(part.stored), out(part.size);
      benchmark::DoNotOptimize(file.seek(static_cast<std::int64_t>(part.at)));
      benchmark::DoNotOptimize(file.read(in.data(), static_cast<unsigned int>(part.stored)));
      SizeT size = out.size(), inSize = in.size() - 13;
      ELzmaStatus status;
      check(LzmaDecode(out.data(), &size, in.data() + 5, &inSize, in.data(), 5, LZMA_FINISH_ANY,
                       &status, &kHeap),
            "decode");
      benchmark::DoNotOptimize(CrcCalc(out.data(), out.size()));
    }
  }
}

int registerAll() {
  const auto add = [](const std::string& work,
                      const std::function<void(benchmark::State&)>& function) {
    benchmark::RegisterBenchmark(work.c_str(), function)
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
  };
  add("AddStored100KB/to_500_of_400KB/ours", [](auto& state) { addStored(state, 500, 400'000); });
  add("AddStored100KB/to_500_of_400KB/peer:append_flushed_twice", appendPlain);
  add("AddStored100KB/to_500_of_400B/ours", [](auto& state) { addStored(state, 500, 400); });
  add("AddStored100KB/to_500_of_400B/peer:append_flushed_twice", appendPlain);
  for (const unsigned members : {10'000U, 100'000U}) {
    const std::string count = "/" + std::to_string(members);
    add("List" + count + "/ours", [members](auto& state) { list(state, members); });
    add("List" + count + "/peer:reading_the_file",
        [members](auto& state) { readPlain(state, members); });
  }
  add("OpenFindRead/100000/ours", [](auto& state) { openFindRead(state, 100'000); });
  add("OpenFindRead/100000/peer:reading_the_file", [](auto& state) { readPlain(state, 100'000); });
  add("Find/100000/ours", [](auto& state) { find(state, 100'000); });
  add("Reorganize/200MB/ours", reorganize);
  add("Reorganize/200MB/peer:CopyFile_flushed", [](auto& state) { copyPlain(state, true); });
  add("Reorganize/200MB/peer:CopyFile", [](auto& state) { copyPlain(state, false); });
  add("Extract/10000_small/ours", extractSmall);
  add("Extract/10000_small/peer:create_and_rename", makeSmall);
  add("Pack/300_sources_best/ours", pack);
  add("Pack/300_sources_best/peer:SDK_flushed_once", packSdk);
  add("PackByThreads/two/ours", [](auto& state) { packByThreads(state, 2); });
  add("PackByThreads/two/peer:one_thread", pack);
  add("ReadByThreads/two/ours", [](auto& state) { verifyByThreads(state, 2); });
  add("ReadByThreads/two/peer:one_thread", verifyAll);
  add("Verify/300_sources_best/ours", verifyAll);
  add("Verify/300_sources_best/peer:SDK", decodeSdk);
  return 0;
}

const int registered = registerAll();

}  // namespace
