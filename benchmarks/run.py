#!/usr/bin/env python3
"""Runs the benchmarks and prints one table per job: ours, the limit and each peer.

Usage: ./dev bench [--repetitions N] [JOB]

JOB is a part of the names of the jobs to run, "section" say. A run of all jobs in the usual
repetitions writes docs/performance.md.
"""
import argparse
import json
import pathlib
import platform
import re
import resource
import statistics
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = ROOT / "build/gcc"
PAGE = ROOT / "docs/performance.md"
REPETITIONS = 15

# The job, what its limit is, and what is to be reached: a ratio to the limit, or nanoseconds above.
JOBS = {
    "section_typed": ("Read a section of 20 keys, its values typed and in declared order", "a reader by hand into a struct", 1.5),
    "section_texts": ("The same section, every value a text", "the same reader, parsing with `std::from_chars`", 1.5),
    "section_shuffled": ("The same section, typed, shuffled among 60 entries", "the same reader over a hash table", 1.3),
    "section_defaults": ("The same section with nothing given", "building a struct of its defaults", 1.3),
    "check_int": ("Check an integer with bounds", "the comparison by hand", "8 ns"),
    "check_choice": ("Check a text with 4 choices", "the comparison by hand", "8 ns"),
    "text_to_int": ("Text to an `int` key, a tenth with white space or underscores", "`std::from_chars` without these", 1.4),
    "text_to_float": ("Text to a `float` key", "`std::from_chars`", 1.2),
    "text_to_list": ("Text to a `list` key, five items", "splitting by hand into a vector of strings", 1.3),
    "show_int": ("Show an integer", "`std::to_chars` into a fresh string", 1.2),
    "show_double": ("Show a double", "`std::to_chars` into a fresh string", 1.15),
    "show_text_64": ("Show a text of 64 bytes, plain ASCII", "copying it into a fresh string", 1.6),
    "show_text_plain": ("Show a text of 1 MiB, plain ASCII", "copying it between two quotes", 4),
    "show_text_escapes": ("Show a text of 1 MiB, ASCII with 5 % escapes", "a byte loop that appends", 0.33),
    "show_text_mixed": ("Show a text of 1 MiB, mixed UTF-8 with 5 % escapes", "a loop that decodes, tests and appends", 0.5),
    "show_list": ("Show a list of 10,000 mixed values", "its leaves written by hand into one buffer", 0.6),
    "shown_items": ("Show 80 characters of ten million items", "the same of 20 items", 1.5),
    "shown_shared": ("Show 80 characters of a list that holds itself, shared 2^40 times", "the same of 20 items", 1.5),
    "shown_levels": ("Show 80 characters of a million levels", "the same of 20 items", 1.5),
    "shown_text": ("Show 80 characters of a text of 100 MB", "one `memchr` over it", 1.2),
    "million_digits": ("Read and show an integer of 1,000,000 digits", "copying the digits twice", 3),
    "declare": ("Declare and resolve 20 sections of 20 keys", "a vector of structs with owned strings", 2),
    "yaml_manifests": ("Load 10 MB of ordinary manifests", "`YAML::LoadFile`", 0.65),
    "yaml_text": ("Load one quoted text of 10 MB", "`YAML::LoadFile`", 0.9),
    "load": ("Load a file of 20 sections of 20 keys through layers", "`velmora::yaml::load_file` of it", 1.25),
    "load_many": ("The same of 500 sections", "25 files of 20", 1.25),
    "load_aliases": ("The same with 2,000 aliases of one list", "25 files of 20", 1.25),
    "explain": ("Explain 10,000 keys", "25 times 400", 1.25),
    "live": ("Read one value in effect while seven other threads read, too, and one reloads", "reading it through a pointer", "30 ns"),
    "compile": ("Compile a schema of 30 keys", "the same keys as record types", 1.25),
}

# The one job that is no part of the program: each of its contenders is a file to compile.
COMPILATION = "compile"


def rank(who):
    return (who != "ours", who != "limit", who.lower())


