// SPDX-License-Identifier: MIT
#pragma once

#include "schema/DeletePolicy.h"
#include "session/SettingsStore.h"
#include "support/DocumentText.h"
#include "support/TextRows.h"

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
    QTemporaryDir dir{QDir(QDir::tempPath()).canonicalPath() +
                      QStringLiteral("/J\u00fcrgen \u7528\u6237 \U0001f600 %1 XXXXXX")};
    QString path = dir.filePath(QStringLiteral("core-001-pxi.settings"));
    DeletePolicy policy; ///< "Free" may be deleted, nothing else, with "Stays." as the reason.
    SettingsStore store;

    explicit StoreFixture(const QByteArray& bytes = defaultBytes())
    {
        const bool read = policy.load("{\"policy\": {\"defaultReason\": \"Stays.\", \"delete\": "
                                      "[{\"path\": \"Free/**\", \"level\": \"safe\"}]}}");
        require(read && write(path, bytes) && store.load(path), path);
        store.policy = &policy;
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

    bool edit(const char* nodePath, const QString& value)
    {
        node(nodePath).value = value;
        return true;
    }

    bool mark(const char* nodePath) { return node(nodePath).markedForDeletion = true; }

    XsdtNode& node(const char* nodePath)
    {
        return *store.document.root.findByPath(QString::fromUtf8(nodePath));
    }

    /// Name and content of every file in the folder.
    QMap<QString, QByteArray> files() const
    {
        QMap<QString, QByteArray> contents;
        const QStringList names = QDir(dir.path()).entryList(QDir::Files | QDir::Hidden);
        for (const QString& name : names) {
            contents.insert(name, contentOf(dir.filePath(name)));
        }
        return contents;
    }

    static void require(bool done, const QString& what)
    {
        if (!done) {
            qFatal("The fixture failed at %s", qPrintable(what));
        }
    }
};

} // namespace kse
