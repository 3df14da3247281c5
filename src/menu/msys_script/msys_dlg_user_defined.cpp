#include "menu/msys_script/msys_dlg_user_defined.h"

#include <QApplication>
#include <QEventLoop>
#include <QGridLayout>
#include <QPushButton>
#include <QScreen>
#include <QShowEvent>
#include <QTimer>
#include <QVBoxLayout>

#include "gapp/app_status_manager.h"
#include "gapp/interaction.h"
#include "gapp/main_window.h"
#include "gscript/python_interpreter.h"
#include "gscript/safe_points.h"
#include "gtools/dialog_widget_supplier.h"
#include "menu/msys_script/msys_dialog_controls.h"
#include "menu/msys_script/msys_dialog_handles.h"
#include "menu/msys_script/msys_dialog_styles.h"
#include "menu/msys_script/msys_error_codes.h"

namespace Vel::MSysScript {

namespace {

std::map<int, UserDefinedDialog*>& dialogMap()
{
  static std::map<int, UserDefinedDialog*> dialogs;
  return dialogs;
}

UserDefinedDialog::Responder& responder()
{
  static UserDefinedDialog::Responder current;
  return current;
}

UserDefinedDialog::Watcher& watcher()
{
  static UserDefinedDialog::Watcher current;
  return current;
}

int nextId()
{
  static int last = 0;
  return ++last;
}

}  // namespace

UserDefinedDialog::UserDefinedDialog(const QString& content)
    : QDialog(GTools::DialogWidgetSupplierInterface::getInstance()
                  ? GTools::DialogWidgetSupplierInterface::getInstance()->getDialogParent()
                  : nullptr),
      _definition(DialogDefinition::read(content, DialogWidget::DialogMode::RunTime)),
      _id(nextId()),
      _timer(new QTimer(this))
{
  setObjectName(QStringLiteral("VelMSysScript_UserDefinedDialog"));
  setWindowTitle(_definition->header.title);
  setAttribute(Qt::WA_DeleteOnClose, false);

  // The style's sheet reaches every element through the one widget that holds them all.
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(0, 0, 0, 0);
  auto* body = new DialogStyleWidget(this);
  body->setObjectName(QStringLiteral("_body"));
  if (const DialogStyle* style = DialogStyleDatabase::findStyle(_definition->header.style);
      style && !style->getStyleSheet().isEmpty())
    body->setStyleSheet(style->getStyleSheet());
  outer->addWidget(body);
  auto* layout = new QVBoxLayout(body);
  auto* grid = new QGridLayout;
  grid->setObjectName(QStringLiteral("_grid"));
  // Filled before it joins the body: the elements move into the body together, not each with a
  // layout request of its own.
  for (const DialogDefinition::Cell& cell : _definition->getCells()) {
    grid->addWidget(cell.widget, cell.row, cell.column, cell.row_span, cell.column_span);
    connect(cell.widget, &DialogWidget::signalModified, this, &UserDefinedDialog::slotElementModified);
  }
  layout->addLayout(grid, 1);

  const DialogControlCreator* creator = DialogRegistry::getRegistry()->getControlCreator(_definition->header.control_id);
  _control = creator->createControl();
  _control->setParent(body);
  layout->addWidget(_control);
  connect(_control, &DialogControl::signalAccept, this, &QDialog::accept);
  connect(_control, &DialogControl::signalReject, this, &QDialog::reject);
  connect(_control, &DialogControl::signalControlEvent, this,
          [this](const QString& event) { Q_EMIT signalChanged(nullptr, event); });
  if (QPushButton* button = _control->getDefaultButton())
    button->setDefault(true);
  // The buttons that close the dialog reach the handler as they are pressed, while it is
  // still open; Back and Next report themselves.
  if (auto* buttons = qobject_cast<ButtonDialogControl*>(_control))
    for (const QString& word : buttons->getButtonIds())
      if (word != QLatin1String("prev") && word != QLatin1String("next"))
        connect(buttons->getButton(word), &QPushButton::pressed, this,
                [this, word] { Q_EMIT signalChanged(nullptr, word); });

  _timer->setObjectName(QStringLiteral("timer"));
  connect(_timer, &QTimer::timeout, this, [this] { Q_EMIT signalChanged(nullptr, QStringLiteral("timer")); });

  connect(this, &UserDefinedDialog::signalChanged, this, &UserDefinedDialog::slotChanged);
  dialogMap()[_id] = this;
}

UserDefinedDialog::~UserDefinedDialog()
{
  dialogMap().erase(_id);
  // A dialog opened over this one (it was the active window then) belongs to the dialog map,
  // not to this one: it outlives it.
  for (auto* child : findChildren<UserDefinedDialog*>(Qt::FindDirectChildrenOnly)) {
    const bool visible = child->isVisible();
    child->setParent(parentWidget(), child->windowFlags());
    if (visible)
      child->show();
  }
}

void UserDefinedDialog::setResponder(Responder responder)
{
  Vel::MSysScript::responder() = std::move(responder);
}

const UserDefinedDialog::Responder& UserDefinedDialog::getResponder()
{
  return responder();
}

void UserDefinedDialog::setWatcher(Watcher watcher)
{
  Vel::MSysScript::watcher() = std::move(watcher);
}

void UserDefinedDialog::starting()
{
  _command_depth = GApp::AppStatusManager::getActiveMenuCommandDepth();
  if (_started)
    return;
  _started = true;
  embed();
  if (watcher())
    watcher()(this);
}

std::vector<const DialogDefinition::Cell*> UserDefinedDialog::getElementCells() const
{
  std::vector<const DialogDefinition::Cell*> cells;
  for (const DialogDefinition::Cell& cell : _definition->getCells())
    if (cell.widget->getCreatorId() != DialogWidgetCreator::EMPTY_WIDGET_ID)
      cells.push_back(&cell);
  return cells;
}

UserDefinedDialog* UserDefinedDialog::find(int id)
{
  const auto found = dialogMap().find(id);
  return found == dialogMap().end() || found->second->_closed ? nullptr : found->second;
}

int UserDefinedDialog::getOpenCount()
{
  int count = 0;
  for (const auto& entry : dialogMap())
    count += entry.second->_closed ? 0 : 1;
  return count;
}

QVariant UserDefinedDialog::run()
{
  starting();
  _waited_for = true;
  setWindowModality(Qt::ApplicationModal);
  // A loop of its own rather than exec(): a handler may close the dialog while it is being
  // shown, before any loop runs, and exec()'s loop would then wait for good.
  show();
  if (!_closed) {
    // While the dialog waits no Python runs, so the script's safe points cannot see an abort
    // (its abort button, the break dialog, the test timeout): the dialog looks for it.
    QTimer watch;
    connect(&watch, &QTimer::timeout, this, [this] {
      QString reason;
      if (!GScript::SafePoints::isScriptRunning() || !GScript::SafePoints::poll(&reason))
        return;
      ErrorLog log;
      log.addLine(reason.isEmpty() ? QStringLiteral("KeyboardInterrupt") : QStringLiteral("KeyboardInterrupt: ") + reason);
      failWith(std::make_exception_ptr(GApp::CommandError(QString::fromLatin1(GScript::ERR_SCRIPT_ABORTED), log)));
    });
    watch.start(GScript::SafePoints::INTERVAL_MS);
    QEventLoop loop;
    _loop = &loop;
    loop.exec(QEventLoop::DialogExec);
    _loop = nullptr;
  }
  return _result;
}

void UserDefinedDialog::openModeless()
{
  starting();
  show();
}

void UserDefinedDialog::closeWithResult(const std::optional<QVariant>& result)
{
  _script_result = result;
  // Without a result of the script's the dialog keeps its own.
  closeWith(this->result());
}

bool UserDefinedDialog::canCloseNow() const
{
  const QWidget* modal = QApplication::activeModalWidget();
  if (modal && modal != this && isAncestorOf(modal))
    return false;
  for (const QObject* child : children())
    if (const auto* dialog = qobject_cast<const QDialog*>(child); dialog && dialog->isVisible())
      return false;
  return GApp::AppStatusManager::getActiveMenuCommandDepth() <= _command_depth + 1;
}

void UserDefinedDialog::failWith(std::exception_ptr fault)
{
  // A modeless dialog has no command waiting for it: its fault is shown, not lost.
  if (!_waited_for) {
    try {
      std::rethrow_exception(fault);
    } catch (const GApp::CommandError& error) {
      GApp::ErrorDialog(error.getCode(), error.getLog().getText());
    } catch (const std::exception& error) {
      GApp::ErrorDialog(QString::fromLatin1(ERR_EXECUTE_SCRIPT), QString::fromUtf8(error.what()));
    }
  } else if (!_fault) {
    _fault = fault;
  }
  closeWith(QDialog::Rejected);
}

void UserDefinedDialog::closeWith(int code)
{
  if (isVisible())
    done(code);
  else
    finish();
}

std::exception_ptr UserDefinedDialog::takeFault()
{
  return std::exchange(_fault, nullptr);
}

void UserDefinedDialog::setAsPerson(DialogWidget* widget, const QVariant& value)
{
  // Reported once, whether or not the element's own control reports programmatic changes.
  setFromScript(widget, DialogWidget::TAG_VALUE, value);
  slotElementModified(widget);
}

void UserDefinedDialog::setFromScript(DialogWidget* widget, const QString& name, const QVariant& value)
{
  ++_script_assignments;
  try {
    widget->__setattr__(name, value);
  } catch (...) {
    --_script_assignments;
    throw;
  }
  --_script_assignments;
}

void UserDefinedDialog::done(int code)
{
  QDialog::done(code);
  if (!_script_result)
    _result = code == QDialog::Accepted;
  finish();
}

void UserDefinedDialog::finish()
{
  if (_closed)
    return;
  if (_script_result)
    _result = *_script_result;
  _closed = true;
  _timer->stop();
  hide();
  if (_loop)
    _loop->exit();
  Q_EMIT signalClosed(_id);
}

void UserDefinedDialog::showEvent(QShowEvent* event)
{
  QDialog::showEvent(event);
  if (_initialized)
    return;
  _initialized = true;
  // Placed once the window has its frame, so that the frame, not only the contents, fits.
  place();
  raise();
  Q_EMIT signalChanged(nullptr, QStringLiteral("initialize"));
}

void UserDefinedDialog::slotChanged(DialogWidget* element, const QString& event)
{
  if (!_handler.isValid() || _closed)
    return;
  struct Depth
  {
    int& depth;
    explicit Depth(int& d) : depth(++d) {}
    ~Depth() { --depth; }
  } running(_handler_depth);
  try {
    GScript::PythonInterpreter::call(_handler, {makeSender(this, element, event)});
  } catch (...) {
    failWith(std::current_exception());
  }
}

void UserDefinedDialog::slotElementModified(DialogWidget* element)
{
  if (_script_assignments == 0 && !_closed)
    Q_EMIT signalChanged(element, QString());
}

// Size and place as the definition says, within the screen the dialog appears on.
// In kiosk mode a dialog that asks for it is shown inside the main window, over its contents,
// where the definition places it; elsewhere it is a window of its own.
bool UserDefinedDialog::embed()
{
  const GTools::DialogWidgetSupplierInterface* supplier = GTools::DialogWidgetSupplierInterface::getInstance();
  QWidget* host = supplier ? supplier->getDialogParent() : nullptr;
  if (_definition->header.embedding.get() != DialogEmbedding::EmbeddedInKiosk || !VelInit::isKioskMode() || !host ||
      !supplier->canEmbed())
    return false;
  setParent(host->window(), Qt::Widget);
  setAutoFillBackground(true);
  return true;
}

void UserDefinedDialog::place()
{
  const DialogHeader& header = _definition->header;
  adjustSize();
  if (header.size_mode.get() == DialogSizeMode::Fixed && header.size.isValid())
    setFixedSize(header.size);
  else if (header.size.isValid())
    resize(header.size.expandedTo(minimumSizeHint()));

  QScreen* screen = parentWidget() ? parentWidget()->screen() : QGuiApplication::primaryScreen();
  if (!screen && isWindow())
    return;
  // Embedded, the main window's area is the screen.
  const QRect area = isWindow() ? screen->availableGeometry() : parentWidget()->rect();
  if (header.size_mode.get() == DialogSizeMode::Maximized) {
    const QRect inner = geometry();
    const QRect outer = frameGeometry();
    setGeometry(area.marginsRemoved(QMargins(inner.left() - outer.left(), inner.top() - outer.top(),
                                             outer.right() - inner.right(), outer.bottom() - inner.bottom())));
    return;
  }
  QRect frame(QPoint(0, 0), frameGeometry().size());
  switch (header.position.get()) {
    case DialogPosition::Automatic:
      if (isWindow())
        return;
      frame.moveCenter(area.center());
      break;
    case DialogPosition::Center: frame.moveCenter(area.center()); break;
    case DialogPosition::Left: frame.moveCenter(area.center()); frame.moveLeft(area.left()); break;
    case DialogPosition::Right: frame.moveCenter(area.center()); frame.moveRight(area.right()); break;
    case DialogPosition::Bottom: frame.moveCenter(area.center()); frame.moveBottom(area.bottom()); break;
    case DialogPosition::TopLeft: frame.moveTopLeft(area.topLeft()); break;
    case DialogPosition::TopRight: frame.moveTopRight(area.topRight()); break;
    case DialogPosition::BottomLeft: frame.moveBottomLeft(area.bottomLeft()); break;
    case DialogPosition::BottomRight: frame.moveBottomRight(area.bottomRight()); break;
  }
  move(frame.topLeft() + (pos() - frameGeometry().topLeft()));
}

}  // namespace Vel::MSysScript
