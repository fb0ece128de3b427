// A real FTP server for a test. User "u", password "p".
#pragma once

#include "support/loopback_server.h"

namespace zo::test {

struct FtpServer : LoopbackServer {
  FtpServer() : LoopbackServer(ZO_FTP_SERVER_SCRIPT) {}
};

}  // namespace zo::test
