// SPDX-License-Identifier: BSD-3-Clause
// krojcodec: command-line JPEG and JPEG 2000 codec built on libkrojmx.
#include <stdio.h>

int main(int argc, char** argv) {
  fprintf(stderr, "usage: krojcodec demo | encode ... | decode ...\n");
  return argc > 1 ? 1 : 2;
}
