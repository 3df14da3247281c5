// What the host's interaction functions need of the widget library, installed as soon as this
// library is loaded.

#include <QApplication>
#include <QCursor>
#include <QFileDialog>
#include <QMessageBox>

#include "gapp/interaction.h"

namespace Vel::GTools {
namespace {

void showError(const QString& code, const QString& headline, const QString& text)
{
  if (code.isEmpty()) {
    QMessageBox::warning(QApplication::activeWindow(), QStringLiteral("Warning"), text);
    return;
  }
  QMessageBox box(QMessageBox::Critical, QStringLiteral("Error"), headline, QMessageBox::Ok);
  box.setDetailedText(text);
  box.setInformativeText(text.section(QLatin1Char('\n'), 0, 0));
  box.exec();
}

bool askYesNo(const QString& title, const QString& question)
{
  return QMessageBox::question(nullptr, title, question, QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

std::function<void()> takeCursors()
{
  if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
    return {};
  QList<QCursor> cursors;  // innermost first
  while (const QCursor* cursor = QGuiApplication::overrideCursor()) {
    cursors << *cursor;
    QGuiApplication::restoreOverrideCursor();
  }
  if (cursors.isEmpty())
    return {};
  return [cursors] {
    for (auto it = cursors.crbegin(); it != cursors.crend(); ++it)
      QGuiApplication::setOverrideCursor(*it);
  };
}

QStringList askFiles(int question, const QString& title, const QString& filter)
{
  switch (GApp::FileQuestion(question)) {
    case GApp::FileQuestion::Open: {
      const QString file = QFileDialog::getOpenFileName(nullptr, title, QString(), filter);
      return file.isEmpty() ? QStringList() : QStringList{file};
    }
    case GApp::FileQuestion::Save: {
      const QString file = QFileDialog::getSaveFileName(nullptr, title, QString(), filter);
      return file.isEmpty() ? QStringList() : QStringList{file};
    }
    case GApp::FileQuestion::OpenMany: return QFileDialog::getOpenFileNames(nullptr, title, QString(), filter);
  }
  return {};
}

const bool installed = [] {
  GApp::Gui::setServices({showError, askYesNo, takeCursors, askFiles});
  return true;
}();

}  // namespace
}  // namespace Vel::GTools
