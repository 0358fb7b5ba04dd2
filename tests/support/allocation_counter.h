#ifndef ORVO_TESTS_SUPPORT_ALLOCATION_COUNTER_H
#define ORVO_TESTS_SUPPORT_ALLOCATION_COUNTER_H

/// Allocations made through operator new since the program started; the
/// program that links allocation_counter.cpp replaces the global operator new to count them.
long allocations();

#endif
