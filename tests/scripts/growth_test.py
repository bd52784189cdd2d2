"""Tests how the exponents of curves are found and judged, on made-up times.

    python3 growth_test.py TOP-FOLDER
"""

import math
import random
import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(sys.argv.pop(1)) / "benchmarks"))
import growth  # noqa: E402  (the path is set above)

SIZES = [2 ** n for n in range(14)]


def curve(cost, noise=0.0, sizes=SIZES):
    """Times of a cost that depends on the size, each wrong by up to that share."""
    chance = random.Random(7)
    return {size: cost(size) * (1 + chance.uniform(-noise, noise)) for size in sizes}


def verdict(promised, limit, times):
    rows = growth.promises(f"p | c | title | {promised} | {limit} | because")
    return [kept for _, _, kept in growth.judged(rows, {"c": times})]


class Exponents(unittest.TestCase):
    def test_of_powers(self):
        for power in (0, 1, 2, 3):
            self.assertAlmostEqual(growth.exponent(curve(lambda n, p=power: 30.0 * n ** p)), power)

    def test_a_part_that_does_not_grow_hardly_counts(self):
        self.assertAlmostEqual(growth.exponent(curve(lambda n: 200 + 50 * n)), 1, delta=0.02)

    def test_the_lower_half_does_not_count(self):
        times = curve(lambda n: 50.0 * n)
        for size in SIZES[:7]:
            times[size] = 10_000.0
        self.assertAlmostEqual(growth.exponent(times), 1)

    def test_two_points_in_the_upper_half_are_too_few(self):
        with self.assertRaises(growth.GrowthError):
            growth.exponent({1: 1.0, 10: 10.0, 100: 100.0})


class Verdicts(unittest.TestCase):
    def test_linear_is_linear(self):
        self.assertEqual(verdict("linear", 1.5, curve(lambda n: 100 + 7.0 * n)), [True])

    def test_with_a_logarithm_is_linear(self):
        self.assertEqual(verdict("linear", 1.5, curve(lambda n: n * math.log(n + 1))), [True])

    def test_quadratic_is_not_linear(self):
        self.assertEqual(verdict("linear", 1.5, curve(lambda n: 100 + n * n)), [False])

    def test_half_a_power_more_than_linear_is_not_linear(self):
        self.assertEqual(verdict("linear", 1.5, curve(lambda n: n ** 1.55)), [False])

    def test_linear_is_not_constant(self):
        self.assertEqual(verdict("constant", 0.5, curve(lambda n: 100 + n)), [False])

    def test_noise_of_a_fifth_changes_no_verdict(self):
        self.assertEqual(verdict("constant", 0.5, curve(lambda n: 100.0, 0.2)), [True])
        self.assertEqual(verdict("linear", 1.5, curve(lambda n: 7.0 * n, 0.2)), [True])
        self.assertEqual(verdict("linear", 1.5, curve(lambda n: n * n, 0.2)), [False])
        self.assertEqual(verdict("quadratic", 2.5, curve(lambda n: n ** 3, 0.2)), [False])

    def test_a_curve_without_a_promise_is_refused_and_the_reverse(self):
        rows = list(growth.promises("p | c | title | linear | 1.5 | because"))
        for curves in ({}, {"c": curve(float), "d": curve(float)}):
            with self.assertRaises(growth.GrowthError):
                list(growth.judged(rows, curves))

    def test_a_promise_needs_a_reason(self):
        for line in ("p | c | title | linear | 1.5", "p | c | title | linear | 1.5 | "):
            with self.assertRaises(growth.GrowthError):
                list(growth.promises(line))


class Times(unittest.TestCase):
    @staticmethod
    def entry(name, time, unit="ns", kind="iteration"):
        return {"name": name, "run_name": name, "run_type": kind, "cpu_time": time, "time_unit": unit}

    def test_the_least_repetition_of_each_size_counts(self):
        entries = [self.entry("C/8", 30), self.entry("C/8", 20), self.entry("C/8", 25),
                   self.entry("C/16", 1, "us"),
                   self.entry("C/8", 5, kind="aggregate"), self.entry("D/8/iterations:1", 2, "ms")]
        self.assertEqual(growth.least_times({"benchmarks": entries}),
                         {"C": {8: 20, 16: 1000.0}, "D": {8: 2e6}})

    def test_a_benchmark_that_failed_is_no_measurement(self):
        failed = {**self.entry("C/8", 0), "error_occurred": True, "error_message": "no memory"}
        with self.assertRaisesRegex(growth.GrowthError, "C/8: no memory"):
            growth.least_times({"benchmarks": [failed]})


result = unittest.main(exit=False).result
failed = len(result.failures) + len(result.errors)
print(f"{result.testsRun - failed} passed, {failed} failed")
sys.exit(failed > 0)
