// L-BFGS-B asks for the processor time around each phase, for a report that this library never prints. The system
// calls would cost more than the work of a small problem, so the answer is always 0. The underscore is gfortran's.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" void timer_(double* seconds);

extern "C" void timer_(double* seconds) { *seconds = 0.0; }
// NOLINTEND(readability-identifier-naming)
