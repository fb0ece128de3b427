// info: a library as a whole, or as a graph.
#include <windows.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <cstdio>
#include <filesystem>
#include <sstream>

#include "graph.h"
#include "names.h"
#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {
namespace {

void writeGraph(const Options& options, const std::wstring& path, Report& report,
                const std::vector<ZoLibEntry>& entries) {
  const ZoDottyGraph graph = graphOf(toUtf8(options.library), entries);
  if (path == L"-") {
    std::wostringstream text;
    text << graph;
    if (options.json)
      report.json()["dot"] = toUtf8(text.str());
    else
      report.console().out(toUtf8(text.str()));
    return;
  }
  const std::filesystem::path target = shellPath(path);
  std::error_code unlike;  // one that is not there is another one
  if (std::filesystem::equivalent(target, shellPath(options.library), unlike)) {
    report.fail(kFailed, {430, "cannot write %1: it is the library itself"}, path);
    return;
  }
  if (const int code = graph.writeGraph(target.c_str())) {
    SetLastError(static_cast<DWORD>(code));
    ZoSystem::fileSystem().errorIO(L"zolib");
    report.fail(kFailed, {420, "cannot write %1%2"}, path, because(kRefused));
  }
}

}  // namespace

void info(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToRead()) return;
  const std::vector<ZoLibEntry> entries = session.select(Session::kBoth);
  std::uint64_t live = 0, size = 0, packed = 0, deleted = 0, deletedBytes = 0, unprotected = 0;
  for (const ZoLibEntry& entry : entries) {
    if (entry.isDeleted()) {
      ++deleted;
      deletedBytes += entry.storedSize;
      continue;
    }
    ++live;
    size += entry.size;
    packed += entry.storedSize;
    unprotected += !entry.isProtected;
  }
  const std::uint64_t file = session.fileSize();
  char checkSum[17];
  std::snprintf(checkSum, sizeof checkSum, "%016llx",
                static_cast<unsigned long long>(session->checkSum()));
  Json& json = report.json();
  json["members"] = live;
  json["size"] = size;
  json["packed"] = packed;
  json["deleted"] = deleted;
  json["deletedBytes"] = deletedBytes;
  json["unprotected"] = unprotected;
  json["fileSize"] = file;
  json["counter"] = session->counter();
  json["checkSum"] = checkSum;
  json["trailingBytes"] = session->trailingBytes();
  if (options.dot) return writeGraph(options, *options.dot, report, entries);
  if (!options.json) {
    const auto line = [&](const Text& what, const std::string& text) {
      std::string label;
      appendLeft(label, say(what), 11);
      report.console().line(label + text);
    };
    line({421, "library"}, session.name());
    line({422, "file"}, say({423, "%1 bytes"}, file));
    line({424, "members"},
         say({425, "%1, %2 bytes, packed %3 (%4)"}, live, size, packed, ratioText(packed, size)));
    line({426, "deleted"}, say({427, "%1, %2 bytes that reorganize frees"}, deleted, deletedBytes));
    line({75, "unprotected"}, std::to_string(unprotected));
    line({428, "counter"}, std::to_string(session->counter()));
    line({429, "check sum"}, checkSum);
  }
  session.reportTrailing(kWarnings);
}

}  // namespace zolib
