#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariant>

#include "core/error_log.h"
#include "core/vel_export.h"

namespace Vel::GScript {

// Host error code of a Python run that failed ("Python script failed").
VEL_EXPORT extern const char* const ERR_SCRIPT_FAILED;  // "GScriptErr-0001"

// One run of Python text in the embedded interpreter, in a fresh global namespace. A main run
// is the real __main__ module while it runs, as under python3: sys.modules['__main__'] is a
// module whose dictionary is the run's globals; with a file name, sys.argv is the file and its
// arguments and the file's folder is first on sys.path. All of it is put back afterwards, and the
// namespace is released, never cleared, so threads and atexit handlers may go on using it.
class VEL_EXPORT Execute
{
public:
  enum Flags
  {
    FLAG_NONE = 0,
    // The text runs as the main module (__name__ == "__main__").
    FLAG_MAIN = 1
  };

  explicit Execute(const QString& code);
  // A file's bytes, compiled as CPython compiles a file: the encoding it declares (PEP 263) or
  // its byte-order mark, UTF-8 otherwise.
  static Execute fromSource(const QByteArray& source);

  // Whether CPython can decode a file's bytes as it reads a file. False (with the file, the line
  // and the reason in `log`) for bytes that are not of the declared encoding, or not UTF-8 when
  // none is declared, and for an unknown declared encoding.
  static bool checkSourceEncoding(const QByteArray& source, const QString& file_name, ErrorLog& log);

  // Visible to the script as the dictionary PARAMETERS.
  void setParameters(const QMap<QString, QVariant>& parameters) { _parameters = parameters; }
  // What the script prints is collected instead of written; both streams go into one text.
  void setCollectStdout(bool collect) { _collect_stdout = collect; }
  void setCollectStderr(bool collect) { _collect_stderr = collect; }
  // The name tracebacks give the text ("<string>" without one); also the script's __file__.
  void setFileName(const QString& file_name) { _file_name = file_name; }
  const QString& getFileName() const { return _file_name; }
  // What follows the file name in sys.argv while a run with a file name runs.
  void setArguments(const QStringList& arguments) { _arguments = arguments; }
  // Tracebacks quote this text rather than the file of the same name on disk (an editor's text
  // that differs from what was saved).
  void setQuoteOwnText(bool quote) { _quote_own_text = quote; }
  // The name tracebacks give the text instead of its file name (a database script's name).
  void setCodeName(const QString& code_name) { _code_name = code_name; }

  // Runs the text. Every run has safe points (window events, abort; see SafePoints); `gui_mode`
  // changes nothing here. On failure returns false, sets `error_code` and adds the traceback to
  // `log`; a failure that came from a command the script called keeps that command's code.
  bool execute(int gui_mode, int flags, QString& error_code, ErrorLog& log);

  const QString& getCollectedOutput() const { return _collected; }
  // While the run goes on (paused in the debugger, say): what it has printed so far, where it
  // is collected.
  QString getCollectedOutputSoFar() const;

private:
  QString _code;
  QByteArray _source;
  bool _from_source = false;
  QString _file_name;
  QStringList _arguments;
  QString _code_name;
  QMap<QString, QVariant> _parameters;
  bool _collect_stdout = false;
  bool _collect_stderr = false;
  bool _quote_own_text = false;
  void* _collecting = nullptr;  // the run's output buffer (a Python object) while it runs
  QString _collected;
};

}  // namespace Vel::GScript
