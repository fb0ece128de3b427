#include "console.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "cancel.h"
#include "text.h"

namespace zolib {
namespace {

constexpr std::size_t kPiece = 65536;
constexpr std::chrono::milliseconds kGlance(50);  // at whether it was cancelled

bool isTerminal(HANDLE stream) noexcept {
  DWORD mode = 0;
  return GetConsoleMode(stream, &mode) != FALSE;
}

}  // namespace

Console::Console()
    : out_(GetStdHandle(STD_OUTPUT_HANDLE)),
      err_(GetStdHandle(STD_ERROR_HANDLE)),
      outIsTerminal_(isTerminal(out_)),
      errIsTerminal_(isTerminal(err_)) {}

Console::~Console() {
  flush();
  status({});
}

bool Console::write(HANDLE stream, bool terminal, std::string_view utf8) {
  const std::wstring wide = terminal ? toWide(utf8) : std::wstring();
  const auto* next = terminal ? reinterpret_cast<const char*>(wide.data()) : utf8.data();
  const std::size_t width = terminal ? sizeof(wchar_t) : 1;
  std::size_t left = terminal ? wide.size() : utf8.size();
  while (left > 0) {
    DWORD done = 0;
    const auto count = static_cast<DWORD>(std::min(left, kPiece));
    const BOOL ok = terminal ? WriteConsoleW(stream, next, count, &done, nullptr)
                             : WriteFile(stream, next, count, &done, nullptr);
    if (!ok || !done) return false;
    next += done * width;
    left -= done;
  }
  return true;
}

void Console::out(std::string_view utf8) {
  pending_ += utf8;
  if (pending_.size() >= kPiece) flush();
}

namespace {

// Whether a character that begins there turns the direction of text, by which a name looks like
// another one: U+061C, U+200E, U+200F, U+202A to U+202E, U+2066 to U+2069. Its length; else 0.
std::size_t turnsText(std::string_view utf8) {
  if (utf8.starts_with("\xD8\x9C")) return 2;
  if (utf8.size() < 3 || utf8[0] != '\xE2') return 0;
  const auto last = static_cast<unsigned char>(utf8[2]);
  const bool turns =
      (utf8[1] == '\x80' && (last == 0x8E || last == 0x8F || (last >= 0xAA && last <= 0xAE))) ||
      (utf8[1] == '\x81' && last >= 0xA6 && last <= 0xA9);
  return turns ? 3 : 0;
}

// Each control character (C0, DEL and C1) as "?", and what turns the direction of text.
std::string harmless(std::string_view utf8) {
  std::string text(utf8);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x20 || byte == 0x7F) text[i] = '?';
    const bool isC1 =
        byte == 0xC2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0;
    const std::size_t length = isC1 ? 2 : turnsText(std::string_view(text).substr(i));
    if (length) text.replace(i, length, "?");
  }
  return text;
}

}  // namespace

void Console::line(std::string_view utf8) {
  if (outIsTerminal_)
    pending_ += harmless(utf8);
  else
    pending_ += utf8;
  out("\n");
}

bool Console::flush() {
  if (pending_.empty()) return !outputFailed();
  if (outIsTerminal_) status({});
  if (!outputFailed() && !write(out_, outIsTerminal_, pending_)) {
    const DWORD error = GetLastError();
    error_ = error ? error : ERROR_WRITE_FAULT;
  }
  pending_.clear();
  return !outputFailed();
}

bool Console::readerLeft() const noexcept {
  return error_ == ERROR_NO_DATA || error_ == ERROR_BROKEN_PIPE ||
         error_ == ERROR_PIPE_NOT_CONNECTED;
}

void Console::err(std::string_view utf8) {
  flush();  // in the order in which it was said
  status({});
  write(err_, errIsTerminal_, errIsTerminal_ ? harmless(utf8) + "\r\n" : std::string(utf8) + "\n");
}

