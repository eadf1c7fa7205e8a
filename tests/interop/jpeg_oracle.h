// SPDX-License-Identifier: BSD-3-Clause
// Test-side JPEG plumbing for the oracle tests: libjpeg-turbo writes files from the
// test images and reads their quantised coefficients; a small marker parser (SOF,
// DHT, SOS, DRI, RSTn) finds the tables and the entropy-coded data of every scan and
// walks the blocks of a scan in coding order.
#ifndef KROJ_TESTS_INTEROP_JPEG_ORACLE_H_
#define KROJ_TESTS_INTEROP_JPEG_ORACLE_H_

#include <setjmp.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include <jpeglib.h>

namespace kro_oracle {

inline std::vector<uint8_t> ReadFile(const std::string& path) {
  std::ifstream f(path, std::ios::binary);
  return std::vector<uint8_t>(std::istreambuf_iterator<char>(f), {});
}

struct Image {
  int width = 0, height = 0, comps = 0;
  std::vector<uint8_t> pixels;
};

// Binary PGM (P5) or PPM (P6) with maxval 255.
inline Image ReadPnm(const std::string& path) {
  std::vector<uint8_t> f = ReadFile(path);
  Image img;
  size_t p = 0;
  auto token = [&]() {
    while (p < f.size() && (isspace(f[p]) || f[p] == '#')) {
      if (f[p] == '#')
        while (p < f.size() && f[p] != '\n') ++p;
      else
        ++p;
    }
    std::string t;
    while (p < f.size() && !isspace(f[p])) t.push_back(static_cast<char>(f[p++]));
    return t;
  };
  const std::string magic = token();
  img.comps = magic == "P6" ? 3 : 1;
  img.width = std::stoi(token());
  img.height = std::stoi(token());
  token();  // maxval
  ++p;
  img.pixels.assign(f.begin() + static_cast<long>(p), f.end());
  img.pixels.resize(static_cast<size_t>(img.width) * img.height * img.comps);
  return img;
}

struct ErrorMgr {
  jpeg_error_mgr pub;
  jmp_buf jump;
};
inline void ErrorExit(j_common_ptr cinfo) { longjmp(reinterpret_cast<ErrorMgr*>(cinfo->err)->jump, 1); }
inline void Silent(j_common_ptr, int) {}

struct WriteOptions {
  int quality = 75;
  int h0 = 1, v0 = 1;  // sampling of the first component; the others are 1x1
  bool optimize = false;
  int restart_mcus = 0;
  bool progressive = false;
  std::vector<jpeg_scan_info> script;  // custom scan script (progressive)
};

// Compresses an 8-bit image with libjpeg-turbo into memory.
inline std::vector<uint8_t> WriteJpeg(const Image& img, const WriteOptions& o) {
  jpeg_compress_struct c;
  ErrorMgr err;
  c.err = jpeg_std_error(&err.pub);
  err.pub.error_exit = ErrorExit;
  unsigned char* mem = nullptr;
  unsigned long size = 0;
  if (setjmp(err.jump)) {
    jpeg_destroy_compress(&c);
    free(mem);
    return {};
  }
  jpeg_create_compress(&c);
  jpeg_mem_dest(&c, &mem, &size);
  c.image_width = static_cast<JDIMENSION>(img.width);
  c.image_height = static_cast<JDIMENSION>(img.height);
  c.input_components = img.comps;
  c.in_color_space = img.comps == 3 ? JCS_RGB : JCS_GRAYSCALE;
  jpeg_set_defaults(&c);
  jpeg_set_quality(&c, o.quality, TRUE);
  c.comp_info[0].h_samp_factor = o.h0;
  c.comp_info[0].v_samp_factor = o.v0;
  c.optimize_coding = o.optimize ? TRUE : FALSE;
  c.restart_interval = static_cast<unsigned>(o.restart_mcus);
  if (o.progressive) jpeg_simple_progression(&c);
  if (!o.script.empty()) {
    c.scan_info = o.script.data();
    c.num_scans = static_cast<int>(o.script.size());
  }
  jpeg_start_compress(&c, TRUE);
  const int stride = img.width * img.comps;
  while (c.next_scanline < c.image_height) {
    JSAMPROW row = const_cast<JSAMPROW>(&img.pixels[static_cast<size_t>(c.next_scanline) * stride]);
    jpeg_write_scanlines(&c, &row, 1);
  }
  jpeg_finish_compress(&c);
  jpeg_destroy_compress(&c);
  std::vector<uint8_t> out(mem, mem + size);
  free(mem);
  return out;
}

// Quantised coefficients of every component as libjpeg-turbo reads them: blocks of
// 64 in natural order, rows of blocks padded to whole MCUs as in its arrays.
struct Coefficients {
  struct Comp {
    int blocks_w = 0, blocks_h = 0;  // allocated (padded) size in blocks
    std::vector<int16_t> data;
    int16_t* block(int bx, int by) { return &data[(static_cast<size_t>(by) * blocks_w + bx) * 64]; }
  };
  std::vector<Comp> comps;
  bool ok = false;
};

inline Coefficients ReadCoefficients(const std::vector<uint8_t>& file) {
  Coefficients out;
  jpeg_decompress_struct d;
  ErrorMgr err;
  d.err = jpeg_std_error(&err.pub);
  err.pub.error_exit = ErrorExit;
  err.pub.emit_message = Silent;
  if (setjmp(err.jump)) {
    jpeg_destroy_decompress(&d);
    out.ok = false;
    return out;
  }
  jpeg_create_decompress(&d);
  jpeg_mem_src(&d, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&d, TRUE);
  jvirt_barray_ptr* arrays = jpeg_read_coefficients(&d);
  for (int ci = 0; ci < d.num_components; ++ci) {
    jpeg_component_info* comp = &d.comp_info[ci];
    Coefficients::Comp c;
    c.blocks_w = static_cast<int>((comp->width_in_blocks + comp->h_samp_factor - 1) / comp->h_samp_factor *
                                  comp->h_samp_factor);
    c.blocks_h = static_cast<int>((comp->height_in_blocks + comp->v_samp_factor - 1) / comp->v_samp_factor *
                                  comp->v_samp_factor);
    c.data.resize(static_cast<size_t>(c.blocks_w) * c.blocks_h * 64);
    for (int by = 0; by < c.blocks_h; ++by) {
      JBLOCKARRAY rows = (*d.mem->access_virt_barray)(reinterpret_cast<j_common_ptr>(&d), arrays[ci],
                                                      static_cast<JDIMENSION>(by), 1, FALSE);
      memcpy(c.block(0, by), rows[0], sizeof(JBLOCK) * c.blocks_w);
    }
    out.comps.push_back(std::move(c));
  }
  jpeg_finish_decompress(&d);
  jpeg_destroy_decompress(&d);
  out.ok = true;
  return out;
}

struct HuffTable {
  std::vector<uint8_t> bits, vals;  // empty: not defined
};

struct Component {
  int id = 0, h = 1, v = 1;
};

struct Scan {
  std::vector<int> comps;  // frame component indices
  std::vector<int> dc_tbl, ac_tbl;
  int ss = 0, se = 63, ah = 0, al = 0;
  size_t begin = 0, end = 0;  // entropy-coded data, restart markers included
  HuffTable dc[4], ac[4];     // tables in force for this scan
  int restart_interval = 0;
};

struct Parsed {
  bool ok = false;
  bool progressive = false;
  int width = 0, height = 0;
  std::vector<Component> comps;
  std::vector<Scan> scans;
  int max_h = 1, max_v = 1;
};

inline int BeU16(const std::vector<uint8_t>& f, size_t p) { return f[p] << 8 | f[p + 1]; }

inline Parsed Parse(const std::vector<uint8_t>& f) {
  Parsed j;
  HuffTable dc[4], ac[4];
  int dri = 0;
  size_t p = 2;
  if (f.size() < 4 || f[0] != 0xFF || f[1] != 0xD8) return j;
  while (p + 4 <= f.size()) {
    if (f[p] != 0xFF) return j;
    const int m = f[p + 1];
    if (m == 0xFF) {
      ++p;
      continue;
    }
    if (m == 0xD9) break;
    const int len = BeU16(f, p + 2);
    const size_t seg = p + 4, next = p + 2 + static_cast<size_t>(len);
    if (next > f.size()) return j;
    if (m == 0xC0 || m == 0xC1 || m == 0xC2) {
      j.progressive = m == 0xC2;
      j.height = BeU16(f, seg + 1);
      j.width = BeU16(f, seg + 3);
      const int n = f[seg + 5];
      for (int i = 0; i < n; ++i) {
        Component c{f[seg + 6 + 3 * i], f[seg + 7 + 3 * i] >> 4, f[seg + 7 + 3 * i] & 15};
        j.max_h = std::max(j.max_h, c.h);
        j.max_v = std::max(j.max_v, c.v);
        j.comps.push_back(c);
      }
    } else if (m == 0xC4) {
      for (size_t q = seg; q < next;) {
        const int tc = f[q] >> 4, th = f[q] & 3;
        HuffTable t;
        t.bits.assign(f.begin() + static_cast<long>(q) + 1, f.begin() + static_cast<long>(q) + 17);
        int total = 0;
        for (uint8_t b : t.bits) total += b;
        t.vals.assign(f.begin() + static_cast<long>(q) + 17, f.begin() + static_cast<long>(q) + 17 + total);
        (tc == 0 ? dc : ac)[th] = t;
        q += 17 + static_cast<size_t>(total);
      }
    } else if (m == 0xDD) {
      dri = BeU16(f, seg);
    } else if (m == 0xDA) {
      Scan s;
      const int n = f[seg];
      for (int i = 0; i < n; ++i) {
        const int id = f[seg + 1 + 2 * i];
        for (size_t c = 0; c < j.comps.size(); ++c)
          if (j.comps[c].id == id) s.comps.push_back(static_cast<int>(c));
        s.dc_tbl.push_back(f[seg + 2 + 2 * i] >> 4);
        s.ac_tbl.push_back(f[seg + 2 + 2 * i] & 15);
      }
      const size_t t = seg + 1 + 2 * static_cast<size_t>(n);
      s.ss = f[t];
      s.se = f[t + 1];
      s.ah = f[t + 2] >> 4;
      s.al = f[t + 2] & 15;
      for (int i = 0; i < 4; ++i) {
        s.dc[i] = dc[i];
        s.ac[i] = ac[i];
      }
      s.restart_interval = dri;
      s.begin = next;
      size_t q = next;
      // The scan runs to the first marker other than RSTn (fill bytes skipped).
      while (q + 1 < f.size()) {
        if (f[q] == 0xFF && f[q + 1] != 0 && f[q + 1] != 0xFF && !(f[q + 1] >= 0xD0 && f[q + 1] <= 0xD7)) break;
        ++q;
      }
      s.end = q;
      j.scans.push_back(s);
      p = q;
      continue;
    }
    p = next;
  }
  j.ok = !j.comps.empty() && !j.scans.empty();
  return j;
}

// A block position in coding order: component (frame index), block column and row
// in that component's padded array, and whether a restart precedes it.
struct BlockRef {
  int comp, bx, by;
  bool restart_before;
  int scan_comp;  // index of the component within the scan
};

// Blocks of a scan in coding order (T.81 A.2): interleaved scans go MCU by MCU over
// the padded image; a one-component scan covers that component's own blocks.
inline std::vector<BlockRef> ScanBlocks(const Parsed& j, const Scan& s) {
  std::vector<BlockRef> out;
  const int mcu_w = 8 * j.max_h, mcu_h = 8 * j.max_v;
  int mcu_count = 0;
  auto restart = [&]() {
    const bool r = s.restart_interval > 0 && mcu_count > 0 && mcu_count % s.restart_interval == 0;
    ++mcu_count;
    return r;
  };
  if (s.comps.size() == 1) {
    const Component& c = j.comps[s.comps[0]];
    const int cw = (j.width * c.h + j.max_h - 1) / j.max_h, ch = (j.height * c.v + j.max_v - 1) / j.max_v;
    for (int by = 0; by < (ch + 7) / 8; ++by)
      for (int bx = 0; bx < (cw + 7) / 8; ++bx) out.push_back({s.comps[0], bx, by, restart(), 0});
    return out;
  }
  for (int my = 0; my < (j.height + mcu_h - 1) / mcu_h; ++my) {
    for (int mx = 0; mx < (j.width + mcu_w - 1) / mcu_w; ++mx) {
      bool r = restart();
      for (size_t k = 0; k < s.comps.size(); ++k) {
        const Component& c = j.comps[s.comps[k]];
        for (int v = 0; v < c.v; ++v)
          for (int h = 0; h < c.h; ++h) {
            out.push_back({s.comps[k], mx * c.h + h, my * c.v + v, r, static_cast<int>(k)});
            r = false;
          }
      }
    }
  }
  return out;
}

}  // namespace kro_oracle

#endif  // KROJ_TESTS_INTEROP_JPEG_ORACLE_H_
