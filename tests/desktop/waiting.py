"""Waiting for something to happen, which ends early when it cannot happen any more."""

import signal
import time


class WaitInVain(AssertionError):
    """What was waited for cannot come any more."""


def wait_until(condition, timeout=30, what="the condition", lost=lambda: None):
    """Returns the first true value of `condition`; TimeoutError after `timeout` seconds.

    WaitInVain at once when `lost` says why it can never come true: a sentence, or None as long as it can.
    """
    deadline = time.monotonic() + timeout
    while True:
        # Asked first, so that the condition sees all that was done before the loss.
        why = lost()
        try:
            value = condition()
        except Exception:
            why = why or lost()
            if not why:
                raise
            value = None
        if value:
            return value
        if why:
            raise WaitInVain(f"{why} while {what} was waited for")
        if time.monotonic() > deadline:
            raise TimeoutError(f"waited {timeout} s for {what}")
        time.sleep(0.02)


def how_it_ended(name, process):
    """Says how the process ended, or None while it runs."""
    code = process.poll()
    if code is None:
        return None
    if code < 0:
        return f"{name} was ended by {signal.Signals(-code).name}"
    return f"{name} has ended with code {code}"
