"""Runs the faults of one server one after the other, and mends them in reverse order."""

from report import Row


class Course:
    """The faults of one server, or of a part of the monitoring.

    A fault begins when the alert of the previous fault has fired and was reported. The last fault is
    mended first. An earlier fault is mended when the alert of the later one is gone.
    """

    def __init__(self, server, faults):
        self.server = server
        self.rows = [Row(server, fault) for fault in faults]
        self._at = 0
        self._is_mending = False

    @property
    def is_reported(self):
        return all(row.is_reported for row in self.rows)

    @property
    def is_over(self):
        return all(row.is_over for row in self.rows)

    def begin(self, now):
        self.rows[0].break_it(now)

    def begin_mending(self, now):
        """Mends the last fault that has begun."""
        self._is_mending = True
        self.rows[self._at].mend_it(now)

    def see(self, firing, mails, now):
        """Looks at the alerts of the server that fire now, and starts the next step if it is due.

        `mails` are the alerts in all e-mails about the server until now.
        """
        for each in self.rows:
            each.count(firing, mails)
        row = self.rows[self._at]
        # The alerts of earlier faults need a moment to end. They may fire again while the last
        # fault is mended.
        earlier = {row.fault.alert for row in self.rows[:self._at]}
        row.see(firing, now, earlier)
        if self._is_mending and row.is_over and self._at > 0:
            self._at -= 1
            self.rows[self._at].mend_it(now)
        elif not self._is_mending and row.is_reported and self._at + 1 < len(self.rows):
            self._at += 1
            self.rows[self._at].break_it(now)
