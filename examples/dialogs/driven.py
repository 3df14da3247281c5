# A driven dialog: the handler enables OK only while the part number is valid and says why
# not in the status line. Run without a person:
#   zut run examples/dialogs/driven.py --answers examples/dialogs/driven.answers.json
import pathlib
import re

import zut

xml = (pathlib.Path(__file__).parent / "driven.xml").read_text()
dlg = zut.script.sys.create_user_defined_dialog(content=xml)


def valid(text):
    return re.fullmatch(r"[A-Z]+-[0-9]+", text) is not None


def handler(widget):
    if widget == "initialize" or widget == dlg.part:
        ok = valid(dlg.part.value)
        dlg.control.ok.enabled = ok
        dlg.control.status = "" if ok else "A part number looks like A-17"


dlg.handler = handler
answer = zut.script.sys.show_user_defined_dialog(dialog=dlg)
print(answer.result, answer.part, answer.inspected.isoformat() != "")
