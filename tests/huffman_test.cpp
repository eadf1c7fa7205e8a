// SPDX-License-Identifier: BSD-3-Clause
// Baseline Huffman tables, encoder, decoder, statistics and optimal tables.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "bitio.h"
#include "huffman_test_util.h"
#include "simd_test_util.h"
#include "test_util.h"

namespace {

using namespace kro_test;

const std::array<int, 64> kZz = ZigZag();

// The writes (code, then extra bits) of one block, following T.81 F.1.2 literally.
std::vector<Code> RefBlockWrites(const Kro16s* blk, int last_dc, const std::array<Code, 256>& dc,
                                 const std::array<Code, 256>& ac) {
  std::vector<Code> w;
  auto sym = [&](const std::array<Code, 256>& t, int s, int v, int n) {
    w.push_back(t[s]);
    if (n > 0) w.push_back({static_cast<uint32_t>(v < 0 ? v - 1 : v) & ((1u << n) - 1), n});
  };
  const int diff = blk[0] - last_dc;
  sym(dc, Category(diff), diff, Category(diff));
  int r = 0;
  for (int k = 1; k < 64; ++k) {
    const int v = blk[kZz[k]];
    if (v == 0) {
      ++r;
      continue;
    }
    for (; r > 15; r -= 16) sym(ac, 0xF0, 0, 0);
    sym(ac, r * 16 + Category(v), v, Category(v));
    r = 0;
  }
  if (r > 0) sym(ac, 0, 0, 0);
  return w;
}

std::vector<Kro16s> RandomBlocks(Rng& rng, int n, int max_ac, int max_dc) {
  std::vector<Kro16s> b(64 * n, 0);
  for (int i = 0; i < n; ++i) {
    Kro16s* blk = &b[64 * i];
    blk[0] = static_cast<Kro16s>(rng.Int(-max_dc, max_dc));
    const int density = static_cast<int>(rng.Int(0, 4));  // 0: empty AC .. 4: dense
    for (int k = 1; k < 64; ++k) {
      if (rng.Int(0, 7) < density * 2 - 1) {
        const int bits = static_cast<int>(rng.Int(1, Category(max_ac)));
        blk[k] = static_cast<Kro16s>(rng.Int(-((1 << bits) - 1), (1 << bits) - 1));
      }
    }
  }
  return b;
}

// Optimal tables for a set of blocks, through the library's statistics.
struct OptimalTables {
  std::vector<uint8_t> dc_bits, dc_vals, ac_bits, ac_vals;
  explicit OptimalTables(const std::vector<Kro16s>& blocks) {
    int dc[256] = {}, ac[256] = {};
    Kro16s last = 0;
    for (size_t i = 0; i < blocks.size(); i += 64)
      kroiGetHuffmanStatistics8x8_JPEG_16s_C1(&blocks[i], dc, ac, &last);
    Build(dc, dc_bits, dc_vals);
    Build(ac, ac_bits, ac_vals);
  }
  static void Build(const int* stats, std::vector<uint8_t>& bits, std::vector<uint8_t>& vals) {
    bits.assign(16, 0);
    vals.assign(256, 0);
    EXPECT_EQ(kroStatusOk, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  }
};

TEST(HuffmanArgs, CheckOrder) {
  EncTable etab(kLumDcBits, kLumDcVals);
  DecTable dtab(kLumDcBits, kLumDcVals);
  EncStateBuf es;
  DecStateBuf ds;
  Kro16s blk[64] = {}, last = 0;
  Kro8u buf[64] = {};
  int pos = 0, neg = -8, marker = 0, nbits = 0, size = 0, stats[256] = {};
  Kro32u acc = 0;
  const Kro8u* bits = kLumDcBits.data();
  const Kro8u* vals = kLumDcVals.data();
  auto* e = etab.get();
  auto* d = dtab.get();
  struct Case {
    const char* what;
    KroStatus want;
    std::function<KroStatus()> call;
  };
  const std::vector<Case> cases = {
      {"size null", kroStatusNullPointer, [&] { return kroiEncodeHuffmanStateGetBufSize_JPEG_8u(nullptr); }},
      {"spec null", kroStatusNullPointer, [&] { return kroiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, nullptr); }},
      {"bits null", kroStatusNullPointer, [&] { return kroiDecodeHuffmanSpecInit_JPEG_8u(nullptr, vals, d); }},
      {"free null", kroStatusNullPointer, [&] { return kroiDecodeHuffmanStateFree_JPEG_8u(nullptr); }},
      // Encoder: pDst, then length, then position/state, then (not flushing) the rest.
      {"enc dst+len", kroStatusNullPointer,
       [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, nullptr, 0, &pos, &last, e, e, es.get(), 0); }},
      {"enc len+pos", kroStatusBadSize,
       [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, buf, 0, nullptr, &last, e, e, es.get(), 0); }},
      {"enc state", kroStatusNullPointer,
       [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, buf, 64, &pos, &last, e, e, nullptr, 1); }},
      {"enc flush ignores src", kroStatusOk,
       [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, buf, 64, &pos, nullptr, nullptr, nullptr, es.get(), 1); }},
      {"enc src", kroStatusNullPointer,
       [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, buf, 64, &pos, &last, e, e, es.get(), 0); }},
      {"enc ac table", kroStatusNullPointer,
       [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, buf, 64, &pos, &last, e, nullptr, es.get(), 0); }},
      {"direct enc", kroStatusNullPointer,
       [&] { return kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, buf, &pos, &last, e, nullptr); }},
      // Decoder: pSrc, then length (0 allowed), then the other pointers.
      {"dec src+len", kroStatusNullPointer,
       [&] { return kroiDecodeHuffman8x8_JPEG_1u16s_C1(nullptr, -1, &pos, blk, &last, &marker, d, d, ds.get()); }},
      {"dec len+pos", kroStatusBadArgument,
       [&] { return kroiDecodeHuffman8x8_JPEG_1u16s_C1(buf, -1, nullptr, blk, &last, &marker, d, d, ds.get()); }},
      {"dec state", kroStatusNullPointer,
       [&] { return kroiDecodeHuffman8x8_JPEG_1u16s_C1(buf, 0, &pos, blk, &last, &marker, d, d, nullptr); }},
      {"direct bitpos", kroStatusBadArgument,
       [&] { return kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, &neg, nullptr, &last, &marker, &acc, &nbits, d, d); }},
      {"direct dst+nbits", kroStatusNullPointer,
       [&] { return kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, &pos, nullptr, &last, &marker, &acc, &neg, d, d); }},
      {"direct nbits+table", kroStatusBadArgument,
       [&] { return kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, &pos, blk, &last, &marker, &acc, &neg, nullptr, d); }},
      {"stats", kroStatusNullPointer, [&] { return kroiGetHuffmanStatistics8x8_JPEG_16s_C1(blk, stats, stats, nullptr); }},
      {"raw table", kroStatusNullPointer, [&] { return kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, buf, nullptr); }},
      {"get size", kroStatusOk, [&] { return kroiDecodeHuffmanStateGetBufSize_JPEG_8u(&size); }},
  };
  for (const Case& c : cases) {
    pos = 0;
    EXPECT_EQ(c.want, c.call()) << c.what;
  }
  int sizes[4];
  kroiEncodeHuffmanSpecGetBufSize_JPEG_8u(&sizes[0]);
  kroiDecodeHuffmanSpecGetBufSize_JPEG_8u(&sizes[1]);
  kroiEncodeHuffmanStateGetBufSize_JPEG_8u(&sizes[2]);
  kroiDecodeHuffmanStateGetBufSize_JPEG_8u(&sizes[3]);
  EXPECT_EQ(1024, sizes[0]);
  EXPECT_EQ(1644, sizes[1]);
  EXPECT_EQ(1048, sizes[2]);
  EXPECT_EQ(24, sizes[3]);
}

