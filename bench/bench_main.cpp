// SPDX-License-Identifier: BSD-3-Clause
// Entry point of kroj_bench. Runs single-threaded by default (threads_omp_of_n_kro = 1)
// so that figures compare one core with one core; --kroj_threads=N overrides.
// --kroj_target=<name> (AVX3, AVX2, SSE4, SSSE3, SCALAR, ...) restricts run-time
// dispatch to that SIMD target for the whole run; --kroj_list_targets prints the
// targets this machine can run. Both settings are written to the JSON context.
// After the run, prints the ratio of every benchmark to its peer: a benchmark named
// BM_<family>_<x>/<args> is compared with BM_peer_<family>_<x>/<args> when present,
// and <x>/.../threads:2 with <x>/.../threads:1.
#include <benchmark/benchmark.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <map>
#include <string>
#include <vector>

#include <hwy/targets.h>

#include "kroj.h"

namespace {

// The target mask of --kroj_target, 0 for the CPU's best. Benchmarks that measure
// every target themselves reset the mask when they finish, so it is set again after
// each benchmark.
int64_t g_target_mask = 0;

void ApplyTarget() {
  if (g_target_mask != 0) hwy::SetSupportedTargetsForTest(g_target_mask);
}

int64_t TargetByName(const char* name) {
  for (int64_t t : hwy::SupportedAndGeneratedTargets()) {
    if (strcmp(hwy::TargetName(t), name) == 0) return t;
  }
  return 0;
}

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  // Colours only on a terminal (the library does this for its own reporter alone).
  RatioReporter() : ConsoleReporter(isatty(STDOUT_FILENO) ? OO_ColorTabular : OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      if (r.run_type != Run::RT_Iteration || r.error_occurred) continue;
      times_[r.benchmark_name()] = r.GetAdjustedRealTime();
    }
    ConsoleReporter::ReportRuns(runs);
    ApplyTarget();
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
    header = false;
    const std::string two = "/threads:2";
    for (const auto& [name, t] : times_) {
      const size_t at = name.find(two);
      if (at == std::string::npos) continue;
      std::string one = name;
      one[at + two.size() - 1] = '1';
      auto it = times_.find(one);
      if (it == times_.end() || t <= 0) continue;
      if (!header) {
        printf("\n%-60s %10s\n", "benchmark (2 threads against 1)", "speed-up");
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
  const char* target = nullptr;
  for (int i = 0; i < argc; ++i) {
    if (strncmp(argv[i], "--kroj_threads=", 15) == 0) {
      threads_omp_of_n_kro = atoi(argv[i] + 15);
    } else if (strncmp(argv[i], "--kroj_target=", 14) == 0) {
      target = argv[i] + 14;
      g_target_mask = TargetByName(target);
      if (g_target_mask == 0) {
        fprintf(stderr, "kroj_bench: target %s not available here\n", target);
        return 1;
      }
    } else if (strcmp(argv[i], "--kroj_list_targets") == 0) {
      for (int64_t t : hwy::SupportedAndGeneratedTargets()) printf("%s\n", hwy::TargetName(t));
      return 0;
    } else {
      args.push_back(argv[i]);
    }
  }
  int n = static_cast<int>(args.size());
  benchmark::Initialize(&n, args.data());
  if (benchmark::ReportUnrecognizedArguments(n, args.data())) return 1;
  ApplyTarget();
  // The target dispatch picks: the first of the list is the best.
  benchmark::AddCustomContext("kroj_target",
                              target ? target : hwy::TargetName(hwy::SupportedAndGeneratedTargets()[0]));
  benchmark::AddCustomContext("kroj_threads", std::to_string(threads_omp_of_n_kro));
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