void Console::status(std::string_view utf8) {
  if (!errIsTerminal_ || (utf8.empty() && !statusLength_)) return;
  std::string line = "\r" + harmless(utf8);
  if (utf8.size() < statusLength_) line.append(statusLength_ - utf8.size(), ' ');
  if (utf8.empty()) line += '\r';
  statusLength_ = utf8.size();
  write(err_, true, line);
}

namespace {

// The control characters as they are typed.
constexpr wchar_t kCtrlC = 3, kCtrlD = 4, kCtrlZ = 26;

// A line that is typed. The keys that end it are asked for by themselves: otherwise a console gives
// them only with the line's end, and Wine's on a terminal not even all. It never gives Ctrl-Z.
bool readLine(HANDLE input, std::wstring& line) {
  CONSOLE_READCONSOLE_CONTROL keys{};
  keys.nLength = sizeof keys;
  keys.dwCtrlWakeupMask = 1U << kCtrlC | 1U << kCtrlD | 1U << kCtrlZ;
  DWORD count = 0;
  if (!ReadConsoleW(input, line.data(), static_cast<DWORD>(line.size()), &count, &keys))
    return false;
  line.resize(count);
  return true;
}

// Ctrl-D or Ctrl-Z ends the input, with what stands before it in its line.
bool readTyped(HANDLE input, char* buffer, DWORD size, DWORD& got) {
  static bool s_ended = false;
  if (s_ended) return true;
  std::wstring line(std::min<std::size_t>(size / 4, 2048), L'\0');  // 3 bytes a unit at most
  if (!readLine(input, line)) return false;
  const std::size_t end = line.find_first_of(std::wstring{kCtrlC, kCtrlD, kCtrlZ});
  s_ended = end != std::wstring::npos;
  if (s_ended && line[end] == kCtrlC) cancelNow();
  line.resize(std::min(end, line.size()));
  const std::string utf8 = toUtf8(line);
  std::copy(utf8.begin(), utf8.end(), buffer);
  got = static_cast<DWORD>(utf8.size());
  return true;
}

// What another thread reads: a read that waits cannot be taken back, so who was cancelled leaves it
// to itself.
struct Reading {
  std::mutex mutex;
  std::condition_variable changed;
  std::vector<char> bytes;  // empty: nobody asks for any
  DWORD got = 0;
  bool isDone = false, isOk = false;
};

void serve(Reading& reading) {
  const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  std::unique_lock lock(reading.mutex);
  for (;;) {
    reading.changed.wait(lock, [&] { return !reading.isDone && !reading.bytes.empty(); });
    lock.unlock();
    const auto size = static_cast<DWORD>(reading.bytes.size());
    DWORD got = 0;
    const bool isOk = isTerminal(input)
                          ? readTyped(input, reading.bytes.data(), size, got)
                          : ReadFile(input, reading.bytes.data(), size, &got, nullptr) ||
                                GetLastError() == ERROR_BROKEN_PIPE ||
                                GetLastError() == ERROR_HANDLE_EOF;
    lock.lock();
    reading.got = got;
    reading.isOk = isOk;
    reading.isDone = true;
    reading.changed.notify_all();
  }
}

}  // namespace

bool inputIsTyped() { return isTerminal(GetStdHandle(STD_INPUT_HANDLE)); }

bool readInput(void* buffer, DWORD size, DWORD& got) {
  static std::shared_ptr<Reading> s_reading;  // the thread has it, too, and outlives this
  if (!s_reading) {
    s_reading = std::make_shared<Reading>();
    std::thread([reading = s_reading] { serve(*reading); }).detach();
  }
  Reading& reading = *s_reading;
  got = 0;
  std::unique_lock lock(reading.mutex);
  reading.bytes.resize(size);
  reading.isDone = false;
  reading.changed.notify_all();
  while (!reading.changed.wait_for(lock, kGlance, [&] { return reading.isDone; }))
    if (isCancelled()) return false;
  if (!reading.isOk || isCancelled()) return false;
  got = reading.got;
  std::copy_n(reading.bytes.begin(), got, static_cast<char*>(buffer));
  return true;
}

}  // namespace zolib
