// Compression beside the LZMA SDK called directly, and beside the published C decoder of the
// implode format.
//
// Both sides do the same work: the SDK's caller gives the same size hint, makes the same room and
// computes the same check value; the decoder's caller collects the output and computes it too.
#include <windows.h>

#include <7zCrc.h>
#include <LzmaDec.h>
#include <LzmaEnc.h>
#include <benchmark/benchmark.h>
#include <psapi.h>
#include <zo/compress.h>
#include <zo/library/check_value.h>
extern "C" {
#include <blast.h>
}

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "persist/implode_encoder.h"

namespace {

using zo::test::ByteVector;
using zo::test::Literals;

constexpr size_t kSize = 512 * 1024;
constexpr size_t kMember = 1024;
constexpr size_t kMembers = 64;

// ---- Content ----

// Lines of a catalogue: words of very different frequency, numbers, and repeated phrases.
ByteVector makeText(size_t size) {
  std::mt19937 random(7);
  std::vector<std::string> words;
  for (int i = 0; i < 1500; ++i) {
    std::string word;
    for (unsigned int n = 2 + random() % 9; n > 0; --n)
      word += "etaoinshrdlucmfwypvbgkjqxz"[(random() % 26) * (random() % 26) / 26];
    words.push_back(word);
  }
  std::string text;
  while (text.size() < size) {
    for (unsigned int n = 4 + random() % 12; n > 0; --n) {
      const unsigned int rank =
          random() % 1500 * (random() % 1500) / 1500 * (random() % 1500) / 1500;
      text += words[rank] + ' ';
    }
    text +=
        "M" + std::to_string(random() % 40) + " x " + std::to_string(random() % 500 * 5) + "\r\n";
  }
  return {text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size)};
}

// Machine code of the compiler's runtime, as it lies in memory.
ByteVector makeBinary(size_t size) {
  HMODULE module = GetModuleHandleW(L"libstdc++-6.dll");
  MODULEINFO info{};
  if (!module || !GetModuleInformation(GetCurrentProcess(), module, &info, sizeof info) ||
      info.SizeOfImage < size + 0x1000) {
    std::abort();
  }
  const auto* code = static_cast<const unsigned char*>(info.lpBaseOfDll) + 0x1000;
  return {code, code + size};
}

struct Content {
  const char* name;
  std::vector<ByteVector> members;
};

const std::vector<Content>& contents() {
  static const std::vector<Content> all = [] {
    Content members{"1KB_members", {}};
    const ByteVector text = makeText(kMember * kMembers);
    for (size_t i = 0; i < kMembers; ++i) {
      const auto from = text.begin() + static_cast<std::ptrdiff_t>(i * kMember);
      members.members.emplace_back(from, from + kMember);
    }
    return std::vector<Content>{
        {"text", {makeText(kSize)}}, {"binary", {makeBinary(kSize)}}, std::move(members)};
  }();
  return all;
}

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "compress_bench: %s\n", what);
  std::abort();
}

// ---- LZMA ----

void* allocate(ISzAllocPtr, size_t size) { return std::malloc(size); }
void release(ISzAllocPtr, void* block) { std::free(block); }
constexpr ISzAlloc kMemory = {allocate, release};

void store32(unsigned char* to, UInt32 value) { std::memcpy(to, &value, 4); }

ByteVector sdkCompress(const ByteVector& content, int level) {
  ByteVector out(5 + content.size() + content.size() / 3 + 128);
  CLzmaEncProps properties;
  LzmaEncProps_Init(&properties);
  properties.level = level;
  properties.reduceSize = content.size();
  SizeT size = out.size() - 13, headerSize = 5;
  require(LzmaEncode(out.data() + 5, &size, content.data(), content.size(), &properties, out.data(),
                     &headerSize, 0, nullptr, &kMemory, &kMemory) == SZ_OK,
          "the SDK does not compress");
  store32(&out[5 + size], static_cast<UInt32>(content.size()));
  store32(&out[9 + size], CrcCalc(content.data(), content.size()));
  out.resize(13 + size);
  return out;
}

ByteVector ourCompress(const ByteVector& content, int level) {
  ByteVector out;
  require(LzmaUtils::LzmaCompressData(out, content.data(), content.size(), level, 0) == 0,
          "we do not compress");
  return out;
}

unsigned char* sdkUncompress(const ByteVector& container) {
  UInt32 stated, crc;
  std::memcpy(&stated, &container[container.size() - 8], 4);
  std::memcpy(&crc, &container[container.size() - 4], 4);
  auto* out = static_cast<unsigned char*>(std::malloc(stated + size_t{1}));
  SizeT size = stated, streamSize = container.size() - 13;
  ELzmaStatus status;
  require(LzmaDecode(out, &size, container.data() + 5, &streamSize, container.data(), 5,
                     LZMA_FINISH_ANY, &status, &kMemory) == SZ_OK &&
              CrcCalc(out, size) == crc,
          "the SDK does not decompress");
  out[size] = 0;
  return out;
}

unsigned char* ourExplode(const ByteVector& container) {
  char* out = nullptr;
  require(ZoExplode()(reinterpret_cast<const char*>(container.data()),
                      static_cast<unsigned int>(container.size()), out) == 0,
          "we do not decompress");
  return reinterpret_cast<unsigned char*>(out);
}

// ---- Implode ----

struct BlastIn {
  const ByteVector& body;
};
struct BlastOut {
  unsigned char* data = nullptr;
  size_t size = 0, capacity = 0;
  UInt32 crc = CRC_INIT_VAL;
};

