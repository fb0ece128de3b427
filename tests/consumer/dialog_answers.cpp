// Dialogs are answered by a client's function, which tells them apart across the DLL's border.
#include <gtest/gtest.h>
#include <zo/dialogs.h>

namespace {

TEST(DialogAnswers, TellDialogsApartAcrossTheBorder) {
  ZoDialogs::setAnswer([](ZoDialog& dialog) {
    auto* const files = dynamic_cast<ZoFileDialog*>(&dialog);
    if (!files) return ZoResult::cancelled;
    files->setFile(L"C:\\a.val");
    return ZoResult::ok;
  });
  ZoFileDialog files;
  EXPECT_EQ(files.show(), ZoResult::ok);
  EXPECT_STREQ(files.file().fileNameExt(), L"a.val");
  EXPECT_EQ(ZoColorDialog().show(), ZoResult::cancelled);
  EXPECT_TRUE(ZoDialogs::setAnswer({}));
}

}  // namespace
