// SPDX-License-Identifier: BSD-3-Clause
// krojcodec: command-line JPEG and JPEG 2000 codec built on libkrojmx.
//
//   krojcodec demo [--out DIR]
//   krojcodec encode IN.{ppm,pgm,png} OUT.{jpg,j2k,jp2} [options]
//   krojcodec decode IN.{jpg,j2k,jp2} OUT.{ppm,pgm,png} [--fast-upsampling]
#include <errno.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include <chrono>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "codec/image_io.h"
#include "codec/j2k_codec.h"
#include "codec/jpeg_codec.h"
#include "kroj.h"

#ifndef KROJ_DEMO_IMAGE
#define KROJ_DEMO_IMAGE ""
#endif

namespace {

using namespace krojcodec;

const char kUsage[] =
    "usage:\n"
    "  krojcodec demo [--out DIR] [--threads N]\n"
    "      encode the built-in image in every mode, decode it again, print a table\n"
    "      and leave the files in DIR (default out/)\n"
    "  krojcodec encode IN.ppm|pgm|png OUT.jpg|j2k|jp2 [options]\n"
    "      JPEG:      --quality Q (1-100, default 90)  --subsampling 444|422|420|grey\n"
    "                 --optimize  --restart N (MCUs)  --progressive  --planes\n"
    "                 --lossless [--predictor P (1-7)] [--pt T (0-7)]\n"
    "      JPEG 2000: --lossless-j2k (default) | --bpp R [--layers L]   --levels N\n"
    "  krojcodec decode IN.jpg|j2k|jp2 OUT.ppm|pgm|png [--fast-upsampling]\n";

// Exit status 2: the command line was wrong.
int Usage(const std::string& message) {
  if (message.empty())
    fputs(kUsage, stderr);
  else
    fprintf(stderr, "krojcodec: %s (krojcodec help lists the commands)\n", message.c_str());
  return 2;
}

// Exit status 1: the work failed.
int Error(const std::string& message) {
  fprintf(stderr, "krojcodec: %s\n", message.c_str());
  return 1;
}

// Whole-number option value; false if it is not a number in [lo, hi].
bool ParseInt(const char* s, int lo, int hi, int* value) {
  char* end = nullptr;
  errno = 0;
  const long v = strtol(s, &end, 10);
  if (errno || end == s || *end || v < lo || v > hi) return false;
  *value = static_cast<int>(v);
  return true;
}

bool ParseDouble(const char* s, double lo, double hi, double* value) {
  char* end = nullptr;
  const double v = strtod(s, &end);
  if (end == s || *end || !(v >= lo && v <= hi)) return false;
  *value = v;
  return true;
}

bool IsJ2kPath(const std::string& ext) { return ext == "j2k" || ext == "j2c" || ext == "jp2"; }
bool IsJpegPath(const std::string& ext) { return ext == "jpg" || ext == "jpeg" || ext == "jfif"; }

// By content: JPEG starts with SOI, a JPEG 2000 code-stream with SOC SIZ, a JP2 file
// with its signature box.
enum class Format { kJpeg, kJ2k, kUnknown };
Format Sniff(const std::vector<uint8_t>& b) {
  if (b.size() >= 2 && b[0] == 0xFF && b[1] == 0xD8) return Format::kJpeg;
  if (b.size() >= 2 && b[0] == 0xFF && b[1] == 0x4F) return Format::kJ2k;
  static const uint8_t kJp2[] = {0, 0, 0, 12, 'j', 'P', ' ', ' '};
  if (b.size() >= 8 && memcmp(b.data(), kJp2, 8) == 0) return Format::kJ2k;
  return Format::kUnknown;
}

bool Decode(const std::vector<uint8_t>& bytes, const JpegDecodeOptions& options, Image* img,
            std::string* error) {
  switch (Sniff(bytes)) {
    case Format::kJpeg:
      return DecodeJpeg(bytes.data(), bytes.size(), img, error, options);
    case Format::kJ2k:
      return DecodeJ2k(bytes.data(), bytes.size(), img, error);
    default:
      *error = "the input is neither a JPEG nor a JPEG 2000 file";
      return false;
  }
}

// A grey image written as .ppm gets its sample repeated in R, G and B.
Image ForOutput(const Image& img, const std::string& path) {
  if (img.channels != 1 || Extension(path) != "ppm") return img;
  Image rgb;
  rgb.width = img.width;
  rgb.height = img.height;
  rgb.channels = 3;
  rgb.pixels.resize(img.pixels.size() * 3);
  for (size_t i = 0; i < img.pixels.size(); ++i)
    rgb.pixels[3 * i] = rgb.pixels[3 * i + 1] = rgb.pixels[3 * i + 2] = img.pixels[i];
  return rgb;
}

// ---------------------------------------------------------------------------
// encode / decode

int Encode(int argc, char** argv) {
  if (argc < 2) return Usage("encode needs an input and an output file");
  const std::string in = argv[0], out = argv[1];
  const std::string ext = Extension(out);
  JpegEncodeOptions jpeg;
  J2kEncodeOptions j2k;
  j2k.jp2 = ext == "jp2";
  bool jpeg_option = false, j2k_option = false;
  for (int i = 2; i < argc; ++i) {
    const std::string opt = argv[i];
    const char* val = i + 1 < argc ? argv[i + 1] : nullptr;
    auto need = [&](bool ok) { return ok ? 0 : Usage("bad or missing value for " + opt); };
    int bad = 0;
    if (opt == "--quality") {
      bad = need(val && ParseInt(val, 1, 100, &jpeg.quality)), ++i, jpeg_option = true;
    } else if (opt == "--subsampling") {
      const std::string s = val ? val : "";
      if (s == "444")
        jpeg.sampling = ChromaSampling::k444;
      else if (s == "422")
        jpeg.sampling = ChromaSampling::k422;
      else if (s == "420")
        jpeg.sampling = ChromaSampling::k420;
      else if (s == "grey" || s == "gray")
        jpeg.sampling = ChromaSampling::kGrey;
      else
        bad = Usage("--subsampling takes 444, 422, 420 or grey");
      ++i, jpeg_option = true;
    } else if (opt == "--optimize" || opt == "--optimise") {
      jpeg.optimize = jpeg_option = true;
    } else if (opt == "--restart") {
      bad = need(val && ParseInt(val, 0, 65535, &jpeg.restart_interval)), ++i, jpeg_option = true;
    } else if (opt == "--progressive") {
      jpeg.progressive = jpeg_option = true;
    } else if (opt == "--planes") {
      jpeg.colour_planes = jpeg_option = true;
    } else if (opt == "--lossless") {
      jpeg.lossless = jpeg_option = true;
    } else if (opt == "--predictor") {
      bad = need(val && ParseInt(val, 1, 7, &jpeg.predictor)), ++i, jpeg_option = true;
    } else if (opt == "--pt") {
      bad = need(val && ParseInt(val, 0, 7, &jpeg.point_transform)), ++i, jpeg_option = true;
    } else if (opt == "--lossless-j2k") {
      j2k.lossless = j2k_option = true;
    } else if (opt == "--bpp") {
      bad = need(val && ParseDouble(val, 0.001, 64.0, &j2k.bits_per_pixel)), ++i, j2k_option = true;
      j2k.lossless = false;
    } else if (opt == "--layers") {
      bad = need(val && ParseInt(val, 1, 32, &j2k.layers)), ++i, j2k_option = true;
    } else if (opt == "--levels") {
      bad = need(val && ParseInt(val, 0, 32, &j2k.levels)), ++i, j2k_option = true;
    } else {
      bad = Usage("unknown option " + opt);
    }
    if (bad) return bad;
  }
  const bool to_jpeg = IsJpegPath(ext), to_j2k = IsJ2kPath(ext);
  if (!to_jpeg && !to_j2k) return Usage("the output must end in .jpg, .j2k or .jp2");
  if (to_jpeg && j2k_option) return Usage("JPEG 2000 options given for a JPEG output");
  if (to_j2k && jpeg_option) return Usage("JPEG options given for a JPEG 2000 output");

  std::string error;
  Image img;
  if (!ReadImage(in, &img, &error)) return Error(error);
  std::vector<uint8_t> bytes;
  const bool ok =
      to_jpeg ? EncodeJpeg(img, jpeg, &bytes, &error) : EncodeJ2k(img, j2k, &bytes, &error);
  if (!ok) return Error("cannot encode " + in + ": " + error);
  if (!WriteFileBytes(out, bytes.data(), bytes.size(), &error)) return Error(error);
  printf("%s: %d x %d, %zu bytes, %.3f bits per pixel\n", out.c_str(), img.width, img.height,
         bytes.size(), 8.0 * bytes.size() / (double(img.width) * img.height));
  return 0;
}

int DecodeCommand(int argc, char** argv) {
  if (argc < 2) return Usage("decode needs an input and an output file");
  const std::string in = argv[0], out = argv[1];
  JpegDecodeOptions options;
  for (int i = 2; i < argc; ++i) {
    if (strcmp(argv[i], "--fast-upsampling") == 0)
      options.fast_upsampling = true;
    else
      return Usage(std::string("unknown option ") + argv[i]);
  }
  const std::string ext = Extension(out);
  if (ext != "ppm" && ext != "pgm" && ext != "pnm" && ext != "png")
    return Usage("the output must end in .ppm, .pgm or .png");
  std::string error;
  std::vector<uint8_t> bytes;
  if (!ReadFileBytes(in, &bytes, &error)) return Error(error);
  Image img;
  if (!Decode(bytes, options, &img, &error)) return Error("cannot decode " + in + ": " + error);
  if (!WriteImage(out, ForOutput(img, out), &error)) return Error(error);
  printf("%s: %d x %d, %s\n", out.c_str(), img.width, img.height,
         img.channels == 1 ? "grey" : "RGB");
  return 0;
}

// ---------------------------------------------------------------------------
// demo

// A 512 x 512 test picture for when the built-in image is missing: smooth gradients,
// a sharp-edged disc and fine stripes.
Image GeneratedImage() {
  Image img;
  img.width = img.height = 512;
  img.channels = 3;
  img.pixels.resize(512 * 512 * 3);
  for (int y = 0; y < 512; ++y) {
    for (int x = 0; x < 512; ++x) {
      uint8_t* p = img.row(y) + 3 * x;
      const int dx = x - 300, dy = y - 200;
      const bool disc = dx * dx + dy * dy < 120 * 120;
      const bool stripes = y > 400 && (x / 3) % 2 == 0;
      p[0] = static_cast<uint8_t>(disc ? 230 : x / 2);
      p[1] = static_cast<uint8_t>(stripes ? 255 : y / 2);
      p[2] = static_cast<uint8_t>(disc ? 40 : 128 + 100 * sin(x * 0.05) * cos(y * 0.03));
    }
  }
  return img;
}

Image Luminance(const Image& img) {
  if (img.channels == 1) return img;
  Image grey;
  grey.width = img.width;
  grey.height = img.height;
  grey.channels = 1;
  grey.pixels.resize(static_cast<size_t>(img.width) * img.height);
  kroiRGBToY_JPEG_8u_C3C1R(img.pixels.data(), static_cast<int>(img.row_bytes()), grey.pixels.data(),
                           img.width, {img.width, img.height});
  return grey;
}

// Seconds per call: the fastest of several runs (at least 3, up to 20 or 0.5 s).
double TimeIt(const std::function<bool()>& fn) {
  using Clock = std::chrono::steady_clock;
  double best = 1e30, total = 0;
  for (int run = 0; run < 20 && (run < 3 || total < 0.5); ++run) {
    const auto t0 = Clock::now();
    if (!fn()) return -1;
    const double s = std::chrono::duration<double>(Clock::now() - t0).count();
    best = std::min(best, s);
    total += s;
  }
  return best;
}

struct DemoMode {
  const char* name;
  const char* file;
  std::function<bool(const Image&, std::vector<uint8_t>*, std::string*)> encode;
  bool grey = false;  // compared against the luminance of the original
};

std::vector<DemoMode> DemoModes() {
  auto jpeg = [](JpegEncodeOptions o) {
    return [o](const Image& img, std::vector<uint8_t>* out, std::string* err) {
      return EncodeJpeg(img, o, out, err);
    };
  };
  auto j2k = [](J2kEncodeOptions o) {
    return [o](const Image& img, std::vector<uint8_t>* out, std::string* err) {
      return EncodeJ2k(img, o, out, err);
    };
  };
  JpegEncodeOptions base;
  base.quality = 90;
  JpegEncodeOptions s444 = base, opt = base, prog = base, lossless = base, grey = base;
  s444.sampling = ChromaSampling::k444;
  opt.optimize = true;
  prog.progressive = true;
  lossless.lossless = true;
  grey.sampling = ChromaSampling::kGrey;
  J2kEncodeOptions j2k_lossless, j2k_lossy;
  j2k_lossy.lossless = false;
  j2k_lossy.bits_per_pixel = 1.0;
  return {
      {"JPEG baseline 4:2:0 q90", "baseline_420_q90.jpg", jpeg(base)},
      {"JPEG baseline 4:4:4 q90", "baseline_444_q90.jpg", jpeg(s444)},
      {"JPEG optimised 4:2:0 q90", "optimised_420_q90.jpg", jpeg(opt)},
      {"JPEG progressive 4:2:0 q90", "progressive_420_q90.jpg", jpeg(prog)},
      {"JPEG lossless (predictor 1)", "lossless.jpg", jpeg(lossless)},
      {"JPEG greyscale q90", "grey_q90.jpg", jpeg(grey), true},
      {"JPEG 2000 lossless (5/3)", "lossless.j2k", j2k(j2k_lossless)},
      {"JPEG 2000 lossy 1 bpp (9/7)", "lossy_1bpp.j2k", j2k(j2k_lossy)},
  };
}

int Demo(int argc, char** argv) {
  std::string dir = "out";
  for (int i = 0; i < argc; ++i) {
    if (strcmp(argv[i], "--out") == 0 && i + 1 < argc)
      dir = argv[++i];
    else if (strcmp(argv[i], "--threads") == 0 && i + 1 < argc &&
             ParseInt(argv[i + 1], 1, 256, &threads_omp_of_n_kro))
      ++i;
    else
      return Usage(std::string("unknown demo option ") + argv[i]);
  }
  if (mkdir(dir.c_str(), 0755) != 0 && errno != EEXIST)
    return Error("cannot create " + dir + ": " + strerror(errno));

  std::string error;
  Image original;
  std::string source = KROJ_DEMO_IMAGE;
  if (source.empty() || !ReadImage(source, &original, &error)) {
    original = GeneratedImage();
    source = "a generated 512 x 512 test picture";
  }
  const Image grey_original = Luminance(original);
  const double mpix = original.width * double(original.height) / 1e6;
  printf("libkrojmx %s demo: %s (%d x %d)\n\n", krojGetLibVersion()->version, source.c_str(),
         original.width, original.height);
  printf("%-30s %-24s %9s %7s %9s %9s %9s\n", "mode", "file", "bytes", "bpp", "PSNR dB", "enc MP/s",
         "dec MP/s");

  std::vector<std::string> notes;
  int failures = 0;
  for (const DemoMode& mode : DemoModes()) {
    fflush(stdout);
    std::vector<uint8_t> bytes;
    Image decoded;
    const double t_enc = TimeIt([&] { return mode.encode(original, &bytes, &error); });
    if (t_enc < 0) {
      printf("%-30s %-24s %9s %7s %9s %9s %9s\n", mode.name, "-", "n/a", "n/a", "n/a", "n/a",
             "n/a");
      notes.push_back(std::string(mode.name) + ": " + error);
      continue;
    }
    const std::string path = dir + "/" + mode.file;
    if (!WriteFileBytes(path, bytes.data(), bytes.size(), &error)) return Error(error);
    const double t_dec =
        TimeIt([&] { return Decode(bytes, JpegDecodeOptions(), &decoded, &error); });
    const double bpp = 8.0 * bytes.size() / (original.width * double(original.height));
    if (t_dec < 0) {
      printf("%-30s %-24s %9zu %7.3f %9s %9.1f %9s\n", mode.name, mode.file, bytes.size(), bpp,
             "n/a", mpix / t_enc, "n/a");
      notes.push_back(std::string(mode.name) + ": decoding failed: " + error);
      ++failures;
      continue;
    }
    const double psnr = Psnr(mode.grey ? grey_original : original, decoded);
    char psnr_text[16];
    if (std::isinf(psnr))
      snprintf(psnr_text, sizeof(psnr_text), "exact");
    else
      snprintf(psnr_text, sizeof(psnr_text), "%.2f", psnr);
    printf("%-30s %-24s %9zu %7.3f %9s %9.1f %9.1f\n", mode.name, mode.file, bytes.size(), bpp,
           psnr_text, mpix / t_enc, mpix / t_dec);
    const std::string view = path + (PngAvailable()          ? ".png"
                                     : decoded.channels == 1 ? ".pgm"
                                                             : ".ppm");
    if (!WriteImage(view, decoded, &error)) return Error(error);
  }
  printf(
      "\nPSNR against the original (the greyscale row against its luminance); \"exact\" means\n"
      "identical pixels. Speeds are the best of several runs on this machine.\n"
      "Files, and each decoded image beside them, are in %s/.\n",
      dir.c_str());
  for (const std::string& n : notes) printf("n/a: %s\n", n.c_str());
  return failures ? 1 : 0;
}

int Run(int argc, char** argv) {
  if (argc < 2) return Usage("");
  const std::string cmd = argv[1];
  if (cmd == "demo") return Demo(argc - 2, argv + 2);
  if (cmd == "encode") return Encode(argc - 2, argv + 2);
  if (cmd == "decode") return DecodeCommand(argc - 2, argv + 2);
  if (cmd == "--help" || cmd == "-h" || cmd == "help") {
    fputs(kUsage, stdout);
    return 0;
  }
  return Usage("unknown command " + cmd);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& e) {  // out of memory on a huge image, mostly
    fprintf(stderr, "krojcodec: %s\n", e.what());
    return 1;
  }
}
