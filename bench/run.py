"""Runs the benchmark program, shows how far it is, and keeps what it measured. bench/compare calls this."""

import argparse
import collections
import datetime
import json
import os
import pathlib
import platform
import resource
import subprocess
import sys
import time

import page
import rows

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROGRAM = ROOT / "build/bench/bench/orvxml_bench"
SHIPPED = ["mame-nes.xml", "vk.xml", "jacob-leisler.svg.xml", "strawberry.svg.xml", "cldr-cs.xml", "cldr-annot-ka.xml",
           "fugue1.mscx.xml"]
PACKAGES = {"pugixml": "libpugixml-dev", "tinyxml2": "libtinyxml2-dev", "libxml2": "libxml2-dev",
            "expat": "libexpat1-dev", "rapidxml": "librapidxml-dev", "xerces-c": "libxerces-c-dev"}
# Those without which there is nothing to compare.
NEEDED = ["orvxml", "pugixml"]
# Those whose reading of XML 1.0 is compared: see also program/libraries/Libraries.h.
STANDARD_READERS = ["orvxml", "pugixml"]
# Each sample of these is a process of its own.
FIRSTS = ["first", "standard-first"]
# Paths are asked of these.
FINDERS = ["orvxml", "pugixml", "libxml2"]
MOST_MEMORY = 4 << 30

# `sample` is the least time of a sample in seconds; generated documents are scaled, those of the growth chart by a
# figure of their own.
Plan = collections.namedtuple("Plan", "name repetitions sample scale growth_repetitions growth_scale counts deadline")
PLANS = {
    "full": Plan("full", 9, 0.02, 1, 3, 1, [1000, 2000, 5000, 10000, 20000, 50000, 100000], 5),
    "quick": Plan("quick", 3, 0.005, 0.1, 1, 1 / 16, [1000, 2000, 5000, 10000], 2),
    "once": Plan("once", 1, 0, 0.01, 1, 0.01, [100, 300], 60),
}


class Failure(Exception):
    pass


class Progress:
    """A bar on a terminal; elsewhere a line for each kind of work."""

    def __init__(self):
        self.total = 0
        self.done = 0
        self.what = None
        self.begin = time.monotonic()

    def finish(self):
        if sys.stderr.isatty():
            print(f"\r{'':110}\r", end="", file=sys.stderr, flush=True)

    def step(self, what):
        self.done += 1
        if sys.stderr.isatty():
            width = 40
            filled = width * self.done // max(self.total, 1)
            passed = time.monotonic() - self.begin
            left = datetime.timedelta(seconds=round(passed / self.done * (self.total - self.done)))
            percent = 100 * self.done // max(self.total, 1)
            line = f"[{'#' * filled}{'.' * (width - filled)}] {percent} %, {left} left: {what}"
            print(f"\r{line[:110]:110}", end="", file=sys.stderr, flush=True)
        elif what != self.what:
            print(f"Measuring {what}", file=sys.stderr, flush=True)
        self.what = what


