"""What happens to one server: its faults one after the other, and the way back."""

from faults import faults_of
from report import Row


class Course:
    """The rows of one server. A fault comes when the alert of the one before has fired; the last
    is mended first, and the one before it when that alert has gone."""

    def __init__(self, server, number):
        self.server = server
        self.rows = [Row(server, fault) for fault in faults_of(number)]
        self._at = 0
        self._is_mending = False

    @property
    def has_fired(self):
        return all(row.has_fired for row in self.rows)

    @property
    def is_over(self):
        return all(row.is_over for row in self.rows)

    def begin(self, now):
        self.rows[0].break_it(now)

    def begin_mending(self, now):
        """Whatever is broken by now."""
        self._is_mending = True
        self.rows[self._at].mend_it(now)

    def see(self, firing, now):
        """Takes in the server's alerts of this moment, and goes on when it is time."""
        row = self.rows[self._at]
        # The alerts of earlier faults take a moment to give way, and may come back for one
        # while the last is mended.
        earlier = {row.fault.alert for row in self.rows[:self._at]}
        row.see(firing, now, earlier)
        if self._is_mending and row.is_over and self._at > 0:
            self._at -= 1
            self.rows[self._at].mend_it(now)
        elif not self._is_mending and row.has_fired and self._at + 1 < len(self.rows):
            self._at += 1
            self.rows[self._at].break_it(now)
