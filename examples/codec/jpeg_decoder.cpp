// SPDX-License-Identifier: BSD-3-Clause
// JPEG decoder of the example codec. Two stages:
//   1. Parsing and entropy decoding: markers are read here; every scan is decoded block
//      by block (kroiDecodeHuffman8x8_* for sequential and progressive scans) into the
//      frame's coefficient arrays, which progressive scans refine in place.
//   2. Reconstruction, one strip of MCU rows at a time: dequantisation + inverse DCT
//      + level shift per block (kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R), triangle
//      up-sampling (kroiSampleUpH2V1/H2V2_JPEG_8u_C1R) and colour conversion
//      (kroiYCbCrToRGB_JPEG_8u_P3C3R); or, for speed, whole MCUs through
//      kroiDCTQuantInv8x8_JPEG_16s_C1 and kroiYCbCr4xxToRGBLS_MCU_16s8u_P3C3R.
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <limits>

#include "codec/jpeg_codec.h"
#include "codec/jpeg_format.h"

namespace krojcodec {

namespace {

bool Fail(std::string* error, const std::string& message) {
  *error = message;
  return false;
}

int Be16(const uint8_t* p) { return p[0] << 8 | p[1]; }

std::string Hex(int marker) {
  char buf[8];
  snprintf(buf, sizeof(buf), "0xFF%02X", marker & 0xFF);
  return buf;
}

enum class ScanKind { kSequential, kDcFirst, kDcRefine, kAcFirst, kAcRefine, kLossless };

struct ScanHeader {
  std::vector<int> components;  // frame indices
  int dc_table[4] = {}, ac_table[4] = {};
  int ss = 0, se = 63, ah = 0, al = 0;
  ScanKind kind = ScanKind::kSequential;
};

// ---------------------------------------------------------------------------
// Reconstruction

// Why the frame's components can (or cannot) be turned into pixels; empty when they can.
std::string ReconstructionError(const JpegCoefficients& f, const bool quant_defined[4]) {
  const int n = static_cast<int>(f.components.size());
  if (n != 1 && n != 3) return "only grey and three-component JPEG files can be decoded to pixels";
  for (const JpegComponent& c : f.components) {
    if (!quant_defined[c.quant_table]) return "a component uses an undefined quantisation table";
    const bool full = c.h == f.max_h && c.v == f.max_v;
    const bool half = c.h * 2 == f.max_h && (c.v == f.max_v || c.v * 2 == f.max_v);
    if (!full && !half)
      return "sampling factors " + std::to_string(c.h) + "x" + std::to_string(c.v) + " against " +
             std::to_string(f.max_h) + "x" + std::to_string(f.max_v) +
             " are not supported (chroma must be full, half width or half size)";
  }
  return std::string();
}

// Whether the MCU functions cover this frame: YCbCr with the luminance at 1x1, 2x1 or
// 2x2 and both chroma components at 1x1.
bool McuPathFits(const JpegCoefficients& f) {
  const auto& c = f.components;
  return f.ycbcr && c[0].h == f.max_h && c[0].v == f.max_v && f.max_h <= 2 && f.max_v <= f.max_h &&
         c[1].h == 1 && c[1].v == 1 && c[2].h == 1 && c[2].v == 1;
}

// Dequantisation, inverse DCT, +128 and clamping (kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R)
// of rows x width samples from block rows of blocks_w blocks at coef into dst. Blocks
// crossing the right or bottom edge go through a scratch block.
void InverseTransformRows(const int16_t* coef, int blocks_w, const Kro16u* table, int rows,
                          int width, uint8_t* dst, int step) {
  alignas(32) uint8_t edge[64];
  for (int r0 = 0; r0 < rows; r0 += 8) {
    const int16_t* block = coef + static_cast<size_t>(r0 / 8) * blocks_w * 64;
    const int h = std::min(8, rows - r0);
    for (int x0 = 0; x0 < width; x0 += 8, block += 64) {
      uint8_t* out = dst + static_cast<size_t>(r0) * step + x0;
      if (x0 + 8 <= width && h == 8) {
        kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(block, out, step, table);
        continue;
      }
      kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R(block, edge, 8, table);
      const int w = std::min(8, width - x0);
      for (int r = 0; r < h; ++r) memcpy(out + static_cast<size_t>(r) * step, edge + 8 * r, w);
    }
  }
}

// Pixels from coefficients, one row of MCUs at a time (a row of blocks for a grey
// frame). The scan decoder calls Row() as it finishes each MCU row of a sequential
// frame coded in one scan, so that the coefficients are transformed while still in
// cache and no frame-sized coefficient arrays exist (at 8 MP 4:2:0 those arrays were
// 24 MB, zeroed, written and read back: a fifth of the decoding time). Other frames
// are handed over row by row from the frame's arrays after their last scan.
//
// Smooth path: full-resolution components are inverse transformed into a strip of the
// MCU row's height; sub-sampled ones into a small buffer with a border of repeated
// edge samples, from which the triangle filters (kroiSampleUpH2V1/H2V2_JPEG_8u_C1R)
// enlarge them into the strip; one colour conversion (kroiYCbCrToRGB_JPEG_8u_P3C3R,
// whose three planes share one row step) writes the strip's pixels. The H2V2 filter
// reads a chroma row below the strip, so strip k is made when MCU row k + 1 arrives.
// Fast path: per MCU, dequantisation + inverse DCT to level-shifted samples
// (kroiDCTQuantInv8x8_JPEG_16s_C1), then one call that replicates the chroma, converts
// to RGB and stores the pixels (kroiYCbCr4xxToRGBLS_MCU_16s8u_P3C3R).
class Reconstructor {
 public:
  // Allocates the image; ReconstructionError(f) must be empty.
  Reconstructor(const JpegCoefficients& f, bool fast_upsampling, Image* img);

