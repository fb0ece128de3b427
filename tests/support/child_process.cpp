#include "support/child_process.h"

#include <windows.h>

#include <shellapi.h>

#include <mutex>
#include <stdexcept>
#include <utility>

#include "platform/handle.h"
#include "support/exit_codes.h"
#include "support/guarded_heap.h"
#include "support/raw_print.h"
#include "support/test_main.h"

namespace zo::test {

namespace {

constexpr std::wstring_view kChildArgument = L"--zo-child=";

const ChildEntry* firstEntry = nullptr;  // grows while static objects are constructed

void require(bool done, const char* what) {
  if (done) return;
  throw std::runtime_error(std::string("child process: ") + what + ", error " +
                           std::to_string(GetLastError()));
}

void writeLine(HANDLE to, std::string_view line) {
  std::string text(line);
  text += '\n';
  DWORD written;
  require(WriteFile(to, text.data(), static_cast<DWORD>(text.size()), &written, nullptr),
          "the other side does not listen");
}

std::optional<std::string> readLine(HANDLE from, std::string& pending) {
  std::size_t end;
  while ((end = pending.find('\n')) == std::string::npos) {
    char buffer[4096];
    DWORD got = 0;
    if (!ReadFile(from, buffer, sizeof buffer, &got, nullptr) || !got) {
      if (pending.empty()) return std::nullopt;
      return std::exchange(pending, {});
    }
    pending.append(buffer, got);
  }
  std::string line = pending.substr(0, end);
  pending.erase(0, end + 1);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

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
  require(group && SetInformationJobObject(group.get(), JobObjectExtendedLimitInformation, &limits,
                                           sizeof limits),
          "cannot make a job");
  return group;
}

// The two ends of a pipe; one of them is for the child to inherit.
void makePipe(Handle& reading, Handle& writing, const Handle& inherited) {
  HANDLE from, to;
  require(CreatePipe(&from, &to, nullptr, 0), "cannot make a pipe");
  reading.reset(from);
  writing.reset(to);
  SetHandleInformation(inherited.get(), HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
}

}  // namespace

struct ChildProcess::State {
  Handle group, process, input, output;
  std::string pending;
};

ChildProcess::ChildProcess(const std::wstring& name, const std::vector<std::wstring>& arguments,
                           Errors errors)
    : state_(std::make_unique<State>()) {
  std::wstring commandLine = L"\"" + programPath() + L"\"";
  appendArgument(commandLine, std::wstring(kChildArgument) + name);
  for (const std::wstring& argument : arguments) appendArgument(commandLine, argument);
  state_->group = makeDyingGroup();

  // What is inheritable, any other child that is started meanwhile would inherit too.
  static std::mutex starting;
  const std::scoped_lock lock(starting);
  Handle childInput, childOutput;
  makePipe(childInput, state_->input, childInput);
  makePipe(state_->output, childOutput, childOutput);
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = childInput.get();
  startup.hStdOutput = childOutput.get();
  startup.hStdError = errors == kHeard ? childOutput.get() : GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started{};
  require(CreateProcessW(programPath().c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                         CREATE_SUSPENDED, nullptr, nullptr, &startup, &started),
          "cannot start");
  state_->process.reset(started.hProcess);
  const Handle thread(started.hThread);
  if (!AssignProcessToJobObject(state_->group.get(), started.hProcess)) {
    kill();
    require(false, "cannot join the job");
  }
  ResumeThread(thread.get());
}

ChildProcess::~ChildProcess() { kill(); }

void ChildProcess::say(std::string_view line) { writeLine(state_->input.get(), line); }

std::optional<std::string> ChildProcess::hear() {
  return readLine(state_->output.get(), state_->pending);
}

int ChildProcess::wait() {
  state_->input.reset();
  DWORD code = 0;
  WaitForSingleObject(state_->process.get(), INFINITE);
  require(GetExitCodeProcess(state_->process.get(), &code), "no exit code");
  return static_cast<int>(code);
}

bool ChildProcess::running() const {
  return WaitForSingleObject(state_->process.get(), 0) == WAIT_TIMEOUT;
}

void ChildProcess::kill() {
  TerminateProcess(state_->process.get(), 1);
  WaitForSingleObject(state_->process.get(), INFINITE);
}

void Parent::say(std::string_view line) { writeLine(GetStdHandle(STD_OUTPUT_HANDLE), line); }

std::optional<std::string> Parent::hear() {
  return readLine(GetStdHandle(STD_INPUT_HANDLE), pending_);
}

ChildEntry::ChildEntry(const wchar_t* entryName, ChildFunction entryFunction)
    : name(entryName), function(entryFunction), next(firstEntry) {
  firstEntry = this;
}

std::optional<int> runAsChild() {
  int count = 0;
  wchar_t** words = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::wstring> arguments(words, words + count);
  LocalFree(words);
  if (arguments.size() < 2 || !arguments[1].starts_with(kChildArgument)) return std::nullopt;
  const std::wstring name = arguments[1].substr(kChildArgument.size());
  arguments.erase(arguments.begin(), arguments.begin() + 2);
  Parent parent(std::move(arguments));
  for (const ChildEntry* entry = firstEntry; entry; entry = entry->next) {
    if (entry->name != name) continue;
    const auto mark = allocationMark();
    return codeAfterLeakCheck(entry->function(parent), mark);
  }
  rawPrint("no child of this name: %ls\n", name.c_str());
  return kExitUnknownChild;
}

}  // namespace zo::test
