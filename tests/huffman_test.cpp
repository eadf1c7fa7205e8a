// SPDX-License-Identifier: BSD-3-Clause
// Baseline Huffman tables, encoder, decoder, statistics and optimal tables.
#include <gtest/gtest.h>
#include <string.h>

#include <functional>
#include <vector>

#include "bitio.h"  // state layouts, kBlockWorstCaseBytes
#include "huffman_test_util.h"
#include "simd_test_util.h"
#include "test_util.h"

namespace {

using namespace kro_test;

// The writes (code, then extra bits) of one block, following T.81 F.1.2 literally.
std::vector<Code> RefBlockWrites(const Kro16s* blk, int last_dc, const CodeTable& dc, const CodeTable& ac) {
  std::vector<Code> w;
  auto sym = [&](const CodeTable& t, int s, int v, int n) {
    w.push_back(s < 256 ? t[s] : Code{});
    if (n > 0) w.push_back({static_cast<uint32_t>(v < 0 ? v - 1 : v) & ((1u << n) - 1), n});
  };
  const int diff = blk[0] - last_dc;
  sym(dc, Category(diff), diff, Category(diff));
  int r = 0;
  for (int k = 1; k < 64; ++k) {
    const int v = blk[ZigZag(k)];
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

// Blocks from empty to dense, AC magnitudes up to max_ac, DC up to max_dc.
std::vector<Kro16s> RandomBlocks(Rng& rng, int n, int max_ac, int max_dc) {
  std::vector<Kro16s> b(64 * size_t(n), 0);
  for (int i = 0; i < n; ++i) {
    b[64 * size_t(i)] = static_cast<Kro16s>(rng.Int(-max_dc, max_dc));
    const int density = static_cast<int>(rng.Int(0, 4));
    for (int k = 1; k < 64; ++k)
      if (rng.Int(0, 7) < density * 2 - 1) {
        const int bits = static_cast<int>(rng.Int(1, Category(max_ac)));
        b[64 * size_t(i) + size_t(k)] = static_cast<Kro16s>(rng.Int(-((1 << bits) - 1), (1 << bits) - 1));
      }
  }
  return b;
}

// Optimal tables for a set of blocks, through the library's statistics.
struct OptimalTables {
  std::vector<uint8_t> dc_bits = std::vector<uint8_t>(16), dc_vals = std::vector<uint8_t>(256),
                       ac_bits = std::vector<uint8_t>(16), ac_vals = std::vector<uint8_t>(256);
  explicit OptimalTables(const std::vector<Kro16s>& blocks) {
    int dc[256] = {}, ac[256] = {};
    Kro16s last = 0;
    for (size_t i = 0; i < blocks.size(); i += 64) kroiGetHuffmanStatistics8x8_JPEG_16s_C1(&blocks[i], dc, ac, &last);
    EXPECT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(dc, dc_bits.data(), dc_vals.data()));
    EXPECT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(ac, ac_bits.data(), ac_vals.data()));
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
  const Kro8u *bits = kLumDcBits.data(), *vals = kLumDcVals.data();
  auto *e = etab.get();
  auto *d = dtab.get();
  const std::vector<std::pair<KroStatus, std::function<KroStatus()>>> cases = {
      {kroStatusNullPointer, [&] { return kroiEncodeHuffmanStateGetBufSize_JPEG_8u(nullptr); }},
      {kroStatusNullPointer, [&] { return kroiEncodeHuffmanSpecInit_JPEG_8u(bits, vals, nullptr); }},
      {kroStatusNullPointer, [&] { return kroiDecodeHuffmanSpecInit_JPEG_8u(nullptr, vals, d); }},
      {kroStatusNullPointer, [&] { return kroiDecodeHuffmanStateFree_JPEG_8u(nullptr); }},
      // Encoder: pDst, length, position and state, then (not flushing) the rest.
      {kroStatusNullPointer, [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, nullptr, 0, &pos, &last, e, e, es.get(), 0); }},
      {kroStatusBadSize, [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, buf, 0, nullptr, &last, e, e, es.get(), 0); }},
      {kroStatusNullPointer, [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, buf, 64, &pos, &last, e, e, nullptr, 1); }},
      {kroStatusOk, [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, buf, 64, &pos, nullptr, nullptr, nullptr, es.get(), 1); }},
      {kroStatusNullPointer, [&] { return kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, buf, 64, &pos, &last, e, nullptr, es.get(), 0); }},
      {kroStatusNullPointer, [&] { return kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(blk, buf, &pos, &last, e, nullptr); }},
      // Decoder: pSrc, length (0 allowed, negative -5), then the other pointers.
      {kroStatusNullPointer, [&] { return kroiDecodeHuffman8x8_JPEG_1u16s_C1(nullptr, -1, &pos, blk, &last, &marker, d, d, ds.get()); }},
      {kroStatusBadArgument, [&] { return kroiDecodeHuffman8x8_JPEG_1u16s_C1(buf, -1, nullptr, blk, &last, &marker, d, d, ds.get()); }},
      {kroStatusNullPointer, [&] { return kroiDecodeHuffman8x8_JPEG_1u16s_C1(buf, 0, &pos, blk, &last, &marker, d, d, nullptr); }},
      {kroStatusBadArgument, [&] { return kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, &neg, nullptr, &last, &marker, &acc, &nbits, d, d); }},
      {kroStatusNullPointer, [&] { return kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, &pos, nullptr, &last, &marker, &acc, &neg, d, d); }},
      {kroStatusBadArgument, [&] { return kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(buf, &pos, blk, &last, &marker, &acc, &neg, nullptr, d); }},
      {kroStatusNullPointer, [&] { return kroiGetHuffmanStatistics8x8_JPEG_16s_C1(blk, stats, stats, nullptr); }},
      {kroStatusNullPointer, [&] { return kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, buf, nullptr); }},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    pos = 0;
    EXPECT_EQ(cases[i].first, cases[i].second()) << i;
  }
  int sizes[4];
  kroiEncodeHuffmanSpecGetBufSize_JPEG_8u(&sizes[0]);
  kroiDecodeHuffmanSpecGetBufSize_JPEG_8u(&sizes[1]);
  kroiEncodeHuffmanStateGetBufSize_JPEG_8u(&sizes[2]);
  EXPECT_EQ(0, kroiDecodeHuffmanStateGetBufSize_JPEG_8u(&size));
  EXPECT_EQ((std::vector<int>{1024, 1644, 1048, 24}), (std::vector<int>{sizes[0], sizes[1], sizes[2], size}));
}