TEST(HuffmanTables, BuildAndReject) {
  // K.3: codes 00, 010, 011, 100, 101, 110, 1110, 11110, ...
  EncTable dc(kLumDcBits, kLumDcVals);
  ASSERT_EQ(kroStatusOk, dc.status);
  const uint32_t* e = dc.get()->entry;
  const uint32_t want[12] = {0x20000, 0x30002, 0x30003, 0x30004, 0x30005, 0x30006,
                             0x4000E, 0x5001E, 0x6003E, 0x7007E, 0x800FE, 0x901FE};
  for (int s = 0; s < 12; ++s) EXPECT_EQ(want[s], e[s]) << s;
  EXPECT_EQ(0u, e[12]);

  DecTable ddc(kLumDcBits, kLumDcVals);
  const KroiDecodeHuffmanSpec* d = ddc.get();
  EXPECT_EQ(0xFFFF, d->maxCode[1]);
  EXPECT_EQ(0, d->minCode[2]);
  EXPECT_EQ(0, d->maxCode[2]);
  EXPECT_EQ(2, d->minCode[3]);
  EXPECT_EQ(6, d->maxCode[3]);
  EXPECT_EQ(1, d->valPtr[3]);
  EXPECT_EQ(0x1FE, d->maxCode[9]);
  EXPECT_EQ(0xFFFF, d->maxCode[10]);
  EXPECT_EQ(0xFFFF, d->maxCode[17]);
  // Every code of up to 8 bits, followed by any bits, looks up its own symbol.
  const auto canon = Canonical(kLumDcBits, kLumDcVals);
  for (int idx = 0; idx < 256; ++idx) {
    uint32_t got = d->fastLookup[idx];
    int match = -1;
    for (int s = 0; s < 12; ++s)
      if (canon[s].len <= 8 && (idx >> (8 - canon[s].len)) == static_cast<int>(canon[s].code)) match = s;
    EXPECT_EQ(match < 0 ? 0u : (match | (uint32_t(canon[match].len) << 16)), got) << idx;
  }

  std::vector<uint8_t> bits(16, 0), vals(256);
  for (int i = 0; i < 256; ++i) vals[i] = static_cast<uint8_t>(255 - i);
  // No codes: accepted by both, empty tables.
  EncTable e0(bits, vals);
  DecTable d0(bits, vals);
  EXPECT_EQ(kroStatusOk, e0.status);
  EXPECT_EQ(kroStatusOk, d0.status);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(0u, e0.get()->entry[i] | d0.get()->fastLookup[i]);
  for (int L = 1; L <= 17; ++L) EXPECT_EQ(0xFFFF, d0.get()->maxCode[L]);
  // 256 codes fit (lengths 9..16, not over-full); 257 do not.
  bits = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 249};
  EXPECT_EQ(kroStatusOk, EncTable(bits, vals).status);
  bits[15] = 250;
  EXPECT_EQ(kroStatusJPEGHuffTableError, EncTable(bits, vals).status);
  EXPECT_EQ(kroStatusJPEGHuffTableError, DecTable(bits, vals).status);
  // Two codes of length 1 make code 1 all ones; three over-fill it. The decoder takes both.
  for (uint8_t n : {2, 3}) {
    bits.assign(16, 0);
    bits[0] = n;
    EXPECT_EQ(kroStatusJPEGHuffTableError, EncTable(bits, vals).status) << int(n);
    DecTable over(bits, vals);
    EXPECT_EQ(kroStatusOk, over.status);
    for (int i = 0; i < 256; ++i)
      EXPECT_EQ(uint32_t(vals[i >> 7]) | 0x10000, over.get()->fastLookup[i]) << i;
  }
  // A symbol listed twice keeps its last code.
  bits.assign(16, 0);
  bits[1] = 3;
  vals = {7, 9, 7};
  EncTable dup(bits, vals);
  EXPECT_EQ(0x20002u, dup.get()->entry[7]);
  EXPECT_EQ(0x20001u, dup.get()->entry[9]);

  KroiEncodeHuffmanSpec* pe = nullptr;
  bits[0] = 3;
  EXPECT_EQ(kroStatusJPEGHuffTableError, kroiEncodeHuffmanSpecInitAlloc_JPEG_8u(bits.data(), vals.data(), &pe));
  ASSERT_NE(nullptr, pe);  // handed back all the same
  EXPECT_EQ(kroStatusOk, kroiEncodeHuffmanSpecFree_JPEG_8u(pe));
  KroiDecodeHuffmanState* ps = nullptr;
  ASSERT_EQ(kroStatusOk, kroiDecodeHuffmanStateInitAlloc_JPEG_8u(&ps));
  EXPECT_EQ(0, ps->bitCount | ps->eobRun | ps->endPosition);
  EXPECT_EQ(kroStatusOk, kroiDecodeHuffmanStateFree_JPEG_8u(ps));
}

