// L-BFGS-B asks for the processor time around each phase, for a report that this library never
// prints. The system calls cost more than the work of a small problem, so time stands still.
extern "C" void timer_(double* seconds);

extern "C" void timer_(double* seconds) { *seconds = 0.0; }
