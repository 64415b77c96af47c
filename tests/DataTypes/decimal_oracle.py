#!/usr/bin/env python3
"""Checks ZtDecimal64 against Python's decimal module, an independent decimal64 implementation.

Generates reproducible cases (seeded) for each family, has the C++ side compute them (the
ZtDecimal64Oracle test of test_DataTypes, which reads the cases from a file and writes one
result line per case), and compares every result with the decimal64 context of the decimal
module: 16 digits, Emin -383, Emax 384, clamped, ties to even.

Arithmetic, rounding, whole/fraction parts, integer conversions and parsing must agree bit for
bit (same coefficient and exponent); conversions from binary64 must agree in value, since the
Intel library picks a different (equally valid) cohort member than the decimal module; and a
remainder whose integer quotient has more than 16 digits, which the decimal module refuses, is
checked against an exact remainder instead.

Usage: decimal_oracle.py --test-binary PATH [--count N] [--seed S] [--workdir DIR]
"""

import argparse
import decimal
import os
import random
import struct
import subprocess
import sys
import tempfile
from decimal import Decimal

CTX = decimal.Context(prec=16, Emin=-383, Emax=384, clamp=1,
                      rounding=decimal.ROUND_HALF_EVEN, traps=[])
decimal.setcontext(CTX)

BIAS = 398
MAX_COEFF = 10 ** 16 - 1


# ---- BID64 encoding, written from the IEEE 754-2008 definition --------------------------------

def decode(bits):
    """BID64 bits -> Decimal (NaN payloads are dropped; non-canonical coefficients read as 0)."""
    sign = bits >> 63
    if (bits >> 58) & 0x1F == 0x1F:
        return Decimal("-sNaN" if sign and (bits >> 57) & 1 else
                       "sNaN" if (bits >> 57) & 1 else "-NaN" if sign else "NaN")
    if (bits >> 58) & 0x1F == 0x1E:
        return Decimal("-Infinity" if sign else "Infinity")
    if (bits >> 61) & 3 == 3:
        exp = ((bits >> 51) & 0x3FF) - BIAS
        coeff = (bits & ((1 << 51) - 1)) | (1 << 53)
        if coeff > MAX_COEFF:
            coeff = 0
    else:
        exp = ((bits >> 53) & 0x3FF) - BIAS
        coeff = bits & ((1 << 53) - 1)
        if coeff > MAX_COEFF:
            coeff = 0
    return Decimal((sign, tuple(int(c) for c in str(coeff)), exp))


def encode(d):
    """Decimal (finite, representable) -> canonical BID64 bits."""
    sign, digits, exp = d.as_tuple()
    if d.is_nan():
        return (sign << 63) | (0x3F << 57 if d.is_snan() else 0x1F << 58)
    if d.is_infinite():
        return (sign << 63) | (0x1E << 58)
    coeff = int("".join(map(str, digits)) or "0")
    assert coeff <= MAX_COEFF and -BIAS <= exp <= 369, d
    if coeff < (1 << 53):
        return (sign << 63) | ((exp + BIAS) << 53) | coeff
    return (sign << 63) | (3 << 61) | ((exp + BIAS) << 51) | (coeff & ((1 << 51) - 1))


def same(ours, theirs):
    """Bit-level agreement in value and cohort; all NaNs of one kind agree."""
    if theirs.is_nan() or ours.is_nan():
        return theirs.is_nan() and ours.is_nan() and theirs.is_snan() == ours.is_snan()
    return ours.as_tuple() == theirs.as_tuple()


# ---- case generation ---------------------------------------------------------------------------

SPECIALS = [Decimal(s) for s in ("0", "-0", "0E-5", "-0E+3", "1", "-1", "0.5", "-0.5", "1.5",
                                 "2.5", "-2.5", "0.005", "9999999999999999", "9.999999999999999E+384",
                                 "1E-398", "-1E-398", "1E-383", "9999999999999.99",
                                 "-9999999999999.99", "Infinity", "-Infinity", "NaN", "sNaN")]


