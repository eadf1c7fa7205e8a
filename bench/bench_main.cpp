// SPDX-License-Identifier: BSD-3-Clause
// Entry point of kroj_bench. Runs single-threaded by default (threads_omp_of_n_kro = 1)
// so that figures compare one core with one core; --kroj_threads=N overrides.
// After the run, prints the ratio of every benchmark to its peer: a benchmark named
// BM_<family>_<x>/<args> is compared with BM_peer_<family>_<x>/<args> when present.
#include <benchmark/benchmark.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <map>
#include <string>
#include <vector>

#include "kroj.h"

namespace {

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      if (r.run_type != Run::RT_Iteration || r.error_occurred) continue;
      times_[r.benchmark_name()] = r.GetAdjustedRealTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }
  void Finalize() override {
    ConsoleReporter::Finalize();
    bool header = false;
    for (const auto& [name, t] : times_) {
      if (name.rfind("BM_peer_", 0) == 0) continue;
      const std::string peer = "BM_peer_" + name.substr(3);
      auto it = times_.find(peer);
      if (it == times_.end() || t <= 0) continue;
      if (!header) {
        printf("\n%-60s %10s\n", "benchmark (against BM_peer_...)", "speed-up");
        header = true;
      }
      printf("%-60s %9.2fx\n", name.c_str(), it->second / t);
    }
  }

 private:
  std::map<std::string, double> times_;
};

}  // namespace

int main(int argc, char** argv) {
  threads_omp_of_n_kro = 1;
  std::vector<char*> args;
  for (int i = 0; i < argc; ++i) {
    if (strncmp(argv[i], "--kroj_threads=", 15) == 0) {
      threads_omp_of_n_kro = atoi(argv[i] + 15);
    } else {
      args.push_back(argv[i]);
    }
  }
  int n = static_cast<int>(args.size());
  benchmark::Initialize(&n, args.data());
  if (benchmark::ReportUnrecognizedArguments(n, args.data())) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
