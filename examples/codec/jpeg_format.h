// SPDX-License-Identifier: BSD-3-Clause
// Pieces shared by the JPEG encoder and decoder of the example codec: the T.81 annex K
// tables, owners for the library's Huffman tables and states, the marker writer, the
// frame geometry and the walk over the blocks of a scan.
#ifndef KROJCODEC_JPEG_FORMAT_H_
#define KROJCODEC_JPEG_FORMAT_H_

#include <stddef.h>
#include <stdint.h>

#include <memory>
#include <string>
#include <vector>

#include "codec/jpeg_codec.h"
#include "kroj.h"

namespace krojcodec {

// Marker codes (T.81 table B.1).
enum Marker : int {
  kSOF0 = 0xC0,  // baseline DCT
  kSOF1 = 0xC1,  // extended sequential DCT
  kSOF2 = 0xC2,  // progressive DCT
  kSOF3 = 0xC3,  // lossless
  kDHT = 0xC4,
  kRST0 = 0xD0,
  kSOI = 0xD8,
  kEOI = 0xD9,
  kSOS = 0xDA,
  kDQT = 0xDB,
  kDNL = 0xDC,
  kDRI = 0xDD,
  kAPP0 = 0xE0,
  kAPP14 = 0xEE,
};

// The example codec reads and writes images of at most this many pixels.
constexpr int64_t kMaxJpegPixels = int64_t{1} << 28;

// A Huffman table as a DHT segment carries it: 16 code counts by length, then the
// symbols in order of increasing code length.
struct HuffmanTable {
  uint8_t bits[16] = {};
  std::vector<uint8_t> vals;

  int count() const;
  bool empty() const { return vals.empty(); }
};

// T.81 K.3 to K.6.
const HuffmanTable& StdDcLuminance();
const HuffmanTable& StdAcLuminance();
const HuffmanTable& StdDcChrominance();
const HuffmanTable& StdAcChrominance();

// T.81 K.1 and K.2, natural order.
extern const uint8_t kStdLuminanceQuant[64];
extern const uint8_t kStdChrominanceQuant[64];

// Owners of the library's table and state buffers (allocated by the ...InitAlloc
// functions, released by the matching ...Free).
struct FreeEncodeSpec {
  void operator()(KroiEncodeHuffmanSpec* p) const { kroiEncodeHuffmanSpecFree_JPEG_8u(p); }
};
struct FreeDecodeSpec {
  void operator()(KroiDecodeHuffmanSpec* p) const { kroiDecodeHuffmanSpecFree_JPEG_8u(p); }
};
struct FreeEncodeState {
  void operator()(KroiEncodeHuffmanState* p) const { kroiEncodeHuffmanStateFree_JPEG_8u(p); }
};
struct FreeDecodeState {
  void operator()(KroiDecodeHuffmanState* p) const { kroiDecodeHuffmanStateFree_JPEG_8u(p); }
};
using EncodeSpec = std::unique_ptr<KroiEncodeHuffmanSpec, FreeEncodeSpec>;
using DecodeSpec = std::unique_ptr<KroiDecodeHuffmanSpec, FreeDecodeSpec>;
using EncodeState = std::unique_ptr<KroiEncodeHuffmanState, FreeEncodeState>;
using DecodeState = std::unique_ptr<KroiDecodeHuffmanState, FreeDecodeState>;

// Null when the library refuses the table (too many codes, an over-full length).
EncodeSpec MakeEncodeSpec(const HuffmanTable& table);
DecodeSpec MakeDecodeSpec(const HuffmanTable& table);
EncodeState MakeEncodeState();
DecodeState MakeDecodeState();

// The optimal table for a set of symbol counts (T.81 K.2, through
// kroiEncodeHuffmanRawTableInit_JPEG_8u). Counts that are all zero get one symbol so
// that the table is never empty.
bool OptimalTable(const int counts[256], HuffmanTable* table);

// Builds a JPEG file in memory: markers are appended, and the library's entropy
// coders write straight into the buffer at length() after Reserve().
class JpegWriter {
 public:
  JpegWriter() { buf_.resize(1 << 16); }