TEST(HuffmanTables, BuildAndReject) {
  // K.3: codes 00, 010, 011, 100, 101, 110, 1110, 11110, ...
  EncTable dc(kLumDcBits, kLumDcVals);
  const uint32_t want[13] = {0x20000, 0x30002, 0x30003, 0x30004, 0x30005, 0x30006, 0x4000E,
                             0x5001E, 0x6003E, 0x7007E, 0x800FE, 0x901FE, 0};
  for (int s = 0; s < 13; ++s) EXPECT_EQ(want[s], dc.get()->entry[s]) << s;
  DecTable ddc(kLumDcBits, kLumDcVals);
  const KroiDecodeHuffmanSpec* d = ddc.get();
  EXPECT_EQ((std::vector<int>{0xFFFF, 0, 2, 1, 0x1FE, 0xFFFF, 0xFFFF}),
            (std::vector<int>{d->maxCode[1], d->maxCode[2], d->minCode[3], d->valPtr[3], d->maxCode[9],
                              d->maxCode[10], d->maxCode[17]}));
  // Every code of up to 8 bits, followed by any bits, looks up its own symbol.
  for (const auto& [bits, vals] : {std::pair{kLumDcBits, kLumDcVals}, std::pair{kLumAcBits, kLumAcVals}}) {
    DecTable t(bits, vals);
    const CodeTable canon = Canonical(bits, vals);
    for (uint32_t idx = 0; idx < 256; ++idx) {
      uint32_t match = 0;
      for (int s = 0; s < 256; ++s)
        if (canon[s].len > 0 && canon[s].len <= 8 && idx >> (8 - canon[s].len) == canon[s].code)
          match = uint32_t(s) | uint32_t(canon[s].len) << 16;
      EXPECT_EQ(match, t.get()->fastLookup[idx]) << idx;
    }
  }
  std::vector<uint8_t> bits(16, 0), vals(256);
  for (int i = 0; i < 256; ++i) vals[i] = static_cast<uint8_t>(255 - i);
  // No codes: accepted by both, empty tables.
  EncTable e0(bits, vals);
  DecTable d0(bits, vals);
  EXPECT_EQ(0, e0.status | d0.status);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(0u, e0.get()->entry[i] | d0.get()->fastLookup[i]);
  for (int L = 1; L <= 17; ++L) EXPECT_EQ(0xFFFF, d0.get()->maxCode[L]);
  // 256 codes fit (lengths 9..16, not over-full); 257 do not.
  bits = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 249};
  EXPECT_EQ(kroStatusOk, EncTable(bits, vals).status);
  bits[15] = 250;
  EXPECT_EQ(kroStatusJPEGHuffTableError, EncTable(bits, vals).status);
  EXPECT_EQ(kroStatusJPEGHuffTableError, DecTable(bits, vals).status);
  // Two codes of length 1 make code 1 all ones, three over-fill it: the encoder refuses
  // both, the decoder takes both and looks up only the codes that fit.
  for (uint8_t n : {2, 3}) {
    bits.assign(16, 0);
    bits[0] = n;
    EXPECT_EQ(kroStatusJPEGHuffTableError, EncTable(bits, vals).status) << int(n);
    DecTable over(bits, vals);
    EXPECT_EQ(kroStatusOk, over.status);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(uint32_t(vals[i >> 7]) | 0x10000, over.get()->fastLookup[i]) << i;
  }
  // A symbol listed twice keeps its last code; a failed build hands the allocated
  // spec back all the same.
  bits.assign(16, 0);
  bits[1] = 3;
  EncTable dup(bits, {7, 9, 7});
  EXPECT_EQ((std::vector<uint32_t>{0x20002, 0x20001}), (std::vector<uint32_t>{dup.get()->entry[7], dup.get()->entry[9]}));
  KroiEncodeHuffmanSpec* pe = nullptr;
  bits[0] = 3;
  EXPECT_EQ(kroStatusJPEGHuffTableError, kroiEncodeHuffmanSpecInitAlloc_JPEG_8u(bits.data(), vals.data(), &pe));
  ASSERT_NE(nullptr, pe);
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
  CodeTable cdc = Canonical(kLumDcBits, kLumDcVals), cac = Canonical(kLumAcBits, kLumAcVals);
  // Encodes blk (nullptr: flushes) into out at *pos.
  KroStatus Enc(const Kro16s* blk, Kro8u* out, int len, int* pos, Kro16s* last, KroiEncodeHuffmanState* st) {
    return kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, out, len, pos, last, edc.get(), eac.get(), st, blk == nullptr);
  }
};

