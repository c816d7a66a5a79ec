#!/usr/bin/python3
"""Runs the benchmarks and prints a table of what they found.

    run.py PROGRAMS_FOLDER [NAME...]

PROGRAMS_FOLDER is the build's `bench` folder; NAME is a benchmark of the table below, all of them when none is given.
What the programs report in full lies in PROGRAMS_FOLDER/results, a JSON file each. The exit code is 1 when a figure is
missed.
"""

import dataclasses
import json
import os
import pathlib
import subprocess
import sys

# How programs say so; tests/encoders/StarterEncoders.h.
NO_STARTER = "the starter encoders aren't built"
WALL = ""
PROCESSOR = "_cpu"


@dataclasses.dataclass(frozen=True)
class Figure:
    """One number of a program's report; `asked` is what it has to stay below, where something is asked."""

    says: str
    counter: str
    asked: float | None = None
    unit: str = ""
    clock: str = WALL
    # Some figures need the starter encoders, which not every machine can build.
    needs_starter: bool = False


# A frame of a display at 60 Hz.
FRAME = 16.7
# What the precomputation of the predefined tags may hold the event loop for: less than a frame.
PASS_PAUSE = 16
# What lists of 30 times as many files may take beside the one file in work.
SAME_MEMORY = 1.1

# What a question of the store may take, of the time that the sqlite3 shell needs for its SQL.
LIKE_THE_SHELL = 3

PROGRAMS = {
    "search": ("SearchBenchmark", [
        Figure("search of 100,000 rows : bare read of them", "search/read", 1.5),
        Figure("reading and scoring alone : bare read", "scan/read"),
        Figure("plain loop : scoring in blocks", "plain/fastest", clock=PROCESSOR),
        Figure("plain loop : scoring in blocks, portable", "plain/portable", clock=PROCESSOR),
    ]),
    "tags": ("TagBenchmark", [
        Figure("all tags of 1,000,000 rows : the same by sqlite3", "list/shell", LIKE_THE_SHELL),
        Figure("suggestions for a letter : the same by sqlite3", "search/shell", LIKE_THE_SHELL),
        Figure("a tag's count : the same by sqlite3", "count/shell", LIKE_THE_SHELL),
        Figure("a rating's count : the same by sqlite3", "rating/shell", LIKE_THE_SHELL),
        Figure("all tags' counts at once : the same by sqlite3", "counts/shell", LIKE_THE_SHELL),
    ]),
    "pause": ("embedding/SearchPauseBenchmark", [
        Figure("longest pause of the GUI thread in a search", "pause_ms", FRAME, " ms"),
    ]),
    "decode": ("DecodeBenchmark", [
        Figure("thumbnail of 24 MP, encoded : bare scaled decode", "thumbnail/decode"),
        Figure("thumbnail of 24 MP, encoded : the same by libvips", "thumbnail/vips"),
    ]),
    "thumbnail": ("ThumbnailBenchmark", []),
    "run": ("ProcessingRunBenchmark", [
        Figure("run with nothing to do : its bare questions", "run/questions", clock=PROCESSOR),
        Figure("memory of a run over 3,000 files : over 100", "many/few", SAME_MEMORY),
    ]),
    "embedding": ("embedding/EmbeddingBenchmark", [
        Figure("embedding of a picture : bare run of the encoder", "extraction/run"),
        Figure("the same through the service : bare run", "service/run"),
        Figure("starter: embedding of a picture : bare run", "starter_extraction/run", 1.15, needs_starter=True),
        Figure("starter: embedding of an English text", "starter_text_ms", 30, " ms", needs_starter=True),
        Figure("starter: embedding of a Chinese text", "starter_chinese_text_ms", 30, " ms", needs_starter=True),
    ]),
    "recommendation": ("embedding/RecommendationBenchmark", [
        Figure("starter: tags of 1,000 - 1.1 x embedding a picture", "surplus_ms", 5, " ms", needs_starter=True),
        Figure("starter: tags of 1,000 : embedding of a picture", "recommendation/embedding", needs_starter=True),
        Figure("starter: longest pause of the GUI, first start", "first_pause_ms", PASS_PAUSE, " ms", needs_starter=True),
        Figure("starter: longest pause of the GUI, second start", "second_pause_ms", PASS_PAUSE, " ms", needs_starter=True),
        Figure("starter: precomputing all tags, first start", "first_pass_ms", None, " ms", needs_starter=True),
        Figure("starter: the same, second start", "second_pass_ms", None, " ms", needs_starter=True),
    ]),
    "grid": ("window/GridBenchmark", [
        Figure("50,000 photographs scroll by in 5 s: frames, p95", "scroll_5s_p95_ms", 16, " ms"),
        Figure("the same: longest frame", "scroll_5s_longest_ms", 50, " ms"),
        Figure("the same: memory's growth", "scroll_5s_growth_mb", 60, " MB"),
        Figure("the same in 60 s: frames, p95", "scroll_60s_p95_ms", 16, " ms"),
        Figure("the same: longest frame", "scroll_60s_longest_ms", 50, " ms"),
        Figure("the same: memory's growth", "scroll_60s_growth_mb", 60, " MB"),
        Figure("folder of 2,000, cached: first thumbnail", "folder_2000_first_ms", 150, " ms"),
        Figure("the same: all thumbnails in view", "folder_2000_all_ms", None, " ms"),
        Figure("folder of 50,000, cached: first thumbnail", "folder_50000_first_ms", 150, " ms"),
        Figure("typing a query: longest frame", "typing_longest_ms", 16, " ms"),
        Figure("emptying the field: longest frame", "emptying_longest_ms", 16, " ms"),
        Figure("first arrow key in 50,000: its frame", "first_arrow_ms", None, " ms"),
        Figure("arrow held at row 49,000: longest frame", "arrows_longest_ms", FRAME, " ms"),
    ]),
    "listing": ("ListingBenchmark", [
        Figure("files of a folder of 50,000 : bare reading of it", "listing/bare"),
        Figure("their order by name : plain sort of the names", "sorting/plain"),
        Figure("listing them", "listing_ms", None, " ms"),
        Figure("ordering them", "sorting_ms", None, " ms"),
    ]),
    "start": ("window/StartBenchmark", [
        Figure("start to first painted window, 50,000 rows", "start_painted_ms", 700, " ms"),
        Figure("start to encoders loaded", "start_loaded_ms", None, " ms"),
    ]),
    "first-search": ("embedding/FirstSearchBenchmark", [
        Figure("starter: first key to the first search's hits", "answered_ms", 1000, " ms", needs_starter=True),
        Figure("starter: first key to encoders loaded", "loaded_ms", None, " ms", needs_starter=True),
    ]),
}

