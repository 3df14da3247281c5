#pragma once

#include <QString>

#include "gapp/command.h"

namespace Vel::MSysScript {

// A text of the catalogue: looked up when shown, so that an installed catalogue applies.
// Without a key the text is shown as it stands (texts marked not to be translated).
struct CatalogueText
{
  const char* context = nullptr;
  const char* text = nullptr;
  const char* key = nullptr;

  QString toString() const;
};

// A command of this module: its title (and menu title, where the menu says it differently)
// and its argument table.
class MSysCommand : public GApp::Command
{
public:
  MSysCommand(const QString& name, CatalogueText title, const GApp::CommandMetaInfo::ArgumentTypes& arguments,
              CatalogueText menu_title = CatalogueText());

  QString getTitle() const override { return _title.toString(); }
  QString getMenuTitle() const override { return _menu_title.text ? _menu_title.toString() : getTitle(); }

protected:
private:
  CatalogueText _title;
  CatalogueText _menu_title;
};

// Fails the command with a module error code and the log, or one line of log.
[[noreturn]] void failCommand(const char* code, const ErrorLog& log);
[[noreturn]] void failCommand(const char* code, const QString& line);

// Asks a person for the file of argument `argument` when the call has none (an open or a save
// dialog). True when the call can go on: a file was chosen, one was given, or nobody is there to
// ask; false when the person cancelled.
bool askForFile(GApp::CommandParameters& parameters, const QString& argument, const QString& title,
                const QString& filter, bool save);

// Reads argument `name` as type T: a missing argument or one that does not convert is the
// caller's fault, reported as a command error with the argument's name and types.
QVariant getArgumentValue(const GApp::CommandParameters& parameters, const QString& name, int type_id);

template <class T>
T getArgument(const GApp::CommandParameters& parameters, const QString& name)
{
  return getArgumentValue(parameters, name, qMetaTypeId<T>()).template value<T>();
}

}  // namespace Vel::MSysScript
