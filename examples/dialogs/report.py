# A report dialog: while the script measures, each result goes into the dialog's log and its
# progress bar moves on by one step; then the person picks the fitting method, the probe and the
# report file, and the script writes the report there.
#   zut run examples/dialogs/report.py [--answers examples/dialogs/report.answers.json]
import pathlib

import zut

here = pathlib.Path(__file__).parent
dlg = zut.script.sys.create_user_defined_dialog(content=(here / "report.xml").read_text())
# The methods this installation offers, given as value limits: only these may be picked.
dlg.method.limits = {"descriptions": ["Gauss", "Minimum zone", "Chebyshev"], "limited": True}

diameters = [12.003, 11.998, 12.010, 12.001]
dlg.done.maximum = len(diameters)
for step, diameter in enumerate(diameters, 1):
    dlg.log.text = dlg.log.text + f"point {step}: {diameter:.3f} mm\n"
    dlg.done.value = dlg.done.step = step

r = zut.script.sys.show_user_defined_dialog(dialog=dlg)
if r.result:
    report = pathlib.Path(r.report)
    if not report.is_absolute():
        report = pathlib.Path.cwd() / report
    mean = sum(diameters) / len(diameters)
    report.write_text(f"method: {r.method}\nprobe: {r.probe}\nmean: {mean:.4f} mm\n")
    print(r.method, r.probe, report.name, f"{mean:.4f}")
else:
    print("no report")
