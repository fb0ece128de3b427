// cat: members to standard output.
#include <utility>
#include <vector>

#include "cancel.h"
#include "session.h"
#include "text.h"
#include "verbs.h"

namespace zolib {
namespace {

std::string base64(std::string_view bytes) {
  static constexpr char kDigits[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const auto at = [&](std::size_t k) -> unsigned int {
      return k < bytes.size() ? static_cast<unsigned char>(bytes[k]) : 0;
    };
    const unsigned int triple = at(i) << 16 | at(i + 1) << 8 | at(i + 2);
    for (unsigned int k = 0; k < 4; ++k)
      text += i + k > bytes.size() ? '=' : kDigits[triple >> (18 - 6 * k) & 63];
  }
  return text;
}

// Gives all bytes of a member, piece by piece, to `take`. Nothing of one that is damaged, which is
// reported.
template <class Take>
bool readMember(Session& session, const ZoLibEntry& entry, Report& report, const Take& take) {
  const std::string name = toUtf8(entry.name.view());
  std::uint64_t left = entry.size;
  forgetReason();
  ZoFile file;
  const auto open = [&](const ZoLibEntry& now) {
    // What is compressed is checked when it is opened.
    const int code = now.isCompressed() ? 0 : session->verify(now);
    left = now.size;
    return code ? code : session->getFile(file, now);
  };
  int code = open(entry);
  if (code && !isCancelled()) code = session.readAgain(entry, open);
  if (code) {
    if (isCancelled())
      report.cancelled();
    else if (code == Session::kGone)
      tellGone(session, report, entry.name.view());
    else
      report.fail(kDamaged, {220, "cannot read %1 in %2%3; see `zolib test`"}, name, session.name(),
                  because({221, "it is damaged"}));
    return false;
  }
  std::vector<char> buffer(std::size_t{256} * 1024);
  while (const unsigned int got =
             file.read(buffer.data(), static_cast<unsigned int>(buffer.size()))) {
    if (isCancelled()) {
      report.cancelled();
      return false;
    }
    take(std::string_view(buffer.data(), got));
    left -= got;
    session.progress().at(entry.size - left, entry.size);
    if (report.console().outputFailed()) return false;
  }
  if (left)
    report.fail(kDamaged, {222, "cannot read all of %1 in %2%3"}, name, session.name(), because());
  return !left;
}

// What is to be read, in the order in which it is named. A member that is named is found at once.
std::vector<ZoLibEntry> inOrder(const Options& options, Session& session) {
  const std::vector<std::wstring>* const names = session.names();
  if (!names) return {};
  std::vector<ZoLibEntry> entries;
  const bool all = options.include.empty() && options.exclude.empty();
  for (const std::wstring& name : *names) {
    ZoLibEntry entry;
    if (all && session->getEntry(ZoFileName(name), entry) == 0) {
      entries.push_back(entry);
      continue;
    }
    for (ZoLibEntry& found : session.select(Session::kLive, {name}))
      if (!session.isPassedOver(found)) entries.push_back(std::move(found));
  }
  return entries;
}

}  // namespace

void cat(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToRead()) return;
  for (const ZoLibEntry& entry : inOrder(options, session)) {
    if (report.code() == kCancelled) break;
    std::string content;
    const bool whole = readMember(session, entry, report, [&](std::string_view bytes) {
      if (options.json)
        content += bytes;
      else
        report.console().out(bytes);
    });
    if (options.json && whole) report.member(entry.name.view(), "read")["base64"] = base64(content);
  }
}

}  // namespace zolib
