// Downloads, checksums and media beside the platform's own calls.
//
// The server answers on the loopback from a thread of this program, with as little work as it can:
// so a request costs what the platform's internet functions and the sockets cost. Media are four
// files of 64 MiB in the system's cache: what is measured is reading and summing, not the disk.
#include <winsock2.h>
// winsock2.h comes before windows.h.
#include <windows.h>

#include <bcrypt.h>
#include <benchmark/benchmark.h>
#include <wininet.h>
#include <zo/attach/life_cycle.h>
#include <zo/files.h>
#include <zo/system/file_open.h>
#include <zo/system/registry.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

namespace {

constexpr std::size_t kMemory = 16 * 1024 * 1024, kFile = 64 * 1024 * 1024, kBlock = 256 * 1024;
constexpr int kFiles = 4;
const std::string kKey = "a key of the benchmark";

// Gives a file of 10,000 bytes with a mark, and 304 to who has the mark.
class Server {
 public:
  Server() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, plain, size) || listen(listener_, 8) ||
        getsockname(listener_, plain, &size))
      std::abort();
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;
  ~Server() {
    closesocket(listener_);
    thread_.join();
  }
  [[nodiscard]] unsigned short port() const { return port_; }

 private:
  void serve() const {
    const std::string marks = "ETag: \"1\"\r\nConnection: close\r\n";
    const std::string whole =
        "HTTP/1.1 200 OK\r\nContent-Length: 10000\r\n" + marks + "\r\n" + std::string(10'000, 'x');
    const std::string same = "HTTP/1.1 304 Not Modified\r\n" + marks + "\r\n";
    for (;;) {
      const SOCKET client = accept(listener_, nullptr, nullptr);
      if (client == INVALID_SOCKET) return;
      std::string request;
      char piece[4096];
      while (request.find("\r\n\r\n") == std::string::npos) {
        const int got = recv(client, piece, sizeof piece, 0);
        if (got <= 0) break;
        request.append(piece, static_cast<std::size_t>(got));
      }
      const bool isSame = request.find("If-None-Match") != std::string::npos;
      const std::string& answer = isSame ? same : whole;
      send(client, answer.data(), static_cast<int>(answer.size()), 0);
      closesocket(client);
    }
  }

  SOCKET listener_;
  unsigned short port_ = 0;
  std::thread thread_;
};

