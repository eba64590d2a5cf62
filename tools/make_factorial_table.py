#!/usr/bin/env python3
"""Writes every sixth factorial up to 104724! as {high, low, exponent}: k! = (high + low) 2^exponent.

  make_factorial_table.py > src/distributions/factorial_table.inc

high is k! / 2^exponent rounded to 53 bits, 1 <= high < 2; low is what is missing to it, rounded to
24 bits. The relative error is below 2^-77.

The running product is an integer cut off to 512 bits. Each step loses at most one unit in the last
of these, so the relative error of the last product is below 104729 * 2^-511. A rounding that this
error could turn stops the script.
"""
import struct
import sys

STRIDE = 6
LARGEST = 104729
KEPT_BITS = 512
ERROR = LARGEST  # units in the last bit of the running product


def rounded(value, bits):
    """value to the nearest number with so many significant bits, as an integer, and the power of two
    it is scaled by."""
    shift = value.bit_length() - bits
    if shift <= 0:
        return value, 0
    up = (value + (1 << (shift - 1))) >> shift
    distance = abs((value & ((1 << shift) - 1)) - (1 << (shift - 1)))
    if distance <= ERROR and value.bit_length() >= KEPT_BITS:
        sys.exit("a rounding is undecided: keep more bits")
    return up, shift


def entry(product, scale):
    """The row of product * 2^scale."""
    high, shift = rounded(product, 53)
    remainder = product - (high << shift)
    exponent = high.bit_length() - 1 + shift
    low, lowShift = rounded(abs(remainder), 24)
    low = (low if remainder >= 0 else -low) * 2.0 ** (lowShift - exponent)
    assert struct.unpack("f", struct.pack("f", low))[0] == low
    # Six hexadecimal digits hold the 24 bits; the trailing zeros of hex() are left out.
    lowText = low.hex().replace("0000000p", "p") + "f" if low else "0"
    return f"{{{float(high * 2.0 ** (shift - exponent)).hex()}, {lowText}, {exponent + scale}}}"


def main():
    print("// Written by tools/make_factorial_table.py > src/distributions/factorial_table.inc; do not edit.")
    print("// clang-format off")
    product, scale = 1, 0
    for k in range(LARGEST + 1):
        product *= max(k, 1)
        excess = product.bit_length() - KEPT_BITS
        if excess > 0:
            product >>= excess
            scale += excess
        if k % STRIDE == 0:
            print(entry(product, scale) + ",")


main()
