"""The rows of the table: what is measured against what, and how much of it is enough."""

from dataclasses import dataclass, field


@dataclass(frozen=True)
class Row:
    what: str
    yardstick: str
    goal: float  # at most
    unit: str = "times"


ROWS = {
    "fold": Row("fold a 500 MB history, one thread", "wc -l on it", 1.75),
    "fold-distinct": Row("the same, every line with addresses of its own", "wc -l on it", 5.5),
    "load": Row("load 25 histories of 20 MB", "wc -l on all", 1.1),
    "reload": Row("reload with 25 unchanged histories of 20 MB", "their first load", 0.02),
    "reload-bytes": Row("bytes of history that the reload reads", "none", 0, "bytes"),
    "scan-memory": Row("peak memory of a load, lines of 8 MB of text", "the idle program", 32, "MB more"),
    "scan-memory-values": Row("peak memory of a load, lines of 8 MB of numbers", "the idle program", 32, "MB more"),
    "check": Row("one website check, CPU", "a bare TLS handshake", 1.4),
    "check-curl": Row("one website check, CPU", "curl -sI", 0.08),
    "service-check": Row("one check of a status service with a feed of 100 KB, CPU", "curl -s", 0.1),
    "feed-statuspage": Row("read a Statuspage feed of 100 KB", "parsing it with nlohmann::json", 1.3),
    "feed-betterstack": Row("read a Better Stack feed of 100 KB", "parsing it with nlohmann::json", 1.3),
    "feed-instatus": Row("read an Instatus feed of 100 KB", "parsing it with nlohmann::json", 1.3),
    "feed-slack": Row("read a Slack feed of 100 KB", "parsing it with nlohmann::json", 1.3),
    "feed-memory": Row("peak memory of reading a feed of 100 KB", "none", 8, "MB"),
    "append": Row("one append, CPU", "the same system calls alone", 1.3),
    "dashboard-content": Row("content of the dashboard, 25 websites and 10 services, CPU", "none", 1, "ms"),
    "idle-pss": Row("idle memory, PSS", "a bare Qt tray program", 1.25),
    "idle-rss": Row("idle memory, RSS", "a bare Qt tray program", 1.25),
    "idle-rss-gtk": Row("the same where GTK's platform theme is installed", "a bare Qt tray program", 0.85),
    "idle-rss-plasma": Row("the same in a session of Plasma with its theme", "a bare Qt tray program", 0.35),
    "start": Row("from the start to the registered icon", "a bare Qt tray program", 1.75),
    "wake-ups-stopped": Row("wake-ups in five minutes, stopped", "none", 5, "wake-ups"),
    "wake-ups-between": Row("wake-ups in five minutes, between two checks", "none", 5, "wake-ups"),
}


@dataclass(frozen=True)
class Result:
    row: str
    value: float
    subject: float | None = None
    yardstick: float | None = None
    in_: str = ""  # the unit of both
    also: dict = field(default_factory=dict)  # further readings by name

    def is_met(self):
        return self.value <= ROWS[self.row].goal

    def as_json(self, verdicts):
        row = ROWS[self.row]
        found = {"what": row.what, "yardstick": row.yardstick, "value": self.value, "unit": row.unit, "goal": row.goal,
                 "subject": self.subject, "yardstick_value": self.yardstick, "in": self.in_, "also": self.also}
        return {**found, "met": self.is_met()} if verdicts else found
