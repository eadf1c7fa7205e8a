// SPDX-License-Identifier: BSD-3-Clause
// The four progressive decoders over a run of scans that refine the same blocks, with
// tables, bands and point transforms taken from the input (out-of-range ones too).
// Each call must end in a documented status with the read position inside its scan;
// DC scans may change only coefficient 0 of a block, AC scans never change it.
//
// Input: per scan a kind, Al, Ss, Se, the lists of its table, a length and that many
// bytes of entropy-coded data; up to four scans.
#include <string.h>

#include "fuzz_util.h"

namespace {

using namespace kro_fuzz;

constexpr int kBlocks = 16;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  std::vector<std::vector<int16_t>> blocks(kBlocks, std::vector<int16_t>(64, 0));
  Kro16s last_dc = 0;
  for (int scan = 0; scan < 4 && in.remaining() > 0; ++scan) {
    const int kind = in.Range(0, 3);  // DC first, DC refine, AC first, AC refine
    const int al = in.Range(-1, 14), ss = in.Range(0, 64), se = in.Range(0, 64);
    const HuffLists lists = ReadLists(in);
    DecodeTable table;
    const bool table_ok = table.Build(lists) == kroStatusOk;
    const std::vector<uint8_t> src = in.Bytes(in.Range(0, 2048));
    const int len = static_cast<int>(src.size());
    const bool bad_args = al < 0 || al > 13 || (kind >= 2 && (ss < 1 || ss > 63 || se < ss || se > 63));
    DecodeState state;
    int pos = 0, marker = 0;
    if (kind == 0) last_dc = 0;
    for (int b = 0; b < kBlocks; ++b) {
      const std::vector<int16_t> before = blocks[b];
      Kro16s* blk = blocks[b].data();
      // An empty source must be refused for its length; a table the builder refused is
      // passed as null, for the decoder to refuse.
      static const Kro8u kNothing = 0;
      const Kro8u* p = len > 0 ? src.data() : &kNothing;
      const KroiDecodeHuffmanSpec* tbl = table_ok ? table.get() : nullptr;
      KroStatus st = kroStatusOk;
      switch (kind) {
        case 0:
          st = kroiDecodeHuffman8x8_DCFirst_JPEG_1u16s_C1(p, len, &pos, blk, &last_dc, &marker, al, tbl, state.get());
          break;
        case 1:
          st = kroiDecodeHuffman8x8_DCRefine_JPEG_1u16s_C1(p, len, &pos, blk, &marker, al, state.get());
          break;
        case 2:
          st = kroiDecodeHuffman8x8_ACFirst_JPEG_1u16s_C1(p, len, &pos, blk, &marker, ss, se, al, tbl, state.get());
          break;
        default:
          st = kroiDecodeHuffman8x8_ACRefine_JPEG_1u16s_C1(p, len, &pos, blk, &marker, ss, se, al, tbl, state.get());
          break;
      }
      if (len < 1) {
        FUZZ_CHECK_STATUS(st == kroStatusBadSize, st);
      } else if (bad_args) {
        FUZZ_CHECK_STATUS(st == kroStatusBadArgument, st);
      } else if (!table_ok && kind != 1) {
        FUZZ_CHECK_STATUS(st == kroStatusNullPointer, st);
      } else {
        // A run past zig-zag position 71 is refused by the AC kinds.
        FUZZ_CHECK_STATUS(st == kroStatusOk || st == kroStatusJPEGOutOfBuffer || st == kroStatusJPEGDataError ||
                              (kind >= 2 && st == kroStatusError),
                          st);
      }
      FUZZ_CHECK(pos >= 0 && pos <= len);
      if (st != kroStatusOk) {
        FUZZ_CHECK(st < 0);
        // Refused arguments leave the block alone; data errors keep what was decoded.
        if (st == kroStatusBadSize || st == kroStatusBadArgument || st == kroStatusNullPointer)
          FUZZ_CHECK(blocks[b] == before);
        break;
      }
      if (kind <= 1) {
        FUZZ_CHECK(memcmp(blk + 1, before.data() + 1, 63 * 2) == 0);
      } else {
        FUZZ_CHECK(blk[0] == before[0]);
      }
    }
  }
  return 0;
}
