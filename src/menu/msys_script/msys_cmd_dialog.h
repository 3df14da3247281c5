#pragma once

#include "menu/msys_script/msys_cmd_base.h"

namespace Vel::MSysScript {

// The commands through which scripts build and drive user-defined dialogs.

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
