// Timing of a job beside a peer: both run by turns, so that a change of the machine's pace meets both.
#ifndef FMDTOOLKIT_BENCH_COMPARISON_H
#define FMDTOOLKIT_BENCH_COMPARISON_H

#include <functional>
#include <string>

namespace fmdbench {

// One round of a job: does it and answers the seconds that count, so that preparation stays outside.
using Job = std::function<double()>;

// Seconds of wall time that an action takes.
double seconds(const std::function<void()>& action);

struct Comparison {
  double peer;   // median seconds
  double job;    // median seconds
  double ratio;  // median over the rounds of job seconds by peer seconds
};

// Runs peer and job by turns, one round beforehand uncounted.
Comparison compare(int rounds, const Job& peer, const Job& job);

// One line with the times, the time of the job in times of the peer's, and whether it keeps the bar.
void report_time(const std::string& name, const Comparison& comparison, double most);

// The same, told as the job's rate in parts of the peer's rate. The amounts are what job and peer move, in
// bytes.
void report_rate(const std::string& name, const Comparison& comparison, double job_bytes, double peer_bytes,
                 double least);

// Ends the program with a message when a result is wrong: a fast wrong answer is worth nothing.
void require(bool condition, const char* what);

}  // namespace fmdbench

#endif