TEST_F(HuffmanCoding, EncoderHandVectors) {
  EncStateBuf st;
  Kro8u out[16];
  int pos = 0;
  Kro16s blk[64] = {}, last = 0;
  // DC category 0 (00) and EOB (1010) pending; the flush pads them: 0010 1011; a
  // flush with nothing pending writes nothing.
  ASSERT_EQ(0, Enc(blk, out, 16, &pos, &last, st.get()));
  EXPECT_EQ((std::vector<int>{0, 6}), (std::vector<int>{pos, st.get()->bitCount}));
  ASSERT_EQ(0, Enc(nullptr, out, 16, &pos, nullptr, st.get()));
  ASSERT_EQ(0, Enc(nullptr, out, 16, &pos, nullptr, st.get()));
  EXPECT_EQ((std::vector<int>{1, 0x2B}), (std::vector<int>{pos, out[0]}));
  // DC +1 -> 010 1, then -1 -> 010 0: 0101 1010 | 0100 1010, nothing pending, the
  // last byte written kept above the pending bits.
  pos = 0;
  blk[0] = 1;
  Enc(blk, out, 16, &pos, &last, st.get());
  blk[0] = 0;
  Enc(blk, out, 16, &pos, &last, st.get());
  EXPECT_EQ((std::vector<int>{2, 0x5A, 0x4A, 0x4A000000}), (std::vector<int>{pos, out[0], out[1], int(st.get()->accumulator)}));
  // Only zig-zag 63 set: three ZRL, symbol 0xE1 with bit 0, no EOB.
  blk[63] = -1;
  Bits ref;
  ref.Put(0, 2);
  for (int i = 0; i < 3; ++i) ref.Put(cac[0xF0].code, cac[0xF0].len);
  ref.Put(cac[0xE1].code << 1, cac[0xE1].len + 1);
  pos = 0;
  Enc(blk, out, 16, &pos, &last, st.get());
  Enc(nullptr, out, 16, &pos, nullptr, st.get());
  EXPECT_EQ(ref.Stuffed(), std::vector<uint8_t>(out, out + pos));
  // K.5 has no symbol of size 11: -64, the DC code already pending.
  Kro16s big[64] = {};
  big[1] = 1024;
  last = 0;
  EXPECT_EQ(kroStatusJPEGHuffTableError, Enc(big, out, 16, &pos, &last, st.get()));
  EXPECT_EQ(2, st.get()->bitCount);
  // Statistics: ZRLs and the run left over (a value at zig-zag 40: 2 ZRL, then 0x72),
  // EOB, and -32768 after a run of 15 (index 256) counted nowhere.
  std::vector<int> dcs(300, 0), acs(300, 0);
  Kro16s s[64] = {};
  s[ZigZag(40)] = -3;
  s[0] = -700;
  last = 0;
  ASSERT_EQ(0, kroiGetHuffmanStatistics8x8_JPEG_16s_C1(s, dcs.data(), acs.data(), &last));
  s[ZigZag(40)] = 0;
  s[ZigZag(16)] = -32768;
  ASSERT_EQ(0, kroiGetHuffmanStatistics8x8_JPEG_16s_C1(s, dcs.data(), acs.data(), &last));
  EXPECT_EQ(1, dcs[10]);
  EXPECT_EQ(1, dcs[0]);
  EXPECT_EQ(2, acs[0xF0]);
  EXPECT_EQ(1, acs[0x72]);
  EXPECT_EQ(2, acs[0x00]);
  for (int i = 256; i < 300; ++i) ASSERT_EQ(0, acs[i]);
}

