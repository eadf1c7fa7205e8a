// SPDX-License-Identifier: BSD-3-Clause
// Lossless JPEG predictors and single-difference Huffman coding.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <vector>

#include "bitio.h"  // state layouts
#include "huffman_test_util.h"
#include "test_util.h"

namespace {

using namespace kro_test;

// Table H.1 in plain integers with real division, modulo 2^16 at the end.
int16_t Prediction(int pred, int ra, int rb, int rc) {
  const int p[8] = {0, ra, rb, rc, ra + rb - rc, ra + int(std::floor((rb - rc) / 2.0)),
                    rb + int(std::floor((ra - rc) / 2.0)), int(std::floor((ra + rb) / 2.0))};
  return static_cast<int16_t>(static_cast<uint16_t>(p[pred]));
}

TEST(LosslessArgs, CheckOrder) {
  Kro16s a[4] = {}, b[4] = {};
  Kro8u buf[8] = {1};
  int pos = 0, marker = 0;
  EncTable e(kLumDcBits, kLumDcVals);
  DecTable d(kLumDcBits, kLumDcVals);
  EncStateBuf es;
  const std::vector<std::pair<KroStatus, std::function<KroStatus()>>> cases = {
      {kroStatusNullPointer, [&] { return kroiDiffPredFirstRow_JPEG_16s_C1(a, nullptr, 0, 8, 0); }},
      {kroStatusBadSize, [&] { return kroiReconstructPredFirstRow_JPEG_16s_C1(a, b, 0, 1, 0); }},
      {kroStatusBadArgument, [&] { return kroiDiffPredFirstRow_JPEG_16s_C1(a, b, 4, 17, 0); }},
      {kroStatusBadArgument, [&] { return kroiReconstructPredFirstRow_JPEG_16s_C1(a, b, 4, 8, -1); }},
      {kroStatusOk, [&] { return kroiDiffPredFirstRow_JPEG_16s_C1(a, b, 4, 8, 9); }},  // Pt not against P
      {kroStatusNullPointer, [&] { return kroiDiffPredRow_JPEG_16s_C1(a, nullptr, b, 0, 0); }},
      {kroStatusBadSize, [&] { return kroiReconstructPredRow_JPEG_16s_C1(a, a, b, 0, 8); }},
      {kroStatusBadArgument, [&] { return kroiDiffPredRow_JPEG_16s_C1(a, a, b, 4, 0); }},
      {kroStatusBadSize, [&] { return kroiEncodeHuffmanOne_JPEG_16s1u_C1(a, buf, 0, nullptr, e.get(), es.get(), 0); }},
      {kroStatusOk, [&] { return kroiEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, buf, 8, &pos, nullptr, es.get(), 1); }},
      {kroStatusNullPointer, [&] { return kroiEncodeHuffmanOne_JPEG_16s1u_C1(a, buf, 8, &pos, nullptr, es.get(), 0); }},
      {kroStatusBadArgument, [&] { return kroiDecodeHuffmanOne_JPEG_1u16s_C1(buf, -1, &pos, a, &marker, d.get(), nullptr); }},
      {kroStatusNullPointer, [&] { return kroiDecodeHuffmanOne_JPEG_1u16s_C1(buf, 0, &pos, a, &marker, d.get(), nullptr); }},
      {kroStatusNullPointer, [&] { return kroiGetHuffmanStatisticsOne_JPEG_16s_C1(a, nullptr); }},
  };
  for (size_t i = 0; i < cases.size(); ++i) {
    pos = 0;
    EXPECT_EQ(cases[i].first, cases[i].second()) << i;
  }
}

TEST(LosslessPrediction, HandValues) {
  Kro16s src[3] = {200, 190, 195}, dst[3];
  ASSERT_EQ(0, kroiDiffPredFirstRow_JPEG_16s_C1(src, dst, 3, 8, 0));
  EXPECT_EQ((std::vector<Kro16s>{72, -10, 5}), std::vector<Kro16s>(dst, dst + 3));  // 200 - 128
  ASSERT_EQ(0, kroiDiffPredFirstRow_JPEG_16s_C1(src, dst, 1, 12, 2));
  EXPECT_EQ((std::vector<Kro16s>{200 - 512, -10}), std::vector<Kro16s>(dst, dst + 2));  // width 1: column 0 only
  // Predictor 7 with Ra = -3, Rb = 0: floor(-1.5) = -2; column 0 from Rb.
  Kro16s prev[2] = {5, 0}, row[2] = {-3, 10}, out[2];
  ASSERT_EQ(0, kroiDiffPredRow_JPEG_16s_C1(row, prev, out, 2, 7));
  EXPECT_EQ((std::vector<Kro16s>{-3 - 5, 10 + 2}), std::vector<Kro16s>(out, out + 2));
}

