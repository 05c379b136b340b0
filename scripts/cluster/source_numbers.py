#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
# SPDX-License-Identifier: MIT
#
# source_numbers.py LIST [PART PARTS]: the numbers of the sources in a list, one a line; of several parts, those of
# one (from 0 on). A source without a number has the lowest one that is free, from 1 on, as the program gives it.

import itertools
import json
import sys

with open(sys.argv[1], encoding="utf-8") as file:
    given = [source.get("number") for source in json.load(file)["sources"]]
free = (number for number in itertools.count(1) if number not in taken)
taken = set(given)
numbers = [next(free) if number is None else number for number in given]
part, parts = map(int, sys.argv[2:4]) if len(sys.argv) > 2 else (0, 1)
print(*numbers[part::parts], sep="\n")