// A folder that is gone when the program ends.
class Place {
 public:
  Place()
      : path_(std::filesystem::temp_directory_path() /
              ("zo_bench_" + std::to_string(GetCurrentProcessId()))) {
    std::filesystem::create_directories(path_ / "media");
    if (zoComDllAttach() != 0) std::abort();
  }
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() {
    zoComDllDetach();
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  [[nodiscard]] std::wstring cache() const { return (path_ / "cache").wstring(); }
  [[nodiscard]] std::wstring media() const { return (path_ / "media").wstring() + L"\\"; }
  [[nodiscard]] static std::wstring file(int i) { return L"file" + std::to_wstring(i); }
  // Made once.
  void fill() {
    if (isFull_) return;
    isFull_ = true;
    std::string content(kFile, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
      content[i] = static_cast<char>(i * 2654435761U >> 13);
    for (int i = 0; i < kFiles; ++i)
      std::ofstream(std::filesystem::path(media() + file(i)), std::ios::binary) << content;
    auto& open = ZoSystem::fileOpen();
    if (open.setMediaKey(kKey.data(), kKey.size()) || open.writeManifest(media(), L"bench"))
      std::abort();
  }

 private:
  std::filesystem::path path_;
  bool isFull_ = false;
};

Place& place() {
  static Place instance;
  return instance;
}

class Bcrypt {
 public:
  Bcrypt() {
    if (BCryptOpenAlgorithmProvider(&algorithm_, BCRYPT_SHA256_ALGORITHM, nullptr,
                                    BCRYPT_ALG_HANDLE_HMAC_FLAG))
      std::abort();
  }
  Bcrypt(const Bcrypt&) = delete;
  Bcrypt& operator=(const Bcrypt&) = delete;
  ~Bcrypt() { BCryptCloseAlgorithmProvider(algorithm_, 0); }

  void start() {
    auto* const key = reinterpret_cast<PUCHAR>(const_cast<char*>(kKey.data()));
    if (BCryptCreateHash(algorithm_, &hash_, nullptr, 0, key, static_cast<ULONG>(kKey.size()), 0))
      std::abort();
  }
  void add(char* data, std::size_t size) {
    BCryptHashData(hash_, reinterpret_cast<PUCHAR>(data), static_cast<ULONG>(size), 0);
  }
  void finish() {
    UCHAR sum[32];
    BCryptFinishHash(hash_, sum, sizeof sum, 0);
    BCryptDestroyHash(hash_);
    benchmark::DoNotOptimize(sum);
  }

 private:
  BCRYPT_ALG_HANDLE algorithm_ = nullptr;
  BCRYPT_HASH_HANDLE hash_ = nullptr;
};

// ---- Checksums ----

void sumMemory(benchmark::State& state, std::size_t size) {
  const std::string data(size, 'x');
  ZoCheckSum::Sum sum;
  for (auto _ : state)
    if (zoCheckSum(data.data(), data.size(), ZoCheckKey(kKey), sum)) state.SkipWithError("sum");
}

void sumMemoryBcrypt(benchmark::State& state, std::size_t size) {
  std::string data(size, 'x');
  Bcrypt hash;
  for (auto _ : state) {
    hash.start();
    hash.add(data.data(), data.size());
    hash.finish();
  }
}

void readAndSum(Bcrypt& hash, const std::wstring& name, char* block) {
  const HANDLE file = CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  hash.start();
  for (DWORD got = 1; ReadFile(file, block, kBlock, &got, nullptr) && got > 0;)
    hash.add(block, got);
  hash.finish();
  CloseHandle(file);
}

void sumFile(benchmark::State& state) {
  place().fill();
  ZoCheckSum::Sum sum;
  for (auto _ : state)
    if (zoCheckSumFile(place().media() + Place::file(0), ZoCheckKey(kKey), sum))
      state.SkipWithError("sum");
}

void sumFileBcrypt(benchmark::State& state) {
  place().fill();
  const auto block = std::make_unique<char[]>(kBlock);
  Bcrypt hash;
  for (auto _ : state) readAndSum(hash, place().media() + Place::file(0), block.get());
}

void checkMedia(benchmark::State& state) {
  place().fill();
  for (auto _ : state)
    if (ZoSystem::fileOpen().checkMedia(place().media())) state.SkipWithError("check");
}

void checkMediaBcrypt(benchmark::State& state) {
  place().fill();
  const auto block = std::make_unique<char[]>(kBlock);
  Bcrypt hash;
  for (auto _ : state)
    for (int i = 0; i < kFiles; ++i)
      readAndSum(hash, place().media() + Place::file(i), block.get());
}

// ---- Downloads ----

void cachedUrl(benchmark::State& state) {
  const Server server;
  const ZoFileName url(L"http://127.0.0.1:" + std::to_wstring(server.port()) + L"/part.dwg");
  ZoDownloadCache cache;
  ZoFileName file;
  if (cache.open(place().cache()) || cache.get(url, file)) return state.SkipWithError("get");
  for (auto _ : state)
    if (cache.get(url, file)) state.SkipWithError("get");
}

void conditionalRequest(benchmark::State& state) {
  const Server server;
  const HINTERNET session = InternetOpenW(L"bench", INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0);
  const HINTERNET host = InternetConnectW(session, L"127.0.0.1", server.port(), nullptr, nullptr,
                                          INTERNET_SERVICE_HTTP, 0, 0);
  for (auto _ : state) {
    const HINTERNET request =
        HttpOpenRequestW(host, L"GET", L"/part.dwg", nullptr, nullptr, nullptr,
                         INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE, 0);
    DWORD status = 0, size = sizeof status;
    const bool isSent =
        HttpSendRequestW(request, L"If-None-Match: \"1\"\r\n", static_cast<DWORD>(-1), nullptr, 0);
    HttpQueryInfoW(request, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status, &size,
                   nullptr);
    InternetCloseHandle(request);
    if (!isSent || status != 304) state.SkipWithError("request");
  }
  InternetCloseHandle(host);
  InternetCloseHandle(session);
}

template <class... Arguments>
void name(const std::string& work, Arguments... arguments) {
  benchmark::RegisterBenchmark(work.c_str(), arguments...)
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
  name("CheckSum/16_bytes/ours", sumMemory, std::size_t{16});
  name("CheckSum/16_bytes/peer:bcrypt", sumMemoryBcrypt, std::size_t{16});
  name("CheckSum/16MiB/ours", sumMemory, kMemory);
  name("CheckSum/16MiB/peer:bcrypt", sumMemoryBcrypt, kMemory);
  name("CheckSumFile/64MiB/ours", sumFile);
  name("CheckSumFile/64MiB/peer:ReadFile+bcrypt", sumFileBcrypt);
  name("CheckMedia/256MiB/ours", checkMedia);
  name("CheckMedia/256MiB/peer:ReadFile+bcrypt", checkMediaBcrypt);
  name("CachedUrl/10kB/ours", cachedUrl);
  name("CachedUrl/10kB/peer:conditional_request", conditionalRequest);
  return true;
}();

}  // namespace
