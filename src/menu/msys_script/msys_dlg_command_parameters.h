#pragma once

#include <QDialog>
#include <QString>

#include <vector>

#include "core/error_log.h"
#include "gapp/command.h"
#include "menu/msys_script/msys_parameter_map.h"

class QCheckBox;
class QLabel;
class QPlainTextEdit;

namespace Vel::MSysScript {

// A form over the arguments of one command call of a script: a typed field for each argument the
// command declares (and for any other the call gives), each with a box that leaves the argument
// out so that its default applies.
class CommandParametersDialog : public QDialog
{
  Q_OBJECT

public:
  // `text` holds the call's lines, the first of them line `first_line` of the script. Throws
  // GApp::CommandError (ERR_PARSE_PARAMETERS) when the call does not read or names no command.
  CommandParametersDialog(const QString& text, int first_line, QWidget* parent = nullptr);

  // The call's text with the form's arguments. Throws GApp::CommandError when a field does not
  // hold a value of its argument's type.
  QString rewrittenText() const;
  const CommandCall& call() const { return _call; }

  // The field of an argument and its box ("given"); null for an unknown name.
  QWidget* field(const QString& name) const;
  QCheckBox* givenBox(const QString& name) const;

  void accept() override;

private:
  struct Row
  {
    GApp::CommandMetaInfo::Argument argument;
    QCheckBox* given = nullptr;
    QWidget* field = nullptr;
    QVariant original;  // the call's value; invalid for an argument it does not give
    bool edited = false;
  };

  QWidget* createField(Row& row);
  void setFieldValue(const Row& row, const QVariant& value);
  QVariant fieldValue(const Row& row) const;
  ArgumentList arguments() const;

  QString _text;
  CommandCall _call;
  std::vector<Row> _rows;
  QLabel* _problem = nullptr;
};

// Opens the form for the command call that holds `line` (0-based) of the editor's text and, on
// OK, rewrites that call as one undo step. A call that cannot be read is shown with
// MSysScriptErr-0010 and its position, and also returned in `log`; the text stays as it was.
// True when the text was changed.
bool editCommandParameters(QPlainTextEdit* editor, int line, QWidget* parent, ErrorLog& log);

}  // namespace Vel::MSysScript