class HuffmanCoding : public ::testing::Test {
 protected:
  EncTable edc{kLumDcBits, kLumDcVals}, eac{kLumAcBits, kLumAcVals};
  DecTable ddc{kLumDcBits, kLumDcVals}, dac{kLumAcBits, kLumAcVals};
  std::array<Code, 256> cdc = Canonical(kLumDcBits, kLumDcVals), cac = Canonical(kLumAcBits, kLumAcVals);
};

TEST_F(HuffmanCoding, HandVectorsAndFlush) {
  EncStateBuf st;
  Kro8u out[16];
  int pos = 0;
  Kro16s blk[64] = {}, last = 0;
  // DC category 0 (00) and EOB (1010), padded: 0010 1011.
  ASSERT_EQ(0, kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, out, 16, &pos, &last, edc.get(), eac.get(), st.get(), 0));
  EXPECT_EQ(0, pos);
  EXPECT_EQ(6, st.get()->bitCount);
  ASSERT_EQ(0, kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out, 16, &pos, nullptr, nullptr, nullptr, st.get(), 1));
  ASSERT_EQ(1, pos);
  EXPECT_EQ(0x2B, out[0]);
  EXPECT_EQ(0, st.get()->bitCount);
  // Flush with nothing pending writes nothing.
  ASSERT_EQ(0, kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out, 16, &pos, nullptr, nullptr, nullptr, st.get(), 1));
  EXPECT_EQ(1, pos);
  // DC +1 -> 010 1, -1 -> 010 0; pending 101 flushes as 0xBF.
  pos = 0;
  blk[0] = 1;
  kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, out, 16, &pos, &last, edc.get(), eac.get(), st.get(), 0);
  EXPECT_EQ(1, last);
  blk[0] = 0;  // difference -1
  kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, out, 16, &pos, &last, edc.get(), eac.get(), st.get(), 0);
  // 0101 1010 | 0100 1010 -> two bytes, nothing pending.
  EXPECT_EQ(2, pos);
  EXPECT_EQ(0x5A, out[0]);
  EXPECT_EQ(0x4A, out[1]);
  EXPECT_EQ(0, st.get()->bitCount);
  // Only zig-zag 63 set: three ZRL, symbol 0xE1, no EOB.
  blk[63] = -1;
  std::vector<Code> w = RefBlockWrites(blk, last, cdc, cac);
  ASSERT_EQ(6u, w.size());
  EXPECT_EQ(cac[0xF0].code, w[1].code);
  EXPECT_EQ(cac[0xE1].code, w[4].code);
  Bits ref;
  for (const Code& c : w) ref.Put(c.code, c.len);
  pos = 0;
  kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, out, 16, &pos, &last, edc.get(), eac.get(), st.get(), 0);
  kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, out, 16, &pos, nullptr, nullptr, nullptr, st.get(), 1);
  EXPECT_EQ(ref.Stuffed(), std::vector<uint8_t>(out, out + pos));
  // K.5 has no symbol of size 11: -64, the DC part already written.
  Kro16s big[64] = {};
  big[1] = 1024;
  last = 0;
  pos = 0;
  EXPECT_EQ(kroStatusJPEGHuffTableError,
            kroiEncodeHuffman8x8_JPEG_16s1u_C1(big, out, 16, &pos, &last, edc.get(), eac.get(), st.get(), 0));
  EXPECT_EQ(2, st.get()->bitCount);  // DC category 0 only
}

