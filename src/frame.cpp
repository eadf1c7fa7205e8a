// SPDX-License-Identifier: BSD-3-Clause
// Library frame: the version record, the aligned allocator and the thread count
// read by the row-parallel functions.
#include <stdlib.h>
#include <unistd.h>

#include "kro_base.h"

namespace kro {
namespace {

constexpr KroLibraryVersion kVersion = {
    5, 1, 133, 250, {'m', 'x', 0, 0}, "libkrojmx.so.5.1", "5.1.1", "Jun 17 2006",
};

// len elements of elem_size bytes, 32-byte aligned. The size is computed in 64 bits
// with 40 bytes of slack: up to 31 to reach the alignment and 8 below the returned
// address for the raw pointer that krosFree hands back to free().
void* AlignedMalloc(int len, uint64_t elem_size) {
  if (len < 1) return nullptr;
  const uint64_t bytes = static_cast<uint64_t>(len) * elem_size + 40;
  if (bytes > SIZE_MAX) return nullptr;
  void* raw = malloc(static_cast<size_t>(bytes));
  if (raw == nullptr) return nullptr;
  const uintptr_t aligned = (reinterpret_cast<uintptr_t>(raw) + 39) & ~static_cast<uintptr_t>(31);
  reinterpret_cast<void**>(aligned)[-1] = raw;
  return reinterpret_cast<void*>(aligned);
}

int ProcessorCount() {
  const long n = sysconf(_SC_NPROCESSORS_ONLN);
  return n < 1 ? 1 : static_cast<int>(n);
}

}  // namespace
}  // namespace kro

extern "C" {
KRO_API int threads_omp_of_n_kro = kro::ProcessorCount();
}

KRO_EXPORT const KroLibraryVersion* krojGetLibVersion(void) { return &kro::kVersion; }

KRO_EXPORT Kro8u* krosMalloc_8u(int len) { return static_cast<Kro8u*>(kro::AlignedMalloc(len, 1)); }
KRO_EXPORT Kro8s* krosMalloc_8s(int len) { return static_cast<Kro8s*>(kro::AlignedMalloc(len, 1)); }
KRO_EXPORT Kro16u* krosMalloc_16u(int len) { return static_cast<Kro16u*>(kro::AlignedMalloc(len, 2)); }
KRO_EXPORT Kro16s* krosMalloc_16s(int len) { return static_cast<Kro16s*>(kro::AlignedMalloc(len, 2)); }
KRO_EXPORT Kro8sc* krosMalloc_8sc(int len) { return static_cast<Kro8sc*>(kro::AlignedMalloc(len, 2)); }
KRO_EXPORT Kro32u* krosMalloc_32u(int len) { return static_cast<Kro32u*>(kro::AlignedMalloc(len, 4)); }
KRO_EXPORT Kro32s* krosMalloc_32s(int len) { return static_cast<Kro32s*>(kro::AlignedMalloc(len, 4)); }
KRO_EXPORT Kro32f* krosMalloc_32f(int len) { return static_cast<Kro32f*>(kro::AlignedMalloc(len, 4)); }
KRO_EXPORT Kro16sc* krosMalloc_16sc(int len) { return static_cast<Kro16sc*>(kro::AlignedMalloc(len, 4)); }
KRO_EXPORT Kro64s* krosMalloc_64s(int len) { return static_cast<Kro64s*>(kro::AlignedMalloc(len, 8)); }
KRO_EXPORT Kro64f* krosMalloc_64f(int len) { return static_cast<Kro64f*>(kro::AlignedMalloc(len, 8)); }
KRO_EXPORT Kro32sc* krosMalloc_32sc(int len) { return static_cast<Kro32sc*>(kro::AlignedMalloc(len, 8)); }
KRO_EXPORT Kro32fc* krosMalloc_32fc(int len) { return static_cast<Kro32fc*>(kro::AlignedMalloc(len, 8)); }
KRO_EXPORT Kro64sc* krosMalloc_64sc(int len) { return static_cast<Kro64sc*>(kro::AlignedMalloc(len, 16)); }
KRO_EXPORT Kro64fc* krosMalloc_64fc(int len) { return static_cast<Kro64fc*>(kro::AlignedMalloc(len, 16)); }

KRO_EXPORT void krosFree(void* ptr) {
  if (ptr == nullptr) return;
  free(static_cast<void**>(ptr)[-1]);
}
