"""Subject and yardstick in turns, so that a machine that slows down slows both."""

import statistics


def interleaved(rounds, **makers):
    """Calls the makers one after the other, `rounds` times and once before to warm up; their samples by name."""
    samples = {name: [] for name in makers}
    for turn in range(rounds + 1):
        for name, make in makers.items():
            sample = make()
            if turn > 0:
                samples[name].append(sample)
    return samples


def median(samples, part=lambda sample: sample):
    return statistics.median(part(sample) for sample in samples)


def ratio(subject, yardstick, part=lambda sample: sample):
    """Of the medians."""
    return median(subject, part) / median(yardstick, part)
