"""Measures a few points and reports them."""
import zut

# Defaults for a quick run
TOLERANCE = 0.05


class Report:
    def __init__(self, name):
        self.name = name
        self.rows = []

    def add(self, label, value):
        if abs(value) > TOLERANCE:
            print("out of tolerance:", label)
        self.rows.append((label, value))


def measure(points):
    report = Report('points')
    for index, point in enumerate(points):
        result = zut.script.sys.execute_python_code(
            code="print(%r)" % (point,),
            collect_stdout=True,
        )
        report.add("P%d" % index, float(result))
    return report


if __name__ == "__main__":
    done = measure([0.01, 0.2, -0.03])
    zut.script.sys.delay_script(time=0)
    print(len(done.rows), True, None)
