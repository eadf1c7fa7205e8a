// SPDX-License-Identifier: BSD-3-Clause
// Code-block encoder, one-call decoder and step-wise decoder: argument and state checks,
// round trips over every coding style and termination, truncation at the reported
// rates, distortion bookkeeping against the error actually removed, corruption.
#include <string.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "kroj.h"
#include "test_util.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Block = std::vector<Kro32s>;

constexpr int kCausal = 1, kBypass = 2, kTermAll = 4, kReset = 8, kSegSym = 16, kLossless = 32;
constexpr int kConceal = 65536, kKeepDst = 131072, kNoClear = 262144, kCheck = 1048576;

struct Coded {
  int sf_bits = 0, passes = 0, segments = 0;
  Bytes data;
  std::vector<int> seg_len, rate;
};

// Loads a block (left-aligned magnitudes) and drains it in chunks of `chunk` bytes
// (0: a random mix of chunk sizes).
Coded Encode(KroiEncodeState_JPEG2K* st, const Block& b, int w, int h, int subband, int mag_bits,
             int term, int flags, int chunk, uint64_t seed = 1) {
  Coded c;
  EXPECT_EQ(
      kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(b.data(), w * 4, {w, h}, st, subband, mag_bits, term,
                                             0, flags, &c.sf_bits, &c.passes, &c.segments),
      kroStatusOk);
  kro_test::Rng rng(seed);
  int not_finished = 1;
  while (not_finished) {
    int len = chunk > 0 ? chunk : static_cast<int>(rng.Int(1, 9) == 1 ? 5000 : rng.Int(1, 12));
    Bytes buf(static_cast<size_t>(len));
    EXPECT_EQ(kroiEncodeStoreBits_JPEG2K_1u(buf.data(), &len, st, &not_finished), kroStatusOk);
    c.data.insert(c.data.end(), buf.begin(), buf.begin() + len);
  }
  for (int s = 0; s < c.segments; ++s) {
    int len = -1;
    EXPECT_EQ(kroiEncodeGetTermPassLen_JPEG2K(st, s, &len), kroStatusOk);
    c.seg_len.push_back(len);
  }
  for (int k = 0; k < c.passes; ++k) {
    int rate = -1;
    EXPECT_EQ(kroiEncodeGetRate_JPEG2K(st, k, &rate), kroStatusOk);
    c.rate.push_back(rate);
  }
  return c;
}

struct Decoded {
  Block v;
  KroStatus status;
  int error_plane = -1;
};

Decoded DecodeOneCall(const Bytes& data, const std::vector<int>& seg_len, int w, int h, int subband,
                      int sf_bits, int passes, int flags) {
  int size = 0;
  EXPECT_EQ(kroiDecodeGetBufSize_JPEG2K({w, h}, &size), kroStatusOk);
  std::vector<uint8_t> state(static_cast<size_t>(size) + 8);
  Decoded d;
  d.v.assign(static_cast<size_t>(w) * h, 0x5A5A5A5A);
  const uint8_t dummy = 0;
  const int no_len = 0;
  d.status = kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
      data.empty() ? &dummy : data.data(), d.v.data(), w * 4, {w, h}, subband, sf_bits, passes,
      seg_len.empty() ? &no_len : seg_len.data(), static_cast<int>(seg_len.size()), flags,
      &d.error_plane, reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(state.data()));
  return d;
}

// The same, one step per segment, each segment in a buffer of its own (so reading past a
// segment is an ASan error).
Block DecodeStepwise(const Bytes& data, const std::vector<int>& seg_len, int w, int h, int subband,
                     int sf_bits, int passes, int flags) {
  KroiDecodeCBProgrState_JPEG2K* st = nullptr;
  EXPECT_EQ(kroiDecodeCBProgrInitAlloc_JPEG2K(&st, {w, h}), kroStatusOk);
  Block v(static_cast<size_t>(w) * h, 7);
  EXPECT_EQ(
      kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(v.data(), w * 4, {w, h}, st, subband, sf_bits, flags),
      kroStatusOk);
  EXPECT_EQ(kroiDecodeCBProgrSetPassCounter_JPEG2K(passes, st), kroStatusOk);
  size_t pos = 0;
  for (int len : seg_len) {
    Bytes seg(data.begin() + static_cast<long>(pos), data.begin() + static_cast<long>(pos + len));
    const uint8_t dummy = 0;
    EXPECT_EQ(kroiDecodeCBProgrStep_JPEG2K(seg.empty() ? &dummy : seg.data(), len, st),
              kroStatusOk);
    pos += static_cast<size_t>(len);
  }
  int left = -1;
  EXPECT_EQ(kroiDecodeCBProgrGetPassCounter_JPEG2K(st, &left), kroStatusOk);
  EXPECT_EQ(left, 0);
  EXPECT_EQ(kroiDecodeCBProgrFree_JPEG2K(st), kroStatusOk);
  return v;
}

