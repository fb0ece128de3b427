// Files of a server, on a real one.
#include <zo/files/file_transfer.h>
#include <zo/files/find_file.h>

#include "file_io/file_fixture.h"
#include "file_io/ftp_server.h"
#include "files/ftp.h"
#include "support/faulty_files.h"

namespace zo::test {
namespace {

TEST(FtpNames, AreTakenApartWithTheirPort) {
  struct Case {
    const wchar_t *name, *host, *user, *password, *path;
    unsigned short port = 0;
  };
  for (const Case& c :
       {Case{L"FTP://h", L"h", L"", L"", L"/"}, Case{L"ftp://u@h/x/y", L"h", L"u", L"", L"/x/y"},
        Case{L"ftp://u:p@h:21/x", L"h", L"u", L"p", L"/x", 21},
        Case{L"ftp://u:p@q@h/x@y:z", L"h", L"u", L"p@q", L"/x@y:z"},
        Case{L"ftp://h:99999/x", L"h", L"", L"", L"/x"},
        Case{L"ftps://h/x", L"", L"", L"", L""}}) {  // not what is spoken here
    const FtpAddress address = ftpAddress(ZoFileName(c.name));
    EXPECT_EQ(address.host, c.host);
    EXPECT_EQ(address.user, c.user);
    EXPECT_EQ(address.password, c.password);
    EXPECT_EQ(address.path, c.path);
    EXPECT_EQ(address.port, c.port);
  }
  EXPECT_TRUE(sameServer(ZoFileName(L"ftp://u@h/a"), ZoFileName(L"FTP://u@H/b")));
  EXPECT_FALSE(sameServer(ZoFileName(L"ftp://u@h/a"), ZoFileName(L"ftp://v@h/a")));
  EXPECT_FALSE(sameServer(ZoFileName(L"http://h/a"), ZoFileName(L"http://h/b")));
}

using RemoteNames = FileTest;

TEST_F(RemoteNames, HaveALocalPlaceThatNeverLeadsElsewhere) {
  ZoFileName temp, local;
  ASSERT_EQ(fs().getTempPath(temp), 0);
  const std::wstring base = std::wstring(temp.view()) + L"zo_remote\\";
  const std::pair<const wchar_t*, const wchar_t*> cases[] = {
      {L"ftp://u:p@host/dir/f.dwg", L"host\\dir\\f.dwg"},
      {L"ftp://host:2121//a//f", L"host_2121\\a\\f"},
      {L"ftp://host/../../f", L"host\\_.._\\_.._\\f"},
      {L"ftp://host/a\\..\\b", L"host\\a_.._b"},
      {L"ftp://host/nul/con.txt", L"host\\_nul_\\_con.txt_"},
      {L"ftp://host/C:/x", L"host\\C_\\x"},
      {L"ftp://../f. ", L"_.._\\_f. _"},
  };
  for (const auto& [remote, place] : cases) {
    EXPECT_EQ(fs().isRemote(ZoFileName(remote), local), 0);
    EXPECT_EQ(std::wstring(local.view()), base + place);
  }
  ZoFileName aliased(L"ftp://host/f");
  aliased.setLocalAlias(name(L"alias"));
  EXPECT_EQ(fs().isRemote(aliased, local), 0);
  EXPECT_EQ(local, name(L"alias"));
  for (const wchar_t* other : {L"C:\\f", L"http://host/f", L""}) {
    local = L"unchanged";
    EXPECT_EQ(fs().isRemote(ZoFileName(other), local), 1);
    EXPECT_EQ(fs().getRemote(ZoFileName(other), local), 3);
    EXPECT_EQ(fs().putRemote(name(L"f"), ZoFileName(other)), 3);
    EXPECT_EQ(local, L"unchanged");
  }
}

class Remote : public FileTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(server_.isRunning()) << "there is no FTP server here (python3-pyftpdlib)";
  }
  ZoFileName remote(const std::wstring& path, const wchar_t* login = L"u:p@") {
    return ZoFileName(server_.url(path, login).c_str());
  }
  // On the server's disk.
  ZoFileName stored(const std::wstring& relative) {
    return ZoFileName((server_.folder() / relative).wstring().c_str());
  }
  auto entriesStored() {
    return std::distance(std::filesystem::directory_iterator(server_.folder()), {});
  }
  FtpServer server_;
};