unsigned int blastRead(void* how, unsigned char** buffer) {
  const ByteVector& body = static_cast<BlastIn*>(how)->body;
  *buffer = const_cast<unsigned char*>(body.data());
  return static_cast<unsigned int>(body.size());
}

int blastWrite(void* how, unsigned char* data, unsigned int size) {
  auto& out = *static_cast<BlastOut*>(how);
  require(out.size + size < out.capacity, "blast gives more than the container states");
  std::memcpy(out.data + out.size, data, size);
  out.size += size;
  out.crc = CrcUpdate(out.crc, data, size);
  return 0;
}

// The decoded body of a container, in a block of the stated size.
BlastOut blastBody(const ByteVector& container) {
  BlastIn in{container};
  BlastOut out;
  UInt32 stated;
  std::memcpy(&stated, &container[container.size() - 8], 4);
  out.capacity = stated + size_t{1};
  out.data = static_cast<unsigned char*>(std::malloc(out.capacity));
  require(blast(blastRead, &in, blastWrite, &out, nullptr, nullptr) == 0, "blast does not decode");
  out.data[out.size] = 0;
  return out;
}

unsigned char* blastExplode(const ByteVector& container) {
  const BlastOut out = blastBody(container);
  UInt32 crc;
  std::memcpy(&crc, &container[container.size() - 4], 4);
  require(out.crc == crc, "blast decodes something else");
  return out.data;
}

// ---- Registration ----

void name(const std::string& work, std::function<void()> function) {
  benchmark::RegisterBenchmark(work.c_str(), [function](benchmark::State& state) {
    for (auto _ : state) function();
  })->UseRealTime();
}

void registerCompress(const Content& content, int level) {
  const std::string work = "level" + std::to_string(level) + "/" + content.name;
  const auto run = [&content, level](ByteVector (*compress)(const ByteVector&, int)) {
    for (const ByteVector& member : content.members) {
      benchmark::DoNotOptimize(compress(member, level));
    }
  };
  name("compress/" + work + "/ours", [run] { run(ourCompress); });
  name("compress/" + work + "/peer:LZMA SDK", [run] { run(sdkCompress); });

  std::vector<ByteVector> containers;
  for (const ByteVector& member : content.members) {
    containers.push_back(ourCompress(member, level));
    require(containers.back() == sdkCompress(member, level), "the containers differ");
  }
  const auto back = [containers](unsigned char* (*uncompress)(const ByteVector&)) {
    for (const ByteVector& container : containers) std::free(uncompress(container));
  };
  name("decompress/" + work + "/ours", [back] { back(ourExplode); });
  name("decompress/" + work + "/peer:LZMA SDK", [back] { back(sdkUncompress); });
}

void registerExplode(const Content& content, Literals literals, const char* mode) {
  const ByteVector& bytes = content.members.front();
  const ByteVector container =
      zo::test::legacyContainer(zo::test::imploded(bytes, literals, 6), bytes);
  unsigned char* const ours = ourExplode(container);
  unsigned char* const theirs = blastExplode(container);
  require(std::memcmp(ours, bytes.data(), bytes.size()) == 0 &&
              std::memcmp(theirs, bytes.data(), bytes.size()) == 0,
          "the decoders differ");
  std::free(ours);
  std::free(theirs);
  const std::string work = std::string("explode/") + content.name + "/" + mode;
  name(work + "/ours", [container] { std::free(ourExplode(container)); });
  name(work + "/peer:blast", [container] { std::free(blastExplode(container)); });
}

// Every code of the format, so that the two decoders are known to agree on all of them.
void compareAllCodes() {
  for (Literals literals : {Literals::binary, Literals::text}) {
    for (unsigned int bits : {4u, 5u, 6u}) {
      zo::test::ImplodeWriter writer(literals, bits);
      for (unsigned int i = 0; i < 4096 + 256; ++i)
        writer.literal(static_cast<unsigned char>(i * 7));
      for (unsigned int distance = 1; distance <= 64u << bits; ++distance) writer.copy(3, distance);
      for (unsigned int distance = 1; distance <= 256; ++distance) writer.copy(2, distance);
      for (unsigned int length = 3; length <= 518; ++length) writer.copy(length, 64);
      ByteVector container = writer.end();
      container.resize(container.size() + 8);
      store32(&container[container.size() - 8], 1 << 20);
      const BlastOut out = blastBody(container);
      store32(&container[container.size() - 4], out.crc);
      unsigned char* const ours = ourExplode(container);  // which checks the check value
      require(std::memcmp(ours, out.data, out.size) == 0, "the decoders differ in a code");
      std::free(ours);
      std::free(out.data);
    }
  }
}

void registerCheckValue(const char* size, std::size_t bytes) {
  const ByteVector content = makeText(bytes);
  require(zoCheckValue(content.data(), bytes) == CrcCalc(content.data(), bytes),
          "the check values differ");
  const std::string work = std::string("checkValue/") + size;
  name(work + "/ours",
       [content] { benchmark::DoNotOptimize(zoCheckValue(content.data(), content.size())); });
  name(work + "/peer:LZMA SDK",
       [content] { benchmark::DoNotOptimize(CrcCalc(content.data(), content.size())); });
}

const bool registered = [] {
  CrcGenerateTable();
  registerCheckValue("100B", 100);
  registerCheckValue("64KB", 64 << 10);
  compareAllCodes();
  for (const Content& content : contents()) {
    for (int level : {0, 5, 9}) registerCompress(content, level);
  }
  for (size_t i : {0u, 1u}) {
    registerExplode(contents()[i], Literals::text, "coded_literals");
    registerExplode(contents()[i], Literals::binary, "plain_literals");
  }
  return true;
}();

}  // namespace
