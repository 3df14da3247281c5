#include <pybind11/eval.h>
#include <pybind11/pybind11.h>

#include <gtest/gtest.h>

#include "gscript/python_interpreter.h"
#include "menu/msys_script/msys_tools_python.h"
#include "menu/msys_script/msys_value_limits.h"

namespace py = pybind11;
using namespace Vel::MSysScript;

namespace {

py::object evaluate(const char* expression)
{
  Vel::GScript::PythonInterpreter::initialize();
  return py::eval(expression);
}

// The limits written as one line of text, so that a table of cases can say what it expects.
std::string describe(const ValueLimits* limits)
{
  if (!limits)
    return "none";
  if (dynamic_cast<const EmptyValueLimits*>(limits))
    return "empty";
  if (const auto* n = dynamic_cast<const NumericValueLimits*>(limits))
    return QStringLiteral("numeric %1 %2..%3 digits %4")
        .arg(n->isLimited() ? QStringLiteral("limited") : QStringLiteral("free"))
        .arg(n->getLower())
        .arg(n->getUpper())
        .arg(n->getDigits())
        .toStdString();
  if (const auto* l = dynamic_cast<const ListValueLimits*>(limits))
    return QStringLiteral("list %1 [%2]")
        .arg(l->isLimited() ? QStringLiteral("limited") : QStringLiteral("free"),
             l->getDescriptions().join(QLatin1Char('|')))
        .toStdString();
  if (const auto* f = dynamic_cast<const FileTypeValueLimits*>(limits))
    return QStringLiteral("files %1 [%2]")
        .arg(f->isLimited() ? QStringLiteral("limited") : QStringLiteral("free"),
             f->getExtensions().join(QLatin1Char('|')))
        .toStdString();
  return "unknown";
}

struct LimitsCase
{
  const char* python;
  const char* expected;
};

class ValueLimitsFromPython : public ::testing::TestWithParam<LimitsCase>
{};

TEST_P(ValueLimitsFromPython, FollowTheFirstRuleThatMatches)
{
  const py::object object = evaluate(GetParam().python);
  std::unique_ptr<ValueLimits> limits(createValueLimits(object.ptr()));
  EXPECT_EQ(describe(limits.get()), GetParam().expected) << GetParam().python;
  EXPECT_FALSE(PyErr_Occurred());
}

INSTANTIATE_TEST_SUITE_P(
    Rules, ValueLimitsFromPython,
    ::testing::Values(
        LimitsCase{"3", "numeric free 0..0 digits 3"},
        // bool is an int to the interpreter.
        LimitsCase{"True", "numeric free 0..0 digits 1"}, LimitsCase{"2**40", "none"},
        LimitsCase{"(0.0, 10.0)", "numeric limited 0..10 digits 2"},
        // ints are not taken for the bounds.
        LimitsCase{"(0, 10)", "none"}, LimitsCase{"(0.0, 10)", "none"},
        LimitsCase{"(-1.5, 1.5, 4)", "numeric limited -1.5..1.5 digits 4"}, LimitsCase{"(-1.5, 1.5, 4.0)", "none"},
        LimitsCase{"(1.0,)", "none"}, LimitsCase{"(1.0, 2.0, 3, 4)", "none"}, LimitsCase{"[0.0, 10.0]", "none"},
        LimitsCase{"None", "empty"}, LimitsCase{"{}", "numeric free 0..0 digits 2"},
        LimitsCase{"{'lower': 0.0, 'upper': 1.0, 'limited': True}", "numeric limited 0..1 digits 2"},
        LimitsCase{"{'lower': 0.0, 'upper': 1.0, 'limited': True, 'step': 0.1}", "none"},
        LimitsCase{"{'lower': 0, 'upper': 1.0}", "none"}, LimitsCase{"{'limited': 1, 'digits': 3}", "none"},
        LimitsCase{"{'digits': 5}", "numeric free 0..0 digits 5"},
        LimitsCase{"{'limited': True, 'descriptions': ['a', 'b', 3]}", "list limited [a|b|3]"},
        LimitsCase{"{'descriptions': []}", "list free []"}, LimitsCase{"{'descriptions': ('a',)}", "none"},
        LimitsCase{"{'limited': False, 'extensions': ['stl', 'txt']}", "files free [stl|txt]"},
        LimitsCase{"{'descriptions': ['a'], 'extensions': ['stl']}", "none"},
        LimitsCase{"{'extensions': ['stl'], 'other': 1}", "none"}, LimitsCase{"'0..10'", "none"},
        LimitsCase{"1.5", "none"}));

// The items' str() is the script's own code: it may change the dictionary or the list that is
// being read. Whatever it does, the lists in hand are read to their end and nothing is freed
// under the reader.
struct ChangingCase
{
  const char* what;
  const char* change;  // what the first item's str() does to the dictionary `d`
  const char* dictionary;
  const char* expected;
};

class ValueLimitsFromAChangingDictionary : public ::testing::TestWithParam<ChangingCase>
{};

TEST_P(ValueLimitsFromAChangingDictionary, ReadTheListsThatWereLookedUp)
{
  Vel::GScript::PythonInterpreter::initialize();
  // Its own globals, so that nothing but the dictionary holds the lists.
  py::dict scope;
  scope["__builtins__"] = py::module_::import("builtins");
  py::exec(QStringLiteral("class Changing:\n"
                          "    def __str__(self):\n"
                          "        %1\n"
                          "        return 'gone'\n"
                          "d = %2\n")
               .arg(QString::fromLatin1(GetParam().change), QString::fromLatin1(GetParam().dictionary))
               .toStdString(),
           scope);
  std::unique_ptr<ValueLimits> limits(createValueLimits(py::object(scope["d"]).ptr()));
  EXPECT_EQ(describe(limits.get()), GetParam().expected);
  EXPECT_FALSE(PyErr_Occurred());
}

INSTANTIATE_TEST_SUITE_P(Rules, ValueLimitsFromAChangingDictionary,
                         ::testing::Values(
                             // The list that was looked up is the one read, although the dictionary now holds another.
                             // `spare` takes the place of a list freed too early, so that reading it shows.
                             ChangingCase{"list_replaced", "d['descriptions'] = []; spare = [0] * 5",
                                          "{'descriptions': [Changing(), 'b']}", "list free [gone|b]"},
                             ChangingCase{"other_list_dropped", "del d['extensions']; spare = [0] * 5",
                                          "{'descriptions': [Changing(), 'b'], 'extensions': ['stl']}", "none"},
                             ChangingCase{"list_emptied", "d['descriptions'].clear()",
                                          "{'descriptions': [Changing(), 'b']}", "list free [gone]"}),
                         [](const ::testing::TestParamInfo<ChangingCase>& info) {
                           return std::string(info.param.what);
                         });

TEST(PythonObjectText, IsTheObjectsStrAsUnicode)
{
  EXPECT_EQ(pythonObjectText(evaluate("'Grüße \\U0001F600'").ptr()), QStringLiteral("Grüße \U0001F600"));
  EXPECT_EQ(pythonObjectText(evaluate("'a\\x00b'").ptr()), QString::fromUtf16(u"a\0b", 3));
  EXPECT_EQ(pythonObjectText(evaluate("[1, 'x']").ptr()), QStringLiteral("[1, 'x']"));
  EXPECT_EQ(pythonObjectText(evaluate("None").ptr()), QStringLiteral("None"));
}

TEST(PythonObjectText, ABrokenStrGivesEmptyTextAndLeavesNoError)
{
  Vel::GScript::PythonInterpreter::initialize();
  py::exec("class Broken:\n    def __str__(self):\n        raise ValueError('no')\n", py::globals());
  EXPECT_EQ(pythonObjectText(evaluate("Broken()").ptr()), QString());
  EXPECT_FALSE(PyErr_Occurred());
}

}  // namespace
