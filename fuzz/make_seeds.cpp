// SPDX-License-Identifier: BSD-3-Clause
// Writes the seed corpora of the fuzz targets from the test images: small JPEG and
// JPEG 2000 files made by the example codecs (and, when libturbojpeg is at hand, crops
// of the real JPEG files of tests/data, which keep their encoder's tables and scans);
// the tables and entropy-coded scans of those JPEG files in the input layouts of the
// Huffman decoding targets; code-blocks of real wavelet coefficients coded by the
// library in every style; DCT blocks and lossless differences of real images.
//
//   make_seeds TEST_DATA_DIR CORPUS_DIR [CROP_DIR]
//
// With CROP_DIR it also leaves there the crops it encoded (crop.ppm, crop.pgm), for
// other encoders to make seeds from.
// Not part of the tests: run by hand (fuzz/make_seeds.sh) when the input layouts change.
#include <stdio.h>
#include <string.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "codec/image_io.h"
#include "codec/j2k_codec.h"
#include "codec/jpeg_codec.h"
#include "kroj.h"
#ifdef KRO_SEEDS_HAVE_TJ
#include <turbojpeg.h>
#endif

namespace {

using namespace krojcodec;
namespace fs = std::filesystem;

std::string g_corpus;

// Builds an input in the layout that kro_fuzz::Input reads.
class Seed {
 public:
  Seed& Byte(int v) {
    b_.push_back(static_cast<uint8_t>(v));
    return *this;
  }
  Seed& U16(int v) { return Byte(v & 255).Byte(v >> 8 & 255); }
  // The value that Input::Range(lo, hi) reads back as v.
  Seed& Range(int lo, int hi, int v) { return hi - lo + 1 > 256 ? U16(v - lo) : Byte(v - lo); }
  Seed& Bytes(const uint8_t* p, size_t n) {
    b_.insert(b_.end(), p, p + n);
    return *this;
  }
  // BITS and HUFFVAL taken as they are (the raw form of ReadLists).
  Seed& Lists(const std::vector<uint8_t>& dht) {
    Byte(0x80);
    return Bytes(dht.data(), dht.size());
  }
  void Write(const std::string& target, const std::string& name) const {
    fs::create_directories(g_corpus + "/" + target);
    std::string error;
    WriteFileBytes(g_corpus + "/" + target + "/" + name, b_.data(), b_.size(), &error);
  }

