// Files of a server, on a real one.
#include <zo/files/file_transfer.h>
#include <zo/files/find_file.h>

#include <functional>

#include "files/file_fixture.h"
#include "files/ftp_server.h"

namespace zo::test {
namespace {

using RemoteNames = FileTest;

TEST_F(RemoteNames, HaveALocalPlaceThatNeverLeadsElsewhere) {
  ZoFileName temp, local;
  ASSERT_EQ(fs().getTempPath(temp), 0);
  const std::wstring base = std::wstring(temp.view()) + L"zo_remote\\";
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L"ftp://u:p@q@host/dir/f.dwg", L"host\\dir\\f.dwg"},
      {L"ftp://host:2121//a//f", L"host_2121\\a\\f"},
      {L"ftp://host/../../f", L"host\\_.._\\_.._\\f"},
      {L"ftp://host/nul/con.txt", L"host\\_nul_\\_con.txt_"},
      {L"ftp://../a\\..\\C:. ", L"_.._\\_a_.._C_. _"},
  };
  for (const auto& [remote, place] : cases) {
    EXPECT_EQ(fs().isRemote(ZoFileName(remote), local), 0);
    EXPECT_EQ(std::wstring(local.view()), base + place);
  }
  for (const wchar_t* other : {L"C:\\f", L"http://host/f", L"ftps://h/x", L""}) {
    EXPECT_EQ(fs().isRemote(ZoFileName(other), local), 1);
    EXPECT_EQ(fs().getRemote(ZoFileName(other), local), 3);
  }
}

class Remote : public FileTest {
 protected:
  ZoFileName remote(const std::wstring& path, const std::wstring& login = L"u:p@") const {
    return ZoFileName((L"ftp://" + login + server_.host() + path).c_str());
  }
  // On the server's disk.
  ZoFileName stored(const std::wstring& relative) const {
    return ZoFileName((server_.folder() / relative).wstring().c_str());
  }
  auto entriesStored() const {
    return std::distance(std::filesystem::directory_iterator(server_.folder()), {});
  }
  FtpServer server_;
};

TEST_F(Remote, FilesGoToTheServerAndBack) {
  std::string content(300'000, '\0');
  for (size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 7);
  const ZoFileName part = remote(L"/part.dwg");
  ZoFileName local = name(L"new folder\\back");
  for (const std::string& now : {content, std::string("shorter")}) {
    put(name(L"f"), now);
    EXPECT_EQ(fs().putRemote(name(L"f"), part), 0);
    EXPECT_TRUE(bytesOf(stored(L"part.dwg")) == now);
    EXPECT_EQ(fs().getRemote(part, local), 0);
    EXPECT_TRUE(bytesOf(local) == now);
  }
  EXPECT_EQ(entriesStored(), 1);
  EXPECT_EQ(listing(), (Names{L"f", L"new folder\\", L"new folder\\back"}));
}

TEST_F(Remote, FailuresLeaveBothSidesAsTheyWere) {
  put(stored(L"f"), "server's");
  put(stored(L"broken"), std::string(2'000'000, 'b'));
  ZoFileName local = name(L"local");
  put(local, "ours");
  EXPECT_EQ(fs().getRemote(remote(L"/f"), local, true), 1);
  expectError(ERROR_FILE_EXISTS);
  EXPECT_EQ(fs().getRemote(remote(L"/missing"), local), 1);
  EXPECT_EQ(fs().getRemote(remote(L"/f", L"u:wrong@"), local), 1);
  EXPECT_EQ(fs().getRemote(remote(L"/broken"), local), 1) << "the server broke off";
  EXPECT_EQ(fs().putRemote(local, remote(L"/f", L"")), 1) << "anonymous users may not write";
  EXPECT_EQ(fs().putRemote(local, remote(L"/missing/f")), 1);
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "move"});
  EXPECT_EQ(fs().getRemote(remote(L"/f"), local), 1) << "full when the file is to take its place";
  expectError(ERROR_DISK_FULL);
  EXPECT_EQ(bytesOf(local) + bytesOf(stored(L"f")), "oursserver's");
  EXPECT_EQ(listing(), Names{L"local"});
  EXPECT_EQ(entriesStored(), 2);
}

TEST_F(Remote, DirectoriesAreMadeRenamedAndErased) {
  EXPECT_EQ(fs().createDirectory(remote(L"/a")), 0);
  for (const wchar_t* file : {L"a\\f", L"a\\1.bak"}) put(stored(file), "x");
  EXPECT_EQ(fs().move(remote(L"/a"), remote(L"/b")), 0);
  EXPECT_EQ(fs().erase(remote(L"/b/"), ZoFileSystem::kBackups), 0);
  EXPECT_EQ(bytesOf(stored(L"b\\1.bak")) + bytesOf(stored(L"b\\f")), "(none)x");
  EXPECT_EQ(fs().erase(remote(L"/b"), ZoFileSystem::kDirectory), 1) << "not empty";
  EXPECT_EQ(fs().erase(remote(L"/"), ZoFileSystem::kTree), 1) << "never the root";
  EXPECT_EQ(fs().erase(remote(L"/b"), ZoFileSystem::kTree), 0);
  EXPECT_EQ(entriesStored(), 0);
}

