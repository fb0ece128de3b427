// Tables of text and tokens beside loops that are written by hand for one job each.
#include <benchmark/benchmark.h>
#include <zo/parse.h>

#include <charconv>
#include <cwctype>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kRows = 100'000, kFields = 8;

void name(const std::string& work, void (*function)(benchmark::State&)) {
  benchmark::RegisterBenchmark(work.c_str(), function)
      ->UseRealTime()
      ->Unit(benchmark::kMillisecond);
}

// ---- The table: names, numbers, and texts of which some need quotes ----

std::vector<std::wstring> fieldsOf(bool hasQuotes) {
  std::mt19937 random(1);
  std::vector<std::wstring> fields;
  for (std::size_t i = 0; i < kRows * kFields; ++i) {
    std::wstring& field = fields.emplace_back();
    switch (i % 4) {
      case 0:
        field = L"M" + std::to_wstring(random() % 64) + L"x" + std::to_wstring(random() % 200);
        break;
      case 1:
        field = std::to_wstring(random() % 100000) + L"." + std::to_wstring(random() % 100);
        break;
      case 2:
        field.assign(4 + random() % 24, L'e');
        if (hasQuotes) field += random() % 2 ? L", 5\" long" : L"\nsecond line";
        break;
      default:
        field = std::to_wstring(random() % 1000);
    }
  }
  return fields;
}

const std::vector<std::wstring>& table(bool hasQuotes) {
  static const std::vector<std::wstring> kPlain = fieldsOf(false), kQuoted = fieldsOf(true);
  return hasQuotes ? kQuoted : kPlain;
}

void appendField(std::wstring& out, std::wstring_view field) {
  if (field.find_first_of(L",\"\r\n") == std::wstring_view::npos) {
    out += field;
    return;
  }
  out += L'"';
  for (const wchar_t c : field) {
    if (c == L'"') out += c;
    out += c;
  }
  out += L'"';
}

std::wstring textOf(const std::vector<std::wstring>& fields) {
  std::wstring out;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    appendField(out, fields[i]);
    out += i % kFields + 1 < kFields ? L"," : L"\r\n";
  }
  return out;
}

const std::wstring& text(bool hasQuotes) {
  static const std::wstring kPlain = textOf(table(false)), kQuoted = textOf(table(true));
  return hasQuotes ? kQuoted : kPlain;
}

// ---- Reading ----

template <bool hasQuotes>
void readOurs(benchmark::State& state) {
  (void)text(hasQuotes);  // made before the clock runs
  for (auto _ : state) {
    std::size_t units = 0, rows = 0;
    ZoCsvReader reader(text(hasQuotes), {.separator = L','});
    for (; reader.next(); ++rows) {
      for (const std::wstring_view field : reader) units += field.size();
    }
    if (rows != kRows) state.SkipWithError("rows");
    benchmark::DoNotOptimize(units);
  }
}

// One row into strings that keep their memory from row to row; returns the number of fields.
std::size_t readRow(const std::wstring& text, std::size_t& at, std::vector<std::wstring>& row) {
  for (std::size_t count = 0;; ++at) {
    if (count == row.size()) row.emplace_back();
    std::wstring& field = row[count++];
    field.clear();
    if (at < text.size() && text[at] == L'"') {
      for (++at; at < text.size(); ++at) {
        if (text[at] == L'"' && (at + 1 == text.size() || text[++at] != L'"')) break;
        field += text[at];
      }
    } else {
      const std::size_t from = at;
      while (at < text.size() && text[at] != L',' && text[at] != L'\r' && text[at] != L'\n') ++at;
      field.assign(text, from, at - from);
    }
    if (at < text.size() && text[at] == L',') continue;
    if (at < text.size() && text[at] == L'\r') ++at;
    if (at < text.size() && text[at] == L'\n') ++at;
    return count;
  }
}

template <bool hasQuotes>
void readLoop(benchmark::State& state) {
  (void)text(hasQuotes);
  for (auto _ : state) {
    std::size_t units = 0, rows = 0;
    std::vector<std::wstring> row;
    for (std::size_t at = 0; at < text(hasQuotes).size(); ++rows) {
      const std::size_t count = readRow(text(hasQuotes), at, row);
      for (std::size_t i = 0; i < count; ++i) units += row[i].size();
    }
    if (rows != kRows) state.SkipWithError("rows");
    benchmark::DoNotOptimize(units);
  }
}

// ---- Writing ----

template <bool hasQuotes>
void writeOurs(benchmark::State& state) {
  const auto& fields = table(hasQuotes);
  (void)text(hasQuotes);
  for (auto _ : state) {
    ZoCsvWriter writer({.separator = L','});
    for (std::size_t i = 0; i < fields.size(); ++i) {
      writer.add(fields[i]);
      if (i % kFields + 1 == kFields && writer.endRow() != 0) state.SkipWithError("refused");
    }
    if (writer.text() != text(hasQuotes)) state.SkipWithError("another text");
  }
}

