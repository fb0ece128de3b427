// zolib: the command-line tool for the keepers of part libraries.
#include <windows.h>

#include <shellapi.h>
#include <zo_com.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

// Exit codes that scripts may rely on.
enum ExitCode : int { kOk = 0, kUsage = 7 };

std::string toUtf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string utf8(size > 0 ? static_cast<size_t>(size) : 1, '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
  utf8.pop_back();
  return utf8;
}

// The arguments in UTF-8, last first, as CLI11 takes them; without the program's name.
std::vector<std::string> argumentsReversed() {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> wide(
      CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  std::vector<std::string> arguments;
  for (int i = count - 1; i >= 1; --i) arguments.push_back(toUtf8(wide.get()[i]));
  return arguments;
}

int run() {
  CLI::App app("Keeps libraries: many compressed members in one file.", "zolib");
  app.set_version_flag("--version", std::string("zolib ") + zoComVersion());
  try {
    app.parse(argumentsReversed());
  } catch (const CLI::ParseError& stop) {
    return app.exit(stop) == 0 ? kOk
                               : kUsage;  // help and version arrive here too, with exit code 0
  }
  std::fputs(app.help().c_str(), stderr);
  return kUsage;
}

}  // namespace

int wmain() {
  SetConsoleOutputCP(CP_UTF8);
  return run();
}
