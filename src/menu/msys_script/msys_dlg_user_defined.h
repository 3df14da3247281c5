#pragma once

#include <QDialog>
#include <QPointer>
#include <QVariant>

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "menu/msys_script/msys_dialog_definition.h"

class QEventLoop;
class QTimer;

namespace Vel::MSysScript {

class DialogControl;

// A user-defined dialog as a script runs it: built from its definition, registered in the
// process's dialog map under an id that script handles carry, and gone from the map once closed.
class UserDefinedDialog : public QDialog
{
  Q_OBJECT

public:
  // Closed by a person, a dialog returns whether it was accepted: OK, Yes and Close are true;
  // Cancel, No, Escape and closing the window false. Builds the dialog hidden; a definition that does not read throws the reader's fault.
  explicit UserDefinedDialog(const QString& content);
  ~UserDefinedDialog() override;

  // Who answers a dialog that waits where no person can: called as the dialog starts waiting,
  // true when it will see the dialog closed (answers from a file, a test's input).
  using Responder = std::function<bool(UserDefinedDialog*)>;
  static void setResponder(Responder responder);
  static const Responder& getResponder();

  // Told of every dialog as it starts waiting or is opened (the recorder of answers).
  using Watcher = std::function<void(UserDefinedDialog*)>;
  static void setWatcher(Watcher watcher);

  // The open dialog of that id; null when there is none (never made, or closed).
  static UserDefinedDialog* find(int id);
  static int getOpenCount();

  int getId() const { return _id; }
  const DialogHeader& getHeader() const { return _definition->header; }
  const std::vector<DialogDefinition::Cell>& getCells() const { return _definition->getCells(); }
  // The cells that hold an element, in the order of the definition (no placeholders).
  std::vector<const DialogDefinition::Cell*> getElementCells() const;
  DialogWidget* findWidget(const QString& name) const { return _definition->findWidget(name); }
  DialogControl* getControl() const { return _control; }
  QTimer* getTimer() const { return _timer; }

  // Shows the dialog and waits until it is closed; its result.
  QVariant run();
  // Shows the dialog and returns at once.
  void openModeless();
  // Closes the dialog; a given result replaces its own.
  void closeWithResult(const std::optional<QVariant>& result);
  // False while a dialog opened from this one is still open, or a command started after this
  // dialog was shown is still running.
  bool canCloseNow() const;
  const QVariant& getResult() const { return _result; }
  bool isClosed() const { return _closed; }
  // Shown and initialised, and its handler not running: what a person answers comes now.
  bool isReadyForInput() const { return _initialized && _handler_depth == 0; }
  // Whether a command waits for the dialog to close.
  bool isWaitedFor() const { return _waited_for && !_closed; }

  // Ends the dialog with a fault that the command waiting for it raises (a failing handler, a
  // bad answer): faults may not cross the event loop that runs the dialog.
  void failWith(std::exception_ptr fault);
  // The fault the dialog ended with, once; null when none.
  std::exception_ptr takeFault();

  // A person's edit made by someone else (an answer): applied and reported as a person's.
  void setAsPerson(DialogWidget* widget, const QVariant& value);

  // The script's change handler (a Python callable), told of what signalChanged reports; null
  // for none. Its exception ends the dialog with that fault.
  void setHandler(const QVariant& handler) { _handler = handler; }
  const QVariant& getHandler() const { return _handler; }

  // A script's own assignment: applied to the element without reaching the change handler.
  void setFromScript(DialogWidget* widget, const QString& name, const QVariant& value);

Q_SIGNALS:
  // Something a person did: an element changed, a button was clicked ("button" holds the
  // control row's button word then), or the timer ticked; "initialize" once when first shown.
  void signalChanged(Vel::MSysScript::DialogWidget* element, QString event);
  void signalClosed(int id);

protected:
  void done(int code) override;
  void showEvent(QShowEvent* event) override;

private Q_SLOTS:
  void slotElementModified(Vel::MSysScript::DialogWidget* element);
  void slotChanged(Vel::MSysScript::DialogWidget* element, const QString& event);

private:
  bool embed();
  void place();
  void starting();
  void closeWith(int code);
  void finish();

  std::unique_ptr<DialogDefinition> _definition;
  int _id;
  DialogControl* _control = nullptr;
  QTimer* _timer;
  QVariant _result;
  std::optional<QVariant> _script_result;
  bool _closed = false;
  bool _initialized = false;
  int _handler_depth = 0;
  bool _started = false;
  int _script_assignments = 0;
  std::exception_ptr _fault;
  QVariant _handler;
  bool _waited_for = false;
  QEventLoop* _loop = nullptr;
  size_t _command_depth = 0;
};

}  // namespace Vel::MSysScript