// Every capacity: the bytes are a prefix of the full stream, -62 comes exactly when
// the reference writer runs out, and the state is that of before the failing write.
TEST_F(HuffmanCoding, BufferFullAtEveryByte) {
  Rng rng(3);
  const int n = 24;
  std::vector<Kro16s> blocks = RandomBlocks(rng, n, 2000, 1000);
  for (int i = 0; i < n; ++i) blocks[64 * i + 1] = static_cast<Kro16s>(i % 2 ? 255 : -256);  // 0xFF-rich
  OptimalTables opt(blocks);
  EncTable dc(opt.dc_bits, opt.dc_vals), ac(opt.ac_bits, opt.ac_vals);
  const auto cdc2 = Canonical(opt.dc_bits, opt.dc_vals), cac2 = Canonical(opt.ac_bits, opt.ac_vals);
  std::vector<std::vector<Code>> writes;
  int last_ref = 0;
  for (int i = 0; i < n; ++i) {
    writes.push_back(RefBlockWrites(&blocks[64 * i], last_ref, cdc2, cac2));
    last_ref = blocks[64 * i];
  }
  bool saw_ff_split = false;
  for (int cap = 1;; ++cap) {
    // Reference: the writer of T.81 with a 32-bit window, symbol by symbol.
    std::vector<uint8_t> rbuf(cap);
    int rpos = 0, rn = 0, rfail_block = -1;
    uint32_t racc = 0;
    for (int b = 0; b < n && rfail_block < 0; ++b) {
      for (const Code& c : writes[b]) {
        int n = rn + c.len;
        uint32_t acc = racc | (c.code << (24 - n));
        bool full = false;
        for (; n >= 8; n -= 8, acc <<= 8) {
          const uint8_t byte = acc >> 16;
          if (rpos >= cap) { full = true; break; }
          rbuf[rpos++] = byte;
          if (byte == 0xFF) {
            if (rpos >= cap) { full = true; saw_ff_split = true; break; }
            rbuf[rpos++] = 0;
          }
        }
        if (full) { rfail_block = b; break; }
        racc = acc;
        rn = n;
      }
    }
    std::vector<Kro8u> buf(cap + 8, 0xEE);
    EncStateBuf st;
    int pos = 0, fail_block = -1;
    Kro16s last = 0;
    for (int b = 0; b < n; ++b) {
      const KroStatus s = kroiEncodeHuffman8x8_JPEG_16s1u_C1(&blocks[64 * b], buf.data(), cap, &pos, &last,
                                                            dc.get(), ac.get(), st.get(), 0);
      if (s != kroStatusOk) {
        ASSERT_EQ(kroStatusJPEGOutOfBuffer, s);
        fail_block = b;
        break;
      }
    }
    ASSERT_EQ(rfail_block, fail_block) << cap;
    ASSERT_EQ(rpos, pos) << cap;
    ASSERT_TRUE(std::equal(rbuf.begin(), rbuf.begin() + rpos, buf.begin())) << cap;
    EXPECT_EQ(rn, st.get()->bitCount) << cap;
    EXPECT_EQ(racc, static_cast<uint32_t>(st.get()->accumulator)) << cap;
    for (int i = cap; i < cap + 8; ++i) ASSERT_EQ(0xEE, buf[i]) << cap;
    if (fail_block < 0) {
      EXPECT_GT(cap, 600);  // the last blocks went through the unchecked fast path
      break;
    }
  }
  EXPECT_TRUE(saw_ff_split);
}

// Thousands of blocks through the buffered and Direct encoders (identical bytes), and
// back through both decoders, with flushes and restarts between segments.
TEST_F(HuffmanCoding, RandomRoundTrips) {
  Rng rng(11);
  for (int round = 0; round < 6; ++round) {
    const bool small = round % 2 == 0;
    std::vector<Kro16s> blocks = RandomBlocks(rng, 600, small ? 100 : 32767, small ? 500 : 16383);
    if (small)
      for (auto& v : blocks) v = static_cast<Kro16s>(std::clamp<int>(v, -1023, 1023));
    OptimalTables opt(blocks);
    EncTable edc2(opt.dc_bits, opt.dc_vals), eac2(opt.ac_bits, opt.ac_vals);
    DecTable ddc2(opt.dc_bits, opt.dc_vals), dac2(opt.ac_bits, opt.ac_vals);
    auto* e1 = small ? edc.get() : edc2.get();
    auto* e2 = small ? eac.get() : eac2.get();
    auto* d1 = small ? ddc.get() : ddc2.get();
    auto* d2 = small ? dac.get() : dac2.get();
    const int n = 600, seg = 1 + round * 37;  // blocks per restart interval
    std::vector<Kro8u> stream(n * 520), direct(n * 520, 0xCC);
    EncStateBuf st;
    int pos = 0, bitpos = 0;
    Kro16s last = 0, dlast = 0;
    for (int b = 0; b < n; ++b) {
      ASSERT_EQ(0, kroiEncodeHuffman8x8_JPEG_16s1u_C1(&blocks[64 * b], stream.data(), int(stream.size()), &pos,
                                                      &last, e1, e2, st.get(), 0));
      ASSERT_EQ(0, kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(&blocks[64 * b], direct.data(), &bitpos, &dlast, e1, e2));
      if ((b + 1) % seg == 0 || b == n - 1) {
        kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, stream.data(), int(stream.size()), &pos, nullptr, nullptr,
                                           nullptr, st.get(), 1);
        if (bitpos & 7) {  // the Direct caller pads by itself
          Kro8u& byte = direct[bitpos >> 3];
          byte |= 0xFF >> (bitpos & 7);
          bitpos = (bitpos | 7) + 1;
          if (byte == 0xFF) {
            direct[bitpos >> 3] = 0;
            bitpos += 8;
          }
        }
        const int rst = 0xD0 + (b / seg) % 8;
        stream[pos++] = 0xFF;
        stream[pos++] = static_cast<Kro8u>(rst);
        direct[bitpos >> 3] = 0xFF;
        direct[(bitpos >> 3) + 1] = static_cast<Kro8u>(rst);
        bitpos += 16;
        last = dlast = 0;
      }
    }
    ASSERT_EQ(pos * 8, bitpos);
    ASSERT_TRUE(std::equal(stream.begin(), stream.begin() + pos, direct.begin()));
    stream.resize(pos);  // exact size: reading past it would be caught

    // Buffered decoder and Direct decoder, side by side.
    DecStateBuf ds;
    int rpos = 0, marker = 0, dmarker = 0, dbits = 0, nvalid = 0;
    Kro32u acc = 0;
    Kro16s out[64], dout[64];
    last = dlast = 0;
    for (int b = 0; b < n; ++b) {
      ASSERT_EQ(0, kroiDecodeHuffman8x8_JPEG_1u16s_C1(stream.data(), pos, &rpos, out, &last, &marker, d1, d2,
                                                      ds.get()))
          << b;
      ASSERT_EQ(0, kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(stream.data(), &dbits, dout, &dlast, &dmarker, &acc,
                                                             &nvalid, d1, d2))
          << b;
      ASSERT_EQ(0, memcmp(out, &blocks[64 * b], 128)) << b;
      ASSERT_EQ(0, memcmp(dout, &blocks[64 * b], 128)) << b;
      if ((b + 1) % seg == 0 || b == n - 1) {
        // Restart: skip to just past the marker if the readers have not met it yet.
        auto past_marker = [&](int p) {
          while (!(stream[p] == 0xFF && stream[p + 1] != 0)) ++p;
          return p + 2;
        };
        if (marker == 0) rpos = past_marker(rpos);
        if (dmarker == 0) dbits = past_marker(dbits >> 3) * 8;
        if (marker != 0) EXPECT_EQ(0xD0 + (b / seg) % 8, marker);
        marker = dmarker = nvalid = 0;
        kroiDecodeHuffmanStateInit_JPEG_8u(ds.get());
        last = dlast = 0;
      }
    }
    EXPECT_EQ(pos, rpos);
    EXPECT_EQ(pos * 8, dbits);
  }
}

