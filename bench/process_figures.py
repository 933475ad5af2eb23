"""The processor time and memory of a process, as the kernel counts them."""

import time
from pathlib import Path


def memory(pid):
    """KiB in memory (RSS), and the process's proportional share of them (PSS)."""
    lines = Path(f"/proc/{pid}/smaps_rollup").read_text(encoding="ascii").splitlines()[1:]
    figures = dict(line.split()[:2] for line in lines)
    return int(figures["Rss:"]), int(figures["Pss:"])


def processor_seconds(pid):
    """Of all threads, ended ones included, by the process's clock in the kernel."""
    scheduler_clock = 2
    return time.clock_gettime(~pid << 3 | scheduler_clock)
