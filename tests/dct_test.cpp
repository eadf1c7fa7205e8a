// SPDX-License-Identifier: BSD-3-Clause
// 8x8 DCT pair, the combined quantising block functions, level shifts and zig-zag.
#include <math.h>
#include <string.h>

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "kroj.h"
#include "ref/dct_ref.h"
#include "ref/quant_ref.h"
#include "simd_test_util.h"
#include "test_util.h"

namespace {

using kro_test::GuardedImage;
using kro_test::Rng;
using kro_test::ScopedThreads;
using Block = std::array<Kro16s, 64>;

// Double-precision T.81 A.3.3 transforms, separable; index 8 * row + column, the row
// being the vertical frequency. kCos[u][x] = C(u) cos((2x + 1) u pi / 16) / 2.
struct Cosines {
  double c[8][8];
  Cosines() {
    for (int u = 0; u < 8; ++u)
      for (int x = 0; x < 8; ++x) c[u][x] = cos((2 * x + 1) * u * M_PI / 16) / (u ? 2 : 2 * M_SQRT2);
  }
};
const Cosines kCos;

// out[8a + b] = sum over i, j of in[8i + j] * m[a][i] * m[b][j] (m = c for the forward
// transform, its transpose for the inverse one).
template <bool kInverse>
std::array<double, 64> Separable(const double* in) {
  auto m = [](int a, int i) { return kInverse ? kCos.c[i][a] : kCos.c[a][i]; };
  double tmp[64];
  for (int i = 0; i < 8; ++i)
    for (int b = 0; b < 8; ++b) {
      double s = 0;
      for (int j = 0; j < 8; ++j) s += in[8 * i + j] * m(b, j);
      tmp[8 * i + b] = s;
    }
  std::array<double, 64> out{};
  for (int a = 0; a < 8; ++a)
    for (int b = 0; b < 8; ++b) {
      double s = 0;
      for (int i = 0; i < 8; ++i) s += tmp[8 * i + b] * m(a, i);
      out[8 * a + b] = s;
    }
  return out;
}
std::array<double, 64> TrueFdct(const double* f) { return Separable<false>(f); }
std::array<double, 64> TrueIdct(const double* F) { return Separable<true>(F); }

Block Fdct(const Block& in) {
  Block out;
  EXPECT_EQ(kroiDCT8x8Fwd_16s_C1(in.data(), out.data()), kroStatusOk);
  return out;
}

Block Idct(const Block& in) {
  Block out;
  EXPECT_EQ(kroiDCT8x8Inv_16s_C1(in.data(), out.data()), kroStatusOk);
  return out;
}

Block Filled(Kro16s v) {
  Block b;
  b.fill(v);
  return b;
}

TEST(Dct, ArgumentChecksInOrder) {
  Kro16s b[64] = {};
  Kro8u px[64] = {};
  Kro16u t[64] = {};
  EXPECT_EQ(kroiDCT8x8Fwd_16s_C1(nullptr, b), kroStatusNullPointer);
  EXPECT_EQ(kroiDCT8x8Fwd_16s_C1(b, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDCT8x8Fwd_16s_C1I(nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDCT8x8Inv_16s_C1(nullptr, b), kroStatusNullPointer);
  EXPECT_EQ(kroiDCT8x8Inv_16s_C1(b, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDCT8x8Inv_16s_C1I(nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDCTQuantFwd8x8_JPEG_16s_C1(b, b, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDCTQuantFwd8x8_JPEG_16s_C1I(nullptr, t), kroStatusNullPointer);
  EXPECT_EQ(kroiDCTQuantInv8x8_JPEG_16s_C1(nullptr, b, t), kroStatusNullPointer);
  EXPECT_EQ(kroiDCTQuantInv8x8_JPEG_16s_C1I(b, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiZigzagFwd8x8_16s_C1(nullptr, b), kroStatusNullPointer);
  EXPECT_EQ(kroiZigzagInv8x8_16s_C1(b, nullptr), kroStatusNullPointer);

  // LS blocks: principal pointers, then the step, then the table.
  EXPECT_EQ(kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(nullptr, 0, b, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 8, nullptr, t), kroStatusNullPointer);
  EXPECT_EQ(kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 0, b, nullptr), kroStatusBadStep);
  EXPECT_EQ(kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px, 8, b, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(b, nullptr, 0, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(b, px, -8, nullptr), kroStatusBadStep);
  EXPECT_EQ(kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(b, px, 8, nullptr), kroStatusNullPointer);

  // Region level shifts: source, source step, destination, destination step, size.
  const KroiSize ok{8, 8}, bad{0, 8};
  EXPECT_EQ(kroiSub128_JPEG_8u16s_C1R(nullptr, 0, nullptr, 0, bad), kroStatusNullPointer);
  EXPECT_EQ(kroiSub128_JPEG_8u16s_C1R(px, 0, nullptr, 0, bad), kroStatusBadStep);
  EXPECT_EQ(kroiSub128_JPEG_8u16s_C1R(px, 8, nullptr, 0, bad), kroStatusNullPointer);
  EXPECT_EQ(kroiSub128_JPEG_8u16s_C1R(px, 8, b, 0, bad), kroStatusBadStep);
  EXPECT_EQ(kroiSub128_JPEG_8u16s_C1R(px, 8, b, 16, bad), kroStatusBadSize);
  EXPECT_EQ(kroiSub128_JPEG_8u16s_C1R(px, 8, b, 16, KroiSize{8, -1}), kroStatusBadSize);
  EXPECT_EQ(kroiSub128_JPEG_8u16s_C1R(px, 8, b, 16, ok), kroStatusOk);
  EXPECT_EQ(kroiAdd128_JPEG_16s8u_C1R(nullptr, 0, nullptr, 0, bad), kroStatusNullPointer);
  EXPECT_EQ(kroiAdd128_JPEG_16s8u_C1R(b, -1, nullptr, 0, bad), kroStatusBadStep);
  EXPECT_EQ(kroiAdd128_JPEG_16s8u_C1R(b, 16, nullptr, 0, bad), kroStatusNullPointer);
  EXPECT_EQ(kroiAdd128_JPEG_16s8u_C1R(b, 16, px, 0, bad), kroStatusBadStep);
  EXPECT_EQ(kroiAdd128_JPEG_16s8u_C1R(b, 16, px, 8, bad), kroStatusBadSize);
  EXPECT_EQ(kroiAdd128_JPEG_16s8u_C1R(b, 16, px, 8, ok), kroStatusOk);
}

// Values worked out from the integer formulas by hand or with a separate script.
TEST(Dct, KnownBlocks) {
  EXPECT_EQ(Fdct(Filled(0)), Filled(0));
  for (Kro16s v : {1, -1, 100, -128, 255, 511, -512}) {
    Block expect = Filled(0);
    expect[0] = static_cast<Kro16s>(8 * v);
    EXPECT_EQ(Fdct(Filled(v)), expect) << v;
  }
  // Out-of-range input wraps at 16 bits between the passes: 64 * 1024 = 65536
  // becomes 0, 64 * 512 becomes -32768 (-> -4096), 64 * 32767 becomes -64 (-> -8).
  EXPECT_EQ(Fdct(Filled(1024)), Filled(0));
  EXPECT_EQ(Fdct(Filled(512))[0], -4096);
  EXPECT_EQ(Fdct(Filled(32767))[0], -8);

  Block extreme;  // full 16-bit swings: every stage wraps
  for (int i = 0; i < 64; ++i) extreme[i] = (i % 3 == 0) ? 32767 : -32768;
  const Block extreme_dct = {-3, 0, 2723, 0, 0,  0, -2974, 0, 0, 83,  0, -85,  0, -43, 0, -33,
                             0,  0, -13,  0, 0,  0, -395,  0, 0, 114, 0, -116, 0, 15,  0, -45,
                             0,  0, -23,  0, -1, 0, -731,  0, 0, 574, 0, -584, 0, 73,  0, -227,
                             0,  0, 31,   0, 1,  0, 954,   0, 0, -56, 0, 57,   0, 708, 0, 22};
  EXPECT_EQ(Fdct(extreme), extreme_dct);

  Block dc = Filled(0);
  for (auto [in, out] : {std::pair{800, 100}, {4, 1}, {3, 0}, {-8, -1}, {-4, 0}}) {
    dc[0] = static_cast<Kro16s>(in);
    EXPECT_EQ(Idct(dc), Filled(static_cast<Kro16s>(out))) << in;
  }
  dc[0] = 32767;  // pass 1 gives 8 * 32767, which wraps to -8; pass 2 rounds it to 0
  EXPECT_EQ(Idct(dc), Filled(0));

  Block coef;
  for (int i = 0; i < 64; ++i) coef[i] = (i % 5 == 0) ? 32767 : -32768;
  const Block coef_idct = {-889, -310, -855, 862, 492, 72,   -966, 738,  552,  -286, -393,
                           -77,  369,  -161, 264, 191, -106, 500,  -207, 578,  980,  -700,
                           940,  14,   374,  145, 36,  -801, -48,  436,  725,  -429, 657,
                           127,  -272, 85,   -22, 933, -473, 837,  311,  322,  711,  858,
                           -562, 39,   -953, 363, 193, 355,  1006, -607, -600, 332,  278,
                           -411, -70,  172,  997, 126, 414,  72,   -841, -279};
  EXPECT_EQ(Idct(coef), coef_idct);
}

TEST(Dct, ForwardWithinOneUnitOfTheTrueTransform) {
  Rng rng(11);
  for (int lim : {128, 256}) {  // 8-bit samples, and 9-bit differences
    double worst = 0;
    for (int n = 0; n < 3000; ++n) {
      Block b;
      rng.Fill(b.data(), 64, -lim, lim - 1);
      double f[64];
      for (int i = 0; i < 64; ++i) f[i] = b[i];
      const auto truth = TrueFdct(f);
      const Block got = Fdct(b);
      for (int i = 0; i < 64; ++i) worst = std::max(worst, fabs(got[i] - truth[i]));
    }
    EXPECT_LE(worst, 1.0) << lim;
  }
}

// The IEEE 1180-1990 accuracy test of an 8x8 IDCT: blocks from the standard's
// generator over [-L, H], reference coefficients from the rounded double FDCT
// clipped to 12 bits, compared after clipping to 9 bits with the rounded double
// IDCT, for 10000 blocks per range and sign.
struct Ieee1180Figures {
  int peak = 0;
  double worst_pixel_mse = 0, overall_mse = 0, worst_pixel_mean = 0, overall_mean = 0;
};

Ieee1180Figures RunIeee1180(int lo, int hi, int sign) {
  uint32_t seed = 1;
  auto rand_in = [&](int L, int H) {
    seed = seed * 1103515245u + 12345u;
    const double x = static_cast<double>(seed & 0x7ffffffe) / 2147483647.0 * (L + H + 1);
    return static_cast<int>(x) - L;
  };
  constexpr int kBlocks = 10000;
  double sum_err[64] = {}, sum_sq[64] = {};
  Ieee1180Figures fig;
  auto clip = [](double v, int lo_, int hi_) {
    return std::clamp(static_cast<int>(floor(v + 0.5)), lo_, hi_);
  };
  for (int n = 0; n < kBlocks; ++n) {
    double f[64];
    for (double& v : f) v = sign * rand_in(lo, hi);
    const auto F = TrueFdct(f);
    Block coef;
    double Fr[64];
    for (int i = 0; i < 64; ++i) {
      coef[i] = static_cast<Kro16s>(clip(F[i], -2048, 2047));
      Fr[i] = coef[i];
    }
    const auto ref = TrueIdct(Fr);
    const Block got = Idct(coef);
    for (int i = 0; i < 64; ++i) {
      const int e = std::clamp<int>(got[i], -256, 255) - clip(ref[i], -256, 255);
      fig.peak = std::max(fig.peak, abs(e));
      sum_err[i] += e;
      sum_sq[i] += e * e;
    }
  }
  double all_err = 0, all_sq = 0;
  for (int i = 0; i < 64; ++i) {
    fig.worst_pixel_mse = std::max(fig.worst_pixel_mse, sum_sq[i] / kBlocks);
    fig.worst_pixel_mean = std::max(fig.worst_pixel_mean, fabs(sum_err[i]) / kBlocks);
    all_err += sum_err[i];
    all_sq += sum_sq[i];
  }
  fig.overall_mse = all_sq / (64.0 * kBlocks);
  fig.overall_mean = fabs(all_err) / (64.0 * kBlocks);
  return fig;
}

TEST(Dct, InverseMeetsIeee1180) {
  for (auto [lo, hi] : {std::pair{256, 255}, {5, 5}, {300, 300}}) {
    for (int sign : {1, -1}) {
      const Ieee1180Figures f = RunIeee1180(lo, hi, sign);
      SCOPED_TRACE(testing::Message() << "L=" << lo << " H=" << hi << " sign=" << sign);
      EXPECT_LE(f.peak, 1);
      EXPECT_LE(f.worst_pixel_mse, 0.06);
      EXPECT_LE(f.overall_mse, 0.02);
      EXPECT_LE(f.worst_pixel_mean, 0.015);
      EXPECT_LE(f.overall_mean, 0.0015);
      RecordProperty(
          "ieee1180_" + std::to_string(lo) + "_" + std::to_string(hi) + "_" + std::to_string(sign),
          testing::PrintToString(std::array<double, 5>{double(f.peak), f.worst_pixel_mse,
                                                       f.overall_mse, f.worst_pixel_mean,
                                                       f.overall_mean}));
    }
  }
  EXPECT_EQ(Idct(Filled(0)), Filled(0));
}

// Zig-zag order rebuilt by walking the anti-diagonals of T.81 figure A.6: even
// diagonals run up and to the right, odd ones down and to the left.
std::array<int, 64> ZigzagWalk() {
  std::array<int, 64> natural_at{};
  int i = 0;
  for (int s = 0; s < 15; ++s)
    for (int k = 0; k < 8; ++k) {
      const int row = (s % 2 == 0) ? s - k : k;
      if (row < 0 || row > 7 || s - row < 0 || s - row > 7) continue;
      natural_at[i++] = 8 * row + (s - row);
    }
  return natural_at;
}

TEST(Dct, ZigzagOrder) {
  const auto natural_at = ZigzagWalk();
  Block nat, zz, back;
  for (int k = 0; k < 64; ++k) nat[k] = static_cast<Kro16s>(1000 + k);
  ASSERT_EQ(kroiZigzagFwd8x8_16s_C1(nat.data(), zz.data()), kroStatusOk);
  for (int i = 0; i < 64; ++i) EXPECT_EQ(zz[i], 1000 + natural_at[i]) << i;
  EXPECT_EQ(zz[5], 1002);  // natural index 2 (row 0, column 2) sits at position 5
  ASSERT_EQ(kroiZigzagInv8x8_16s_C1(zz.data(), back.data()), kroStatusOk);
  EXPECT_EQ(back, nat);
}

// Rows split over threads give the formula's result whatever the thread count, on
// both sides of the 8193-sample threshold, with padded steps (odd ones for bytes).
TEST(LevelShift, ParallelRowsMatchSerial) {
  Rng rng(3);
  for (KroiSize s : {KroiSize{128, 64}, {8193, 1}, {100, 82}, {97, 131}, {10000, 1}, {3, 3000}}) {
    GuardedImage<Kro8u> src(s.width, s.height, 1, 3);
    src.FillRandom(rng, 0, 255);
    GuardedImage<Kro16s> wide(s.width, s.height, 1, 6);  // clamps at both ends
    wide.FillRandom(rng, -32768, 32767);
    for (int threads = 1; threads <= 8; ++threads) {
      ScopedThreads t(threads);
      GuardedImage<Kro16s> mid(s.width, s.height, 1, 2);
      GuardedImage<Kro8u> out(s.width, s.height, 1, 1);
      ASSERT_EQ(kroiSub128_JPEG_8u16s_C1R(src.data(), src.step(), mid.data(), mid.step(), s), 0);
      ASSERT_EQ(kroiAdd128_JPEG_16s8u_C1R(wide.data(), wide.step(), out.data(), out.step(), s), 0);
      EXPECT_TRUE(mid.IntactOutside() && out.IntactOutside());
      for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x) {
          ASSERT_EQ(mid.at(x, y), src.at(x, y) - 128);
          ASSERT_EQ(out.at(x, y), std::clamp(wide.at(x, y) + 128, 0, 255)) << threads;
        }
    }
  }
}

}  // namespace

// ---------------------------------------------------------------------------
// Every SIMD target against the reference kernels: the block functions alone, in
// place and combined (the reference chains are the single functions run in turn),
// and the level-shift rows.

namespace {

namespace ref = kro::ref;

// Blocks of six kinds: 8-bit sample differences, typical coefficients, the whole
// 16-bit range, only extremes (every stage wraps), a lone DC term (the inverse
// transform's shortcut), and a DC term with one AC coefficient anywhere.
Block RandomBlock(Rng& rng, int kind) {
  Block b{};
  static constexpr Kro16s kExtremes[] = {-32768, 32767, -32767, 0, -1, 1};
  if (kind >= 4) {
    b[0] = static_cast<Kro16s>(rng.Int(-32768, 32767));
    if (kind == 5) b[rng.Int(1, 63)] = static_cast<Kro16s>(rng.Int(1, 3) * (rng.Int(0, 1) ? 1 : -1));
    return b;
  }
  for (Kro16s& v : b) {
    switch (kind) {
      case 0: v = static_cast<Kro16s>(rng.Int(-128, 127)); break;
      case 1: v = static_cast<Kro16s>(rng.Int(-1024, 1023)); break;
      case 2: v = static_cast<Kro16s>(rng.Int(-32768, 32767)); break;
      default: v = kExtremes[rng.Int(0, 5)];
    }
  }
  return b;
}

class DctTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(DctTargets);

TEST_P(DctTargets, BlocksMatchTheReference) {
  Rng rng(12);
  for (int n = 0; n < 300; ++n) {
    SCOPED_TRACE(n);
    const Block b = RandomBlock(rng, n % 6);
    Kro16u recip[64], steps[64];  // every reciprocal and step, 0 included
    rng.Fill(recip, 64, 0, 65535);
    rng.Fill(steps, 64, 0, n % 2 ? 255 : 65535);
    Block want, got, in_place = b;

    ref::FwdDct8x8(b.data(), want.data());
    ASSERT_EQ(kroiDCT8x8Fwd_16s_C1(b.data(), got.data()), kroStatusOk);
    ASSERT_EQ(kroiDCT8x8Fwd_16s_C1I(in_place.data()), kroStatusOk);
    ASSERT_EQ(got, want);
    ASSERT_EQ(in_place, want);
    ref::QuantFwdBlock(want.data(), recip);
    in_place = b;
    ASSERT_EQ(kroiDCTQuantFwd8x8_JPEG_16s_C1(b.data(), got.data(), recip), kroStatusOk);
    ASSERT_EQ(kroiDCTQuantFwd8x8_JPEG_16s_C1I(in_place.data(), recip), kroStatusOk);
    ASSERT_EQ(got, want);
    ASSERT_EQ(in_place, want);

    ref::QuantInvBlock(b.data(), steps, want.data());
    got = b;
    ASSERT_EQ(kroiQuantInv8x8_JPEG_16s_C1I(got.data(), steps), kroStatusOk);
    ASSERT_EQ(got, want);
    ref::InvDct8x8(want.data(), want.data());
    in_place = b;
    ASSERT_EQ(kroiDCTQuantInv8x8_JPEG_16s_C1(b.data(), got.data(), steps), kroStatusOk);
    ASSERT_EQ(kroiDCTQuantInv8x8_JPEG_16s_C1I(in_place.data(), steps), kroStatusOk);
    ASSERT_EQ(got, want);
    ASSERT_EQ(in_place, want);
    ref::InvDct8x8(b.data(), want.data());
    ASSERT_EQ(kroiDCT8x8Inv_16s_C1(b.data(), got.data()), kroStatusOk);
    ASSERT_EQ(got, want);

    got = b;
    ref::QuantFwdBlock(got.data(), recip);
    in_place = b;
    ASSERT_EQ(kroiQuantFwd8x8_JPEG_16s_C1I(in_place.data(), recip), kroStatusOk);
    ASSERT_EQ(in_place, got);

    // LS forms on 8x8 regions with odd steps; the region kernels' rows are the
    // reference level shift.
    GuardedImage<Kro8u> px(8, 8, 1, 5), out(8, 8, 1, 7);
    px.FillRandom(rng, 0, 255);
    if (n % 3 == 0) {  // only 0 and 255: the largest first-pass values
      for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) px.at(x, y) = px.at(x, y) & 1 ? 255 : 0;
    }
    for (int y = 0; y < 8; ++y) ref::Sub128Row(px.row(y), want.data() + 8 * y, 8);
    ref::FwdDct8x8(want.data(), want.data());
    ref::QuantFwdBlock(want.data(), recip);
    ASSERT_EQ(kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(px.data(), px.step(), got.data(), recip),
              kroStatusOk);
    ASSERT_EQ(got, want);

    ref::QuantInvBlock(b.data(), steps, want.data());
    ref::InvDct8x8(want.data(), want.data());
    in_place = b;
    ASSERT_EQ(kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(b.data(), out.data(), out.step(), steps),
              kroStatusOk);
    for (int y = 0; y < 8; ++y) {
      Kro8u row[8];
      ref::Add128Row(want.data() + 8 * y, row, 8);
      ASSERT_TRUE(std::equal(row, row + 8, out.row(y))) << y;
    }
    ASSERT_TRUE(out.IntactOutside());
    ASSERT_EQ(b, in_place);  // the source block stays as it was
  }
}

class LevelShiftTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(LevelShiftTargets);

TEST_P(LevelShiftTargets, RowsMatchTheReference) {
  kro_test::Rng rng(77);
  for (int w : kro_test::EdgeWidths()) {
    for (int h : {1, 3}) {
      kro_test::GuardedImage<Kro8u> px(w, h, 1, 5), back(w, h, 1, 3);
      kro_test::GuardedImage<Kro16s> lv(w, h, 1, 2);
      px.FillRandom(rng, 0, 255);
      ASSERT_EQ(kroiSub128_JPEG_8u16s_C1R(px.data(), px.step(), lv.data(), lv.step(), px.size()),
                kroStatusOk);
      std::vector<Kro16s> want(w);
      for (int y = 0; y < h; ++y) {
        ref::Sub128Row(px.row(y), want.data(), w);
        ASSERT_TRUE(std::equal(want.begin(), want.end(), lv.row(y))) << w;
      }
      // Clamping needs values far outside the sample range, both signs.
      lv.FillRandom(rng, -32768, 32767);
      for (int x = 0; x < w; x += 5) lv.at(x, 0) = static_cast<Kro16s>(32767 - x % 3);
      ASSERT_EQ(kroiAdd128_JPEG_16s8u_C1R(lv.data(), lv.step(), back.data(), back.step(), lv.size()),
                kroStatusOk);
      std::vector<Kro8u> want8(w);
      for (int y = 0; y < h; ++y) {
        ref::Add128Row(lv.row(y), want8.data(), w);
        ASSERT_TRUE(std::equal(want8.begin(), want8.end(), back.row(y))) << w;
      }
      EXPECT_TRUE(lv.IntactOutside() && back.IntactOutside());
    }
  }
}

}  // namespace