def rand_decimal(rng):
    r = rng.random()
    if r < 0.03:
        return rng.choice(SPECIALS)
    digits = rng.randint(1, 16)
    coeff = rng.randint(10 ** (digits - 1) if digits > 1 else 0, 10 ** digits - 1)
    if r < 0.65:
        exp = rng.randint(-7, 3)       # the money and quantity range
    elif r < 0.85:
        exp = rng.randint(-30, 20)
    else:
        exp = rng.randint(-BIAS, 369)  # the whole exponent range, subnormals included
    return Decimal((rng.getrandbits(1), tuple(int(c) for c in str(coeff)), exp))


def rand_pair(rng):
    a = rand_decimal(rng)
    r = rng.random()
    if r < 0.15 and a.is_finite():
        # Near-cancellation and equal operands exercise the sign of zero and exact results.
        b = a.copy_negate() if rng.random() < 0.5 else a
        if rng.random() < 0.5:
            b = CTX.next_plus(b)
        return a, b
    return a, rand_decimal(rng)


def rand_long_text(rng):
    """Texts the Intel parser gets wrong on its own: long digit strings, many leading zeros,
    exponents far outside the range, and digits that sit exactly on a rounding tie."""
    sign = rng.choice(["", "+", "-"])
    kind = rng.randrange(4)
    if kind == 0:  # 0.000...0ddd, around and below the smallest subnormal
        text = "0." + "0" * rng.randint(360, 1200) + str(rng.randint(1, 10 ** rng.randint(1, 20)))
    elif kind == 1:  # more than 16 significant digits, some ending in a tie 5000...0[1]
        digits = str(rng.randint(1, 9)) + "".join(rng.choice("0123456789")
                                                  for _ in range(rng.randint(16, 60)))
        if rng.random() < 0.5:
            digits = digits[:16] + "5" + "0" * rng.randint(0, 30) + rng.choice(["", "1"])
        cut = rng.randint(0, len(digits))
        text = "0" * rng.randint(0, 30) + digits[:cut] + "." + digits[cut:]
    elif kind == 2:  # huge exponents in both directions
        text = str(rng.randint(0, 10 ** rng.randint(1, 20))) + rng.choice("eE") + \
            rng.choice(["", "+", "-"]) + str(rng.randint(0, 10 ** rng.randint(1, 30)))
    else:  # long zeros with an exponent that brings the value back into range
        zeros = rng.randint(300, 800)
        text = "0." + "0" * zeros + str(rng.randint(1, 10 ** 18)) + "e" + \
            str(zeros - rng.randint(-10, 400))
    return sign + text


def rand_text(rng):
    if rng.random() < 0.1:
        return rand_long_text(rng)
    sign = rng.choice(["", "", "+", "-"])
    whole = "".join(rng.choice("0123456789") for _ in range(rng.randint(0, 20)))
    frac = "".join(rng.choice("0123456789") for _ in range(rng.randint(0, 12)))
    if not whole and not frac:
        whole = "0"
    text = sign + whole
    if frac or rng.random() < 0.2:
        text += "." + frac
    if rng.random() < 0.25:
        text += rng.choice("Ee") + rng.choice(["", "+", "-"]) + str(rng.randint(0, 420))
    return text


def rand_int(rng, lo, hi):
    if rng.random() < 0.1:
        return rng.choice([lo, hi, 0, 1, -1 if lo < 0 else 2, 10 ** 16, 10 ** 16 - 1,
                           10 ** 16 + 1, 99999999999999995]) if hi > 10 ** 17 else rng.choice(
            [lo, hi, 0, 1])
    return rng.randint(lo, hi) >> rng.randint(0, 60)


