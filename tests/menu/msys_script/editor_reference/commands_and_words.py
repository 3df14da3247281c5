import zut

result = zut.script.sys.execute_python_code(code="print(1)", collect_stdout=True)
zut.interactive.sys.execute_script(
    file="other.py",
    parameters={"a": 1},
)
name_with_import_ = None
print_me = print
zut.script.sys.no_such_command()
zut.script.sys.delay_script(time=0.5) if True else False
x = zut.gui.something \
    .more()


class Point(object):
    def __init__(self, x, y):
        self.x = x
        self.y = y

    def __repr__(self):
        return "Point(%d, %d)" % (self.x, self.y)
