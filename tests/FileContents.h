#pragma once

#include "tests/Patience.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace varno {

/// Nothing if it cannot be read.
inline QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Makes the file, and its folder, if need be.
inline void setContents(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

} // namespace varno
