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

// Table H.1 in plain integers, modulo 2^16 at the end.
int16_t Prediction(int pred, int ra, int rb, int rc) {
  int p = 0;
  switch (pred) {
    case 1: p = ra; break;
    case 2: p = rb; break;
    case 3: p = rc; break;
    case 4: p = ra + rb - rc; break;
    case 5: p = ra + (int)std::floor((rb - rc) / 2.0); break;
    case 6: p = rb + (int)std::floor((ra - rc) / 2.0); break;
    case 7: p = (int)std::floor((ra + rb) / 2.0); break;
  }
  return static_cast<int16_t>(static_cast<uint16_t>(p));
}

TEST(LosslessArgs, CheckOrder) {
  Kro16s a[4] = {}, b[4] = {};
  Kro8u buf[8] = {1};
  int pos = 0, marker = 0, stats[256] = {};
  EncTable e(kLumDcBits, kLumDcVals);
  DecTable d(kLumDcBits, kLumDcVals);
  EncStateBuf es;
  DecStateBuf ds;
  struct Case {
    const char* what;
    KroStatus want;
    std::function<KroStatus()> call;
  };
  const std::vector<Case> cases = {
      {"first null+width", kroStatusNullPointer, [&] { return kroiDiffPredFirstRow_JPEG_16s_C1(a, nullptr, 0, 8, 0); }},
      {"first width+P", kroStatusBadSize, [&] { return kroiReconstructPredFirstRow_JPEG_16s_C1(a, b, 0, 1, 0); }},
      {"first P", kroStatusBadArgument, [&] { return kroiDiffPredFirstRow_JPEG_16s_C1(a, b, 4, 17, 0); }},
      {"first Pt", kroStatusBadArgument, [&] { return kroiReconstructPredFirstRow_JPEG_16s_C1(a, b, 4, 8, -1); }},
      {"first Pt not against P", kroStatusOk, [&] { return kroiDiffPredFirstRow_JPEG_16s_C1(a, b, 4, 8, 9); }},
      {"row prev+width", kroStatusNullPointer, [&] { return kroiDiffPredRow_JPEG_16s_C1(a, nullptr, b, 0, 0); }},
      {"row width+pred", kroStatusBadSize, [&] { return kroiReconstructPredRow_JPEG_16s_C1(a, a, b, 0, 8); }},
      {"row pred", kroStatusBadArgument, [&] { return kroiDiffPredRow_JPEG_16s_C1(a, a, b, 4, 0); }},
      {"enc len+pos", kroStatusBadSize,
       [&] { return kroiEncodeHuffmanOne_JPEG_16s1u_C1(a, buf, 0, nullptr, e.get(), es.get(), 0); }},
      {"enc flush needs no table", kroStatusOk,
       [&] { return kroiEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, buf, 8, &pos, nullptr, es.get(), 1); }},
      {"enc table", kroStatusNullPointer,
       [&] { return kroiEncodeHuffmanOne_JPEG_16s1u_C1(a, buf, 8, &pos, nullptr, es.get(), 0); }},
      {"dec len+state", kroStatusBadArgument,
       [&] { return kroiDecodeHuffmanOne_JPEG_1u16s_C1(buf, -1, &pos, a, &marker, d.get(), nullptr); }},
      {"dec state", kroStatusNullPointer,
       [&] { return kroiDecodeHuffmanOne_JPEG_1u16s_C1(buf, 0, &pos, a, &marker, d.get(), nullptr); }},
      {"stats", kroStatusNullPointer, [&] { return kroiGetHuffmanStatisticsOne_JPEG_16s_C1(a, nullptr); }},
  };
  for (const Case& c : cases) {
    pos = 0;
    EXPECT_EQ(c.want, c.call()) << c.what;
  }
  (void)stats;
}

TEST(LosslessPrediction, HandValues) {
  Kro16s src[3] = {200, 190, 195}, dst[3];
  ASSERT_EQ(0, kroiDiffPredFirstRow_JPEG_16s_C1(src, dst, 3, 8, 0));
  EXPECT_EQ(72, dst[0]);  // 200 - 128
  EXPECT_EQ(-10, dst[1]);
  EXPECT_EQ(5, dst[2]);
  ASSERT_EQ(0, kroiDiffPredFirstRow_JPEG_16s_C1(src, dst, 1, 12, 2));
  EXPECT_EQ(200 - 512, dst[0]);
  EXPECT_EQ(-10, dst[1]);  // width 1: column 0 only
  // Predictor 7 with Ra = -3, Rb = 0: floor(-1.5) = -2.
  Kro16s prev[2] = {5, 0}, row[2] = {1, -3 + 0}, out[2];
  row[0] = -3;
  row[1] = 10;
  ASSERT_EQ(0, kroiDiffPredRow_JPEG_16s_C1(row, prev, out, 2, 7));
  EXPECT_EQ(-3 - 5, out[0]);  // column 0 from Rb
  EXPECT_EQ(10 - (-2), out[1]);
}

