#pragma once

#include <QSize>
#include <QString>

#include <memory>
#include <vector>

#include "menu/msys_script/VelMSysXmlTools.h"
#include "menu/msys_script/msys_dialog_widgets.h"

namespace Vel::MSysScript {

struct DialogPosition
{
  enum Type_t
  {
    Automatic,
    Center,
    Left,
    Right,
    Bottom,
    TopLeft,
    TopRight,
    BottomLeft,
    BottomRight
  };
};

struct DialogEmbedding
{
  enum Type_t
  {
    AlwaysTopLevel,
    EmbeddedInKiosk
  };
};

struct DialogSizeMode
{
  enum Type_t
  {
    Automatic,  // as large as the elements need
    Fixed,      // the size of the definition
    Maximized   // the whole screen, or the whole embedding area
  };
};

// The dialog's own settings: everything of a definition but the grid.
struct DialogHeader
{
  DialogHeader();

  QString title;
  QString control_id;
  Xml::Enumeration<DialogPosition::Type_t> position;
  Xml::Enumeration<DialogEmbedding::Type_t> embedding;
  Xml::Enumeration<DialogSizeMode::Type_t> size_mode;
  // Invalid when not set.
  QSize size;
  QString style;
};

// A user-defined dialog as its definition text describes it: the header and a grid of
// elements, each cell covered by exactly one element (an empty placeholder where the text has
// none). Owns its elements until the dialog that shows them takes them.
class DialogDefinition
{
public:
  struct Cell
  {
    DialogWidget* widget;
    int row;
    int column;
    int row_span;
    int column_span;
  };

  // The largest grid a definition may describe; a larger one is a fault, not a reason to build
  // millions of placeholders.
  static constexpr int MAX_ROWS = 1000;
  static constexpr int MAX_COLUMNS = 1000;
  static constexpr int MAX_CELLS = 10000;

  DialogDefinition();
  ~DialogDefinition();
  DialogDefinition(const DialogDefinition&) = delete;
  DialogDefinition& operator=(const DialogDefinition&) = delete;

  // Reads a definition; the first fault throws Xml::ParseException and nothing read is kept.
  static std::unique_ptr<DialogDefinition> read(
      const QString& text, DialogWidget::DialogMode::Type_t mode = DialogWidget::DialogMode::RunTime);
  struct Fault
  {
    int line;  // -1 when unknown
    QString message;
  };
  // Reads a definition as the editor does and checks each element's configuration, going on
  // past faults: every fault of the text in the order of its lines. `definition`, when given,
  // receives what could be read (null when the text itself is not a definition).
  static std::vector<Fault> check(const QString& text, std::unique_ptr<DialogDefinition>* definition = nullptr);
  // The definition as the current format writes it.
  QString write() const;

  DialogHeader header;
  int rows = 0;
  int columns = 0;

  // The elements in the order of the text, then the placeholders of the cells it left empty.
  const std::vector<Cell>& getCells() const { return _cells; }
  // The element covering a cell; null outside the grid.
  DialogWidget* getWidget(int row, int column) const;
  DialogWidget* findWidget(const QString& name) const;
  // Appends an element covering the given cells; the definition owns it.
  void addCell(DialogWidget* widget, int row, int column, int rowSpan = 1, int columnSpan = 1);

private:
  std::vector<Cell> _cells;
};

}  // namespace Vel::MSysScript
