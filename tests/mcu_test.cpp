// SPDX-License-Identifier: BSD-3-Clause
// MCU conversion: argument order, the documented examples, every member against
// the per-pixel rules composed here on random MCUs, and encoder-then-decoder round
// trips of flat colours.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <array>
#include <vector>

#include "test_util.h"

namespace {

using kro_test::GuardedImage;
using kro_test::kGuard;
using kro_test::Rng;

// ---- Geometry and formats ----

struct Geo {
  int lx, ly;  // log2 of the chroma subsampling, horizontally and vertically
  int W() const { return 8 << lx; }
  int H() const { return 8 << ly; }
  int Blocks() const { return 1 << (lx + ly); }
  // Full-resolution sample (x, y): blocks left to right, then top to bottom.
  int Full(int x, int y) const { return (y / 8 * (W() / 8) + x / 8) * 64 + y % 8 * 8 + x % 8; }
  int Chroma(int x, int y) const { return (y >> ly) * 8 + (x >> lx); }
};
constexpr Geo k444{0, 0}, k422{1, 0}, k411{1, 1};

enum class Fmt { kRgb, kBgr, kBgr555, kBgr565, kCmyk, kRaw, kYCbYCr };
int Bytes(Fmt f) {
  switch (f) {
    case Fmt::kCmyk: return 4;
    case Fmt::kRgb: case Fmt::kBgr: case Fmt::kRaw: return 3;
    default: return 2;
  }
}
bool Colour(Fmt f) { return f != Fmt::kRaw && f != Fmt::kYCbYCr; }
int Components(Fmt f) { return f == Fmt::kCmyk ? 4 : 3; }

int64_t FloorDiv(int64_t a, int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }
int Clamp(int64_t v) { return static_cast<int>(std::clamp<int64_t>(v, 0, 255)); }
int64_t Wrap32(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }

// ---- Encoder side ----

using EncFn = KroStatus (*)(const void* src, int step, Kro16s** dst);
struct EncMember {
  const char* name;
  Geo g;
  Fmt f;
  EncFn call;
};
#define ENC(fn, T) [](const void* s, int st, Kro16s** d) { return fn(static_cast<const T*>(s), st, d); }
const EncMember kEnc[] = {
    {"RGB444", k444, Fmt::kRgb, ENC(kroiRGBToYCbCr444LS_MCU_8u16s_C3P3R, Kro8u)},
    {"RGB422", k422, Fmt::kRgb, ENC(kroiRGBToYCbCr422LS_MCU_8u16s_C3P3R, Kro8u)},
    {"RGB411", k411, Fmt::kRgb, ENC(kroiRGBToYCbCr411LS_MCU_8u16s_C3P3R, Kro8u)},
    {"BGR444", k444, Fmt::kBgr, ENC(kroiBGRToYCbCr444LS_MCU_8u16s_C3P3R, Kro8u)},
    {"BGR422", k422, Fmt::kBgr, ENC(kroiBGRToYCbCr422LS_MCU_8u16s_C3P3R, Kro8u)},
    {"BGR411", k411, Fmt::kBgr, ENC(kroiBGRToYCbCr411LS_MCU_8u16s_C3P3R, Kro8u)},
    {"BGR555_444", k444, Fmt::kBgr555, ENC(kroiBGR555ToYCbCr444LS_MCU_16u16s_C3P3R, Kro16u)},
    {"BGR555_422", k422, Fmt::kBgr555, ENC(kroiBGR555ToYCbCr422LS_MCU_16u16s_C3P3R, Kro16u)},
    {"BGR555_411", k411, Fmt::kBgr555, ENC(kroiBGR555ToYCbCr411LS_MCU_16u16s_C3P3R, Kro16u)},
    {"BGR565_444", k444, Fmt::kBgr565, ENC(kroiBGR565ToYCbCr444LS_MCU_16u16s_C3P3R, Kro16u)},
    {"BGR565_422", k422, Fmt::kBgr565, ENC(kroiBGR565ToYCbCr422LS_MCU_16u16s_C3P3R, Kro16u)},
    {"BGR565_411", k411, Fmt::kBgr565, ENC(kroiBGR565ToYCbCr411LS_MCU_16u16s_C3P3R, Kro16u)},
    {"CMYK444", k444, Fmt::kCmyk, ENC(kroiCMYKToYCCK444LS_MCU_8u16s_C4P4R, Kro8u)},
    {"CMYK422", k422, Fmt::kCmyk, ENC(kroiCMYKToYCCK422LS_MCU_8u16s_C4P4R, Kro8u)},
    {"CMYK411", k411, Fmt::kCmyk, ENC(kroiCMYKToYCCK411LS_MCU_8u16s_C4P4R, Kro8u)},
    {"Down444", k444, Fmt::kRaw, ENC(kroiSampleDown444LS_MCU_8u16s_C3P3R, Kro8u)},
    {"Down422", k422, Fmt::kRaw, ENC(kroiSampleDown422LS_MCU_8u16s_C3P3R, Kro8u)},
    {"Down411", k411, Fmt::kRaw, ENC(kroiSampleDown411LS_MCU_8u16s_C3P3R, Kro8u)},
    {"Split422", k422, Fmt::kYCbYCr, ENC(kroiSplit422LS_MCU_8u16s_C2P3R, Kro8u)},
};

// What pixel (x, y) of an encoder source holds: R, G, B (complemented C, M, Y for
// CMYK) and K, or the three raw samples.
std::array<int, 4> Read(Fmt f, const GuardedImage<Kro8u>& img, int x, int y) {
  const Kro8u* p = img.row(y) + Bytes(f) * x;
  const int w = p[0] | (Bytes(f) == 2 ? p[1] << 8 : 0);
  switch (f) {
    case Fmt::kRgb: case Fmt::kRaw: return {p[0], p[1], p[2], 0};
    case Fmt::kBgr: return {p[2], p[1], p[0], 0};
    case Fmt::kBgr555: return {(w >> 10 & 31) << 3, (w >> 5 & 31) << 3, (w & 31) << 3, 0};
    case Fmt::kBgr565: return {(w >> 11 & 31) << 3, (w >> 5 & 63) << 2, (w & 31) << 3, 0};
    case Fmt::kCmyk: return {255 - p[0], 255 - p[1], 255 - p[2], p[3]};
    case Fmt::kYCbYCr: {
      const Kro8u* pair = img.row(y) + 4 * (x / 2);
      return {img.row(y)[2 * x], pair[1], pair[3], 0};
    }
  }
  return {};
}

struct Blocks {
  std::vector<Kro16s> c[4];  // each with 16 guard values after the blocks
  explicit Blocks(Geo g) {
    for (int k = 0; k < 4; ++k) c[k].assign((k == 0 || k == 3 ? 64 * g.Blocks() : 64) + 16, 0x5A5A);
  }
  bool GuardsIntact() const {
    for (int k = 0; k < 4; ++k)
      for (size_t i = c[k].size() - 16; i < c[k].size(); ++i)
        if (c[k][i] != 0x5A5A) return false;
    return true;
  }
};

// The blocks an encoder member must write for the source image.
Blocks ExpectEncoded(const EncMember& m, const GuardedImage<Kro8u>& img) {
  Blocks b(m.g);
  const int n = 1 << (m.g.lx + m.g.ly);
  for (int cy = 0; cy < 8; ++cy)
    for (int cx = 0; cx < 8; ++cx) {
      int64_t s[3] = {0, 0, 0};
      for (int y = cy << m.g.ly; y < (cy + 1) << m.g.ly; ++y)
        for (int x = cx << m.g.lx; x < (cx + 1) << m.g.lx; ++x) {
          const auto p = Read(m.f, img, x, y);
          b.c[0][m.g.Full(x, y)] = static_cast<Kro16s>(
              Colour(m.f) ? FloorDiv(19595 * p[0] + 38470 * p[1] + 7471 * p[2], 65536) - 128 : p[0] - 128);
          b.c[3][m.g.Full(x, y)] = static_cast<Kro16s>(p[3] - 128);
          for (int k = 0; k < 3; ++k) s[k] += p[k];
        }
      const int64_t cb = -11059 * s[0] - 21709 * s[1] + 32768 * s[2];
      const int64_t cr = 32768 * s[0] - 27439 * s[1] - 5329 * s[2];
      b.c[1][cy * 8 + cx] = static_cast<Kro16s>(Colour(m.f) ? FloorDiv(cb, 65536 * n) : FloorDiv(s[1], n) - 128);
      b.c[2][cy * 8 + cx] = static_cast<Kro16s>(Colour(m.f) ? FloorDiv(cr, 65536 * n) : FloorDiv(s[2], n) - 128);
    }
  return b;
}

GuardedImage<Kro8u> Source(const EncMember& m) { return GuardedImage<Kro8u>(m.g.W(), m.g.H(), Bytes(m.f), 5); }

Blocks Encode(const EncMember& m, const GuardedImage<Kro8u>& img, KroStatus* status = nullptr) {
  Blocks b(m.g);
  Kro16s* d[4] = {b.c[0].data(), b.c[1].data(), b.c[2].data(), b.c[3].data()};
  const KroStatus st = m.call(img.data(), img.step(), d);
  if (status) *status = st;
  EXPECT_EQ(st, kroStatusOk) << m.name;
  return b;
}

void ExpectSameBlocks(const EncMember& m, const Blocks& got, const Blocks& want) {
  for (int k = 0; k < Components(m.f); ++k)
    for (size_t i = 0; i + 16 < got.c[k].size(); ++i)
      ASSERT_EQ(got.c[k][i], want.c[k][i]) << m.name << " component " << k << " value " << i;
  EXPECT_TRUE(got.GuardsIntact()) << m.name;
}

TEST(McuEncode, ArgumentChecksInOrder) {
  for (const EncMember& m : kEnc) {
    SCOPED_TRACE(m.name);
    auto img = Source(m);
    Blocks b(m.g);
    Kro16s* d[4] = {b.c[0].data(), b.c[1].data(), b.c[2].data(), b.c[3].data()};
    EXPECT_EQ(m.call(nullptr, 0, d), kroStatusNullPointer);
    EXPECT_EQ(m.call(img.data(), 0, nullptr), kroStatusNullPointer);
    for (int k = 0; k < Components(m.f); ++k) {
      Kro16s* bad[4] = {d[0], d[1], d[2], d[3]};
      bad[k] = nullptr;
      EXPECT_EQ(m.call(img.data(), 0, bad), kroStatusBadStep) << k;  // the step comes first
      EXPECT_EQ(m.call(img.data(), img.step(), bad), kroStatusNullPointer) << k;
    }
    for (int k = 0; k < 4; ++k)
      for (size_t i = 0; i < b.c[k].size(); ++i) ASSERT_EQ(b.c[k][i], 0x5A5A);
  }
}

TEST(McuEncode, DocumentedExamples) {
  auto flat = [](const EncMember& m, std::array<int, 4> px) {
    auto img = Source(m);
    for (int y = 0; y < m.g.H(); ++y)
      for (int x = 0; x < m.g.W(); ++x)
        for (int c = 0; c < Bytes(m.f); ++c) img.at(x, y, c) = static_cast<Kro8u>(px[c]);
    return Encode(m, img);
  };
  for (const EncMember& m : {kEnc[0], kEnc[1], kEnc[2]}) {
    Blocks white = flat(m, {255, 255, 255}), black = flat(m, {0, 0, 0}), red = flat(m, {255, 0, 0});
    for (int i = 0; i < 64; ++i) {
      EXPECT_EQ(white.c[0][i], 127);
      EXPECT_EQ(black.c[0][i], -128);
      EXPECT_EQ(red.c[0][i], -52);  // (4996725 >> 16) - 128; the plane form rounds to 76 too
      EXPECT_EQ(white.c[1][i] | white.c[2][i] | black.c[1][i] | black.c[2][i], 0);
    }
  }
  Blocks cmyk = flat(kEnc[12], {0, 0, 0, 0});
  EXPECT_EQ(cmyk.c[0][5], 127);
  EXPECT_EQ(cmyk.c[1][5], 0);
  EXPECT_EQ(cmyk.c[3][5], -128);
  // 4:2:2 pair (B = 255) and black: Cb = (32768 * 255) >> 17 = 63.
  auto img = Source(kEnc[1]);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 16; ++x) {
      img.at(x, y, 0) = img.at(x, y, 1) = 0;
      img.at(x, y, 2) = x % 2 ? 0 : 255;
    }
  EXPECT_EQ(Encode(kEnc[1], img).c[1][0], 63);
}

