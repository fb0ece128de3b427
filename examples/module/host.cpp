// A program that loads a module, works with what it brought, and lets it go.
#include <windows.h>
#include <zo/system.h>
#include <zo/variant.h>

#include <iostream>
#include <sstream>
#include <stdexcept>

#include "module.h"

namespace {

void expect(bool held, const char* what) {
  if (!held) throw std::runtime_error(what);
}

template <class Function>
Function function(HMODULE module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

ZoVariant ask(const wchar_t* question, ZoVariant data) {
  expect(ZoSystem::sysDisp().sendRequest(question, data) == 0, "a request is sent");
  return data;
}

void workWith(HMODULE module) {
  const auto load = function<ModuleLoad>(module, "moduleLoad");
  const auto release = function<ModuleRelease>(module, "moduleRelease");
  expect(load && release, "the module's functions");

  ZoError* const standardError = &ZoSystem::error();
  ZoCfg* const standardCfg = &ZoSystem::cfg();
  std::wostringstream log;
  expect(load(&log) == 0, "the module is announced");
  expect(&ZoSystem::error() != standardError && &ZoSystem::cfg() != standardCfg,
         "its services are in force");
  expect(log.str() == L"ZoError changed\nZoCfg changed\n", "it saw them come");
  expect(ZoSystem::cfg().get(L"example@unit", L"in") == L"mm", "it decides a setting");
  expect(ask(L"example.double", 2.5).asReal() == 5, "it answers");

  log.str(L"");
  try {
    ask(L"example.fail", 0);
    expect(false, "it throws");
  } catch (const ZoComException& e) {
    expect(e.report() == 1, "its exception is reported to its own log");
  }
  expect(log.str() ==
             L"\n\n*** Error: asked to fail\nfilename: module.cpp\nfunction: onRequest\n"
             L"position: 7\n",
         "the report");

  expect(release() == 0, "the module is released");
  expect(&ZoSystem::error() == standardError && &ZoSystem::cfg() == standardCfg,
         "the standard services are back");
  expect(ask(L"example.double", 2.5).asReal() == 2.5, "nobody answers");
}

}  // namespace

int main() {
  if (zoComDllAttach() != 0) return 1;
  int result = 0;
  try {
    const HMODULE module = LoadLibraryW(L"example_module.dll");
    expect(module != nullptr, "the module is there");
    workWith(module);
    FreeLibrary(module);
    expect(!GetModuleHandleW(L"example_module.dll"), "the module is gone");
    // Tells every service and reactor: none of them is the module's.
    ZoSystem::setTolerance(ZoTol(1e-6, 1e-6));
    std::cout << "the module came and went\n";
  } catch (const std::exception& e) {
    std::cerr << "not as it should be: " << e.what() << '\n';
    result = 1;
  }
  return zoComDllDetach() == 0 ? result : 1;
}
