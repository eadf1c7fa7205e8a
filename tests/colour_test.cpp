// SPDX-License-Identifier: BSD-3-Clause
// Plane colour conversion: argument order, every member against the per-pixel JFIF
// formulas written out here (exhaustively where the input space allows), guard
// bytes, and identical results for every thread count.
#include <string.h>

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <thread>
#include <tuple>
#include <type_traits>
#include <vector>

#include "simd_test_util.h"
#include "test_util.h"

namespace {

using kro_test::GuardedImage;
using kro_test::Rng;
using kro_test::ScopedThreads;

// ---- The formulas, written from the documented equations ----

int Y(int r, int g, int b) { return (19595 * r + 38470 * g + 7471 * b + 32768) >> 16; }
int Cb(int r, int g, int b) { return (-11059 * r - 21709 * g + 32768 * b + 8421375) >> 16; }
int Cr(int r, int g, int b) { return (32768 * r - 27439 * g - 5329 * b + 8421375) >> 16; }
int Clamp(int v) { return std::clamp(v, 0, 255); }
// R, G, B of Y, Cb, Cr, before the complement of CMYK.
std::array<int, 3> Rgb(int y, int cb, int cr) {
  const int64_t dcb = cb - 128, dcr = cr - 128;
  return {Clamp(y + static_cast<int>((91881 * dcr + 32768) >> 16)),
          Clamp(y + static_cast<int>((32768 - 22554 * dcb - 46802 * dcr) >> 16)),
          Clamp(y + static_cast<int>((116130 * dcb + 32768) >> 16))};
}

// Packed words: low field bits 0-4, green from bit 5 (5 or 6 bits), high field above;
// R in the low field, or B for the BGR formats.
std::array<int, 3> Unpack(int w, bool bgr, int gbits) {
  const int low = (w & 31) << 3, g = ((w >> 5) & ((1 << gbits) - 1)) << (8 - gbits);
  const int high = ((w >> (5 + gbits)) & 31) << 3;
  return bgr ? std::array<int, 3>{high, g, low} : std::array<int, 3>{low, g, high};
}
int Pack(std::array<int, 3> rgb, bool bgr, int gbits) {
  const int low = (bgr ? rgb[2] : rgb[0]) >> 3, high = (bgr ? rgb[0] : rgb[2]) >> 3;
  return low | (rgb[1] >> (8 - gbits)) << 5 | high << (5 + gbits);
}

// ---- One description per member ----

// A side of a conversion: `planes` images of `channels` components per pixel, each
// component `bytes` wide.
struct Side {
  int planes, channels, bytes;
  int Components() const { return planes * channels; }
};
using Pixel = std::array<int, 4>;  // unused components stay 0

Pixel Encode(int r, int g, int b) { return {Y(r, g, b), Cb(r, g, b), Cr(r, g, b)}; }
template <int kFirst>  // 0: R, G, B; 2: B, G, R
Pixel EncodeBytes(const Pixel& s) {
  return Encode(s[kFirst], s[1], s[2 - kFirst]);
}
template <int kFirst>
Pixel LumaBytes(const Pixel& s) {
  return {Y(s[kFirst], s[1], s[2 - kFirst])};
}
template <bool kBgr, int kGreenBits>
Pixel EncodePacked(const Pixel& s) {
  const auto c = Unpack(s[0], kBgr, kGreenBits);
  return Encode(c[0], c[1], c[2]);
}
Pixel EncodeInk(const Pixel& c) {
  Pixel p = Encode(255 - c[0], 255 - c[1], 255 - c[2]);
  p[3] = c[3];
  return p;
}
template <int kFirst>
Pixel DecodeBytes(const Pixel& s) {
  const auto c = Rgb(s[0], s[1], s[2]);
  return {c[kFirst], c[1], c[2 - kFirst]};
}
template <bool kBgr, int kGreenBits>
Pixel DecodePacked(const Pixel& s) {
  return {Pack(Rgb(s[0], s[1], s[2]), kBgr, kGreenBits)};
}
Pixel DecodeInk(const Pixel& s) {
  const auto c = Rgb(s[0], s[1], s[2]);
  return {255 - c[0], 255 - c[1], 255 - c[2], s[3]};
}

// Calls any member through byte-typed plane pointer arrays: a planar side passes the
// array, an interleaved side its first pointer (null if the array is null).
template <class P, class A>
P SideArg(A* const* p) {
  if constexpr (std::is_pointer_v<std::remove_pointer_t<P>>) {
    return reinterpret_cast<P>(p);
  } else {
    return p ? reinterpret_cast<P>(p[0]) : nullptr;
  }
}
template <auto fn>
struct Caller;
template <class S, class D, KroStatus (*fn)(S, int, D, int, KroiSize)>
struct Caller<fn> {
  static KroStatus Call(const Kro8u* const* s, int ss, Kro8u* const* d, int ds, KroiSize r) {
    return fn(SideArg<S>(s), ss, SideArg<D>(d), ds, r);
  }
};

struct Member {
  const char* name;
  Side src, dst;
  bool threaded;
  KroStatus (*call)(const Kro8u* const* s, int ss, Kro8u* const* d, int ds, KroiSize);
  Pixel (*expect)(const Pixel&);
};
constexpr Side p3{3, 1, 1}, p4{4, 1, 1}, c1{1, 1, 1}, c3{1, 3, 1}, c4{1, 4, 1}, w{1, 1, 2};
#define M(fn, src, dst, threaded, expect) \
  { #fn, src, dst, threaded, &Caller < fn> ::Call, expect }
// clang-format off
const Member kMembers[] = {
  M(kroiRGBToYCbCr_JPEG_8u_P3R, p3, p3, true, EncodeBytes<0>),
  M(kroiRGBToYCbCr_JPEG_8u_C3P3R, c3, p3, true, EncodeBytes<0>),
  M(kroiBGRToYCbCr_JPEG_8u_C3P3R, c3, p3, true, EncodeBytes<2>),
  M(kroiRGB555ToYCbCr_JPEG_16u8u_C3P3R, w, p3, false, (EncodePacked<false, 5>)),
  M(kroiBGR555ToYCbCr_JPEG_16u8u_C3P3R, w, p3, false, (EncodePacked<true, 5>)),
  M(kroiRGB565ToYCbCr_JPEG_16u8u_C3P3R, w, p3, false, (EncodePacked<false, 6>)),
  M(kroiBGR565ToYCbCr_JPEG_16u8u_C3P3R, w, p3, false, (EncodePacked<true, 6>)),
  M(kroiCMYKToYCCK_JPEG_8u_P4R, p4, p4, true, EncodeInk),
  M(kroiCMYKToYCCK_JPEG_8u_C4P4R, c4, p4, true, EncodeInk),
  M(kroiRGBToY_JPEG_8u_P3C1R, p3, c1, true, LumaBytes<0>),
  M(kroiRGBToY_JPEG_8u_C3C1R, c3, c1, true, LumaBytes<0>),
  M(kroiBGRToY_JPEG_8u_C3C1R, c3, c1, true, LumaBytes<2>),
  M(kroiYCbCrToRGB_JPEG_8u_P3C3R, p3, c3, true, DecodeBytes<0>),
  M(kroiYCbCrToBGR_JPEG_8u_P3C3R, p3, c3, true, DecodeBytes<2>),
  M(kroiYCbCrToRGB_JPEG_8u_P3R, p3, p3, true, DecodeBytes<0>),
  M(kroiYCbCrToRGB555_JPEG_8u16u_P3C3R, p3, w, false, (DecodePacked<false, 5>)),
  M(kroiYCbCrToBGR555_JPEG_8u16u_P3C3R, p3, w, false, (DecodePacked<true, 5>)),
  M(kroiYCbCrToRGB565_JPEG_8u16u_P3C3R, p3, w, false, (DecodePacked<false, 6>)),
  M(kroiYCbCrToBGR565_JPEG_8u16u_P3C3R, p3, w, false, (DecodePacked<true, 6>)),
  M(kroiYCCKToCMYK_JPEG_8u_P4R, p4, p4, true, DecodeInk),
  M(kroiYCCKToCMYK_JPEG_8u_P4C4R, p4, c4, true, DecodeInk),
};
// clang-format on

const Member& Find(const char* name) {
  for (const Member& m : kMembers)
    if (strcmp(m.name, name) == 0) return m;
  abort();
}

// The images of one side, with guard bytes around every plane.
struct Planes {
  Side side;
  std::vector<GuardedImage<uint8_t>> img;
  Planes(Side s, KroiSize size, int pad) : side(s) {
    for (int p = 0; p < s.planes; ++p)
      img.emplace_back(size.width, size.height, s.channels * s.bytes, pad);
  }
  int step() const { return img[0].step(); }
  std::array<Kro8u*, 4> Ptrs() {
    std::array<Kro8u*, 4> a{};
    for (size_t p = 0; p < img.size(); ++p) a[p] = img[p].data();
    return a;
  }
  // Component c of pixel (x, y), one byte or a little-endian word.
  uint8_t* Ptr(int x, int y, int c) {
    return img[c / side.channels].row(y) + (x * side.channels + c % side.channels) * side.bytes;
  }
  void Set(int x, int y, int c, int v) {
    Ptr(x, y, c)[0] = static_cast<uint8_t>(v);
    if (side.bytes == 2) Ptr(x, y, c)[1] = static_cast<uint8_t>(v >> 8);
  }
  Pixel At(int x, int y) {
    Pixel p{};
    for (int c = 0; c < side.Components(); ++c)
      p[c] = Ptr(x, y, c)[0] | (side.bytes == 2 ? Ptr(x, y, c)[1] << 8 : 0);
    return p;
  }
  bool Intact() const {
    return std::all_of(img.begin(), img.end(), [](const auto& i) { return i.IntactOutside(); });
  }
};

KroStatus Convert(const Member& m, Planes& src, Planes& dst, KroiSize size) {
  auto in = src.Ptrs();
  auto out = dst.Ptrs();
  return m.call(in.data(), src.step(), out.data(), dst.step(), size);
}

// Converts random pixels (or those `fill` sets) and checks every output pixel (unless
// !verify) and the guard bytes.
Planes CheckMember(const Member& m, KroiSize size, uint64_t seed, int pad = 3, bool verify = true,
                   void (*fill)(Planes&) = nullptr) {
  Planes src(m.src, size, pad), dst(m.dst, size, pad + 2);
  Rng rng(seed);
  for (auto& i : src.img) i.FillRandom(rng, 0, 255);
  if (fill) fill(src);
  EXPECT_EQ(Convert(m, src, dst, size), kroStatusOk) << m.name;
  for (int y = 0; y < size.height && verify; ++y)
    for (int x = 0; x < size.width; ++x)
      if (dst.At(x, y) != m.expect(src.At(x, y))) {
        ADD_FAILURE() << m.name << " at " << x << "," << y;
        return dst;
      }
  EXPECT_TRUE(dst.Intact()) << m.name;
  return dst;
}

TEST(PlaneColour, ArgumentChecksInOrder) {
  for (const Member& m : kMembers) {
    SCOPED_TRACE(m.name);
    Planes src(m.src, {4, 2}, 0), dst(m.dst, {4, 2}, 0);
    const auto in = src.Ptrs(), out = dst.Ptrs();
    const int ss = src.step(), ds = dst.step();
    EXPECT_EQ(m.call(nullptr, 0, out.data(), ds, {0, 2}), kroStatusNullPointer);
    EXPECT_EQ(m.call(in.data(), 0, nullptr, ds, {0, 2}), kroStatusNullPointer);
    for (int p = 0; p < std::max(m.src.planes, m.dst.planes); ++p) {
      auto bad_in = in, bad_out = out;
      bad_in[p] = bad_out[p] = nullptr;
      if (p < m.src.planes) EXPECT_EQ(m.call(bad_in.data(), 0, out.data(), 0, {0, 0}), -8) << p;
      if (p < m.dst.planes) EXPECT_EQ(m.call(in.data(), 0, bad_out.data(), 0, {0, 0}), -8) << p;
    }
    EXPECT_EQ(m.call(in.data(), 0, out.data(), ds, {0, 0}), kroStatusBadStep);
    EXPECT_EQ(m.call(in.data(), ss, out.data(), -1, {4, 0}), kroStatusBadStep);
    EXPECT_EQ(m.call(in.data(), ss, out.data(), ds, {0, 2}), kroStatusBadSize);
    EXPECT_EQ(m.call(in.data(), ss, out.data(), ds, {4, -1}), kroStatusBadSize);
    for (const auto& i : dst.img)  // nothing written anywhere
      for (int y = -1; y <= 2; ++y)
        for (int b = 0; b < i.step(); ++b) ASSERT_EQ(i.row(y)[b], kro_test::kGuard);
  }
}

TEST(PlaneColour, HandComputedPixels) {
  auto convert = [](const char* name, Pixel in) {
    const Member& m = Find(name);
    Planes src(m.src, {1, 1}, 0), dst(m.dst, {1, 1}, 0);
    for (int c = 0; c < m.src.Components(); ++c) src.Set(0, 0, c, in[c]);
    EXPECT_EQ(Convert(m, src, dst, {1, 1}), kroStatusOk);
    return dst.At(0, 0);
  };
  const char* enc = "kroiRGBToYCbCr_JPEG_8u_C3P3R";
  const char* dec = "kroiYCbCrToRGB_JPEG_8u_P3C3R";
  EXPECT_EQ(convert(enc, {255, 255, 255}), (Pixel{255, 128, 128}));
  EXPECT_EQ(convert(enc, {255, 0, 0}), (Pixel{76, 85, 255}));
  EXPECT_EQ(convert(enc, {0, 0, 255}), (Pixel{29, 255, 107}));
  EXPECT_EQ(convert(dec, {100, 255, 0}), (Pixel{0, 148, 255}));
  EXPECT_EQ(convert(dec, {0, 128, 0}), (Pixel{0, 91, 0}));  // R = -179, G = 6023424 >> 16
  EXPECT_EQ(convert("kroiRGB565ToYCbCr_JPEG_16u8u_C3P3R", {0xFFFF}), (Pixel{250, 127, 126}));
  EXPECT_EQ(convert("kroiYCbCrToBGR565_JPEG_8u16u_P3C3R", {76, 85, 255}), (Pixel{0xF800}));
  EXPECT_EQ(convert("kroiYCbCrToRGB555_JPEG_8u16u_P3C3R", {255, 128, 128}), (Pixel{0x7FFF}));
  EXPECT_EQ(convert("kroiCMYKToYCCK_JPEG_8u_C4P4R", {0, 0, 0, 77}), (Pixel{255, 128, 128, 77}));
  EXPECT_EQ(convert("kroiYCCKToCMYK_JPEG_8u_P4C4R", {255, 128, 128, 7}), (Pixel{0, 0, 0, 7}));
}

// Every compiled SIMD target against the formulas: all 2^24 inputs of the RGB ->
// YCbCr and YCbCr -> RGB arithmetic through the interleaved members (the others
// share the per-pixel code), all 2^16 words of the packed encoders, and every member
// at widths that end a row at each place of a vector, with odd steps and guards.
class PlaneColourTargets : public hwy::TestWithParamTarget {};
HWY_TARGET_INSTANTIATE_TEST_SUITE_P(PlaneColourTargets);

TEST_P(PlaneColourTargets, EveryInput) {
  constexpr int kSide = 4096, kN = kSide * kSide;
  static const auto [all, want_enc, want_dec] = [] {
    std::vector<Kro8u> in(3 * kN), enc(3 * kN), dec(3 * kN);
    for (int i = 0; i < 3 * kN; ++i) in[i] = static_cast<Kro8u>((i / 3) >> (16 - 8 * (i % 3)));
    for (int i = 0; i < kN; ++i) {
      const Pixel e = EncodeBytes<0>({in[3 * i], in[3 * i + 1], in[3 * i + 2]});
      const Pixel d = DecodeBytes<0>({in[3 * i], in[3 * i + 1], in[3 * i + 2]});
      for (int c = 0; c < 3; ++c) enc[c * kN + i] = static_cast<Kro8u>(e[c]);
      for (int c = 0; c < 3; ++c) dec[3 * i + c] = static_cast<Kro8u>(d[c]);
    }
    return std::make_tuple(in, enc, dec);
  }();
  std::vector<Kro8u> planes(3 * kN), rgb(3 * kN);
  Kro8u* const p[3] = {planes.data(), planes.data() + kN, planes.data() + 2 * kN};
  ASSERT_EQ(kroiRGBToYCbCr_JPEG_8u_C3P3R(all.data(), 3 * kSide, p, kSide, {kSide, kSide}),
            kroStatusOk);
  EXPECT_TRUE(planes == want_enc);
  for (int i = 0; i < kN; ++i)
    for (int c = 0; c < 3; ++c) p[c][i] = all[3 * i + c];
  ASSERT_EQ(kroiYCbCrToRGB_JPEG_8u_P3C3R(p, kSide, rgb.data(), 3 * kSide, {kSide, kSide}),
            kroStatusOk);
  EXPECT_TRUE(rgb == want_dec);
  for (const Member& m : kMembers)
    if (m.src.bytes == 2)
      CheckMember(m, {256, 256}, 0, 1, true, [](Planes& p) {
        for (int v = 0; v < 65536; ++v) p.Set(v & 255, v >> 8, 0, v);
      });
}

TEST_P(PlaneColourTargets, EdgeWidthsOfEveryMember) {
  uint64_t seed = 1;
  for (const Member& m : kMembers) {
    for (int w : kro_test::EdgeWidths())
      CheckMember(m, {w, 3}, seed++, static_cast<int>(seed % 5));
    CheckMember(m, {1, 7}, seed++);
  }
}

// The row-parallel members: regions around the threshold, one row and one column,
// odd steps, thread counts 1..8, and several callers at once.
TEST(PlaneColour, SameResultForEveryThreadCount) {
  for (const Member& m : kMembers) {
    if (!m.threaded) continue;
    for (KroiSize size :
         {KroiSize{128, 64}, KroiSize{8193, 1}, KroiSize{1, 9000}, KroiSize{91, 97}}) {
      const Planes serial = [&] {
        ScopedThreads one(1);
        return CheckMember(m, size, 7, 1);
      }();
      for (int threads = 2; threads <= 8; ++threads) {
        ScopedThreads scoped(threads);
        const Planes parallel = CheckMember(m, size, 7, 1, false);
        for (int p = 0; p < m.dst.planes; ++p)
          ASSERT_TRUE(parallel.img[p].SamePixels(serial.img[p])) << m.name << " " << threads;
      }
    }
  }
  ScopedThreads two(2);
  std::vector<std::thread> callers;
  for (int t = 0; t < 4; ++t)
    callers.emplace_back([t] { CheckMember(kMembers[t * 4], {120, 90}, t); });
  for (auto& c : callers) c.join();
}

}  // namespace
