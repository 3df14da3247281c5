#include "menu/msys_script/msys_dlg_command_parameters.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QTextBlock>
#include <QTextCursor>
#include <QVBoxLayout>

#include <algorithm>
#include <climits>

#include "core/translate.h"
#include "gapp/command_container.h"
#include "gapp/interaction.h"
#include "gedit/source_editor.h"
#include "gscript/script_database.h"
#include "gtools/vel_file_select.h"
#include "menu/msys_script/msys_cmd_base.h"
#include "menu/msys_script/msys_error_codes.h"
#include "menu/msys_script/msys_python_parser.h"

namespace Vel::MSysScript {
namespace {

using Meta = GApp::CommandMetaInfo;

QString text(const char* source)
{
  return translate("VelMSysScript_CommandParameters", source, "");
}

bool isInteger(const QVariant& value)
{
  return value.typeId() == QMetaType::LongLong || value.typeId() == QMetaType::Int;
}

// The kind of field an argument gets: its declared type, unless the call gives it a value that
// such a field cannot hold; then the value's literal.
int fieldType(int type, const QVariant& value)
{
  if (!value.isValid() && type != Meta::TYPE_ANY)
    return type;
  switch (type) {
    case Meta::TYPE_BOOLEAN: return value.typeId() == QMetaType::Bool ? type : Meta::TYPE_ANY;
    case Meta::TYPE_INTEGER:
      return isInteger(value) && value.toLongLong() >= INT_MIN && value.toLongLong() <= INT_MAX ? type : Meta::TYPE_ANY;
    case Meta::TYPE_DOUBLE: return value.typeId() == QMetaType::Double || isInteger(value) ? type : Meta::TYPE_ANY;
    case Meta::TYPE_STRING:
    case Meta::TYPE_FILE: return value.typeId() == QMetaType::QString ? type : Meta::TYPE_ANY;
    case Meta::TYPE_CONFIG_LEVEL: {
      int level = 0;
      return Meta::readConfigLevel(value, level) ? type : Meta::TYPE_ANY;
    }
    case Meta::TYPE_LIST:
    case Meta::TYPE_DICTIONARY:
    case Meta::TYPE_PARAMETER_MAP: return type;
    default: return Meta::TYPE_ANY;
  }
}

bool fitsLiteralType(int type, const QVariant& value)
{
  switch (type) {
    case Meta::TYPE_LIST:
      return value.typeId() == QMetaType::QVariantList || value.typeId() == qMetaTypeId<PythonTuple>();
    case Meta::TYPE_DICTIONARY:
    case Meta::TYPE_PARAMETER_MAP: return value.typeId() == QMetaType::QVariantMap;
    default: return true;
  }
}

}  // namespace

CommandParametersDialog::CommandParametersDialog(const QString& call_text, int first_line, QWidget* parent)
    : QDialog(parent), _text(call_text), _call(readCommandCall(call_text, first_line))
{
  const GApp::Command* command = GApp::CommandContainer::getInstance().getCommand(_call.command);
  if (!command)
    failCommand(ERR_PARSE_PARAMETERS, text("There is no command '%1'.").arg(_call.command));
  setObjectName(QStringLiteral("VelMSysScript_CommandParametersDialog"));
  setWindowTitle(text("Command Parameters"));

  for (const Meta::Argument& argument : command->getMetaInfo().getArgumentTypes()) {
    Row row;
    row.argument = argument;
    if (const CallArgument* given = _call.find(argument.name))
      row.original = given->value;
    _rows.push_back(row);
  }
  // Arguments the command does not declare are kept, so that nothing of the call is lost.
  for (const CallArgument& given : _call.arguments) {
    if (std::any_of(_rows.begin(), _rows.end(), [&](const Row& row) { return row.argument.name == given.name; }))
      continue;
    Row row;
    row.argument.name = given.name;
    row.argument.description = text("not an argument of this command");
    row.original = given.value;
    _rows.push_back(row);
  }

  auto* layout = new QVBoxLayout(this);
  auto* heading = new QLabel(QStringLiteral("<b>%1</b><br><code>zut.%2.%3</code>")
                                 .arg(command->getTitle().toHtmlEscaped(),
                                      _call.interactive ? QStringLiteral("interactive") : QStringLiteral("script"),
                                      _call.command.toHtmlEscaped()),
                             this);
  layout->addWidget(heading);

  auto* form = new QWidget;
  auto* grid = new QGridLayout(form);
  grid->setColumnStretch(1, 1);
  int grid_row = 0;
  for (Row& row : _rows) {
    const bool given = _call.find(row.argument.name) != nullptr;
    row.given = new QCheckBox(row.argument.name, form);
    row.given->setObjectName(QStringLiteral("given_") + row.argument.name);
    row.given->setChecked(given);
    row.given->setToolTip(text("Unchecked: the call leaves the argument out and its default applies."));
    row.field = createField(row);
    row.field->setEnabled(given);
    connect(row.given, &QCheckBox::toggled, row.field, &QWidget::setEnabled);
    grid->addWidget(row.given, grid_row, 0);
    grid->addWidget(row.field, grid_row, 1);
    QString description = row.argument.description;
    if (row.argument.type != Meta::TYPE_ANY || !row.argument.description.isEmpty())
      description += QStringLiteral(" (%1%2)").arg(Meta::typeCodeName(row.argument.type),
                                                   row.argument.required ? text(", required") : QString());
    auto* label = new QLabel(description.trimmed(), form);
    label->setWordWrap(true);
    label->setEnabled(false);
    grid->addWidget(label, grid_row + 1, 1);
    grid_row += 2;
  }
  if (_rows.empty())
    grid->addWidget(new QLabel(text("The command takes no arguments."), form), 0, 0);
  grid->setRowStretch(grid_row, 1);

  // Only a long form scrolls: a scroll area's sizes are guesses until it is shown, and a short
  // form would be clipped by them.
  if (_rows.size() > 8) {
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(form);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setMinimumWidth(form->sizeHint().width() + scroll->verticalScrollBar()->sizeHint().width());
    scroll->setMinimumHeight(420);
    layout->addWidget(scroll, 1);
  } else {
    layout->addWidget(form, 1);
  }

  _problem = new QLabel(this);
  _problem->setObjectName(QStringLiteral("problem"));
  _problem->setWordWrap(true);
  _problem->setStyleSheet(QStringLiteral("color: #b00020"));
  _problem->hide();
  layout->addWidget(_problem);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  layout->addWidget(buttons);
  resize(qMax(520, sizeHint().width()), sizeHint().height());
}

QWidget* CommandParametersDialog::createField(Row& row)
{
  const int type = fieldType(row.argument.type, row.original);
  QWidget* field = nullptr;
  // Set before the edit signals are connected: only a person's changes count as edits.
  const auto edited = [&row] { row.edited = true; };
  switch (type) {
    case Meta::TYPE_BOOLEAN: {
      auto* box = new QCheckBox;
      box->setChecked(row.original.toBool());
      connect(box, &QCheckBox::toggled, this, edited);
      field = box;
      break;
    }
    case Meta::TYPE_INTEGER: {
      auto* spin = new QSpinBox;
      spin->setRange(INT_MIN, INT_MAX);
      spin->setValue(int(row.original.toLongLong()));
      connect(spin, &QSpinBox::valueChanged, this, edited);
      field = spin;
      break;
    }
    case Meta::TYPE_DOUBLE: {
      auto* spin = new QDoubleSpinBox;
      spin->setRange(-1e15, 1e15);
      spin->setDecimals(6);
      spin->setValue(row.original.toDouble());
      connect(spin, &QDoubleSpinBox::valueChanged, this, edited);
      field = spin;
      break;
    }
    case Meta::TYPE_STRING: {
      auto* edit = new QLineEdit(row.original.toString());
      connect(edit, &QLineEdit::textChanged, this, edited);
      field = edit;
      break;
    }
    case Meta::TYPE_FILE: {
      auto* select = new Vel_FileSelect;
      select->setTitle(row.argument.name);
      select->setFileName(row.original.toString());
      connect(select, &Vel_FileSelect::fileNameChanged, this, edited);
      field = select;
      break;
    }
    case Meta::TYPE_CONFIG_LEVEL: {
      auto* combo = new QComboBox;
      combo->addItems({QStringLiteral("system"), QStringLiteral("public"), QStringLiteral("user")});
      int level = GScript::LEVEL_USER;
      if (row.original.isValid())
        Meta::readConfigLevel(row.original, level);
      combo->setCurrentIndex(level);
      connect(combo, &QComboBox::currentIndexChanged, this, edited);
      field = combo;
      break;
    }
    default: {
      auto* edit = new QLineEdit(row.original.isValid() || _call.find(row.argument.name) ? writeLiteral(row.original)
                                                                                         : QString());
      edit->setPlaceholderText(text("a Python literal"));
      connect(edit, &QLineEdit::textChanged, this, edited);
      field = edit;
      break;
    }
  }
  field->setObjectName(QStringLiteral("field_") + row.argument.name);
  field->setProperty("literal", type != row.argument.type || type == Meta::TYPE_ANY || type == Meta::TYPE_OBJECT ||
                                    type == Meta::TYPE_LIST || type == Meta::TYPE_DICTIONARY ||
                                    type == Meta::TYPE_PARAMETER_MAP);
  return field;
}

QVariant CommandParametersDialog::fieldValue(const Row& row) const
{
  QWidget* field = row.field;
  if (auto* box = qobject_cast<QCheckBox*>(field))
    return box->isChecked();
  if (auto* spin = qobject_cast<QSpinBox*>(field))
    return qlonglong(spin->value());
  if (auto* spin = qobject_cast<QDoubleSpinBox*>(field))
    return spin->value();
  if (auto* select = qobject_cast<Vel_FileSelect*>(field))
    return select->getFileName();
  if (auto* combo = qobject_cast<QComboBox*>(field))
    return combo->currentText();
  const QString entered = qobject_cast<QLineEdit*>(field)->text();
  if (!field->property("literal").toBool())
    return entered;
  QVariant value;
  try {
    value = readLiteral(entered);
  } catch (const GApp::CommandError& error) {
    failCommand(ERR_PARSE_PARAMETERS, QStringLiteral("%1: %2").arg(row.argument.name, error.getLog().getText()));
  }
  if (!fitsLiteralType(row.argument.type, value))
    failCommand(ERR_PARSE_PARAMETERS,
                text("%1: expected a %2").arg(row.argument.name, Meta::typeCodeName(row.argument.type)));
  return value;
}

ArgumentList CommandParametersDialog::arguments() const
{
  ArgumentList result;
  for (const Row& row : _rows) {
    if (!row.given->isChecked())
      continue;
    // An untouched field gives the call's own value, which its spin box may have rounded.
    const bool keep = !row.edited && _call.find(row.argument.name);
    result.append({row.argument.name, keep ? row.original : fieldValue(row)});
  }
  return result;
}

QString CommandParametersDialog::rewrittenText() const
{
  return rewriteCall(_text, arguments());
}

QWidget* CommandParametersDialog::field(const QString& name) const
{
  for (const Row& row : _rows)
    if (row.argument.name == name)
      return row.field;
  return nullptr;
}

QCheckBox* CommandParametersDialog::givenBox(const QString& name) const
{
  for (const Row& row : _rows)
    if (row.argument.name == name)
      return row.given;
  return nullptr;
}

void CommandParametersDialog::accept()
{
  try {
    rewrittenText();
  } catch (const GApp::CommandError& error) {
    _problem->setText(error.getLog().getText());
    _problem->show();
    return;
  }
  QDialog::accept();
}

bool editCommandParameters(QPlainTextEdit* editor, int line, QWidget* parent, ErrorLog& log)
{
  const QString script = editor->toPlainText();
  CommandBlockAccess access(script);
  CommandBlockAccess::Interval interval = access.getCommandInterval(unsigned(line));
  if (interval == CommandBlockAccess::INVALID) {
    // The interpreter finds no end of a broken call; the reader then says what is wrong with it.
    access.setScanMode(CommandBlockAccess::ScanMode::NEXT_START);
    interval = access.getCommandInterval(unsigned(line));
  }
  const auto refuse = [&](const QString& code, const ErrorLog& lines) {
    log.append(lines);
    GApp::ErrorDialog(code, lines.getText());
    return false;
  };
  if (interval == CommandBlockAccess::INVALID)
    return refuse(QString::fromLatin1(ERR_PARSE_PARAMETERS),
                  ErrorLog(text("Line %1 is not part of a command call.").arg(line + 1)));

  QTextDocument* document = editor->document();
  const QTextBlock last = document->findBlockByNumber(int(interval.second));
  const int start = document->findBlockByNumber(int(interval.first)).position();
  const int end = last.position() + last.length() - 1;
  const QString old_text = script.mid(start, end - start);
  QString new_text;
  try {
    CommandParametersDialog dialog(old_text, int(interval.first) + 1, parent ? parent : editor);
    if (dialog.exec() != QDialog::Accepted)
      return false;
    new_text = dialog.rewrittenText();
  } catch (const GApp::CommandError& error) {
    return refuse(error.getCode(), error.getLog());
  }
  if (new_text == old_text)
    return false;

  GEdit::replaceDifference(document, start, old_text, new_text);
  return true;
}

}  // namespace Vel::MSysScript
