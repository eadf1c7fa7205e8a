// SPDX-License-Identifier: BSD-3-Clause
// JPEG quantisation tables, quality scaling, block quantisation and dequantisation.
// The block kernels are compared with the reference on every SIMD target in
// dct_test.cpp, and the reference's scaled products with exact arithmetic in
// signal_test.cpp; here are the tables and the documented values.
#include <limits.h>

#include <algorithm>
#include <array>
#include <gtest/gtest.h>

#include "kroj.h"

namespace {

TEST(Quant, NullPointers) {
  Kro8u raw[64] = {};
  Kro16u t[64] = {};
  Kro16s b[64] = {};
  EXPECT_EQ(kroiQuantFwdRawTableInit_JPEG_8u(nullptr, 50), kroStatusNullPointer);
  EXPECT_EQ(kroiQuantFwdRawTableInit_JPEG_8u(nullptr, 0), kroStatusNullPointer);
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

// Every step 0..255 in every table position, against plain arithmetic; the natural
// order comes from the zig-zag reordering (checked against T.81 in dct_test.cpp).
TEST(Quant, WorkingTables) {
  for (int first = 0; first < 256; first += 64) {
    Kro8u raw[64];
    Kro16s raw16[64], natural[64];
    for (int i = 0; i < 64; ++i) raw16[i] = raw[i] = static_cast<Kro8u>(first + i);
    ASSERT_EQ(kroiZigzagInv8x8_16s_C1(raw16, natural), kroStatusOk);
    Kro16u fwd[64], inv[64];
    EXPECT_EQ(kroiQuantFwdTableInit_JPEG_8u16u(raw, fwd),
              first == 0 ? kroStatusDivideByZeroWarning : kroStatusOk);
    ASSERT_EQ(kroiQuantInvTableInit_JPEG_8u16u(raw, inv), kroStatusOk);
    for (int k = 0; k < 64; ++k) {
      const int step = natural[k];
      EXPECT_EQ(inv[k], step);
      // 32768 / step to nearest: no step of 1..255 divides 65536 oddly, so no ties.
      EXPECT_EQ(fwd[k], step == 0 ? 65535 : (65536 + step) / (2 * step)) << step;
    }
  }
  Kro8u raw[64];
  std::fill(raw, raw + 64, 1);
  raw[2] = 7;
  Kro16u fwd[64], inv[64];
  ASSERT_EQ(kroiQuantFwdTableInit_JPEG_8u16u(raw, fwd), kroStatusOk);
  ASSERT_EQ(kroiQuantInvTableInit_JPEG_8u16u(raw, inv), kroStatusOk);
  EXPECT_EQ(fwd[8], 4681);  // zig-zag position 2 is row 1, column 0
  EXPECT_EQ(inv[8], 7);
  EXPECT_EQ(fwd[0], 32768);
}

// Worked values: ties to even, the zero-step reciprocal, saturation both ways.
TEST(Quant, KnownValues) {
  Kro16u table[64];
  Kro16s b[64];
  auto one = [&](KroStatus (*f)(Kro16s*, const Kro16u*), Kro16s coef, Kro16u t) {
    std::fill(table, table + 64, t);
    std::fill(b, b + 64, coef);
    EXPECT_EQ(f(b, table), kroStatusOk);
    return b[63];
  };
  const auto fwd = kroiQuantFwd8x8_JPEG_16s_C1I;
  EXPECT_EQ(one(fwd, 3, 16384), 2);  // 1.5 -> 2
  EXPECT_EQ(one(fwd, 5, 16384), 2);  // 2.5 -> 2
  EXPECT_EQ(one(fwd, 1, 16384), 0);  // 0.5 -> 0
  EXPECT_EQ(one(fwd, -3, 16384), -2);
  EXPECT_EQ(one(fwd, 1234, 32768), 1234);     // steps of 1 keep the coefficient
  EXPECT_EQ(one(fwd, 32767, 65535), 32767);   // zero-step entry: saturates
  EXPECT_EQ(one(fwd, -32768, 65535), -32768);
  EXPECT_EQ(one(fwd, 100, 65535), 200);       // 199.997
  const auto inv = kroiQuantInv8x8_JPEG_16s_C1I;
  EXPECT_EQ(one(inv, 200, 255), 32767);
  EXPECT_EQ(one(inv, -200, 255), -32768);
  EXPECT_EQ(one(inv, 128, 255), 32640);
  EXPECT_EQ(one(inv, -128, 255), -32640);
  EXPECT_EQ(one(inv, 3, 0xFFFF), -3);  // steps are read as signed
}

}  // namespace
