/* SPDX-License-Identifier: BSD-3-Clause */
/* The public header must compile cleanly on its own, as C99 and as C++. */
#include "kroj.h"

int kroj_header_check(void) {
  KroiSize size = {1, 1};
  KroStatus st = kroStatusOk;
  return size.width + (int)st;
}
