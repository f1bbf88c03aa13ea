#!/usr/bin/env python3
"""summary.py LOGS PRESET...: one line a test program and preset, then the sum of all of them.

A GoogleTest program counts case by case, any other test as one. A step that is no test (layout, a build that
broke) counts as one, too, so that the last line cannot claim more than was run.
"""
import pathlib
import sys
import xml.etree.ElementTree as ElementTree


def program_counts(results, entry):
    """Passed, failed and skipped cases of one entry of the ctest report; GoogleTest may have listed them."""
    crashed = entry.get("status") != "run"
    cases = results / f"{entry.get('name')}.xml"
    if not cases.exists():
        return (0, 1, 0) if crashed else (1, 0, 0)
    totals = ElementTree.parse(cases).getroot()
    tests, failures, errors = (int(totals.get(name, 0)) for name in ("tests", "failures", "errors"))
    failed = failures + errors
    # GoogleTest sums the skipped ones up for each suite only.
    skipped = sum(int(suite.get(name, 0)) for suite in totals.findall("testsuite")
                  for name in ("disabled", "skipped"))
    # Every case passed and the program failed all the same: a leak found at its end, for instance.
    return tests - failed - skipped, max(failed, int(crashed)), skipped


def main():
    logs, presets = pathlib.Path(sys.argv[1]), sys.argv[2:]
    total_passed = total_failed = 0
    for preset in presets:
        results = pathlib.Path("build", preset, "results")
        report = results / "ctest.xml"
        if not report.exists():
            print(f"{preset:8} not tested")
            continue
        for entry in sorted(ElementTree.parse(report).iter("testcase"), key=lambda entry: entry.get("name")):
            passed, failed, skipped = program_counts(results, entry)
            if entry.get("name").startswith("wine_") and not failed:
                continue
            print(f"{preset:8} {entry.get('name'):24} {passed:6} passed {failed:4} failed"
                  f"{f' {skipped:4} skipped' if skipped else ''}{'  <-- FAILED' if failed else ''}")
            total_passed += passed
            total_failed += failed
    broken = logs / "failed"
    steps = broken.read_text().splitlines() if broken.exists() else []
    total_failed += sum(1 for step in steps if not step.endswith(": test"))
    if not total_failed and steps:
        total_failed = len(steps)
    total_passed += (logs / "layout.log").exists() and "layout" not in steps
    print(f"{total_passed} passed, {total_failed} failed")
    sys.exit(bool(total_failed))


if __name__ == "__main__":
    main()
