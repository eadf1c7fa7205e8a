// SPDX-License-Identifier: BSD-3-Clause
// OpenJPEG streams over memory, for the interop tests and the benchmarks: a stream
// reads a caller's bytes, or writes into a vector that grows as it is written and
// skipped over.
#pragma once

#include <string.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include <openjpeg.h>

namespace kro_peer {

struct MemStream {
  const uint8_t* data = nullptr;
  size_t size = 0;
  size_t pos = 0;
  std::vector<uint8_t>* out = nullptr;
};

inline OPJ_SIZE_T MemRead(void* buf, OPJ_SIZE_T n, void* user) {
  auto* m = static_cast<MemStream*>(user);
  if (m->pos >= m->size) return static_cast<OPJ_SIZE_T>(-1);
  n = std::min<OPJ_SIZE_T>(n, m->size - m->pos);
  memcpy(buf, m->data + m->pos, n);
  m->pos += n;
  return n;
}
inline OPJ_SIZE_T MemWrite(void* buf, OPJ_SIZE_T n, void* user) {
  auto* m = static_cast<MemStream*>(user);
  if (m->out->size() < m->pos + n) m->out->resize(m->pos + n);
  memcpy(m->out->data() + m->pos, buf, n);
  m->pos += n;
  return n;
}
inline OPJ_OFF_T MemSkip(OPJ_OFF_T n, void* user) {
  auto* m = static_cast<MemStream*>(user);
  m->pos += static_cast<size_t>(n);
  if (m->out && m->out->size() < m->pos) m->out->resize(m->pos);
  return n;
}
inline OPJ_BOOL MemSeek(OPJ_OFF_T n, void* user) {
  static_cast<MemStream*>(user)->pos = static_cast<size_t>(n);
  return OPJ_TRUE;
}

// A stream over m: reading m->data (input) or writing to m->out. Destroy it with
// opj_stream_destroy before m goes away.
inline opj_stream_t* OpenStream(MemStream* m, bool input) {
  opj_stream_t* s = opj_stream_create(1 << 20, input ? OPJ_TRUE : OPJ_FALSE);
  opj_stream_set_user_data(s, m, nullptr);
  if (input) {
    opj_stream_set_user_data_length(s, m->size);
    opj_stream_set_read_function(s, MemRead);
  } else {
    opj_stream_set_write_function(s, MemWrite);
  }
  opj_stream_set_skip_function(s, MemSkip);
  opj_stream_set_seek_function(s, MemSeek);
  return s;
}

}  // namespace kro_peer
