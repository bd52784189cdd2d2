"""Tests how the fleet judges the alerts, and which files it makes from the delivered ones."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest
from unittest import mock

import yaml

TOP = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "fleet"))

import mailbox  # noqa: E402
import monitoring  # noqa: E402
import report  # noqa: E402
from course import Course  # noqa: E402
from faults import EXPORTER, JOB, SCRIPT, Fault  # noqa: E402

DELIVERED = TOP / "monitoring" / "prometheus"


def fault(text, alert, also=()):
    return Fault(text, alert, mock.Mock(), mock.Mock(), frozenset(also))


def course_of(*faults):
    return Course(mock.Mock(), list(faults))


def cells(row):
    """The cells without the server."""
    return row.cells()[1:]


class OneFault(unittest.TestCase):
    def setUp(self):
        self.fault = fault("it breaks", "Alert", also=["Before"])
        self.course = course_of(self.fault)
        self.row = self.course.rows[0]

    def run_to_the_end(self, firing, mails):
        """The alerts fire from the beginning to the repair, and the mails come."""
        self.course.begin(100.0)
        self.course.see(firing, mails, 102.0)
        self.course.begin_mending(110.0)
        self.course.see(set(), mails, 111.0)
        return list(self.row.complaints())

    def test_times_run_from_fault_to_alert_and_from_mending_to_its_end(self):
        self.course.begin(100.0)
        self.course.see(set(), [], 101.0)
        self.course.see({"Alert"}, [], 102.5)
        self.assertFalse(self.course.is_reported)
        self.course.see({"Alert"}, ["Alert"], 104.0)
        self.assertTrue(self.course.is_reported)
        self.course.begin_mending(110.0)
        self.course.see({"Alert"}, ["Alert"], 111.0)
        self.assertFalse(self.course.is_over)
        self.course.see(set(), ["Alert"], 113.0)
        self.assertTrue(self.course.is_over)
        self.assertEqual(cells(self.row), ("it breaks", "Alert", "2.5 s", "1", "3.0 s"))
        self.assertEqual(list(self.row.complaints()), [])
        self.fault.breaks.assert_called_once_with(self.course.server)
        self.fault.mends.assert_called_once_with(self.course.server)

    def test_alert_that_never_fires_is_reported(self):
        self.assertEqual(self.run_to_the_end(set(), []), ["Alert did not fire"])
        self.assertTrue(self.course.is_over)
        self.assertEqual(cells(self.row), ("it breaks", "-", "", "0", ""))

    def test_alert_that_stays_is_reported(self):
        self.course.begin(100.0)
        self.course.see({"Alert"}, ["Alert"], 102.0)
        self.course.begin_mending(110.0)
        self.course.see({"Alert"}, ["Alert"], 111.0)
        self.assertEqual(list(self.row.complaints()), ["Alert did not stop"])

    def test_second_alert_is_reported(self):
        self.course.begin(100.0)
        self.course.see({"Alert"}, ["Alert"], 102.0)
        self.course.see({"Alert", "Stranger"}, ["Alert"], 103.0)
        self.course.begin_mending(110.0)
        self.course.see(set(), ["Alert"], 111.0)
        self.assertEqual(list(self.row.complaints()), ["also fired: Stranger"])
        self.assertEqual(cells(self.row)[1], "Alert, Stranger")

    def test_alert_that_may_come_before_is_not_reported(self):
        self.course.begin(100.0)
        self.course.see({"Before"}, ["Before"], 101.0)
        self.assertFalse(self.course.is_reported)
        self.course.see({"Alert"}, ["Before", "Alert"], 102.0)
        self.course.begin_mending(110.0)
        self.course.see(set(), ["Before", "Alert"], 111.0)
        self.assertEqual(list(self.row.complaints()), [])

    def test_alert_without_mail_is_reported(self):
        self.assertEqual(self.run_to_the_end({"Alert"}, ["Other"]), ["no e-mail"])

    def test_second_mail_about_one_alert_is_reported(self):
        self.assertEqual(self.run_to_the_end({"Alert"}, ["Alert", "Alert"]),
                         ["2 e-mails, but the alert fired 1 times"])

    def test_alert_that_fires_twice_may_have_two_mails(self):
        self.course.begin(100.0)
        for firing in ({"Alert"}, {"Alert"}, set(), {"Alert"}):
            self.course.see(firing, ["Alert", "Alert"], 101.0)
        self.course.begin_mending(110.0)
        self.course.see(set(), ["Alert", "Alert"], 111.0)
        self.assertEqual(list(self.row.complaints()), [])

    def test_any_alert_of_a_healthy_server_is_reported(self):
        course = course_of(fault("nothing", None))
        course.begin(100.0)
        self.assertTrue(course.is_reported)
        course.see({"Alert"}, [], 101.0)
        course.begin_mending(110.0)
        self.assertTrue(course.is_over)
        self.assertEqual(list(course.rows[0].complaints()), ["also fired: Alert"])


class TwoFaults(unittest.TestCase):
    def test_second_fault_begins_after_the_first_alert_and_is_mended_first(self):
        first, second = fault("first", "One"), fault("second", "Two")
        course = course_of(first, second)
        course.begin(100.0)
        course.see({"One"}, [], 100.5)
        second.breaks.assert_not_called()
        course.see({"One"}, ["One"], 101.0)
        second.breaks.assert_called_once()
        course.see({"One", "Two"}, ["One", "Two"], 102.0)
        self.assertFalse(course.is_reported)
        course.see({"Two"}, ["One", "Two"], 103.0)
        self.assertTrue(course.is_reported)
        course.begin_mending(110.0)
        second.mends.assert_called_once()
        course.see({"One"}, ["One", "Two", "One"], 111.0)
        first.mends.assert_not_called()
        course.see(set(), ["One", "Two", "One"], 112.0)
        first.mends.assert_called_once()
        course.see(set(), ["One", "Two", "One"], 113.0)
        self.assertTrue(course.is_over)
        self.assertEqual([list(row.complaints()) for row in course.rows], [[], []])


class Verdict(unittest.TestCase):
    def test_counts_rows_and_prints_complaints(self):
        good, bad = course_of(fault("nothing", None)), course_of(fault("it breaks", "Alert", also=["Also"]))
        good.server.name, bad.server.name = "corvane1", "corvane2"
        for course in (good, bad):
            course.begin(100.0)
            course.begin_mending(110.0)
        mails = [mailbox.Mail("team", "corvane2", ("Also",)), mailbox.Mail("team", "corvane2", ("Alert", "Else")),
                 mailbox.Mail("team", "corvane1", ("Alert",))]
        said = io.StringIO()
        with contextlib.redirect_stdout(said):
            self.assertFalse(report.verdict(good.rows + bad.rows, mails, {("corvane3", "Alert")}))
            self.assertTrue(report.verdict(good.rows))
        self.assertEqual(said.getvalue(), "FAILED  corvane2, it breaks: Alert did not fire\n"
                                          "FAILED  an e-mail about corvane2: Alert Else\n"
                                          "FAILED  an e-mail about corvane1: Alert\n"
                                          "FAILED  corvane3, which was not broken: Alert\n"
                                          "1 passed, 4 failed\n1 passed, 0 failed\n")


class Mails(unittest.TestCase):
    def test_subject_names_the_place_and_its_alerts(self):
        mail = mailbox.read_mail(b"To: on-call@example.org\r\nSubject: 127.0.0.1:9116: CorvaneOne\r\n CorvaneTwo\r\n\r\nx")
        self.assertEqual(mail, ("on-call", "127.0.0.1:9116", ("CorvaneOne", "CorvaneTwo")))

    def test_an_alert_counts_once_for_each_mail_about_its_place(self):
        box = mailbox.Mailbox(None)
        box.mails = [mailbox.Mail("team", "a", ("One", "Two")), mailbox.Mail("team", "b", ("One",)),
                     mailbox.Mail("on-call", "a", ("One",))]
        self.assertEqual(box.alerts_of("a"), ["One", "Two", "One"])


class TargetsFile(unittest.TestCase):
    def test_file_has_the_names_that_are_shown(self):
        with tempfile.TemporaryDirectory() as folder:
            targets = monitoring.Targets(pathlib.Path(folder))

            def written():
                return yaml.safe_load(pathlib.Path(folder, monitoring.TARGETS_FILE).read_text(encoding="utf-8"))

            targets.add("a", "b", "c")
            targets.remove("b")
            self.assertEqual(written(), [{"targets": ["a", "c"]}])
            targets.hide()
            self.assertEqual(written(), [])
            targets.show()
            self.assertEqual(written(), [{"targets": ["a", "c"]}])


class Files(unittest.TestCase):
    def test_minutes_of_waiting_times_and_ranges_become_seconds_and_nothing_else_changes(self):
        self.assertEqual(monitoring.quicken("a:\n  for: 5m\n  expr: rate(x[5m]) + y[1d]\n  for: 30s\n# for: 5m\n"),
                         "a:\n  for: 5s\n  expr: rate(x[5s]) + y[1d]\n  for: 30s\n# for: 5m\n")

    def test_configuration_gets_servers_from_a_file_and_keeps_the_rest(self):
        before, after = self.before_and_after()
        self.assertEqual(after["scrape_configs"][0].pop("file_sd_configs"), [{"files": [monitoring.TARGETS_FILE]}])
        self.assertEqual(after.pop("global"), {"scrape_interval": "1s", "evaluation_interval": "1s"})
        del before["scrape_configs"][0]["static_configs"], before["global"]
        self.assertEqual(after, before)

    def test_shards_of_the_page_replace_only_what_they_name(self):
        shards = monitoring.read_shards((TOP / "docs" / "scaling.md").read_text(encoding="utf-8"))
        before, after = self.before_and_after(shards)
        for job, parts, old in zip(after["scrape_configs"], shards, before["scrape_configs"], strict=True):
            self.assertEqual({key: job[key] for key in parts}, parts)
            self.assertEqual(job.get("metric_relabel_configs"), old.get("metric_relabel_configs"))
        self.assertEqual(after["scrape_configs"][1]["static_configs"], [{"targets": monitoring.EXPORTERS}])

    def test_only_the_waiting_times_of_messages_change(self):
        text = (DELIVERED / "alertmanager.yml").read_text(encoding="utf-8")
        before, after = yaml.safe_load(text), yaml.safe_load(monitoring.send_at_once(text))
        before["route"] |= {"group_wait": "1s", "group_interval": "1s"}
        self.assertEqual(after, before)

    def test_script_raises_every_delivered_alert(self):
        rules = yaml.safe_load((DELIVERED / "corvane.rules.yml").read_text(encoding="utf-8"))
        delivered = {rule["alert"] for group in rules["groups"] for rule in group["rules"]}
        faults = [EXPORTER, JOB] + [fault for faults in SCRIPT for fault in faults]
        self.assertEqual({fault.alert for fault in faults} - {None}, delivered)
        self.assertEqual(len(SCRIPT), 12, "tools/run-fleet starts twelve servers by default")

    def before_and_after(self, shards=None):
        text = (DELIVERED / "prometheus.yml").read_text(encoding="utf-8")
        return yaml.safe_load(text), yaml.safe_load(monitoring.scrape_often(monitoring.for_these_servers(text, shards)))

    def test_delivered_intervals_stay_if_the_fleet_is_not_quick(self):
        text = (DELIVERED / "prometheus.yml").read_text(encoding="utf-8")
        kept = yaml.safe_load(monitoring.for_these_servers(text))["global"]
        self.assertEqual(kept, {"scrape_interval": "30s", "evaluation_interval": "30s"})


if __name__ == "__main__":
    unittest.main()
