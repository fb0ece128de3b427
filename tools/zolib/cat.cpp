// cat: members to standard output.
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

// Gives all bytes of a member, piece by piece, to `take`. Nothing of one that is damaged.
template <class Take>
void readMember(Session& session, const ZoLibEntry& entry, Report& report, const Take& take) {
  const std::string name = toUtf8(entry.name.view());
  forgetReason();
  // What is compressed is checked when it is opened.
  int code = entry.isCompressed() ? 0 : session->verify(entry);
  ZoFile file;
  if (!code) code = session->getFile(file, entry.name);
  if (code) {
    if (isCancelled()) return report.cancelled();
    return report.fail(kDamaged, "cannot read " + name + " in " + session.name() +
                                     because("it is damaged") + "; see `zolib test`");
  }
  std::vector<char> buffer(256 * 1024);
  std::uint64_t left = entry.size;
  while (const unsigned int got =
             file.read(buffer.data(), static_cast<unsigned int>(buffer.size()))) {
    if (isCancelled()) return report.cancelled();
    take(std::string_view(buffer.data(), got));
    left -= got;
    session.progress().at(entry.size - left, entry.size);
    if (report.console().outputFailed()) return;
  }
  if (left)
    report.fail(kDamaged, "cannot read all of " + name + " in " + session.name() + because());
}

}  // namespace

void cat(const Options& options, Report& report) {
  Session session(options, report);
  if (!session.openToRead()) return;
  const std::vector<ZoLibEntry> entries = session.select(Session::kLive);
  const std::vector<bool> hidden = Session::hidden(entries);
  for (std::size_t i = 0; i < entries.size() && report.code() != kCancelled; ++i) {
    if (hidden[i]) continue;
    std::string content;
    readMember(session, entries[i], report, [&](std::string_view bytes) {
      if (options.json)
        content += bytes;
      else
        report.console().out(bytes);
    });
    if (options.json) report.member(entries[i].name.view(), "read")["base64"] = base64(content);
  }
}

}  // namespace zolib
