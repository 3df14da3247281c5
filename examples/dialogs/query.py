# Asks once and goes on with the answer. Run without a person:
#   zut run examples/dialogs/query.py --answers examples/dialogs/query.answers.json
import pathlib

import zut

xml = (pathlib.Path(__file__).parent / "query.xml").read_text()
answer = zut.script.sys.execute_user_defined_dialog(content=xml)
if answer.result:
    print(f"probing {answer.points} points with a {answer.diameter:.2f} mm tip"
          + (", twice" if answer.twice else ""))
else:
    print("cancelled")
