"""Times as a pool holds them: plain seconds, UTC in its two forms, mission elapsed time. Microsecond resolution."""

import datetime

MONTHS = ("JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC")


class SECONDS_AXIS:
    """Plain seconds, counted from a reference number that is part of every time."""
    is_text = False

    def __init__(self, reference_s=0.0):
        self._reference_s = reference_s

    def reference(self):
        return "%.17g" % self._reference_s

    def time(self, seconds, _index=0):
        return self._reference_s + seconds


class UTC_AXIS:
    is_text = True

    def __init__(self, reference):
        self._reference = reference

    def reference(self):
        return self.time(0.0)

    def time(self, seconds, index=0):
        """The two forms of UTC text take turns, as in pools that several producers have filled."""
        moment = self._reference + datetime.timedelta(microseconds=round(seconds * 1e6))
        if index % 2:
            return moment.strftime("%Y-%m-%dT%H:%M:%S.%f")
        return "%02d-%s-%04d/%s" % (moment.day, MONTHS[moment.month - 1], moment.year, moment.strftime("%H:%M:%S.%f"))


class MET_AXIS:
    is_text = True

    def __init__(self, reference_us):
        self._reference_us = reference_us

    def reference(self):
        return self.time(0.0)

    def time(self, seconds, _index=0):
        total_us = self._reference_us + round(seconds * 1e6)
        minutes, us = divmod(total_us, 60000000)
        hours, minute = divmod(minutes, 60)
        day, hour = divmod(hours, 24)
        return "+%04d/%02d:%02d:%02d.%06d" % (day, hour, minute, us // 1000000, us % 1000000)


def axis(kind, days_later=0):
    """The time axis of an orbit representation's last word; a repeat pass lies some days later."""
    if kind == "double":
        return SECONDS_AXIS(19567.5)
    if kind == "utc":
        return UTC_AXIS(datetime.datetime(2021, 3, 4, 5, 6, 7, 250000) + datetime.timedelta(days=days_later))
    return MET_AXIS((12 + days_later) * 86400000000 + 11044125000)
