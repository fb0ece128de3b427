// The C interface when memory runs out: a code, no exception, and nothing half done.
#include <zo_c.h>

#include <string_view>
#include <utility>

#include "support/failing_memory.h"
#include "system/attached.h"

namespace {

using zo::test::failEveryRequest;

struct Pair {
  ZocValue value = nullptr;
  ZocString text = nullptr;

  Pair() { EXPECT_EQ(zocValueNew(&value) | zocStringNew(&text), 0); }
  Pair(Pair&& other) noexcept
      : value(std::exchange(other.value, nullptr)), text(std::exchange(other.text, nullptr)) {}
  ~Pair() {
    for (void* const handle : {static_cast<void*>(value), static_cast<void*>(text)})
      if (handle) (void)zocClose(handle);
  }
};

TEST(CInterfaceOutOfMemory, ValuesAndTextsAreMadeOrAsTheyWere) {
  const zo::test::Attached attached;
  const ZocText path = zocUtf8("a/b"), self{};
  failEveryRequest(
      "put", [] { return Pair(); },
      [&](Pair& pair) {
        return zocValuePutText(pair.value, path, zocUtf8("a text of some length"), ZOC_PLAIN);
      },
      [&](const Pair& pair, bool done) {
        EXPECT_EQ(zocValueGetText(pair.value, path, pair.text), done ? 0 : ZOC_REFUSED);
      });
  failEveryRequest(
      "format",
      [&] {
        Pair pair;
        EXPECT_EQ(zocValuePutInt(pair.value, self, 1234567890, ZOC_PLAIN), 0);
        return pair;
      },
      [](Pair& pair) { return zocValueFormat(pair.value, pair.text); },
      [](const Pair& pair, bool done) {
        EXPECT_EQ(std::wstring_view(zocStringUtf16(pair.text)).empty(), !done);
      });
}

TEST(CInterfaceOutOfMemory, HandlesAreMadeOrNull) {
  const zo::test::Attached attached;
  failEveryRequest(
      "archive", [] { return ZocArchive(); },
      [](ZocArchive& archive) { return zocArchiveLoad("12345678", 8, &archive); },
      [](const ZocArchive& archive, bool done) {
        EXPECT_EQ(archive != nullptr, done);
        if (done) {
          EXPECT_EQ(zocClose(archive), 0);
        }
      });
}

}  // namespace
