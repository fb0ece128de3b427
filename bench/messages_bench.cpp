// Texts by file and number beside the platform's resources, and reading a file beside a loop by
// hand.
#include <windows.h>
// windows.h first: its resources are the peers here.
#include <benchmark/benchmark.h>
#include <zo/messages.h>
#include <zo/names/file_name.h>
#include <zo/system.h>
#include <zo/variant/variant.h>

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <unordered_map>

namespace {

// A message file in the temporary folder, and the service that has loaded it.
class Messages {
 public:
  Messages() {
    const auto path = std::filesystem::temp_directory_path() /
                      ("zo-bench-" + std::to_string(GetCurrentProcessId()) + ".msg");
    std::ofstream(path) << "@messages 1\n@language en\n17 The part is not in the drawing.\n"
                           "18 The part %1 has %2 holes.\n";
    file_ = ZoString(path.stem().wstring());
    if (zoComDllAttach() != 0 || ZoSystem::message().load(ZoFileName(path.wstring()), L"bench"))
      std::abort();
    std::filesystem::remove(path);
  }
  ~Messages() { zoComDllDetach(); }
  Messages(const Messages&) = delete;
  Messages& operator=(const Messages&) = delete;

  [[nodiscard]] const ZoString& file() const { return file_; }

 private:
  ZoString file_;
};

// ---- One text ----

void lookUpOurs(benchmark::State& state) {
  const Messages messages;
  for (auto _ : state) {
    ZoString text;
    if (ZoSystem::message().getText(messages.file(), 17, text) != 0)
      return state.SkipWithError("no text");
    benchmark::DoNotOptimize(text.data());
  }
}

// Into a buffer, and from there into a string as a caller keeps it.
void lookUpLoadString(benchmark::State& state) {
  HINSTANCE module = GetModuleHandleW(nullptr);
  for (auto _ : state) {
    wchar_t buffer[256];
    const int length = LoadStringW(module, 17, buffer, 256);
    if (length == 0) return state.SkipWithError("no text");
    std::wstring text(buffer, static_cast<std::size_t>(length));
    benchmark::DoNotOptimize(text.data());
  }
}

// ---- One text with two arguments ----

void formatOurs(benchmark::State& state) {
  const Messages messages;
  for (auto _ : state) {
    ZoString text;
    if (ZoSystem::message().format(messages.file(), 18, {L"M8x20", 4}, text) != 0)
      return state.SkipWithError("no text");
    benchmark::DoNotOptimize(text.data());
  }
}

void formatMessage(benchmark::State& state) {
  const HMODULE module = GetModuleHandleW(nullptr);
  for (auto _ : state) {
    wchar_t buffer[256];
    const std::wstring number = std::to_wstring(4);
    DWORD_PTR arguments[] = {reinterpret_cast<DWORD_PTR>(L"M8x20"),
                             reinterpret_cast<DWORD_PTR>(number.c_str())};
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_ARGUMENT_ARRAY, module, 17,
                       0x409, buffer, 256, reinterpret_cast<va_list*>(arguments));
    if (length == 0) return state.SkipWithError("no text");
    std::wstring text(buffer, length);
    benchmark::DoNotOptimize(text.data());
  }
}

// ---- A file of 10,000 messages ----

const std::string& manyMessages() {
  static const std::string bytes = [] {
    std::string lines = "@messages 1\n@language en\n";
    for (int i = 1; i <= 10000; ++i)
      lines += std::to_string(i) + " Message " + std::to_string(i) +
               " of a file: part %1 has %2 holes\\n and stands in %{17}.\n";
    return lines;
  }();
  return bytes;
}

void parseOurs(benchmark::State& state) {
  for (auto _ : state) {
    ZoMessageMap map;
    if (map.parse(manyMessages()) != 0 || map.entries() != 10000)
      return state.SkipWithError("not read");
    benchmark::DoNotOptimize(map.find(5000));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(manyMessages().size()));
}

// What one writes in a hurry: no faults, no marks, ASCII only, and the one escape.
void parseByHand(benchmark::State& state) {
  for (auto _ : state) {
    std::unordered_map<unsigned int, std::wstring> map;
    std::string_view rest = manyMessages();
    while (!rest.empty()) {
      const std::string_view line = rest.substr(0, rest.find('\n'));
      rest.remove_prefix(line.size() + 1);
      unsigned int number = 0;
      const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), number);
      if (error != std::errc()) continue;
      std::wstring text;
      for (const char* at = end + 1; at < line.data() + line.size(); ++at) {
        if (*at == '\\' && at[1] == 'n') {
          text += L'\n';
          ++at;
        } else {
          text += static_cast<wchar_t>(*at);
        }
      }
      map.emplace(number, std::move(text));
    }
    if (map.size() != 10000) return state.SkipWithError("not read");
    benchmark::DoNotOptimize(map.find(5000));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(manyMessages().size()));
}

}  // namespace

BENCHMARK(lookUpOurs)->Name("LookUp/ours");
BENCHMARK(lookUpLoadString)->Name("LookUp/peer:LoadStringW");
BENCHMARK(formatOurs)->Name("Format/two_arguments/ours");
BENCHMARK(formatMessage)->Name("Format/two_arguments/peer:FormatMessageW");
BENCHMARK(parseOurs)->Name("Parse/10000/ours");
BENCHMARK(parseByHand)->Name("Parse/10000/peer:loop_by_hand");
