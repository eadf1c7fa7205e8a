// SPDX-License-Identifier: BSD-3-Clause
// Reading and writing images and files for the example codecs: binary PGM/PPM
// (maxval 255), PNG when the build found libpng, raw files, and PSNR.
#ifndef KROJCODEC_IMAGE_IO_H_
#define KROJCODEC_IMAGE_IO_H_

#include <stddef.h>
#include <stdint.h>

#include <string>
#include <vector>

#include "codec/image.h"

namespace krojcodec {

// Whole files as bytes. On failure return false and set *error.
bool ReadFileBytes(const std::string& path, std::vector<uint8_t>* out, std::string* error);
bool WriteFileBytes(const std::string& path, const uint8_t* data, size_t size, std::string* error);

// Binary PGM (P5, grey) and PPM (P6, RGB) with maxval 255; comments in the header
// are skipped. Larger maxvals (16-bit samples) are refused.
bool DecodePnm(const uint8_t* data, size_t size, Image* img, std::string* error);
std::vector<uint8_t> EncodePnm(const Image& img);

// True when PNG support was compiled in.
bool PngAvailable();
// 8-bit grey, grey+alpha, RGB, RGBA or palette PNG in; alpha is dropped. 16-bit
// PNGs are reduced to 8 bits.
bool DecodePng(const uint8_t* data, size_t size, Image* img, std::string* error);
bool EncodePng(const Image& img, std::vector<uint8_t>* out, std::string* error);

// By file name extension: .pgm/.ppm/.pnm, .png.
bool ReadImage(const std::string& path, Image* img, std::string* error);
bool WriteImage(const std::string& path, const Image& img, std::string* error);

// Peak signal-to-noise ratio in dB over all samples (peak 255); infinity for equal
// images, a negative value when the sizes or channel counts differ.
double Psnr(const Image& a, const Image& b);

// Lower-case extension of a path without the dot ("" if none).
std::string Extension(const std::string& path);

}  // namespace krojcodec

#endif  // KROJCODEC_IMAGE_IO_H_
