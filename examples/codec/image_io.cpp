// SPDX-License-Identifier: BSD-3-Clause
// PGM/PPM and PNG reading and writing, raw file access and PSNR for the example codecs.
#include "codec/image_io.h"

#include <ctype.h>
#include <errno.h>
#include <math.h>
#include <stdio.h>
#include <string.h>

#include <limits>

#ifdef KROJ_HAVE_PNG
#include <png.h>
#endif

namespace krojcodec {

namespace {

// Images above this many pixels are refused on input (about 16k x 16k).
constexpr int64_t kMaxPixels = int64_t{1} << 28;

bool Fail(std::string* error, const std::string& message) {
  *error = message;
  return false;
}

bool Allocate(Image* img, int width, int height, int channels, std::string* error) {
  if (width < 1 || height < 1) return Fail(error, "image has no pixels");
  if (int64_t{width} * height > kMaxPixels) return Fail(error, "image is too large");
  img->width = width;
  img->height = height;
  img->channels = channels;
  img->pixels.assign(img->row_bytes() * static_cast<size_t>(height), 0);
  return true;
}

// Header fields of a PNM file: whitespace-separated decimal numbers, '#' comments
// running to the end of the line.
class PnmHeader {
 public:
  PnmHeader(const uint8_t* data, size_t size) : data_(data), size_(size) {}

  bool Number(int* value) {
    SkipSpaceAndComments();
    if (pos_ >= size_ || !isdigit(data_[pos_])) return false;
    int64_t v = 0;
    while (pos_ < size_ && isdigit(data_[pos_])) {
      v = v * 10 + (data_[pos_++] - '0');
      if (v > std::numeric_limits<int>::max()) return false;
    }
    *value = static_cast<int>(v);
    return true;
  }
  // After maxval exactly one whitespace byte separates the header from the samples.
  bool EndOfHeader() {
    if (pos_ >= size_ || !isspace(data_[pos_])) return false;
    ++pos_;
    return true;
  }
  size_t pos() const { return pos_; }
  void Skip(size_t n) { pos_ += n; }

 private:
  void SkipSpaceAndComments() {
    while (pos_ < size_) {
      if (data_[pos_] == '#') {
        while (pos_ < size_ && data_[pos_] != '\n' && data_[pos_] != '\r') ++pos_;
      } else if (isspace(data_[pos_])) {
        ++pos_;
      } else {
        break;
      }
    }
  }

  const uint8_t* data_;
  size_t size_;
  size_t pos_ = 0;
};

}  // namespace

bool ReadFileBytes(const std::string& path, std::vector<uint8_t>* out, std::string* error) {
  FILE* f = fopen(path.c_str(), "rb");
  if (!f) return Fail(error, "cannot open " + path + ": " + strerror(errno));
  out->clear();
  uint8_t chunk[1 << 16];
  size_t n;
  while ((n = fread(chunk, 1, sizeof(chunk), f)) > 0) out->insert(out->end(), chunk, chunk + n);
  const bool ok = !ferror(f);
  fclose(f);
  if (!ok) return Fail(error, "cannot read " + path);
  return true;
}

bool WriteFileBytes(const std::string& path, const uint8_t* data, size_t size, std::string* error) {
  FILE* f = fopen(path.c_str(), "wb");
  if (!f) return Fail(error, "cannot create " + path + ": " + strerror(errno));
  const bool ok = fwrite(data, 1, size, f) == size;
  if (fclose(f) != 0 || !ok) return Fail(error, "cannot write " + path);
  return true;
}

bool DecodePnm(const uint8_t* data, size_t size, Image* img, std::string* error) {
  if (size < 2 || data[0] != 'P' || (data[1] != '5' && data[1] != '6'))
    return Fail(error, "not a binary PGM (P5) or PPM (P6) file");
  const int channels = data[1] == '6' ? 3 : 1;
  PnmHeader header(data, size);
  header.Skip(2);
  int width, height, maxval;
  if (!header.Number(&width) || !header.Number(&height) || !header.Number(&maxval) ||
      !header.EndOfHeader())
    return Fail(error, "malformed PGM/PPM header");
  if (maxval != 255) return Fail(error, "only PGM/PPM files with maxval 255 are supported");
  if (!Allocate(img, width, height, channels, error)) return false;
  if (size - header.pos() < img->pixels.size()) return Fail(error, "PGM/PPM file is truncated");
  memcpy(img->pixels.data(), data + header.pos(), img->pixels.size());
  return true;
}

std::vector<uint8_t> EncodePnm(const Image& img) {
  char header[64];
  const int n = snprintf(header, sizeof(header), "P%c\n%d %d\n255\n", img.channels == 3 ? '6' : '5',
                         img.width, img.height);
  std::vector<uint8_t> out(header, header + n);
  out.insert(out.end(), img.pixels.begin(), img.pixels.end());
  return out;
}

#ifdef KROJ_HAVE_PNG
bool PngAvailable() { return true; }

bool DecodePng(const uint8_t* data, size_t size, Image* img, std::string* error) {
  png_image png;
  memset(&png, 0, sizeof(png));
  png.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&png, data, size))
    return Fail(error, std::string("cannot read PNG: ") + png.message);
  const bool colour = (png.format & PNG_FORMAT_FLAG_COLOR) != 0;
  png.format = colour ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
  const png_uint_32 kMaxSide = static_cast<png_uint_32>(std::numeric_limits<int>::max());
  if (png.width > kMaxSide || png.height > kMaxSide) {
    png_image_free(&png);
    return Fail(error, "image is too large");
  }
  if (!Allocate(img, static_cast<int>(png.width), static_cast<int>(png.height), colour ? 3 : 1,
                error)) {
    png_image_free(&png);
    return false;
  }
  if (!png_image_finish_read(&png, nullptr, img->pixels.data(),
                             static_cast<png_int_32>(img->row_bytes()), nullptr))
    return Fail(error, std::string("cannot decode PNG: ") + png.message);
  return true;
}

