#pragma once

#include <QTextDocument>
#include <QWidget>

#include "core/vel_export.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace Vel::GEdit {

// Find and replace for a text editor, shown below it: Enter finds the next match (Shift+Enter the
// one before), searching wraps around the end, Escape hides the bar and gives the text back its
// focus. Replace All is one step to undo.
class VEL_EXPORT FindBar : public QWidget
{
  Q_OBJECT

public:
  explicit FindBar(QPlainTextEdit* editor, QWidget* parent = nullptr);

  // Shows the bar with the editor's selected text (if it is on one line) as what to find;
  // `replace` shows the replacement row too.
  void start(bool replace);
  // False, with a note in the bar, when there is no match anywhere.
  bool findNext(bool backward = false);
  // Replaces the selected match and finds the next one.
  bool replaceOne();
  // The number of matches replaced.
  int replaceAll();

  QLineEdit* findField() const { return _find; }
  QLineEdit* replaceField() const { return _replace; }

protected:
  void keyPressEvent(QKeyEvent* event) override;

private:
  bool selectionMatches() const;
  QTextDocument::FindFlags findFlags(bool backward) const;

  QPlainTextEdit* _editor;
  QLineEdit* _find;
  QLineEdit* _replace;
  QCheckBox* _case;
  QWidget* _replace_row;
  QLabel* _note;
};

}  // namespace Vel::GEdit