template <bool hasQuotes>
void writeLoop(benchmark::State& state) {
  (void)text(hasQuotes);
  for (auto _ : state) {
    if (textOf(table(hasQuotes)) != text(hasQuotes)) state.SkipWithError("another text");
  }
}

// ---- Tokens ----

const std::wstring& program() {
  static const std::wstring kText = [] {
    std::wstring out;
    std::mt19937 random(2);
    for (int i = 0; i < 50'000; ++i) {
      out += L"part_" + std::to_wstring(random() % 1000) + L" = ( " +
             std::to_wstring(random() % 1000) + L", " + std::to_wstring(random() % 100) + L"." +
             std::to_wstring(random() % 1000) + L", \"a text\" ); // remark\r\n";
    }
    return out;
  }();
  return kText;
}

void tokensOurs(benchmark::State& state) {
  (void)program();
  for (auto _ : state) {
    ZoParser parser(program());
    parser.setSigns(L"( ) , ; = ==").setLineComments(L"//");
    double sum = 0;
    std::size_t tokens = 0;
    for (ZoToken token; !(token = parser.next()).isEnd(); ++tokens)
      sum += token.real() + static_cast<double>(token.column());
    if (tokens != 500'000) state.SkipWithError("tokens");
    benchmark::DoNotOptimize(sum);
  }
}

struct Lexer {
  const std::wstring& text;
  std::size_t at = 0, line = 1, lineStart = 0;

  enum Kind { kEnd, kWord, kNumber, kText, kSign };
  struct Token {
    Kind kind;
    std::wstring_view text;
    std::size_t line, column;
    double value;
  };

  Token make(Kind kind, std::size_t end, double value = 0) {
    const Token token{kind, std::wstring_view(text).substr(at, end - at), line, at - lineStart + 1,
                      value};
    at = end;
    return token;
  }
  Token next() {
    for (;; ++at) {
      const wchar_t c = text[at];  // 0 at the end
      if (c == L'\n') {
        ++line;
        lineStart = at + 1;
      } else if (c == L'/' && text[at + 1] == L'/') {
        at = std::min(text.find(L'\n', at), text.size()) - 1;
      } else if (c != L' ' && c != L'\t' && c != L'\r') {
        break;
      }
    }
    if (at >= text.size()) return make(kEnd, text.size());
    const wchar_t c = text[at];
    std::size_t end = at + 1;
    if (std::iswalpha(c) || c == L'_') {
      while (std::iswalnum(text[end]) || text[end] == L'_') ++end;
      return make(kWord, end);
    }
    if (std::iswdigit(c)) {
      char digits[32];
      std::size_t count = 0;
      while (count < sizeof digits &&
             (std::iswdigit(text[at + count]) || text[at + count] == L'.')) {
        digits[count] = static_cast<char>(text[at + count]);
        ++count;
      }
      double value = 0;
      std::from_chars(digits, digits + count, value);
      return make(kNumber, at + count, value);
    }
    if (c == L'"') {
      while (end < text.size() && text[end] != L'"') end += text[end] == L'\\' ? 2 : 1;
      return make(kText, end + 1);
    }
    if (c == L'=' && text[end] == L'=') ++end;
    return make(kSign, end);
  }
};

void tokensLoop(benchmark::State& state) {
  (void)program();
  for (auto _ : state) {
    Lexer lexer{program()};
    double sum = 0;
    std::size_t tokens = 0;
    for (Lexer::Token token{}; (token = lexer.next()).kind != Lexer::kEnd; ++tokens)
      sum += token.value + static_cast<double>(token.column);
    if (tokens != 500'000) state.SkipWithError("tokens");
    benchmark::DoNotOptimize(sum);
  }
}

[[maybe_unused]] const bool kRegistered = [] {
  name("Read100kRows/plain/ours", readOurs<false>);
  name("Read100kRows/plain/peer:loop", readLoop<false>);
  name("Read100kRows/quoted/ours", readOurs<true>);
  name("Read100kRows/quoted/peer:loop", readLoop<true>);
  name("Write100kRows/plain/ours", writeOurs<false>);
  name("Write100kRows/plain/peer:loop", writeLoop<false>);
  name("Write100kRows/quoted/ours", writeOurs<true>);
  name("Write100kRows/quoted/peer:loop", writeLoop<true>);
  name("Tokens500k/ours", tokensOurs);
  name("Tokens500k/peer:loop", tokensLoop);
  return true;
}();

}  // namespace