bool EncodePng(const Image& img, std::vector<uint8_t>* out, std::string* error) {
  png_image png;
  memset(&png, 0, sizeof(png));
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(img.width);
  png.height = static_cast<png_uint_32>(img.height);
  png.format = img.channels == 3 ? PNG_FORMAT_RGB : PNG_FORMAT_GRAY;
  png_alloc_size_t size = 0;
  const png_int_32 stride = static_cast<png_int_32>(img.row_bytes());
  if (!png_image_write_to_memory(&png, nullptr, &size, 0, img.pixels.data(), stride, nullptr))
    return Fail(error, std::string("cannot encode PNG: ") + png.message);
  out->resize(size);
  if (!png_image_write_to_memory(&png, out->data(), &size, 0, img.pixels.data(), stride, nullptr))
    return Fail(error, std::string("cannot encode PNG: ") + png.message);
  out->resize(size);
  return true;
}
#else
bool PngAvailable() { return false; }

bool DecodePng(const uint8_t*, size_t, Image*, std::string* error) {
  return Fail(error, "PNG support was not built (libpng not found)");
}

bool EncodePng(const Image&, std::vector<uint8_t>*, std::string* error) {
  return Fail(error, "PNG support was not built (libpng not found)");
}
#endif

std::string Extension(const std::string& path) {
  const size_t dot = path.find_last_of('.');
  const size_t slash = path.find_last_of('/');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
  std::string ext = path.substr(dot + 1);
  for (char& c : ext) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
  return ext;
}

bool ReadImage(const std::string& path, Image* img, std::string* error) {
  std::vector<uint8_t> bytes;
  if (!ReadFileBytes(path, &bytes, error)) return false;
  const std::string ext = Extension(path);
  bool ok;
  if (ext == "png")
    ok = DecodePng(bytes.data(), bytes.size(), img, error);
  else if (ext == "pgm" || ext == "ppm" || ext == "pnm")
    ok = DecodePnm(bytes.data(), bytes.size(), img, error);
  else
    return Fail(error, path + ": unknown image type (use .ppm, .pgm or .png)");
  if (!ok) *error = path + ": " + *error;
  return ok;
}

bool WriteImage(const std::string& path, const Image& img, std::string* error) {
  const std::string ext = Extension(path);
  std::vector<uint8_t> bytes;
  if (ext == "png") {
    if (!EncodePng(img, &bytes, error)) return false;
  } else if (ext == "pgm" || ext == "ppm" || ext == "pnm") {
    if ((ext == "pgm" && img.channels != 1) || (ext == "ppm" && img.channels != 3))
      return Fail(error,
                  path + ": a " +
                      (img.channels == 1 ? "grey image needs .pgm" : "colour image needs .ppm"));
    bytes = EncodePnm(img);
  } else {
    return Fail(error, path + ": unknown image type (use .ppm, .pgm or .png)");
  }
  return WriteFileBytes(path, bytes.data(), bytes.size(), error);
}

double Psnr(const Image& a, const Image& b) {
  if (a.width != b.width || a.height != b.height || a.channels != b.channels || a.pixels.empty())
    return -1.0;
  uint64_t sum = 0;
  for (size_t i = 0; i < a.pixels.size(); ++i) {
    const int d = a.pixels[i] - b.pixels[i];
    sum += static_cast<uint64_t>(d * d);
  }
  if (sum == 0) return std::numeric_limits<double>::infinity();
  const double mse = static_cast<double>(sum) / static_cast<double>(a.pixels.size());
  return 10.0 * log10(255.0 * 255.0 / mse);
}

}  // namespace krojcodec