def rand_double(rng):
    r = rng.random()
    if r < 0.5:
        return round(rng.uniform(-1e6, 1e6), rng.randint(0, 6))
    if r < 0.9:
        return struct.unpack("<d", struct.pack("<Q", rng.getrandbits(64)))[0]
    return rng.choice([0.0, -0.0, 0.1, 1e300, -1e-300, 5e-324, float("inf"), 1.7976931348623157e308])


def hx(d):
    return "%016x" % encode(d)


def generate(rng, count):
    """Yields (family, case line, expected-check function)."""
    for _ in range(count):
        for op in ("add", "sub", "mul", "div"):
            a, b = rand_pair(rng)
            yield op, "%s %s %s" % (op, hx(a), hx(b)), (op, a, b)
        a, b = rand_pair(rng)
        yield "rem", "rem %s %s" % (hx(a), hx(b)), ("rem", a, b)
        a, b = rand_pair(rng)
        c = rand_decimal(rng)
        if rng.random() < 0.3 and a.is_finite() and b.is_finite():
            c = CTX.minus(CTX.multiply(a, b))  # cancels all but the digits lost by rounding
        yield "fma", "fma %s %s %s" % (hx(a), hx(b), hx(c)), ("fma", a, b, c)
        a, b = rand_pair(rng)
        yield "cmp", "cmp %s %s" % (hx(a), hx(b)), ("cmp", a, b)
        for op in ("rtp", "rhe", "rdn"):
            a, p = rand_decimal(rng), rng.randint(-5, 5)
            yield op, "%s %s %d" % (op, hx(a), p), (op, a, p)
        a = rand_decimal(rng)
        yield "parts", "parts %s" % hx(a), ("parts", a)
        for op in ("setw", "setf"):
            a, b = rand_decimal(rng), rand_decimal(rng)
            if op == "setf" and rng.random() < 0.8 and b.is_finite():
                b = CTX.copy_abs(b).scaleb(-rng.randint(0, 17))
            if op == "setw" and rng.random() < 0.8 and b.is_finite():
                b = CTX.to_integral_value(b)
            yield op, "%s %s %s" % (op, hx(a), hx(b)), (op, a, b)
        a = rand_decimal(rng)
        if rng.random() < 0.7:
            a = CTX.scaleb(Decimal(rand_int(rng, -(1 << 64), 1 << 64)), -rng.randint(0, 3))
        yield "toint", "toint %s" % hx(a), ("toint", a)
        ints = (rand_int(rng, -(1 << 31), (1 << 31) - 1), rand_int(rng, 0, (1 << 32) - 1),
                rand_int(rng, -(1 << 63), (1 << 63) - 1), rand_int(rng, 0, (1 << 64) - 1))
        yield "fromint", "fromint %d %d %d %d" % ints, ("fromint",) + ints
        t = rand_text(rng)
        yield "parse", "parse " + t, ("parse", t)
        a = rand_decimal(rng)
        yield "text", "text " + hx(a), ("text", a)
        a = rand_decimal(rng)
        yield "todbl", "todbl " + hx(a), ("todbl", a)
        v = rand_double(rng)
        yield "fromdbl", "fromdbl %016x" % struct.unpack("<Q", struct.pack("<d", v))[0], (
            "fromdbl", v)


# ---- expected results --------------------------------------------------------------------------

def rounded(a, p, mode):
    x = a if p == 0 else CTX.scaleb(a, Decimal(-p))
    x = x.to_integral_value(rounding=mode, context=CTX)
    return x if p == 0 else CTX.scaleb(x, Decimal(p))


def trunc(a):
    return a.to_integral_value(rounding=decimal.ROUND_DOWN, context=CTX)


def signed_like(receiver, r):
    return CTX.copy_negate(r) if receiver.is_signed() else CTX.copy_abs(r)


def text_of(d):
    sign, digits, exp = d.as_tuple()
    return "%s%sE%s%d" % ("-" if sign else "+", int("".join(map(str, digits))),
                          "+" if exp >= 0 else "-", abs(exp))


