// SPDX-License-Identifier: MIT
#pragma once

#include <QtTest>

namespace kse {

/// For a `_data` function: one row for each text, named after it. Its parts, which stand between
/// " > ", are in the column `cells`.
inline void addTextRows(std::initializer_list<const char*> rows)
{
    QTest::addColumn<QStringList>("cells");
    for (const char* row : rows) {
        QTest::newRow(row) << QString::fromUtf8(row).split(QStringLiteral(" > "));
    }
}

/// Compares rows of such parts, of which the last is the answer to the others, with what `answer`
/// gives for each.
template <typename Answer>
void compareRows(std::initializer_list<const char*> rows, const Answer& answer)
{
    QString wrong;
    for (const char* row : rows) {
        const QStringList cells = QString::fromUtf8(row).split(QStringLiteral(" > "));
        const QString given = answer(cells);
        if (given != cells.last()) {
            wrong += QString::fromUtf8(row) + QStringLiteral(" but gives ") + given + u'\n';
        }
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong));
}

/// The content of the file at `path`; none if it can't be read.
inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The bytes of the table `name` that is built into the program.
inline QByteArray builtInTable(const char* name)
{
    return contentOf(QStringLiteral(KSE_SOURCE_DIR "/resources/schema/") + QLatin1String(name));
}

} // namespace kse
