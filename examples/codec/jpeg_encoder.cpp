// SPDX-License-Identifier: BSD-3-Clause
// JPEG encoder of the example codec. Two stages:
//   1. Forward transform: colour conversion and chroma down-sampling (per MCU with
//      kroiRGBToYCbCr4xxLS_MCU_8u16s_C3P3R, or per plane with kroiRGBToYCbCr_JPEG_8u_C3P3R
//      and kroiSampleDown*_JPEG_8u_C1R), then level shift + DCT + quantisation of each
//      8x8 block (kroiDCTQuantFwd8x8*_JPEG_*) into the frame's coefficient arrays.
//   2. Entropy coding of the coefficient arrays, scan by scan (kroiEncodeHuffman8x8_*),
//      with standard or optimal tables (kroiGetHuffmanStatistics8x8_*,
//      kroiEncodeHuffmanRawTableInit_JPEG_8u).
#include <string.h>

#include <algorithm>
#include <numeric>

#include "codec/jpeg_codec.h"
#include "codec/jpeg_format.h"

namespace krojcodec {

namespace {

// Room reserved before each coded block or flush. The worst block (a refinement scan
// writing a full correction-bit buffer, every byte stuffed) stays well below this.
constexpr size_t kMaxBlockBytes = 2048;

bool Fail(std::string* error, const std::string& message) {
  *error = message;
  return false;
}

// ---------------------------------------------------------------------------
// Frame layout and quantisation tables

void PlanFrame(const Image& img, ChromaSampling sampling, bool allocate, JpegCoefficients* f) {
  f->width = img.width;
  f->height = img.height;
  f->components.clear();
  f->ycbcr = true;
  if (img.channels == 1 || sampling == ChromaSampling::kGrey) {
    f->components.resize(1);
    f->components[0].id = 1;
  } else {
    f->components.resize(3);
    for (int c = 0; c < 3; ++c) {
      f->components[c].id = c + 1;
      f->components[c].quant_table = c == 0 ? 0 : 1;
    }
    f->components[0].h = sampling == ChromaSampling::k444 ? 1 : 2;
    f->components[0].v = sampling == ChromaSampling::k420 ? 2 : 1;
  }
  SetGeometry(f, allocate);
}

struct QuantTables {
  uint8_t zigzag[2][64];              // as written to DQT
  alignas(32) Kro16u forward[2][64];  // Q15 reciprocals, natural order
};

// Scales T.81 K.1/K.2 by the quality factor and builds the working tables.
void MakeQuantTables(int quality, int count, QuantTables* q, JpegCoefficients* f) {
  const uint8_t* base[2] = {kStdLuminanceQuant, kStdChrominanceQuant};
  for (int t = 0; t < count; ++t) {
    // Streams carry the steps in zig-zag order (kroiZigzagFwd8x8_16s_C1 reorders).
    alignas(32) Kro16s natural[64], zigzag[64];
    for (int i = 0; i < 64; ++i) natural[i] = base[t][i];
    kroiZigzagFwd8x8_16s_C1(natural, zigzag);
    for (int i = 0; i < 64; ++i) q->zigzag[t][i] = static_cast<uint8_t>(zigzag[i]);
    kroiQuantFwdRawTableInit_JPEG_8u(q->zigzag[t], quality);        // T.81 K.1 scaling
    kroiQuantFwdTableInit_JPEG_8u16u(q->zigzag[t], q->forward[t]);  // for the encoder
    kroiQuantInvTableInit_JPEG_8u16u(q->zigzag[t], f->quant[t]);    // steps, natural order
  }
}

// ---------------------------------------------------------------------------
// Forward transform

// Copies a w x h window at (x0, y0) of an interleaved plane into dst (w * channels
// bytes per row), repeating the last column and row for positions past the image.
void CopyWithEdges(const uint8_t* src, int step, int width, int height, int channels, int x0,
                   int y0, int w, int h, uint8_t* dst) {
  for (int r = 0; r < h; ++r) {
    const uint8_t* row = src + static_cast<size_t>(std::min(y0 + r, height - 1)) * step;
    for (int c = 0; c < w; ++c) {
      const int x = std::min(x0 + c, width - 1);
      memcpy(dst + (r * w + c) * channels, row + x * channels, channels);
    }
  }
}

// Level shift, DCT and quantisation of every block of a component whose samples form
// a width x height plane (kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R). Blocks crossing the
// edge, and the padding blocks of partial MCUs, read the edge samples repeated.
void TransformPlane(const uint8_t* plane, int step, int width, int height, const Kro16u* table,
                    JpegComponent* c) {
  alignas(32) uint8_t edge[64];
  for (int by = 0; by < c->blocks_h; ++by) {
    for (int bx = 0; bx < c->blocks_w; ++bx) {
      const int x0 = 8 * bx, y0 = 8 * by;
      if (x0 + 8 <= width && y0 + 8 <= height) {
        kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(plane + static_cast<size_t>(y0) * step + x0, step,
                                            c->block(bx, by), table);
      } else {
        CopyWithEdges(plane, step, width, height, 1, x0, y0, 8, 8, edge);
        kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(edge, 8, c->block(bx, by), table);
      }
    }
  }
}

// Colour through the MCU functions: one call converts an MCU of RGB pixels to
// level-shifted Y, Cb, Cr blocks with the chroma already averaged over 2 or 4 pixels;
// each block then goes through the fused DCT + quantisation.
class ColourMcu {
 public:
  ColourMcu(const Image& img, const JpegCoefficients& f)
      : img_(img),
        convert_(f.max_h == 1   ? kroiRGBToYCbCr444LS_MCU_8u16s_C3P3R
                 : f.max_v == 1 ? kroiRGBToYCbCr422LS_MCU_8u16s_C3P3R
                                : kroiRGBToYCbCr411LS_MCU_8u16s_C3P3R),
        mcu_w_(8 * f.max_h),
        mcu_h_(8 * f.max_v),
        blocks_(f.max_h * f.max_v + 2) {}