class Run:
    def __init__(self, plan, keys, documents, progress):
        self.plan = plan
        self.keys = keys
        self.documents = documents
        self.names = dict(zip(map(str, documents), short_names(documents)))
        self.libraries = self.ask("libraries")
        self.measurements = []
        self.left_out = []
        self.progress = progress

    def ask(self, *arguments):
        printed = subprocess.run([PROGRAM, *arguments], stdout=subprocess.PIPE, text=True)
        if printed.returncode != 0:
            raise Failure(f"{PROGRAM.name} {' '.join(arguments)} failed")
        return printed.stdout.split("\n")[:-1]

    def add(self, row, document, part, size, library, values, **more):
        self.measurements.append({"row": row, "document": document, "part": part, "size": size, "library": library,
                                  "values": values, **more})

    def run(self):
        in_process = [key for key in self.keys if key not in (*FIRSTS, "heap", "growth", "queries")]
        firsts = [row for row in FIRSTS if row in self.keys]
        fresh = len(self.documents) * len(self.libraries)
        queries = self.ask("queries") if "queries" in self.keys else []
        for row in firsts:
            readers = sum(len(self.readers_of(row, path)) for path in self.documents)
            self.progress.total += self.plan.repetitions * readers
        self.progress.total += fresh if "heap" in self.keys else 0
        self.progress.total += len(queries) * len(FINDERS) * len(self.plan.counts)
        self.run_cases(self.plan.repetitions, self.plan.sample, self.plan.scale, in_process, self.documents)
        for row in firsts:
            self.run_first(row)
        if "heap" in self.keys:
            self.run_heap()
        if "growth" in self.keys:
            self.run_cases(self.plan.growth_repetitions, 0, self.plan.growth_scale, ["growth"], [])
        for query in queries:
            for library in FINDERS:
                self.run_query(query, library)

    def run_cases(self, repetitions, sample, scale, keys, documents):
        command = [PROGRAM, "run", str(repetitions), str(sample), str(scale), ",".join(keys), *documents]
        with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as program:
            try:
                case = None
                for line in program.stdout:
                    kind, *fields = line.rstrip("\n").split("\t")
                    if kind == "left-out":
                        self.leave_out(*fields)
                    elif kind == "cases":
                        self.progress.total += int(fields[0])
                    else:
                        document, part, size, library, *values = fields
                        document = self.names.get(document, document)
                        self.add(kind, document, part, int(size), library, [float(value) for value in values])
                        if case != (kind, document, part, size):
                            self.progress.step(kind)
                        case = kind, document, part, size
            except BaseException:
                program.kill()
                raise
        if program.returncode != 0:
            raise Failure("the benchmark program failed")

    def leave_out(self, path, library, reason):
        if library == "file":
            raise Failure(f"{path} {reason}")
        if library in NEEDED:
            raise Failure(f"{library} cannot read {path}: {reason}")
        print(f"Going on without {rows.LEFT_OUT_NAMES[library].strip('`')} on {path}: {reason}", file=sys.stderr)
        self.left_out.append({"document": self.names[path], "library": library, "reason": reason})

    def readers_of(self, row, path):
        name = self.names[str(path)]
        without = [one["library"] for one in self.left_out if one["document"] == name]
        if row == "standard-first":
            return STANDARD_READERS if rows.STANDARD not in without else []
        return [library for library in self.libraries if library not in without]

    def run_first(self, row):
        values = collections.defaultdict(list)
        for _ in range(self.plan.repetitions):
            for path in self.documents:
                for library in self.readers_of(row, path):
                    values[path, library].append(float(self.ask(row, library, str(path))[0]))
                    self.progress.step(row)
        for (path, library), seconds in values.items():
            self.add(row, self.names[str(path)], "", path.stat().st_size, library, seconds)

    def run_heap(self):
        for path in self.documents:
            for library in self.readers_of("heap", path):
                if library == "expat":  # it makes no tree
                    continue
                taken, nodes = map(int, self.ask("heap", library, str(path))[0].split("\t"))
                self.add("heap", self.names[str(path)], "", path.stat().st_size, library, [round(taken / nodes, 2)])
                self.progress.step("heap")

    def run_query(self, query, library):
        """One count after the other, until one takes too long or too much memory."""
        for count in self.plan.counts:
            self.progress.step("queries")
            command = [PROGRAM, "query", library, query, str(count), str(self.plan.growth_repetitions)]
            ended = None
            try:
                done = subprocess.run(command, capture_output=True, text=True, timeout=self.plan.deadline,
                                      preexec_fn=limit)
                if done.returncode != 0:
                    ended = done.stderr.strip().rpartition("orvxml_bench: ")[2] or f"signal {-done.returncode}"
                    ended = ended.replace("std::bad_alloc", f"more than {MOST_MEMORY >> 30} GiB")
            except subprocess.TimeoutExpired:
                ended = f"more than {self.plan.deadline} s"
            if ended is None:
                self.add("queries", query, "", count, library, [float(value) for value in done.stdout.split("\t")])
                continue
            if library == rows.OURS:
                raise Failure(f"{query} over {count} elements: {ended}")
            self.add("queries", query, "", count, library, [], ended=ended)
            self.progress.done += len(self.plan.counts) - self.plan.counts.index(count) - 1
            return

    def data(self, about):
        return {
            "about": about,
            "libraries": [{"name": library, "version": version_of(library)} for library in self.libraries],
            "documents": [{"name": self.names[str(path)], "bytes": path.stat().st_size} for path in self.documents],
            "left-out": self.left_out,
            "measurements": self.measurements,
        }


def limit():
    resource.setrlimit(resource.RLIMIT_AS, (MOST_MEMORY, MOST_MEMORY))


def short_names(paths):
    names = [path.name for path in paths]
    return [path.name if names.count(path.name) == 1 else str(path) for path in paths]


def first_line(*command):
    try:
        done = subprocess.run(command, capture_output=True, text=True, cwd=ROOT)
    except OSError:
        return ""
    return done.stdout.strip().split("\n")[0] if done.returncode == 0 else ""