// Hand-made streams for the reader: stuffing, fill bytes, markers, runs past the end.
TEST_F(HuffmanCoding, DecoderEdges) {
  DecStateBuf st;
  Kro16s out[64];
  Kro16s last = 0;
  int pos = 0, marker = 0;
  auto decode = [&](std::vector<Kro8u> src, int* p) {
    return kroiDecodeHuffman8x8_JPEG_1u16s_C1(src.data(), int(src.size()), p, out, &last, &marker, ddc.get(),
                                              dac.get(), st.get());
  };
  // DC category 9 (1111110) + 511 (111111111), EOB (1010), padding: FD FF AF, the
  // 0xFF stuffed, once with a fill byte before it.
  for (auto src : {std::vector<Kro8u>{0xFD, 0xFF, 0x00, 0xAF}, std::vector<Kro8u>{0xFD, 0xFF, 0xFF, 0x00, 0xAF}}) {
    kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
    pos = 0;
    last = 0;
    ASSERT_EQ(0, decode(src, &pos));
    EXPECT_EQ(511, out[0]);
    EXPECT_EQ(int(src.size()), pos);
    EXPECT_EQ(1, st.get()->endPosition);
  }
  // Ending in a marker: the marker is recorded, the block decodes from bits held.
  kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
  pos = 0;
  last = 0;
  ASSERT_EQ(0, decode({0x2B, 0xFF, 0xD3}, &pos));  // 00 1010 11
  EXPECT_EQ(0xD3, marker);
  EXPECT_EQ(3, pos);
  // The next block needs bits that are not there.
  EXPECT_EQ(kroStatusJPEGDataError, decode({0x2B, 0xFF, 0xD3}, &pos));
  EXPECT_EQ(0, st.get()->endPosition);
  marker = 0;
  // A lone 0xFF at the end: -62, position after it.
  kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
  pos = 0;
  EXPECT_EQ(kroStatusJPEGOutOfBuffer, decode({0xFF}, &pos));
  EXPECT_EQ(1, pos);
  // Empty source: -62.
  kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
  pos = 0;
  Kro8u none = 0;
  EXPECT_EQ(kroStatusJPEGOutOfBuffer, kroiDecodeHuffman8x8_JPEG_1u16s_C1(&none, 0, &pos, out, &last, &marker,
                                                                         ddc.get(), dac.get(), st.get()));
  // The Direct decoder at the end of its data. 00 1010 00: a block (DC 0, EOB), then
  // a DC of 0 with no bits left for the AC part, then no bits at all: a zero block,
  // predictor kept, nothing held.
  int bitpos = 0, nvalid = 0;
  Kro32u acc = 0;
  auto direct = [&](const std::vector<Kro8u>& src) {
    return kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(src.data(), &bitpos, out, &last, &marker, &acc, &nvalid,
                                                     ddc.get(), dac.get());
  };
  const std::vector<Kro8u> tail = {0x28, 0xFF, 0xD9};
  marker = 0;
  last = 5;
  ASSERT_EQ(0, direct(tail));
  EXPECT_EQ(0xD9, marker);
  EXPECT_EQ(24, bitpos);
  EXPECT_EQ(2, nvalid);
  ASSERT_EQ(0, direct(tail));
  EXPECT_EQ(5, out[0]);
  EXPECT_EQ(0, nvalid);
  ASSERT_EQ(0, direct(tail));
  EXPECT_EQ(0, out[0]);
  EXPECT_EQ(5, last);
  EXPECT_EQ(24, bitpos);
  // The last bits are padded with zeros for the lookup: 11 reads as 110 (category 5)
  // whose extra bits are missing: -62.
  bitpos = nvalid = marker = 0;
  ASSERT_EQ(0, direct({0x2B, 0xFF, 0xD9}));
  EXPECT_EQ(kroStatusJPEGOutOfBuffer, direct({0x2B, 0xFF, 0xD9}));
  marker = 0;

  // Runs past position 63, with a table holding ZRL, 0x71 and 0xF1 (codes 00, 01, 10)
  // and the K.3 DC table.
  std::vector<uint8_t> bits(16, 0), vals = {0xF0, 0x71, 0xF1};
  bits[1] = 3;
  DecTable runs(bits, vals);
  auto decode_runs = [&](Bits b) {
    kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
    pos = 0;
    std::vector<Kro8u> src = b.Stuffed();
    return kroiDecodeHuffman8x8_JPEG_1u16s_C1(src.data(), int(src.size()), &pos, out, &last, &marker, ddc.get(),
                                              runs.get(), st.get());
  };
  Bits four_zrl;
  four_zrl.Put(0, 2);  // DC category 0
  for (int i = 0; i < 4; ++i) four_zrl.Put(0, 2);
  EXPECT_EQ(0, decode_runs(four_zrl));
  EXPECT_EQ(65, st.get()->endPosition);
  Bits to64 = four_zrl;
  to64.s.resize(2 + 6);  // three ZRL: position 49
  to64.Put(2, 2);        // 0xF1: run 15 -> position 64, lands on coefficient 63
  to64.Put(1, 1);
  EXPECT_EQ(0, decode_runs(to64));
  EXPECT_EQ(1, out[63]);
  EXPECT_EQ(65, st.get()->endPosition);
  Bits to72 = four_zrl;
  to72.s.resize(8);
  to72.Put(1, 2);  // 0x71 at position 56, then 0xF1 from 57 -> 72
  to72.Put(0, 1);
  to72.Put(2, 2);
  to72.Put(1, 1);
  EXPECT_EQ(kroStatusError, decode_runs(to72));
  EXPECT_EQ(-1, out[kZz[56]]);

  // DC symbol 16 counts as category 0: the predictor stays.
  bits.assign(16, 0);
  bits[0] = 1;
  vals = {16};
  DecTable dc16(bits, vals);
  std::vector<Kro8u> src = {0x57};  // 0 (symbol 16), 1010 (EOB), padding
  kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
  pos = 0;
  last = 77;
  ASSERT_EQ(0, kroiDecodeHuffman8x8_JPEG_1u16s_C1(src.data(), 1, &pos, out, &last, &marker, dc16.get(), dac.get(),
                                                  st.get()));
  EXPECT_EQ(77, out[0]);
  EXPECT_EQ(77, last);
}