  // Luminance blocks (left to right, then top to bottom), Cb, Cr.
  int blocks() const { return blocks_; }

  // The MCU at (mx, my) into the blocks() blocks dst[], in coding order.
  void Transform(int mx, int my, const QuantTables& q, Kro16s* const dst[6]) {
    Kro16s* planes[3] = {samples_, samples_ + 64 * (blocks_ - 2), samples_ + 64 * (blocks_ - 1)};
    const int x0 = mx * mcu_w_, y0 = my * mcu_h_;
    const int step = static_cast<int>(img_.row_bytes());
    if (x0 + mcu_w_ <= img_.width && y0 + mcu_h_ <= img_.height) {
      convert_(img_.row(y0) + x0 * 3, step, planes);
    } else {
      CopyWithEdges(img_.pixels.data(), step, img_.width, img_.height, 3, x0, y0, mcu_w_, mcu_h_,
                    edge_);
      convert_(edge_, mcu_w_ * 3, planes);
    }
    for (int b = 0; b < blocks_; ++b)
      kroiDCTQuantFwd8x8_JPEG_16s_C1(samples_ + 64 * b, dst[b],
                                     q.forward[b < blocks_ - 2 ? 0 : 1]);
  }

 private:
  using McuConvert = KroStatus (*)(const Kro8u*, int, Kro16s* [3]);
  const Image& img_;
  McuConvert convert_;
  int mcu_w_, mcu_h_, blocks_;
  alignas(32) Kro16s samples_[6 * 64];
  alignas(32) uint8_t edge_[16 * 16 * 3];
};

void TransformColourByMcu(const Image& img, const QuantTables& q, JpegCoefficients* f) {
  ColourMcu mcu(img, *f);
  JpegComponent& lum = f->components[0];
  const int luma_blocks = mcu.blocks() - 2;
  for (int my = 0; my < McusY(*f); ++my) {
    for (int mx = 0; mx < McusX(*f); ++mx) {
      Kro16s* dst[6];
      for (int b = 0; b < luma_blocks; ++b)
        dst[b] = lum.block(mx * f->max_h + b % f->max_h, my * f->max_v + b / f->max_h);
      dst[luma_blocks] = f->components[1].block(mx, my);
      dst[luma_blocks + 1] = f->components[2].block(mx, my);
      mcu.Transform(mx, my, q, dst);
    }
  }
}

// Colour through whole planes: kroiRGBToYCbCr_JPEG_8u_C3P3R (rounded), chroma
// box-filtered by kroiSampleDownH2V1/H2V2_JPEG_8u_C1R, then each plane by blocks.
void TransformColourByPlanes(const Image& img, const QuantTables& q, JpegCoefficients* f) {
  const int w = img.width, h = img.height;
  const int pw = w + (w & 1), ph = h + (h & 1);  // the down-samplers read pairs
  std::vector<uint8_t> planes(static_cast<size_t>(pw) * ph * 3);
  Kro8u* ycc[3];
  for (int c = 0; c < 3; ++c) ycc[c] = planes.data() + static_cast<size_t>(pw) * ph * c;
  kroiRGBToYCbCr_JPEG_8u_C3P3R(img.pixels.data(), static_cast<int>(img.row_bytes()), ycc, pw,
                               {w, h});
  for (Kro8u* p : ycc) {  // repeat the last column and row into the pair padding
    if (w & 1)
      for (int y = 0; y < h; ++y)
        p[static_cast<size_t>(y) * pw + w] = p[static_cast<size_t>(y) * pw + w - 1];
    if (h & 1) memcpy(p + static_cast<size_t>(h) * pw, p + static_cast<size_t>(h - 1) * pw, pw);
  }
  TransformPlane(ycc[0], pw, w, h, q.forward[0], &f->components[0]);
  for (int c = 1; c < 3; ++c) {
    JpegComponent& comp = f->components[c];
    if (f->max_h == 1) {
      TransformPlane(ycc[c], pw, w, h, q.forward[1], &comp);
      continue;
    }
    const int cw = ComponentWidth(*f, comp), ch = ComponentHeight(*f, comp);
    std::vector<uint8_t> small(static_cast<size_t>(cw) * ch);
    if (f->max_v == 1)
      kroiSampleDownH2V1_JPEG_8u_C1R(ycc[c], pw, {pw, h}, small.data(), cw, {cw, ch});
    else
      kroiSampleDownH2V2_JPEG_8u_C1R(ycc[c], pw, {pw, ph}, small.data(), cw, {cw, ch});
    TransformPlane(small.data(), cw, cw, ch, q.forward[1], &comp);
  }
}

void TransformGrey(const Image& img, const QuantTables& q, JpegCoefficients* f) {
  if (img.channels == 1) {
    TransformPlane(img.pixels.data(), img.width, img.width, img.height, q.forward[0],
                   &f->components[0]);
    return;
  }
  std::vector<uint8_t> luma(static_cast<size_t>(img.width) * img.height);
  kroiRGBToY_JPEG_8u_C3C1R(img.pixels.data(), static_cast<int>(img.row_bytes()), luma.data(),
                           img.width, {img.width, img.height});
  TransformPlane(luma.data(), img.width, img.width, img.height, q.forward[0], &f->components[0]);
}

// ---------------------------------------------------------------------------
// Scans

enum class ScanKind { kSequential, kDcFirst, kDcRefine, kAcFirst, kAcRefine };

struct ScanSpec {
  std::vector<int> components;  // frame indices
  int ss = 0, se = 63, ah = 0, al = 0;
};

ScanKind KindOf(bool progressive, const ScanSpec& s) {
  if (!progressive) return ScanKind::kSequential;
  if (s.ss == 0) return s.ah == 0 ? ScanKind::kDcFirst : ScanKind::kDcRefine;
  return s.ah == 0 ? ScanKind::kAcFirst : ScanKind::kAcRefine;
}

// The usual progression: DC first at half precision, a low band of luminance early,
// then the rest, each refined by one bit at the end.
std::vector<ScanSpec> ProgressiveScript(int components) {
  if (components == 1)
    return {{{0}, 0, 0, 0, 1},  {{0}, 1, 5, 0, 2}, {{0}, 6, 63, 0, 2},
            {{0}, 1, 63, 2, 1}, {{0}, 0, 0, 1, 0}, {{0}, 1, 63, 1, 0}};
  return {{{0, 1, 2}, 0, 0, 0, 1}, {{0}, 1, 5, 0, 2},  {{2}, 1, 63, 0, 1},      {{1}, 1, 63, 0, 1},
          {{0}, 6, 63, 0, 2},      {{0}, 1, 63, 2, 1}, {{0, 1, 2}, 0, 0, 1, 0}, {{2}, 1, 63, 1, 0},
          {{1}, 1, 63, 1, 0},      {{0}, 1, 63, 1, 0}};
}

// Everything one scan's coding pass needs.
struct ScanCoder {
  ScanKind kind;
  const ScanSpec* spec;
  const KroiEncodeHuffmanSpec* dc[2] = {};
  const KroiEncodeHuffmanSpec* ac[2] = {};
  int table_of[4] = {};  // table id (0 luminance, 1 chrominance) per scan component
  KroiEncodeHuffmanState* state = nullptr;
  Kro16s last_dc[4] = {};

