// SPDX-License-Identifier: MIT
#pragma once

#include "schema/DeletePolicy.h"
#include "session/SettingsStore.h"
#include "support/DocumentText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>

namespace kse {

/// All that the store holds, for comparing before and after.
inline QString stateOf(const SettingsStore& store)
{
    return QStringLiteral("%1 %2 %3 %4\n%5")
        .arg(store.path, store.loaded ? QStringLiteral("open") : QStringLiteral("closed"),
             QString::fromLatin1(store.loadedHash.toHex()),
             QString::number(store.document.pendingCount()), treeText(store.document.root));
}

/// A settings file alone in a folder of its own, and the store that has it open. A step of the
/// fixture that fails ends the test program.
struct StoreFixture
{
    QTemporaryDir dir;
    QString path = dir.filePath(QStringLiteral("core-001-pxi.settings"));
    DeletePolicy policy; ///< "Free" may be deleted, nothing else, with "Stays." as the reason.
    SettingsStore store;

    explicit StoreFixture(const QByteArray& bytes = defaultBytes())
    {
        const bool read = policy.load("{\"policy\": {\"defaultReason\": \"Stays.\", \"delete\": "
                                      "[{\"path\": \"Free/**\", \"level\": \"safe\"}]}}");
        require(read, path);
        store.policy = &policy;
        write(path, bytes);
        require(store.load(path), path);
    }

    static QByteArray defaultBytes()
    {
        return fileBytes("<i k=\"A\"><v k=\"x\" t=\"i\" v=\"1\"/><v k=\"s\" t=\"s\">text</v></i>"
                         "<i k=\"Free\"><v k=\"y\" t=\"b\" v=\"true\"/></i>");
    }

    static bool write(const QString& path, const QByteArray& bytes)
    {
        QFile file(path);
        require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
                    file.flush(),
                path);
        return true;
    }

    static QByteArray read(const QString& path)
    {
        QFile file(path);
        require(file.open(QIODevice::ReadOnly), path);
        return file.readAll();
    }

    bool edit(const char* nodePath, const QString& value)
    {
        node(nodePath).value = value;
        return true;
    }

    bool mark(const char* nodePath) { return node(nodePath).markedForDeletion = true; }

    XsdtNode& node(const char* nodePath)
    {
        XsdtNode* const found = store.document.root.findByPath(QString::fromUtf8(nodePath));
        require(found, QString::fromUtf8(nodePath));
        return *found;
    }

    /// Makes `links` in the folder, each relative and to the one before it, the first to `file`.
    /// Gives the last of them, or `file`.
    QString linkTo(QString file, const QStringList& links) const
    {
        for (const QString& link : links) {
            const QFileInfo made(dir.filePath(link));
            const QDir folder = made.absoluteDir();
            require(folder.mkpath(QStringLiteral(".")) &&
                        QFile::link(folder.relativeFilePath(file), made.filePath()),
                    link);
            file = made.filePath();
        }
        return file;
    }

    /// Name and content of every file in the folder.
    QMap<QString, QByteArray> files() const
    {
        QMap<QString, QByteArray> contents;
        const QDir folder(dir.path());
        const QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
        for (const QString& name : names) {
            contents.insert(name, read(folder.filePath(name)));
        }
        return contents;
    }

    QString state() const { return stateOf(store); }

    static void require(bool done, const QString& what)
    {
        if (!done) {
            qFatal("The fixture failed at %s", qPrintable(what));
        }
    }
};

} // namespace kse