// The Direct encoder at every bit phase keeps the bits before it, stuffs a byte it
// completes to 0xFF (the first one included) and clears the rest of its last byte.
TEST_F(HuffmanCoding, DirectAtEveryBitPhase) {
  Rng rng(5);
  std::vector<Kro16s> blocks = RandomBlocks(rng, 6, 300, 600);
  for (int prefix : {0xFF, 0xA5, 0x00}) {
    for (int phase = 0; phase < 8; ++phase) {
      std::vector<Kro8u> out(4096, 0x77);
      out[0] = static_cast<Kro8u>(prefix);
      int bitpos = phase;
      Kro16s last = 0;
      Bits ref;
      ref.Put(prefix >> (8 - phase), phase);
      int ref_last = 0;
      for (int b = 0; b < 6; ++b) {
        ASSERT_EQ(0, kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(&blocks[64 * b], out.data(), &bitpos, &last,
                                                               edc.get(), eac.get()));
        for (const Code& c : RefBlockWrites(&blocks[64 * b], ref_last, cdc, cac)) ref.Put(c.code, c.len);
        ref_last = blocks[64 * b];
      }
      Bits whole;
      whole.s = ref.s.substr(0, ref.s.size() / 8 * 8);
      std::vector<uint8_t> want = whole.Stuffed();
      const int rem = static_cast<int>(ref.s.size() % 8);
      want.push_back(rem ? static_cast<uint8_t>(std::stoi(ref.s.substr(ref.s.size() - rem), nullptr, 2) << (8 - rem))
                         : 0);
      ASSERT_EQ(static_cast<int>(want.size() - 1) * 8 + rem, bitpos) << prefix << " " << phase;
      EXPECT_TRUE(std::equal(want.begin(), want.end(), out.begin())) << prefix << " " << phase;
      EXPECT_EQ(0x77, out[want.size()]);
    }
  }
}

