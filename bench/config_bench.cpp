// Settings beside direct registry calls for the same path, and values with units beside the runtime
// library's number conversions.
#include <windows.h>
// windows.h first: the registry is a peer here.
#include <benchmark/benchmark.h>
#include <zo/system/cfg.h>
#include <zo/system/units.h>

#include <cstdlib>
#include <cwchar>
#include <string>

namespace {

void name(const std::string& work, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(work.c_str(), function)->UseRealTime();
}

// ---- Settings ----

constexpr const wchar_t* kKeys[] = {L"zof@parts@repType2d", L"zof@parts@title"};
constexpr const wchar_t* kNames[] = {L"repType2d", L"title"};

// A base of this run's own with a number and a text in it.
class Settings {
 public:
  Settings() {
    base_ = L"Software\\zo-bench-" + std::to_wstring(GetCurrentProcessId());
    path_ = base_ + L"\\zof\\parts";
    if (cfg_.init(base_.c_str(), nullptr) || cfg_.replaceAt(kKeys[0], 42) ||
        cfg_.replaceAt(kKeys[1], L"hexagon socket head cap screw"))
      std::abort();
  }
  ~Settings() { RegDeleteTreeW(HKEY_CURRENT_USER, base_.c_str()); }

  ZoStdCfg& cfg() { return cfg_; }
  const wchar_t* path() const { return path_.c_str(); }

 private:
  std::wstring base_, path_;
  ZoStdCfg cfg_;
};

template <int which>
void readSetting(benchmark::State& state) {
  Settings settings;
  ZoVariant value;
  for (auto _ : state)
    if (settings.cfg().getAt(kKeys[which], value, true)) return state.SkipWithError("not read");
}

template <int which>
bool readDirectly(const wchar_t* path) {
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_CURRENT_USER, path, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS)
    return false;
  DWORD type = 0;
  unsigned char buffer[512];
  DWORD size = sizeof buffer;
  const LSTATUS status = RegQueryValueExW(key, kNames[which], nullptr, &type, buffer, &size);
  RegCloseKey(key);
  benchmark::DoNotOptimize(buffer);
  return status == ERROR_SUCCESS;
}

template <int which>
void readSettingDirectly(benchmark::State& state) {
  Settings settings;
  for (auto _ : state)
    if (!readDirectly<which>(settings.path())) return state.SkipWithError("not read");
}

// What any caller needs who shares the registry object with other threads.
template <int which>
void readSettingGuarded(benchmark::State& state) {
  Settings settings;
  for (auto _ : state) {
    if (settings.cfg().waitToWrite()) return state.SkipWithError("no guard");
    if (!readDirectly<which>(settings.path())) return state.SkipWithError("not read");
    settings.cfg().doneWriting();
  }
}

// ---- Units ----

constexpr double kLengths[] = {1234.5678, 0.25, 98765.4321, 12.7, 3.14159265, 250000, 7.5, 1e-3};

template <int precision, bool inches>
void printUnits(benchmark::State& state) {
  ZoUnitFormat format;
  format.precision = precision;
  if (inches) format.unit = L"in";
  ZoString text;
  size_t i = 0;
  for (auto _ : state) {
    if (ZoPrintUnits(kLengths[i++ % 8], ZoTypeCode::Length, format, text))
      return state.SkipWithError("not printed");
    benchmark::DoNotOptimize(text.data());
  }
}

template <int precision, bool inches>
void printSwprintf(benchmark::State& state) {
  wchar_t text[64];
  size_t i = 0;
  for (auto _ : state) {
    const double value = kLengths[i++ % 8];
    if (precision < 0) {
      swprintf(text, std::size(text), inches ? L"%.17g in" : L"%.17g mm",
               inches ? value / 25.4 : value);
    } else {
      swprintf(text, std::size(text), inches ? L"%.*f in" : L"%.*f mm", precision,
               inches ? value / 25.4 : value);
    }
    benchmark::DoNotOptimize(text);
  }
}

constexpr const wchar_t* kTexts[2][8] = {{L"1234.5678 mm", L"0.25 mm", L"98765.4321 mm", L"12.7 mm",
                                          L"3.14159265 mm", L"250000 mm", L"7.5 mm", L"0.001 mm"},
                                         {L"1234.5678 in", L"0.25 in", L"98765.4321 in", L"12.7 in",
                                          L"3.14159265 in", L"250000 in", L"7.5 in", L"0.001 in"}};

template <bool inches>
void parseUnits(benchmark::State& state) {
  const ZoUnitFormat format;
  size_t i = 0;
  for (auto _ : state) {
    double value = 0;
    if (ZoParseUnits(kTexts[inches][i++ % 8], ZoTypeCode::Length, format, value))
      return state.SkipWithError("not read");
    benchmark::DoNotOptimize(value);
  }
}

template <bool inches>
void parseWcstod(benchmark::State& state) {
  size_t i = 0;
  for (auto _ : state) {
    wchar_t* end = nullptr;
    double value = wcstod(kTexts[inches][i++ % 8], &end);
    if (wcscmp(end, L" mm") != 0) {
      if (wcscmp(end, L" in") != 0) return state.SkipWithError("not read");
      value *= 25.4;
    }
    benchmark::DoNotOptimize(value);
  }
}

void printByService(benchmark::State& state) {
  ZoStdUnits units(L'.', 0);
  ZoString text;
  size_t i = 0;
  for (auto _ : state)
    if (units.print(kLengths[i++ % 8], ZoTypeCode::Length, text))
      return state.SkipWithError("not printed");
}

void printSwprintfGuarded(benchmark::State& state) {
  ZoStdUnits units(L'.', 0);
  wchar_t text[64];
  size_t i = 0;
  for (auto _ : state) {
    if (units.waitToRead()) return state.SkipWithError("no guard");
    units.doneReading();
    swprintf(text, std::size(text), L"%.17g mm", kLengths[i++ % 8]);
    benchmark::DoNotOptimize(text);
  }
}

const bool registered = [] {
  name("ReadSetting/number/ours", readSetting<0>);
  name("ReadSetting/number/peer:registry", readSettingDirectly<0>);
  name("ReadSetting/number/peer:guard+registry", readSettingGuarded<0>);
  name("ReadSetting/text/ours", readSetting<1>);
  name("ReadSetting/text/peer:registry", readSettingDirectly<1>);
  name("ReadSetting/text/peer:guard+registry", readSettingGuarded<1>);
  name("PrintLength/3_decimals/mm/ours", printUnits<3, false>);
  name("PrintLength/3_decimals/mm/peer:swprintf", printSwprintf<3, false>);
  name("PrintLength/3_decimals/in/ours", printUnits<3, true>);
  name("PrintLength/3_decimals/in/peer:swprintf", printSwprintf<3, true>);
  name("PrintLength/exact/mm/ours", printUnits<-1, false>);
  name("PrintLength/exact/mm/peer:swprintf", printSwprintf<-1, false>);
  name("PrintLength/exact/in/ours", printUnits<-1, true>);
  name("PrintLength/exact/in/peer:swprintf", printSwprintf<-1, true>);
  name("PrintLength/exact/service/ours", printByService);
  name("PrintLength/exact/service/peer:guard+swprintf", printSwprintfGuarded);
  name("ParseLength/mm/ours", parseUnits<false>);
  name("ParseLength/mm/peer:wcstod", parseWcstod<false>);
  name("ParseLength/in/ours", parseUnits<true>);
  name("ParseLength/in/peer:wcstod", parseWcstod<true>);
  return true;
}();

}  // namespace