// Random MCUs at padded steps against the rules composed per pixel.
TEST(McuEncode, EveryMemberAgainstThePixelRules) {
  Rng rng(21);
  for (const EncMember& m : kEnc)
    for (int rep = 0; rep < 20; ++rep) {
      auto img = Source(m);
      img.FillRandom(rng, rep < 2 ? 250 * rep : 0, rep < 2 ? 5 + 250 * rep : 255);  // near black, near white
      ExpectSameBlocks(m, Encode(m, img), ExpectEncoded(m, img));
      ASSERT_TRUE(img.IntactOutside());
    }
}

// ---- Decoder side ----

using DecFn = KroStatus (*)(const Kro16s** src, void* dst, int step);
struct DecMember {
  const char* name;
  Geo g;
  Fmt f;
  DecFn call;
};
#define DEC(fn, T) [](const Kro16s** s, void* d, int st) { return fn(s, static_cast<T*>(d), st); }
const DecMember kDec[] = {
    {"RGB444", k444, Fmt::kRgb, DEC(kroiYCbCr444ToRGBLS_MCU_16s8u_P3C3R, Kro8u)},
    {"RGB422", k422, Fmt::kRgb, DEC(kroiYCbCr422ToRGBLS_MCU_16s8u_P3C3R, Kro8u)},
    {"RGB411", k411, Fmt::kRgb, DEC(kroiYCbCr411ToRGBLS_MCU_16s8u_P3C3R, Kro8u)},
    {"BGR444", k444, Fmt::kBgr, DEC(kroiYCbCr444ToBGRLS_MCU_16s8u_P3C3R, Kro8u)},
    {"BGR422", k422, Fmt::kBgr, DEC(kroiYCbCr422ToBGRLS_MCU_16s8u_P3C3R, Kro8u)},
    {"BGR411", k411, Fmt::kBgr, DEC(kroiYCbCr411ToBGRLS_MCU_16s8u_P3C3R, Kro8u)},
    {"BGR555_444", k444, Fmt::kBgr555, DEC(kroiYCbCr444ToBGR555LS_MCU_16s16u_P3C3R, Kro16u)},
    {"BGR555_422", k422, Fmt::kBgr555, DEC(kroiYCbCr422ToBGR555LS_MCU_16s16u_P3C3R, Kro16u)},
    {"BGR555_411", k411, Fmt::kBgr555, DEC(kroiYCbCr411ToBGR555LS_MCU_16s16u_P3C3R, Kro16u)},
    {"BGR565_444", k444, Fmt::kBgr565, DEC(kroiYCbCr444ToBGR565LS_MCU_16s16u_P3C3R, Kro16u)},
    {"BGR565_422", k422, Fmt::kBgr565, DEC(kroiYCbCr422ToBGR565LS_MCU_16s16u_P3C3R, Kro16u)},
    {"BGR565_411", k411, Fmt::kBgr565, DEC(kroiYCbCr411ToBGR565LS_MCU_16s16u_P3C3R, Kro16u)},
    {"CMYK444", k444, Fmt::kCmyk, DEC(kroiYCCK444ToCMYKLS_MCU_16s8u_P4C4R, Kro8u)},
    {"CMYK422", k422, Fmt::kCmyk, DEC(kroiYCCK422ToCMYKLS_MCU_16s8u_P4C4R, Kro8u)},
    {"CMYK411", k411, Fmt::kCmyk, DEC(kroiYCCK411ToCMYKLS_MCU_16s8u_P4C4R, Kro8u)},
    {"Up444", k444, Fmt::kRaw, DEC(kroiSampleUp444LS_MCU_16s8u_P3C3R, Kro8u)},
    {"Up422", k422, Fmt::kRaw, DEC(kroiSampleUp422LS_MCU_16s8u_P3C3R, Kro8u)},
    {"Up411", k411, Fmt::kRaw, DEC(kroiSampleUp411LS_MCU_16s8u_P3C3R, Kro8u)},
    {"Join422", k422, Fmt::kYCbYCr, DEC(kroiJoin422LS_MCU_16s8u_P3C2R, Kro8u)},
};