def measure(jobs, repetitions):
    """The medians of a run, {job: {who: (nanoseconds, allocations)}}, and its circumstances."""
    report = BUILD / "benchmarks.json"
    run = subprocess.run(
        [BUILD / "benchmarks/velmora_benchmarks", f"--benchmark_filter=^({'|'.join(jobs)})/",
         f"--benchmark_repetitions={repetitions}", "--benchmark_enable_random_interleaving=true",
         "--benchmark_min_time=0.05", f"--benchmark_out={report}", "--benchmark_out_format=json"],
        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    if run.returncode != 0:
        sys.exit(run.stderr)
    result = json.loads(report.read_text())
    times, allocations = {}, {}
    for each in result["benchmarks"]:
        if each["run_type"] == "iteration":
            name = each["run_name"]
            times.setdefault(name, []).append(each["cpu_time"] / each["operations"])
            allocations[name] = each["allocations"]
    medians = {job: {} for job in jobs if f"{job}/ours" in times}
    for name in sorted(times, key=lambda name: rank(name.split("/", 1)[1])):
        job, who = name.split("/", 1)
        medians[job][who] = (statistics.median(times[name]), allocations[name])
    return medians, result["context"]


def measure_compilation(repetitions):
    """The same for the job of compiling, in turns."""
    times = {"ours": [], "limit": []}
    for _ in range(repetitions):
        for who in times:
            before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
            output(cached("CMAKE_CXX_COMPILER"), "-std=c++20", "-O2", f"-I{ROOT}", "-c", f"benchmarks/compile/{who}.cpp",
                   "-o", "/dev/null")
            times[who].append((resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before) * 1e9)
    return {who: (statistics.median(all), 0) for who, all in times.items()}


def time_text(nanoseconds):
    for unit, size in (("s", 1e9), ("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def relation(job, time, limit):
    """How a time relates to the limit, as the job's target does: a text, and whether that is reached."""
    target = JOBS[job][2]
    if isinstance(target, str):
        return f"{time - limit:.1f} ns", time - limit <= float(target.split()[0])
    return f"{time / limit:.2f}", time / limit <= target


def print_table(job, contenders):
    what, limit, target = JOBS[job]
    print(f"\n{job}: {what}\n  limit: {limit}; to reach: {target}")
    for who, (time, allocations) in contenders.items():
        text, _ = relation(job, time, contenders["limit"][0])
        print(f"  {who:24}{time_text(time):>10}{text:>10}{allocations:>12.7g} allocations")


def page_row(job, contenders):
    what, limit, target = JOBS[job]
    ours, allocations = contenders["ours"]
    base = contenders["limit"][0]
    reached, in_time = relation(job, ours, base)
    peers = ", ".join(f"{who} {relation(job, time, base)[0]}" for who, (time, _) in contenders.items()
                      if who not in ("ours", "limit"))
    cells = [what, limit, time_text(base), time_text(ours), f"{allocations:.7g}",
             reached if in_time else f"**{reached} missed**", str(target), peers]
    return "| " + " | ".join(cells) + " |"


def output(*command):
    return subprocess.run(command, cwd=ROOT, capture_output=True, text=True, check=True).stdout.strip()


def cached(name):
    return re.search(rf"^{name}:\w+=(.*)$", (BUILD / "CMakeCache.txt").read_text(), re.M)[1]


def write_page(medians, context):
    processor = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    build_type = cached("CMAKE_BUILD_TYPE")
    flags = cached("CMAKE_CXX_FLAGS_" + build_type.upper())
    commit = output("git", "describe", "--always", "--dirty")
    compiler = output(cached("CMAKE_CXX_COMPILER"), "--version").splitlines()[0]
    machine = processor[1] if processor else platform.machine()
    load = ", ".join(f"{each:.1f}" for each in context["load_avg"])
    rows = "\n".join(page_row(job, medians[job]) for job in JOBS)
    PAGE.parent.mkdir(exist_ok=True)
    PAGE.write_text(f"""\
# Performance

Written by `./dev bench`; do not edit. Every job is done by the library, by the code that a programmer
writes by hand for this job alone, which is its limit, and by other libraries where they do the like.
Results are checked before they are timed. Times are medians of {REPETITIONS} repetitions of one run, in which
all contenders take turns at random. What is reached, by us and by the others, is the ratio to the limit of
the same run, where it is in nanoseconds the time above it.

- Machine: {machine}, {context["num_cpus"]} cores, load {load} at the start
- Compiler: {compiler}, {build_type} ({flags})
- Commit: {commit}, on {context["date"][:10]}

| job | limit | limit takes | ours takes | ours allocates | reached | to reach | peers |
| --- | --- | --- | --- | --- | --- | --- | --- |
{rows}
""", encoding="utf-8")
    print(f"\nWrote {PAGE.relative_to(ROOT)}.")


def main():
    parser = argparse.ArgumentParser(prog="./dev bench", description="Runs the benchmarks.")
    parser.add_argument("--repetitions", type=int, default=REPETITIONS)
    parser.add_argument("job", nargs="?", default="", help="a part of the names of the jobs to run")
    arguments = parser.parse_args()
    jobs = [job for job in JOBS if arguments.job in job]
    if not jobs:
        parser.error(f"no job is called {arguments.job!r}; there are {', '.join(JOBS)}")
    medians, context = {}, None
    if jobs != [COMPILATION]:
        medians, context = measure(jobs, arguments.repetitions)
    if COMPILATION in jobs:
        medians[COMPILATION] = measure_compilation(arguments.repetitions)
    for name, contenders in medians.items():
        print_table(name, contenders)
    if medians.keys() == JOBS.keys() and arguments.repetitions == REPETITIONS:
        write_page(medians, context)


if __name__ == "__main__":
    main()