// Every capacity: the bytes are a prefix of the full stream, -62 comes exactly when
// the literal writer runs out (also between a 0xFF and its 0x00), and the state is
// that of before the failing write.
TEST_F(HuffmanCoding, BufferFullAtEveryByte) {
  Rng rng(3);
  const int n = 24;
  std::vector<Kro16s> blocks = RandomBlocks(rng, n, 2000, 1000);
  for (int i = 0; i < n; ++i) blocks[64 * i + 1] = static_cast<Kro16s>(i % 2 ? 255 : -256);  // 0xFF-rich
  const OptimalTables opt(blocks);
  EncTable dc(opt.dc_bits, opt.dc_vals), ac(opt.ac_bits, opt.ac_vals);
  const CodeTable cdc2 = Canonical(opt.dc_bits, opt.dc_vals), cac2 = Canonical(opt.ac_bits, opt.ac_vals);
  bool saw_ff_split = false;
  for (int cap = 1;; ++cap) {
    std::vector<uint8_t> rbuf(cap);
    int rpos = 0, rn = 0, rfail = -1;
    uint32_t racc = 0;
    for (int b = 0; b < n && rfail < 0; ++b) {
      for (const Code& c : RefBlockWrites(&blocks[64 * b], b ? blocks[64 * (b - 1)] : 0, cdc2, cac2)) {
        int m = rn + c.len;
        uint32_t acc = racc | (c.code << (24 - m));
        for (; m >= 8 && rfail < 0; m -= 8, acc <<= 8) {
          const uint8_t byte = acc >> 16;
          if (rpos >= cap) rfail = b;
          if (rfail < 0) rbuf[rpos++] = byte;
          if (rfail < 0 && byte == 0xFF && rpos >= cap) rfail = b, saw_ff_split = true;
          if (rfail < 0 && byte == 0xFF) rbuf[rpos++] = 0;
        }
        if (rfail >= 0) break;
        racc = acc;
        rn = m;
      }
    }
    std::vector<Kro8u> buf(cap + 8, 0xEE);
    EncStateBuf st;
    int pos = 0, fail = -1;
    Kro16s last = 0;
    for (int b = 0; b < n && fail < 0; ++b) {
      const KroStatus s = kroiEncodeHuffman8x8_JPEG_16s1u_C1(&blocks[64 * b], buf.data(), cap, &pos, &last,
                                                            dc.get(), ac.get(), st.get(), 0);
      if (s != kroStatusOk) ASSERT_EQ(kroStatusJPEGOutOfBuffer, s);
      if (s != kroStatusOk) fail = b;
    }
    ASSERT_EQ(rfail, fail) << cap;
    ASSERT_EQ(rpos, pos) << cap;
    ASSERT_TRUE(std::equal(rbuf.begin(), rbuf.begin() + rpos, buf.begin())) << cap;
    EXPECT_EQ(rn, st.get()->bitCount) << cap;
    EXPECT_EQ(racc, static_cast<uint32_t>(st.get()->accumulator)) << cap;
    for (int i = cap; i < cap + 8; ++i) ASSERT_EQ(0xEE, buf[i]) << cap;
    if (fail < 0) break;
  }
  EXPECT_TRUE(saw_ff_split);
}

