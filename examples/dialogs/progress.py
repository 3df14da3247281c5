# A modeless dialog that shows how far the script is while the script works; its timer ticks
# into the handler. Needs no answers: it waits for nobody.
#   zut run examples/dialogs/progress.py
import pathlib
import time

import zut

xml = (pathlib.Path(__file__).parent / "progress.xml").read_text()
dlg = zut.script.sys.create_user_defined_dialog(content=xml)
measured = 0
ticks = 0


def handler(widget):
    global ticks
    if widget == dlg.timer:
        ticks += 1
        dlg.done.value = measured
        dlg.state.value = f"{measured} of 100 points"


dlg.handler = handler
dlg.timer.interval = 50
dlg.timer.enabled = True
zut.script.sys.open_user_defined_dialog(dialog=dlg)
while measured < 100:
    measured += 5
    zut.progress(measured, 100, "measuring")
    end = time.monotonic() + 0.03
    while time.monotonic() < end:  # the work: the dialog stays alive meanwhile
        pass
zut.script.sys.close_user_defined_dialog(dialog=dlg)
print("measured", measured, "points; the dialog followed", "yes" if ticks > 0 else "no")
