"""What scripts with a family's peers have in common: they are called

    FAMILY_peers.py prepare FOLDER [SHARE]   makes the data, in a new folder; with SHARE one in so many things only, for a
                                             look whether all still works
    FAMILY_peers.py measure FOLDER JSON      runs the peers, and adds their times to the benchmark's results
"""
import json
import os
import pathlib
import shutil
import sys
import time

RUNS = 7


def add_run(data, work, peer, seconds):
    data["benchmarks"].append({"run_name": f"{work}/peer:{peer}", "run_type": "iteration", "time_unit": "s",
                               "real_time": seconds})


def seconds_of(work):
    start = time.perf_counter()
    work()
    return time.perf_counter() - start


def main(prepare, measure):
    verb, folder, *rest = sys.argv[1:]
    if verb == "prepare":
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)
        os.chdir(folder)
        return prepare(*map(int, rest))
    results = pathlib.Path(rest[0]).absolute()
    data = json.loads(results.read_text())
    os.chdir(folder)
    measure(data)
    results.write_text(json.dumps(data, indent=1))
