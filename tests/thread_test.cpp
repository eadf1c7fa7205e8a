// SPDX-License-Identifier: BSD-3-Clause
// Several threads at once, each with its own Huffman tables, coder states and work buffers
// of every stateful family, and several threads calling the row-parallel functions at
// once: every thread must get what a lone thread gets. Run under ThreadSanitizer
// (make tsan) these tests also show that no call touches shared mutable memory.
#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include <thread>
#include <vector>

#include "huffman_test_util.h"
#include "test_util.h"

namespace {

using kro_test::Rng;

// FNV-1a over everything a workload produced.
struct Digest {
  uint64_t h = 1469598103934665603u;
  void Add(const void* p, size_t n) {
    for (size_t i = 0; i < n; ++i) h = (h ^ static_cast<const uint8_t*>(p)[i]) * 1099511628211u;
  }
  template <class T>
  void Add(const std::vector<T>& v) {
    Add(v.data(), v.size() * sizeof(T));
  }
  void Add(int v) { Add(&v, sizeof(v)); }
};

// Huffman: tables and states built here, baseline blocks coded both ways.
void HuffmanWork(Rng& rng, Digest& d) {
  using namespace kro_test;
  EncTable enc_dc(kLumDcBits, kLumDcVals), enc_ac(kLumAcBits, kLumAcVals);
  DecTable dec_dc(kLumDcBits, kLumDcVals), dec_ac(kLumAcBits, kLumAcVals);
  ASSERT_EQ(enc_dc.status | enc_ac.status | dec_dc.status | dec_ac.status, kroStatusOk);
  EncStateBuf enc_state;
  DecStateBuf dec_state;

  std::vector<int16_t> blocks(8 * 64);
  for (size_t i = 0; i < blocks.size(); ++i) blocks[i] = static_cast<int16_t>(i % 64 < 10 ? rng.Int(-500, 500) : 0);
  std::vector<uint8_t> coded(8192);
  int pos = 0;
  Kro16s last = 0;
  for (int b = 0; b <= 8; ++b) {
    ASSERT_EQ(kroiEncodeHuffman8x8_JPEG_16s1u_C1(b < 8 ? &blocks[b * 64] : nullptr, coded.data(), 8192, &pos, &last,
                                                 enc_dc.get(), enc_ac.get(), enc_state.get(), b == 8),
              kroStatusOk);
  }
  d.Add(coded.data(), static_cast<size_t>(pos));
  int rpos = 0, marker = 0;
  last = 0;
  std::vector<int16_t> back(64);
  for (int b = 0; b < 8; ++b) {
    ASSERT_EQ(kroiDecodeHuffman8x8_JPEG_1u16s_C1(coded.data(), pos, &rpos, back.data(), &last, &marker, dec_dc.get(),
                                                 dec_ac.get(), dec_state.get()),
              kroStatusOk);
    ASSERT_EQ(memcmp(back.data(), &blocks[b * 64], 128), 0);
  }
}

// JPEG 2000: an encoder state and two decoder states of this thread's own.
void CodeBlockWork(Rng& rng, Digest& d) {
  const int w = 16, h = 12;
  std::vector<Kro32s> coef(w * h);
  for (Kro32s& c : coef) {
    const uint32_t mag = static_cast<uint32_t>(rng.Int(0, 255)) << 20;
    c = static_cast<Kro32s>(mag | (rng.Int(0, 1) ? 0x80000000u : 0));
  }
  KroiEncodeState_JPEG2K* enc = nullptr;
  ASSERT_EQ(kroiEncodeInitAlloc_JPEG2K(&enc, {w, h}), kroStatusOk);
  int sf = 0, passes = 0, segments = 0, more = 1;
  ASSERT_EQ(kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(coef.data(), w * 4, {w, h}, enc, 0, 11, 2, 0, 2, &sf, &passes,
                                                   &segments),
            kroStatusOk);
  std::vector<uint8_t> coded;
  while (more) {
    uint8_t piece[97];
    int len = sizeof(piece);
    ASSERT_EQ(kroiEncodeStoreBits_JPEG2K_1u(piece, &len, enc, &more), kroStatusOk);
    coded.insert(coded.end(), piece, piece + len);
  }
  std::vector<int> lengths(segments), rates(passes);
  for (int s = 0; s < segments; ++s) ASSERT_EQ(kroiEncodeGetTermPassLen_JPEG2K(enc, s, &lengths[s]), kroStatusOk);
  for (int p = 0; p < passes; ++p) ASSERT_EQ(kroiEncodeGetRate_JPEG2K(enc, p, &rates[p]), kroStatusOk);
  kroiEncodeFree_JPEG2K(enc);
  d.Add(coded);
  d.Add(rates);

  int bytes = 0;
  kroiDecodeGetBufSize_JPEG2K({w, h}, &bytes);
  std::vector<uint8_t> state(bytes);
  std::vector<Kro32s> back(w * h), steps(w * h);
  coded.push_back(0);
  ASSERT_EQ(kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(coded.data(), back.data(), w * 4, {w, h}, 0, sf, passes, lengths.data(),
                                                 segments, 2 | 1048576, nullptr,
                                                 reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(state.data())),
            kroStatusOk);
  KroiDecodeCBProgrState_JPEG2K* progr = nullptr;
  ASSERT_EQ(kroiDecodeCBProgrInitAlloc_JPEG2K(&progr, {w, h}), kroStatusOk);
  ASSERT_EQ(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(steps.data(), w * 4, {w, h}, progr, 0, sf, 2 | 1048576), kroStatusOk);
  ASSERT_EQ(kroiDecodeCBProgrSetPassCounter_JPEG2K(passes, progr), kroStatusOk);
  const uint8_t* seg = coded.data();
  for (int len : lengths) {
    ASSERT_EQ(kroiDecodeCBProgrStep_JPEG2K(seg, len, progr), kroStatusOk);
    seg += len;
  }
  kroiDecodeCBProgrFree_JPEG2K(progr);
  d.Add(back);
  d.Add(steps);
}

// Wavelets: 2D transforms through this thread's work buffers, one level each way.
void WaveletWork(Rng& rng, Digest& d) {
  const KroiRect rect = {1, 0, 37, 29};
  std::vector<Kro32s> img(37 * 29), out(37 * 29);
  rng.Fill(img.data(), img.size(), -2000, 2000);
  std::vector<Kro32s> bands[4];
  Kro32s* band_ptr[4];
  const Kro32s* band_in[4];
  int steps[4];
  for (int b = 0; b < 4; ++b) {
    bands[b].assign(19 * 15, 0);
    band_ptr[b] = bands[b].data();
    band_in[b] = bands[b].data();
    steps[b] = 19 * 4;
  }
  int size = 0;
  kroiWTGetBufSize_B53_JPEG2K_32s_C1R(&rect, &size);
  std::vector<Kro8u> work(size);
  ASSERT_EQ(kroiWTFwd_B53_JPEG2K_32s_C1R(img.data(), 37 * 4, band_ptr, steps, &rect, work.data()), kroStatusOk);
  ASSERT_EQ(kroiWTInv_B53_JPEG2K_32s_C1R(band_in, steps, out.data(), 37 * 4, &rect, work.data()), kroStatusOk);
  ASSERT_EQ(out, img);
  std::vector<Kro16s> tile(37 * 29);
  for (size_t i = 0; i < tile.size(); ++i) tile[i] = static_cast<Kro16s>(img[i]);
  kroiWTGetBufSize_D97_JPEG2K_16s_C1IR(&rect, &size);
  std::vector<Kro8u> line(size);
  ASSERT_EQ(kroiWTFwd_D97_JPEG2K_16s_C1IR(tile.data(), 37 * 2, &rect, line.data()), kroStatusOk);
  d.Add(tile);
  for (int b = 0; b < 4; ++b) d.Add(bands[b]);
}

uint64_t Workload(uint64_t seed) {
  Rng rng(seed);
  Digest d;
  HuffmanWork(rng, d);
  CodeBlockWork(rng, d);
  WaveletWork(rng, d);
  return d.h;
}

TEST(Threads, DistinctStatesOfEveryFamilyAtOnce) {
  constexpr int kThreads = 4, kRounds = 3;
  std::vector<uint64_t> want(kThreads);
  for (int t = 0; t < kThreads; ++t) want[t] = Workload(100 + t);
  std::vector<uint64_t> got(kThreads * kRounds);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int r = 0; r < kRounds; ++r) got[t * kRounds + r] = Workload(100 + t);
    });
  }
  for (auto& th : threads) th.join();
  for (int t = 0; t < kThreads; ++t)
    for (int r = 0; r < kRounds; ++r) EXPECT_EQ(got[t * kRounds + r], want[t]) << "thread " << t << " round " << r;
}

