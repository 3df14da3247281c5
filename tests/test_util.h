#pragma once

#include <QFile>
#include <QString>
#include <QTemporaryDir>

// Writes `bytes` to `path` (created or truncated).
inline bool writeFile(const QString& path, const QByteArray& bytes)
{
  QFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

inline QByteArray readFile(const QString& path)
{
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