// A random block of right-aligned magnitudes below 2^mag_bits: dense (every value),
// sparse (mostly zero) or peaked (few large values in small ones).
Block RandomMagnitudes(kro_test::Rng& rng, int n, int mag_bits, int kind) {
  Block m(static_cast<size_t>(n));
  const uint32_t limit = mag_bits >= 31 ? 0x7FFFFFFFu : (1u << mag_bits) - 1u;
  for (auto& v : m) {
    const int shift = static_cast<int>(rng.Int(0, mag_bits));
    uint32_t x = static_cast<uint32_t>(rng.Int(0, limit)) >> shift;
    if (kind == 1 && rng.Int(0, 9) != 0) x = 0;
    if (kind == 2) x = rng.Int(0, 30) == 0 ? static_cast<uint32_t>(rng.Int(0, limit)) : x & 3u;
    v = static_cast<Kro32s>(x);
  }
  return m;
}

// Sign-magnitude words from magnitudes and random signs, shifted left by `shift`.
Block WithSigns(kro_test::Rng& rng, const Block& mag, int shift) {
  Block b(mag.size());
  for (size_t i = 0; i < mag.size(); ++i) {
    const uint32_t sign = rng.Int(0, 1) ? 0x80000000u : 0u;
    b[i] = static_cast<Kro32s>((static_cast<uint32_t>(mag[i]) << shift) | sign);
  }
  return b;
}

// Right-aligned decoder view of an encoder block: sign kept only for non-zero values.
Block Expected(const Block& left, int shift) {
  Block e(left.size());
  for (size_t i = 0; i < left.size(); ++i) {
    const uint32_t v = static_cast<uint32_t>(left[i]);
    const uint32_t m = (v & 0x7FFFFFFFu) >> shift;
    e[i] = static_cast<Kro32s>(m ? (v & 0x80000000u) | m : 0u);
  }
  return e;
}

uint32_t Mag(Kro32s v) { return static_cast<uint32_t>(v) & 0x7FFFFFFFu; }

