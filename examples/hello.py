"""A first script: calls module commands through zut.script and prints what they return."""

import zut

name = PARAMETERS.get("name", "world")

# Run Python text as a command of its own and collect what it prints.
greeting = zut.script.sys.execute_python_code(
    code="print('Hello, ' + PARAMETERS['name'] + '!')",
    parameters={"name": name},
    collect_stdout=True,
)
print("sys.execute_python_code returned:", repr(greeting))

# A failing command raises zut.CommandError with its code, message and log.
try:
    zut.script.sys.execute_script(file="/nonexistent/script.py")
except zut.CommandError as error:
    print("sys.execute_script failed as expected:", error.code, "-", error.message)