// Every predictor, precisions 2..16 with point transforms, widths from 1, values that
// wrap: the differences follow table H.1 and reconstruction gives the rows back.
TEST(LosslessPrediction, RoundTripsAllPredictors) {
  Rng rng(4);
  for (int P = 2; P <= 16; ++P) {
    for (int Pt : {0, 1, P / 2}) {
      for (int width : {1, 2, 3, 17, 64}) {
        if (Pt >= P) continue;
        const int hi = P == 16 ? 32767 : (1 << (P - Pt)) - 1, lo = P == 16 ? -32768 : 0;
        std::vector<Kro16s> rows(width * 4), diff(width * 4), back(width * 4);
        rng.Fill(rows.data(), rows.size(), lo, hi);
        for (int pred = 1; pred <= 7; ++pred) {
          ASSERT_EQ(0, kroiDiffPredFirstRow_JPEG_16s_C1(rows.data(), diff.data(), width, P, Pt));
          EXPECT_EQ(static_cast<int16_t>(rows[0] - (1 << (P - Pt - 1))), diff[0]);
          for (int y = 1; y < 4; ++y) {
            const Kro16s* r = &rows[width * y];
            const Kro16s* p = &rows[width * (y - 1)];
            ASSERT_EQ(0, kroiDiffPredRow_JPEG_16s_C1(r, p, &diff[width * y], width, pred));
            for (int x = 0; x < width; ++x) {
              const int16_t want = x == 0 ? p[0] : Prediction(pred, r[x - 1], p[x], p[x - 1]);
              ASSERT_EQ(static_cast<int16_t>(static_cast<uint16_t>(r[x] - want)), diff[width * y + x]) << pred << " " << x;
            }
          }
          ASSERT_EQ(0, kroiReconstructPredFirstRow_JPEG_16s_C1(diff.data(), back.data(), width, P, Pt));
          for (int y = 1; y < 4; ++y)
            ASSERT_EQ(0, kroiReconstructPredRow_JPEG_16s_C1(&diff[width * y], &back[width * (y - 1)], &back[width * y],
                                                            width, pred));
          ASSERT_EQ(rows, back) << "P " << P << " Pt " << Pt << " width " << width << " pred " << pred;
        }
      }
    }
  }
}

// Differences of every category, 16 included, through statistics, an optimal table,
// the encoder and the decoder; then the hand-made edge cases.
TEST(LosslessCoding, DifferencesRoundTrip) {
  Rng rng(8);
  std::vector<Kro16s> v = {-32768, 0};
  for (int i = 0; i < 5000; ++i) {
    const int bits = static_cast<int>(rng.Int(0, 15));
    v.push_back(static_cast<Kro16s>(rng.Int(-((1 << bits) - 1), (1 << bits) - 1)));
  }
  int stats[256] = {};
  for (Kro16s x : v) ASSERT_EQ(0, kroiGetHuffmanStatisticsOne_JPEG_16s_C1(&x, stats));
  EXPECT_EQ(1, stats[16]);
  std::vector<uint8_t> bits(16), vals(256);
  ASSERT_EQ(0, kroiEncodeHuffmanRawTableInit_JPEG_8u(stats, bits.data(), vals.data()));
  EncTable e(bits, vals);
  DecTable d(bits, vals);
  std::vector<Kro8u> out(v.size() * 6);
  EncStateBuf es;
  int pos = 0;
  for (Kro16s& x : v) ASSERT_EQ(0, kroiEncodeHuffmanOne_JPEG_16s1u_C1(&x, out.data(), int(out.size()), &pos, e.get(), es.get(), 0));
  ASSERT_EQ(0, kroiEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, out.data(), int(out.size()), &pos, nullptr, es.get(), 1));
  DecStateBuf ds;
  int rpos = 0, marker = 0;
  Kro16s got = 1234;
  for (size_t i = 0; i < v.size(); ++i) {
    ASSERT_EQ(0, kroiDecodeHuffmanOne_JPEG_1u16s_C1(out.data(), pos, &rpos, &got, &marker, d.get(), ds.get())) << i;
    ASSERT_EQ(v[i], got) << i;
  }
  // Past the end: -62 and the output left alone.
  got = 1234;
  EXPECT_EQ(kroStatusJPEGOutOfBuffer, kroiDecodeHuffmanOne_JPEG_1u16s_C1(out.data(), pos, &rpos, &got, &marker, d.get(), ds.get()));
  EXPECT_EQ(1234, got);

  // Symbol 16 (code 00) reads no extra bits: 00 (16) 01 (0) 00 (16) + padding.
  bits.assign(16, 0);
  bits[1] = 2;
  DecTable d16(bits, {16, 0});
  EncTable e16(bits, {16, 0});
  const Kro8u src[1] = {0x13};
  DecStateBuf ds16;
  rpos = 0;
  for (int want : {-32768, 0, -32768}) {
    ASSERT_EQ(0, kroiDecodeHuffmanOne_JPEG_1u16s_C1(src, 1, &rpos, &got, &marker, d16.get(), ds16.get()));
    EXPECT_EQ(want, got);
  }
  EXPECT_EQ(2, ds16.get()->bitCount);
  // The encoder reports success whatever the writer meets: a missing code, a full buffer.
  EncStateBuf es16;
  Kro8u one[1];
  Kro16s five = 5, big = -32768;
  int opos = 0;
  EXPECT_EQ(0, kroiEncodeHuffmanOne_JPEG_16s1u_C1(&five, one, 1, &opos, e16.get(), es16.get(), 0));
  EXPECT_EQ(0, es16.get()->bitCount);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(0, kroiEncodeHuffmanOne_JPEG_16s1u_C1(&big, one, 1, &opos, e16.get(), es16.get(), 0));
  EXPECT_EQ(1, opos);
  EXPECT_EQ(0x00, one[0]);
}

}  // namespace
