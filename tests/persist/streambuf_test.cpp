#include <gtest/gtest.h>
#include <zo/persist/zip_streambuf.h>

#include <string>

namespace {

// Keeps what overflows; underflow supplies a text in portions, or single bytes when unbuffered.
class Recorder : public ZoZIPStreambuf {
 public:
  using ZoZIPStreambuf::ZoZIPStreambuf;
  int overflow(int byte) override {
    if (static_cast<int>(overflowed.size()) >= room) return endOfFile;
    overflowed += static_cast<char>(byte);
    return byte;
  }
  int underflow() override {
    if (supply.empty()) return endOfFile;
    const int first = static_cast<unsigned char>(supply[0]);
    const std::size_t portion = blen() > 0 ? std::min<std::size_t>(supply.size(), 3) : 1;
    if (blen() > 0) {
      supply.copy(base(), portion);
      setg(base(), base(), base() + portion);
    }
    supply.erase(0, portion);
    return first;
  }
  std::string overflowed, supply;
  int room = 1000;

  using ZoZIPStreambuf::allocate, ZoZIPStreambuf::base, ZoZIPStreambuf::blen, ZoZIPStreambuf::ebuf;
  using ZoZIPStreambuf::eback, ZoZIPStreambuf::egptr, ZoZIPStreambuf::gbump, ZoZIPStreambuf::gptr;
  using ZoZIPStreambuf::epptr, ZoZIPStreambuf::pbase, ZoZIPStreambuf::pbump, ZoZIPStreambuf::pptr;
  using ZoZIPStreambuf::setb, ZoZIPStreambuf::setg, ZoZIPStreambuf::setp;
  using ZoZIPStreambuf::unbuffered;
};

}  // namespace

TEST(ZipStreambuf, TakesABufferOnceAndIsUnbufferedWithoutOne) {
  char area[8], other[8];
  struct Case {
    char* buffer;
    int length;
    int unbuffered;
  };
  for (const Case& c :
       {Case{area, 8, 0}, Case{nullptr, 8, 1}, Case{area, 0, 1}, Case{area, -1, 1}}) {
    Recorder made(c.buffer, c.length);
    Recorder set;
    EXPECT_EQ(set.setbuf(c.buffer, c.length), &set);
    for (Recorder* r : {&made, &set}) {
      EXPECT_EQ(r->unbuffered(), c.unbuffered);
      EXPECT_EQ(r->blen(), c.unbuffered ? 0 : 8);
      EXPECT_EQ(r->base(), c.unbuffered ? nullptr : area);
      // A buffer that is there stays; where none is, one is taken after all.
      EXPECT_EQ(r->setbuf(other, 4), c.unbuffered ? r : nullptr);
      EXPECT_EQ(r->base(), c.unbuffered ? other : area);
      EXPECT_EQ(r->unbuffered(), 0);
      EXPECT_EQ(r->setbuf(nullptr, 0), nullptr);
      EXPECT_EQ(r->unbuffered(), 0);
    }
  }
}

TEST(ZipStreambuf, PutsIntoItsAreaAndThenOverflows) {
  char area[4];
  Recorder buffer(area, 4);
  buffer.setp(area, area + 4);
  buffer.room = 3;
  EXPECT_EQ(buffer.sputc('a' + 0x100), 'a');
  EXPECT_EQ(buffer.out_waiting(), 1);
  EXPECT_EQ(buffer.sync(), -1);
  EXPECT_EQ(buffer.sputn("bcdefgh", 7), 6) << "the eighth byte overflowed in vain";
  EXPECT_EQ(std::string(area, 4), "abcd");
  EXPECT_EQ(buffer.overflowed, "efg");
  EXPECT_EQ(buffer.sputc('x'), -1);
  buffer.pbump(-4);
  EXPECT_EQ(buffer.sync(), 0);
  EXPECT_EQ(buffer.sputc('\xFE'), 0xFE);

  Recorder unbuffered(nullptr, 0);  // passes every byte on
  unbuffered.setp(area, area + 4);
  EXPECT_EQ(unbuffered.sputn("abc", 3), 3);
  EXPECT_EQ(unbuffered.overflowed, "abc");
  EXPECT_EQ(unbuffered.out_waiting(), 0);
}

TEST(ZipStreambuf, GetsThroughUnderflowBufferedAndNot) {
  char area[8];
  for (int length : {8, 0}) {
    Recorder buffer(area, length);
    buffer.supply = "stream\xFF of bytes";
    char read[32] = {};
    EXPECT_EQ(buffer.sgetn(read, 2), 2);
    EXPECT_EQ(buffer.in_avail(), length ? 1 : 0);
    EXPECT_EQ(buffer.sync(), length ? -1 : 0);
    EXPECT_EQ(buffer.sgetn(read + 2, 30), 14);
    EXPECT_STREQ(read, "stream\xFF of bytes");
    EXPECT_EQ(buffer.sgetn(read, 1), 0);
    EXPECT_EQ(buffer.sync(), 0);
  }
}

TEST(ZipStreambuf, AllocatesAndFreesItsOwnBuffer) {
  Recorder buffer;
  EXPECT_EQ(buffer.allocate(), 1);
  EXPECT_EQ(buffer.blen(), 512);
  EXPECT_EQ(buffer.allocate(), 0);
  char area[4];
  buffer.setb(area, area + 4,
              0);  // the guarded heap would tell of a block that stays or goes twice
  EXPECT_EQ(buffer.blen(), 4);
  buffer.setb(area + 4, area, 0);
  EXPECT_EQ(buffer.blen(), 0) << "an end below the base";
  Recorder unbuffered(nullptr, 0);
  EXPECT_EQ(unbuffered.allocate(), 0);
}
