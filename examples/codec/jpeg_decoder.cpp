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

// Parses the markers of a file and entropy-decodes its scans.
class JpegParser {
 public:
  JpegParser(const uint8_t* data, size_t size, std::string* error) : data_(data), error_(error) {
    size_ =
        size > static_cast<size_t>(std::numeric_limits<int>::max()) ? -1 : static_cast<int>(size);
  }

  bool Run();

  JpegCoefficients frame;
  bool lossless = false;
  std::vector<std::vector<uint8_t>> lossless_planes;  // samples per component
  bool quant_defined[4] = {};

 private:
  bool Fail(const std::string& message) { return krojcodec::Fail(error_, message); }
  bool NextMarker(int* code);
  bool ParseFrame(int code, const uint8_t* p, int n);
  bool ParseHuffmanTables(const uint8_t* p, int n);
  bool ParseQuantTables(const uint8_t* p, int n);
  bool ParseScanHeader(const uint8_t* p, int n, ScanHeader* scan);
  bool DecodeScan(const ScanHeader& scan);
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
        ok = ParseScanHeader(p, n, &scan) && (lossless ? DecodeLossless(scan) : DecodeScan(scan));
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
  frame.ycbcr = frame.components.size() == 3;
  if (frame.ycbcr) {
    const auto& c = frame.components;
    if (adobe_)
      frame.ycbcr = adobe_transform_ != 0;
    else if (!jfif_ && c[0].id == 'R' && c[1].id == 'G' && c[2].id == 'B')
      frame.ycbcr = false;
  }
  return true;
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
    SetGeometry(&frame);
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
  const bool ok = WalkScan(
      &frame, scan.components,
      [&](int m) {
        if (restart_interval_ == 0 || m == 0 || m % restart_interval_ != 0) return true;
        std::fill(std::begin(last_dc), std::end(last_dc), 0);
        return NextRestart(&pos, &marker, st);
      },
      [&](int k, int16_t* b) {
        switch (scan.kind) {
          case ScanKind::kSequential:
            status = kroiDecodeHuffman8x8_JPEG_1u16s_C1(data_, size_, &pos, b, &last_dc[k], &marker,
                                                        dc[k], ac[k], st);
            break;
          case ScanKind::kDcFirst:
            status = kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(data_, size_, &pos, b, &last_dc[k],
                                                                &marker, al, dc[k], st);
            break;
          case ScanKind::kDcRefine:
            status =
                kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(data_, size_, &pos, b, &marker, al, st);
            break;
          case ScanKind::kAcFirst:
            status = kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(data_, size_, &pos, b, &marker, ss,
                                                                se, al, ac[k], st);
            break;
          case ScanKind::kAcRefine:
            status = kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(data_, size_, &pos, b, &marker, ss,
                                                                 se, al, ac[k], st);
            break;
          case ScanKind::kLossless:
            status = kroStatusError;
            break;
        }
        return status == kroStatusOk;
      });
  if (!ok) return status == kroStatusOk ? false : Fail(EntropyError(status));
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

// ---------------------------------------------------------------------------
// Reconstruction

// Dequantisation, inverse DCT, +128 and clamping (kroiDCTQuantInv8x8LS_JPEG_16s8u_C1R)
// of the blocks that cover sample rows y0 .. y0 + rows - 1 of a component (y0 a
// multiple of 8), width samples wide, into dst (the place of row y0). Blocks crossing
// the right or bottom edge go through a scratch block.
void InverseTransformRows(const JpegComponent& c, const Kro16u* table, int y0, int rows, int width,
                          uint8_t* dst, int step) {
  alignas(32) uint8_t edge[64];
  for (int r0 = 0; r0 < rows; r0 += 8) {
    const int by = (y0 + r0) / 8, h = std::min(8, rows - r0);
    for (int x0 = 0; x0 < width; x0 += 8) {
      uint8_t* out = dst + static_cast<size_t>(r0) * step + x0;
      const Kro16s* block = c.block(x0 / 8, by);
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

// A sub-sampled component decoded whole, with the border of repeated edge samples that
// the plane up-samplers read one sample around their source region.
struct BorderedPlane {
  int width = 0, height = 0, step = 0;
  std::vector<uint8_t> samples;
  const uint8_t* row(int y) const { return samples.data() + static_cast<size_t>(y + 1) * step + 1; }
};

BorderedPlane DecodeBordered(const JpegCoefficients& f, const JpegComponent& c) {
  BorderedPlane p;
  p.width = ComponentWidth(f, c);
  p.height = ComponentHeight(f, c);
  p.step = p.width + 2;
  p.samples.resize(static_cast<size_t>(p.step) * (p.height + 2));
  uint8_t* inner = p.samples.data() + p.step + 1;
  InverseTransformRows(c, f.quant[c.quant_table], 0, p.height, p.width, inner, p.step);
  for (int y = 0; y < p.height; ++y) {
    uint8_t* row = inner + static_cast<size_t>(y) * p.step;
    row[-1] = row[0];
    row[p.width] = row[p.width - 1];
  }
  memcpy(p.samples.data(), p.samples.data() + p.step, p.step);
  memcpy(p.samples.data() + static_cast<size_t>(p.height + 1) * p.step,
         p.samples.data() + static_cast<size_t>(p.height) * p.step, p.step);
  return p;
}

// Smooth path, one strip of MCU rows at a time so that the working rows stay in cache:
// full-resolution components are inverse transformed into the strip, sub-sampled ones
// are enlarged into it by the triangle filters (kroiSampleUpH2V1/H2V2_JPEG_8u_C1R, which
// read their neighbour rows from the whole bordered plane), then one colour conversion
// (kroiYCbCrToRGB_JPEG_8u_P3C3R, whose three planes share one row step) writes the
// strip's pixels.
void ReconstructByStrips(const JpegCoefficients& f, Image* img) {
  const int w = f.width, strip_h = 8 * f.max_v;
  BorderedPlane small[3];
  bool full[3];
  for (int c = 0; c < 3; ++c) {
    const JpegComponent& comp = f.components[c];
    full[c] = comp.h == f.max_h && comp.v == f.max_v;
    if (!full[c]) small[c] = DecodeBordered(f, comp);
  }
  std::vector<uint8_t> strip(static_cast<size_t>(w) * strip_h * 3);
  Kro8u* plane[3];
  for (int c = 0; c < 3; ++c) plane[c] = strip.data() + static_cast<size_t>(w) * strip_h * c;
  const int step = static_cast<int>(img->row_bytes());
  for (int y0 = 0; y0 < f.height; y0 += strip_h) {
    const int rows = std::min(strip_h, f.height - y0);
    for (int c = 0; c < 3; ++c) {
      const JpegComponent& comp = f.components[c];
      if (full[c]) {
        InverseTransformRows(comp, f.quant[comp.quant_table], y0, rows, w, plane[c], w);
      } else if (comp.v == f.max_v) {
        kroiSampleUpH2V1_JPEG_8u_C1R(small[c].row(y0), small[c].step, {small[c].width, rows},
                                     plane[c], w, {w, rows});
      } else {
        kroiSampleUpH2V2_JPEG_8u_C1R(small[c].row(y0 / 2), small[c].step,
                                     {small[c].width, (rows + 1) / 2}, plane[c], w, {w, rows});
      }
    }
    if (f.ycbcr) {
      kroiYCbCrToRGB_JPEG_8u_P3C3R(plane, w, img->row(y0), step, {w, rows});
    } else {
      for (int c = 0; c < 3; ++c) kroiCopy_8u_C1C3R(plane[c], w, img->row(y0) + c, step, {w, rows});
    }
  }
}

// Whether the MCU functions cover this frame: YCbCr with the luminance at 1x1, 2x1 or
// 2x2 and both chroma components at 1x1.
bool McuPathFits(const JpegCoefficients& f) {
  const auto& c = f.components;
  return f.ycbcr && c[0].h == f.max_h && c[0].v == f.max_v && f.max_h <= 2 && f.max_v <= f.max_h &&
         c[1].h == 1 && c[1].v == 1 && c[2].h == 1 && c[2].v == 1;
}

// Fast path: per MCU, dequantisation + inverse DCT of each block to level-shifted
// samples (kroiDCTQuantInv8x8_JPEG_16s_C1), then one call that replicates the chroma,
// converts to RGB and stores the pixels.
void ReconstructByMcu(const JpegCoefficients& f, Image* img) {
  using McuConvert = KroStatus (*)(const Kro16s* [3], Kro8u*, int);
  const McuConvert convert = f.max_h == 1   ? kroiYCbCr444ToRGBLS_MCU_16s8u_P3C3R
                             : f.max_v == 1 ? kroiYCbCr422ToRGBLS_MCU_16s8u_P3C3R
                                            : kroiYCbCr411ToRGBLS_MCU_16s8u_P3C3R;
  const int mcu_w = 8 * f.max_h, mcu_h = 8 * f.max_v, luma_blocks = f.max_h * f.max_v;
  alignas(32) Kro16s y[256], cb[64], cr[64];
  const Kro16s* blocks[3] = {y, cb, cr};
  alignas(32) uint8_t edge[16 * 16 * 3];
  const int step = static_cast<int>(img->row_bytes());
  const JpegComponent& lum = f.components[0];
  const Kro16u* ql = f.quant[lum.quant_table];
  const Kro16u* qb = f.quant[f.components[1].quant_table];
  const Kro16u* qr = f.quant[f.components[2].quant_table];
  for (int my = 0; my < McusY(f); ++my) {
    for (int mx = 0; mx < McusX(f); ++mx) {
      for (int b = 0; b < luma_blocks; ++b)
        kroiDCTQuantInv8x8_JPEG_16s_C1(
            lum.block(mx * f.max_h + b % f.max_h, my * f.max_v + b / f.max_h), y + 64 * b, ql);
      kroiDCTQuantInv8x8_JPEG_16s_C1(f.components[1].block(mx, my), cb, qb);
      kroiDCTQuantInv8x8_JPEG_16s_C1(f.components[2].block(mx, my), cr, qr);
      const int x0 = mx * mcu_w, y0 = my * mcu_h;
      if (x0 + mcu_w <= f.width && y0 + mcu_h <= f.height) {
        convert(blocks, img->row(y0) + x0 * 3, step);
        continue;
      }
      convert(blocks, edge, mcu_w * 3);
      const int w = std::min(mcu_w, f.width - x0), h = std::min(mcu_h, f.height - y0);
      for (int r = 0; r < h; ++r) memcpy(img->row(y0 + r) + x0 * 3, edge + r * mcu_w * 3, w * 3);
    }
  }
}

bool Reconstruct(const JpegParser& parser, const JpegDecodeOptions& options, Image* img,
                 std::string* error) {
  const JpegCoefficients& f = parser.frame;
  const int n = static_cast<int>(f.components.size());
  if (n != 1 && n != 3)
    return Fail(error, "only grey and three-component JPEG files can be decoded to pixels");
  img->width = f.width;
  img->height = f.height;
  img->channels = n;
  img->pixels.assign(img->row_bytes() * f.height, 0);

  if (parser.lossless) {
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

  for (const JpegComponent& c : f.components) {
    if (!parser.quant_defined[c.quant_table])
      return Fail(error, "a component uses an undefined quantisation table");
    const bool full = c.h == f.max_h && c.v == f.max_v;
    const bool half = c.h * 2 == f.max_h && (c.v == f.max_v || c.v * 2 == f.max_v);
    if (!full && !half)
      return Fail(error, "sampling factors " + std::to_string(c.h) + "x" + std::to_string(c.v) +
                             " against " + std::to_string(f.max_h) + "x" + std::to_string(f.max_v) +
                             " are not supported (chroma must be full, half width or half size)");
  }
  if (n == 1) {
    const JpegComponent& c = f.components[0];
    InverseTransformRows(c, f.quant[c.quant_table], 0, f.height, f.width, img->pixels.data(),
                         f.width);
  } else if (options.fast_upsampling && McuPathFits(f)) {
    ReconstructByMcu(f, img);
  } else {
    ReconstructByStrips(f, img);
  }
  return true;
}

}  // namespace

bool DecodeJpeg(const uint8_t* data, size_t size, Image* img, std::string* error,
                const JpegDecodeOptions& options) {
  JpegParser parser(data, size, error);
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
