// SPDX-License-Identifier: BSD-3-Clause
// Lossless coding: differences decoded one by one with a table from the input, then
// rows rebuilt with the predictors. Each decode must end in a documented status with
// the position inside the source; the decoded differences encoded again with the same
// table decode back to themselves, and predicting the rebuilt rows gives the
// differences back (all modulo 2^16).
//
// Input: width, rows, predictor, precision, point transform, the lists, then the data.
#include <string.h>

#include "fuzz_util.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kro_fuzz;
  Input in(data, size);
  const int width = in.Range(1, 64), rows = in.Range(1, 8), predictor = in.Range(1, 7);
  const int precision = in.Range(2, 16), pt = in.Range(0, precision - 1);
  const HuffLists lists = ReadLists(in);
  DecodeTable table;
  if (table.Build(lists) != kroStatusOk) return 0;
  std::vector<uint8_t> src = in.Rest();
  src.reserve(1);  // a real pointer even when empty
  const int len = static_cast<int>(src.size());

  std::vector<int16_t> diffs;
  DecodeState state;
  int pos = 0, marker = 0;
  while (diffs.size() < static_cast<size_t>(width * rows)) {
    Kro16s d = 0x5A5A;
    const int before = pos;
    const KroStatus st = kroiDecodeHuffmanOne_JPEG_1u16s_C1(src.data(), len, &pos, &d, &marker, table.get(), state.get());
    FUZZ_CHECK_STATUS(st == kroStatusOk || st == kroStatusJPEGOutOfBuffer || st == kroStatusJPEGDataError, st);
    FUZZ_CHECK(pos >= before && pos <= len);
    if (st != kroStatusOk) {
      FUZZ_CHECK(d == 0x5A5A);  // a failed decode writes nothing
      break;
    }
    diffs.push_back(d);
  }
  const int n = static_cast<int>(diffs.size());

  // Encode again when every category has a code (category 16 stands for 0x8000).
  EncodeTable etable;
  bool encodable = n > 0 && etable.Build(lists) == kroStatusOk;
  for (int i = 0; i < n && encodable; ++i) encodable = lists.Has(Category(diffs[i] == -32768 ? 32768 : diffs[i]));
  if (encodable) {
    std::vector<uint8_t> coded(static_cast<size_t>(n) * 8 + 8);
    EncodeState es;
    int wpos = 0;
    for (int i = 0; i <= n; ++i) {
      FUZZ_CHECK(kroiEncodeHuffmanOne_JPEG_16s1u_C1(i < n ? &diffs[i] : nullptr, coded.data(),
                                                    static_cast<int>(coded.size()), &wpos, etable.get(),
                                                    es.get(), i == n) == kroStatusOk);
    }
    DecodeState ds;
    int rpos = 0;
    marker = 0;
    for (int i = 0; i < n; ++i) {
      Kro16s d = 0;
      FUZZ_CHECK(kroiDecodeHuffmanOne_JPEG_1u16s_C1(coded.data(), wpos, &rpos, &d, &marker, table.get(), ds.get()) ==
                 kroStatusOk);
      FUZZ_CHECK(d == diffs[i]);
    }
  }

  // Rebuild whole rows and predict them again.
  const int full = n / width;
  std::vector<int16_t> samples(static_cast<size_t>(full) * width), again(static_cast<size_t>(width));
  for (int r = 0; r < full; ++r) {
    const Kro16s* d = &diffs[static_cast<size_t>(r) * width];
    Kro16s* row = &samples[static_cast<size_t>(r) * width];
    const Kro16s* prev = r > 0 ? row - width : nullptr;
    if (r == 0) {
      FUZZ_CHECK(kroiReconstructPredFirstRow_JPEG_16s_C1(d, row, width, precision, pt) == kroStatusOk);
      FUZZ_CHECK(kroiDiffPredFirstRow_JPEG_16s_C1(row, again.data(), width, precision, pt) == kroStatusOk);
    } else {
      FUZZ_CHECK(kroiReconstructPredRow_JPEG_16s_C1(d, prev, row, width, predictor) == kroStatusOk);
      FUZZ_CHECK(kroiDiffPredRow_JPEG_16s_C1(row, prev, again.data(), width, predictor) == kroStatusOk);
    }
    FUZZ_CHECK(memcmp(again.data(), d, static_cast<size_t>(width) * 2) == 0);
  }
  return 0;
}
