#!/usr/bin/env python3
"""Writes ln k! for k from 0 to 1023 as the noncentral hypergeometric code uses it: a running sum in doubles of
logarithms, each the exact one rounded to the nearest double.

  make_fnc_log_factorials.py > src/noncentral_hypergeometric/log_factorials.inc
"""
from decimal import Decimal, getcontext

getcontext().prec = 50
ENTRIES = 1024
PER_LINE = 4


def main():
    values, running = [0.0], 0.0
    for i in range(1, ENTRIES):
        running += float(Decimal(i).ln())
        values.append(running)
    print("// Written by tools/make_fnc_log_factorials.py > src/noncentral_hypergeometric/log_factorials.inc; do not edit.")
    print("// clang-format off")
    print(f"inline constexpr double FNCLogFactorialTable[{ENTRIES}] = {{")
    for i in range(0, ENTRIES, PER_LINE):
        print("    " + " ".join(value.hex() + "," for value in values[i:i + PER_LINE]))
    print("};")
    print("// clang-format on")


if __name__ == "__main__":
    main()
