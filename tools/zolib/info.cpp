// info: a library as a whole, or as a graph.
#include <windows.h>
#include <zo/system/file_system.h>
#include <zo/system/registry.h>

#include <cstdio>
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
  if (const int code = graph.writeGraph(shellPath(path).c_str())) {
    SetLastError(static_cast<DWORD>(code));
    ZoSystem::fileSystem().errorIO(L"zolib");
    report.fail(kFailed, "cannot write " + toUtf8(path) + because("it was refused"));
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
    const auto line = [&](std::string_view what, const std::string& text) {
      std::string label(what);
      label.resize(13, ' ');
      report.console().out(label + text + "\n");
    };
    line("library", session.name());
    line("file", std::to_string(file) + " bytes");
    line("members", std::to_string(live) + ", " + std::to_string(size) + " bytes, packed " +
                        std::to_string(packed) + " (" + ratioText(packed, size) + ")");
    line("deleted", std::to_string(deleted) + ", " + std::to_string(deletedBytes) +
                        " bytes that reorganize frees");
    line("unprotected", std::to_string(unprotected));
    line("counter", std::to_string(session->counter()));
    line("check sum", checkSum);
  }
  session.reportTrailing(kWarnings);
}

}  // namespace zolib
