// SPDX-License-Identifier: BSD-3-Clause
// The one-call code-block decoder with the block size, sub-band, bit-planes, pass count,
// style flags and segment split taken from the input. The call must end in 0 or the
// corrupt-block status, write nothing outside the block, leave no magnitude bit at or
// above the number of bit-planes, and report an error bit-plane only on corruption.
//
// Input: width, height, sub-band, bit-planes, passes, flags, segment count and lengths,
// then the coded data.
#include <string.h>

#include "fuzz_util.h"

namespace {

constexpr int kFlagBits[] = {1, 2, 4, 8, 16, 65536, 131072, 262144, 524288, 1048576};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kro_fuzz;
  Input in(data, size);
  const int w = in.Range(1, 64), h = in.Range(1, 64);
  const int subband = in.Range(0, 4), sf_bits = in.Range(-1, 33), passes = in.Range(-1, 110);
  const uint16_t flag_choice = in.U16();
  int flags = 0;
  for (int i = 0; i < 10; ++i)
    if (flag_choice >> i & 1) flags |= kFlagBits[i];
  const int segments = in.Range(0, 16);
  std::vector<int> lengths(static_cast<size_t>(segments) + 1);
  for (int& l : lengths) l = in.Range(0, 600);
  std::vector<uint8_t> src = in.Rest();
  // The segments must lie inside the data: the last one takes what is left.
  size_t used = 0;
  for (int s = 0; s < segments; ++s) {
    lengths[s] = static_cast<int>(std::min<size_t>(static_cast<size_t>(lengths[s]), src.size() - used));
    if (s == segments - 1) lengths[s] = static_cast<int>(src.size() - used);
    used += static_cast<size_t>(lengths[s]);
  }
  if (src.empty()) src.push_back(0);

  // Rows padded by 3 words, one guard row below; old contents stay under flag 131072.
  const int step_words = w + 3;
  std::vector<int32_t> block(static_cast<size_t>(step_words) * (h + 1), 0x5A5A5A5A);
  const bool keep = (flags & 131072) != 0;
  for (int y = 0; y < h && keep; ++y) memset(&block[static_cast<size_t>(y) * step_words], 0, static_cast<size_t>(w) * 4);
  int state_bytes = 0;
  FUZZ_CHECK(kroiDecodeGetBufSize_JPEG2K({w, h}, &state_bytes) == kroStatusOk);
  std::vector<uint8_t> state(static_cast<size_t>(state_bytes));
  int error_plane = -1000;
  const KroStatus st = kroiDecodeCodeBlock_JPEG2K_1u32s_C1R(
      src.data(), block.data(), step_words * 4, {w, h}, subband, sf_bits, passes, lengths.data(), segments, flags,
      &error_plane, reinterpret_cast<KroiDecodeCBProgrState_JPEG2K*>(state.data()));
  FUZZ_CHECK_STATUS(st == kroStatusOk || st == kroStatusJPEG2KCorruptCodeBlock, st);
  FUZZ_CHECK((st == kroStatusOk) == (error_plane == -1000));
  for (int y = 0; y <= h; ++y) {
    for (int x = 0; x < step_words; ++x) {
      const int32_t v = block[static_cast<size_t>(y) * step_words + x];
      if (y == h || x >= w) {
        FUZZ_CHECK(v == 0x5A5A5A5A);
      } else if (sf_bits >= 0 && sf_bits <= 31) {
        FUZZ_CHECK((static_cast<uint32_t>(v) & 0x7FFFFFFFu) >> sf_bits == 0);
      }
    }
  }
  return 0;
}