// Hand-made streams for the reader: stuffing, fill bytes, markers, runs past the end.
TEST_F(HuffmanCoding, DecoderEdges) {
  DecStateBuf st;
  Kro16s out[64], last = 0;
  int pos = 0, marker = 0;
  auto decode = [&](std::vector<Kro8u> src, const KroiDecodeHuffmanSpec* dc, const KroiDecodeHuffmanSpec* ac,
                    bool fresh = true) {
    if (fresh) {
      kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
      pos = marker = 0;
    }
    const int len = int(src.size());
    src.push_back(0x99);  // a valid pointer even for an empty source
    return kroiDecodeHuffman8x8_JPEG_1u16s_C1(src.data(), len, &pos, out, &last, &marker, dc, ac, st.get());
  };
  // DC category 9 (1111110) + 511 (111111111), EOB (1010), padding: FD FF AF, the
  // 0xFF stuffed, once with a fill byte before it.
  for (const std::vector<Kro8u>& src : {std::vector<Kro8u>{0xFD, 0xFF, 0x00, 0xAF}, {0xFD, 0xFF, 0xFF, 0x00, 0xAF}}) {
    last = 0;
    ASSERT_EQ(0, decode(src, ddc.get(), dac.get()));
    EXPECT_EQ(511, out[0]);
    EXPECT_EQ(int(src.size()), pos);
    EXPECT_EQ(1, st.get()->endPosition);
  }
  // A marker: recorded, the position past it, the block decoded from the bits held;
  // the next block needs bits that are not there (-63, endPosition 0).
  ASSERT_EQ(0, decode({0x2B, 0xFF, 0xD3}, ddc.get(), dac.get()));  // 00 1010 11
  EXPECT_EQ(0xD3, marker);
  EXPECT_EQ(3, pos);
  EXPECT_EQ(kroStatusJPEGDataError, decode({0x2B, 0xFF, 0xD3}, ddc.get(), dac.get(), false));
  EXPECT_EQ(0, st.get()->endPosition);
  // A lone 0xFF at the end: -62, position after it; an empty source: -62.
  EXPECT_EQ(kroStatusJPEGOutOfBuffer, decode({0xFF}, ddc.get(), dac.get()));
  EXPECT_EQ(1, pos);
  EXPECT_EQ(kroStatusJPEGOutOfBuffer, decode({}, ddc.get(), dac.get()));

  // Runs past position 63, with an AC table of ZRL, 0x71 and 0xF1 (codes 00, 01, 10).
  std::vector<uint8_t> bits(16, 0);
  bits[1] = 3;
  DecTable runs(bits, {0xF0, 0x71, 0xF1});
  auto decode_runs = [&](const std::string& s) {
    Bits b;
    b.s = "00" + s;  // DC category 0
    return decode(b.Stuffed(), ddc.get(), runs.get());
  };
  EXPECT_EQ(0, decode_runs("00000000"));  // four ZRL: the fourth ends the block
  EXPECT_EQ(65, st.get()->endPosition);
  EXPECT_EQ(0, decode_runs("000000" "10" "1"));  // 0xF1 from 49 reaches 64: coefficient 63
  EXPECT_EQ(1, out[63]);
  EXPECT_EQ(65, st.get()->endPosition);
  EXPECT_EQ(kroStatusError, decode_runs("000000" "01" "0" "10" "1"));  // 0x71 at 56, then 0xF1 to 72
  EXPECT_EQ(-1, out[ZigZag(56)]);
  // DC symbol 16 counts as category 0: the predictor stays.
  bits.assign(16, 0);
  bits[0] = 1;
  DecTable dc16(bits, {16});
  last = 77;
  ASSERT_EQ(0, decode({0x57}, dc16.get(), dac.get()));  // 0 (16), 1010 (EOB), padding
  EXPECT_EQ(77, out[0]);
  EXPECT_EQ(77, last);

  // The Direct decoder at the end of its data. 00 1010 00: a block (DC 0, EOB), then
  // a DC of 0 with no bits left for the AC part, then no bits at all: a zero block,
  // predictor kept, nothing held. The last bits are looked up padded with zeros: 11
  // reads as 110 (category 5), whose extra bits are missing: -62.
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
  EXPECT_EQ((std::vector<int>{0xD9, 24, 2}), (std::vector<int>{marker, bitpos, nvalid}));
  ASSERT_EQ(0, direct(tail));
  EXPECT_EQ(5, out[0]);
  EXPECT_EQ(0, nvalid);
  ASSERT_EQ(0, direct(tail));
  EXPECT_EQ((std::vector<int>{0, 5, 24}), (std::vector<int>{out[0], last, bitpos}));
  bitpos = nvalid = marker = 0;
  ASSERT_EQ(0, direct({0x2B, 0xFF, 0xD9}));
  EXPECT_EQ(kroStatusJPEGOutOfBuffer, direct({0x2B, 0xFF, 0xD9}));
}

