"""Tests how the fleet judges the alerts, and which files it makes from the delivered ones."""

import contextlib
import io
import pathlib
import sys
import unittest
from unittest import mock

import yaml

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "fleet"))

import monitoring  # noqa: E402
import report  # noqa: E402
from course import Course  # noqa: E402
from faults import SCRIPT, Fault  # noqa: E402

DELIVERED = TOP / "monitoring" / "prometheus"


def fault(text, alert):
    return Fault(text, alert, mock.Mock(), mock.Mock())


def course_of(*faults):
    with mock.patch("course.faults_of", lambda number: list(faults)):
        return Course(mock.Mock(), 1)


def cells(row):
    """The cells without the server."""
    return row.cells()[1:]


class OneFault(unittest.TestCase):
    def setUp(self):
        self.fault = fault("it breaks", "Alert")
        self.course = course_of(self.fault)
        self.row = self.course.rows[0]

    def test_times_run_from_fault_to_alert_and_from_mending_to_its_end(self):
        self.course.begin(100.0)
        self.course.see(set(), 101.0)
        self.assertFalse(self.course.has_fired)
        self.course.see({"Alert"}, 102.5)
        self.course.see({"Alert"}, 104.0)
        self.assertTrue(self.course.has_fired)
        self.course.begin_mending(110.0)
        self.course.see({"Alert"}, 111.0)
        self.assertFalse(self.course.is_over)
        self.course.see(set(), 113.0)
        self.assertTrue(self.course.is_over)
        self.assertEqual(cells(self.row), ("it breaks", "Alert", "2.5 s", "3.0 s"))
        self.assertEqual(list(self.row.complaints()), [])
        self.fault.breaks.assert_called_once_with(self.course.server)
        self.fault.mends.assert_called_once_with(self.course.server)

    def test_alert_that_never_fires_is_reported(self):
        self.course.begin(100.0)
        self.course.see(set(), 101.0)
        self.course.begin_mending(190.0)
        self.course.see(set(), 191.0)
        self.assertTrue(self.course.is_over)
        self.assertEqual(list(self.row.complaints()), ["Alert did not fire"])
        self.assertEqual(cells(self.row), ("it breaks", "-", "", ""))

    def test_alert_that_stays_is_reported(self):
        self.course.begin(100.0)
        self.course.see({"Alert"}, 102.0)
        self.course.begin_mending(110.0)
        self.course.see({"Alert"}, 111.0)
        self.assertEqual(list(self.row.complaints()), ["Alert did not stop"])

    def test_second_alert_is_reported(self):
        self.course.begin(100.0)
        self.course.see({"Alert"}, 102.0)
        self.course.see({"Alert", "Stranger"}, 103.0)
        self.course.begin_mending(110.0)
        self.course.see(set(), 111.0)
        self.assertEqual(list(self.row.complaints()), ["also fired: Stranger"])
        self.assertEqual(cells(self.row)[1], "Alert, Stranger")

    def test_any_alert_of_a_healthy_server_is_reported(self):
        course = course_of(fault("nothing", None))
        course.begin(100.0)
        self.assertTrue(course.has_fired)
        course.see({"Alert"}, 101.0)
        course.begin_mending(110.0)
        self.assertTrue(course.is_over)
        self.assertEqual(list(course.rows[0].complaints()), ["also fired: Alert"])


class TwoFaults(unittest.TestCase):
    def test_second_fault_begins_after_the_first_alert_and_is_mended_first(self):
        first, second = fault("first", "One"), fault("second", "Two")
        course = course_of(first, second)
        course.begin(100.0)
        second.breaks.assert_not_called()
        course.see({"One"}, 101.0)
        second.breaks.assert_called_once()
        course.see({"One", "Two"}, 102.0)
        self.assertFalse(course.has_fired)
        course.see({"Two"}, 103.0)
        self.assertTrue(course.has_fired)
        course.begin_mending(110.0)
        second.mends.assert_called_once()
        course.see({"One"}, 111.0)
        first.mends.assert_not_called()
        course.see(set(), 112.0)
        first.mends.assert_called_once()
        course.see(set(), 113.0)
        self.assertTrue(course.is_over)
        self.assertEqual([list(row.complaints()) for row in course.rows], [[], []])


class Verdict(unittest.TestCase):
    def test_counts_rows_and_prints_complaints(self):
        good, bad = course_of(fault("nothing", None)), course_of(fault("it breaks", "Alert"))
        bad.server.name = "corvane2"
        for course in (good, bad):
            course.begin(100.0)
            course.begin_mending(110.0)
        said = io.StringIO()
        with contextlib.redirect_stdout(said):
            self.assertFalse(report.verdict(good.rows + bad.rows))
            self.assertTrue(report.verdict(good.rows))
        self.assertEqual(said.getvalue(), "FAILED  corvane2, it breaks: Alert did not fire\n"
                                          "1 passed, 1 failed\n1 passed, 0 failed\n")


class Files(unittest.TestCase):
    def test_minutes_become_seconds_and_nothing_else_changes(self):
        self.assertEqual(monitoring.quicken("a:\n  for: 5m\n  expr: rate(x[5m])\n  for: 30s\n# for: 5m\n"),
                         "a:\n  for: 5s\n  expr: rate(x[5m])\n  for: 30s\n# for: 5m\n")

    def test_configuration_gets_these_servers_and_keeps_the_rest(self):
        text = (DELIVERED / "prometheus.yml").read_text(encoding="utf-8")
        before, after = yaml.safe_load(text), yaml.safe_load(monitoring.for_these_servers(text, ["a", "b"]))
        self.assertEqual(after["scrape_configs"][0].pop("static_configs"), [{"targets": ["a", "b"]}])
        self.assertEqual(after.pop("global"), {"scrape_interval": "1s", "evaluation_interval": "1s"})
        del before["scrape_configs"][0]["static_configs"], before["global"]
        self.assertEqual(after, before)

    def test_script_raises_every_delivered_alert(self):
        rules = yaml.safe_load((DELIVERED / "corvane.rules.yml").read_text(encoding="utf-8"))
        delivered = {rule["alert"] for group in rules["groups"] for rule in group["rules"]}
        self.assertEqual({fault.alert for faults in SCRIPT for fault in faults} - {None}, delivered)
        self.assertEqual(len(SCRIPT), 8, "tools/run-fleet starts eight servers by default")


if __name__ == "__main__":
    unittest.main()
