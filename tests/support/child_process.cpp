#include "support/child_process.h"

#include <windows.h>

#include <shellapi.h>

#include <mutex>
#include <stdexcept>
#include <utility>

#include "support/exit_codes.h"
#include "support/guarded_heap.h"
#include "support/raw_print.h"
#include "support/temp_folder.h"
#include "support/test_main.h"

namespace zo::test {

namespace {

constexpr std::wstring_view kChildArgument = L"--zo-child=";

const ChildEntry* firstEntry = nullptr;  // grows while static objects are constructed

// Starting takes steps that concern the whole process: its environment, and handles that any other
// child started meanwhile would inherit too.
std::mutex starting;

[[noreturn]] void fail(const char* what) {
  throw std::runtime_error(std::string("child process: ") + what + ", error " +
                           std::to_string(GetLastError()));
}

class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() { close(); }
  void close() {
    if (HANDLE handle = std::exchange(handle_, nullptr)) CloseHandle(handle);
  }
  HANDLE get() const { return handle_; }
  HANDLE* out() { return &handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

 private:
  HANDLE handle_ = nullptr;
};

// Reads and writes lines over two handles that others own.
class LineChannel {
 public:
  void write(HANDLE to, std::string_view line) {
    std::string text(line);
    text += '\n';
    DWORD written;
    if (!WriteFile(to, text.data(), static_cast<DWORD>(text.size()), &written, nullptr)) {
      fail("the other side does not listen");
    }
  }

  std::optional<std::string> read(HANDLE from) {
    std::size_t end;
    while ((end = pending_.find('\n')) == std::string::npos) {
      char buffer[4096];
      DWORD got = 0;
      if (!ReadFile(from, buffer, sizeof buffer, &got, nullptr) || !got) {
        if (pending_.empty()) return std::nullopt;
        return std::exchange(pending_, {});
      }
      pending_.append(buffer, got);
    }
    std::string line = pending_.substr(0, end);
    pending_.erase(0, end + 1);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
  }

