// SPDX-License-Identifier: BSD-3-Clause
// JPEG quantisation tables, quality scaling, block quantisation and dequantisation.
#include <limits.h>

#include <algorithm>
#include <array>
#include <gtest/gtest.h>

#include "kroj.h"
#include "test_util.h"

namespace {

using kro_test::Rng;

// Natural index of each zig-zag position (T.81 figure A.6), from its anti-diagonals.
std::array<int, 64> NaturalAt() {
  std::array<int, 64> at{};
  int i = 0;
  for (int s = 0; s < 15; ++s)
    for (int k = 0; k < 8; ++k) {
      const int row = (s % 2 == 0) ? s - k : k;
      if (row >= 0 && row < 8 && s - row >= 0 && s - row < 8) at[i++] = 8 * row + s - row;
    }
  return at;
}

// x / 2^15 rounded to nearest, ties to even, by exact integer arithmetic.
int64_t RoundQ15(int64_t x) {
  int64_t q = x >= 0 ? x / 32768 : -((-x + 32767) / 32768);  // floor
  const int64_t rem = x - q * 32768;
  if (rem > 16384 || (rem == 16384 && (q & 1))) ++q;
  return q;
}

TEST(Quant, NullPointers) {
  Kro8u raw[64] = {};
  Kro16u t[64] = {};
  Kro16s b[64] = {};
  EXPECT_EQ(kroiQuantFwdRawTableInit_JPEG_8u(nullptr, 50), kroStatusNullPointer);
  EXPECT_EQ(kroiQuantFwdTableInit_JPEG_8u16u(nullptr, t), kroStatusNullPointer);
  EXPECT_EQ(kroiQuantFwdTableInit_JPEG_8u16u(raw, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiQuantInvTableInit_JPEG_8u16u(nullptr, t), kroStatusNullPointer);
  EXPECT_EQ(kroiQuantInvTableInit_JPEG_8u16u(raw, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiQuantFwd8x8_JPEG_16s_C1I(nullptr, t), kroStatusNullPointer);
  EXPECT_EQ(kroiQuantFwd8x8_JPEG_16s_C1I(b, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiQuantInv8x8_JPEG_16s_C1I(nullptr, t), kroStatusNullPointer);
  EXPECT_EQ(kroiQuantInv8x8_JPEG_16s_C1I(b, nullptr), kroStatusNullPointer);
  for (Kro16u v : t) EXPECT_EQ(v, 0);  // nothing written by the failed calls
}

TEST(Quant, QualityScaling) {
  std::array<Kro8u, 64> base;
  for (int k = 0; k < 64; ++k) base[k] = static_cast<Kro8u>(1 + k * 4);  // 1..253
  base[63] = 255;
  const int qualities[] = {-100000, -50, -1, 101, 150, 1000, INT_MAX / 2};
  for (int q = 1; q <= 110 + 7; ++q) {
    const int quality = q <= 110 ? q : qualities[q - 111];
    const int64_t s = quality < 50 ? 5000 / quality : 200 - 2 * static_cast<int64_t>(quality);
    auto t = base;
    ASSERT_EQ(kroiQuantFwdRawTableInit_JPEG_8u(t.data(), quality), kroStatusOk);
    for (int k = 0; k < 64; ++k)
      ASSERT_EQ(t[k], std::clamp<int64_t>((base[k] * s + 50) / 100, 1, 255)) << quality << " " << k;
    if (quality == 50) EXPECT_EQ(t, base);
    if (quality >= 100 || quality < 0)
      EXPECT_TRUE(std::all_of(t.begin(), t.end(), [](Kro8u v) { return v == 1; }));
  }
  auto untouched = base;
  EXPECT_EQ(kroiQuantFwdRawTableInit_JPEG_8u(untouched.data(), 0), kroStatusBadArgument);
  EXPECT_EQ(untouched, base);
  std::array<Kro8u, 64> t{};
  t[0] = 16, t[1] = 99, t[2] = 5, t[3] = 6;
  ASSERT_EQ(kroiQuantFwdRawTableInit_JPEG_8u(t.data(), 75), kroStatusOk);
  EXPECT_EQ(t[0], 8);   // (16 * 50 + 50) / 100
  EXPECT_EQ(t[1], 50);  // (99 * 50 + 50) / 100 = 50
  EXPECT_EQ(t[4], 1);   // zero steps clamp to 1
  t = {};
  t[0] = 99, t[1] = 5, t[2] = 6;
  ASSERT_EQ(kroiQuantFwdRawTableInit_JPEG_8u(t.data(), 1), kroStatusOk);
  EXPECT_EQ(t[1], 250);
  EXPECT_EQ(t[2], 255);
  t[0] = 99;
  ASSERT_EQ(kroiQuantFwdRawTableInit_JPEG_8u(t.data(), 10), kroStatusOk);
  EXPECT_EQ(t[0], 255);  // (99 * 500 + 50) / 100 = 495, clamped
}

// Every step 0..255 in every table position, against plain arithmetic.
TEST(Quant, WorkingTables) {
  const auto natural_at = NaturalAt();
  for (int first = 0; first < 256; first += 64) {
    Kro8u raw[64];
    for (int i = 0; i < 64; ++i) raw[i] = static_cast<Kro8u>(first + i);
    Kro16u fwd[64], inv[64];
    const KroStatus st = kroiQuantFwdTableInit_JPEG_8u16u(raw, fwd);
    EXPECT_EQ(st, first == 0 ? kroStatusDivideByZeroWarning : kroStatusOk);
    ASSERT_EQ(kroiQuantInvTableInit_JPEG_8u16u(raw, inv), kroStatusOk);
    for (int i = 0; i < 64; ++i) {
      const int step = raw[i], k = natural_at[i];
      EXPECT_EQ(inv[k], step);
      // 32768 / step to nearest: no step of 1..255 divides 65536 oddly, so no ties.
      EXPECT_EQ(fwd[k], step == 0 ? 65535 : (65536 + step) / (2 * step)) << step;
    }
  }
  Kro8u raw[64] = {};
  std::fill(raw, raw + 64, 1);
  raw[2] = 7;
  Kro16u fwd[64], inv[64];
  ASSERT_EQ(kroiQuantFwdTableInit_JPEG_8u16u(raw, fwd), kroStatusOk);
  ASSERT_EQ(kroiQuantInvTableInit_JPEG_8u16u(raw, inv), kroStatusOk);
  EXPECT_EQ(fwd[8], 4681);  // zig-zag position 2 is row 1, column 0
  EXPECT_EQ(inv[8], 7);
  EXPECT_EQ(fwd[0], 32768);
}

TEST(Quant, ForwardRoundsHalfToEvenAndSaturates) {
  Kro16u recip[64];
  Kro16s b[64];
  auto quant_one = [&](Kro16s coef, Kro16u r) {
    std::fill(recip, recip + 64, r);
    std::fill(b, b + 64, coef);
    EXPECT_EQ(kroiQuantFwd8x8_JPEG_16s_C1I(b, recip), kroStatusOk);
    return b[0];
  };
  EXPECT_EQ(quant_one(3, 16384), 2);  // 1.5 -> 2
  EXPECT_EQ(quant_one(5, 16384), 2);  // 2.5 -> 2
  EXPECT_EQ(quant_one(-3, 16384), -2);
  EXPECT_EQ(quant_one(32767, 65535), 32767);  // zero-step entry: saturates
  EXPECT_EQ(quant_one(100, 65535), 200);      // 199.997

  // Every reciprocal of the steps 1..255 (and of a zero step), on coefficients
  // across the 16-bit range, against exact rounding.
  Rng rng(9);
  for (int step = 0; step < 256; ++step) {
    const Kro16u r = step == 0 ? 65535 : static_cast<Kro16u>((65536 + step) / (2 * step));
    for (int rep = 0; rep < 8; ++rep) {
      std::fill(recip, recip + 64, r);
      rng.Fill(b, 64, rep < 4 ? -2048 : -32768, rep < 4 ? 2047 : 32767);
      Kro16s in[64];
      std::copy(b, b + 64, in);
      ASSERT_EQ(kroiQuantFwd8x8_JPEG_16s_C1I(b, recip), kroStatusOk);
      for (int k = 0; k < 64; ++k)
        ASSERT_EQ(b[k], std::clamp<int64_t>(RoundQ15(int64_t{in[k]} * r), -32768, 32767))
            << step << " " << in[k];
    }
  }
}

TEST(Quant, InverseSaturates) {
  Rng rng(4);
  Kro16u steps[64];
  Kro16s b[64], in[64];
  for (int rep = 0; rep < 200; ++rep) {
    rng.Fill(steps, 64, 0, rep % 2 ? 255 : 65535);
    rng.Fill(in, 64, -32768, 32767);
    std::copy(in, in + 64, b);
    ASSERT_EQ(kroiQuantInv8x8_JPEG_16s_C1I(b, steps), kroStatusOk);
    for (int k = 0; k < 64; ++k)
      ASSERT_EQ(b[k],
                std::clamp<int64_t>(int64_t{in[k]} * static_cast<Kro16s>(steps[k]), -32768, 32767));
  }
  std::fill(steps, steps + 64, 255);
  b[0] = 200, b[1] = -200, b[2] = 128, b[3] = -128;
  ASSERT_EQ(kroiQuantInv8x8_JPEG_16s_C1I(b, steps), kroStatusOk);
  EXPECT_EQ(b[0], 32767);
  EXPECT_EQ(b[1], -32768);
  EXPECT_EQ(b[2], 32640);
  EXPECT_EQ(b[3], -32640);
}

}  // namespace
