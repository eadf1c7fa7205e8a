// SPDX-License-Identifier: BSD-3-Clause
// Version record and aligned allocator.
#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include "kroj.h"

namespace {

TEST(Frame, VersionRecordIsConstantAndComplete) {
  const KroLibraryVersion* v = krojGetLibVersion();
  ASSERT_NE(v, nullptr);
  EXPECT_EQ(v, krojGetLibVersion());
  EXPECT_EQ(v->major, 5);
  EXPECT_EQ(v->minor, 1);
  EXPECT_EQ(v->majorBuild, 133);
  EXPECT_EQ(v->build, 250);
  EXPECT_EQ(memcmp(v->targetCpu, "mx\0\0", 4), 0);
  EXPECT_STREQ(v->name, "libkrojmx.so.5.1");
  EXPECT_STREQ(v->version, "5.1.1");
  EXPECT_STREQ(v->buildDate, "Jun 17 2006");
}

using MallocFn = void* (*)(int);
struct Allocator {
  const char* name;
  MallocFn fn;
  int elem;
};

#define KROJ_ALLOC(f, e) {#f, reinterpret_cast<MallocFn>(&f), e}
const Allocator kAllocators[] = {
    KROJ_ALLOC(krosMalloc_8u, 1),    KROJ_ALLOC(krosMalloc_8s, 1),   KROJ_ALLOC(krosMalloc_16u, 2),
    KROJ_ALLOC(krosMalloc_16s, 2),   KROJ_ALLOC(krosMalloc_8sc, 2),  KROJ_ALLOC(krosMalloc_32u, 4),
    KROJ_ALLOC(krosMalloc_32s, 4),   KROJ_ALLOC(krosMalloc_32f, 4),  KROJ_ALLOC(krosMalloc_16sc, 4),
    KROJ_ALLOC(krosMalloc_64s, 8),   KROJ_ALLOC(krosMalloc_64f, 8),  KROJ_ALLOC(krosMalloc_32sc, 8),
    KROJ_ALLOC(krosMalloc_32fc, 8),  KROJ_ALLOC(krosMalloc_64sc, 16), KROJ_ALLOC(krosMalloc_64fc, 16),
};
#undef KROJ_ALLOC

TEST(Frame, AllocatorsAlignAndKeepTheRawPointerBelow) {
  for (const Allocator& a : kAllocators) {
    SCOPED_TRACE(a.name);
    EXPECT_EQ(a.fn(0), nullptr);
    EXPECT_EQ(a.fn(-1), nullptr);
    EXPECT_EQ(a.fn(INT32_MIN), nullptr);
    for (int len : {1, 2, 3, 31, 32, 33, 1000, 65537}) {
      auto* p = static_cast<uint8_t*>(a.fn(len));
      ASSERT_NE(p, nullptr);
      EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 32, 0u);
      uintptr_t raw;
      memcpy(&raw, p - 8, sizeof raw);
      const uintptr_t gap = reinterpret_cast<uintptr_t>(p) - raw;
      EXPECT_GE(gap, 8u);
      EXPECT_LE(gap, 39u);
      // The whole block is usable (ASan reports an overrun here).
      memset(p, 0x5A, static_cast<size_t>(len) * a.elem);
      krosFree(p);
    }
  }
  krosFree(nullptr);
}

TEST(Frame, LargeRequestsUse64BitArithmetic) {
  // 2^31 - 1 elements of 16 bytes is ~32 GiB: the size must not wrap to a small
  // block. The system may or may not grant it; either way no small block comes back.
  void* p = krosMalloc_64fc(INT32_MAX);
  if (p != nullptr) {
    static_cast<uint8_t*>(p)[16ull * INT32_MAX - 1] = 1;
    krosFree(p);
  }
}

}  // namespace