 private:
  std::string pending_;
};

// Sets variables of this process for as long as it lives.
class ScopedEnvironment {
 public:
  explicit ScopedEnvironment(const std::map<std::wstring, std::wstring>& variables) {
    for (const auto& [name, value] : variables) {
      before_.emplace_back(name, current(name));
      SetEnvironmentVariableW(name.c_str(), value.c_str());
    }
  }
  ~ScopedEnvironment() {
    for (const auto& [name, value] : before_) {
      SetEnvironmentVariableW(name.c_str(), value ? value->c_str() : nullptr);
    }
  }
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  static std::optional<std::wstring> current(const std::wstring& name) {
    std::wstring value(32768, L'\0');
    const DWORD length =
        GetEnvironmentVariableW(name.c_str(), value.data(), static_cast<DWORD>(value.size()));
    if (!length && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    value.resize(length);
    return value;
  }

  std::vector<std::pair<std::wstring, std::optional<std::wstring>>> before_;
};

// Quotes so that CommandLineToArgvW gives the argument back: backslashes count double before a
// quote.
void appendArgument(std::wstring& line, std::wstring_view argument) {
  line += L" \"";
  std::size_t backslashes = 0;
  for (const wchar_t c : argument) {
    if (c == L'"') line.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    line += c;
  }
  line.append(backslashes, L'\\');
  line += L'"';
}

std::wstring programPath() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

// A group that dies with its last handle, thus with this process at the latest.
Handle makeDyingGroup() {
  Handle group(CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (!group || !SetInformationJobObject(group.get(), JobObjectExtendedLimitInformation, &limits,
                                         sizeof limits)) {
    fail("cannot make a job");
  }
  return group;
}

void inherit(const Handle& handle) {
  SetHandleInformation(handle.get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
}

}  // namespace

struct ChildProcess::State {
  std::optional<TempFolder> folder;  // holds the captured errors; goes after the handle to them
  Handle group, process, input, output, errorsForReading;
  DWORD id = 0;
  LineChannel lines;

  Handle openErrors() {
    folder.emplace();
    const std::wstring path = (folder->path() / L"errors.txt").wstring();
    constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE;
    Handle writing(
        CreateFileW(path.c_str(), GENERIC_WRITE, kShare, nullptr, CREATE_NEW, 0, nullptr));
    errorsForReading =
        Handle(CreateFileW(path.c_str(), GENERIC_READ, kShare, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!writing || !errorsForReading) fail("cannot open the file of errors");
    return writing;
  }

  void start(std::wstring& commandLine, STARTUPINFOW& startup) {
    PROCESS_INFORMATION information{};
    if (!CreateProcessW(programPath().c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                        CREATE_SUSPENDED, nullptr, nullptr, &startup, &information)) {
      fail("cannot start");
    }
    process = Handle(information.hProcess);
    const Handle thread(information.hThread);
    id = information.dwProcessId;
    if (!AssignProcessToJobObject(group.get(), process.get())) {
      TerminateProcess(process.get(), 1);
      fail("cannot join the job");
    }
    ResumeThread(thread.get());
  }
};

ChildProcess::ChildProcess(const std::wstring& name, const std::vector<std::wstring>& arguments,
                           const ChildOptions& options)
    : state_(std::make_unique<State>()) {
  std::wstring commandLine = L"\"" + programPath() + L"\"";
  appendArgument(commandLine, std::wstring(kChildArgument) + name);
  for (const std::wstring& argument : arguments) appendArgument(commandLine, argument);
  state_->group = makeDyingGroup();

  const std::scoped_lock lock(starting);
  Handle childInput, childOutput, childErrors;
  if (!CreatePipe(childInput.out(), state_->input.out(), nullptr, 0) ||
      !CreatePipe(state_->output.out(), childOutput.out(), nullptr, 0)) {
    fail("cannot make a pipe");
  }
  if (options.captureErrors) childErrors = state_->openErrors();
  for (const Handle* handle : {&childInput, &childOutput, &childErrors}) inherit(*handle);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = childInput.get();
  startup.hStdOutput = childOutput.get();
  startup.hStdError = childErrors ? childErrors.get() : GetStdHandle(STD_ERROR_HANDLE);
  const ScopedEnvironment environment(options.environment);
  state_->start(commandLine, startup);
}

ChildProcess::~ChildProcess() { kill(); }

void ChildProcess::say(std::string_view line) { state_->lines.write(state_->input.get(), line); }

std::optional<std::string> ChildProcess::hear() { return state_->lines.read(state_->output.get()); }

void ChildProcess::closeInput() { state_->input.close(); }

int ChildProcess::wait() {
  closeInput();
  DWORD code = 0;
  WaitForSingleObject(state_->process.get(), INFINITE);
  if (!GetExitCodeProcess(state_->process.get(), &code)) fail("no exit code");
  return static_cast<int>(code);
}

void ChildProcess::kill(int code) {
  TerminateProcess(state_->process.get(), static_cast<UINT>(code));
  WaitForSingleObject(state_->process.get(), INFINITE);
}

bool ChildProcess::running() const {
  return WaitForSingleObject(state_->process.get(), 0) == WAIT_TIMEOUT;
}

unsigned long ChildProcess::id() const { return state_->id; }

std::string ChildProcess::errors() const {
  std::string text;
  HANDLE file = state_->errorsForReading.get();
  if (!file) return text;
  SetFilePointer(file, 0, nullptr, FILE_BEGIN);
  char buffer[4096];
  DWORD got = 0;
  while (ReadFile(file, buffer, sizeof buffer, &got, nullptr) && got) text.append(buffer, got);
  return text;
}

struct Parent::State {
  LineChannel lines;
};

Parent::Parent(std::vector<std::wstring> arguments)
    : arguments_(std::move(arguments)), state_(std::make_unique<State>()) {}
Parent::~Parent() = default;

std::wstring Parent::argument(std::size_t index) const {
  return index < arguments_.size() ? arguments_[index] : std::wstring();
}

void Parent::say(std::string_view line) {
  state_->lines.write(GetStdHandle(STD_OUTPUT_HANDLE), line);
}

std::optional<std::string> Parent::hear() {
  return state_->lines.read(GetStdHandle(STD_INPUT_HANDLE));
}

ChildEntry::ChildEntry(const wchar_t* entryName, ChildFunction entryFunction)
    : name(entryName), function(entryFunction), next(firstEntry) {
  firstEntry = this;
}

namespace {

std::vector<std::wstring> commandLineArguments() {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::wstring> arguments(words, words + count);
  LocalFree(words);
  return arguments;
}

int runEntry(const ChildEntry& entry, std::vector<std::wstring> arguments) {
  Parent parent(std::move(arguments));
  startGuarding();
  const auto mark = allocationMark();
  return codeAfterLeakCheck(entry.function(parent), mark);
}

}  // namespace

std::optional<int> runAsChild() {
  std::vector<std::wstring> arguments = commandLineArguments();
  if (arguments.size() < 2 || !arguments[1].starts_with(kChildArgument)) return std::nullopt;
  const std::wstring name = arguments[1].substr(kChildArgument.size());
  arguments.erase(arguments.begin(), arguments.begin() + 2);
  for (const ChildEntry* entry = firstEntry; entry; entry = entry->next) {
    if (entry->name == name) return runEntry(*entry, std::move(arguments));
  }
  rawPrint("no child of this name: %ls\n", name.c_str());
  return kExitUnknownChild;
}

}  // namespace zo::test
