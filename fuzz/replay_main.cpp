// SPDX-License-Identifier: BSD-3-Clause
// Replays fuzz inputs without libFuzzer: every file named, and every file in every
// directory named, goes once through the target. Built by default so that the normal
// (sanitizer) test run replays the committed corpora.
#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  std::vector<fs::path> files;
  for (int i = 1; i < argc; ++i) {
    if (fs::is_directory(argv[i])) {
      for (const auto& e : fs::directory_iterator(argv[i]))
        if (e.is_regular_file()) files.push_back(e.path());
    } else {
      files.emplace_back(argv[i]);
    }
  }
  std::sort(files.begin(), files.end());
  for (const fs::path& f : files) {
    std::ifstream in(f, std::ios::binary);
    if (!in) {
      fprintf(stderr, "cannot read %s\n", f.c_str());
      return 1;
    }
    const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
    fprintf(stderr, "%s\n", f.filename().c_str());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  }
  printf("replayed %zu inputs\n", files.size());
  return files.empty() ? 1 : 0;
}