def version_of(library):
    if library == rows.OURS:
        # The last commit that changed the library.
        commit = first_line("git", "log", "-1", "--format=%h", "--", "xml", "orvsys")
        changes = first_line("git", "status", "--porcelain", "--", "xml", "orvsys")
        return f"of commit {commit}{' with changes' if changes else ''}" if commit else ""
    return first_line("dpkg-query", "-W", "-f=${Version}", PACKAGES[library])


def machine():
    """Of the machine what figures depend on, and nothing that names it."""
    processor = memory = ""
    for line in pathlib.Path("/proc/cpuinfo").read_text().split("\n"):
        if line.startswith("model name") and not processor:
            processor = line.partition(":")[2].strip()
    for line in pathlib.Path("/proc/meminfo").read_text().split("\n"):
        if line.startswith("MemTotal"):
            memory = f"{int(line.split()[1]) / (1 << 20):.0f} GiB"
    return {"processor": processor, "processors": os.cpu_count(), "memory": memory,
            "system": f"{platform.system()} {platform.release().partition('-')[0]}",
            "compiler": first_line("g++", "--version")}


class Others:
    """How many processors other programs have kept busy, in the mean since the beginning."""

    def __init__(self):
        self.begin = self.now()

    @staticmethod
    def now():
        fields = pathlib.Path("/proc/stat").read_text().split("\n")[0].split()[1:]
        user, nice, system, _idle, _waiting, *interrupts = map(int, fields[:8])
        busy = (user + nice + system + sum(interrupts)) / os.sysconf("SC_CLK_TCK")
        return time.monotonic(), busy - sum(os.times()[:4])

    def processors(self):
        (begin, before), (end, after) = self.begin, self.now()
        return round(max(after - before, 0) / max(end - begin, 1e-3), 2)


def parse_arguments():
    parser = argparse.ArgumentParser(
        prog="bench/compare",
        description="Measures this library and its peers on the shipped documents or on your own, prints a table, and "
        "writes raw data, charts and a page.")
    parser.add_argument("documents", metavar="DOCUMENT", nargs="*", type=pathlib.Path,
                        help="a document to measure; without one the shipped ones")
    parser.add_argument("--quick", action="store_const", dest="plan", const="quick", default="full",
                        help="to try it out: three repetitions, small generated documents")
    parser.add_argument("--once", action="store_const", dest="plan", const="once",
                        help="everything once, as small as it can be: whether it runs, not how fast")
    parser.add_argument("--rows", metavar="ROW,ROW", default=",".join(rows.KEYS), help=f"of {', '.join(rows.KEYS)}")
    parser.add_argument("--into", metavar="FOLDER", type=pathlib.Path,
                        help="where page, raw data and charts go: docs for a full run over the shipped documents, else "
                        "build/compare")
    parser.add_argument("--check", action="store_true", help="look at the arguments and measure nothing")
    arguments = parser.parse_args()
    arguments.rows = arguments.rows.split(",")
    for key in arguments.rows:
        if key not in rows.KEYS:
            parser.error(f"there is no row {key}; there are {', '.join(rows.KEYS)}")
    for path in arguments.documents:
        if not path.is_file():
            parser.error(f"{path} is no file")
        if not os.access(path, os.R_OK):
            parser.error(f"{path} cannot be read")
    is_whole = not arguments.documents and arguments.plan == "full" and len(arguments.rows) == len(rows.KEYS)
    arguments.into = arguments.into or (ROOT / "docs" if is_whole else ROOT / "build/compare")
    arguments.documents = arguments.documents or [ROOT / "examples/data" / name for name in SHIPPED]
    return arguments


def main():
    arguments = parse_arguments()
    if arguments.check:
        return
    others = Others()
    progress = Progress()
    failed = ""
    try:
        run = Run(PLANS[arguments.plan], arguments.rows, arguments.documents, progress)
        run.run()
    except Failure as failure:
        failed = f"compare: {failure}"
    progress.finish()
    if failed:
        sys.exit(failed)
    about = {"date": datetime.date.today().isoformat(), "plan": arguments.plan,
             "repetitions": PLANS[arguments.plan].repetitions, "others": others.processors(), "machine": machine()}
    data = json.loads(page.raw_text(run.data(about)))
    written = page.write(data, arguments.into)
    print(page.for_terminal(data))
    print(f"{len(data['measurements'])} measurements; see {os.path.relpath(written)}")


if __name__ == "__main__":
    main()
