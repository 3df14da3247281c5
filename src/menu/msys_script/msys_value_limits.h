#pragma once

#include <QString>
#include <QStringList>

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

// A text list: when limited, only its entries are allowed.
class ListValueLimits : public ValueLimits
{
public:
  ListValueLimits(bool limited, const QStringList& descriptions) : _limited(limited), _descriptions(descriptions) {}
  ValueLimits* clone() const override { return new ListValueLimits(*this); }

  bool isLimited() const { return _limited; }
  const QStringList& getDescriptions() const { return _descriptions; }

private:
  bool _limited;
  QStringList _descriptions;
};

// File name extensions ("stl", "txt"): when limited, only files with one of them are allowed.
class FileTypeValueLimits : public ValueLimits
{
public:
  FileTypeValueLimits(bool limited, const QStringList& extensions) : _limited(limited), _extensions(extensions) {}
  ValueLimits* clone() const override { return new FileTypeValueLimits(*this); }

  bool isLimited() const { return _limited; }
  const QStringList& getExtensions() const { return _extensions; }

private:
  bool _limited;
  QStringList _extensions;
};

}  // namespace Vel::MSysScript
