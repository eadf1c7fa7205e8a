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

const std::array<int, 64> kZz = ZigZag();

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
  struct Case {
    const char* what;
    KroStatus want;
    std::function<KroStatus()> call;
  };
  const std::vector<Case> cases = {
      {"dc first len+pos", kroStatusBadSize,
       [&] { return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(blk, buf, 0, nullptr, &last, 0, e.get(), es.get(), 0); }},
      {"dc first Al+table", kroStatusBadArgument,
       [&] { return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(blk, buf, 64, &pos, &last, 14, nullptr, es.get(), 0); }},
      {"dc first table", kroStatusNullPointer,
       [&] { return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(blk, buf, 64, &pos, &last, 13, nullptr, es.get(), 0); }},
      {"dc first flush", kroStatusOk,
       [&] { return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(nullptr, buf, 64, &pos, nullptr, 99, nullptr, es.get(), 1); }},
      {"dc refine Al", kroStatusBadArgument,
       [&] { return kroiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(blk, buf, 64, &pos, -1, es.get(), 0); }},
      {"ac table even when flushing", kroStatusNullPointer,
       [&] { return kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(blk, buf, 64, &pos, 1, 63, 0, nullptr, es.get(), 1); }},
      {"ac src+band", kroStatusNullPointer,
       [&] { return kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(nullptr, buf, 64, &pos, 0, 63, 0, e.get(), es.get(), 0); }},
      {"ac band Se<Ss", kroStatusBadArgument,
       [&] { return kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(blk, buf, 64, &pos, 5, 4, 0, e.get(), es.get(), 0); }},
      {"ac band Se>63", kroStatusBadArgument,
       [&] { return kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(blk, buf, 64, &pos, 1, 64, 0, e.get(), es.get(), 0); }},
      {"stats dc Al", kroStatusBadArgument,
       [&] { return kroiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(blk, stats, &last, 14); }},
      {"stats ac flush before src", kroStatusOk,
       [&] { return kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(nullptr, stats, 0, 0, 0, es.get(), 1); }},
      {"stats ac src before band", kroStatusNullPointer,
       [&] { return kroiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(nullptr, stats, 0, 0, 0, es.get(), 0); }},
      {"stats ac state", kroStatusNullPointer,
       [&] { return kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(blk, stats, 1, 1, 0, nullptr, 1); }},
      // Decoders: a length of 0 is -6 here (the baseline decoder accepts it).
      {"dec len 0", kroStatusBadSize,
       [&] { return kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(buf, 0, nullptr, blk, &marker, 0, ds.get()); }},
      {"dec last dc", kroStatusNullPointer,
       [&] { return kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(buf, 1, &pos, blk, nullptr, &marker, 20, d.get(), ds.get()); }},
      {"dec Al before table", kroStatusBadArgument,
       [&] { return kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(buf, 1, &pos, blk, &last, &marker, 20, nullptr, ds.get()); }},
      {"dec band before table", kroStatusBadArgument,
       [&] { return kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(buf, 1, &pos, blk, &marker, 0, 5, 0, nullptr, nullptr); }},
      {"dec state", kroStatusNullPointer,
       [&] { return kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(buf, 1, &pos, blk, &marker, 1, 5, 0, d.get(), nullptr); }},
  };
  for (const Case& c : cases) {
    pos = 0;
    EXPECT_EQ(c.want, c.call()) << c.what;
  }
}

TEST(ProgressiveCoding, HandVectors) {
  EncTable e(kHandBits, kHandVals);
  EncStateBuf st;
  std::vector<Kro8u> out(64);
  int pos = 0;
  Kro16s zero[64] = {};
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
  EXPECT_EQ(0, st.get()->eobRun);
  // The 32767th empty band writes EOB14 (110) and 14 one-bits at once.
  pos = 0;
  for (int i = 0; i < 32766; ++i) ac_first(zero, 0, 0);
  EXPECT_EQ(0, pos);
  ASSERT_EQ(0, ac_first(zero, 0, 0));
  EXPECT_EQ(0, st.get()->eobRun);
  ASSERT_EQ(3, pos);  // 11011111 11111111 (00) and one bit pending
  EXPECT_EQ(0xDF, out[0]);
  EXPECT_EQ(0xFF, out[1]);
  EXPECT_EQ(0x00, out[2]);
  ac_first(nullptr, 0, 1);
  // -3 with Al = 1: magnitude 1 (3 >> 1), size 1, extra bit 0; the band then ends
  // the run of one: 10 0 00 + padding = 0x87.
  pos = 0;
  Kro16s blk[64] = {};
  blk[kZz[1]] = -3;
  ASSERT_EQ(0, ac_first(blk, 1, 0));
  ASSERT_EQ(0, ac_first(nullptr, 0, 1));
  ASSERT_EQ(1, pos);
  EXPECT_EQ(0x87, out[0]);
  // A magnitude of 11 bits: the statistics refuse it, the encoder writes it.
  std::vector<uint8_t> bits(16, 0), vals = {0x0B, 0x00};
  bits[1] = 2;
  EncTable e11(bits, vals);
  blk[kZz[1]] = 1024;
  int stats[256] = {};
  EXPECT_EQ(kroStatusJPEGDataError, kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(blk, stats, 1, 63, 0, st.get(), 0));
  pos = 0;
  EXPECT_EQ(0, kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(blk, out.data(), 64, &pos, 1, 63, 0, e11.get(), st.get(), 0));
  blk[kZz[1]] = 2048;
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
    blk[kZz[1]] = -4;
    ASSERT_EQ(0, kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(src.data(), 1, &pos, blk, &marker, 1, 1, al, d.get(), st.get()));
    EXPECT_EQ(al == 1 ? -6 : -4, blk[kZz[1]]);
    EXPECT_EQ(0, st.get()->eobRun);
  }
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
  // Out of data on the next band.
  EXPECT_NE(0, kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(src.data(), 1, &pos, blk, &marker, 1, 63, 0, d.get(), st.get()));
}