 private:
  std::vector<uint8_t> b_;
};

void WriteFile(const std::string& target, const std::string& name, const std::vector<uint8_t>& bytes) {
  Seed().Bytes(bytes.data(), bytes.size()).Write(target, name);
}

Image Crop(const Image& img, int x0, int y0, int w, int h) {
  Image out;
  out.width = w;
  out.height = h;
  out.channels = img.channels;
  for (int y = 0; y < h; ++y)
    out.pixels.insert(out.pixels.end(), img.row(y0 + y) + x0 * img.channels, img.row(y0 + y) + (x0 + w) * img.channels);
  return out;
}

// Tables (class and id -> BITS + HUFFVAL) and scans of a JPEG file.
struct Scan {
  int ss, se, ah, al;
  std::vector<int> dc, ac;  // table ids per component of the scan
  std::vector<uint8_t> data;
};
struct JpegParts {
  std::map<int, std::vector<uint8_t>> tables;  // (class << 4 | id) -> BITS + HUFFVAL
  std::vector<Scan> scans;
  int width = 0, precision = 8, components = 0;
};

JpegParts Parse(const std::vector<uint8_t>& f) {
  JpegParts p;
  size_t i = 2;
  while (i + 4 <= f.size() && f[i] == 0xFF) {
    const int m = f[i + 1];
    const size_t len = static_cast<size_t>(f[i + 2] << 8 | f[i + 3]);
    const uint8_t* s = &f[i + 4];
    if (m == 0xC4) {
      for (size_t at = 0; at + 17 <= len - 2;) {
        size_t n = 0;
        for (int k = 0; k < 16; ++k) n += s[at + 1 + k];
        p.tables[s[at]] = std::vector<uint8_t>(s + at + 1, s + at + 17 + n);
        at += 17 + n;
      }
    } else if (m >= 0xC0 && m <= 0xC3) {
      p.precision = s[0];
      p.width = s[3] << 8 | s[4];
      p.components = s[5];
    } else if (m == 0xDA) {
      Scan sc;
      const int n = s[0];
      for (int c = 0; c < n; ++c) {
        sc.dc.push_back(s[2 + 2 * c] >> 4);
        sc.ac.push_back(s[2 + 2 * c] & 15);
      }
      sc.ss = s[1 + 2 * n];
      sc.se = s[2 + 2 * n];
      sc.ah = s[3 + 2 * n] >> 4;
      sc.al = s[3 + 2 * n] & 15;
      size_t e = i + 2 + len;
      while (e + 1 < f.size() && !(f[e] == 0xFF && f[e + 1] != 0 && (f[e + 1] < 0xD0 || f[e + 1] > 0xD7))) ++e;
      sc.data.assign(f.begin() + static_cast<long>(i + 2 + len), f.begin() + static_cast<long>(e));
      p.scans.push_back(sc);
      i = e;
      continue;
    }
    i += 2 + len;
  }
  return p;
}

// Seeds for the three Huffman decoding targets from one JPEG file.
void HuffmanSeeds(const std::string& name, const std::vector<uint8_t>& file, bool lossless) {
  const JpegParts p = Parse(file);
  if (p.scans.empty()) return;
  const Scan& first = p.scans[0];
  const auto& dc = p.tables.at(first.dc[0]);
  const size_t cut = std::min<size_t>(first.data.size(), 3000);
  if (lossless) {
    Seed s;
    s.Range(1, 64, std::min(p.width, 64)).Range(1, 8, 4).Range(1, 7, first.ss).Range(2, 16, p.precision);
    s.Range(0, p.precision - 1, first.al).Lists(dc).Bytes(first.data.data(), cut).Write("lossless_decode", name);
    return;
  }
  if (first.ss == 0 && first.se == 63) {
    const auto& ac = p.tables.at(0x10 | first.ac[0]);
    for (int direct = 0; direct < 2; ++direct)
      Seed().Byte(direct).Lists(dc).Lists(ac).Bytes(first.data.data(), cut).Write("huffman_decode", name + (direct ? "-direct" : ""));
    return;
  }
  Seed s;  // a progressive file: its first four scans
  for (size_t k = 0; k < p.scans.size() && k < 4; ++k) {
    const Scan& sc = p.scans[k];
    const bool dc_scan = sc.ss == 0;
    const int kind = dc_scan ? (sc.ah ? 1 : 0) : (sc.ah ? 3 : 2);
    s.Range(0, 3, kind).Range(-1, 14, sc.al).Range(0, 64, sc.ss).Range(0, 64, sc.se);
    const auto it = p.tables.find(dc_scan ? sc.dc[0] : 0x10 | sc.ac[0]);
    s.Lists(it != p.tables.end() ? it->second : std::vector<uint8_t>(16, 0));
    const int n = static_cast<int>(std::min<size_t>(sc.data.size(), 2048));
    s.Range(0, 2048, n).Bytes(sc.data.data(), static_cast<size_t>(n));
  }
  s.Write("progressive_decode", name);
}

void JpegSeeds(const Image& img, const std::string& tag) {
  struct Mode {
    const char* name;
    JpegEncodeOptions o;
  };
  std::vector<Mode> modes(9);
  modes[0] = {"base420", {}};
  modes[1] = {"base444", {}};
  modes[1].o.sampling = ChromaSampling::k444;
  modes[2] = {"grey", {}};
  modes[2].o.sampling = ChromaSampling::kGrey;
  modes[3] = {"opt422-rst", {}};
  modes[3].o.sampling = ChromaSampling::k422;
  modes[3].o.optimize = true;
  modes[3].o.restart_interval = 2;
  modes[4] = {"prog420", {}};
  modes[4].o.progressive = true;
  modes[5] = {"prog-grey", {}};
  modes[5].o.progressive = true;
  modes[5].o.sampling = ChromaSampling::kGrey;
  modes[6] = {"lossless-p1", {}};
  modes[6].o.lossless = true;
  modes[7] = {"lossless-grey-p7-pt2", {}};
  modes[7].o.lossless = true;
  modes[7].o.sampling = ChromaSampling::kGrey;
  modes[7].o.predictor = 7;
  modes[7].o.point_transform = 2;
  modes[8] = {"planes-q30", {}};
  modes[8].o.colour_planes = true;
  modes[8].o.quality = 30;
  for (const Mode& m : modes) {
    std::vector<uint8_t> out;
    std::string error;
    if (!EncodeJpeg(img, m.o, &out, &error)) continue;
    WriteFile("jpeg_file", tag + "-" + m.name + ".jpg", out);
    if (m.o.sampling == ChromaSampling::kGrey) HuffmanSeeds(tag + "-" + m.name, out, m.o.lossless);
  }
}

void J2kSeeds(const Image& img, const std::string& tag) {
  std::vector<std::pair<const char*, J2kEncodeOptions>> modes(4);
  modes[0].first = "lossless";
  modes[1].first = "lossy-1bpp";
  modes[1].second.lossless = false;
  modes[1].second.bits_per_pixel = 1.0;
  modes[2].first = "layers3-jp2";
  modes[2].second.bits_per_pixel = 2.0;
  modes[2].second.layers = 3;
  modes[2].second.jp2 = true;
  modes[3].first = "levels1-lossy";
  modes[3].second.lossless = false;
  modes[3].second.levels = 1;
  for (const auto& [name, o] : modes) {
    std::vector<uint8_t> out;
    std::string error;
    if (EncodeJ2k(img, o, &out, &error)) WriteFile("j2k_file", tag + "-" + name + (o.jp2 ? ".jp2" : ".j2k"), out);
  }
}

// Code-blocks of the 5/3 high bands of a grey crop, coded in several styles: seeds for
// the two decoding targets (the coded bytes) and the encoding target (the coefficients).
void CodeBlockSeeds(const Image& grey, const std::string& tag) {
  const int w = 64, h = 64;
  std::vector<Kro32s> x(static_cast<size_t>(w) * h);
  for (int y = 0; y < h; ++y)
    for (int i = 0; i < w; ++i) x[static_cast<size_t>(y) * w + i] = grey.row(y)[i] - 128;
  std::vector<Kro32s> bands[4];
  Kro32s* band_ptr[4];
  int band_step[4];
  for (int b = 0; b < 4; ++b) {
    bands[b].assign(32 * 32, 0);
    band_ptr[b] = bands[b].data();
    band_step[b] = 32 * 4;
  }
  const KroiRect rect = {0, 0, w, h};
  int buf = 0;
  kroiWTGetBufSize_B53_JPEG2K_32s_C1R(&rect, &buf);
  std::vector<Kro8u> work(static_cast<size_t>(buf));
  kroiWTFwd_B53_JPEG2K_32s_C1R(x.data(), w * 4, band_ptr, band_step, &rect, work.data());

  KroiEncodeState_JPEG2K* st = nullptr;
  kroiEncodeInitAlloc_JPEG2K(&st, {64, 64});
  const int styles[][2] = {{0, 1}, {2, 1}, {4, 2}, {8 | 16, 2}, {1 | 2 | 4 | 8 | 16, 2}, {32, 0}};
  for (int b = 1; b < 4; ++b) {
    for (const auto& [style, term] : styles) {
      const int mb = 12, cw = b == 3 ? 13 : 32, ch = b == 2 ? 7 : 32;  // some blocks not whole stripes
      std::vector<Kro32s> words(static_cast<size_t>(cw) * ch);
      for (int y = 0; y < ch; ++y)
        for (int i = 0; i < cw; ++i) {
          const Kro32s v = bands[b][static_cast<size_t>(y) * 32 + i];
          const uint32_t mag = static_cast<uint32_t>(v < 0 ? -v : v) << (31 - mb);
          words[static_cast<size_t>(y) * cw + i] = static_cast<Kro32s>(mag | (v < 0 ? 0x80000000u : 0));
        }
      const std::string name = tag + "-band" + std::to_string(b) + "-style" + std::to_string(style);
      Seed enc;  // 15-bit magnitudes moved up by 15: bits 29 down to 15, all coded
      enc.Range(1, 64, cw).Range(1, 64, ch).Range(0, 3, b).Byte(style).Range(0, 2, term).Range(1, 31, 16);
      enc.Range(0, 15, 15).Range(1, 4096, 512);
      for (int y = 0; y < ch; ++y)
        for (int i = 0; i < cw; ++i) {
          const Kro32s v = bands[b][static_cast<size_t>(y) * 32 + i];
          enc.U16((v < 0 ? 0x8000 : 0) | ((v < 0 ? -v : v) & 0x7FFF));
        }
      enc.Write("codeblock_encode", name);

      int sf = 0, passes = 0, segments = 0, more = 1;
      kroiEncodeLoadCodeBlock_JPEG2K_32s_C1R(words.data(), cw * 4, {cw, ch}, st, b, mb, term, 0, style, &sf, &passes,
                                             &segments);
      std::vector<uint8_t> coded;
      while (more) {
        uint8_t piece[4096];
        int len = sizeof(piece);
        kroiEncodeStoreBits_JPEG2K_1u(piece, &len, st, &more);
        coded.insert(coded.end(), piece, piece + len);
      }
      std::vector<int> lengths(static_cast<size_t>(segments));
      for (int s = 0; s < segments; ++s) kroiEncodeGetTermPassLen_JPEG2K(st, s, &lengths[s]);
      const int flags = (style & 31) | (term == 2 ? 1048576 : 0);
      Seed dec;  // the one-call decoder: 10 flag bits, the last segment takes the rest
      dec.Range(1, 64, cw).Range(1, 64, ch).Range(0, 4, b).Range(-1, 33, sf).Range(-1, 110, passes);
      int choice = 0;
      const int bits[] = {1, 2, 4, 8, 16, 65536, 131072, 262144, 524288, 1048576};
      for (int k = 0; k < 10; ++k)
        if (flags & bits[k]) choice |= 1 << k;
      dec.U16(choice).Range(0, 16, std::min(segments, 16));
      for (int s = 0; s <= 16 && s <= segments; ++s) dec.Range(0, 600, s < segments ? std::min(lengths[s], 600) : 0);
      dec.Bytes(coded.data(), coded.size()).Write("codeblock_decode", name);
      Seed step;  // the step-wise decoder: 7 flag bits
      choice = 0;
      const int sbits[] = {1, 2, 4, 8, 16, 524288, 1048576};
      for (int k = 0; k < 7; ++k)
        if (flags & sbits[k]) choice |= 1 << k;
      step.Range(1, 64, cw).Range(1, 64, ch).Range(0, 3, b).Range(0, 31, sf).Range(0, 109, passes).Byte(choice);
      step.Range(1, 16, std::max(1, std::min(segments, 16)));
      for (int s = 0; s < std::max(1, std::min(segments, 16)); ++s) step.Range(0, 600, s < segments ? std::min(lengths[s], 600) : 0);
      step.Bytes(coded.data(), coded.size()).Write("codeblock_step", name);
    }
  }
  kroiEncodeFree_JPEG2K(st);
}

// Quantised DCT blocks of a grey crop (baseline and progressive modes) and lossless
// differences of its rows.
void HuffmanEncodeSeeds(const Image& grey, const std::string& tag) {
  Kro8u raw[64];
  for (int k = 0; k < 64; ++k) raw[k] = 16;
  Kro16u fwd[64];
  kroiQuantFwdTableInit_JPEG_8u16u(raw, fwd);
  for (int mode = 0; mode < 2; ++mode) {
    Seed s;
    s.Range(0, 2, mode).Range(1, 16, 16).Byte(mode == 0 ? 0 : 255);
    for (int b = 0; b < 16; ++b) {
      Kro16s blk[64];
      kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(grey.row(8 * (b / 4)) + 8 * (b % 4), grey.width, blk, fwd);
      for (Kro16s v : blk) s.U16(static_cast<uint16_t>(v));
    }
    if (mode == 1) s.Range(0, 4, 2).Range(0, 4, 1).Range(1, 63, 5);
    s.Write("huffman_encode", tag + (mode ? "-progressive" : "-baseline"));
  }
  Seed s;
  s.Range(0, 2, 2).Range(1, 512, 256);
  s.Byte(0);
  std::vector<Kro16s> prev(32), row(32), diff(32);
  for (int y = 0; y < 8; ++y) {
    for (int i = 0; i < 32; ++i) row[i] = grey.row(y)[i];
    if (y == 0) kroiDiffPredFirstRow_JPEG_16s_C1(row.data(), diff.data(), 32, 8, 0);
    else kroiDiffPredRow_JPEG_16s_C1(row.data(), prev.data(), diff.data(), 32, 4);
    for (Kro16s d : diff) s.U16(static_cast<uint16_t>(d));
    prev = row;
  }
  s.Write("huffman_encode", tag + "-lossless");
}

#ifdef KRO_SEEDS_HAVE_TJ
// Crops of a real JPEG file by lossless transformation: the other encoder's tables and
// coefficients, in a file of a few kilobytes; also progressive and grey versions.
void RealJpegSeeds(const std::string& path, const std::string& tag) {
  std::vector<uint8_t> f;
  std::string error;
  if (!ReadFileBytes(path, &f, &error)) return;
  tjhandle h = tjInitTransform();
  const int opts[] = {TJXOPT_CROP | TJXOPT_TRIM, TJXOPT_CROP | TJXOPT_TRIM | TJXOPT_PROGRESSIVE,
                      TJXOPT_CROP | TJXOPT_TRIM | TJXOPT_GRAY, TJXOPT_CROP | TJXOPT_TRIM | TJXOPT_GRAY | TJXOPT_PROGRESSIVE};
  const char* names[] = {"crop", "crop-prog", "crop-grey", "crop-grey-prog"};
  for (int k = 0; k < 4; ++k) {
    tjtransform t = {};
    t.r = {128, 96, 64, 48};
    t.op = TJXOP_NONE;
    t.options = opts[k] | TJXOPT_COPYNONE;
    unsigned char* out = nullptr;
    unsigned long size = 0;
    if (tjTransform(h, f.data(), f.size(), 1, &out, &size, &t, 0) == 0) {
      const std::vector<uint8_t> v(out, out + size);
      WriteFile("jpeg_file", tag + "-" + names[k] + ".jpg", v);
      if (opts[k] & TJXOPT_GRAY) HuffmanSeeds(tag + "-" + names[k], v, false);
    }
    tjFree(out);
  }
  tjDestroy(h);
}
#endif

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 && argc != 4) {
    fprintf(stderr, "usage: make_seeds TEST_DATA_DIR CORPUS_DIR [CROP_DIR]\n");
    return 2;
  }
  const std::string data = argv[1];
  g_corpus = argv[2];
  Image astronaut, camera;
  std::string error;
  if (!ReadImage(data + "/astronaut.ppm", &astronaut, &error) || !ReadImage(data + "/camera.pgm", &camera, &error)) {
    fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  if (argc == 4) {
    WriteImage(std::string(argv[3]) + "/crop.ppm", Crop(astronaut, 200, 100, 64, 48), &error);
    WriteImage(std::string(argv[3]) + "/crop.pgm", Crop(camera, 180, 60, 33, 70), &error);
  }
  JpegSeeds(Crop(astronaut, 200, 100, 48, 40), "astronaut");
  JpegSeeds(Crop(camera, 180, 60, 37, 29), "camera");
  J2kSeeds(Crop(astronaut, 200, 100, 64, 48), "astronaut");
  J2kSeeds(Crop(camera, 180, 60, 33, 70), "camera");
  CodeBlockSeeds(Crop(camera, 200, 80, 64, 64), "camera");
  HuffmanEncodeSeeds(Crop(camera, 200, 80, 32, 32), "camera");
  std::vector<uint8_t> truncated;
  if (ReadFileBytes(data + "/truncated.jpg", &truncated, &error)) WriteFile("jpeg_file", "truncated.jpg", truncated);
#ifdef KRO_SEEDS_HAVE_TJ
  for (const char* f : {"rocket", "hubble_deep_field", "retina"}) RealJpegSeeds(data + "/" + f + ".jpg", f);
#endif
  return 0;
}
