#!/usr/bin/env python3
"""A second model of sale lines and of a document's VAT, in decimals: writes random lines and documents with the
amounts that they must have, one a row. Usage: sale_model.py LINES DOCUMENTS SEED"""
import decimal
import random
import sys
from decimal import Decimal

decimal.getcontext().prec = 60  # a quotient that ends is exact, one that does not is no half
decimal.getcontext().rounding = decimal.ROUND_HALF_UP
AMOUNT, PRICE, PERCENT = Decimal("0.01"), Decimal("0.00001"), Decimal("0.00001")


def rounded(unit, value):
    return value.quantize(unit)


def number(rng, low, high, digits):
    return Decimal(rng.randint(low * 10 ** digits, high * 10 ** digits)).scaleb(-digits)


def line(rng):
    includes = rng.random() < 0.4
    foreign = rng.random() < 0.3
    factor = number(rng, 0, 4, 5) + PRICE if foreign else Decimal(1)
    percent = Decimal(rng.choice([0, 9, 20, 20, 20]))
    quantity = number(rng, -50, 500, rng.choice([0, 0, 1, 3]))
    price = number(rng, 0, 1000, rng.choice([2, 2, 3, 5]))
    discount = rng.choice([Decimal(0), Decimal(0), number(rng, 0, 100, rng.choice([0, 1, 2]))])
    f = 1 + percent / 100

    net = price / f if includes else price
    off = Decimal(0)
    if quantity and price and discount:
        gross = price * quantity * discount / 100
        off = rounded(PRICE, gross / f if includes else gross)  # divided last: a half stays a half
    if includes:
        total = rounded(AMOUNT, f * rounded(AMOUNT, quantity * rounded(PRICE, net) - off))
    else:
        total = rounded(AMOUNT, quantity * price - off)
    value = rounded(AMOUNT, total / f if includes else total)
    vat = rounded(AMOUNT, percent * value / 100)
    local = rounded(AMOUNT, value * factor)
    local_vat = rounded(AMOUNT, percent * local / 100)
    unit_off = rounded(PERCENT, off / quantity) if quantity else Decimal(0)
    cost = rounded(PRICE, (rounded(PRICE, net) if includes else price) - unit_off)
    local_cost = rounded(PRICE, cost * factor) if foreign else cost
    inputs = [Decimal(int(includes)), Decimal(int(foreign)), factor, percent, quantity, price, discount]
    return inputs + [off, total, value, vat, value + vat, local, local_vat, local + local_vat, cost, local_cost]


def document(rng):
    """group:percent:value:value in the document's currency, ... and the six totals"""
    rows, sums = [], {}
    for _ in range(rng.randint(1, 40)):
        group = rng.randint(0, 2)
        percent = Decimal([0, 9, 20][group])
        local, value = number(rng, -20, 300, 2), number(rng, -20, 300, 2)
        rows.append(":".join([str(group), str(percent), str(local), str(value)]))
        old = sums.get(group, (percent, 0, 0))
        sums[group] = (percent, old[1] + local, old[2] + value)
    totals = [Decimal(0)] * 6
    for percent, local, value in sums.values():
        local_vat, vat = rounded(AMOUNT, percent * local / 100), rounded(AMOUNT, percent * value / 100)
        for i, amount in enumerate([local, local_vat, local + local_vat, value, vat, value + vat]):
            totals[i] += amount
    return rows, totals


lines, documents, seed = (int(argument) for argument in sys.argv[1:4])
rng = random.Random(seed)
for _ in range(lines):
    print("L", *line(rng), sep=";")
for _ in range(documents):
    rows, totals = document(rng)
    print("D", " ".join(rows), *totals, sep=";")