// Random coefficient sets through statistics, tables, encoders and decoders, for
// several scan scripts. The data includes long runs of empty bands and bands of
// already-significant coefficients only (correction bits past the 937 limit).
std::vector<Kro16s> MixedBlocks(Rng& rng, int n) {
  std::vector<Kro16s> b(64 * size_t(n), 0);
  for (int i = 0; i < n; ++i) {
    Kro16s* blk = &b[64 * size_t(i)];
    const int kind = (i / 40) % 4;  // runs of 40 blocks of one kind
    blk[0] = static_cast<Kro16s>(rng.Int(-1023, 1023));
    for (int k = 1; k < 64; ++k) {
      switch (kind) {
        case 0: break;  // empty bands
        case 1: blk[k] = static_cast<Kro16s>(rng.Int(2, 3) * (rng.Int(0, 1) ? 1 : -1)); break;
        case 2: if (rng.Int(0, 9) == 0) blk[k] = static_cast<Kro16s>(rng.Int(-1023, 1023)); break;
        default: blk[k] = static_cast<Kro16s>(rng.Int(-60, 60) / (1 + k / 8));
      }
    }
  }
  return b;
}

void RoundTrip(const std::vector<Kro16s>& blocks, const std::vector<ScanSpec>& script, int restart) {
  const int n = static_cast<int>(blocks.size() / 64);
  std::vector<Kro16s> work = blocks, decoded(blocks.size(), 0);
  for (const ScanSpec& s : script) {
    std::vector<ProgItem> items, ditems;
    for (int i = 0; i < n; ++i) {
      const bool rst = restart > 0 && i > 0 && i % restart == 0;
      items.push_back({&work[64 * size_t(i)], 0, rst, 0, nullptr, nullptr});
      ditems.push_back({&decoded[64 * size_t(i)], 0, rst, 0, nullptr, nullptr});
    }
    std::vector<std::vector<int>> stats(1, std::vector<int>(256, 0));
    ASSERT_EQ(0, ProgStats(s, items, stats));
    std::vector<uint8_t> bits(16), vals(256);
    ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats[0].data(), bits.data(), vals.data()));
    EncTable e(bits, vals);
    DecTable d(bits, vals);
    for (auto& it : items) it.etab = e.get();
    for (auto& it : ditems) it.dtab = d.get();
    KroStatus st;
    const std::vector<uint8_t> data = ProgEncode(s, items, &st);
    ASSERT_EQ(0, st) << s.ss << "-" << s.se << " " << s.ah << "/" << s.al;
    ASSERT_EQ(0, ProgDecode(s, data, ditems)) << s.ss << "-" << s.se << " " << s.ah << "/" << s.al;
  }
  for (int i = 0; i < n; ++i) ASSERT_EQ(0, memcmp(&blocks[64 * size_t(i)], &decoded[64 * size_t(i)], 128)) << i;
}

TEST(ProgressiveCoding, RandomRoundTrips) {
  Rng rng(21);
  const std::vector<Kro16s> blocks = MixedBlocks(rng, 480);
  // Spectral selection only.
  RoundTrip(blocks, {{0, 0, 0, 0}, {1, 5, 0, 0}, {6, 20, 0, 0}, {21, 63, 0, 0}}, 0);
  // Successive approximation, restarts every 7 blocks.
  RoundTrip(blocks, {{0, 0, 0, 1}, {1, 5, 0, 2}, {6, 63, 0, 2}, {1, 63, 2, 1}, {0, 0, 1, 0}, {1, 63, 1, 0}}, 7);
  // Deep: Al 6 down to 0 over one band.
  std::vector<ScanSpec> deep = {{0, 0, 0, 6}, {1, 63, 0, 6}};
  for (int al = 5; al >= 0; --al) {
    deep.push_back({0, 0, al + 1, al});
    deep.push_back({1, 63, al + 1, al});
  }
  RoundTrip(blocks, deep, 0);
}

