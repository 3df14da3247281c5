#!/usr/bin/env python3
"""Writes the dialogs the dialog benchmark compares with Qt's .ui loader: N elements, half labels
and half decimal fields, in a grid of N/2 rows and 2 columns, once as a dialog definition
(dialog_N.xml, read by bench_dialog_definition with ZUT_BENCH_DIALOGS=FOLDER) and once as a .ui
file of QLabel and QDoubleSpinBox (dialog_N.ui) for the loader's measuring program.

usage: dialog_mix.py FOLDER N...
"""
import os
import sys


def escape(text):
    return text.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")


def prop(name, kind, value):
    return f'     <property name="{name}">\n      <{kind}>{escape(str(value))}</{kind}>\n     </property>\n'


def main():
    folder = sys.argv[1]
    for n in map(int, sys.argv[2:]):
        rows = n // 2
        ui = ['<?xml version="1.0" encoding="UTF-8"?>\n<ui version="4.0">\n <class>Dialog</class>\n'
              ' <widget class="QWidget" name="Dialog">\n'
              '  <property name="windowTitle">\n   <string>Bench dialog</string>\n  </property>\n'
              '  <layout class="QGridLayout" name="grid">\n']
        ours = ['<?xml version="1.0" encoding="UTF-8"?>\n<dialog>\n <title>Bench dialog</title>\n'
                ' <style>Standard</style>\n <control id="OkCancel"/>\n <position>automatic</position>\n'
                ' <embedding>always_toplevel</embedding>\n <sizemode>automatic</sizemode>\n'
                f' <size width="0" height="0"/>\n <content rows="{rows}" columns="2">\n']
        for r in range(rows):
            ui.append(f'   <item row="{r}" column="0">\n    <widget class="QLabel" name="label_{r}">\n'
                      + prop("text", "string", f"Parameter {r} [mm]")
                      + prop("toolTip", "string", f"Tool tip of parameter {r}") + "    </widget>\n   </item>\n")
            ui.append(f'   <item row="{r}" column="1">\n    <widget class="QDoubleSpinBox" name="number_{r}">\n'
                      + prop("decimals", "number", 3) + prop("minimum", "double", -1000.0)
                      + prop("maximum", "double", 1000.0) + prop("value", "double", r * 0.5)
                      + "    </widget>\n   </item>\n")
            ours.append(f'  <widget type="label" row="{r}" column="0" rowspan="1" columnspan="1">\n'
                        f"   <name>label_{r}</name>\n   <tooltip>Tool tip of parameter {r}</tooltip>\n"
                        f"   <text>Parameter {r} [mm]</text>\n  </widget>\n")
            ours.append(f'  <widget type="input::number" row="{r}" column="1" rowspan="1" columnspan="1">\n'
                        f"   <name>number_{r}</name>\n   <tooltip></tooltip>\n   <value>{r * 0.5}</value>\n"
                        "   <minimum>-1000</minimum>\n   <maximum>1000</maximum>\n   <precision>3</precision>\n"
                        "   <background_style></background_style>\n  </widget>\n")
        ui.append("  </layout>\n </widget>\n <resources/>\n <connections/>\n</ui>\n")
        ours.append(" </content>\n</dialog>\n")
        with open(os.path.join(folder, f"dialog_{n}.ui"), "w") as file:
            file.write("".join(ui))
        with open(os.path.join(folder, f"dialog_{n}.xml"), "w") as file:
            file.write("".join(ours))


if __name__ == "__main__":
    main()
