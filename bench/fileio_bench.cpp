// File objects and searches beside the platform's calls, and archives over files beside stdio.
//
// All work is on one file of the temporary folder, in the system's cache: what is measured is the
// way to the platform, not the disk.
#include <benchmark/benchmark.h>
#include <windows.h>
#include <zo/attach/life_cycle.h>
#include <zo/files.h>
#include <zo/persist/file_archive.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

constexpr unsigned int kPiece = 64 * 1024;
constexpr std::int64_t kLarge = 256 * 1024 * 1024;
constexpr unsigned int kSmallOnes = 1'000'000;

// A folder that is gone when the program ends.
class Folder {
 public:
  Folder()
      : path_(std::filesystem::temp_directory_path() /
              ("zo_bench_" + std::to_string(GetCurrentProcessId()))) {
    std::filesystem::create_directory(path_);
    if (zoComDllAttach() != 0) std::abort();
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    zoComDllDetach();
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  [[nodiscard]] std::wstring file() const { return (path_ / "file.bin").wstring(); }
  // 10,000 files in 100 folders, made once.
  [[nodiscard]] const std::wstring& tree() {
    if (tree_.empty()) {
      tree_ = (path_ / "tree").wstring();
      for (int folder = 0; folder < 100; ++folder) {
        const std::filesystem::path below =
            std::filesystem::path(tree_) / ("folder" + std::to_string(folder));
        std::filesystem::create_directories(below);
        for (int i = 0; i < 100; ++i) std::ofstream(below / ("part" + std::to_string(i) + ".dwg"));
      }
    }
    return tree_;
  }

 private:
  std::filesystem::path path_;
  std::wstring tree_;
};

Folder& folder() {
  static Folder instance;
  return instance;
}

HANDLE rawFile(DWORD access, DWORD mode) {
  return CreateFileW(folder().file().c_str(), access, FILE_SHARE_READ, nullptr, mode, 0, nullptr);
}

void makeFile(std::int64_t bytes) {
  const std::string piece(kPiece, 'x');
  std::ofstream out(std::filesystem::path(folder().file()), std::ios::binary);
  for (std::int64_t done = 0; done < bytes; done += kPiece) out.write(piece.data(), kPiece);
}

// Moves `count` pieces, in one of two ways.
template <bool write>
void ourPieces(benchmark::State& state, unsigned int count, unsigned int size) {
  const auto buffer = std::make_unique<char[]>(size);
  makeFile(write ? 0 : std::int64_t{count} * size);
  ZoFile file;
  if (file.open(folder().file(), write ? ZoFile::kWrite : ZoFile::kRead))
    return state.SkipWithError("open");
  for (auto _ : state) {
    if (file.seekToBegin() != 0) return state.SkipWithError("seek");
    for (unsigned int i = 0; i < count; ++i) {
      const unsigned int moved =
          write ? file.write(buffer.get(), size) : file.read(buffer.get(), size);
      if (moved != size) return state.SkipWithError("short");
    }
  }
}

template <bool write>
void rawPieces(benchmark::State& state, unsigned int count, unsigned int size) {
  const auto buffer = std::make_unique<char[]>(size);
  makeFile(write ? 0 : std::int64_t{count} * size);
  const HANDLE file = rawFile(write ? GENERIC_WRITE : GENERIC_READ, OPEN_EXISTING);
  for (auto _ : state) {
    SetFilePointer(file, 0, nullptr, FILE_BEGIN);
    for (unsigned int i = 0; i < count; ++i) {
      DWORD moved = 0;
      const BOOL done = write ? WriteFile(file, buffer.get(), size, &moved, nullptr)
                              : ReadFile(file, buffer.get(), size, &moved, nullptr);
      if (!done || moved != size) return state.SkipWithError("short");
    }
  }
  CloseHandle(file);
}

void readBuffered(benchmark::State& state) {
  makeFile(4 * std::int64_t{kSmallOnes} + kPiece);
  ZoFile file;
  if (file.open(folder().file())) return state.SkipWithError("open");
  for (auto _ : state) {
    if (file.seekToBegin() != 0) return state.SkipWithError("seek");
    ZoFileReadArchive archive(file);
    unsigned int sum = 0, value = 0;
    for (unsigned int i = 0; i < kSmallOnes; ++i) {
      archive.readBin(&value, 4);
      sum += value;
    }
    benchmark::DoNotOptimize(sum);
  }
}

void readStdio(benchmark::State& state) {
  makeFile(4 * std::int64_t{kSmallOnes} + kPiece);
  std::FILE* const file = _wfopen(folder().file().c_str(), L"rb");
  std::setvbuf(file, nullptr, _IOFBF, kPiece);
  for (auto _ : state) {
    std::rewind(file);
    unsigned int sum = 0, value = 0;
    for (unsigned int i = 0; i < kSmallOnes; ++i) {
      if (std::fread(&value, 4, 1, file) != 1) return state.SkipWithError("short");
      sum += value;
    }
    benchmark::DoNotOptimize(sum);
  }
  std::fclose(file);
}

void writeBuffered(benchmark::State& state) {
  makeFile(0);
  ZoFile file;
  if (file.open(folder().file(), ZoFile::kWrite)) return state.SkipWithError("open");
  for (auto _ : state) {
    if (file.seekToBegin() != 0) return state.SkipWithError("seek");
    ZoFileWriteArchive archive(file);
    for (unsigned int i = 0; i < kSmallOnes; ++i) archive.writeBin(&i, 4, nullptr);
    archive.flush();
  }
}

void writeStdio(benchmark::State& state) {
  std::FILE* const file = _wfopen(folder().file().c_str(), L"wb");
  std::setvbuf(file, nullptr, _IOFBF, kPiece);
  for (auto _ : state) {
    std::rewind(file);
    for (unsigned int i = 0; i < kSmallOnes; ++i) std::fwrite(&i, 4, 1, file);
    if (std::fflush(file) != 0) return state.SkipWithError("failed");
  }
  std::fclose(file);
}

void findOurs(benchmark::State& state) {
  const ZoFileName pattern((folder().tree() + L"\\*.dwg").c_str());
  ZoFindFile find;
  for (auto _ : state) {
    unsigned int files = 0;
    if (find.open(pattern, true)) return state.SkipWithError("open");
    while (find.next()) {
      benchmark::DoNotOptimize(find.path());
      ++files;
    }
    if (files != 10'000) return state.SkipWithError("not all");
  }
}

// The plain loop, with the path of each file.
unsigned int findRaw(const std::wstring& in, std::wstring& path) {
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileExW((in + L"\\*").c_str(), FindExInfoBasic, &entry,
                                         FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
  if (search == INVALID_HANDLE_VALUE) return 0;
  unsigned int files = 0;
  do {
    if (!std::wcscmp(entry.cFileName, L".") || !std::wcscmp(entry.cFileName, L"..")) continue;
    path = in + L'\\' + entry.cFileName;
    benchmark::DoNotOptimize(path.data());
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
      files += findRaw(std::wstring(path), path);
    } else if (path.ends_with(L".dwg")) {
      ++files;
    }
  } while (FindNextFileW(search, &entry));
  FindClose(search);
  return files;
}

void findPlatform(benchmark::State& state) {
  const std::wstring& tree = folder().tree();
  std::wstring path;
  for (auto _ : state) {
    if (findRaw(tree, path) != 10'000) return state.SkipWithError("not all");
  }
}

template <class Function>
void name(const std::string& work, Function function) {
  benchmark::RegisterBenchmark(work.c_str(), function)
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

template <bool write>
void pair(const std::string& work, unsigned int count, unsigned int size) {
  name(work + "/ours", [=](benchmark::State& state) { ourPieces<write>(state, count, size); });
  name(work + (write ? "/peer:WriteFile" : "/peer:ReadFile"),
       [=](benchmark::State& state) { rawPieces<write>(state, count, size); });
}

const bool registered = [] {
  constexpr auto kPieces = static_cast<unsigned int>(kLarge / kPiece);
  pair<false>("Sequential/read/256MiB", kPieces, kPiece);
  pair<true>("Sequential/write/256MiB", kPieces, kPiece);
  pair<false>("FourBytes/read/1000000", kSmallOnes, 4);
  pair<true>("FourBytes/write/1000000", kSmallOnes, 4);
  name("Buffered/read/1000000/ours", readBuffered);
  name("Buffered/read/1000000/peer:fread", readStdio);
  name("Buffered/write/1000000/ours", writeBuffered);
  name("Buffered/write/1000000/peer:fwrite", writeStdio);
  name("Find/10000_in_100/ours", findOurs);
  name("Find/10000_in_100/peer:FindFirstFileEx", findPlatform);
  return true;
}();

}  // namespace