// Runs of empty bands long enough to reach 32767, in first and refinement scans.
TEST(ProgressiveCoding, LongEndOfBandRuns) {
  std::vector<Kro16s> blocks(64 * 33000, 0);
  for (int i : {0, 32800}) blocks[64 * size_t(i) + 5] = 3;  // 32799 empty bands between
  blocks[64 * 16000 + 9] = -1;                               // significant only at Al 0
  RoundTrip(blocks, {{0, 0, 0, 0}, {1, 63, 0, 1}, {1, 63, 1, 0}}, 0);
}

}  // namespace

// ---- Every target against the literal walk ---------------------------------------
// The decoders find runs and correction positions through masks and take correction
// bits several at a time; the references below read bit by bit as T.81 G.2 walks.

int RefDCFirst(RefReader& r, Kro16s* dst, Kro16s* last, int al, const std::array<Code, 256>& t) {
  int sym, v = 0, st = r.Symbol(t, &sym);
  if (st == 0 && (sym & 15) != 0) st = r.Receive(sym & 15, &v);
  if (st != 0) return st;
  *last = Kro16s(*last + v);
  dst[0] = Kro16s(uint16_t(*last) << al);
  return 0;
}

int RefBit(RefReader& r, int* bit) {
  if (r.bits < 1) {
    if (int st = r.Fill(1)) return st;
  }
  *bit = int(r.Take(1));
  return 0;
}

// One correction bit for a non-zero coefficient.
int RefCorrect(RefReader& r, Kro16s* c, int al) {
  int bit;
  if (int st = RefBit(r, &bit)) return st;
  if (bit && (*c & (1 << al)) == 0) *c = Kro16s(*c + (*c >= 0 ? 1 << al : -(1 << al)));
  return 0;
}

int RefAC(RefReader& r, Kro16s* dst, const ScanSpec& s, const std::array<Code, 256>& t, int* eobrun) {
  int sym, v, st;
  if (s.ah == 0) {  // first scan
    if (*eobrun > 0) return --*eobrun, 0;
    for (int k = s.ss; k <= s.se; ++k) {
      if ((st = r.Symbol(t, &sym)) != 0) return st;
      const int run = sym >> 4, n = sym & 15;
      if (n == 0 && run < 15) {
        *eobrun = (1 << run) - 1;
        if (run > 0) {
          if (r.bits < run && (st = r.Fill(run)) != 0) return st;
          *eobrun += int(r.Take(run));
        }
        return 0;
      }
      k += n == 0 ? 15 : run;
      if (n == 0) continue;
      if ((st = r.Receive(n, &v)) != 0) return st;
      if (k >= 72) return kroStatusError;
      dst[k < 64 ? kZz[k] : 63] = Kro16s(uint16_t(v) << s.al);
    }
    return 0;
  }
  int k = s.ss;
  if (*eobrun <= 0) {
    for (; k <= s.se; ++k) {
      if ((st = r.Symbol(t, &sym)) != 0) return st;
      int run = sym >> 4, value = 0, bit;
      if ((sym & 15) != 0) {
        if ((st = RefBit(r, &bit)) != 0) return st;
        value = bit ? 1 << s.al : -(1 << s.al);
      } else if (run != 15) {
        *eobrun = 1 << run;
        if (run > 0) {
          if (r.bits < run && (st = r.Fill(run)) != 0) return st;
          *eobrun += int(r.Take(run));
        }
        break;
      }
      do {
        Kro16s* c = &dst[k < 64 ? kZz[k] : 63];
        if (*c != 0) {
          if ((st = RefCorrect(r, c, s.al)) != 0) return st;
        } else if (--run < 0) {
          break;
        }
      } while (++k <= s.se);
      if (value != 0) dst[k < 64 ? kZz[k] : 63] = Kro16s(value);
    }
  }
  if (*eobrun > 0) {
    for (; k <= s.se; ++k) {
      Kro16s* c = &dst[kZz[k]];
      if (*c != 0 && (st = RefCorrect(r, c, s.al)) != 0) return st;
    }
    --*eobrun;
  }
  return 0;
}

class ProgressiveTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(ProgressiveTargets);