TEST_F(Remote, FilesGoToTheServerAndBack) {
  std::string content(300'000, '\0');
  for (size_t i = 0; i < content.size(); ++i) content[i] = static_cast<char>(i * 7);
  for (const std::string& now : {content, std::string("shorter")}) {
    put(name(L"f"), now);
    EXPECT_EQ(fs().putRemote(name(L"f"), remote(L"/part.dwg")), 0);
    EXPECT_TRUE(bytesOf(stored(L"part.dwg")) == now);
  }
  EXPECT_EQ(entriesStored(), 1);
  ZoFileName local = name(L"new folder\\below\\back");
  EXPECT_EQ(fs().getRemote(remote(L"/part.dwg"), local), 0);
  put(stored(L"part.dwg"), content);
  EXPECT_EQ(fs().getRemote(remote(L"/part.dwg"), local, true), 1);
  expectError(ERROR_FILE_EXISTS);
  EXPECT_EQ(bytesOf(local), "shorter");
  EXPECT_EQ(fs().getRemote(remote(L"/part.dwg"), local), 0);
  EXPECT_TRUE(bytesOf(local) == content);
  EXPECT_EQ(listing(),
            (Names{L"f", L"new folder\\", L"new folder\\below\\", L"new folder\\below\\back"}));
  // Without a name of its own the copy gets its place, and anonymous users may read.
  ZoFileName place, expected;
  EXPECT_EQ(fs().getRemote(remote(L"/part.dwg", L""), place), 0);
  EXPECT_EQ(fs().isRemote(remote(L"/part.dwg", L""), expected), 0);
  EXPECT_EQ(place, expected);
  EXPECT_TRUE(bytesOf(place) == content);
  place.setFileNameExt(nullptr);
  EXPECT_EQ(fs().erase(place, ZoFileSystem::kTree), 0);
}

TEST_F(Remote, FailuresLeaveBothSidesAsTheyWere) {
  put(stored(L"f"), "server's");
  put(stored(L"broken"), std::string(2'000'000, 'b'));
  put(name(L"local"), "ours");
  ZoFileName local = name(L"local");
  EXPECT_EQ(fs().getRemote(remote(L"/missing"), local), 1);
  EXPECT_EQ(fs().getRemote(remote(L"/f", L"u:wrong@"), local), 1);
  EXPECT_EQ(fs().getRemote(remote(L"/broken"), local), 1) << "the server broke off";
  EXPECT_EQ(fs().putRemote(name(L"missing"), remote(L"/f")), 1);
  EXPECT_EQ(fs().putRemote(local, remote(L"/f", L"")), 1) << "anonymous users may not write";
  EXPECT_EQ(fs().putRemote(local, remote(L"/missing/f")), 1);
  // The disk is full when the fetched file is to take its place.
  FaultyFiles files;
  files.arm({.fault = Fault::fail, .call = "move"});
  EXPECT_EQ(fs().getRemote(remote(L"/f"), local), 1);
  expectError(ERROR_DISK_FULL);
  EXPECT_EQ(bytesOf(name(L"local")) + bytesOf(stored(L"f")), "oursserver's");
  EXPECT_EQ(listing(), Names{L"local"});
  EXPECT_EQ(entriesStored(), 2);
}

TEST_F(Remote, DirectoriesAreMadeRenamedAndErased) {
  EXPECT_EQ(fs().createDirectory(remote(L"/a")), 0);
  EXPECT_EQ(fs().createDirectory(remote(L"/a")), 1);
  EXPECT_EQ(fs().createDirectory(remote(L"/a/b")), 0);
  for (const wchar_t* file : {L"a\\b\\f", L"a\\1.bak", L"a\\2.BAK", L"a\\2.dwg"})
    put(stored(file), "x");
  EXPECT_EQ(fs().move(remote(L"/a/b/f"), remote(L"/a/g")), 0);
  EXPECT_EQ(fs().move(remote(L"/a/missing"), remote(L"/a/h")), 1);
  EXPECT_EQ(bytesOf(stored(L"a\\g")), "x");
  EXPECT_EQ(fs().erase(remote(L"/a/1.dwg"), ZoFileSystem::kBackups), 0) << "beside a file";
  EXPECT_FALSE(exists(stored(L"a\\1.bak")));
  EXPECT_TRUE(exists(stored(L"a\\2.BAK")));
  EXPECT_EQ(fs().erase(remote(L"/a/"), ZoFileSystem::kBackups), 0);
  EXPECT_FALSE(exists(stored(L"a\\2.BAK")));
  EXPECT_TRUE(exists(stored(L"a\\2.dwg")));
  EXPECT_EQ(fs().erase(remote(L"/a/g"), ZoFileSystem::kFile), 0);
  EXPECT_EQ(fs().erase(remote(L"/a/g"), ZoFileSystem::kFile), 1);
  EXPECT_EQ(fs().erase(remote(L"/a"), ZoFileSystem::kDirectory), 1) << "not empty";
  EXPECT_EQ(fs().erase(remote(L"/"), ZoFileSystem::kTree), 1) << "never the root";
  EXPECT_EQ(fs().erase(remote(L"/a"), ZoFileSystem::kTree), 0);
  EXPECT_EQ(entriesStored(), 0);
}

TEST_F(Remote, FilesAreFoundAndTransferredByPattern) {
  std::filesystem::create_directories(server_.folder() / L"p" / L"sub");
  for (const wchar_t* file : {L"p\\1.dwg", L"p\\2.txt", L"p\\sub\\3.DWG"}) put(stored(file), "123");
  ZoFindFile find;
  Names found;
  ASSERT_EQ(find.open(remote(L"/p/*.dwg"), true), 0);
  while (find.next()) {
    EXPECT_EQ(find.size(), 3);
    found.emplace_back(find.path().substr(remote(L"/p/").fullNameSize()));
  }
  EXPECT_EQ(find.result(), 0);
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, (Names{L"1.dwg", L"sub/3.DWG"}));
  find.setAttributes(ZoFindFile::kDirectory);
  ASSERT_EQ(find.open(remote(L"")), 0) << "the host alone";
  ASSERT_TRUE(find.next());
  EXPECT_EQ(find.name(), remote(L"/p"));
  EXPECT_EQ(find.open(remote(L"/missing/*")), 1);
  EXPECT_EQ(find.open(remote(L"/p/*", L"u:wrong@")), 1);

  // A server may have what would lead out of the folder here.
  put(name(L"bad"), "bad");
  EXPECT_EQ(fs().putRemote(name(L"bad"), remote(L"/p/..\\..\\bad.dwg")), 0);
  EXPECT_EQ(fs().erase(name(L"bad"), ZoFileSystem::kFile), 0);
  ZoFileTransfer transfer;
  EXPECT_EQ(transfer.addTree(remote(L"/p/*.dwg"), name(L"t")), 1);
  expectError(ERROR_INVALID_NAME);
  EXPECT_EQ(transfer.entries(), 2u);
  EXPECT_EQ(transfer.run(ZoFileTransfer::kMove), 0);
  EXPECT_EQ(listing(), (Names{L"t\\", L"t\\1.dwg", L"t\\sub\\", L"t\\sub\\3.DWG"}));
  EXPECT_FALSE(exists(stored(L"p\\1.dwg")));
}

}  // namespace
}  // namespace zo::test
