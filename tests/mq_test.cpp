// SPDX-License-Identifier: BSD-3-Clause
// MQ coder, raw coder and tier-1 context tables: the published MQ test sequence, the
// context tables against T.800's tables written out here, and coder round trips with
// every termination.
#include <gtest/gtest.h>
#include <vector>

#include "mq_coder.h"
#include "test_util.h"

namespace {

using kro::MqDecoder;
using kro::MqEncoder;
using Bytes = std::vector<uint8_t>;

// Codes decisions in the given contexts (all starting from ctx0, state * 2 + MPS, when
// ctx0 >= 0, else from the initial table), terminates and drains the queue like the
// code-block encoder does.
Bytes MqEncodeAll(const std::vector<int>& bits, const std::vector<int>& ctxs, int term,
                  int ctx0 = -1) {
  MqEncoder e{};
  kro::MqEncoderStartSegment(e, false, term == kroMQTermMinimal);
  kro::MqResetContexts(e.ctx);
  if (ctx0 >= 0) {
    for (auto& c : e.ctx) c = static_cast<uint8_t>(ctx0);
  }
  Bytes out;
  auto drain = [&] {
    if (e.skip_first && e.qw > e.qr) {
      ++e.qr;
      e.skip_first = 0;
    }
    const int n = kro::MqDeliverable(e);
    out.insert(out.end(), e.queue + e.qr, e.queue + e.qr + n);
    e.qr += n;
    if (e.qr == e.qw) e.qr = e.qw = 0;
  };
  for (size_t i = 0; i < bits.size(); ++i) {
    kro::mqEncode(e, bits[i], ctxs[i]);
    drain();
  }
  kro::MqTerminate(e, term);
  drain();
  EXPECT_EQ(e.qw, e.qr);
  return out;
}

std::vector<int> MqDecodeAll(const Bytes& data, const std::vector<int>& ctxs, int ctx0 = -1,
                             MqDecoder* end_state = nullptr) {
  MqDecoder d{};
  kro::mqDecoderResetCtx(d);
  if (ctx0 >= 0) {
    for (auto& c : d.ctx) c = static_cast<uint8_t>(ctx0);
  }
  kro::mqDecoderInit(d, data.data(), static_cast<int32_t>(data.size()));
  std::vector<int> bits;
  for (int cx : ctxs) bits.push_back(kro::mqDecoderDecode(d, cx));
  if (end_state) *end_state = d;
  return bits;
}

// The MQ coder test sequence published with the bi-level image coding standard, which
// uses the same coder: 256 decisions in one context (state 0, MPS 0), flushed.
TEST(MqCoder, PublishedTestSequence) {
  const uint8_t input[32] = {0x00, 0x02, 0x00, 0x51, 0x00, 0x00, 0x00, 0xC0, 0x03, 0x52, 0x87,
                             0x2A, 0xAA, 0xAA, 0xAA, 0xAA, 0x82, 0xC0, 0x20, 0x00, 0xFC, 0xD7,
                             0x9E, 0xF6, 0xBF, 0x7F, 0xED, 0x90, 0x4F, 0x46, 0xA3, 0xBF};
  const Bytes expected = {0x84, 0xC7, 0x3B, 0xFC, 0xE1, 0xA1, 0x43, 0x04, 0x02, 0x20,
                          0x00, 0x00, 0x41, 0x0D, 0xBB, 0x86, 0xF4, 0x31, 0x7F, 0xFF,
                          0x88, 0xFF, 0x37, 0x47, 0x1A, 0xDB, 0x6A, 0xDF};
  std::vector<int> bits, ctxs(256, 5);
  for (int i = 0; i < 256; ++i) bits.push_back((input[i / 8] >> (7 - i % 8)) & 1);

  EXPECT_EQ(MqEncodeAll(bits, ctxs, kroMQTermFlush, 0), expected);
  EXPECT_EQ(MqDecodeAll(expected, ctxs, 0), bits);
  Bytes published = expected;  // with the final 0xFF and the marker that follows
  published.push_back(0xFF);
  published.push_back(0xAC);
  EXPECT_EQ(MqDecodeAll(published, ctxs, 0), bits);
}

// T.800 Table D.1 as printed: each row gives the label for sums of horizontal (h),
// vertical (v) and diagonal (d) significant neighbours; -1 means "any", a value with
// kAtLeast means "at least".
constexpr int kAny = -1, kAtLeast = 100;
struct ZcRow {
  int h, v, d, label;
};
constexpr ZcRow kZcLlLh[] = {{2, kAny, kAny, 8},
                             {1, kAtLeast + 1, kAny, 7},
                             {1, 0, kAtLeast + 1, 6},
                             {1, 0, 0, 5},
                             {0, 2, kAny, 4},
                             {0, 1, kAny, 3},
                             {0, 0, kAtLeast + 2, 2},
                             {0, 0, 1, 1},
                             {0, 0, 0, 0}};
struct ZcHhRow {
  int hv, d, label;
};
constexpr ZcHhRow kZcHh[] = {{kAny, kAtLeast + 3, 8},
                             {kAtLeast + 1, 2, 7},
                             {0, 2, 6},
                             {kAtLeast + 2, 1, 5},
                             {1, 1, 4},
                             {0, 1, 3},
                             {kAtLeast + 2, 0, 2},
                             {1, 0, 1},
                             {0, 0, 0}};

bool Matches(int cond, int value) {
  if (cond == kAny) return true;
  if (cond >= kAtLeast) return value >= cond - kAtLeast;
  return value == cond;
}

TEST(MqCoder, ContextTablesFollowT800) {
  for (int i = 0; i < 256; ++i) {
    const int d = __builtin_popcount(i & 0x0F);
    const int v = __builtin_popcount(i & 0x30);
    const int h = __builtin_popcount(i & 0xC0);
    int ll = -1, hl = -1, hh = -1;
    for (const ZcRow& r : kZcLlLh) {
      if (ll < 0 && Matches(r.h, h) && Matches(r.v, v) && Matches(r.d, d)) ll = r.label;
      if (hl < 0 && Matches(r.h, v) && Matches(r.v, h) && Matches(r.d, d)) hl = r.label;
    }
    for (const ZcHhRow& r : kZcHh) {
      if (hh < 0 && Matches(r.hv, h + v) && Matches(r.d, d)) hh = r.label;
    }
    ASSERT_EQ(kro::ZeroCodingLUT_LxHy[i], static_cast<Kro32u>(ll + 2)) << i;
    ASSERT_EQ(kro::ZeroCodingLUT_HxLy[i], static_cast<Kro32u>(hl + 2)) << i;
    ASSERT_EQ(kro::ZeroCodingLUT_HxHy[i], static_cast<Kro32u>(hh + 2)) << i;
  }

  // Table D.3: (H, V) contributions -> label, XOR bit.
  struct ScRow {
    int h, v, label, xor_bit;
  };
  const ScRow sc[] = {{1, 1, 13, 0},  {1, 0, 12, 0},  {1, -1, 11, 0}, {0, 1, 10, 0},  {0, 0, 9, 0},
                      {0, -1, 10, 1}, {-1, 1, 11, 1}, {-1, 0, 12, 1}, {-1, -1, 13, 1}};
  for (int i = 0; i < 512; ++i) {
    if (i == 511) {
      EXPECT_EQ(kro::SignCodingLUT[i], 0u);
      continue;
    }
    auto contrib = [i](int k) { return ((i >> k) & 1) ? (((i >> (5 + k)) & 1) ? -1 : 1) : 0; };
    const int v = std::max(-1, std::min(1, contrib(0) + contrib(1)));
    const int h = std::max(-1, std::min(1, contrib(2) + contrib(3)));
    for (const ScRow& r : sc) {
      if (r.h == h && r.v == v) {
        const Kro32u want =
            static_cast<Kro32u>(r.label + 2) | (static_cast<Kro32u>(r.xor_bit) << 31);
        ASSERT_EQ(kro::SignCodingLUT[i], want) << i;
      }
    }
  }

  EXPECT_EQ(kro::MagnRefineLUT[0], 16u);
  for (int i = 1; i < 256; ++i) EXPECT_EQ(kro::MagnRefineLUT[i], 17u);
  for (int i = 256; i < 512; ++i) EXPECT_EQ(kro::MagnRefineLUT[i], 18u);

  // Table D.7 in context order, and the estimator rows the test sequence does not visit.
  const int initial[19] = {46, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  for (int i = 0; i < 19; ++i) {
    EXPECT_EQ(kro::owniInitialCtxIndexes_JPEG2K[i], initial[i]);
    EXPECT_EQ(kro::owniInitialMPS_JPEG2K[i], 0);
  }
  EXPECT_EQ(kro::owniEstimator_JPEG2K[46][0], 22017);
  EXPECT_EQ(kro::owniEstimator_JPEG2K[46][1], 46);
  EXPECT_EQ(kro::owniEstimator_JPEG2K[46][2], 46);
  for (int s = 0; s < 47; ++s)
    EXPECT_EQ(kro::owniEstimator_JPEG2K[s][3], s == 0 || s == 6 || s == 14);
}

TEST(MqCoder, DistortionTablesFollowTheirFormulas) {
  for (int i = 0; i < 64; ++i) {
    const double v = 1 + i / 64.0;
    EXPECT_EQ(kro::FsLossless_LUT[i], 8192 * v * v);
    EXPECT_EQ(kro::FsLossy_LUT[i], 8192 * (v * v - (v - 1.5) * (v - 1.5)));
  }
  for (int i = 0; i < 128; ++i) {
    const double v = i / 64.0;
    EXPECT_EQ(kro::FmLossless_LUT[i], 8192 * (v - 1) * (v - 1));
    // Squared error of the midpoint 1 before, of 0.5 or 1.5 after the refinement bit.
    const double after = v < 1 ? v - 0.5 : v - 1.5;
    EXPECT_EQ(kro::FmLossy_LUT[i], 8192 * ((v - 1) * (v - 1) - after * after));
  }
}

// Random decisions, skewed so that long MPS runs, LPS bursts and carries all occur.
void RandomDecisions(kro_test::Rng& rng, int n, std::vector<int>& bits, std::vector<int>& ctxs) {
  bits.clear();
  ctxs.clear();
  const int skew = static_cast<int>(rng.Int(1, 50));
  for (int i = 0; i < n; ++i) {
    const int cx = static_cast<int>(rng.Int(0, 18));
    ctxs.push_back(cx);
    bits.push_back(rng.Int(0, 99) < (cx % 3 == 0 ? skew : 50) ? 1 : 0);
  }
}

TEST(MqCoder, RoundTripAllTerminations) {
  kro_test::Rng rng(11);
  std::vector<int> bits, ctxs;
  for (int iter = 0; iter < 1500; ++iter) {
    const int n =
        iter < 300 ? static_cast<int>(rng.Int(0, 12)) : static_cast<int>(rng.Int(0, 3000));
    RandomDecisions(rng, n, bits, ctxs);
    const Bytes flush = MqEncodeAll(bits, ctxs, kroMQTermFlush);
    const Bytes minimal = MqEncodeAll(bits, ctxs, kroMQTermMinimal);
    const Bytes pred = MqEncodeAll(bits, ctxs, kroMQTermPredictable);
    ASSERT_EQ(MqDecodeAll(flush, ctxs), bits) << iter;
    ASSERT_EQ(MqDecodeAll(minimal, ctxs), bits) << iter;
    MqDecoder end{};
    ASSERT_EQ(MqDecodeAll(pred, ctxs, -1, &end), bits) << iter;
    EXPECT_EQ(kro::mqDecoderCheckErrPredTerm(end), 0) << iter;
    EXPECT_LE(minimal.size(), flush.size());
    if (!minimal.empty()) {
      // Nothing shorter decodes: neither the string without its last byte nor that
      // with its new last byte raised.
      EXPECT_NE(minimal.back(), 0xFF);
      Bytes shorter(minimal.begin(), minimal.end() - 1);
      EXPECT_NE(MqDecodeAll(shorter, ctxs), bits) << iter;
      if (!shorter.empty() && shorter.back() < 0x8F) {
        ++shorter.back();
        EXPECT_NE(MqDecodeAll(shorter, ctxs), bits) << iter;
      }
    }
  }
}

TEST(MqCoder, PredictableTerminationDetectsAlteredBytes) {
  kro_test::Rng rng(12);
  std::vector<int> bits, ctxs;
  int altered = 0, detected = 0;
  for (int iter = 0; iter < 200; ++iter) {
    RandomDecisions(rng, static_cast<int>(rng.Int(50, 600)), bits, ctxs);
    const Bytes pred = MqEncodeAll(bits, ctxs, kroMQTermPredictable);
    for (size_t i = 0; i < pred.size(); ++i) {
      Bytes bad = pred;
      bad[i] ^= static_cast<uint8_t>(rng.Int(1, 255));
      MqDecoder end{};
      MqDecodeAll(bad, ctxs, -1, &end);
      ++altered;
      detected += kro::mqDecoderCheckErrPredTerm(end);
    }
  }
  EXPECT_GT(detected, altered * 9 / 10) << detected << " of " << altered;
}

TEST(RawCoder, RoundTripPaddingAndCheck) {
  kro_test::Rng rng(13);
  for (int iter = 0; iter < 2000; ++iter) {
    const int n = static_cast<int>(rng.Int(0, 80));
    const bool ones = iter % 3 == 0;  // long runs of 1s produce 0xFF bytes
    std::vector<int> bits;
    for (int i = 0; i < n; ++i)
      bits.push_back(ones ? rng.Int(0, 15) != 0 : static_cast<int>(rng.Int(0, 1)));
    MqEncoder e{};
    kro::MqEncoderStartSegment(e, true, false);
    for (int b : bits) kro::RawPutBit(e, b);
    kro::RawTerminate(e);
    const Bytes seg(e.queue + e.qr, e.queue + e.qw);
    if (!seg.empty()) {
      EXPECT_NE(seg.back(), 0xFF);
      if (seg.size() >= 2 && seg[seg.size() - 2] == 0xFF) EXPECT_LT(seg.back(), 0x80);
    }
    for (size_t i = 0; i + 1 < seg.size(); ++i) {
      if (seg[i] == 0xFF) EXPECT_LT(seg[i + 1], 0x80);
    }
    kro::RawReader r{};
    kro::RawReaderInit(r, seg.data(), static_cast<int32_t>(seg.size()));
    std::vector<int> back;
    for (int i = 0; i < n; ++i) back.push_back(kro::RawReadBit(r));
    ASSERT_EQ(back, bits) << iter;
    EXPECT_EQ(kro::RawCheckTermination(r), 0) << iter;
  }
  // A last byte without the 0,1,0,1 padding is reported.
  const uint8_t bad[] = {0xB0};  // 1011 then 0000 instead of 0101
  kro::RawReader r{};
  kro::RawReaderInit(r, bad, 1);
  for (int i = 0; i < 4; ++i) kro::RawReadBit(r);
  EXPECT_EQ(kro::RawCheckTermination(r), 1);
}

}  // namespace