INT_RANGES = [(-(1 << 31), (1 << 31) - 1), (0, (1 << 32) - 1), (-(1 << 63), (1 << 63) - 1),
              (0, (1 << 64) - 1)]


def double_of(d):
    """(status, double) as an IEEE binary64 conversion with overflow/underflow reporting."""
    if d.is_nan():
        return 1 if d.is_snan() else 0, float("nan")
    v = float(d)
    if d.is_infinite():
        return 0, v
    if v in (float("inf"), float("-inf")):
        return 1, v
    tiny = abs(v) < 2.2250738585072014e-308
    if tiny and d != 0 and Decimal(v) != d:
        return 1, v
    return 0, v


def check(case, result):
    """Returns None when the result agrees, else a description of the disagreement."""
    op = case[0]
    if op in ("add", "sub", "mul", "div"):
        _, a, b = case
        want = {"add": CTX.add, "sub": CTX.subtract, "mul": CTX.multiply,
                "div": CTX.divide}[op](a, b)
        got = decode(int(result, 16))
        return None if same(got, want) else "got %s want %s" % (got, want)
    if op == "fma":
        _, a, b, c = case
        want = CTX.fma(a, b, c)
        got = decode(int(result, 16))
        return None if same(got, want) else "got %s want %s" % (got, want)
    if op == "rem":
        _, a, b = case
        want = CTX.remainder(a, b)
        got = decode(int(result, 16))
        if want.is_nan() and a.is_finite() and b.is_finite() and not b.is_zero():
            # The decimal module gives up when the integer quotient has more than 16 digits;
            # the library's truncating remainder is still defined. Checked by value instead.
            wide = decimal.Context(prec=1000, Emin=-999999, Emax=999999, traps=[])
            want = CTX.plus(wide.remainder(a, b))
            ok = got == want and (not got.is_zero() or got.is_signed() == a.is_signed())
            return None if ok else "got %s want %s (quotient beyond 16 digits)" % (got, want)
        return None if same(got, want) else "got %s want %s" % (got, want)
    if op == "cmp":
        _, a, b = case
        c = CTX.compare(a, b)
        if c.is_nan():
            want = "010000"
        else:
            c = int(c)
            want = "".join("1" if x else "0" for x in
                           (c == 0, c != 0, c < 0, c <= 0, c > 0, c >= 0))
        return None if result == want else "got %s want %s" % (result, want)
    if op in ("rtp", "rhe", "rdn"):
        _, a, p = case
        mode = {"rtp": decimal.ROUND_HALF_UP, "rhe": decimal.ROUND_HALF_EVEN,
                "rdn": decimal.ROUND_DOWN}[op]
        want = rounded(a, p, mode)
        got = decode(int(result, 16))
        return None if same(got, want) else "got %s want %s" % (got, want)
    if op == "parts":
        _, a = case
        t = trunc(a)
        frac = CTX.copy_abs(CTX.subtract(a, t))
        sfrac = CTX.subtract(t, a) if a.is_signed() else CTX.subtract(a, t)
        want = [CTX.copy_abs(t), t, frac, sfrac]
        got = [decode(int(x, 16)) for x in result.split()]
        ok = all(same(g, w) for g, w in zip(got, want))
        return None if ok else "got %s want %s" % (got, want)
    if op in ("setw", "setf"):
        _, a, b = case
        t = trunc(a)
        if op == "setw":
            r = CTX.add(b, CTX.copy_abs(CTX.subtract(a, t)))
        else:
            r = CTX.add(CTX.copy_abs(t), b)
        want = signed_like(a, r)
        got = decode(int(result, 16))
        return None if same(got, want) else "got %s want %s" % (got, want)
    if op == "toint":
        _, a = case
        fields = result.split()
        for i, (lo, hi) in enumerate(INT_RANGES):
            status, value = int(fields[2 * i]), int(fields[2 * i + 1])
            ok = a.is_finite() and lo <= int(a) <= hi
            if status != (0 if ok else 1) or (ok and value != int(a)):
                return "range %d: got status %d value %d" % (i, status, value)
        return None
    if op == "fromint":
        got = [decode(int(x, 16)) for x in result.split()]
        want = [CTX.create_decimal(n) for n in case[1:]]
        ok = all(same(g, w) for g, w in zip(got, want))
        return None if ok else "got %s want %s" % (got, want)
    if op == "parse":
        want = CTX.create_decimal(case[1])
        got = decode(int(result, 16))
        return None if same(got, want) else "got %s want %s" % (got, want)
    if op == "text":
        a = case[1]
        if not a.is_finite():
            return None  # the library's own spelling of infinities and NaNs is checked in gtest
        want = text_of(a)
        return None if result == want else "got %s want %s" % (result, want)
    if op == "todbl":
        status, bits = result.split()
        got = struct.unpack("<d", struct.pack("<Q", int(bits, 16)))[0]
        wstatus, want = double_of(case[1])
        if int(status) != wstatus:
            return "status %s want %d (value %r)" % (status, wstatus, got)
        if want != want:
            return None if got != got else "got %r want nan" % got
        same_value = got == want and (got != 0 or str(got)[0] == str(want)[0])
        return None if same_value else "got %r want %r" % (got, want)
    if op == "fromdbl":
        v = case[1]
        want = CTX.create_decimal_from_float(v)
        got = decode(int(result, 16))
        if want.is_nan():
            return None if got.is_nan() else "got %s want NaN" % got
        ok = got == want and got.is_signed() == want.is_signed()  # value and sign, any cohort
        return None if ok else "got %s want %s" % (got, want)
    return "unknown op %s" % op


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--test-binary", required=True)
    parser.add_argument("--count", type=int, default=100000, help="cases per family")
    parser.add_argument("--seed", type=int, default=20261122)
    parser.add_argument("--workdir")
    args = parser.parse_args()

    rng = random.Random(args.seed)
    workdir = args.workdir or tempfile.mkdtemp(prefix="decimal_oracle_")
    cases_path = os.path.join(workdir, "cases.txt")
    results_path = os.path.join(workdir, "results.txt")
    cases = []
    with open(cases_path, "w") as out:
        for family, line, case in generate(rng, args.count):
            out.write(line + "\n")
            cases.append((family, line, case))

    env = dict(os.environ, ZT_DECIMAL_ORACLE_CASES=cases_path,
               ZT_DECIMAL_ORACLE_RESULTS=results_path)
    run = subprocess.run([args.test_binary, "--gtest_filter=ZtDecimal64Oracle.*"], env=env,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if run.returncode != 0:
        print(run.stdout)
        print("decimal_oracle: the C++ side failed (exit %d)" % run.returncode)
        return 1
    with open(results_path) as f:
        results = f.read().split("\n")

    counts, failures = {}, {}
    for (family, line, case), result in zip(cases, results):
        counts[family] = counts.get(family, 0) + 1
        problem = check(case, result)
        if problem:
            failures.setdefault(family, []).append("%s -> %s" % (line, problem))
    if len(results) < len(cases):
        print("decimal_oracle: only %d of %d results" % (len(results), len(cases)))
        return 1

    for family in sorted(counts):
        bad = failures.get(family, [])
        print("%-8s %7d cases  %d disagreements" % (family, counts[family], len(bad)))
        for text in bad[:10]:
            print("    " + text)
    if failures:
        print("decimal_oracle: FAILED (seed %d, cases in %s)" % (args.seed, cases_path))
        return 1
    if not args.workdir:
        os.remove(cases_path)
        os.remove(results_path)
        os.rmdir(workdir)
    print("decimal_oracle: all %d cases agree" % len(cases))
    return 0


if __name__ == "__main__":
    sys.exit(main())