TEST(CodeBlockEncoder, ArgumentAndStateChecks) {
  KroiEncodeState_JPEG2K* st = nullptr;
  EXPECT_EQ(kroiEncodeInitAlloc_JPEG2K(nullptr, {4, 4}), kroStatusNullPointer);
  EXPECT_EQ(kroiEncodeInitAlloc_JPEG2K(&st, {0, 4}), kroStatusBadSize);
  EXPECT_EQ(kroiEncodeInitAlloc_JPEG2K(&st, {1 << 30, 1 << 30}), kroStatusNoMemory);
  EXPECT_EQ(st, nullptr);
  ASSERT_EQ(kroiEncodeInitAlloc_JPEG2K(&st, {8, 8}), kroStatusOk);

  std::vector<uint8_t> fake(4096, 0);  // never initialised: wrong identification
  auto* bad = reinterpret_cast<KroiEncodeState_JPEG2K*>(fake.data());
  Block src(64, 5);
  int sf = 0, np = 0, nt = 0;
  auto load = [&](const Kro32s* s, int step, KroiSize size, KroiEncodeState_JPEG2K* state, int* a,
                  int* b, int* c) {
    return kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(s, step, size, state, 0, 31, 0, 0, 0, a, b, c);
  };
  // Pairs of bad arguments pin the order.
  EXPECT_EQ(load(nullptr, 0, {0, 0}, nullptr, nullptr, &np, &nt), kroStatusNullPointer);
  EXPECT_EQ(load(nullptr, 0, {0, 0}, bad, nullptr, &np, &nt), kroStatusContextMismatch);
  EXPECT_EQ(load(nullptr, 0, {0, 0}, st, &sf, &np, nullptr), kroStatusNullPointer);
  EXPECT_EQ(load(nullptr, 0, {8, 0}, st, &sf, &np, &nt), kroStatusBadSize);
  EXPECT_EQ(load(nullptr, 0, {8, 8}, st, &sf, &np, &nt), kroStatusNullPointer);
  EXPECT_EQ(load(src.data(), 0, {8, 8}, st, &sf, &np, &nt), kroStatusBadStep);
  EXPECT_EQ(load(src.data(), 32, {9, 8}, st, &sf, &np, &nt), kroStatusBadSize);  // beyond the state
  ASSERT_EQ(load(src.data(), 32, {8, 8}, st, &sf, &np, &nt), kroStatusOk);

  Kro8u out[16];
  int len = 16, more = 0;
  EXPECT_EQ(kroiEncodeStoreBits_JPEG2K_1u(nullptr, nullptr, nullptr, nullptr),
            kroStatusNullPointer);
  EXPECT_EQ(kroiEncodeStoreBits_JPEG2K_1u(nullptr, &len, bad, &more), kroStatusContextMismatch);
  EXPECT_EQ(kroiEncodeStoreBits_JPEG2K_1u(out, &len, st, nullptr), kroStatusNullPointer);
  len = 0;
  EXPECT_EQ(kroiEncodeStoreBits_JPEG2K_1u(out, &len, st, &more), kroStatusBadArgument);

  int v = 0;
  double d = 0;
  EXPECT_EQ(kroiEncodeGetRate_JPEG2K(nullptr, -1, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiEncodeGetRate_JPEG2K(bad, -1, nullptr), kroStatusContextMismatch);
  EXPECT_EQ(kroiEncodeGetRate_JPEG2K(st, -1, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiEncodeGetRate_JPEG2K(st, -1, &v), kroStatusJPEG2KBadPassNumber);
  EXPECT_EQ(kroiEncodeGetRate_JPEG2K(st, np, &v), kroStatusJPEG2KBadPassNumber);
  EXPECT_EQ(kroiEncodeGetDistReduction_JPEG2K(st, 0, &v, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiEncodeGetDistReduction_JPEG2K(bad, 0, &v, &v), kroStatusContextMismatch);
  EXPECT_EQ(kroiEncodeGetDistReduction_JPEG2K(st, np, &v, &v), kroStatusJPEG2KBadPassNumber);
  EXPECT_EQ(kroiEncodeGetDist_JPEG2K(st, 0, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiEncodeGetDist_JPEG2K(st, np, &d), kroStatusJPEG2KBadPassNumber);
  EXPECT_EQ(kroiEncodeGetTermPassLen_JPEG2K(bad, 0, nullptr), kroStatusContextMismatch);
  EXPECT_EQ(kroiEncodeGetTermPassLen_JPEG2K(st, 0, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiEncodeGetTermPassLen_JPEG2K(st, 1, &v),
            kroStatusJPEG2KBadPassNumber);  // one segment
  EXPECT_EQ(kroiEncodeGetTermPassLen_JPEG2K(st, 0, &v), kroStatusOk);

  EXPECT_EQ(kroiEncodeFree_JPEG2K(nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiEncodeFree_JPEG2K(st), kroStatusOk);
}

TEST(CodeBlockDecoder, ArgumentAndStateChecks) {
  int size = 0;
  EXPECT_EQ(kroiDecodeCBProgrGetStateSize_JPEG2K({0, 0}, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeGetBufSize_JPEG2K({0, 0}, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrGetStateSize_JPEG2K({5, 0}, &size), kroStatusBadSize);
  ASSERT_EQ(kroiDecodeCBProgrGetStateSize_JPEG2K({5, 9}, &size), kroStatusOk);
  EXPECT_EQ(size, 32 * (5 + 2) + 472);  // roundup32(4 * 5 + 8) * (ceil(9 / 2) + 2) + 472
  ASSERT_EQ(kroiDecodeGetBufSize_JPEG2K({64, 64}, &size), kroStatusOk);
  EXPECT_EQ(size, 288 * 34 + 472);

  KroiDecodeCBProgrState_JPEG2K* st = nullptr;
  EXPECT_EQ(kroiDecodeCBProgrInitAlloc_JPEG2K(nullptr, {0, 0}), kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrInitAlloc_JPEG2K(&st, {0, 4}), kroStatusBadSize);
  ASSERT_EQ(kroiDecodeCBProgrInitAlloc_JPEG2K(&st, {8, 8}), kroStatusOk);

  std::vector<uint8_t> raw(4096, 0);
  auto* bad = reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(raw.data());
  Block dst(64);
  const Kro8u seg[1] = {0};
  int v = 0;
  EXPECT_EQ(kroiDecodeCBProgrInit_JPEG2K(nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrFree_JPEG2K(nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrFree_JPEG2K(bad), kroStatusContextMismatch);
  EXPECT_EQ(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(nullptr, 0, {0, 0}, nullptr, 0, 4, 0),
            kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(nullptr, 0, {0, 0}, bad, 0, 4, 0),
            kroStatusContextMismatch);
  EXPECT_EQ(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(nullptr, 0, {0, 0}, st, 0, 4, 0),
            kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(dst.data(), 0, {0, 0}, st, 0, 4, 0),
            kroStatusBadStep);
  EXPECT_EQ(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(dst.data(), 32, {0, 8}, st, 0, 4, 0),
            kroStatusBadSize);
  EXPECT_EQ(kroiDecodeCBProgrSetPassCounter_JPEG2K(3, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrSetPassCounter_JPEG2K(3, bad), kroStatusContextMismatch);
  EXPECT_EQ(kroiDecodeCBProgrGetPassCounter_JPEG2K(st, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrGetPassCounter_JPEG2K(bad, &v), kroStatusContextMismatch);
  EXPECT_EQ(kroiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(bad, nullptr), kroStatusContextMismatch);
  EXPECT_EQ(kroiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(st, nullptr), kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrStep_JPEG2K(nullptr, 1, bad), kroStatusNullPointer);
  EXPECT_EQ(kroiDecodeCBProgrStep_JPEG2K(seg, 1, bad), kroStatusContextMismatch);
  EXPECT_EQ(kroiDecodeCBProgrStep_JPEG2K(seg, 1, st), kroStatusJPEG2KNotAttached);

  // Attach zeroes the block (unless told not to), sets plane sfBits - 1; no passes: no-op.
  std::fill(dst.begin(), dst.end(), 9);
  ASSERT_EQ(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(dst.data(), 32, {8, 8}, st, 0, 6, kKeepDst),
            kroStatusOk);
  EXPECT_EQ(dst[63], 9);
  ASSERT_EQ(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(dst.data(), 32, {8, 8}, st, 0, 6, 0),
            kroStatusOk);
  EXPECT_EQ(dst[63], 0);
  EXPECT_EQ(kroiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(st, &v), kroStatusOk);
  EXPECT_EQ(v, 5);
  EXPECT_EQ(kroiDecodeCBProgrStep_JPEG2K(seg, 1, st), kroStatusOk);
  EXPECT_EQ(kroiDecodeCBProgrGetCurBitPlaneNum_JPEG2K(st, &v), kroStatusOk);
  EXPECT_EQ(v, 5);
  EXPECT_EQ(kroiDecodeCBProgrFree_JPEG2K(st), kroStatusOk);

  const int term_len[1] = {1};
  auto one = [&](const Kro8u* s, Kro32s* p, int step, KroiSize sz, const int* tl,
                 KroiDecodeCBProgrState_JPEG2K* ps) {
    return kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(s, p, step, sz, 0, 4, 1, tl, 1, 0, nullptr, ps);
  };
  EXPECT_EQ(one(seg, dst.data(), 0, {0, 0}, term_len, nullptr), kroStatusNullPointer);
  EXPECT_EQ(one(nullptr, dst.data(), 0, {0, 0}, term_len, bad), kroStatusNullPointer);
  EXPECT_EQ(one(seg, nullptr, 0, {0, 0}, nullptr, bad), kroStatusBadSize);
  EXPECT_EQ(one(seg, nullptr, 0, {8, 8}, term_len, bad), kroStatusNullPointer);
  EXPECT_EQ(one(seg, dst.data(), 0, {8, 8}, nullptr, bad), kroStatusNullPointer);
  EXPECT_EQ(one(seg, dst.data(), 0, {8, 8}, term_len, bad), kroStatusBadStep);
}

// Every combination of the style flags and terminations, on blocks from 1x1 to 64x64 and
// the 4x1024 extremes, all sub-bands, sparse and dense, up to 30 magnitude planes: the
// one-call and the step-wise decoder give the coefficients back, and the bytes, rates
// and lengths do not depend on how the caller drains them.
TEST(CodeBlock, RoundTripEveryStyle) {
  const KroiSize sizes[] = {{1, 1}, {1, 6},   {7, 1},   {3, 3},  {4, 4},
                            {5, 8}, {13, 17}, {32, 32}, {64, 64}};
  kro_test::Rng rng(21);
  int blocks = 0;
  for (int flags = 0; flags < 32; ++flags) {
    for (int term = 0; term < 3; ++term) {
      for (int rep = 0; rep < 5; ++rep, ++blocks) {
        KroiSize s = sizes[rng.Int(0, 8)];
        if (blocks % 97 == 3) s = {4, 1024};
        if (blocks % 97 == 50) s = {1024, 4};
        const int mag_bits = static_cast<int>(rep == 0 ? 30 : rng.Int(1, 30));
        const int subband = static_cast<int>(rng.Int(0, 3));
        const int n = s.width * s.height;
        const Block mag = RandomMagnitudes(rng, n, mag_bits, static_cast<int>(rng.Int(0, 2)));
        const Block src = WithSigns(rng, mag, 31 - mag_bits);
        KroiEncodeState_JPEG2K* st = nullptr;
        ASSERT_EQ(kroiEncodeInitAlloc_JPEG2K(&st, s), kroStatusOk);
        const Coded c =
            Encode(st, src, s.width, s.height, subband, mag_bits, term, flags, 0, blocks);
        if (rep == 1) {  // byte by byte and all at once give the same
          const Coded c1 = Encode(st, src, s.width, s.height, subband, mag_bits, term, flags, 1);
          const Coded call =
              Encode(st, src, s.width, s.height, subband, mag_bits, term, flags, 1 << 20);
          EXPECT_EQ(c1.data, c.data);
          EXPECT_EQ(call.data, c.data);
          EXPECT_EQ(c1.rate, c.rate);
          EXPECT_EQ(call.seg_len, c.seg_len);
        }
        kroiEncodeFree_JPEG2K(st);

        const int p_low = 31 - mag_bits;
        const int dec_sf = c.sf_bits > p_low ? c.sf_bits - p_low : 0;
        const Block want = Expected(src, p_low);
        ASSERT_EQ(c.passes, dec_sf > 0 ? 3 * dec_sf - 2 : 0);
        int total = 0;
        for (int len : c.seg_len) total += len;
        ASSERT_EQ(total, static_cast<int>(c.data.size()));
        for (int k = 1; k < c.passes; ++k) ASSERT_LE(c.rate[k - 1], c.rate[k]) << k;
        if (c.passes) ASSERT_EQ(c.rate.back(), total);
        if (!(flags & kTermAll) && (!(flags & kBypass) || dec_sf <= 4)) ASSERT_LE(c.segments, 1);

        const int dflags = (flags & 31) | (term == kroMQTermPredictable ? kCheck : 0);
        const Decoded d =
            DecodeOneCall(c.data, c.seg_len, s.width, s.height, subband, dec_sf, c.passes, dflags);
        ASSERT_EQ(d.status, kroStatusOk) << flags << " " << term;
        ASSERT_EQ(d.v, want) << "flags " << flags << " term " << term << " size " << s.width << "x"
                             << s.height;
        ASSERT_EQ(
            DecodeStepwise(c.data, c.seg_len, s.width, s.height, subband, dec_sf, c.passes, dflags),
            want);
      }
    }
  }
}

// Truncating after any pass, with the bytes its rate gives, decodes the same as the
// whole stream limited to that many passes; after a cleanup the block holds the exact
// bits down to that plane (midpoints without clearing), after the other passes all
// bits above the current plane.
TEST(CodeBlock, TruncationAtReportedRates) {
  kro_test::Rng rng(22);
  for (int iter = 0; iter < 120; ++iter) {
    const int w = static_cast<int>(rng.Int(1, 16)), h = static_cast<int>(rng.Int(1, 16));
    const int flags = static_cast<int>(rng.Int(0, 31)) & ~kSegSym;
    const int term = static_cast<int>(rng.Int(0, 2));
    const int mag_bits = static_cast<int>(rng.Int(3, 12));
    const Block src =
        WithSigns(rng, RandomMagnitudes(rng, w * h, mag_bits, iter % 3), 31 - mag_bits);
    KroiEncodeState_JPEG2K* st = nullptr;
    ASSERT_EQ(kroiEncodeInitAlloc_JPEG2K(&st, {w, h}), kroStatusOk);
    const Coded c = Encode(st, src, w, h, iter & 3, mag_bits, term, flags, 0, iter);
    kroiEncodeFree_JPEG2K(st);
    const int dec_sf = c.sf_bits - (31 - mag_bits);
    const Block want = Expected(src, 31 - mag_bits);
    for (int k = 0; k < c.passes; ++k) {
      // Segments cut at the rate of pass k.
      std::vector<int> cut;
      int left = c.rate[k];
      for (int len : c.seg_len) {
        cut.push_back(std::max(0, std::min(len, left)));
        left -= len;
      }
      const Bytes head(c.data.begin(), c.data.begin() + c.rate[k]);
      for (int keep = 0; keep < 2; ++keep) {
        const int dflags = flags | (keep ? kNoClear : 0);
        const Decoded full =
            DecodeOneCall(c.data, c.seg_len, w, h, iter & 3, dec_sf, k + 1, dflags);
        const Decoded part = DecodeOneCall(head, cut, w, h, iter & 3, dec_sf, k + 1, dflags);
        ASSERT_EQ(part.v, full.v) << "iter " << iter << " pass " << k << " flags " << flags
                                  << " term " << term << " rate " << c.rate[k] << " size "
                                  << c.data.size() << " " << w << "x" << h;
        const int plane = dec_sf - 1 - (k + 2) / 3;  // plane of pass k
        for (size_t i = 0; i < want.size(); ++i) {
          const uint32_t m = Mag(want[i]), got = Mag(full.v[i]);
          if (k % 3 == 0) {
            const uint32_t known = m >> plane << plane;
            const uint32_t mid = keep && known && plane > 0 ? 1u << (plane - 1) : 0;
            ASSERT_EQ(got, known | mid) << iter << " " << k;
          } else {
            ASSERT_EQ(got >> (plane + 1), m >> (plane + 1)) << iter << " " << k;
          }
          if (got) ASSERT_EQ(full.v[i] < 0, want[i] < 0);
        }
      }
    }
  }
}

// The distortion reductions equal the squared error each pass removes from the
// reconstruction, for magnitudes of at most seven significant bits (the tables see six
// bits below the plane). Lossy: midpoint reconstruction also in the last plane, seen by
// decoding one plane further; lossless (flag 32): the last plane is exact.
TEST(CodeBlock, DistortionMatchesDecodedError) {
  kro_test::Rng rng(23);
  for (int iter = 0; iter < 60; ++iter) {
    const bool lossless = iter % 2 == 1;
    const int w = static_cast<int>(rng.Int(1, 20)), h = static_cast<int>(rng.Int(1, 20));
    const int mag_bits = static_cast<int>(rng.Int(2, 14));
    Block mag(static_cast<size_t>(w) * h);
    for (auto& m : mag) {
      const int s = static_cast<int>(rng.Int(0, std::max(0, mag_bits - 7)));
      m = static_cast<Kro32s>(static_cast<uint32_t>(rng.Int(0, 127)) << s & ((1u << mag_bits) - 1));
      if (rng.Int(0, 3) == 0) m = 0;
    }
    const int p_low = 31 - mag_bits;
    const Block src = WithSigns(rng, mag, p_low);
    const int flags = (static_cast<int>(rng.Int(0, 31)) & ~kTermAll) | (lossless ? kLossless : 0);
    KroiEncodeState_JPEG2K* st = nullptr;
    ASSERT_EQ(kroiEncodeInitAlloc_JPEG2K(&st, {w, h}), kroStatusOk);
    const Coded c = Encode(st, src, w, h, 0, mag_bits, 0, flags, 4096);
    const int dec_sf = c.sf_bits - p_low;
    const int extra = lossless ? 0 : 1;  // lossy: one more plane holds the final midpoints
    const double unit = lossless ? 1.0 : 0.25;
    auto error = [&](const Block& rec) {
      double e = 0;
      for (size_t i = 0; i < rec.size(); ++i) {
        const double t = (src[i] < 0 ? -1.0 : 1.0) * (Mag(src[i]) >> p_low) * (extra ? 2 : 1);
        const double r = (rec[i] < 0 ? -1.0 : 1.0) * Mag(rec[i]);
        e += (t - r) * (t - r) * unit;
      }
      return e;
    };
    double before = error(Block(mag.size(), 0));
    double sum = 0;
    for (int k = 0; k < c.passes; ++k) {
      const Decoded d =
          DecodeOneCall(c.data, c.seg_len, w, h, 0, dec_sf + extra, k + 1, flags | kNoClear);
      const double after = error(d.v);
      int mant = 0, expo = 0;
      ASSERT_EQ(kroiEncodeGetDistReduction_JPEG2K(st, k, &mant, &expo), kroStatusOk);
      EXPECT_EQ(expo, 2 * (dec_sf - 1 - (k + 2) / 3) - 13);
      EXPECT_EQ(std::ldexp(mant, expo), before - after) << "iter " << iter << " pass " << k;
      sum += before - after;
      double dist = 0;
      ASSERT_EQ(kroiEncodeGetDist_JPEG2K(st, k, &dist), kroStatusOk);
      EXPECT_EQ(dist, sum);
      before = after;
    }
    kroiEncodeFree_JPEG2K(st);
  }
}

// Corrupted segments: detected by predictable termination in most cases, concealed by
// the stated rule, never read beyond, and the step-wise decoder stays in error.
TEST(CodeBlock, CorruptionDetectionAndConcealment) {
  kro_test::Rng rng(24);
  int altered = 0, detected = 0;
  for (int iter = 0; iter < 40; ++iter) {
    const int w = static_cast<int>(rng.Int(4, 24)), h = static_cast<int>(rng.Int(4, 24));
    const int flags = static_cast<int>(rng.Int(0, 31));
    const int mag_bits = static_cast<int>(rng.Int(4, 16));
    const Block src = WithSigns(rng, RandomMagnitudes(rng, w * h, mag_bits, 0), 31 - mag_bits);
    KroiEncodeState_JPEG2K* st = nullptr;
    ASSERT_EQ(kroiEncodeInitAlloc_JPEG2K(&st, {w, h}), kroStatusOk);
    const Coded c = Encode(st, src, w, h, 3, mag_bits, kroMQTermPredictable, flags, 4096);
    kroiEncodeFree_JPEG2K(st);
    const int dec_sf = c.sf_bits - (31 - mag_bits);
    for (size_t i = 0; i < c.data.size(); i += 1 + c.data.size() / 40) {
      Bytes bad = c.data;
      bad[i] ^= static_cast<uint8_t>(rng.Int(1, 255));
      const Decoded d =
          DecodeOneCall(bad, c.seg_len, w, h, 3, dec_sf, c.passes, flags | kCheck | kConceal);
      ++altered;
      if (d.status != kroStatusJPEG2KCorruptCodeBlock) continue;
      ++detected;
      const int p = d.error_plane;
      ASSERT_GE(p, 0);
      for (Kro32s v : d.v) {
        const uint32_t u = static_cast<uint32_t>(v);
        if (Mag(v) == 0) {
          ASSERT_EQ(u, 0u);
        } else {
          ASSERT_EQ(u & ((2u << p) - 1), 1u << p) << "plane " << p;
        }
      }
    }
  }
  EXPECT_GT(detected, altered * 3 / 4) << detected << " of " << altered;

  // Garbage, truncated and empty segments with every style: no crash, no read beyond a
  // segment, and once a step fails every later one fails.
  for (int iter = 0; iter < 300; ++iter) {
    const int w = static_cast<int>(rng.Int(1, 40)), h = static_cast<int>(rng.Int(1, 40));
    const int flags = static_cast<int>(rng.Int(0, 31)) | (iter % 2 ? kCheck : 0);
    KroiDecodeCBProgrState_JPEG2K* st = nullptr;
    ASSERT_EQ(kroiDecodeCBProgrInitAlloc_JPEG2K(&st, {w, h}), kroStatusOk);
    Block dst(static_cast<size_t>(w) * h);
    ASSERT_EQ(kroiDecodeCBProgrAttach_JPEG2K_32s_C1R(dst.data(), w * 4, {w, h}, st, iter & 3,
                                                     static_cast<int>(rng.Int(0, 31)), flags),
              kroStatusOk);
    ASSERT_EQ(kroiDecodeCBProgrSetPassCounter_JPEG2K(static_cast<int>(rng.Int(0, 100)), st),
              kroStatusOk);
    bool failed = false;
    for (int s = 0; s < 40; ++s) {
      Bytes seg(static_cast<size_t>(rng.Int(0, 30)));
      for (auto& b : seg) b = static_cast<uint8_t>(rng.Int(0, 3) ? rng.Int(0, 255) : 0xFF);
      const uint8_t dummy = 0;
      const KroStatus r = kroiDecodeCBProgrStep_JPEG2K(seg.empty() ? &dummy : seg.data(),
                                                       static_cast<int>(seg.size()), st);
      if (failed) ASSERT_EQ(r, kroStatusJPEG2KCorruptCodeBlock);
      failed = r == kroStatusJPEG2KCorruptCodeBlock;
      if (!failed) ASSERT_EQ(r, kroStatusOk);
    }
    kroiDecodeCBProgrFree_JPEG2K(st);
  }
}

// Rows at odd byte addresses with steps that are not multiples of four, on both sides.
TEST(CodeBlock, UnalignedRows) {
  kro_test::Rng rng(26);
  const int w = 13, h = 11, mag_bits = 12, step = w * 4 + 3;
  const Block src = WithSigns(rng, RandomMagnitudes(rng, w * h, mag_bits, 0), 31 - mag_bits);
  std::vector<uint8_t> in(static_cast<size_t>(1 + step * h)), out(in.size());
  for (int y = 0; y < h; ++y) memcpy(in.data() + 1 + y * step, src.data() + y * w, w * 4);
  KroiEncodeState_JPEG2K* st = nullptr;
  ASSERT_EQ(kroiEncodeInitAlloc_JPEG2K(&st, {w, h}), kroStatusOk);
  const Coded want = Encode(st, src, w, h, 2, mag_bits, 0, 0, 4096);
  int sf = 0, np = 0, nt = 0, len = 4096, more = 0;
  ASSERT_EQ(kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(reinterpret_cast<const Kro32s*>(in.data() + 1),
                                                   step, {w, h}, st, 2, mag_bits, 0, 0, 0, &sf,
                                                   &np, &nt),
            kroStatusOk);
  Bytes data(static_cast<size_t>(len));
  ASSERT_EQ(kroiEncodeStoreBits_JPEG2K_1u(data.data(), &len, st, &more), kroStatusOk);
  data.resize(static_cast<size_t>(len));
  EXPECT_EQ(data, want.data);
  kroiEncodeFree_JPEG2K(st);

  int size = 0;
  ASSERT_EQ(kroiDecodeGetBufSize_JPEG2K({w, h}, &size), kroStatusOk);
  std::vector<uint8_t> state(static_cast<size_t>(size));
  ASSERT_EQ(kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
                data.data(), reinterpret_cast<Kro32s*>(out.data() + 1), step, {w, h}, 2,
                sf - (31 - mag_bits), np, want.seg_len.data(), nt, 0, nullptr,
                reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(state.data())),
            kroStatusOk);
  const Block expected = Expected(src, 31 - mag_bits);
  for (int y = 0; y < h; ++y)
    EXPECT_EQ(memcmp(out.data() + 1 + y * step, expected.data() + y * w, w * 4), 0) << y;
  // Segmentation symbols the stream does not hold: corrupt, and concealed in place.
  EXPECT_EQ(kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
                data.data(), reinterpret_cast<Kro32s*>(out.data() + 1), step, {w, h}, 2,
                sf - (31 - mag_bits), np, want.seg_len.data(), nt, kSegSym | kConceal, nullptr,
                reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(state.data())),
            kroStatusJPEG2KCorruptCodeBlock);
}

TEST(CodeBlock, EdgeCases) {
  KroiEncodeState_JPEG2K* st = nullptr;
  ASSERT_EQ(kroiEncodeInitAlloc_JPEG2K(&st, {16, 16}), kroStatusOk);
  // All zero (negative zeros included): no planes, no passes, nothing delivered.
  Block zero(256, 0);
  zero[5] = static_cast<Kro32s>(0x80000000u);
  Coded c = Encode(st, zero, 16, 16, 0, 31, 0, 0, 8);
  EXPECT_EQ(c.sf_bits, 0);
  EXPECT_EQ(c.passes, 0);
  EXPECT_TRUE(c.data.empty());
  EXPECT_EQ(c.seg_len, std::vector<int>{0});  // one empty segment, none per pass
  EXPECT_EQ(Encode(st, zero, 16, 16, 0, 31, 0, kTermAll, 8).segments, 0);

  // Coding stops at plane 31 - magnitudeBits even when lower planes hold bits.
  Block b(256, 0x7FFFFFFF);
  c = Encode(st, b, 16, 16, 1, 5, 0, 0, 64);
  EXPECT_EQ(c.sf_bits, 31);
  EXPECT_EQ(c.passes, 13);  // planes 30..26
  Decoded d = DecodeOneCall(c.data, c.seg_len, 16, 16, 1, 5, c.passes, 0);
  EXPECT_EQ(d.v, Block(256, 31));

  // Bypass with four planes: no raw pass, one segment; with five: three segments.
  kro_test::Rng rng(25);
  Block m4 = WithSigns(rng, RandomMagnitudes(rng, 256, 4, 0), 0);
  m4[0] = 15;
  c = Encode(st, m4, 16, 16, 0, 31, 1, kBypass, 64);
  EXPECT_EQ(c.sf_bits, 4);
  EXPECT_EQ(c.segments, 1);
  m4[0] = 31;
  c = Encode(st, m4, 16, 16, 0, 31, 1, kBypass, 64);
  EXPECT_EQ(c.segments, 3);  // MQ | raw propagation + refinement | MQ cleanup
  EXPECT_EQ(c.passes, 13);
  d = DecodeOneCall(c.data, c.seg_len, 16, 16, 0, 5, c.passes, kBypass);
  EXPECT_EQ(d.v, Expected(m4, 0));

  // A single pass: exponent 2 * (top - pLow) - 13 and one segment.
  Block one(256, 0);
  one[17] = 1 << 20;
  c = Encode(st, one, 16, 16, 0, 11, 0, 0, 64);
  int mant = 0, expo = 0;
  EXPECT_EQ(c.passes, 1);
  EXPECT_EQ(kroiEncodeGetDistReduction_JPEG2K(st, 0, &mant, &expo), kroStatusOk);
  EXPECT_EQ(expo, 2 * (20 - 20) - 13);
  EXPECT_EQ(mant, 6144);
  // Exponents from 31 up go through a 32-bit shift: 2^31 reads as -2^31, 2^45 as 2^13.
  one[17] = 1 << 30;
  for (const auto& [mag_bits, scale] : {std::pair{23, -2147483648.0}, std::pair{30, 8192.0}}) {
    double dist = 0;
    c = Encode(st, one, 16, 16, 0, mag_bits, 0, 0, 64);
    ASSERT_EQ(kroiEncodeGetDistReduction_JPEG2K(st, 0, &mant, &expo), kroStatusOk);
    EXPECT_EQ(expo, 2 * (30 - (31 - mag_bits)) - 13);
    ASSERT_EQ(kroiEncodeGetDist_JPEG2K(st, 0, &dist), kroStatusOk);
    EXPECT_EQ(dist, 6144 * scale);
  }
  kroiEncodeFree_JPEG2K(st);

  // nOfPasses 0 zeroes the destination (kept with 131072); 262144 keeps half values.
  d = DecodeOneCall(Bytes{1, 2, 3}, {3}, 4, 4, 0, 5, 0, 0);
  EXPECT_EQ(d.status, kroStatusOk);
  EXPECT_EQ(d.v, Block(16, 0));
  d = DecodeOneCall(Bytes{1, 2, 3}, {3}, 4, 4, 0, 5, 0, kKeepDst | kNoClear);
  EXPECT_EQ(d.v, Block(16, 0x5A5A5A5A));
  // Clearing ANDs with -(1 << p) for p = sfBits - 1, a 32-bit shift (count modulo 32).
  d = DecodeOneCall(Bytes{1, 2, 3}, {3}, 4, 4, 0, 5, 0, kKeepDst);
  EXPECT_EQ(d.v, Block(16, 0x5A5A5A50));
  d = DecodeOneCall(Bytes{1, 2, 3}, {3}, 4, 4, 0, 40, 0, kKeepDst);
  EXPECT_EQ(d.v, Block(16, 0x5A5A5A00));
}

}  // namespace
