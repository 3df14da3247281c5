#pragma once

#include <QMetaType>

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::MSysScript {

// What a script holds of a dialog it made: the dialog's id in the dialog map.
struct DialogHandle
{
  int id = 0;
  bool operator==(const DialogHandle& other) const { return id == other.id; }
};

// Makes the Python types of dialog handles known (zut.dialog.DialogHandle, ...) before any
// dialog exists.
void declareHandleTypes();

// The meta-type id of DialogHandle, registered on first use.
int dialogHandleTypeId();

// The commands through which scripts build and drive user-defined dialogs. Create returns the
// dialog's handle; a dialog that runs until it is closed returns its result (result and the
// values by element name).

class CreateDialogCommand : public MSysCommand
{
public:
  CreateDialogCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

class ExecuteDialogCommand : public MSysCommand
{
public:
  ExecuteDialogCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

class ShowDialogCommand : public MSysCommand
{
public:
  ShowDialogCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

class OpenDialogCommand : public MSysCommand
{
public:
  OpenDialogCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

class CloseDialogCommand : public MSysCommand
{
public:
  CloseDialogCommand();
  void execute(const GApp::CommandParameters& parameters) override;
};

}  // namespace Vel::MSysScript

Q_DECLARE_METATYPE(Vel::MSysScript::DialogHandle)
