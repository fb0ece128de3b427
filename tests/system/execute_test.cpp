#include <gtest/gtest.h>
#include <zo/files/file_name.h>
#include <zo/results.h>
#include <zo/system/execute.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "support/temp_folder.h"

namespace {

TEST(Execute, TellsWhyNothingWasStarted) {
  const zo::test::TempFolder folder;
  const std::filesystem::path document = folder.path() / L"a.zounknown";
  std::ofstream(document) << "text";
  struct : ZoStdExecute {
    using ZoStdExecute::convertErr;
  } service;
  EXPECT_EQ(service.automatic(ZoFileName(folder.path() / L"absent.exe"), nullptr, 1, true),
            ZoExecute::kFileNotFound);
  EXPECT_EQ(service.shell(ZoFileName(document), nullptr, 1), ZoExecute::kNoAssociation);
  const std::map<int, int> known{{2, 1000},  {3, 1001},  {5, 1003},  {8, 1011},  {11, 1002},
                                 {26, 1013}, {27, 1004}, {28, 1007}, {29, 1006}, {30, 1005},
                                 {31, 1010}, {32, 1008}, {33, 0}};
  for (int result = -2; result <= 33; ++result)
    EXPECT_EQ(service.convertErr(result), known.contains(result) ? known.at(result) : 1) << result;
}

}  // namespace
