"""Runs itself again through sys.execute_script, PARAMETERS['depth'] levels deep."""

import zut

depth = PARAMETERS.get("depth", 3)
print("  " * (3 - depth) + f"level {depth}")
if depth > 0:
    zut.script.sys.execute_script(file=__file__, parameters={"depth": depth - 1})
