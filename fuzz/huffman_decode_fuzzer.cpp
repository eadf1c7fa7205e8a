// SPDX-License-Identifier: BSD-3-Clause
// Baseline block decoding, buffered and Direct, with DC and AC tables taken from the
// input. Each call must end in a documented status with the read position inside the
// source. Blocks that decode are encoded again with the same tables (buffered and
// Direct writers must give the same bytes) and decoded again: the coefficients must
// come back.
//
// Input: a flag (Direct), the DC lists, the AC lists, then the entropy-coded data.
#include <string.h>

#include "fuzz_util.h"

namespace {

using namespace kro_fuzz;

constexpr int kMaxBlocks = 64;

struct Tables {
  DecodeTable dc, ac;
  EncodeTable edc, eac;
  bool encodable = false;
};

// Decodes up to kMaxBlocks blocks; returns those that decoded with status 0.
std::vector<int16_t> Decode(const std::vector<uint8_t>& src, bool direct, Tables& t) {
  std::vector<int16_t> blocks;
  DecodeState state;
  int pos = 0, bit_pos = 0, marker = 0, valid_bits = 0;
  Kro32u acc = 0;
  Kro16s last_dc = 0;
  const int len = static_cast<int>(src.size());
  // The Direct reader meets a marker while filling its accumulator, up to 32 bits ahead
  // of the block it decodes: the blocks still held in those bits decode after it.
  for (int b = 0; b < kMaxBlocks && (marker == 0 || (direct && valid_bits > 0)); ++b) {
    std::vector<int16_t> block(64, 0x5A5A);  // exactly one block: anything beyond it is caught
    KroStatus st;
    if (direct) {
      st = kroiDecodeHuffman8x8_Direct_JPEG_1u16s_C1(src.data(), &bit_pos, block.data(), &last_dc,
                                                     &marker, &acc, &valid_bits, t.dc.get(), t.ac.get());
      FUZZ_CHECK_STATUS(st == kroStatusOk || st == kroStatusError || st == kroStatusBadArgument ||
                 st == kroStatusJPEGOutOfBuffer || st == kroStatusJPEGDataError, st);
      FUZZ_CHECK(bit_pos >= 0 && bit_pos / 8 <= len);
    } else {
      const int before = pos;
      st = kroiDecodeHuffman8x8_JPEG_1u16s_C1(src.data(), len, &pos, block.data(), &last_dc, &marker,
                                              t.dc.get(), t.ac.get(), state.get());
      FUZZ_CHECK_STATUS(st == kroStatusOk || st == kroStatusError || st == kroStatusJPEGOutOfBuffer ||
                 st == kroStatusJPEGDataError, st);
      FUZZ_CHECK(pos >= before && pos <= len);
    }
    if (st != kroStatusOk) break;
    blocks.insert(blocks.end(), block.begin(), block.end());
  }
  return blocks;
}

// Encodes the blocks with both writers; false when a symbol has no code, or when a DC
// difference leaves what a decoder can take back (category 16 reads as category 0).
bool Encode(const std::vector<int16_t>& blocks, Tables& t, std::vector<uint8_t>* out) {
  const int n = static_cast<int>(blocks.size() / 64);
  for (int b = 0, last = 0; b < n; ++b) {
    if (Category(blocks[b * 64] - last) > 15) return false;
    last = blocks[b * 64];
  }
  const int cap = n * 600 + 16;  // 64 codes of 16 bits and 15 extra bits, each byte stuffed
  std::vector<uint8_t> buffered(cap), direct(cap, 0);
  EncodeState state;
  int pos = 0, bits = 0;
  Kro16s last_b = 0, last_d = 0;
  for (int b = 0; b < n; ++b) {
    const KroStatus st = kroiEncodeHuffman8x8_JPEG_16s1u_C1(&blocks[b * 64], buffered.data(), cap, &pos, &last_b,
                                                            t.edc.get(), t.eac.get(), state.get(), 0);
    if (st == kroStatusJPEGHuffTableError) return false;
    FUZZ_CHECK_STATUS(st == kroStatusOk, st);
    FUZZ_CHECK(kroiEncodeHuffman8x8_Direct_JPEG_16s1u_C1(&blocks[b * 64], direct.data(), &bits, &last_d,
                                                         t.edc.get(), t.eac.get()) == kroStatusOk);
  }
  FUZZ_CHECK(kroiEncodeHuffman8x8_JPEG_16s1u_C1(nullptr, buffered.data(), cap, &pos, nullptr, nullptr, nullptr,
                                                state.get(), 1) == kroStatusOk);
  // The Direct writer leaves the padding of the last byte to its caller.
  if (bits % 8 != 0) {
    direct[bits / 8] |= static_cast<uint8_t>(0xFF >> (bits % 8));
    bits += 8 - bits % 8;
    if (direct[bits / 8 - 1] == 0xFF) bits += 8;  // the stuffed 0x00 is already there
  }
  FUZZ_CHECK(bits / 8 == pos && memcmp(direct.data(), buffered.data(), static_cast<size_t>(pos)) == 0);
  out->assign(buffered.begin(), buffered.begin() + pos);
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input in(data, size);
  const bool direct = in.Flag();
  const HuffLists dc = ReadLists(in), ac = ReadLists(in);
  Tables t;
  if (t.dc.Build(dc) != kroStatusOk || t.ac.Build(ac) != kroStatusOk) return 0;
  t.encodable = t.edc.Build(dc) == kroStatusOk && t.eac.Build(ac) == kroStatusOk;
  std::vector<uint8_t> src = in.Rest();
  src.reserve(src.size() + 2);  // a real pointer even when empty
  // The Direct reader has no length: its source must end in a marker.
  if (direct) src.insert(src.end(), {0xFF, 0xD9});
  const std::vector<int16_t> blocks = Decode(src, direct, t);

  std::vector<uint8_t> coded;
  if (blocks.empty() || !t.encodable || !Encode(blocks, t, &coded)) return 0;
  for (bool d : {false, true}) {
    std::vector<uint8_t> again = coded;
    if (d) again.insert(again.end(), {0xFF, 0xD9});
    const std::vector<int16_t> back = Decode(again, d, t);
    FUZZ_CHECK(back.size() >= blocks.size());
    FUZZ_CHECK(memcmp(back.data(), blocks.data(), blocks.size() * 2) == 0);
  }
  return 0;
}
