// What tests of dialogs begin with: services in force, settings of the test's own, a folder with
// two files and a folder.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
#include <zo/dialogs.h>
#include <zo/system/cad.h>
#include <zo/system/cfg.h>
#include <zo/system/message.h>
#include <zo/system/registry.h>
#include <zo/system/units.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "dialogs/dialog_user.h"
#include "support/printers.h"
#include "support/registry_base.h"
#include "support/temp_folder.h"
#include "system/attached.h"
#include "system/other_thread.h"

namespace zo::test {

class DialogTest : public testing::Test {
 protected:
  DialogTest() {
    HKEY root = HKEY_CURRENT_USER;
    EXPECT_EQ(ZoSystem::cfg().init(base_.path().c_str(), &root), 0);
    for (const char* name : {"a.val", "b.val"}) std::ofstream(folder_.path() / name) << name;
    std::filesystem::create_directory(folder_.path() / "inner");
  }

  [[nodiscard]] std::wstring folder() const { return folder_.path().wstring(); }

  static HWND window() {
    return CreateWindowExW(0, L"Static", L"owner", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr,
                           nullptr, nullptr);
  }
  static HWND deadWindow() {
    HWND const gone = window();
    DestroyWindow(gone);
    return gone;
  }
  // Seen from another thread, which would wait for one.
  static void expectGuardsFree() {
    ZoSysObj* const services[] = {&ZoSystem::cfg(), &ZoSystem::message(), &ZoSystem::units(),
                                  &ZoSystem::cad()};
    EXPECT_EQ(inOtherThread([&] {
                int code = 0;
                for (ZoSysObj* const service : services) {
                  code |= service->waitToWrite();
                  service->doneWriting();
                }
                return code;
              }),
              0);
  }
  static void expectPicture(HWND window, const std::string& name) {
    if (!hasDisplay()) return;
    const Picture picture(window);
    picture.write(name);
    EXPECT_TRUE(picture.showsSomething()) << name;
  }

  RegistryBase base_;
  TempFolder folder_;
  Attached attached_;
};

}  // namespace zo::test
