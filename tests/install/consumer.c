/* SPDX-License-Identifier: BSD-3-Clause */
/* A tiny consumer of the installed library: version record and allocator. */
#include <stdio.h>
#include <string.h>

#include <kroj.h>

int main(void) {
  const KroLibraryVersion* v = krojGetLibVersion();
  Kro8u* p = krosMalloc_8u(100);
  int ok = v != NULL && v->major == 5 && strcmp(v->version, "5.1.1") == 0 && p != NULL &&
           ((unsigned long)p % 32) == 0;
  krosFree(p);
  printf("%s %s\n", v->name, ok ? "ok" : "FAILED");
  return ok ? 0 : 1;
}