  // The coefficients of MCU row k, k = 0, 1, ... in order: for component c, c.v rows
  // of blocks_w blocks (one row for a grey frame). They must stay in place until the
  // next call or Finish().
  void Row(int k, const int16_t* const coef[3]);
  void Finish();

 private:
  // A sub-sampled component's samples around the strip being made: row 0 the row
  // above it, then the MCU row of the strip, then the next MCU row; one repeated
  // sample left and right of every row.
  struct Chroma {
    int width = 0, height = 0, step = 0, rows = 0;  // rows: sample rows per MCU row
    bool vertical = false;                          // H2V2 (else H2V1)
    std::vector<uint8_t> samples;
    uint8_t* row(int r) { return samples.data() + static_cast<size_t>(r) * step + 1; }
  };

  void Mcus(int k, const int16_t* const coef[3]);
  void Strip(int k);
  const Kro16u* Quant(int c) const { return f_.quant[f_.components[c].quant_table]; }

  const JpegCoefficients& f_;
  Image* img_;
  int n_;
  bool fast_;
  int strip_h_;
  int last_ = -1;
  bool full_[3] = {};
  const int16_t* prev_[3] = {};  // the full components' coefficients of MCU row last_
  Chroma chroma_[3];
  std::vector<uint8_t> strip_;
  Kro8u* plane_[3] = {};
};

Reconstructor::Reconstructor(const JpegCoefficients& f, bool fast_upsampling, Image* img)
    : f_(f), img_(img), n_(static_cast<int>(f.components.size())) {
  img->width = f.width;
  img->height = f.height;
  img->channels = n_;
  img->pixels.resize(img->row_bytes() * f.height);  // every sample is written
  fast_ = n_ == 3 && fast_upsampling && McuPathFits(f);
  strip_h_ = n_ == 1 ? 8 : 8 * f.max_v;
  if (n_ == 1 || fast_) return;
  strip_.resize(static_cast<size_t>(f.width) * strip_h_ * 3);
  for (int c = 0; c < 3; ++c) {
    plane_[c] = strip_.data() + static_cast<size_t>(f.width) * strip_h_ * c;
    const JpegComponent& comp = f.components[c];
    full_[c] = comp.h == f.max_h && comp.v == f.max_v;
    if (full_[c]) continue;
    Chroma& ch = chroma_[c];
    ch.width = ComponentWidth(f, comp);
    ch.height = ComponentHeight(f, comp);
    ch.step = ch.width + 2;
    ch.rows = 8 * comp.v;
    ch.vertical = comp.v != f.max_v;
    ch.samples.resize(static_cast<size_t>(ch.step) * (1 + 2 * ch.rows));
  }
}

void Reconstructor::Row(int k, const int16_t* const coef[3]) {
  if (n_ == 1) {
    const int y0 = 8 * k;
    InverseTransformRows(coef[0], 0, Quant(0), std::min(8, f_.height - y0), f_.width,
                         img_->row(y0), f_.width);
    return;
  }
  if (fast_) return Mcus(k, coef);
  // The sub-sampled components of MCU row k go below those of row k - 1.
  for (int c = 0; c < 3; ++c) {
    if (full_[c]) continue;
    Chroma& ch = chroma_[c];
    const int first = k == 0 ? 1 : 1 + ch.rows;
    const int rows = std::min(ch.rows, ch.height - ch.rows * k);
    InverseTransformRows(coef[c], f_.components[c].blocks_w, Quant(c), rows, ch.width,
                         ch.row(first), ch.step);
    for (int r = first; r < first + rows; ++r) {
      uint8_t* row = ch.row(r);
      row[-1] = row[0];
      row[ch.width] = row[ch.width - 1];
    }
    if (k == 0) memcpy(ch.row(0) - 1, ch.row(1) - 1, ch.step);  // above the image: row 0
  }
  if (k > 0) {
    Strip(k - 1);
    for (int c = 0; c < 3; ++c) {
      if (full_[c]) continue;
      Chroma& ch = chroma_[c];
      memcpy(ch.row(0) - 1, ch.row(ch.rows) - 1, ch.step);
      memcpy(ch.row(1) - 1, ch.row(1 + ch.rows) - 1, static_cast<size_t>(ch.step) * ch.rows);
    }
  }
  for (int c = 0; c < 3; ++c) prev_[c] = coef[c];
  last_ = k;
}

void Reconstructor::Finish() {
  if (n_ == 1 || fast_ || last_ < 0) return;
  for (int c = 0; c < 3; ++c) {
    if (full_[c]) continue;
    // Below the image: its last row repeated.
    Chroma& ch = chroma_[c];
    const int r = ch.height - ch.rows * last_;
    memcpy(ch.row(r + 1) - 1, ch.row(r) - 1, ch.step);
  }
  Strip(last_);
}

void Reconstructor::Strip(int k) {
  const int w = f_.width, y0 = k * strip_h_, rows = std::min(strip_h_, f_.height - y0);
  for (int c = 0; c < 3; ++c) {
    if (full_[c]) {
      InverseTransformRows(prev_[c], f_.components[c].blocks_w, Quant(c), rows, w, plane_[c], w);
      continue;
    }
    Chroma& ch = chroma_[c];
    if (ch.vertical) {
      kroiSampleUpH2V2_JPEG_8u_C1R(ch.row(1), ch.step, {ch.width, (rows + 1) / 2}, plane_[c], w,
                                   {w, rows});
    } else {
      kroiSampleUpH2V1_JPEG_8u_C1R(ch.row(1), ch.step, {ch.width, rows}, plane_[c], w, {w, rows});
    }
  }
  const int step = static_cast<int>(img_->row_bytes());
  if (f_.ycbcr) {
    kroiYCbCrToRGB_JPEG_8u_P3C3R(plane_, w, img_->row(y0), step, {w, rows});
  } else {
    for (int c = 0; c < 3; ++c) kroiCopy_8u_C1C3R(plane_[c], w, img_->row(y0) + c, step, {w, rows});
  }
}

void Reconstructor::Mcus(int k, const int16_t* const coef[3]) {
  using McuConvert = KroStatus (*)(const Kro16s* [3], Kro8u*, int);
  const McuConvert convert = f_.max_h == 1   ? kroiYCbCr444ToRGBLS_MCU_16s8u_P3C3R
                             : f_.max_v == 1 ? kroiYCbCr422ToRGBLS_MCU_16s8u_P3C3R
                                             : kroiYCbCr411ToRGBLS_MCU_16s8u_P3C3R;
  const int mcu_w = 8 * f_.max_h, mcu_h = 8 * f_.max_v;
  const int lum_w = f_.components[0].blocks_w;
  alignas(32) Kro16s y[256], cb[64], cr[64];
  const Kro16s* blocks[3] = {y, cb, cr};
  alignas(32) uint8_t edge[16 * 16 * 3];
  const int step = static_cast<int>(img_->row_bytes());
  const int y0 = k * mcu_h, h = std::min(mcu_h, f_.height - y0);
  for (int mx = 0; mx < McusX(f_); ++mx) {
    // Luminance blocks left to right, then top to bottom.
    for (int v = 0; v < f_.max_v; ++v)
      for (int u = 0; u < f_.max_h; ++u)
        kroiDCTQuantInv8x8_JPEG_16s_C1(coef[0] + (static_cast<size_t>(v) * lum_w + mx * f_.max_h + u) * 64,
                                       y + 64 * (v * f_.max_h + u), Quant(0));
    kroiDCTQuantInv8x8_JPEG_16s_C1(coef[1] + static_cast<size_t>(mx) * 64, cb, Quant(1));
    kroiDCTQuantInv8x8_JPEG_16s_C1(coef[2] + static_cast<size_t>(mx) * 64, cr, Quant(2));
    const int x0 = mx * mcu_w;
    if (x0 + mcu_w <= f_.width && h == mcu_h) {
      convert(blocks, img_->row(y0) + x0 * 3, step);
      continue;
    }
    convert(blocks, edge, mcu_w * 3);
    const int w = std::min(mcu_w, f_.width - x0);
    for (int r = 0; r < h; ++r) memcpy(img_->row(y0 + r) + x0 * 3, edge + r * mcu_w * 3, w * 3);
  }
}

// Parses the markers of a file and entropy-decodes its scans.
class JpegParser {
 public:
  // With an image, a sequential frame coded in one scan is reconstructed into it
  // while the scan is decoded (then `reconstructed` is set and the frame holds no
  // coefficients).
  JpegParser(const uint8_t* data, size_t size, std::string* error, Image* img = nullptr,
             const JpegDecodeOptions& options = JpegDecodeOptions())
      : data_(data), error_(error), img_(img), options_(options) {
    size_ =
        size > static_cast<size_t>(std::numeric_limits<int>::max()) ? -1 : static_cast<int>(size);
  }

