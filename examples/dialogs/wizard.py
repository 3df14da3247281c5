# Two steps in one dialog: the handler follows Back and Next and enables what each step needs.
#   zut run examples/dialogs/wizard.py --answers examples/dialogs/wizard.answers.json
import pathlib

import zut

xml = (pathlib.Path(__file__).parent / "wizard.xml").read_text()
dlg = zut.script.sys.create_user_defined_dialog(content=xml)
step = 1


def show_step():
    dlg.title = f"Set-up, step {step} of 2"
    dlg.operator.enabled = step == 1
    dlg.marker.enabled = step == 2
    dlg.control.prev.enabled = step > 1
    dlg.control.next.enabled = step < 2


def handler(widget):
    global step
    if widget == dlg.control.next:
        step += 1
    elif widget == dlg.control.prev:
        step -= 1
    show_step()


dlg.handler = handler
answer = zut.script.sys.show_user_defined_dialog(dialog=dlg)
print(answer.result, answer.operator, answer.marker)
