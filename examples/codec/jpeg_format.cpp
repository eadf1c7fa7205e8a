// SPDX-License-Identifier: BSD-3-Clause
// T.81 annex K tables, the library's Huffman tables and states, the marker writer and
// the frame geometry shared by the JPEG encoder and decoder.
#include "codec/jpeg_format.h"

#include <algorithm>
#include <limits>

namespace krojcodec {

namespace {

HuffmanTable MakeTable(const uint8_t (&bits)[16], std::vector<uint8_t> vals) {
  HuffmanTable t;
  for (int i = 0; i < 16; ++i) t.bits[i] = bits[i];
  t.vals = std::move(vals);
  return t;
}

}  // namespace

int HuffmanTable::count() const {
  int n = 0;
  for (uint8_t b : bits) n += b;
  return n;
}

const HuffmanTable& StdDcLuminance() {
  static const HuffmanTable t = MakeTable({0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0},
                                          {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  return t;
}

const HuffmanTable& StdDcChrominance() {
  static const HuffmanTable t = MakeTable({0, 3, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0},
                                          {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  return t;
}

const HuffmanTable& StdAcLuminance() {
  static const HuffmanTable t = MakeTable(
      {0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 0x7d},
      {0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51, 0x61,
       0x07, 0x22, 0x71, 0x14, 0x32, 0x81, 0x91, 0xa1, 0x08, 0x23, 0x42, 0xb1, 0xc1, 0x15, 0x52,
       0xd1, 0xf0, 0x24, 0x33, 0x62, 0x72, 0x82, 0x09, 0x0a, 0x16, 0x17, 0x18, 0x19, 0x1a, 0x25,
       0x26, 0x27, 0x28, 0x29, 0x2a, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3a, 0x43, 0x44, 0x45,
       0x46, 0x47, 0x48, 0x49, 0x4a, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5a, 0x63, 0x64,
       0x65, 0x66, 0x67, 0x68, 0x69, 0x6a, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7a, 0x83,
       0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8a, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98, 0x99,
       0x9a, 0xa2, 0xa3, 0xa4, 0xa5, 0xa6, 0xa7, 0xa8, 0xa9, 0xaa, 0xb2, 0xb3, 0xb4, 0xb5, 0xb6,
       0xb7, 0xb8, 0xb9, 0xba, 0xc2, 0xc3, 0xc4, 0xc5, 0xc6, 0xc7, 0xc8, 0xc9, 0xca, 0xd2, 0xd3,
       0xd4, 0xd5, 0xd6, 0xd7, 0xd8, 0xd9, 0xda, 0xe1, 0xe2, 0xe3, 0xe4, 0xe5, 0xe6, 0xe7, 0xe8,
       0xe9, 0xea, 0xf1, 0xf2, 0xf3, 0xf4, 0xf5, 0xf6, 0xf7, 0xf8, 0xf9, 0xfa});
  return t;
}

const HuffmanTable& StdAcChrominance() {
  static const HuffmanTable t = MakeTable(
      {0, 2, 1, 2, 4, 4, 3, 4, 7, 5, 4, 4, 0, 1, 2, 0x77},
      {0x00, 0x01, 0x02, 0x03, 0x11, 0x04, 0x05, 0x21, 0x31, 0x06, 0x12, 0x41, 0x51, 0x07, 0x61,
       0x71, 0x13, 0x22, 0x32, 0x81, 0x08, 0x14, 0x42, 0x91, 0xa1, 0xb1, 0xc1, 0x09, 0x23, 0x33,
       0x52, 0xf0, 0x15, 0x62, 0x72, 0xd1, 0x0a, 0x16, 0x24, 0x34, 0xe1, 0x25, 0xf1, 0x17, 0x18,
       0x19, 0x1a, 0x26, 0x27, 0x28, 0x29, 0x2a, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3a, 0x43, 0x44,
       0x45, 0x46, 0x47, 0x48, 0x49, 0x4a, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5a, 0x63,
       0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6a, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7a,
       0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8a, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97,
       0x98, 0x99, 0x9a, 0xa2, 0xa3, 0xa4, 0xa5, 0xa6, 0xa7, 0xa8, 0xa9, 0xaa, 0xb2, 0xb3, 0xb4,
       0xb5, 0xb6, 0xb7, 0xb8, 0xb9, 0xba, 0xc2, 0xc3, 0xc4, 0xc5, 0xc6, 0xc7, 0xc8, 0xc9, 0xca,
       0xd2, 0xd3, 0xd4, 0xd5, 0xd6, 0xd7, 0xd8, 0xd9, 0xda, 0xe2, 0xe3, 0xe4, 0xe5, 0xe6, 0xe7,
       0xe8, 0xe9, 0xea, 0xf2, 0xf3, 0xf4, 0xf5, 0xf6, 0xf7, 0xf8, 0xf9, 0xfa});
  return t;
}

const uint8_t kStdLuminanceQuant[64] = {16, 11, 10, 16, 24,  40,  51,  61,   //
                                        12, 12, 14, 19, 26,  58,  60,  55,   //
                                        14, 13, 16, 24, 40,  57,  69,  56,   //
                                        14, 17, 22, 29, 51,  87,  80,  62,   //
                                        18, 22, 37, 56, 68,  109, 103, 77,   //
                                        24, 35, 55, 64, 81,  104, 113, 92,   //
                                        49, 64, 78, 87, 103, 121, 120, 101,  //
                                        72, 92, 95, 98, 112, 100, 103, 99};

const uint8_t kStdChrominanceQuant[64] = {17, 18, 24, 47, 99, 99, 99, 99,  //
                                          18, 21, 26, 66, 99, 99, 99, 99,  //
                                          24, 26, 56, 99, 99, 99, 99, 99,  //
                                          47, 66, 99, 99, 99, 99, 99, 99,  //
                                          99, 99, 99, 99, 99, 99, 99, 99,  //
                                          99, 99, 99, 99, 99, 99, 99, 99,  //
                                          99, 99, 99, 99, 99, 99, 99, 99,  //
                                          99, 99, 99, 99, 99, 99, 99, 99};

EncodeSpec MakeEncodeSpec(const HuffmanTable& table) {
  if (table.count() != static_cast<int>(table.vals.size())) return nullptr;
  KroiEncodeHuffmanSpec* spec = nullptr;
  const KroStatus st = kroiEncodeHuffmanSpecInitAlloc_JPEG_8u(table.bits, table.vals.data(), &spec);
  EncodeSpec owned(spec);  // handed back even when the build fails
  return st == kroStatusOk ? std::move(owned) : nullptr;
}

DecodeSpec MakeDecodeSpec(const HuffmanTable& table) {
  if (table.count() != static_cast<int>(table.vals.size())) return nullptr;
  KroiDecodeHuffmanSpec* spec = nullptr;
  const KroStatus st = kroiDecodeHuffmanSpecInitAlloc_JPEG_8u(table.bits, table.vals.data(), &spec);
  DecodeSpec owned(spec);
  return st == kroStatusOk ? std::move(owned) : nullptr;
}

EncodeState MakeEncodeState() {
  KroiEncodeHuffmanState* state = nullptr;
  kroiEncodeHuffmanStateInitAlloc_JPEG_8u(&state);
  return EncodeState(state);
}

DecodeState MakeDecodeState() {
  KroiDecodeHuffmanState* state = nullptr;
  kroiDecodeHuffmanStateInitAlloc_JPEG_8u(&state);
  return DecodeState(state);
}

bool OptimalTable(const int counts[256], HuffmanTable* table) {
  int adjusted[256];
  bool any = false;
  for (int i = 0; i < 256; ++i) {
    adjusted[i] = counts[i];
    any |= counts[i] != 0;
  }
  if (!any) adjusted[0] = 1;
  Kro8u vals[256];
  if (kroiEncodeHuffmanRawTableInit_JPEG_8u(adjusted, table->bits, vals) != kroStatusOk)
    return false;
  table->vals.assign(vals, vals + table->count());
  return true;
}

// ---------------------------------------------------------------------------
// Marker writer

bool JpegWriter::Reserve(size_t n) {
  const size_t need = static_cast<size_t>(len_) + n;
  if (need > static_cast<size_t>(std::numeric_limits<int>::max())) return false;
  if (need > buf_.size()) {
    const size_t grown = std::min(std::max(need, buf_.size() * 2),
                                  static_cast<size_t>(std::numeric_limits<int>::max()));
    buf_.resize(grown);
  }
  return true;
}

void JpegWriter::Byte(int b) {
  Reserve(1);
  buf_[len_++] = static_cast<uint8_t>(b);
}

void JpegWriter::Word(int w) {
  Byte(w >> 8);
  Byte(w & 0xFF);
}

void JpegWriter::Marker(int code) {
  Byte(0xFF);
  Byte(code);
}

void JpegWriter::Jfif() {
  Marker(kAPP0);
  Word(16);
  for (char c : {'J', 'F', 'I', 'F', '\0'}) Byte(c);
  Byte(1);  // version 1.01
  Byte(1);
  Byte(0);  // no units: the densities give the pixel aspect ratio
  Word(1);
  Word(1);
  Byte(0);  // no thumbnail
  Byte(0);
}

void JpegWriter::Dqt(int id, const uint8_t zigzag[64]) {
  Marker(kDQT);
  Word(2 + 65);
  Byte(id);  // 8-bit steps
  for (int i = 0; i < 64; ++i) Byte(zigzag[i]);
}

void JpegWriter::Sof(int code, const JpegCoefficients& frame, int precision) {
  Marker(code);
  Word(8 + 3 * static_cast<int>(frame.components.size()));
  Byte(precision);
  Word(frame.height);
  Word(frame.width);
  Byte(static_cast<int>(frame.components.size()));
  for (const JpegComponent& c : frame.components) {
    Byte(c.id);
    Byte(c.h << 4 | c.v);
    Byte(c.quant_table);
  }
}

void JpegWriter::Dht(int table_class, int id, const HuffmanTable& table) {
  Marker(kDHT);
  Word(2 + 17 + static_cast<int>(table.vals.size()));
  Byte(table_class << 4 | id);
  for (uint8_t b : table.bits) Byte(b);
  for (uint8_t v : table.vals) Byte(v);
}

void JpegWriter::Dri(int interval) {
  Marker(kDRI);
  Word(4);
  Word(interval);
}

void JpegWriter::Sos(const JpegCoefficients& frame, const std::vector<int>& components,
                     const std::vector<int>& tables, int ss, int se, int ah, int al) {
  Marker(kSOS);
  Word(6 + 2 * static_cast<int>(components.size()));
  Byte(static_cast<int>(components.size()));
  for (size_t k = 0; k < components.size(); ++k) {
    Byte(frame.components[components[k]].id);
    Byte(tables[k]);
  }
  Byte(ss);
  Byte(se);
  Byte(ah << 4 | al);
}

std::vector<uint8_t> JpegWriter::Take() {
  buf_.resize(len_);
  std::vector<uint8_t> out;
  out.swap(buf_);
  len_ = 0;
  return out;
}

// ---------------------------------------------------------------------------
// Frame geometry

int ComponentWidth(const JpegCoefficients& f, const JpegComponent& c) {
  return static_cast<int>((int64_t{f.width} * c.h + f.max_h - 1) / f.max_h);
}

int ComponentHeight(const JpegCoefficients& f, const JpegComponent& c) {
  return static_cast<int>((int64_t{f.height} * c.v + f.max_v - 1) / f.max_v);
}

int McusX(const JpegCoefficients& f) { return (f.width + 8 * f.max_h - 1) / (8 * f.max_h); }
int McusY(const JpegCoefficients& f) { return (f.height + 8 * f.max_v - 1) / (8 * f.max_v); }

void SetGeometry(JpegCoefficients* f, bool allocate) {
  f->max_h = f->max_v = 1;
  for (const JpegComponent& c : f->components) {
    f->max_h = std::max(f->max_h, c.h);
    f->max_v = std::max(f->max_v, c.v);
  }
  for (JpegComponent& c : f->components) {
    c.width_in_blocks = (ComponentWidth(*f, c) + 7) / 8;
    c.height_in_blocks = (ComponentHeight(*f, c) + 7) / 8;
    c.blocks_w = McusX(*f) * c.h;
    c.blocks_h = McusY(*f) * c.v;
    c.coef.clear();
  }
  if (allocate) AllocateCoefficients(f);
}

void AllocateCoefficients(JpegCoefficients* f) {
  for (JpegComponent& c : f->components) {
    if (c.coef.empty()) c.coef.assign(static_cast<size_t>(c.blocks_w) * c.blocks_h * 64, 0);
  }
}

int64_t ScanMcus(const JpegCoefficients& f, const std::vector<int>& components) {
  if (components.size() == 1) {
    const JpegComponent& c = f.components[components[0]];
    return int64_t{c.width_in_blocks} * c.height_in_blocks;
  }
  return int64_t{McusX(f)} * McusY(f);
}

std::string EntropyError(KroStatus status) {
  switch (status) {
    case kroStatusJPEGOutOfBuffer:
      return "the entropy-coded data is truncated";
    case kroStatusJPEGDataError:
      return "corrupt entropy-coded data (no Huffman code matches, or a marker came too early)";
    case kroStatusJPEGHuffTableError:
      return "a Huffman table lacks a needed code";
    case kroStatusError:
      return "corrupt entropy-coded data (a run passes the end of a block)";
    default:
      return "the entropy decoder failed with status " + std::to_string(static_cast<int>(status));
  }
}

}  // namespace krojcodec