  // Makes room for n more bytes; false when the file would pass 2 GB.
  bool Reserve(size_t n);
  Kro8u* data() { return buf_.data(); }
  int capacity() const { return static_cast<int>(buf_.size()); }
  int* length() { return &len_; }

  void Byte(int b);
  void Word(int w);
  void Marker(int code);

  void Jfif();
  void Dqt(int id, const uint8_t zigzag[64]);
  void Sof(int code, const JpegCoefficients& frame, int precision);
  void Dht(int table_class, int id, const HuffmanTable& table);
  void Dri(int interval);
  // components: frame indices; tables: (DC id << 4) | AC id per component.
  void Sos(const JpegCoefficients& frame, const std::vector<int>& components,
           const std::vector<int>& tables, int ss, int se, int ah, int al);

  std::vector<uint8_t> Take();

 private:
  std::vector<uint8_t> buf_;
  int len_ = 0;
};

// Sample counts of a component (T.81 A.1.1) and the MCU grid of the frame.
int ComponentWidth(const JpegCoefficients& f, const JpegComponent& c);
int ComponentHeight(const JpegCoefficients& f, const JpegComponent& c);
int McusX(const JpegCoefficients& f);
int McusY(const JpegCoefficients& f);

// Sets max_h/max_v and every component's block counts from the frame size and the
// sampling factors, and (unless allocate is false) allocates zeroed coefficients.
void SetGeometry(JpegCoefficients* f, bool allocate = true);

// Allocates zeroed coefficients for every component that has none.
void AllocateCoefficients(JpegCoefficients* f);

// Visits the blocks of a scan in coding order (T.81 A.2): a scan of one component
// walks that component's own blocks row by row, one block per MCU; an interleaved
// scan walks the MCUs, each holding h x v blocks of every scan component. mcu(m) runs
// before MCU m (for restart markers), block(k, coef) for each block of the k-th scan
// component. Either may return false to stop the walk, which then returns false.
template <class McuFn, class BlockFn>
bool WalkScan(JpegCoefficients* f, const std::vector<int>& components, McuFn mcu, BlockFn block) {
  if (components.size() == 1) {
    JpegComponent& c = f->components[components[0]];
    int m = 0;
    for (int by = 0; by < c.height_in_blocks; ++by) {
      for (int bx = 0; bx < c.width_in_blocks; ++bx) {
        if (!mcu(m++) || !block(0, c.block(bx, by))) return false;
      }
    }
    return true;
  }
  const int mcus_x = McusX(*f), mcus_y = McusY(*f);
  int m = 0;
  for (int my = 0; my < mcus_y; ++my) {
    for (int mx = 0; mx < mcus_x; ++mx) {
      if (!mcu(m++)) return false;
      for (size_t k = 0; k < components.size(); ++k) {
        JpegComponent& c = f->components[components[k]];
        for (int v = 0; v < c.v; ++v) {
          for (int h = 0; h < c.h; ++h) {
            if (!block(static_cast<int>(k), c.block(mx * c.h + h, my * c.v + v))) return false;
          }
        }
      }
    }
  }
  return true;
}

// Number of MCUs a scan of these components holds.
int64_t ScanMcus(const JpegCoefficients& f, const std::vector<int>& components);

// Lossless coding (jpeg_lossless.cpp). The encoder writes the whole file.
bool EncodeLosslessJpeg(const Image& img, const JpegEncodeOptions& options,
                        std::vector<uint8_t>* out, std::string* error);

// One scan of a lossless frame whose components are all sampled 1x1. Decodes from
// data[*pos] (the library's reader: *pos and *marker advance as in the block decoders)
// and writes 8-bit samples into planes[k] (width x height) for the k-th scan component.
struct LosslessScan {
  int width = 0, height = 0;
  int predictor = 1;                                 // Ss
  int point_transform = 0;                           // Al
  std::vector<const KroiDecodeHuffmanSpec*> tables;  // per scan component
  std::vector<uint8_t*> planes;                      // per scan component
};
bool DecodeLosslessScan(const uint8_t* data, int size, int* pos, int* marker,
                        const LosslessScan& scan, std::string* error);

// Describes a library status of the entropy decoders for an error message.
std::string EntropyError(KroStatus status);

}  // namespace krojcodec

#endif  // KROJCODEC_JPEG_FORMAT_H_
