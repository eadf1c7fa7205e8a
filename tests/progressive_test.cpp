// SPDX-License-Identifier: BSD-3-Clause
// Progressive Huffman encoders, statistics and decoders.
#include <gtest/gtest.h>
#include <string.h>

#include <functional>
#include <vector>

#include "bitio.h"  // state layouts
#include "huffman_test_util.h"
#include "simd_test_util.h"
#include "test_util.h"

namespace {

using namespace kro_test;

// AC table for hand vectors: 00 EOB0, 01 EOB2, 10 run 0 size 1, 110 EOB14.
const std::vector<uint8_t> kHandBits = {0, 3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
const std::vector<uint8_t> kHandVals = {0x00, 0x20, 0x01, 0xE0};

TEST(ProgressiveArgs, CheckOrder) {
  EncTable e(kHandBits, kHandVals);
  DecTable d(kHandBits, kHandVals);
  EncStateBuf es;
  DecStateBuf ds;
  Kro16s blk[64] = {}, last = 0;
  Kro8u buf[64] = {1};
  int pos = 0, marker = 0, stats[256] = {};
  auto* t = e.get();
  const std::vector<std::pair<KroStatus, std::function<KroStatus()>>> cases = {
      {kroStatusBadSize, [&] { return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(blk, buf, 0, nullptr, &last, 0, t, es.get(), 0); }},
      {kroStatusBadArgument, [&] { return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(blk, buf, 64, &pos, &last, 14, nullptr, es.get(), 0); }},
      {kroStatusNullPointer, [&] { return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(blk, buf, 64, &pos, &last, 13, nullptr, es.get(), 0); }},
      {kroStatusOk, [&] { return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(nullptr, buf, 64, &pos, nullptr, 99, nullptr, es.get(), 1); }},
      {kroStatusBadArgument, [&] { return kroiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(blk, buf, 64, &pos, -1, es.get(), 0); }},
      {kroStatusNullPointer, [&] { return kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(blk, buf, 64, &pos, 1, 63, 0, nullptr, es.get(), 1); }},
      {kroStatusNullPointer, [&] { return kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(nullptr, buf, 64, &pos, 0, 63, 0, t, es.get(), 0); }},
      {kroStatusBadArgument, [&] { return kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(blk, buf, 64, &pos, 5, 4, 0, t, es.get(), 0); }},
      {kroStatusBadArgument, [&] { return kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(blk, buf, 64, &pos, 1, 64, 0, t, es.get(), 0); }},
      {kroStatusBadArgument, [&] { return kroiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(blk, stats, &last, 14); }},
      {kroStatusOk, [&] { return kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(nullptr, stats, 0, 0, 0, es.get(), 1); }},
      {kroStatusNullPointer, [&] { return kroiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(nullptr, stats, 0, 0, 0, es.get(), 0); }},
      {kroStatusNullPointer, [&] { return kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(blk, stats, 1, 1, 0, nullptr, 1); }},
      // Decoders: a length of 0 is -6 here (the baseline decoder accepts it).
      {kroStatusBadSize, [&] { return kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(buf, 0, nullptr, blk, &marker, 0, ds.get()); }},
      {kroStatusNullPointer, [&] { return kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(buf, 1, &pos, blk, nullptr, &marker, 20, d.get(), ds.get()); }},
      {kroStatusBadArgument, [&] { return kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(buf, 1, &pos, blk, &last, &marker, 20, nullptr, ds.get()); }},
      {kroStatusBadArgument, [&] { return kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(buf, 1, &pos, blk, &marker, 0, 5, 0, nullptr, nullptr); }},
      {kroStatusNullPointer, [&] { return kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(buf, 1, &pos, blk, &marker, 1, 5, 0, d.get(), nullptr); }},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    pos = 0;
    EXPECT_EQ(cases[i].first, cases[i].second()) << i;
  }
}

TEST(ProgressiveCoding, HandVectors) {
  EncTable e(kHandBits, kHandVals);
  EncStateBuf st;
  std::vector<Kro8u> out(64);
  int pos = 0;
  Kro16s zero[64] = {}, blk[64] = {};
  auto ac_first = [&](const Kro16s* b, int al, int flush) {
    return kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(b, out.data(), 64, &pos, 1, 63, al, e.get(), st.get(), flush);
  };
  // Five empty bands, then the flush: EOB2 (01) with bits 01, padded: 0x5F.
  for (int i = 0; i < 5; ++i) ASSERT_EQ(0, ac_first(zero, 0, 0));
  EXPECT_EQ(0, pos);
  EXPECT_EQ(5, st.get()->eobRun);
  ASSERT_EQ(0, ac_first(nullptr, 0, 1));
  ASSERT_EQ(1, pos);
  EXPECT_EQ(0x5F, out[0]);
  // The 32767th empty band writes EOB14 (110) and 14 one-bits at once: 11011111
  // 11111111 (00) and one bit pending.
  pos = 0;
  for (int i = 0; i < 32766; ++i) ac_first(zero, 0, 0);
  EXPECT_EQ(0, pos);
  ASSERT_EQ(0, ac_first(zero, 0, 0));
  EXPECT_EQ(0, st.get()->eobRun);
  EXPECT_EQ((std::vector<Kro8u>{0xDF, 0xFF, 0x00}), std::vector<Kro8u>(out.begin(), out.begin() + pos));
  ac_first(nullptr, 0, 1);
  // -3 with Al = 1: magnitude 1 (3 >> 1), size 1, extra bit 0; the band then ends
  // the run of one: 10 0 00 + padding = 0x87.
  pos = 0;
  blk[ZigZag(1)] = -3;
  ASSERT_EQ(0, ac_first(blk, 1, 0));
  ASSERT_EQ(0, ac_first(nullptr, 0, 1));
  EXPECT_EQ((std::vector<Kro8u>{0x87}), std::vector<Kro8u>(out.begin(), out.begin() + pos));
  // A magnitude of 11 bits: the statistics refuse it, the encoder writes it; 12 bits
  // the encoder refuses too.
  std::vector<uint8_t> bits(16, 0);
  bits[1] = 2;
  EncTable e11(bits, {0x0B, 0x00});
  blk[ZigZag(1)] = 1024;
  int stats[256] = {};
  EXPECT_EQ(kroStatusJPEGDataError, kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(blk, stats, 1, 63, 0, st.get(), 0));
  pos = 0;
  EXPECT_EQ(0, kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(blk, out.data(), 64, &pos, 1, 63, 0, e11.get(), st.get(), 0));
  blk[ZigZag(1)] = 2048;
  EXPECT_EQ(kroStatusJPEGDataError,
            kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(blk, out.data(), 64, &pos, 1, 63, 0, e11.get(), st.get(), 0));
}

TEST(ProgressiveCoding, DecoderHandVectors) {
  DecStateBuf st;
  DecTable d(kHandBits, kHandVals), dc(kLumDcBits, kLumDcVals);
  int pos = 0, marker = 0;
  Kro16s blk[64] = {}, last = 0;
  // DC first, Al 2: difference 5 (100 101) -> predictor 5, coefficient 20.
  std::vector<Kro8u> src = {0x97};
  ASSERT_EQ(0, kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(src.data(), 1, &pos, blk, &last, &marker, 2, dc.get(), st.get()));
  EXPECT_EQ(5, last);
  EXPECT_EQ(20, blk[0]);
  // AC refinement: -4 with a correction bit 1 (EOB0 = 00, then 1) becomes -6 at Al 1
  // and stays -4 at Al 2, where that bit is set already. Only a positive run skips
  // the band: a negative one (a caller's corrupt state) decodes it.
  for (int al : {1, 2}) {
    kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
    st.get()->eobRun = al == 1 ? -3 : 0;
    pos = 0;
    src = {0x3F};
    blk[ZigZag(1)] = -4;
    ASSERT_EQ(0, kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(src.data(), 1, &pos, blk, &marker, 1, 1, al, d.get(), st.get()));
    EXPECT_EQ(al == 1 ? -6 : -4, blk[ZigZag(1)]);
    EXPECT_EQ(0, st.get()->eobRun);
  }
  // AC refinement running into a marker: EOB0, then 31 correction bits for the band
  // 1..31, of which the data holds 30 (ones); the refill that meets the marker gives
  // the last one as a 0, and the block completes.
  kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
  pos = 0;
  src = {0x3F, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0x00, 0xFF, 0xD0};
  for (int k = 1; k < 64; ++k) blk[ZigZag(k)] = 2;
  ASSERT_EQ(0, kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(src.data(), 9, &pos, blk, &marker, 1, 31, 0, d.get(), st.get()));
  EXPECT_EQ((std::vector<int>{3, 2, 0xD0, 9, 0}), (std::vector<int>{blk[ZigZag(30)], blk[ZigZag(31)], marker, pos, st.get()->eobRun}));
  marker = 0;
  // AC first: EOB2 with bits 11 -> 6 more empty bands, read without touching the data.
  kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
  pos = 0;
  src = {0x7F};
  ASSERT_EQ(0, kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(src.data(), 1, &pos, blk, &marker, 1, 63, 0, d.get(), st.get()));
  EXPECT_EQ(6, st.get()->eobRun);
  const int bits_left = st.get()->bitCount;
  for (int i = 0; i < 6; ++i)
    ASSERT_EQ(0, kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(src.data(), 1, &pos, blk, &marker, 1, 63, 0, d.get(), st.get()));
  EXPECT_EQ(0, st.get()->eobRun);
  EXPECT_EQ(bits_left, st.get()->bitCount);
  EXPECT_NE(0, kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(src.data(), 1, &pos, blk, &marker, 1, 63, 0, d.get(), st.get()));
}

// ---- Scans decoded by the library and by the literal walk of T.81 G.2 ----------

int RefBit(RefReader& r, int* bit) {
  uint32_t u;
  const int st = r.Raw(1, &u);
  *bit = int(u);
  return st;
}

// One correction bit for a non-zero coefficient.
int RefCorrect(RefReader& r, Kro16s* c, int al) {
  int bit;
  if (int st = RefBit(r, &bit)) return st;
  if (bit && (*c & (1 << al)) == 0) *c = Kro16s(*c + (*c >= 0 ? 1 << al : -(1 << al)));
  return 0;
}

// One block of a scan, read bit by bit; runs past 63 land on coefficient 63 and are
// refused from position 72 on, as in the baseline decoder.
int RefDecode(RefReader& r, Kro16s* dst, Kro16s* last, const ScanSpec& s, const CodeTable& t, int* eobrun) {
  int sym, v = 0, st, bit;
  uint32_t u;
  if (s.ss == 0 && s.ah == 0) {
    if ((st = r.Symbol(t, &sym)) != 0 || ((sym & 15) != 0 && (st = r.Receive(sym & 15, &v)) != 0)) return st;
    *last = Kro16s(*last + v);
    dst[0] = Kro16s(uint16_t(*last) << s.al);
    return 0;
  }
  if (s.ss == 0) {
    if ((st = RefBit(r, &bit)) == 0 && bit) dst[0] = Kro16s(dst[0] | 1 << s.al);
    return st;
  }
  if (s.ah == 0) {
    if (*eobrun > 0) return --*eobrun, 0;
    for (int k = s.ss; k <= s.se; ++k) {
      if ((st = r.Symbol(t, &sym)) != 0) return st;
      const int run = sym >> 4, n = sym & 15;
      if (n == 0 && run < 15) {
        *eobrun = (1 << run) - 1;
        if (run > 0 && (st = r.Raw(run, &u)) != 0) return st;
        *eobrun += run > 0 ? int(u) : 0;
        return 0;
      }
      k += n == 0 ? 15 : run;
      if (n == 0) continue;
      if ((st = r.Receive(n, &v)) != 0) return st;
      if (k >= 72) return kroStatusError;
      dst[ZigZag(k)] = Kro16s(uint16_t(v) << s.al);
    }
    return 0;
  }
  int k = s.ss;
  if (*eobrun <= 0) {
    for (; k <= s.se; ++k) {
      if ((st = r.Symbol(t, &sym)) != 0) return st;
      int run = sym >> 4, value = 0;
      if ((sym & 15) != 0) {
        if ((st = RefBit(r, &bit)) != 0) return st;
        value = bit ? 1 << s.al : -(1 << s.al);
      } else if (run != 15) {
        if (run > 0 && (st = r.Raw(run, &u)) != 0) return st;
        *eobrun = (1 << run) + (run > 0 ? int(u) : 0);
        break;
      }
      do {
        Kro16s* c = &dst[ZigZag(k)];
        if (*c != 0) {
          if ((st = RefCorrect(r, c, s.al)) != 0) return st;
        } else if (--run < 0) {
          break;
        }
      } while (++k <= s.se);
      if (value != 0) dst[ZigZag(k)] = Kro16s(value);
    }
  }
  if (*eobrun > 0) {
    for (; k <= s.se; ++k)
      if (dst[ZigZag(k)] != 0 && (st = RefCorrect(r, &dst[ZigZag(k)], s.al)) != 0) return st;
    --*eobrun;
  }
  return 0;
}

// Random coefficients in runs of 40 blocks of one kind: empty bands (long EOB runs),
// bands of already-significant coefficients only (correction bits past the 937
// limit), sparse large values, and dense small ones.
std::vector<Kro16s> MixedBlocks(Rng& rng, int n) {
  std::vector<Kro16s> b(64 * size_t(n), 0);
  for (int i = 0; i < n; ++i) {
    Kro16s* blk = &b[64 * size_t(i)];
    const int kind = (i / 40) % 4;
    blk[0] = static_cast<Kro16s>(rng.Int(-1023, 1023));
    for (int k = 1; k < 64; ++k) {
      if (kind == 1) blk[k] = static_cast<Kro16s>(rng.Int(2, 3) * (rng.Int(0, 1) ? 1 : -1));
      if (kind == 2 && rng.Int(0, 9) == 0) blk[k] = static_cast<Kro16s>(rng.Int(-1023, 1023));
      if (kind == 3) blk[k] = static_cast<Kro16s>(rng.Int(-60, 60) / (1 + k / 8));
    }
  }
  return b;
}

// Encodes every scan of a script with tables built from its statistics, decodes it
// back and checks that the blocks come back. With a reference, each scan is also
// decoded with bits flipped, and every call is compared with the literal walk:
// status, block, position, count, accumulator, marker and end-of-band run.
void RoundTrip(const std::vector<Kro16s>& blocks, const std::vector<ScanSpec>& script, int restart, bool reference) {
  const int n = static_cast<int>(blocks.size() / 64);
  Rng rng(restart);
  std::vector<Kro16s> work = blocks, decoded(blocks.size(), 0);
  for (const ScanSpec& s : script) {
    SCOPED_TRACE(::testing::Message() << s.ss << "-" << s.se << " " << s.ah << "/" << s.al);
    std::vector<ProgItem> items;
    for (int i = 0; i < n; ++i) items.push_back({&work[64 * size_t(i)], 0, restart > 0 && i > 0 && i % restart == 0, 0});
    std::vector<std::vector<int>> stats(1, std::vector<int>(256, 0));
    ASSERT_EQ(0, ProgStats(s, items, stats));
    std::vector<uint8_t> bits(16), vals(256);
    ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats[0].data(), bits.data(), vals.data()));
    EncTable e(bits, vals);
    DecTable d(bits, vals);
    const CodeTable canon = Canonical(bits, vals);
    for (auto& it : items) it.etab = e.get();
    KroStatus est;
    const std::vector<uint8_t> clean = ProgEncode(s, items, &est);
    ASSERT_EQ(0, est);
    for (int variant = 0; variant < (reference ? 3 : 1); ++variant) {
      std::vector<uint8_t> data = clean;
      for (int f = 0; variant > 0 && f < 4; ++f) data[size_t(rng.Int(0, long(data.size()) - 3))] ^= uint8_t(1 << rng.Int(0, 7));
      std::vector<Kro16s> lib = decoded, ref = decoded;
      DecStateBuf st;
      RefReader rr{data};
      int pos = 0, marker = 0, reob = 0;
      bool resync = false;
      Kro16s last = 0, rlast = 0;
      for (int i = 0; i < n; ++i) {
        if (items[size_t(i)].restart || resync) {  // to just past the next marker
          pos = rr.pos = marker != 0 ? pos : PastMarker(data, pos);
          kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
          marker = rr.marker = rr.bits = reob = 0;
          rr.acc = 0;
          last = rlast = 0;
          resync = false;
        }
        Kro16s* x = &lib[64 * size_t(i)];
        const KroStatus got = ProgDecodeOne(s, data, &pos, x, &last, &marker, d.get(), st.get());
        if (variant == 0) ASSERT_EQ(0, got) << i;
        if (!reference) continue;
        Kro16s* y = &ref[64 * size_t(i)];
        ASSERT_EQ(RefDecode(rr, y, &rlast, s, canon, &reob), got) << i;
        ASSERT_EQ((std::vector<int>{rr.pos, rr.bits, int(rr.acc), rr.marker, reob}),
                  (std::vector<int>{pos, st.get()->bitCount, int(st.get()->accumulator), marker, st.get()->eobRun}))
            << i;
        ASSERT_EQ(0, memcmp(x, y, 128)) << i;
        resync = got != 0;
      }
      if (variant == 0) decoded = lib;
    }
  }
  for (int i = 0; i < n; ++i) ASSERT_EQ(0, memcmp(&blocks[64 * size_t(i)], &decoded[64 * size_t(i)], 128)) << i;
}

class ProgressiveTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(ProgressiveTargets);

// The decoders find runs and correction positions through masks and take correction
// bits several at a time: every target against the literal walk, for spectral
// selection only, successive approximation with restarts, and Al from 6 down to 0.
TEST_P(ProgressiveTargets, ScriptsMatchTheLiteralWalk) {
  Rng rng(21);
  const std::vector<Kro16s> blocks = MixedBlocks(rng, 480);
  RoundTrip(blocks, {{0, 0, 0, 0}, {1, 5, 0, 0}, {6, 20, 0, 0}, {21, 63, 0, 0}}, 0, true);
  RoundTrip(blocks, {{0, 0, 0, 2}, {1, 5, 0, 3}, {6, 63, 0, 2}, {1, 5, 3, 2}, {1, 63, 2, 1}, {0, 0, 2, 1},
                     {1, 63, 1, 0}, {0, 0, 1, 0}}, 7, true);
  std::vector<ScanSpec> deep = {{0, 0, 0, 6}, {1, 63, 0, 6}};
  for (int al = 5; al >= 0; --al) {
    deep.push_back({0, 0, al + 1, al});
    deep.push_back({1, 63, al + 1, al});
  }
  RoundTrip(blocks, deep, 0, true);
}

// Runs of empty bands long enough to reach 32767, in first and refinement scans.
TEST(ProgressiveCoding, LongEndOfBandRuns) {
  std::vector<Kro16s> blocks(64 * 33000, 0);
  for (int i : {0, 32800}) blocks[64 * size_t(i) + 5] = 3;  // 32799 empty bands between
  blocks[64 * 16000 + 9] = -1;                               // significant only at Al 0
  RoundTrip(blocks, {{0, 0, 0, 0}, {1, 63, 0, 1}, {1, 63, 1, 0}}, 0, false);
}

}  // namespace