  bool Run();

  JpegCoefficients frame;
  bool lossless = false;
  std::vector<std::vector<uint8_t>> lossless_planes;  // samples per component
  bool quant_defined[4] = {};
  bool reconstructed = false;

 private:
  bool Fail(const std::string& message) { return krojcodec::Fail(error_, message); }
  bool NextMarker(int* code);
  bool IsYCbCr() const;
  bool ParseFrame(int code, const uint8_t* p, int n);
  bool ParseHuffmanTables(const uint8_t* p, int n);
  bool ParseQuantTables(const uint8_t* p, int n);
  bool ParseScanHeader(const uint8_t* p, int n, ScanHeader* scan);
  bool DecodeScan(const ScanHeader& scan);
  bool StreamFits(const ScanHeader& scan);
  bool DecodeAndReconstruct(const ScanHeader& scan);
  bool DecodeLossless(const ScanHeader& scan);
  bool NextRestart(int* pos, int* marker, KroiDecodeHuffmanState* state);
  // After a scan: continue parsing at the marker that ended it.
  void EndScan(int pos, int marker) { pos_ = marker != 0 ? pos - 2 : pos; }

  const uint8_t* data_;
  int size_;
  int pos_ = 0;
  std::string* error_;
  int frame_code_ = 0;
  DecodeSpec dc_[4], ac_[4];
  int restart_interval_ = 0;
  bool jfif_ = false, adobe_ = false;
  int adobe_transform_ = 1;
  int scans_ = 0;
  Image* img_;
  JpegDecodeOptions options_;
};

bool JpegParser::Run() {
  if (size_ < 0) return Fail("file is too large");
  if (size_ < 4 || data_[0] != 0xFF || data_[1] != kSOI)
    return Fail("not a JPEG file (no start-of-image marker)");
  pos_ = 2;
  for (;;) {
    int code;
    if (!NextMarker(&code))
      return Fail("the file ends before the end-of-image marker (truncated?)");
    if (code == kEOI) break;
    if ((code >= kRST0 && code <= kRST0 + 7) || code == 0x01)
      continue;  // stray RSTn, TEM: no segment
    if (code == kSOI) return Fail("a second start-of-image marker inside the file");
    if (pos_ + 2 > size_) return Fail("the file ends inside a marker segment");
    const int len = Be16(data_ + pos_);
    if (len < 2 || pos_ + len > size_)
      return Fail("marker segment " + Hex(code) + " runs past the end of the file");
    const uint8_t* p = data_ + pos_ + 2;
    const int n = len - 2;
    pos_ += len;
    bool ok = true;
    switch (code) {
      case kSOF0:
      case kSOF1:
      case kSOF2:
      case kSOF3:
        ok = ParseFrame(code, p, n);
        break;
      case 0xC5:
      case 0xC6:
      case 0xC7:
      case 0xCD:
      case 0xCE:
      case 0xCF:
        return Fail("hierarchical JPEG files are not supported");
      case 0xC9:
      case 0xCA:
      case 0xCB:
        return Fail("arithmetic-coded JPEG files are not supported");
      case kDHT:
        ok = ParseHuffmanTables(p, n);
        break;
      case kDQT:
        ok = ParseQuantTables(p, n);
        break;
      case kDRI:
        if (n != 2) return Fail("malformed restart interval (DRI) segment");
        restart_interval_ = Be16(p);
        break;
      case kDNL:
        return Fail("image heights defined after the first scan (DNL) are not supported");
      case kAPP0:
        jfif_ |= n >= 5 && memcmp(p, "JFIF", 5) == 0;
        break;
      case kAPP14:
        if (n >= 12 && memcmp(p, "Adobe", 5) == 0) {
          adobe_ = true;
          adobe_transform_ = p[11];
        }
        break;
      case kSOS: {
        ScanHeader scan;
        ok = ParseScanHeader(p, n, &scan);
        if (ok && reconstructed)
          return Fail("a sequential frame codes a component in more than one scan");
        if (ok) {
          ok = lossless           ? DecodeLossless(scan)
               : StreamFits(scan) ? DecodeAndReconstruct(scan)
                                  : DecodeScan(scan);
        }
        ++scans_;
        break;
      }
      default:
        break;  // APPn, COM and others carry nothing the decoder needs
    }
    if (!ok) return false;
  }
  if (frame_code_ == 0) return Fail("the file has no frame header (SOF)");
  if (scans_ == 0) return Fail("the file has no image data (no scan)");
  if (!reconstructed) frame.ycbcr = IsYCbCr();
  return true;
}

// Three components are YCbCr unless an Adobe marker says otherwise or, without JFIF
// or Adobe markers, they are named R, G, B.
bool JpegParser::IsYCbCr() const {
  const auto& c = frame.components;
  if (c.size() != 3) return false;
  if (adobe_) return adobe_transform_ != 0;
  return jfif_ || !(c[0].id == 'R' && c[1].id == 'G' && c[2].id == 'B');
}

// Finds the next marker from pos_, passing over fill bytes and anything that is not
// a marker (some writers leave stray bytes between segments).
bool JpegParser::NextMarker(int* code) {
  while (pos_ + 1 < size_) {
    if (data_[pos_] == 0xFF && data_[pos_ + 1] != 0 && data_[pos_ + 1] != 0xFF) {
      *code = data_[pos_ + 1];
      pos_ += 2;
      return true;
    }
    ++pos_;
  }
  return false;
}

bool JpegParser::ParseFrame(int code, const uint8_t* p, int n) {
  if (frame_code_ != 0) return Fail("more than one frame header (SOF)");
  if (n < 6 || n != 6 + 3 * p[5]) return Fail("malformed frame header (SOF)");
  frame_code_ = code;
  lossless = code == kSOF3;
  frame.progressive = code == kSOF2;
  if (p[0] != 8)
    return Fail(std::to_string(p[0]) + "-bit JPEG files are not supported (only 8-bit samples)");
  frame.height = Be16(p + 1);
  frame.width = Be16(p + 3);
  if (frame.height == 0)
    return Fail("image heights defined after the first scan (DNL) are not supported");
  if (frame.width == 0) return Fail("the frame header gives a width of 0");
  const int count = p[5];
  if (count < 1 || count > 4)
    return Fail("JPEG files with " + std::to_string(count) + " components are not supported");
  frame.components.resize(count);
  for (int i = 0; i < count; ++i) {
    JpegComponent& c = frame.components[i];
    c.id = p[6 + 3 * i];
    c.h = p[7 + 3 * i] >> 4;
    c.v = p[7 + 3 * i] & 15;
    c.quant_table = p[8 + 3 * i];
    if (c.h < 1 || c.h > 4 || c.v < 1 || c.v > 4)
      return Fail("invalid sampling factors in the frame header");
    if (c.quant_table > 3) return Fail("invalid quantisation table number in the frame header");
    for (int j = 0; j < i; ++j)
      if (frame.components[j].id == c.id) return Fail("two components share one identifier");
    if (lossless && (c.h != 1 || c.v != 1))
      return Fail("sub-sampled lossless JPEG files are not supported");
  }
  // Refuse absurd sizes before allocating: every MCU codes at least one bit, so a file
  // of this size cannot describe more MCUs than it has bits.
  if (int64_t{frame.width} * frame.height > kMaxJpegPixels)
    return Fail("the image is too large (" + std::to_string(frame.width) + " x " +
                std::to_string(frame.height) + ")");
  int max_h = 1, max_v = 1;
  for (const JpegComponent& c : frame.components) {
    max_h = std::max(max_h, c.h);
    max_v = std::max(max_v, c.v);
  }
  const int64_t mcus = lossless ? int64_t{frame.width} * frame.height
                                : int64_t{(frame.width + 8 * max_h - 1) / (8 * max_h)} *
                                      ((frame.height + 8 * max_v - 1) / (8 * max_v));
  if (mcus > int64_t{size_} * 8)
    return Fail("the frame header claims " + std::to_string(frame.width) + " x " +
                std::to_string(frame.height) + " pixels, more than the file can hold");
  if (lossless) {
    frame.max_h = frame.max_v = 1;
    lossless_planes.assign(count,
                           std::vector<uint8_t>(static_cast<size_t>(frame.width) * frame.height));
  } else {
    SetGeometry(&frame, false);  // allocated by the first scan that needs them
  }
  return true;
}

bool JpegParser::ParseHuffmanTables(const uint8_t* p, int n) {
  while (n > 0) {
    if (n < 17) return Fail("malformed Huffman table (DHT) segment");
    const int table_class = p[0] >> 4, id = p[0] & 15;
    if (table_class > 1 || id > 3) return Fail("invalid Huffman table class or number");
    HuffmanTable t;
    memcpy(t.bits, p + 1, 16);
    const int count = t.count();
    if (count > 256 || n < 17 + count) return Fail("malformed Huffman table (DHT) segment");
    t.vals.assign(p + 17, p + 17 + count);
    DecodeSpec spec = MakeDecodeSpec(t);
    if (!spec) return Fail("the library refused a Huffman table of the file");
    (table_class == 0 ? dc_ : ac_)[id] = std::move(spec);
    p += 17 + count;
    n -= 17 + count;
  }
  return true;
}

bool JpegParser::ParseQuantTables(const uint8_t* p, int n) {
  while (n > 0) {
    const int precision = p[0] >> 4, id = p[0] & 15;
    const int bytes = precision == 0 ? 64 : 128;
    if (precision > 1 || id > 3 || n < 1 + bytes)
      return Fail("malformed quantisation table (DQT) segment");
    if (precision == 0) {
      // Steps arrive in zig-zag order; the working table is in natural order.
      kroiQuantInvTableInit_JPEG_8u16u(p + 1, frame.quant[id]);
    } else {
      alignas(32) Kro16s zigzag[64], natural[64];
      for (int i = 0; i < 64; ++i) {
        const int step = Be16(p + 1 + 2 * i);
        if (step > 32767) return Fail("a quantisation step exceeds 32767");
        zigzag[i] = static_cast<Kro16s>(step);
      }
      kroiZigzagInv8x8_16s_C1(zigzag, natural);
      for (int i = 0; i < 64; ++i) frame.quant[id][i] = static_cast<uint16_t>(natural[i]);
    }
    quant_defined[id] = true;
    p += 1 + bytes;
    n -= 1 + bytes;
  }
  return true;
}

bool JpegParser::ParseScanHeader(const uint8_t* p, int n, ScanHeader* scan) {
  if (frame_code_ == 0) return Fail("a scan comes before the frame header");
  if (n < 1 || p[0] < 1 || p[0] > 4 || n != 4 + 2 * p[0])
    return Fail("malformed scan header (SOS)");
  const int count = p[0];
  int blocks = 0;
  for (int k = 0; k < count; ++k) {
    const int id = p[1 + 2 * k];
    int index = -1;
    for (size_t c = 0; c < frame.components.size(); ++c)
      if (frame.components[c].id == id) index = static_cast<int>(c);
    if (index < 0) return Fail("a scan names a component the frame does not have");
    if (std::find(scan->components.begin(), scan->components.end(), index) !=
        scan->components.end())
      return Fail("a scan names one component twice");
    scan->components.push_back(index);
    scan->dc_table[k] = p[2 + 2 * k] >> 4;
    scan->ac_table[k] = p[2 + 2 * k] & 15;
    if (scan->dc_table[k] > 3 || scan->ac_table[k] > 3)
      return Fail("invalid Huffman table number in a scan");
    blocks += frame.components[index].h * frame.components[index].v;
  }
  if (count > 1 && blocks > 10) return Fail("an interleaved scan has more than 10 blocks per MCU");
  const uint8_t* q = p + 1 + 2 * count;
  scan->ss = q[0];
  scan->se = q[1];
  scan->ah = q[2] >> 4;
  scan->al = q[2] & 15;

  bool needs_dc = false, needs_ac = false;
  if (lossless) {
    if (scan->ss < 1 || scan->ss > 7 || scan->al > 7)
      return Fail("invalid predictor or point transform in a lossless scan");
    scan->kind = ScanKind::kLossless;
    needs_dc = true;
  } else if (!frame.progressive) {
    if (scan->ss != 0 || scan->se != 63 || scan->ah != 0 || scan->al != 0)
      return Fail("invalid spectral selection in a sequential scan");
    scan->kind = ScanKind::kSequential;
    needs_dc = needs_ac = true;
  } else {
    const bool valid = scan->ss <= scan->se && scan->se <= 63 &&
                       (scan->ss == 0) == (scan->se == 0) && (scan->ss == 0 || count == 1) &&
                       scan->al <= 13 && (scan->ah == 0 || scan->ah == scan->al + 1);
    if (!valid)
      return Fail("invalid spectral selection or successive approximation in a progressive scan");
    if (scan->ss == 0) {
      scan->kind = scan->ah == 0 ? ScanKind::kDcFirst : ScanKind::kDcRefine;
      needs_dc = scan->ah == 0;
    } else {
      scan->kind = scan->ah == 0 ? ScanKind::kAcFirst : ScanKind::kAcRefine;
      needs_ac = true;
    }
  }
  for (int k = 0; k < count; ++k) {
    if ((needs_dc && !dc_[scan->dc_table[k]]) || (needs_ac && !ac_[scan->ac_table[k]]))
      return Fail("a scan uses a Huffman table that was not defined");
  }
  return true;
}

// The restart marker that should follow a restart interval: either the reader already
// stopped at it, or it follows the padding of the interval's last byte.
bool JpegParser::NextRestart(int* pos, int* marker, KroiDecodeHuffmanState* state) {
  if (*marker == 0) {
    int p = *pos;
    while (p + 1 < size_ && !(data_[p] == 0xFF && data_[p + 1] != 0 && data_[p + 1] != 0xFF)) ++p;
    if (p + 1 >= size_) return Fail("the file ends inside a scan");
    *marker = data_[p + 1];
    *pos = p + 2;
  }
  if (*marker < kRST0 || *marker > kRST0 + 7)
    return Fail("expected a restart marker, found " + Hex(*marker) +
                " (corrupt or truncated scan)");
  *marker = 0;
  kroiDecodeHuffmanStateInit_JPEG_8u(state);  // also ends any end-of-band run
  return true;
}

bool JpegParser::DecodeScan(const ScanHeader& scan) {
  AllocateCoefficients(&frame);
  const KroiDecodeHuffmanSpec* dc[4] = {};
  const KroiDecodeHuffmanSpec* ac[4] = {};
  for (size_t k = 0; k < scan.components.size(); ++k) {
    dc[k] = dc_[scan.dc_table[k]].get();
    ac[k] = ac_[scan.ac_table[k]].get();
  }
  DecodeState state = MakeDecodeState();
  KroiDecodeHuffmanState* st = state.get();
  Kro16s last_dc[4] = {};
  int pos = pos_, marker = 0;
  KroStatus status = kroStatusOk;
  const int ss = scan.ss, se = scan.se, al = scan.al;
  // One walk per scan kind, so that no block asks which decoder it needs.
  auto walk = [&](auto decode) {
    return WalkScan(
        &frame, scan.components,
        [&](int m) {
          if (restart_interval_ == 0 || m == 0 || m % restart_interval_ != 0) return true;
          std::fill(std::begin(last_dc), std::end(last_dc), 0);
          return NextRestart(&pos, &marker, st);
        },
        [&](int k, int16_t* b) { return (status = decode(k, b)) == kroStatusOk; });
  };
  bool ok = false;
  switch (scan.kind) {
    case ScanKind::kSequential:
      ok = walk([&](int k, int16_t* b) {
        return kroiDecodeHuffman8x8_JPEG_1u16s_C1(data_, size_, &pos, b, &last_dc[k], &marker,
                                                  dc[k], ac[k], st);
      });
      break;
    case ScanKind::kDcFirst:
      ok = walk([&](int k, int16_t* b) {
        return kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(data_, size_, &pos, b, &last_dc[k],
                                                          &marker, al, dc[k], st);
      });
      break;
    case ScanKind::kDcRefine:
      ok = walk([&](int, int16_t* b) {
        return kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(data_, size_, &pos, b, &marker, al, st);
      });
      break;
    case ScanKind::kAcFirst:
      ok = walk([&](int k, int16_t* b) {
        return kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(data_, size_, &pos, b, &marker, ss, se,
                                                          al, ac[k], st);
      });
      break;
    case ScanKind::kAcRefine:
      ok = walk([&](int k, int16_t* b) {
        return kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(data_, size_, &pos, b, &marker, ss, se,
                                                           al, ac[k], st);
      });
      break;
    case ScanKind::kLossless:
      status = kroStatusError;
      break;
  }
  if (!ok) return status == kroStatusOk ? false : Fail(EntropyError(status));
  EndScan(pos, marker);
  return true;
}

// A sequential frame whose first scan holds every component, which the decoder can
// turn into pixels as it goes (Reconstructor).
bool JpegParser::StreamFits(const ScanHeader& scan) {
  if (img_ == nullptr || frame.progressive || scans_ != 0 ||
      scan.components.size() != frame.components.size())
    return false;
  frame.ycbcr = IsYCbCr();
  return ReconstructionError(frame, quant_defined).empty();
}

// The scan decoded one MCU row at a time into two alternating rows of coefficients
// (the reconstructor keeps the previous one), each row reconstructed once decoded.
bool JpegParser::DecodeAndReconstruct(const ScanHeader& scan) {
  const int n = static_cast<int>(frame.components.size());
  const KroiDecodeHuffmanSpec* dc[3] = {};
  const KroiDecodeHuffmanSpec* ac[3] = {};
  int comp[3] = {};  // frame index of each scan component
  for (int k = 0; k < n; ++k) {
    comp[k] = scan.components[k];
    dc[k] = dc_[scan.dc_table[k]].get();
    ac[k] = ac_[scan.ac_table[k]].get();
  }
  // A one-component scan walks that component's blocks (T.81 A.2.2), one per MCU.
  const bool single = n == 1;
  const int mcus_x = single ? frame.components[0].width_in_blocks : McusX(frame);
  const int mcus_y = single ? frame.components[0].height_in_blocks : McusY(frame);
  std::vector<int16_t> rows[2][3];
  for (int c = 0; c < n; ++c) {
    const JpegComponent& fc = frame.components[c];
    const size_t blocks = single ? static_cast<size_t>(mcus_x) : size_t{1} * fc.blocks_w * fc.v;
    rows[0][c].resize(blocks * 64);
    rows[1][c].resize(blocks * 64);
  }
  // Each block of an MCU: its scan component, its place in the MCU row's buffer at
  // mx = 0 and the step from one MCU to the next.
  struct McuBlock {
    int k;
    size_t at, step;
  } blocks[10];
  int count = 0;
  for (int k = 0; k < n; ++k) {
    const JpegComponent& c = frame.components[comp[k]];
    const int h = single ? 1 : c.h, v = single ? 1 : c.v;
    for (int y = 0; y < v; ++y)
      for (int x = 0; x < h; ++x)
        blocks[count++] = {k, (static_cast<size_t>(y) * c.blocks_w + x) * 64, size_t{64} * h};
  }
  Reconstructor rec(frame, options_.fast_upsampling, img_);
  DecodeState state = MakeDecodeState();
  KroiDecodeHuffmanState* st = state.get();
  Kro16s last_dc[3] = {};
  int pos = pos_, marker = 0, m = 0;
  for (int my = 0; my < mcus_y; ++my) {
    int16_t* row[3] = {};
    for (int c = 0; c < n; ++c) row[c] = rows[my & 1][c].data();
    int16_t* first[10];
    for (int i = 0; i < count; ++i) first[i] = row[comp[blocks[i].k]] + blocks[i].at;
    for (int mx = 0; mx < mcus_x; ++mx, ++m) {
      if (restart_interval_ != 0 && m != 0 && m % restart_interval_ == 0) {
        std::fill(std::begin(last_dc), std::end(last_dc), 0);
        if (!NextRestart(&pos, &marker, st)) return false;
      }
      for (int i = 0; i < count; ++i) {
        const int k = blocks[i].k;
        const KroStatus status = kroiDecodeHuffman8x8_JPEG_1u16s_C1(
            data_, size_, &pos, first[i] + mx * blocks[i].step, &last_dc[k], &marker, dc[k],
            ac[k], st);
        if (status != kroStatusOk) return Fail(EntropyError(status));
      }
    }
    rec.Row(my, row);
  }
  rec.Finish();
  reconstructed = true;
  EndScan(pos, marker);
  return true;
}

bool JpegParser::DecodeLossless(const ScanHeader& scan) {
  if (restart_interval_ != 0)
    return Fail("restart intervals in lossless JPEG files are not supported");
  LosslessScan ls;
  ls.width = frame.width;
  ls.height = frame.height;
  ls.predictor = scan.ss;
  ls.point_transform = scan.al;
  for (size_t k = 0; k < scan.components.size(); ++k) {
    ls.tables.push_back(dc_[scan.dc_table[k]].get());
    ls.planes.push_back(lossless_planes[scan.components[k]].data());
  }
  int pos = pos_, marker = 0;
  if (!DecodeLosslessScan(data_, size_, &pos, &marker, ls, error_)) return false;
  EndScan(pos, marker);
  return true;
}

bool Reconstruct(const JpegParser& parser, const JpegDecodeOptions& options, Image* img,
                 std::string* error) {
  if (parser.reconstructed) return true;
  const JpegCoefficients& f = parser.frame;
  const int n = static_cast<int>(f.components.size());
  if (n != 1 && n != 3)
    return Fail(error, "only grey and three-component JPEG files can be decoded to pixels");

  if (parser.lossless) {
    img->width = f.width;
    img->height = f.height;
    img->channels = n;
    img->pixels.resize(img->row_bytes() * f.height);
    const int step = static_cast<int>(img->row_bytes());
    const auto& planes = parser.lossless_planes;
    if (n == 1) {
      memcpy(img->pixels.data(), planes[0].data(), planes[0].size());
    } else if (f.ycbcr) {
      const Kro8u* src[3] = {planes[0].data(), planes[1].data(), planes[2].data()};
      kroiYCbCrToRGB_JPEG_8u_P3C3R(src, f.width, img->pixels.data(), step, {f.width, f.height});
    } else {
      for (int c = 0; c < 3; ++c)
        kroiCopy_8u_C1C3R(planes[c].data(), f.width, img->pixels.data() + c, step,
                          {f.width, f.height});
    }
    return true;
  }

  const std::string why = ReconstructionError(f, parser.quant_defined);
  if (!why.empty()) return Fail(error, why);
  Reconstructor rec(f, options.fast_upsampling, img);
  const int rows = n == 1 ? f.components[0].height_in_blocks : McusY(f);
  for (int k = 0; k < rows; ++k) {
    const int16_t* coef[3] = {};
    for (int c = 0; c < n; ++c) {
      const JpegComponent& comp = f.components[c];
      coef[c] = comp.block(0, n == 1 ? k : k * comp.v);
    }
    rec.Row(k, coef);
  }
  rec.Finish();
  return true;
}

}  // namespace

bool DecodeJpeg(const uint8_t* data, size_t size, Image* img, std::string* error,
                const JpegDecodeOptions& options) {
  JpegParser parser(data, size, error, img, options);
  return parser.Run() && Reconstruct(parser, options, img, error);
}

bool ReadJpegCoefficients(const uint8_t* data, size_t size, JpegCoefficients* coefficients,
                          std::string* error) {
  JpegParser parser(data, size, error);
  if (!parser.Run()) return false;
  if (parser.lossless) return Fail(error, "a lossless JPEG file has no DCT coefficients");
  *coefficients = std::move(parser.frame);
  return true;
}

}  // namespace krojcodec