// Hand-checked optimal tables and statistics.
TEST(HuffmanStatistics, OptimalTables) {
  int stats[256] = {};
  std::vector<Kro8u> bits(16, 0xEE), vals(256, 0xEE);
  // A zero block with a zero predictor: DC category 0 and EOB.
  Kro16s blk[64] = {}, last = 0;
  int dc[256] = {}, ac[256] = {};
  ASSERT_EQ(0, kroiGetHuffmanStatistics8x8_JPEG_16s_C1(blk, dc, ac, &last));
  EXPECT_EQ(1, dc[0]);
  EXPECT_EQ(1, ac[0]);
  // ZRLs and the run left over: a value at zig-zag 40 after 39 zeros: 2 ZRL, then 0x71.
  blk[kZz[40]] = -3;
  blk[0] = -700;
  ASSERT_EQ(0, kroiGetHuffmanStatistics8x8_JPEG_16s_C1(blk, dc, ac, &last));
  EXPECT_EQ(1, dc[10]);
  EXPECT_EQ(2, ac[0xF0]);
  EXPECT_EQ(1, ac[0x72]);
  EXPECT_EQ(2, ac[0x00]);
  EXPECT_EQ(-700, last);
  // -32768 after a run of 15: index 256, counted nowhere; the counters after the array
  // stay as they are.
  std::vector<int> guard(300, 0);
  Kro16s edge[64] = {};
  edge[kZz[16]] = -32768;
  last = 0;
  ASSERT_EQ(0, kroiGetHuffmanStatistics8x8_JPEG_16s_C1(edge, guard.data(), guard.data(), &last));
  for (int i = 256; i < 300; ++i) ASSERT_EQ(0, guard[i]);

  // One symbol: one 1-bit code.
  stats[0x35] = 9;
  ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  EXPECT_EQ(1, bits[0]);
  for (int i = 1; i < 16; ++i) EXPECT_EQ(0, bits[i]);
  EXPECT_EQ(0x35, vals[0]);
  // Counts 1, 1 and the reserved 1: the higher symbol is merged first with the
  // reserved one, so the lower symbol keeps the short code.
  memset(stats, 0, sizeof(stats));
  stats[3] = 1;
  stats[200] = 1;
  ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  EXPECT_EQ(1, bits[0]);
  EXPECT_EQ(1, bits[1]);
  EXPECT_EQ(3, vals[0]);
  EXPECT_EQ(200, vals[1]);
  // Fibonacci counts on descending symbols (ties then keep the tree a chain): 30
  // levels, limited to 16 bits with every code kept and a valid encoder table; 40
  // levels exceed 32 bits: -64, nothing written.
  memset(stats, 0, sizeof(stats));
  int a = 1, b = 1;
  for (int i = 0; i < 30; ++i, std::swap(a, b), b += a) stats[255 - i] = a;
  ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  int total = 0;
  double kraft = 0;
  for (int i = 0; i < 16; ++i) {
    total += bits[i];
    kraft += bits[i] / double(2 << i);
  }
  EXPECT_EQ(30, total);
  EXPECT_LT(kraft, 1.0);
  EXPECT_EQ(kroStatusOk, EncTable(bits, vals).status);
  for (int i = 30; i < 40; ++i, std::swap(a, b), b += a) stats[255 - i] = a;
  std::fill(bits.begin(), bits.end(), 0xEE);
  EXPECT_EQ(kroStatusJPEGHuffTableError, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  EXPECT_EQ(0xEE, bits[0]);
  // All zero: empty lists.
  memset(stats, 0, sizeof(stats));
  ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  for (int i = 0; i < 16; ++i) EXPECT_EQ(0, bits[i]);
}


}  // namespace

// ---- Every target against the byte-wise rules ----------------------------------
// The fast paths (vector masks, wide bit windows, whole-word refills) must leave the
// bytes, positions, counts and accumulators that the byte-wise rules of T.81 F.1.2.3
// and F.2.2.5 leave after every call. The references below are written from those
// rules, with canonical codes computed here.

// One baseline block read literally; returns the status and sets *end as endPosition.
int RefBlock(RefReader& ref, Kro16s* out, Kro16s* last, const std::array<Code, 256>& dc,
             const std::array<Code, 256>& ac, int* end) {
  std::fill(out, out + 64, 0);
  int sym, v, st = ref.Symbol(dc, &sym);
  if (st == 0 && (sym & 15) != 0 && (st = ref.Receive(sym & 15, &v)) == 0) *last = Kro16s(*last + v);
  if (st != 0) return *end = 0, st;
  out[0] = *last;
  int k = 1;
  while (k < 64) {
    if ((st = ref.Symbol(ac, &sym)) != 0) break;
    const int r = sym >> 4, s = sym & 15;
    if (s == 0 && r < 15) break;
    k += s == 0 ? 16 : r;
    if (s == 0) continue;
    if ((st = ref.Receive(s, &v)) != 0) {
      ++k;
      break;
    }
    if (k >= 72) return kroStatusError;
    out[k < 64 ? kZz[k] : 63] = Kro16s(v);
    ++k;
  }
  *end = k;
  return st;
}

class HuffmanTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(HuffmanTargets);

