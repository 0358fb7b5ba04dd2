#ifndef ORVO_BENCH_PERCEPTION_ALLOCATION_COUNTER_H
#define ORVO_BENCH_PERCEPTION_ALLOCATION_COUNTER_H

/// Allocations made through operator new since the program started; the
/// test program replaces the global operator new to count them.
long allocations();

#endif