// Row-parallel functions called from several threads at once, each call with a team of
// its own (or, when the runtime refuses nesting, alone).
TEST(Threads, RowParallelCallsFromSeveralThreads) {
  kro_test::ScopedThreads team(2);
  const int w = 130, h = 70;  // 9100 samples: the parallel path
  Rng rng(7);
  std::vector<Kro8u> rgb(w * h * 3);
  rng.Fill(rgb.data(), rgb.size(), 0, 255);
  std::vector<Kro32s> planes_in(3 * w * h);
  rng.Fill(planes_in.data(), planes_in.size(), -1000, 1000);

  auto run = [&](std::vector<Kro8u>* ycc, std::vector<Kro32s>* rct, std::vector<Kro8u>* down) {
    ycc->assign(3 * w * h, 0);
    Kro8u* p[3] = {ycc->data(), ycc->data() + w * h, ycc->data() + 2 * w * h};
    EXPECT_EQ(kroiRGBToYCbCr_JPEG_8u_C3P3R(rgb.data(), w * 3, p, w, {w, h}), kroStatusOk);
    *rct = planes_in;
    Kro32s* q[3] = {rct->data(), rct->data() + w * h, rct->data() + 2 * w * h};
    EXPECT_EQ(kroiRCTFwd_JPEG2K_32s_P3IR(q, w * 4, {w, h}), kroStatusOk);
    down->assign((w / 2) * (h / 2), 0);
    EXPECT_EQ(kroiSampleDownH2V2_JPEG_8u_C1R(ycc->data(), w, {w, h}, down->data(), w / 2, {w / 2, h / 2}), kroStatusOk);
  };
  std::vector<Kro8u> ycc_ref, down_ref;
  std::vector<Kro32s> rct_ref;
  {
    kro_test::ScopedThreads one(1);
    run(&ycc_ref, &rct_ref, &down_ref);
  }
  std::vector<int> same(4, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      std::vector<Kro8u> ycc, down;
      std::vector<Kro32s> rct;
      bool ok = true;
      for (int r = 0; r < 5; ++r) {
        run(&ycc, &rct, &down);
        ok = ok && ycc == ycc_ref && rct == rct_ref && down == down_ref;
      }
      same[t] = ok;
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(same, std::vector<int>(4, 1));
}

}  // namespace