// Every predictor, precisions 2..16 with point transforms, widths from 1, values that
// wrap: the differences follow table H.1 and reconstruction gives the rows back.
TEST(LosslessPrediction, RoundTripsAllPredictors) {
  Rng rng(4);
  for (int P = 2; P <= 16; ++P) {
    for (int Pt : {0, 1, P / 2}) {
      if (Pt >= P) continue;
      for (int width : {1, 2, 3, 17, 64}) {
        const int hi = P == 16 ? 32767 : (1 << (P - Pt)) - 1, lo = P == 16 ? -32768 : 0;
        std::vector<Kro16s> rows(width * 4), diff(width * 4), back(width * 4);
        rng.Fill(rows.data(), rows.size(), lo, hi);
        for (int pred = 1; pred <= 7; ++pred) {
          ASSERT_EQ(0, kroiDiffPredFirstRow_JPEG_16s_C1(rows.data(), diff.data(), width, P, Pt));
          EXPECT_EQ(Prediction(1, 0, 0, 0) + static_cast<int16_t>(rows[0] - (1 << (P - Pt - 1))), diff[0]);
          for (int y = 1; y < 4; ++y) {
            const Kro16s* r = &rows[width * y];
            const Kro16s* p = &rows[width * (y - 1)];
            ASSERT_EQ(0, kroiDiffPredRow_JPEG_16s_C1(r, p, &diff[width * y], width, pred));
            for (int x = 0; x < width; ++x) {
              const int16_t want = x == 0 ? Prediction(2, 0, p[0], 0) : Prediction(pred, r[x - 1], p[x], p[x - 1]);
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
// the encoder and the decoder.
TEST(LosslessCoding, DifferencesRoundTrip) {
  Rng rng(8);
  std::vector<Kro16s> v;
  for (int i = 0; i < 5000; ++i) {
    const int bits = static_cast<int>(rng.Int(0, 15));
    v.push_back(static_cast<Kro16s>(rng.Int(-((1 << bits) - 1), (1 << bits) - 1)));
  }
  v.push_back(-32768);
  v.push_back(0);
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
  out.resize(size_t(pos));
  DecStateBuf ds;
  int rpos = 0, marker = 0;
  for (size_t i = 0; i < v.size(); ++i) {
    Kro16s got = 1234;
    ASSERT_EQ(0, kroiDecodeHuffmanOne_JPEG_1u16s_C1(out.data(), pos, &rpos, &got, &marker, d.get(), ds.get())) << i;
    ASSERT_EQ(v[i], got) << i;
  }
  // Past the end: -62 and the output left alone.
  Kro16s got = 1234;
  EXPECT_EQ(kroStatusJPEGOutOfBuffer, kroiDecodeHuffmanOne_JPEG_1u16s_C1(out.data(), pos, &rpos, &got, &marker, d.get(), ds.get()));
  EXPECT_EQ(1234, got);
}

TEST(LosslessCoding, SymbolSixteenAndSilentWriter) {
  // One code per category 0..16 would not fit 1-bit lengths: symbol 16 alone, code 0.
  std::vector<uint8_t> bits(16, 0), vals = {16, 0};
  bits[1] = 2;
  DecTable d(bits, vals);
  EncTable e(bits, vals);
  // 00 (16, no extra bits) 01 (0) 00 (16) + padding: 0001 0011.
  Kro8u src[1] = {0x13};
  DecStateBuf ds;
  int pos = 0, marker = 0;
  Kro16s got = 0;
  for (int want : {-32768, 0, -32768}) {
    ASSERT_EQ(0, kroiDecodeHuffmanOne_JPEG_1u16s_C1(src, 1, &pos, &got, &marker, d.get(), ds.get()));
    EXPECT_EQ(want, got);
  }
  EXPECT_EQ(2, ds.get()->bitCount);
  // The encoder reports success whatever the writer meets: a missing code, a full buffer.
  EncStateBuf es;
  Kro8u out[1];
  Kro16s five = 5;
  int opos = 0;
  EXPECT_EQ(0, kroiEncodeHuffmanOne_JPEG_16s1u_C1(&five, out, 1, &opos, e.get(), es.get(), 0));
  EXPECT_EQ(0, es.get()->bitCount);
  Kro16s big = -32768;
  for (int i = 0; i < 8; ++i) EXPECT_EQ(0, kroiEncodeHuffmanOne_JPEG_16s1u_C1(&big, out, 1, &opos, e.get(), es.get(), 0));
  EXPECT_EQ(1, opos);
  EXPECT_EQ(0x00, out[0]);
  int stats[256] = {};
  EXPECT_EQ(0, kroiGetHuffmanStatisticsOne_JPEG_16s_C1(&big, stats));
  EXPECT_EQ(1, stats[16]);
}

}  // namespace
