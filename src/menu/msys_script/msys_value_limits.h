#pragma once

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <memory>

namespace Vel::MSysScript {

// The values an input element allows.
class ValueLimits
{
public:
  virtual ~ValueLimits();
  virtual ValueLimits* clone() const = 0;
};

// No limits at all.
class EmptyValueLimits : public ValueLimits
{
public:
  ValueLimits* clone() const override { return new EmptyValueLimits(*this); }
};

// A number, limited to a range or not, shown with a number of decimal digits.
class NumericValueLimits : public ValueLimits
{
public:
  NumericValueLimits(bool limited, double lower, double upper, int digits)
      : _limited(limited), _lower(lower), _upper(upper), _digits(digits)
  {}
  ValueLimits* clone() const override { return new NumericValueLimits(*this); }

  bool isLimited() const { return _limited; }
  double getLower() const { return _lower; }
  double getUpper() const { return _upper; }
  int getDigits() const { return _digits; }

private:
  bool _limited;
  double _lower;
  double _upper;
  int _digits;
};

// Limits given as a list of texts: when limited, only values the list names are allowed.
class TextListValueLimits : public ValueLimits
{
public:
  bool isLimited() const { return _limited; }

protected:
  TextListValueLimits(bool limited, const QStringList& texts) : _limited(limited), _texts(texts) {}
  const QStringList& texts() const { return _texts; }

private:
  bool _limited;
  QStringList _texts;
};

// The entries of a list element.
class ListValueLimits : public TextListValueLimits
{
public:
  ListValueLimits(bool limited, const QStringList& descriptions) : TextListValueLimits(limited, descriptions) {}
  ValueLimits* clone() const override { return new ListValueLimits(*this); }
  const QStringList& getDescriptions() const { return texts(); }
};

// File name extensions ("stl", "txt") of a file element.
class FileTypeValueLimits : public TextListValueLimits
{
public:
  FileTypeValueLimits(bool limited, const QStringList& extensions) : TextListValueLimits(limited, extensions) {}
  ValueLimits* clone() const override { return new FileTypeValueLimits(*this); }
  const QStringList& getExtensions() const { return texts(); }
};

}  // namespace Vel::MSysScript

namespace Vel::MSysScript {
// Limits on their way from a script to an element.
using ValueLimitsPtr = std::shared_ptr<const ValueLimits>;
}  // namespace Vel::MSysScript

Q_DECLARE_METATYPE(Vel::MSysScript::ValueLimitsPtr)