// The bytes pixel (x, y) must hold: R = y + floor(wrap32(91881 cr) / 2^16) + 128 and
// so on, clamped, in the member's layout.
std::vector<int> ExpectPixel(const DecMember& m, const Blocks& b, int x, int y) {
  const int64_t l = b.c[0][m.g.Full(x, y)], cb = b.c[1][m.g.Chroma(x, y)], cr = b.c[2][m.g.Chroma(x, y)];
  const int r = Clamp(l + FloorDiv(Wrap32(91881 * cr), 65536) + 128);
  const int g = Clamp(l + FloorDiv(Wrap32(-22554 * cb - 46802 * cr), 65536) + 128);
  const int bl = Clamp(l + FloorDiv(Wrap32(116130 * cb), 65536) + 128);
  switch (m.f) {
    case Fmt::kRgb: return {r, g, bl};
    case Fmt::kBgr: return {bl, g, r};
    case Fmt::kBgr555: { const int w = bl >> 3 | (g >> 3) << 5 | (r >> 3) << 10; return {w & 255, w >> 8}; }
    case Fmt::kBgr565: { const int w = bl >> 3 | (g >> 2) << 5 | (r >> 3) << 11; return {w & 255, w >> 8}; }
    case Fmt::kCmyk: return {255 - r, 255 - g, 255 - bl, static_cast<int>((b.c[3][m.g.Full(x, y)] + 128) & 255)};
    case Fmt::kRaw: return {Clamp(l + 128), Clamp(cb + 128), Clamp(cr + 128)};
    case Fmt::kYCbYCr: return {Clamp(l + 128), Clamp((x % 2 ? cr : cb) + 128)};
  }
  return {};
}

