"""The list of the mutants that nobody can notice, and what is wrong with it."""

import pathlib
import sys

LIST = pathlib.Path(__file__).with_name("survivors.txt")
MOST_SURVIVORS = 0.08


def read():
    """The list: a mutant's name on a line, below it the reason, indented; blank lines and lines with # are skipped."""
    survivors, name = {}, None
    for number, line in enumerate(LIST.read_text().splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        if line.startswith(" "):
            if name is None:
                sys.exit(f"{LIST.name}:{number}: a reason without a mutant before it")
            survivors[name] = (survivors[name] + " " + line.strip()).strip()
        else:
            name = line.strip()
            survivors[name] = ""
    for name, reason in survivors.items():
        if not reason:
            sys.exit(f"{LIST.name}: no reason is given for '{name}'")
    return survivors


def complaints_about_list(every, survivors):
    names = {mutant.name for mutant in every}
    complaints = [f"listed as a survivor, but no such mutant exists: {n}" for n in survivors if n not in names]
    if len(survivors) > MOST_SURVIVORS * len(every):
        complaints.append(f"{len(survivors)} survivors are listed, more than {MOST_SURVIVORS:.0%} of {len(every)}")
    return complaints


def complaints_about_outcomes(outcomes, survivors):
    for name, outcome in outcomes.items():
        if outcome == "survived" and name not in survivors:
            yield f"no test notices: {name}"
        if outcome not in ("survived", "does not compile") and name in survivors:
            yield f"listed as a survivor, but {outcome}: {name}"
        if outcome == "the build timed out":
            yield f"could not be tried, the build timed out: {name}"