// The Direct encoder at every bit phase keeps the bits before it, stuffs a byte it
// completes to 0xFF (the first one included), clears the rest of its last byte, and
// writes the extra bits of a symbol that has no code (the code itself skipped).
TEST_F(HuffmanCoding, DirectAtEveryBitPhase) {
  Rng rng(5);
  std::vector<Kro16s> blocks = RandomBlocks(rng, 6, 300, 600);
  blocks[64 * 5 + 1] = 1024;  // size 11: no code in K.5
  for (int prefix : {0xFF, 0xA5, 0x00}) {
    for (int phase = 0; phase < 8; ++phase) {
      std::vector<Kro8u> out(4096, 0x77);
      out[0] = static_cast<Kro8u>(prefix);
      int bitpos = phase, ref_last = 0;
      Kro16s last = 0;
      Bits ref;
      ref.Put(prefix >> (8 - phase), phase);
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
      want.push_back(rem ? static_cast<uint8_t>(std::stoi(ref.s.substr(ref.s.size() - rem), nullptr, 2) << (8 - rem)) : 0);
      ASSERT_EQ(static_cast<int>(want.size() - 1) * 8 + rem, bitpos) << prefix << " " << phase;
      EXPECT_TRUE(std::equal(want.begin(), want.end(), out.begin())) << prefix << " " << phase;
      EXPECT_EQ(0x77, out[want.size()]);
    }
  }
}

// Hand-checked optimal tables.
TEST(HuffmanStatistics, OptimalTables) {
  int stats[256] = {};
  std::vector<Kro8u> bits(16, 0xEE), vals(256, 0xEE);
  // One symbol: one 1-bit code.
  stats[0x35] = 9;
  ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  EXPECT_EQ((std::vector<Kro8u>{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}), bits);
  EXPECT_EQ(0x35, vals[0]);
  // Counts 1, 1 and the reserved 1: the higher symbol is merged first with the
  // reserved one, so the lower symbol keeps the short code.
  memset(stats, 0, sizeof(stats));
  stats[3] = stats[200] = 1;
  ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  EXPECT_EQ((std::vector<int>{1, 1, 3, 200}), (std::vector<int>{bits[0], bits[1], vals[0], vals[1]}));
  // Fibonacci counts on descending symbols make a chain: 30 levels are limited to 16
  // bits with every code kept and a valid encoder table; 40 exceed 32 bits: -64 and
  // nothing written.
  memset(stats, 0, sizeof(stats));
  int a = 1, b = 1;
  for (int i = 0; i < 30; ++i, std::swap(a, b), b += a) stats[255 - i] = a;
  ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  int total = 0;
  double kraft = 0;
  for (int i = 0; i < 16; ++i) total += bits[i], kraft += bits[i] / double(2 << i);
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
  EXPECT_EQ(std::vector<Kro8u>(16, 0), bits);
}

// ---- Every target against the byte-wise rules ----------------------------------

// One baseline block read literally (T.81 F.2.2.1, F.2.2.2); *end: endPosition.
int RefBlock(RefReader& ref, Kro16s* out, Kro16s* last, const CodeTable& dc, const CodeTable& ac, int* end) {
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
    out[ZigZag(k++)] = Kro16s(v);
  }
  *end = k;
  return st;
}

class HuffmanTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(HuffmanTargets);