GuardedImage<Kro8u> Decode(const DecMember& m, const Blocks& b) {
  GuardedImage<Kro8u> img(m.g.W(), m.g.H(), Bytes(m.f), 7);
  const Kro16s* s[4] = {b.c[0].data(), b.c[1].data(), b.c[2].data(), b.c[3].data()};
  EXPECT_EQ(m.call(s, img.data(), img.step()), kroStatusOk) << m.name;
  return img;
}

void ExpectDecoded(const DecMember& m, const Blocks& b, const GuardedImage<Kro8u>& img) {
  for (int y = 0; y < m.g.H(); ++y)
    for (int x = 0; x < m.g.W(); ++x) {
      const std::vector<int> want = ExpectPixel(m, b, x, y);
      for (size_t c = 0; c < want.size(); ++c)
        ASSERT_EQ(img.at(x, y, static_cast<int>(c)), want[c]) << m.name << " at " << x << "," << y << " byte " << c;
    }
  EXPECT_TRUE(img.IntactOutside()) << m.name;
}

TEST(McuDecode, ArgumentChecksInOrder) {
  for (const DecMember& m : kDec) {
    SCOPED_TRACE(m.name);
    Blocks b(m.g);
    GuardedImage<Kro8u> img(m.g.W(), m.g.H(), Bytes(m.f), 0);
    const Kro16s* s[4] = {b.c[0].data(), b.c[1].data(), b.c[2].data(), b.c[3].data()};
    EXPECT_EQ(m.call(nullptr, img.data(), 0), kroStatusNullPointer);
    EXPECT_EQ(m.call(s, nullptr, 0), kroStatusNullPointer);
    for (int k = 0; k < Components(m.f); ++k) {
      const Kro16s* bad[4] = {s[0], s[1], s[2], s[3]};
      bad[k] = nullptr;
      EXPECT_EQ(m.call(bad, img.data(), 0), kroStatusNullPointer) << k;  // blocks before the step
    }
    EXPECT_EQ(m.call(s, img.data(), -1), kroStatusBadStep);
    for (int y = 0; y < m.g.H(); ++y)
      for (int x = 0; x < m.g.W() * Bytes(m.f); ++x) ASSERT_EQ(img.row(y)[x], kGuard);
  }
}

