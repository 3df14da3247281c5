#pragma once

// The script the editor benchmarks work on: the file ZUT_BENCH_PY names, or else 100,000
// generated lines of ordinary Python (classes, functions, loops, strings, comments, commands).

#include <QFile>
#include <QString>
#include <QStringList>

inline QString generatedScript(int lines)
{
  static const char* const unit[] = {
      "class Sample%1(object):",
      "    \"\"\"A class with a docstring # that holds a hash\"\"\"",
      "    def __init__(self, value):",
      "        self.value = value  # keep it",
      "        self.items = [1, 2.5, 'three', \"four\"]",
      "",
      "    def measure(self, points):",
      "        for index, point in enumerate(points):",
      "            if point > self.value:",
      "                result = zut.script.sys.execute_python_code(",
      "                    code='print(%r)' % (point,),",
      "                    collect_stdout=True)",
      "            else:",
      "                print('below', index, True, None)",
      "        return len(points)",
      "",
  };
  QStringList text;
  for (int i = 0; text.size() < lines; ++i)
    for (const char* line : unit)
      text << QString::fromLatin1(line).arg(i);
  return text.mid(0, lines).join(QLatin1Char('\n'));
}

inline const QString& benchScript()
{
  static const QString text = [] {
    const QString path = qEnvironmentVariable("ZUT_BENCH_PY");
    QFile file(path);
    if (!path.isEmpty() && file.open(QIODevice::ReadOnly))
      return QString::fromUtf8(file.readAll());
    return generatedScript(100000);
  }();
  return text;
}