  KroStatus Block(int k, const Kro16s* b, JpegWriter* w) {
    Kro8u* dst = w->data();
    const int cap = w->capacity();
    int* len = w->length();
    const int t = table_of[k];
    switch (kind) {
      case ScanKind::kSequential:
        return kroiEncodeHuffman8x8_JPEG_16s1u_C1(b, dst, cap, len, &last_dc[k], dc[t], ac[t],
                                                  state, 0);
      case ScanKind::kDcFirst:
        return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(b, dst, cap, len, &last_dc[k], spec->al,
                                                          dc[t], state, 0);
      case ScanKind::kDcRefine:
        return kroiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(b, dst, cap, len, spec->al, state, 0);
      case ScanKind::kAcFirst:
        return kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(b, dst, cap, len, spec->ss, spec->se,
                                                          spec->al, ac[t], state, 0);
      case ScanKind::kAcRefine:
        return kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(b, dst, cap, len, spec->ss, spec->se,
                                                           spec->al, ac[t], state, 0);
    }
    return kroStatusError;
  }

  // Ends the entropy-coded segment: pending end-of-band run and correction bits, then
  // the last byte padded with 1-bits. DC predictors restart from 0.
  KroStatus Flush(JpegWriter* w) {
    std::fill(std::begin(last_dc), std::end(last_dc), 0);
    Kro8u* dst = w->data();
    const int cap = w->capacity();
    int* len = w->length();
    switch (kind) {
      case ScanKind::kSequential:
        return kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, dst, cap, len, nullptr, nullptr, nullptr,
                                                  state, 1);
      case ScanKind::kDcFirst:
        return kroiEncodeHuffman8x8_DCFirst_JPEG_16s1u_C1(nullptr, dst, cap, len, nullptr, spec->al,
                                                          dc[table_of[0]], state, 1);
      case ScanKind::kDcRefine:
        return kroiEncodeHuffman8x8_DCRefine_JPEG_16s1u_C1(nullptr, dst, cap, len, spec->al, state,
                                                           1);
      case ScanKind::kAcFirst:
        return kroiEncodeHuffman8x8_ACFirst_JPEG_16s1u_C1(
            nullptr, dst, cap, len, spec->ss, spec->se, spec->al, ac[table_of[0]], state, 1);
      case ScanKind::kAcRefine:
        return kroiEncodeHuffman8x8_ACRefine_JPEG_16s1u_C1(
            nullptr, dst, cap, len, spec->ss, spec->se, spec->al, ac[table_of[0]], state, 1);
    }
    return kroStatusError;
  }
};

// Symbol counts of one scan, exactly as its coding pass will produce them.
struct ScanCounter {
  ScanKind kind;
  const ScanSpec* spec;
  int dc[2][256] = {};
  int ac[2][256] = {};
  int table_of[4] = {};
  KroiEncodeHuffmanState* state = nullptr;  // end-of-band runs of the AC kinds
  Kro16s last_dc[4] = {};