TEST(McuDecode, DocumentedExamples) {
  Blocks b(k444);
  auto pixel = [&](const DecMember& m) { return Decode(m, b); };
  std::fill(b.c[0].begin(), b.c[0].end() - 16, 0);
  std::fill(b.c[1].begin(), b.c[1].end() - 16, 0);
  std::fill(b.c[2].begin(), b.c[2].end() - 16, 0);
  EXPECT_EQ(pixel(kDec[0]).at(3, 3, 1), 128);  // all zero: mid-grey
  b.c[0][0] = 127;
  b.c[0][1] = -128;
  b.c[0][2] = 0, b.c[2][2] = 127;   // R = 178 + 128, clamped
  b.c[0][3] = 0, b.c[2][3] = -128;  // R = -180 + 128, clamped
  const auto rgb = pixel(kDec[0]);
  EXPECT_EQ(rgb.at(0, 0, 0), 255);
  EXPECT_EQ(rgb.at(0, 0, 2), 255);
  EXPECT_EQ(rgb.at(1, 0, 1), 0);
  EXPECT_EQ(rgb.at(2, 0, 0), 255);
  EXPECT_EQ(rgb.at(3, 0, 0), 0);
  b.c[3][0] = 100;
  b.c[3][1] = 130;  // out of range: wraps to 2 instead of clamping to 255
  const auto cmyk = pixel(kDec[12]);
  EXPECT_EQ(cmyk.at(0, 0, 3), 228);
  EXPECT_EQ(cmyk.at(1, 0, 3), 2);
  EXPECT_EQ(cmyk.at(0, 0, 0), 0);
}