// Encoder: the fast path (room for a whole block) against the checked path (room
// just short of the fast path's margin) call by call, and the statistics against the
// literal walk. Decoders: the buffered one against RefReader after every block, on
// the stream written, with stuffing, fill bytes, restart markers and, after the
// first missing code, garbage; where the data is valid and no marker is near, the
// Direct decoder takes the same bytes at the same moments.
TEST_P(HuffmanTargets, FastPathsMatchByteWiseRules) {
  Rng rng(31);
  const int n = 400;
  std::vector<Kro16s> blocks = RandomBlocks(rng, n, 32767, 16383);
  for (int i = 3; i < n; i += 11) blocks[64 * i + 2] = static_cast<Kro16s>(i % 2 ? 255 : -256);
  // Tables from the first half only: some symbols of the second half have no code,
  // and -32768 (category 16, which a decoder cannot read back) occurs there only.
  for (int i = n / 2; i < n; i += 7) blocks[64 * i + ZigZag(1 + i % 63)] = -32768;
  const OptimalTables opt(std::vector<Kro16s>(blocks.begin(), blocks.begin() + 64 * n / 2));
  EncTable dc(opt.dc_bits, opt.dc_vals), ac(opt.ac_bits, opt.ac_vals);
  DecTable ddc(opt.dc_bits, opt.dc_vals), dac(opt.ac_bits, opt.ac_vals);
  const CodeTable cdc = Canonical(opt.dc_bits, opt.dc_vals), cac = Canonical(opt.ac_bits, opt.ac_vals);

  std::vector<Kro8u> fast(n * 600, 0xAB), slow(n * 600, 0xAB);
  EncStateBuf fs, ss;
  int fpos = 0, spos = 0, failures = 0, wlast = 0;
  Kro16s flast = 0, slast = 0, clast = 0;
  int stats[2][256] = {}, want[2][256] = {};
  for (int b = 0; b < n; ++b) {
    const Kro16s* blk = &blocks[64 * b];
    const KroStatus f = kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, fast.data(), int(fast.size()), &fpos, &flast,
                                                           dc.get(), ac.get(), fs.get(), 0);
    const KroStatus s = kroiEncodeHuffman8x8_JPEG_16s1u_C1(blk, slow.data(), spos + kro::kBlockWorstCaseBytes - 1,
                                                           &spos, &slast, dc.get(), ac.get(), ss.get(), 0);
    ASSERT_EQ(s, f) << b;
    failures += f != 0;
    ASSERT_EQ(spos, fpos) << b;
    ASSERT_EQ(ss.get()->bitCount, fs.get()->bitCount) << b;
    ASSERT_EQ(ss.get()->accumulator, fs.get()->accumulator) << b;
    ASSERT_EQ(kroStatusOk, kroiGetHuffmanStatistics8x8_JPEG_16s_C1(blk, stats[0], stats[1], &clast));
    ++want[0][Category(blk[0] - wlast)];
    wlast = blk[0];
    for (int k = 1, r = 0; k < 64; ++k) {
      const int v = blk[ZigZag(k)];
      if (v == 0) {
        want[1][0] += k == 63;  // EOB
        ++r;
        continue;
      }
      for (; r > 15; r -= 16) ++want[1][0xF0];
      if (r * 16 + Category(v) < 256) ++want[1][r * 16 + Category(v)];
      r = 0;
    }
    if (b % 50 == 49) {  // flush, a fill byte and a restart marker
      kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, fast.data(), int(fast.size()), &fpos, nullptr, nullptr, nullptr,
                                         fs.get(), 1);
      kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, slow.data(), int(slow.size()), &spos, nullptr, nullptr, nullptr,
                                         ss.get(), 1);
      ASSERT_EQ(spos, fpos);
      for (auto* v : {&fast, &slow}) (*v)[size_t(fpos)] = (*v)[size_t(fpos) + 1] = 0xFF, (*v)[size_t(fpos) + 2] = 0xD0;
      fpos = spos = fpos + 3;
      flast = slast = clast = 0;
      wlast = 0;
    }
  }
  EXPECT_GT(failures, 0);  // missing codes were met on both paths
  ASSERT_EQ(0, memcmp(fast.data(), slow.data(), fast.size()));
  for (int t = 0; t < 2; ++t)
    for (int i = 0; i < 256; ++i) EXPECT_EQ(want[t][i], stats[t][i]) << t << " " << i;

  const std::vector<uint8_t> data(fast.begin(), fast.begin() + fpos);
  DecStateBuf st;
  RefReader ref{data};
  int pos = 0, marker = 0, checked = 0, dpos = 0, dmarker = 0, dbits = 0, direct_checked = 0;
  bool failed = false;
  Kro32u dacc = 0;
  Kro16s last = 0, rlast = 0, dlast = 0, out[64], rout[64], dout[64];
  for (int b = 0; b < n && pos < int(data.size()); ++b) {
    if (b % 50 == 0 || marker != 0 || failed) {  // a restart: to just past the next marker
      pos = ref.pos = marker != 0 ? ref.pos : b == 0 ? 0 : PastMarker(data, ref.pos);
      dpos = pos * 8;
      marker = ref.marker = ref.bits = dmarker = dbits = 0;
      ref.acc = dacc = 0;
      kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
      last = rlast = dlast = 0;
      failed = false;
    }
    int end = 0;
    const KroStatus got = kroiDecodeHuffman8x8_JPEG_1u16s_C1(data.data(), int(data.size()), &pos, out, &last,
                                                             &marker, ddc.get(), dac.get(), st.get());
    ASSERT_EQ(RefBlock(ref, rout, &rlast, cdc, cac, &end), got) << b;
    ASSERT_EQ((std::vector<int>{ref.pos, ref.bits, int(ref.acc), ref.marker}),
              (std::vector<int>{pos, st.get()->bitCount, int(st.get()->accumulator), marker})) << b;
    ASSERT_EQ(0, memcmp(out, rout, sizeof(out))) << b;
    if (got == kroStatusOk) ASSERT_EQ(end, st.get()->endPosition) << b;
    if (b < n / 2) ASSERT_EQ(0, memcmp(out, &blocks[64 * b], sizeof(out))) << b;
    ++checked;
    failed = got != kroStatusOk;
    if (b >= n / 2) continue;  // the Direct decoder needs data that ends in a marker where it stops
    const KroStatus dgot = kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(data.data(), &dpos, dout, &dlast, &dmarker,
                                                                     &dacc, &dbits, ddc.get(), dac.get());
    if (marker == 0 && dmarker == 0) {
      ASSERT_EQ(kroStatusOk, dgot) << b;
      ASSERT_EQ((std::vector<int>{pos * 8, ref.bits, int(ref.acc)}), (std::vector<int>{dpos, dbits, int(dacc)})) << b;
      ASSERT_EQ(0, memcmp(dout, rout, sizeof(out))) << b;
      ++direct_checked;
    }
  }
  EXPECT_GT(checked, 150);
  EXPECT_GT(direct_checked, 100);
}

