// SPDX-License-Identifier: BSD-3-Clause
// Lossless JPEG (T.81 annex H) of the example codec. Each sample is predicted from its
// left, upper and upper-left neighbours (kroiDiffPred*_JPEG_16s_C1 and
// kroiReconstructPred*_JPEG_16s_C1) and the difference is Huffman coded on its own
// (kroiEncodeHuffmanOne_JPEG_16s1u_C1, kroiDecodeHuffmanOne_JPEG_1u16s_C1) with one
// optimal table. Colour images are coded as R, G, B: no colour transform, nothing lost.
#include <algorithm>

#include "codec/jpeg_codec.h"
#include "codec/jpeg_format.h"

namespace krojcodec {

namespace {

constexpr int kPrecision = 8;  // sample bits

bool Fail(std::string* error, const std::string& message) {
  *error = message;
  return false;
}

}  // namespace

bool EncodeLosslessJpeg(const Image& img, const JpegEncodeOptions& options,
                        std::vector<uint8_t>* out, std::string* error) {
  const bool grey = img.channels == 1 || options.sampling == ChromaSampling::kGrey;
  const int n = grey ? 1 : 3, w = img.width, h = img.height, pt = options.point_transform;
  const size_t plane = static_cast<size_t>(w) * h;

  // Grey from an RGB image: kroiRGBToY_JPEG_8u_C3C1R.
  std::vector<uint8_t> luma;
  if (grey && img.channels == 3) {
    luma.resize(plane);
    kroiRGBToY_JPEG_8u_C3C1R(img.pixels.data(), static_cast<int>(img.row_bytes()), luma.data(), w,
                             {w, h});
  }
  const uint8_t* samples = luma.empty() ? img.pixels.data() : luma.data();
  const int stride = luma.empty() ? img.channels : 1;

  // Pass 1: differences of every component, and their symbol counts.
  std::vector<Kro16s> diffs(plane * n), rows(2 * static_cast<size_t>(w));
  int counts[256] = {};
  for (int c = 0; c < n; ++c) {
    Kro16s* cur = rows.data();
    Kro16s* prev = rows.data() + w;
    for (int y = 0; y < h; ++y) {
      const uint8_t* src = samples + static_cast<size_t>(y) * w * stride + c;
      for (int x = 0; x < w; ++x) cur[x] = static_cast<Kro16s>(src[x * stride] >> pt);
      Kro16s* d = diffs.data() + (static_cast<size_t>(c) * h + y) * w;
      if (y == 0)
        kroiDiffPredFirstRow_JPEG_16s_C1(cur, d, w, kPrecision, pt);
      else
        kroiDiffPredRow_JPEG_16s_C1(cur, prev, d, w, options.predictor);
      for (int x = 0; x < w; ++x) kroiGetHuffmanStatisticsOne_JPEG_16s_C1(d + x, counts);
      std::swap(cur, prev);
    }
  }
  HuffmanTable table;
  if (!OptimalTable(counts, &table)) return Fail(error, "cannot build an optimal Huffman table");
  EncodeSpec spec = MakeEncodeSpec(table);
  if (!spec) return Fail(error, "the library refused the Huffman table");

  // Headers. Colour components carry the ids 'R', 'G', 'B', which tells decoders that
  // no colour transform was applied.
  JpegCoefficients frame;
  frame.width = w;
  frame.height = h;
  frame.components.resize(n);
  for (int c = 0; c < n; ++c) frame.components[c].id = grey ? 1 : "RGB"[c];
  std::vector<int> comps(n), tables(n, 0);
  for (int c = 0; c < n; ++c) comps[c] = c;
  JpegWriter wr;
  wr.Marker(kSOI);
  if (grey) wr.Jfif();
  wr.Sof(kSOF3, frame, kPrecision);
  wr.Dht(0, 0, table);
  wr.Sos(frame, comps, tables, options.predictor, 0, 0, pt);

  // Pass 2: the differences, interleaved sample by sample. The one-difference encoder
  // does not report a full buffer, so each row reserves its worst case first (a 16-bit
  // code and 15 extra bits, every byte stuffed: 8 bytes).
  EncodeState state = MakeEncodeState();
  for (int y = 0; y < h; ++y) {
    if (!wr.Reserve(static_cast<size_t>(w) * n * 8 + 16))
      return Fail(error, "the JPEG file would exceed 2 GB");
    for (int x = 0; x < w; ++x) {
      for (int c = 0; c < n; ++c) {
        const Kro16s* d = diffs.data() + (static_cast<size_t>(c) * h + y) * w + x;
        kroiEncodeHuffmanOne_JPEG_16s1u_C1(d, wr.data(), wr.capacity(), wr.length(), spec.get(),
                                           state.get(), 0);
      }
    }
  }
  kroiEncodeHuffmanOne_JPEG_16s1u_C1(nullptr, wr.data(), wr.capacity(), wr.length(), nullptr,
                                     state.get(), 1);
  wr.Marker(kEOI);
  *out = wr.Take();
  return true;
}

bool DecodeLosslessScan(const uint8_t* data, int size, int* pos, int* marker,
                        const LosslessScan& scan, std::string* error) {
  const int n = static_cast<int>(scan.tables.size()), w = scan.width, pt = scan.point_transform;
  std::vector<Kro16s> diffs(static_cast<size_t>(n) * w), rows(2 * static_cast<size_t>(n) * w);
  DecodeState state = MakeDecodeState();
  for (int y = 0; y < scan.height; ++y) {
    for (int x = 0; x < w; ++x) {
      for (int k = 0; k < n; ++k) {
        const KroStatus st = kroiDecodeHuffmanOne_JPEG_1u16s_C1(
            data, size, pos, &diffs[static_cast<size_t>(k) * w + x], marker, scan.tables[k],
            state.get());
        if (st != kroStatusOk) return Fail(error, EntropyError(st));
      }
    }
    for (int k = 0; k < n; ++k) {
      Kro16s* cur = rows.data() + (static_cast<size_t>(2 * k) + (y & 1)) * w;
      const Kro16s* prev = rows.data() + (static_cast<size_t>(2 * k) + ((y + 1) & 1)) * w;
      const Kro16s* d = diffs.data() + static_cast<size_t>(k) * w;
      if (y == 0)
        kroiReconstructPredFirstRow_JPEG_16s_C1(d, cur, w, kPrecision, pt);
      else
        kroiReconstructPredRow_JPEG_16s_C1(d, prev, cur, w, scan.predictor);
      // Samples are defined modulo 2^16; a corrupt stream may leave the 8-bit range.
      uint8_t* out = scan.planes[k] + static_cast<size_t>(y) * w;
      for (int x = 0; x < w; ++x)
        out[x] = static_cast<uint8_t>(std::clamp(cur[x] * (1 << pt), 0, 255));
    }
  }
  return true;
}

}  // namespace krojcodec
