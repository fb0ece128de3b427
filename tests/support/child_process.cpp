#include "support/child_process.h"

#include <windows.h>

#include <shellapi.h>

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/handle.h"
#include "support/exit_codes.h"
#include "support/guarded_heap.h"
#include "support/raw_print.h"
#include "support/test_main.h"

namespace zo::test {

namespace {

const std::wstring kChildArgument = L"--zo-child=";

const ChildEntry* firstEntry = nullptr;  // grows while static objects are constructed

void require(bool done, const char* what) {
  if (done) return;
  throw std::runtime_error(std::string("child process: ") + what + ", error " +
                           std::to_string(GetLastError()));
}

void writeLine(HANDLE to, std::string_view line) {
  const std::string text = std::string(line) + '\n';
  DWORD written;
  require(WriteFile(to, text.data(), static_cast<DWORD>(text.size()), &written, nullptr),
          "the other side does not listen");
}

std::optional<std::string> readLine(HANDLE from, std::string& pending) {
  std::size_t end;
  while ((end = pending.find('\n')) == std::string::npos) {
    char buffer[4096];
    DWORD got = 0;
    if (!ReadFile(from, buffer, sizeof buffer, &got, nullptr) || !got)
      return pending.empty() ? std::nullopt : std::optional(std::exchange(pending, {}));
    pending.append(buffer, got);
  }
  std::string line = pending.substr(0, end);
  pending.erase(0, end + 1);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

// Backslashes count double before a quote.
void appendArgument(std::wstring& line, const std::wstring& argument) {
  const std::size_t behind = argument.size() - 1 - argument.find_last_not_of(L'\\');
  line += L" \"" + argument + std::wstring(behind, L'\\') + L"\"";
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
  std::wstring commandLine = L"\"" + std::wstring(_wpgmptr) + L"\"";
  appendArgument(commandLine, kChildArgument + name);
  for (const std::wstring& argument : arguments) appendArgument(commandLine, argument);
  state_->group = makeDyingGroup();

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
  require(CreateProcessW(_wpgmptr, commandLine.data(), nullptr, nullptr, TRUE, CREATE_SUSPENDED,
                         nullptr, nullptr, &startup, &started),
          "cannot start");
  state_->process.reset(started.hProcess);
  const Handle thread(started.hThread);
  require(AssignProcessToJobObject(state_->group.get(), started.hProcess), "cannot join the job");
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
  const std::wstring first = count > 1 ? words[1] : L"";
  Parent parent({words + std::min(count, 2), words + count});
  LocalFree(words);
  if (!first.starts_with(kChildArgument)) return std::nullopt;
  const std::wstring name = first.substr(kChildArgument.size());
  for (const ChildEntry* entry = firstEntry; entry; entry = entry->next) {
    if (entry->name != name) continue;
    const auto mark = allocationMark();
    return codeAfterLeakCheck(entry->function(parent), mark);
  }
  rawPrint("no child of this name: %ls\n", name.c_str());
  return kExitUnknownChild;
}

}  // namespace zo::test
