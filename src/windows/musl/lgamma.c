/* lgamma without the variable signgam, which nothing here reads. */
double __lgamma_r(double x, int* sign);
double lgamma(double x);

double lgamma(double x) {
    int sign;
    return __lgamma_r(x, &sign);
}
