// SPDX-License-Identifier: BSD-3-Clause
// JPEG (T.81) encoder and decoder built on libkrojmx. The library does every coding
// step (colour conversion, sampling, DCT, quantisation, Huffman coding); this layer
// writes and parses the markers, orders the blocks and pads the image edges.
//
// Supported: baseline and extended sequential DCT (8-bit, Huffman), progressive DCT
// (spectral selection and successive approximation), lossless (predictors 1..7, point
// transform), grey and three-component images, sampling 4:4:4, 4:2:2 and 4:2:0 (any
// factors 1..4 for the coefficients alone), restart intervals.
#ifndef KROJCODEC_JPEG_CODEC_H_
#define KROJCODEC_JPEG_CODEC_H_

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "codec/image.h"

namespace krojcodec {

enum class ChromaSampling {
  k444,  // full-resolution chroma
  k422,  // chroma halved horizontally
  k420,  // chroma halved horizontally and vertically
  kGrey  // luminance only (an RGB input is converted)
};

struct JpegEncodeOptions {
  int quality = 90;  // 1..100, scales the T.81 K.1/K.2 tables
  ChromaSampling sampling = ChromaSampling::k420;
  bool optimize = false;       // Huffman tables from the image's statistics
  int restart_interval = 0;    // MCUs between restart markers, 0 for none
  bool progressive = false;    // the usual ten-scan (six for grey) script
  bool colour_planes = false;  // colour and sampling by whole planes
                               // (rounded) instead of per MCU (truncated)
  bool lossless = false;       // T.81 H: no DCT, exact unless point_transform
  int predictor = 1;           // lossless predictor 1..7
  int point_transform = 0;     // lossless: low bits dropped, 0..7
};

// Quantised DCT coefficients of a frame, as they are coded in the file.
struct JpegComponent {
  int id = 0;
  int h = 1, v = 1;         // sampling factors
  int quant_table = 0;      // Tq
  int width_in_blocks = 0;  // blocks holding image samples
  int height_in_blocks = 0;
  int blocks_w = 0;  // allocated blocks: rounded up to whole MCUs
  int blocks_h = 0;
  std::vector<int16_t> coef;  // blocks_w * blocks_h blocks of 64, natural order

  int16_t* block(int bx, int by) {
    return coef.data() + (static_cast<size_t>(by) * blocks_w + bx) * 64;
  }
  const int16_t* block(int bx, int by) const {
    return coef.data() + (static_cast<size_t>(by) * blocks_w + bx) * 64;
  }
};

struct JpegCoefficients {
  int width = 0, height = 0;
  int max_h = 1, max_v = 1;
  bool progressive = false;
  bool ycbcr = true;           // three components in YCbCr (else RGB)
  uint16_t quant[4][64] = {};  // quantisation steps, natural order
  std::vector<JpegComponent> components;
};

// Encodes an 8-bit grey or RGB image. When coefficients is not null it receives the
// quantised coefficients written to the file (DCT modes only).
bool EncodeJpeg(const Image& img, const JpegEncodeOptions& options, std::vector<uint8_t>* out,
                std::string* error, JpegCoefficients* coefficients = nullptr);

struct JpegDecodeOptions {
  // Chroma by replication through the MCU functions (fast) instead of the triangle
  // filter over whole planes (smooth, as most decoders do).
  bool fast_upsampling = false;
};

// Decodes a JPEG file to 8-bit grey or RGB. Corrupt or unsupported files return false
// with a message in *error; *img may then hold part of the image.
bool DecodeJpeg(const uint8_t* data, size_t size, Image* img, std::string* error,
                const JpegDecodeOptions& options = JpegDecodeOptions());

// Reads the quantised coefficients of a DCT-based file without reconstructing pixels.
bool ReadJpegCoefficients(const uint8_t* data, size_t size, JpegCoefficients* coefficients,
                          std::string* error);

}  // namespace krojcodec

#endif  // KROJCODEC_JPEG_CODEC_H_
