// SPDX-License-Identifier: BSD-3-Clause
// MCU conversion: argument order, every member against the per-pixel rules composed
// here on random MCUs, a few hand-computed values, and encoder-then-decoder round
// trips of flat colours.
#include <string.h>

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <vector>

#include "simd_test_util.h"
#include "test_util.h"

namespace {

using kro_test::GuardedImage;
using kro_test::Rng;

struct Geo {
  int lx, ly;  // log2 of the chroma subsampling, horizontally and vertically
  int W() const { return 8 << lx; }
  int H() const { return 8 << ly; }
  // Full-resolution sample (x, y): blocks left to right, then top to bottom.
  int Full(int x, int y) const { return (y / 8 * (W() / 8) + x / 8) * 64 + y % 8 * 8 + x % 8; }
  int Chroma(int x, int y) const { return (y >> ly) * 8 + (x >> lx); }
};
constexpr Geo k444{0, 0}, k422{1, 0}, k411{1, 1};

enum class Fmt { kRgb, kBgr, kBgr555, kBgr565, kCmyk, kRaw, kYCbYCr };
int Bytes(Fmt f) { return f == Fmt::kCmyk ? 4 : f <= Fmt::kBgr || f == Fmt::kRaw ? 3 : 2; }
bool Colour(Fmt f) { return f < Fmt::kRaw; }
int Components(Fmt f) { return f == Fmt::kCmyk ? 4 : 3; }

int64_t FloorDiv(int64_t a, int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }
int Clamp(int64_t v) { return static_cast<int>(std::clamp<int64_t>(v, 0, 255)); }
int64_t Wrap32(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }

// The component buffers of one MCU, each followed by 16 guard values.
struct Blocks {
  std::vector<Kro16s> c[4];
  explicit Blocks(Geo g) {
    for (int k = 0; k < 4; ++k) c[k].assign((k % 3 ? 64 : 64 << (g.lx + g.ly)) + 16, 0x5A5A);
  }
  bool Guarded() const {
    return std::all_of(std::begin(c), std::end(c), [](const auto& v) {
      return std::all_of(v.end() - 16, v.end(), [](Kro16s x) { return x == 0x5A5A; });
    });
  }
};

// Encoder and decoder members side by side: kEnc[i] and kDec[i] are inverses.
struct Member {
  const char* name;
  Geo g;
  Fmt f;
  KroStatus (*enc)(const void* src, int step, Kro16s** dst);
  KroStatus (*dec)(const Kro16s** src, void* dst, int step);
};
#define ENC(fn, T) \
  [](const void* s, int st, Kro16s** d) { return fn(static_cast<const T*>(s), st, d); }
#define DEC(fn, T) [](const Kro16s** s, void* d, int st) { return fn(s, static_cast<T*>(d), st); }
// clang-format off
const Member kMembers[] = {
  {"RGB444", k444, Fmt::kRgb, ENC(kroiRGBToYCbCr444LS_MCU_8u16s_C3P3R, Kro8u),
    DEC(kroiYCbCr444ToRGBLS_MCU_16s8u_P3C3R, Kro8u)},
  {"RGB422", k422, Fmt::kRgb, ENC(kroiRGBToYCbCr422LS_MCU_8u16s_C3P3R, Kro8u),
    DEC(kroiYCbCr422ToRGBLS_MCU_16s8u_P3C3R, Kro8u)},
  {"RGB411", k411, Fmt::kRgb, ENC(kroiRGBToYCbCr411LS_MCU_8u16s_C3P3R, Kro8u),
    DEC(kroiYCbCr411ToRGBLS_MCU_16s8u_P3C3R, Kro8u)},
  {"BGR444", k444, Fmt::kBgr, ENC(kroiBGRToYCbCr444LS_MCU_8u16s_C3P3R, Kro8u),
    DEC(kroiYCbCr444ToBGRLS_MCU_16s8u_P3C3R, Kro8u)},
  {"BGR422", k422, Fmt::kBgr, ENC(kroiBGRToYCbCr422LS_MCU_8u16s_C3P3R, Kro8u),
    DEC(kroiYCbCr422ToBGRLS_MCU_16s8u_P3C3R, Kro8u)},
  {"BGR411", k411, Fmt::kBgr, ENC(kroiBGRToYCbCr411LS_MCU_8u16s_C3P3R, Kro8u),
    DEC(kroiYCbCr411ToBGRLS_MCU_16s8u_P3C3R, Kro8u)},
  {"555/444", k444, Fmt::kBgr555, ENC(kroiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R, Kro16u),
    DEC(kroiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R, Kro16u)},
  {"555/422", k422, Fmt::kBgr555, ENC(kroiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R, Kro16u),
    DEC(kroiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R, Kro16u)},
  {"555/411", k411, Fmt::kBgr555, ENC(kroiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R, Kro16u),
    DEC(kroiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R, Kro16u)},
  {"565/444", k444, Fmt::kBgr565, ENC(kroiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R, Kro16u),
    DEC(kroiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R, Kro16u)},
  {"565/422", k422, Fmt::kBgr565, ENC(kroiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R, Kro16u),
    DEC(kroiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R, Kro16u)},
  {"565/411", k411, Fmt::kBgr565, ENC(kroiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R, Kro16u),
    DEC(kroiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R, Kro16u)},
  {"CMYK444", k444, Fmt::kCmyk, ENC(kroiCMYKToYCCK444LS_MCU_8u16s_C4P4R, Kro8u),
    DEC(kroiYCCK444ToCMYKLS_MCU_16s8u_P4C4R, Kro8u)},
  {"CMYK422", k422, Fmt::kCmyk, ENC(kroiCMYKToYCCK422LS_MCU_8u16s_C4P4R, Kro8u),
    DEC(kroiYCCK422ToCMYKLS_MCU_16s8u_P4C4R, Kro8u)},
  {"CMYK411", k411, Fmt::kCmyk, ENC(kroiCMYKToYCCK411LS_MCU_8u16s_C4P4R, Kro8u),
    DEC(kroiYCCK411ToCMYKLS_MCU_16s8u_P4C4R, Kro8u)},
  {"Raw444", k444, Fmt::kRaw, ENC(kroiSampleDown444LS_MCU_8u16s_C3P3R, Kro8u),
    DEC(kroiSampleUp444LS_MCU_16s8u_P3C3R, Kro8u)},
  {"Raw422", k422, Fmt::kRaw, ENC(kroiSampleDown422LS_MCU_8u16s_C3P3R, Kro8u),
    DEC(kroiSampleUp422LS_MCU_16s8u_P3C3R, Kro8u)},
  {"Raw411", k411, Fmt::kRaw, ENC(kroiSampleDown411LS_MCU_8u16s_C3P3R, Kro8u),
    DEC(kroiSampleUp411LS_MCU_16s8u_P3C3R, Kro8u)},
  {"YCbYCr", k422, Fmt::kYCbYCr, ENC(kroiSplit422LS_MCU_8u16s_C2P3R, Kro8u),
    DEC(kroiJoin422LS_MCU_16s8u_P3C2R, Kro8u)},
};
// clang-format on

GuardedImage<Kro8u> Image(const Member& m) { return {m.g.W(), m.g.H(), Bytes(m.f), 5}; }

// Pixel (x, y) of an encoder source: R, G, B (the complements of C, M, Y) and K, or
// the three samples as they are.
std::array<int, 4> Read(Fmt f, const GuardedImage<Kro8u>& img, int x, int y) {
  const Kro8u* p = img.row(y) + Bytes(f) * x;
  const int w = p[0] | p[1] << 8;
  switch (f) {
    case Fmt::kBgr:
      return {p[2], p[1], p[0], 0};
    case Fmt::kBgr555:
      return {(w >> 10 & 31) << 3, (w >> 5 & 31) << 3, (w & 31) << 3, 0};
    case Fmt::kBgr565:
      return {(w >> 11 & 31) << 3, (w >> 5 & 63) << 2, (w & 31) << 3, 0};
    case Fmt::kCmyk:
      return {255 - p[0], 255 - p[1], 255 - p[2], p[3]};
    case Fmt::kYCbYCr:
      return {p[0], p[1 - 2 * (x % 2)], p[3 - 2 * (x % 2)], 0};
    default:
      return {p[0], p[1], p[2], 0};
  }
}

Blocks Encode(const Member& m, const GuardedImage<Kro8u>& img) {
  Blocks b(m.g);
  Kro16s* d[4] = {b.c[0].data(), b.c[1].data(), b.c[2].data(), b.c[3].data()};
  EXPECT_EQ(m.enc(img.data(), img.step(), d), kroStatusOk) << m.name;
  return b;
}

GuardedImage<Kro8u> Decode(const Member& m, const Blocks& b) {
  auto img = Image(m);
  const Kro16s* s[4] = {b.c[0].data(), b.c[1].data(), b.c[2].data(), b.c[3].data()};
  EXPECT_EQ(m.dec(s, img.data(), img.step()), kroStatusOk) << m.name;
  return img;
}

TEST(Mcu, ArgumentChecksInOrder) {
  for (const Member& m : kMembers) {
    SCOPED_TRACE(m.name);
    auto img = Image(m);
    Blocks b(m.g);
    Kro16s* d[4] = {b.c[0].data(), b.c[1].data(), b.c[2].data(), b.c[3].data()};
    const Kro16s* s[4] = {d[0], d[1], d[2], d[3]};
    EXPECT_EQ(m.enc(nullptr, 0, d), kroStatusNullPointer);
    EXPECT_EQ(m.enc(img.data(), 0, nullptr), kroStatusNullPointer);
    EXPECT_EQ(m.dec(nullptr, img.data(), 0), kroStatusNullPointer);
    EXPECT_EQ(m.dec(s, nullptr, 0), kroStatusNullPointer);
    EXPECT_EQ(m.dec(s, img.data(), -1), kroStatusBadStep);
    for (int k = 0; k < Components(m.f); ++k) {
      Kro16s* bad_d[4] = {d[0], d[1], d[2], d[3]};
      const Kro16s* bad_s[4] = {s[0], s[1], s[2], s[3]};
      bad_d[k] = nullptr, bad_s[k] = nullptr;
      EXPECT_EQ(m.enc(img.data(), 0, bad_d), kroStatusBadStep) << k;  // encoder: step first
      EXPECT_EQ(m.enc(img.data(), img.step(), bad_d), kroStatusNullPointer) << k;
      EXPECT_EQ(m.dec(bad_s, img.data(), 0), kroStatusNullPointer) << k;  // decoder: blocks first
    }
    for (const auto& v : b.c)
      ASSERT_TRUE(std::all_of(v.begin(), v.end(), [](Kro16s x) { return x == 0x5A5A; }));
    for (int y = 0; y < m.g.H(); ++y)
      for (int i = 0; i < m.g.W() * Bytes(m.f); ++i) ASSERT_EQ(img.row(y)[i], kro_test::kGuard);
  }
}

// Every compiled SIMD target against the rules below, on random MCUs at odd steps.
class McuTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(McuTargets);

// Encoder: Y' = floor((19595 R + 38470 G + 7471 B) / 2^16) - 128 per pixel; chroma
// floor((-11059 R - 21709 G + 32768 B) / 2^16) and floor((32768 R - 27439 G - 5329 B)
// / 2^16) of the group's mean colour; without conversion the floor of the mean - 128.
TEST_P(McuTargets, EncodersAgainstThePixelRules) {
  Rng rng(21);
  for (const Member& m : kMembers)
    for (int rep = 0; rep < 20; ++rep) {
      auto img = Image(m);
      img.FillRandom(rng, rep == 1 ? 250 : 0, rep == 0 ? 5 : 255);  // near black, near white
      Blocks want(m.g);
      const int n = 1 << (m.g.lx + m.g.ly);
      for (int cy = 0; cy < 8; ++cy)
        for (int cx = 0; cx < 8; ++cx) {
          int64_t s[3] = {0, 0, 0};
          for (int y = cy << m.g.ly; y < (cy + 1) << m.g.ly; ++y)
            for (int x = cx << m.g.lx; x < (cx + 1) << m.g.lx; ++x) {
              const auto p = Read(m.f, img, x, y);
              const int64_t luma = 19595 * p[0] + 38470 * p[1] + 7471 * p[2];
              want.c[0][m.g.Full(x, y)] = Colour(m.f) ? luma / 65536 - 128 : p[0] - 128;
              want.c[3][m.g.Full(x, y)] = static_cast<Kro16s>(p[3] - 128);
              for (int k = 0; k < 3; ++k) s[k] += p[k];
            }
          const int64_t cb = -11059 * s[0] - 21709 * s[1] + 32768 * s[2];
          const int64_t cr = 32768 * s[0] - 27439 * s[1] - 5329 * s[2];
          want.c[1][cy * 8 + cx] = Colour(m.f) ? FloorDiv(cb, 65536 * n) : s[1] / n - 128;
          want.c[2][cy * 8 + cx] = Colour(m.f) ? FloorDiv(cr, 65536 * n) : s[2] / n - 128;
        }
      const Blocks got = Encode(m, img);
      for (int k = 0; k < Components(m.f); ++k)
        ASSERT_EQ(got.c[k], want.c[k]) << m.name << " component " << k;
      EXPECT_TRUE(got.Guarded());
    }
}

// Decoder: R = y + floor(wrap32(91881 cr) / 2^16) + 128, G with -22554 cb - 46802 cr,
// B with 116130 cb, clamped; chroma replicated over its group; K = (k + 128) mod 256.
// Samples span both the inverse DCT's range and all of Kro16s, where products wrap.
TEST_P(McuTargets, DecodersAgainstThePixelRules) {
  Rng rng(33);
  for (const Member& m : kMembers)
    for (int rep = 0; rep < 20; ++rep) {
      Blocks b(m.g);
      const int range = rep % 2 ? 32768 : 300;
      for (auto& c : b.c) rng.Fill(c.data(), c.size() - 16, -range, std::min(range, 32767));
      const auto img = Decode(m, b);
      for (int y = 0; y < m.g.H(); ++y)
        for (int x = 0; x < m.g.W(); ++x) {
          const int64_t l = b.c[0][m.g.Full(x, y)], k = b.c[3][m.g.Full(x, y)];
          const int64_t cb = b.c[1][m.g.Chroma(x, y)], cr = b.c[2][m.g.Chroma(x, y)];
          const int r = Clamp(l + FloorDiv(Wrap32(91881 * cr), 65536) + 128);
          const int g = Clamp(l + FloorDiv(Wrap32(-22554 * cb - 46802 * cr), 65536) + 128);
          const int bl = Clamp(l + FloorDiv(Wrap32(116130 * cb), 65536) + 128);
          const int w555 = bl >> 3 | (g >> 3) << 5 | (r >> 3) << 10;
          const int w565 = bl >> 3 | (g >> 2) << 5 | (r >> 3) << 11;
          std::vector<int> want;
          switch (m.f) {
            case Fmt::kRgb:
              want = {r, g, bl};
              break;
            case Fmt::kBgr:
              want = {bl, g, r};
              break;
            case Fmt::kBgr555:
              want = {w555 & 255, w555 >> 8};
              break;
            case Fmt::kBgr565:
              want = {w565 & 255, w565 >> 8};
              break;
            case Fmt::kCmyk:
              want = {255 - r, 255 - g, 255 - bl, static_cast<int>((k + 128) & 255)};
              break;
            case Fmt::kRaw:
              want = {Clamp(l + 128), Clamp(cb + 128), Clamp(cr + 128)};
              break;
            case Fmt::kYCbYCr:
              want = {Clamp(l + 128), Clamp((x % 2 ? cr : cb) + 128)};
              break;
          }
          for (size_t c = 0; c < want.size(); ++c)
            ASSERT_EQ(img.at(x, y, static_cast<int>(c)), want[c]) << m.name << " " << x << "," << y;
        }
      EXPECT_TRUE(img.IntactOutside()) << m.name;
    }
}

// Every 16-bit chroma sample through the 444 RGB decoder, one colour at a time, with
// the luminance set so that the right term gives 100 and any other term shows.
TEST_P(McuTargets, DecoderTermsOfEverySample) {
  Rng rng(9);
  for (int colour = 0; colour < 3; ++colour)
    for (int base = -32768; base < 32768; base += 64) {
      Blocks b(k444);
      int64_t want[64];
      for (int i = 0; i < 64; ++i) {
        const int64_t v = base + i, other = rng.Int(-32768, 32767);
        const int64_t cb = colour == 0 ? other : v, cr = colour == 0 ? v : other;
        const int64_t term = FloorDiv(Wrap32(colour == 0   ? 91881 * cr
                                             : colour == 1 ? -22554 * cb - 46802 * cr
                                                           : 116130 * cb),
                                      65536);
        b.c[1][i] = static_cast<Kro16s>(cb), b.c[2][i] = static_cast<Kro16s>(cr);
        b.c[0][i] = static_cast<Kro16s>(std::clamp<int64_t>(-28 - term, -32768, 32767));
        want[i] = Clamp(b.c[0][i] + term + 128);
      }
      const auto img = Decode(kMembers[0], b);
      for (int i = 0; i < 64; ++i) ASSERT_EQ(img.at(i % 8, i / 8, colour), want[i]) << base + i;
    }
}

TEST(Mcu, HandComputedValues) {
  const Member& rgb422 = kMembers[1];
  auto img = Image(rgb422);
  for (int x = 0; x < 16; ++x) {  // green and red pairs on the first row
    img.at(x, 0, 0) = x % 2 ? 255 : 0;
    img.at(x, 0, 1) = x % 2 ? 0 : 255;
    img.at(x, 0, 2) = 0;
  }
  const Blocks b = Encode(rgb422, img);
  EXPECT_EQ(b.c[0][0], 21);   // 9809850 >> 16 = 149 - 128; the plane form rounds to 150
  EXPECT_EQ(b.c[0][1], -52);  // 4996725 >> 16 = 76 - 128
  EXPECT_EQ(b.c[1][0], -64);  // (-11059 * 255 - 21709 * 255) >> 17
  EXPECT_EQ(b.c[2][0], 10);   // (32768 * 255 - 27439 * 255) >> 17
  Blocks k(k444);
  for (auto& c : k.c) std::fill(c.begin(), c.end() - 16, 0);
  k.c[0][1] = 127, k.c[0][2] = -128, k.c[2][3] = 127, k.c[2][4] = -128;  // R 178 + 128; -180 + 128
  k.c[3][1] = 100, k.c[3][2] = 130;                                      // K 228 and 2 (wraps)
  const auto cmyk = Decode(kMembers[12], k);
  const int want[5][4] = {{127, 127, 127, 128},
                          {0, 0, 0, 228},
                          {255, 255, 255, 2},
                          {0, 218, 127, 128},
                          {255, 36, 127, 128}};
  for (int x = 0; x < 5; ++x)
    for (int c = 0; c < 4; ++c) EXPECT_EQ(cmyk.at(x, 0, c), want[x][c]) << x << " " << c;
}

// Flat colours through encoder and decoder. Y', Cb' and Cr' each truncate by less
// than one unit and the decoder floors once more, so R and B return between 3 below
// (1 + 1.772 + 1 < 4) and 1 above, G within 1 (0.344 + 0.714 < 2); from 5- or 6-bit
// fields that is up to 8 below. The conversion-free pairs and K return exactly.
TEST(Mcu, FlatColoursRoundTrip) {
  Rng rng(45);
  for (const Member& m : kMembers)
    for (int rep = 0; rep < 200; ++rep) {
      std::vector<Kro8u> px(m.f == Fmt::kYCbYCr ? 4
                                                : Bytes(m.f));  // one pixel, or a Y Cb Y Cr pair
      rng.Fill(px.data(), px.size(), 0, 255);
      if (m.f == Fmt::kYCbYCr) px[2] = px[0];
      auto img = Image(m);
      for (int y = 0; y < m.g.H(); ++y)
        for (int i = 0; i < m.g.W() * Bytes(m.f); ++i) img.row(y)[i] = px[i % px.size()];
      const auto out = Decode(m, Encode(m, img));
      const bool packed = m.f == Fmt::kBgr555 || m.f == Fmt::kBgr565;
      const int below = !Colour(m.f) ? 0 : packed ? 8 : 3, above = Colour(m.f) && !packed ? 1 : 0;
      const auto a = Read(m.f, img, 0, 0);
      for (int y = 0; y < m.g.H(); ++y)
        for (int x = 0; x < m.g.W(); ++x) {
          const auto b = Read(m.f, out, x, y);
          for (int c = 0; c < 3; ++c)
            ASSERT_TRUE(b[c] - a[c] >= -below && b[c] - a[c] <= above) << m.name;
          ASSERT_EQ(b[3], a[3]) << m.name;
        }
    }
}

}  // namespace
