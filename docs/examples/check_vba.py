"""Holds a VBA module against the declarations it calls, as no VBA compiler runs here: every function exists and
gets as many arguments as it has."""
import pathlib
import re
import sys

declarations, module = (pathlib.Path(name).read_text() for name in sys.argv[1:])
parameters = {name: len(re.findall(r"By(?:Val|Ref) ", arguments)) for name, arguments in
              re.findall(r"^Public Declare PtrSafe Function (\w+) Lib \"[^\"]+\" \((.*)\) As \w+$", declarations,
                         re.MULTILINE)}
if len(parameters) < 200:
    sys.exit(f"only {len(parameters)} declarations are readable")
code = re.sub(r"'.*", "", re.sub(r'"[^"]*"', '""', module))
calls = re.findall(r"\b(tq\w+)(?:\(([^()]*)\)| ([^\n:]*))", code)
faults = [] if calls else ["no call found"]
for name, in_parentheses, as_statement in calls:
    given = len((in_parentheses or as_statement).split(","))
    if parameters.get(name) != given:
        faults.append(f"{name} with {given} arguments, declared are {parameters.get(name)}")
print("\n".join(faults) or f"{len(calls)} calls as they are declared")
sys.exit(bool(faults))