  KroStatus Block(int k, const Kro16s* b) {
    const int t = table_of[k];
    switch (kind) {
      case ScanKind::kSequential:
        return kroiGetHuffmanStatistics8x8_JPEG_16s_C1(b, dc[t], ac[t], &last_dc[k]);
      case ScanKind::kDcFirst:
        return kroiGetHuffmanStatistics8x8_DCFirst_JPEG_16s_C1(b, dc[t], &last_dc[k], spec->al);
      case ScanKind::kDcRefine:
        return kroStatusOk;  // raw bits only
      case ScanKind::kAcFirst:
        return kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(b, ac[t], spec->ss, spec->se,
                                                               spec->al, state, 0);
      case ScanKind::kAcRefine:
        return kroiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(b, ac[t], spec->ss, spec->se,
                                                                spec->al, state, 0);
    }
    return kroStatusError;
  }

  KroStatus Flush() {
    std::fill(std::begin(last_dc), std::end(last_dc), 0);
    const int t = table_of[0];
    if (kind == ScanKind::kAcFirst)
      return kroiGetHuffmanStatistics8x8_ACFirst_JPEG_16s_C1(nullptr, ac[t], spec->ss, spec->se,
                                                             spec->al, state, 1);
    if (kind == ScanKind::kAcRefine)
      return kroiGetHuffmanStatistics8x8_ACRefine_JPEG_16s_C1(nullptr, ac[t], spec->ss, spec->se,
                                                              spec->al, state, 1);
    return kroStatusOk;
  }
};

std::string CodingError(KroStatus st) {
  if (st == kroStatusJPEGDataError)
    return "a coefficient is too large for this scan (try a lower quality or a baseline file)";
  return "the Huffman encoder failed with status " + std::to_string(static_cast<int>(st));
}

// Table id (0 luminance, 1 chrominance) of each component of a scan.
void ScanTables(const ScanSpec& spec, int table_of[4], bool table_used[2]) {
  for (size_t k = 0; k < spec.components.size(); ++k) {
    table_of[k] = spec.components[k] == 0 ? 0 : 1;
    table_used[table_of[k]] = true;
  }
}

// The DHT segments of the tables a scan uses, then its SOS header; the library's
// forms of the tables into dc_specs/ac_specs.
bool WriteScanHeader(const JpegCoefficients& f, const ScanSpec& spec, bool uses_dc,
                     bool uses_ac, const HuffmanTable dc_tables[2],
                     const HuffmanTable ac_tables[2], EncodeSpec dc_specs[2],
                     EncodeSpec ac_specs[2], JpegWriter* w, std::string* error) {
  int table_of[4] = {};
  bool table_used[2] = {false, false};
  ScanTables(spec, table_of, table_used);
  for (int t = 0; t < 2; ++t) {
    if (!table_used[t]) continue;
    if (uses_dc) {
      dc_specs[t] = MakeEncodeSpec(dc_tables[t]);
      if (!dc_specs[t]) return Fail(error, "the library refused a DC Huffman table");
      w->Dht(0, t, dc_tables[t]);
    }
    if (uses_ac) {
      ac_specs[t] = MakeEncodeSpec(ac_tables[t]);
      if (!ac_specs[t]) return Fail(error, "the library refused an AC Huffman table");
      w->Dht(1, t, ac_tables[t]);
    }
  }
  std::vector<int> table_ids(spec.components.size());
  for (size_t k = 0; k < table_ids.size(); ++k) table_ids[k] = table_of[k] << 4 | table_of[k];
  w->Sos(f, spec.components, table_ids, spec.ss, spec.se, spec.ah, spec.al);
  return true;
}

// Writes one scan: tables (standard, or optimal from a counting pass), the SOS header
// and the entropy-coded data with restart markers every restart_interval MCUs.
bool WriteScan(JpegCoefficients* f, const ScanSpec& spec, bool progressive, bool optimize,
               int restart_interval, JpegWriter* w, std::string* error) {
  const ScanKind kind = KindOf(progressive, spec);
  const bool uses_dc = kind == ScanKind::kSequential || kind == ScanKind::kDcFirst;
  const bool uses_ac =
      kind == ScanKind::kSequential || kind == ScanKind::kAcFirst || kind == ScanKind::kAcRefine;
  bool table_used[2] = {false, false};
  int table_of[4] = {};
  ScanTables(spec, table_of, table_used);
  auto restart_due = [&](int m) {
    return restart_interval > 0 && m > 0 && m % restart_interval == 0;
  };

  // Tables. Progressive scans always count: end-of-band runs have no standard codes.
  HuffmanTable dc_tables[2] = {StdDcLuminance(), StdDcChrominance()};
  HuffmanTable ac_tables[2] = {StdAcLuminance(), StdAcChrominance()};
  if (optimize || progressive) {
    EncodeState count_state = MakeEncodeState();
    ScanCounter counter{kind, &spec};
    std::copy(std::begin(table_of), std::end(table_of), counter.table_of);
    counter.state = count_state.get();
    KroStatus st = kroStatusOk;
    WalkScan(
        f, spec.components,
        [&](int m) { return !restart_due(m) || (st = counter.Flush()) == kroStatusOk; },
        [&](int k, int16_t* b) { return (st = counter.Block(k, b)) == kroStatusOk; });
    if (st == kroStatusOk) st = counter.Flush();
    if (st != kroStatusOk) return Fail(error, CodingError(st));
    for (int t = 0; t < 2; ++t) {
      if (!table_used[t]) continue;
      if ((uses_dc && !OptimalTable(counter.dc[t], &dc_tables[t])) ||
          (uses_ac && !OptimalTable(counter.ac[t], &ac_tables[t])))
        return Fail(error, "cannot build an optimal Huffman table");
    }
  }
  EncodeSpec dc_specs[2], ac_specs[2];
  if (!WriteScanHeader(*f, spec, uses_dc, uses_ac, dc_tables, ac_tables, dc_specs, ac_specs, w,
                       error))
    return false;

  // Coding pass.
  EncodeState state = MakeEncodeState();
  ScanCoder coder{kind, &spec};
  std::copy(std::begin(table_of), std::end(table_of), coder.table_of);
  for (int t = 0; t < 2; ++t) {
    coder.dc[t] = dc_specs[t].get();
    coder.ac[t] = ac_specs[t].get();
  }
  coder.state = state.get();
  KroStatus st = kroStatusOk;
  int restarts = 0;
  const bool ok = WalkScan(
      f, spec.components,
      [&](int m) {
        if (!restart_due(m)) return true;
        if (!w->Reserve(kMaxBlockBytes) || (st = coder.Flush(w)) != kroStatusOk) return false;
        w->Marker(kRST0 + (restarts++ & 7));
        return true;
      },
      [&](int k, int16_t* b) {
        return w->Reserve(kMaxBlockBytes) && (st = coder.Block(k, b, w)) == kroStatusOk;
      });
  if (ok && w->Reserve(kMaxBlockBytes)) st = coder.Flush(w);
  if (!ok && st == kroStatusOk) return Fail(error, "the JPEG file would exceed 2 GB");
  if (st != kroStatusOk) return Fail(error, CodingError(st));
  return true;
}

// A sequential scan of every component with the standard tables, each MCU transformed
// and coded at once: its coefficients never leave the cache, and the frame's
// coefficient arrays (at 8 MP 4:2:0, 24 MB zeroed, written and read back) are not
// needed. Writes the same bytes as TransformColourByMcu or TransformGrey and WriteScan.
bool WriteSequentialByMcu(const Image& img, const QuantTables& q, JpegCoefficients* f,
                          int restart_interval, JpegWriter* w, std::string* error) {
  ScanSpec spec;
  spec.components.resize(f->components.size());
  std::iota(spec.components.begin(), spec.components.end(), 0);
  const HuffmanTable dc_tables[2] = {StdDcLuminance(), StdDcChrominance()};
  const HuffmanTable ac_tables[2] = {StdAcLuminance(), StdAcChrominance()};
  EncodeSpec dc_specs[2], ac_specs[2];
  if (!WriteScanHeader(*f, spec, true, true, dc_tables, ac_tables, dc_specs, ac_specs, w, error))
    return false;
  EncodeState state = MakeEncodeState();
  ScanCoder coder{ScanKind::kSequential, &spec};
  bool table_used[2] = {false, false};
  ScanTables(spec, coder.table_of, table_used);
  for (int t = 0; t < 2; ++t) {
    coder.dc[t] = dc_specs[t].get();
    coder.ac[t] = ac_specs[t].get();
  }
  coder.state = state.get();

  const bool grey = f->components.size() == 1;
  // A grey scan's MCU is one block (T.81 A.2.2).
  const int mcus_x = grey ? f->components[0].width_in_blocks : McusX(*f);
  const int mcus_y = grey ? f->components[0].height_in_blocks : McusY(*f);
  ColourMcu colour(img, *f);
  const int blocks = grey ? 1 : colour.blocks();
  int scan_k[6];  // scan component of each block of an MCU
  for (int b = 0; b < blocks; ++b) scan_k[b] = grey ? 0 : b < blocks - 2 ? 0 : b - blocks + 3;
  alignas(32) Kro16s coef[6 * 64];
  Kro16s* const dst[6] = {coef, coef + 64, coef + 128, coef + 192, coef + 256, coef + 320};
  // Grey from RGB: eight rows of luminance at a time.
  std::vector<uint8_t> luma;
  if (grey && img.channels == 3) luma.resize(static_cast<size_t>(img.width) * 8);
  alignas(32) uint8_t edge[64];
  const std::string too_large = "the JPEG file would exceed 2 GB";
  KroStatus st = kroStatusOk;
  int m = 0, restarts = 0;
  for (int my = 0; my < mcus_y; ++my) {
    const uint8_t* plane = nullptr;  // grey: the block row's samples
    int plane_rows = 0;
    if (grey) {
      plane_rows = std::min(8, img.height - 8 * my);
      if (img.channels == 1) {
        plane = img.row(8 * my);
      } else {
        kroiRGBToY_JPEG_8u_C3C1R(img.row(8 * my), static_cast<int>(img.row_bytes()),
                                 luma.data(), img.width, {img.width, plane_rows});
        plane = luma.data();
      }
    }
    for (int mx = 0; mx < mcus_x; ++mx, ++m) {
      if (restart_interval > 0 && m > 0 && m % restart_interval == 0) {
        if (!w->Reserve(kMaxBlockBytes)) return Fail(error, too_large);
        if ((st = coder.Flush(w)) != kroStatusOk) return Fail(error, CodingError(st));
        w->Marker(kRST0 + (restarts++ & 7));
      }
      if (!grey) {
        colour.Transform(mx, my, q, dst);
      } else if (8 * mx + 8 <= img.width && plane_rows == 8) {
        kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(plane + 8 * mx, img.width, coef, q.forward[0]);
      } else {
        CopyWithEdges(plane, img.width, img.width, plane_rows, 1, 8 * mx, 0, 8, 8, edge);
        kroiDCTQuantFwd8x8LS_JPEG_8u16s_C1R(edge, 8, coef, q.forward[0]);
      }
      if (!w->Reserve(kMaxBlockBytes * blocks)) return Fail(error, too_large);
      for (int b = 0; b < blocks; ++b) {
        if ((st = coder.Block(scan_k[b], dst[b], w)) != kroStatusOk)
          return Fail(error, CodingError(st));
      }
    }
  }
  if (!w->Reserve(kMaxBlockBytes)) return Fail(error, too_large);
  if ((st = coder.Flush(w)) != kroStatusOk) return Fail(error, CodingError(st));
  return true;
}

bool CheckOptions(const Image& img, const JpegEncodeOptions& o, std::string* error) {
  if (img.channels != 1 && img.channels != 3)
    return Fail(error, "only grey and RGB images can be encoded");
  if (img.width < 1 || img.height < 1 || img.width > 65535 || img.height > 65535)
    return Fail(error, "JPEG images must be 1 to 65535 pixels wide and high");
  if (int64_t{img.width} * img.height > kMaxJpegPixels) return Fail(error, "image is too large");
  if (img.pixels.size() != img.row_bytes() * img.height)
    return Fail(error, "image buffer has the wrong size");
  if (o.quality < 1 || o.quality > 100) return Fail(error, "quality must be 1 to 100");
  if (o.restart_interval < 0 || o.restart_interval > 65535)
    return Fail(error, "restart interval must be 0 to 65535");
  if (o.lossless) {
    if (o.predictor < 1 || o.predictor > 7) return Fail(error, "lossless predictor must be 1 to 7");
    if (o.point_transform < 0 || o.point_transform > 7)
      return Fail(error, "point transform must be 0 to 7");
    if (o.progressive) return Fail(error, "a file cannot be both lossless and progressive");
    if (o.restart_interval != 0)
      return Fail(error, "restart intervals are not supported in lossless mode");
  }
  return true;
}

}  // namespace

