"""The table of whole runs in docs/performance.md, written from bench/recorded.json and nothing else."""
BEGIN = "<!-- scripts/bench writes what follows from bench/recorded.json -->\n"
END = "<!-- end of what scripts/bench writes -->\n"

MACHINE = "%(processor)s, %(cores)d cores, %(memory_gb)d GB, Linux %(kernel)s, files on %(files)s"


def last_of(records, name):
    """The last record that has the run, and its figures."""
    for record in reversed(records):
        if name in record["runs"]:
            return record, record["runs"][name]
    return None, None


def times(figures, state):
    if state not in figures:
        return "| | "
    return "| %(ratio).2f (%(low).2f to %(high).2f) | %(ms).0f " % figures[state]


def row(run, record, figures):
    return "| %s %s%s| %.0f | %s |" % (run.about, times(figures, "warm"), times(figures, "cold"), figures["peak_mb"],
                                       record["commit"])


def described(record):
    """Where and how a record was taken."""
    settings = "".join(", `%s=%s`" % setting for setting in record["settings"].items())
    return "%s, %s: %s, load %.1f%s" % (record["commit"], record["date"], MACHINE % record["machine"], record["load"], settings)


def table(records, runs):
    """The last figures of each run, as lines of Markdown."""
    found = [(run, *last_of(records, run.name)) for run in runs]
    rows = [row(run, record, figures) for run, record, figures in found if record]
    if not rows:
        return "\nNothing is recorded yet.\n\n"
    head = ["", "| Run | Warm | ms | Cold | ms | Peak MB | Commit |", "|---|---|---|---|---|---|---|"]
    used = [record for record in records if any(record is source for _, source, _ in found)]
    return "\n".join([*head, *rows, "", *("- %s." % described(record) for record in used), "", ""])


def with_table(page, records, runs):
    """The page with the table of the records in its place."""
    before, begin, rest = page.partition(BEGIN)
    _, end, after = rest.partition(END)
    if not begin or not end:
        raise ValueError("the page has no place for the table")
    return before + begin + table(records, runs) + end + after
