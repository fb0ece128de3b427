// The main program of each of the command-line tools.
#include <windows.h>

#include <shellapi.h>
#include <zo/attach/life_cycle.h>

#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "cancel.h"
#include "console.h"
#include "paths.h"
#include "program.h"
#include "text.h"

namespace {

// Those of a shell that has more than a command line takes: each ends with a zero byte.
void appendFromFile(std::vector<std::string>& arguments) {
  const wchar_t* const name = _wgetenv(L"ZOLIB_ARGUMENTS");
  if (!name) return;
  std::ifstream file(std::filesystem::path(zolib::shellPath(name)), std::ios::binary);
  for (std::string argument; std::getline(file, argument, '\0');) arguments.push_back(argument);
}

std::vector<std::string> arguments() {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&LocalFree)> wide(
      CommandLineToArgvW(GetCommandLineW(), &count), &LocalFree);
  std::vector<std::string> result;
  for (int i = 1; i < count; ++i) result.push_back(zolib::toUtf8(wide.get()[i]));
  appendFromFile(result);
  return result;
}

}  // namespace

int wmain() {
  zolib::watchForCancel();
  if (zoComDllAttach() != 0) return zolib::kFailed;
  zolib::ExitCode code = zolib::kFailed;
  {
    zolib::Console console;
    try {
      code = zolib::runCommandLine(arguments(), console);
    } catch (const std::bad_alloc&) {
      console.err(std::string(zolib::kProgram) +
                  ": out of memory; what was complete before is intact");
    } catch (const std::exception& error) {
      console.err(std::string(zolib::kProgram) + ": " + error.what());
    }
  }
  zoComDllDetach();
  return code;
}