// Random blocks, both in the range an inverse DCT produces and over the whole 16-bit
// range (where the 32-bit products wrap), for every member.
TEST(McuDecode, EveryMemberAgainstThePixelRules) {
  Rng rng(33);
  for (const DecMember& m : kDec)
    for (int rep = 0; rep < 20; ++rep) {
      Blocks b(m.g);
      const int range = rep % 2 ? 32768 : 300;
      for (auto& c : b.c) rng.Fill(c.data(), c.size() - 16, -range, std::min(range, 32767));
      ExpectDecoded(m, b, Decode(m, b));
    }
}

// ---- Round trips ----

// Flat colours through encoder and decoder MCU of the same geometry. Y', Cb' and Cr'
// each truncate by less than one unit, and the decoder floors once more, so R and B
// come back between 3 below (1 + 1.772 + 1 < 4) and 1 above, G between 1 below and 1
// above (0.344 + 0.714 < 2); read back from 5- or 6-bit fields that is 8 below to 0
// above. The conversion-free pairs return every byte, and K always comes back.
TEST(McuRoundTrip, FlatColoursReturn) {
  Rng rng(45);
  for (size_t i = 0; i < std::size(kEnc); ++i) {
    const EncMember& e = kEnc[i];
    const DecMember& d = kDec[i];
    ASSERT_EQ(e.f, d.f);
    for (int rep = 0; rep < 200; ++rep) {
      auto img = Source(e);
      // One pixel's bytes, or for the 4:2:2 stream a pair Y Cb Y Cr with equal Y.
      std::vector<Kro8u> px(e.f == Fmt::kYCbYCr ? 4 : Bytes(e.f));
      rng.Fill(px.data(), px.size(), 0, 255);
      if (e.f == Fmt::kYCbYCr) px[2] = px[0];
      for (int y = 0; y < e.g.H(); ++y)
        for (int x = 0; x < e.g.W(); ++x)
          for (int c = 0; c < Bytes(e.f); ++c) img.at(x, y, c) = px[(x * Bytes(e.f) + c) % px.size()];
      const auto out = Decode(d, Encode(e, img));
      for (int y = 0; y < e.g.H(); ++y)
        for (int x = 0; x < e.g.W(); ++x) {
          const auto a = Read(e.f, img, x, y);
          const auto b = Read(e.f, out, x, y);
          const bool packed = e.f == Fmt::kBgr555 || e.f == Fmt::kBgr565;
          const int below = !Colour(e.f) ? 0 : packed ? 8 : 3, above = Colour(e.f) && !packed ? 1 : 0;
          for (int c = 0; c < 3; ++c) {
            ASSERT_GE(b[c] - a[c], -below) << e.name << " " << x << "," << y;
            ASSERT_LE(b[c] - a[c], above) << e.name << " " << x << "," << y;
          }
          ASSERT_EQ(b[3], a[3]) << e.name;
        }
    }
  }
}

}  // namespace