bool EncodeJpeg(const Image& img, const JpegEncodeOptions& options, std::vector<uint8_t>* out,
                std::string* error, JpegCoefficients* coefficients) {
  if (!CheckOptions(img, options, error)) return false;
  if (options.lossless) {
    if (coefficients) *coefficients = JpegCoefficients();
    return EncodeLosslessJpeg(img, options, out, error);
  }

  JpegCoefficients f;
  const bool grey = img.channels == 1 || options.sampling == ChromaSampling::kGrey;
  // Sequential files with the standard tables need no coefficient arrays, unless the
  // caller wants them or colour goes by whole planes.
  const bool by_mcu = !options.progressive && !options.optimize && coefficients == nullptr &&
                      (grey || !options.colour_planes);
  PlanFrame(img, options.sampling, !by_mcu, &f);
  f.progressive = options.progressive;
  const int tables = f.components.size() == 1 ? 1 : 2;
  QuantTables q;
  MakeQuantTables(options.quality, tables, &q, &f);

  if (!by_mcu) {
    if (f.components.size() == 1)
      TransformGrey(img, q, &f);
    else if (options.colour_planes)
      TransformColourByPlanes(img, q, &f);
    else
      TransformColourByMcu(img, q, &f);
  }

  JpegWriter w;
  w.Marker(kSOI);
  w.Jfif();
  for (int t = 0; t < tables; ++t) w.Dqt(t, q.zigzag[t]);
  w.Sof(options.progressive ? kSOF2 : kSOF0, f, 8);
  if (options.restart_interval > 0) w.Dri(options.restart_interval);
  if (by_mcu) {
    if (!WriteSequentialByMcu(img, q, &f, options.restart_interval, &w, error)) return false;
    w.Marker(kEOI);
    *out = w.Take();
    return true;
  }
  std::vector<ScanSpec> scans;
  if (options.progressive) {
    scans = ProgressiveScript(static_cast<int>(f.components.size()));
  } else {
    scans.resize(1);
    scans[0].components.resize(f.components.size());
    std::iota(scans[0].components.begin(), scans[0].components.end(), 0);
  }
  for (const ScanSpec& s : scans) {
    if (!WriteScan(&f, s, options.progressive, options.optimize, options.restart_interval, &w,
                   error))
      return false;
  }
  w.Marker(kEOI);
  *out = w.Take();
  if (coefficients) *coefficients = std::move(f);
  return true;
}

}  // namespace krojcodec