TEST_F(Remote, DirectoriesAreMadeWithThoseAboveThemOrNotAtAll) {
  EXPECT_EQ(fs().createDirectory(remote(L"/x/y/z")), 0);
  EXPECT_TRUE(std::filesystem::is_directory(server_.folder() / L"x" / L"y" / L"z"));
  EXPECT_EQ(fs().createDirectory(remote(L"/x/y/z")), 1) << "it is there";
  put(stored(L"x\\file"), "");
  EXPECT_EQ(fs().createDirectory(remote(L"/x/file/a/b")), 1);
  EXPECT_EQ(fs().createDirectory(remote(L"/new/refused/b")), 1);
  EXPECT_EQ(fs().errorTxt().view(), L"550 Refused.\r\n") << "the reason, not what follows of it";
  EXPECT_EQ(entriesStored(), 1) << "nothing of it stays";
}

TEST_F(Remote, EveryFailureHasTheServersWordsOrAReason) {
  put(stored(L"f"), "x");
  put(name(L"local"), "ours");
  std::filesystem::create_directory(server_.folder() / L"full");
  put(stored(L"full\\f"), "x");
  ZoFileName local = name(L"new");
  ZoFindFile find;
  struct Case {
    const wchar_t* begins;
    std::function<int()> run;
  };
  const Case cases[] = {
      {L"550 ", [&] { return fs().createDirectory(remote(L"/f")); }},
      {L"550 ", [&] { return fs().move(remote(L"/missing"), remote(L"/g")); }},
      {L"550 ", [&] { return fs().erase(remote(L"/missing"), ZoFileSystem::kFile); }},
      {L"550 ", [&] { return fs().erase(remote(L"/full"), ZoFileSystem::kDirectory); }},
      {L"550 ", [&] { return fs().erase(remote(L"/missing"), ZoFileSystem::kTree); }},
      {L"550 ", [&] { return fs().getRemote(remote(L"/missing"), local); }},
      {L"550 ", [&] { return fs().putRemote(name(L"local"), remote(L"/missing/f")); }},
      {L"550 ", [&] { return fs().putRemote(name(L"local"), remote(L"/g", L"")); }},
      {L"550 ", [&] { return find.open(remote(L"/missing/*")); }},
      {L"530 ", [&] { return fs().erase(remote(L"/f", L"u:wrong@"), ZoFileSystem::kFile); }},
      {L"", [&] { return fs().createDirectory(L"ftp://u:p@127.0.0.1:1/d"); }},  // nobody is there
      {L"", [&] { return find.open(L"ftp://no.such.host.invalid/*"); }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    SetLastError(ERROR_SUCCESS);
    fs().errorIO(L"");
    const std::wstring none(fs().errorTxt().view());
    EXPECT_EQ(c.run(), 1);
    const std::wstring reason(fs().errorTxt().view());
    EXPECT_TRUE(reason != none && reason.size() > 12) << reason;
    EXPECT_TRUE(reason.starts_with(c.begins)) << reason;
    EXPECT_TRUE(reason.ends_with(L"\r\n")) << reason;
  }
}

TEST_F(Remote, FilesAreFoundAndTransferredByPattern) {
  std::filesystem::create_directories(server_.folder() / L"p" / L"sub");
  for (const wchar_t* file : {L"p\\1.dwg", L"p\\2.txt", L"p\\sub\\3.DWG"}) put(stored(file), "123");
  // A server may have what would lead out of the folder here.
  put(name(L"bad"), "bad");
  EXPECT_EQ(fs().putRemote(name(L"bad"), remote(L"/p/..\\..\\bad.dwg")), 0);
  EXPECT_EQ(fs().erase(name(L"bad"), ZoFileSystem::kFile), 0);
  ZoFileTransfer transfer;
  EXPECT_EQ(transfer.addTree(remote(L"/p/*.dwg"), name(L"t")), 1);
  expectError(ERROR_INVALID_NAME);
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0);
  EXPECT_EQ(listing(), (Names{L"t\\", L"t\\1.dwg", L"t\\sub\\", L"t\\sub\\3.DWG"}));
  EXPECT_EQ(bytesOf(stored(L"p\\1.dwg")), "(none)");
}

}  // namespace
}  // namespace zo::test
