"""Runs CPython's own test modules and prints their counts, one line a module:

    COUNTS MODULE run=N failures=N errors=N skipped=N

The same file runs under python3 and under `zut run`, so that the two can be compared
(compare_with_python3). Usage: driver.py [-v] MODULE...   (-v: the failures' tracebacks)
"""

import io
import os
import sys
import unittest

from test import support
from test.support import os_helper


def run_module(name, verbose):
    suite = unittest.defaultTestLoader.loadTestsFromName("test." + name)
    stream = io.StringIO()
    result = unittest.TextTestRunner(stream=stream, verbosity=0).run(suite)
    print("COUNTS %s run=%d failures=%d errors=%d skipped=%d"
          % (name, result.testsRun, len(result.failures), len(result.errors), len(result.skipped)), flush=True)
    for test, trace in result.failures + result.errors:
        print("  not passed: %s" % test.id(), file=sys.stderr)
        if verbose:
            print(trace, file=sys.stderr)


def main(arguments):
    verbose = "-v" in arguments
    names = [argument for argument in arguments if argument != "-v"]
    if not names:
        print(__doc__, file=sys.stderr)
        return 2
    # As the regression test runner without -u: no network, no huge files, no long computations.
    support.use_resources = []
    # A folder of its own: several drivers may run at once.
    with os_helper.temp_cwd(None):
        for name in names:
            run_module(name, verbose)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