// Scans of random coefficients, clean and with bits flipped, decoded call by call by
// the library and the references: the same statuses, blocks, positions and states.
TEST_P(ProgressiveTargets, DecodersMatchTheLiteralWalk) {
  Rng rng(41);
  const int n = 400;
  const std::vector<Kro16s> blocks = MixedBlocks(rng, n);
  const std::vector<ScanSpec> script = {{0, 0, 0, 2}, {1, 5, 0, 3}, {6, 63, 0, 2}, {1, 5, 3, 2},
                                        {1, 63, 2, 1}, {0, 0, 2, 1}, {1, 63, 1, 0}, {0, 0, 1, 0}};
  std::vector<Kro16s> lib(blocks.size(), 0), ref(blocks.size(), 0);
  int calls = 0, failures = 0;
  for (const ScanSpec& s : script) {
    std::vector<ProgItem> items;
    for (int i = 0; i < n; ++i)
      items.push_back({const_cast<Kro16s*>(&blocks[64 * size_t(i)]), 0, i > 0 && i % 50 == 0, 0, nullptr, nullptr});
    std::vector<std::vector<int>> stats(1, std::vector<int>(256, 0));
    ASSERT_EQ(0, ProgStats(s, items, stats));
    std::vector<uint8_t> bits(16), vals(256);
    ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats[0].data(), bits.data(), vals.data()));
    EncTable e(bits, vals);
    DecTable d(bits, vals);
    const auto canon = Canonical(bits, vals);
    for (auto& it : items) it.etab = e.get();
    KroStatus est;
    const std::vector<uint8_t> clean = ProgEncode(s, items, &est);
    ASSERT_EQ(0, est);
    for (int variant = 0; variant < 3; ++variant) {
      std::vector<uint8_t> data = clean;
      for (int f = 0; variant > 0 && f < 4; ++f) data[size_t(rng.Int(0, long(data.size()) - 3))] ^= uint8_t(1 << rng.Int(0, 7));
      // Decode into copies of the blocks as they stand before this scan.
      std::vector<Kro16s> a = lib, b = ref;
      DecStateBuf st;
      RefReader rr{data};
      int pos = 0, marker = 0, reob = 0;
      bool failed = false;
      Kro16s last = 0, rlast = 0;
      for (int i = 0; i < n; ++i) {
        if (items[size_t(i)].restart || failed) {  // skip to just past the next marker
          if (marker == 0) {
            while (pos + 1 < int(data.size()) && !(data[pos] == 0xFF && data[pos + 1] >= 0xD0)) ++pos;
            pos += 2;
          }
          kroiDecodeHuffmanStateInit_JPEG_8u(st.get());
          rr.pos = pos;
          marker = rr.marker = rr.bits = reob = 0;
          rr.acc = 0;
          last = rlast = 0;
          failed = false;
        }
        Kro16s* x = &a[64 * size_t(i)];
        Kro16s* y = &b[64 * size_t(i)];
        KroStatus got;
        int want;
        const int len = int(data.size());
        if (s.ss == 0 && s.ah == 0) {
          got = kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(data.data(), len, &pos, x, &last, &marker, s.al, d.get(), st.get());
          want = RefDCFirst(rr, y, &rlast, s.al, canon);
        } else if (s.ss == 0) {
          got = kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(data.data(), len, &pos, x, &marker, s.al, st.get());
          int bit = 0;
          want = RefBit(rr, &bit);
          if (want == 0 && bit) y[0] = Kro16s(y[0] | 1 << s.al);
        } else if (s.ah == 0) {
          got = kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(data.data(), len, &pos, x, &marker, s.ss, s.se, s.al, d.get(), st.get());
          want = RefAC(rr, y, s, canon, &reob);
        } else {
          got = kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(data.data(), len, &pos, x, &marker, s.ss, s.se, s.al, d.get(), st.get());
          want = RefAC(rr, y, s, canon, &reob);
        }
        ++calls;
        failures += got != 0;
        ASSERT_EQ(want, got) << i;
        ASSERT_EQ(rr.pos, pos) << i;
        ASSERT_EQ(rr.bits, st.get()->bitCount) << i;
        ASSERT_EQ(rr.acc, static_cast<uint32_t>(st.get()->accumulator)) << i;
        ASSERT_EQ(rr.marker, marker) << i;
        ASSERT_EQ(reob, st.get()->eobRun) << i;
        ASSERT_EQ(0, memcmp(x, y, 128)) << i;
        failed = got != 0;
      }
      if (variant == 0) {
        lib = a;
        ref = b;
      }
    }
  }
  for (int i = 0; i < n; ++i) ASSERT_EQ(0, memcmp(&blocks[64 * size_t(i)], &lib[64 * size_t(i)], 128)) << i;
  EXPECT_GT(failures, 0);
  EXPECT_GT(calls, 8000);
}