// The fast encoder leaves each call with one eight-byte store of its last whole bytes
// (0 to 8 of them) over the bytes after them. Short blocks with random DC differences
// and a few large AC values give every count, often with 0xFF among them: the bytes,
// including those past the position, and the state must match the byte-wise writer.
TEST_P(HuffmanTargets, LastBytesOfEachCall) {
  Rng rng(7);
  const int n = 3000;
  std::vector<Kro16s> blocks(64 * size_t(n), 0);
  for (int b = 0; b < n; ++b) {
    blocks[64 * size_t(b)] = static_cast<Kro16s>(rng.Int(-1023, 1023));
    for (int j = static_cast<int>(rng.Int(0, 3)); j > 0; --j)
      blocks[64 * size_t(b) + size_t(rng.Int(1, 63))] = static_cast<Kro16s>(rng.Int(-1023, 1023));
  }
  const OptimalTables opt(blocks);
  EncTable dc(opt.dc_bits, opt.dc_vals), ac(opt.ac_bits, opt.ac_vals);
  std::vector<Kro8u> fast(size_t(n) * 40 + 1024, 0x5A), slow = fast;
  EncStateBuf fs, ss;
  int fpos = 0, spos = 0, ff = 0;
  Kro16s flast = 0, slast = 0;
  for (int b = 0; b < n; ++b) {
    ASSERT_EQ(kroStatusOk, kroiEncodeHuffman8x8_JPEG_16s1u_C1(&blocks[64 * size_t(b)], fast.data(), int(fast.size()),
                                                              &fpos, &flast, dc.get(), ac.get(), fs.get(), 0));
    ASSERT_EQ(kroStatusOk, kroiEncodeHuffman8x8_JPEG_16s1u_C1(&blocks[64 * size_t(b)], slow.data(),
                                                              spos + kro::kBlockWorstCaseBytes - 1, &spos, &slast,
                                                              dc.get(), ac.get(), ss.get(), 0));
    ASSERT_EQ(spos, fpos) << b;
    ASSERT_EQ(ss.get()->accumulator, fs.get()->accumulator) << b;
    ASSERT_EQ(ss.get()->bitCount, fs.get()->bitCount) << b;
    ASSERT_EQ(0, memcmp(fast.data(), slow.data(), fast.size())) << b;
    ff += fpos > 0 && fast[size_t(fpos) - 1] == 0;
  }
  EXPECT_GT(ff, 20);  // calls that ended in a stuffed byte
}

}  // namespace