// Encoder: the fast path (room for a whole block) against the checked path (room
// only just short of the fast path's margin) and the counting walk, call by call.
// Buffered decoder: against RefReader after every block, on a stream with stuffing,
// fill bytes and restart markers; the tail of the source exercises the byte-wise end.
TEST_P(HuffmanTargets, FastPathsMatchByteWiseRules) {
  Rng rng(31);
  std::vector<Kro16s> blocks = RandomBlocks(rng, 400, 32767, 30000);
  for (int i = 0; i < 400; i += 7) blocks[64 * i + kZz[1 + i % 63]] = -32768;  // category 16
  for (int i = 3; i < 400; i += 11) blocks[64 * i + 2] = static_cast<Kro16s>(i % 2 ? 255 : -256);
  // Tables from the first half only: some symbols of the second half have no code.
  const OptimalTables opt(std::vector<Kro16s>(blocks.begin(), blocks.begin() + 64 * 200));
  EncTable dc(opt.dc_bits, opt.dc_vals), ac(opt.ac_bits, opt.ac_vals);
  DecTable ddc(opt.dc_bits, opt.dc_vals), dac(opt.ac_bits, opt.ac_vals);
  const auto cdc = Canonical(opt.dc_bits, opt.dc_vals), cac = Canonical(opt.ac_bits, opt.ac_vals);

  std::vector<Kro8u> fast(400 * 600, 0xAB), slow(400 * 600, 0xAB);
  EncStateBuf fs, ss;
  int fpos = 0, spos = 0, failures = 0, wlast = 0;
  Kro16s flast = 0, slast = 0, clast = 0;
  int stats[2][256] = {}, want[2][256] = {};
  for (int b = 0; b < 400; ++b) {
    const Kro16s* blk = &blocks[64 * b];
    const int tight = spos + kro::kBlockWorstCaseBytes - 1;
    const KroStatus f = kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, fast.data(), int(fast.size()), &fpos, &flast,
                                                           dc.get(), ac.get(), fs.get(), 0);
    const KroStatus s = kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, slow.data(), tight, &spos, &slast, dc.get(),
                                                           ac.get(), ss.get(), 0);
    ASSERT_EQ(s, f) << b;
    failures += f != 0;
    ASSERT_EQ(spos, fpos) << b;
    ASSERT_EQ(ss.get()->bitCount, fs.get()->bitCount) << b;
    ASSERT_EQ(ss.get()->accumulator, fs.get()->accumulator) << b;
    ASSERT_EQ(kroStatusOk, kroiGetHuffmanStatistics8x8_JPEG_16s_C1(blk, stats[0], stats[1], &clast));
    // Expected counts: the symbols of the literal walk, found by their codes.
    int r = 0;
    ++want[0][Category(blk[0] - wlast)];
    wlast = blk[0];
    for (int k = 1; k < 64; ++k) {
      const int v = blk[kZz[k]];
      if (v == 0) {
        ++r;
        continue;
      }
      for (; r > 15; r -= 16) ++want[1][0xF0];
      if (r * 16 + Category(v) < 256) ++want[1][r * 16 + Category(v)];
      r = 0;
    }
    if (r > 0) ++want[1][0];
    if (b % 50 == 49) {  // flush and restart marker
      kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, fast.data(), int(fast.size()), &fpos, nullptr, nullptr, nullptr,
                                         fs.get(), 1);
      kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, slow.data(), int(slow.size()), &spos, nullptr, nullptr, nullptr,
                                         ss.get(), 1);
      for (auto* v : {&fast, &slow}) {
        (*v)[size_t(fpos)] = 0xFF;
        (*v)[size_t(fpos) + 1] = 0xFF;  // a fill byte
        (*v)[size_t(fpos) + 2] = static_cast<Kro8u>(0xD0 + b / 50 % 8);
      }
      fpos = spos = fpos + 3;
      flast = slast = clast = 0;
      wlast = 0;
    }
  }
  EXPECT_GT(failures, 0);  // missing codes were met on both paths
  ASSERT_EQ(0, memcmp(fast.data(), slow.data(), fast.size()));
  for (int t = 0; t < 2; ++t)
    for (int i = 0; i < 256; ++i) EXPECT_EQ(want[t][i], stats[t][i]) << t << " " << i;

  // Decode what the encoder wrote, block by block, with the library and RefReader.
  // Where the data is valid and no marker is near, the Direct decoder takes the same
  // bytes at the same moments: the same position, accumulator and count.
  const std::vector<uint8_t> data(fast.begin(), fast.begin() + fpos);
  DecStateBuf st;
  RefReader ref{data};
  int pos = 0, marker = 0, checked = 0, dpos = 0, dmarker = 0, dbits = 0, direct_checked = 0;
  Kro32u dacc = 0;
  Kro16s last = 0, rlast = 0, dlast = 0, out[64], rout[64], dout[64];
  for (int b = 0; b < 400 && pos < int(data.size()); ++b) {
    int end = 0;
    const KroStatus got = kroiDecodeHuffman8x8_JPEG_1u16s_C1(data.data(), int(data.size()), &pos, out, &last,
                                                             &marker, ddc.get(), dac.get(), st.get());
    const int want_st = RefBlock(ref, rout, &rlast, cdc, cac, &end);
    ASSERT_EQ(want_st, got) << b;
    ASSERT_EQ(ref.pos, pos) << b;
    ASSERT_EQ(ref.bits, st.get()->bitCount) << b;
    ASSERT_EQ(ref.acc, static_cast<uint32_t>(st.get()->accumulator)) << b;
    ASSERT_EQ(ref.marker, marker) << b;
    ASSERT_EQ(0, memcmp(out, rout, sizeof(out))) << b;
    if (got == kroStatusOk) ASSERT_EQ(end, st.get()->endPosition) << b;
    ++checked;
    const KroStatus dgot = kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(data.data(), &dpos, dout, &dlast, &dmarker,
                                                                     &dacc, &dbits, ddc.get(), dac.get());
    if (got == kroStatusOk && marker == 0 && dmarker == 0) {
      ASSERT_EQ(kroStatusOk, dgot) << b;
      ASSERT_EQ(pos * 8, dpos) << b;
      ASSERT_EQ(ref.bits, dbits) << b;
      ASSERT_EQ(ref.acc, dacc) << b;
      ASSERT_EQ(0, memcmp(dout, rout, sizeof(out))) << b;
      ++direct_checked;
    }
    if (marker != 0 || got != kroStatusOk) {  // resynchronise after the next marker
      if (marker == 0) {
        while (ref.pos + 1 < int(data.size()) && !(data[ref.pos] == 0xFF && data[ref.pos + 1] == 0xFF)) ++ref.pos;
        ref.pos += 3;
      }
      pos = ref.pos;
      dpos = pos * 8;
      marker = ref.marker = ref.bits = dmarker = dbits = 0;
      ref.acc = dacc = 0;
      kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
      last = rlast = dlast = 0;
    }
  }
  EXPECT_GT(checked, 150);
  EXPECT_GT(direct_checked, 150);
}
