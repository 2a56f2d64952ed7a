#include "support/comparison.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace fmdbench {

namespace {

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

}  // namespace

double seconds(const std::function<void()>& action) {
  const auto start = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

Comparison compare(int rounds, const Job& peer, const Job& job) {
  std::vector<double> peers;
  std::vector<double> jobs;
  std::vector<double> ratios;
  for (int round = -1; round < rounds; ++round) {
    const double of_peer = peer();
    const double of_job = job();
    if (round < 0) continue;
    peers.push_back(of_peer);
    jobs.push_back(of_job);
    ratios.push_back(of_job / of_peer);
  }
  return {median(peers), median(jobs), median(ratios)};
}

void report_time(const std::string& name, const Comparison& comparison, double most) {
  std::printf("%-52s peer %8.2f ms  job %8.2f ms  time ratio %6.2f  bar <= %.2f  %s\n", name.c_str(),
              comparison.peer * 1e3, comparison.job * 1e3, comparison.ratio, most,
              comparison.ratio <= most ? "kept" : "MISSED");
  std::fflush(stdout);
}

void report_rate(const std::string& name, const Comparison& comparison, double job_bytes, double peer_bytes,
                 double least) {
  const double ratio = job_bytes / peer_bytes / comparison.ratio;
  std::printf("%-52s peer %8.2f MB/s job %8.2f MB/s rate ratio %6.2f  bar >= %.2f  %s\n", name.c_str(),
              peer_bytes / comparison.peer / 1e6, job_bytes / comparison.job / 1e6, ratio, least,
              ratio >= least ? "kept" : "MISSED");
  std::fflush(stdout);
}

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "wrong result: %s\n", what);
  std::exit(1);
}

}  // namespace fmdbench