LAYOUT = "{:<52} {:>9} {:>9} {:>9} {:>9}  {}"


def counters(folder, program):
    results = folder / "results"
    results.mkdir(exist_ok=True)
    report = results / (pathlib.Path(program).name + ".json")
    report.unlink(missing_ok=True)
    run = subprocess.run([folder / program, f"--benchmark_out={report}", "--benchmark_out_format=json"],
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace", check=False)
    if run.returncode != 0:
        sys.exit(f"{program} failed:\n{run.stdout}")
    found = {}
    for benchmark in json.loads(report.read_text())["benchmarks"]:
        # One excuse is good: this machine couldn't build the starter encoders.
        if benchmark.get("error_occurred") and NO_STARTER not in benchmark["error_message"]:
            sys.exit(f'{program}: {benchmark["name"]}: {benchmark["error_message"]}')
        found.update({name: value for name, value in benchmark.items() if isinstance(value, float)})
        # Without ratios: the benchmark's own time.
        found[benchmark["name"]] = f'{benchmark["real_time"]:.3g} {benchmark["time_unit"]}'
    return found


def shown(value, unit=""):
    return "-" if value is None else f"{value:.2f}{unit}"


def show(figure, found):
    """Prints one row; false when the figure is missed."""
    if figure.needs_starter and figure.counter not in found:
        print(LAYOUT.format(figure.says, "-", "-", "", "", "not measured: ./test builds the starter encoders"), flush=True)
        return True
    got = found[figure.counter + figure.clock]
    isMissed = figure.asked is not None and not got < figure.asked
    asked = "-" if figure.asked is None else f"< {figure.asked:g}{figure.unit}"
    print(LAYOUT.format(figure.says, asked, shown(got, figure.unit), shown(found.get(figure.counter + PROCESSOR)),
                        shown(found.get(figure.counter + "_least" + figure.clock), figure.unit), "missed" if isMissed else ""),
          flush=True)
    return not isMissed


def load():
    return f"{os.getloadavg()[0]:.1f}"


def main():
    folder = pathlib.Path(sys.argv[1])
    names = sys.argv[2:] or list(PROGRAMS)
    print(f"load of the machine: {load()} on {os.cpu_count()} processors; figures count when it is idle")
    print(LAYOUT.format("", "asked", "got", "by CPU", "quickest", ""))
    isMet = True
    for name in names:
        program, figures = PROGRAMS[name]
        found = counters(folder, program)
        for figure in figures:
            isMet &= show(figure, found)
        if not figures:
            for says, time in found.items():
                if isinstance(time, str):
                    print(LAYOUT.format(says, "-", time, "", "", ""), flush=True)
    print(f"load at the end: {load()}; all that the programs report lies in {folder / 'results'}")
    sys.exit(0 if isMet else 1)


if __name__ == "__main__":
    main()
