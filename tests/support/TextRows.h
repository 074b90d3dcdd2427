// SPDX-License-Identifier: MIT
#pragma once

#include <QtTest>

namespace kse {

/// Compares rows of parts, which stand between " > ", and of which the last is the answer to the
/// others, with what `answer` gives for each.
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

/// Writes the file at `path`, and sets when it last changed unless `time` is null.
[[nodiscard]] inline bool writeFile(const QString& path, const QByteArray& bytes,
                                    const QDateTime& time = {})
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush() &&
           (time.isNull() || file.setFileTime(time, QFileDevice::FileModificationTime));
}

/// The bytes of the table `name` that is built into the program.
inline QByteArray builtInTable(const char* name)
{
    return contentOf(QStringLiteral(KSE_SOURCE_DIR "/resources/schema/") + QLatin1String(name));
}

} // namespace kse
